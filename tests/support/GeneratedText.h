// The parts of a generated file that tests compare.
#pragma once

#include <string>

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
