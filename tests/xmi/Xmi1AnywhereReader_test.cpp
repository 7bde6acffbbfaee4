// The search that finds classes wherever exporters put them, on the corpus of real files
// (models nested as real tools nest them are golden files).
#include <gtest/gtest.h>

#include <filesystem>
#include <set>

#include "support/CorpusScan.h"
#include "support/ImportRun.h"

namespace {

// The model imported with the search for classes anywhere.
ImportRun imported(const std::string& model) {
    Extensions extensions;
    extensions.anywhere = true;
    return ImportRun(model, extensions);
}

}  // namespace

// Every class element with an id in the real files is listed, under its name.
TEST(Xmi1AnywhereReader, EveryClassOfTheCorpus) {
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
        ImportRun found = imported(text);
        EXPECT_EQ(std::set<std::wstring>(found.classes.begin(), found.classes.end()), expected) << entry.path();
        EXPECT_TRUE(found.parsed && found.generated) << entry.path();
        EXPECT_EQ(found.files.size(), found.classes.size()) << entry.path();
    }
    EXPECT_EQ(files, 10);
}
