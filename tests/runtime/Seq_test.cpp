// The shapes that sequences take, and the sharing between their versions.
#include <gtest/gtest.h>

#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "runtime/Seq.h"

namespace {

std::vector<int> iota(int from, int n) {
    std::vector<int> v(static_cast<std::size_t>(n));
    std::iota(v.begin(), v.end(), from);
    return v;
}

_eSeq<int> appendedSeq(int from, int n) {
    _eSeq<int> s;
    for (int i = 0; i < n; ++i) s.pushBack(from + i);
    return s;
}

std::vector<int> contents(const _eSeq<int>& s) {
    std::vector<int> v;
    for (int i = 0; i < s.size(); ++i) v.push_back(s.at(i));
    return v;
}

const _eBranchNode<int>* branch(const _eBaseNode<int>* node) {
    EXPECT_GT(node->level(), 0);
    return node->asBranch();
}

// Sizes of the children of a branch, in order.
std::vector<int> childSizes(const _eBaseNode<int>* node) {
    std::vector<int> sizes;
    const _eBranchNode<int>* b = branch(node);
    for (int i = 0; i < b->childCount(); ++i) sizes.push_back(b->child(i)->size());
    return sizes;
}

}  // namespace

TEST(Seq, ThirtyTwoElementsAreOneLeafAndTheNextStartsASibling) {
    _eSeq<int> s = appendedSeq(0, 32);
    EXPECT_EQ(s.rootNode()->level(), 0);
    s.pushBack(32);
    EXPECT_EQ(s.rootNode()->level(), 1);
    EXPECT_EQ(childSizes(s.rootNode()), (std::vector<int>{32, 1}));
    EXPECT_EQ(contents(s), iota(0, 33));

    std::vector<int> v = iota(0, 33);
    _eSeq<int> built(32, v.data());
    EXPECT_EQ(built.rootNode()->level(), 0);
    _eSeq<int> bulk(33, v.data());
    EXPECT_EQ(childSizes(bulk.rootNode()), (std::vector<int>{32, 1}));
    EXPECT_TRUE(bulk == s);
}

TEST(Seq, FiveHundredTwelveAppendsFillOneBranchAndTheNextGrowsTheTree) {
    _eSeq<int> s = appendedSeq(0, 512);
    EXPECT_EQ(s.rootNode()->level(), 1);
    EXPECT_EQ(childSizes(s.rootNode()), std::vector<int>(16, 32));
    s.pushBack(512);
    const _eBaseNode<int>* root = s.rootNode();
    EXPECT_EQ(root->level(), 2);
    EXPECT_EQ(childSizes(root), (std::vector<int>{512, 1}));
    const _eBaseNode<int>* right = branch(root)->child(1);
    EXPECT_EQ(right->level(), 1);
    EXPECT_EQ(childSizes(right), (std::vector<int>{1}));
    EXPECT_EQ(contents(s), iota(0, 513));

    _eSeq<int> big = appendedSeq(0, 8193);
    EXPECT_EQ(big.rootNode()->level(), 3);
    EXPECT_TRUE(big.checkTree());
}

TEST(Seq, BranchesMergeOnlyBelowSixteenChildren) {
    _eSeq<int> seven = appendedSeq(0, 7 * 32);
    _eSeq<int> eight = appendedSeq(1000, 8 * 32);
    _eSeq<int> merged = seven.concat(eight);
    EXPECT_EQ(merged.rootNode()->level(), 1);
    EXPECT_EQ(branch(merged.rootNode())->childCount(), 15);

    _eSeq<int> notMerged = eight.concat(eight);
    EXPECT_EQ(notMerged.rootNode()->level(), 2);
    EXPECT_EQ(childSizes(notMerged.rootNode()), (std::vector<int>{256, 256}));
    EXPECT_EQ(branch(notMerged.rootNode())->child(0), eight.rootNode());
    EXPECT_EQ(contents(merged).size(), 15u * 32u);
}

TEST(Seq, AppendedRangesFillTheLastLeafAndLeaveCopiesAlone) {
    const int sizes[] = {0, 1, 20, 31, 32, 33, 600};
    const int lengths[] = {0, 1, 11, 12, 13, 40, 700};
    for (int size : sizes) {
        for (int length : lengths) {
            SCOPED_TRACE(testing::Message() << size << " + " << length);
            _eSeq<int> s = appendedSeq(0, size);
            _eSeq<int> before = s;
            std::vector<int> more = iota(size, length);
            s.appendRange(length, more.data());
            EXPECT_EQ(contents(s), iota(0, size + length));
            EXPECT_EQ(contents(before), iota(0, size));
        }
    }
}

// Strings rank unit by unit as unsigned numbers, a proper prefix below, however their units lie
// in leaves: built at once, appended one by one, or joined from pieces of other lengths.
TEST(Seq, StringsRankByUnitsWhateverTheirLeaves) {
    std::mt19937 rng(7);
    auto shapes = [](const std::wstring& text) {
        _eString appended;
        for (wchar_t c : text) appended.pushBack(c);
        std::size_t cut = text.size() / 3;
        _eString joined = _eString(std::wstring_view(text).substr(0, cut)) + _eString(std::wstring_view(text).substr(cut));
        return std::vector<_eString>{_eString(std::wstring_view(text)), appended, joined};
    };
    auto expected = [](const std::wstring& a, const std::wstring& b) {
        for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i)
            if (a[i] != b[i]) return std::uint32_t(a[i]) < std::uint32_t(b[i]) ? rankBelow : rankAbove;
        return a.size() == b.size() ? rankSame : a.size() < b.size() ? rankBelow : rankAbove;
    };
    for (int round = 0; round < 300; ++round) {
        std::wstring a(std::size_t(rng() % 100), L'x');
        for (wchar_t& c : a) c = wchar_t(L'a' + rng() % 3);
        std::wstring b = a;
        switch (rng() % 4) {
            case 0: break;                                      // equal
            case 1: b.resize(rng() % (b.size() + 1)); break;    // a prefix
            case 2: if (!b.empty()) b[rng() % b.size()] = wchar_t(0x80000000u); break;  // a unit with the top bit
            default: if (!b.empty()) b[rng() % b.size()] += 1; break;
        }
        for (const _eString& x : shapes(a))
            for (const _eString& y : shapes(b)) {
                ASSERT_EQ(rankStrings(x, y), expected(a, b)) << "round " << round;
                ASSERT_EQ(rankStrings(y, x), expected(b, a)) << "round " << round;
            }
    }
}
