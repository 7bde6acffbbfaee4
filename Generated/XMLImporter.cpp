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
