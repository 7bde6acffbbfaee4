// Entity values and attribute values: characters and references, held as the text they give.
#pragma once

#include "xml/CompactText.h"
#include "xml/XMLNames.h"
#include "xml/XMLReferences.h"

class XMLCharValue;

// The elements a value is made of, each giving its text on demand. The parser's values hold
// that text gathered instead (`_aValueList`), as no element's text depends on where it is read.
class XMLEntityValueElement : public _eAbstractClass<XMLEntityValueElement, _eAny> {
public:
    static constexpr _aTypeSlot _aType{&_aModule16, 0};

    // The context belongs to the fixed shape of value texts: every caller hands one on, and no
    // value reads it.
    virtual _eString text(const _eHndl<Context>& context) const = 0;
};

class XMLCharValue : public _eClass<XMLCharValue, XMLEntityValueElement> {
public:
    static constexpr _aTypeSlot _aType{&_aModule16, 1};

    // A run of characters.
    explicit XMLCharValue(CompactText&& characters) : characters(std::move(characters)) {}

    bool equalFields(const XMLCharValue& other) const { return characters == other.characters; }
    _eString text(const _eHndl<Context>&) const override { return characters.text(); }

private:
    CompactText characters;
};

class XMLReferenceValue : public _eClass<XMLReferenceValue, XMLEntityValueElement> {
public:
    static constexpr _aTypeSlot _aType{&_aModule16, 2};

    explicit XMLReferenceValue(const _eFrom<XMLReference>& reference) : reference(reference) {}

    bool equalFields(const XMLReferenceValue& other) const { return reference == other.reference; }
    _eString text(const _eHndl<Context>& context) const override { return reference->referenceText(context); }

private:
    _eFrom<XMLReference> reference;
};

class XMLPEReferenceValue : public _eClass<XMLPEReferenceValue, XMLEntityValueElement> {
public:
    static constexpr _aTypeSlot _aType{&_aModule16, 3};

    explicit XMLPEReferenceValue(const _eHndl<XMLPEReference>& reference) : reference(reference) {}

    bool equalFields(const XMLPEReferenceValue& other) const { return reference == other.reference; }
    _eString text(const _eHndl<Context>& context) const override { return reference->text(context); }

private:
    _eHndl<XMLPEReference> reference;
};

// Entity and attribute values share their shape: characters and references. A reference's
// text never depends on where it is read: it is taken into the characters as the reference is
// added, and the value is its text.
template <class Self>
class _aValueList : public _eClass<Self, NonTerminal> {
public:
    using _eClass<Self, NonTerminal>::_eClass;

    bool equalFields(const _aValueList& other) const {
        return NonTerminal::equalFields(other) && characters == other.characters;
    }

    virtual void addReference(const _eFrom<XMLReference>& reference) { addTextOf(*reference); }
    virtual void addCharacter(const _eHndl<Terminal>& terminal) {
        wchar_t character = terminal->getCharacter();
        addCharacters(&character, 1);
    }
    template <class Unit>
    void addCharacters(const Unit* units, std::int32_t count) {
        _eFreeze freeze(this);
        characters.append(units, count);
    }

    // The texts of the characters and references, in order.
    virtual _eString text(const _eHndl<Context>&) const { return characters.text(); }

    // The text, where it is held in bytes; else null.
    const CompactText* wholeInBytes() const { return characters.byteUnits() != nullptr ? &characters : nullptr; }

protected:
    // Takes in the text of a reference of either kind.
    template <class Reference>
    void addTextOf(const Reference& reference) {
        _eFreeze freeze(this);
        reference.appendTextTo(characters);
    }
    // Once the value is whole: holds short text as the string kept for it, for short values
    // repeat all through a document; gives back the room gathered beyond other text.
    void settleCharacters() {
        _eFreeze freeze(this);
        characters.settle<longestShared>(XMLNames::sharedValue);
    }
    // On a value with nothing in it yet: its characters, then `settleCharacters`.
    void settleCharacters(const unsigned char* units, std::int32_t count) {
        _eFreeze freeze(this);
        characters.settleFrom<longestShared>(units, count, XMLNames::sharedValue);
    }

private:
    static constexpr std::int32_t longestShared = 32;

    CompactText characters;
};

class XMLEntityValue : public _aValueList<XMLEntityValue> {
public:
    static constexpr _aTypeSlot _aType{&_aModule16, 13};
    using _aValueList::_aValueList;

    virtual void addPEReference(const _eHndl<XMLPEReference>& reference) { addTextOf(*reference); }
};

class XMLAttributeValue : public _aValueList<XMLAttributeValue> {
public:
    static constexpr _aTypeSlot _aType{&_aModule16, 17};
    using _aValueList::_aValueList;

    // Once the value is whole: holds the string that other values of the same text hold, when
    // the value is short: short values repeat all through a document.
    void shareElements() { settleCharacters(); }
    // On a value with nothing in it yet, the same as adding the units, then `shareElements`.
    void shareElements(const unsigned char* units, std::int32_t count) { settleCharacters(units, count); }
};
