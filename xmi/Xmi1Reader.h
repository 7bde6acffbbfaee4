// The readers of UML 1.x models saved as XMI 1.x: along the one path that XMI 1.x gives, or
// wherever exporters put their classes. Both read a class alike, through the element classes
// (xmi/XMLElement.h) and the id dictionary; they differ in where they look.
#pragma once

#include <mutex>

#include "xmi/ModelAnnotations.h"
#include "xmi/ModelReader.h"

class Xmi1Reader : public ModelReader {
public:
    // A document whose root is "XMI".
    bool readsDocument() const override;
    // Its features, the associations that involve it, its parents, its documentation.
    ClassRecord readClass(const FoundClass& found, const _eHndl<Context>& context) const override;
    // The attribute "name", else the one "UML:ModelElement.name".
    NameRecord readName(const XMLElement& element) const override;
    bool readsXmi1Ids() const override { return true; }
    // A "UML:" element with an "xmi.id"; "XMI.extension" holds the tools' own records.
    _eString definedKind(const XMLElement& element, bool& descend) const override;
    // In every form, the ids of the tools' records are left out.
    bool countsExtensionIds() const override { return forms == MemberForms::specified; }
    _eString elementId(const XMLElement& element) const override { return element.ownId(); }
    DictionaryKey elementIdKey(const XMLElement& element) const override {
        const XMLAttributeValue* id = element.attributeValue(L"xmi.id");
        return id != nullptr ? DictionaryKey::of(*id) : DictionaryKey(_eString());
    }

protected:
    Xmi1Reader(const XMLElement& root, MemberForms forms, ModelParts parts)
        : ModelReader(root), forms(forms), parts(parts) {}

    // "UML:Package" and "UML:Subsystem".
    bool isPackage(const XMLElement& element) const override;
    // An element with an id, not a reference, of a kind declared beyond classes: an interface,
    // an association class, an enumeration with literals.
    bool isDeclaredBeyondClasses(const XMLElement& element) const;

    MemberForms forms;  // the forms of members read
    ModelParts parts;   // what is declared and read beyond classes

private:
    // What the document says about its elements from elsewhere, gathered on first use through
    // the dictionary of `context`.
    std::shared_ptr<const ModelAnnotations> annotations(const _eHndl<Context>& context) const;

    mutable std::once_flag annotationsGathered;
    mutable std::shared_ptr<const ModelAnnotations> gathered;
};

// The one path of an XMI 1.x document: "XMI", "XMI.content", "UML:Model",
// "UML:Namespace.ownedElement", any depth of "UML:Package" with their own
// "UML:Namespace.ownedElement", and there the "UML:Class". Only elements built from their tag
// count: a reference or an empty-element tag stops the path.
class Xmi1PathReader : public Xmi1Reader {
public:
    explicit Xmi1PathReader(const XMLElement& root, MemberForms forms = MemberForms::specified, ModelParts parts = {})
        : Xmi1Reader(root, forms, parts) {}
    // Every document: the path reader is the last row of the table.
    static std::shared_ptr<const ModelReader> recognise(const XMLElement& root, const ModelSource& source = {});

protected:
    bool isClass(const XMLElement& element) const override;
    WalkChildren descent(const XMLElement& element) const override;
};

// Classes wherever exporters put them: every "UML:Class" with an "xmi.id" and no "xmi.idref"
// below "XMI.content", in nested models, packages, subsystems and other classes, written with a
// start tag or as an empty-element tag. A class that holds another comes first, whole.
class Xmi1AnywhereReader : public Xmi1Reader {
public:
    explicit Xmi1AnywhereReader(const XMLElement& root, MemberForms forms = MemberForms::specified,
                                ModelParts parts = {})
        : Xmi1Reader(root, forms, parts) {}
    // Every document, as the path reader: an XMI 1.x document and anything not XMI 2.
    static std::shared_ptr<const ModelReader> recognise(const XMLElement& root, const ModelSource& source = {});

protected:
    bool isClass(const XMLElement& element) const override;
    WalkChildren descent(const XMLElement& element) const override;
};
