#include "Generated/XMLImporter.h"

#include "runtime/Failure.h"

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
