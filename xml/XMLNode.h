// `XMLNode`: a syntax node that keeps errors; `XMLContentItem`: what an element's content holds.
#pragma once

#include "Generated/StackValue.h"
#include "Generated/XMLError.h"

class Context;
class XMLElement;

class XMLNode : public _eClass<XMLNode, NonTerminal> {
public:
    static constexpr _aTypeSlot _aType{&_aModule24, 0};

    using _eClass::_eClass;

    bool equalFields(const XMLNode& other) const { return NonTerminal::equalFields(other) && errors == other.errors; }

    virtual XMLErrors getErrors() const { return errors; }
    virtual void addError(const _eHndl<XMLError>& error) {
        _eFreeze freeze(this);
        errors.add(error);
    }
    virtual void addErrors(const XMLErrors& newErrors) {
        _eFreeze freeze(this);
        errors.addAll(newErrors);
    }

private:
    XMLErrors errors;  // empty at first
};

class XMLContentItem : public _eClass<XMLContentItem, XMLNode> {
public:
    static constexpr _aTypeSlot _aType{&_aModule16, 4};

    using _eClass::_eClass;

    bool equalFields(const XMLContentItem& other) const { return XMLNode::equalFields(other); }

    // The item as an element, or null: asked of every child whenever elements are looked for.
    virtual XMLElement* asElement() { return nullptr; }
};
