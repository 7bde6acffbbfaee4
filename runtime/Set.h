// `_eSet<T>`: unique elements in one ascending sequence, in the order of T's comparator.
#pragma once

#include <type_traits>
#include <utility>

#include "runtime/Comparator.h"

// The run of elements of `seq` that rank the same as `key`, found by binary search;
// `keyOf` gives the part of an element that is compared. Without a match the run is
// empty and starts at the insertion point.
template <class T, class K, class KeyOf>
std::pair<int, int> _aEqualRange(const _eSeq<T>& seq, const K& key, KeyOf keyOf) {
    using Order = _n1_SimpleComparator<K>;
    int lo = 0;
    int hi = seq.size();
    int mid = 0;
    bool matched = false;
    while (lo != hi && !matched) {
        mid = (lo + hi) / 2;
        switch (Order::order(key, keyOf(seq.get(mid)))) {
            case rankAbove: lo = mid + 1; break;
            case rankBelow: hi = mid; break;
            case rankSame: matched = true; break;
        }
    }
    if (!matched) return {lo, hi};
    for (int m = mid; lo != m;) {
        int k = (lo + m) / 2;
        if (Order::order(key, keyOf(seq.get(k))) != rankAbove)
            m = k;
        else
            lo = k + 1;
    }
    for (int m = mid; hi != m;) {
        int k = (m + hi) / 2;
        if (Order::order(key, keyOf(seq.get(k))) != rankBelow)
            m = k + 1;
        else
            hi = k;
    }
    return {lo, hi};
}

template <class T>
class _eSet {
public:
    _eSet() = default;
    // The set literal: each element is added in turn, so a repeated one is kept once.
    template <class... U>
        requires(sizeof...(U) > 0 && (std::is_convertible_v<U, T> && ...))
    explicit _eSet(const U&... xs) {
        (add(T(xs)), ...);
    }

    int size() const { return items.size(); }
    bool isEmpty() const { return items.isEmpty(); }
    T at(int i) const { return items.at(i); }
    // The elements in comparator order.
    const _eSeq<T>& elements() const { return items; }

    // (index, end): `x` is at `index` if `index != end`; `end` is where it would go.
    std::pair<int, int> lookup(const T& x) const {
        if constexpr (std::is_same_v<T, _eSeq<wchar_t>>) {
            // Strings rank the same only when they are equal, and a set holds each once: the
            // first that ranks the same is the one, with nothing of its rank beside it.
            int lo = 0;
            int hi = items.size();
            while (lo != hi) {
                int mid = (lo + hi) / 2;
                switch (_n1_SimpleComparator<T>::order(x, items.get(mid))) {
                    case rankAbove: lo = mid + 1; break;
                    case rankBelow: hi = mid; break;
                    case rankSame: return {mid, mid + 1};
                }
            }
            return {lo, lo};
        } else {
            auto [lo, hi] = _aEqualRange(items, x, [](const T& e) -> const T& { return e; });
            return {items.find(x, lo, hi), hi};
        }
    }

    bool contains(const T& x) const {
        auto [index, end] = lookup(x);
        return index != end;
    }

    // Behind every element of the same rank. A present element leaves the set untouched.
    // The set of `items`, taken as they are. Not checked: ascending and unique.
    static _eSet fromAscending(const _eSeq<T>& items) {
        _eSet set;
        set.items = items;
        return set;
    }

    void add(const T& x) {
        auto [index, end] = lookup(x);
        if (index == end) items.insertAt(end, x);
    }

    // Union, in place. The smaller set goes into the larger, element by element, so the
    // larger one's elements keep their places among those of equal rank.
    void addAll(const _eSet& other) {
        if (other.isEmpty()) return;
        if (isEmpty()) {
            items = other.items;
            return;
        }
        if (other.size() < size()) {
            addEach(other.items);
            return;
        }
        _eSeq<T> before = items;
        items = other.items;
        addEach(before);
    }

    bool operator==(const _eSet& other) const {
        if (items.rootNode() == other.items.rootNode()) return true;
        if (size() != other.size()) return false;
        _eSeqReader<T> reader(items);
        for (int i = 0, n = size(); i < n; ++i)
            if (!other.contains(reader.next())) return false;
        return true;
    }

private:
    void addEach(const _eSeq<T>& from) {
        _eSeqReader<T> reader(from);
        for (int i = 0, n = from.size(); i < n; ++i) add(reader.next());
    }

    _eSeq<T> items;  // ascending; equal ranks in order of arrival
};
