// `Context`: what reading a class hands down the tree: the id dictionary, through which every
// reference is followed, and the forms of the model that are read.
#pragma once

#include <memory>

#include "runtime/Class.h"
#include "xml/XMLcontent.h"

// Which forms of members are read. `specified`: members written with start tags, their
// properties as XMI 1.x lays them out. `every`: also members written as empty-element tags, with
// ids, multiplicities and flags in XML attributes, and the older attribute names some exporters
// write ("scope", "static", "abstract", "value"). `everyByName`: as `every`, for features written
// straight under their class, whose "type" attributes name their types rather than refer to them.
enum class MemberForms { specified, every, everyByName };

// The kinds of model elements that are declared beyond classes, and what is read beside each
// declaration; none as specified.
struct ModelParts {
    bool enumerations = false;
    bool interfaces = false;
    bool associationClasses = false;
    bool documentation = false;
    bool constraints = false;

    bool operator==(const ModelParts&) const = default;
};

class ModelAnnotations;

class Context : public _eClass<Context, _eAny> {
public:
    static constexpr _aTypeSlot _aType{&_aModule1, 0};

    // On the empty dictionary.
    Context();
    explicit Context(const _eHndl<XMLDictionary>& dictionary, MemberForms forms = MemberForms::specified,
                     ModelParts parts = {});
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
    const ModelParts& getParts() const { return parts; }
    // The same dictionary, reading `other` forms and `otherParts`.
    _eHndl<Context> reading(MemberForms other) const { return reading(other, parts); }
    _eHndl<Context> reading(MemberForms other, const ModelParts& otherParts) const;
    // What the model says about its elements from elsewhere (comments, constraints,
    // realisations); null where none is read.
    const ModelAnnotations* getAnnotations() const { return annotations.get(); }
    _eHndl<Context> withAnnotations(std::shared_ptr<const ModelAnnotations> index) const;

private:
    _eHndl<XMLDictionary> dictionary;
    MemberForms forms = MemberForms::specified;
    ModelParts parts;
    std::shared_ptr<const ModelAnnotations> annotations;
};
