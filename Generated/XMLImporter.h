// The exported face of the library: a host makes an importer on its `Environment`, gives it
// an XMI file, and asks it for classes, diagnostics and generated files.
//
// The importer's data lies behind one pointer, so that the class keeps its size and layout
// as the library grows: a host built against one 1.x release runs with every later one. This
// header holds only what a host needs: strings, sets, the environment and the result enums.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "Generated/ErrorEnums.h"
#include "modelbridge/FolderUpdate.h"
#include "modelbridge/ImportExtensions.h"
#include "environment/Environment.h"

class FileName;
class ImportOptions;
class XMLError;
class XMLLex;
class XMLParser;
class XMLElement;
struct _eFullTypeInfo;
class _eInstblTypeInfo;
using XMLErrors = _eSet<_eHndl<XMLError>>;

class MB_API XMLImporter {
public:
    explicit XMLImporter(const Environment* environment);
    // An importer without an `Environment`: nothing that reaches the file system may be called.
    XMLImporter();
    XMLImporter(const XMLImporter& other);
    XMLImporter& operator=(const XMLImporter& other);
    ~XMLImporter();

    // Parses the XMI file `fileName`. `success` is true when no error at all has come up on this
    // importer so far; then the document is analysed and its classes can be asked for.
    // `profileRequest` asks for a processor-time profile when it isn't empty.
    void attemptParse(_eString fileName, _eString profileRequest, bool& success);

    // The names of the parsed model's classes, sorted, without repeats and without the names of
    // built-in types.
    _eSeq<_eString> getClassList() const;
    // Whether the parsed model still corresponds to the file of that name.
    ValidityStatus::_eEnum getValidityStatus(_eString fileName) const;
    // Writes the class into `directory`/`className`.tv; `success` when no generation on this
    // document has failed so far.
    void generateClassFile(_eString directory, _eString className, bool& success);
    // Writes the chosen classes, in document order, into one file.
    void generateSingleFile(_eString directory, _eString fileName, _eSet<_eString> classNames, bool& success);
    // The text that `generateClassFile(directory, className)` would write, as the file's bytes,
    // without writing anything; empty when nothing parsed can be generated. An extension beyond
    // the specified behaviour for hosts that show or compare generated text.
    std::string renderClassFile(_eString directory, _eString className) const;
    // An extension beyond the specified behaviour: brings the folder `directory` (made by the
    // caller) up to date with the classes named, every class when none are, one file each or,
    // with a `singleFile` name, all in that one file; what the user wrote in the files stays and
    // what the model changed lands (modelbridge/FolderUpdate.h). Needs a model parsed.
    UpdateReport updateFolder(_eString directory, _eSeq<_eString> classNames, _eString singleFile,
                              const UpdateOptions& options) const;
    // The errors and warnings of the last call that generated or wrote alone, ordered by
    // location: empty when it succeeded, whatever calls before it gave. An extension beyond the
    // specified behaviour, whose `success` tells whether every generation so far succeeded.
    const XMLErrors& lastCallErrors() const;
    _eSeq<_eString> getLastCallErrorList(bool shortFileNames) const;
    // Every distinct error and warning so far, ordered by location, as `getErrorList` lists them.
    const XMLErrors& errors() const;
    // With the extension `reportLeftOut`, what the text of the last model parsed leaves out, one
    // line per kind ("Left out: 2 enumerations not generated: Colour, Size"), naming the first
    // items of each or, with `everyItem`, all. Empty without the extension or a model.
    _eSeq<_eString> getLeftOutReport(bool everyItem) const;
    // Where a file of that name goes: in `directory`, with the extension "tv".
    static _eString genFullFileNameString(_eString directory, _eString name, const Environment* environment);

    // The extensions beyond the specified behaviour that the parses and generations that follow
    // take (modelbridge/ImportExtensions.h, where each is described); all are off until a host
    // chooses them.
    void chooseExtensions(const ImportExtensions& extensions);
    const ImportExtensions& extensions() const;
    // One extension each, as `chooseExtensions` with that field changed: classes wherever UML
    // tools put them (`ImportExtensions::anywhere`), and UML 2 models saved as XMI 2.x
    // (`ImportExtensions::xmi2`).
    void findClassesAnywhere(bool anywhere);
    void readXmi2Models(bool xmi2);

    // An extension beyond the specified behaviour, for hosts that choose how generated text is
    // laid out: the generations that follow break lines beyond column `lineWidth` (from
    // `minLineWidth` to `maxLineWidth`), indent by `indentText` (not empty; blanks, tabs and other
    // visible characters, no line end) and put `filePrefix` (no path separator, no control
    // character) before the name of every file they write. False, with the reason in `refusal`
    // when one is given, and nothing changed, when a value is out of bounds. Without this call an
    // importer keeps the defaults: width 100, one tab, no prefix.
    static constexpr std::int32_t minLineWidth = 20;
    static constexpr std::int32_t maxLineWidth = 10000;
    bool setImportOptions(std::int32_t lineWidth, _eString indentText, _eString filePrefix,
                          _eString* refusal = nullptr);
    // Where `generateClassFile(directory, name)` or `generateSingleFile(directory, name, ...)`
    // writes on this importer: `genFullFileNameString` with the importer's file prefix. Empty when
    // no file of that name can be written.
    _eString outputFilePath(_eString directory, _eString name) const;

    // An extension beyond the specified behaviour, for hosts that show a parse as it goes: during
    // the parses that follow, `sink` receives each progress entry ("\rParsed line N", on every
    // new line of the input) as it comes, and the "\n" that closes them, together with `context`.
    // The entries go to the sink instead of into the parse report. A null `sink` turns it off.
    using ProgressSink = void (*)(const _eString& entry, void* context);
    void reportProgress(ProgressSink sink, void* context);

    // Importers have no equality: this always raises.
    bool operator==(const XMLImporter& other) const;

    // The plain-text report of the last parse.
    _eString getParseDiagnostics() const;
    // One line per distinct error or warning so far, ordered by location; `shortFileNames`
    // gives file names without their directory.
    _eSeq<_eString> getErrorList(bool shortFileNames) const;
    // The first of the most severe errors, with short file names; empty when there is none.
    _eString getMostSevereErrorMsg() const;
    // Distinct errors of severity above `warning`, and of `warning` exactly.
    std::int32_t numErrors() const;
    std::int32_t numWarnings() const;

    const _eFullTypeInfo* _aGetFullTypeInfo() const;
    _eHndl<_eInstblTypeInfo> _aGetMyTypeInfo() const;
    static _eHndl<_eInstblTypeInfo> _aMyTypeInfo();

private:
    friend class XMLImporterInspector;  // the test suite's view of the private members

    static const _eFullTypeInfo* _aTypeRecord();

    // The fields of the importer, in their declared order (Generated/ImporterState.h).
    struct State;

    // Runs lexer and parser over the file; keeps the document, the diagnostics and the errors.
    // `showProgress` adds a line count to the diagnostics; the public road never asks for it,
    // but the member and its argument belong to the importer's fixed list of members.
    void parseFile(const FileName* file, bool showProgress);
    void processAllTokens(_eHndl<XMLParser>& parser, _eHndl<XMLLex>& lexer, bool showProgress);
    static const _eSet<_eString>& classesToIgnore();
    // The settings of generated text: the host's, else the shared defaults.
    const ImportOptions& importOptions() const;
    // Makes the settings of generated text anew from the host's layout and extensions.
    void settleOptions();
    // Runs one generation on the document and takes its errors over.
    template <class Generate>
    void generate(Generate run, bool& success);
    // Joins `newErrors` to `errors`; equal errors collapse.
    void addErrors(XMLErrors newErrors);
    // The greatest severity in `errors`; `inform` when there is none.
    ErrorSeverity::_eEnum mostSevereError() const;
    bool noSeriousError() const;

    std::unique_ptr<State> state;  // never null
};
