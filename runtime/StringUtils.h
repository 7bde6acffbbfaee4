// Plain values as text, and the small string helpers of generated classes.
#pragma once

#include <cassert>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>

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
// Asked of every attribute and tag name a reader looks for: a string in one leaf is compared
// here, unit by unit, and only one of several leaves, as long as `word`, goes to `textIsSpread`.
bool textIsSpread(const _eString& text, std::wstring_view word);
inline bool textIs(const _eString& text, std::wstring_view word) {
    const _eBaseNode<wchar_t>* root = text.rootNode();
    if (root->count() != int(word.size())) return false;
    if (!root->isLeaf()) return textIsSpread(text, word);
    const wchar_t* units = root->asLeaf()->data();
    for (std::size_t i = 0; i < word.size(); ++i)
        if (units[i] != word[i]) return false;
    return true;
}
// A word written in the code: its length is known without a count of its units. (A text in a
// const array is taken to fill it, as a literal does.)
template <std::size_t N>
inline bool textIs(const _eString& text, const wchar_t (&word)[N]) {
    assert(std::char_traits<wchar_t>::length(word) == N - 1);
    return textIs(text, std::wstring_view(word, N - 1));
}
// The units of a string as one view: in place where the string lies in one leaf (the view then
// lives as long as the string is unchanged), else copied into `scratch`.
std::wstring_view unitsOf(const _eString& text, std::wstring& scratch);

// The hash of `count` units, wide or bytes: the same units give the same hash either way.
// Two units to a step of multiply and fold: names are short and their units mostly ASCII,
// where a general byte hash spends more on its set-up than on the text.
template <class Unit>
std::size_t hashUnits(const Unit* units, std::size_t count) {
    constexpr std::uint64_t multiplier = 0x9E3779B97F4A7C15ull;
    std::uint64_t hash = count * multiplier;
    std::size_t i = 0;
    for (; i + 2 <= count; i += 2) {
        std::uint64_t pair = std::uint32_t(units[i]) | std::uint64_t(std::uint32_t(units[i + 1])) << 32;
        hash = (hash ^ pair) * multiplier;
        hash ^= hash >> 29;
    }
    if (i < count) hash = (hash ^ std::uint32_t(units[i])) * multiplier;
    return std::size_t(hash ^ (hash >> 32));
}

// The hash of a text's units, for hash tables of wide texts that are asked by views of units
// (heterogeneous lookup: no text is made to ask).
struct UnitsHash {
    using is_transparent = void;
    std::size_t operator()(std::wstring_view text) const { return hashUnits(text.data(), text.size()); }
};

// A hash table of wide texts that is asked by views of units.
template <class Value>
using UnitsMap = std::unordered_map<std::wstring, Value, UnitsHash, std::equal_to<>>;

// Hash and equality of strings by their units, for hash tables of strings asked by strings or by
// views of units: the table keeps the strings it is given, no copy of their units.
struct StringUnitsHash {
    using is_transparent = void;
    std::size_t operator()(std::wstring_view units) const { return hashUnits(units.data(), units.size()); }
    std::size_t operator()(const _eString& text) const {
        std::wstring scratch;
        return (*this)(unitsOf(text, scratch));
    }
};

struct StringUnitsEqual {
    using is_transparent = void;
    bool operator()(const _eString& a, const _eString& b) const {
        std::wstring scratch;
        return textIs(a, unitsOf(b, scratch));
    }
    bool operator()(const _eString& a, std::wstring_view b) const { return textIs(a, b); }
    bool operator()(std::wstring_view a, const _eString& b) const { return textIs(b, a); }
};

// A hash table keyed by strings, asked by strings or by views of units.
template <class Value>
using StringMap = std::unordered_map<_eString, Value, StringUnitsHash, StringUnitsEqual>;

// A text that a caller asks by: a literal, or a string read in place where it lies in one leaf,
// so that asking costs no new string. Lives as long as the call it is handed to.
class TextView {
public:
    // A word written in the code: its length is known without a count of its units. (A text in
    // a const array is taken to fill it, as a literal does.)
    template <class Unit, std::size_t N>
        requires std::is_same_v<Unit, const wchar_t>
    TextView(Unit (&text)[N]) : view(text, N - 1) {
        assert(std::char_traits<wchar_t>::length(text) == N - 1);
    }
    template <class Pointer>
        requires std::is_same_v<Pointer, const wchar_t*> || std::is_same_v<Pointer, wchar_t*>
    TextView(Pointer text) : view(text) {}
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
