// `Xmi2Search`: the reading of a UML 2 model saved as XMI 2.x. It finds the classes wherever
// the model holds them and reads each, with its attributes, operations, associations and
// generalizations, into the records that every reader fills; the text is the renderer's, as for
// XMI 1.x. A property that the file leaves out has the metamodel's default.
//
// Elements of other namespaces (extensions, profiles, stereotype applications, diagrams) are
// passed over, though their ids count for look-ups.
#pragma once

#include <map>
#include <mutex>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "xmi/ClassSearch.h"

class Xmi2Search : public ClassSearch {
public:
    // The reading of the document of `root` if it is an XMI 2 document: its root is "XMI" in a
    // prefix bound to an XMI 2 namespace, or an element of UML with that prefix's "version".
    // Null otherwise.
    static std::shared_ptr<const Xmi2Search> recognise(const XMLElement& root);

    // A "Class" of UML with an id that refers to nothing else, outside other namespaces.
    bool isClass(const XMLElement& element) const override;
    // The children of UML that are classes or hold one.
    ElementSeq descent(const XMLElement& element) const override;
    bool readsDocument(const XMLElement& root) const override;
    // The search keeps the ids of the document itself: none for the dictionary of XMI 1.x.
    _eHndl<XMLDictionary> dictionary(const XMLElement& root) const override;
    ClassRecord readClass(const XMLElement& element, const _eHndl<Context>& context) const override;
    // The attribute "name", else the text of one child "name"; else none, given as empty.
    NameRecord readName(const XMLElement& element) const override;

    // Made by `recognise` only; `xmiPrefix` names the XMI attributes, `umlPrefixes` the
    // prefixes bound to UML.
    Xmi2Search(const XMLElement& root, const _eString& xmiPrefix, const Names& umlPrefixes);

private:
    // An association by its ends, those that name their type, in the order of its member ends.
    struct Association {
        ElementSeq ends;
        Names navigableOwnedEnds;  // the ids the association lists as navigable
    };

    // The element is of UML: its tag and its "xmi:type" have no prefix or one bound to UML.
    bool isUml(const XMLElement& element) const;
    // The metaclass of an element: the local part of its "xmi:type", else of its tag when that
    // has a prefix; empty for a property element without a type.
    _eString metaclass(const XMLElement& element) const;
    // The metaclass, and in `uml` whether the element is of UML.
    _eString classify(const XMLElement& element, bool& uml) const;
    // The children of UML whose tag, without prefix, is `property`.
    ElementSeq properties(const XMLElement& element, const wchar_t* property) const;
    // A property of one value: the attribute, else the text of one child element of that name,
    // else `absent`.
    _eString property(const XMLElement& element, const wchar_t* name, const wchar_t* absent) const;
    // The ids that the property `name` refers to: the attribute's list, else the "xmi:idref" of
    // each child of that name.
    _eSeq<_eString> references(const XMLElement& element, const wchar_t* name) const;
    // The element of an id, or null; an id that two elements bear names neither.
    _eFrom<XMLElement> lookup(const _eString& id) const;

    // What the reference in property `name` reads as in a type: an id resolved in the
    // document, or a library type by "href".
    TypeRecord readReference(const XMLElement& element, const wchar_t* name) const;
    TypeRecord typeOfElement(const XMLElement& target) const;
    // The id that the element's "type" names; empty when it names none in the document.
    _eString typeId(const XMLElement& element) const;
    // The number of references the element's "type" holds.
    int typeCount(const XMLElement& element) const;
    MultiplicityRecord readMultiplicity(const XMLElement& element) const;
    // The text of a "lowerValue" or "upperValue": the default of the metamodel when the file
    // leaves it out; empty with `found` false when there is more than one.
    _eString bound(const XMLElement& element, const wchar_t* name, const wchar_t* absent, bool& found) const;
    _eString defaultValue(const XMLElement& element) const;

    AttributeRecord readAttribute(const XMLElement& element) const;
    OperationRecord readOperation(const XMLElement& element) const;
    ParameterRecord readParameter(const XMLElement& element) const;
    AssociationRecord readAssociation(const Association& association) const;
    // An owned attribute that is the end of an association rather than an attribute.
    bool isAssociationEnd(const XMLElement& element) const;

    // What generation looks up: built on its first use, so that listing the classes costs no
    // more than the walk that finds them.
    struct Lookups {
        std::unordered_map<std::wstring, _eFrom<XMLElement>> ids;  // an id two elements bear is none
        std::vector<Association> associations;                     // in document order
        std::map<std::wstring, std::vector<int>> byClassId;        // the associations at each class id
        Names endIds;                                              // every member end of an association
    };
    const Lookups& lookups() const;
    void indexAssociation(const XMLElement& element, Lookups& tables) const;
    static _eFrom<XMLElement> find(const Lookups& tables, const _eString& id);

    // The walk over the document that finds its classes, what holds them, and its associations.
    void findClasses();

    _eString idKey;     // "xmi:id", in the document's prefix
    _eString idrefKey;  // "xmi:idref"
    _eString typeKey;   // "xmi:type"
    Names umlPrefixes;  // the empty prefix among them
    _eFrom<XMLElement> root;
    std::unordered_set<const XMLElement*> classes;
    std::unordered_map<const XMLElement*, ElementSeq> holding;  // the children that are or hold classes
    std::vector<const XMLElement*> associationElements;         // in document order
    mutable std::once_flag lookupsBuilt;
    mutable std::unique_ptr<Lookups> built;
};
