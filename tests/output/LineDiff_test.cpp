// Lines compared: the shared lines, the three-way merge and the unified diff.
#include "output/LineDiff.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

// "a b c" as the lines "a\n", "b\n", "c\n"; "_" stands for a blank within a line.
Lines lines(const std::string& words) {
    Lines out;
    for (std::size_t at = 0; at < words.size();) {
        std::size_t end = words.find(' ', at);
        end = end == std::string::npos ? words.size() : end;
        std::string line = words.substr(at, end - at);
        std::replace(line.begin(), line.end(), '_', ' ');
        out.push_back(line + "\n");
        at = end + 1;
    }
    return out;
}

}  // namespace

TEST(LineDiff, SplitAndJoinKeepEveryByte) {
    for (const char* text : {"", "a", "a\n", "a\nb", "\n\n", "a\r\nb\n"})
        EXPECT_EQ(joinLines(splitLines(text)), text) << text;
    EXPECT_EQ(splitLines("a\nb").size(), 2u);
}

TEST(LineDiff, MatchesKeepTheLongestRunInOrder) {
    const std::size_t none = LineDiff::none;
    struct Row {
        const char *before, *after;
        std::vector<std::size_t> match;
    };
    const Row rows[] = {
        {"a b c", "a b c", {0, 1, 2}},
        {"a b c", "a x c", {0, none, 2}},
        {"a b c", "x a b c", {1, 2, 3}},
        {"a b c d", "a c b d", {0, none, 1, 3}},
        {"a b", "", {none, none}},
        {"a a b", "a b a", {0, none, 1}},
    };
    for (const Row& row : rows) EXPECT_EQ(LineDiff::matches(lines(row.before), lines(row.after)), row.match) << row.before << " / " << row.after;
    // Beyond the bound of edits only the shared ends match.
    EXPECT_EQ(LineDiff::matches(lines("a b c d e"), lines("a x c y e"), 1), (std::vector<std::size_t>{0, none, none, none, 4}));
}

TEST(LineDiff, MergeTakesBothSidesAndMarksWhatBothChanged) {
    struct Row {
        const char *base, *ours, *theirs, *merged;
        bool clean;
    };
    const Row rows[] = {
        {"a b c", "a B c", "a b c", "a B c", true},
        {"a b c", "a b c", "a b C", "a b C", true},
        {"a b c d e", "a B c d e", "a b c d E", "a B c d E", true},
        {"a b c", "a B c", "a B c", "a B c", true},
        {"a b c", "x a b c", "a b c y", "x a b c y", true},
        {"a b c", "a c", "a b c", "a c", true},
        {"a b c", "a X c", "a Y c", "a <<<<<<<_yours X ======= Y >>>>>>>_model c", false},
    };
    for (const Row& row : rows) {
        Lines merged;
        std::vector<std::size_t> conflicts;
        EXPECT_EQ(LineDiff::merge3(lines(row.base), lines(row.ours), lines(row.theirs), merged, conflicts), row.clean);
        EXPECT_EQ(merged, lines(row.merged)) << row.base << " / " << row.ours << " / " << row.theirs;
        EXPECT_EQ(conflicts.size(), row.clean ? 0u : 1u);
    }
    Lines merged;
    std::vector<std::size_t> conflicts;
    LineDiff::merge3(lines("a b c d"), lines("a b c X"), lines("a b c Y"), merged, conflicts);
    EXPECT_EQ(conflicts, std::vector<std::size_t>{3});
}

TEST(LineDiff, UnifiedDiffsHaveContextAndJoinNearChanges) {
    EXPECT_EQ(LineDiff::unified(lines("a b"), lines("a b"), "a/f", "b/f"), "");
    EXPECT_EQ(LineDiff::unified(lines("1 2 3 4 5 6 7 8 9"), lines("1 2 3 4 X 6 7 8 9"), "a/f", "b/f"),
              "--- a/f\n+++ b/f\n@@ -2,7 +2,7 @@\n 2\n 3\n 4\n-5\n+X\n 6\n 7\n 8\n");
    // Changes six lines apart share a hunk; further apart they don't.
    std::string near = LineDiff::unified(lines("1 2 3 4 5 6 7 8 9"), lines("X 2 3 4 5 6 7 Y 9"), "a/f", "b/f");
    EXPECT_EQ(near, "--- a/f\n+++ b/f\n@@ -1,9 +1,9 @@\n-1\n+X\n 2\n 3\n 4\n 5\n 6\n 7\n-8\n+Y\n 9\n");
    std::string far = LineDiff::unified(lines("1 2 3 4 5 6 7 8 9 10 11"), lines("X 2 3 4 5 6 7 8 9 10 Y"), "a", "b");
    EXPECT_EQ(far, "--- a\n+++ b\n@@ -1,4 +1,4 @@\n-1\n+X\n 2\n 3\n 4\n@@ -8,4 +8,4 @@\n 8\n 9\n 10\n-11\n+Y\n");
    EXPECT_EQ(LineDiff::unified({}, lines("a"), "/dev/null", "b/f"), "--- /dev/null\n+++ b/f\n@@ -0,0 +1,1 @@\n+a\n");
    EXPECT_EQ(LineDiff::unified({"a"}, {}, "a/f", "/dev/null"),
              "--- a/f\n+++ /dev/null\n@@ -1,1 +0,0 @@\n-a\n\\ No newline at end of file\n");
}
