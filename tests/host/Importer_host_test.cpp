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
    try {
        (void)(importer == importer);
    } catch (const _xCeption& failure) {
        wchar_t buffer[64];
        wchar_t* pos = buffer;
        unsigned remaining = 63;
        failure.writeSummary(pos, remaining);
        failure.writeDetail(pos, remaining);
        EXPECT_EQ(std::wstring(buffer), L"runtime-system error\nAbsurd method called");
    }
}

TEST(ImporterHost, TypeRecordIsAtLevelOne) {
    XMLImporter importer;
    const _eFullTypeInfo* record = importer._aGetFullTypeInfo();
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->level, 1);
    EXPECT_EQ(record->parent, nullptr);
    EXPECT_EQ(toWString(XMLImporter::_aMyTypeInfo()->typeName()), L"XMLImporter");
    EXPECT_TRUE(importer._aGetMyTypeInfo() == XMLImporter::_aMyTypeInfo());
}
