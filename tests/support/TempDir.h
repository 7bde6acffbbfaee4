// A fresh directory under the system's temporary folder, removed with everything in it.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

// A whole file's bytes; empty when it can't be read.
inline std::string readFile(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

class TempDir {
public:
    TempDir() {
        std::string pattern = (std::filesystem::temp_directory_path() / "modelbridge-XXXXXX").string();
        char* made = mkdtemp(pattern.data());
        if (made == nullptr) std::abort();
        root = made;
    }
    ~TempDir() {
        std::error_code ignored;
        std::filesystem::permissions(root, std::filesystem::perms::owner_all, ignored);
        std::filesystem::remove_all(root, ignored);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::string& path() const { return root; }
    std::string operator/(const std::string& name) const { return root + "/" + name; }

    // Writes `bytes` to a file under the directory and gives its path.
    std::string write(const std::string& name, const std::string& bytes) const {
        std::string full = *this / name;
        std::ofstream(full, std::ios::binary) << bytes;
        return full;
    }
    std::string read(const std::string& name) const { return readFile(*this / name); }

private:
    std::string root;
};
