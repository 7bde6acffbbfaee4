// Comparators, sets and maps: the order of elements and what lookups find.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "runtime/Map.h"
#include "support/TestValues.h"

namespace {

using StringOrder = _n1_SimpleComparator<_eString>;

using TaggedSet = _eSet<_eHndl<Tagged>>;

// The elements of a set of tagged values, each as key * 100 + tag.
std::vector<int> tags(const TaggedSet& set) {
    std::vector<int> out;
    for (int i = 0; i < set.size(); ++i) out.push_back(set.at(i)->getKey() * 100 + set.at(i)->getTag());
    return out;
}

_eHndl<Tagged> tagged(int key, int tag) { return _eHndl<Tagged>(new Tagged(key, tag)); }

// A set of tagged values added in the order given, each written key * 100 + tag.
TaggedSet setOf(std::initializer_list<int> values) {
    TaggedSet set;
    for (int value : values) set.add(tagged(value / 100, value % 100));
    return set;
}

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

    TaggedSet set;
    set.add(tagged(3, 0));
    set.add({});
    set.add(tagged(1, 0));
    EXPECT_TRUE(set.at(0).isNull());
    EXPECT_EQ(set.at(1)->getKey(), 1);
}

TEST(Set, EqualRanksStaySideBySideInArrivalOrder) {
    TaggedSet set = setOf({201, 101, 202, 301, 203, 202});  // the last is equal to one present: no change
    EXPECT_EQ(tags(set), (std::vector<int>{101, 201, 202, 203, 301}));
    EXPECT_TRUE(set.contains(tagged(2, 3)));
    EXPECT_FALSE(set.contains(tagged(2, 4)));
    auto [index, end] = set.lookup(tagged(2, 2));
    EXPECT_EQ(index, 2);
    EXPECT_EQ(end, 4);
}

TEST(Set, AddAllPutsTheSmallerIntoTheLarger) {
    const TaggedSet small = setOf({109, 509}), large = setOf({101, 201, 501}), other = setOf({107, 607});
    // The smaller one's elements come behind the larger one's of the same rank, either way round;
    // with equal sizes the argument's elements come first.
    const struct {
        TaggedSet into;
        TaggedSet added;
        std::vector<int> expected;
    } rows[] = {
        {large, small, {101, 109, 201, 501, 509}},
        {small, large, {101, 109, 201, 501, 509}},
        {small, other, {107, 109, 509, 607}},
        {other, small, {109, 107, 509, 607}},
    };
    for (const auto& row : rows) {
        TaggedSet joined = row.into;
        joined.addAll(row.added);
        EXPECT_EQ(tags(joined), row.expected);
    }
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
    EXPECT_TRUE(setOf({101, 102}) == setOf({102, 101}));
}

// A set of strings finds where each string is, or where it would go, as a sorted list of the
// same strings does: units compared as unsigned numbers, a prefix first.
TEST(Set, StringLookupsAgreeWithASortedList) {
    std::mt19937 random(7);
    const wchar_t units[] = {L'a', L'b', L'z', wchar_t(0xE9), wchar_t(0x10FFFF), wchar_t(-1)};
    auto below = [](const std::wstring& a, const std::wstring& b) {
        return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), [](wchar_t x, wchar_t y) {
            return std::uint32_t(x) < std::uint32_t(y);
        });
    };
    auto anyString = [&] {
        // Long shared heads put the strings over several leaves.
        std::wstring text = random() % 3 == 0 ? std::wstring(40, L'h') : std::wstring();
        for (int n = int(random() % 4); n > 0; --n) text += units[random() % std::size(units)];
        return text;
    };
    for (int round = 0; round < 200; ++round) {
        _eSet<_eString> set;
        std::vector<std::wstring> sorted;
        for (int n = int(random() % 12); n > 0; --n) {
            std::wstring text = anyString();
            set.add(_eString(std::wstring_view(text)));
            auto at = std::lower_bound(sorted.begin(), sorted.end(), text, below);
            if (at == sorted.end() || *at != text) sorted.insert(at, text);
        }
        ASSERT_EQ(set.size(), int(sorted.size()));
        for (int q = 0; q < 20; ++q) {
            std::wstring text = anyString();
            int place = int(std::lower_bound(sorted.begin(), sorted.end(), text, below) - sorted.begin());
            bool present = place < int(sorted.size()) && sorted[std::size_t(place)] == text;
            auto [index, end] = set.lookup(_eString(std::wstring_view(text)));
            EXPECT_EQ(index, place);
            EXPECT_EQ(end, present ? place + 1 : place);
            EXPECT_EQ(set.contains(_eString(std::wstring_view(text))), present);
        }
    }
}
