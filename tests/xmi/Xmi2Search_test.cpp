// UML 2 models saved as XMI 2.x: the same model generates what it generates saved as XMI 1.2,
// whichever tool's shape it takes; the rules of the defaults and references the file leaves
// implicit; and the real files of the corpus.
#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>

#include "support/CorpusScan.h"
#include "support/ImportRun.h"

namespace {

ImportRun xmi2(const std::string& model, const std::string& fileName = "model.xmi") {
    Extensions extensions;
    extensions.xmi2 = true;
    return ImportRun(model, extensions, fileName);
}

std::string testData(const std::string& name) {
    return readFile(std::string(MODELBRIDGE_TEST_DATA_DIR) + "/xmi2/" + name);
}

// A model of Papyrus's shape around `content`, with `namespaces` declared beside XMI's and UML's.
std::string papyrus(const std::string& content) {
    return "<uml:Model xmi:version='20131001' xmlns:xmi='http://www.omg.org/spec/XMI/20131001' "
           "xmlns:uml='http://www.eclipse.org/uml2/5.0.0/UML' xmi:id='m' name='M'>" +
           content + "</uml:Model>";
}

// One class "C" holding `members`.
std::string classWith(const std::string& members) {
    return papyrus("<packagedElement xmi:type='uml:Class' xmi:id='C' name='C'>" + members + "</packagedElement>");
}

// The declaration of class "C" alone.
std::string declarationOf(const std::string& members) {
    ImportRun run = xmi2(classWith(members));
    EXPECT_TRUE(run.parsed) << members;
    auto found = run.files.find("C.tv");
    return found == run.files.end() ? "<none>" : found->second.substr(0, found->second.find("\n\n"));
}

std::string integerType(const std::string& library) { return "<type href='" + library + "#Integer'/>"; }

}  // namespace

// The same model saved as XMI 1.2 and by three UML 2 tools: Papyrus (.uml, root "uml:Model",
// library types by "pathmap"), Enterprise Architect's XMI 2.1 (types by "xmi:idref", member
// ends as elements, every default written out, an extension of references) and MagicDraw's
// (documentation elements, the OMG library, profile elements and applications, an extension
// holding a class that isn't one). Every class file and the file of all read alike.
TEST(Xmi2Search, OneModelSavedByFourToolsGeneratesOneText) {
    ImportRun uml14(testData("shop.xmi"), Extensions());
    ASSERT_TRUE(uml14.parsed && uml14.generated);
    EXPECT_EQ(uml14.classes,
              (std::vector<std::wstring>{L"Address", L"Book", L"Customer", L"Item", L"Order", L"Special"}));
    EXPECT_NE(uml14.single.find("\tvar myCustomer: ref from Customer;\n"), std::string::npos) << uml14.single;
    for (const char* shape : {"shop-papyrus.uml", "shop-ea.xmi", "shop-magicdraw.xmi"}) {
        ImportRun uml2 = xmi2(testData(shape), shape);
        EXPECT_TRUE(uml2.parsed && uml2.generated && uml2.errors.empty()) << shape;
        EXPECT_EQ(uml2.classes, uml14.classes) << shape;
        EXPECT_EQ(uml2.files, uml14.files) << shape;
        EXPECT_EQ(uml2.single, uml14.single) << shape;
    }
}

// Without the extension an XMI 2 document goes the specified road: no class, and generation
// turns it down. An XMI 2 document without classes lists none and generates an empty file.
TEST(Xmi2Search, OnlyWhenAskedForAndEmptyModels) {
    ImportRun specified(testData("shop-papyrus.uml"), Extensions());
    EXPECT_TRUE(specified.parsed);
    EXPECT_TRUE(specified.classes.empty());
    EXPECT_FALSE(specified.generated);
    EXPECT_EQ(specified.errors, (std::vector<std::wstring>{L"model.xmi (1,1): Fatal error! Not an XMI document."}));

    ImportRun empty = xmi2(papyrus("<packagedElement xmi:type='uml:Package' xmi:id='p' name='P'/>"));
    EXPECT_TRUE(empty.parsed && empty.generated && empty.errors.empty());
    EXPECT_TRUE(empty.classes.empty());
    EXPECT_EQ(empty.single, "\n\n\n// End of file.\n");
}

// Which documents are XMI 2 and which elements are classes: any prefixes bound to the XMI 2
// and UML namespaces; classes by type or by tag, at any depth, with start tags or empty ones,
// in document order with an outer class before those it holds. References, other kinds of
// classifier, elements without an id and everything in other namespaces are no classes.
TEST(Xmi2Search, DocumentsAndClassesRecognised) {
    std::string prefixes =
        "<x:XMI xmlns:x='http://www.omg.org/spec/XMI/20131001' xmlns:u='http://www.omg.org/spec/UML/20131001' "
        "xmlns:p='http://www.omg.org/spec/UML/20131001/StandardProfile' "
        "xmlns:e='http://www.eclipse.org/emf/2002/Ecore'>"
        "<u:Model x:id='m'>"
        "<packagedElement x:type='u:Class' x:id='o' name='Outer'>"
        "<nestedClassifier x:type='u:Class' x:id='i' name='Inner'/>"
        "<nestedClassifier x:type='u:Interface' x:id='f' name='Face'/>"
        "</packagedElement>"
        "<packagedElement x:type='u:Package' x:id='k'><u:Class x:id='t' name='Tagged'></u:Class></packagedElement>"
        "<packagedElement x:type='u:AssociationClass' x:id='a' name='Link'/>"
        "<packagedElement x:type='u:Class' name='NoId'/>"
        "<packagedElement x:type='u:Class' x:idref='o'/>"
        "<packagedElement x:type='u:Class' x:id='r' href='other.uml#X'/>"
        "<packagedElement x:type='e:Class' x:id='q' name='Ecore'/>"
        "</u:Model>"
        "<p:Class x:id='s' name='Stereotype'/>"
        "<x:Extension><packagedElement x:type='u:Class' x:id='h' name='Hidden'/></x:Extension>"
        "</x:XMI>";
    ImportRun found = xmi2(prefixes);
    EXPECT_EQ(found.classes, (std::vector<std::wstring>{L"Inner", L"Outer", L"Tagged"}));
    EXPECT_LT(found.single.find("class Outer"), found.single.find("class Inner"));
    EXPECT_LT(found.single.find("class Inner"), found.single.find("class Tagged"));

    // Roots that aren't XMI 2: "XMI" in no namespace or another, a UML root without a version.
    for (const char* root :
         {"<XMI xmlns:uml='http://www.omg.org/spec/UML/20131001'><uml:Class xmi:id='c' name='C'/></XMI>",
          "<xmi:XMI xmlns:xmi='http://www.omg.org/XMI' xmlns:uml='http://www.omg.org/spec/UML/20131001'>"
          "<uml:Model xmi:id='m'><packagedElement xmi:type='uml:Class' xmi:id='c' name='C'/></uml:Model></xmi:XMI>",
          "<uml:Model xmlns:xmi='http://www.omg.org/spec/XMI/20131001' "
          "xmlns:uml='http://www.omg.org/spec/UML/20131001'>"
          "<packagedElement xmi:type='uml:Class' xmi:id='c' name='C'/></uml:Model>"}) {
        ImportRun other = xmi2(root);
        EXPECT_TRUE(other.classes.empty()) << root;
        EXPECT_EQ(other.generated, std::string(root).rfind("<XMI", 0) == 0) << root;
    }
}

// What the file leaves out has the metamodel's default; bounds, literals, library types and
// directions read as the same model in XMI 1.x reads.
TEST(Xmi2Search, DefaultsAndReferences) {
    const std::string omg = "http://www.omg.org/spec/UML/20131001/PrimitiveTypes.xmi";
    const std::string pathmap = "pathmap://UML_LIBRARIES/UMLPrimitiveTypes.library.uml";
    struct Row {
        std::string members;
        std::string declaration;
    } rows[] = {
        // A value element without a value holds 0; "*" and "-1" are unbounded; two lower bounds
        // make no range, and the type stands plain.
        {"<ownedAttribute xmi:id='a' name='a'>" + integerType(omg) +
             "<lowerValue xmi:type='uml:LiteralInteger'/></ownedAttribute>"
             "<ownedAttribute xmi:id='b' name='b'>" +
             integerType(pathmap) +
             "<upperValue xmi:type='uml:LiteralUnlimitedNatural' value='-1'/></ownedAttribute>"
             "<ownedAttribute xmi:id='c' name='c'>" +
             integerType(omg) +
             "<upperValue xmi:type='uml:LiteralUnlimitedNatural'/></ownedAttribute>"
             "<ownedAttribute xmi:id='d' name='d'>" +
             integerType(omg) + "<lowerValue value='0'/><lowerValue value='0'/></ownedAttribute>",
         "class C ^=\nabstract\n\tvar a: int || void;\n\tvar b: those x: set of int :- # x >= 1;\n"
         "\tvar c: those x: set of int :- # x >= 1;\n\tvar d: int;\n"
         "interface\n\tselector a;\n\tselector b;\n\tselector c;\n\tselector d;\nend;"},
        // Library types by the fragment of their reference: the three primitives by the names of
        // the language, others as written; a class by id, "from" unless it is a leaf.
        {"<ownedAttribute xmi:id='a' name='a'><type href='" + omg +
             "#Boolean'/></ownedAttribute>"
             "<ownedAttribute xmi:id='b' name='b'><type href='" +
             pathmap +
             "#UnlimitedNatural'/></ownedAttribute>"
             "<ownedAttribute xmi:id='c' name='c'><type href='lib.uml#_x7Yz'/></ownedAttribute>"
             "<ownedAttribute xmi:id='d' name='d' type='C'/><ownedAttribute xmi:id='e' name='e' type='none'/>"
             "<ownedAttribute xmi:id='f' name='f'><type xmi:idref='C'/><type xmi:idref='C'/></ownedAttribute>",
         "class C ^=\nabstract\n\tvar a: bool;\n\tvar b: UnlimitedNatural;\n\tvar c: _x7Yz;\n\tvar d: from C;\n"
         "\tvar e: ?;\n\tvar f: ?;\ninterface\n\tselector a;\n\tselector b;\n\tselector c;\n\tselector d;\n"
         "\tselector e;\n\tselector f;\nend;"},
        // Frozen attributes take the default value of each literal kind, or of an expression.
        {"<ownedAttribute xmi:id='a' name='a' isReadOnly='true'><defaultValue "
         "xmi:type='uml:LiteralBoolean'/></ownedAttribute>"
         "<ownedAttribute xmi:id='b' name='b' isReadOnly='true'><defaultValue xmi:type='uml:LiteralReal' "
         "value='2.5'/></ownedAttribute>"
         "<ownedAttribute xmi:id='c' name='c' isReadOnly='true'><defaultValue "
         "xmi:type='uml:LiteralString'/></ownedAttribute>"
         "<ownedAttribute xmi:id='d' name='d' isReadOnly='true'><defaultValue xmi:type='uml:OpaqueExpression' "
         "body='7L'/></ownedAttribute>"
         "<ownedAttribute xmi:id='e' name='e' isReadOnly='true'><defaultValue xmi:type='uml:InstanceValue' "
         "instance='C'/></ownedAttribute>"
         "<ownedAttribute xmi:id='f' name='f' isReadOnly='true'/>",
         "class C ^=\nabstract\n\tconst a ^= false;\n\tconst b ^= 2.5;\n\tconst c ^= ?;\n\tconst d ^= 7;\n"
         "\tconst e ^= ?;\n\tconst f ^= ?;\ninterface\n\tfunction a;\n\tfunction b;\n\tfunction c;\n"
         "\tfunction d;\n\tfunction e;\n\tfunction f;\nend;"},
        // Directions: none is "in"; a return without a type, or typed "void", is none.
        {"<ownedOperation xmi:id='o' name='go' isStatic='true'><ownedParameter xmi:id='p' name='p'/></ownedOperation>"
         "<ownedOperation xmi:id='q' name='q' isAbstract='true'><ownedParameter xmi:id='r' direction='return'>"
         "<type href='lib.uml#void'/></ownedParameter><ownedParameter xmi:id='s' name='s' "
         "direction='inout'/></ownedOperation>"
         "<ownedOperation xmi:id='t' name='t'><ownedParameter xmi:id='u' direction='return' "
         "type='gone'/></ownedOperation>"
         "<ownedOperation xmi:id='v' name='v'><ownedParameter xmi:id='w' direction='return'><type "
         "xmi:idref='gone'/></ownedParameter></ownedOperation>",
         "class C ^=\ninterface\n\tnonmember schema !go (p: ?) post ?;\n\tdeferred schema q (s !: ?);\n"
         "\tschema !t post ?;\n\tfunction v: ? ^= ?;\nend;"},
    };
    for (const Row& row : rows) EXPECT_EQ(declarationOf(row.members), row.declaration) << row.members;
}

// Every class with an id in the real files of UML 2 tools is listed under its name, and
// generated.
TEST(Xmi2Search, EveryClassOfTheCorpus) {
    int files = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(MODELBRIDGE_CORPUS2_DIR)) {
        if (entry.path().extension() != ".uml" && entry.path().extension() != ".xmi") continue;
        ++files;
        std::string text = readFile(entry.path());
        std::set<std::wstring> expected = classNamesOfTags(text, [](const std::string& tag) {
            std::string type;
            std::string id;
            return attributeValue(tag, "xmi:type", type) && type == "uml:Class" && attributeValue(tag, "xmi:id", id);
        });
        ImportRun found = xmi2(text, entry.path().filename().string());
        EXPECT_EQ(std::set<std::wstring>(found.classes.begin(), found.classes.end()), expected) << entry.path();
        EXPECT_TRUE(found.parsed && found.generated && found.errors.empty()) << entry.path();
        EXPECT_EQ(found.files.size(), found.classes.size()) << entry.path();
    }
    EXPECT_EQ(files, 2);
}
