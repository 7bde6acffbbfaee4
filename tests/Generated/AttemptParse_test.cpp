// The importer's parse: diagnostics, errors that only grow, and what a good parse keeps.
#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>

#include "environment/PlatformText.h"
#include "support/ImporterInspector.h"
#include "support/TempDir.h"

namespace {

class Parsing : public testing::Test {
protected:
    _eString path(const std::string& name) const { return fromPlatformText(dir / name); }
    bool parse(XMLImporter& importer, const std::string& name) {
        bool success = true;
        importer.attemptParse(path(name), L"", success);
        return success;
    }
    std::wstring diagnostics(const XMLImporter& importer) { return toWString(importer.getParseDiagnostics()); }

    TempDir dir;
    _eHndl<Environment> env{new Environment()};
};

// Makes a directory the working directory for the life of the object.
class WorkingDirectory {
public:
    explicit WorkingDirectory(const std::string& path) : previous(std::filesystem::current_path()) {
        std::filesystem::current_path(path);
    }
    ~WorkingDirectory() { std::filesystem::current_path(previous); }

private:
    std::filesystem::path previous;
};

const char* goodModel = "<XMI><XMI.content><UML:Model name='m'></UML:Model></XMI.content></XMI>\n";

}  // namespace

TEST_F(Parsing, AMissingFileFailsAndItsErrorStays) {
    dir.write("good.xmi", goodModel);
    XMLImporter importer(env.get());
    EXPECT_FALSE(parse(importer, "missing.xmi"));
    EXPECT_EQ(diagnostics(importer), L"Failed to open '" + toWString(path("missing.xmi")) + L"' for parsing!");
    EXPECT_EQ(importer.numErrors(), 1);
    EXPECT_TRUE(XMLImporterInspector::document(importer).isNull());
    // A good file afterwards is parsed, but the first error still counts.
    EXPECT_FALSE(parse(importer, "good.xmi"));
    EXPECT_FALSE(XMLImporterInspector::document(importer).isNull());
    EXPECT_TRUE(XMLImporterInspector::document(importer)->getDictionary().isNull());
    EXPECT_TRUE(XMLImporterInspector::parsedFile(importer).isNull());
    EXPECT_EQ(importer.numErrors(), 1);

    XMLImporter detached;
    bool success = true;
    detached.attemptParse(path("good.xmi"), L"", success);
    EXPECT_FALSE(success);
}

TEST_F(Parsing, ADirectoryIsRefusedAndTheParseEnds) {
    std::filesystem::create_directory(dir / "folder.xmi");
    XMLImporter importer(env.get());
    EXPECT_FALSE(parse(importer, "folder.xmi"));
    EXPECT_EQ(importer.numErrors(), 1);
    EXPECT_NE(diagnostics(importer).find(toWString(path("folder.xmi"))), std::wstring::npos);
}

TEST_F(Parsing, AProfileRequestWritesProfileTextAndChangesNothingElse) {
    dir.write("good.xmi", goodModel);
    dir.write("bad.xmi", "<XMI>\n<a x=1/>\n</XMI>\n");
    dir.write("profile.txt", "an earlier profile\n");
    WorkingDirectory here(dir.path());
    for (const char* name : {"good.xmi", "bad.xmi"}) {
        XMLImporter plain(env.get()), profiled(env.get());
        bool plainSuccess = false, profiledSuccess = true;
        plain.attemptParse(path(name), L"", plainSuccess);
        profiled.attemptParse(path(name), L"yes", profiledSuccess);
        EXPECT_EQ(plainSuccess, profiledSuccess) << name;
        EXPECT_EQ(diagnostics(plain), diagnostics(profiled));
        EXPECT_EQ(plain.getErrorList(true), profiled.getErrorList(true));
        EXPECT_EQ(XMLImporterInspector::document(plain).isNull(), XMLImporterInspector::document(profiled).isNull());
        // The one record, the runtime's own, has no share of a parse that lasts far beyond
        // 10000 cycles: the earlier file is replaced by an empty report.
        EXPECT_EQ(dir.read("profile.txt"), "") << name;
        dir.write("profile.txt", "an earlier profile\n");
    }

    // A profile that can't be opened leaves the run unprofiled and its result alone.
    std::filesystem::remove(dir / "profile.txt");
    std::filesystem::create_directory(dir / "profile.txt");
    XMLImporter importer(env.get());
    bool success = false;
    importer.attemptParse(path("good.xmi"), L"yes", success);
    EXPECT_TRUE(success);
    EXPECT_TRUE(importer.getErrorList(true).isEmpty());
}
