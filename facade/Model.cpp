// The standard-typed facade over one importer of its own. Every call takes the library's one
// lock: the pool, the handle counts and the caches are process-wide and unlocked, so one
// thread at a time may be inside the library.
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>
#include <new>

#include "Generated/XMLError.h"
#include "Generated/XMLImporter.h"
#include "environment/PlatformText.h"
#include "facade/LibraryLock.h"
#include "modelbridge/modelbridge.hpp"

namespace modelbridge {

namespace {

Severity severityOf(ErrorSeverity::_eEnum severity) {
    switch (severity) {
        case ErrorSeverity::inform: return Severity::information;
        case ErrorSeverity::warning: return Severity::warning;
        case ErrorSeverity::serious: return Severity::error;
        case ErrorSeverity::fatal: break;
    }
    return Severity::fatal;
}

// Why the system refuses to open `path` for reading or writing, in its own words; empty when
// nothing refuses it now.
std::string systemReason(const std::string& path, bool writing) {
    struct stat info {};
    if (::stat(path.c_str(), &info) == 0) {
        if (S_ISDIR(info.st_mode)) return std::strerror(EISDIR);
        return ::access(path.c_str(), writing ? W_OK : R_OK) == 0 ? "" : std::strerror(errno);
    }
    if (!writing || errno != ENOENT) return std::strerror(errno);
    std::string::size_type slash = path.rfind('/');
    std::string folder = slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
    if (::stat(folder.c_str(), &info) != 0) return std::strerror(errno);
    if (!S_ISDIR(info.st_mode)) return std::strerror(ENOTDIR);
    return ::access(folder.c_str(), W_OK) == 0 ? "" : std::strerror(errno);
}

// The system's reason for an error about a file that could not be opened or measured; empty
// for any other error.
std::string systemReasonOf(const XMLError& error) {
    const _eSeq<_eString>& arguments = error.getArguments();
    if (arguments.isEmpty()) return {};
    std::string path = toPlatformText(arguments.at(0));
    if (error.getKind() == XMLErrorType::fileOpen)
        return systemReason(path, arguments.size() > 1 && toPlatformText(arguments.at(1)) == "write");
    return error.getKind() == XMLErrorType::fileTell ? systemReason(path, false) : std::string();
}

Diagnostic diagnosticOf(const XMLError& error) {
    Diagnostic diagnostic;
    diagnostic.severity = severityOf(error.severity());
    const Location& at = *error.getLocation();
    if (!at.getFile().isNull()) diagnostic.file = toPlatformText(at.getFile()->fullPathText());
    diagnostic.line = at.getLine();
    diagnostic.column = at.getColumn();
    std::string message =
        toPlatformText(error.fillTemplate(XMLError::messageTable().get(error.getKind())->getMessageTemplate()) + L".");
    // "Unable to open file 'out/A.tv' for 'write' access: Permission denied."
    std::string reason = systemReasonOf(error);
    diagnostic.message = reason.empty() ? message : message.substr(0, message.size() - 1) + ": " + reason + ".";
    diagnostic.text = toPlatformText(error.text(true));
    // A diagnostic without a file opens with its severity, not with a stand-in for the file.
    static const std::string noFile = "<no file>: ";
    if (at.getFile().isNull() && diagnostic.text.compare(0, noFile.size(), noFile) == 0)
        diagnostic.text.erase(0, noFile.size());
    if (diagnostic.message != message) {
        std::string::size_type place = diagnostic.text.rfind(message);
        if (place != std::string::npos) diagnostic.text.replace(place, message.size(), diagnostic.message);
    }
    return diagnostic;
}

std::vector<Diagnostic> diagnosticsOf(const XMLErrors& errors) {
    std::vector<Diagnostic> list;
    for (int i = 0, n = errors.size(); i < n; ++i) list.push_back(diagnosticOf(*errors.at(i)));
    return list;
}

// A diagnostic of the facade itself: no position, the message is the whole text.
Diagnostic plain(const std::string& message) {
    Diagnostic diagnostic;
    diagnostic.message = message;
    diagnostic.text = message;
    return diagnostic;
}

Result refused(const std::vector<std::string>& messages) {
    Result result;
    for (const std::string& message : messages) result.diagnostics.push_back(plain(message));
    return result;
}

// The seconds of SOURCE_DATE_EPOCH, when it is set to a whole number of them.
bool sourceDateEpoch(std::int64_t& seconds) {
    const char* text = std::getenv("SOURCE_DATE_EPOCH");
    if (text == nullptr || *text < '0' || *text > '9') return false;
    char* end = nullptr;
    seconds = std::strtoll(text, &end, 10);
    return *end == '\0';
}

// The importer's extensions that the options choose.
ImportExtensions extensionsOf(const Options& options) {
    ImportExtensions extensions = options.extensions;
    extensions.xmi2 = extensions.xmi2 || options.xmi2;
    extensions.anywhere = extensions.anywhere || options.anywhere;
    std::int64_t seconds = 0;
    if (options.reproducible && sourceDateEpoch(seconds)) {
        extensions.useFixedTime = true;
        extensions.fixedTime = seconds;
    }
    return extensions;
}

// A directory as the importer takes it: with its separator, "." when empty.
_eString directoryText(const std::filesystem::path& directory) {
    std::string text = directory.empty() ? "." : directory.string();
    if (text.back() != '/') text += '/';
    return fromPlatformText(text);
}

const char* const internalFailure = "the library met a state it cannot be in; the model is not usable";

}  // namespace

struct Model::Impl {
    _eHndl<Environment> environment{new Environment()};
    XMLImporter importer{environment.get()};
    bool parsed = false;
    std::vector<std::string> classes;
    std::map<std::string, _eString, std::less<>> names;  // each of `classes` to the model's own text
    std::vector<Diagnostic> diagnostics;
    std::string report;

    // The model's text of a listed class name; null when the model has no such class.
    const _eString* find(std::string_view name) const {
        auto found = names.find(name);
        return found == names.end() ? nullptr : &found->second;
    }
    void parse(const std::filesystem::path& file, const Options& options);
    // Runs one generation and gives its own outcome.
    template <class Generate>
    Result generate(Generate run);
};

void Model::Impl::parse(const std::filesystem::path& file, const Options& options) {
    Options defaults;
    if (options.lineWidth != defaults.lineWidth || options.indent != defaults.indent ||
        options.filePrefix != defaults.filePrefix) {
        _eString refusal;
        if (!importer.setImportOptions(options.lineWidth, fromPlatformText(options.indent),
                                       fromPlatformText(options.filePrefix), &refusal)) {
            diagnostics.push_back(plain(toPlatformText(refusal)));
            return;
        }
    }
    importer.chooseExtensions(extensionsOf(options));
    importer.attemptParse(fromPlatformText(file.string()), L"", parsed);
    report = toPlatformText(importer.getParseDiagnostics());
    diagnostics = diagnosticsOf(importer.errors());
    _eSeq<_eString> leftOut = importer.getLeftOutReport(true);
    for (int i = 0; i < leftOut.size(); ++i) {
        diagnostics.push_back(plain(toPlatformText(leftOut.at(i))));
        diagnostics.back().severity = Severity::information;
    }
    _eSeq<_eString> list = importer.getClassList();
    for (int i = 0; i < list.size(); ++i) {
        classes.push_back(toPlatformText(list.at(i)));
        names.emplace(classes.back(), list.at(i));
    }
}

template <class Generate>
Result Model::Impl::generate(Generate run) {
    Result result;
    try {
        bool everySoFar = false;
        run(everySoFar);
        result.ok = importer.lastCallErrors().isEmpty();
        result.diagnostics = diagnosticsOf(importer.lastCallErrors());
    } catch (const std::bad_alloc&) {
        throw;
    } catch (...) {
        return refused({internalFailure});
    }
    return result;
}

Model Model::parse(const std::filesystem::path& file, const Options& options) {
    std::lock_guard<std::recursive_mutex> lock(libraryLock());
    // The last copy of a model lets its importer go under the lock too.
    std::shared_ptr<Impl> impl(new Impl(), [](Impl* gone) {
        std::lock_guard<std::recursive_mutex> lock(libraryLock());
        delete gone;
    });
    try {
        impl->parse(file, options);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (...) {
        impl->parsed = false;
        impl->diagnostics.push_back(plain(internalFailure));
    }
    return Model(impl);
}

bool Model::ok() const { return impl->parsed; }

const std::vector<std::string>& Model::classes() const { return impl->classes; }

const std::vector<Diagnostic>& Model::diagnostics() const { return impl->diagnostics; }

std::string Model::report() const { return impl->report; }

Result Model::writeClass(std::string_view name, const std::filesystem::path& directory) {
    std::lock_guard<std::recursive_mutex> lock(libraryLock());
    const _eString* className = impl->find(name);
    if (className == nullptr) return refused({"the model has no class '" + std::string(name) + "'"});
    return impl->generate([&](bool& ok) { impl->importer.generateClassFile(directoryText(directory), *className, ok); });
}

Result Model::writeClasses(const std::vector<std::string>& names, const std::filesystem::path& file) {
    std::lock_guard<std::recursive_mutex> lock(libraryLock());
    std::vector<std::string> unknown;
    _eSet<_eString> chosen;
    for (const std::string& name : names) {
        if (const _eString* className = impl->find(name))
            chosen.add(*className);
        else
            unknown.push_back("the model has no class '" + name + "'");
    }
    if (!unknown.empty()) return refused(unknown);
    if (names.empty())
        for (const auto& [listed, className] : impl->names) chosen.add(className);
    if (!file.has_filename()) return refused({"'" + file.string() + "' names no file"});
    return impl->generate([&](bool& ok) {
        impl->importer.generateSingleFile(directoryText(file.parent_path()), fromPlatformText(file.filename().string()),
                                          chosen, ok);
    });
}

std::string Model::renderClass(std::string_view name) {
    std::lock_guard<std::recursive_mutex> lock(libraryLock());
    const _eString* className = impl->find(name);
    if (className == nullptr) return {};
    try {
        return impl->importer.renderClassFile(directoryText("."), *className);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (...) {
        return {};
    }
}

UpdateReport Model::update(const std::filesystem::path& directory, const UpdateOptions& options,
                          const std::vector<std::string>& names) {
    std::lock_guard<std::recursive_mutex> lock(libraryLock());
    UpdateReport report;
    _eSeq<_eString> chosen;
    for (const std::string& name : names) {
        const _eString* className = impl->find(name);
        if (className == nullptr) {
            report.error += (report.error.empty() ? "" : "; ") + std::string("the model has no class '") + name + "'";
            continue;
        }
        chosen.pushBack(*className);
    }
    if (!report.error.empty()) return report;
    std::error_code error;
    if (options.write && !directory.empty() && !std::filesystem::is_directory(directory, error) &&
        !std::filesystem::create_directories(directory, error)) {
        report.error = "cannot make the folder '" + directory.string() + "': " + error.message();
        return report;
    }
    try {
        return impl->importer.updateFolder(directoryText(directory), chosen, L"", options);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (...) {
        report.error = internalFailure;
        return report;
    }
}

}  // namespace modelbridge
