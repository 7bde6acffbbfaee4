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

}  // namespace

_eString XMLNames::shared(const _eString& name) {
    // Kept by their text, so that a lookup costs one hash of the units and one comparison.
    static std::unordered_map<std::wstring, _eString, TextHash, std::equal_to<>> kept;
    int size = name.size();
    if (size > longest) return name;
    wchar_t units[longest];
    _eSeqReader<wchar_t> reader(name);
    for (int i = 0; i < size; ++i) units[i] = reader.next();
    std::wstring_view text(units, std::size_t(size));
    auto found = kept.find(text);
    if (found != kept.end()) return found->second;
    if (int(kept.size()) < capacity) kept.emplace(std::wstring(text), name);
    return name;
}
