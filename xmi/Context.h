// `Context`: what reading a class hands down the tree: the id dictionary, through which every
// reference is followed, and the forms of the model that are read.
#pragma once

#include "runtime/Class.h"
#include "xml/XMLcontent.h"

// Which forms of members are read. `specified`: members written with start tags, their
// properties as XMI 1.x lays them out. `every`: also members written as empty-element tags, with
// ids, multiplicities and flags in XML attributes, and the older attribute names some exporters
// write ("scope", "static", "abstract", "value"). `everyByName`: as `every`, for features written
// straight under their class, whose "type" attributes name their types rather than refer to them.
enum class MemberForms { specified, every, everyByName };

class Context : public _eClass<Context, _eAny> {
public:
    static constexpr _aTypeSlot _aType{&_aModule1, 0};

    // On the empty dictionary.
    Context();
    explicit Context(const _eHndl<XMLDictionary>& dictionary, MemberForms forms = MemberForms::specified);
    Context(const Context& other);
    ~Context() override;

    // The one context for reading attribute texts where no other is at hand.
    static const _eHndl<Context>& shared();

    bool equalFields(const Context& other) const;

    // The element of `id`, or null.
    _eFrom<XMLElement> lookup(const _eString& id) const;

    const _eHndl<XMLDictionary>& getDictionary() const { return dictionary; }
    MemberForms getForms() const { return forms; }
    bool everyForm() const { return forms != MemberForms::specified; }
    // The same dictionary, reading `other` forms.
    _eHndl<Context> reading(MemberForms other) const;

private:
    _eHndl<XMLDictionary> dictionary;
    MemberForms forms = MemberForms::specified;
};
