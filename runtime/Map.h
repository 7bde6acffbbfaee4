// `_eMap<K,V>`: pairs in one ascending sequence, in the order of K's comparator, keys unique.
#pragma once

#include "runtime/Set.h"

template <class K, class V>
class _eMap {
public:
    using Entry = _ePair<K, V>;

    int size() const { return items.size(); }
    bool isEmpty() const { return items.isEmpty(); }
    Entry at(int i) const { return items.at(i); }
    const _eSeq<Entry>& elements() const { return items; }

    // (index, end): `key` is at `index` if `index != end`; `end` is where it would go.
    std::pair<int, int> lookup(const K& key) const {
        auto [lo, hi] = _aEqualRange(items, key, [](const Entry& e) -> const K& { return e.first; });
        for (int i = lo; i < hi; ++i)
            if (items.get(i).first == key) return {i, hi};
        return {hi, hi};
    }

    // The map of `items`, taken as they are. Not checked: ascending by key and keys unique.
    static _eMap fromAscending(const _eSeq<Entry>& items) {
        _eMap map;
        map.items = items;
        return map;
    }

    bool containsKey(const K& key) const {
        auto [index, end] = lookup(key);
        return index != end;
    }

    // Not checked: the key must be present.
    V get(const K& key) const { return items.get(lookup(key).first).second; }

    void put(const K& key, const V& value) {
        if (isEmpty()) {
            items = _eSeq<Entry>(Entry{key, value});
            return;
        }
        auto [index, end] = lookup(key);
        if (index == end)
            items.insertAt(index, Entry{key, value});
        else
            items.elementRef(index).second = value;
    }

    // Puts the pair where `key` has none, and says whether it did: one search for both.
    bool putNew(const K& key, const V& value) {
        if (isEmpty()) {
            items = _eSeq<Entry>(Entry{key, value});
            return true;
        }
        auto [index, end] = lookup(key);
        if (index != end) return false;
        items.insertAt(index, Entry{key, value});
        return true;
    }

    // Drops the pair of `key`, if there is one.
    void remove(const K& key) {
        auto [index, end] = lookup(key);
        if (index != end) items.removeRange(index, 1);
    }

    // Adds the pair as a set would: behind the pairs of its key, unless an equal pair is there.
    // A map built this way may hold one key more than once.
    void addPair(const Entry& pair) {
        auto [lo, hi] = _aEqualRange(items, pair.first, [](const Entry& e) -> const K& { return e.first; });
        if (items.find(pair, lo, hi) == hi) items.insertAt(hi, pair);
    }

    // Union as sets of pairs, with the rule of `_eSet::addAll`: the smaller goes into the larger.
    // Unlike `put`, it keeps a key twice when the two maps pair it with different values.
    void unitePairs(const _eMap& other) {
        if (other.isEmpty()) return;
        if (isEmpty()) {
            items = other.items;
            return;
        }
        _eSeq<Entry> from = other.items;
        if (!(other.size() < size())) {
            from = items;
            items = other.items;
        }
        _eSeqReader<Entry> reader(from);
        for (int i = 0, n = from.size(); i < n; ++i) addPair(reader.next());
    }

    // Same keys with equal values, whatever the order of rank ties.
    bool operator==(const _eMap& other) const {
        if (items.rootNode() == other.items.rootNode()) return true;
        if (size() != other.size()) return false;
        _eSeqReader<Entry> reader(items);
        for (int i = 0, n = size(); i < n; ++i) {
            Entry e = reader.next();
            auto [index, end] = other.lookup(e.first);
            if (index == end || !(other.items.get(index).second == e.second)) return false;
        }
        return true;
    }

private:
    _eSeq<Entry> items;  // ascending by key
};
