// Entity values and attribute values: lists of characters and references that give their text
// on demand.
#pragma once

#include "xml/XMLReferences.h"

class XMLCharValue;

class XMLEntityValueElement : public _eAbstractClass<XMLEntityValueElement, _eAny> {
public:
    static constexpr _aTypeSlot _aType{&_aModule16, 0};

    // The context belongs to the fixed shape of value texts: every caller hands one on, and no
    // value reads it.
    virtual _eString text(const _eHndl<Context>& context) const = 0;
    // Appends the text to `out`: a value is read one element after another.
    virtual void appendText(_eString& out, const _eHndl<Context>& context) const { out.appendAll(text(context)); }
    // The element as a character, or null.
    virtual const XMLCharValue* asCharacter() const { return nullptr; }
};

class XMLCharValue : public _eClass<XMLCharValue, XMLEntityValueElement> {
public:
    static constexpr _aTypeSlot _aType{&_aModule16, 1};

    explicit XMLCharValue(wchar_t character) : character(character) {}

    // The value of a byte-sized character, one object per character shared by every list:
    // values never change, so holding the same object costs a count instead of a block.
    // Wider characters get an object of their own.
    static _eFrom<XMLEntityValueElement> of(wchar_t character);

    bool equalFields(const XMLCharValue& other) const { return character == other.character; }
    _eString text(const _eHndl<Context>&) const override { return _eString(character); }
    void appendText(_eString& out, const _eHndl<Context>&) const override { out.pushBack(character); }
    const XMLCharValue* asCharacter() const override { return this; }
    wchar_t getCharacter() const { return character; }

private:
    wchar_t character;
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

using ValueElements = _eSeq<_eFrom<XMLEntityValueElement>>;

// Entity and attribute values share their shape: a list of characters and references.
template <class Self>
class _aValueList : public _eClass<Self, NonTerminal> {
public:
    using _eClass<Self, NonTerminal>::_eClass;

    bool equalFields(const _aValueList& other) const {
        return NonTerminal::equalFields(other) && elements == other.elements;
    }

    virtual void addReference(const _eFrom<XMLReference>& reference) { append(new XMLReferenceValue(reference)); }
    virtual void addCharacter(const _eHndl<Terminal>& terminal) { append(XMLCharValue::of(terminal->getCharacter())); }
    void addCharacters(const wchar_t* units, std::int32_t count) {
        _eFreeze freeze(this);
        for (std::int32_t i = 0; i < count; ++i) elements.pushBack(XMLCharValue::of(units[i]));
    }

    const ValueElements& getElements() const { return elements; }

protected:
    void append(const _eFrom<XMLEntityValueElement>& element) {
        _eFreeze freeze(this);
        elements.pushBack(element);
    }
    void replaceElements(const ValueElements& equal) {
        _eFreeze freeze(this);
        elements = equal;
    }

private:
    ValueElements elements;
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

    // Holds the elements that other values of the same characters hold, when there are few of
    // them and no reference among them: short values repeat all through a document.
    void shareElements();

    // The texts of the elements, in order.
    virtual _eString text(const _eHndl<Context>& context) const {
        _eString out;
        const ValueElements& elements = getElements();
        _eSeqReader<_eFrom<XMLEntityValueElement>> reader(elements);
        for (int i = 0, n = elements.size(); i < n; ++i) reader.next()->appendText(out, context);
        return out;
    }
};
