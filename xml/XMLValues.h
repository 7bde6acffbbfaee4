// Entity values and attribute values: lists of characters and references that give their text
// on demand.
#pragma once

#include "xml/CompactText.h"
#include "xml/XMLNames.h"
#include "xml/XMLReferences.h"

class XMLCharValue;

class XMLEntityValueElement : public _eAbstractClass<XMLEntityValueElement, _eAny> {
public:
    static constexpr _aTypeSlot _aType{&_aModule16, 0};

    // The context belongs to the fixed shape of value texts: every caller hands one on, and no
    // value reads it.
    virtual _eString text(const _eHndl<Context>& context) const = 0;
    // Appends the text to `out`: a value is gathered element after element in one buffer.
    virtual void appendText(std::wstring& out, const _eHndl<Context>& context) const {
        appendUnits(out, text(context));
    }
};

class XMLCharValue : public _eClass<XMLCharValue, XMLEntityValueElement> {
public:
    static constexpr _aTypeSlot _aType{&_aModule16, 1};

    // A run of characters.
    explicit XMLCharValue(CompactText&& characters) : characters(std::move(characters)) {}

    bool equalFields(const XMLCharValue& other) const { return characters == other.characters; }
    _eString text(const _eHndl<Context>&) const override { return characters.text(); }
    void appendText(std::wstring& out, const _eHndl<Context>&) const override { characters.appendTo(out); }

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

// Entity and attribute values share their shape: characters and references. The characters
// since the last reference are held together, so that a value without references is its text,
// and a reference closes the run before it into an element of the list.
template <class Self>
class _aValueList : public _eClass<Self, NonTerminal> {
public:
    using _eClass<Self, NonTerminal>::_eClass;

    bool equalFields(const _aValueList& other) const {
        return NonTerminal::equalFields(other) && elements == other.elements && characters == other.characters;
    }

    virtual void addReference(const _eFrom<XMLReference>& reference) { append(new XMLReferenceValue(reference)); }
    virtual void addCharacter(const _eHndl<Terminal>& terminal) {
        wchar_t character = terminal->getCharacter();
        addCharacters(&character, 1);
    }
    template <class Unit>
    void addCharacters(const Unit* units, std::int32_t count) {
        _eFreeze freeze(this);
        characters.append(units, count);
    }

    // The texts of the elements and of the characters after them, in order.
    virtual _eString text(const _eHndl<Context>& context) const {
        if (elements.isEmpty()) return characters.text();
        std::wstring out;
        _eSeqReader<_eFrom<XMLEntityValueElement>> reader(elements);
        for (int i = 0, n = elements.size(); i < n; ++i) reader.next()->appendText(out, context);
        characters.appendTo(out);
        return _eString(std::wstring_view(out));
    }

    // The characters, where they are the whole value and held in bytes; else null.
    const CompactText* wholeInBytes() const {
        return elements.isEmpty() && characters.byteUnits() != nullptr ? &characters : nullptr;
    }

protected:
    void append(const _eFrom<XMLEntityValueElement>& element) {
        _eFreeze freeze(this);
        if (characters.size() > 0) {
            characters.fit();
            elements.pushBack(new XMLCharValue(std::move(characters)));
        }
        elements.pushBack(element);
    }
    bool hasOnlyCharacters() const { return elements.isEmpty(); }
    // Once the value is whole: holds short characters as the string kept for them, where
    // `share` holds, for short values repeat all through a document; gives back the room
    // gathered beyond other characters, which stay as they were gathered.
    void settleCharacters(bool share) {
        _eFreeze freeze(this);
        constexpr std::int32_t longestShared = 32;
        if (share)
            characters.settle<longestShared>(XMLNames::sharedValue);
        else
            characters.fit();
    }

private:
    _eSeq<_eFrom<XMLEntityValueElement>> elements;  // up to the last reference
    CompactText characters;                         // after it
};

class XMLEntityValue : public _aValueList<XMLEntityValue> {
public:
    static constexpr _aTypeSlot _aType{&_aModule16, 13};
    using _aValueList::_aValueList;

    virtual void addPEReference(const _eHndl<XMLPEReference>& reference) { append(new XMLPEReferenceValue(reference)); }
};

class XMLAttributeValue : public _aValueList<XMLAttributeValue> {
public:
    static constexpr _aTypeSlot _aType{&_aModule16, 17};
    using _aValueList::_aValueList;

    // Once the value is whole: holds the string that other values of the same characters hold,
    // when the value is short and has no reference: short values repeat all through a document.
    void shareElements() { settleCharacters(hasOnlyCharacters()); }
};
