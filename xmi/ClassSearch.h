// `ClassSearch`: where the classes of a document are, and the one walk that finds them for both
// the class map and generation. A search is a policy: which elements are classes, and which
// children of an element it goes on into. The walk visits them in document order, depth first.
#pragma once

#include <vector>

#include "output/TarvaneOutput.h"
#include "xmi/XMLElement.h"

class ClassSearch {
public:
    virtual ~ClassSearch() = default;

    // The element is a class of the model.
    virtual bool isClass(const XMLElement& element) const = 0;
    // The children of `element` among which the search goes on, in document order.
    virtual ElementSeq descent(const XMLElement& element) const = 0;

    // The classes at or below `root` by the name each is known by. Two classes of one name
    // both stay, the pairs united as sets of pairs are: the map gives the first.
    ClassMap classMap(const XMLElement& root) const;
    // The declarations of the classes at or below `root` whose names are in `classNames`, in
    // document order.
    _eHndl<TarvaneOutput> declarations(const XMLElement& root, const Names& classNames,
                                       const _eHndl<Context>& context) const;

    // The declaration of one class element.
    static _eHndl<TarvaneOutput> declaration(const XMLElement& element, const _eHndl<Context>& context);
    // The name a class element is known by: its key in the class map.
    static _eString className(const XMLElement& element);

private:
    template <class Value, class Leaf, class Join>
    Value fold(const XMLElement& root, const Value& none, Leaf leaf, Join join) const;
};

// The one path of an XMI 1.x document: "XMI", "XMI.content", "UML:Model",
// "UML:Namespace.ownedElement", any depth of "UML:Package" with their own
// "UML:Namespace.ownedElement", and there the "UML:Class". Only elements built from their tag
// count: a reference or an empty-element tag stops the path.
class PathSearch : public ClassSearch {
public:
    bool isClass(const XMLElement& element) const override;
    ElementSeq descent(const XMLElement& element) const override;

    static const PathSearch& instance();
};

// Classes wherever exporters put them: every "UML:Class" with an "xmi.id" and no "xmi.idref"
// below "XMI.content", in nested models, packages, subsystems and other classes, written with a
// start tag or as an empty-element tag. A class that holds another comes first, whole.
class AnywhereSearch : public ClassSearch {
public:
    bool isClass(const XMLElement& element) const override;
    ElementSeq descent(const XMLElement& element) const override;

    static const AnywhereSearch& instance();
};
