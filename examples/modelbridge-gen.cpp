// modelbridge-gen: reads an XMI model and writes Tarvane class declarations, one file per
// class or one file for a chosen set. A host of the library like any other: it uses the public
// headers and the exported interface only.
//
// Standard output carries data only: the class names of --list, or the paths of the files
// written, one per line. The parse report, progress and errors go to standard error.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <system_error>
#include <vector>

#include "Generated/XMLImporter.h"
#include "environment/PlatformText.h"

namespace {

// The switch that the option "--NAME" turns on, or "--no-NAME" off; null for any other word.
const ImportSwitch* switchOption(const std::string& arg, bool& on) {
    for (const ImportSwitch& each : importSwitches) {
        on = arg == std::string("--") + each.name;
        if (on || arg == std::string("--no-") + each.name) return &each;
    }
    return nullptr;
}

// The options of the extensions, one pair for each switch the library knows.
std::string switchOptions() {
    std::string text;
    for (const ImportSwitch& each : importSwitches) {
        // The help starts in column 22, on the next line when the option reaches it.
        std::string option = std::string("  --") + each.name + ", --no-" + each.name;
        option = option.size() < 21 ? option + std::string(21 - option.size(), ' ') : option + "\n" + std::string(21, ' ');
        text += option + each.help + "\n";
    }
    return text;
}

const std::string usage =
    "usage: modelbridge-gen MODEL [-o DIR] [--list] [--class NAME]... [--single FILE] [options]\n"
    "\n"
    "Reads the UML model in MODEL (XMI 1.x, or a UML 2 model saved as XMI 2.x) and writes\n"
    "Tarvane class declarations. Standard output carries only the class names of --list or the\n"
    "paths of the files written; the parse report and the errors go to standard error.\n"
    "  -o DIR             write the files into DIR, made with its parents when missing\n"
    "                     (default: the current directory)\n"
    "  --list             list the classes of the model and write nothing\n"
    "  --class NAME       generate this class; may be given more than once (default: every class)\n"
    "  --single FILE      write the chosen classes into one file FILE.tv instead of one file each\n"
    "Files are updated, not overwritten: what you wrote in them stays and what the model changed\n"
    "lands, by the record of the last generation in DIR/.modelbridge (keep it with the files):\n"
    "  --check            write nothing; exit 1 and list the files an update would change\n"
    "  --dry-run          write nothing; say what an update would do to each file\n"
    "  --diff             write nothing; show what an update would change, as a unified diff\n"
    "  --list-outputs     print the paths of the files a run writes, and write nothing\n"
    "  --conflict-markers write a file whose merge is in conflict with <<<<<<< ======= >>>>>>>\n"
    "                     round the lines both changed, instead of leaving it as it is\n"
    "  --overwrite        replace files that the record doesn't know, instead of leaving them\n"
    "  --prune            remove the files of classes gone from the model, unless you changed them\n"
    "Every extension of the library is on unless turned off one by one (--no-NAME), or all of\n"
    "them with --specified, which reads the model exactly as XMI 1.x specifies (later --NAME\n"
    "options turn single ones back on):\n"
    "  --specified        no extension: XMI 1.x only, classes on its one path, text as written\n" +
    switchOptions() +
    "  --library DIR      look in DIR for the files that types are referred to in; may be given\n"
    "                     more than once\n" +
    "  --line-width N     break generated lines beyond column N (20 to 10000; default 100)\n"
    "  --indent TEXT      indent generated text by TEXT, where \\t stands for a tab and \\\\ for a\n"
    "                     backslash (default: one tab)\n"
    "  --file-prefix TEXT put TEXT before the name of every file written (default: none)\n"
    "  -q, --quiet        leave out the parse report and what the text leaves out; errors are\n"
    "                     still shown\n"
    "  -v, --verbose      name every item the text leaves out, not only the first of each kind\n"
    "  --progress         show the line being parsed, when standard error is a terminal\n"
    "  --version          show the versions of this program and of the library\n"
    "  --help             show this text\n"
    "Exit status:\n"
    "  0  The model was parsed and every file asked for was written (or the classes were listed).\n"
    "  1  The parse failed, a file could not be written, a class asked for does not exist, there\n"
    "     was nothing to generate, or the output folder could not be made; a merge was in\n"
    "     conflict, a file the record doesn't know was in the way, or the record can't be read;\n"
    "     with --check, a file would change.\n"
    "  2  Bad usage: an unknown option, a missing value, a bad value (a line width out of\n"
    "     bounds, an empty indentation, a file prefix with \"/\"), an option given twice that\n"
    "     takes one value, or options that can't go together (--list with -o).\n";

const char* const program = "modelbridge-gen";

// Command-line words reach the library byte for byte, as the lexer reads a model, so that
// `--class Kundé` meets the name the model spells.
_eString toText(const std::string& bytes) { return fromPlatformText(bytes); }

// The library's text for the terminal: bytes that are UTF-8 stay, other characters become UTF-8.
std::string toUtf8(const _eString& text) { return toPlatformText(text); }

void printLines(const _eSeq<_eString>& lines, std::FILE* to) {
    for (int i = 0; i < lines.size(); ++i) std::fprintf(to, "%s\n", toUtf8(lines.at(i)).c_str());
}

struct Options {
    std::string model;
    std::string directory = ".";
    bool list = false;
    bool specified = false;
    std::vector<std::pair<bool ImportExtensions::*, bool>> switches;  // as given, in order
    ImportExtensions extensions;  // what they come to: every switch, unless specified
    std::vector<std::string> libraries;         // --library folders, in order
    std::vector<const char*> libraryFolders;    // the same, as `extensions` holds them
    bool quiet = false;
    bool verbose = false;
    bool progress = false;
    std::vector<std::string> classes;
    std::string single;
    UpdateOptions update;
    bool check = false;
    bool dryRun = false;
    bool listOutputs = false;
    // The layout of generated text; the library's defaults unless one is given.
    bool layoutChosen = false;
    std::int32_t lineWidth = 100;
    std::string indent = "\t";
    std::string filePrefix;
    std::vector<std::string> given;  // the options given, by their long names, in order
};

// The long name of an option given by its short one.
std::string longName(const std::string& option) {
    if (option == "-q") return "--quiet";
    if (option == "-v") return "--verbose";
    return option;
}

// Options that can't go together: `option` with any of `others`, for the reason given.
struct Exclusion {
    const char* option;
    std::vector<const char*> others;
    const char* why;
};

const Exclusion exclusions[] = {
    {"--list",
     {"-o", "--class", "--single", "--check", "--dry-run", "--diff", "--list-outputs", "--conflict-markers",
      "--overwrite", "--prune", "--line-width", "--indent", "--file-prefix"},
     "--list only lists the classes and writes nothing"},
    {"--check", {"--dry-run", "--diff", "--list-outputs"}, "each asks for its own account of an update"},
    {"--dry-run", {"--diff", "--list-outputs"}, "each asks for its own account of an update"},
    {"--diff", {"--list-outputs"}, "each asks for its own account of an update"},
    {"--list-outputs", {"--conflict-markers", "--overwrite", "--prune"}, "--list-outputs updates nothing"},
    {"--quiet", {"--verbose"}, "one asks for less and the other for more"},
};

// Options that take one value and may be given once.
const char* const singleValued[] = {"-o", "--single", "--line-width", "--indent", "--file-prefix"};

// A one-line reason why the options given can't be taken as they are, or "".
std::string refusedTogether(const std::vector<std::string>& given) {
    auto has = [&](const std::string& option) { return std::find(given.begin(), given.end(), option) != given.end(); };
    for (const char* option : singleValued)
        if (std::count(given.begin(), given.end(), option) > 1)
            return std::string(option) + " is given twice; it takes one value";
    for (const Exclusion& exclusion : exclusions) {
        if (!has(exclusion.option)) continue;
        for (const char* other : exclusion.others)
            if (has(other)) return std::string(exclusion.option) + " and " + other + " can't go together: " + exclusion.why;
    }
    return "";
}

// "\t" as a tab and "\\" as a backslash; any other backslash stays as it is.
std::string unescape(const std::string& text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 1 < text.size() && (text[i + 1] == 't' || text[i + 1] == '\\')) {
            out.push_back(text[i + 1] == 't' ? '\t' : '\\');
            ++i;
        } else {
            out.push_back(text[i]);
        }
    }
    return out;
}

// A whole decimal number that fits a 32-bit width; false for anything else.
bool readWidth(const char* text, std::int32_t& width) {
    if (*text < '0' || *text > '9') return false;
    char* end = nullptr;
    long value = std::strtol(text, &end, 10);
    if (*end != '\0' || value > 1'000'000'000) return false;
    width = std::int32_t(value);
    return true;
}

// Reads the arguments; false with a message on bad usage.
bool readOptions(int argc, char** argv, Options& options) {
    for (int i = 1; i < argc; ++i) {
        std::string arg = argv[i];
        auto value = [&](const char* option) -> const char* {
            if (i + 1 >= argc) {
                std::fprintf(stderr, "%s: %s needs a value\n", program, option);
                return nullptr;
            }
            return argv[++i];
        };
        auto takeText = [&](const char* option, std::string& into) {
            const char* v = value(option);
            if (v != nullptr) into = v;
            return v != nullptr;
        };
        if (arg == "-o") {
            if (!takeText("-o", options.directory)) return false;
        } else if (arg == "--class") {
            std::string name;
            if (!takeText("--class", name)) return false;
            options.classes.push_back(name);
        } else if (arg == "--single") {
            if (!takeText("--single", options.single)) return false;
        } else if (arg == "--line-width") {
            const char* v = value("--line-width");
            if (v == nullptr) return false;
            if (!readWidth(v, options.lineWidth)) {
                std::fprintf(stderr, "%s: --line-width needs a whole number of columns, not '%s'\n", program, v);
                return false;
            }
            options.layoutChosen = true;
        } else if (arg == "--indent") {
            if (!takeText("--indent", options.indent)) return false;
            options.indent = unescape(options.indent);
            options.layoutChosen = true;
        } else if (arg == "--file-prefix") {
            if (!takeText("--file-prefix", options.filePrefix)) return false;
            options.layoutChosen = true;
        } else if (arg == "--list") {
            options.list = true;
        } else if (arg == "--library") {
            std::string folder;
            if (!takeText("--library", folder)) return false;
            options.libraries.push_back(folder);
        } else if (arg == "--specified") {
            options.specified = true;
        } else if (bool on; const ImportSwitch* chosen = switchOption(arg, on)) {
            options.switches.emplace_back(chosen->field, on);
        } else if (arg == "--check") {
            options.check = true;
            options.update.write = false;
        } else if (arg == "--dry-run") {
            options.dryRun = true;
            options.update.write = false;
        } else if (arg == "--diff") {
            options.update.diff = true;
            options.update.write = false;
        } else if (arg == "--list-outputs") {
            options.listOutputs = true;
        } else if (arg == "--conflict-markers") {
            options.update.conflictMarkers = true;
        } else if (arg == "--overwrite") {
            options.update.overwrite = true;
        } else if (arg == "--prune") {
            options.update.prune = true;
        } else if (arg == "-q" || arg == "--quiet") {
            options.quiet = true;
        } else if (arg == "-v" || arg == "--verbose") {
            options.verbose = true;
        } else if (arg == "--progress") {
            options.progress = true;
        } else if (!arg.empty() && arg[0] == '-') {
            std::fprintf(stderr, "%s: unknown option %s\n%s", program, arg.c_str(), usage.c_str());
            return false;
        }
        if (!arg.empty() && arg[0] == '-') {
            options.given.push_back(longName(arg));
        } else if (options.model.empty()) {
            options.model = arg;
        } else {
            std::fprintf(stderr, "%s: one model only\n%s", program, usage.c_str());
            return false;
        }
    }
    if (options.model.empty()) {
        std::fprintf(stderr, "%s", usage.c_str());
        return false;
    }
    if (std::string refusal = refusedTogether(options.given); !refusal.empty()) {
        std::fprintf(stderr, "%s: %s\n", program, refusal.c_str());
        return false;
    }
    options.extensions = options.specified ? ImportExtensions() : everyExtension();
    for (const auto& [field, on] : options.switches) options.extensions.*field = on;
    for (const std::string& folder : options.libraries) options.libraryFolders.push_back(folder.c_str());
    options.extensions.libraryFolders = options.libraryFolders.data();
    options.extensions.libraryFolderCount = std::uint32_t(options.libraryFolders.size());
    if (const char* epoch = std::getenv("SOURCE_DATE_EPOCH"); epoch != nullptr) {
        char* end = nullptr;
        long long seconds = std::strtoll(epoch, &end, 10);
        if (*epoch >= '0' && *epoch <= '9' && *end == '\0') {
            options.extensions.useFixedTime = true;
            options.extensions.fixedTime = seconds;
        }
    }
    if (options.directory.empty()) options.directory = ".";
    if (options.directory.back() != '/') options.directory += '/';
    return true;
}

// The four numbers of a version record, joined by dots.
std::string versionText(const _eSeq<int>& version) {
    std::string text;
    for (int i = 0; i < version.size(); ++i) text += (i > 0 ? "." : "") + std::to_string(version.at(i));
    return text;
}

void printVersion() {
    _eHndl<Environment> environment(new Environment());
    _eSeq<int> library = environment->moduleVersion(L"ModelBridge.dll");
    std::printf("%s %s\n", program, MODELBRIDGE_GEN_VERSION);
    if (library == _eSeq<int>{0, 0, 0, 0})
        std::printf("libModelBridge: no version record found\n");
    else
        std::printf("libModelBridge %s\n", versionText(library).c_str());
}

// Shows the entries of parse progress on standard error, at most ten a second: a terminal
// can't show more, and writing every line of a large model would cost more than parsing it.
struct ProgressDisplay {
    using Clock = std::chrono::steady_clock;
    std::string pending;  // the newest entry, not yet shown
    Clock::time_point shown;

    static void show(const _eString& entry, void* context) {
        auto& display = *static_cast<ProgressDisplay*>(context);
        std::string text = toUtf8(entry);
        if (text == "\n") {
            std::fprintf(stderr, "%s\n", display.pending.c_str());
            return;
        }
        display.pending = text;
        Clock::time_point now = Clock::now();
        if (now - display.shown < std::chrono::milliseconds(100)) return;
        std::fprintf(stderr, "%s", text.c_str());
        std::fflush(stderr);
        display.pending.clear();
        display.shown = now;
    }
};

// The classes that the search of `--anywhere` finds in the model.
int classesAnywhere(const Options& options, const Environment* environment) {
    XMLImporter importer(environment);
    importer.findClassesAnywhere(true);
    importer.readXmi2Models(true);
    bool parsed = false;
    importer.attemptParse(toText(options.model), L"", parsed);
    return parsed ? importer.getClassList().size() : 0;
}

// Says why a model gives no class.
void explainNoClass(const Options& options, const Environment* environment) {
    int elsewhere = options.extensions.anywhere ? 0 : classesAnywhere(options, environment);
    if (elsewhere == 0) {
        std::fprintf(stderr, "%s: the model holds no class\n", program);
        return;
    }
    std::fprintf(stderr,
                 "%s: no class stands on the path that XMI 1.x specifies, but %d stand elsewhere in the model; "
                 "--anywhere finds them\n",
                 program, elsewhere);
}

// The classes to generate: every class, or those asked for that the model has (each once, in
// the order asked); the others are named on standard error.
_eSeq<_eString> chosenClasses(const Options& options, const _eSeq<_eString>& all, bool& allFound) {
    allFound = true;
    if (options.classes.empty()) return all;
    // Each class by the text the terminal shows for it.
    std::map<std::string, _eString> known;
    for (int i = 0; i < all.size(); ++i) known.emplace(toUtf8(all.at(i)), all.at(i));
    _eSeq<_eString> chosen;
    std::set<std::string> seen;
    for (const std::string& name : options.classes) {
        if (!seen.insert(name).second) continue;
        auto found = known.find(name);
        if (found != known.end()) {
            chosen.pushBack(found->second);
        } else {
            std::fprintf(stderr, "%s: the model has no class '%s'\n", program, name.c_str());
            allFound = false;
        }
    }
    return chosen;
}

// False, with the system's reason on standard error, when the model can't be read.
bool modelReadable(const std::string& model) {
    int fd = ::open(model.c_str(), O_RDONLY);
    struct stat info {};
    int refused = fd < 0 ? errno : ::fstat(fd, &info) != 0 ? errno : S_ISDIR(info.st_mode) ? EISDIR : 0;
    if (fd >= 0) ::close(fd);
    if (refused == 0) return true;
    std::fprintf(stderr, "%s: cannot read the model '%s': %s\n", program, model.c_str(), std::strerror(refused));
    return false;
}

// Makes the output folder and its parents where they are missing.
bool makeFolder(const std::string& directory) {
    std::error_code error;
    std::filesystem::create_directories(directory, error);
    if (!error && std::filesystem::is_directory(directory, error)) return true;
    // A file in the way of the folder itself is told as the system tells one in the way of a parent.
    if (!error || error == std::errc::file_exists) error = std::make_error_code(std::errc::not_a_directory);
    std::string reason = error.message();
    std::fprintf(stderr, "%s: cannot make the output folder '%s': %s\n", program, directory.c_str(), reason.c_str());
    return false;
}

// What an update did to one file, on standard error: everything but files created, replaced or
// left as they were, which the paths on standard output tell.
void tellOutcome(const std::string& directory, const FileUpdate& file) {
    std::string path = directory + file.file;
    if (!file.renamedFrom.empty())
        std::fprintf(stderr, "%s: %s: renamed from %s with its class\n", program, path.c_str(), file.renamedFrom.c_str());
    for (const std::string& member : file.orphaned)
        std::fprintf(stderr, "%s: %s: '%s' is no longer in the model; what you wrote is kept commented out at the end of the class\n",
                     program, path.c_str(), member.c_str());
    for (const std::string& member : file.restored)
        std::fprintf(stderr, "%s: %s: '%s' is back in the model, with what you wrote\n", program, path.c_str(), member.c_str());
    for (const UpdateConflict& conflict : file.conflicts)
        std::fprintf(stderr, "%s:%d: conflict in '%s': the model and your text changed the same lines\n", path.c_str(),
                     conflict.line, conflict.member.c_str());
    switch (file.outcome) {
    case FileOutcome::merged:
        std::fprintf(stderr, "%s: %s: the model's changes merged into yours\n", program, path.c_str());
        break;
    case FileOutcome::conflict:
    case FileOutcome::foreign:
    case FileOutcome::stale:
    case FileOutcome::failed:
        std::fprintf(stderr, "%s: %s: %s\n", program, path.c_str(), file.message.c_str());
        break;
    case FileOutcome::pruned:
        std::fprintf(stderr, "%s: %s: removed, its class is gone from the model\n", program, path.c_str());
        break;
    default:
        break;
    }
}

// Brings the folder up to date with the chosen classes, one file each or all in one, and prints
// the path of each file written; or, asked to write nothing, tells what would change. False
// when the update failed or, for --check, something would change.
bool update(XMLImporter& importer, const Options& options, const _eSeq<_eString>& classes, bool everyClass) {
    UpdateReport report = importer.updateFolder(toText(options.directory), everyClass ? _eSeq<_eString>() : classes,
                                                toText(options.single), options.update);
    if (!report.error.empty()) {
        std::fprintf(stderr, "%s: %s\n", program, report.error.c_str());
        return false;
    }
    bool changes = !report.ok;  // for --check: a file in conflict or in the way counts as one to change
    for (const FileUpdate& file : report.files) {
        std::string path = options.directory + file.file;
        changes = changes || file.changes;
        if (options.update.diff) {
            std::printf("%s", file.diff.c_str());
        } else if (options.dryRun) {
            std::printf("%s %s%s\n", outcomeName(file.outcome), path.c_str(),
                        file.renamedFrom.empty() ? "" : (" (renamed from " + file.renamedFrom + ")").c_str());
        } else if (options.check) {
            if (file.changes || file.outcome == FileOutcome::conflict || file.outcome == FileOutcome::foreign)
                std::printf("%s\n", path.c_str());
        } else if (file.changes && file.outcome != FileOutcome::pruned) {
            std::printf("%s\n", path.c_str());
        }
        if (!options.check) tellOutcome(options.directory, file);
    }
    if (!options.quiet && options.update.write) {
        // "out/: 1 merged, 2 unchanged", the outcomes in their order.
        std::map<FileOutcome, int> counts;
        for (const FileUpdate& file : report.files) ++counts[file.outcome];
        std::string summary;
        for (const auto& [outcome, count] : counts)
            summary += (summary.empty() ? "" : ", ") + std::to_string(count) + " " + outcomeName(outcome);
        std::fprintf(stderr, "%s: %s: %s\n", program, options.directory.c_str(), summary.c_str());
    }
    return options.check ? !changes : report.ok;
}

// The paths of the files a run writes, for build systems.
void listOutputs(XMLImporter& importer, const Options& options, const _eSeq<_eString>& classes) {
    _eString directory = toText(options.directory);
    if (!options.single.empty()) {
        std::printf("%s\n", toUtf8(importer.outputFilePath(directory, toText(options.single))).c_str());
        return;
    }
    for (int i = 0; i < classes.size(); ++i)
        std::printf("%s\n", toUtf8(importer.outputFilePath(directory, classes.at(i))).c_str());
}

}  // namespace

int run(const Options& options, XMLImporter& importer, const _eHndl<Environment>& environment);

int main(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--help") == 0) {
            std::printf("%s", usage.c_str());
            return 0;
        }
        if (std::strcmp(argv[i], "--version") == 0) {
            printVersion();
            return 0;
        }
    }
    Options options;
    if (!readOptions(argc, argv, options)) return 2;

    _eHndl<Environment> environment(new Environment());
    auto* importer = new XMLImporter(environment.get());
    int status = run(options, *importer, environment);
    // The process ends here: the system takes its memory back in one go, which costs far less
    // than taking the model's tree apart node by node. Builds that look for leaks take it apart.
#ifdef MODELBRIDGE_LEAK_CHECKED
    delete importer;
    return status;
#else
    std::fflush(nullptr);
    std::_Exit(status);
#endif
}

// Everything after the options: parse, report, then list, generate or update.
int run(const Options& options, XMLImporter& importer, const _eHndl<Environment>& environment) {
    _eString refusal;
    if (options.layoutChosen &&
        !importer.setImportOptions(options.lineWidth, toText(options.indent), toText(options.filePrefix), &refusal)) {
        std::fprintf(stderr, "%s: %s\n", program, toUtf8(refusal).c_str());
        return 2;
    }
    importer.chooseExtensions(options.extensions);
    ProgressDisplay display;
    if (options.progress && isatty(STDERR_FILENO)) importer.reportProgress(&ProgressDisplay::show, &display);

    if (!modelReadable(options.model)) return 1;
    bool parsed = false;
    importer.attemptParse(toText(options.model), L"", parsed);
    std::string report = toUtf8(importer.getParseDiagnostics());
    if (!options.quiet && !report.empty())
        std::fprintf(stderr, "%s%s", report.c_str(), report.back() == '\n' ? "" : "\n");
    printLines(importer.getErrorList(true), stderr);
    if (!parsed) return 1;
    if (!options.quiet) printLines(importer.getLeftOutReport(options.verbose), stderr);

    _eSeq<_eString> all = importer.getClassList();
    if (all.isEmpty()) explainNoClass(options, environment.get());
    if (options.list) {
        printLines(all, stdout);
        return 0;
    }
    bool allFound = true;
    _eSeq<_eString> classes = chosenClasses(options, all, allFound);
    if (classes.isEmpty()) {
        std::fprintf(stderr, "%s: nothing to generate\n", program);
        return 1;
    }
    if (options.listOutputs) {
        listOutputs(importer, options, classes);
        return allFound ? 0 : 1;
    }
    if (options.update.write && !makeFolder(options.directory)) return 1;
    bool updated = update(importer, options, classes, options.classes.empty());
    return updated && allFound ? 0 : 1;
}
