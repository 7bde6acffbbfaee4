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

    explicit StackValue(const Position& position) : position(position) {}

    bool equalFields(const StackValue& other) const { return position == other.position; }

    virtual void setLocation(const _eHndl<Location>& place) {
        _eFreeze freeze(this);
        position = place;
    }

    // A location of its own, made on each call.
    _eHndl<Location> getLocation() const { return position.location(); }
    const Position& getPosition() const { return position; }

protected:
    // For a token remade in place.
    void moveTo(const Position& place) { position = place; }

private:
    Position position;  // where the symbol began
};

class Terminal : public _eAbstractClass<Terminal, StackValue> {
public:
    static constexpr _aTypeSlot _aType{&_aModule25, 0};

    Terminal(const Position& position, std::int32_t token) : _eAbstractClass(position), token(token) {}

    bool equalFields(const Terminal& other) const { return StackValue::equalFields(other) && token == other.token; }

    virtual wchar_t getCharacter() const = 0;
    // The token's text for a message.
    virtual _eString getText() const = 0;

    std::int32_t getToken() const { return token; }

    // For the lexer, on a token that nothing else holds: it becomes the token of the next byte,
    // at `position`, instead of a new one being made, where its class is the one `code` has.
    virtual bool retake(const Position& position, std::int32_t code, wchar_t character) = 0;

protected:
    void renew(const Position& position, std::int32_t code) {
        moveTo(position);
        token = code;
    }

private:
    std::int32_t token;  // the token code: a character below 256, a class above
};

// A token whose code says everything: a letter, digit or punctuation character, or the end.
class SimpleTerminal : public _eClass<SimpleTerminal, Terminal> {
public:
    static constexpr _aTypeSlot _aType{&_aModule25, 1};

    SimpleTerminal(const Position& position, wchar_t character) : _eClass(position, std::int32_t(character)) {}
    SimpleTerminal(const Position& position, std::int32_t code) : _eClass(position, code) {}

    bool equalFields(const SimpleTerminal& other) const { return Terminal::equalFields(other); }

    wchar_t getCharacter() const override { return wchar_t(getToken() & 0xFFFF); }
    // "'<'" for printable ASCII, else "character(256)".
    _eString getText() const override;

    // The codes of characters below 256, and the end.
    static bool holds(std::int32_t code) { return code < 256 || code == Token::endOfFile; }
    bool retake(const Position& position, std::int32_t code, wchar_t) override {
        if (!holds(code)) return false;
        renew(position, code);
        return true;
    }
};

// A token that names a class of characters and carries the character itself.
class ComplexTerminal : public _eClass<ComplexTerminal, Terminal> {
public:
    static constexpr _aTypeSlot _aType{&_aModule25, 2};

    ComplexTerminal(const Position& position, std::int32_t code, wchar_t character)
        : _eClass(position, code), character(character) {}

    bool equalFields(const ComplexTerminal& other) const {
        return Terminal::equalFields(other) && character == other.character;
    }

    wchar_t getCharacter() const override { return character; }
    // The character alone.
    _eString getText() const override { return _eString(character); }

    bool retake(const Position& position, std::int32_t code, wchar_t next) override {
        if (SimpleTerminal::holds(code)) return false;
        renew(position, code);
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
