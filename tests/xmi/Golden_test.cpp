// Golden files: each model in tests/data that has a ".tv" file beside it generates, all the
// classes of its document in one file, exactly that text (after the header, which holds the time). The models
// in tests/data/anywhere are read with the search for classes anywhere, and the specified road
// finds fewer of their classes; those in tests/data/xmi2 are read as XMI 2.x.
#include <gtest/gtest.h>

#include <filesystem>

#include "support/CorpusScan.h"
#include "support/ImportRun.h"
#include "support/ImporterInspector.h"

TEST(Golden, EveryModelGivesItsExpectedText) {
    struct Folder {
        const char* name;
        Extensions extensions;
    };
    Extensions anywhere, xmi2;
    anywhere.anywhere = true;
    xmi2.xmi2 = true;
    int models = 0;
    for (const Folder& folder : {Folder{"", Extensions()}, Folder{"anywhere", anywhere}, Folder{"xmi2", xmi2}}) {
        for (const auto& entry :
             std::filesystem::directory_iterator(std::filesystem::path(MODELBRIDGE_TEST_DATA_DIR) / folder.name)) {
            std::filesystem::path expected = entry.path();
            expected.replace_extension(".tv");
            if (entry.path().extension() == ".tv" || !std::filesystem::exists(expected)) continue;
            SCOPED_TRACE(entry.path().string());
            ++models;
            TempDir dir;
            _eHndl<Environment> env(new Environment());
            XMLImporter importer(env.get());
            importer.findClassesAnywhere(folder.extensions.anywhere);
            importer.readXmi2Models(folder.extensions.xmi2);
            bool success = false;
            importer.attemptParse(fromPlatformText(entry.path().string()), L"", success);
            ASSERT_TRUE(success);
            // Every class the document holds, those of ignored names too.
            ClassMap classes = XMLImporterInspector::document(importer)->getClasses();
            _eSet<_eString> all;
            for (int i = 0; i < classes.size(); ++i) all.add(classes.at(i).first);
            importer.generateSingleFile(fromPlatformText(dir.path() + "/"), L"golden", all, success);
            EXPECT_TRUE(success);
            EXPECT_TRUE(importer.getErrorList(true).isEmpty());
            EXPECT_EQ(ImportRun::body(dir.read("golden.tv")), readFile(expected));
            if (folder.extensions.anywhere) {
                EXPECT_LT(ImportRun(readFile(entry.path()), Extensions()).classes.size(), std::size_t(classes.size()));
            }
        }
    }
    EXPECT_EQ(models, 8);
}
