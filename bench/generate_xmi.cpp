// Writes a synthetic XMI model of a given size: generate_xmi FILE MEGABYTES [--xmi2 | --prose]
// With --xmi2 the model is saved as XMI 2.x, as UML 2 tools save it; with --prose it has the
// second shape: deep packages, long names and values, character data and comments.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "Xmi2Generator.h"
#include "XmiProseGenerator.h"
#include "XmiGenerator.h"

int main(int argc, char** argv) {
    bool xmi2 = argc == 4 && std::strcmp(argv[3], "--xmi2") == 0;
    bool prose = argc == 4 && std::strcmp(argv[3], "--prose") == 0;
    if (argc != 3 && !xmi2 && !prose) {
        std::fprintf(stderr, "usage: generate_xmi FILE MEGABYTES [--xmi2 | --prose]\n");
        return 2;
    }
    auto bytes = std::size_t(std::atof(argv[2]) * 1024 * 1024);
    std::string text = xmi2    ? Xmi2Generator::model(bytes)
                       : prose ? XmiProseGenerator::model(bytes)
                               : XmiGenerator::model(bytes);
    std::FILE* file = std::fopen(argv[1], "wb");
    if (file == nullptr || std::fwrite(text.data(), 1, text.size(), file) != text.size()) {
        std::fprintf(stderr, "cannot write %s\n", argv[1]);
        return 1;
    }
    std::fclose(file);
    return 0;
}
