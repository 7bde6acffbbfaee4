// Error records: every failure of the input or of the file system, as a value. A record is
// its location, its kind and the texts for the "$" placeholders of its kind's message.
#pragma once

#include "Generated/ErrorEnums.h"
#include "Generated/Location.h"
#include "runtime/Map.h"
#include "runtime/Set.h"

// One row of the message table.
class ErrorInfo : public _eClass<ErrorInfo, _eAny> {
public:
    static constexpr _aTypeSlot _aType{&_aModule3, 1};

    ErrorInfo(ErrorSeverity::_eEnum severity, const _eString& messageTemplate)
        : severity(severity), messageTemplate(messageTemplate) {}

    bool equalFields(const ErrorInfo& other) const {
        return severity == other.severity && messageTemplate == other.messageTemplate;
    }

    ErrorSeverity::_eEnum getSeverity() const { return severity; }
    const _eString& getMessageTemplate() const { return messageTemplate; }

private:
    ErrorSeverity::_eEnum severity;
    _eString messageTemplate;  // with "$" placeholders
};

class Error : public _eAbstractClass<Error, _eAny> {
public:
    static constexpr _aTypeSlot _aType{&_aModule3, 2};

    Error(const _eHndl<Location>& location, const _eSeq<_eString>& arguments)
        : location(location), arguments(arguments) {}

    // By location; errors at one location rank alike.
    _eRank rank(const _eAnyBase* other) const override;
    bool equalFields(const Error& other) const { return location == other.location && arguments == other.arguments; }

    // The complete one-line message.
    virtual _eString text(bool shortFileNames) const = 0;
    virtual ErrorSeverity::_eEnum severity() const = 0;

    // The template with the arguments put in, in order: n arguments use it up to its (n+1)-th "$".
    _eString fillTemplate(const _eString& messageTemplate) const;
    // Location text, ": ", the severity's caption, "! ", then `message`.
    _eString formatMessage(bool shortFileNames, const _eString& message) const;

    const _eHndl<Location>& getLocation() const { return location; }
    const _eSeq<_eString>& getArguments() const { return arguments; }

private:
    _eHndl<Location> location;   // never null; `Location::nowhere()` where there is no position
    _eSeq<_eString> arguments;   // the texts for the placeholders
};

class XMLError : public _eClass<XMLError, Error> {
public:
    static constexpr _aTypeSlot _aType{&_aModule21, 1};

    XMLError(const _eHndl<Location>& location, XMLErrorType::_eEnum kind, const _eSeq<_eString>& arguments)
        : _eClass(location, arguments), kind(kind) {}
    XMLError(const _eHndl<Location>& location, XMLErrorType::_eEnum kind) : XMLError(location, kind, {}) {}

    bool equalFields(const XMLError& other) const { return Error::equalFields(other) && kind == other.kind; }

    _eString text(bool shortFileNames) const override;
    ErrorSeverity::_eEnum severity() const override;

    XMLErrorType::_eEnum getKind() const { return kind; }

    // The row of each kind.
    static const _eMap<XMLErrorType::_eEnum, _eHndl<ErrorInfo>>& messageTable();
    // "Information", "Warning", "Error", "Fatal error".
    static _eString caption(ErrorSeverity::_eEnum severity);

private:
    XMLErrorType::_eEnum kind;
};

using XMLErrors = _eSet<_eHndl<XMLError>>;

// Adds a new error record to `errors`; an equal one already there stays alone.
void addError(XMLErrors& errors, const _eHndl<Location>& where, XMLErrorType::_eEnum kind,
              const _eSeq<_eString>& arguments = {});
