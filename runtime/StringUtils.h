// Plain values as text, and the small string helpers of generated classes.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "runtime/Seq.h"

_eString intToString(std::int32_t n);
_eString byteToString(unsigned char b);
// "%g", followed by ".0" when the text has no ".", "e" or "E", so it never reads as an integer.
_eString doubleToString(double d);
_eString boolToString(bool b);
_eString charToString(wchar_t c);
// The elements with `separator` between each two; none at either end.
_eString join(const _eSeq<_eString>& list, const _eString& separator);
// False for the empty string.
bool isAllDigits(const _eString& s);
// Digits, optionally after one leading "+" or "-".
bool isInteger(const _eString& s);
// `text` without the characters of code 32 at both ends; tabs and line ends stay.
_eString trimSpaces(const _eString& text);
// `text` holds exactly the units of `word`; compared in place, without making a string of it.
bool textIs(const _eString& text, std::wstring_view word);
// The units of a string as one view: in place where the string lies in one leaf (the view then
// lives as long as the string is unchanged), else copied into `scratch`.
std::wstring_view unitsOf(const _eString& text, std::wstring& scratch);

// The hash of a text's units, for hash tables of wide texts that are asked by views of units
// (heterogeneous lookup: no text is made to ask).
struct UnitsHash {
    using is_transparent = void;
    std::size_t operator()(std::wstring_view text) const { return std::hash<std::wstring_view>{}(text); }
};

// The hash of a string's units, for hash tables keyed by strings themselves.
struct StringHash {
    std::size_t operator()(const _eString& text) const {
        std::wstring scratch;
        return std::hash<std::wstring_view>{}(unitsOf(text, scratch));
    }
};

// A text that a caller asks by: a literal, or a string read in place where it lies in one leaf,
// so that asking costs no new string. Lives as long as the call it is handed to.
class TextView {
public:
    TextView(const wchar_t* text) : view(text) {}
    TextView(std::wstring_view text) : view(text) {}
    TextView(const _eString& text) : view(unitsOf(text, copy)) {}
    TextView(const TextView&) = delete;
    TextView& operator=(const TextView&) = delete;

    std::wstring_view text() const { return view; }
    // `other` holds exactly these units.
    bool isIn(const _eString& other) const { return textIs(other, view); }

private:
    std::wstring copy;  // the units of a string of more than one leaf
    std::wstring_view view;
};
bool containsUnit(const _eString& s, wchar_t c);
// How many times `c` stands in `s`.
std::int32_t countUnits(const _eString& s, wchar_t c);
// A string as a sequence value: "seq{a,b}".
_eString seqText(const _eString& s);
