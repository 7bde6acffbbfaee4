// Shared names: whatever was asked before, and in whatever order, a name comes back as its own
// text, and a text asked again at once comes back as the same string.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "xml/XMLNames.h"

namespace {

// A new string of `text`, in a node of its own, as the parser makes one.
_eString fresh(const std::wstring& text) { return _eString(std::wstring_view(text)); }

_eString upperCase(const _eString& name) {
    std::wstring text = toWString(name);
    for (wchar_t& unit : text)
        if (unit >= L'a' && unit <= L'z') unit = wchar_t(unit - L'a' + L'A');
    return _eString(std::wstring_view(text));
}

}  // namespace

TEST(XMLNames, EveryNameComesBackAsItsOwnText) {
    // Enough names, of many lengths and with the same first, middle and last units, that many
    // of them meet in the table of texts last found.
    std::vector<std::wstring> names;
    for (int i = 0; i < 1500; ++i) {
        std::wstring name = L"n" + std::wstring(std::size_t(i % 9), L'x') + std::to_wstring(i) + L"e";
        names.push_back(name);
    }
    names.push_back(std::wstring(std::size_t(XMLNames::longest) + 1, L'y'));  // too long to keep
    std::vector<_eString> first;
    for (const std::wstring& name : names) {
        first.push_back(XMLNames::shared(fresh(name)));
        EXPECT_EQ(toWString(first.back()), name);
    }
    // Asked again in the other order, each by a new string of the same text, and then once more.
    for (std::size_t k = names.size(); k-- > 0;) {
        _eString again = XMLNames::shared(fresh(names[k]));
        ASSERT_EQ(toWString(again), names[k]);
        // Units that are not yet a string find the same string.
        _eString byUnits = XMLNames::shared(std::wstring_view(names[k]));
        EXPECT_EQ(toWString(byUnits), names[k]);
        if (names[k].size() <= std::size_t(XMLNames::longest)) {
            EXPECT_EQ(XMLNames::shared(fresh(names[k])).rootNode(), again.rootNode()) << k;
            EXPECT_EQ(byUnits.rootNode(), again.rootNode()) << k;
        }
    }
    EXPECT_TRUE(XMLNames::shared(_eString()).isEmpty());
    EXPECT_TRUE(XMLNames::shared(std::wstring_view()).isEmpty());
}

// Asked again by a new string of the same text, long after the table of texts last found has
// forgotten it, a name gives the string worked out the first time.
TEST(XMLNames, ADerivedNameIsWorkedOutOnceForEachText) {
    std::vector<_eString> first;
    for (int round = 0; round < 2; ++round)
        for (int i = 0; i < 600; ++i) {
            std::wstring name = L"tag" + std::to_wstring(i * 7919);
            _eString derived = XMLNames::derived<upperCase>(fresh(name));
            EXPECT_EQ(toWString(derived), toWString(upperCase(fresh(name))));
            if (round == 0)
                first.push_back(derived);
            else
                EXPECT_EQ(derived.rootNode(), first[std::size_t(i)].rootNode()) << i;
        }
    _eString once = XMLNames::derived<upperCase>(fresh(L"uml:class"));
    EXPECT_EQ(XMLNames::derived<upperCase>(fresh(L"uml:class")).rootNode(), once.rootNode());
}
