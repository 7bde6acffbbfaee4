// modelbridge-gen: reads an XMI model and writes Tarvane class declarations, one file per
// class or one file for a chosen set. A host of the library like any other: it uses the public
// headers and the exported interface only.
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <string>
#include <vector>

#include "Generated/XMLImporter.h"

namespace {

const char* const usage =
    "usage: modelbridge-gen MODEL [-o DIR] [--list] [--class NAME]... [--single FILE] [--anywhere] [--profile]\n"
    "\n"
    "Reads the UML model in MODEL (XMI 1.x, or a UML 2 model saved as XMI 2.x) and writes\n"
    "Tarvane class declarations.\n"
    "  -o DIR         write the files into DIR (default: the current directory)\n"
    "  --list         list the classes of the model and write nothing\n"
    "  --class NAME   generate this class; may be given more than once (default: every class)\n"
    "  --single FILE  write the chosen classes into one file FILE.tv instead of one file each\n"
    "  --anywhere     find classes wherever UML tools put them (nested models, packages,\n"
    "                 subsystems, classes, empty-element tags, unprefixed tags), not only on\n"
    "                 the one path XMI 1.x specifies (XMI 1.x only; XMI 2.x models are\n"
    "                 always searched throughout)\n"
    "  --profile      ask the library for a processor-time profile of the parse\n"
    "  --help         show this text\n"
    "Exits with 0 when the parse and every generation succeeded, 1 when one failed, 2 on bad usage.\n";

// Command-line text as the library's strings: the locale's multibyte form, else byte by byte.
_eString toText(const char* bytes) {
    std::vector<wchar_t> wide(std::strlen(bytes) + 1);
    std::size_t n = std::mbstowcs(wide.data(), bytes, wide.size());
    if (n == static_cast<std::size_t>(-1)) {
        std::wstring units;
        for (const char* p = bytes; *p != '\0'; ++p) units.push_back(wchar_t(static_cast<unsigned char>(*p)));
        return _eString(std::wstring_view(units));
    }
    return _eString(std::wstring_view(wide.data(), n));
}

// The library's strings as UTF-8 for the terminal.
std::string toUtf8(const _eString& text) {
    std::string out;
    std::wstring units = toWString(text);
    for (wchar_t w : units) {
        auto c = static_cast<std::uint32_t>(w);
        if (c < 0x80) {
            out.push_back(char(c));
        } else if (c < 0x800) {
            out.push_back(char(0xC0 | (c >> 6)));
            out.push_back(char(0x80 | (c & 0x3F)));
        } else {
            out.push_back(char(0xE0 | ((c >> 12) & 0x0F)));
            out.push_back(char(0x80 | ((c >> 6) & 0x3F)));
            out.push_back(char(0x80 | (c & 0x3F)));
        }
    }
    return out;
}

void printLines(const _eSeq<_eString>& lines, std::FILE* to) {
    for (int i = 0; i < lines.size(); ++i) std::fprintf(to, "%s\n", toUtf8(lines.at(i)).c_str());
}

struct Options {
    std::string model;
    std::string directory = ".";
    bool list = false;
    bool profile = false;
    bool anywhere = false;
    std::vector<std::string> classes;
    std::string single;
};

// Reads the arguments; false with a message on bad usage.
bool readOptions(int argc, char** argv, Options& options) {
    for (int i = 1; i < argc; ++i) {
        std::string arg = argv[i];
        auto value = [&](const char* option) -> const char* {
            if (i + 1 >= argc) {
                std::fprintf(stderr, "modelbridge-gen: %s needs a value\n", option);
                return nullptr;
            }
            return argv[++i];
        };
        if (arg == "-o") {
            const char* v = value("-o");
            if (v == nullptr) return false;
            options.directory = v;
        } else if (arg == "--class") {
            const char* v = value("--class");
            if (v == nullptr) return false;
            options.classes.push_back(v);
        } else if (arg == "--single") {
            const char* v = value("--single");
            if (v == nullptr) return false;
            options.single = v;
        } else if (arg == "--list") {
            options.list = true;
        } else if (arg == "--anywhere") {
            options.anywhere = true;
        } else if (arg == "--profile") {
            options.profile = true;
        } else if (!arg.empty() && arg[0] == '-') {
            std::fprintf(stderr, "modelbridge-gen: unknown option %s\n%s", arg.c_str(), usage);
            return false;
        } else if (options.model.empty()) {
            options.model = arg;
        } else {
            std::fprintf(stderr, "modelbridge-gen: one model only\n%s", usage);
            return false;
        }
    }
    if (options.model.empty()) {
        std::fprintf(stderr, "%s", usage);
        return false;
    }
    if (options.directory.back() != '/') options.directory += '/';
    return true;
}

// The classes that the search of `--anywhere` finds in the model.
int classesAnywhere(const Options& options, const Environment* environment) {
    XMLImporter importer(environment);
    importer.findClassesAnywhere(true);
    importer.readXmi2Models(true);
    bool parsed = false;
    importer.attemptParse(toText(options.model.c_str()), L"", parsed);
    return parsed ? importer.getClassList().size() : 0;
}

// Says why a model gives no class; false when the user asked for files that can't come.
bool explainNoClass(const Options& options, const Environment* environment) {
    int elsewhere = options.anywhere ? 0 : classesAnywhere(options, environment);
    if (elsewhere == 0) {
        std::fprintf(stderr, "modelbridge-gen: the model holds no class\n");
        return true;
    }
    std::fprintf(stderr,
                 "modelbridge-gen: no class stands on the path that XMI 1.x specifies, but %d stand elsewhere in "
                 "the model; --anywhere finds them\n",
                 elsewhere);
    return options.list;
}

}  // namespace

int main(int argc, char** argv) {
    std::setlocale(LC_CTYPE, "");
    for (int i = 1; i < argc; ++i)
        if (std::strcmp(argv[i], "--help") == 0) {
            std::printf("%s", usage);
            return 0;
        }
    Options options;
    if (!readOptions(argc, argv, options)) return 2;

    _eHndl<Environment> environment(new Environment());
    XMLImporter importer(environment.get());
    importer.findClassesAnywhere(options.anywhere);
    importer.readXmi2Models(true);
    bool parsed = false;
    importer.attemptParse(toText(options.model.c_str()), options.profile ? L"profile" : L"", parsed);
    std::printf("%s", toUtf8(importer.getParseDiagnostics()).c_str());
    if (!importer.getParseDiagnostics().isEmpty() && toWString(importer.getParseDiagnostics()).back() != L'\n')
        std::printf("\n");
    printLines(importer.getErrorList(true), stderr);
    if (!parsed) return 1;
    if (importer.getClassList().isEmpty() && !explainNoClass(options, environment.get())) return 1;

    _eSeq<_eString> classes;
    if (options.classes.empty())
        classes = importer.getClassList();
    else
        for (const std::string& name : options.classes) classes.pushBack(toText(name.c_str()));
    if (options.list) {
        printLines(importer.getClassList(), stdout);
        return 0;
    }

    _eString directory = toText(options.directory.c_str());
    bool allWritten = true;
    if (!options.single.empty()) {
        _eSet<_eString> chosen;
        for (int i = 0; i < classes.size(); ++i) chosen.add(classes.at(i));
        _eString file = toText(options.single.c_str());
        bool ok = false;
        importer.generateSingleFile(directory, file, chosen, ok);
        allWritten = ok;
        if (ok)
            std::printf("wrote %s\n",
                        toUtf8(XMLImporter::genFullFileNameString(directory, file, environment.get())).c_str());
    } else {
        for (int i = 0; i < classes.size(); ++i) {
            bool ok = false;
            importer.generateClassFile(directory, classes.at(i), ok);
            if (ok)
                std::printf("wrote %s\n",
                            toUtf8(XMLImporter::genFullFileNameString(directory, classes.at(i), environment.get())).c_str());
            allWritten = allWritten && ok;
        }
    }
    if (!allWritten) {
        printLines(importer.getErrorList(true), stderr);
        return 1;
    }
    return 0;
}
