// Error records: their text, their order in a set, and the importer's summaries of them.
#include <gtest/gtest.h>

#include "support/GeneratedText.h"
#include "support/ImporterInspector.h"

namespace {

std::wstring text(const _eString& s) { return toWString(s); }

class Errors : public testing::Test {
protected:
    _eHndl<Location> at(const wchar_t* path, int line, int column) {
        _eHndl<Location> l(new Location(_eHndl<FileName>(new FileName(path, env.get()))));
        for (int i = 0; i < line; ++i) l->nextLine();
        for (int i = 1; i < column; ++i) l->nextColumn();
        return l;
    }
    static _eHndl<XMLError> error(const _eHndl<Location>& l, XMLErrorType::_eEnum kind, _eSeq<_eString> args = {}) {
        return _eHndl<XMLError>(new XMLError(l, kind, args));
    }
    _eHndl<Environment> env{new Environment()};
};

}  // namespace

TEST_F(Errors, TextsFillTheTemplatesOfTheTable) {
    EXPECT_EQ(text(error(Location::nowhere(), XMLErrorType::notXMI)->text(true)),
              L"<no file>: Fatal error! Not an XMI document.");
    _eHndl<Location> start = at(L"/m/bank.xmi", 2, 1);
    auto mismatch = error(at(L"/m/bank.xmi", 3, 7), XMLErrorType::tagMismatch, {L"b", L"a", start->positionText()});
    EXPECT_EQ(text(mismatch->text(true)),
              L"bank.xmi (3,7): Warning! End tag name 'b' does not match start tag name 'a' at (2,1).");
    EXPECT_EQ(text(mismatch->text(false)),
              L"/m/bank.xmi (3,7): Warning! End tag name 'b' does not match start tag name 'a' at (2,1).");
    EXPECT_EQ(text(error(at(L"/m/in.xmi", 1, 4), XMLErrorType::unexpectedToken, {L"<"})->text(true)),
              L"in.xmi (1,4): Fatal error! Syntax error at '<'.");
    EXPECT_EQ(text(error(Location::nowhere(), XMLErrorType::fileOpen, {L"/out/A.tv", L"write"})->text(true)),
              L"<no file>: Fatal error! Unable to open file '/out/A.tv' for 'write' access.");

    // n arguments use the template up to its (n+1)-th "$"; a final "$" leaves an empty piece.
    auto one = error(Location::nowhere(), XMLErrorType::fileOpen, {L"x"});
    EXPECT_EQ(text(one->fillTemplate(L"open '$' for '$' access")), L"open 'x' for '");
    EXPECT_EQ(text(one->fillTemplate(L"no placeholder")), L"no placeholder");
    EXPECT_EQ(text(one->fillTemplate(L"ends in $")), L"ends in x");
    EXPECT_EQ(text(error(Location::nowhere(), XMLErrorType::notXMI)->fillTemplate(L"a$b")), L"a");
    auto many = error(Location::nowhere(), XMLErrorType::fileOpen, {L"1", L"2", L"3"});
    EXPECT_EQ(text(many->fillTemplate(L"$-$")), L"1-2");

    EXPECT_EQ(text(XMLError::caption(ErrorSeverity::inform)), L"Information");
    EXPECT_EQ(text(XMLError::caption(ErrorSeverity::serious)), L"Error");
    EXPECT_EQ(error(Location::nowhere(), XMLErrorType::fileClose)->severity(), ErrorSeverity::warning);
    EXPECT_EQ(error(Location::nowhere(), XMLErrorType::noXMIcontent)->severity(), ErrorSeverity::fatal);
}

TEST_F(Errors, SetsOrderByLocationAndCollapseEqualRecords) {
    XMLErrors set;
    set.add(error(at(L"/m/b.xmi", 1, 1), XMLErrorType::unexpectedToken, {L"x"}));
    set.add(error(at(L"/m/a.xmi", 5, 2), XMLErrorType::unexpectedToken, {L"y"}));
    set.add(error(at(L"/m/a.xmi", 5, 2), XMLErrorType::unexpectedToken, {L"y"}));  // the same again
    set.add(error(at(L"/m/a.xmi", 5, 2), XMLErrorType::duplicateAttribute, {L"y"}));
    set.add(error(at(L"/m/a.xmi", 2, 9), XMLErrorType::fileRead, {L"a.xmi"}));
    set.add(error(Location::nowhere(), XMLErrorType::fileWrite, {L"Z.tv"}));
    ASSERT_EQ(set.size(), 5);
    EXPECT_TRUE(set.at(0)->getLocation()->getFile().isNull());
    EXPECT_EQ(set.at(1)->getKind(), XMLErrorType::fileRead);
    EXPECT_EQ(set.at(2)->getKind(), XMLErrorType::unexpectedToken);
    EXPECT_EQ(set.at(3)->getKind(), XMLErrorType::duplicateAttribute);
    EXPECT_EQ(text(set.at(4)->getLocation()->getFile()->getName()), L"b");
}

TEST_F(Errors, ImporterSummariesOverItsErrors) {
    XMLImporter importer(env.get());
    EXPECT_TRUE(importer.getErrorList(true).isEmpty());
    EXPECT_EQ(importer.numErrors(), 0);
    EXPECT_EQ(importer.numWarnings(), 0);
    EXPECT_EQ(text(importer.getMostSevereErrorMsg()), L"");
    EXPECT_TRUE(XMLImporterInspector::noSeriousError(importer));

    XMLErrors warnings;
    warnings.add(error(at(L"/m/a.xmi", 4, 1), XMLErrorType::duplicateAttribute, {L"name"}));
    warnings.add(error(at(L"/m/a.xmi", 1, 1), XMLErrorType::fileClose, {L"a.xmi"}));
    XMLImporterInspector::addErrors(importer, warnings);
    XMLImporterInspector::addErrors(importer, warnings);
    EXPECT_EQ(importer.numWarnings(), 2);
    EXPECT_EQ(importer.numErrors(), 0);
    EXPECT_EQ(XMLImporterInspector::mostSevereError(importer), ErrorSeverity::warning);
    EXPECT_TRUE(XMLImporterInspector::noSeriousError(importer));
    EXPECT_EQ(text(importer.getMostSevereErrorMsg()), L"a.xmi (1,1): Warning! Failed to close file 'a.xmi'.");

    XMLErrors fatal;
    fatal.add(error(at(L"/m/a.xmi", 9, 3), XMLErrorType::unexpectedToken, {L"&"}));
    fatal.add(error(at(L"/m/a.xmi", 8, 1), XMLErrorType::fileRead, {L"a.xmi"}));
    XMLImporterInspector::addErrors(importer, fatal);
    EXPECT_EQ(importer.numErrors(), 2);
    EXPECT_EQ(importer.numWarnings(), 2);
    EXPECT_EQ(XMLImporterInspector::mostSevereError(importer), ErrorSeverity::fatal);
    EXPECT_FALSE(XMLImporterInspector::noSeriousError(importer));
    EXPECT_EQ(text(importer.getMostSevereErrorMsg()), L"a.xmi (8,1): Fatal error! Read from file 'a.xmi' failed.");
    EXPECT_EQ(wideTexts(importer.getErrorList(false)),
              (std::vector<std::wstring>{
                  L"/m/a.xmi (1,1): Warning! Failed to close file 'a.xmi'.",
                  L"/m/a.xmi (4,1): Warning! Element has multiple definitions of attribute 'name'.",
                  L"/m/a.xmi (8,1): Fatal error! Read from file 'a.xmi' failed.",
                  L"/m/a.xmi (9,3): Fatal error! Syntax error at '&'.",
              }));
    // Short names drop the directory and nothing else.
    auto longLines = wideTexts(importer.getErrorList(false));
    auto shortLines = wideTexts(importer.getErrorList(true));
    for (std::size_t i = 0; i < longLines.size(); ++i) EXPECT_EQ(L"/m/" + shortLines[i], longLines[i]);
}
