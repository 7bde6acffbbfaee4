#include "xml/XMLNames.h"

#include <cstdint>

namespace {

// The string kept in `table` for `text`, or the one `make` gives, kept if there is room: kept
// by `asked`, the string whose text it is, where there is one, else by itself.
template <class Table, class Make>
_eString lookUpUnits(Table& table, std::wstring_view text, const _eString* asked, Make make) {
    if (text.size() > std::size_t(XMLNames::longest) || text.empty()) return make();
    std::size_t slot = (text.size() * 31 + std::size_t(text[0]) * 7 + std::size_t(text[text.size() / 2]) * 131 +
                        std::size_t(text.back()) * 17) & 255;
    auto& found = table.found[slot];
    if (found.text == text) return found.answer;
    _eString answer;
    auto kept = table.kept.find(text);
    if (kept != table.kept.end()) {
        answer = kept->second;
    } else {
        answer = make();
        _eString key = asked != nullptr ? *asked : answer;
        if (int(table.kept.size()) < XMLNames::capacity && !key.isEmpty()) table.kept.emplace(key, answer);
    }
    found.text.assign(text);
    found.answer = answer;
    return answer;
}

// The same for the text of `name`: a name within one leaf is read in place; a longer one is
// copied out first.
template <class Table, class Make>
_eString lookUpText(Table& table, const _eString& name, Make make) {
    int size = name.size();
    if (size > XMLNames::longest || size == 0) return make();
    wchar_t units[XMLNames::longest];
    const wchar_t* start = units;
    if (name.rootNode()->isLeaf()) {
        start = name.rootNode()->asLeaf()->data();
    } else {
        _eSeqReader<wchar_t> reader(name);
        for (int i = 0; i < size; ++i) units[i] = reader.next();
    }
    return lookUpUnits(table, std::wstring_view(start, std::size_t(size)), &name, make);
}

// The same, through the table's recent strings.
template <class Table, class Make>
_eString lookUp(Table& table, const _eString& name, Make make) {
    auto& recent = table.recent[(reinterpret_cast<std::uintptr_t>(name.rootNode()) >> 5) & 63];
    // The empty slots hold the empty string, which is never answered from them.
    if (recent.asked.rootNode() == name.rootNode() && !name.isEmpty()) return recent.answer;
    _eString answer = lookUpText(table, name, make);
    recent = {name, answer};
    return answer;
}

}  // namespace

XMLNames::Table& XMLNames::names() {
    static Table kept;
    return kept;
}

_eString XMLNames::shared(const _eString& name) {
    return lookUp(names(), name, [&] { return name; });
}

_eString XMLNames::shared(std::wstring_view name) {
    return lookUpUnits(names(), name, nullptr, [&] { return _eString(name); });
}

_eString XMLNames::sharedText(std::wstring_view text) {
    static Table kept;
    return lookUpUnits(kept, text, nullptr, [&] { return int(kept.kept.size()) < capacity ? _eString(text) : _eString(); });
}

_eString XMLNames::sharedValue(std::wstring_view text) {
    static Table kept;
    return lookUpUnits(kept, text, nullptr, [&] { return _eString(text); });
}

_eString XMLNames::derivedIn(Table& table, const _eString& name, Derivation derive) {
    return lookUp(table, name, [&] { return derive(name); });
}
