// The bytes of one fuzz input as a file, since the library reads its input from files.
#pragma once

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

// Blocks waiting in the pool's free lists are poisoned, and the list runs through their first
// words; the leak check that follows every input must read those words, or the waiting blocks
// would look lost. (The check at process exit comes after the lists are emptied.)
extern "C" const char* __lsan_default_options() { return "use_poisoned=1"; }

// A directory of its own for the process, with the input written to "input.xmi" in it.
inline const std::string& fuzzDirectory() {
    static const std::string directory = [] {
        char pattern[] = "/tmp/modelbridge-fuzz-XXXXXX";
        if (mkdtemp(pattern) == nullptr) std::abort();
        return std::string(pattern);
    }();
    return directory;
}

inline std::string writeInput(const std::uint8_t* data, std::size_t size) {
    std::string path = fuzzDirectory() + "/input.xmi";
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (file == nullptr) std::abort();
    if (size > 0 && std::fwrite(data, 1, size, file) != size) std::abort();
    std::fclose(file);
    return path;
}
