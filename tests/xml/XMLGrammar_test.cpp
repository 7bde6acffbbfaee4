// The language that the XML parser accepts, and where it refuses the rest.
#include <gtest/gtest.h>


#include "support/ParseRun.h"

namespace {

void accepts(const std::string& text) {
    ParseOutcome o = parseText(text);
    EXPECT_TRUE(o.accepted) << text;
    EXPECT_TRUE(o.errors.empty()) << text << "\n" << (o.errors.empty() ? "" : std::string(o.errors[0].begin(), o.errors[0].end()));
}

// Refused with one syntax error at (line, column) on the token of that text.
void refuses(const std::string& text, int line, int column, const std::wstring& tokenText) {
    ParseOutcome o = parseText(text);
    EXPECT_FALSE(o.accepted) << text;
    std::wstring expected = L"in.xml (" + std::to_wstring(line) + L"," + std::to_wstring(column) +
                            L"): Fatal error! Syntax error at '" + tokenText + L"'.";
    EXPECT_EQ(o.errors, std::vector<std::wstring>{expected}) << text;
}

}  // namespace

TEST(XMLGrammar, DocumentsAndTheirProlog) {
    accepts("<a/>");
    accepts("\n<a/>");
    accepts(" \t<?xml version='1.0'?><a/>");
    accepts("<?xml version=\"1.0\" encoding=\"UTF-8\" standalone='yes'?>\n<!-- c --><?pi x?>\n<a/>\n<!--after--><?p?>\n");
    accepts("<a></b>");  // tag pairing is not the grammar's business
    refuses("", 1, 1, L"character(256)");
    refuses("<?xml version='1.0'?><?xml version='1.0'?><a/>", 1, 27, L" ");
    refuses("<a/><b/>", 1, 6, L"'b'");
    refuses("<a/>x", 1, 5, L"'x'");
    refuses("<a", 1, 3, L"character(256)");
    refuses("\xEF\xBB\xBF<a/>", 1, 1, L"\xEF");
}

TEST(XMLGrammar, ProcessingInstructionTargets) {
    accepts("<?xml-foo x?><?x x?><?xm?><?xmlfoo?><a/>");
    accepts("<?pi?><?pi ?><?pi ? ?><?pi a?b?" "?><a/>");
    refuses("<?XML x?><a/>", 1, 6, L" ");
    refuses("<?Xml x?><a/>", 1, 6, L" ");
    refuses("<?xmL?><a/>", 1, 6, L"'?'");
}

TEST(XMLGrammar, CharacterDataAndCDataSections) {
    accepts("<a>x]y</a>");
    accepts("<a>]</a>");
    refuses("<a>x]]y</a>", 1, 6, L"']'");
    accepts("<a><![CDATA[a]]b]]><![CDATA[]]]]><![CDATA[]]></a>");
    accepts("<a>1 + 2 \\ ^ ` { } ~ \xD7</a>");
    refuses("<a>\x01</a>", 1, 4, L"\x01");
}

TEST(XMLGrammar, AttributesAndReferences) {
    accepts("<a b=\"it's\"/>");
    accepts("<a b='say \"x\"'/>");
    accepts("<a  b = 'c'\n\tc='d' />");
    accepts("<a b='c' ></a >");
    refuses("<a b='c'd='e'/>", 1, 9, L"'d'");
    refuses("<a b='<'/>", 1, 7, L"'<'");
    accepts("<a b='&lt;' c='&#65;' d='&#x4a;'/>");
    accepts("<a>&amp;&#65;&#x41;</a>");
    refuses("<a>&#xg;</a>", 1, 7, L"'g'");
    refuses("<a>&#X41;</a>", 1, 6, L"'X'");
}

TEST(XMLGrammar, DoctypeDeclarations) {
    accepts("<!DOCTYPE a [<!ELEMENT a (b|c)*>]><a/>");
    refuses("<!DOCTYPE a [<!ELEMENT a (b|c)+>]><a/>", 1, 31, L"+");
    accepts("<!DOCTYPE a SYSTEM \"a.dtd\"><a/>");
    accepts("<!DOCTYPE a PUBLIC '-//x//\"y\"' 'a.dtd' [\n"
            "  <!ELEMENT a (#PCDATA|b)*>\n"
            "  <!ELEMENT b EMPTY>\n"
            "  <!ATTLIST a id ID #REQUIRED kind (x|y) 'x' v CDATA #FIXED \"1\">\n"
            "  <!ENTITY e \"text &amp; %p;\">\n"
            "  <!ENTITY % p SYSTEM 'p.ent'>\n"
            "  <!NOTATION n PUBLIC 'n'>\n"
            "  %p;\n"
            "]>\n<a/>");
}

namespace {

// The parser after every byte of `text` was offered as a token of its own.
_eHndl<XMLParser> parserAfter(const std::string& text) {
    _eHndl<XMLParser> parser(new XMLParser(ParseControl::shared(), 0));
    _eHndl<Location> at(new Location());
    for (char c : text) {
        auto byte = static_cast<unsigned char>(c);
        std::int32_t code = XMLLex::tokenCode(byte);
        if (code < 256)
            parser->offerToken(new SimpleTerminal(at, code));
        else
            parser->offerToken(new ComplexTerminal(at, code, wchar_t(byte)));
    }
    return parser;
}

}  // namespace

TEST(XMLGrammar, RunsOfBytesAreFoundFromTheTables) {
    struct Row {
        const char* before;
        std::int32_t action;
        const char* members;
        const char* others;
    };
    namespace A = SemanticAction;
    const Row rows[] = {
        {"<a b=\"", A::attributeValueCharacter, "x9 '>_\t", "\"&<"},
        {"<a b='", A::attributeValueCharacter, "x\"", "'&<"},
        {"<ab", A::appendToString, "c-.:_9", " =>/\t"},
        {"<a>x", A::appendToCharData, "y \n>'", "<&]"},
        {"<!--x", Parser::noAction, "x <>", "-"},
        {"<a ", Parser::noAction, " \t\n", "b>/"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.before);
        _eHndl<XMLParser> parser = parserAfter(row.before);
        const Parser::RunBytes* run = parser->runBytes();
        ASSERT_NE(run, nullptr);
        EXPECT_EQ(run->semanticAction, row.action);
        for (const char* c = row.members; *c != 0; ++c) EXPECT_TRUE(run->member[static_cast<unsigned char>(*c)]) << *c;
        for (const char* c = row.others; *c != 0; ++c) EXPECT_FALSE(run->member[static_cast<unsigned char>(*c)]) << *c;
    }
    EXPECT_EQ(parserAfter("<").get()->runBytes(), nullptr);
}

TEST(XMLGrammar, RunsGiveWhatTokensOneByOneGive) {
    const char* texts[] = {
        "<a b=\"x &amp; &#65;y\" c='q\"'>some\n\ttext &lt; more<![CDATA[x]]y]]><!-- c - d -->\n</a>\n",
        "<?xml version='1.0'?>\n<!DOCTYPE a [<!ENTITY e \"v&#65;w%p;\">]>\n<a>&e;\r\n</a>",
        "<a b=\"unterminated value\n  still\t\tgoing",
        "<a>text <!-- open comment",
        "<aname b=\"x\" c=\"y\"/ >",
        "<a>\n\n   text\twith\ttabs</b>\n",
        "<a b=\"x\"\x01></a>",
        "<a>\xC3\xA9t\xC3\xA9 \xB7</a>",
    };
    for (const char* text : texts) {
        SCOPED_TRACE(text);
        TempDir dir;
        std::string path = dir.write("in.xml", text);
        ParseOutcome oneByOne = parseFile(path, false);
        ParseOutcome inRuns = parseFile(path, true);
        EXPECT_EQ(inRuns.accepted, oneByOne.accepted);
        EXPECT_EQ(inRuns.errors, oneByOne.errors);
        if (oneByOne.accepted) {
            EXPECT_TRUE(inRuns.result->isEqual(oneByOne.result.get()));
        }
    }
}
