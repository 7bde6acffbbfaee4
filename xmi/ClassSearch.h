// `ClassSearch`: where the classes of a document are, how each reads, and the one walk that
// finds them for both the class map and generation. A search is a policy: which documents it
// reads, which elements are classes, which children of an element it goes on into, and what a
// class element reads as. The walk visits them in document order, depth first.
#pragma once

#include <memory>
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
    // The document of root `root` is one this search reads: otherwise it holds no class, and
    // generation turns it down as no XMI document. By default, a root named "XMI".
    virtual bool readsDocument(const XMLElement& root) const;
    // The elements of the document by their ids.
    virtual _eHndl<XMLDictionary> dictionary(const XMLElement& root) const;
    // Everything the declaration of a class element is made of; by default as XMI 1.x writes it.
    virtual ClassRecord readClass(const XMLElement& element, const _eHndl<Context>& context) const;
    // The name of a class element.
    virtual NameRecord readName(const XMLElement& element) const;

    // The classes at or below `root` by the name each is known by. Two classes of one name
    // both stay, the pairs united as sets of pairs are: the map gives the first.
    ClassMap classMap(const XMLElement& root) const;
    // The declarations of the classes at or below `root` whose names are in `classNames`, in
    // document order.
    _eHndl<TarvaneOutput> declarations(const XMLElement& root, const Names& classNames,
                                       const _eHndl<Context>& context) const;

    // The declaration of one class element.
    _eHndl<TarvaneOutput> declaration(const XMLElement& element, const _eHndl<Context>& context) const;
    // The name a class element is known by: its key in the class map.
    _eString className(const XMLElement& element) const;

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

    static const std::shared_ptr<const PathSearch>& instance();
};

// Classes wherever exporters put them: every "UML:Class" with an "xmi.id" and no "xmi.idref"
// below "XMI.content", in nested models, packages, subsystems and other classes, written with a
// start tag or as an empty-element tag. A class that holds another comes first, whole.
class AnywhereSearch : public ClassSearch {
public:
    bool isClass(const XMLElement& element) const override;
    ElementSeq descent(const XMLElement& element) const override;

    static const std::shared_ptr<const AnywhereSearch>& instance();
};
