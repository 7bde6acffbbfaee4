// Small value classes of the test suite's own, shaped like the library's generated classes.
#pragma once

#include "runtime/Class.h"
#include "support/TestModule.h"

// A value with a plain field and a nested value, to observe sharing and cloning.
class Probe : public _eClass<Probe, _eAny> {
public:
    static constexpr _aTypeSlot _aType{&testModule, 0};

    explicit Probe(int value = 0) : value(value) {}
    Probe(const Probe& other) = default;

    bool equalFields(const Probe& other) const { return value == other.value && inner == other.inner; }

    int getValue() const { return value; }
    const _eHndl<Probe>& getInner() const { return inner; }

    void setValue(int v) {
        _eFreeze freeze(this);
        value = v;
    }
    void setInner(const _eHndl<Probe>& p) {
        _eFreeze freeze(this);
        inner = p;
    }
    // Changes the nested value, through the path of handles.
    void setInnerValue(int v) {
        _eFreeze freeze(this);
        inner.uniquePointer()->setValue(v);
    }

private:
    int value;              // a plain field
    _eHndl<Probe> inner;    // a nested value
};

// A sibling class of `Probe` below a common parent, for the default order of classes.
class Shape : public _eClass<Shape, _eAny> {
public:
    static constexpr _aTypeSlot _aType{&testModule, 1};
    bool equalFields(const Shape&) const { return true; }
};

class Circle : public _eClass<Circle, Shape> {
public:
    static constexpr _aTypeSlot _aType{&testModule, 2};
    bool equalFields(const Circle& other) const { return Shape::equalFields(other); }
};

class Square : public _eClass<Square, Shape> {
public:
    static constexpr _aTypeSlot _aType{&testModule, 3};
    bool equalFields(const Square& other) const { return Shape::equalFields(other); }
};

class Disc : public _eClass<Disc, Circle> {
public:
    static constexpr _aTypeSlot _aType{&testModule, 4};
    bool equalFields(const Disc& other) const { return Circle::equalFields(other); }
};

// Ordered by `key` alone but equal only when `tag` agrees too: two different values of one rank.
class Tagged : public _eClass<Tagged, _eAny> {
public:
    static constexpr _aTypeSlot _aType{&testModule, 5};

    Tagged(int key, int tag) : key(key), tag(tag) {}

    bool equalFields(const Tagged& other) const { return key == other.key && tag == other.tag; }
    _eRank rank(const _eAnyBase* other) const override {
        const auto* that = dynamic_cast<const Tagged*>(other);
        if (that == nullptr) return defaultRank(other);
        return key < that->key ? rankBelow : (key > that->key ? rankAbove : rankSame);
    }

    int getKey() const { return key; }
    int getTag() const { return tag; }

private:
    int key;  // decides the order
    int tag;  // tells apart values of one order
};
