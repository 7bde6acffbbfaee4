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

TEST(XMLGrammar, AttributesReadWholeAreFoundFromTheTables) {
    _eHndl<XMLParser> inTag = parserAfter("<a ");
    const XMLParser::AttributeBytes* can = inTag->attributeBytes();
    ASSERT_NE(can, nullptr);
    struct Row {
        const XMLParser::ByteSet& set;
        const char* members;
        const char* others;
    };
    const Row rows[] = {
        {can->first, "aZ_:\xC0", "9-. =\"\n\xB7"},
        {can->rest, "aZ9-._:\xB7", "= >/\"\t\n"},
        {can->value[0], "x9 '>_\t\r\xE9", "\"&<\n"},
        {can->value[1], "x\"", "'&<\n"},
        {can->after, " >/\n\t", "b='\"-&"},
    };
    for (const Row& row : rows) {
        for (const char* c = row.members; *c != 0; ++c) EXPECT_TRUE(row.set[static_cast<unsigned char>(*c)]) << *c;
        for (const char* c = row.others; *c != 0; ++c) EXPECT_FALSE(row.set[static_cast<unsigned char>(*c)]) << *c;
    }
    // Nowhere else: not before the blank, not in content, not in the declaration or a doctype.
    for (const char* text : {"<a", "<a>x ", "<a b ", "<?xml ", "<!DOCTYPE a [<!ATTLIST a "}) {
        _eHndl<XMLParser> elsewhere = parserAfter(text);
        EXPECT_EQ(elsewhere->attributeBytes(), nullptr) << text;
    }
}

namespace {

// The bytes found to begin a name and to go on with one, wherever a name is read whole.
void expectNameBytes(const XMLParser::ByteSet& first, const XMLParser::ByteSet& rest) {
    for (unsigned char c : std::string("aZ_:\xC0")) EXPECT_TRUE(first[c]) << c;
    for (unsigned char c : std::string("9-./!?>#;\n ")) EXPECT_FALSE(first[c]) << c;
    for (unsigned char c : std::string("aZ9-._:\xB7")) EXPECT_TRUE(rest[c]) << c;
    for (unsigned char c : std::string(" =>/;&\n\t")) EXPECT_FALSE(rest[c]) << c;
}

}  // namespace

TEST(XMLGrammar, NamesReadWholeAreFoundFromTheTables) {
    for (const char* text : {"<", "<a></", "<a><", "<a ", "<!DOCTYPE "}) {
        SCOPED_TRACE(text);
        _eHndl<XMLParser> beforeName = parserAfter(text);
        const XMLParser::NameBytes* can = beforeName->nameBytes();
        ASSERT_NE(can, nullptr);
        expectNameBytes(can->first, can->rest);
        _eHndl<XMLParser> afterFirst = parserAfter(std::string(text) + "a");
        EXPECT_EQ(can->state, afterFirst->getState());
    }
    for (const char* text : {"<?", "<a>", "<a b", "<a b=", "<!--"}) {
        _eHndl<XMLParser> elsewhere = parserAfter(text);
        EXPECT_EQ(elsewhere->nameBytes(), nullptr) << text;
    }
}

TEST(XMLGrammar, EndTagsReadWholeAreFoundFromTheTables) {
    for (const char* text : {"<r><a><", "<r>\n <a b='1'>text<", "<r><a><b/><", "<r><a><b></b><"}) {
        SCOPED_TRACE(text);
        _eHndl<XMLParser> beforeSlash = parserAfter(text);
        const XMLParser::EndTagBytes* can = beforeSlash->endTagBytes();
        ASSERT_NE(can, nullptr);
        expectNameBytes(can->first, can->rest);
        _eHndl<XMLParser> closed = parserAfter(std::string(text) + "/abc>");
        EXPECT_EQ(can->state, closed->getState());
        EXPECT_EQ(closed->getStack().getTop(), beforeSlash->getStack().getTop() - 3);
    }
    // Closing the root, and where no end tag may begin.
    for (const char* text : {"<a><", "<r><", "<r><a b", "<r><a>", "<r><!"}) {
        _eHndl<XMLParser> elsewhere = parserAfter(text);
        EXPECT_EQ(elsewhere->endTagBytes(), nullptr) << text;
    }
}

TEST(XMLGrammar, TagsReadWholeAreFoundFromTheTables) {
    for (const char* text : {"<r><", "<r>\n <a b='1'>text<", "<r><a/><", "<r><a></a>&amp;<", "<r><!-- c --><"}) {
        SCOPED_TRACE(text);
        _eHndl<XMLParser> afterOpen = parserAfter(text);
        const XMLParser::TagBytes* can = afterOpen->tagBytes();
        ASSERT_NE(can, nullptr);
        expectNameBytes(can->first, can->rest);
        expectNameBytes(can->attributeFirst, can->attributeRest);
        for (unsigned char c : std::string(" \t\r")) EXPECT_TRUE(can->blank[c]) << c;
        for (unsigned char c : std::string("\na=/>")) EXPECT_FALSE(can->blank[c]) << c;
        for (unsigned char c : std::string("x9 '>_\t\r\xE9")) EXPECT_TRUE(can->value[0][c]) << c;
        for (unsigned char c : std::string("\"&<\n")) EXPECT_FALSE(can->value[0][c]) << c;
        EXPECT_TRUE(can->value[1]['"']);
        EXPECT_FALSE(can->value[1]['\'']);
        _eHndl<XMLParser> started = parserAfter(std::string(text) + "ab c='1' d=\"\">");
        EXPECT_EQ(can->startState, started->getState());
        EXPECT_EQ(started->getStack().getTop(), afterOpen->getStack().getTop());
        _eHndl<XMLParser> closed = parserAfter(std::string(text) + "ab c='1' />");
        EXPECT_EQ(can->emptyState, closed->getState());
        EXPECT_EQ(closed->getStack().getTop(), afterOpen->getStack().getTop() - 1);
    }
    // The root's, and where no tag may begin.
    for (const char* text : {"<", "\n<", "<?xml version='1.0'?><", "<?xml version='1.0'?>\n<!-- c -->\n<",
                             "\n<!DOCTYPE r>\n<", "<!DOCTYPE r [<!ELEMENT r ANY>]>\n<", "<r ", "<r><!", "<r a='<", "<r></"}) {
        _eHndl<XMLParser> elsewhere = parserAfter(text);
        EXPECT_EQ(elsewhere->tagBytes(), nullptr) << text;
    }
}

TEST(XMLGrammar, ReferencesReadWholeAreFoundFromTheTables) {
    struct Row {
        const char* before;
        std::int32_t addedBy;
    };
    for (Row row : {Row{"<r>x&", SemanticAction::contentReference}, Row{"<r><a/>&", SemanticAction::contentReference},
                    Row{"<r a='x&", SemanticAction::attributeValueReference},
                    Row{"<r a=\"&", SemanticAction::attributeValueReference}}) {
        SCOPED_TRACE(row.before);
        const XMLParser::ReferenceBytes* can = parserAfter(row.before)->referenceBytes();
        ASSERT_NE(can, nullptr);
        EXPECT_EQ(can->addedBy, row.addedBy);
        expectNameBytes(can->first, can->rest);
        for (unsigned char c : std::string("09")) EXPECT_TRUE(can->digits[0][c] && can->digits[1][c]) << c;
        for (unsigned char c : std::string("afAF")) EXPECT_TRUE(!can->digits[0][c] && can->digits[1][c]) << c;
        for (unsigned char c : std::string("gGx;#")) EXPECT_TRUE(!can->digits[0][c] && !can->digits[1][c]) << c;
        EXPECT_EQ(can->state, parserAfter(std::string(row.before) + "abc;")->getState());
    }
    // In an entity's value, and where no reference may begin.
    for (const char* text : {"<!DOCTYPE r [<!ENTITY e \"&", "<r>", "<r a='", "<r><!-- &"}) {
        _eHndl<XMLParser> elsewhere = parserAfter(text);
        EXPECT_EQ(elsewhere->referenceBytes(), nullptr) << text;
    }
}

TEST(XMLGrammar, TextReadWithoutItsFirstTokenIsFoundFromTheTables) {
    for (const char* text : {"<r><a>", "<r><a></a>", "<r><a/>", "<r>&amp;", "<r>x&#65;", "<r><!-- c -->"}) {
        SCOPED_TRACE(text);
        const XMLParser::TextBytes* can = parserAfter(text)->textBytes();
        ASSERT_NE(can, nullptr);
        EXPECT_EQ(can->newContent, std::string(text) == "<r><a>");
        for (unsigned char c : std::string("a \t\r\n9>\"'\xC3\xB7")) EXPECT_TRUE(can->first[c]) << c;
        for (unsigned char c : std::string("<&")) EXPECT_FALSE(can->first[c]) << c;
        EXPECT_EQ(can->state, parserAfter(std::string(text) + "x")->getState());
        if (can->newContent) {
            EXPECT_EQ(can->contentState, parserAfter(std::string(text) + "<b/>")->getState());
        }
    }
    for (const char* text : {"<r><a ", "<r>x", "<r><!--", "<a/>", "<r><![CDATA["}) {
        _eHndl<XMLParser> elsewhere = parserAfter(text);
        EXPECT_EQ(elsewhere->textBytes(), nullptr) << text;
    }
}

TEST(XMLGrammar, TagAndReferenceOpeningsReadWithoutTheirTokenAreFoundFromTheTables) {
    using Made = XMLParser::OpenBytes::Made;
    struct Row {
        const char* before;
        Made made;
    };
    for (Row row : {Row{"<r>x", Made::textAdded}, Row{"<r><a b='1'>\n ", Made::textAdded}, Row{"<r>", Made::newContent},
                    Row{"<r><a/>", Made::nothing}, Row{"<r><a></a>", Made::nothing}, Row{"<r>&amp;", Made::nothing},
                    Row{"<r><!-- c -->", Made::nothing}})
        for (char opener : {'<', '&'}) {
            SCOPED_TRACE(std::string(row.before) + opener);
            const XMLParser::OpenBytes* can = parserAfter(row.before)->openBytes(static_cast<unsigned char>(opener));
            ASSERT_NE(can, nullptr);
            EXPECT_EQ(can->made, row.made);
            _eHndl<XMLParser> opened = parserAfter(row.before + std::string(1, opener));
            EXPECT_EQ(can->state, opened->getState());
            EXPECT_EQ(can->contentState, opened->getStack().peek(-1).state);
        }
    // In a value, a reference begins after nothing made; a tag may not.
    const XMLParser::OpenBytes* inValue = parserAfter("<r a='x")->openBytes('&');
    ASSERT_NE(inValue, nullptr);
    EXPECT_EQ(inValue->made, Made::nothing);
    EXPECT_EQ(inValue->state, parserAfter("<r a='x&")->getState());
    // Where each is refused, or needs more than these.
    for (const char* text : {"<r", "<r a='x", "<r><!-- ", "<r/>", "<r>x<", "<r><![CDATA[x", "<r>x&"}) {
        EXPECT_EQ(parserAfter(text)->openBytes('<'), nullptr) << text;
    }
    for (const char* text : {"<r", "<r><!-- ", "<r/>", "<r>x<", "<r>x&"}) {
        EXPECT_EQ(parserAfter(text)->openBytes('&'), nullptr) << text;
    }
}

TEST(XMLGrammar, NamesAndAttributesReadWholeLeaveTheirValuesOnTopAndTheLexerAfterThem) {
    TempDir dir;
    std::string path = dir.write("in.xml", "<a b=\"c\" dd='e\"f'/>");
    _eHndl<Environment> env(new Environment());
    _eHndl<XMLLex> lex(new XMLLex(env.get(), 4));
    bool ok = false;
    lex->openFile(_eHndl<FileName>(new FileName(fromPlatformText(path), env.get())), ok);
    ASSERT_TRUE(ok);
    _eHndl<XMLParser> parser(new XMLParser(ParseControl::shared(), 0));
    _eHndl<Terminal> token;
    auto offerNext = [&] {
        lex->nextToken(token);
        parser->offerToken(token);
    };
    offerNext();  // '<'
    parser->takeAttribute(*lex);  // not after a blank: nothing is taken
    parser->takeName(*lex);
    const auto* tagName = dynamic_cast<const XMLString*>(parser->getStack().peek(-1).value.get());
    ASSERT_NE(tagName, nullptr);
    EXPECT_EQ(tagName->units(), L"a");
    EXPECT_EQ(tagName->getPosition().column, 2);
    parser->takeName(*lex);  // not before a name: nothing is taken
    offerNext();
    EXPECT_EQ(token->getToken(), Token::whiteSpace);
    EXPECT_EQ(token->getPosition().column, 3);
    parser->takeAttribute(*lex);
    offerNext();
    EXPECT_EQ(token->getToken(), Token::whiteSpace);
    EXPECT_EQ(token->getPosition().column, 9);
    parser->takeAttribute(*lex);
    const auto* list = dynamic_cast<const XMLAttributeList*>(parser->getStack().peek(-1).value.get());
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->getAttributes().size(), 2);
    const XMLAttributeValue* b = findAttribute(list->getAttributes(), L"b");
    const XMLAttributeValue* dd = findAttribute(list->getAttributes(), L"dd");
    ASSERT_TRUE(b != nullptr && dd != nullptr);
    EXPECT_EQ(b->text(Context::shared()), L"c");
    EXPECT_EQ(b->getPosition().column, 6);
    EXPECT_EQ(dd->text(Context::shared()), L"e\"f");
    EXPECT_EQ(dd->getPosition().column, 13);
    offerNext();
    EXPECT_EQ(token->getToken(), '/');
    EXPECT_EQ(token->getPosition().column, 18);
    offerNext();
    offerNext();
    EXPECT_TRUE(parser->isFinished());
    EXPECT_FALSE(parser->getResult().isNull());
    lex->closeFile();
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
        // Attributes, read whole where they can be and by the token elsewhere.
        ("<x:a b:c=\"1\" d.e-f_g='x\"y' h=\"\" i='' jjjjjjjjjjjjjjjjjjjjjjjjjjjjjjjjjjjjjjjjjj=\"a long name\"\tk=\"v\"\n"
         "l=\"\xC3\xA9\x01\" m=\"a\tb\" n=\"x\ry\" o = \"p\" q=\"x&amp;y\" r=\"x\ny\"/>"),
        "<a b=\"1\" b=\"2\" _c='3'>\n  <d e=\"4\"\n     f=\"5\" >text</d></a>",
        "<a b=\"1\"c=\"2\" d=\"3\"e>",
        "<a b=\"x<y\" c=\"2\" 9=\"3\" d=\"4\"/>",
        "<a b=\"1\" c=\"2\"/",
        "<a b=\"1\"",
        "<a b='1' c='2'>t</a><a d='4' e='5'>",
        "<?xml version=\"1.0\" encoding='UTF-8' ?><!DOCTYPE a [<!ATTLIST a b CDATA \"x\">]><a b=\"c\"/>",
        // End tags, read whole where they can be: unlike their start tags, with a blank or a line
        // end before the ">", of elements that refer to others, at the root, and after it.
        ("<r>\n <a x='1'><b>t</b><c/></a>\n <a></b>\n <d></d ><e></e\n><f></f>\n"
         "<UML:Class xmi.idref='c'></UML:Class><UML:Class name='n'>x<UML:A/></UML:Class></r>"),
        "<r><a>1</a><b>2</9b></r>", "<r></r></r>",
        // References, read whole where they can be, decoded or not; and what stops a parse in one.
        ("<r a='&lt;&amp;&gt;' b=\"x&quot;&apos;&e;\">&amp;&lt;&unknown;&x:y.z-1;x&gt;\n&#65;&#x4a;"
         "<d e=\"&amp;&#x26;&#38;\"/>&#4294967361;&#xfFfFfFfFf;&#00;</r>"),
        "<r c='&a b;'/>", "<r>&;</r>", "<r>&9;</r>", "<r>&a\nb;</r>", "<r>&#x;</r>", "<r>&#X41;</r>", "<r>&#1a;</r>",
        "<r>&amp</r>", "<r/>&amp;",
        // Tags read whole where they can be: blanks of each kind (tabs before and after values,
        // and in them) and number, before attributes and the end, empty and not, names repeated;
        // and what stops a parse in one or leaves it to the tokens (a line end, a reference, a
        // byte above 127 in a value, more attributes than are looked at at once).
        "<r>\n<a\tb='1' c=\"2\" ><b d='x'/><c /><d e=\"\" f=''>t</d><e  g='1'/></a>\n</r>\n",
        ("<r><h\rk='1'/><g h='1'\ti='2'/><gg h='1'\ti='2'/><ggg h='1'\ti='2'/><j k='a\tb' l='2'>\t<m n='1' o='2'\t/>"
         "</j><UML:Class xmi.id='c1' name='C'><UML:Attribute xmi.idref='a'/></UML:Class></r>\n"),
        "<r><l m='1' m='2'/><n o='&amp;'/><p\nq='1'/><s t='1'\n/><u\n/></r>\n", "<r><f g='1'  /></r>\n",
        "<r><v w='\xC3\xA9'>x</v></r>",
        "<r><i j='1'k='2'/></r>", "<r><i j='1' k></r>", "<r><i j=1/></r>", "<r><i j='1'/ ></r>", "<r><i j='1' /x></r>",
        "<r><i j='<'/></r>", "<r><i/ j='1'></r>", "<r><9/></r>", "<r><i", "<r><i j='1'", "<r><i j='1'/",
        // Text after tags and references, its first byte read without its token where it can be.
        "<r><a>]x</a>\t<b>x]</b>\r\n<c/>\xC0<d>&amp;\n</d><e>&#65;\xB7<![CDATA[x]]></e>&lt;<f>\n</f></r>",
    };
    std::string many = "<r><a";
    for (int i = 0; i < 40; ++i) many += " n" + std::to_string(i) + "='" + std::to_string(i) + "'";
    many += "/><b";
    for (int i = 0; i < 32; ++i) many += " n" + std::to_string(i) + "='" + std::to_string(i) + "'";
    many += "></b></r>\n";
    std::vector<std::string> all(std::begin(texts), std::end(texts));
    all.push_back(many);
    for (const std::string& text : all)
        for (const ImportExtensions& extensions : {ImportExtensions(), everyExtension()}) {
            SCOPED_TRACE(text);
            TempDir dir;
            std::string path = dir.write("in.xml", text);
            ParseOutcome oneByOne = parseFile(path, false, extensions);
            ParseOutcome inRuns = parseFile(path, true, extensions);
            EXPECT_EQ(inRuns.accepted, oneByOne.accepted);
            EXPECT_EQ(inRuns.errors, oneByOne.errors);
            if (oneByOne.accepted) {
                EXPECT_TRUE(inRuns.result->isEqual(oneByOne.result.get()));
            }
        }
}

TEST(XMLGrammar, AttributesAndEndTagsAcrossTheLexersBufferGiveWhatTokensGive) {
    // Some attribute, and some end tag, stands across the end of what the lexer reads ahead at a
    // time, whatever its size; their names and values differ in length from their neighbours'.
    std::string text = "<a";
    for (int i = 0; text.size() < 140000; ++i)
        text += " n" + std::to_string(i) + "=\"" + std::string(std::size_t(i % 37), char('a' + i % 26)) + "\"";
    text += ">";
    for (int i = 0; text.size() < 280000; ++i) {
        std::string name = "e" + std::string(std::size_t(i % 29), char('a' + i % 26));
        std::string attributes = i % 3 == 0 ? "" : " k=\"" + std::string(std::size_t(i % 11), 'v') + "\"";
        if (i % 4 == 0)
            text += "<" + name + attributes + "/>";
        else
            text += "<" + name + attributes + ">" + std::to_string(i) + "</" + name + ">";
    }
    text += "</a>\n";
    TempDir dir;
    std::string path = dir.write("in.xml", text);
    ParseOutcome oneByOne = parseFile(path, false);
    ParseOutcome inRuns = parseFile(path, true);
    ASSERT_TRUE(oneByOne.accepted);
    ASSERT_TRUE(inRuns.accepted);
    EXPECT_TRUE(inRuns.result->isEqual(oneByOne.result.get()));
}
