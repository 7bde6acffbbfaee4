// `_eSeq<T>`: the persistent sequence, one handle on the root of a tree. Strings are `_eSeq<wchar_t>`.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <initializer_list>
#include <string>
#include <string_view>
#include <type_traits>

#include "runtime/Btree_2.h"

template <class T>
class _eSeqReader;

template <class T>
class _eSeq {
public:
    // The empty sequence holds the shared empty leaf.
    _eSeq() : root(_aEmptyLeaf<T>()) {}
    explicit _eSeq(const T& x) : root(new _eLeafNode<T>(x)) {}
    _eSeq(std::initializer_list<T> items) : _eSeq(int(items.size()), items.begin()) {}
    // Bulk build: up to 32 elements make one leaf; more are packed leaf by leaf, left-full.
    _eSeq(int length, const T* from) : root(build(length, from)) {}
    // A zero-terminated wide text.
    _eSeq(const wchar_t* text)
        requires std::is_same_v<T, wchar_t>
        : _eSeq(int(std::wcslen(text)), text) {}
    _eSeq(std::wstring_view text)
        requires std::is_same_v<T, wchar_t>
        : _eSeq(int(text.size()), text.data()) {}

    int size() const { return root->count(); }
    bool isEmpty() const { return size() == 0; }
    // Not checked: 0 <= i < size().
    T at(int i) const { return root->at(i); }
    T first() const { return at(0); }
    // The element in place, valid while this sequence is neither changed nor destroyed.
    const T& get(int i) const {
        const _eBaseNode<T>* node = root.get();
        if (node->isLeaf()) return node->asLeaf()->data()[i];
        return node->asBranch()->ref(i);
    }

    void pushBack(const T& x) {
        _eNodeHndl<T> overflow;
        root.uniquePointer()->pushBack(x, overflow);
        grow(overflow);
        deepCheck();
    }

    void insertAt(int i, const T& x) {
        _eNodeHndl<T> overflow;
        root.uniquePointer()->insert(i, x, overflow);
        grow(overflow);
        deepCheck();
    }

    _eSeq appended(const T& x) const {
        _eSeq copy(*this);
        copy.pushBack(x);
        return copy;
    }

    _eSeq prepended(const T& x) const {
        _eSeq copy(*this);
        copy.insertAt(0, x);
        return copy;
    }

    // The `++` of sequences: both operands keep their values and share their subtrees with the result.
    _eSeq concat(const _eSeq& other) const {
        if (other.isEmpty()) return *this;
        if (isEmpty()) return other;
        return _eSeq(root->concat(other.root.get()));
    }

    // Appends `length` elements: into a sequence of one leaf in place while the leaf has room.
    void appendRange(int length, const T* from) {
        if (length <= 0) return;
        if (root->isLeaf()) {
            int room = leafCapacity - root->size();
            int n = room < length ? room : length;
            if (n > 0) static_cast<_eLeafNode<T>*>(root.uniquePointer())->appendRange(from, n);
            from += n;
            length -= n;
            deepCheck();
        }
        if (length > 0) appendAll(_eSeq(length, from));
    }

    void appendAll(const _eSeq& other) {
        if (other.isEmpty()) return;
        if (isEmpty()) {
            root = other.root;
            return;
        }
        root = root->concat(other.root.get());
        deepCheck();
    }

    _eSeq take(int n) const {
        if (n == size()) return *this;
        if (n == 0) return _eSeq();
        _eNodeHndl<T> copy(root);
        copy.makeUnique();
        copy->truncate(n);
        return _eSeq(copy->normalise());
    }

    _eSeq drop(int n) const {
        if (n == 0) return *this;
        if (n == size()) return _eSeq();
        _eNodeHndl<T> copy(root);
        copy.makeUnique();
        copy->dropFront(n);
        return _eSeq(copy->normalise());
    }

    // Removes `count` elements from `start` on, in place.
    void removeRange(int start, int count) {
        if (count == 0) return;
        root.uniquePointer()->removeRange(start, count);
        normalise();
    }

    void removeLast() {
        if (size() == 1) {
            root = _aEmptyLeaf<T>();
            return;
        }
        root.uniquePointer()->truncate(size() - 1);
        normalise();
    }

    void replaceAt(int i, const T& x) { *root.uniquePointer()->elementRef(i) = x; }
    // The element at i, made changeable: the path down to it is copied where shared.
    T& elementRef(int i) { return *root.uniquePointer()->elementRef(i); }
    void swap(int i, int j) { root.uniquePointer()->swap(i, j); }

    // Index of the first element equal to `x` in [start, end), else `end`.
    int find(const T& x, int start, int end) const { return root->find(start, end, x); }
    int find(const T& x) const { return find(x, 0, size()); }

    bool startsWith(const _eSeq& other) const;
    bool operator==(const _eSeq& other) const;

    // The root node, for code that walks the tree itself.
    const _eBaseNode<T>* rootNode() const { return root.get(); }
    bool checkTree() const { return root->checkTree(true); }

private:
    explicit _eSeq(_eNodeHndl<T> node) : root(std::move(node)) {}
    // Whether the first `n` elements of both are equal; both have at least `n`.
    bool equalPrefix(const _eSeq& other, int n) const;

    static _eNodeHndl<T> build(int length, const T* from) {
        if (length < leafCapacity + 1) {
            if (length == 0) return _aEmptyLeaf<T>();
            return new _eLeafNode<T>(length, from);
        }
        _eHndl<_eBranchNode<T>> top(new _eBranchNode<T>(new _eLeafNode<T>(leafCapacity, from)));
        _eNodeHndl<T> result(top.get());
        for (int start = leafCapacity; start < length; start += leafCapacity) {
            int n = std::min(leafCapacity, length - start);
            _eHndl<_eLeafNode<T>> leaf(new _eLeafNode<T>(n, from + start));
            _eNodeHndl<T> overflow;
            static_cast<_eBranchNode<T>*>(result.uniquePointer())->appendLeaf(leaf.get(), overflow);
            if (overflow) result = new _eBranchNode<T>(result.get(), overflow.get());
        }
        return result;
    }

    // A non-null overflow after a change at the root makes the tree one level taller.
    void grow(const _eNodeHndl<T>& overflow) {
        if (overflow) root = new _eBranchNode<T>(root.get(), overflow.get());
    }

    void normalise() {
        _eNodeHndl<T> shrunk = root->normalise();
        root = std::move(shrunk);
        deepCheck();
    }

    void deepCheck() const {
        if constexpr (MODELBRIDGE_DEEP_CHECK)
            if (!checkTree()) std::abort();
    }

    _eNodeHndl<T> root;  // never null
};

// Reads a sequence front to back, a leaf at a time, without the descent that `at` makes
// for every element.
template <class T>
class _eSeqReader {
public:
    explicit _eSeqReader(const _eSeq<T>& seq) : held(seq) { descend(held.rootNode()); }

    // The next element; the caller knows the size and reads no further.
    const T& next() {
        if (pos == count) nextLeaf();
        return chunk[pos++];
    }
    // The elements from here to the end of the current leaf, `length` of them, at least one;
    // the caller asks only while elements are left, and `skip`s those it takes.
    const T* run(int& length) {
        if (pos == count) nextLeaf();
        length = count - pos;
        return chunk + pos;
    }
    void skip(int n) { pos += n; }

private:
    static constexpr int maxDepth = 8;  // 32 * 16^7 elements lie beyond any int size

    // Goes down the first children from `node` to a leaf.
    void descend(const _eBaseNode<T>* node) {
        while (node->level() > 0) {
            path[depth] = node->asBranch();
            index[depth] = 0;
            ++depth;
            node = node->asBranch()->child(0);
        }
        chunk = node->asLeaf()->data();
        count = node->size();
        pos = 0;
    }

    // Climbs to the nearest branch with a child left and goes down that child.
    void nextLeaf() {
        while (depth > 0) {
            int top = depth - 1;
            if (++index[top] < path[top]->childCount()) {
                descend(path[top]->child(index[top]));
                return;
            }
            --depth;
        }
    }

    _eSeq<T> held;                          // keeps the tree alive while it is read
    const _eBranchNode<T>* path[maxDepth];  // branches from the root down to the leaf
    int index[maxDepth];                    // child taken at each branch
    int depth = 0;
    const T* chunk = nullptr;               // the current leaf's elements
    int count = 0;                          // elements in the current leaf
    int pos = 0;                            // next element of the current leaf
};

template <class T>
bool _eSeq<T>::startsWith(const _eSeq& other) const {
    int n = other.size();
    return n <= size() && equalPrefix(other, n);
}

template <class T>
bool _eSeq<T>::operator==(const _eSeq& other) const {
    if (root.get() == other.root.get()) return true;
    int n = size();
    return n == other.size() && equalPrefix(other, n);
}

template <class T>
bool _eSeq<T>::equalPrefix(const _eSeq& other, int n) const {
    if (root->isLeaf() && other.root->isLeaf()) {
        const T* a = root->asLeaf()->data();
        const T* b = other.root->asLeaf()->data();
        for (int i = 0; i < n; ++i)
            if (!(a[i] == b[i])) return false;
        return true;
    }
    _eSeqReader<T> mine(*this);
    _eSeqReader<T> theirs(other);
    for (int i = 0; i < n; ++i)
        if (!(mine.next() == theirs.next())) return false;
    return true;
}

using _eString = _eSeq<wchar_t>;

// Hands `take` the elements of `seq` in order, a leaf's run at a time: `take(elements, length)`.
// `take` must leave `seq` as it is.
template <class T, class Take>
void forEachRun(const _eSeq<T>& seq, Take take) {
    // Most strings are one leaf, read in place: the caller's sequence holds it meanwhile.
    const _eBaseNode<T>* root = seq.rootNode();
    if (root->isLeaf()) {
        if (int length = root->count(); length > 0) take(root->asLeaf()->data(), length);
        return;
    }
    _eSeqReader<T> reader(seq);
    for (int left = seq.size(), length = 0; left > 0; left -= length) {
        const T* elements = reader.run(length);
        take(elements, length);
        reader.skip(length);
    }
}

// The order of strings: unit by unit as unsigned numbers; a proper prefix is below.
inline _eRank rankUnits(const wchar_t* a, int na, const wchar_t* b, int nb) {
    int n = std::min(na, nb);
    int i = 0;
    // Ids and names share long prefixes: pass over equal units a word at a time.
    constexpr int step = int(sizeof(std::uint64_t) / sizeof(wchar_t));
    for (std::uint64_t x, y; i + step <= n; i += step) {
        std::memcpy(&x, a + i, sizeof x);
        std::memcpy(&y, b + i, sizeof y);
        if (x != y) break;
    }
    for (; i < n; ++i) {
        auto x = std::uint32_t(a[i]);
        auto y = std::uint32_t(b[i]);
        if (x != y) return x < y ? rankBelow : rankAbove;
    }
    if (na == nb) return rankSame;
    return na < nb ? rankBelow : rankAbove;
}

inline _eRank rankStrings(const _eString& a, const _eString& b) {
    const _eBaseNode<wchar_t>* left = a.rootNode();
    const _eBaseNode<wchar_t>* right = b.rootNode();
    // Strings up to a leaf long, the usual case, are compared in place.
    if (left->isLeaf() && right->isLeaf())
        return rankUnits(left->asLeaf()->data(), left->count(), right->asLeaf()->data(), right->count());
    int na = a.size();
    int nb = b.size();
    _eSeqReader<wchar_t> mine(a);
    _eSeqReader<wchar_t> theirs(b);
    // Leaf by leaf: as much of both as lies in their current leaves at once.
    for (int i = 0, n = std::min(na, nb); i < n;) {
        int left = 0;
        int right = 0;
        const wchar_t* x = mine.run(left);
        const wchar_t* y = theirs.run(right);
        int k = std::min({left, right, n - i});
        if (_eRank r = rankUnits(x, k, y, k); r != rankSame) return r;
        mine.skip(k);
        theirs.skip(k);
        i += k;
    }
    if (na == nb) return rankSame;
    return na < nb ? rankBelow : rankAbove;
}

inline _eString operator+(const _eString& a, const _eString& b) { return a.concat(b); }

// Appends the text of a string to a standard wide string.
inline void appendUnits(std::wstring& out, const _eString& s) {
    forEachRun(s, [&](const wchar_t* units, int length) { out.append(units, std::size_t(length)); });
}

// The text of a string as a standard wide string, for hosts and tests.
inline std::wstring toWString(const _eString& s) {
    std::wstring out;
    out.reserve(std::size_t(s.size()));
    appendUnits(out, s);
    return out;
}
