#include "output/LineDiff.h"

#include <algorithm>
#include <unordered_map>

LineViews lineViews(std::string_view text) {
    LineViews lines;
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t end = text.find('\n', start);
        end = end == std::string_view::npos ? text.size() : end + 1;
        lines.push_back(text.substr(start, end - start));
        start = end;
    }
    return lines;
}

Lines splitLines(std::string_view text) {
    LineViews views = lineViews(text);
    return Lines(views.begin(), views.end());
}

std::string joinLines(const Lines& lines, std::size_t first, std::size_t end) {
    std::string text;
    for (std::size_t i = first; i < std::min(end, lines.size()); ++i) text += lines[i];
    return text;
}

namespace {

// The shortest edit script between the middles of two texts (Myers' greedy algorithm), as
// matches appended to `match`; false when it needs more than `maxEdits` edits.
bool shortestEdits(const std::vector<std::size_t>& a, const std::vector<std::size_t>& b, std::size_t aFirst,
                   std::size_t aEnd, std::size_t bFirst, std::size_t bEnd, std::size_t maxEdits,
                   std::vector<std::size_t>& match) {
    const long n = long(aEnd - aFirst), m = long(bEnd - bFirst);
    const long limit = std::min<long>(n + m, long(maxEdits));
    const long offset = limit + 1;
    std::vector<long> v(std::size_t(2 * offset + 1), 0);
    std::vector<std::vector<long>> trace;
    for (long d = 0; d <= limit; ++d) {
        trace.push_back(v);
        for (long k = -d; k <= d; k += 2) {
            long x = (k == -d || (k != d && v[std::size_t(offset + k - 1)] < v[std::size_t(offset + k + 1)]))
                         ? v[std::size_t(offset + k + 1)]
                         : v[std::size_t(offset + k - 1)] + 1;
            long y = x - k;
            while (x < n && y < m && a[std::size_t(aFirst + x)] == b[std::size_t(bFirst + y)]) ++x, ++y;
            v[std::size_t(offset + k)] = x;
            if (x < n || y < m) continue;
            // Back along the trace, the diagonals walked are the matches.
            for (long back = d; back > 0 || x > 0 || y > 0;) {
                const std::vector<long>& before = trace[std::size_t(back)];
                long kk = x - y;
                long previousK = (kk == -back || (kk != back && before[std::size_t(offset + kk - 1)] <
                                                                     before[std::size_t(offset + kk + 1)]))
                                     ? kk + 1
                                     : kk - 1;
                long previousX = back == 0 ? 0 : before[std::size_t(offset + previousK)];
                long previousY = back == 0 ? 0 : previousX - previousK;
                while (x > previousX && y > previousY) {
                    --x, --y;
                    match[std::size_t(aFirst + x)] = std::size_t(bFirst + y);
                }
                if (back == 0) break;
                x = previousX, y = previousY;
                --back;
            }
            return true;
        }
    }
    return false;
}

}  // namespace

std::vector<std::size_t> LineDiff::matches(const Lines& before, const Lines& after, std::size_t maxEdits) {
    std::vector<std::size_t> match(before.size(), none);
    // Lines compared by number: equal lines get the same number.
    std::unordered_map<std::string_view, std::size_t> numbers;
    auto number = [&](const std::string& line) { return numbers.try_emplace(line, numbers.size()).first->second; };
    std::vector<std::size_t> a(before.size()), b(after.size());
    for (std::size_t i = 0; i < before.size(); ++i) a[i] = number(before[i]);
    for (std::size_t j = 0; j < after.size(); ++j) b[j] = number(after[j]);
    std::size_t first = 0;
    while (first < before.size() && first < after.size() && a[first] == b[first]) match[first] = first, ++first;
    std::size_t aEnd = before.size(), bEnd = after.size();
    while (aEnd > first && bEnd > first && a[aEnd - 1] == b[bEnd - 1]) --aEnd, --bEnd, match[aEnd] = bEnd;
    shortestEdits(a, b, first, aEnd, first, bEnd, maxEdits, match);
    return match;
}

namespace {

// A line as it stands between conflict markers: ending in a line end.
std::string ended(std::string line) {
    if (line.empty() || line.back() != '\n') line += '\n';
    return line;
}

}  // namespace

bool LineDiff::merge3(const Lines& base, const Lines& ours, const Lines& theirs, Lines& merged,
                      std::vector<std::size_t>& conflictLines, std::string_view ourLabel, std::string_view theirLabel) {
    std::vector<std::size_t> toOurs = matches(base, ours), toTheirs = matches(base, theirs);
    merged.clear();
    conflictLines.clear();
    std::size_t i = 0, j = 0, k = 0;
    const std::size_t nb = base.size(), no = ours.size(), nt = theirs.size();
    auto take = [&](const Lines& from, std::size_t first, std::size_t end) {
        merged.insert(merged.end(), from.begin() + long(first), from.begin() + long(end));
    };
    while (true) {
        // Lines that neither side changed.
        while (i < nb && toOurs[i] == j && toTheirs[i] == k) merged.push_back(base[i]), ++i, ++j, ++k;
        if (i == nb && j == no && k == nt) break;
        // The next line both sides kept ends the region that one side or both changed.
        std::size_t next = i;
        while (next < nb && (toOurs[next] == none || toTheirs[next] == none)) ++next;
        std::size_t ourEnd = next < nb ? toOurs[next] : no, theirEnd = next < nb ? toTheirs[next] : nt;
        Lines b(base.begin() + long(i), base.begin() + long(next));
        Lines o(ours.begin() + long(j), ours.begin() + long(ourEnd));
        Lines t(theirs.begin() + long(k), theirs.begin() + long(theirEnd));
        if (o == b || o == t) {
            take(theirs, k, theirEnd);
        } else if (t == b) {
            take(ours, j, ourEnd);
        } else {
            conflictLines.push_back(j);
            merged.push_back("<<<<<<< " + std::string(ourLabel) + "\n");
            for (const std::string& line : o) merged.push_back(ended(line));
            merged.push_back("=======\n");
            for (const std::string& line : t) merged.push_back(ended(line));
            merged.push_back(">>>>>>> " + std::string(theirLabel) + "\n");
        }
        i = next, j = ourEnd, k = theirEnd;
    }
    return conflictLines.empty();
}

std::string LineDiff::unified(const Lines& before, const Lines& after, const std::string& beforeName,
                              const std::string& afterName) {
    std::vector<std::size_t> match = matches(before, after);
    // Every line once: kept (' '), removed ('-') or added ('+'), with its lines in both texts.
    struct Step {
        char sign;
        std::size_t from, to;  // the line of `before` and of `after` it stands at
    };
    std::vector<Step> steps;
    std::size_t j = 0;
    for (std::size_t i = 0; i <= before.size(); ++i) {
        std::size_t upTo = i < before.size() && match[i] != none ? match[i] : (i == before.size() ? after.size() : j);
        for (; j < upTo; ++j) steps.push_back({'+', i, j});
        if (i == before.size()) break;
        if (match[i] == none) {
            steps.push_back({'-', i, j});
        } else {
            steps.push_back({' ', i, j});
            ++j;
        }
    }
    std::string text;
    const std::size_t context = 3;
    for (std::size_t s = 0, done = 0; s < steps.size();) {
        if (steps[s].sign == ' ') {
            ++s;
            continue;
        }
        // A hunk: three kept lines before the first change, changes that stand at most six kept
        // lines apart, three kept lines after the last.
        std::size_t first = std::max(done, s >= context ? s - context : 0);
        std::size_t end = s;
        while (true) {
            while (end < steps.size() && steps[end].sign != ' ') ++end;
            std::size_t kept = end;
            while (kept < steps.size() && steps[kept].sign == ' ') ++kept;
            if (kept == steps.size() || kept - end > 2 * context) break;
            end = kept;
        }
        std::size_t last = std::min(steps.size(), end + context);
        std::size_t fromCount = 0, toCount = 0;
        for (std::size_t h = first; h < last; ++h) {
            fromCount += steps[h].sign != '+';
            toCount += steps[h].sign != '-';
        }
        if (text.empty()) text = "--- " + beforeName + "\n+++ " + afterName + "\n";
        auto start = [](std::size_t line, std::size_t count) { return std::to_string(count == 0 ? line : line + 1); };
        text += "@@ -" + start(steps[first].from, fromCount) + "," + std::to_string(fromCount) + " +" +
                start(steps[first].to, toCount) + "," + std::to_string(toCount) + " @@\n";
        for (std::size_t h = first; h < last; ++h) {
            const std::string& line = steps[h].sign == '+' ? after[steps[h].to] : before[steps[h].from];
            text += steps[h].sign + line;
            if (line.empty() || line.back() != '\n') text += "\n\\ No newline at end of file\n";
        }
        s = done = last;
    }
    return text;
}
