// Values that live for a reduction or two: the characters of a name, the digits of a number.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

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

// The characters of a name while it is read. A name is looked up among the names kept as soon
// as it is whole, and mostly found there: its units are gathered in the object itself, and a
// string is made of them only where one is asked for.
class XMLString : public _eClass<XMLString, NonTerminal> {
public:
    static constexpr _aTypeSlot _aType{&_aModule16, 5};

    explicit XMLString(const _eHndl<Terminal>& first) : _eClass(first->getPosition()) {
        wchar_t unit = first->getCharacter();
        append(&unit, 1);
    }

    // A name read whole: `count` units from `position` on.
    XMLString(const Position& position, const unsigned char* units, std::int32_t count) : _eClass(position) {
        append(units, count);
    }

    bool equalFields(const XMLString& other) const { return NonTerminal::equalFields(other) && units() == other.units(); }

    void appendCharacter(const _eHndl<Terminal>& next) {
        _eFreeze freeze(this);
        wchar_t unit = next->getCharacter();
        append(&unit, 1);
    }
    template <class Unit>
    void appendCharacters(const Unit* units, std::int32_t count) {
        _eFreeze freeze(this);
        append(units, count);
    }

    // Valid while this value is neither changed nor destroyed.
    std::wstring_view units() const {
        return spilled.empty() ? std::wstring_view(held, std::size_t(length)) : std::wstring_view(spilled);
    }
    _eString getText() const { return _eString(units()); }

private:
    // Up to `heldUnits` units stay in `held`; a longer name moves them all to `spilled`.
    template <class Unit>
    void append(const Unit* units, std::int32_t count) {
        if (spilled.empty() && length + count <= heldUnits) {
            std::copy(units, units + count, held + length);
            length += count;
            return;
        }
        if (spilled.empty()) spilled.assign(held, std::size_t(length));
        std::size_t at = spilled.size();
        spilled.resize(at + std::size_t(count));
        std::copy(units, units + count, spilled.data() + at);
    }

    static constexpr std::int32_t heldUnits = 32;  // the names of XMI tags and attributes fit
    wchar_t held[heldUnits];
    std::int32_t length = 0;
    std::wstring spilled;
};
