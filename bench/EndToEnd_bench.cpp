// The whole path on synthetic models of 1, 10 and 50 MB: `attemptParse` (parse and analyse),
// generation of every class, and, side by side, libxml2 building a full tree of the same file.
//
// Besides bytes per second, each benchmark reports:
//   x_libxml2  its time per iteration over libxml2's on the same file (the libxml2 benchmark
//              of a size runs first);
//   peak_x     the peak resident memory of a fresh process doing the same work once, less that
//              of a fresh process doing nothing, over the file size.
//
// Usage: end_to_end_bench [Google Benchmark options]
// The program runs itself as that fresh process: end_to_end_bench --measure TASK FILE prints
// the peak in kilobytes.
#include <benchmark/benchmark.h>
#include <libxml/parser.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <map>
#include <memory>
#include <string>

#include "BenchFile.h"
#include "Generated/XMLImporter.h"
#include "XmiGenerator.h"
#include "environment/PlatformText.h"

namespace {

const int sizes[] = {1, 10, 50};

const BenchFile& modelOf(int megabytes) {
    static std::map<int, std::unique_ptr<BenchFile>> files;
    auto& file = files[megabytes];
    if (!file) file = std::make_unique<BenchFile>(XmiGenerator::model(std::size_t(megabytes) << 20));
    return *file;
}

// A fresh, empty output directory, removed at the end.
struct OutputDir {
    OutputDir() {
        char pattern[] = "/tmp/modelbridge-out-XXXXXX";
        if (mkdtemp(pattern) == nullptr) std::abort();
        path = pattern;
    }
    ~OutputDir() { std::filesystem::remove_all(path); }
    std::string path;
};

bool buildTree(const std::string& path) {
    xmlDocPtr doc = xmlReadFile(path.c_str(), nullptr, XML_PARSE_NONET | XML_PARSE_HUGE);
    if (doc == nullptr) return false;
    xmlFreeDoc(doc);
    return true;
}

bool parse(XMLImporter& importer, const std::string& path) {
    bool success = false;
    importer.attemptParse(fromPlatformText(path), _eString(), success);
    return success;
}

// Generates every class of a parsed model; false when a generation failed.
bool generateAll(XMLImporter& importer, const std::string& directory) {
    _eSeq<_eString> names = importer.getClassList();
    _eString into = fromPlatformText(directory + "/");
    bool success = true;
    for (int i = 0, n = names.size(); i < n && success; ++i) importer.generateClassFile(into, names.get(i), success);
    return success && names.size() > 0;
}

// The work of one task, done once: what the measuring child process runs.
int runTask(const std::string& task, const std::string& path) {
    if (task == "none") return 0;
    if (task == "libxml2") return buildTree(path) ? 0 : 1;
    _eHndl<Environment> environment(new Environment());
    XMLImporter importer(environment.get());
    if (!parse(importer, path)) return 1;
    if (task == "parse") return 0;
    OutputDir out;
    return generateAll(importer, out.path) ? 0 : 1;
}

// Peak resident kilobytes of this process since it started.
long ownPeakKilobytes() {
    std::FILE* status = std::fopen("/proc/self/status", "r");
    if (status == nullptr) return -1;
    char line[256];
    long peak = -1;
    while (std::fgets(line, sizeof line, status) != nullptr)
        if (std::sscanf(line, "VmHWM: %ld", &peak) == 1) break;
    std::fclose(status);
    return peak;
}

// Peak resident kilobytes of a fresh process running `task` on `path`; -1 when it failed.
// The child reports its own high-water mark: the kernel's figure for a child also counts
// what the parent had resident when the child was spawned.
long peakKilobytes(const std::string& task, const std::string& path) {
    std::string self = std::filesystem::read_symlink("/proc/self/exe").string();
    std::string command = "'" + self + "' --measure " + task + " '" + path + "'";
    std::FILE* child = popen(command.c_str(), "r");
    if (child == nullptr) return -1;
    long peak = -1;
    if (std::fscanf(child, "%ld", &peak) != 1) peak = -1;
    return pclose(child) == 0 ? peak : -1;
}

void reportPeak(benchmark::State& state, const std::string& task, const BenchFile& file) {
    static const long baseline = peakKilobytes("none", "");
    long peak = peakKilobytes(task, file.path);
    if (peak < 0) {
        state.SkipWithError("the measuring process failed");
        return;
    }
    state.counters["peak_x"] = double(peak - baseline) * 1024.0 / double(file.size);
}

std::map<int, double>& libxml2Seconds() {
    static std::map<int, double> seconds;
    return seconds;
}

// Runs `body` once per iteration with manual timing; `body` gives its own seconds, or -1.
template <class Body>
void timed(benchmark::State& state, const BenchFile& file, Body body) {
    double total = 0;
    for (auto _ : state) {
        double seconds = body();
        if (seconds < 0) {
            state.SkipWithError("the model was refused");
            return;
        }
        state.SetIterationTime(seconds);
        total += seconds;
    }
    state.SetBytesProcessed(std::int64_t(state.iterations()) * std::int64_t(file.size));
    double perIteration = total / double(state.iterations());
    int megabytes = int(state.range(0));
    if (libxml2Seconds().count(megabytes) != 0) state.counters["x_libxml2"] = perIteration / libxml2Seconds()[megabytes];
}

double secondsOf(auto work) {
    auto start = std::chrono::steady_clock::now();
    bool ok = work();
    std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    return ok ? elapsed.count() : -1;
}

void Libxml2Tree(benchmark::State& state) {
    const BenchFile& file = modelOf(int(state.range(0)));
    libxml2Seconds().erase(int(state.range(0)));
    double total = 0;
    timed(state, file, [&] {
        double seconds = secondsOf([&] { return buildTree(file.path); });
        total += seconds;
        return seconds;
    });
    libxml2Seconds()[int(state.range(0))] = total / double(state.iterations());
    reportPeak(state, "libxml2", file);
}

void AttemptParse(benchmark::State& state) {
    const BenchFile& file = modelOf(int(state.range(0)));
    _eHndl<Environment> environment(new Environment());
    timed(state, file, [&] {
        XMLImporter importer(environment.get());
        return secondsOf([&] { return parse(importer, file.path); });
    });
    reportPeak(state, "parse", file);
}

void GenerateAll(benchmark::State& state) {
    const BenchFile& file = modelOf(int(state.range(0)));
    _eHndl<Environment> environment(new Environment());
    XMLImporter importer(environment.get());
    if (!parse(importer, file.path)) {
        state.SkipWithError("the model was refused");
        return;
    }
    timed(state, file, [&] {
        OutputDir out;
        return secondsOf([&] { return generateAll(importer, out.path); });
    });
    state.counters["classes"] = importer.getClassList().size();
    reportPeak(state, "generate", file);
}

void registerAll() {
    for (int megabytes : sizes) {
        for (auto [name, run] : {std::pair{"Libxml2Tree", &Libxml2Tree}, std::pair{"AttemptParse", &AttemptParse},
                                 std::pair{"GenerateAll", &GenerateAll}}) {
            auto* benchmark = benchmark::RegisterBenchmark(name, run);
            benchmark->Arg(megabytes)->UseManualTime()->Unit(benchmark::kMillisecond);
            if (megabytes >= 10) benchmark->Iterations(1);
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 4 && std::strcmp(argv[1], "--measure") == 0) {
        int failed = runTask(argv[2], argv[3]);
        std::printf("%ld\n", ownPeakKilobytes());
        return failed;
    }
    xmlInitParser();
    registerAll();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    xmlCleanupParser();
    return 0;
}
