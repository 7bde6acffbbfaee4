// `XMLElement`: one XML element, with its canonical tag name, its attributes and its content,
// and the readings of model properties from either form in which XMI writes them.
#pragma once

#include "output/TarvaneSections.h"
#include "xmi/Context.h"
#include "xml/XMLTags.h"

class XMLElement : public _eClass<XMLElement, XMLContentItem> {
public:
    static constexpr _aTypeSlot _aType{&_aModule20, 0};

    // From a start tag, the content and the end tag; or from an empty-element tag.
    XMLElement(const _eHndl<XMLSTag>& startTag, const _eHndl<XMLcontent>& content, const _eHndl<XMLETag>& endTag);
    explicit XMLElement(const _eHndl<XMLEmptyElemTag>& emptyTag);

    bool equalFields(const XMLElement& other) const;

    XMLErrors getErrors() const override;
    virtual _eHndl<TarvaneOutput> generateClasses(const Names& classNames, const _eHndl<Context>& context) const;
    virtual _eHndl<TarvaneSections> generateSections(const _eHndl<Context>& context) const;
    virtual _eHndl<TarvaneOutput> asType(const _eHndl<Context>& context) const;
    virtual _eHndl<TarvaneOutput> typeOf(const _eString& elementName, const _eHndl<Context>& context) const;
    virtual _eHndl<TarvaneOutput> referencedType(const _eHndl<Context>& context) const;
    virtual ClassMap classMap() const;
    // The names of the children that an element on the path to the classes descends into;
    // null for every other element.
    virtual const Names* pathDescent() const { return nullptr; }

    _eHndl<XMLDictionary> dictionary() const;
    // The attribute's text if it is there, else the child element's "xmi.value" or text; "?" if neither.
    _eString attributeOrSubElement(const _eString& attribute, const _eString& subElement,
                                   const _eHndl<Context>& context) const;
    _eString requiredAttribute(const _eString& attribute, const _eHndl<Context>& context) const;
    _eString elementName(bool escape) const;
    _eString nameOrUnknown(bool escape) const;
    bool hasName() const;
    _eString typeName() const;
    _eString visibility(const _eHndl<Context>& context) const;
    _eString parameterKind(const _eHndl<Context>& context) const;
    bool isLeaf(const _eHndl<Context>& context) const;
    bool isAbstract(const _eHndl<Context>& context) const;
    // The type of the feature with its multiplicity: optional, plain, a set, or a set with a lower bound.
    _eHndl<TarvaneOutput> multiplicityType(const _eString& multiplicityElement, const _eString& typeElement, bool isRef,
                                           const _eHndl<Context>& context) const;
    // The body of the one "UML:Expression" of the initial value, else "?".
    _eString initialValue(const _eHndl<Context>& context) const;
    // A model literal in the target language: "100L" to "100", "'a'" to "`a`".
    static _eString literalText(const _eString& value);

    const _eString& getName() const { return name; }
    const AttributeMap& getAttributes() const { return attributes; }
    const _eHndl<XMLcontent>& getContent() const { return content; }
    bool hasAttribute(const _eString& attribute) const { return attributes.containsKey(attribute); }
    _eString attributeText(const _eString& attribute, const _eHndl<Context>& context) const;

    // "Foundation.Core.X", "Model_Management.X" and "Foundation.Data_Types.X" become "UML:X".
    static _eString canonicalTagName(const _eString& tag);

private:
    _eString name;             // the canonical tag name
    AttributeMap attributes;   // as written in the start tag
    _eHndl<XMLcontent> content;
    XMLErrors elementErrors;   // repeated attributes, mismatched end tag
};

// The element classes, with their rows in the element module's table. Each differs from
// `XMLElement` only in what it generates.
#define MB_ELEMENT_CLASS(Class, Row, Members)                                                 \
    class Class : public _eClass<Class, XMLElement> {                                        \
    public:                                                                                  \
        static constexpr _aTypeSlot _aType{&_aModule20, Row};                                \
        using _eClass::_eClass;                                                              \
        bool equalFields(const Class& other) const { return XMLElement::equalFields(other); } \
        Members                                                                              \
    };

// The elements on the path to the classes descend into the children of the names they give.
#define MB_PATH_MEMBERS                                                                                  \
    _eHndl<TarvaneOutput> generateClasses(const Names& classNames, const _eHndl<Context>& context) const \
        override;                                                                                        \
    ClassMap classMap() const override;                                                                  \
    const Names* pathDescent() const override { return &descent(); }                                     \
    static const Names& descent();

#define MB_FEATURE_MEMBERS _eHndl<TarvaneSections> generateSections(const _eHndl<Context>& context) const override;

MB_ELEMENT_CLASS(UnrecognisedElement, 2, )
MB_ELEMENT_CLASS(XMIRootElement, 3, MB_PATH_MEMBERS)
MB_ELEMENT_CLASS(XMIContentElement, 4, MB_PATH_MEMBERS)
MB_ELEMENT_CLASS(Model_ManagementModelElement, 5, MB_PATH_MEMBERS)
MB_ELEMENT_CLASS(FCNamespaceOwnedElement, 6, MB_PATH_MEMBERS)
MB_ELEMENT_CLASS(Model_ManagementPackageElement, 7, MB_PATH_MEMBERS)
MB_ELEMENT_CLASS(FCClassifierFeatureElement, 9, MB_FEATURE_MEMBERS)
MB_ELEMENT_CLASS(FCAttributeElement, 10, MB_FEATURE_MEMBERS)
#undef MB_FEATURE_MEMBERS
#undef MB_PATH_MEMBERS
#undef MB_ELEMENT_CLASS

// A "UML:Operation": a constructor, schema, function or operator.
class FCOperationElement : public _eClass<FCOperationElement, XMLElement> {
public:
    static constexpr _aTypeSlot _aType{&_aModule20, 11};
    using _eClass::_eClass;
    bool equalFields(const FCOperationElement& other) const { return XMLElement::equalFields(other); }

    _eHndl<TarvaneSections> generateSections(const _eHndl<Context>& context) const override;

    // The parameters in braces for a constructor, in parentheses otherwise; none: nothing, or "{}".
    static _eHndl<TarvaneOutput> parameterList(const ElementSeq& list, bool isConstructor,
                                               const _eHndl<Context>& context);
    // A return parameter whose type isn't void.
    static bool returnsSomething(const XMLElement& parameter, const _eHndl<Context>& context);
};

// A "UML:Class": one class declaration.
class FCClassElement : public _eClass<FCClassElement, XMLElement> {
public:
    static constexpr _aTypeSlot _aType{&_aModule20, 8};
    using _eClass::_eClass;
    bool equalFields(const FCClassElement& other) const { return XMLElement::equalFields(other); }

    _eHndl<TarvaneOutput> generateClasses(const Names& classNames, const _eHndl<Context>& context) const override;
    // A leaf class by its name; any other as ("from", name).
    _eHndl<TarvaneOutput> asType(const _eHndl<Context>& context) const override;
    ClassMap classMap() const override;

    // The members that associations give this class.
    _eHndl<TarvaneSections> associationSections(const _eHndl<Context>& context) const;
    // ("inherits", parent, ",", parent, ...), or nothing.
    _eHndl<TarvaneOutput> inheritsClause(const _eHndl<Context>& context) const;
};

class FCAssociationElement : public _eClass<FCAssociationElement, XMLElement> {
public:
    static constexpr _aTypeSlot _aType{&_aModule20, 12};
    using _eClass::_eClass;
    bool equalFields(const FCAssociationElement& other) const { return XMLElement::equalFields(other); }

    // The members that this association gives to the class of that id.
    virtual _eHndl<TarvaneSections> sectionsFor(const _eString& classId, const _eHndl<Context>& context) const;
    // The class of that id stands at one of the ends.
    virtual bool involves(const _eString& classId, const _eHndl<Context>& context) const;
    // The ids that the ends refer to: the classes that `involves` holds for.
    Names endTypeIds(const _eHndl<Context>& context) const;
    // The elements at "UML:Association.connection", "UML:AssociationEnd" that name their type by a child.
    ElementSeq ends() const;

private:
    _eHndl<TarvaneSections> endSections(const XMLElement& ownEnd, const XMLElement& farEnd, const _eString& classId,
                                        const _eHndl<Context>& context) const;
    _eHndl<TarvaneSections> farEndMember(const XMLElement& end, bool isRef, const _eHndl<Context>& context) const;
};

class FCGeneralizationElement : public _eClass<FCGeneralizationElement, XMLElement> {
public:
    static constexpr _aTypeSlot _aType{&_aModule20, 13};
    using _eClass::_eClass;
    bool equalFields(const FCGeneralizationElement& other) const { return XMLElement::equalFields(other); }

    // The parent's name as one token, "?" if it can't be found.
    virtual _eHndl<TarvaneOutput> parentOutput(const _eHndl<Context>& context) const;
    // The class of that id is the child of this generalization.
    virtual bool isChild(const _eString& classId, const _eHndl<Context>& context) const;
    // The id that the child refers to: the one class that `isChild` holds for.
    _eString childId(const _eHndl<Context>& context) const;

    static const Names& childNames();
    static const Names& parentNames();
    static const Names& innerNames();
};

// The factory that the reductions call: the tag name decides the class.
class ElementCreation {
public:
    static _eFrom<XMLElement> createElement(const _eHndl<XMLSTag>& startTag, const _eHndl<XMLcontent>& content,
                                            const _eHndl<XMLETag>& endTag);
    // Always an `UnrecognisedElement`, with empty content.
    static _eFrom<XMLElement> createEmptyElement(const _eHndl<XMLEmptyElemTag>& emptyTag);
};
