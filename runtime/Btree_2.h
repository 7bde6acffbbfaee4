// The persistent tree under every sequence, set and map: counted nodes of fixed fan-out,
// changed in place when unique and path-copied when shared.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <new>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "runtime/Failure.h"
#include "runtime/Handle.h"
#include "runtime/Pool.h"

inline constexpr int leafCapacity = 32;    // elements in a full leaf
inline constexpr int branchCapacity = 16;  // children of a full branch

template <class T>
class _eBaseNode;
template <class T>
class _eLeafNode;
template <class T>
class _eBranchNode;

template <class T>
using _eNodeHndl = _eHndl<_eBaseNode<T>>;

// A growable array from the pool. Elements live in [0, size); the slots behind are zero bits.
// Elements are relocated bitwise: every element type is a plain value, a handle, or a pair
// of those, and none of them refers to its own address.
template <class T>
struct _eArray {
    std::uint32_t capacity = 0;  // slots allocated
    std::uint32_t size = 0;      // slots in use
    T* data = nullptr;           // the slots

    // Units of text start at 8 slots; wider elements at 4, then 8; beyond 8, multiples of 16.
    static std::uint32_t capacityFor(std::uint32_t n) {
        if constexpr (std::is_same_v<T, wchar_t>) {
            if (n <= 8) return 8;
        } else {
            if (n <= 4) return 4;
            if (n <= 8) return 8;
        }
        return (n + 15u) & ~15u;
    }

    _eArray() = default;
    _eArray(const _eArray& other) {
        if (other.size == 0) return;
        reserveExact(capacityFor(other.size));
        for (std::uint32_t i = 0; i < other.size; ++i) new (data + i) T(other.data[i]);
        size = other.size;
    }
    _eArray& operator=(const _eArray&) = delete;
    ~_eArray() {
        destroy(0, size);
        if (data != nullptr) _ePool::shared.release(data, std::size_t(capacity) * sizeof(T));
    }

    void reserve(std::uint32_t n) {
        if (n > capacity) reserveExact(capacityFor(n));
    }

    void pushBack(const T& x) {
        reserve(size + 1);
        new (data + size) T(x);
        ++size;
    }

    void insertAt(std::uint32_t i, const T& x) {
        reserve(size + 1);
        T copy(x);  // `x` may live in this array
        std::memmove(static_cast<void*>(data + i + 1), static_cast<const void*>(data + i),
                     (size - i) * sizeof(T));
        new (data + i) T(std::move(copy));
        ++size;
    }

    // Removes [start, start+count), shifts the tail down and zeroes the freed slots.
    void removeRange(std::uint32_t start, std::uint32_t count) {
        if (count == 0) return;
        destroy(start, start + count);
        std::memmove(static_cast<void*>(data + start), static_cast<const void*>(data + start + count),
                     (size - start - count) * sizeof(T));
        size -= count;
        std::memset(static_cast<void*>(data + size), 0, count * sizeof(T));
    }

    void appendRange(const T* from, std::uint32_t count) {
        reserve(size + count);
        for (std::uint32_t i = 0; i < count; ++i) new (data + size + i) T(from[i]);
        size += count;
    }

private:
    void reserveExact(std::uint32_t slots) {
        T* fresh = static_cast<T*>(_ePool::shared.allocate(std::size_t(slots) * sizeof(T)));
        if (data != nullptr) {
            std::memcpy(static_cast<void*>(fresh), static_cast<const void*>(data), size * sizeof(T));
            _ePool::shared.release(data, std::size_t(capacity) * sizeof(T));
        }
        data = fresh;
        capacity = slots;
    }

    void destroy(std::uint32_t from, std::uint32_t to) {
        if constexpr (!std::is_trivially_destructible_v<T>)
            for (std::uint32_t i = from; i < to; ++i) {
                // Handles: the object after this one is fetched while this one goes, with
                // all it holds.
                if constexpr (requires(const T& x) { x.get(); })
                    if (i + 1 < to) __builtin_prefetch(data[i + 1].get(), 1);
                data[i].~T();
            }
    }
};

// The interface of both node kinds. Changing operations expect a unique receiver.
template <class T>
class _eBaseNode : public _eAnyBase {
public:
    virtual int level() const = 0;
    virtual int size() const = 0;
    virtual _eNodeHndl<T> concat(const _eBaseNode* other) const = 0;
    virtual T* elementRef(int i) = 0;
    virtual T at(int i) const = 0;
    virtual void removeRange(int start, int count) = 0;
    virtual void insert(int i, const T& x, _eNodeHndl<T>& overflow) = 0;
    virtual void dropFront(int n) = 0;
    virtual void truncate(int n) = 0;
    virtual void pushBack(const T& x, _eNodeHndl<T>& overflow) = 0;
    virtual int find(int start, int end, const T& x) const = 0;
    virtual void swap(int i, int j) = 0;
    virtual _eNodeHndl<T> normalise() = 0;

    // Both answered without a virtual call.
    bool isLeaf() const { return level_ == 0; }
    // The number of elements, as `size()` gives it.
    int count() const;
    const _eLeafNode<T>* asLeaf() const { return static_cast<const _eLeafNode<T>*>(this); }
    const _eBranchNode<T>* asBranch() const { return static_cast<const _eBranchNode<T>*>(this); }

    // True when the subtree keeps every invariant of the tree's shape. `isRoot` allows emptiness.
    bool checkTree(bool isRoot = true) const;

protected:
    _eBaseNode() = default;
    explicit _eBaseNode(int level) : level_(level) {}
    _eBaseNode(const _eBaseNode&) = default;

    // Height above the leaves, 0 for a leaf; a branch's children are one lower. It sits in the
    // padding behind the count word.
    int level_ = 0;
};

// The one empty leaf of each element type, shared by every empty value.
template <class T>
const _eNodeHndl<T>& _aEmptyLeaf() {
    static const _eNodeHndl<T> empty(new _eLeafNode<T>());
    return empty;
}

template <class T>
class _eLeafNode final : public _eBaseNode<T> {
public:
    _eLeafNode() = default;
    explicit _eLeafNode(const T& x) { elements.pushBack(x); }
    _eLeafNode(int n, const T* from) { elements.appendRange(from, std::uint32_t(n)); }
    _eLeafNode(const _eLeafNode& other) : _eBaseNode<T>(other), elements(other.elements) {}

    _eAnyBase* clone() const override { return new _eLeafNode(*this); }

    // A leaf equals a leaf of the same size with equal elements, in order.
    bool isEqual(const _eAnyBase* other) const override {
        if (other == this) return true;
        if (other == nullptr || typeid(*other) != typeid(*this)) return false;
        const _eLeafNode& that = *static_cast<const _eLeafNode*>(other);
        if (that.elements.size != elements.size) return false;
        for (std::uint32_t i = 0; i < elements.size; ++i)
            if (!(elements.data[i] == that.elements.data[i])) return false;
        return true;
    }

    int level() const override { return 0; }
    int size() const override { return int(elements.size); }

    _eNodeHndl<T> concat(const _eBaseNode<T>* other) const override {
        int total = size() + other->size();
        if (other->isLeaf()) {
            const _eLeafNode* right = other->asLeaf();
            if (total <= leafCapacity) {
                _eHndl<_eLeafNode> copy(const_cast<_eLeafNode*>(this));
                copy.makeUnique();
                copy->appendAll(*right);
                return copy.get();
            }
            int take = leafCapacity - size();
            if (take == 0)
                return new _eBranchNode<T>(const_cast<_eLeafNode*>(this), const_cast<_eLeafNode*>(right));
            _eHndl<_eLeafNode> left(const_cast<_eLeafNode*>(this));
            left.makeUnique();
            left->appendSome(*right, take);
            _eHndl<_eLeafNode> rest(const_cast<_eLeafNode*>(right));
            rest.makeUnique();
            rest->dropFront(take);
            return new _eBranchNode<T>(left.get(), rest.get());
        }
        if (other->level() > 0) return other->asBranch()->prependNode(this);
        raiseNoChoice(_xPlaces::leafConcat);
    }

    T* elementRef(int i) override { return elements.data + i; }
    T at(int i) const override { return elements.data[i]; }

    void removeRange(int start, int count) override {
        _eFreeze freeze(this);
        elements.removeRange(std::uint32_t(start), std::uint32_t(count));
    }

    void insert(int i, const T& x, _eNodeHndl<T>& overflow) override {
        _eFreeze freeze(this);
        int n = size();
        if (n < leafCapacity) {
            elements.insertAt(std::uint32_t(i), x);
            overflow.reset();
        } else if (n == leafCapacity && i == leafCapacity) {
            overflow = new _eLeafNode(x);
        } else if (n == leafCapacity && i < leafCapacity && i >= 0) {
            overflow = new _eLeafNode(elements.data[n - 1]);
            elements.removeRange(std::uint32_t(n - 1), 1);
            elements.insertAt(std::uint32_t(i), x);
        } else {
            raiseNoChoice(_xPlaces::leafInsert);
        }
    }

    void dropFront(int n) override { removeRange(0, n); }
    void truncate(int n) override { removeRange(n, size() - n); }

    // Appends `n` elements that fit behind the present ones.
    void appendRange(const T* from, int n) {
        _eFreeze freeze(this);
        elements.appendRange(from, std::uint32_t(n));
    }

    void pushBack(const T& x, _eNodeHndl<T>& overflow) override {
        _eFreeze freeze(this);
        int n = size();
        if (n < leafCapacity) {
            elements.pushBack(x);
            overflow.reset();
        } else if (n == leafCapacity) {
            overflow = new _eLeafNode(x);
        } else {
            raiseNoChoice(_xPlaces::leafPushBack);
        }
    }

    int find(int start, int end, const T& x) const override {
        for (int i = start; i < end; ++i)
            if (elements.data[i] == x) return i;
        return end;
    }

    void swap(int i, int j) override {
        _eFreeze freeze(this);
        std::swap(elements.data[i], elements.data[j]);
    }

    // An emptied leaf gives way to the shared empty leaf.
    _eNodeHndl<T> normalise() override {
        if (elements.size == 0) return _aEmptyLeaf<T>();
        return this;
    }

    const T* data() const { return elements.data; }

    void appendAll(const _eLeafNode& other) { appendSome(other, other.size()); }
    void appendSome(const _eLeafNode& other, int n) {
        _eFreeze freeze(this);
        elements.appendRange(other.elements.data, std::uint32_t(n));
    }

private:
    _eArray<T> elements;  // the elements, by value
};

template <class T>
class _eBranchNode final : public _eBaseNode<T> {
    using _eBaseNode<T>::level_;

public:
    // A branch one level above its only child.
    explicit _eBranchNode(_eBaseNode<T>* child) : _eBaseNode<T>(child->level() + 1), total(child->size()) {
        children.pushBack(child);
    }
    // A branch one level above two children of equal level.
    _eBranchNode(_eBaseNode<T>* first, _eBaseNode<T>* second)
        : _eBaseNode<T>(first->level() + 1), total(first->size() + second->size()) {
        children.pushBack(first);
        children.pushBack(second);
    }
    _eBranchNode(const _eBranchNode& other)
        : _eBaseNode<T>(other), children(other.children), total(other.total) {}

    _eAnyBase* clone() const override { return new _eBranchNode(*this); }

    // Shape-sensitive: same level, same number of children, children pairwise equal.
    bool isEqual(const _eAnyBase* other) const override {
        if (other == this) return true;
        if (other == nullptr || typeid(*other) != typeid(*this)) return false;
        const _eBranchNode& that = *static_cast<const _eBranchNode*>(other);
        if (that.level_ != level_ || that.children.size != children.size) return false;
        for (std::uint32_t i = 0; i < children.size; ++i)
            if (!(children.data[i] == that.children.data[i])) return false;
        return true;
    }

    int level() const override { return level_; }
    int size() const override { return total; }
    int childCount() const { return int(children.size); }
    const _eBaseNode<T>* child(int i) const { return children.data[i].get(); }

    _eNodeHndl<T> concat(const _eBaseNode<T>* other) const override {
        int otherLevel = other->level();
        if (otherLevel == level_) return mergeLevel(this, other->asBranch());
        if (otherLevel < level_) {
            _eNodeHndl<T> r = lastChild()->concat(other);
            _eHndl<_eBranchNode> copy(new _eBranchNode(*this));
            if (r->level() == level_ - 1) {
                copy->replaceChild(childCount() - 1, r.get());
                copy->total += other->size();
                return copy.get();
            }
            if (r->level() == level_) {
                copy->removeChildren(childCount() - 1, childCount());
                return mergeLevel(copy.get(), r->asBranch());
            }
            raiseNoChoice(_xPlaces::branchConcatInner);
        }
        if (otherLevel > level_) return other->asBranch()->prependNode(this);
        raiseNoChoice(_xPlaces::branchConcatLevel);
    }

    T* elementRef(int i) override {
        auto [c, o] = locate(i);
        return uniqueChild(c)->elementRef(o);
    }

    T at(int i) const override { return ref(i); }

    // The element itself. Walks down without virtual calls: below a branch of level 1 every
    // child is a leaf.
    const T& ref(int i) const {
        const _eBranchNode* node = this;
        while (true) {
            auto [c, o] = node->locate(i);
            const _eBaseNode<T>* next = node->children.data[c].get();
            if (node->level_ == 1) return static_cast<const _eLeafNode<T>*>(next)->data()[o];
            node = static_cast<const _eBranchNode*>(next);
            i = o;
        }
    }

    void removeRange(int start, int count) override {
        if (count == 0) return;
        _eFreeze freeze(this);
        auto [c1, o1] = locate(start);
        auto [c2, o2] = locate(start + count);
        if (c1 == c2) {
            uniqueChild(c1)->removeRange(o1, count);
        } else {
            int kept = c1;
            if (o1 != 0) {
                uniqueChild(c1)->truncate(o1);
                kept = c1 + 1;
            }
            children.removeRange(std::uint32_t(kept), std::uint32_t(c2 - kept));
            if (o2 != 0) uniqueChild(kept)->dropFront(o2);
        }
        total -= count;
    }

    void insert(int i, const T& x, _eNodeHndl<T>& overflow) override {
        if (i == total) {
            pushBack(x, overflow);
            return;
        }
        _eFreeze freeze(this);
        auto [c, o] = locate(i);
        _eNodeHndl<T> spill;
        int before;
        if (o != 0 || c == 0) {
            _eBaseNode<T>* target = uniqueChild(c);
            before = target->size();
            target->insert(o, x, spill);
        } else {
            c = c - 1;
            _eBaseNode<T>* target = uniqueChild(c);
            before = target->size();
            target->pushBack(x, spill);
        }
        total += children.data[c]->size() - before;
        int n = childCount();
        if (!spill) {
            overflow.reset();
        } else if (n < branchCapacity) {
            children.insertAt(std::uint32_t(c + 1), spill);
            total += spill->size();
            overflow.reset();
        } else if (n == branchCapacity) {
            if (c == n - 1) {
                overflow = new _eBranchNode(spill.get());
            } else if (c < n - 1) {
                overflow = new _eBranchNode(children.data[n - 1].get());
                total -= children.data[n - 1]->size();
                total += spill->size();
                children.removeRange(std::uint32_t(n - 1), 1);
                children.insertAt(std::uint32_t(c + 1), spill);
            } else {
                raiseNoChoice(_xPlaces::branchInsertIndex);
            }
        } else {
            raiseNoChoice(_xPlaces::branchInsertCount);
        }
    }

    void dropFront(int n) override {
        _eFreeze freeze(this);
        auto [c, o] = locate(n);
        children.removeRange(0, std::uint32_t(c));
        if (o != 0) uniqueChild(0)->dropFront(o);
        total -= n;
    }

    void truncate(int n) override {
        _eFreeze freeze(this);
        auto [c, o] = locate(n);
        int keep = c;
        if (o != 0) {
            uniqueChild(c)->truncate(o);
            keep = c + 1;
        }
        children.removeRange(std::uint32_t(keep), std::uint32_t(childCount() - keep));
        total = n;
    }

    void pushBack(const T& x, _eNodeHndl<T>& overflow) override {
        _eFreeze freeze(this);
        int n = childCount();
        if (n == 0) {
            // A freshly emptied branch: a chain of one-child branches down to a one-element leaf.
            _eNodeHndl<T> chain(new _eLeafNode<T>(x));
            for (int l = 1; l < level_; ++l) chain = new _eBranchNode(chain.get());
            children.pushBack(chain);
            total = 1;
            overflow.reset();
            return;
        }
        _eNodeHndl<T> spill;
        uniqueChild(n - 1)->pushBack(x, spill);
        if (!spill) {
            ++total;
            overflow.reset();
        } else if (n < branchCapacity) {
            children.pushBack(spill);
            ++total;
            overflow.reset();
        } else if (n == branchCapacity) {
            overflow = new _eBranchNode(spill.get());
        } else {
            raiseNoChoice(_xPlaces::branchPushBack);
        }
    }

    int find(int start, int end, const T& x) const override {
        auto [c, o] = locate(start);
        int base = start - o;
        while (end > base) {
            const _eBaseNode<T>* node = children.data[c].get();
            int s = node->size();
            int limit = std::min(s, end - base);
            int r = node->find(o, limit, x);
            if (r != limit) return r + base;
            base += s;
            o = 0;
            ++c;
        }
        return end;
    }

    void swap(int i, int j) override {
        _eFreeze freeze(this);
        // The path to `i` is unique once reached, so the second walk leaves it in place.
        T* first = elementRef(i);
        T* second = elementRef(j);
        std::swap(*first, *second);
    }

    _eNodeHndl<T> normalise() override {
        int n = childCount();
        if (n >= 2) return this;
        if (n == 1) return uniqueChild(0)->normalise();
        return _aEmptyLeaf<T>();
    }

    // This node is higher than `other`: the concatenation of `other` in front of it.
    _eNodeHndl<T> prependNode(const _eBaseNode<T>* other) const {
        _eNodeHndl<T> r = level_ - 1 != other->level() ? firstChild()->asBranch()->prependNode(other)
                                                       : other->concat(firstChild());
        _eHndl<_eBranchNode> copy(new _eBranchNode(*this));
        if (r->level() == level_ - 1) {
            copy->replaceChild(0, r.get());
            copy->total += other->size();
            return copy.get();
        }
        if (r->level() == level_) {
            copy->removeChildren(0, 1);
            return r->concat(copy.get());
        }
        raiseNoChoice(_xPlaces::prependNode);
    }

    // Appends a whole leaf at the right edge, as the bulk builder does.
    void appendLeaf(_eLeafNode<T>* leaf, _eNodeHndl<T>& overflow) {
        _eFreeze freeze(this);
        int n = childCount();
        if (level_ == 1) {
            if (n < branchCapacity) {
                children.pushBack(leaf);
                total += leaf->size();
                overflow.reset();
            } else {
                overflow = new _eBranchNode(leaf);
            }
        } else if (level_ > 1) {
            _eNodeHndl<T> spill;
            static_cast<_eBranchNode*>(uniqueChild(n - 1))->appendLeaf(leaf, spill);
            if (!spill) {
                total += leaf->size();
                overflow.reset();
            } else if (n >= branchCapacity) {
                overflow = new _eBranchNode(spill.get());
            } else {
                children.pushBack(spill);
                total += leaf->size();
                overflow.reset();
            }
        } else {
            raiseNoChoice(_xPlaces::appendLeaf);
        }
    }

    // Two branches of one level: one node if their children fit below 16, else a new parent.
    static _eNodeHndl<T> mergeLevel(const _eBranchNode* a, const _eBranchNode* b) {
        int sum = a->childCount() + b->childCount();
        if (sum >= branchCapacity)
            return new _eBranchNode(const_cast<_eBranchNode*>(a), const_cast<_eBranchNode*>(b));
        if (sum < branchCapacity) {
            _eHndl<_eBranchNode> copy(const_cast<_eBranchNode*>(a));
            copy.makeUnique();
            copy->appendChildren(*b);
            return copy.get();
        }
        raiseNoChoice(_xPlaces::mergeLevel);
    }

    // The child that holds position `pos`, and the offset inside it. A position on the
    // boundary between two children belongs to the later one.
    std::pair<int, int> locate(int pos) const {
        int n = childCount();
        if (pos == total) return {n, 0};
        int i = 0;
        while (pos != 0 && i != n) {
            int c = childSize(i);
            if (pos < c) break;
            pos -= c;
            ++i;
        }
        return {i, pos};
    }

    // The size of child i, read straight from the final class the level tells.
    int childSize(int i) const {
        const _eBaseNode<T>* c = children.data[i].get();
        if (level_ == 1) return static_cast<const _eLeafNode<T>*>(c)->size();
        return static_cast<const _eBranchNode*>(c)->total;
    }

private:
    const _eBaseNode<T>* firstChild() const { return children.data[0].get(); }
    const _eBaseNode<T>* lastChild() const { return children.data[children.size - 1].get(); }

    _eBaseNode<T>* uniqueChild(int i) { return children.data[i].uniquePointer(); }

    // The caller accounts for the elements that the new child adds.
    void replaceChild(int i, _eBaseNode<T>* node) { children.data[i] = node; }

    void removeChildren(int from, int to) {
        for (int i = from; i < to; ++i) total -= children.data[i]->size();
        children.removeRange(std::uint32_t(from), std::uint32_t(to - from));
    }

    void appendChildren(const _eBranchNode& other) {
        _eFreeze freeze(this);
        children.appendRange(other.children.data, other.children.size);
        total += other.total;
    }

    _eArray<_eNodeHndl<T>> children;    // at most 16
    int total = 0;                      // elements below this node
};

template <class T>
int _eBaseNode<T>::count() const {
    return level_ == 0 ? asLeaf()->size() : asBranch()->size();  // both classes are final: no virtual call
}

template <class T>
bool _eBaseNode<T>::checkTree(bool isRoot) const {
    if (isFrozen()) return false;
    if (level() == 0) {
        int n = size();
        return n <= leafCapacity && (isRoot || n > 0);
    }
    const _eBranchNode<T>* branch = asBranch();
    int n = branch->childCount();
    if (n > branchCapacity || (!isRoot && n == 0)) return false;
    int sum = 0;
    for (int i = 0; i < n; ++i) {
        const _eBaseNode<T>* child = branch->child(i);
        if (child == nullptr || child->level() != level() - 1) return false;
        if (!child->checkTree(false)) return false;
        sum += child->size();
    }
    return sum == size();
}
