// Lines of text compared: which lines two texts share, the regions where they differ, a
// three-way merge of lines, and a unified diff for people to read. Each line keeps its line
// end, so that texts joined again are the texts given, byte for byte.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

using Lines = std::vector<std::string>;
using LineViews = std::vector<std::string_view>;

// `text` cut after each "\n"; a last line without one stays a line.
LineViews lineViews(std::string_view text);
// The same lines, copied.
Lines splitLines(std::string_view text);
std::string joinLines(const Lines& lines, std::size_t first = 0, std::size_t end = std::string::npos);

class LineDiff {
public:
    // For each line of `before`, the line of `after` it stays as, or `none`: a longest run of
    // shared lines, lines matched in order. Beyond `maxEdits` differing lines the texts are
    // taken as wholly different but for their shared first and last lines, so that no input
    // costs more than a bounded time.
    static constexpr std::size_t none = std::size_t(-1);
    static std::vector<std::size_t> matches(const Lines& before, const Lines& after, std::size_t maxEdits = 2000);

    // A three-way merge: the changes from `base` to `ours` and from `base` to `theirs` together.
    // False when both change the same lines differently; then `merged` has the lines of both
    // between conflict markers, labelled `ourLabel` and `theirLabel`, and `conflictLines` the
    // lines of `ours` (counted from 0) where each conflict starts.
    static bool merge3(const Lines& base, const Lines& ours, const Lines& theirs, Lines& merged,
                       std::vector<std::size_t>& conflictLines, std::string_view ourLabel = "yours",
                       std::string_view theirLabel = "model");

    // "--- a/NAME\n+++ b/NAME\n@@ -1,3 +1,4 @@\n ..." with three lines of context; empty when
    // the texts are equal.
    static std::string unified(const Lines& before, const Lines& after, const std::string& beforeName,
                               const std::string& afterName);
};
