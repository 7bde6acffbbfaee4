// UML 2 models saved as XMI 2.x: the same model generates what it generates saved as XMI 1.2,
// whichever tool's shape it takes; which documents and elements count; and the real files of
// the corpus. (The defaults and references the file leaves implicit are a golden file.)
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

}  // namespace

// The same model saved as XMI 1.2 and by three UML 2 tools: Papyrus (.uml, root "uml:Model",
// library types by "pathmap"), Enterprise Architect's XMI 2.1 (types by "xmi:idref", member
// ends as elements, every default written out, an extension of references) and MagicDraw's
// (documentation elements, the OMG library, profile elements and applications, an extension
// holding a class that isn't one). Every class file and the file of all read alike.
TEST(Xmi2Reader, OneModelSavedByFourToolsGeneratesOneText) {
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
TEST(Xmi2Reader, OnlyWhenAskedForAndEmptyModels) {
    ImportRun specified(testData("shop-papyrus.uml"), Extensions());
    EXPECT_TRUE(specified.parsed);
    EXPECT_TRUE(specified.classes.empty());
    EXPECT_FALSE(specified.generated);
    EXPECT_EQ(specified.errors, (std::vector<std::wstring>{L"model.xmi (1,1): Fatal error! Not an XMI document."}));

    // A result written with the "kind" of UML 1.x, as some exporters do, is the result.
    ImportRun kind = xmi2(papyrus(
        "<packagedElement xmi:type='uml:Class' xmi:id='c' name='C'><ownedOperation xmi:id='o' name='size'>"
        "<ownedParameter xmi:id='r' name='returnparam' kind='return' type='c'/></ownedOperation></packagedElement>"));
    EXPECT_NE(kind.files["C.tv"].find("function size: from C ^= ?;"), std::string::npos) << kind.files["C.tv"];

    ImportRun empty = xmi2(papyrus("<packagedElement xmi:type='uml:Package' xmi:id='p' name='P'/>"));
    EXPECT_TRUE(empty.parsed && empty.generated && empty.errors.empty());
    EXPECT_TRUE(empty.classes.empty());
    EXPECT_EQ(empty.single, "\n\n\n// End of file.\n");
}

// Which documents are XMI 2 and which elements are classes: any prefixes bound to the XMI 2
// and UML namespaces; classes by type or by tag, at any depth, with start tags or empty ones,
// in document order with an outer class before those it holds. References, other kinds of
// classifier, elements without an id and everything in other namespaces are no classes.
TEST(Xmi2Reader, DocumentsAndClassesRecognised) {
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

// Every class with an id in the real files of UML 2 tools is listed under its name, and
// generated.
TEST(Xmi2Reader, EveryClassOfTheCorpus) {
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
