// The shapes that sequences take, and the sharing between their versions.
#include <gtest/gtest.h>

#include <numeric>
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
