#include "xml/XMLNames.h"

namespace {

// The string kept in `table` for the text of `name`, or the one `make` gives, kept if there
// is room.
template <class Table, class Make>
_eString lookUp(Table& table, const _eString& name, Make make) {
    int size = name.size();
    if (size > XMLNames::longest) return make();
    wchar_t units[XMLNames::longest];
    _eSeqReader<wchar_t> reader(name);
    for (int i = 0; i < size; ++i) units[i] = reader.next();
    std::wstring_view text(units, std::size_t(size));
    auto found = table.find(text);
    if (found != table.end()) return found->second;
    _eString made = make();
    if (int(table.size()) < XMLNames::capacity) table.emplace(std::wstring(text), made);
    return made;
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

_eString XMLNames::derivedIn(Table& table, const _eString& name, Derivation derive) {
    return lookUp(table, name, [&] { return derive(name); });
}
