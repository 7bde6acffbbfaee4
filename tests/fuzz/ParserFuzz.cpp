// Any bytes through the lexer and the table-driven parser alone, as the importer drives them, and
// again one token per byte: both ways must give the same tree and the same errors.
#include <cstdint>
#include <cstdlib>

#include "FuzzInput.h"
#include "support/ParseRun.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string path = writeInput(data, size);
    ParseOutcome inRuns = parseFile(path);
    ParseOutcome oneByOne = parseFile(path, false);
    if (inRuns.accepted != oneByOne.accepted || inRuns.errors != oneByOne.errors ||
        (inRuns.accepted && !inRuns.result->isEqual(oneByOne.result.get())))
        std::abort();
    return 0;
}
