#include "xmi/TypeLibraries.h"

#include <cctype>
#include <filesystem>

#include "Generated/XMLParser.h"
#include "environment/PlatformText.h"
#include "runtime/StringUtils.h"
#include "xmi/XmiHelpers.h"
#include "xml/XMLDocument.h"
#include "xml/XMLLex.h"

namespace fs = std::filesystem;

namespace {

bool startsWith(const std::string& text, const std::string& prefix) { return text.compare(0, prefix.size(), prefix) == 0; }

bool isFile(const fs::path& path) {
    std::error_code error;
    return fs::is_regular_file(path, error);
}

// An href's fragment as a name: Ecore's "//EString" is "EString".
std::string fragmentName(const std::string& fragment) {
    std::size_t slash = fragment.find_last_of('/');
    return slash == std::string::npos ? fragment : fragment.substr(slash + 1);
}

bool isNameLike(const std::string& text) {
    if (text.empty() || text[0] == '_' || text[0] == '@') return false;
    for (char c : text)
        if (!std::isalnum(static_cast<unsigned char>(c))) return false;
    return true;
}

}  // namespace

std::optional<_eString> TypeLibraries::wellKnown(const std::string& file, const std::string& fragment) {
    static const char* const libraries[] = {
        "pathmap://UML_LIBRARIES/",       "http://www.eclipse.org/emf/2002/Ecore",
        "http://www.w3.org/2001/XMLSchema", "http://www.omg.org/spec/UML/",
        "http://schema.omg.org/spec/UML/", "http://www.omg.org/spec/PrimitiveTypes",
    };
    std::string name = fragmentName(fragment);
    if (!isNameLike(name)) return std::nullopt;
    for (const char* library : libraries)
        if (startsWith(file, library)) return fromPlatformText(name);
    return std::nullopt;
}

std::optional<_eString> TypeLibraries::wellKnownId(const _eString& id) {
    std::string text = toPlatformText(id);
    if (!startsWith(text, "EA") || startsWith(text, "EAID_")) return std::nullopt;
    std::size_t underscore = text.find('_');
    if (underscore == std::string::npos) return std::nullopt;
    std::string name = text.substr(underscore + 1);
    if (!isNameLike(name)) return std::nullopt;
    return fromPlatformText(name);
}

// A relative reference against the model's folder; "platform:/resource/PROJECT/PATH" against
// the nearest folder above the model that holds PROJECT; any other by its file name in the
// folders the host names.
std::string TypeLibraries::locate(const std::string& file) const {
    fs::path model = fs::path(source.modelPath).parent_path();
    const std::string platform = "platform:/resource/";
    if (startsWith(file, platform)) {
        fs::path inProject = file.substr(platform.size());
        for (fs::path folder = fs::absolute(model); !folder.empty(); folder = folder.parent_path()) {
            if (isFile(folder / inProject)) return (folder / inProject).string();
            if (folder == folder.parent_path()) break;
        }
    } else if (file.find("://") == std::string::npos && !file.empty()) {
        if (isFile(model / file)) return (model / file).string();
    }
    std::string name = fs::path(file).filename().string();
    for (const std::string& folder : source.libraryFolders)
        if (!name.empty() && isFile(fs::path(folder) / name)) return (fs::path(folder) / name).string();
    return {};
}

const std::map<std::wstring, _eString>* TypeLibraries::namesIn(const std::string& path) const {
    auto known = files.find(path);
    if (known != files.end()) return known->second.get();
    std::unique_ptr<std::map<std::wstring, _eString>>& names = files[path];
    if (source.environment.isNull()) return nullptr;
    _eHndl<XMLLex> lexer(new XMLLex(source.environment.get(), 4));
    bool opened = false;
    lexer->openFile(_eHndl<FileName>(new FileName(fromPlatformText(path), source.environment.get())), opened);
    if (!opened) return nullptr;
    if (source.extensions.decodeEncodings) lexer->readAsUtf8();
    _eHndl<XMLParser> parser(new XMLParser(ParseControl::shared(), 0));
    parser->chooseExtensions(source.extensions);
    parser->parseAll(*lexer);
    lexer->closeFile();
    const auto* document = dynamic_cast<const XMLDocument*>(parser->getResult().get());
    if (document == nullptr) return nullptr;
    names = std::make_unique<std::map<std::wstring, _eString>>();
    walkTree(
        *document->getRoot(),
        [&](const XMLElement& element) {
            for (const wchar_t* key : {L"xmi:id", L"xmi.id"})
                if (element.hasAttribute(key) && element.hasAttribute(L"name"))
                    names->emplace(toWString(element.attributeText(key, Context::shared())),
                                   element.attributeText(L"name", Context::shared()));
            return WalkChildren(*element.getContent());
        },
        [](const XMLElement&) {});
    return names.get();
}

std::optional<_eString> TypeLibraries::typeName(const _eString& href, std::string& where) const {
    std::string text = toPlatformText(href);
    std::size_t hash = text.find('#');
    std::string file = text.substr(0, hash);
    std::string fragment = hash == std::string::npos ? std::string() : text.substr(hash + 1);
    where = file;
    if (!file.empty()) ++sought;
    std::string path = locate(file);
    if (!path.empty())
        if (const auto* names = namesIn(path)) {
            auto found = names->find(toWString(fromPlatformText(fragment)));
            if (found != names->end()) return found->second;
        }
    return wellKnown(file, fragment);
}
