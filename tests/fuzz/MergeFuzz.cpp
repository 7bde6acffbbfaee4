// A folder update from any record, any user's file and any model: the input is the three,
// separated by lines "=====". Nothing may crash or hang, and nothing may be written outside the
// output folder, whatever names the record or the model give.
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <set>

#include "FuzzInput.h"
#include "Generated/XMLImporter.h"
#include "environment/PlatformText.h"

namespace {

void writeText(const std::filesystem::path& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

// The file name the record gives first, where the user's text goes.
std::string firstFile(const std::string& record) {
    std::size_t at = record.find("\nfile ");
    if (at == std::string::npos) return "A.tv";
    std::size_t end = record.find('\n', at + 1);
    std::string name = record.substr(at + 6, end == std::string::npos ? std::string::npos : end - at - 6);
    return name.empty() || name.find('/') != std::string::npos || name == "." || name == ".." ? "A.tv" : name;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static _eHndl<Environment> environment(new Environment());
    namespace fs = std::filesystem;
    std::string input(reinterpret_cast<const char*>(data), size), parts[3];
    const std::string separator = "\n=====\n";
    for (int part = 0, from = 0; part < 3; ++part) {
        std::size_t end = part < 2 ? input.find(separator, std::size_t(from)) : std::string::npos;
        parts[part] = input.substr(std::size_t(from), end == std::string::npos ? std::string::npos : end - std::size_t(from));
        from = end == std::string::npos ? int(input.size()) : int(end + separator.size());
    }
    fs::path root = fuzzDirectory() + "/merge", out = root / "out";
    fs::remove_all(root);
    fs::create_directories(out / ".modelbridge");
    writeText(out / ".modelbridge/record", parts[0]);
    writeText(out / firstFile(parts[0]), parts[1]);
    writeText(root / "model.xmi", parts[2]);
    writeText(root / "outside", "untouched");

    XMLImporter importer(environment.get());
    ImportExtensions extensions = everyExtension();
    extensions.useFixedTime = true;
    importer.chooseExtensions(extensions);
    bool parsed = false;
    importer.attemptParse(fromPlatformText((root / "model.xmi").string()), _eString(), parsed);
    if (parsed) {
        UpdateOptions options;
        unsigned choice = size > 0 ? data[size - 1] : 0;
        options.overwrite = choice & 1, options.prune = choice & 2, options.conflictMarkers = choice & 4;
        options.diff = choice & 8;
        importer.updateFolder(fromPlatformText(out.string() + "/"), {}, L"", options);
    }
    // Beside the output folder, only what was there before.
    for (const auto& entry : fs::directory_iterator(fuzzDirectory()))
        if (entry.path().filename() != "merge") std::abort();
    std::set<std::string> beside;
    for (const auto& entry : fs::directory_iterator(root)) beside.insert(entry.path().filename().string());
    std::ifstream outside(root / "outside");
    std::string kept((std::istreambuf_iterator<char>(outside)), std::istreambuf_iterator<char>());
    if (beside != std::set<std::string>{"model.xmi", "out", "outside"} || kept != "untouched") std::abort();
    return 0;
}
