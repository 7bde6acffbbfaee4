// `XMLParser`: the LR driver over the tables of the XML grammar.
#pragma once

#include "Generated/Parser.h"
#include "xml/XMLLex.h"
#include "xml/XMLTokens.h"
#include "modelbridge/ImportExtensions.h"
#include "xmi/XMLElement.h"

class XMLParser : public _eClass<XMLParser, Parser> {
public:
    static constexpr _aTypeSlot _aType{&_aModule5, 0};

    XMLParser(const _eHndl<ParseControl>& control, std::int32_t initialState) : _eClass(control, initialState) {
        readTablesDirectly(tables());
    }

    bool equalFields(const XMLParser& other) const { return Parser::equalFields(other); }

    ActionTableEntry terminalAction(std::int32_t state, std::int32_t token) const override {
        return tables().flatTerminal.find(state, token);
    }
    ActionTableEntry nonTerminalAction(std::int32_t state, std::int32_t nonTerminal) const override {
        return tables().flatNonTerminal.find(state, nonTerminal);
    }
    ReduceTableEntry reduction(std::int32_t production) const override {
        return tables().flatReductions[std::size_t(production)];
    }
    void reduceAction(std::int32_t semanticAction) override;
    RecoveryTable recoveryTable() const override { return tables().recovery; }

    // Takes the bytes that `lexer` reads next while they only loop (see `runBytes`), many at a
    // time; with `stopAtLineEnd` a line end is left to be a token of its own.
    void takeRuns(XMLLex& lexer, bool stopAtLineEnd);

    // The one loop that drives a parse: takes tokens from `lexer` and offers them until the parse
    // has finished. `seen(token)` sees each token before it is offered. With `byteRuns` the bytes
    // that only loop are taken many at a time after each token (a line end left to be a token
    // of its own with `stopAtLineEnd`); without it every byte is a token.
    template <class Seen>
    void parseAll(XMLLex& lexer, bool byteRuns, bool stopAtLineEnd, Seen seen) {
        _eHndl<Terminal> token;
        while (!isFinished()) {
            lexer.nextToken(token);
            seen(*token);
            offerToken(token);
            if (byteRuns) takeRuns(lexer, stopAtLineEnd);
        }
    }
    void parseAll(XMLLex& lexer) {
        parseAll(lexer, true, false, [](const Terminal&) {});
    }

    // What the parse does beyond the specified behaviour: with `anywhere`, the unprefixed UML 1.x
    // tags read as their "UML:" forms in a document whose root is "XMI"; with
    // `decodeReferences`, entities and character references read as their characters.
    void chooseExtensions(const ImportExtensions& chosen) { extensions = chosen; }

    // The tables of the XML grammar, built on first use and shared by all parsers.
    static const ParseTables& tables();

protected:
    std::int32_t byteToken(unsigned char byte) const override;
    ActionKind actionKind(std::int32_t semanticAction) const override;
    void appendRun(std::int32_t semanticAction, StackValue& value, const unsigned char* units, std::int32_t count) override;

private:
    // The first tag of the document is the root's: its start tag is read before any element
    // is built, so the root decides how every element reads its tag.
    void noteTag(const _eHndl<XMLString>& name);

    // A predefined entity's reference as the character it stands for, in attribute values, and
    // a character reference in content as character data, when that is asked for.
    _eFrom<NonTerminal> entityReference(const Position& at, const _eHndl<XMLString>& name) const;
    _eFrom<XMLContentItem> contentItem(const _eFrom<XMLContentItem>& item) const;

    ImportExtensions extensions;                // asked for by the importer
    bool rootSeen = false;                      // the root's tag has been read
    TagNaming naming = TagNaming::specified;    // how the elements read their tags
};
