// What readers put into the records beyond the text: the ids of every element, documentation,
// the packages a class stands in; and which reader the table gives a document.
#include <gtest/gtest.h>

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
        reader = ModelReader::choose(*document->getRoot(), extensions);
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

const char* const xmi1 =
    "<XMI><XMI.content><UML:Model xmi.id='m' name='M'><UML:Namespace.ownedElement>"
    "<UML:Package xmi.id='p' name='bank'><UML:Namespace.ownedElement>"
    "<UML:Package xmi.id='q' name='core'><UML:Namespace.ownedElement>"
    "<UML:Class xmi.id='c' name='Account'>"
    "<UML:ModelElement.taggedValue><UML:TaggedValue tag='author' value='me'/>"
    "<UML:TaggedValue tag='documentation' value='Money kept.'/></UML:ModelElement.taggedValue>"
    "<UML:Classifier.feature>"
    "<UML:Attribute xmi.id='a' name='balance' visibility='private' changeability='frozen'>"
    "<UML:ModelElement.taggedValue><UML:TaggedValue><UML:TaggedValue.type><UML:TagDefinition xmi.idref='td'/>"
    "</UML:TaggedValue.type><UML:TaggedValue.dataValue>In cents.</UML:TaggedValue.dataValue></UML:TaggedValue>"
    "</UML:ModelElement.taggedValue></UML:Attribute>"
    "<UML:Operation xmi.id='o' name='deposit' visibility='public' ownerScope='classifier' isAbstract='true'>"
    "<UML:BehavioralFeature.parameter><UML:Parameter xmi.id='r' name='amount' kind='inout'/>"
    "</UML:BehavioralFeature.parameter></UML:Operation>"
    "</UML:Classifier.feature></UML:Class>"
    "<UML:Generalization xmi.id='g'><UML:Generalization.child><UML:Class xmi.idref='c'/></UML:Generalization.child>"
    "<UML:Generalization.parent><UML:Class xmi.idref='b'/></UML:Generalization.parent></UML:Generalization>"
    "</UML:Namespace.ownedElement></UML:Package>"
    "<UML:Class xmi.id='b' name='Base' comment='The root.'/>"
    "</UML:Namespace.ownedElement></UML:Package>"
    "<UML:Class xmi.id='t' name='Top'><UML:Namespace.ownedElement/></UML:Class>"
    "<UML:TagDefinition xmi.id='td' name='documentation'/>"
    "</UML:Namespace.ownedElement></UML:Model></XMI.content></XMI>";

}  // namespace

TEST(ModelReader, Xmi1RecordsCarryIdsDocumentationAndPackages) {
    Read read(xmi1);
    // The path reader finds the classes with a start tag; "Base", written empty, only anywhere.
    ASSERT_EQ(read.found.inOrder.size(), 2u);
    EXPECT_EQ(read.packages(0), (std::vector<std::wstring>{L"bank", L"core"}));
    EXPECT_TRUE(read.packages(1).empty());
    ClassRecord account = read.record(0);
    EXPECT_EQ(w(account.id), L"c");
    ASSERT_TRUE(account.documentation.has_value());
    EXPECT_EQ(w(*account.documentation), L"Money kept.");
    ASSERT_EQ(account.features.size(), 2u);
    const auto& balance = std::get<AttributeRecord>(account.features[0]);
    EXPECT_EQ(w(balance.id), L"a");
    EXPECT_EQ(balance.visibility, Visibility::private_);
    EXPECT_EQ(balance.changeability, Changeability::frozen);
    EXPECT_FALSE(balance.initialValue.has_value());
    ASSERT_TRUE(balance.documentation.has_value());
    EXPECT_EQ(w(*balance.documentation), L"In cents.");
    EXPECT_EQ(balance.type.kind, TypeRecord::none);
    const auto& deposit = std::get<OperationRecord>(account.features[1]);
    EXPECT_EQ(w(deposit.id), L"o");
    EXPECT_EQ(deposit.scope, Scope::classifier);
    EXPECT_TRUE(deposit.isAbstract);
    EXPECT_FALSE(deposit.isLeaf);
    ASSERT_EQ(deposit.parameters.size(), 1u);
    EXPECT_EQ(w(deposit.parameters[0].id), L"r");
    EXPECT_EQ(deposit.parameters[0].direction, Direction::inout);
    ASSERT_EQ(account.parents.size(), 1u);
    EXPECT_EQ(w(account.parents[0].id), L"g");
    EXPECT_EQ(w(account.parents[0].parent.name.text), L"Base");
    EXPECT_EQ(read.record(1).packagePath.size(), 0u);

    ImportExtensions anywhere;
    anywhere.anywhere = true;
    Read everywhere(xmi1, anywhere);
    ASSERT_EQ(everywhere.found.inOrder.size(), 3u);
    EXPECT_EQ(everywhere.packages(1), (std::vector<std::wstring>{L"bank"}));
    ClassRecord base = everywhere.record(1);
    EXPECT_EQ(w(base.name.text), L"Base");
    ASSERT_TRUE(base.documentation.has_value());
    EXPECT_EQ(w(*base.documentation), L"The root.");
}

TEST(ModelReader, Xmi2RecordsCarryIdsDocumentationAndPackages) {
    const char* text =
        "<uml:Model xmi:version='2.1' xmlns:xmi='http://schema.omg.org/spec/XMI/2.1' "
        "xmlns:uml='http://www.eclipse.org/uml2/3.0.0/UML' xmi:id='m' name='M'>"
        "<packagedElement xmi:type='uml:Package' xmi:id='p' name='shop'>"
        "<packagedElement xmi:type='uml:Class' xmi:id='c' name='Cart' isAbstract='true'>"
        "<ownedComment xmi:id='k1' body='Holds items.'/><ownedComment xmi:id='k2'><body>Until paid.</body></ownedComment>"
        "<generalization xmi:id='g' general='b'/>"
        "<ownedAttribute xmi:id='a' name='total' isReadOnly='true' visibility='protected'>"
        "<type href='pathmap://UML_LIBRARIES/UMLPrimitiveTypes.library.uml#Integer'/></ownedAttribute>"
        "<ownedOperation xmi:id='o' name='add' isStatic='true'><ownedComment body='Adds one.'/>"
        "<ownedParameter xmi:id='r' name='n' direction='out' type='b'/></ownedOperation>"
        "</packagedElement></packagedElement>"
        "<packagedElement xmi:type='uml:Class' xmi:id='b' name='Base' isLeaf='true'/>"
        "</uml:Model>";
    Read plain(text);
    EXPECT_FALSE(plain.reader->readsDocument()) << "XMI 2 is read only when asked for";
    ImportExtensions xmi2;
    xmi2.xmi2 = true;
    Read read(text, xmi2);
    ASSERT_TRUE(read.reader->readsDocument());
    ASSERT_EQ(read.found.inOrder.size(), 2u);
    EXPECT_EQ(read.packages(0), (std::vector<std::wstring>{L"shop"}));
    ClassRecord cart = read.record(0);
    EXPECT_EQ(w(cart.id), L"c");
    EXPECT_TRUE(cart.isAbstract);
    ASSERT_TRUE(cart.documentation.has_value());
    EXPECT_EQ(w(*cart.documentation), L"Holds items.\n\nUntil paid.");
    ASSERT_EQ(cart.parents.size(), 1u);
    EXPECT_EQ(w(cart.parents[0].id), L"g");
    EXPECT_EQ(cart.parents[0].parent.kind, TypeRecord::classType);
    EXPECT_TRUE(cart.parents[0].parent.leaf);
    const auto& total = std::get<AttributeRecord>(cart.features.at(0));
    EXPECT_EQ(w(total.id), L"a");
    EXPECT_EQ(total.visibility, Visibility::protected_);
    EXPECT_EQ(total.changeability, Changeability::frozen);
    EXPECT_EQ(total.type.kind, TypeRecord::library);
    EXPECT_EQ(w(total.type.name.text), L"Integer");
    EXPECT_FALSE(total.documentation.has_value());
    const auto& add = std::get<OperationRecord>(cart.features.at(1));
    EXPECT_EQ(w(add.id), L"o");
    EXPECT_EQ(add.scope, Scope::classifier);
    ASSERT_TRUE(add.documentation.has_value());
    EXPECT_EQ(w(*add.documentation), L"Adds one.");
    EXPECT_EQ(add.visibility, Visibility::public_);
    ASSERT_EQ(add.parameters.size(), 1u);
    EXPECT_EQ(w(add.parameters[0].id), L"r");
    EXPECT_EQ(add.parameters[0].direction, Direction::out);
    EXPECT_FALSE(read.record(1).documentation.has_value());
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
    EXPECT_EQ(XmiWords::visibility(L"public"), Visibility::public_);
    EXPECT_EQ(XmiWords::visibility(L"package"), Visibility::package);
    EXPECT_EQ(XmiWords::visibility(L"Public"), Visibility::unknown);
    EXPECT_EQ(XmiWords::visibility(L"?"), Visibility::unknown);
    EXPECT_EQ(XmiWords::changeability(L"addOnly"), Changeability::addOnly);
    EXPECT_EQ(XmiWords::changeability(L"frozen "), Changeability::unknown);
    EXPECT_EQ(XmiWords::scope(L"classifier"), Scope::classifier);
    EXPECT_EQ(XmiWords::direction(L"return"), Direction::result);
    EXPECT_EQ(XmiWords::direction(L"inout"), Direction::inout);
    EXPECT_EQ(XmiWords::direction(L""), Direction::unknown);
    EXPECT_EQ(XmiWords::aggregation(L"aggregate"), Aggregation::shared);
    EXPECT_EQ(XmiWords::aggregation(L"shared"), Aggregation::unknown);
    EXPECT_TRUE(XmiWords::flag(L"true"));
    EXPECT_FALSE(XmiWords::flag(L"TRUE"));
}
