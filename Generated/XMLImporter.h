// The exported face of the library: a host makes an importer on its `Environment`, gives it
// an XMI file, and asks it for classes, diagnostics and generated files.
#pragma once

#include <cstdint>

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

    const _eFullTypeInfo* _aGetFullTypeInfo() const;
    _eHndl<_eInstblTypeInfo> _aGetMyTypeInfo() const;
    static _eHndl<_eInstblTypeInfo> _aMyTypeInfo();

private:
    static const _eFullTypeInfo* _aTypeRecord();

    [[maybe_unused]] std::int32_t linesParsed;  // lines read over all parses; nothing reads it
    _eHndl<const Environment> environment;      // taken at construction
    [[maybe_unused]] std::int32_t tabWidth;     // column step of a tab in the lexer
    _eString parseDiagnostics;                  // report of the last parse
};
