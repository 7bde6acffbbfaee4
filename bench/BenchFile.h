// A file under /tmp holding a generated text, removed when the program ends.
#pragma once

#include <unistd.h>

#include <cstdlib>
#include <string>

struct BenchFile {
    explicit BenchFile(const std::string& text) : size(text.size()) {
        char name[] = "/tmp/modelbridge-bench-XXXXXX";
        int fd = mkstemp(name);
        path = name;
        if (fd < 0 || write(fd, text.data(), text.size()) != ssize_t(text.size())) std::abort();
        close(fd);
    }
    ~BenchFile() { unlink(path.c_str()); }
    BenchFile(const BenchFile&) = delete;
    BenchFile& operator=(const BenchFile&) = delete;

    std::string path;
    std::size_t size;
};
