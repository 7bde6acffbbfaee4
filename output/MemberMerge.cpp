#include "output/MemberMerge.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <optional>

namespace {

const std::string keptPrefix = "// Kept by ModelBridge, no longer in the model: ";

// A stretch of a file's lines: a declaration, or the lines between two (a gap).
struct Unit {
    std::string key;
    std::size_t first, end;
    const TextPiece* piece;  // null for a gap
};

// The units of a file, every line in one of them, in order; gaps keyed by the unit before.
std::vector<Unit> unitsOf(const GeneratedFile& file) {
    std::vector<Unit> units;
    std::size_t at = 0;
    auto gapUpTo = [&](std::size_t end) {
        if (at < end) units.push_back({"gap after " + (units.empty() ? std::string("start") : units.back().key), at, end, nullptr});
        at = std::max(at, end);
    };
    for (const TextPiece& piece : file.pieces) {
        gapUpTo(piece.first);
        units.push_back({piece.key, piece.first, piece.end, &piece});
        at = piece.end;
    }
    gapUpTo(file.lines.size());
    return units;
}

std::map<std::string, std::size_t> indexOf(const std::vector<Unit>& units) {
    std::map<std::string, std::size_t> index;
    for (std::size_t i = 0; i < units.size(); ++i) index.emplace(units[i].key, i);
    return index;
}

Lines linesOf(const Lines& lines, std::size_t first, std::size_t end) {
    return Lines(lines.begin() + long(first), lines.begin() + long(end));
}

std::string trimmed(const std::string& line) {
    std::size_t first = line.find_first_not_of(" \t\r\n");
    if (first == std::string::npos) return {};
    return line.substr(first, line.find_last_not_of(" \t\r\n") - first + 1);
}

// The first line of a text that isn't blank.
std::string nameOf(const Lines& lines) {
    for (const std::string& line : lines)
        if (!trimmed(line).empty()) return trimmed(line);
    return {};
}

// A line of a declaration not yet closed by its ";".
bool open(const std::string& line) {
    std::string text = trimmed(line);
    return !text.empty() && text.back() != ';' && text.rfind("//", 0) != 0;
}

bool blank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

// Where `segment` ends when it is matched at `at` in `text`, any run of blanks in it matching
// any run (or none) in the text; npos when it doesn't match.
std::size_t matchAt(const std::string& text, std::size_t at, const std::string& segment) {
    std::size_t s = 0;
    while (s < segment.size()) {
        if (blank(segment[s])) {
            while (s < segment.size() && blank(segment[s])) ++s;
            while (at < text.size() && blank(text[at])) ++at;
            continue;
        }
        if (at >= text.size() || text[at] != segment[s]) return std::string::npos;
        ++at, ++s;
    }
    return at;
}

// The byte offsets in `text` (the lines of a unit joined) of its bodies; none when one doesn't
// stand where the record says.
std::optional<std::vector<std::size_t>> bodyOffsets(const Lines& lines, const Unit& unit) {
    std::vector<std::size_t> offsets;
    if (unit.piece == nullptr) return offsets;
    for (const auto& [line, column] : unit.piece->bodies) {
        if (line < unit.first || line >= unit.end) return std::nullopt;
        std::size_t offset = 0;
        for (std::size_t i = unit.first; i < line; ++i) offset += lines[i].size();
        if (column >= lines[line].size() || lines[line][column] != '?') return std::nullopt;
        offsets.push_back(offset + column);
    }
    return offsets;
}

// Where only the bodies differ between the base's text of a declaration and the user's, the
// new text with the user's bodies in its own: a renamed member, or one whose signature
// changed, keeps what the user wrote after "post" or "^=".
std::optional<Lines> mergeBodies(const Lines& baseLines, const Unit& baseUnit, const Lines& user,
                                 const Lines& nextLines, const Unit& nextUnit) {
    auto baseOffsets = bodyOffsets(baseLines, baseUnit), nextOffsets = bodyOffsets(nextLines, nextUnit);
    if (!baseOffsets || !nextOffsets || baseOffsets->empty() || baseOffsets->size() != nextOffsets->size())
        return std::nullopt;
    std::string base = joinLines(baseLines, baseUnit.first, baseUnit.end), text = joinLines(user);
    if (text.size() > 8192) return std::nullopt;  // longer than any declaration: not worth the search
    // The base's text around its bodies, and what stands in their place in the user's text.
    std::vector<std::string> segments;
    std::size_t from = 0;
    for (std::size_t offset : *baseOffsets) {
        segments.push_back(base.substr(from, offset - from));
        from = offset + 1;
    }
    segments.push_back(base.substr(from));
    std::vector<std::string> bodies;
    std::size_t at = matchAt(text, 0, segments[0]);
    for (std::size_t s = 1; s < segments.size() && at != std::string::npos; ++s) {
        std::size_t found = std::string::npos;
        if (s + 1 < segments.size()) {
            // A segment between two bodies: its first place.
            for (std::size_t q = at; q <= text.size() && found == std::string::npos; ++q)
                if (matchAt(text, q, segments[s]) != std::string::npos) found = q;
        } else {
            // The last: where it ends the text, as late as it can start.
            for (std::size_t q = text.size() + 1; q-- > at && found == std::string::npos;)
                if (matchAt(text, q, segments[s]) == text.size()) found = q;
        }
        if (found == std::string::npos) return std::nullopt;
        bodies.push_back(text.substr(at, found - at));
        at = s + 1 < segments.size() ? matchAt(text, found, segments[s]) : text.size();
    }
    if (at == std::string::npos) return std::nullopt;
    std::string next = joinLines(nextLines, nextUnit.first, nextUnit.end);
    for (std::size_t b = nextOffsets->size(); b-- > 0;)
        if (bodies[b] != "?") next.replace((*nextOffsets)[b], 1, bodies[b]);
    return splitLines(next);
}

}  // namespace

std::string MemberMerge::keptMarker(const std::string& key) { return keptPrefix + key + "\n"; }

std::size_t MemberMerge::headerOf(const LineViews& lines, std::size_t headerLines) {
    if (headerLines < 3 || lines.size() < headerLines) return 0;
    auto starts = [&](std::size_t line, const char* text) { return lines[line].starts_with(text); };
    bool shaped = starts(0, "//***") && starts(1, "//* File: ") && starts(headerLines - 2, "//***") &&
                  lines[headerLines - 1].find_first_not_of(" \t\r\n") == std::string_view::npos;
    for (std::size_t line = 2; shaped && line + 2 < headerLines; ++line) shaped = starts(line, "//* ");
    return shaped ? headerLines : 0;
}

namespace {

// The merge of one file, step by step.
class FileMerge {
public:
    FileMerge(const RecordEntry& base, const std::string& userText, const GeneratedFile& next)
        : base(base), next(next), baseUnits(unitsOf(base.file)), nextUnits(unitsOf(next)),
          baseIndex(indexOf(baseUnits)), nextIndex(indexOf(nextUnits)) {
        LineViews all = lineViews(userText);
        std::size_t headerLines = std::size_t(std::count(next.header.begin(), next.header.end(), '\n'));
        userHeader = MemberMerge::headerOf(all, headerLines);
        user = Lines(all.begin() + long(userHeader), all.end());
    }

    MergeOutcome run();

private:
    // Members kept commented out that the model has again are taken out of the user's text.
    void takeBackKept();
    // Which unit of the base each line of the user's text belongs to.
    void alignUser();
    void matchCompleted(const Lines& baseLines, std::vector<std::size_t>& match) const;
    void emitUnit(std::size_t nextUnit);
    void emit(const Lines& lines) { merged.insert(merged.end(), lines.begin(), lines.end()); }
    void emitBefore(long baseUnit);
    void conflict(const Lines& ours, const Lines& theirs, std::size_t userLine, const std::string& member);
    // The merge of one declaration.
    void mergeUnit(const Lines& baseText, const Unit* baseUnit, const Lines& ours, std::size_t userLine,
                   const Unit& nextUnit);
    void keepOrphans(const std::string& classKey);
    // Just after the last unit of the group that `group` leads.
    std::size_t groupEnd(std::size_t group) const {
        std::size_t end = group + 1;
        while (end < groupOf.size() && groupOf[end] == group) ++end;
        return end;
    }

    const RecordEntry& base;
    const GeneratedFile& next;
    std::vector<Unit> baseUnits, nextUnits;
    std::map<std::string, std::size_t> baseIndex, nextIndex;
    std::size_t userHeader = 0;
    Lines user;
    std::map<std::string, Lines> takenBack;  // user's text of kept members back in the model

    // Per base unit: the first of its group (units joined by one change of the user), and per
    // group the user's lines and where they start.
    std::vector<std::size_t> groupOf;
    std::map<std::size_t, Lines> groupText;
    std::map<std::size_t, std::size_t> groupLine;
    // Lines the user added between units, before the base unit (the number of units: at the end).
    std::map<long, Lines> added;
    std::vector<bool> emittedGroup;
    std::map<std::string, std::vector<std::pair<std::string, Lines>>> orphans;  // by class: key, lines

    Lines merged;
    MergeOutcome outcome;
};

void FileMerge::takeBackKept() {
    for (const KeptMember& kept : base.kept) {
        std::string marker = MemberMerge::keptMarker(kept.key);
        auto at = std::find_if(user.begin(), user.end(), [&](const std::string& line) {
            std::size_t first = line.find_first_not_of(" \t");
            return first != std::string::npos && line.compare(first, std::string::npos, marker) == 0;
        });
        if (at == user.end()) continue;  // the user removed it
        if (!nextIndex.count(kept.key) || baseIndex.count(kept.key)) {
            outcome.kept.push_back(kept);
            continue;
        }
        auto end = at + 1;
        Lines text;
        while (end != user.end() && end->rfind("//", 0) == 0 && end->rfind(keptPrefix, 0) != 0)
            text.push_back(end->substr(2)), ++end;
        takenBack[kept.key] = text;
        user.erase(at, end);
    }
}

void FileMerge::alignUser() {
    const Lines& baseLines = base.file.lines;
    std::vector<std::size_t> unitAt(baseLines.size());
    for (std::size_t u = 0; u < baseUnits.size(); ++u)
        for (std::size_t line = baseUnits[u].first; line < baseUnits[u].end; ++line) unitAt[line] = u;
    groupOf.resize(baseUnits.size());
    for (std::size_t u = 0; u < groupOf.size(); ++u) groupOf[u] = u;
    std::vector<long> owner(user.size(), -1);  // the base unit of each user line; -1: added
    std::vector<std::size_t> match = LineDiff::matches(baseLines, user);
    matchCompleted(baseLines, match);
    std::size_t previousBase = 0, previousUser = 0;  // just after the last matched pair
    for (std::size_t i = 0; i <= baseLines.size(); ++i) {
        if (i < baseLines.size() && match[i] == LineDiff::none) continue;
        std::size_t userAt = i < baseLines.size() ? match[i] : user.size();
        if (previousBase < i) {
            // Lines of the base changed: the units they touch are one group, which owns the
            // user's lines in their place.
            for (std::size_t u = unitAt[previousBase] + 1; u <= unitAt[i - 1]; ++u) groupOf[u] = groupOf[unitAt[previousBase]];
            for (std::size_t j = previousUser; j < userAt; ++j) owner[j] = long(unitAt[previousBase]);
        } else if (previousUser < userAt) {
            bool inside = i > 0 && i < baseLines.size() && unitAt[i - 1] == unitAt[i];
            // A declaration whose last line the user left open (a body they continued on the
            // next lines) owns the lines up to the one that closes it.
            if (!inside && i > 0 && open(user[previousUser - 1]) && !open(baseLines[i - 1])) {
                while (previousUser < userAt && open(user[previousUser])) owner[previousUser++] = long(unitAt[i - 1]);
                if (previousUser < userAt) owner[previousUser++] = long(unitAt[i - 1]);
            }
            if (inside) {
                for (std::size_t j = previousUser; j < userAt; ++j) owner[j] = long(unitAt[i]);
            } else if (previousUser < userAt) {
                long before = i == baseLines.size() ? long(baseUnits.size()) : long(unitAt[i]);
                added[before] = linesOf(user, previousUser, userAt);
            }
        }
        if (i < baseLines.size()) owner[userAt] = long(unitAt[i]);
        previousBase = i + 1, previousUser = userAt + 1;
    }
    for (std::size_t j = 0; j < user.size(); ++j) {
        if (owner[j] < 0) continue;
        std::size_t group = groupOf[std::size_t(owner[j])];
        if (!groupText.count(group)) groupLine[group] = j;
        groupText[group].push_back(user[j]);
    }
}

// Where the user completed the bodies of neighbouring declarations, their lines differ side by
// side: a line of the base with a "?" and a line of the user's that starts as it does up to the
// "?" are taken for the same line, so that each declaration keeps its own change.
void FileMerge::matchCompleted(const Lines& baseLines, std::vector<std::size_t>& match) const {
    auto similar = [&](const std::string& base, const std::string& line) {
        std::size_t body = base.find('?');
        if (body == std::string::npos) return false;
        std::string start = trimmed(base.substr(0, body));
        return !start.empty() && trimmed(line).rfind(start, 0) == 0;
    };
    std::size_t i = 0, j = 0;
    while (i < baseLines.size()) {
        if (match[i] != LineDiff::none) {
            j = match[i] + 1, ++i;
            continue;
        }
        std::size_t end = i, userEnd;
        while (end < baseLines.size() && match[end] == LineDiff::none) ++end;
        userEnd = end < baseLines.size() ? match[end] : user.size();
        const std::size_t n = end - i, m = userEnd - j;
        if (n > 0 && m > 0 && n * m <= 40000) {
            // The longest run of similar pairs, in order.
            std::vector<std::vector<std::uint16_t>> length(n + 1, std::vector<std::uint16_t>(m + 1, 0));
            for (std::size_t a = n; a-- > 0;)
                for (std::size_t b = m; b-- > 0;)
                    length[a][b] = similar(baseLines[i + a], user[j + b])
                                       ? std::uint16_t(length[a + 1][b + 1] + 1)
                                       : std::max(length[a + 1][b], length[a][b + 1]);
            for (std::size_t a = 0, b = 0; a < n && b < m;) {
                if (similar(baseLines[i + a], user[j + b]) && length[a][b] == length[a + 1][b + 1] + 1)
                    match[i + a] = j + b, ++a, ++b;
                else if (length[a + 1][b] >= length[a][b + 1])
                    ++a;
                else
                    ++b;
            }
        }
        i = end;
        j = userEnd;
    }
}

void FileMerge::conflict(const Lines& ours, const Lines& theirs, std::size_t userLine, const std::string& member) {
    outcome.settled = false;
    outcome.conflicts.push_back({int(userHeader + userLine + 1), member});
    merged.push_back("<<<<<<< yours\n");
    for (const std::string& line : ours) merged.push_back(line.empty() || line.back() != '\n' ? line + "\n" : line);
    merged.push_back("=======\n");
    emit(theirs);
    merged.push_back(">>>>>>> model\n");
}

void FileMerge::mergeUnit(const Lines& baseText, const Unit* baseUnit, const Lines& ours, std::size_t userLine,
                          const Unit& nextUnit) {
    Lines theirs = linesOf(next.lines, nextUnit.first, nextUnit.end);
    if (ours == baseText || ours == theirs) return emit(theirs);
    if (theirs == baseText) return emit(ours);
    if (baseUnit != nullptr) {
        if (auto bodies = mergeBodies(base.file.lines, *baseUnit, ours, next.lines, nextUnit)) return emit(*bodies);
    }
    Lines lines;
    std::vector<std::size_t> conflictLines;
    if (LineDiff::merge3(baseText, ours, theirs, lines, conflictLines)) return emit(lines);
    // Reported at the first line both changed; the markers go round the declaration.
    conflict(ours, theirs, userLine + conflictLines.front(), nameOf(theirs));
}

void FileMerge::emitBefore(long baseUnit) {
    auto found = added.find(baseUnit);
    if (found != added.end()) emit(found->second);
}

void FileMerge::keepOrphans(const std::string& classKey) {
    auto found = orphans.find(classKey);
    if (found == orphans.end()) return;
    for (const auto& [key, lines] : found->second) {
        merged.push_back(MemberMerge::keptMarker(key));
        for (const std::string& line : lines) merged.push_back("//" + line + (line.empty() || line.back() != '\n' ? "\n" : ""));
    }
    orphans.erase(found);
}

void FileMerge::emitUnit(std::size_t n) {
    const Unit& unit = nextUnits[n];
    auto inBase = baseIndex.find(unit.key);
    if (inBase != baseIndex.end()) emitBefore(long(inBase->second));
    if (unit.key.rfind("end ", 0) == 0) keepOrphans("head " + unit.key.substr(4));
    if (inBase == baseIndex.end()) {
        auto back = takenBack.find(unit.key);
        if (back == takenBack.end()) return emit(linesOf(next.lines, unit.first, unit.end));
        const KeptMember& kept = *std::find_if(base.kept.begin(), base.kept.end(),
                                               [&](const KeptMember& k) { return k.key == unit.key; });
        outcome.restored.push_back(nameOf(back->second));
        return mergeUnit(kept.lines, nullptr, back->second, 0, unit);
    }
    std::size_t b = inBase->second, group = groupOf[b];
    const Unit& baseUnit = baseUnits[b];
    Lines ours = groupText.count(group) ? groupText[group] : Lines();
    if (groupEnd(group) == group + 1) {
        mergeUnit(linesOf(base.file.lines, baseUnit.first, baseUnit.end), &baseUnit, ours, groupLine[group], unit);
    } else if (!emittedGroup[group]) {
        // One change of the user over several declarations: it stands when the model changed
        // none of them.
        emittedGroup[group] = true;
        Lines theirs;
        bool unchanged = true;
        for (std::size_t u = group; u < groupEnd(group); ++u) {
            auto inNext = nextIndex.find(baseUnits[u].key);
            if (inNext == nextIndex.end()) {
                unchanged = false;
                continue;
            }
            Lines now = linesOf(next.lines, nextUnits[inNext->second].first, nextUnits[inNext->second].end);
            unchanged = unchanged && now == linesOf(base.file.lines, baseUnits[u].first, baseUnits[u].end);
            theirs.insert(theirs.end(), now.begin(), now.end());
        }
        if (unchanged)
            emit(ours);
        else
            conflict(ours, theirs, groupLine[group], nameOf(theirs));
    }
}

MergeOutcome FileMerge::run() {
    takeBackKept();
    alignUser();
    emittedGroup.assign(baseUnits.size(), false);
    // What the model no longer has: unchanged or deleted by the user, it goes; a declaration
    // the user changed is kept commented out at the end of its class; lines the user added
    // stand before the nearest unit after them that is still there.
    const long atEnd = long(baseUnits.size());
    std::vector<long> anchor(baseUnits.size());
    for (std::size_t u = baseUnits.size(); u-- > 0;)
        anchor[u] = nextIndex.count(baseUnits[u].key) ? long(u) : (u + 1 == baseUnits.size() ? atEnd : anchor[u + 1]);
    for (std::size_t u = 0; u < baseUnits.size(); ++u) {
        if (anchor[u] == long(u) || u != groupOf[u]) continue;
        // The group the unit leads: gone from the model when none of its units is left.
        std::size_t end = groupEnd(u);
        if (std::any_of(baseUnits.begin() + long(u), baseUnits.begin() + long(end),
                        [&](const Unit& unit) { return nextIndex.count(unit.key) != 0; }))
            continue;
        Lines ours = groupText.count(u) ? groupText[u] : Lines();
        Lines baseText = linesOf(base.file.lines, baseUnits[u].first, baseUnits[end - 1].end);
        if (ours.empty() || ours == baseText) continue;
        auto piece = std::find_if(baseUnits.begin() + long(u), baseUnits.begin() + long(end),
                                  [](const Unit& unit) { return unit.piece != nullptr; });
        if (piece == baseUnits.begin() + long(end)) {
            // A gap the user wrote into: the lines they added stay.
            std::vector<std::size_t> match = LineDiff::matches(ours, baseText);
            for (std::size_t j = 0; j < ours.size(); ++j)
                if (match[j] == LineDiff::none) added[long(u)].push_back(ours[j]);
            continue;
        }
        orphans[base.file.classOf(std::size_t(piece->piece - base.file.pieces.data()))].emplace_back(piece->key, ours);
        outcome.orphaned.push_back(nameOf(ours));
        outcome.kept.push_back({piece->key, baseText});
    }
    // Lines before a unit that is gone go before the next one that stays, ahead of its own.
    for (std::size_t u = baseUnits.size(); u-- > 0;) {
        if (anchor[u] == long(u) || !added.count(long(u))) continue;
        Lines moved = added[long(u)];
        added.erase(long(u));
        Lines& to = added[anchor[u]];
        to.insert(to.begin(), moved.begin(), moved.end());
    }
    for (std::size_t n = 0; n < nextUnits.size(); ++n) emitUnit(n);
    emitBefore(atEnd);
    // Orphans of a class the file no longer declares go at its end.
    while (!orphans.empty()) keepOrphans(orphans.begin()->first);
    outcome.text = (userHeader > 0 ? next.header : std::string()) + joinLines(merged);
    return outcome;
}

}  // namespace

MergeOutcome MemberMerge::merge(const RecordEntry& base, const std::string& userText, const GeneratedFile& next) {
    return FileMerge(base, userText, next).run();
}
