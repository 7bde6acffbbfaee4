// Any bytes through the lexer and the table-driven parser alone, as the importer drives them.
#include <cstdint>

#include "FuzzInput.h"
#include "support/ParseRun.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    parseFile(writeInput(data, size));
    return 0;
}
