// Types that a UML 2 model refers to in other files: found beside the model, in the workspace,
// in the folders a host names, or by the name of a well-known library; "?" and a note where
// nothing resolves them.
#include <gtest/gtest.h>

#include <filesystem>

#include "support/ImportRun.h"
#include "xmi/TypeLibraries.h"

namespace {

std::string library(const std::string& id, const std::string& name) {
    return "<uml:Model xmi:version='20131001' xmlns:xmi='http://www.omg.org/spec/XMI/20131001' "
           "xmlns:uml='http://www.eclipse.org/uml2/5.0.0/UML' xmi:id='lib' name='Lib'>"
           "<packagedElement xmi:type='uml:PrimitiveType' xmi:id='" + id + "' name='" + name + "'/></uml:Model>";
}

std::string attribute(const std::string& name, const std::string& type) {
    return "<ownedAttribute xmi:id='" + name + "' name='" + name + "'>" + type + "</ownedAttribute>";
}

std::string href(const std::string& to) { return "<type href='" + to + "'/>"; }

}  // namespace

TEST(TypeLibraries, ReferencesIntoOtherFiles) {
    TempDir workspace;
    std::filesystem::create_directories(workspace / "types/models");
    std::filesystem::create_directories(workspace / "app/models");
    std::filesystem::create_directories(workspace / "libs");
    workspace.write("types/models/PrimitiveTypes.uml", library("_zcuak", "Integer"));
    workspace.write("types/models/JavaTypes.uml", library("_Jlm", "JList"));
    workspace.write("libs/Cpp.uml", library("_7wR", "unsigned_int"));
    const std::string model =
        "<uml:Model xmi:version='20131001' xmlns:xmi='http://www.omg.org/spec/XMI/20131001' "
        "xmlns:uml='http://www.eclipse.org/uml2/5.0.0/UML' xmi:id='m' name='M'>"
        "<packagedElement xmi:type='uml:Class' xmi:id='c' name='Panel'>" +
        attribute("hgap", href("../../types/models/PrimitiveTypes.uml#_zcuak")) +
        attribute("list", href("platform:/resource/types/models/JavaTypes.uml#_Jlm")) +
        attribute("count", href("pathmap://CPP_LIBRARIES/Cpp.uml#_7wR")) +
        attribute("flag", href("pathmap://UML_LIBRARIES/UMLPrimitiveTypes.library.uml#Boolean")) +
        attribute("label", href("http://www.eclipse.org/emf/2002/Ecore#//EString")) +
        attribute("size", href("http://www.w3.org/2001/XMLSchema#int")) +
        attribute("lost", href("Missing.uml#_gone")) +
        "<ownedAttribute xmi:id='ea' name='java' type='EAJava_long'/>"
        "</packagedElement></uml:Model>";
    const std::string path = workspace.write("app/models/Panel.uml", model);

    ImportExtensions extensions = everyExtension();
    const std::string folders = workspace / "libs";
    const char* list[] = {folders.c_str()};
    extensions.libraryFolders = list;
    extensions.libraryFolderCount = 1;
    _eHndl<Environment> environment(new Environment());
    XMLImporter importer(environment.get());
    auto render = [&] {
        importer.chooseExtensions(extensions);
        bool parsed = false;
        importer.attemptParse(fromPlatformText(path), L"", parsed);
        EXPECT_TRUE(parsed);
        return importer.renderClassFile(fromPlatformText(workspace.path()), L"Panel");
    };
    std::string text = render();
    for (const char* line : {"var hgap: int;", "var list: JList;", "var count: unsigned_int;", "var flag: bool;",
                             "var label: String;", "var size: int;", "var lost: ?;", "var java: long;"})
        EXPECT_NE(text.find(line), std::string::npos) << line << "\n" << text;

    // Without the switch the fragment stands; without the folder the library's file isn't found.
    extensions.crossFileTypes = false;
    text = render();
    EXPECT_NE(text.find("var hgap: _zcuak;"), std::string::npos) << text;
    extensions.crossFileTypes = true;
    extensions.libraryFolderCount = 0;
    text = render();
    EXPECT_NE(text.find("var count: ?;"), std::string::npos) << text;
    EXPECT_NE(text.find("var hgap: int;"), std::string::npos) << text;
}

TEST(TypeLibraries, WellKnownNames) {
    EXPECT_EQ(toWString(*TypeLibraries::wellKnownId(L"EAnone_void")), L"void");
    EXPECT_FALSE(TypeLibraries::wellKnownId(L"EAID_1234_5678"));
    EXPECT_FALSE(TypeLibraries::wellKnownId(L"EAID_ABCDEF"));
    EXPECT_FALSE(TypeLibraries::wellKnownId(L"Java_int"));
    EXPECT_FALSE(TypeLibraries::wellKnown("pathmap://UML_LIBRARIES/UMLPrimitiveTypes.library.uml", "_ids_are_no_names"));
    EXPECT_FALSE(TypeLibraries::wellKnown("http://example.org/Types.uml", "Integer"));
    EXPECT_EQ(toWString(*TypeLibraries::wellKnown("http://www.omg.org/spec/UML/20131001/PrimitiveTypes.xmi", "Real")),
              L"Real");
}
