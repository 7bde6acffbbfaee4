// Everything a host can see of the library for a fixed set of inputs, written as a record of
// digests: the parse outcome, diagnostics, error lists and counts, the class list, every file
// generated one class at a time and all classes in one file. Only the exported interface is
// used, so the record holds exactly what hosts observe. `tools/observe` writes the record; a
// host test builds it again and compares the two byte for byte.
//
// Three things in the texts depend on the run rather than on the library and are masked: the
// work directory (written "$DIR"), the time of generation, and the whole seconds a parse took.
#pragma once

#include <algorithm>
#include <cstdio>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "../bench/XmiGenerator.h"
#include "../bench/XmiProseGenerator.h"
#include "Generated/XMLImporter.h"
#include "runtime/Failure.h"

namespace observer {

struct Input {
    std::string name;   // stable over runs: the record is keyed by it
    std::string bytes;
};

// The observations of one input: key to text, in the order they were made.
using Observations = std::vector<std::pair<std::string, std::wstring>>;

// splitmix64: the same numbers on every platform, unlike the standard distributions.
class Random {
public:
    explicit Random(std::uint64_t seed) : state(seed) {}
    std::uint64_t next() {
        std::uint64_t z = (state += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return z ^ (z >> 31);
    }
    std::size_t below(std::size_t n) { return n == 0 ? 0 : std::size_t(next() % n); }

private:
    std::uint64_t state;
};

inline std::string readFile(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// FNV-1a over the 32-bit units: a change of one unit anywhere changes the digest.
inline std::uint64_t digest(const std::wstring& text) {
    std::uint64_t h = 0xCBF29CE484222325ull;
    for (wchar_t w : text) {
        auto unit = std::uint32_t(w);
        for (int b = 0; b < 4; ++b) {
            h ^= (unit >> (8 * b)) & 0xFF;
            h *= 0x100000001B3ull;
        }
    }
    return h;
}

inline std::wstring widen(const std::string& bytes) {
    std::wstring out;
    for (char c : bytes) out.push_back(wchar_t(static_cast<unsigned char>(c)));
    return out;
}

inline void replaceAll(std::wstring& text, const std::wstring& from, const std::wstring& to) {
    if (from.empty()) return;
    for (std::size_t at = text.find(from); at != std::wstring::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
}

// The text with the run's own parts masked.
inline std::wstring masked(std::wstring text, const std::wstring& workDir) {
    replaceAll(text, workDir, L"$DIR");
    const std::wstring timeLead = L"//* File generated at ";
    for (std::size_t at = text.find(timeLead); at != std::wstring::npos; at = text.find(timeLead, at + 1)) {
        std::size_t end = text.find(L'\n', at);
        text.replace(at + timeLead.size(), end - at - timeLead.size(), L"<time>");
    }
    const std::wstring secondsLead = L"' in ";
    for (std::size_t at = text.find(secondsLead); at != std::wstring::npos; at = text.find(secondsLead, at + 1)) {
        std::size_t from = at + secondsLead.size();
        std::size_t to = from;
        while (to < text.size() && text[to] >= L'0' && text[to] <= L'9') ++to;
        if (to > from && text.compare(to, 8, L" seconds") == 0) text.replace(from, to - from, L"<n>");
    }
    return text;
}

inline std::wstring joined(const _eSeq<_eString>& lines) {
    std::wstring out;
    for (int i = 0; i < lines.size(); ++i) out += toWString(lines.at(i)) + L"\n";
    return out;
}

// Runs a call of the library, turning a raised failure into its text.
inline std::wstring guarded(const std::function<std::wstring()>& call) {
    try {
        return call();
    } catch (const _xCeption& failure) {
        wchar_t buffer[512];
        wchar_t* pos = buffer;
        unsigned remaining = 511;
        failure.writeSummary(pos, remaining);
        failure.writeDetail(pos, remaining);
        return L"raised: " + std::wstring(buffer);
    }
}

// Parses the input from `workDir`/model.xmi and generates what it offers into `workDir`/out/.
inline Observations observe(const Input& input, const std::filesystem::path& workDir) {
    namespace fs = std::filesystem;
    Observations seen;
    std::wstring dir = widen(workDir.string());
    auto note = [&](const std::string& key, const std::wstring& text) { seen.push_back({key, masked(text, dir)}); };
    fs::path model = workDir / "model.xmi";
    fs::path out = workDir / "out";
    fs::remove_all(out);
    fs::create_directories(out);
    std::ofstream(model, std::ios::binary) << input.bytes;
    _eString modelText = std::wstring_view(widen(model.string()));
    _eString outText = std::wstring_view(widen(out.string() + "/"));

    _eHndl<Environment> environment(new Environment());
    XMLImporter importer(environment.get());
    bool parsed = false;
    note("parse", guarded([&] {
             importer.attemptParse(modelText, L"", parsed);
             return std::wstring(parsed ? L"success\n" : L"failure\n") + toWString(importer.getParseDiagnostics());
         }));
    auto noteErrors = [&](const std::string& key) {
        note(key, guarded([&] {
                 return joined(importer.getErrorList(true)) + L"--\n" + joined(importer.getErrorList(false)) + L"--\n" +
                        std::to_wstring(importer.numErrors()) + L" " + std::to_wstring(importer.numWarnings()) + L"\n" +
                        toWString(importer.getMostSevereErrorMsg());
             }));
    };
    noteErrors("errors");
    _eSeq<_eString> classes;
    note("classes", guarded([&] {
             classes = importer.getClassList();
             return joined(classes);
         }));
    note("validity", guarded([&] { return std::to_wstring(int(importer.getValidityStatus(modelText))); }));
    if (!parsed) return seen;

    // A generated file's text, or the note that there is none.
    auto fileText = [&](const std::string& name) {
        fs::path path = out / (name + ".tv");
        return fs::exists(path) ? widen(readFile(path)) : std::wstring(L"<no file>");
    };
    for (int i = 0; i < classes.size(); ++i) {
        note("c" + std::to_string(i), guarded([&] {
                 bool generated = false;
                 importer.generateClassFile(outText, classes.at(i), generated);
                 std::wstring name = toWString(classes.at(i));
                 std::string file;
                 for (wchar_t w : name) file.push_back(char(w));  // the byte names of the corpus
                 return std::wstring(generated ? L"success\n" : L"failure\n") + fileText(file);
             }));
    }
    _eSet<_eString> all;
    for (int i = 0; i < classes.size(); ++i) all.add(classes.at(i));
    note("single", guarded([&] {
             bool generated = false;
             importer.generateSingleFile(outText, L"all-classes", all, generated);
             return std::wstring(generated ? L"success\n" : L"failure\n") + fileText("all-classes");
         }));
    noteErrors("errors-after");
    return seen;
}

// The entry of one observation: its key, the text's length and 48 bits of its digest.
inline std::string entryOf(const std::string& key, const std::wstring& text) {
    char hex[13];
    std::snprintf(hex, sizeof hex, "%012llx", static_cast<unsigned long long>(digest(text) >> 16));
    return key + "=" + std::to_string(text.size()) + ":" + hex;
}

// One line per input: its name, then the entries of its observations.
inline std::string recordOf(const std::string& inputName, const Observations& seen) {
    std::string line = inputName;
    for (const auto& [key, text] : seen) line += " " + entryOf(key, text);
    return line + "\n";
}

// Broken and altered versions of a well-formed model: truncated, with a byte inserted, dropped
// or replaced, with an end tag renamed or removed, with references and repeated attributes put
// in, and with attribute values swapped for ones that steer generation elsewhere.
inline std::vector<Input> variants(const std::string& baseName, const std::string& base, std::uint64_t seed) {
    Random random(seed);
    std::vector<Input> out;
    auto add = [&](const std::string& kind, std::size_t at, std::string bytes) {
        out.push_back({baseName + " " + kind + "@" + std::to_string(at), std::move(bytes)});
    };
    std::vector<std::size_t> endTags, attributeValues, textSpots, startTags;
    for (std::size_t i = 0; i + 1 < base.size(); ++i) {
        if (base[i] == '<' && base[i + 1] == '/') endTags.push_back(i);
        if (base[i] == '<' && base[i + 1] != '/' && base[i + 1] != '?' && base[i + 1] != '!') startTags.push_back(i);
        if (base[i] == '=' && (base[i + 1] == '"' || base[i + 1] == '\'')) attributeValues.push_back(i + 1);
        if (base[i] == '>' && base[i + 1] != '<') textSpots.push_back(i + 1);
    }
    auto pick = [&](const std::vector<std::size_t>& spots) { return spots.empty() ? 0 : spots[random.below(spots.size())]; };
    const std::string oddBytes[] = {"<", ">", "&", "\"", "'", std::string(1, '\0'), "\xFF", "]]>", "/", "\t", "\x01", "=", "<!--", "<?x?>"};
    const std::string references[] = {"&unknown;", "&#xZZ;", "&#1114112;", "&#0;", "&#65;", "&amp;", "&#x263A;", "&lt;", "&", "&#;"};
    const std::string values[] = {"public", "protected", "private", "true", "false", "frozen", "in", "out", "inout",
                                  "return", "classifier", "0", "1", "*", "2", "composite", "aggregate", "none", "",
                                  "class", "100L", "'a'", "+", "void", "boolean", " a b ", "x,y"};
    for (int i = 0; i < 24; ++i) {
        std::size_t at = (base.size() * std::size_t(i)) / 24 + random.below(base.size() / 24 + 1);
        add("truncated", at, base.substr(0, std::min(at, base.size())));
    }
    for (int i = 0; i < 24; ++i) {
        std::size_t at = random.below(base.size());
        add("inserted", at, base.substr(0, at) + oddBytes[random.below(std::size(oddBytes))] + base.substr(at));
    }
    for (int i = 0; i < 16; ++i) {
        std::size_t at = random.below(base.size());
        add("dropped", at, base.substr(0, at) + base.substr(at + 1));
    }
    for (int i = 0; i < 12; ++i) {
        std::size_t at = random.below(base.size());
        std::string bytes = base;
        bytes[at] = char(1 + random.below(8));
        add("control", at, bytes);
    }
    for (int i = 0; i < 12 && !endTags.empty(); ++i) {
        std::size_t at = pick(endTags);
        std::string bytes = base;
        bytes[at + 2 + random.below(3)] = 'Q';
        add("mismatched", at, bytes);
    }
    for (int i = 0; i < 8 && !endTags.empty(); ++i) {
        std::size_t at = pick(endTags);
        std::size_t end = base.find('>', at);
        add("unclosed", at, base.substr(0, at) + base.substr(end + 1));
    }
    for (int i = 0; i < 12 && !textSpots.empty(); ++i) {
        std::size_t at = pick(textSpots);
        add("reference", at, base.substr(0, at) + references[random.below(std::size(references))] + base.substr(at));
    }
    for (int i = 0; i < 6 && !startTags.empty(); ++i) {
        std::size_t at = pick(startTags);
        std::size_t nameEnd = base.find_first_of(" />", at);
        add("repeated", at, base.substr(0, nameEnd) + " name='x' name='y'" + base.substr(nameEnd));
    }
    for (int i = 0; i < 40 && !attributeValues.empty(); ++i) {
        std::size_t at = pick(attributeValues);
        char quote = base[at];
        std::size_t end = base.find(quote, at + 1);
        add("value", at, base.substr(0, at + 1) + values[random.below(std::size(values))] + base.substr(end));
    }
    return out;
}

// Every input of the record: the example and test models, the shared corpus, the seeds of the
// fuzz targets, synthetic models of three sizes and of two in the second shape, and the variants
// of five small models.
inline std::vector<Input> inputs(const std::filesystem::path& projectDir, const std::filesystem::path& sharedDir) {
    namespace fs = std::filesystem;
    std::vector<Input> all;
    auto addFiles = [&](const fs::path& dir, const std::string& label) {
        std::vector<fs::path> files;
        for (const auto& entry : fs::recursive_directory_iterator(dir)) {
            std::string extension = entry.path().extension().string();
            if (entry.is_regular_file() && (extension == ".xmi" || extension == ".uml" || extension == ".xml"))
                files.push_back(entry.path());
        }
        std::sort(files.begin(), files.end());
        for (const fs::path& file : files)
            all.push_back({label + "/" + fs::relative(file, dir).generic_string(), readFile(file)});
    };
    addFiles(projectDir / "examples/models", "examples");
    addFiles(projectDir / "tests/data", "tests");
    addFiles(projectDir / "tests/fuzz/seeds", "seeds");
    addFiles(sharedDir / "corpus", "corpus");
    for (std::size_t size : {20000u, 200000u, 1000000u})
        all.push_back({"synthetic " + std::to_string(size), XmiGenerator::model(size)});
    for (std::size_t size : {30000u, 300000u})
        all.push_back({"prose " + std::to_string(size), XmiProseGenerator::model(size)});
    std::uint64_t seed = 20261123;
    for (const char* base : {"examples/models/bank.xmi", "examples/models/ledger-long.xmi",
                             "tests/fuzz/seeds/small-model.xmi", "tests/fuzz/seeds/prolog.xml"}) {
        for (Input& variant : variants(base, readFile(projectDir / base), seed++)) all.push_back(std::move(variant));
    }
    for (Input& variant : variants("prose 8000", XmiProseGenerator::model(8000), seed++)) all.push_back(std::move(variant));
    return all;
}

// Runs every input in a directory of its own under `workRoot`, and hands the record line of
// each input to `sink` together with its observations.
inline void observeAll(const std::filesystem::path& projectDir, const std::filesystem::path& sharedDir,
                       const std::filesystem::path& workRoot,
                       const std::function<void(const Input&, const Observations&)>& sink) {
    std::filesystem::create_directories(workRoot);
    for (const Input& input : inputs(projectDir, sharedDir)) sink(input, observe(input, workRoot));
}

}  // namespace observer
