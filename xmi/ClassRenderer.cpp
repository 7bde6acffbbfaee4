#include "xmi/ClassRenderer.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <vector>

#include "output/ReservedWords.h"
#include "runtime/PoolAllocator.h"
#include "runtime/StringUtils.h"

namespace {

// One token of a run: a fixed word of the language, of the kind its text looks like (a keyword
// or punctuation), or a text with the kind the renderer gives it.
struct Piece {
    Piece(const wchar_t* word) : Piece(fixedWord(word)) {}
    Piece(const _eString& word) : text(word), kind(ElementBase::kindOf(text)) {}
    Piece(const _eString& text, TokenKind kind) : text(text), kind(kind) {}
    _eString text;
    TokenKind kind;

private:
    // The fixed words recur in every declaration: each is made a string, and its kind found, once.
    // They are asked for at a few places, each time by the same address: the word last found for
    // an address is kept by it, and taken again when its text is still what the address holds.
    static const Piece& fixedWord(const wchar_t* word) {
        struct Last {
            const wchar_t* word = nullptr;
            const Piece* piece = nullptr;
        };
        static Last last[64];
        Last& kept = last[(reinterpret_cast<std::uintptr_t>(word) / sizeof(wchar_t)) % std::size(last)];
        std::wstring_view units(word);
        if (kept.word == word && textIs(kept.piece->text, units)) return *kept.piece;
        static UnitsMap<Piece> made;
        auto found = made.find(units);
        if (found == made.end()) found = made.emplace(std::wstring(units), Piece(_eString(units))).first;
        kept = {word, &found->second};
        return found->second;
    }
};

// A stretch of output while it is built: its tokens, and its runs of declarations as
// `TarvaneOutput` keeps them, none while no token is declared. Joining appends in place; the
// stretch becomes a `TarvaneOutput` once, when it is done. While a `CountOnly` stands, a stretch
// keeps only how many tokens it has and how many of them are unknown: a class is then rendered
// for the count of its placeholders alone, without its text.
class Output {
public:
    // Output made while one stands is counted, not kept; it is never made a `TarvaneOutput`.
    class CountOnly {
    public:
        CountOnly() : before(counting) { counting = true; }
        CountOnly(const CountOnly&) = delete;
        CountOnly& operator=(const CountOnly&) = delete;
        ~CountOnly() { counting = before; }

    private:
        bool before;
    };

    Output() = default;
    // A run of tokens.
    Output(std::initializer_list<Piece> run) : count(std::int32_t(run.size())) {
        bool keep = !counting;
        if (keep) tokens.reserve(run.size());
        for (const Piece& piece : run) {
            unknown += piece.kind == TokenKind::unknown ? 1 : 0;
            if (keep) tokens.push_back({piece.text, piece.kind});
        }
    }

    bool isEmpty() const { return count == 0; }

    // These tokens and declarations, then `other`'s, joined as `TarvaneOutput::concat` joins them.
    Output& operator+=(const Output& other) { return append(other); }
    Output& operator+=(Output&& other) { return append(std::move(other)); }

    // The same tokens as one declaration of the element `id`, in place of any within them.
    Output declared(const _eString& id, DeclarationPart part) && {
        runs.clear();
        if (!isEmpty() && !counting) runs.push_back({id, part, true, count});
        return std::move(*this);
    }

    _eHndl<TarvaneOutput> output() const {
        if (isEmpty()) return TarvaneOutput::empty();
        return _eHndl<TarvaneOutput>(new TarvaneOutput(_eSeq<OutputToken>(int(tokens.size()), tokens.data()),
                                                       _eSeq<DeclarationRun>(int(runs.size()), runs.data())));
    }

    int unknowns() const { return unknown; }
    // True while a `CountOnly` stands.
    static bool countingOnly() { return counting; }

private:
    static DeclarationRun undeclared(std::int32_t count) { return {{}, {}, false, count}; }

    // `other` an `Output` or an `Output&&`: the tokens and runs of a stretch that goes are moved.
    template <class Other>
    Output& append(Other&& other) {
        if (other.isEmpty()) return *this;
        if (isEmpty()) return *this = std::forward<Other>(other);
        if (!runs.empty() || !other.runs.empty()) {
            if (runs.empty()) runs.push_back(undeclared(count));
            if (other.runs.empty())
                runs.push_back(undeclared(other.count));
            else
                appendAll(std::forward<Other>(other).runs, runs);
        }
        appendAll(std::forward<Other>(other).tokens, tokens);
        count += other.count;
        unknown += other.unknown;
        return *this;
    }

    template <class From, class Into>
    static void appendAll(From&& from, Into& into) {
        if constexpr (!std::is_lvalue_reference_v<From>)
            into.insert(into.end(), std::make_move_iterator(from.begin()), std::make_move_iterator(from.end()));
        else
            into.insert(into.end(), from.begin(), from.end());
    }

    static inline thread_local bool counting = false;

    std::vector<OutputToken, PoolAllocator<OutputToken>> tokens;  // none while counting
    std::vector<DeclarationRun, PoolAllocator<DeclarationRun>> runs;
    std::int32_t count = 0;    // of the tokens
    std::int32_t unknown = 0;  // of the tokens of the kind unknown
};

Output operator+(Output a, const Output& b) { return std::move(a += b); }
Output operator+(Output a, Output&& b) { return std::move(a += std::move(b)); }

// A run of tokens, built at once.
Output tokens(std::initializer_list<Piece> run) { return Output(run); }

// A name the model gives; "?" where it gives none.
Piece modelName(const _eString& text) { return {text, textIs(text, L"?") ? TokenKind::unknown : TokenKind::name}; }

// "?" where the user completes the text.
Piece bodyToComplete() { return {L"?", TokenKind::body}; }

// "?" where the model lacks a type or a value.
Piece unknown() { return {L"?", TokenKind::unknown}; }

Output none() { return {}; }

// What a feature, or a group of them, gives each of the three sections of a class.
struct Sections {
    Output abstractPart;   // under "abstract"
    Output confinedPart;   // under "confined"
    Output interfacePart;  // under "interface"

    // Part by part: these tokens, then `other`'s.
    Sections merge(Sections&& other) && {
        abstractPart += std::move(other.abstractPart);
        confinedPart += std::move(other.confinedPart);
        interfacePart += std::move(other.interfacePart);
        return std::move(*this);
    }

    _eHndl<TarvaneSections> sections() const {
        return _eHndl<TarvaneSections>(
            new TarvaneSections(abstractPart.output(), confinedPart.output(), interfacePart.output()));
    }
};

// The three sections of a class, and the one rule that places a member by its visibility:
// the public face, the protected face, and everything else with the state.
enum class Section { abstractPart, confinedPart, interfacePart };

Section sectionFor(Visibility visibility) {
    if (visibility == Visibility::public_) return Section::interfacePart;
    if (visibility == Visibility::protected_) return Section::confinedPart;
    return Section::abstractPart;
}

Sections placed(Section section, Output run) {
    Sections placed;
    (section == Section::abstractPart   ? placed.abstractPart
     : section == Section::confinedPart ? placed.confinedPart
                                        : placed.interfacePart) = std::move(run);
    return placed;
}

// A declaration of state with its accessor, both of the element `id`: the declaration always
// among the state, the accessor in the face the visibility gives, and none for a member that
// is neither public nor protected.
Sections stateWithAccessor(Visibility visibility, const _eString& id, Output declaration, Output accessor) {
    Section face = sectionFor(visibility);
    Sections state = placed(Section::abstractPart, std::move(declaration).declared(id, DeclarationPart::member));
    return face == Section::abstractPart
               ? state
               : std::move(state).merge(placed(face, std::move(accessor).declared(id, DeclarationPart::accessor)));
}

Output typeRun(const TypeRecord& type);
Output multiplicityRun(const MultiplicityRecord& multiplicity, const TypeRecord& type, bool isRef);

// The value of a bound written in digits alone; -1 for anything else. A bound beyond the
// largest 32-bit number counts as that number.
std::int32_t boundValue(const std::optional<_eString>& bound) {
    if (!bound) return -1;
    _eString text = trimSpaces(*bound);
    if (text.isEmpty()) return -1;
    std::int64_t value = 0;
    for (int i = 0, n = text.size(); i < n; ++i) {
        wchar_t c = text.get(i);
        if (c < L'0' || c > L'9') return -1;
        value = std::min<std::int64_t>(value * 10 + (c - L'0'), INT32_MAX);
    }
    return std::int32_t(value);
}

// The standard primitive types of UML libraries, Ecore's and XML Schema's as the names of the
// language's own.
_eString libraryTypeName(const _eString& name) {
    static const std::pair<const wchar_t*, const wchar_t*> names[] = {
        {L"Integer", L"int"},  {L"Boolean", L"bool"}, {L"Real", L"real"},     {L"EInt", L"int"},
        {L"ELong", L"int"},    {L"EShort", L"int"},   {L"EBoolean", L"bool"}, {L"EDouble", L"real"},
        {L"EFloat", L"real"},  {L"EString", L"String"}, {L"integer", L"int"}, {L"boolean", L"bool"},
        {L"double", L"real"},  {L"float", L"real"},   {L"decimal", L"real"},  {L"string", L"String"},
    };
    for (const auto& [library, own] : names)
        if (textIs(name, library)) return own;
    return name;
}

// The name that what a type reference leads to is known by.
_eString resolvedName(const TypeRecord& type) {
    if (type.kind != TypeRecord::library) return ClassRenderer::typeName(type.name);
    return ClassRenderer::typeName({type.name.form, libraryTypeName(type.name.text)});
}

// How a reference reads where only a name can stand: the name of what it leads to, else "?".
_eString referenceName(const TypeRecord& reference) {
    return reference.resolved() ? resolvedName(reference) : _eString(L"?");
}

bool startsLikeAName(const _eString& name) {
    if (name.isEmpty()) return false;
    wchar_t c = name.get(0);
    return (c >= L'A' && c <= L'Z') || (c >= L'a' && c <= L'z') || c == L'_';
}

// The parameters in braces for a constructor, in parentheses otherwise; none: nothing, or "{}".
// Outside a constructor, "inout" and "out" parameters are marked as changed.
Output parameterList(const std::vector<const ParameterRecord*>& list, bool isConstructor) {
    if (list.empty()) return isConstructor ? tokens({L"{", L"}"}) : none();
    Output out = none();
    for (std::size_t i = 0; i < list.size(); ++i) {
        const ParameterRecord& p = *list[i];
        _eString separator = i != 0 ? L"," : isConstructor ? L"{" : L"(";
        Output mode = tokens({L":"});
        if (!isConstructor && p.direction == Direction::inout) mode = tokens({L"!", L":"});
        if (!isConstructor && p.direction == Direction::out) mode = tokens({L"!", L":", L"out"});
        out += tokens({separator, modelName(ClassRenderer::nameOrUnknown(p.name, true))});
        out += mode;
        out += typeRun(p.type);
    }
    return std::move(out += tokens({isConstructor ? L"}" : L")"}));
}

// The head of a function form: a function by name, or an operator symbol, prefix with one
// operand and infix with more.
Output functionHead(const _eString& name, const std::vector<const ParameterRecord*>& parameters) {
    if (startsLikeAName(name)) return tokens({L"function", modelName(name)}) + parameterList(parameters, false);
    if (parameters.size() == 1) return tokens({L"operator", modelName(name)}) + parameterList(parameters, false);
    // An operator symbol without parameters has no operand to stand between: it is written as
    // a prefix operator without parentheses.
    if (parameters.empty()) return tokens({L"operator", modelName(name)});
    std::vector<const ParameterRecord*> first(parameters.begin(), parameters.begin() + 1);
    std::vector<const ParameterRecord*> rest(parameters.begin() + 1, parameters.end());
    return tokens({L"operator"}) + parameterList(first, false) + tokens({modelName(name)}) + parameterList(rest, false);
}

// What the class at `own` gets for the far end of a two-ended association: a member when it
// is the class of `classId` and the far end can be navigated to.
Sections endSections(const AssociationEndRecord& own, const AssociationEndRecord& far, const _eString& classId) {
    if (!own.singleType || !(own.typeId == classId) || !far.isNavigable) return {};
    // The whole of an aggregation or composition on an end that can't be navigated holds its
    // part by value; every other member refers to its object.
    bool isRef = own.isNavigable ||
                 !(own.aggregation == Aggregation::shared || own.aggregation == Aggregation::composite);
    _eString name = ClassRenderer::hasName(far.name) ? ClassRenderer::nameOrUnknown(far.name, true)
                                                      : _eString(ClassRenderer::rolePrefix) + referenceName(far.roleType);
    Output declaration = tokens({L"var", modelName(name), L":"}) +
                         multiplicityRun(far.multiplicity, far.type, isRef) + tokens({L";"});
    return stateWithAccessor(far.visibility, far.id, std::move(declaration), tokens({L"selector", modelName(name), L";"}));
}

// The lines of a model's text: broken at every kind of line end, each line without the blanks
// at its end and with any other control character as a blank; no empty line at the start or
// the end, and no two in a row.
std::vector<std::wstring> textLines(const _eString& text) {
    std::vector<std::wstring> lines(1);
    std::wstring whole = toWString(text);
    for (std::size_t i = 0; i < whole.size(); ++i) {
        // Printable units below the line ends of Unicode go over as they are, a run at a time.
        std::size_t start = i;
        while (i < whole.size() && whole[i] >= 0x20 && whole[i] < 0x7f) ++i;
        lines.back().append(whole, start, i - start);
        if (i == whole.size()) break;
        wchar_t c = whole[i];
        bool lineEnd = c == L'\n' || c == L'\r' || c == L'\v' || c == L'\f' || c == 0x85 || c == 0x2028 || c == 0x2029;
        if (!lineEnd) {
            lines.back().push_back(c != L'\t' && (c < 0x20 || c == 0x7f) ? L' ' : c);
            continue;
        }
        if (c == L'\r' && i + 1 < whole.size() && whole[i + 1] == L'\n') ++i;
        lines.emplace_back();
    }
    std::vector<std::wstring> out;
    for (std::wstring& line : lines) {
        line.erase(line.find_last_not_of(L" \t") + 1);
        if (line.empty() && (out.empty() || out.back().empty())) continue;
        out.push_back(line);
    }
    while (!out.empty() && out.back().empty()) out.pop_back();
    return out;
}

// A line of `textLines` without its leading blanks (it has a character that isn't one).
std::wstring withoutLeadingBlanks(const std::wstring& line) { return line.substr(line.find_first_not_of(L" \t")); }

// The lines of a text, each without its leading blanks, joined by blanks.
std::wstring oneLine(const _eString& text) {
    std::wstring out;
    for (const std::wstring& line : textLines(text))
        if (!line.empty()) out += (out.empty() ? L"" : L" ") + withoutLeadingBlanks(line);
    return out;
}

// A comment of one line of text: "// " and the line, "//" alone for an empty one. A line comment
// ends only at a line end, and the text has none left, so nothing in it can end the comment early.
Piece commentLine(const std::wstring& line) {
    return {_eString((line.empty() ? L"//" : L"// " + line).c_str()), TokenKind::note};
}

Output comments(const std::vector<std::wstring>& lines) {
    Output out = none();
    for (const std::wstring& line : lines) out += tokens({commentLine(line)});
    return out;
}

// The comment lines that stand before a declaration: each line of the documentation, then each
// constraint as "constraint NAME (LANGUAGE): BODY", a body of several lines continued below.
Output notesBefore(const NotesRecord& notes) {
    // Notes hold no placeholder, and the declaration after them is never empty: a count of
    // placeholders needs none of their lines.
    if (Output::countingOnly()) return none();
    Output out = notes.documentation ? comments(textLines(*notes.documentation)) : none();
    for (const ConstraintRecord& constraint : notes.constraints) {
        std::wstring head = L"constraint";
        std::wstring name = oneLine(ClassRenderer::nameText(constraint.name, false));
        std::wstring language = constraint.language ? oneLine(*constraint.language) : std::wstring();
        if (!name.empty()) head += L" " + name;
        if (!language.empty()) head += L" (" + language + L")";
        head += L":";
        std::vector<std::wstring> lines = textLines(constraint.body);
        if (lines.empty())
            lines.push_back(head);
        else
            lines.front() = head + L" " + withoutLeadingBlanks(lines.front());
        out += comments(lines);
    }
    return out;
}

// The part under its section keyword, which belongs to the class `id`, or nothing when it is empty.
Output headed(const _eString& id, const wchar_t* keyword, const Output& part) {
    return part.isEmpty() ? none() : tokens({keyword}).declared(id, DeclarationPart::section) + part;
}

}  // namespace

// What stands for a name the model lacks: a message naming the element looked for.
_eString ClassRenderer::absentNameText(const NameRecord& name) {
    switch (name.form) {
        case NameRecord::missing: return _eString(L"?[[Missing Element '") + name.text + L"']]";
        case NameRecord::repeated: return _eString(L"?[[Duplicate Element '") + name.text + L"']]";
        default: return {};
    }
}

_eString ClassRenderer::nameText(const NameRecord& name, bool escape) {
    auto finish = [escape](const _eString& piece) {
        _eString trimmed = trimSpaces(piece);
        return escape ? escapeReservedWord(trimmed) : trimmed;
    };
    if (name.form == NameRecord::attribute) return finish(name.text);
    if (name.form == NameRecord::absent) return {};
    // A name element, or the message for one that isn't there, is split at commas.
    _eString text = name.form == NameRecord::element ? name.text : absentNameText(name);
    _eSeq<_eString> pieces;
    _eString piece;
    auto endPiece = [&] {
        _eString trimmed = trimSpaces(piece);
        for (int i = 0, n = trimmed.size(); i < n; ++i)
            if (trimmed.get(i) == L' ') trimmed.replaceAt(i, L'_');
        pieces.pushBack(escape ? escapeReservedWord(trimmed) : trimmed);
        piece = {};
    };
    for (int i = 0, n = text.size(); i < n; ++i) {
        if (text.get(i) == L',')
            endPiece();
        else
            piece.pushBack(text.get(i));
    }
    endPiece();
    return join(pieces, L", ");
}

_eString ClassRenderer::nameOrUnknown(const NameRecord& name, bool escape) {
    _eString text = nameText(name, escape);
    return text.isEmpty() ? _eString(L"?") : text;
}

bool ClassRenderer::hasName(const NameRecord& name) {
    return (name.form == NameRecord::attribute || name.form == NameRecord::element) && !nameText(name, false).isEmpty();
}

_eString ClassRenderer::typeName(const NameRecord& name) {
    _eString text = nameOrUnknown(name, false);
    if (textIs(text, L"boolean")) return L"bool";
    if (textIs(text, L"float") || textIs(text, L"double")) return L"real";
    return text;
}

bool ClassRenderer::readsVoid(const TypeRecord& type) {
    return type.resolved() && textIs(resolvedName(type), L"void");
}

_eString ClassRenderer::literalText(const _eString& value) {
    int n = value.size();
    if (n == 0) return value;
    wchar_t last = value.get(n - 1);
    if ((last == L'L' || last == L'l') && isInteger(value.take(n - 1))) return value.take(n - 1);
    if (n >= 3 && value.get(0) == L'\'' && last == L'\'') return _eString(L"`") + value.take(n - 1).drop(1) + L"`";
    return value;
}

namespace {

Output typeRun(const TypeRecord& type) {
    switch (type.kind) {
        case TypeRecord::none:
        case TypeRecord::unresolved: return tokens({unknown()});
        case TypeRecord::named:
        case TypeRecord::library: return tokens({modelName(resolvedName(type))});
        case TypeRecord::classType:
            return type.leaf ? tokens({modelName(resolvedName(type))}) : tokens({L"from", modelName(resolvedName(type))});
    }
    return tokens({unknown()});
}

// 0..1 is optional, n..1 plain, a set otherwise, constrained by its lower bound when that is
// a number other than 0. An upper bound other than 1 is never expressed.
Output multiplicityRun(const MultiplicityRecord& multiplicity, const TypeRecord& type, bool isRef) {
    Output typeTokens = typeRun(type);
    if (!multiplicity.single) return typeTokens;
    std::int32_t lower = boundValue(multiplicity.lower);
    std::int32_t upper = boundValue(multiplicity.upper);
    Output ref = isRef ? tokens({L"ref"}) : none();
    if (upper == 1 && lower == 0) return ref + typeTokens + tokens({L"||", L"void"});
    if (upper == 1) return ref + typeTokens;
    if (lower > 0)
        return tokens({L"those", L"x", L":", L"set", L"of"}) + ref + typeTokens +
               tokens({L":-", L"#", L"x", L">=", {intToString(lower), TokenKind::literal}});
    return tokens({L"set", L"of"}) + ref + typeTokens;
}

// A frozen attribute is a constant with a function to read it; any other a variable of its
// type and multiplicity with a selector.
Sections attributeParts(const AttributeRecord& attribute) {
    _eString name = ClassRenderer::nameOrUnknown(attribute.name, true);
    Output notes = notesBefore(attribute.notes);
    if (attribute.changeability == Changeability::frozen)
        return stateWithAccessor(
            attribute.visibility, attribute.id,
            notes + tokens({L"const", modelName(name), L"^=",
                            attribute.initialValue ? Piece(ClassRenderer::literalText(*attribute.initialValue),
                                                           TokenKind::literal)
                                                   : unknown(),
                            L";"}),
            tokens({L"function", modelName(name), L";"}));
    return stateWithAccessor(attribute.visibility, attribute.id,
                             notes + tokens({L"var", modelName(name), L":"}) +
                                 multiplicityRun(attribute.multiplicity, attribute.type, false) + tokens({L";"}),
                             tokens({L"selector", modelName(name), L";"}));
}

// A constructor when the operation is named "build" or as its class; otherwise a schema when
// nothing non-void is returned, else a function or an operator. Modifiers and bodies follow.
Sections operationParts(const OperationRecord& operation, const _eString& className) {
    bool abstract = operation.isAbstract;
    _eString name = ClassRenderer::nameOrUnknown(operation.name, true);
    bool isConstructor = textIs(ClassRenderer::nameOrUnknown(operation.name, false), L"build") || name == className;
    std::vector<const ParameterRecord*> parameters;
    std::vector<const ParameterRecord*> returns;
    for (const ParameterRecord& p : operation.parameters) {
        if (p.direction != Direction::result)
            parameters.push_back(&p);
        else if (!p.voidResult)
            returns.push_back(&p);
    }
    Output body;
    Output prefix = none();
    if (isConstructor) {
        body = tokens({L"build"}) + parameterList(parameters, true) + tokens({L"post", bodyToComplete()});
    } else {
        if (operation.scope == Scope::classifier)
            prefix = tokens({L"nonmember"});
        else if (abstract)
            prefix = tokens({L"deferred"});
        else if (operation.isLeaf)
            prefix = tokens({L"final"});
        if (returns.empty()) {
            bool allIn = std::all_of(parameters.begin(), parameters.end(),
                                     [](const ParameterRecord* p) { return p->direction == Direction::in; });
            body = (allIn ? tokens({L"schema", L"!", modelName(name)}) : tokens({L"schema", modelName(name)})) +
                   parameterList(parameters, false) + (abstract ? none() : tokens({L"post", bodyToComplete()}));
        } else {
            Output returnType = returns.size() > 1 ? tokens({L":", {L"[[Duplicate return declaration]]", TokenKind::unknown}})
                                                   : tokens({L":"}) + typeRun(returns[0]->type);
            body = functionHead(name, parameters) + returnType + (abstract ? none() : tokens({L"^=", bodyToComplete()}));
        }
    }
    return placed(sectionFor(operation.visibility),
                  (notesBefore(operation.notes) + prefix + body + tokens({L";"})).declared(operation.id, DeclarationPart::member));
}

// Members for the navigable far ends of a two-ended association, the first end's first.
Sections associationParts(const AssociationRecord& association, const _eString& classId) {
    if (association.ends.size() != 2) return {};
    const AssociationEndRecord& first = association.ends[0];
    const AssociationEndRecord& second = association.ends[1];
    return endSections(first, second, classId).merge(endSections(second, first, classId));
}

// An enumeration: "class NAME ^= enum" and its literals separated by ",", each after its notes,
// then "end;".
Output enumerationRun(const ClassRecord& record) {
    Output head = notesBefore(record.notes) +
                  tokens({L"class", modelName(ClassRenderer::typeName(record.name)), L"^=", L"enum"});
    for (std::size_t i = 0; i < record.literals.size(); ++i) {
        const LiteralRecord& literal = record.literals[i];
        if (i > 0) head += tokens({L","});
        head += notesBefore(literal.notes);
        head += tokens({modelName(ClassRenderer::nameOrUnknown(literal.name, true))});
    }
    return std::move(head).declared(record.id, DeclarationPart::classHead) +
           tokens({L"end", L";"}).declared(record.id, DeclarationPart::classEnd);
}

// Features in their order, then the members from associations, each part under its keyword
// in the order abstract, confined, interface; a class without members still has "interface".
// An interface is a deferred class whose operations are all deferred; the interfaces a class
// realises follow its parents in its inherits list.
Output classRun(const ClassRecord& record) {
    if (record.kind == ClassKind::enumeration) return enumerationRun(record);
    bool isInterface = record.kind == ClassKind::interface;
    _eString name = ClassRenderer::typeName(record.name);
    Sections sections;
    for (const FeatureRecord& feature : record.features)
        sections = std::move(sections).merge(std::visit(
            [&](const auto& member) -> Sections {
                if constexpr (std::is_same_v<std::decay_t<decltype(member)>, AttributeRecord>) {
                    return attributeParts(member);
                } else {
                    if (!isInterface) return operationParts(member, name);
                    OperationRecord deferred = member;
                    deferred.isAbstract = true;
                    return operationParts(deferred, name);
                }
            },
            feature));
    for (const AssociationRecord& association : record.associations)
        sections = std::move(sections).merge(associationParts(association, record.id));
    const Output& abstractPart = sections.abstractPart;
    const Output& confinedPart = sections.confinedPart;
    const Output& interfacePart = sections.interfacePart;
    const _eString& id = record.id;
    Output interfaceOut = abstractPart.isEmpty() && confinedPart.isEmpty()
                              ? tokens({L"interface"}).declared(id, DeclarationPart::section) + interfacePart
                              : headed(id, L"interface", interfacePart);
    Output prefix = isInterface     ? tokens({L"deferred"})
                    : record.isLeaf ? tokens({L"final"})
                    : record.isAbstract ? tokens({L"deferred"})
                                        : none();
    Output inherits = none();
    std::vector<const GeneralizationRecord*> supertypes;
    for (const GeneralizationRecord& parent : record.parents) supertypes.push_back(&parent);
    for (const GeneralizationRecord& realization : record.realizations) supertypes.push_back(&realization);
    for (std::size_t i = 0; i < supertypes.size(); ++i) {
        const TypeRecord& parent = supertypes[i]->parent;
        inherits += tokens({i == 0 ? L"inherits" : L",", parent.resolved() ? modelName(referenceName(parent)) : unknown()});
    }
    Output head = (notesBefore(record.notes) + prefix + tokens({L"class", modelName(name), L"^="}) + inherits)
                      .declared(id, DeclarationPart::classHead);
    head += headed(id, L"abstract", abstractPart) + headed(id, L"confined", confinedPart);
    head += interfaceOut;
    head += tokens({L"end", L";"}).declared(id, DeclarationPart::classEnd);
    return head;
}

}  // namespace

_eHndl<TarvaneOutput> ClassRenderer::typeTokens(const TypeRecord& type) { return typeRun(type).output(); }

_eHndl<TarvaneOutput> ClassRenderer::multiplicityType(const MultiplicityRecord& multiplicity, const TypeRecord& type,
                                                      bool isRef) {
    return multiplicityRun(multiplicity, type, isRef).output();
}

_eHndl<TarvaneSections> ClassRenderer::attributeSections(const AttributeRecord& attribute) {
    return attributeParts(attribute).sections();
}

_eHndl<TarvaneSections> ClassRenderer::operationSections(const OperationRecord& operation, const _eString& className) {
    return operationParts(operation, className).sections();
}

_eHndl<TarvaneSections> ClassRenderer::associationSections(const AssociationRecord& association,
                                                           const _eString& classId) {
    return associationParts(association, classId).sections();
}

_eHndl<TarvaneOutput> ClassRenderer::enumerationDeclaration(const ClassRecord& record) {
    return enumerationRun(record).output();
}

_eHndl<TarvaneOutput> ClassRenderer::classDeclaration(const ClassRecord& record) { return classRun(record).output(); }

int ClassRenderer::unknownCount(const ClassRecord& record) {
    Output::CountOnly counting;
    return classRun(record).unknowns();
}
