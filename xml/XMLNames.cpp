#include "xml/XMLNames.h"

#include <cstdint>

namespace {

// The string kept in `kept` for the text of `name`, or the one `make` gives, kept if there is
// room.
template <class Map, class Make>
_eString lookUpText(Map& kept, const _eString& name, Make make) {
    int size = name.size();
    if (size > XMLNames::longest) return make();
    // A name within one leaf is read in place; a longer one is copied out first.
    wchar_t units[XMLNames::longest];
    const wchar_t* start = units;
    if (name.rootNode()->level() == 0) {
        start = name.rootNode()->asLeaf()->data();
    } else {
        _eSeqReader<wchar_t> reader(name);
        for (int i = 0; i < size; ++i) units[i] = reader.next();
    }
    std::wstring_view text(start, std::size_t(size));
    auto found = kept.find(text);
    if (found != kept.end()) return found->second;
    _eString made = make();
    if (int(kept.size()) < XMLNames::capacity) kept.emplace(std::wstring(text), made);
    return made;
}

// The same, through the table's recent strings.
template <class Table, class Make>
_eString lookUp(Table& table, const _eString& name, Make make) {
    auto& recent = table.recent[(reinterpret_cast<std::uintptr_t>(name.rootNode()) >> 5) & 63];
    // The empty slots hold the empty string, which is never answered from them.
    if (recent.asked.rootNode() == name.rootNode() && !name.isEmpty()) return recent.answer;
    _eString answer = lookUpText(table.kept, name, make);
    recent = {name, answer};
    return answer;
}

}  // namespace

_eString XMLNames::shared(const _eString& name) {
    static Table kept;
    return lookUp(kept, name, [&] { return name; });
}

_eString XMLNames::sharedText(const _eString& text) {
    static Table kept;
    return lookUp(kept, text, [&] { return text; });
}

_eString XMLNames::sharedValue(const _eString& text) {
    static Table kept;
    return lookUp(kept, text, [&] { return text; });
}

_eString XMLNames::derivedIn(Table& table, const _eString& name, Derivation derive) {
    return lookUp(table, name, [&] { return derive(name); });
}
