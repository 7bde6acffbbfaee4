// `XMLcontent`: the children of one element in document order, and the queries that every
// element class asks of its children: by name, single-child rules, text, references.
#pragma once

#include "runtime/Map.h"
#include "xml/XMLNode.h"

class XMLElement;
class XMLDictionary;
class TarvaneOutput;
class TarvaneSections;

using ElementSeq = _eSeq<_eFrom<XMLElement>>;
using ClassMap = _eMap<_eString, _eFrom<XMLElement>>;
using Names = _eSet<_eString>;

class XMLcontent : public _eClass<XMLcontent, NonTerminal> {
public:
    static constexpr _aTypeSlot _aType{&_aModule17, 1};

    explicit XMLcontent(const _eHndl<Location>& location);
    XMLcontent(const XMLcontent& other);
    ~XMLcontent() override;

    bool equalFields(const XMLcontent& other) const;

    virtual _eHndl<XMLDictionary> dictionary() const;
    // The items that are elements, in order.
    ElementSeq childElements() const;
    virtual bool hasChild(const _eString& name) const;
    virtual _eHndl<TarvaneOutput> generateNamed(const Names& classNames, const _eString& name,
                                                const _eHndl<Context>& context) const;
    virtual _eHndl<TarvaneOutput> generateInSet(const Names& classNames, const Names& names,
                                                const _eHndl<Context>& context) const;
    virtual _eHndl<TarvaneSections> sectionsNamed(const _eString& name, const _eHndl<Context>& context) const;
    virtual _eString referencedId(const _eHndl<Context>& context) const;
    virtual _eString referencedTypeName(const _eHndl<Context>& context) const;
    virtual _eString childReferencedTypeName(const _eString& name, const _eHndl<Context>& context) const;
    virtual _eString singleChildAttributeInSet(const Names& names, const _eString& attribute,
                                               const _eHndl<Context>& context) const;
    virtual _eString singleChildAttribute(const _eString& name, const _eString& attribute,
                                          const _eHndl<Context>& context) const;
    virtual _eString grandchildAttributeInSet(const Names& names, const Names& innerNames, const _eString& attribute,
                                              const _eHndl<Context>& context) const;
    virtual _eString grandchildAttribute(const _eString& name, const _eString& innerName, const _eString& attribute,
                                         const _eHndl<Context>& context) const;
    virtual _eString textAtPath(const _eSeq<_eString>& path) const;
    // The character data, spaces trimmed at both ends.
    virtual _eString text() const;
    virtual _eString nameElementText(bool escape) const;
    virtual bool hasSingleNameElement() const;
    virtual ElementSeq elementsAtPath(const _eSeq<_eString>& path) const;
    virtual ElementSeq childrenInSet(const Names& names) const;
    virtual ElementSeq childrenNamed(const _eString& name) const;
    virtual ClassMap classesNamed(const _eString& name) const;
    virtual ClassMap classesInSet(const Names& names) const;
    virtual void addItem(const _eFrom<XMLContentItem>& item);

    const _eSeq<_eFrom<XMLContentItem>>& getItems() const { return items; }

    // "?[[Missing Element 'NAME']]" or "?[[Duplicate Element 'NAME']]".
    static _eString missingOrDuplicate(const _eString& name, int found);
    // The same for a set: "'A' or 'B'", in set order.
    static _eString missingOrDuplicate(const Names& names, int found);
    // `text` without the characters of code 32 at both ends.
    static _eString trimSpaces(const _eString& text);

private:
    _eSeq<_eFrom<XMLContentItem>> items;  // the children, in document order
};
