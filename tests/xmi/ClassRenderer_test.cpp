// Class text from records alone, as any reader of a model fills them.
#include <gtest/gtest.h>

#include <filesystem>

#include "support/ParseRun.h"
#include "xmi/ClassRenderer.h"
#include "xmi/ModelReader.h"
#include "xml/XMLDocument.h"

namespace {

std::wstring joined(const _eHndl<TarvaneOutput>& out) {
    std::wstring text;
    for (int i = 0; i < out->tokens().size(); ++i) text += (i ? L" " : L"") + toWString(out->tokens().at(i));
    return text;
}

NameRecord attributeName(const wchar_t* text) { return NameRecord::plain(text); }

NameRecord elementName(const wchar_t* text) { return {NameRecord::element, text}; }

TypeRecord named(const wchar_t* name) { return {TypeRecord::named, attributeName(name), false, {}}; }

TypeRecord classType(const wchar_t* name, bool leaf) { return {TypeRecord::classType, attributeName(name), leaf, {}}; }

}  // namespace

TEST(ClassRenderer, NamesFromAttributesAndNameElements) {
    struct Row {
        NameRecord name;
        bool escape;
        const wchar_t* text;
        const wchar_t* orUnknown;
        bool hasName;
    };
    const Row rows[] = {
        {attributeName(L" my name "), true, L"my name", L"my name", true},
        {elementName(L" my name "), true, L"my_name", L"my_name", true},
        {attributeName(L"value"), true, L"value_", L"value_", true},
        {attributeName(L"value"), false, L"value", L"value", true},
        {attributeName(L"End"), true, L"End", L"End", true},
        {elementName(L"class, set"), true, L"class_, set_", L"class_, set_", true},
        {attributeName(L"class, set"), true, L"class, set", L"class, set", true},
        {attributeName(L"   "), true, L"", L"?", false},
        {{NameRecord::missing, L"UML:ModelElement.name"}, true, L"?[[Missing_Element_'UML:ModelElement.name']]",
         L"?[[Missing_Element_'UML:ModelElement.name']]", false},
        {{NameRecord::repeated, L"a, b"}, false, L"?[[Duplicate_Element_'a, b']]", L"?[[Duplicate_Element_'a, b']]", false},
        {NameRecord(), true, L"", L"?", false},
    };
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        const Row& row = rows[i];
        EXPECT_EQ(toWString(ClassRenderer::nameText(row.name, row.escape)), row.text) << "row " << i;
        EXPECT_EQ(toWString(ClassRenderer::nameOrUnknown(row.name, row.escape)), row.orUnknown) << "row " << i;
        EXPECT_EQ(ClassRenderer::hasName(row.name), row.hasName) << "row " << i;
    }
    EXPECT_EQ(toWString(ClassRenderer::typeName(attributeName(L"value"))), L"value");
}

// The rows the element tests don't reach: "ref", bounds that aren't numbers, a bound too large.
TEST(ClassRenderer, TypesAndMultiplicities) {
    using Bound = std::optional<_eString>;
    struct Row {
        bool single;
        Bound lower;
        Bound upper;
        bool isRef;
        const wchar_t* tokens;
    };
    const Row rows[] = {
        {false, L"", L"", true, L"from T"},
        {true, L" 0 ", L"1 ", true, L"ref from T || void"},
        {true, L"1", L"1", true, L"ref from T"},
        {true, L"?", L"?", true, L"set of ref from T"},
        {true, std::nullopt, L"1", true, L"ref from T"},
        {true, L"0", std::nullopt, false, L"set of from T"},
        {true, L"2", L"5", true, L"those x : set of ref from T :- # x >= 2"},
        {true, L"99999999999", L"*", false, L"those x : set of from T :- # x >= 2147483647"},
    };
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        const Row& row = rows[i];
        EXPECT_EQ(joined(ClassRenderer::multiplicityType({row.single, row.lower, row.upper}, classType(L"T", false), row.isRef)),
                  row.tokens)
            << "row " << i;
    }
    // Every kind of absence reads "?"; a library's primitive types read as the language's own.
    auto typed = [](TypeRecord::Kind kind, const wchar_t* name) {
        return joined(ClassRenderer::typeTokens({kind, attributeName(name), true, {}}));
    };
    EXPECT_EQ((std::vector{typed(TypeRecord::none, L"T"), typed(TypeRecord::unresolved, L"T"), typed(TypeRecord::library, L"Integer"),
                           typed(TypeRecord::library, L"Boolean"), typed(TypeRecord::library, L"Real"),
                           typed(TypeRecord::library, L"EString"), typed(TypeRecord::library, L"JList"),
                           typed(TypeRecord::named, L"Integer"),
                           typed(TypeRecord::classType, L"float")}),
              (std::vector<std::wstring>{L"?", L"?", L"int", L"bool", L"real", L"String", L"JList", L"Integer", L"real"}));
    EXPECT_TRUE(ClassRenderer::readsVoid({TypeRecord::library, attributeName(L"void"), false, {}}));
    EXPECT_FALSE(ClassRenderer::readsVoid({TypeRecord::unresolved, attributeName(L"void"), false, {}}));
}

// A class of every kind of member: the sections come out in the order abstract, confined,
// interface; features before association members; modifiers and parents at the head.
TEST(ClassRenderer, ClassDeclarationFromRecords) {
    ClassRecord account;
    account.name = attributeName(L"Account");
    account.isAbstract = true;
    account.id = L"a1";
    account.features.emplace_back(AttributeRecord{L"1", attributeName(L"limit"), Visibility::protected_,
                                                  Changeability::frozen, L"'x'", named(L"int"), {}, {}});
    account.features.emplace_back(AttributeRecord{L"2", attributeName(L"spare"), Visibility::package,
                                                  Changeability::frozen, std::nullopt, named(L"int"), {}, {}});
    account.features.emplace_back(OperationRecord{L"3", attributeName(L"Account"), Visibility::public_, true, false,
                                                  Scope::instance, {{L"4", attributeName(L"v"), Direction::out, named(L"int"), false}}, {}});
    account.features.emplace_back(OperationRecord{L"5", attributeName(L"total"), Visibility::private_, false, true,
                                                  Scope::unknown,
                                                  {{L"6", attributeName(L"r"), Direction::result, named(L"real"), false},
                                                   {L"7", attributeName(L"q"), Direction::result, named(L"void"), true}}, {}});
    AssociationEndRecord own;
    own.isNavigable = false;
    own.aggregation = Aggregation::composite;
    own.typeId = L"a1";
    own.singleType = true;
    AssociationEndRecord far;
    far.visibility = Visibility::public_;
    far.isNavigable = true;
    far.typeId = L"o1";
    far.singleType = true;
    far.type = classType(L"Order", true);
    far.roleType = named(L"Order");
    far.multiplicity = {true, L"0", L"*"};
    account.associations.push_back({L"8", {own, far}});
    account.associations.push_back({L"9", {own, far, far}});  // three ends give nothing
    account.parents = {{L"10", named(L"Base")}, {L"11", TypeRecord()}};
    EXPECT_EQ(joined(ClassRenderer::classDeclaration(account)),
              L"deferred class Account ^= inherits Base , ? "
              L"abstract const limit ^= `x` ; const spare ^= ? ; final function total_ : real ^= ? ; "
              L"var myOrder : set of Order ; "
              L"confined function limit ; "
              L"interface build { v : int } post ? ; selector myOrder ; end ;");
    // What the model lacks is counted without the declaration: the parent that isn't resolved
    // and the constant without a value, not the bodies left to complete.
    EXPECT_EQ(ClassRenderer::unknownCount(account), 2);

    ClassRecord empty;
    empty.name = {NameRecord::missing, L"UML:ModelElement.name"};
    empty.isLeaf = true;
    empty.isAbstract = true;
    EXPECT_EQ(joined(ClassRenderer::classDeclaration(empty)),
              L"final class ?[[Missing_Element_'UML:ModelElement.name']] ^= interface end ;");
    // Members in the confined part alone: no empty interface follows them.
    empty.features.emplace_back(OperationRecord{L"", attributeName(L"reset"), Visibility::protected_, false, false,
                                                Scope::unknown, {}, {}});
    EXPECT_EQ(joined(ClassRenderer::classDeclaration(empty)),
              L"final class ?[[Missing_Element_'UML:ModelElement.name']] ^= confined schema ! reset post ? ; end ;");
}

namespace {

// The lines of `text`, counted from 1.
std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines{""};
    for (char c : text) {
        if (c == '\n')
            lines.emplace_back();
        else
            lines.back().push_back(c);
    }
    return lines;
}

ClassRecord ledger(const wchar_t* attributeName, const wchar_t* parameterName = L"amount") {
    ClassRecord record;
    record.id = L"L";
    record.name = NameRecord::plain(L"Ledger");
    record.parents = {{L"g", named(L"Book")}};
    record.features.emplace_back(AttributeRecord{L"a", NameRecord::plain(attributeName), Visibility::public_,
                                                 Changeability::changeable, std::nullopt, TypeRecord(), {}, {}});
    record.features.emplace_back(OperationRecord{L"o", NameRecord::plain(L"post"), Visibility::protected_, false, false,
                                                 Scope::instance, {{L"p", NameRecord::plain(parameterName), Direction::in,
                                                                    named(L"int"), false}}, {}});
    return record;
}

}  // namespace

// Every declaration maps to the lines that hold its text, in the order of the text, each tagged
// with the element it came from; a member and its accessor share the member's id.
TEST(ClassRenderer, DeclarationsKnowTheirElementsAndLines) {
    _eHndl<Environment> env(new Environment());
    _eHndl<TarvaneOutput> out = ClassRenderer::classDeclaration(ledger(L"balance"));
    TarvaneOutput::Layout layout = out->layOut(ImportOptions::defaults(), FileName(L"/out/", L"Ledger", L"tv", env.get()),
                                               FileName(L"/m.xmi", env.get()), *env);
    std::vector<std::string> lines = linesOf(layout.bytes);
    struct Expected {
        const wchar_t* id;
        DeclarationPart part;
        const char* text;  // of its lines, joined by "|"
    };
    const Expected expected[] = {
        {L"L", DeclarationPart::classHead, "class Ledger ^= inherits Book"},
        {L"L", DeclarationPart::section, "abstract"},
        {L"a", DeclarationPart::member, "\tvar balance: ?;"},
        {L"L", DeclarationPart::section, "confined"},
        {L"o", DeclarationPart::member, "\tschema !post_ (amount: int) post ?;"},
        {L"L", DeclarationPart::section, "interface"},
        {L"a", DeclarationPart::accessor, "\tselector balance;"},
        {L"L", DeclarationPart::classEnd, "end;"},
    };
    ASSERT_EQ(layout.declarations.size(), std::size(expected)) << layout.bytes;
    for (std::size_t i = 0; i < std::size(expected); ++i) {
        const DeclarationLines& d = layout.declarations[i];
        std::string text;
        for (std::int32_t line = d.firstLine; line <= d.lastLine; ++line)
            text += (line == d.firstLine ? "" : "|") + lines.at(std::size_t(line - 1));
        EXPECT_EQ(toWString(d.id), expected[i].id) << "declaration " << i;
        EXPECT_EQ(d.part, expected[i].part) << "declaration " << i;
        EXPECT_EQ(text, expected[i].text) << "declaration " << i;
    }
    // Rendering without the map gives the same bytes.
    EXPECT_EQ(out->render(ImportOptions::defaults(), FileName(L"/out/", L"Ledger", L"tv", env.get()),
                          FileName(L"/m.xmi", env.get()), *env),
              layout.bytes);
}

// A body to complete is placed at its byte in its line, whatever units come before it on the
// line: one byte each up to 255, two to four above.
TEST(ClassRenderer, BodiesAreAtTheirByteWhateverTheUnitsBefore) {
    _eHndl<Environment> env(new Environment());
    for (const wchar_t* parameter : {L"amount", L"caf\u00e9", L"\u00ff\u0100\u07ff\u0800", L"pri\u20acx\U0001F600y"}) {
        TarvaneOutput::Layout layout = ClassRenderer::classDeclaration(ledger(L"balance", parameter))
                                           ->layOut(ImportOptions::defaults(), FileName(L"/out/", L"Ledger", L"tv", env.get()),
                                                    FileName(L"/m.xmi", env.get()), *env);
        std::vector<std::string> lines = linesOf(layout.bytes);
        int bodies = 0;
        for (const DeclarationLines& d : layout.declarations)
            for (const BodyPosition& body : d.bodies) {
                const std::string& line = lines.at(std::size_t(body.line - 1));
                ASSERT_LT(std::size_t(body.column), line.size()) << line;
                EXPECT_EQ(line.substr(std::size_t(body.column)), "?;") << line;
                EXPECT_NE(line.find("post ?"), std::string::npos) << line;
                ++bodies;
            }
        EXPECT_EQ(bodies, 1) << layout.bytes;
    }
}

// "?" to complete a body, "?" for what the model lacks and model names are told apart; a
// model name that starts like a comment is laid out as one only where comments are told by
// their prefix.
TEST(ClassRenderer, TokenKindsAndModelTextThatLooksLikeAComment) {
    _eHndl<TarvaneOutput> out = ClassRenderer::classDeclaration(ledger(L"//balance"));
    EXPECT_EQ(ClassRenderer::unknownCount(ledger(L"//balance")), 1);
    std::vector<std::pair<std::wstring, TokenKind>> questionMarks;
    for (int i = 0; i < out->tokens().size(); ++i)
        if (out->tokens().at(i) == _eString(L"?") || out->tokens().at(i) == _eString(L"//balance"))
            questionMarks.push_back({toWString(out->tokens().at(i)), TokenKind(out->kinds().at(i))});
    EXPECT_EQ(questionMarks, (std::vector<std::pair<std::wstring, TokenKind>>{{L"//balance", TokenKind::name},
                                                                            {L"?", TokenKind::unknown},
                                                                            {L"?", TokenKind::body},
                                                                            {L"//balance", TokenKind::name}}));
    _eHndl<Environment> env(new Environment());
    auto render = [&](const ImportOptions& options) {
        std::string text = out->render(options, FileName(L"/out/", L"Ledger", L"tv", env.get()),
                                       FileName(L"/m.xmi", env.get()), *env);
        return text.substr(text.find("abstract"));
    };
    EXPECT_TRUE(render(ImportOptions::defaults()).starts_with("abstract\n\tvar\n\t//balance\n\t: ?;\nconfined\n"));
    EXPECT_TRUE(render(ImportOptions(100, L"\t", L"", {}, true)).starts_with("abstract\n\tvar //balance: ?;\nconfined\n"));
}

// The placeholders counted without the text are those of the text, class by class, over every
// class of the real files and of the models of the extensions, each read with every extension.
TEST(ClassRenderer, PlaceholdersCountedAsTheTextHasThem) {
    std::vector<std::filesystem::path> models = {std::string(MODELBRIDGE_TEST_DATA_DIR) + "/extensions/left-out.xmi",
                                                 std::string(MODELBRIDGE_TEST_DATA_DIR) + "/parts/parts.xmi"};
    for (const char* folder : {MODELBRIDGE_CORPUS_DIR, MODELBRIDGE_CORPUS2_DIR})
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) models.push_back(entry.path());
    int placeholders = 0;
    for (const std::filesystem::path& path : models) {
        ParseOutcome parsed = parseFile(path.string(), true, everyExtension());
        auto* document = dynamic_cast<XMLDocument*>(parsed.result.get());
        if (document == nullptr) continue;
        ModelSource source{path.string(), {}, {}, everyExtension()};
        std::shared_ptr<const ModelReader> reader = ModelReader::choose(*document->getRoot(), source);
        _eHndl<Context> context(new Context(document->getRoot()->dictionary(), MemberForms::every, {true, true, true, true, true}));
        for (const FoundClass& found : reader->classes().inOrder) {
            ClassRecord record = reader->readClass(found, context);
            TokenKinds kinds = ClassRenderer::classDeclaration(record)->kinds();
            int unknown = 0;
            for (int i = 0; i < kinds.size(); ++i) unknown += kinds.at(i) == std::int32_t(TokenKind::unknown) ? 1 : 0;
            EXPECT_EQ(ClassRenderer::unknownCount(record), unknown) << path << " " << toWString(record.id);
            placeholders += unknown;
        }
    }
    EXPECT_GT(placeholders, 10);
}
