// Text gathered run by run: whatever the units and however the runs fall, the text comes back
// whole, in bytes or in a string alike.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "xml/CompactText.h"
#include "xml/XMLNames.h"

namespace {

std::wstring gathered(const CompactText& text) {
    std::wstring copied(std::size_t(text.size()), L'#');
    text.copyTo(copied.data());
    EXPECT_EQ(toWString(text.text()), copied);
    return copied;
}

// Appends `units` to `text` in runs of `step` units, every other run that fits in bytes as bytes.
void appendInRuns(CompactText& text, const std::wstring& units, std::size_t step) {
    for (std::size_t start = 0, run = 0; start < units.size(); start += step, ++run) {
        std::wstring_view piece = std::wstring_view(units).substr(start, step);
        std::vector<unsigned char> bytes(piece.begin(), piece.end());
        if (run % 2 == 1 && std::wstring(bytes.begin(), bytes.end()) == piece)
            text.append(bytes.data(), std::int32_t(bytes.size()));
        else
            text.append(piece.data(), std::int32_t(piece.size()));
    }
}

}  // namespace

TEST(CompactText, EveryUnitComesBackInOrderHoweverTheRunsFall) {
    std::wstring bytes;
    for (int round = 0; round < 12; ++round)
        for (int unit = 0; unit < 256; ++unit) bytes.push_back(wchar_t(unit));  // 0 and 255 too
    std::wstring wider = bytes.substr(0, 700) + L"\u0100" + bytes.substr(700) + L"\U0001F600 end";
    for (std::size_t step : {std::size_t(1), std::size_t(7), std::size_t(511), std::size_t(4000)}) {
        CompactText narrow;
        appendInRuns(narrow, bytes, step);
        EXPECT_EQ(narrow.size(), std::int32_t(bytes.size()));
        EXPECT_EQ(gathered(narrow), bytes) << step;

        // A unit above a byte, within a run, takes the whole text over to a string.
        CompactText wide;
        appendInRuns(wide, wider, step);
        EXPECT_EQ(gathered(wide), wider) << step;
        wide.fit();
        narrow.fit();
        EXPECT_EQ(gathered(narrow), bytes) << step;
        EXPECT_EQ(gathered(wide), wider) << step;
    }
    CompactText empty;
    EXPECT_EQ(empty.size(), 0);
    EXPECT_TRUE(empty.text().isEmpty());
    empty.append(L"x", 0);
    empty.fit();
    EXPECT_EQ(empty.size(), 0);
}

TEST(CompactText, CopiesAndEqualityHoldAcrossBothForms) {
    CompactText original;
    original.append(L"caf\u00e9 ", 5);
    CompactText copy(original);
    original.append(L"au lait", 7);
    EXPECT_EQ(gathered(copy), L"caf\u00e9 ");
    EXPECT_EQ(gathered(original), L"caf\u00e9 au lait");
    EXPECT_FALSE(copy == original);

    // The same text in bytes and in a string is equal; a text replaced is the string given.
    CompactText inString;
    inString.replace(_eString(std::wstring_view(L"caf\u00e9 au lait")));
    EXPECT_TRUE(inString == original);
    EXPECT_TRUE(original == inString);
    CompactText again(original);
    EXPECT_TRUE(again == original);
    inString.append(L"\u2026", 1);
    EXPECT_EQ(gathered(inString), L"caf\u00e9 au lait\u2026");
    EXPECT_FALSE(inString == original);
    CompactText wideCopy(inString);
    EXPECT_TRUE(wideCopy == inString);
}
