// `XMLElement`: one XML element, with its canonical tag name, its attributes and its content,
// and the readings of model properties from either form in which XMI writes them.
#pragma once

#include "output/TarvaneSections.h"
#include "xmi/Context.h"
#include "xml/XMLTags.h"

class MB_API XMLElement : public _eClass<XMLElement, XMLContentItem> {
public:
    static constexpr const wchar_t* _aTypeName = L"XMLElement";

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

// The element classes. Each differs from `XMLElement` only in what it generates.
#define MB_ELEMENT_CLASS(Class)                                                   \
    class MB_API Class : public _eClass<Class, XMLElement> {                      \
    public:                                                                       \
        static constexpr const wchar_t* _aTypeName = L## #Class;                    \
        using _eClass::_eClass;                                                   \
        bool equalFields(const Class& other) const { return XMLElement::equalFields(other); } \
    };

MB_ELEMENT_CLASS(UnrecognisedElement)
MB_ELEMENT_CLASS(XMIRootElement)
MB_ELEMENT_CLASS(XMIContentElement)
MB_ELEMENT_CLASS(Model_ManagementModelElement)
MB_ELEMENT_CLASS(FCNamespaceOwnedElement)
MB_ELEMENT_CLASS(Model_ManagementPackageElement)
MB_ELEMENT_CLASS(FCClassElement)
MB_ELEMENT_CLASS(FCClassifierFeatureElement)
MB_ELEMENT_CLASS(FCAttributeElement)
MB_ELEMENT_CLASS(FCOperationElement)

#undef MB_ELEMENT_CLASS

class MB_API FCAssociationElement : public _eClass<FCAssociationElement, XMLElement> {
public:
    static constexpr const wchar_t* _aTypeName = L"FCAssociationElement";
    using _eClass::_eClass;
    bool equalFields(const FCAssociationElement& other) const { return XMLElement::equalFields(other); }

    // The class of that id stands at one of the ends.
    virtual bool involves(const _eString& classId, const _eHndl<Context>& context) const;
    // The elements at "UML:Association.connection", "UML:AssociationEnd" that name their type by a child.
    ElementSeq ends() const;
};

class MB_API FCGeneralizationElement : public _eClass<FCGeneralizationElement, XMLElement> {
public:
    static constexpr const wchar_t* _aTypeName = L"FCGeneralizationElement";
    using _eClass::_eClass;
    bool equalFields(const FCGeneralizationElement& other) const { return XMLElement::equalFields(other); }

    // The class of that id is the child of this generalization.
    virtual bool isChild(const _eString& classId, const _eHndl<Context>& context) const;

    static const Names& childNames();
    static const Names& parentNames();
    static const Names& innerNames();
};

// The factory that the reductions call: the tag name decides the class.
class MB_API ElementCreation {
public:
    static _eFrom<XMLElement> createElement(const _eHndl<XMLSTag>& startTag, const _eHndl<XMLcontent>& content,
                                            const _eHndl<XMLETag>& endTag);
    // Always an `UnrecognisedElement`, with empty content.
    static _eFrom<XMLElement> createEmptyElement(const _eHndl<XMLEmptyElemTag>& emptyTag);
};
