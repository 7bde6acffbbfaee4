// What readers put into the records beyond the text: the ids of every element, documentation,
// the packages a class stands in; and which reader the table gives a document.
#include <gtest/gtest.h>

#include <tuple>
#include <variant>

#include "support/ParseRun.h"
#include "xmi/ModelReader.h"
#include "xmi/Xmi1Reader.h"
#include "xmi/Xmi2Reader.h"
#include "xmi/XmiHelpers.h"
#include "xml/XMLDocument.h"

namespace {

struct Read {
    explicit Read(const std::string& text, ImportExtensions extensions = {}) {
        ParseOutcome o = parseText(text);
        EXPECT_TRUE(o.accepted) << text;
        document = dynamic_cast<XMLDocument*>(o.result.get());
        ModelSource source;
        source.extensions = extensions;
        source.extensions.documentation = true;
        reader = ModelReader::choose(*document->getRoot(), source);
        found = reader->classes();
        context = new Context(document->getRoot()->dictionary());
    }
    ClassRecord record(std::size_t index) const { return reader->readClass(found.inOrder.at(index), context); }
    std::vector<std::wstring> packages(std::size_t index) const {
        std::vector<std::wstring> names;
        for (const NameRecord& name : found.inOrder.at(index).packagePath) names.push_back(toWString(name.text));
        return names;
    }

    _eHndl<XMLDocument> document;
    std::shared_ptr<const ModelReader> reader;
    ModelClasses found;
    _eHndl<Context> context;
};

std::wstring w(const _eString& text) { return toWString(text); }

std::wstring documented(const _eString& id, const std::optional<_eString>& documentation) {
    return w(id) + L":" + (documentation ? w(*documentation) : L"-");
}

// "class:documentation attribute:documentation operation:documentation parameter ...
// generalization ...", each element by its id.
std::wstring idsAndDocumentation(const ClassRecord& record) {
    std::wstring text = documented(record.id, record.notes.documentation);
    for (const FeatureRecord& feature : record.features) {
        if (const auto* attribute = std::get_if<AttributeRecord>(&feature))
            text += L" " + documented(attribute->id, attribute->notes.documentation);
        if (const auto* operation = std::get_if<OperationRecord>(&feature)) {
            text += L" " + documented(operation->id, operation->notes.documentation);
            for (const ParameterRecord& parameter : operation->parameters) text += L" " + w(parameter.id);
        }
    }
    for (const GeneralizationRecord& parent : record.parents) text += L" " + w(parent.id);
    return text;
}

std::string dataFile(const std::string& name) { return readFile(std::string(MODELBRIDGE_TEST_DATA_DIR) + "/" + name); }

}  // namespace

TEST(ModelReader, Xmi1RecordsCarryIdsDocumentationAndPackages) {
    const std::string xmi1 = dataFile("records.xmi");
    Read read(xmi1);
    // The path reader finds the classes with a start tag; "Base", written empty, only anywhere.
    ASSERT_EQ(read.found.inOrder.size(), 2u);
    EXPECT_EQ(read.packages(0), (std::vector<std::wstring>{L"bank", L"core"}));
    EXPECT_TRUE(read.packages(1).empty());
    ClassRecord account = read.record(0);
    EXPECT_EQ(idsAndDocumentation(account), L"c:Money kept. a:In cents. o:- r g");
    const auto& balance = std::get<AttributeRecord>(account.features.at(0));
    EXPECT_EQ(std::tuple(balance.visibility, balance.changeability, balance.initialValue.has_value(), balance.type.kind),
              std::tuple(Visibility::private_, Changeability::frozen, false, TypeRecord::none));
    const auto& deposit = std::get<OperationRecord>(account.features.at(1));
    EXPECT_EQ(std::tuple(deposit.scope, deposit.isAbstract, deposit.isLeaf, deposit.parameters.at(0).direction),
              std::tuple(Scope::classifier, true, false, Direction::inout));
    EXPECT_EQ(w(account.parents.at(0).parent.name.text), L"Base");

    ImportExtensions anywhere;
    anywhere.anywhere = true;
    Read everywhere(xmi1, anywhere);
    ASSERT_EQ(everywhere.found.inOrder.size(), 3u);
    EXPECT_EQ(everywhere.packages(1), (std::vector<std::wstring>{L"bank"}));
    EXPECT_EQ(idsAndDocumentation(everywhere.record(1)), L"b:The root.");
}

TEST(ModelReader, Xmi2RecordsCarryIdsDocumentationAndPackages) {
    const std::string text = dataFile("xmi2/records.uml");
    EXPECT_FALSE(Read(text).reader->readsDocument()) << "XMI 2 is read only when asked for";
    ImportExtensions xmi2;
    xmi2.xmi2 = true;
    Read read(text, xmi2);
    ASSERT_TRUE(read.reader->readsDocument());
    ASSERT_EQ(read.found.inOrder.size(), 2u);
    EXPECT_EQ(read.packages(0), (std::vector<std::wstring>{L"shop"}));
    ClassRecord cart = read.record(0);
    EXPECT_TRUE(cart.isAbstract);
    EXPECT_EQ(idsAndDocumentation(cart), L"c:Holds items.\n\nUntil paid. a:- o:Adds one. r g");
    EXPECT_EQ(std::tuple(cart.parents.at(0).parent.kind, cart.parents.at(0).parent.leaf),
              std::tuple(TypeRecord::classType, true));
    const auto& total = std::get<AttributeRecord>(cart.features.at(0));
    EXPECT_EQ(std::tuple(total.visibility, total.changeability, total.type.kind, w(total.type.name.text)),
              std::tuple(Visibility::protected_, Changeability::frozen, TypeRecord::library, std::wstring(L"Integer")));
    const auto& add = std::get<OperationRecord>(cart.features.at(1));
    EXPECT_EQ(std::tuple(add.scope, add.visibility, add.parameters.at(0).direction),
              std::tuple(Scope::classifier, Visibility::public_, Direction::out));
    EXPECT_EQ(idsAndDocumentation(read.record(1)), L"b:-");
}

// Each row of the table reads what it is made for, and the last takes every document.
TEST(ModelReader, TheTableChoosesByExtensionsAndRecognition) {
    struct Row {
        const char* text;
        bool xmi2;
        bool anywhere;
        bool readsDocument;
        std::size_t classes;
    };
    const char* const xmi2Text =
        "<xmi:XMI xmlns:xmi='http://www.omg.org/spec/XMI/20131001' xmlns:uml='http://www.omg.org/spec/UML/20131001'>"
        "<uml:Model xmi:id='m'><packagedElement xmi:type='uml:Class' xmi:id='a' name='A'/></uml:Model></xmi:XMI>";
    const char* const nested =
        "<XMI><XMI.content><UML:Model><UML:Namespace.ownedElement><UML:Subsystem><UML:Namespace.ownedElement>"
        "<UML:Class xmi.id='a' name='A'></UML:Class></UML:Namespace.ownedElement></UML:Subsystem>"
        "</UML:Namespace.ownedElement></UML:Model></XMI.content></XMI>";
    const Row rows[] = {
        {xmi2Text, false, false, false, 0}, {xmi2Text, true, false, true, 1}, {xmi2Text, false, true, false, 0},
        {nested, false, false, true, 0},    {nested, true, false, true, 0},   {nested, false, true, true, 1},
        {"<root/>", true, true, false, 0},
    };
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        ImportExtensions extensions;
        extensions.xmi2 = rows[i].xmi2;
        extensions.anywhere = rows[i].anywhere;
        Read read(rows[i].text, extensions);
        EXPECT_EQ(read.reader->readsDocument(), rows[i].readsDocument) << "row " << i;
        if (read.reader->readsDocument()) {
            EXPECT_EQ(read.found.inOrder.size(), rows[i].classes) << "row " << i;
        }
    }
}

// The words of XMI for properties with a fixed set of meanings: exact words only, and "shared"
// is UML 2's, not a word of UML 1.x.
TEST(ModelReader, WordsOfXmiAndTheirMeanings) {
    EXPECT_EQ(std::tuple(XmiWords::visibility(L"public"), XmiWords::visibility(L"package"), XmiWords::visibility(L"Public")),
              std::tuple(Visibility::public_, Visibility::package, Visibility::unknown));
    EXPECT_EQ(std::tuple(XmiWords::changeability(L"addOnly"), XmiWords::changeability(L"frozen "), XmiWords::scope(L"classifier")),
              std::tuple(Changeability::addOnly, Changeability::unknown, Scope::classifier));
    EXPECT_EQ(std::tuple(XmiWords::direction(L"return"), XmiWords::direction(L"inout"), XmiWords::direction(L"")),
              std::tuple(Direction::result, Direction::inout, Direction::unknown));
    EXPECT_EQ(std::tuple(XmiWords::aggregation(L"aggregate"), XmiWords::aggregation(L"shared")),
              std::tuple(Aggregation::shared, Aggregation::unknown));
    EXPECT_EQ(std::tuple(XmiWords::flag(L"true"), XmiWords::flag(L"TRUE")), std::tuple(true, false));
}
