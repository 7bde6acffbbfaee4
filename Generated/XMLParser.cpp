#include "Generated/XMLParser.h"

#include <cstring>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <typeinfo>

#include "xml/XMLCharData.h"
#include "runtime/StringUtils.h"
#include "xml/XMLDocument.h"

const DirectTables& XMLParser::directTables() {
    static const DirectTables direct(xmlParseTables);
    return direct;
}

const ParseTables& XMLParser::tables() {
    static const ParseTables built = ParseTables::build(xmlParseTables);
    return built;
}

// Made on the first parse that needs recovery.
RecoveryTable XMLParser::recoveryTable() const {
    static const RecoveryTable pairs = ParseTables::recoveryOf(xmlParseTables);
    return pairs;
}

namespace {

// Symbol k of the production being reduced: the right-hand side lies at peek(0) onwards.
template <class T>
_eHndl<T> symbol(const ParseStack& stack, int k) {
    return _eHndl<T>(static_cast<T*>(stack.peek(k - 1).value.get()));
}

// Symbol 1, made unique to be changed in place; it stays the value of the nonterminal.
template <class T>
T* firstToChange(ParseStack& stack) {
    return static_cast<T*>(stack.peekToChange(0).value.uniquePointer());
}

// The string kept for a name of `count` bytes read whole: its units are widened on the stack
// and looked up, with no object of its own for the name.
_eString sharedName(const unsigned char* bytes, std::int32_t count) {
    if (count > XMLNames::longest) return XMLNames::shared(std::wstring(bytes, bytes + count));
    wchar_t units[XMLNames::longest];
    std::copy(bytes, bytes + count, units);
    return XMLNames::shared(std::wstring_view(units, std::size_t(count)));
}

}  // namespace

// The semantic actions: each builds a node of the tree from the popped right-hand side, or adds
// to the node of its first symbol. Values not named here do nothing.
void XMLParser::reduceAction(std::int32_t semanticAction) {
    const Position& at = getReducePosition();
    auto result = [this](StackValue* value) { stack.peekToChange(0).value = value; };
    using T = Terminal;
    namespace A = SemanticAction;
    switch (semanticAction) {
        case A::documentAfterSpace: result(new XMLDocument(at, symbol<XMLElement>(stack, 2))); break;
        case A::documentAfterProlog: result(new XMLDocument(at, symbol<XMLElement>(stack, 3))); break;
        case A::newString: result(new XMLString(symbol<T>(stack, 1))); break;
        case A::appendToString: firstToChange<XMLString>(stack)->appendCharacter(symbol<T>(stack, 2)); break;
        case A::newEntityValue: result(new XMLEntityValue(at)); break;
        case A::entityValueCharacter: firstToChange<XMLEntityValue>(stack)->addCharacter(symbol<T>(stack, 2)); break;
        case A::entityValuePEReference: firstToChange<XMLEntityValue>(stack)->addPEReference(symbol<XMLPEReference>(stack, 2)); break;
        case A::entityValueReference: firstToChange<XMLEntityValue>(stack)->addReference(symbol<XMLReference>(stack, 2)); break;
        case A::newAttributeValue: result(new XMLAttributeValue(at)); break;
        case A::attributeValueCharacter: firstToChange<XMLAttributeValue>(stack)->addCharacter(symbol<T>(stack, 2)); break;
        case A::attributeValueReference: firstToChange<XMLAttributeValue>(stack)->addReference(symbol<XMLReference>(stack, 2)); break;
        case A::newCharData: result(new XMLCharData(symbol<T>(stack, 1))); break;
        case A::appendToCharData: firstToChange<XMLCharData>(stack)->appendCharacter(symbol<T>(stack, 2)); break;
        case A::newCDSect: result(new XMLCDSect(at, symbol<XMLCharData>(stack, 2))); break;
        case A::emptyCharData: result(new XMLCharData(at)); break;
        case A::emptyElement:
            result(ElementCreation::createEmptyElement(symbol<XMLEmptyElemTag>(stack, 1), naming,
                                                       extensions.everyForm)
                       .get());
            break;
        case A::element:
            result(ElementCreation::createElement(symbol<XMLSTag>(stack, 1), symbol<XMLcontent>(stack, 2),
                                                  symbol<XMLETag>(stack, 3), naming)
                       .get());
            break;
        case A::startTag:
        case A::startTagWithSpace:
            noteTag(symbol<XMLString>(stack, 2));
            result(new XMLSTag(at, symbol<XMLString>(stack, 2), symbol<XMLAttributeList>(stack, 3)));
            break;
        case A::newAttributeList: result(new XMLAttributeList(at)); break;
        case A::addAttribute: firstToChange<XMLAttributeList>(stack)->addAttribute(symbol<XMLAttribute>(stack, 3)); break;
        case A::newAttribute:
            static_cast<XMLAttributeValue*>(stack.peekToChange(2).value.uniquePointer())->shareElements();
            result(new XMLAttribute(symbol<XMLString>(stack, 1), symbol<XMLAttributeValue>(stack, 3)));
            break;
        case A::endTag: result(new XMLETag(at, symbol<XMLString>(stack, 3))); break;
        case A::newContent: result(new XMLcontent(at)); break;
        case A::contentElement:
        case A::contentCDSect: firstToChange<XMLcontent>(stack)->addItem(symbol<XMLContentItem>(stack, 2)); break;
        case A::contentReference: firstToChange<XMLcontent>(stack)->addItem(contentItem(symbol<XMLContentItem>(stack, 2))); break;
        case A::contentCharData:
            static_cast<XMLCharData*>(stack.peekToChange(1).value.uniquePointer())->shareText();
            firstToChange<XMLcontent>(stack)->addItem(symbol<XMLContentItem>(stack, 2));
            break;
        case A::emptyTag:
        case A::emptyTagWithSpace:
            noteTag(symbol<XMLString>(stack, 2));
            result(new XMLEmptyElemTag(at, symbol<XMLString>(stack, 2), symbol<XMLAttributeList>(stack, 3)));
            break;
        case A::decimalCharReference: result(new XMLCharReference(at, symbol<XMLNumber>(stack, 3))); break;
        case A::hexCharReference: result(new XMLCharReference(at, symbol<XMLNumber>(stack, 4))); break;
        case A::newNumber: result(new XMLNumber(symbol<T>(stack, 1))); break;
        case A::decimalDigit: firstToChange<XMLNumber>(stack)->addDigit(symbol<T>(stack, 2), false); break;
        case A::hexDigit: firstToChange<XMLNumber>(stack)->addDigit(symbol<T>(stack, 2), true); break;
        case A::entityReference:
            result(entityReference(at, XMLNames::shared(symbol<XMLString>(stack, 2)->units())).get());
            break;
        case A::peReference: result(new XMLPEReference(at, symbol<XMLString>(stack, 2))); break;
        default:
            if (semanticAction < 0 || semanticAction > 89) raiseNoChoice(_xPlaces::parserNoAction);
    }
}

void XMLParser::takeWhole(XMLLex& lexer, std::int32_t code, bool stopAtLineEnd) {
    takeRuns(lexer, stopAtLineEnd);
    for (;;) {
        // Text may begin where a tag or a reference ends.
        bool closed = code == '>';
        if (code == Token::whiteSpace) {
            takeAttribute(lexer);
        } else if (code == '/') {
            takeName(lexer);
        } else if (code == '<') {
            closed = takeEndTag(lexer) || takeTag(lexer);
            if (!closed) takeName(lexer);
        } else if (code == '&') {
            closed = takeReference(lexer);
        }
        if (closed && takeText(lexer)) takeRuns(lexer, stopAtLineEnd);
        // A "<" or "&" read so could stand first on its line, unseen by the progress shown by line.
        if (stopAtLineEnd) return;
        code = takeOpen(lexer);
        if (code == 0) return;
    }
}

void XMLParser::takeRuns(XMLLex& lexer, bool stopAtLineEnd) {
    constexpr std::int32_t room = 4096;
    unsigned char units[room];
    while (const RunBytes* run = runBytes()) {
        std::int32_t count = lexer.readRun(run->member, stopAtLineEnd, units, room);
        takeRun(*run, units, count);
        if (count < room) return;
    }
}

std::int32_t XMLParser::nameLength(const ByteSet& first, const ByteSet& rest, const unsigned char* bytes,
                                   std::int32_t count) {
    if (count < 1 || !first[bytes[0]]) return 0;
    std::int32_t length = 1;
    while (length < count && rest[bytes[length]]) ++length;
    return length;
}

std::int32_t XMLParser::closingQuote(const ByteSet& first, const ByteSet& rest, const ByteSet (&value)[2],
                                     const unsigned char* bytes, std::int32_t count, std::int32_t& equals) {
    equals = nameLength(first, rest, bytes, count);
    if (equals == 0 || equals + 1 >= count || bytes[equals] != '=') return 0;
    unsigned char quote = bytes[equals + 1];
    if (quote != '"' && quote != '\'') return 0;
    const ByteSet& inValue = value[quote == '\'' ? 1 : 0];
    std::int32_t close = equals + 2;
    while (close < count && inValue[bytes[close]]) ++close;
    return close < count && bytes[close] == quote ? close : 0;
}

void XMLParser::takeAttribute(XMLLex& lexer) {
    const AttributeBytes* can = attributeBytes();
    if (can == nullptr) return;
    const unsigned char* bytes = nullptr;
    std::int32_t count = lexer.ahead(bytes);
    std::int32_t equals = 0;
    std::int32_t close = closingQuote(can->first, can->rest, can->value, bytes, count, equals);
    if (close == 0 || close + 1 >= count || !can->after[bytes[close + 1]]) return;

    // What the reductions of its tokens would make, in the same order, at the same places.
    _eFreeze freeze(this);
    const Position at = lexer.take(1);
    _eHndl<XMLAttributeValue> value(new XMLAttributeValue(lexer.take(equals + 1)));
    std::int32_t length = close - equals - 2;
    value->shareElements(bytes + equals + 2, length);
    lexer.take(length + 1);
    _eHndl<XMLAttribute> attribute(new XMLAttribute(at, sharedName(bytes, equals), value));
    // The blank before it goes, and the attribute list below it is on top again.
    state = stack.peek(-1).state;
    stack.pop(1);
    stack.trim();
    static_cast<XMLAttributeList*>(stack.peekToChange(-1).value.uniquePointer())->addAttribute(attribute);
}

bool XMLParser::takeEndTag(XMLLex& lexer) {
    const unsigned char* bytes = nullptr;
    std::int32_t count = lexer.ahead(bytes);
    if (count < 3 || bytes[0] != '/') return false;
    const EndTagBytes* can = endTagBytes();
    if (can == nullptr) return false;
    std::int32_t length = nameLength(can->first, can->rest, bytes + 1, count - 1);
    if (length == 0 || length + 1 >= count || bytes[length + 1] != '>') return false;

    // What the reductions of its tokens would make, in the same order: the name, the end tag
    // (where its "<" is), the element, and the content with the element added.
    _eFreeze freeze(this);
    const Position open = stack.peek(-1).value->getPosition();
    lexer.take(length + 2);  // the "/", the name and the ">"
    _eHndl<XMLETag> endTag(new XMLETag(open, sharedName(bytes + 1, length)));
    _eFrom<XMLElement> element = ElementCreation::createElement(
        _eHndl<XMLSTag>(static_cast<XMLSTag*>(stack.peek(-3).value.get())),
        _eHndl<XMLcontent>(static_cast<XMLcontent*>(stack.peek(-2).value.get())), endTag, naming);
    // The "<", the element's content and its start tag go; the content around it is on top.
    state = can->state;
    stack.pop(3);
    stack.trim();
    static_cast<XMLcontent*>(stack.peekToChange(-1).value.uniquePointer())->addItem(element);
    return true;
}

namespace {

// Where an attribute of a tag read whole stands among the bytes read ahead.
struct AttributeSpan {
    std::int32_t name;    // its first byte
    std::int32_t equals;  // the "=" after its name; the quote follows
    std::int32_t close;   // the closing quote
};

}  // namespace

bool XMLParser::takeTag(XMLLex& lexer) {
    const TagBytes* can = tagBytes();
    if (can == nullptr) return false;
    const unsigned char* bytes = nullptr;
    std::int32_t count = lexer.ahead(bytes);
    const std::int32_t nameEnd = nameLength(can->first, can->rest, bytes, count);
    if (nameEnd == 0) return false;

    // The whole tag is looked at before anything is taken, so that a tag left to the tokens
    // leaves the parse as it found it.
    constexpr int room = 32;
    AttributeSpan spans[room];
    int attributes = 0;
    std::int32_t at = nameEnd;
    for (;;) {
        const bool blank = at < count && can->blank[bytes[at]];
        if (blank) ++at;
        if (at + 1 >= count) return false;
        if (bytes[at] == '>' || (bytes[at] == '/' && bytes[at + 1] == '>')) break;
        if (!blank || attributes == room) return false;
        std::int32_t equals = 0;
        std::int32_t close = closingQuote(can->attributeFirst, can->attributeRest, can->value, bytes + at, count - at, equals);
        if (close == 0) return false;
        spans[attributes++] = {at, at + equals, at + close};
        at += close + 1;
    }
    const bool empty = bytes[at] == '/';
    const std::int32_t end = empty ? at + 1 : at;

    // What the reductions of its tokens would make, in the same order, at the same places: the
    // attribute list where the name ends, each attribute added to it, and the tag where its "<"
    // is; an empty-element tag's element added to the content around it.
    //
    // The tag holds no line end. Without a tab each byte stands one column after the one before,
    // so that the lexer is moved past the whole tag at once and the places are counted back from
    // its end; with one, it is moved piece by piece.
    _eFreeze freeze(this);
    const bool tabbed = std::memchr(bytes, '\t', std::size_t(end + 1)) != nullptr;
    const Position last = tabbed ? Position() : lexer.take(end + 1);
    std::int32_t taken = 0;
    auto placeOf = [&](std::int32_t byte) {
        if (tabbed) {
            Position place = lexer.take(byte + 1 - taken);
            taken = byte + 1;
            return place;
        }
        Position place = last;
        place.column -= end - byte;
        return place;
    };
    const Position open = stack.peek(-1).value->getPosition();
    const _eString name = sharedName(bytes, nameEnd);
    _eHndl<XMLAttributeList> list(new XMLAttributeList(placeOf(nameEnd)));
    for (int k = 0; k < attributes; ++k) {
        const AttributeSpan& span = spans[k];
        const Position attributeAt = placeOf(span.name);
        _eHndl<XMLAttributeValue> value(new XMLAttributeValue(placeOf(span.equals + 1)));
        value->shareElements(bytes + span.equals + 2, span.close - span.equals - 2);
        list->addAttribute(new XMLAttribute(attributeAt, sharedName(bytes + span.name, span.equals - span.name), value));
    }
    if (tabbed && taken <= end) lexer.take(end + 1 - taken);
    noteTag(name);
    if (!empty) {
        // The tag stands where the "<" stood.
        stack.peekToChange(-1).value = new XMLSTag(open, name, list);
        state = can->startState;
        return true;
    }
    _eFrom<XMLElement> element =
        ElementCreation::createEmptyElement(new XMLEmptyElemTag(open, name, list), naming, extensions.everyForm);
    // The "<" goes, and the content around the element is on top again, with the element added.
    state = can->emptyState;
    stack.pop(1);
    stack.trim();
    static_cast<XMLcontent*>(stack.peekToChange(-1).value.uniquePointer())->addItem(element);
    return true;
}

bool XMLParser::takeReference(XMLLex& lexer) {
    const ReferenceBytes* can = referenceBytes();
    if (can == nullptr) return false;
    const unsigned char* bytes = nullptr;
    std::int32_t count = lexer.ahead(bytes);
    if (count == 0) return false;

    // What the reductions of its tokens would make, in the same order: the name or the code,
    // the reference (where its "&" is), and the value below with the reference added.
    _eFreeze freeze(this);
    const Position open = stack.peek(-1).value->getPosition();
    _eFrom<NonTerminal> reference;
    if (bytes[0] == '#') {
        bool hexadecimal = count > 1 && bytes[1] == 'x';
        std::int32_t first = hexadecimal ? 2 : 1;
        const ByteSet& digits = can->digits[hexadecimal ? 1 : 0];
        std::int32_t end = first + nameLength(digits, digits, bytes + first, count - first);
        if (end == first || end >= count || bytes[end] != ';') return false;
        // A large code wraps around, as its number does when read by the digit.
        std::uint32_t code = 0;
        for (std::int32_t k = first; k < end; ++k)
            code = code * (hexadecimal ? 16u : 10u) + std::uint32_t(digitValue(wchar_t(bytes[k])));
        reference = new XMLCharReference(open, std::int32_t(code));
        lexer.take(end + 1);
    } else {
        std::int32_t length = nameLength(can->first, can->rest, bytes, count);
        if (length == 0 || length >= count || bytes[length] != ';') return false;
        lexer.take(length + 1);  // the name and the ";"
        reference = entityReference(open, sharedName(bytes, length));
    }
    // The "&" goes, and the value below it is on top again.
    state = can->state;
    stack.pop(1);
    stack.trim();
    StackValue* value = stack.peekToChange(-1).value.uniquePointer();
    if (can->addedBy == SemanticAction::contentReference)
        static_cast<XMLcontent*>(value)->addItem(contentItem(static_cast<XMLContentItem*>(reference.get())));
    else
        static_cast<XMLAttributeValue*>(value)->addReference(static_cast<XMLReference*>(reference.get()));
    return true;
}

void XMLParser::beginContent(const Position& at, std::int32_t contentState) {
    stack.push({state, _eHndl<StackValue>(new XMLcontent(at))});
    state = contentState;
}

std::int32_t XMLParser::takeOpen(XMLLex& lexer) {
    const unsigned char* bytes = nullptr;
    if (lexer.ahead(bytes) == 0 || (bytes[0] != '<' && bytes[0] != '&')) return 0;
    const unsigned char opener = bytes[0];
    const OpenBytes* can = openBytes(opener);
    if (can == nullptr) return 0;
    // What the reductions before its token is shifted would make: the text on top added to the
    // content below it, or an empty content at the "<".
    _eFreeze freeze(this);
    const Position at = lexer.take(1);
    if (can->made == OpenBytes::Made::textAdded) {
        auto* text = static_cast<XMLCharData*>(stack.peekToChange(-1).value.uniquePointer());
        text->shareText();
        static_cast<XMLcontent*>(stack.peekToChange(-2).value.uniquePointer())->addItem(text);
        stack.pop(1);
        stack.trim();
        state = can->contentState;
    } else if (can->made == OpenBytes::Made::newContent) {
        beginContent(at, can->contentState);
    } else {
        state = can->contentState;
    }
    const std::int32_t code = XMLLex::tokenCode(opener);
    stack.push({state, _eHndl<StackValue>(new SimpleTerminal(at, code))});
    state = can->state;
    return code;
}

bool XMLParser::takeText(XMLLex& lexer) {
    const TextBytes* can = textBytes();
    if (can == nullptr) return false;
    const unsigned char* bytes = nullptr;
    if (lexer.ahead(bytes) == 0 || !can->first[bytes[0]]) return false;
    // What the reductions of its token would make: the content where there is none yet, at the
    // same place, and the text of one character.
    _eFreeze freeze(this);
    const Position at = lexer.take(1);
    if (can->newContent) beginContent(at, can->contentState);
    _eHndl<XMLCharData> text(new XMLCharData(at));
    const wchar_t unit = bytes[0];
    text->appendCharacters(&unit, 1);
    stack.push({state, text.get()});
    state = can->state;
    return true;
}

XMLParser::Step XMLParser::followByte(const Configuration& from, unsigned char byte, bool untilShift) const {
    Step next{from, {}, true};
    next.ok = follow(next.at, byteToken(byte), next.ran, untilShift);
    return next;
}

XMLParser::Step XMLParser::followText(const Configuration& from, std::string_view text) const {
    Step out{from, {}, true};
    for (char byte : text) {
        Step next = followByte(out.at, static_cast<unsigned char>(byte));
        out.ok = out.ok && next.ok;
        out.at = next.at;
        out.ran.insert(out.ran.end(), next.ran.begin(), next.ran.end());
    }
    return out;
}

namespace {

// What the tables give where a parse stands is the same for every parser: each finding is made
// once in a process, and every parser after the first takes it from here.
template <class Found, class Key, class Find>
std::shared_ptr<const Found> foundOnce(const Key& key, Find find) {
    static std::mutex lock;
    static std::map<Key, std::shared_ptr<const Found>> found;
    std::lock_guard<std::mutex> hold(lock);
    auto [at, added] = found.try_emplace(key);
    if (added) at->second = find();
    return at->second;
}

// Learns what `find` finds where the parse stands in `state`, and keeps it in `known`.
template <class Entry, class Find>
auto learnByState(std::vector<Entry>& known, std::int32_t state, Find find) {
    if (std::size_t(state) >= known.size()) known.resize(std::size_t(state) + 1);
    Entry& entry = known[std::size_t(state)];
    entry.bytes = foundOnce<typename decltype(entry.bytes)::element_type>(state, find);
    entry.learned = true;
    return entry.bytes.get();
}

// Appends to a sample text a name of `length` bytes ("a", "ab", "abb", ...), and to `ran` the
// actions its tokens run: the string made, then a byte appended for each further one.
void addNameSample(std::string& text, std::vector<std::int32_t>& ran, int length) {
    text += 'a' + std::string(std::size_t(length - 1), 'b');
    ran.push_back(SemanticAction::newString);
    ran.insert(ran.end(), std::size_t(length - 1), SemanticAction::appendToString);
}

// The same for an attribute `name="value"` or `name='value'`, up to its addition to the list
// below it, which the byte after it brings about.
void addAttributeSample(std::string& text, std::vector<std::int32_t>& ran, int nameLength, char quote,
                        int valueLength) {
    namespace A = SemanticAction;
    addNameSample(text, ran, nameLength);
    text += std::string{'=', quote} + std::string(std::size_t(valueLength), 'v') + quote;
    ran.push_back(A::newAttributeValue);
    ran.insert(ran.end(), std::size_t(valueLength), A::attributeValueCharacter);
    ran.insert(ran.end(), {A::newAttribute, A::addAttribute});
}

}  // namespace

XMLParser::ByteSet XMLParser::bytesLike(const Configuration& from, unsigned char sample, bool untilShift) const {
    const Step expected = followByte(from, sample, untilShift);
    // Many bytes share a token: each token is followed once. By token code: 0 not yet followed,
    // 1 like the sample, 2 not.
    std::array<std::uint8_t, 512> byToken{};
    ByteSet like{};
    for (int byte = 0; byte < 256; ++byte) {
        auto b = static_cast<unsigned char>(byte);
        std::int32_t code = byteToken(b);
        std::uint8_t known = std::size_t(code) < byToken.size() ? byToken[std::size_t(code)] : 0;
        if (known == 0) known = followByte(from, b, untilShift) == expected ? 1 : 2;
        if (std::size_t(code) < byToken.size()) byToken[std::size_t(code)] = known;
        like[b] = known == 1;
    }
    return like;
}

bool XMLParser::nameBytesAfter(const Configuration& start, const std::string& before, ByteSet& first,
                               ByteSet& rest) const {
    const Configuration opened = followText(start, before).at, one = followText(start, before + "a").at,
                        two = followText(start, before + "ab").at;
    if (followByte(two, 'b').at != two) return false;
    first = bytesLike(opened, 'a');
    rest = both(bytesLike(one, 'b'), bytesLike(two, 'b'));
    // A line end is a token of its own, for the progress shown by line.
    first[10] = rest[10] = false;
    return true;
}

XMLParser::ByteSet XMLParser::both(const ByteSet& one, const ByteSet& other) {
    ByteSet in{};
    for (std::size_t b = 0; b < in.size(); ++b) in[b] = one[b] && other[b];
    return in;
}

void XMLParser::takeName(XMLLex& lexer) {
    const NameBytes* can = nameBytes();
    if (can == nullptr) return;
    const unsigned char* bytes = nullptr;
    std::int32_t count = lexer.ahead(bytes);
    std::int32_t end = nameLength(can->first, can->rest, bytes, count);
    if (end == 0 || end == count) return;  // none, or it may go on beyond what was read ahead
    _eFreeze freeze(this);
    _eHndl<XMLString> name(new XMLString(lexer.take(1), bytes, end));
    if (end > 1) lexer.take(end - 1);
    stack.push({state, name.get()});
    state = can->state;
}

const XMLParser::NameBytes* XMLParser::learnNameBytes() {
    return learnByState(knownNames, state, [this] { return findNameBytes(); });
}

const XMLParser::TextBytes* XMLParser::learnTextBytes() {
    return learnByState(knownTexts, state, [this] { return findTextBytes(); });
}

// The first byte of text is read without its token only where the tables, followed from the
// state alone, take it as making the text (after an empty content, where an element's content
// begins) and leave it on top, with nothing below the state taken away. A byte belongs to the
// set where it runs exactly as the sample byte does.
std::shared_ptr<const XMLParser::TextBytes> XMLParser::findTextBytes() const {
    namespace A = SemanticAction;
    const Configuration start{{}, state};
    const Step first = followByte(start, 'a');
    auto bytes = std::make_shared<TextBytes>();
    if (!first.ok) return nullptr;
    if (first.ran == std::vector<std::int32_t>{A::newContent, A::newCharData} && first.at.below.size() == 2 &&
        first.at.below[0] == state) {
        bytes->newContent = true;
        bytes->contentState = first.at.below[1];
    } else if (first.ran != std::vector<std::int32_t>{A::newCharData} || first.at.below != std::vector{state}) {
        return nullptr;
    }
    bytes->state = first.at.state;
    bytes->first = bytesLike(start, 'a');
    return bytes;
}

// A name is read whole where its first byte, shifted over the state alone, makes a string and
// leaves it on top in a state where each further byte of a name appends to it and comes back.
std::shared_ptr<const XMLParser::NameBytes> XMLParser::findNameBytes() const {
    namespace A = SemanticAction;
    const Configuration start{{}, state};
    Step first = followByte(start, 'a');
    if (!first.ok || first.ran != std::vector<std::int32_t>{A::newString} || first.at.below != std::vector{state})
        return nullptr;
    Step again = followByte(first.at, 'b');
    if (!again.ok || again.at != first.at || again.ran != std::vector<std::int32_t>{A::appendToString}) return nullptr;
    auto bytes = std::make_shared<NameBytes>();
    bytes->state = first.at.state;
    bytes->first = bytesLike(start, 'a');
    bytes->rest = bytesLike(first.at, 'b');
    // A line end is a token of its own, for the progress shown by line.
    bytes->first[10] = bytes->rest[10] = false;
    return bytes;
}

const XMLParser::AttributeBytes* XMLParser::learnAttributeBytes(const Below<2>& below) {
    return knownAttributes.add(state, below, foundOnce<AttributeBytes>(std::pair{state, below}, [&] {
                                   return findAttributeBytes(below);
                               }));
}

// An attribute is read whole only where the tables, followed from where the parse stands (the
// blank before the name on top, over the attribute list under it), take it as a loop:
// its tokens run the actions that build the attribute and add it to the list below, in this
// order, and the byte after it finds the parse with that list on top, where the blank was
// shifted. Checked for names of one to three bytes and values of none to two, with a name or
// value byte that runs again to the same states: one that runs as the sample byte, then, runs so
// at any length. A byte belongs to a set where it runs exactly as the sample byte does.
std::shared_ptr<const XMLParser::AttributeBytes> XMLParser::findAttributeBytes(const Below<2>& below) const {
    namespace A = SemanticAction;
    const Configuration start{{below[1], below[0]}, state};
    const Configuration done{{below[1]}, below[0]};
    const char quotes[2] = {'"', '\''};
    for (char quote : quotes)
        for (int nameLength = 1; nameLength <= 3; ++nameLength)
            for (int valueLength = 0; valueLength <= 2; ++valueLength) {
                std::string text;
                std::vector<std::int32_t> expected;
                addAttributeSample(text, expected, nameLength, quote, valueLength);
                Step whole = followText(start, text);
                Step end = followByte(whole.at, ' ', true);
                whole.ran.insert(whole.ran.end(), end.ran.begin(), end.ran.end());
                if (!whole.ok || !end.ok || end.at != done || whole.ran != expected) return nullptr;
            }
    auto bytes = std::make_shared<AttributeBytes>();
    if (!nameBytesAfter(start, "", bytes->first, bytes->rest) || followText(start, "a=").at != followText(start, "ab=").at)
        return nullptr;
    bytes->after.fill(true);
    for (int k = 0; k < 2; ++k) {
        const std::string open{'a', '=', quotes[k]};
        Configuration empty = followText(start, open).at, some = followText(start, open + "v").at;
        if (followByte(some, 'v').at != some) return nullptr;
        bytes->value[k] = both(bytesLike(empty, 'v'), bytesLike(some, 'v'));
        bytes->value[k][10] = false;
        for (const Configuration& from : {followByte(empty, quotes[k]).at, followByte(some, quotes[k]).at})
            bytes->after = both(bytes->after, bytesLike(from, ' ', true));
    }
    return bytes;
}

const XMLParser::OpenBytes* XMLParser::learnOpenBytes(unsigned char opener, const Below<2>& below) {
    return knownOpens[opener == '&' ? 1 : 0].add(
        state, below,
        foundOnce<OpenBytes>(std::tuple{opener, state, below}, [&] { return findOpenBytes(opener, below); }));
}

// A "<" or "&" is read without its token only where the tables, followed from where the parse
// stands, shift it after running nothing (the value on top stays, perhaps as another symbol), or
// after adding the text on top to the content below it, or after making an empty content;
// nothing below that is taken away.
std::shared_ptr<const XMLParser::OpenBytes> XMLParser::findOpenBytes(unsigned char opener,
                                                                     const Below<2>& below) const {
    namespace A = SemanticAction;
    using Made = OpenBytes::Made;
    const Step step = followByte({{below[1], below[0]}, state}, opener);
    if (!step.ok) return nullptr;
    auto bytes = std::make_shared<OpenBytes>();
    const std::vector<std::int32_t>& left = step.at.below;
    if (step.ran.empty() && left.size() == 3 && left[0] == below[1] && left[1] == below[0]) {
        bytes->made = Made::nothing;
        bytes->contentState = left[2];
    } else if (step.ran == std::vector<std::int32_t>{A::contentCharData} && left.size() == 2 && left[0] == below[1]) {
        bytes->made = Made::textAdded;
        bytes->contentState = left[1];
    } else if (step.ran == std::vector<std::int32_t>{A::newContent} && left.size() == 4 &&
               std::vector(left.begin(), left.begin() + 3) == std::vector{below[1], below[0], state}) {
        bytes->made = Made::newContent;
        bytes->contentState = left[3];
    } else {
        return nullptr;
    }
    bytes->state = step.at.state;
    return bytes;
}

const XMLParser::TagBytes* XMLParser::learnTagBytes(const Below<2>& below) {
    return knownTags.add(state, below,
                         foundOnce<TagBytes>(std::pair{state, below}, [&] { return findTagBytes(below); }));
}

// A tag is read whole only where the tables, followed from where the parse stands (the "<" on
// top, over the content under it), take it as a start tag left on top in one state, or as an
// empty-element tag whose element is added to that content, left on top in another: its tokens
// run the actions that build the name, the attribute list, each attribute and the tag, in this
// order, and for an empty-element tag the element and its addition to the content. Checked for
// names of one to three bytes, none to two attributes with values of none to two bytes, a blank
// before each and perhaps before the end, with bytes that run again to the same states, as for
// an attribute.
std::shared_ptr<const XMLParser::TagBytes> XMLParser::findTagBytes(const Below<2>& below) const {
    namespace A = SemanticAction;
    const Configuration start{{below[1], below[0]}, state};
    struct Attribute {
        int nameLength, valueLength;
        char quote;
    };
    const std::vector<std::vector<Attribute>> lists = {{}, {{1, 0, '"'}}, {{2, 1, '\''}, {3, 2, '"'}}};
    std::optional<Configuration> started, emptied;
    for (int nameLength = 1; nameLength <= 3; ++nameLength)
        for (const std::vector<Attribute>& list : lists)
            for (bool trailing : {false, true})
                for (bool empty : {false, true}) {
                    std::string text;
                    std::vector<std::int32_t> expected;
                    addNameSample(text, expected, nameLength);
                    expected.push_back(A::newAttributeList);
                    for (const Attribute& attribute : list) {
                        text += ' ';
                        addAttributeSample(text, expected, attribute.nameLength, attribute.quote, attribute.valueLength);
                    }
                    if (trailing) text += ' ';
                    text += empty ? "/>" : ">";
                    if (empty)
                        expected.insert(expected.end(),
                                        {trailing ? A::emptyTagWithSpace : A::emptyTag, A::emptyElement, A::contentElement});
                    else
                        expected.push_back(trailing ? A::startTagWithSpace : A::startTag);
                    const Step whole = followText(start, text);
                    std::optional<Configuration>& done = empty ? emptied : started;
                    if (!done) done = whole.at;
                    const std::vector<std::int32_t> left = empty ? std::vector{below[1]} : start.below;
                    if (!whole.ok || whole.at != *done || whole.at.below != left || whole.ran != expected)
                        return nullptr;
                }
    auto bytes = std::make_shared<TagBytes>();
    // After the blank before an attribute the parse stands as it does before the first one, so
    // what holds for the first holds for every later one.
    if (!nameBytesAfter(start, "", bytes->first, bytes->rest) ||
        followText(start, "a ").at != followText(start, "a b='' ").at ||
        !nameBytesAfter(start, "a ", bytes->attributeFirst, bytes->attributeRest) ||
        followText(start, "a c=").at != followText(start, "a cd=").at)
        return nullptr;
    bytes->blank = both(bytesLike(followText(start, "a").at, ' '), bytesLike(followText(start, "a b=''").at, ' '));
    const char quotes[2] = {'"', '\''};
    for (int k = 0; k < 2; ++k) {
        const std::string open = std::string("a c=") + quotes[k];
        Configuration none = followText(start, open).at, some = followText(start, open + "v").at;
        if (followByte(some, 'v').at != some) return nullptr;
        bytes->value[k] = both(bytesLike(none, 'v'), bytesLike(some, 'v'));
    }
    // A line end is a token of its own, for the progress shown by line.
    bytes->blank[10] = bytes->value[0][10] = bytes->value[1][10] = false;
    bytes->startState = started->state;
    bytes->emptyState = emptied->state;
    return bytes;
}

const XMLParser::EndTagBytes* XMLParser::learnEndTagBytes(const Below<4>& below) {
    return knownEndTags.add(state, below,
                            foundOnce<EndTagBytes>(std::pair{state, below}, [&] { return findEndTagBytes(below); }));
}

// An end tag is read whole only where the tables, followed from where the parse stands (the "<"
// on top, over the entries of `below`), take "/name>" as closing an element: its tokens run the
// actions that build the name and the end tag, make the element and add it to the content
// around it, in this order, and leave that content on top, in one state. Checked for names of one to three
// bytes, with a name byte that runs again to the same states, as for an attribute.
std::shared_ptr<const XMLParser::EndTagBytes> XMLParser::findEndTagBytes(const Below<4>& below) const {
    namespace A = SemanticAction;
    const Configuration start{{below[3], below[2], below[1], below[0]}, state};
    std::optional<Configuration> done;
    for (int nameLength = 1; nameLength <= 3; ++nameLength) {
        std::string text = "/";
        std::vector<std::int32_t> expected;
        addNameSample(text, expected, nameLength);
        text += '>';
        expected.insert(expected.end(), {A::endTag, A::element, A::contentElement});
        Step whole = followText(start, text);
        if (!done) done = whole.at;
        if (!whole.ok || whole.at != *done || whole.at.below != std::vector{below[3]} || whole.ran != expected)
            return nullptr;
    }
    auto bytes = std::make_shared<EndTagBytes>();
    if (!nameBytesAfter(start, "/", bytes->first, bytes->rest)) return nullptr;
    bytes->state = done->state;
    return bytes;
}

const XMLParser::ReferenceBytes* XMLParser::learnReferenceBytes(const Below<2>& below) {
    return knownReferences.add(state, below, foundOnce<ReferenceBytes>(std::pair{state, below}, [&] {
                                   return findReferenceBytes(below);
                               }));
}

// A reference is read whole only where the tables, followed from where the parse stands (the
// "&" on top, over the value under it), take "name;" as making the reference to an entity and
// adding it to that value by one action, leaving the value on top, in one state. Checked for
// names of one to three bytes, with a name byte that runs again to the same states. Character
// references are read whole where their digits, one to three of them, do the same.
std::shared_ptr<const XMLParser::ReferenceBytes> XMLParser::findReferenceBytes(const Below<2>& below) const {
    namespace A = SemanticAction;
    const Configuration start{{below[1], below[0]}, state};
    std::optional<Step> done;
    for (int nameLength = 1; nameLength <= 3; ++nameLength) {
        std::string text;
        std::vector<std::int32_t> expected;
        addNameSample(text, expected, nameLength);
        text.push_back(';');
        Step whole = followText(start, text);
        if (!whole.ok || whole.ran.empty()) return nullptr;
        if (!done) done = whole;
        expected.insert(expected.end(), {A::entityReference, done->ran.back()});
        if (whole.at != done->at || whole.at.below != std::vector{below[1]} || whole.ran != expected) return nullptr;
    }
    std::int32_t addedBy = done->ran.back();
    if (addedBy != A::contentReference && addedBy != A::attributeValueReference) return nullptr;
    auto bytes = std::make_shared<ReferenceBytes>();
    if (!nameBytesAfter(start, "", bytes->first, bytes->rest)) return nullptr;
    bytes->state = done->at.state;
    bytes->addedBy = addedBy;
    const std::int32_t numbers[2][2] = {{A::decimalDigit, A::decimalCharReference}, {A::hexDigit, A::hexCharReference}};
    for (int k = 0; k < 2; ++k) {
        const std::string open = k == 0 ? "#" : "#x";
        bool whole = true;
        for (int digitCount = 1; digitCount <= 3; ++digitCount) {
            std::string text = open + std::string(std::size_t(digitCount), '1');
            text.push_back(';');
            Step step = followText(start, text);
            std::vector<std::int32_t> expected{A::newNumber};
            expected.insert(expected.end(), std::size_t(digitCount - 1), numbers[k][0]);
            expected.insert(expected.end(), {numbers[k][1], addedBy});
            whole = whole && step.ok && step.at == done->at && step.ran == expected;
        }
        Configuration one = followText(start, open + "1").at, two = followText(start, open + "11").at;
        if (!whole || followByte(two, '1').at != two) continue;
        bytes->digits[k] = both(bytesLike(followText(start, open).at, '1'), both(bytesLike(one, '1'), bytesLike(two, '1')));
    }
    return bytes;
}

std::int32_t XMLParser::byteToken(unsigned char byte) const { return XMLLex::tokenCode(byte); }

Parser::ActionKind XMLParser::actionKind(std::int32_t semanticAction) const {
    namespace A = SemanticAction;
    switch (semanticAction) {
        case 0: return ActionKind::nothing;
        case A::appendToString:
        case A::entityValueCharacter:
        case A::attributeValueCharacter:
        case A::appendToCharData: return ActionKind::appendsCharacter;
        case A::newEntityValue:
        case A::newAttributeValue:
        case A::emptyCharData:
        case A::newAttributeList:
        case A::newContent: return ActionKind::makesValue;
        default: return ActionKind::other;
    }
}

void XMLParser::appendRun(std::int32_t semanticAction, StackValue& value, const unsigned char* units, std::int32_t count) {
    namespace A = SemanticAction;
    switch (semanticAction) {
        case A::appendToString: static_cast<XMLString&>(value).appendCharacters(units, count); break;
        case A::entityValueCharacter: static_cast<XMLEntityValue&>(value).addCharacters(units, count); break;
        case A::attributeValueCharacter: static_cast<XMLAttributeValue&>(value).addCharacters(units, count); break;
        case A::appendToCharData: static_cast<XMLCharData&>(value).appendCharacters(units, count); break;
        default: raiseNoChoice(_xPlaces::parserNoAction);
    }
}

namespace {

// The character of a predefined entity; 0 for any other name.
std::int32_t predefinedEntity(const _eString& name) {
    static const std::pair<const wchar_t*, std::int32_t> entities[] = {
        {L"amp", '&'}, {L"lt", '<'}, {L"gt", '>'}, {L"quot", '"'}, {L"apos", '\''}};
    for (const auto& [entity, code] : entities)
        if (textIs(name, entity)) return code;
    return 0;
}

}  // namespace

_eFrom<NonTerminal> XMLParser::entityReference(const Position& at, const _eString& sharedName) const {
    if (extensions.decodeReferences)
        if (std::int32_t code = predefinedEntity(sharedName)) return new XMLCharReference(at, code);
    return new XMLEntityReference(at, sharedName);
}

_eFrom<XMLContentItem> XMLParser::contentItem(const _eFrom<XMLContentItem>& item) const {
    // A character reference is of no class below its own: its type is compared, not searched.
    const XMLContentItem& held = *item.get();
    if (!extensions.decodeReferences || typeid(held) != typeid(XMLCharReference)) return item;
    const auto* reference = static_cast<const XMLCharReference*>(&held);
    _eHndl<XMLCharData> data(new XMLCharData(reference->getPosition()));
    _eString text = reference->referenceText(Context::shared());
    data->appendCharacters(&text.elementRef(0), 1);
    data->shareText();
    return data;
}

void XMLParser::noteTag(const _eString& sharedName) {
    if (!extensions.anywhere || rootSeen) return;
    rootSeen = true;
    if (textIs(sharedName, L"XMI")) naming = TagNaming::unprefixedUml;
}

void XMLParser::noteTag(const _eHndl<XMLString>& name) {
    if (extensions.anywhere && !rootSeen) noteTag(XMLNames::shared(name->units()));
}
