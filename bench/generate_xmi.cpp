// Writes a synthetic XMI model of a given size: generate_xmi FILE MEGABYTES
#include <cstdio>
#include <cstdlib>

#include "XmiGenerator.h"

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: generate_xmi FILE MEGABYTES\n");
        return 2;
    }
    std::string text = XmiGenerator::model(std::size_t(std::atof(argv[2]) * 1024 * 1024));
    std::FILE* file = std::fopen(argv[1], "wb");
    if (file == nullptr || std::fwrite(text.data(), 1, text.size(), file) != text.size()) {
        std::fprintf(stderr, "cannot write %s\n", argv[1]);
        return 1;
    }
    std::fclose(file);
    return 0;
}
