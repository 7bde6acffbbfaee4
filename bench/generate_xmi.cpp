// Writes a synthetic XMI model of a given size: generate_xmi FILE MEGABYTES [--xmi2]
// With --xmi2 the model is saved as XMI 2.x, as UML 2 tools save it.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "Xmi2Generator.h"
#include "XmiGenerator.h"

int main(int argc, char** argv) {
    bool xmi2 = argc == 4 && std::strcmp(argv[3], "--xmi2") == 0;
    if (argc != 3 && !xmi2) {
        std::fprintf(stderr, "usage: generate_xmi FILE MEGABYTES [--xmi2]\n");
        return 2;
    }
    auto bytes = std::size_t(std::atof(argv[2]) * 1024 * 1024);
    std::string text = xmi2 ? Xmi2Generator::model(bytes) : XmiGenerator::model(bytes);
    std::FILE* file = std::fopen(argv[1], "wb");
    if (file == nullptr || std::fwrite(text.data(), 1, text.size(), file) != text.size()) {
        std::fprintf(stderr, "cannot write %s\n", argv[1]);
        return 1;
    }
    std::fclose(file);
    return 0;
}
