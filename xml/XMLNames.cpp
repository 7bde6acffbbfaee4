#include "xml/XMLNames.h"

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace {

struct TextHash {
    using is_transparent = void;
    std::size_t operator()(std::wstring_view text) const { return std::hash<std::wstring_view>{}(text); }
};

// Strings kept by a text, so that a lookup costs one hash of the units and one comparison.
using Table = std::unordered_map<std::wstring, _eString, TextHash, std::equal_to<>>;

// The string kept in `table` for the text of `name`, or the one `make` gives, kept if there
// is room.
template <class Make>
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

_eString XMLNames::derived(const _eString& name, _eString (*derive)(const _eString&)) {
    static Table kept;
    return lookUp(kept, name, [&] { return derive(name); });
}
