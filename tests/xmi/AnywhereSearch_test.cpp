// The search that finds classes wherever exporters put them, on the corpus of real files, and
// the unprefixed tags it reads (models nested as real tools nest them are golden files).
#include <gtest/gtest.h>

#include <filesystem>
#include <set>

#include "environment/PlatformText.h"
#include "support/CorpusScan.h"
#include "support/ImportRun.h"
#include "support/ParseRun.h"
#include "xml/XMLDocument.h"

namespace {

// The model imported with the search for classes anywhere, or along the path.
ImportRun imported(const std::string& model, bool anywhere) {
    Extensions extensions;
    extensions.anywhere = anywhere;
    return ImportRun(model, extensions);
}

}  // namespace

// Rose's UML 1.3 tags without a prefix are read as "UML:" forms below an "XMI" root only, and
// only when asked for.
TEST(AnywhereSearch, UnprefixedTagsOfRose) {
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
