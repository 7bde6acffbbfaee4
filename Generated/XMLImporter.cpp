#include "Generated/XMLImporter.h"

#include "runtime/Failure.h"
#include "runtime/StringUtils.h"

XMLImporter::XMLImporter(const Environment* environment)
    : linesParsed(0), environment(environment), tabWidth(4), parseDiagnostics(L"<no parse attempted yet>") {}

XMLImporter::XMLImporter() : linesParsed(0), tabWidth(4) {}

XMLImporter::XMLImporter(const XMLImporter& other) = default;

XMLImporter& XMLImporter::operator=(const XMLImporter& other) = default;

XMLImporter::~XMLImporter() = default;

bool XMLImporter::operator==(const XMLImporter&) const { raiseCannotHappen(_xPlaces::importerEquality); }

_eString XMLImporter::getParseDiagnostics() const { return parseDiagnostics; }

const _eFullTypeInfo* XMLImporter::_aGetFullTypeInfo() const { return _aTypeRecord(); }

_eHndl<_eInstblTypeInfo> XMLImporter::_aGetMyTypeInfo() const { return _aTypeRecord()->info; }

_eHndl<_eInstblTypeInfo> XMLImporter::_aMyTypeInfo() { return _aTypeRecord()->info; }

const _eFullTypeInfo* XMLImporter::_aTypeRecord() {
    static const _eFullTypeInfo record(L"XMLImporter", nullptr);
    return &record;
}

_eSeq<_eString> XMLImporter::getErrorList(bool shortFileNames) const {
    _eSeq<_eString> lines;
    for (int i = 0, n = errors.size(); i < n; ++i) lines.pushBack(errors.at(i)->text(shortFileNames));
    return lines;
}

_eString XMLImporter::getMostSevereErrorMsg() const {
    ErrorSeverity::_eEnum worst = mostSevereError();
    for (int i = 0, n = errors.size(); i < n; ++i)
        if (errors.at(i)->severity() == worst) return errors.at(i)->text(true);
    return {};
}

std::int32_t XMLImporter::numErrors() const {
    std::int32_t count = 0;
    for (int i = 0, n = errors.size(); i < n; ++i)
        if (errors.at(i)->severity() > ErrorSeverity::warning) ++count;
    return count;
}

std::int32_t XMLImporter::numWarnings() const {
    std::int32_t count = 0;
    for (int i = 0, n = errors.size(); i < n; ++i)
        if (errors.at(i)->severity() == ErrorSeverity::warning) ++count;
    return count;
}

void XMLImporter::addErrors(XMLErrors newErrors) { errors.addAll(newErrors); }

ErrorSeverity::_eEnum XMLImporter::mostSevereError() const {
    _eSet<ErrorSeverity::_eEnum> severities;
    for (int i = 0, n = errors.size(); i < n; ++i) severities.add(errors.at(i)->severity());
    if (severities.isEmpty()) return ErrorSeverity::inform;
    return severities.at(severities.size() - 1);
}

bool XMLImporter::noSeriousError() const {
    return errors.isEmpty() || mostSevereError() <= ErrorSeverity::warning;
}

void XMLImporter::attemptParse(_eString fileName, _eString, bool& success) {
    if (environment.isNull()) {
        // An importer made without an environment can't reach the file.
        parseDiagnostics = _eString(L"Failed to open '") + fileName + L"' for parsing!";
        success = false;
        return;
    }
    FileName file(fileName, environment.get());
    parseFile(&file, false);
    success = errors.isEmpty();
    if (!success) return;
    parsedFile = new FileName(file);
    _eHndl<FileStats> stats = environment->stats(fileName).as<FileStats>();
    parsedFileTime = stats.isNull() ? _eHndl<Time>() : stats->getLastModified();
    if (!document.isNull()) document.uniquePointer()->analyse();
}

void XMLImporter::parseFile(const FileName* file, bool showProgress) {
    parseDiagnostics = {};
    _eHndl<XMLParser> parser(new XMLParser(ParseControl::shared(), 0));
    _eHndl<XMLLex> lexer(new XMLLex(environment.get(), tabWidth));
    bool opened = false;
    lexer->openFile(_eHndl<FileName>(new FileName(*file)), opened);
    if (opened) {
        std::int32_t start = environment->processorTime();
        processAllTokens(parser, lexer, showProgress);
        std::int32_t elapsed = (environment->processorTime() - start) / environment->ticksPerSecond();
        parseDiagnostics = parseDiagnostics + L"Parsed " + intToString(lexer->lineNumber()) + L" lines from file '" +
                           file->fileNameText() + L"' in " + intToString(elapsed) + L" seconds\n";
        linesParsed += lexer->lineNumber();
        document = dynamic_cast<XMLDocument*>(parser->getResult().get());
        lexer->closeFile();
        addErrors(parser->getErrors());
    } else {
        parseDiagnostics = _eString(L"Failed to open '") + file->fullPathText() + L"' for parsing!";
    }
    addErrors(lexer->getErrors());
}

void XMLImporter::processAllTokens(_eHndl<XMLParser>& parser, _eHndl<XMLLex>& lexer, bool showProgress) {
    std::int32_t lastLine = 0;
    _eHndl<Terminal> token;
    while (!parser->isFinished()) {
        token.reset();
        lexer->nextToken(token);
        if (showProgress && token->getLocation()->getLine() != lastLine) {
            lastLine = token->getLocation()->getLine();
            parseDiagnostics = parseDiagnostics + L"\rParsed line " + intToString(lastLine);
        }
        parser->offerToken(token);
    }
    if (showProgress) parseDiagnostics = parseDiagnostics + L"\n";
}
