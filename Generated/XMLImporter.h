// The exported face of the library: a host makes an importer on its `Environment`, gives it
// an XMI file, and asks it for classes, diagnostics and generated files.
#pragma once

#include <cstdint>

#include "Generated/XMLError.h"
#include "environment/Environment.h"
#include "runtime/Seq.h"
#include "runtime/TypeInfo.h"

class MB_API XMLImporter {
public:
    explicit XMLImporter(const Environment* environment);
    // An importer without an `Environment`: nothing that reaches the file system may be called.
    XMLImporter();
    XMLImporter(const XMLImporter& other);
    XMLImporter& operator=(const XMLImporter& other);
    ~XMLImporter();

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

    // Joins `newErrors` to `errors`; equal errors collapse.
    void addErrors(XMLErrors newErrors);
    // The greatest severity in `errors`; `inform` when there is none.
    ErrorSeverity::_eEnum mostSevereError() const;
    bool noSeriousError() const;

    [[maybe_unused]] std::int32_t linesParsed;  // lines read over all parses; nothing reads it
    XMLErrors errors;                           // every error so far; it only grows
    _eHndl<const Environment> environment;      // taken at construction
    [[maybe_unused]] std::int32_t tabWidth;     // column step of a tab in the lexer
    _eString parseDiagnostics;                  // report of the last parse
};
