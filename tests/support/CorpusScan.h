// What the real files of the corpus hold, read from their text without the library: the
// names of the class tags, to compare with the classes the importer lists.
#pragma once

#include <filesystem>
#include <set>
#include <string>

#include "support/TempDir.h"

// The value of the attribute `attribute` in the text of a start tag, blanks allowed around "=".
inline bool attributeValue(const std::string& tag, const std::string& attribute, std::string& value) {
    for (std::size_t at = tag.find(attribute); at != std::string::npos; at = tag.find(attribute, at + 1)) {
        if (at == 0 || std::string(" \t\r\n").find(tag[at - 1]) == std::string::npos) continue;
        std::size_t next = tag.find_first_not_of(" \t\r\n", at + attribute.size());
        if (next == std::string::npos || tag[next] != '=') continue;
        std::size_t open = tag.find_first_not_of(" \t\r\n", next + 1);
        if (open == std::string::npos || (tag[open] != '\'' && tag[open] != '"')) continue;
        std::size_t close = tag.find(tag[open], open + 1);
        if (close == std::string::npos) return false;
        value = tag.substr(open + 1, close - open - 1);
        return true;
    }
    return false;
}

// The names that the start tags for which `isClass` holds give, each byte one unit, as a class
// list gives them: "?" for an empty name, and without the names of the built-in types.
template <class IsClass>
std::set<std::wstring> classNamesOfTags(const std::string& text, IsClass isClass) {
    static const std::set<std::string> builtIn = {"Boolean", "Byte", "Character", "Double", "Integer", "String", "bag",
                                                  "bool", "map", "pair", "real", "seq", "set", "triple"};
    std::set<std::wstring> names;
    for (std::size_t at = text.find('<'); at != std::string::npos; at = text.find('<', at + 1)) {
        std::string tag = text.substr(at, text.find('>', at) - at);
        if (!isClass(tag)) continue;
        std::string value;
        if (!attributeValue(tag, "name", value)) value = "?";
        if (value.empty()) value = "?";
        if (builtIn.count(value) != 0) continue;
        std::wstring units;
        for (char c : value) units.push_back(wchar_t(static_cast<unsigned char>(c)));
        names.insert(units);
    }
    return names;
}
