#include "xml/XMLcontent.h"

#include "runtime/StringUtils.h"
#include "xmi/XMLElement.h"
#include "xml/XMLCharData.h"

namespace {

// The children of `content` that are elements, each with its element.
template <class Keep>
ElementSeq elementsWhere(const _eSeq<_eFrom<XMLContentItem>>& items, Keep keep) {
    ElementSeq out;
    for (int i = 0, n = items.size(); i < n; ++i) {
        XMLElement* element = items.get(i)->asElement();
        if (element != nullptr && keep(*element)) out.pushBack(element);
    }
    return out;
}

const Names& classifierNames() {
    static const Names names(_eString(L"UML:AssociationClass"), _eString(L"UML:Class"), _eString(L"UML:Classifier"),
                             _eString(L"UML:DataType"), _eString(L"UML:Data_Types.Enumeration"),
                             _eString(L"UML:Data_Types.Primitive"), _eString(L"UML:Data_Types.Structure"),
                             _eString(L"UML:Interface"));
    return names;
}

// With enumerations declared, a reference to one is a classifier too.
const Names& classifierOrEnumerationNames() {
    static const Names names = [] {
        Names all = classifierNames();
        all.add(L"UML:Enumeration");
        return all;
    }();
    return names;
}

}  // namespace

XMLcontent::XMLcontent(const _eHndl<Location>& location) : _eClass(location) {}
XMLcontent::XMLcontent(const XMLcontent& other) = default;
XMLcontent::~XMLcontent() = default;

bool XMLcontent::equalFields(const XMLcontent& other) const {
    return NonTerminal::equalFields(other) && items == other.items;
}

ElementSeq XMLcontent::childElements() const {
    return elementsWhere(items, [](const XMLElement&) { return true; });
}

bool XMLcontent::hasChild(const _eString& name) const { return !childrenNamed(name).isEmpty(); }

_eString XMLcontent::referencedId(const _eHndl<Context>& context) const {
    const Names& names = context->getParts().enumerations ? classifierOrEnumerationNames() : classifierNames();
    ElementSeq candidates = childrenInSet(names);
    if (candidates.size() != 1) return missingOrDuplicate(names, candidates.size());
    const _eFrom<XMLElement>& candidate = candidates.get(0);
    if (candidate->hasAttribute(L"xmi.idref")) return candidate->requiredAttribute(L"xmi.idref", context);
    return candidate->getContent()->grandchildAttribute(L"UML:Namespace.ownedElement", L"UML:DataType", L"xmi.idref",
                                                        context);
}

_eString XMLcontent::singleChildAttributeInSet(const Names& names, const _eString& attribute,
                                               const _eHndl<Context>& context) const {
    ElementSeq children = childrenInSet(names);
    if (children.size() != 1) return missingOrDuplicate(names, children.size());
    return children.get(0)->requiredAttribute(attribute, context);
}

_eString XMLcontent::singleChildAttribute(const _eString& name, const _eString& attribute,
                                          const _eHndl<Context>& context) const {
    ElementSeq children = childrenNamed(name);
    if (children.size() != 1) return missingOrDuplicate(name, children.size());
    return children.get(0)->requiredAttribute(attribute, context);
}

_eString XMLcontent::grandchildAttributeInSet(const Names& names, const Names& innerNames, const _eString& attribute,
                                              const _eHndl<Context>& context) const {
    ElementSeq children = childrenInSet(names);
    if (children.size() != 1) return missingOrDuplicate(names, children.size());
    return children.get(0)->getContent()->singleChildAttributeInSet(innerNames, attribute, context);
}

_eString XMLcontent::grandchildAttribute(const _eString& name, const _eString& innerName, const _eString& attribute,
                                         const _eHndl<Context>& context) const {
    ElementSeq children = childrenNamed(name);
    if (children.size() != 1) return missingOrDuplicate(name, children.size());
    return children.get(0)->getContent()->singleChildAttribute(innerName, attribute, context);
}

_eString XMLcontent::textAtPath(const _eSeq<_eString>& path) const {
    const _eString& first = path.get(0);
    ElementSeq children = childrenNamed(first);
    if (children.size() != 1) return missingOrDuplicate(first, children.size());
    if (path.size() == 1) return children.get(0)->getContent()->text();
    return children.get(0)->getContent()->textAtPath(path.drop(1));
}

_eString XMLcontent::text() const {
    _eString all;
    for (int i = 0, n = items.size(); i < n; ++i)
        if (const auto* data = dynamic_cast<const XMLCharData*>(items.get(i).get())) all = all + data->getText();
    return trimSpaces(all);
}

ElementSeq XMLcontent::elementsAtPath(const _eSeq<_eString>& path) const {
    ElementSeq children = childrenNamed(path.get(0));
    if (path.size() == 1 || children.isEmpty()) return children;
    ElementSeq out;
    for (int i = 0, n = children.size(); i < n; ++i) out.appendAll(children.get(i)->getContent()->elementsAtPath(path.drop(1)));
    return out;
}

ElementSeq XMLcontent::childrenInSet(const Names& names) const {
    return elementsWhere(items, [&](const XMLElement& e) { return names.contains(e.getName()); });
}

ElementSeq XMLcontent::childrenNamed(const _eString& name) const {
    return elementsWhere(items, [&](const XMLElement& e) { return e.getName() == name; });
}

void XMLcontent::addItem(const _eFrom<XMLContentItem>& item) {
    _eFreeze freeze(this);
    items.pushBack(item);
}

_eString XMLcontent::missingOrDuplicate(const _eString& name, int found) {
    return _eString(found == 0 ? L"?[[Missing Element '" : L"?[[Duplicate Element '") + name + L"']]";
}

_eString XMLcontent::missingOrDuplicate(const Names& names, int found) {
    _eSeq<_eString> quoted;
    for (int i = 0, n = names.size(); i < n; ++i) quoted.pushBack(_eString(L"'") + names.at(i) + L"'");
    return _eString(found == 0 ? L"?[[Missing Element " : L"?[[Duplicate Element ") + join(quoted, L" or ") + L"]]";
}
