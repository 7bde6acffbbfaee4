// observe: writes the record of everything a host observes of the library for the fixed set
// of inputs that `Observer.h` gives.
//
//   observe PROJECT-DIR SHARED-DIR RECORD-FILE
//
// The record is committed as tests/data/observations.txt; the host test `Observations.Unchanged`
// builds it again and compares. Write it anew only when an observable change is meant.
#include <cstdio>
#include <cstdlib>
#include <fstream>

#include "Observer.h"

int main(int argc, char** argv) {
    if (argc != 4) {
        std::fprintf(stderr, "usage: observe PROJECT-DIR SHARED-DIR RECORD-FILE\n");
        return 2;
    }
    std::string pattern = (std::filesystem::temp_directory_path() / "modelbridge-observe-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) return 1;
    std::filesystem::path work = pattern;
    std::ofstream record(argv[3], std::ios::binary);
    int inputs = 0;
    observer::observeAll(argv[1], argv[2], work, [&](const observer::Input& input, const observer::Observations& seen) {
        record << observer::recordOf(input.name, seen);
        ++inputs;
    });
    std::filesystem::remove_all(work);
    std::printf("observe: %d inputs recorded in %s\n", inputs, argv[3]);
    return record.good() ? 0 : 1;
}
