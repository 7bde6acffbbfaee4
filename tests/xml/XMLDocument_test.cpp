// Where the files of classes go: a class name never makes a file outside the directory given.
#include <gtest/gtest.h>

#include <filesystem>

#include "support/ImportRun.h"

// Each name that would be a path of its own is refused with the file-name error, on the path
// of XMI 1.x as much as anywhere, and nothing appears outside the output directory; the other
// classes of the model are written all the same (though the importer's success is lost).
TEST(XMLDocument, ClassNamesThatArePathsNeverLeaveTheDirectory) {
    TempDir outside;
    const std::string absolute = outside / "abs";
    const std::string names[] = {"ok", "../x", "a/b", "..", ".", absolute};
    std::string model = "<XMI><XMI.content><UML:Model><UML:Namespace.ownedElement>";
    for (const std::string& name : names) model += "<UML:Class xmi.id='c" + std::to_string(model.size()) + "' name='" + name + "'></UML:Class>";
    model += "</UML:Namespace.ownedElement></UML:Model></XMI.content></XMI>";
    for (bool anywhere : {false, true}) {
        Extensions extensions;
        extensions.anywhere = anywhere;
        ImportRun run(model, extensions);
        ASSERT_EQ(run.classes.size(), 6u);
        EXPECT_TRUE(std::filesystem::exists(run.dir / "ok.tv"));
        for (const std::string& name : names) {
            if (name == "ok") continue;
            std::wstring error = L"Unable to create FileName instance for file '" + toWString(fromPlatformText(name)) + L".tv'";
            bool reported = false;
            for (const std::wstring& line : run.errors) reported = reported || line.find(error) != std::wstring::npos;
            EXPECT_TRUE(reported) << name;
        }
        EXPECT_FALSE(std::filesystem::exists(outside / "abs.tv"));
        EXPECT_FALSE(std::filesystem::exists(std::filesystem::path(run.dir.path()).parent_path() / "x.tv"));
        EXPECT_FALSE(std::filesystem::exists(run.dir / "a"));
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(run.dir.path()), {}), 3) << "model, ok, all";
    }
}
