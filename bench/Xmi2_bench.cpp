// Reading a UML 2 model saved as XMI 2.x against reading the same synthetic model saved as
// XMI 1.x, per byte: `attemptParse` (parse and analyse) and the class list, the two measured
// alternately in one run, each going first in every other round, the medians compared.
//
// Usage: xmi2_bench [MEGABYTES [REPETITIONS]]   (default: 10 MB, 7 repetitions of each)
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "BenchFile.h"
#include "Generated/XMLImporter.h"
#include "Xmi2Generator.h"
#include "XmiGenerator.h"
#include "environment/PlatformText.h"

namespace {

struct Reading {
    double seconds = -1;
    int classes = 0;
};

Reading read(const Environment* environment, const BenchFile& file) {
    auto start = std::chrono::steady_clock::now();
    XMLImporter importer(environment);
    importer.readXmi2Models(true);
    bool success = false;
    importer.attemptParse(fromPlatformText(file.path), _eString(), success);
    Reading reading;
    reading.classes = importer.getClassList().size();
    std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    if (success) reading.seconds = elapsed.count();
    return reading;
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    std::size_t n = values.size();
    return n % 2 == 1 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2;
}

}  // namespace

int main(int argc, char** argv) {
    double megabytes = argc > 1 ? std::atof(argv[1]) : 10;
    int repetitions = argc > 2 ? std::atoi(argv[2]) : 7;
    auto bytes = std::size_t(megabytes * 1024 * 1024);
    BenchFile xmi1(XmiGenerator::model(bytes));
    BenchFile xmi2(Xmi2Generator::model(bytes));
    _eHndl<Environment> environment(new Environment());
    std::vector<double> perByte1;
    std::vector<double> perByte2;
    Reading last1;
    Reading last2;
    for (int i = 0; i < repetitions; ++i) {
        if (i % 2 == 0) {
            last1 = read(environment.get(), xmi1);
            last2 = read(environment.get(), xmi2);
        } else {
            last2 = read(environment.get(), xmi2);
            last1 = read(environment.get(), xmi1);
        }
        if (last1.seconds < 0 || last2.seconds < 0) {
            std::fprintf(stderr, "xmi2_bench: a model was refused\n");
            return 1;
        }
        perByte1.push_back(last1.seconds * 1e9 / double(xmi1.size));
        perByte2.push_back(last2.seconds * 1e9 / double(xmi2.size));
    }
    double m1 = median(perByte1);
    double m2 = median(perByte2);
    std::printf("XMI 1.x: %zu bytes, %d classes, median %.1f ns/byte\n", xmi1.size, last1.classes, m1);
    std::printf("XMI 2.x: %zu bytes, %d classes, median %.1f ns/byte\n", xmi2.size, last2.classes, m2);
    std::printf("XMI 2.x over XMI 1.x per byte: %.2f (%d alternating repetitions each)\n", m2 / m1, repetitions);
    return 0;
}
