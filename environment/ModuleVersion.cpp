// The library's version record, and the lookup of any loaded module's record.
#include <dlfcn.h>
#include <link.h>

#include <array>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include "environment/Environment.h"
#include "environment/PlatformText.h"

// The four numbers of the project version, given by the build. Any module that exports a
// record of this name has a version that `moduleVersion` can read.
extern "C" MB_API const std::uint16_t ModelBridgeVersionRecord[4] = {
    MODELBRIDGE_VERSION_0, MODELBRIDGE_VERSION_1, MODELBRIDGE_VERSION_2, MODELBRIDGE_VERSION_3};

namespace {

bool endsWith(const std::string& text, const std::string& tail) {
    return text.size() >= tail.size() && text.compare(text.size() - tail.size(), tail.size(), tail) == 0;
}

// True if a loaded file is the module of that name: the name itself, with or without a version
// behind it, or "X.dll" standing for "libX.so" in the same way.
bool designates(const std::string& file, const std::string& module) {
    std::string base = file.substr(file.rfind('/') + 1);
    if (base == module || base.rfind(module + ".", 0) == 0) return true;
    std::string stem = module;
    if (endsWith(stem, ".dll") || endsWith(stem, ".DLL")) stem.resize(stem.size() - 4);
    std::string shared = "lib" + stem + ".so";
    return base == shared || base.rfind(shared + ".", 0) == 0;
}

struct Search {
    std::string module;  // the name asked for
    std::string path;    // the file of the module found
};

int visit(dl_phdr_info* info, std::size_t, void* data) {
    auto* search = static_cast<Search*>(data);
    if (info->dlpi_name == nullptr || info->dlpi_name[0] == '\0') return 0;
    if (!designates(info->dlpi_name, search->module)) return 0;
    search->path = info->dlpi_name;
    return 1;
}

// The file of the module this code was loaded from, found once: empty where it can't be told.
const std::string& ownModuleFile() {
    static const std::string file = [] {
        Dl_info info{};
        if (dladdr(ModelBridgeVersionRecord, &info) == 0 || info.dli_fname == nullptr) return std::string();
        return std::string(info.dli_fname);
    }();
    return file;
}

using Version = std::array<int, 4>;

// How many times modules were loaded and unloaded so far: while neither count moves, the same
// modules are loaded.
std::pair<unsigned long long, unsigned long long> loadCounts() {
    std::pair<unsigned long long, unsigned long long> counts{0, 0};
    dl_iterate_phdr(
        [](dl_phdr_info* info, std::size_t, void* data) {
            *static_cast<std::pair<unsigned long long, unsigned long long>*>(data) = {info->dlpi_adds, info->dlpi_subs};
            return 1;
        },
        &counts);
    return counts;
}

// The version record of the module of that name among those loaded; zeros where none is.
Version searchLoaded(const std::string& name) {
    Version version{0, 0, 0, 0};
    Search search{name, {}};
    // Asked for the library itself, as every generated header does: its own record answers.
    if (!ownModuleFile().empty() && designates(ownModuleFile(), search.module)) {
        const std::uint16_t* record = ModelBridgeVersionRecord;
        return {record[0], record[1], record[2], record[3]};
    }
    if (dl_iterate_phdr(visit, &search) == 0) return version;
    void* module = dlopen(search.path.c_str(), RTLD_LAZY | RTLD_NOLOAD);
    if (module == nullptr) return version;
    const auto* record = static_cast<const std::uint16_t*>(dlsym(module, "ModelBridgeVersionRecord"));
    if (record != nullptr) version = {record[0], record[1], record[2], record[3]};
    dlclose(module);
    return version;
}

}  // namespace

// Every generated file asks, always for the same module: the last answer stands while no
// module has been loaded or unloaded since.
_eSeq<int> Environment::moduleVersion(const _eString& moduleName) const {
    struct Answer {
        std::string module;
        std::pair<unsigned long long, unsigned long long> counts;
        Version version;
    };
    static std::mutex guard;
    static std::optional<Answer> last;
    std::string name = toPlatformText(moduleName);
    if (name.empty()) return _eSeq<int>{0, 0, 0, 0};
    std::lock_guard<std::mutex> lock(guard);
    std::pair<unsigned long long, unsigned long long> counts = loadCounts();
    if (!last || last->module != name || last->counts != counts) last = Answer{name, counts, searchLoaded(name)};
    const Version& v = last->version;
    return _eSeq<int>{v[0], v[1], v[2], v[3]};
}
