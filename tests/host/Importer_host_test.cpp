// The importer as a host sees it through the shared library.
#include <gtest/gtest.h>

#include "Generated/XMLImporter.h"
#include "runtime/Failure.h"

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
