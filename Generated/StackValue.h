// The values on the parser's stack: terminals from the lexer, and the base of every syntax node.
// Each carries the place in the input where it began.
#pragma once

#include <cstdint>

#include "Generated/GrcParse.h"
#include "Generated/Location.h"
#include "runtime/Class.h"

class StackValue : public _eClass<StackValue, _eAny> {
public:
    static constexpr _aTypeSlot _aType{&_aModule14, 0};

    explicit StackValue(const _eHndl<Location>& location) : location(location) {}

    bool equalFields(const StackValue& other) const { return location == other.location; }

    virtual void setLocation(const _eHndl<Location>& place) {
        _eFreeze freeze(this);
        location = place;
    }

    const _eHndl<Location>& getLocation() const { return location; }

protected:
    // For a token remade in place: no position while the lexer moves on, then the new one.
    void leavePlace() { location.reset(); }
    void takePlace(const _eHndl<Location>& place) { location = place; }

private:
    _eHndl<Location> location;  // where the symbol began
};

class Terminal : public _eAbstractClass<Terminal, StackValue> {
public:
    static constexpr _aTypeSlot _aType{&_aModule25, 0};

    Terminal(const _eHndl<Location>& location, std::int32_t token) : _eAbstractClass(location), token(token) {}

    bool equalFields(const Terminal& other) const { return StackValue::equalFields(other) && token == other.token; }

    virtual wchar_t getCharacter() const = 0;
    // The token's text for a message.
    virtual _eString getText() const = 0;

    std::int32_t getToken() const { return token; }

    // For the lexer, on a token that nothing else holds: it lets go of its position, so that
    // the lexer can move that on in place, and then becomes the token of the next byte instead
    // of a new one being made, where its class is the one that token's code has.
    void leavePlace() { StackValue::leavePlace(); }
    virtual bool retake(const _eHndl<Location>& location, std::int32_t code, wchar_t character) = 0;

protected:
    void renew(const _eHndl<Location>& location, std::int32_t code) {
        takePlace(location);
        token = code;
    }

private:
    std::int32_t token;  // the token code: a character below 256, a class above
};

// A token whose code says everything: a letter, digit or punctuation character, or the end.
class SimpleTerminal : public _eClass<SimpleTerminal, Terminal> {
public:
    static constexpr _aTypeSlot _aType{&_aModule25, 1};

    SimpleTerminal(const _eHndl<Location>& location, wchar_t character)
        : _eClass(location, std::int32_t(character)) {}
    SimpleTerminal(const _eHndl<Location>& location, std::int32_t code) : _eClass(location, code) {}

    bool equalFields(const SimpleTerminal& other) const { return Terminal::equalFields(other); }

    wchar_t getCharacter() const override { return wchar_t(getToken() & 0xFFFF); }
    // "'<'" for printable ASCII, else "character(256)".
    _eString getText() const override;

    // The codes of characters below 256, and the end.
    static bool holds(std::int32_t code) { return code < 256 || code == Token::endOfFile; }
    bool retake(const _eHndl<Location>& location, std::int32_t code, wchar_t) override {
        if (!holds(code)) return false;
        renew(location, code);
        return true;
    }
};

// A token that names a class of characters and carries the character itself.
class ComplexTerminal : public _eClass<ComplexTerminal, Terminal> {
public:
    static constexpr _aTypeSlot _aType{&_aModule25, 2};

    ComplexTerminal(const _eHndl<Location>& location, std::int32_t code, wchar_t character)
        : _eClass(location, code), character(character) {}

    bool equalFields(const ComplexTerminal& other) const {
        return Terminal::equalFields(other) && character == other.character;
    }

    wchar_t getCharacter() const override { return character; }
    // The character alone.
    _eString getText() const override { return _eString(character); }

    bool retake(const _eHndl<Location>& location, std::int32_t code, wchar_t next) override {
        if (SimpleTerminal::holds(code)) return false;
        renew(location, code);
        character = next;
        return true;
    }

private:
    wchar_t character;  // 16 bits
};

// The base of every syntax node.
class NonTerminal : public _eClass<NonTerminal, StackValue> {
public:
    static constexpr _aTypeSlot _aType{&_aModule8, 0};

    using _eClass::_eClass;

    bool equalFields(const NonTerminal& other) const { return StackValue::equalFields(other); }
};
