// Values that live for a reduction or two: the characters of a name, the digits of a number.
#pragma once

#include <cstdint>

#include "Generated/StackValue.h"

// The value of one digit character: 0-9, then a-z and A-Z from 10 on.
inline std::int32_t digitValue(wchar_t c) {
    if (c >= L'0' && c <= L'9') return std::int32_t(c) - 48;
    if (c >= L'a' && c <= L'z') return std::int32_t(c) - 87;
    return std::int32_t(c) - 55;
}

class XMLNumber : public _eClass<XMLNumber, NonTerminal> {
public:
    static constexpr _aTypeSlot _aType{&_aModule16, 6};

    explicit XMLNumber(const _eHndl<Terminal>& digit)
        : _eClass(digit->getPosition()), value(digitValue(digit->getCharacter())) {}

    bool equalFields(const XMLNumber& other) const { return NonTerminal::equalFields(other) && value == other.value; }

    // One more digit, in base 16 or 10; a large number wraps around.
    void addDigit(const _eHndl<Terminal>& digit, bool hexadecimal) {
        _eFreeze freeze(this);
        std::uint32_t base = hexadecimal ? 16u : 10u;
        value = std::int32_t(std::uint32_t(value) * base + std::uint32_t(digitValue(digit->getCharacter())));
    }

    std::int32_t getValue() const { return value; }

private:
    std::int32_t value;
};

class XMLString : public _eClass<XMLString, NonTerminal> {
public:
    static constexpr _aTypeSlot _aType{&_aModule16, 5};

    explicit XMLString(const _eHndl<Terminal>& first) : _eClass(first->getPosition()), text(first->getCharacter()) {}

    bool equalFields(const XMLString& other) const { return NonTerminal::equalFields(other) && text == other.text; }

    void appendCharacter(const _eHndl<Terminal>& next) {
        _eFreeze freeze(this);
        text.pushBack(next->getCharacter());
    }
    void appendCharacters(const wchar_t* units, std::int32_t count) {
        _eFreeze freeze(this);
        text.appendRange(count, units);
    }

    const _eString& getText() const { return text; }

private:
    _eString text;
};
