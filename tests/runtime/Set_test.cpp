// Comparators, sets and maps: the order of elements and what lookups find.
#include <gtest/gtest.h>

#include <vector>

#include "runtime/Map.h"
#include "support/TestValues.h"

namespace {

using StringOrder = _n1_SimpleComparator<_eString>;

std::vector<int> tags(const _eSet<_eHndl<Tagged>>& set) {
    std::vector<int> out;
    for (int i = 0; i < set.size(); ++i) out.push_back(set.at(i)->getKey() * 100 + set.at(i)->getTag());
    return out;
}

_eHndl<Tagged> tagged(int key, int tag) { return _eHndl<Tagged>(new Tagged(key, tag)); }

}  // namespace

TEST(Comparator, StringsCompareUnitByUnitUnsignedWithPrefixesBelow) {
    const _n1_Comparator<_eString>& cmp = StringOrder::instance();
    EXPECT_EQ(cmp.compare(L"ab", L"abc"), rankBelow);
    EXPECT_EQ(cmp.compare(L"abc", L"ab"), rankAbove);
    EXPECT_EQ(cmp.compare(L"abc", L"abd"), rankBelow);
    EXPECT_EQ(cmp.compare(L"b", L"abc"), rankAbove);
    EXPECT_EQ(cmp.compare(L"", L""), rankSame);
    EXPECT_EQ(cmp.compare(L"", L"a"), rankBelow);
    // Units above 0x7FFF are large values, not negative ones.
    EXPECT_EQ(cmp.compare(_eString(wchar_t(0x8000)), L"z"), rankAbove);
    EXPECT_EQ(cmp.compare(_eString(wchar_t(0xFFFF)), _eString(wchar_t(0x7FFF))), rankAbove);
    EXPECT_EQ(_n1_SimpleComparator<wchar_t>::instance().compare(wchar_t(0xFFFF), L'a'), rankAbove);
}

TEST(Comparator, HandlesPutNullFirst) {
    using HandleOrder = _n1_SimpleComparator<_eHndl<Tagged>>;
    EXPECT_EQ(HandleOrder::order({}, {}), rankSame);
    EXPECT_EQ(HandleOrder::order({}, tagged(0, 0)), rankBelow);
    EXPECT_EQ(HandleOrder::order(tagged(0, 0), {}), rankAbove);
    EXPECT_EQ(HandleOrder::order(tagged(1, 0), tagged(2, 0)), rankBelow);
    EXPECT_EQ(HandleOrder::order(tagged(1, 5), tagged(1, 0)), rankSame);

    _eSet<_eHndl<Tagged>> set;
    set.add(tagged(3, 0));
    set.add({});
    set.add(tagged(1, 0));
    EXPECT_TRUE(set.at(0).isNull());
    EXPECT_EQ(set.at(1)->getKey(), 1);
}

TEST(Set, EqualRanksStaySideBySideInArrivalOrder) {
    _eSet<_eHndl<Tagged>> set;
    set.add(tagged(2, 1));
    set.add(tagged(1, 1));
    set.add(tagged(2, 2));
    set.add(tagged(3, 1));
    set.add(tagged(2, 3));
    set.add(tagged(2, 2));  // equal to one present: no change
    EXPECT_EQ(tags(set), (std::vector<int>{101, 201, 202, 203, 301}));
    EXPECT_TRUE(set.contains(tagged(2, 3)));
    EXPECT_FALSE(set.contains(tagged(2, 4)));
    auto [index, end] = set.lookup(tagged(2, 2));
    EXPECT_EQ(index, 2);
    EXPECT_EQ(end, 4);
}

TEST(Set, AddAllPutsTheSmallerIntoTheLarger) {
    _eSet<_eHndl<Tagged>> small;
    small.add(tagged(1, 9));
    small.add(tagged(5, 9));
    _eSet<_eHndl<Tagged>> large;
    large.add(tagged(1, 1));
    large.add(tagged(2, 1));
    large.add(tagged(5, 1));

    // The smaller one's elements come behind the larger one's of the same rank, either way round.
    _eSet<_eHndl<Tagged>> a = large;
    a.addAll(small);
    EXPECT_EQ(tags(a), (std::vector<int>{101, 109, 201, 501, 509}));
    _eSet<_eHndl<Tagged>> b = small;
    b.addAll(large);
    EXPECT_EQ(tags(b), (std::vector<int>{101, 109, 201, 501, 509}));

    // With equal sizes the argument's elements come first.
    _eSet<_eHndl<Tagged>> c;
    c.add(tagged(1, 7));
    c.add(tagged(6, 7));
    _eSet<_eHndl<Tagged>> d = small;
    d.addAll(c);
    EXPECT_EQ(tags(d), (std::vector<int>{107, 109, 509, 607}));
    _eSet<_eHndl<Tagged>> e = c;
    e.addAll(small);
    EXPECT_EQ(tags(e), (std::vector<int>{109, 107, 509, 607}));

}

TEST(Set, EqualityIgnoresTheOrderOfBuilding) {
    _eSet<_eString> a(L"pear", L"apple", L"fig");
    _eSet<_eString> b(L"fig", L"pear", L"apple", L"fig");
    EXPECT_TRUE(a == b);
    b.add(L"kiwi");
    EXPECT_FALSE(a == b);
    _eSet<_eString> c(L"pear", L"apple", L"plum");
    EXPECT_FALSE(a == c);

    // Rank ties apart, different arrival orders still make equal sets.
    _eSet<_eHndl<Tagged>> x;
    x.add(tagged(1, 1));
    x.add(tagged(1, 2));
    _eSet<_eHndl<Tagged>> y;
    y.add(tagged(1, 2));
    y.add(tagged(1, 1));
    EXPECT_TRUE(x == y);
}
