// `XMLElement`: one XML element, with its canonical tag name, its attributes and its content,
// and the readings of model properties from either form in which XMI writes them.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "xmi/ClassRecords.h"
#include "xmi/Context.h"
#include "xml/XMLTags.h"

// How tag names read. As specified, the long metamodel tags read as their "UML:" forms. Some
// exporters write the UML 1.x tags without any prefix ("Class", "Namespace.ownedElement"); with
// `unprefixedUml` those read as "UML:" forms too, every tag that has no colon and doesn't begin
// with "XMI".
enum class TagNaming { specified, unprefixedUml };

class XMLElement : public _eClass<XMLElement, XMLContentItem> {
public:
    static constexpr _aTypeSlot _aType{&_aModule20, 0};

    // From a start tag, the content and the end tag; or from an empty-element tag.
    XMLElement(const _eHndl<XMLSTag>& startTag, const _eHndl<XMLcontent>& content, const _eHndl<XMLETag>& endTag,
               TagNaming naming = TagNaming::specified);
    explicit XMLElement(const _eHndl<XMLEmptyElemTag>& emptyTag, TagNaming naming = TagNaming::specified);

    bool equalFields(const XMLElement& other) const;

    XMLErrors getErrors() const override;
    XMLElement* asElement() override { return this; }
    // What a reference to this element reads as in a type: by default its name.
    virtual TypeRecord typeRecord(const _eHndl<Context>& context) const;

    // The elements of the subtree by the ids in their attribute `idAttribute`; without
    // `extensions`, none within an "XMI.extension".
    _eHndl<XMLDictionary> dictionary(const _eString& idAttribute = L"xmi.id", bool extensions = true) const;
    // The attribute's text if it is there, else the one child element's "xmi.value" or text;
    // none if neither.
    std::optional<_eString> propertyText(const TextView& attribute, const TextView& subElement,
                                         const _eHndl<Context>& context) const;
    // `propertyText`, "?" where there is none.
    _eString attributeOrSubElement(const TextView& attribute, const TextView& subElement,
                                   const _eHndl<Context>& context) const;
    _eString requiredAttribute(const TextView& attribute, const _eHndl<Context>& context) const;
    // The name from the attribute "name", else from the one "UML:ModelElement.name" child.
    NameRecord readName() const;
    // The type of the feature, given by the attribute "type" or the one child `elementName`.
    TypeRecord readType(std::wstring_view elementName, const _eHndl<Context>& context) const;
    // What the id in an XML attribute leads to (or, for features that name their types, the
    // type of that name).
    static TypeRecord typeOfAttribute(const _eString& text, const _eHndl<Context>& context);
    // What the reference in this element's content leads to: followed exactly one step.
    TypeRecord referencedType(const _eHndl<Context>& context) const;
    // The one range at `multiplicityElement`, "UML:Multiplicity", "UML:Multiplicity.range",
    // "UML:MultiplicityRange", if there is exactly one.
    MultiplicityRecord readMultiplicity(std::wstring_view multiplicityElement, const _eHndl<Context>& context) const;
    _eString visibility(const _eHndl<Context>& context) const;
    _eString parameterKind(const _eHndl<Context>& context) const;
    // The pairs of a class: "isLeaf" and "isAbstract".
    _eString isLeaf(const _eHndl<Context>& context) const;
    _eString isAbstract(const _eHndl<Context>& context) const;
    // The XML attribute `name` when every form is read; none otherwise.
    std::optional<_eString> olderAttribute(const wchar_t* name, const _eHndl<Context>& context) const;
    // A flag as written, or, where it is left out ("?") and every form is read, the older
    // attribute `olderName` ("1" or "true" for true).
    _eString flagOrOlder(const _eString& written, const wchar_t* olderName, const _eHndl<Context>& context) const;
    // What the model says beside the element's declaration, as far as the context's parts ask:
    // the text that documents it, and the constraints on it.
    NotesRecord notes(const _eHndl<Context>& context) const;
    // What a reference to `target` reads as in a type: a declared interface as a class that isn't
    // a leaf, a declared association class as a class; anything else as the element says.
    static TypeRecord typeOfTarget(const XMLElement& target, const _eHndl<Context>& context);
    // An element built from a tag of the vocabulary, not an `UnrecognisedElement`.
    bool isRecognised() const;

    const _eString& getName() const { return name; }
    const AttributeMap& getAttributes() const { return attributes; }
    const _eHndl<XMLcontent>& getContent() const { return content; }
    // The value of the attribute, or null where the start tag has none of that name.
    const XMLAttributeValue* attributeValue(const TextView& attribute) const;
    bool hasAttribute(const TextView& attribute) const { return attributeValue(attribute) != nullptr; }
    // The "xmi.id" of the element; empty when it has none.
    _eString ownId() const;
    _eString attributeText(const TextView& attribute, const _eHndl<Context>& context) const;

    // "Foundation.Core.X", "Model_Management.X" and "Foundation.Data_Types.X" become "UML:X".
    static _eString canonicalTagName(const _eString& tag, TagNaming naming = TagNaming::specified);

private:
    _eString name;             // the canonical tag name
    AttributeMap attributes;   // as written in the start tag
    _eHndl<XMLcontent> content;
    XMLErrors elementErrors;   // repeated attributes, mismatched end tag
};

// The element classes. Each differs from `XMLElement` only in what it reads; the elements on
// the path to the classes read nothing of their own, and the class search tells them by tag.

// Any element outside the vocabulary, a reference ("xmi.idref"), or an empty-element tag.
class UnrecognisedElement final : public _eClass<UnrecognisedElement, XMLElement> {
public:
    static constexpr _aTypeSlot _aType{&_aModule20, 2};
    using _eClass::_eClass;
    bool equalFields(const UnrecognisedElement& other) const { return XMLElement::equalFields(other); }
};

// The document element "XMI".
class XMIRootElement : public _eClass<XMIRootElement, XMLElement> {
public:
    static constexpr _aTypeSlot _aType{&_aModule20, 3};
    using _eClass::_eClass;
    bool equalFields(const XMIRootElement& other) const { return XMLElement::equalFields(other); }
};

// "XMI.content".
class XMIContentElement : public _eClass<XMIContentElement, XMLElement> {
public:
    static constexpr _aTypeSlot _aType{&_aModule20, 4};
    using _eClass::_eClass;
    bool equalFields(const XMIContentElement& other) const { return XMLElement::equalFields(other); }
};

// "UML:Model".
class Model_ManagementModelElement : public _eClass<Model_ManagementModelElement, XMLElement> {
public:
    static constexpr _aTypeSlot _aType{&_aModule20, 5};
    using _eClass::_eClass;
    bool equalFields(const Model_ManagementModelElement& other) const { return XMLElement::equalFields(other); }
};

// "UML:Namespace.ownedElement".
class FCNamespaceOwnedElement : public _eClass<FCNamespaceOwnedElement, XMLElement> {
public:
    static constexpr _aTypeSlot _aType{&_aModule20, 6};
    using _eClass::_eClass;
    bool equalFields(const FCNamespaceOwnedElement& other) const { return XMLElement::equalFields(other); }
};

// "UML:Package".
class Model_ManagementPackageElement : public _eClass<Model_ManagementPackageElement, XMLElement> {
public:
    static constexpr _aTypeSlot _aType{&_aModule20, 7};
    using _eClass::_eClass;
    bool equalFields(const Model_ManagementPackageElement& other) const { return XMLElement::equalFields(other); }
};

// "UML:Classifier.feature": the attributes and operations of a class.
class FCClassifierFeatureElement : public _eClass<FCClassifierFeatureElement, XMLElement> {
public:
    static constexpr _aTypeSlot _aType{&_aModule20, 9};
    using _eClass::_eClass;
    bool equalFields(const FCClassifierFeatureElement& other) const { return XMLElement::equalFields(other); }
};

// "UML:Attribute".
class FCAttributeElement : public _eClass<FCAttributeElement, XMLElement> {
public:
    static constexpr _aTypeSlot _aType{&_aModule20, 10};
    using _eClass::_eClass;
    bool equalFields(const FCAttributeElement& other) const { return XMLElement::equalFields(other); }
    AttributeRecord read(const _eHndl<Context>& context) const;
};

// "UML:Operation".
class FCOperationElement : public _eClass<FCOperationElement, XMLElement> {
public:
    static constexpr _aTypeSlot _aType{&_aModule20, 11};
    using _eClass::_eClass;
    bool equalFields(const FCOperationElement& other) const { return XMLElement::equalFields(other); }

    OperationRecord read(const _eHndl<Context>& context) const;
    // A parameter at "UML:BehavioralFeature.parameter", "UML:Parameter".
    static ParameterRecord readParameter(const XMLElement& parameter, const _eHndl<Context>& context);
    // The result that the operation's own "type" attribute gives, where no parameter is one.
    std::optional<ParameterRecord> olderResult(const _eHndl<Context>& context,
                                               const std::vector<ParameterRecord>& parameters) const;
};

// "UML:Class".
class FCClassElement : public _eClass<FCClassElement, XMLElement> {
public:
    static constexpr _aTypeSlot _aType{&_aModule20, 8};
    using _eClass::_eClass;
    bool equalFields(const FCClassElement& other) const { return XMLElement::equalFields(other); }

    // A class in a type: its name, and whether it is a leaf.
    TypeRecord typeRecord(const _eHndl<Context>& context) const override;

    // Everything the class declaration is made of: its name and modifiers, its features, the
    // associations that involve it and the parents its generalizations give.
    static ClassRecord readClass(const XMLElement& element, const _eHndl<Context>& context);
    // The attributes of `content`, then its operations, each kind in document order.
    static void readFeatures(const XMLcontent& content, const _eHndl<Context>& context,
                             std::vector<FeatureRecord>& features);
};

// "UML:Association": known through the dictionary, wherever it stands.
class FCAssociationElement final : public _eClass<FCAssociationElement, XMLElement> {
public:
    static constexpr _aTypeSlot _aType{&_aModule20, 12};
    using _eClass::_eClass;
    bool equalFields(const FCAssociationElement& other) const { return XMLElement::equalFields(other); }

    AssociationRecord read(const _eHndl<Context>& context) const { return read(*this, context); }
    // The ids that the ends refer to: the classes that the association involves.
    Names endTypeIds(const _eHndl<Context>& context) const { return endTypeIds(*this, context); }
    // The same of any element written as an association is: an association class.
    static AssociationRecord read(const XMLElement& association, const _eHndl<Context>& context);
    static Names endTypeIds(const XMLElement& association, const _eHndl<Context>& context);

private:
    // Where an end names its type: the children `elementName`, or in every form an id in an XML
    // attribute.
    struct EndReference {
        const XMLElement* end = nullptr;
        const wchar_t* elementName = nullptr;
        ElementSeq elements;
        std::optional<_eString> attributeId;

        bool named() const { return !elements.isEmpty() || attributeId.has_value(); }
        // The id as written.
        _eString id(const _eHndl<Context>& context) const;
    };
    // The elements at "UML:Association.connection", "UML:AssociationEnd" that name their type,
    // each with where it does.
    static std::vector<EndReference> ends(const XMLElement& association, const _eHndl<Context>& context);
};

// "UML:Generalization": known through the dictionary, wherever it stands.
class FCGeneralizationElement final : public _eClass<FCGeneralizationElement, XMLElement> {
public:
    static constexpr _aTypeSlot _aType{&_aModule20, 13};
    using _eClass::_eClass;
    bool equalFields(const FCGeneralizationElement& other) const { return XMLElement::equalFields(other); }

    // What the parent reference leads to; its name stands in the inherits list.
    TypeRecord readParent(const _eHndl<Context>& context) const;
    // The id that the child refers to: the one class that the generalization gives a parent.
    _eString childId(const _eHndl<Context>& context) const;

    static const Names& childNames();
    static const Names& parentNames();
    static const Names& innerNames();

private:
    // The id at `elementNames` and one of the inner elements, or in the XML attribute
    // `attribute` or `older`.
    _eString endId(const Names& elementNames, const wchar_t* attribute, const wchar_t* older,
                   const _eHndl<Context>& context) const;
};

// The factory that the reductions call: the tag name decides the class.
class ElementCreation {
public:
    static _eFrom<XMLElement> createElement(const _eHndl<XMLSTag>& startTag, const _eHndl<XMLcontent>& content,
                                            const _eHndl<XMLETag>& endTag, TagNaming naming = TagNaming::specified);
    // An `UnrecognisedElement`, with empty content; with `byTag`, the class of its tag as for a
    // start tag, unless it is a reference.
    static _eFrom<XMLElement> createEmptyElement(const _eHndl<XMLEmptyElemTag>& emptyTag,
                                                 TagNaming naming = TagNaming::specified, bool byTag = false);
};
