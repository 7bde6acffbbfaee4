// What the text leaves out of a model is said, kind by kind.
#include <gtest/gtest.h>

#include <algorithm>

#include "support/ImportRun.h"
#include "xmi/ModelReport.h"

namespace {

std::vector<std::wstring> reportOf(const std::string& model, const ImportExtensions& extensions, bool everyItem) {
    TempDir dir;
    _eHndl<Environment> environment(new Environment());
    XMLImporter importer(environment.get());
    importer.chooseExtensions(extensions);
    bool parsed = false;
    importer.attemptParse(fromPlatformText(dir.write("m.xmi", model)), L"", parsed);
    EXPECT_TRUE(parsed);
    return wideTexts(importer.getLeftOutReport(everyItem));
}

const std::string model = readFile(std::string(MODELBRIDGE_TEST_DATA_DIR) + "/extensions/left-out.xmi");

}  // namespace

// Every kind once, with its items in document order; nothing of the tools' records; the
// classes off the path only when they aren't searched for; nothing without the extension. The
// interface and the association class are declared; the enumeration without literals, the
// comment and the constraint that name no declared element are not.
TEST(ModelReport, EveryKindSaidOnce) {
    ImportExtensions extensions = everyExtension();
    extensions.anywhere = false;
    std::vector<std::wstring> expected = {
        L"Left out: 1 enumerations not generated: Colour",
        L"Left out: 1 data types not generated: int",
        L"Left out: 1 dependencies not generated: uses",
        L"Left out: 1 constraints not generated: positive",
        L"Left out: 1 comments not generated: note",
        L"Left out: 1 stereotypes not generated: entity",
        L"Left out: 1 template parameters not generated: ?",
        L"Left out: 1 classes dropped by the built-in names (Boolean, Byte, Character, Double, Integer, String, bag, "
        L"bool, map, pair, real, seq, set, triple): String",
        L"Left out: 1 classes off the one path of XMI 1.x, which the search anywhere finds: Nested",
        L"Left out: 1 classes with placeholders (\"?\") where the model lacks a name, a type or a value: "
        L"Account_Holder (1)",
        L"Left out: 1 names changed: Account Holder as Account_Holder",
    };
    EXPECT_EQ(reportOf(model, extensions, false), expected);

    extensions.anywhere = true;
    std::vector<std::wstring> anywhere = reportOf(model, extensions, false);
    EXPECT_EQ(anywhere.size(), expected.size() - 1);
    for (const std::wstring& line : anywhere) EXPECT_EQ(line.find(L"off the one path"), std::wstring::npos);

    extensions.interfaces = extensions.associationClasses = false;
    std::vector<std::wstring> undeclared = reportOf(model, extensions, false);
    EXPECT_EQ(undeclared.at(1), L"Left out: 1 interfaces not generated: Shape");
    EXPECT_EQ(undeclared.at(3), L"Left out: 1 association classes not generated: Link");

    extensions.reportLeftOut = false;
    EXPECT_TRUE(reportOf(model, extensions, true).empty());
}

TEST(ModelReport, FirstItemsOrEvery) {
    ReportKind many{L"things", {}};
    for (const wchar_t* name : {L"a", L"b", L"c", L"d", L"e", L"f", L"g"}) many.items.push_back(name);
    ReportKind none{L"nothing", {}};
    _eSeq<_eString> first = ModelReport::lines({many, none}, false);
    ASSERT_EQ(first.size(), 1);
    EXPECT_EQ(toWString(first.at(0)), L"Left out: 7 things: a, b, c, d, e, and 2 more");
    EXPECT_EQ(toWString(ModelReport::lines({many}, true).at(0)), L"Left out: 7 things: a, b, c, d, e, f, g");
}

// Comments are read where a class's documentation is asked for: one inside the class and one
// that names it from elsewhere are each written once; one without text documents nothing, and
// the report still names it. The same with a class id long enough that its value holds it in
// bytes, while the comments from elsewhere name it by a string.
TEST(ModelReport, CommentsTakenInOnceAndBlankOnesLeftOut) {
    for (const std::string& classId : {std::string("A"), "A" + std::string(40, 'z')}) {
        auto comment = [&](const char* id, const char* body) {
            return std::string("<UML:Comment xmi.id='") + id + "' body='" + body +
                   "'><UML:Comment.annotatedElement><UML:Class xmi.idref='" + classId +
                   "'/></UML:Comment.annotatedElement></UML:Comment>";
        };
        const std::string annotated = "<XMI xmi.version='1.2'><XMI.content><UML:Model xmi.id='m'><UML:Namespace.ownedElement>"
                                      "<UML:Class xmi.id='" + classId + "' name='A'><UML:ModelElement.comment><UML:Comment "
                                      "xmi.id='in' body='Inside.'/></UML:ModelElement.comment></UML:Class>" +
                                      comment("far", "From afar.") + comment("blank", "  ") +
                                      "</UML:Namespace.ownedElement></UML:Model></XMI.content></XMI>";
        const std::string text = ImportRun(annotated, everyExtension()).files["A.tv"];
        EXPECT_EQ(text.find("// Inside.\n//\n// From afar.\nclass A ^="), 0u) << text;
        EXPECT_EQ(text.find("Inside.", text.find("Inside.") + 1), std::string::npos) << text;
        std::vector<std::wstring> report = reportOf(annotated, everyExtension(), true);
        EXPECT_NE(std::find(report.begin(), report.end(), L"Left out: 1 comments not generated: ?"), report.end());
    }
}
