// The parts of a generated file, and the lists of the importer, as tests compare them.
#pragma once

#include <string>
#include <vector>

#include "runtime/Seq.h"

// The text of a generated file after its header's seven lines; empty when it has fewer.
inline std::string afterHeader(const std::string& file) {
    std::size_t start = 0;
    for (int line = 0; line < 7; ++line) {
        std::size_t end = file.find('\n', start);
        if (end == std::string::npos) return {};
        start = end + 1;
    }
    return file.substr(start);
}

// The strings of a list as standard wide strings.
inline std::vector<std::wstring> wideTexts(const _eSeq<_eString>& list) {
    std::vector<std::wstring> out;
    for (int i = 0; i < list.size(); ++i) out.push_back(toWString(list.at(i)));
    return out;
}
