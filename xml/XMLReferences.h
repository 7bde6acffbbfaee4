// References stay objects: they are never expanded, and show in text as marked placeholders,
// except character references, which give their character.
#pragma once

#include <cstdint>

#include "xml/CompactText.h"
#include "xml/XMLNames.h"
#include "xml/XMLNode.h"
#include "xml/XMLTokens.h"

// An unexpanded reference shows as its name between a mark of its kind and this.
inline constexpr wchar_t referenceMarkEnd[] = L"']]";

// Appends "MARKname']]".
inline void appendMarkedReference(CompactText& out, std::wstring_view mark, const _eString& name) {
    out.append(mark.data(), std::int32_t(mark.size()));
    std::wstring scratch;
    std::wstring_view units = unitsOf(name, scratch);
    out.append(units.data(), std::int32_t(units.size()));
    out.append(referenceMarkEnd, std::int32_t(std::size(referenceMarkEnd) - 1));
}

class XMLReference : public _eAbstractClass<XMLReference, XMLContentItem> {
public:
    static constexpr _aTypeSlot _aType{&_aModule16, 14};

    using _eAbstractClass::_eAbstractClass;

    bool equalFields(const XMLReference& other) const { return XMLContentItem::equalFields(other); }

    virtual _eString referenceText(const _eHndl<Context>& context) const = 0;
    // Appends the text that `referenceText` gives: no reference's text depends on where it is
    // read, so a value takes it in as the reference is added.
    virtual void appendTextTo(CompactText& out) const = 0;
};

class XMLEntityReference : public _eClass<XMLEntityReference, XMLReference> {
public:
    static constexpr _aTypeSlot _aType{&_aModule16, 15};

    XMLEntityReference(const Position& position, const _eHndl<XMLString>& name)
        : XMLEntityReference(position, XMLNames::shared(name->units())) {}
    // `sharedName` is the string kept among the shared names.
    XMLEntityReference(const Position& position, const _eString& sharedName) : _eClass(position), name(sharedName) {}

    bool equalFields(const XMLEntityReference& other) const {
        return XMLReference::equalFields(other) && name == other.name;
    }

    // "[[EntityRef'name']]"
    _eString referenceText(const _eHndl<Context>&) const override { return _eString(opening) + name + referenceMarkEnd; }
    void appendTextTo(CompactText& out) const override { appendMarkedReference(out, opening, name); }

    const _eString& getName() const { return name; }

private:
    static constexpr wchar_t opening[] = L"[[EntityRef'";

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
    _eString referenceText(const _eHndl<Context>&) const override { return _eString(unit()); }
    void appendTextTo(CompactText& out) const override {
        const wchar_t character = unit();
        out.append(&character, 1);
    }

    std::int32_t getCode() const { return code; }

private:
    wchar_t unit() const { return wchar_t(std::uint32_t(code) & 0xFFFFu); }

    std::int32_t code;
};

class XMLPEReference : public _eClass<XMLPEReference, NonTerminal> {
public:
    static constexpr _aTypeSlot _aType{&_aModule16, 7};

    XMLPEReference(const Position& position, const _eHndl<XMLString>& name)
        : _eClass(position), name(XMLNames::shared(name->units())) {}

    bool equalFields(const XMLPEReference& other) const { return NonTerminal::equalFields(other) && name == other.name; }

    // "[[PERef'name']]"
    _eString text(const _eHndl<Context>&) const { return _eString(opening) + name + referenceMarkEnd; }
    void appendTextTo(CompactText& out) const { appendMarkedReference(out, opening, name); }

    const _eString& getName() const { return name; }

private:
    static constexpr wchar_t opening[] = L"[[PERef'";

    _eString name;
};
