// Exceptions at the level of the modelling language, beside the failure objects: the storage
// stream raises `_aStreamException`, thrown inside an `_aUrelExceptionWrapper`.
#pragma once

#include <cstdint>
#include <exception>
#include <string>

#include "runtime/Class.h"
#include "runtime/Enumerations.h"

class MB_API _eUrelException : public _eAbstractClass<_eUrelException, _eAny> {
public:
    static constexpr _aTypeSlot _aType{&_aModule32, 5};

    _eUrelException(_eString message, std::int32_t code) : message(std::move(message)), code(code) {}

    bool equalFields(const _eUrelException& other) const { return code == other.code && message == other.message; }

    const _eString& getMessage() const { return message; }
    std::int32_t getCode() const { return code; }

private:
    _eString message;
    std::int32_t code;  // a code of the concrete class
};

// A failure of a storage stream; its code is a `SerialErrorType` value.
class MB_API _aStreamException : public _eClass<_aStreamException, _eUrelException> {
public:
    static constexpr _aTypeSlot _aType{&_aModule32, 6};

    _aStreamException(_eString message, SerialErrorType::_eEnum code) : _eClass(std::move(message), code) {}
};

// What is thrown for a `_eUrelException`. Not counted itself; it holds a count of the exception.
class MB_API _aUrelExceptionWrapper : public std::exception {
public:
    explicit _aUrelExceptionWrapper(_eFrom<_eUrelException> exception) : exception(std::move(exception)) {}
    _aUrelExceptionWrapper(const _aUrelExceptionWrapper&) = default;

    virtual _eString message() const { return exception->getMessage(); }
    virtual std::int32_t errorCode() const { return exception->getCode(); }
    ~_aUrelExceptionWrapper() override;
    // The message of the exception in UTF-8.
    const char* what() const noexcept override;

    const _eFrom<_eUrelException>& getException() const { return exception; }

private:
    _eFrom<_eUrelException> exception;
    mutable std::string whatText;  // filled by `what`
};

// Raises a stream failure of the given kind.
[[noreturn]] MB_API void streamFailure(SerialErrorType::_eEnum errorType, const _eString& message);
