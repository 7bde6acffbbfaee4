// The importer as a host sees it through the shared library.
#include <gtest/gtest.h>

#include <cstddef>

#include "Generated/XMLImporter.h"
#include "runtime/Failure.h"
#include "support/TempDir.h"

TEST(ImporterHost, NewImporterHasNotParsed) {
    _eHndl<Environment> environment(new Environment());
    XMLImporter importer(environment.get());
    EXPECT_EQ(toWString(importer.getParseDiagnostics()), L"<no parse attempted yet>");
    EXPECT_EQ(toWString(XMLImporter().getParseDiagnostics()), L"");
}

TEST(ImporterHost, CopiesAnswerAsTheirSourceAndOutliveIt) {
    _eHndl<Environment> environment(new Environment());
    auto* source = new XMLImporter(environment.get());
    XMLImporter copy(*source);
    XMLImporter assigned;
    assigned = *source;
    delete source;
    environment.reset();
    EXPECT_EQ(toWString(copy.getParseDiagnostics()), L"<no parse attempted yet>");
    EXPECT_EQ(toWString(assigned.getParseDiagnostics()), L"<no parse attempted yet>");
}

// The importer's data lies behind one pointer, so that later releases keep its size.
static_assert(sizeof(XMLImporter) == sizeof(void*));

TEST(ImporterHost, EqualityRaisesEvenOnItself) {
    XMLImporter importer;
    EXPECT_THROW((void)(importer == importer), _xCannotHappen);
    // A host that catches standard exceptions catches it too, with its text on one line.
    std::string caught;
    try {
        (void)(importer == importer);
    } catch (const std::exception& failure) {
        caught = failure.what();
    }
    EXPECT_EQ(caught, "runtime-system error: Absurd method called");
}

namespace {

const wchar_t* const bank = L"" MODELBRIDGE_MODELS_DIR "/bank.xmi";

_eString w(const std::string& text) { return _eString(std::wstring_view(std::wstring(text.begin(), text.end()))); }

}  // namespace

// A value of an older, shorter header is read as far as its size reaches: the fields it
// didn't have keep their defaults, whatever lies in memory behind it.
TEST(ImporterHost, ExtensionsAreReadAsFarAsTheHostsSizeReaches) {
    XMLImporter importer;
    ImportExtensions chosen;
    chosen.xmi2 = true;
    chosen.anywhere = true;
    chosen.useFixedTime = true;
    chosen.size = offsetof(ImportExtensions, anywhere);
    importer.chooseExtensions(chosen);
    EXPECT_TRUE(importer.extensions().xmi2);
    EXPECT_FALSE(importer.extensions().anywhere);
    EXPECT_FALSE(importer.extensions().useFixedTime);
    EXPECT_EQ(importer.extensions().size, sizeof(ImportExtensions));
    chosen.size = sizeof(ImportExtensions);
    importer.chooseExtensions(chosen);
    EXPECT_TRUE(importer.extensions().anywhere);
    importer.findClassesAnywhere(false);
    EXPECT_FALSE(importer.extensions().anywhere);
    EXPECT_TRUE(importer.extensions().xmi2);
}

// Each call that writes has errors of its own, while `success` tells of every call so far;
// rendering gives the bytes a write gives, the header's time fixed.
TEST(ImporterHost, PerCallErrorsAndRenderedText) {
    TempDir dir;
    _eHndl<Environment> environment(new Environment());
    XMLImporter importer(environment.get());
    EXPECT_EQ(importer.renderClassFile(w(dir.path() + "/"), L"Account"), "");
    ImportExtensions fixed;
    fixed.useFixedTime = true;
    fixed.fixedTime = 1700000000;
    importer.chooseExtensions(fixed);
    bool ok = false;
    importer.attemptParse(bank, L"", ok);
    ASSERT_TRUE(ok);

    importer.generateClassFile(w(dir.path() + "/missing/"), L"Account", ok);
    EXPECT_FALSE(ok);
    ASSERT_EQ(importer.getLastCallErrorList(true).size(), 1);
    EXPECT_EQ(importer.lastCallErrors().size(), 1);
    importer.generateClassFile(w(dir.path() + "/"), L"Account", ok);
    EXPECT_FALSE(ok) << "success tells of every generation so far";
    EXPECT_TRUE(importer.getLastCallErrorList(true).isEmpty());
    EXPECT_EQ(importer.errors().size(), 1);

    EXPECT_EQ(importer.renderClassFile(w(dir.path() + "/"), L"Account"), dir.read("Account.tv"));
}
