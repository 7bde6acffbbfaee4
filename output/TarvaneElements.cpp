#include "output/TarvaneElements.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string>
#include <vector>

#include "environment/PlatformText.h"
#include "output/TextBatch.h"
#include "runtime/StringUtils.h"

namespace {

_eString repeated(const _eString& text, std::int32_t times) {
    _eString out;
    for (std::int32_t i = 0; i < times; ++i) out = out + text;
    return out;
}

_eSet<_eString> setOf(std::initializer_list<const wchar_t*> words) {
    _eSet<_eString> set;
    for (const wchar_t* w : words) set.add(w);
    return set;
}

// The leads of a layout, each made once for a layout and then shared: a line end (or two) and
// the indentation of a level. A layout has few levels.
class Leads {
public:
    explicit Leads(const _eString& indentText) : indentText(indentText) {}

    const _eString& indentation(std::int32_t levels) { return at(levels).indentation; }
    const _eString& lineAt(std::int32_t levels, bool blankLine) {
        Level& level = at(levels);
        _eString& lead = blankLine ? level.afterBlankLine : level.afterLineEnd;
        if (lead.isEmpty()) lead = _eString(blankLine ? L"\n\n" : L"\n") + level.indentation;
        return lead;
    }

private:
    struct Level {
        _eString indentation;
        _eString afterLineEnd;    // empty until asked for
        _eString afterBlankLine;  // empty until asked for
    };
    Level& at(std::int32_t levels) {
        std::size_t index = std::size_t(std::max(levels, 0));
        while (made.size() <= index) made.push_back({repeated(indentText, std::int32_t(made.size())), {}, {}});
        return made[index];
    }

    _eString indentText;
    std::vector<Level> made;
};

// The number of units after the last line end of `lead`; none when it has no line end.
std::int32_t trailingIndentation(const _eString& lead) {
    for (std::int32_t i = lead.size() - 1; i >= 0; --i)
        if (lead.get(i) == L'\n') return lead.size() - 1 - i;
    return 0;
}

}  // namespace

ElementBase::ElementBase(const Tokens& texts) {
    _eSeqReader<_eString> reader(texts);
    for (int i = 0, n = texts.size(); i < n; ++i) {
        _eString text = reader.next();
        tokens.pushBack({text, kindOf(text)});
    }
}

Tokens ElementBase::texts() const {
    Tokens out;
    _eSeqReader<OutputToken> reader(tokens);
    for (int i = 0, n = tokens.size(); i < n; ++i) out.pushBack(reader.next().text);
    return out;
}

TokenKinds ElementBase::kinds() const {
    TokenKinds out;
    _eSeqReader<OutputToken> reader(tokens);
    for (int i = 0, n = tokens.size(); i < n; ++i) out.pushBack(std::int32_t(reader.next().kind));
    return out;
}

TokenKind ElementBase::kindOf(const _eString& token) {
    int size = token.size();
    wchar_t first = size == 0 ? L' ' : token.get(0);
    if (size == 1 && first == L'\n') return TokenKind::lineBreak;
    if (size >= 2 && first == L'/' && token.get(1) == L'/') return TokenKind::comment;
    bool letter = (first >= L'A' && first <= L'Z') || (first >= L'a' && first <= L'z') || first == L'_';
    return letter ? TokenKind::keyword : TokenKind::punctuation;
}

namespace {

// The bytes before the end of `text` on its last line, where the line had `column` before it.
std::int32_t columnAfter(const _eString& text, std::int32_t column) {
    std::int32_t after = 0;  // bytes since the last line end
    bool lineEnd = false;
    forEachRun(text, [&](const wchar_t* units, int length) {
        for (int i = 0; i < length; ++i) {
            if (units[i] == L'\n') {
                after = 0;
                lineEnd = true;
            } else {
                after += outputUnitBytes(std::uint32_t(units[i]));
            }
        }
    });
    return lineEnd ? after : column + after;
}

}  // namespace

void ElementBase::writeTo(const Environment&, const _eHndl<FileRef>& file, const ImportOptions& options,
                          FileError::_eEnum& status, std::vector<TokenLines>* lines) const {
    status = FileError::success;
    std::int32_t column = 0;
    std::int32_t indent = 0;
    bool blankLinePending = false;
    bool breakPending = false;
    bool inParameterLine = false;
    std::int32_t bracketDepth = 0;
    const _eString newLine = L"\n";
    // The token before, in place among the tokens.
    const _eString noToken;
    const _eString* previous = &noToken;
    bool previousComment = false;
    bool first = true;
    std::int32_t line = 1;
    std::int32_t byteColumn = 0;  // kept only for a caller that asks where its tokens stand
    const bool byKind = options.getCommentsByKind();
    Leads leads(options.getIndentText());
    _eSeqReader<OutputToken> reader(tokens);
    TextBatch batch(file, status);
    if (lines != nullptr) lines->reserve(std::size_t(tokens.size()));
    for (int i = 0, n = tokens.size(); i < n && status == FileError::success; ++i) {
        const OutputToken& token = reader.next();
        const _eString& current = token.text;
        TokenKind kind = token.kind;
        if (textIs(current, L"\n")) {
            breakPending = true;
            if (lines != nullptr) lines->push_back({line, line});
            continue;
        }
        bool comment = byKind ? kind == TokenKind::comment || kind == TokenKind::note
                              : current.startsWith(options.getCommentPrefix());
        _eString separator;
        if (breakPending)
            separator = newLine;
        else if (!first)
            separator = separatorBetween(*previous, previousComment, current, comment, indent, options);
        breakPending = false;
        bool closes = closesBlock(*previous, current);
        if (closes && indent > 0) indent -= 1;
        _eString lead;
        if (textIs(separator, L"\n")) {
            std::int32_t levels = indent > 0 && isSectionHead(current) ? indent - 1 : indent;
            column = leads.indentation(levels).size();
            lead = leads.lineAt(levels, blankLinePending);
            blankLinePending = false;
        } else if (!first && !comment && column + separator.size() + current.size() > options.getLineWidth()) {
            std::int32_t continued = indent + 1;
            column = leads.indentation(continued).size();
            lead = leads.lineAt(continued, false);
        } else {
            lead = separator;
            column += separator.size();
        }
        // Lines are counted only for a caller that asks where its tokens stand.
        if (lines != nullptr) {
            line += countUnits(lead, L'\n');
            byteColumn = columnAfter(lead, byteColumn);
        }
        std::int32_t firstLine = line;
        std::int32_t firstColumn = byteColumn;
        if (!comment) {
            _eString text = tokenText(current);
            batch.put(lead);
            batch.put(text);
            column += text.size();
            if (lines != nullptr) byteColumn = columnAfter(text, byteColumn);
        } else {
            // A note continues under its own indentation; any other comment under blanks.
            bool note = kind == TokenKind::note;
            _eString indentation = note ? lead.drop(lead.size() - trailingIndentation(lead)) : _eString();
            line += writeWrapped(batch, lead, current, column, options, note ? &indentation : nullptr);
        }
        if (lines != nullptr) lines->push_back({firstLine, line, firstColumn});
        if (opensBlock(*previous, current))
            indent += 1;
        else if (closes && indent < 2)
            blankLinePending = true;
        if (inParameterLine) {
            if (textIs(current, L"(")) {
                bracketDepth += 1;
            } else if (bracketDepth == 0) {
                inParameterLine = false;
            } else if (textIs(current, L")")) {
                bracketDepth -= 1;
                if (bracketDepth == 0) breakPending = true, inParameterLine = false;
            }
        }
        if (startsParameterLine(current)) inParameterLine = true, bracketDepth = 0;
        previous = &current;
        previousComment = comment;
        first = false;
    }
    // Nothing more goes out after a failed write.
    if (status == FileError::success) batch.put(newLine);
    batch.flush();
}

std::int32_t ElementBase::writeWrapped(TextBatch& out, const _eString& lead, const _eString& text, std::int32_t column,
                                       const ImportOptions& options, const _eString* indentation) const {
    const std::int32_t width = options.getLineWidth();
    if (column + text.size() <= width) {
        out.put(lead);
        out.put(text);
        return 0;
    }
    // The comment's units, a piece at a time from `start`: each piece after the first is the
    // prefix and the rest after the cut, and the prefix is written over the end of the piece
    // before, which a cut always leaves room for.
    const std::wstring prefix = toWString(options.getCommentPrefix());
    std::wstring units = toWString(text);
    std::size_t start = 0;
    std::wstring nextLead = L"\n" + (indentation != nullptr ? toWString(*indentation) : std::wstring(std::size_t(column), L' '));
    const std::int32_t room = width - column;
    std::int32_t breaks = 0;
    for (;;) {
        std::wstring_view rest(units.data() + start, units.size() - start);
        if (breaks == 0)
            out.put(lead);
        else
            out.put(nextLead);
        if (column + std::int32_t(rest.size()) <= width) {
            out.put(rest);
            return breaks;
        }
        // Every piece carries at least one character behind its prefix, so the comment shrinks.
        std::int32_t cut = std::max(breakPosition(rest, room, options), std::int32_t(prefix.size()) + 1);
        if (std::size_t(cut) >= rest.size()) {
            out.put(rest);
            return breaks;
        }
        out.put(rest.substr(0, std::size_t(cut)));
        start += std::size_t(cut) - prefix.size();
        std::copy(prefix.begin(), prefix.end(), units.begin() + std::ptrdiff_t(start));
        ++breaks;
    }
}

std::int32_t ElementBase::breakPosition(std::wstring_view text, std::int32_t room, const ImportOptions&) const {
    std::int32_t lastBlank = -1;
    std::int32_t limit = std::min(room, std::int32_t(text.size()));
    for (std::int32_t i = 3; i < limit; ++i)
        if (text[std::size_t(i)] == L' ') lastBlank = i;
    return lastBlank > 0 ? lastBlank : room;
}

_eString TarvaneElements::separatorBetween(const _eString& previous, bool previousIsComment, const _eString& current,
                                           bool currentIsComment, std::int32_t, const ImportOptions&) const {
    // Asked between every two tokens: the three answers are made once.
    static const _eString lineEnd = L"\n";
    static const _eString nothing;
    static const _eString blank = L" ";
    unsigned before = wordSets(previous);
    unsigned after = wordSets(current);
    if (before & lineEnder) return lineEnd;
    if ((before & closer) && !textIs(current, L";")) return lineEnd;
    if (after & lineStarter) return lineEnd;
    if (currentIsComment || previousIsComment) return lineEnd;
    if (before & blankNotAfter) return nothing;
    if (after & blankNotBefore) return nothing;
    return blank;
}

// The words of the sets are few and short: each stands in one of 64 slots by its length and
// its first and last units, and a token is compared only with the words of its slot.
unsigned TarvaneElements::lookUpWordSets(const _eString& token) {
    struct Word {
        std::wstring text;
        unsigned bits;
    };
    struct Table {
        std::vector<Word> slots[64];
        int longest = 0;
        static std::size_t slotOf(std::wstring_view units) {
            return (units.size() * 7 + std::size_t(units.front()) * 3 + std::size_t(units.back())) & 63;
        }
    };
    static const Table table = [] {
        Table t;
        const std::pair<const _eSet<_eString>*, unsigned> sets[] = {
            {&blockOpeners(), opener},      {&blockClosers(), closer},        {&sectionHeads(), sectionHead},
            {&lineEnders(), lineEnder},     {&lineStarters(), lineStarter},   {&noBlankAfter(), blankNotAfter},
            {&noBlankBefore(), blankNotBefore}};
        for (const auto& [set, bit] : sets)
            for (int i = 0, n = set->size(); i < n; ++i) {
                std::wstring word = toWString(set->elements().get(i));
                std::vector<Word>& slot = t.slots[Table::slotOf(word)];
                auto at = std::find_if(slot.begin(), slot.end(), [&](const Word& each) { return each.text == word; });
                if (at == slot.end()) at = slot.insert(slot.end(), {word, 0});
                at->bits |= bit;
                t.longest = std::max(t.longest, int(word.size()));
            }
        return t;
    }();
    if (token.isEmpty() || token.size() > table.longest) return 0;
    std::wstring scratch;
    std::wstring_view units = unitsOf(token, scratch);
    unsigned bits = 0;
    for (const Word& word : table.slots[Table::slotOf(units)])
        if (word.text == units) bits = word.bits;
    return bits;
}

// A token is asked about four or five times in a row (before and after a separator, as a
// block's opener or closer), and the fixed words of the language are the same strings wherever
// they stand: answers are kept with the token's text, one for each of a few slots chosen by its
// node. Held here, the text's node can't be freed or changed, so the same node is the same text.
unsigned TarvaneElements::wordSets(const _eString& token) {
    struct Kept {
        _eString token;
        unsigned bits = 0;
    };
    static Kept kept[64];
    auto node = reinterpret_cast<std::uintptr_t>(token.rootNode());
    Kept& slot = kept[((node >> 4) ^ (node >> 10)) % std::size(kept)];
    if (token.rootNode() != slot.token.rootNode()) slot = {token, lookUpWordSets(token)};
    return slot.bits;
}

const _eSet<_eString>& TarvaneElements::blockOpeners() {
    static const _eSet<_eString> set = setOf({L"begin", L"class", L"if", L"loop", L"require", L"via", L"when"});
    return set;
}

const _eSet<_eString>& TarvaneElements::blockClosers() {
    static const _eSet<_eString> set = setOf({L"end", L"fi"});
    return set;
}

const _eSet<_eString>& TarvaneElements::sectionHeads() {
    static const _eSet<_eString> set = setOf({L"abstract", L"confined", L"interface", L"internal"});
    return set;
}

const _eSet<_eString>& TarvaneElements::lineEnders() {
    static const _eSet<_eString> set =
        setOf({L";", L"abstract", L"begin", L"confined", L"interface", L"internal", L"loop", L"via"});
    return set;
}

const _eSet<_eString>& TarvaneElements::lineStarters() {
    static const _eSet<_eString> set =
        setOf({L"abstract", L"confined", L"end", L"fi", L"interface", L"internal", L"via"});
    return set;
}

const _eSet<_eString>& TarvaneElements::noBlankAfter() {
    static const _eSet<_eString> set = setOf({L"!", L"(", L".", L"[", L"{"});
    return set;
}

const _eSet<_eString>& TarvaneElements::noBlankBefore() {
    static const _eSet<_eString> set = setOf({L")", L",", L".", L":", L";", L"]", L"}"});
    return set;
}

const _eSet<_eString>& TarvaneElements::parameterLineStarters() {
    static const _eSet<_eString> set;
    return set;
}
