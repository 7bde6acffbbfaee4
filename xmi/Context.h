// `Context`: what generation hands down the tree: the id dictionary, the class being generated
// and the prefix of role names.
#pragma once

#include "runtime/Class.h"
#include "xml/XMLcontent.h"

class Context : public _eClass<Context, _eAny> {
public:
    static constexpr _aTypeSlot _aType{&_aModule1, 0};

    // On the empty dictionary.
    Context();
    explicit Context(const _eHndl<XMLDictionary>& dictionary);
    Context(const Context& other);
    ~Context() override;

    // The one context for reading attribute texts where no other is at hand.
    static const _eHndl<Context>& shared();

    bool equalFields(const Context& other) const;

    _eFrom<XMLElement> lookup(const _eString& id) const;
    _eHndl<Context> withClassName(const _eString& name) const;

    const _eHndl<XMLDictionary>& getDictionary() const { return dictionary; }
    const _eString& getClassName() const { return className; }
    const _eString& getRolePrefix() const { return rolePrefix; }

private:
    _eHndl<XMLDictionary> dictionary;
    _eString className;   // "?" until a class element names itself
    _eString rolePrefix;  // always "my"
};
