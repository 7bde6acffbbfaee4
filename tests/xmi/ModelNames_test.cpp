// Names made safe: identifiers everywhere a name stands, operators kept, and same-named classes
// in different packages told apart in their files, the class list and every reference.
#include <gtest/gtest.h>

#include <cstring>

#include "support/ImportRun.h"
#include "xmi/ModelNames.h"

TEST(ModelNames, Identifiers) {
    const std::pair<const wchar_t*, const wchar_t*> rows[] = {
        {L"Customer Negotiation", L"Customer_Negotiation"},
        {L"TextBlock*", L"TextBlock_"},
        {L"Kund\u00e9", L"Kund\u00e9"},
        {L"Kund\xC3\xA9", L"Kund\xC3\xA9"},  // the bytes of UTF-8 are letters too
        {L"2nd", L"_2nd"},
        {L"a-b.c", L"a_b_c"},
        {L"", L"?"},
        {L"?", L"?"},
        {L"_ok9", L"_ok9"},
    };
    for (const auto& [written, given] : rows)
        EXPECT_EQ(toWString(ModelNames::identifier(written)), given) << written;
}

// Two classes "Enum" in two packages, a third in a package of the same name deeper down, and
// one at the top: each file is named by as many packages as tell it apart, and the attribute
// typed by one of them by id names that one.
// The same with ids long enough to be held in bytes rather than as strings.
TEST(ModelNames, SameNamedClassesInPackages) {
    const std::string model = readFile(std::string(MODELBRIDGE_TEST_DATA_DIR) + "/extensions/same-names.xmi");
    std::string longIds = model;
    for (const char* id : {"\"e1\"", "\"e2\"", "\"e3\"", "\"u\""})
        for (std::size_t at = 0; (at = longIds.find(id, at)) != std::string::npos; at += 40)
            longIds.insert(at + std::strlen(id) - 1, std::string(36, 'z'));
    for (const std::string& text : {model, longIds}) {
        ImportRun run(text, everyExtension());
        EXPECT_EQ(run.classes, (std::vector<std::wstring>{L"Association_Type_Enum", L"Inner_Enum", L"User_of_it",
                                                          L"Visibility_Enum"}));
        const std::string& user = run.files["User_of_it.tv"];
        EXPECT_NE(user.find("class User_of_it ^= inherits Association_Type_Enum\n"), std::string::npos) << user;
        EXPECT_NE(user.find("var kind_: from Visibility_Enum;"), std::string::npos) << user;
        EXPECT_NE(user.find("operator (_1st: from Inner_Enum) << (other: from Association_Type_Enum): from User_of_it"),
                  std::string::npos)
            << user;
        EXPECT_NE(run.files["Inner_Enum.tv"].find("class Inner_Enum ^="), std::string::npos);
    }

    ImportExtensions written = everyExtension();
    written.safeNames = false;
    EXPECT_EQ(ImportRun(model, written).classes, (std::vector<std::wstring>{L"Enum", L"User of it"}));
}
