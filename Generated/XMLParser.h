// `XMLParser`: the LR driver over the tables of the XML grammar.
#pragma once

#include <array>
#include <string_view>

#include "Generated/Parser.h"
#include "xml/XMLLex.h"
#include "xml/XMLTokens.h"
#include "modelbridge/ImportExtensions.h"
#include "xmi/XMLElement.h"

class XMLParser : public _eClass<XMLParser, Parser> {
public:
    static constexpr _aTypeSlot _aType{&_aModule5, 0};

    XMLParser(const _eHndl<ParseControl>& control, std::int32_t initialState) : _eClass(control, initialState) {
        readTablesDirectly(directTables());
    }

    bool equalFields(const XMLParser& other) const { return Parser::equalFields(other); }

    ActionTableEntry terminalAction(std::int32_t state, std::int32_t token) const override {
        return directTables().terminal.find(state, token);
    }
    ActionTableEntry nonTerminalAction(std::int32_t state, std::int32_t nonTerminal) const override {
        return directTables().nonTerminal.find(state, nonTerminal);
    }
    ReduceTableEntry reduction(std::int32_t production) const override {
        return directTables().reductions[production];
    }
    void reduceAction(std::int32_t semanticAction) override;
    RecoveryTable recoveryTable() const override;

    // Takes the bytes that `lexer` reads next while they only loop (see `runBytes`), many at a
    // time; with `stopAtLineEnd` a line end is left to be a token of its own.
    void takeRuns(XMLLex& lexer, bool stopAtLineEnd);

    using ByteSet = std::array<bool, 256>;
    // The bytes of an attribute that is read whole, where the parse stands after the blank before
    // it in a tag: `name="value"` or `name='value'`, with nothing that needs more than appending
    // (no reference, no line end), followed by a byte that ends it. Each set is found by
    // following the tables, so that the attribute leaves the parse just as its tokens would.
    struct AttributeBytes {
        ByteSet first{};     // a name's first byte
        ByteSet rest{};      // its others
        ByteSet value[2]{};  // inside double quotes, inside single quotes
        ByteSet after{};     // the byte after the closing quote
    };
    // The states of the top `N` entries of the stack, the top one first.
    template <std::size_t N>
    using Below = std::array<std::int32_t, N>;
    // Null unless an attribute may be read whole where the parse stands.
    const AttributeBytes* attributeBytes() {
        return lookUp(knownAttributes, [this](const Below<2>& below) { return learnAttributeBytes(below); });
    }
    // The bytes of a name read whole, where the parse stands before one (after "<" or "</", say),
    // and the state it leaves the parse in, with the name on top.
    struct NameBytes {
        ByteSet first{};
        ByteSet rest{};
        std::int32_t state = 0;
    };
    // Null unless a name may be read whole where the parse stands.
    const NameBytes* nameBytes() {
        return lookUp(knownNames, [this] { return learnNameBytes(); });
    }
    // Reads the name that `lexer` reads next whole, as its first byte's token and the run after
    // it would have read it, where `nameBytes` allows and the byte after it has been read ahead.
    void takeName(XMLLex& lexer);
    // Reads the attribute that `lexer` reads next whole, as its tokens would have been read one
    // by one, where `attributeBytes` allows and the whole of it has been read ahead.
    void takeAttribute(XMLLex& lexer);

    // The bytes of an end tag read whole, where the parse stands after the "<" that begins it in
    // an element's content: "/name>", whose tokens close the element and add it to the content
    // around it. Found by following the tables, as for an attribute.
    struct EndTagBytes {
        ByteSet first{};  // a name's first byte
        ByteSet rest{};   // its others
        std::int32_t state = 0;  // the state it leaves the parse in
    };
    // Null unless an end tag may be read whole where the parse stands (closing an element goes
    // down four entries).
    const EndTagBytes* endTagBytes() {
        return lookUp(knownEndTags, [this](const Below<4>& below) { return learnEndTagBytes(below); });
    }
    // Reads the end tag that `lexer` reads next whole, with the element it closes, as its tokens
    // would have been read one by one, where `endTagBytes` allows and the whole of it has been
    // read ahead; false where it was left to the tokens.
    bool takeEndTag(XMLLex& lexer);

    // The bytes of a start tag or an empty-element tag read whole, where the parse stands after
    // the "<" that begins it in an element's content: its name, then attributes as an attribute
    // is read whole, each after a blank, then perhaps a blank, and ">" or "/>"; no line end
    // within. Its tokens leave the tag on top, or close the element and add it to the content
    // around it. Found by following the tables, as for an attribute.
    struct TagBytes {
        ByteSet first{};           // a tag name's first byte
        ByteSet rest{};            // its others
        ByteSet blank{};           // the blank before an attribute or the end
        ByteSet attributeFirst{};  // an attribute name's first byte
        ByteSet attributeRest{};   // its others
        ByteSet value[2]{};        // inside double quotes, inside single quotes
        std::int32_t startState = 0;  // where a start tag leaves the parse, with the tag on top
        std::int32_t emptyState = 0;  // where an empty-element tag does, with the content on top
    };
    // Null unless a tag may be read whole where the parse stands.
    const TagBytes* tagBytes() {
        return lookUp(knownTags, [this](const Below<2>& below) { return learnTagBytes(below); });
    }
    // Reads the tag that `lexer` reads next whole, as its tokens would have been read one by
    // one, where `tagBytes` allows and the whole of it has been read ahead; false where it was
    // left to the tokens.
    bool takeTag(XMLLex& lexer);

    // The bytes of a reference read whole, where the parse stands after the "&" that begins it:
    // "name;", "#digits;" or "#xdigits;", whose tokens make the reference and add it to the
    // content or the attribute value below. Found by following the tables, as for an attribute.
    struct ReferenceBytes {
        ByteSet first{};           // a name's first byte
        ByteSet rest{};            // its others
        ByteSet digits[2]{};       // a character's code in decimal, in hexadecimal; none where
                                   // character references are left to the tokens
        std::int32_t state = 0;    // the state it leaves the parse in
        std::int32_t addedBy = 0;  // the action that adds it to the value below
    };
    // Null unless a reference may be read whole where the parse stands.
    const ReferenceBytes* referenceBytes() {
        return lookUp(knownReferences, [this](const Below<2>& below) { return learnReferenceBytes(below); });
    }
    // Reads the reference that `lexer` reads next whole, where `referenceBytes` allows and the
    // whole of it has been read ahead; false where it was left to the tokens.
    bool takeReference(XMLLex& lexer);

    // The bytes that begin the text of content where the parse stands (after a tag or a
    // reference, say), and the states that its first byte leaves the parse in, with the text
    // on top: where an element's content begins, an empty content is made first.
    struct TextBytes {
        ByteSet first{};
        bool newContent = false;
        std::int32_t contentState = 0;  // with the content on top, where one is made
        std::int32_t state = 0;
    };
    // Null unless the first byte of text may be read without its token where the parse stands.
    const TextBytes* textBytes() {
        return lookUp(knownTexts, [this] { return learnTextBytes(); });
    }
    // Reads the first byte of the text that `lexer` reads next, as its token would have, where
    // `textBytes` allows; false where it was left to the token. A line end read so stands on
    // the line of the tag or reference before it, whose token was seen: the progress shown by
    // line misses none.
    bool takeText(XMLLex& lexer);

    // What the "<" that begins a tag, or the "&" that begins a reference, does where the parse
    // stands (in an element's content, say), read without its token: the text before it added
    // to the content, or an empty content made first where the content begins, or nothing; then
    // it is on top.
    struct OpenBytes {
        enum class Made { nothing, textAdded, newContent } made = Made::nothing;
        std::int32_t contentState = 0;  // with the value below it on top, before it is
        std::int32_t state = 0;         // with it on top
    };
    // Null unless `opener` ("<" or "&") may be read without its token where the parse stands.
    const OpenBytes* openBytes(unsigned char opener) {
        return lookUp(knownOpens[opener == '&' ? 1 : 0],
                      [this, opener](const Below<2>& below) { return learnOpenBytes(opener, below); });
    }
    // Reads the "<" or "&" that `lexer` reads next as its token would have, where `openBytes`
    // allows: gives its token's code, or 0 where it was left to the token.
    std::int32_t takeOpen(XMLLex& lexer);

    // After `code`'s token: takes the runs that follow it and whatever may be read whole there.
    void takeWhole(XMLLex& lexer, std::int32_t code, bool stopAtLineEnd);

    // The one loop that drives a parse: takes tokens from `lexer` and offers them until the parse
    // has finished. `seen(token)` sees each token before it is offered. With `byteRuns` the bytes
    // that only loop are taken many at a time after each token (a line end left to be a token
    // of its own with `stopAtLineEnd`); without it every byte is a token.
    // Tags, the names of tags, the attributes of a tag, end tags and references are taken whole in
    // the same way, and so is the first byte of the text after them (see `takeWhole`); without
    // `stopAtLineEnd`, so is the "<" or "&" that begins the next tag or reference.
    template <class Seen>
    void parseAll(XMLLex& lexer, bool byteRuns, bool stopAtLineEnd, Seen seen) {
        _eHndl<Terminal> token;
        while (!isFinished()) {
            lexer.nextToken(token);
            seen(*token);
            offerToken(token);
            if (byteRuns) takeWhole(lexer, token->getToken(), stopAtLineEnd);
        }
    }
    void parseAll(XMLLex& lexer) {
        parseAll(lexer, true, false, [](const Terminal&) {});
    }

    // What the parse does beyond the specified behaviour: with `anywhere`, the unprefixed UML 1.x
    // tags read as their "UML:" forms in a document whose root is "XMI"; with
    // `decodeReferences`, entities and character references read as their characters.
    void chooseExtensions(const ImportExtensions& chosen) { extensions = chosen; }

    // The tables of the XML grammar as every parser reads them, in place.
    static const DirectTables& directTables();
    // The same tables as sequences, built on first request: for those who read them whole.
    static const ParseTables& tables();

protected:
    std::int32_t byteToken(unsigned char byte) const override;
    ActionKind actionKind(std::int32_t semanticAction) const override;
    void appendRun(std::int32_t semanticAction, StackValue& value, const unsigned char* units, std::int32_t count) override;

private:
    // The first tag of the document is the root's: its start tag is read before any element
    // is built, so the root decides how every element reads its tag.
    void noteTag(const _eHndl<XMLString>& name);
    void noteTag(const _eString& sharedName);

    // Pushes the empty content that an element's content begins with, made at `at`, as its
    // reduction would, and goes to `contentState`.
    void beginContent(const Position& at, std::int32_t contentState);

    // A predefined entity's reference as the character it stands for, in attribute values, and
    // a character reference in content as character data, when that is asked for.
    _eFrom<NonTerminal> entityReference(const Position& at, const _eString& sharedName) const;
    _eFrom<XMLContentItem> contentItem(const _eFrom<XMLContentItem>& item) const;

    // Where following a byte, or the bytes of a text, leads from a configuration, and the
    // semantic actions it runs on the way; `ok` is false where the tables don't take it so.
    struct Step {
        Configuration at;
        std::vector<std::int32_t> ran;
        bool ok = true;
        bool operator==(const Step&) const = default;
    };
    Step followByte(const Configuration& from, unsigned char byte, bool untilShift = false) const;
    Step followText(const Configuration& from, std::string_view text) const;
    // The bytes that, followed from `from`, go where `sample` goes and run what it runs.
    ByteSet bytesLike(const Configuration& from, unsigned char sample, bool untilShift = false) const;
    static ByteSet both(const ByteSet& one, const ByteSet& other);
    // The bytes that begin a name, and go on with one, read after the bytes of `before` from
    // `start`: false where a name's further bytes don't come back to the same states.
    bool nameBytesAfter(const Configuration& start, const std::string& before, ByteSet& first, ByteSet& rest) const;
    // The length of the name that `bytes` begin with, by the bytes that may begin and go on
    // with one; 0 where they begin none.
    static std::int32_t nameLength(const ByteSet& first, const ByteSet& rest, const unsigned char* bytes,
                                   std::int32_t count);
    // The closing quote of the attribute `name="value"` or `name='value'` that `bytes` begin
    // with, by the bytes of its name and of its values inside double and single quotes, with
    // `equals` where its "=" stands; 0 where none stands whole among the `count` bytes.
    static std::int32_t closingQuote(const ByteSet& first, const ByteSet& rest, const ByteSet (&value)[2],
                                     const unsigned char* bytes, std::int32_t count, std::int32_t& equals);
    const NameBytes* learnNameBytes();
    std::shared_ptr<const NameBytes> findNameBytes() const;
    const TextBytes* learnTextBytes();
    std::shared_ptr<const TextBytes> findTextBytes() const;
    const AttributeBytes* learnAttributeBytes(const Below<2>& below);
    std::shared_ptr<const AttributeBytes> findAttributeBytes(const Below<2>& below) const;
    const OpenBytes* learnOpenBytes(unsigned char opener, const Below<2>& below);
    std::shared_ptr<const OpenBytes> findOpenBytes(unsigned char opener, const Below<2>& below) const;
    const TagBytes* learnTagBytes(const Below<2>& below);
    std::shared_ptr<const TagBytes> findTagBytes(const Below<2>& below) const;
    const EndTagBytes* learnEndTagBytes(const Below<4>& below);
    std::shared_ptr<const EndTagBytes> findEndTagBytes(const Below<4>& below) const;
    const ReferenceBytes* learnReferenceBytes(const Below<2>& below);
    std::shared_ptr<const ReferenceBytes> findReferenceBytes(const Below<2>& below) const;

    // What was found so far for one thing read whole, by state and by the states of the top `N`
    // entries: null where nothing is read whole.
    template <class Bytes, std::size_t N>
    class KnownBelow {
    public:
        // What was found for `state` over `below`; null where it wasn't looked for yet.
        const std::shared_ptr<const Bytes>* find(std::int32_t state, const Below<N>& below) const {
            if (std::size_t(state) < byState.size())
                for (const Entry& entry : byState[std::size_t(state)])
                    if (same(entry.below, below)) return &entry.bytes;
            return nullptr;
        }
        const Bytes* add(std::int32_t state, const Below<N>& below, std::shared_ptr<const Bytes> bytes) {
            if (std::size_t(state) >= byState.size()) byState.resize(std::size_t(state) + 1);
            byState[std::size_t(state)].push_back({below, std::move(bytes)});
            return byState[std::size_t(state)].back().bytes.get();
        }

    private:
        // Compared state by state: the array's own comparison goes through a call to memcmp.
        static bool same(const Below<N>& a, const Below<N>& b) {
            for (std::size_t k = 0; k < N; ++k)
                if (a[k] != b[k]) return false;
            return true;
        }
        struct Entry {
            Below<N> below;
            std::shared_ptr<const Bytes> bytes;
        };
        std::vector<std::vector<Entry>> byState;
    };
    // What was found so far for one thing read whole, by state alone: null where nothing is.
    template <class Bytes>
    struct Known {
        bool learned = false;
        std::shared_ptr<const Bytes> bytes;
    };
    // What `known` holds where the parse stands, learnt by `learn` where it holds nothing yet.
    template <class Bytes, std::size_t N, class Learn>
    const Bytes* lookUp(const KnownBelow<Bytes, N>& known, Learn learn) {
        if (!steady() || stack.getTop() < std::int32_t(N)) return nullptr;
        Below<N> below{};
        for (std::size_t k = 0; k < N; ++k) below[k] = stack.peek(-1 - std::int32_t(k)).state;
        const std::shared_ptr<const Bytes>* found = known.find(state, below);
        return found != nullptr ? found->get() : learn(below);
    }
    template <class Bytes, class Learn>
    const Bytes* lookUp(const std::vector<Known<Bytes>>& known, Learn learn) {
        if (!steady()) return nullptr;
        if (std::size_t(state) < known.size() && known[std::size_t(state)].learned)
            return known[std::size_t(state)].bytes.get();
        return learn();
    }

    ImportExtensions extensions;                // asked for by the importer
    bool rootSeen = false;                      // the root's tag has been read
    TagNaming naming = TagNaming::specified;    // how the elements read their tags
    // What each kind of thing read whole found so far, for `nameBytes`, `textBytes`,
    // `attributeBytes`, `openBytes`, `tagBytes`, `endTagBytes` and `referenceBytes`.
    std::vector<Known<NameBytes>> knownNames;
    std::vector<Known<TextBytes>> knownTexts;
    KnownBelow<AttributeBytes, 2> knownAttributes;
    KnownBelow<OpenBytes, 2> knownOpens[2];  // for "<", for "&"
    KnownBelow<TagBytes, 2> knownTags;
    KnownBelow<EndTagBytes, 4> knownEndTags;
    KnownBelow<ReferenceBytes, 2> knownReferences;
};
