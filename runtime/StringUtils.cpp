#include "runtime/StringUtils.h"

#include <algorithm>
#include <cwchar>
#include <cwctype>

namespace {

// Every text that the number formats give fits.
constexpr int bufferUnits = 100;

_eString formatted(const wchar_t* format, auto value) {
    wchar_t buffer[bufferUnits];
    int n = std::swprintf(buffer, bufferUnits, format, value);
    return _eString(n > 0 ? n : 0, buffer);
}

}  // namespace

_eString intToString(std::int32_t n) { return formatted(L"%d", n); }

_eString byteToString(unsigned char b) { return formatted(L"%u", unsigned(b)); }

_eString doubleToString(double d) {
    _eString text = formatted(L"%g", d);
    if (containsUnit(text, L'.') || containsUnit(text, L'e') || containsUnit(text, L'E')) return text;
    return text + L".0";
}

_eString boolToString(bool b) { return b ? L"true" : L"false"; }

_eString charToString(wchar_t c) { return _eString(c); }

_eString join(const _eSeq<_eString>& list, const _eString& separator) {
    int n = list.size();
    if (n == 0) return {};
    _eSeqReader<_eString> reader(list);
    _eString result = reader.next();
    for (int i = 1; i < n; ++i) result = result + separator + reader.next();
    return result;
}

bool isAllDigits(const _eString& s) {
    int n = s.size();
    if (n == 0) return false;
    _eSeqReader<wchar_t> reader(s);
    for (int i = 0; i < n; ++i)
        if (!std::iswdigit(wint_t(reader.next()))) return false;
    return true;
}

bool isInteger(const _eString& s) {
    if (isAllDigits(s)) return true;
    if (s.size() >= 2 && (s.first() == L'+' || s.first() == L'-')) return isAllDigits(s.drop(1));
    return false;
}

bool containsUnit(const _eString& s, wchar_t c) { return s.find(c) != s.size(); }

std::int32_t countUnits(const _eString& s, wchar_t c) {
    std::int32_t count = 0;
    forEachRun(s, [&](const wchar_t* units, int length) { count += std::int32_t(std::count(units, units + length, c)); });
    return count;
}

_eString seqText(const _eString& s) {
    _eSeq<_eString> units;
    _eSeqReader<wchar_t> reader(s);
    for (int i = 0, n = s.size(); i < n; ++i) units.pushBack(charToString(reader.next()));
    return _eString(L"seq{") + join(units, L",") + L"}";
}

bool textIsSpread(const _eString& text, std::wstring_view word) {
    // Leaf by leaf: the caller has checked that the lengths agree.
    _eSeqReader<wchar_t> reader(text);
    for (std::size_t at = 0; at < word.size();) {
        int length = 0;
        const wchar_t* units = reader.run(length);
        std::size_t n = std::min(std::size_t(length), word.size() - at);
        if (std::wmemcmp(units, word.data() + at, n) != 0) return false;
        reader.skip(int(n));
        at += n;
    }
    return true;
}

std::wstring_view unitsOf(const _eString& text, std::wstring& scratch) {
    if (text.rootNode()->isLeaf()) return {text.rootNode()->asLeaf()->data(), std::size_t(text.size())};
    scratch = toWString(text);
    return scratch;
}

_eString trimSpaces(const _eString& text) {
    int from = 0;
    int to = text.size();
    while (from < to && text.get(from) == L' ') ++from;
    while (to > from && text.get(to - 1) == L' ') --to;
    // Most texts have nothing to trim: they are handed back as they are.
    if (from == 0 && to == text.size()) return text;
    return text.take(to).drop(from);
}
