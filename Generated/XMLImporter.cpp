#include "Generated/XMLImporter.h"

#include "Generated/ImporterState.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <future>
#include <optional>

#include "environment/DirectoryListings.h"
#include "environment/PlatformText.h"
#include "output/FolderUpdate.h"
#include "runtime/Failure.h"
#include "runtime/StringUtils.h"
#include "xmi/ModelReader.h"

XMLImporter::XMLImporter(const Environment* environment) : state(new State) {
    state->environment = environment;
    state->parseDiagnostics = L"<no parse attempted yet>";
}

XMLImporter::XMLImporter() : state(new State) {}

XMLImporter::XMLImporter(const XMLImporter& other) : state(new State(*other.state)) {}

XMLImporter& XMLImporter::operator=(const XMLImporter& other) {
    *state = *other.state;
    return *this;
}

XMLImporter::~XMLImporter() = default;

bool XMLImporter::operator==(const XMLImporter&) const { raiseCannotHappen(_xPlaces::importerEquality); }

// A host's value is read as far as its size reaches; the fields its header didn't have yet keep
// their defaults.
void XMLImporter::chooseExtensions(const ImportExtensions& extensions) {
    ImportExtensions chosen;
    std::size_t known = std::min<std::size_t>(extensions.size, sizeof(ImportExtensions));
    std::memcpy(static_cast<void*>(&chosen), &extensions, known);
    chosen.size = sizeof(ImportExtensions);
    state->libraryFolders.clear();
    for (std::uint32_t i = 0; chosen.libraryFolders != nullptr && i < chosen.libraryFolderCount; ++i)
        if (chosen.libraryFolders[i] != nullptr) state->libraryFolders.emplace_back(chosen.libraryFolders[i]);
    chosen.libraryFolders = nullptr;
    chosen.libraryFolderCount = 0;
    state->extensions = chosen;
    settleOptions();
}

const ImportExtensions& XMLImporter::extensions() const { return state->extensions; }

void XMLImporter::findClassesAnywhere(bool anywhere) { state->extensions.anywhere = anywhere; }

void XMLImporter::readXmi2Models(bool xmi2) { state->extensions.xmi2 = xmi2; }

_eString XMLImporter::getParseDiagnostics() const { return state->parseDiagnostics; }

namespace {

bool isControl(wchar_t unit) { return unit < L' ' || unit == 127; }

// Why settings of generated text can't be taken; empty when they can.
_eString refusalOf(std::int32_t lineWidth, const _eString& indentText, const _eString& filePrefix) {
    if (lineWidth < XMLImporter::minLineWidth || lineWidth > XMLImporter::maxLineWidth)
        return L"the line width " + intToString(lineWidth) + L" is out of bounds: it must be from " +
               intToString(XMLImporter::minLineWidth) + L" to " + intToString(XMLImporter::maxLineWidth);
    if (indentText.isEmpty()) return L"the indentation is empty";
    for (int i = 0; i < indentText.size(); ++i)
        if (isControl(indentText.at(i)) && indentText.at(i) != L'\t')
            return L"the indentation holds a line end or another control character";
    for (int i = 0; i < filePrefix.size(); ++i) {
        if (filePrefix.at(i) == L'/') return L"the file prefix holds a path separator";
        if (isControl(filePrefix.at(i))) return L"the file prefix holds a control character";
    }
    return {};
}

}  // namespace

bool XMLImporter::setImportOptions(std::int32_t lineWidth, _eString indentText, _eString filePrefix,
                                   _eString* refusal) {
    _eString reason = refusalOf(lineWidth, indentText, filePrefix);
    if (refusal != nullptr) *refusal = reason;
    if (!reason.isEmpty()) return false;
    state->layout = new ImportOptions(lineWidth, indentText, filePrefix);
    settleOptions();
    return true;
}

const ImportOptions& XMLImporter::importOptions() const {
    return state->importOptions.isNull() ? ImportOptions::defaults() : *state->importOptions;
}

// The host's layout, or the defaults, with the fixed time and the telling of comments that the
// extensions ask for; the shared defaults where nothing is chosen, so that an importer without
// settings writes exactly the default text.
void XMLImporter::settleOptions() {
    const ImportExtensions& chosen = state->extensions;
    if (!chosen.useFixedTime && !chosen.plainModelText) {
        state->importOptions = state->layout;
        return;
    }
    const ImportOptions& layout = state->layout.isNull() ? ImportOptions::defaults() : *state->layout;
    bool ok = false;
    _eHndl<Time> time = chosen.useFixedTime ? utcTime(std::time_t(chosen.fixedTime), ok) : _eHndl<Time>();
    state->importOptions = new ImportOptions(layout.getLineWidth(), layout.getIndentText(), layout.getFilePrefix(),
                                             ok ? time : _eHndl<Time>(), chosen.plainModelText);
}

_eString XMLImporter::outputFilePath(_eString directory, _eString name) const {
    if (state->environment.isNull()) return {};
    FileName file(directory, name, L"tv", state->environment.get());
    FileName target = TarvaneOutput::target(importOptions(), file, *state->environment);
    if (!file.isValid() || !target.isValid()) return {};
    return target.fullPathText();
}

void XMLImporter::reportProgress(ProgressSink sink, void* context) {
    state->progressSink = sink;
    state->progressContext = context;
}

const _eFullTypeInfo* XMLImporter::_aGetFullTypeInfo() const { return _aTypeRecord(); }

_eHndl<_eInstblTypeInfo> XMLImporter::_aGetMyTypeInfo() const { return _aTypeRecord()->info; }

_eHndl<_eInstblTypeInfo> XMLImporter::_aMyTypeInfo() { return _aTypeRecord()->info; }

const _eFullTypeInfo* XMLImporter::_aTypeRecord() {
    static const _eFullTypeInfo record(_aTypeOf({&_aModule22, 0}), nullptr);
    return &record;
}

namespace {

_eSeq<_eString> errorLines(const XMLErrors& errors, bool shortFileNames) {
    _eSeq<_eString> lines;
    for (int i = 0, n = errors.size(); i < n; ++i) lines.pushBack(errors.at(i)->text(shortFileNames));
    return lines;
}

}  // namespace

_eSeq<_eString> XMLImporter::getErrorList(bool shortFileNames) const { return errorLines(state->errors, shortFileNames); }

_eSeq<_eString> XMLImporter::getLastCallErrorList(bool shortFileNames) const {
    return errorLines(state->callErrors, shortFileNames);
}

const XMLErrors& XMLImporter::lastCallErrors() const { return state->callErrors; }

const XMLErrors& XMLImporter::errors() const { return state->errors; }

_eString XMLImporter::getMostSevereErrorMsg() const {
    ErrorSeverity::_eEnum worst = mostSevereError();
    for (int i = 0, n = state->errors.size(); i < n; ++i)
        if (state->errors.at(i)->severity() == worst) return state->errors.at(i)->text(true);
    return {};
}

namespace {

// The errors whose severity passes the test.
template <class Test>
std::int32_t countWhere(const XMLErrors& errors, Test test) {
    std::int32_t count = 0;
    for (int i = 0, n = errors.size(); i < n; ++i)
        if (test(errors.at(i)->severity())) ++count;
    return count;
}

}  // namespace

std::int32_t XMLImporter::numErrors() const {
    return countWhere(state->errors, [](ErrorSeverity::_eEnum s) { return s > ErrorSeverity::warning; });
}

std::int32_t XMLImporter::numWarnings() const {
    return countWhere(state->errors, [](ErrorSeverity::_eEnum s) { return s == ErrorSeverity::warning; });
}

void XMLImporter::addErrors(XMLErrors newErrors) { state->errors.addAll(newErrors); }

ErrorSeverity::_eEnum XMLImporter::mostSevereError() const {
    _eSet<ErrorSeverity::_eEnum> severities;
    for (int i = 0, n = state->errors.size(); i < n; ++i) severities.add(state->errors.at(i)->severity());
    if (severities.isEmpty()) return ErrorSeverity::inform;
    return severities.at(severities.size() - 1);
}

bool XMLImporter::noSeriousError() const {
    return state->errors.isEmpty() || mostSevereError() <= ErrorSeverity::warning;
}

void XMLImporter::attemptParse(_eString fileName, _eString profileRequest, bool& success) {
    if (state->environment.isNull()) {
        // An importer made without an environment can't reach the file.
        state->parseDiagnostics = _eString(L"Failed to open '") + fileName + L"' for parsing!";
        success = false;
        return;
    }
    // A profile goes to "profile.txt" in the working directory; if that can't be opened, the
    // run goes on unprofiled. Its failures never reach the errors.
    _eHndl<FileRef> profile;
    if (!profileRequest.isEmpty()) {
        profile = state->environment->open(L"profile.txt", FileModes(FileModeType::create)).as<FileRef>();
        if (!profile.isNull()) state->environment->startProfiler();
    }
    FileName file(fileName, state->environment.get());
    // The specified road never shows progress; a host's sink asks for it.
    parseFile(&file, state->progressSink != nullptr);
    if (!profile.isNull()) {
        FileError::_eEnum ignored;
        state->environment->writeProfile(profile, ignored);
        state->environment->close(profile, ignored);
    }
    success = state->errors.isEmpty();
    if (!success) return;
    state->parsedFile = new FileName(file);
    _eHndl<FileStats> stats = state->environment->stats(fileName).as<FileStats>();
    state->parsedFileTime = stats.isNull() ? _eHndl<Time>() : stats->getLastModified();
    if (state->document.isNull()) return;
    state->document.uniquePointer()->analyse();
}

void XMLImporter::parseFile(const FileName* file, bool showProgress) {
    state->parseDiagnostics = {};
    _eHndl<XMLParser> parser(new XMLParser(ParseControl::shared(), 0));
    parser->chooseExtensions(state->extensions);
    _eHndl<XMLLex> lexer(new XMLLex(state->environment.get(), state->tabWidth));
    bool opened = false;
    lexer->openFile(_eHndl<FileName>(new FileName(*file)), opened);
    if (opened && state->extensions.decodeEncodings) lexer->readAsUtf8();
    if (opened) {
        std::int32_t start = state->environment->processorTime();
        processAllTokens(parser, lexer, showProgress);
        std::int32_t elapsed = (state->environment->processorTime() - start) / state->environment->ticksPerSecond();
        state->parseDiagnostics = state->parseDiagnostics + L"Parsed " + intToString(lexer->lineNumber()) +
                                  L" lines from file '" + file->fileNameText() + L"' in " + intToString(elapsed) +
                                  L" seconds\n";
        state->linesParsed += lexer->lineNumber();
        state->document = dynamic_cast<XMLDocument*>(parser->getResult().get());
        if (!state->document.isNull())
            state->document.uniquePointer()->chooseReader(
                ModelReader::choose(*state->document->getRoot(),
                                    {toPlatformText(file->fullPathText()), state->libraryFolders,
                                     state->environment, state->extensions}),
                state->extensions.safeNames);
        lexer->closeFile();
        addErrors(parser->getErrors());
    } else {
        state->parseDiagnostics = _eString(L"Failed to open '") + file->fullPathText() + L"' for parsing!";
    }
    addErrors(lexer->getErrors());
}

// Progress is shown only to a host's sink: `showProgress` is true exactly when there is one.
void XMLImporter::processAllTokens(_eHndl<XMLParser>& parser, _eHndl<XMLLex>& lexer, bool showProgress) {
    std::int32_t lastLine = 0;
    parser->parseAll(*lexer, true, showProgress, [&](const Terminal& token) {
        if (showProgress && token.getPosition().line != lastLine) {
            lastLine = token.getPosition().line;
            state->progressSink(L"\rParsed line " + intToString(lastLine), state->progressContext);
        }
    });
    if (showProgress) state->progressSink(L"\n", state->progressContext);
}

const _eSet<_eString>& XMLImporter::classesToIgnore() {
    static const _eSet<_eString> names = [] {
        _eSet<_eString> set;
        for (const wchar_t* name : {L"Boolean", L"Byte", L"Character", L"Double", L"Integer", L"String", L"bag",
                                    L"bool", L"map", L"pair", L"real", L"seq", L"set", L"triple"})
            set.add(name);
        return set;
    }();
    return names;
}

_eSeq<_eString> XMLImporter::getLeftOutReport(bool everyItem) const {
    if (!state->extensions.reportLeftOut || state->document.isNull()) return {};
    return ModelReport::lines(state->document->leftOut(classesToIgnore(), state->extensions.anywhere), everyItem);
}

_eSeq<_eString> XMLImporter::getClassList() const {
    _eSeq<_eString> list;
    if (state->document.isNull()) return list;
    ClassMap classes = state->document->getClasses();
    _eSet<_eString> names;
    for (int i = 0, n = classes.size(); i < n; ++i) names.add(classes.at(i).first);
    for (int i = 0, n = names.size(); i < n; ++i)
        if (!classesToIgnore().contains(names.at(i))) list.pushBack(names.at(i));
    return list;
}

ValidityStatus::_eEnum XMLImporter::getValidityStatus(_eString fileName) const {
    if (state->environment.isNull()) return ValidityStatus::Invalid;
    FileName file(fileName, state->environment.get());
    if (state->document.isNull()) return ValidityStatus::Invalid;
    if (state->parsedFile.isNull() || !(*state->parsedFile == file)) return ValidityStatus::Invalid;
    if (state->parsedFileTime.isNull()) return ValidityStatus::Unknown;
    _eHndl<FileStats> stats = state->environment->stats(file.fullPathText()).as<FileStats>();
    if (stats.isNull()) return ValidityStatus::Unknown;
    return *stats->getLastModified() == *state->parsedFileTime ? ValidityStatus::Valid : ValidityStatus::Invalid;
}

template <class Generate>
void XMLImporter::generate(Generate run, bool& success) {
    if (state->document.isNull() || state->environment.isNull()) {
        // Nothing was parsed that could be generated: reported as no XMI document.
        state->callErrors = XMLErrors();
        addError(state->callErrors, Location::nowhere(), XMLErrorType::notXMI);
        addErrors(state->callErrors);
        success = false;
        return;
    }
    FileName source = state->parsedFile.isNull() ? FileName() : *state->parsedFile;
    {
        // The directory written into is looked at once for the names and the file of the call.
        DirectoryListings::Look look;
        run(*state->document.uniquePointer(), source);
    }
    XMLErrors documentErrors = state->document->getErrors();
    addErrors(documentErrors);
    success = documentErrors.isEmpty();
    state->callErrors = state->document->lastGenerationErrors();
}

void XMLImporter::generateClassFile(_eString directory, _eString className, bool& success) {
    generate([&](XMLDocument& doc, const FileName& source) {
        doc.generateClassFile(className, directory, source, state->environment, importOptions());
    }, success);
}

void XMLImporter::generateSingleFile(_eString directory, _eString fileName, _eSet<_eString> classNames, bool& success) {
    generate([&](XMLDocument& doc, const FileName& source) {
        FileName target(directory, fileName, L"tv", state->environment.get());
        doc.generateSingleFile(target, classNames, source, state->environment, importOptions());
    }, success);
}

std::string XMLImporter::renderClassFile(_eString directory, _eString className) const {
    if (state->document.isNull() || state->environment.isNull()) return {};
    FileName source = state->parsedFile.isNull() ? FileName() : *state->parsedFile;
    return state->document->renderClassFile(className, directory, source, *state->environment, importOptions());
}

namespace {

// A 64-bit digest fed piece by piece, eight bytes a step with the mixing of MurmurHash64A; a
// piece's last bytes are taken with its length, so that pieces cut apart otherwise differ.
struct Digest {
    static constexpr std::uint64_t multiplier = 0xc6a4a7935bd1e995ull;
    std::uint64_t value = 0x9e3779b97f4a7c15ull;

    void mix(std::uint64_t word) {
        word *= multiplier;
        word ^= word >> 47;
        word *= multiplier;
        value = (value ^ word) * multiplier;
    }
    void add(const void* data, std::size_t size) {
        const auto* bytes = static_cast<const unsigned char*>(data);
        std::size_t whole = size - size % 8;
        for (std::size_t i = 0; i < whole; i += 8) {
            std::uint64_t word;
            std::memcpy(&word, bytes + i, 8);
            mix(word);
        }
        std::uint64_t tail = size;
        for (std::size_t i = whole; i < size; ++i) tail = tail << 8 | bytes[i];
        mix(tail);
        value ^= value >> 47;
    }
    // A length before the bytes, so that no two sequences of pieces feed the same bytes.
    void add(const std::string& text) {
        std::uint64_t size = text.size();
        add(&size, sizeof size);
        add(text.data(), text.size());
    }
    std::string text() const {
        char hex[17];
        std::snprintf(hex, sizeof hex, "%016llx", static_cast<unsigned long long>(value));
        return hex;
    }
};

// The bytes of a file; false when it can't be read whole.
bool fileBytes(const std::string& path, Digest& digest) {
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (file == nullptr) return false;
    char buffer[1 << 16];
    std::size_t got = 0, total = 0;
    while ((got = std::fread(buffer, 1, sizeof buffer, file)) > 0) {
        digest.add(buffer, got);
        total += got;
    }
    bool whole = std::ferror(file) == 0;
    std::fclose(file);
    std::uint64_t size = total;
    digest.add(&size, sizeof size);
    return whole;
}

}  // namespace

UpdateReport XMLImporter::updateFolder(_eString directory, _eSeq<_eString> classNames, _eString singleFile,
                                       const UpdateOptions& options) const {
    UpdateReport report;
    if (state->document.isNull() || state->environment.isNull() || !noSeriousError()) {
        report.error = "no model was parsed without errors";
        return report;
    }
    const Environment& environment = *state->environment;
    FileName source = state->parsedFile.isNull() ? FileName() : *state->parsedFile;
    _eSeq<_eString> all = getClassList();
    _eSeq<_eString> chosen = classNames.isEmpty() ? all : classNames;
    // The model's bytes are digested by a thread of their own while the files are planned, or
    // where they are needed when no thread can be had.
    std::future<std::optional<Digest>> modelBytes;
    if (singleFile.isEmpty() && !state->parsedFile.isNull() &&
        getValidityStatus(state->parsedFile->fullPathText()) == ValidityStatus::Valid)
        modelBytes = std::async(std::launch::async | std::launch::deferred, [path = toPlatformText(state->parsedFile->fullPathText())] {
            Digest digest;
            return fileBytes(path, digest) ? std::optional<Digest>(digest) : std::nullopt;
        });
    std::vector<PlannedFile> files;
    std::set<std::string> ids;
    auto plan = [&](const _eSeq<_eString>& names, const _eString& fileName, bool single) {
        // The file as generation names it: in the directory, with the prefix and ".tv".
        FileName file(directory, fileName, L"tv", &environment);
        FileName target = TarvaneOutput::target(importOptions(), file, environment);
        std::string path = toPlatformText(target.fullPathText());
        if (!file.isValid() || !target.isValid() || (!single && !XMLDocument::namesOneFile(fileName))) {
            FileUpdate refused;
            refused.file = toPlatformText(fileName) + ".tv";
            refused.outcome = FileOutcome::failed;
            refused.message = "'" + refused.file + "' can't be a file name";
            report.files.push_back(refused);
            return;
        }
        std::string name = path.substr(path.rfind('/') + 1);
        auto header = [this, file, source, &environment] {
            return TarvaneOutput::headerBytes(importOptions(), file, source, environment);
        };
        auto layOut = [this, names, single, file, source, &environment, name] {
            TarvaneOutput::Layout layout =
                state->document->layOutFile(names, single, file, source, environment, importOptions());
            return FolderUpdate::generatedFile(name, layout, TarvaneOutput::headerLines);
        };
        files.push_back({name, {}, header, layOut});
    };
    {
        // Every file is named as the folder stands at one look, before anything in it changes.
        DirectoryListings::Look look;
        if (!singleFile.isEmpty()) {
            plan(chosen, singleFile, true);
        } else {
            for (int i = 0; i < chosen.size(); ++i) plan(_eSeq<_eString>(chosen.at(i)), chosen.at(i), false);
        }
    }
    // What the text of a class file is made from: the model's bytes, as parsed, and everything
    // that shapes the text. A file recorded as made from the same gives the text without being
    // laid out again. None for a model changed since it was parsed, and for one file of several
    // classes, whose text depends on the classes chosen too.
    std::optional<Digest> digest = modelBytes.valid() ? modelBytes.get() : std::nullopt;
    if (digest) {
        digest->add("ModelBridge " + std::to_string(MODELBRIDGE_VERSION_0) + "." + std::to_string(MODELBRIDGE_VERSION_1) +
                    "." + std::to_string(MODELBRIDGE_VERSION_2) + "." + std::to_string(MODELBRIDGE_VERSION_3));
        const ImportOptions& layout = importOptions();
        std::int32_t numbers[] = {layout.getLineWidth(), layout.getCommentsByKind() ? 1 : 0, state->tabWidth};
        digest->add(numbers, sizeof numbers);
        for (const _eString* text : {&layout.getIndentText(), &layout.getCommentPrefix(), &layout.getFilePrefix()})
            digest->add(toPlatformText(*text));
        for (const ImportSwitch& each : importSwitches) digest->add(each.name + std::string(state->extensions.*each.field ? "+" : "-"));
        for (const std::string& folder : state->libraryFolders) digest->add(folder);
        std::string madeFrom = digest->text();
        for (PlannedFile& file : files) file.source = madeFrom;
    }
    // Recorded files of classes left out this time are stale only when the model lacks them.
    if (!singleFile.isEmpty() || chosen.size() != all.size())
        for (int i = 0; i < all.size(); ++i) ids.insert(toPlatformText(state->document->classId(all.at(i))));
    std::vector<FileUpdate> refused = std::move(report.files);
    // A text that looked for other files (types named in them) depends on more than the model.
    std::size_t sought = state->document->otherFilesSought();
    report = FolderUpdate::run(toPlatformText(directory), files, ids, options,
                               [&] { return state->document->otherFilesSought() == sought; });
    report.ok = report.ok && refused.empty();
    report.files.insert(report.files.end(), refused.begin(), refused.end());
    return report;
}

_eString XMLImporter::genFullFileNameString(_eString directory, _eString name, const Environment* environment) {
    return FileName(directory, name, L"tv", environment).fullPathText();
}
