// The search that finds classes wherever exporters put them, on models nested as real tools
// nest them, and on the corpus of real files.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>

#include "environment/PlatformText.h"
#include "support/CorpusScan.h"
#include "support/ImportRun.h"
#include "support/ImporterInspector.h"
#include "support/ParseRun.h"

namespace {

std::string xmi(const std::string& content) { return "<XMI xmi.version='1.2'><XMI.content>" + content + "</XMI.content></XMI>"; }

// The model imported with the search for classes anywhere, or along the path.
ImportRun imported(const std::string& model, bool anywhere) {
    Extensions extensions;
    extensions.anywhere = anywhere;
    return ImportRun(model, extensions);
}

using ClassNames = std::vector<std::wstring>;

}  // namespace

// Umbrello: the classes in a nested model, many as empty-element tags, types by attribute.
// MagicDraw: a nested model, then packages within packages.
TEST(AnywhereSearch, NestedModelsPackagesAndEmptyElementClasses) {
    std::string umbrello = xmi(
        "<UML:Model xmi.id='m' name='M'><UML:Namespace.ownedElement>"
        "<UML:Model xmi.id='lv' name='Logical View'><UML:Namespace.ownedElement>"
        "<UML:Class xmi.id='c1' name='Order' isAbstract='true'><UML:Classifier.feature>"
        "<UML:Attribute xmi.id='a1' name='total' visibility='public' type='d1'/>"
        "<UML:Attribute xmi.id='a2' name='count' visibility='public' type='d1'></UML:Attribute>"
        "</UML:Classifier.feature></UML:Class>"
        "<UML:Class xmi.id='c2' name='Item'/>"
        "<UML:Class name='NoId'/>"
        "<UML:DataType xmi.id='d1' name='int'/>"
        "<UML:Package xmi.id='p' name='P'><UML:Namespace.ownedElement>"
        "<UML:Class xmi.id='c3' name='Deep'/></UML:Namespace.ownedElement></UML:Package>"
        "</UML:Namespace.ownedElement></UML:Model>"
        "</UML:Namespace.ownedElement></UML:Model>");
    ImportRun found = imported(umbrello, true);
    EXPECT_TRUE(found.parsed && found.generated);
    EXPECT_EQ(found.classes, (ClassNames{L"Deep", L"Item", L"Order"}));
    // Document order; an empty-element class has no members; a type by attribute resolves.
    EXPECT_EQ(found.single,
              "deferred class Order ^=\nabstract\n\tvar count: int;\ninterface\n\tselector count;\nend;\n\n"
              "class Item ^=\ninterface\nend;\n\nclass Deep ^=\ninterface\nend;\n\n\n// End of file.\n");
    EXPECT_TRUE(imported(umbrello, false).classes.empty());

    std::string magicDraw = xmi(
        "<UML:Model xmi.id='m'><UML:Namespace.ownedElement><UML:Model xmi.id='data'><UML:Namespace.ownedElement>"
        "<UML:Package xmi.id='p1'><UML:Namespace.ownedElement><UML:Package xmi.id='p2'><UML:Namespace.ownedElement>"
        "<UML:Class xmi.id='c' name='Inner'></UML:Class>"
        "</UML:Namespace.ownedElement></UML:Package></UML:Namespace.ownedElement></UML:Package>"
        "<UML:Class xmi.id='d' name='Outer'></UML:Class>"
        "</UML:Namespace.ownedElement></UML:Model></UML:Namespace.ownedElement></UML:Model>");
    ImportRun deep = imported(magicDraw, true);
    EXPECT_EQ(deep.classes, (ClassNames{L"Inner", L"Outer"}));
    EXPECT_LT(deep.single.find("class Inner"), deep.single.find("class Outer"));
    EXPECT_TRUE(imported(magicDraw, false).classes.empty());
}

// UML 1.4 tools: classes in subsystems and in a class's own namespace. A class that holds
// another comes whole, then the one it holds; references and classes outside "XMI.content"
// are no classes.
TEST(AnywhereSearch, SubsystemsAndNestedClasses) {
    std::string model =
        "<XMI><XMI.header><UML:Class xmi.id='h' name='Header'/></XMI.header><XMI.content>"
        "<UML:Model xmi.id='m'><UML:Namespace.ownedElement>"
        "<UML:Subsystem xmi.id='s'><UML:Namespace.ownedElement>"
        "<UML:Class xmi.id='o' name='Outer'><UML:Namespace.ownedElement>"
        "<UML:Class xmi.id='i' name='Inner'/></UML:Namespace.ownedElement>"
        "<UML:Classifier.feature><UML:Attribute xmi.id='x' name='x' visibility='private'>"
        "<UML:StructuralFeature.type><UML:Class xmi.idref='i'/></UML:StructuralFeature.type></UML:Attribute>"
        "</UML:Classifier.feature></UML:Class>"
        "</UML:Namespace.ownedElement></UML:Subsystem>"
        "<UML:Class xmi.id='a' name='After'></UML:Class>"
        "</UML:Namespace.ownedElement></UML:Model></XMI.content></XMI>";
    ImportRun found = imported(model, true);
    EXPECT_EQ(found.classes, (ClassNames{L"After", L"Inner", L"Outer"}));
    // The nested class is an empty-element tag: a reference to it reads as its name.
    EXPECT_EQ(found.single,
              "class Outer ^=\nabstract\n\tvar x: Inner;\nend;\n\nclass Inner ^=\ninterface\nend;\n\n"
              "class After ^=\ninterface\nend;\n\n\n// End of file.\n");
    EXPECT_EQ(imported(model, false).classes, (ClassNames{L"After"}));
}

// Rose: UML 1.3 tags without a prefix, read as "UML:" forms in an "XMI" document only.
TEST(AnywhereSearch, UnprefixedTagsOfRose) {
    std::string rose =
        "<XMI xmi.version='1.1' xmlns:UML='href://org.omg/UML/1.3'><XMI.header><XMI.documentation/></XMI.header>"
        "<XMI.content><Model xmi.id='m' name='Logical View'><Namespace.ownedElement>"
        "<Class xmi.id='k' name='Kind' visibility='public'><Classifier.feature>"
        "<Attribute xmi.id='a' name='size' visibility='public'><StructuralFeature.type>"
        "<DataType xmi.idref='t'/></StructuralFeature.type></Attribute>"
        "</Classifier.feature></Class>"
        "<DataType xmi.id='t' name='float'/>"
        "</Namespace.ownedElement></Model></XMI.content></XMI>";
    ImportRun found = imported(rose, true);
    EXPECT_EQ(found.classes, (ClassNames{L"Kind"}));
    EXPECT_EQ(found.single,
              "class Kind ^=\nabstract\n\tvar size: real;\ninterface\n\tselector size;\nend;\n\n\n// End of file.\n");
    EXPECT_TRUE(imported(rose, false).classes.empty());

    // The tags are read so only below an "XMI" root, and only when asked for.
    auto rootName = [](const std::string& text, bool unprefixed) {
        ParseOutcome parsed = parseText(text, unprefixed);
        const XMLElement& root = *static_cast<XMLDocument*>(parsed.result.get())->getRoot();
        return toWString(root.getName()) + L"/" + toWString(root.getContent()->childElements().get(0)->getName());
    };
    EXPECT_EQ(rootName("<XMI><Class/></XMI>", true), L"XMI/UML:Class");
    EXPECT_EQ(rootName("<XMI><XMI.content/></XMI>", true), L"XMI/XMI.content");
    EXPECT_EQ(rootName("<XMI><Foundation.Core.Class/></XMI>", true), L"XMI/UML:Class");
    EXPECT_EQ(rootName("<XMI><Class/></XMI>", false), L"XMI/Class");
    EXPECT_EQ(rootName("<Model><Class/></Model>", true), L"Model/Class");
}

// Every class element with an id in the real files is listed, under its name.
TEST(AnywhereSearch, EveryClassOfTheCorpus) {
    int files = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(MODELBRIDGE_CORPUS_DIR)) {
        if (entry.path().extension() != ".xmi") continue;
        ++files;
        std::string text = readFile(entry.path());
        // The "UML:Class" tags that have an id and refer to nothing.
        std::set<std::wstring> expected = classNamesOfTags(text, [](const std::string& tag) {
            return tag.rfind("<UML:Class", 0) == 0 && tag.size() > 10 && std::string(" \t\r\n/").find(tag[10]) != std::string::npos &&
                   tag.find("xmi.id") != std::string::npos && tag.find("xmi.idref") == std::string::npos;
        });
        ImportRun found = imported(text, true);
        EXPECT_EQ(std::set<std::wstring>(found.classes.begin(), found.classes.end()), expected) << entry.path();
        EXPECT_TRUE(found.parsed && found.generated) << entry.path();
        EXPECT_EQ(found.files.size(), found.classes.size()) << entry.path();
    }
    EXPECT_EQ(files, 10);
}
