// Attributes and tags: what a start, end or empty-element tag leaves for its element.
#pragma once

#include <string_view>

#include "runtime/Map.h"
#include "runtime/StringUtils.h"
#include "xml/XMLNames.h"
#include "xml/XMLValues.h"

class XMLAttribute : public _eClass<XMLAttribute, NonTerminal> {
public:
    static constexpr _aTypeSlot _aType{&_aModule16, 11};

    XMLAttribute(const _eHndl<XMLString>& name, const _eHndl<XMLAttributeValue>& value)
        : XMLAttribute(name->getPosition(), XMLNames::shared(name->units()), value) {}
    // The same for a name read whole: `name` is the string kept for it, its first unit at `position`.
    XMLAttribute(const Position& position, const _eString& name, const _eHndl<XMLAttributeValue>& value)
        : _eClass(position), name(name), value(value) {}

    bool equalFields(const XMLAttribute& other) const {
        return NonTerminal::equalFields(other) && name == other.name && value == other.value;
    }

    const _eString& getName() const { return name; }
    const _eHndl<XMLAttributeValue>& getValue() const { return value; }

private:
    _eString name;
    _eHndl<XMLAttributeValue> value;
};

using AttributeMap = _eMap<_eString, _eHndl<XMLAttributeValue>>;

// The value of the attribute named `name`, or null. A start tag holds few attributes: one pass
// comparing units in place beats a search that compares strings through their trees.
inline const XMLAttributeValue* findAttribute(const AttributeMap& attributes, std::wstring_view name) {
    const auto& entries = attributes.elements();
    for (int i = 0, n = entries.size(); i < n; ++i)
        if (textIs(entries.get(i).first, name)) return entries.get(i).second.get();
    return nullptr;
}

class XMLAttributeList : public _eClass<XMLAttributeList, NonTerminal> {
public:
    static constexpr _aTypeSlot _aType{&_aModule16, 12};

    using _eClass::_eClass;

    bool equalFields(const XMLAttributeList& other) const {
        return NonTerminal::equalFields(other) && attributes == other.attributes && repeatedNames == other.repeatedNames;
    }

    // The first definition of a name wins; a later one is only noted in `repeatedNames`.
    virtual void addAttribute(const _eHndl<XMLAttribute>& attribute) {
        _eFreeze freeze(this);
        if (!attributes.putNew(attribute->getName(), attribute->getValue())) repeatedNames.pushBack(attribute->getName());
    }

    const AttributeMap& getAttributes() const { return attributes; }
    const _eSeq<_eString>& getRepeatedNames() const { return repeatedNames; }

private:
    AttributeMap attributes;
    _eSeq<_eString> repeatedNames;  // names defined again, in order
};

// The three kinds of tag share one shape: a name, and for start and empty tags the attributes.
template <class Self>
class _aTag : public _eClass<Self, NonTerminal> {
public:
    _aTag(const Position& position, const _eHndl<XMLString>& name, const _eHndl<XMLAttributeList>& attributes)
        : _aTag(position, XMLNames::shared(name->units()), attributes) {}
    // The same for a name read whole: `name` is the string kept for it.
    _aTag(const Position& position, const _eString& name, const _eHndl<XMLAttributeList>& attributes)
        : _eClass<Self, NonTerminal>(position), name(name), attributes(attributes) {}

    bool equalFields(const _aTag& other) const {
        return NonTerminal::equalFields(other) && name == other.name && attributes == other.attributes;
    }

    const _eString& getName() const { return name; }
    const _eHndl<XMLAttributeList>& getAttributes() const { return attributes; }

private:
    _eString name;
    _eHndl<XMLAttributeList> attributes;  // null for an end tag
};

class XMLEmptyElemTag : public _aTag<XMLEmptyElemTag> {
public:
    static constexpr _aTypeSlot _aType{&_aModule16, 8};
    using _aTag::_aTag;
};

class XMLSTag : public _aTag<XMLSTag> {
public:
    static constexpr _aTypeSlot _aType{&_aModule16, 9};
    using _aTag::_aTag;
};

class XMLETag : public _aTag<XMLETag> {
public:
    static constexpr _aTypeSlot _aType{&_aModule16, 10};
    XMLETag(const Position& position, const _eHndl<XMLString>& name) : _aTag(position, name, {}) {}
    XMLETag(const Position& position, const _eString& name) : _aTag(position, name, {}) {}
};
