// `Xmi2Reader`: the reading of a UML 2 model saved as XMI 2.x. It finds the classes wherever
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

#include "xmi/ModelAnnotations.h"
#include "xmi/ModelReader.h"
#include "xmi/XmiHelpers.h"

class Xmi2Reader : public ModelReader {
public:
    // The reading of the document of `root` if it is an XMI 2 document: its root is "XMI" in a
    // prefix bound to an XMI 2 namespace, or an element of UML with that prefix's "version".
    // Null otherwise.
    static std::shared_ptr<const ModelReader> recognise(const XMLElement& root, const ModelSource& source = {});

    // Made by `recognise` only; `xmiPrefix` names the XMI attributes, `umlPrefixes` the
    // prefixes bound to UML.
    Xmi2Reader(const XMLElement& root, const _eString& xmiPrefix, const Names& umlPrefixes, const ModelSource& source);

    // Every document `recognise` gives a reader for.
    bool readsDocument() const override { return true; }
    // The ids of XMI 2 ("xmi:id") are not those of the dictionary of XMI 1.x ("xmi.id"): the
    // reader keeps an index of its own and reads no context.
    ClassRecord readClass(const FoundClass& found, const _eHndl<Context>& context) const override;
    bool readsXmi1Ids() const override { return false; }
    std::vector<UnresolvedReference> unresolvedReferences() const override;
    std::size_t otherFilesSought() const override;
    // An element of UML with an id that refers to nothing; nothing within other namespaces.
    _eString definedKind(const XMLElement& element, bool& descend) const override;
    // The attribute "name", else the text of one child "name"; else none.
    NameRecord readName(const XMLElement& element) const override;
    _eString elementId(const XMLElement& element) const override { return vocabulary.id(element); }

protected:
    // A "Class" of UML with an id that refers to nothing else, outside other namespaces.
    bool isClass(const XMLElement& element) const override;
    // The children of UML that are classes or hold one.
    WalkChildren descent(const XMLElement& element) const override;
    // A "Package" of UML.
    bool isPackage(const XMLElement& element) const override;

private:
    // An association by its ends, those that name their type, in the order of its member ends.
    struct Association {
        _eString id;
        ElementSeq ends;
        Names navigableOwnedEnds;  // the ids the association lists as navigable
    };

    // What the reference in property `name` reads as in a type: an id resolved in the
    // document, or a library type by "href".
    TypeRecord readReference(const XMLElement& element, const wchar_t* name) const;
    TypeRecord typeOfElement(const XMLElement& target) const;
    // The id that the element's "type" names; empty when it names none in the document.
    _eString typeId(const XMLElement& element) const;
    // The element has an id and refers to nothing: it defines what it is, here.
    bool defines(const XMLElement& element) const;
    // A type by "href" into another file, and by an id.
    TypeRecord hrefType(const _eString& href) const;
    TypeRecord idType(const _eString& id) const;
    void noteUnresolved(const _eString& reference, const std::string& where) const;
    // The number of references the element's "type" holds.
    int typeCount(const XMLElement& element) const;
    MultiplicityRecord readMultiplicity(const XMLElement& element) const;
    // The text of a "lowerValue" or "upperValue": the default of the metamodel when the file
    // leaves it out; none with `found` false when there is more than one.
    std::optional<_eString> bound(const XMLElement& element, const wchar_t* name, const wchar_t* absent,
                                  bool& found) const;
    std::optional<_eString> defaultValue(const XMLElement& element) const;

    // "public" where the file leaves it out.
    Visibility visibility(const XMLElement& element) const;
    AttributeRecord readAttribute(const XMLElement& element) const;
    OperationRecord readOperation(const XMLElement& element) const;
    ParameterRecord readParameter(const XMLElement& element) const;
    AssociationRecord readAssociation(const Association& association) const;
    // An owned attribute that is the end of an association rather than an attribute.
    bool isAssociationEnd(const XMLElement& element) const;
    // The metaclass `kind` is declared: a class, or what the parts declare beyond classes.
    bool declares(const _eString& kind) const;
    // What the document says beside the element's declaration, as far as the parts ask.
    NotesRecord readNotes(const XMLElement& element) const;
    ConstraintRecord readConstraint(const XMLElement& element) const;
    // The interfaces that the realisations of a class name, in document order.
    std::vector<GeneralizationRecord> readRealizations(const _eString& classId) const;

    // What generation looks up: built on its first use, so that listing the classes costs no
    // more than the walk that finds them.
    struct Lookups {
        IdIndex ids;
        std::vector<Association> associations;               // in document order
        std::map<std::wstring, std::vector<int>> byClassId;  // the associations at each class id
        Names endIds;                                        // every member end of an association
        ModelAnnotations annotations;                        // comments and constraints by what they name
        std::map<std::wstring, std::vector<const XMLElement*>> realizations;  // by the ids of their clients
    };
    const Lookups& lookups() const;
    void indexAssociation(const XMLElement& element, Lookups& tables) const;
    // Comments, constraints and realisations by the elements they name or stand in, and the
    // documentation a tool keeps in its own records.
    void gatherAnnotations(Lookups& tables) const;
    _eFrom<XMLElement> lookup(const _eString& id) const { return lookups().ids.find(id); }

    // The walk over the document that finds its classes, what holds them, and its associations.
    void findClasses();

    XmiVocabulary vocabulary;
    _eString idrefKey;  // "xmi:idref", in the document's prefix
    std::unordered_set<const XMLElement*> classElements;
    std::unordered_map<const XMLElement*, ElementSeq> holding;  // the children that are or hold classes
    std::vector<const XMLElement*> associationElements;         // in document order
    mutable std::once_flag lookupsBuilt;
    mutable std::unique_ptr<Lookups> built;
    std::shared_ptr<TypeLibraries> libraries;  // with types across files; null without
    ModelParts parts;                          // what is declared and read beyond classes
    mutable std::mutex unresolvedLock;
    mutable std::vector<UnresolvedReference> unresolved;  // in the order first met
    mutable std::unordered_set<std::wstring> unresolvedSeen;
};
