// The search that finds classes wherever exporters put them, on models nested as real tools
// nest them, and on the corpus of real files.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>

#include "environment/PlatformText.h"
#include "support/ImporterInspector.h"
#include "support/ParseRun.h"
#include "support/TempDir.h"

namespace {

std::string xmi(const std::string& content) { return "<XMI xmi.version='1.2'><XMI.content>" + content + "</XMI.content></XMI>"; }

// Parses `model` with the search chosen and reads back the class list and the file of all
// classes (its declarations only).
struct Imported {
    Imported(const std::string& model, bool anywhere) {
        _eHndl<Environment> environment(new Environment());
        XMLImporter importer(environment.get());
        importer.findClassesAnywhere(anywhere);
        bool success = false;
        importer.attemptParse(fromPlatformText(dir.write("model.xmi", model)), L"", success);
        EXPECT_TRUE(success) << model;
        _eSeq<_eString> list = importer.getClassList();
        _eSet<_eString> all;
        for (int i = 0; i < list.size(); ++i) {
            classes.push_back(toWString(list.at(i)));
            all.add(list.at(i));
        }
        for (int i = 0; i < list.size(); ++i) {
            bool written = false;
            importer.generateClassFile(fromPlatformText(dir.path() + "/"), list.at(i), written);
            filesWritten += written && std::filesystem::exists(dir / (toPlatformText(list.at(i)) + ".tv")) ? 1 : 0;
        }
        importer.generateSingleFile(fromPlatformText(dir.path() + "/"), L"all", all, success);
        EXPECT_TRUE(success);
        std::string file = dir.read("all.tv");
        std::size_t start = 0;
        for (int line = 0; line < 7; ++line) start = file.find('\n', start) + 1;
        single = file.substr(start);
    }
    TempDir dir;
    std::vector<std::wstring> classes;
    int filesWritten = 0;  // one file for each class
    std::string single;
};

using ClassNames = std::vector<std::wstring>;

std::string readFile(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// The value of the attribute "name" in the text of a start tag, blanks allowed around "=".
bool nameAttribute(const std::string& tag, std::string& value) {
    for (std::size_t at = tag.find("name"); at != std::string::npos; at = tag.find("name", at + 1)) {
        if (at == 0 || std::string(" \t\r\n").find(tag[at - 1]) == std::string::npos) continue;
        std::size_t next = tag.find_first_not_of(" \t\r\n", at + 4);
        if (next == std::string::npos || tag[next] != '=') continue;
        std::size_t open = tag.find_first_not_of(" \t\r\n", next + 1);
        if (open == std::string::npos || (tag[open] != '\'' && tag[open] != '"')) continue;
        std::size_t close = tag.find(tag[open], open + 1);
        if (close == std::string::npos) return false;
        value = tag.substr(open + 1, close - open - 1);
        return true;
    }
    return false;
}

std::wstring bytes(const std::string& text) {
    std::wstring out;
    for (char c : text) out.push_back(wchar_t(static_cast<unsigned char>(c)));
    return out;
}

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
    Imported found(umbrello, true);
    EXPECT_EQ(found.classes, (ClassNames{L"Deep", L"Item", L"Order"}));
    // Document order; an empty-element class has no members; a type by attribute resolves.
    EXPECT_EQ(found.single,
              "deferred class Order ^=\nabstract\n\tvar count: int;\ninterface\n\tselector count;\nend;\n\n"
              "class Item ^=\ninterface\nend;\n\nclass Deep ^=\ninterface\nend;\n\n\n// End of file.\n");
    EXPECT_TRUE(Imported(umbrello, false).classes.empty());

    std::string magicDraw = xmi(
        "<UML:Model xmi.id='m'><UML:Namespace.ownedElement><UML:Model xmi.id='data'><UML:Namespace.ownedElement>"
        "<UML:Package xmi.id='p1'><UML:Namespace.ownedElement><UML:Package xmi.id='p2'><UML:Namespace.ownedElement>"
        "<UML:Class xmi.id='c' name='Inner'></UML:Class>"
        "</UML:Namespace.ownedElement></UML:Package></UML:Namespace.ownedElement></UML:Package>"
        "<UML:Class xmi.id='d' name='Outer'></UML:Class>"
        "</UML:Namespace.ownedElement></UML:Model></UML:Namespace.ownedElement></UML:Model>");
    Imported deep(magicDraw, true);
    EXPECT_EQ(deep.classes, (ClassNames{L"Inner", L"Outer"}));
    EXPECT_LT(deep.single.find("class Inner"), deep.single.find("class Outer"));
    EXPECT_TRUE(Imported(magicDraw, false).classes.empty());
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
    Imported found(model, true);
    EXPECT_EQ(found.classes, (ClassNames{L"After", L"Inner", L"Outer"}));
    // The nested class is an empty-element tag: a reference to it reads as its name.
    EXPECT_EQ(found.single,
              "class Outer ^=\nabstract\n\tvar x: Inner;\nend;\n\nclass Inner ^=\ninterface\nend;\n\n"
              "class After ^=\ninterface\nend;\n\n\n// End of file.\n");
    EXPECT_EQ(Imported(model, false).classes, (ClassNames{L"After"}));
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
    Imported found(rose, true);
    EXPECT_EQ(found.classes, (ClassNames{L"Kind"}));
    EXPECT_EQ(found.single,
              "class Kind ^=\nabstract\n\tvar size: real;\ninterface\n\tselector size;\nend;\n\n\n// End of file.\n");
    EXPECT_TRUE(Imported(rose, false).classes.empty());

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
        // The names of the "UML:Class" tags that have an id and refer to nothing.
        std::set<std::wstring> expected;
        for (std::size_t at = text.find("<UML:Class"); at != std::string::npos; at = text.find("<UML:Class", at + 1)) {
            char after = text[at + 10];
            if (after != ' ' && after != '\n' && after != '\r' && after != '\t' && after != '>' && after != '/') continue;
            std::string tag = text.substr(at, text.find('>', at) - at);
            if (tag.find("xmi.id") == std::string::npos || tag.find("xmi.idref") != std::string::npos) continue;
            std::string value;
            ASSERT_TRUE(nameAttribute(tag, value)) << tag;
            if (value.empty()) value = "?";
            static const std::set<std::string> builtIn = {"Boolean", "Byte", "Character", "Double", "Integer", "String", "bag",
                                                          "bool", "map", "pair", "real", "seq", "set", "triple"};
            if (builtIn.count(value) == 0) expected.insert(bytes(value));
        }
        Imported found(text, true);
        EXPECT_EQ(std::set<std::wstring>(found.classes.begin(), found.classes.end()), expected) << entry.path();
        EXPECT_EQ(found.filesWritten, int(found.classes.size())) << entry.path();
    }
    EXPECT_EQ(files, 10);
}
