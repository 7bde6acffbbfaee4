// `XMLcontent`: the children of one element in document order, and the queries that every
// element class asks of its children: by name, single-child rules, text, references.
#pragma once

#include <initializer_list>
#include <string_view>

#include "runtime/Map.h"
#include "runtime/StringUtils.h"
#include "xml/XMLNode.h"

class XMLElement;
class XMLDictionary;

using ElementSeq = _eSeq<_eFrom<XMLElement>>;
using ClassMap = _eMap<_eString, _eFrom<XMLElement>>;
using Names = _eSet<_eString>;

class XMLcontent : public _eClass<XMLcontent, NonTerminal> {
public:
    static constexpr _aTypeSlot _aType{&_aModule17, 1};

    explicit XMLcontent(const Position& position);
    XMLcontent(const XMLcontent& other);
    ~XMLcontent() override;

    bool equalFields(const XMLcontent& other) const;

    // The items that are elements, in order.
    ElementSeq childElements() const;
    bool hasChild(const TextView& name) const;
    // The id that this content refers to: the "xmi.idref" of its one classifier reference.
    _eString referencedId(const _eHndl<Context>& context) const;
    // The single-child rules: the attribute of the one child (or grandchild) of that name, else
    // the missing-or-duplicate message.
    _eString singleChildAttributeInSet(const Names& names, const _eString& attribute,
                                       const _eHndl<Context>& context) const;
    _eString singleChildAttribute(const _eString& name, const _eString& attribute,
                                  const _eHndl<Context>& context) const;
    _eString grandchildAttributeInSet(const Names& names, const Names& innerNames, const _eString& attribute,
                                      const _eHndl<Context>& context) const;
    _eString grandchildAttribute(const _eString& name, const _eString& innerName, const _eString& attribute,
                                 const _eHndl<Context>& context) const;
    // The text of the one element at the path, else the message for the first step that isn't one.
    _eString textAtPath(const _eSeq<_eString>& path) const;
    // The character data, spaces trimmed at both ends.
    _eString text() const;
    // Every element at the path, all matches at every level, in document order.
    ElementSeq elementsAtPath(std::initializer_list<std::wstring_view> path) const;
    // How many elements `elementsAtPath` gives, where 2 stands for two or more; the first of them
    // in `first`.
    int countAtPath(std::initializer_list<std::wstring_view> path, const XMLElement*& first) const;
    ElementSeq childrenInSet(const Names& names) const;
    ElementSeq childrenNamed(const TextView& name) const;
    // How many children have the name (or one of the names), the first of them in `first`
    // (null when none): what the single-child rules ask, without a list of the children.
    int countNamed(const TextView& name, const XMLElement*& first) const;
    int countInSet(const Names& names, const XMLElement*& first) const;
    // Appends an item while the reductions build the content.
    void addItem(const _eFrom<XMLContentItem>& item);

    const _eSeq<_eFrom<XMLContentItem>>& getItems() const { return items; }

    // "?[[Missing Element 'NAME']]" or "?[[Duplicate Element 'NAME']]".
    static _eString missingOrDuplicate(const _eString& name, int found);
    // The same for a set: "'A' or 'B'", in set order.
    static _eString missingOrDuplicate(const Names& names, int found);

private:
    _eSeq<_eFrom<XMLContentItem>> items;  // the children, in document order
};
