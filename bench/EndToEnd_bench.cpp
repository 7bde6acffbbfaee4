// The whole path against libxml2 on the same files, for both shapes of synthetic model at 1, 10
// and 50 MB. Every comparison is made within one run: in each round the contenders are measured
// one after the other, the one that goes first changing from round to round, and the medians of
// the rounds are compared. With --own-processes, the contenders within the process each run in
// a process of their own instead, forked once and asked for one run at a time: a tree builder
// that frees a million small blocks leaves the C heap in a state that helps itself and costs the
// next one, and so each is measured with the heap it would have run alone again and again. A
// worker waits between its runs, though, and a run after a wait is slower on some machines.
// glibc's thresholds for mapping and trimming its heap are fixed for the rounds, so that they
// don't follow whichever contender freed what last.
//
//   libxml2 tree    xmlReadFile + xmlFreeDoc
//   pugixml tree    xml_document::load_file (when pugixml is installed)
//   attemptParse    parse and analysis, by a fresh importer; "ext." with every extension chosen
//   generate all    one generateClassFile per listed class into an empty directory (in memory),
//                   emptied again after each run outside the time taken
//   xmllint         the process `xmllint --noout MODEL` (when xmllint is installed)
//   host --list     the process `modelbridge-gen MODEL --list` (every extension, as the host
//                   reads by default); "spec." with --specified
//   host generate   the process `modelbridge-gen MODEL -o DIR` into an empty directory, emptied
//                   as for generate all
//   host update     the same into a directory it generated before: nothing changed
// Peak memory: the peak resident memory of a fresh process doing the work once, less that of a
// fresh process doing nothing, over the file size.
//
// Usage: end_to_end_bench [--rounds N] [--shape synthetic|prose] [--own-processes] [MEGABYTES...]
//        (default: 5 rounds, 11 at 1 MB; both shapes; 1 10 50)
// The program runs itself as the measured fresh process: end_to_end_bench --measure TASK FILE
// prints the peak in kilobytes.
#include <libxml/parser.h>
#include <malloc.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>
#ifdef MODELBRIDGE_HAVE_PUGIXML
#include <pugixml.hpp>
#endif

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "BenchFile.h"
#include "Generated/XMLImporter.h"
#include "XmiGenerator.h"
#include "XmiProseGenerator.h"
#include "environment/PlatformText.h"

namespace {

// A fresh, empty output directory, removed at the end. It lies in memory where the machine has
// a memory file system, so that generation is measured rather than the disk's bookkeeping.
struct OutputDir {
    OutputDir() {
        std::string pattern = std::filesystem::is_directory("/dev/shm") ? "/dev/shm/modelbridge-out-XXXXXX"
                                                                          : "/tmp/modelbridge-out-XXXXXX";
        if (mkdtemp(pattern.data()) == nullptr) std::abort();
        path = pattern;
    }
    ~OutputDir() { std::filesystem::remove_all(path); }
    // Removes what a run left in it.
    void empty() const {
        for (const auto& entry : std::filesystem::directory_iterator(path)) std::filesystem::remove_all(entry.path());
    }
    std::string path;
};

bool buildTree(const std::string& path) {
    xmlDocPtr doc = xmlReadFile(path.c_str(), nullptr, XML_PARSE_NONET | XML_PARSE_HUGE);
    if (doc == nullptr) return false;
    xmlFreeDoc(doc);
    return true;
}

bool buildPugiTree(const std::string& path) {
#ifdef MODELBRIDGE_HAVE_PUGIXML
    pugi::xml_document doc;
    return bool(doc.load_file(path.c_str()));
#else
    (void)path;
    return false;
#endif
}

bool parse(XMLImporter& importer, const std::string& path, bool extensions = false) {
    if (extensions) importer.chooseExtensions(everyExtension());
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

// The work of one task, done once: what the measuring child process runs. Generation writes into
// `out`, made and removed by the caller for every task alike.
int runTask(const std::string& task, const std::string& path, const std::string& out) {
    if (task == "none") return 0;
    if (task == "libxml2") return buildTree(path) ? 0 : 1;
    if (task == "pugixml") return buildPugiTree(path) ? 0 : 1;
    bool extensions = task.ends_with("-ext");
    _eHndl<Environment> environment(new Environment());
    XMLImporter importer(environment.get());
    if (!parse(importer, path, extensions)) return 1;
    if (task.starts_with("parse")) return 0;
    return generateAll(importer, out) ? 0 : 1;
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

std::string self() { return std::filesystem::read_symlink("/proc/self/exe").string(); }

// Peak resident kilobytes of a fresh process running `task` on `path`; -1 when it failed.
// The child reports its own high-water mark: the kernel's figure for a child also counts
// what the parent had resident when the child was spawned.
long peakKilobytes(const std::string& task, const std::string& path) {
    std::string command = "'" + self() + "' --measure " + task + " '" + path + "'";
    std::FILE* child = popen(command.c_str(), "r");
    if (child == nullptr) return -1;
    long peak = -1;
    if (std::fscanf(child, "%ld", &peak) != 1) peak = -1;
    return pclose(child) == 0 ? peak : -1;
}

double peakOverFile(const std::string& task, const BenchFile& file) {
    static const long baseline = peakKilobytes("none", "");
    long peak = peakKilobytes(task, file.path);
    return peak < 0 ? -1 : double(peak - baseline) * 1024.0 / double(file.size);
}

struct Contender {
    std::string name;
    std::function<bool()> run;
    std::vector<double> seconds;
    std::function<void()> tidy = [] {};  // after each run, outside the time taken
};

// Seconds of one run of a contender, or -1 when it failed.
double secondsOf(const Contender& c) {
    auto start = std::chrono::steady_clock::now();
    bool ok = c.run();
    std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    c.tidy();
    return ok ? elapsed.count() : -1;
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    std::size_t n = values.size();
    return n % 2 == 1 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2;
}

// A process of its own for one contender, forked from this one: each "r" written to `ask` has it
// run the work once, and it answers with the seconds the run took, -1 when it failed. It ends on
// anything else: the workers forked after it hold its pipes too, so it would not see them close.
class Worker {
public:
    explicit Worker(const Contender& work) {
        int toWorker[2];
        int fromWorker[2];
        if (pipe(toWorker) != 0 || pipe(fromWorker) != 0) std::abort();
        pid = fork();
        if (pid < 0) std::abort();
        if (pid == 0) {
            close(toWorker[1]);
            close(fromWorker[0]);
            char go;
            while (read(toWorker[0], &go, 1) == 1 && go == 'r') {
                double s = secondsOf(work);
                if (write(fromWorker[1], &s, sizeof s) != sizeof s) break;
            }
            _exit(0);
        }
        close(toWorker[0]);
        close(fromWorker[1]);
        ask = toWorker[1];
        answer = fromWorker[0];
    }
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;
    ~Worker() {
        char stop = 'q';
        if (write(ask, &stop, 1) != 1) kill(pid, SIGKILL);
        close(ask);
        close(answer);
        waitpid(pid, nullptr, 0);
    }
    double run() {
        char go = 'r';
        double s = -1;
        if (write(ask, &go, 1) != 1 || read(answer, &s, sizeof s) != sizeof s) return -1;
        return s;
    }

private:
    pid_t pid;
    int ask;
    int answer;
};

// Runs every contender once per round, the order turned by one place each round; with
// `ownProcesses`, each in a worker of its own. False when a run failed.
bool alternate(std::vector<Contender>& contenders, int rounds, bool ownProcesses) {
    std::vector<std::unique_ptr<Worker>> workers;
    if (ownProcesses)
        for (const Contender& c : contenders) workers.push_back(std::make_unique<Worker>(c));
    for (int round = 0; round < rounds; ++round) {
        for (std::size_t k = 0; k < contenders.size(); ++k) {
            std::size_t at = (k + std::size_t(round)) % contenders.size();
            Contender& c = contenders[at];
            double s = ownProcesses ? workers[at]->run() : secondsOf(c);
            if (s < 0) {
                std::fprintf(stderr, "end_to_end_bench: %s failed\n", c.name.c_str());
                return false;
            }
            c.seconds.push_back(s);
        }
    }
    return true;
}

bool commandSucceeds(const std::string& command) { return std::system((command + " >/dev/null 2>&1").c_str()) == 0; }

bool measure(const std::string& shape, int megabytes, int rounds, bool ownProcesses) {
    auto bytes = std::size_t(megabytes) << 20;
    BenchFile file(shape == "prose" ? XmiProseGenerator::model(bytes) : XmiGenerator::model(bytes));
    _eHndl<Environment> environment(new Environment());
    XMLImporter generator(environment.get());
    if (!parse(generator, file.path)) return false;
    XMLImporter extendedGenerator(environment.get());
    if (!parse(extendedGenerator, file.path, true)) return false;
    int classes = generator.getClassList().size();

    auto parseWith = [&](bool extensions) {
        return [&, extensions] {
            XMLImporter importer(environment.get());
            return parse(importer, file.path, extensions);
        };
    };
    // Generation writes into an empty directory, emptied again after each run.
    OutputDir generated;
    auto emptied = [&] { generated.empty(); };
    auto generateWith = [&](XMLImporter& importer) {
        return [&] { return generateAll(importer, generated.path); };
    };
    std::vector<Contender> inProcess = {
        {"libxml2 tree", [&] { return buildTree(file.path); }, {}},
        {"attemptParse", parseWith(false), {}},
        {"attemptParse ext.", parseWith(true), {}},
        {"generate all", generateWith(generator), {}, emptied},
        {"generate ext.", generateWith(extendedGenerator), {}, emptied},
    };
#ifdef MODELBRIDGE_HAVE_PUGIXML
    inProcess.push_back({"pugixml tree", [&] { return buildPugiTree(file.path); }, {}});
#endif
    std::string host = "'" + std::string(MODELBRIDGE_GEN_PATH) + "' '" + file.path + "'";
    OutputDir updated;
    if (!commandSucceeds(host + " -o '" + updated.path + "'")) return false;
    std::vector<Contender> processes = {
        {"host --list", [&] { return commandSucceeds(host + " --list"); }, {}},
        {"host spec. list", [&] { return commandSucceeds(host + " --list --specified"); }, {}},
        {"host generate", [&] { return commandSucceeds(host + " -o '" + generated.path + "'"); }, {}, emptied},
        {"host update", [&] { return commandSucceeds(host + " -o '" + updated.path + "'"); }, {}},
    };
    if (commandSucceeds("command -v xmllint"))
        processes.push_back({"xmllint", [&] { return commandSucceeds("xmllint --noout '" + file.path + "'"); }, {}});
    if (!alternate(inProcess, rounds, ownProcesses) || !alternate(processes, rounds, false)) return false;

    auto ms = [](const Contender& c) { return median(c.seconds) * 1e3; };
    auto perByte = [&](const Contender& c) { return median(c.seconds) * 1e9 / double(file.size); };
    auto named = [&](const char* name) -> const Contender* {
        for (const auto* list : {&inProcess, &processes})
            for (const Contender& c : *list)
                if (c.name == name) return &c;
        return nullptr;
    };
    auto ratio = [&](const char* label, const char* over, const char* under) {
        const Contender* a = named(over);
        const Contender* b = named(under);
        if (a != nullptr && b != nullptr) std::printf("  %s: %.2f\n", label, ms(*a) / ms(*b));
    };
    std::printf("\n%s, %d MB (%zu bytes, %d classes), medians of %d alternating rounds%s\n", shape.c_str(), megabytes,
                file.size, classes, rounds, ownProcesses ? ", each in a process of its own" : "");
    for (const auto* list : {&inProcess, &processes})
        for (const Contender& c : *list)
            std::printf("  %-17s %9.1f ms %7.1f ns/byte\n", c.name.c_str(), ms(c), perByte(c));
    ratio("attemptParse / libxml2 tree", "attemptParse", "libxml2 tree");
    ratio("attemptParse / pugixml tree", "attemptParse", "pugixml tree");
    ratio("attemptParse ext. / attemptParse", "attemptParse ext.", "attemptParse");
    ratio("generate all / attemptParse", "generate all", "attemptParse");
    ratio("generate ext. / attemptParse ext.", "generate ext.", "attemptParse ext.");
    ratio("generate ext. / generate all", "generate ext.", "generate all");
    ratio("host --list / xmllint", "host --list", "xmllint");
    ratio("host spec. list / xmllint", "host spec. list", "xmllint");
    ratio("host update / host generate", "host update", "host generate");
    // What the update costs beyond reading the model and reporting on it, against what writing
    // every file costs beyond the same.
    double list = ms(*named("host --list"));
    double beyondUpdate = ms(*named("host update")) - list;
    double beyondGenerate = ms(*named("host generate")) - list;
    if (beyondGenerate > 0) std::printf("  update / generate, beyond --list: %.2f\n", beyondUpdate / beyondGenerate);
    std::printf("  peak memory over file size: libxml2 %.1f", peakOverFile("libxml2", file));
#ifdef MODELBRIDGE_HAVE_PUGIXML
    std::printf(", pugixml %.1f", peakOverFile("pugixml", file));
#endif
    std::printf(", parse %.1f, parse and generate %.1f, ext. parse %.1f, ext. parse and generate %.1f\n",
                peakOverFile("parse", file), peakOverFile("generate", file), peakOverFile("parse-ext", file),
                peakOverFile("generate-ext", file));
    std::fflush(stdout);
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 4 && std::strcmp(argv[1], "--measure") == 0) {
        // The directory goes after the peak is read: removing it is the measurement's own work.
        OutputDir out;
        int failed = runTask(argv[2], argv[3], out.path);
        std::printf("%ld\n", ownPeakKilobytes());
        return failed;
    }
    int rounds = 5;
    bool ownProcesses = false;
    std::vector<std::string> shapes = {"synthetic", "prose"};
    std::vector<int> sizes;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--own-processes") == 0)
            ownProcesses = true;
        else if (std::strcmp(argv[i], "--rounds") == 0 && i + 1 < argc)
            rounds = std::max(1, std::atoi(argv[++i]));
        else if (std::strcmp(argv[i], "--shape") == 0 && i + 1 < argc)
            shapes = {argv[++i]};
        else
            sizes.push_back(std::atoi(argv[i]));
    }
    if (sizes.empty()) sizes = {1, 10, 50};
    // The C heap with fixed thresholds: by default glibc maps and trims by what was freed last,
    // so that one contender's frees decide whether the next one's memory is mapped afresh.
    mallopt(M_MMAP_THRESHOLD, 32 << 20);
    mallopt(M_TRIM_THRESHOLD, 1 << 30);
    xmlInitParser();
    for (const std::string& shape : shapes)
        for (int megabytes : sizes)
            if (!measure(shape, megabytes, megabytes == 1 ? std::max(rounds, 11) : rounds, ownProcesses)) return 1;
    xmlCleanupParser();
    return 0;
}
