// Counted handles, copy on change, the freeze bracket and the default order of classes.
#include <gtest/gtest.h>

#include "support/TestValues.h"

TEST(Handle, ChangeAfterCopyNeverShowsThroughAtAnyDepth) {
    _eHndl<Probe> outer(new Probe(1));
    outer->setInner(new Probe(2));
    _eHndl<Probe> copy(outer);
    copy.uniquePointer()->setInnerValue(20);
    EXPECT_EQ(outer->getInner()->getValue(), 2);
    EXPECT_EQ(copy->getInner()->getValue(), 20);
    EXPECT_FALSE(copy == outer);
    // The copy's outer object was cloned; the old nested object lost the clone's count again.
    EXPECT_EQ(outer->getInner()->countWord(), 1);
}

TEST(Handle, FreezeBracketNestsAndThawsOnUnwind) {
    _eHndl<Probe> p(new Probe(1));
    {
        _eFreeze outer(p.get());
        EXPECT_TRUE(p->isFrozen());
        EXPECT_EQ(p->countWord(), std::int32_t(0x80000001u));
        {
            _eFreeze inner(p.get());
            EXPECT_TRUE(p->isFrozen());
        }
        EXPECT_TRUE(p->isFrozen());  // the inner bracket was not in charge
        _eHndl<Probe> copy(p);
        EXPECT_NE(copy.get(), p.get());
        // A release on a frozen object counts down without deleting it.
        p->addCount();
        EXPECT_FALSE(p->dropCount());
    }
    EXPECT_EQ(p->countWord(), 1);
    // Given the object it holds, a handle keeps it and its count; while the object is frozen it
    // gets a snapshot all the same, as any handle taken then does.
    _eHndl<Probe> same(p);
    same = p;
    EXPECT_EQ(same.get(), p.get());
    EXPECT_EQ(p->countWord(), 2);
    {
        _eFreeze frozen(p.get());
        same = p;
        EXPECT_NE(same.get(), p.get());
        EXPECT_EQ(same->getValue(), 1);
    }
    EXPECT_EQ(p->countWord(), 1);
    try {
        _eFreeze guard(p.get());
        throw 1;
    } catch (int) {
    }
    EXPECT_EQ(p->countWord(), 1);
}

TEST(Handle, DefaultRankOrdersClassesByAncestryAndName) {
    Circle circle;
    Square square;
    Disc disc;
    Probe probe;
    EXPECT_EQ(circle.rank(nullptr), rankAbove);
    EXPECT_EQ(circle.rank(&circle), rankSame);
    EXPECT_EQ(circle.rank(&square), rankBelow);  // "Circle" < "Square"
    EXPECT_EQ(square.rank(&circle), rankAbove);
    EXPECT_EQ(disc.rank(&circle), rankAbove);    // a descendant is above its ancestor
    EXPECT_EQ(circle.rank(&disc), rankBelow);
    EXPECT_EQ(disc.rank(&square), rankBelow);    // decided by "Circle" against "Square"
    EXPECT_EQ(probe.rank(&disc), rankBelow);     // no common ancestor: "Probe" against "Shape"
    EXPECT_EQ(disc._aGetFullTypeInfo()->level, 3);
    EXPECT_EQ(disc._aGetFullTypeInfo()->parent, Circle::_aTypeRecord());
}
