// Models to Tarvane classes, end to end: parse, list, generate, read the file back.
#include <gtest/gtest.h>

#include <utime.h>

#include "environment/PlatformText.h"
#include "support/CorpusScan.h"
#include "support/ImporterInspector.h"
#include "support/GeneratedText.h"
#include "support/TempDir.h"

namespace {

// The generated declarations: the file without its seven header lines and its footer.
std::string body(const std::string& file) {
    std::string text = afterHeader(file), footer = "\n\n// End of file.\n";
    return text.substr(0, text.size() - footer.size());
}

class Generation : public testing::Test {
protected:
    void SetUp() override {
        dir.write("bank.xmi", readFile(std::string(MODELBRIDGE_TEST_DATA_DIR) + "/account.xmi"));
        bool success = false;
        importer.attemptParse(fromPlatformText(dir / "bank.xmi"), L"", success);
        ASSERT_TRUE(success) << toWString(importer.getMostSevereErrorMsg()).size();
    }
    _eString out() const { return fromPlatformText(dir.path() + "/"); }

    TempDir dir;
    _eHndl<Environment> env{new Environment()};
    XMLImporter importer{env.get()};
};

}  // namespace

// The model of the layout example (its text is a golden file): "String" is an ignored name, left
// out of the list but generated when asked for.
TEST_F(Generation, IgnoredNamesAreGeneratedWhenAskedFor) {
    EXPECT_EQ(wideTexts(importer.getClassList()), (std::vector<std::wstring>{L"Account", L"Base", L"Leaf"}));
    bool success = false;
    importer.generateClassFile(out(), L"String", success);
    EXPECT_TRUE(success);
    EXPECT_EQ(body(dir.read("String.tv")), "class String ^=\ninterface\nend;\n");
    EXPECT_EQ(toWString(XMLImporter::genFullFileNameString(out(), L"x.xmi", env.get())),
              toWString(out()) + L"x.tv");
}

TEST_F(Generation, ValidityFollowsTheFile) {
    EXPECT_EQ(importer.getValidityStatus(fromPlatformText(dir / "bank.xmi")), ValidityStatus::Valid);
    EXPECT_EQ(importer.getValidityStatus(fromPlatformText(dir / "other.xmi")), ValidityStatus::Invalid);
    utimbuf later{2000000000, 2000000000};
    ASSERT_EQ(utime((dir / "bank.xmi").c_str(), &later), 0);
    EXPECT_EQ(importer.getValidityStatus(fromPlatformText(dir / "bank.xmi")), ValidityStatus::Invalid);
    std::remove((dir / "bank.xmi").c_str());
    EXPECT_EQ(importer.getValidityStatus(fromPlatformText(dir / "bank.xmi")), ValidityStatus::Unknown);
    EXPECT_EQ(XMLImporter(env.get()).getValidityStatus(L"/x.xmi"), ValidityStatus::Invalid);
}

TEST_F(Generation, AFailedGenerationStaysFailed) {
    bool success = true;
    importer.generateClassFile(fromPlatformText(dir / "no/such/dir/"), L"Leaf", success);
    EXPECT_FALSE(success);
    EXPECT_EQ(importer.numErrors(), 1);
    importer.generateClassFile(out(), L"Leaf", success);
    EXPECT_FALSE(success);
    EXPECT_FALSE(dir.read("Leaf.tv").empty());
}

// A host's layout of generated text: values out of bounds are refused and change nothing; the
// chosen width, indentation and prefix shape the file, and the importer names the file it writes.
TEST_F(Generation, AHostsLayoutShapesTheTextAndRefusalsChangeNothing) {
    struct Refused {
        std::int32_t width;
        const wchar_t* indent;
        const wchar_t* prefix;
        const wchar_t* reason;
    };
    const Refused refused[] = {
        {19, L"\t", L"", L"the line width 19 is out of bounds: it must be from 20 to 10000"},
        {10001, L"\t", L"", L"the line width 10001 is out of bounds: it must be from 20 to 10000"},
        {-1, L"\t", L"", L"the line width -1 is out of bounds: it must be from 20 to 10000"},
        {80, L"", L"", L"the indentation is empty"},
        {80, L" \n", L"", L"the indentation holds a line end or another control character"},
        {80, L"\t", L"out/", L"the file prefix holds a path separator"},
        {80, L"\t", L"a\rb", L"the file prefix holds a control character"},
    };
    for (const Refused& row : refused) {
        _eString reason;
        EXPECT_FALSE(importer.setImportOptions(row.width, row.indent, row.prefix, &reason)) << row.width;
        EXPECT_EQ(toWString(reason), row.reason);
    }
    bool success = false;
    importer.generateClassFile(out(), L"Account", success);
    std::string defaults = body(dir.read("Account.tv"));
    EXPECT_NE(defaults.find("\n\tfunction total_ (rate: int): int ^= ?;\n"), std::string::npos) << defaults;

    for (std::int32_t width : {20, 10000}) EXPECT_TRUE(importer.setImportOptions(width, L"\t", L""));
    EXPECT_EQ(body(dir.read("Account.tv")), defaults);  // set, not yet used
    _eString reason = L"stale";
    ASSERT_TRUE(importer.setImportOptions(24, L"  ", L"gen.", &reason));
    EXPECT_TRUE(reason.isEmpty());
    importer.generateClassFile(out(), L"Account", success);
    EXPECT_TRUE(success);
    _eString path = importer.outputFilePath(out(), L"Account");
    EXPECT_EQ(toWString(path), toWString(out()) + L"gen.Account.tv");
    std::string laidOut = body(dir.read("gen.Account.tv"));
    EXPECT_NE(laidOut.find("\n  function total_ (rate:\n    int): int ^= ?;\n"), std::string::npos) << laidOut;
    EXPECT_EQ(body(dir.read("Account.tv")), defaults);  // the unprefixed file is left alone

    importer.generateSingleFile(out(), L"all.model", _eSet<_eString>(_eString(L"Leaf")), success);
    EXPECT_TRUE(success);
    EXPECT_EQ(toWString(importer.outputFilePath(out(), L"all.model")), toWString(out()) + L"gen.all.tv");
    EXPECT_EQ(body(dir.read("gen.all.tv")), "final class Leaf ^=\ninterface\nend;\n");
    EXPECT_TRUE(importer.outputFilePath(out(), L"").isEmpty());
    // A copy made before keeps the defaults.
    XMLImporter fresh(env.get());
    EXPECT_EQ(toWString(fresh.outputFilePath(out(), L"Account")), toWString(out()) + L"Account.tv");
}

namespace {

std::vector<std::wstring> progressEntries;

void collect(const _eString& entry, void* context) {
    progressEntries.push_back(toWString(entry));
    ++*static_cast<int*>(context);
}

}  // namespace

// A host's progress sink sees an entry for every line as the parse goes (a line end is a byte of
// its line, so an empty line counts too, and runs of text across lines don't hide any), then the
// closing line end; the report keeps only its count of lines.
TEST_F(Generation, ProgressReachesTheHostsSinkLineByLine) {
    dir.write("lines.xmi", "<XMI>\n<XMI.content>\n\n<a\nb='1\n2'>text\nmore</a>\n</XMI.content>\n</XMI>");
    XMLImporter shown(env.get());
    int calls = 0;
    progressEntries.clear();
    shown.reportProgress(&collect, &calls);
    bool success = false;
    shown.attemptParse(fromPlatformText(dir / "lines.xmi"), L"", success);
    EXPECT_TRUE(success);
    std::vector<std::wstring> expected;
    for (int line = 1; line <= 9; ++line) expected.push_back(L"\rParsed line " + std::to_wstring(line));
    expected.push_back(L"\n");
    EXPECT_EQ(progressEntries, expected);
    EXPECT_EQ(calls, 10);
    std::wstring report = toWString(shown.getParseDiagnostics());
    EXPECT_EQ(report.rfind(L"Parsed 9 lines from file 'lines.xmi' in ", 0), 0u) << report;

    shown.reportProgress(nullptr, nullptr);
    progressEntries.clear();
    shown.attemptParse(fromPlatformText(dir / "lines.xmi"), L"", success);
    EXPECT_TRUE(progressEntries.empty());
}
