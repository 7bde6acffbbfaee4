// References stay objects: they are never expanded, and show in text as marked placeholders,
// except character references, which give their character.
#pragma once

#include <cstdint>

#include "xml/XMLNames.h"
#include "xml/XMLNode.h"
#include "xml/XMLTokens.h"

class XMLReference : public _eAbstractClass<XMLReference, XMLContentItem> {
public:
    static constexpr _aTypeSlot _aType{&_aModule16, 14};

    using _eAbstractClass::_eAbstractClass;

    bool equalFields(const XMLReference& other) const { return XMLContentItem::equalFields(other); }

    virtual _eString referenceText(const _eHndl<Context>& context) const = 0;
};

class XMLEntityReference : public _eClass<XMLEntityReference, XMLReference> {
public:
    static constexpr _aTypeSlot _aType{&_aModule16, 15};

    XMLEntityReference(const Position& position, const _eHndl<XMLString>& name)
        : _eClass(position), name(XMLNames::shared(name->units())) {}

    bool equalFields(const XMLEntityReference& other) const {
        return XMLReference::equalFields(other) && name == other.name;
    }

    // "[[EntityRef'name']]"
    _eString referenceText(const _eHndl<Context>&) const override {
        return _eString(L"[[EntityRef'") + name + L"']]";
    }

    const _eString& getName() const { return name; }

private:
    _eString name;
};

class XMLCharReference final : public _eClass<XMLCharReference, XMLReference> {
public:
    static constexpr _aTypeSlot _aType{&_aModule16, 16};

    XMLCharReference(const Position& position, const _eHndl<XMLNumber>& number)
        : _eClass(position), code(number->getValue()) {}
    XMLCharReference(const Position& position, std::int32_t code) : _eClass(position), code(code) {}

    bool equalFields(const XMLCharReference& other) const {
        return XMLReference::equalFields(other) && code == other.code;
    }

    // The character of the code, cut to 16 bits.
    _eString referenceText(const _eHndl<Context>&) const override {
        return _eString(wchar_t(std::uint32_t(code) & 0xFFFFu));
    }

    std::int32_t getCode() const { return code; }

private:
    std::int32_t code;
};

class XMLPEReference : public _eClass<XMLPEReference, NonTerminal> {
public:
    static constexpr _aTypeSlot _aType{&_aModule16, 7};

    XMLPEReference(const Position& position, const _eHndl<XMLString>& name)
        : _eClass(position), name(XMLNames::shared(name->units())) {}

    bool equalFields(const XMLPEReference& other) const { return NonTerminal::equalFields(other) && name == other.name; }

    // "[[PERef'name']]"
    _eString text(const _eHndl<Context>&) const { return _eString(L"[[PERef'") + name + L"']]"; }

    const _eString& getName() const { return name; }

private:
    _eString name;
};
