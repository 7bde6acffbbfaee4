// `Context`: what reading a class hands down the tree: the id dictionary, through which every
// reference is followed.
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

    // The element of `id`, or null.
    _eFrom<XMLElement> lookup(const _eString& id) const;

    const _eHndl<XMLDictionary>& getDictionary() const { return dictionary; }

private:
    _eHndl<XMLDictionary> dictionary;
};
