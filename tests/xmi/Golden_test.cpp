// Golden files: each model in tests/data generates, all its classes in one file, exactly the
// text beside it (from line 8 on, since the header holds the time).
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "environment/PlatformText.h"
#include "support/ImporterInspector.h"
#include "support/TempDir.h"

namespace {

std::string slurp(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

std::string fromLine8(const std::string& file) {
    std::size_t start = 0;
    for (int line = 0; line < 7 && start != std::string::npos; ++line) start = file.find('\n', start) + 1;
    return file.substr(start);
}

}  // namespace

TEST(Golden, EveryModelGivesItsExpectedText) {
    int models = 0;
    for (const auto& entry : std::filesystem::directory_iterator(MODELBRIDGE_TEST_DATA_DIR)) {
        if (entry.path().extension() != ".xmi") continue;
        SCOPED_TRACE(entry.path().filename().string());
        ++models;
        TempDir dir;
        _eHndl<Environment> env(new Environment());
        XMLImporter importer(env.get());
        bool success = false;
        importer.attemptParse(fromPlatformText(entry.path().string()), L"", success);
        ASSERT_TRUE(success);
        ClassMap classes = XMLImporterInspector::document(importer)->getClasses();
        _eSet<_eString> all;
        for (int i = 0; i < classes.size(); ++i) all.add(classes.at(i).first);
        importer.generateSingleFile(fromPlatformText(dir.path() + "/"), L"golden", all, success);
        ASSERT_TRUE(success);
        std::filesystem::path expected = entry.path();
        expected.replace_extension(".tv");
        EXPECT_EQ(fromLine8(dir.read("golden.tv")), slurp(expected));
    }
    EXPECT_GE(models, 3);
}

TEST(Golden, GenerationWithoutADocumentIsReported) {
    _eHndl<Environment> env(new Environment());
    XMLImporter importer(env.get());
    bool success = true;
    importer.generateClassFile(L"/tmp/", L"A", success);
    EXPECT_FALSE(success);
    EXPECT_EQ(toWString(importer.getMostSevereErrorMsg()), L"<no file>: Fatal error! Not an XMI document.");
    EXPECT_TRUE(importer.getClassList().isEmpty());
}
