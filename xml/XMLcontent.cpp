#include "xml/XMLcontent.h"

#include <string>
#include <string_view>

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

// How many child elements `keep` keeps, the first of them in `first`.
template <class Keep>
int countWhere(const _eSeq<_eFrom<XMLContentItem>>& items, Keep keep, const XMLElement*& first) {
    int count = 0;
    first = nullptr;
    for (int i = 0, n = items.size(); i < n; ++i) {
        const XMLElement* element = items.get(i)->asElement();
        if (element == nullptr || !keep(*element)) continue;
        if (count++ == 0) first = element;
    }
    return count;
}

// Every element at the steps from `step` to `end` below `content`, all matches at every level,
// in document order.
ElementSeq elementsAlong(const XMLcontent& content, const std::wstring_view* step, const std::wstring_view* end) {
    ElementSeq children = content.childrenNamed(*step);
    if (children.isEmpty() || step + 1 == end) return children;
    ElementSeq out;
    for (int i = 0, n = children.size(); i < n; ++i)
        out.appendAll(elementsAlong(*children.get(i)->getContent(), step + 1, end));
    return out;
}

// How many elements lie at the steps from `step` to `end` below `content`, counted until there
// are `enough`; the first of them in document order in `first`, which starts null.
int countAlong(const XMLcontent& content, const std::wstring_view* step, const std::wstring_view* end, int enough,
               const XMLElement*& first) {
    int count = 0;
    const auto& items = content.getItems();
    for (int i = 0, n = items.size(); i < n && count < enough; ++i) {
        const XMLElement* element = items.get(i)->asElement();
        if (element == nullptr || !textIs(element->getName(), *step)) continue;
        if (step + 1 == end) {
            if (count++ == 0) first = element;
            continue;
        }
        const XMLElement* below = nullptr;
        count += countAlong(*element->getContent(), step + 1, end, enough - count, below);
        if (first == nullptr) first = below;
    }
    return count;
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

XMLcontent::XMLcontent(const Position& position) : _eClass(position) {}
XMLcontent::XMLcontent(const XMLcontent& other) = default;
XMLcontent::~XMLcontent() = default;

bool XMLcontent::equalFields(const XMLcontent& other) const {
    return NonTerminal::equalFields(other) && items == other.items;
}

ElementSeq XMLcontent::childElements() const {
    return elementsWhere(items, [](const XMLElement&) { return true; });
}

bool XMLcontent::hasChild(const TextView& name) const {
    const XMLElement* first = nullptr;
    return countNamed(name, first) > 0;
}

int XMLcontent::countNamed(const TextView& name, const XMLElement*& first) const {
    return countWhere(items, [&](const XMLElement& e) { return name.isIn(e.getName()); }, first);
}

int XMLcontent::countInSet(const Names& names, const XMLElement*& first) const {
    return countWhere(items, [&](const XMLElement& e) { return names.contains(e.getName()); }, first);
}

_eString XMLcontent::referencedId(const _eHndl<Context>& context) const {
    const Names& names = context->getParts().enumerations ? classifierOrEnumerationNames() : classifierNames();
    const XMLElement* candidate = nullptr;
    if (int found = countInSet(names, candidate); found != 1) return missingOrDuplicate(names, found);
    if (candidate->hasAttribute(L"xmi.idref")) return candidate->requiredAttribute(L"xmi.idref", context);
    return candidate->getContent()->grandchildAttribute(L"UML:Namespace.ownedElement", L"UML:DataType", L"xmi.idref",
                                                        context);
}

_eString XMLcontent::singleChildAttributeInSet(const Names& names, const _eString& attribute,
                                               const _eHndl<Context>& context) const {
    const XMLElement* child = nullptr;
    if (int found = countInSet(names, child); found != 1) return missingOrDuplicate(names, found);
    return child->requiredAttribute(attribute, context);
}

_eString XMLcontent::singleChildAttribute(const _eString& name, const _eString& attribute,
                                          const _eHndl<Context>& context) const {
    const XMLElement* child = nullptr;
    if (int found = countNamed(name, child); found != 1) return missingOrDuplicate(name, found);
    return child->requiredAttribute(attribute, context);
}

_eString XMLcontent::grandchildAttributeInSet(const Names& names, const Names& innerNames, const _eString& attribute,
                                              const _eHndl<Context>& context) const {
    const XMLElement* child = nullptr;
    if (int found = countInSet(names, child); found != 1) return missingOrDuplicate(names, found);
    return child->getContent()->singleChildAttributeInSet(innerNames, attribute, context);
}

_eString XMLcontent::grandchildAttribute(const _eString& name, const _eString& innerName, const _eString& attribute,
                                         const _eHndl<Context>& context) const {
    const XMLElement* child = nullptr;
    if (int found = countNamed(name, child); found != 1) return missingOrDuplicate(name, found);
    return child->getContent()->singleChildAttribute(innerName, attribute, context);
}

_eString XMLcontent::textAtPath(const _eSeq<_eString>& path) const {
    const _eString& first = path.get(0);
    const XMLElement* child = nullptr;
    if (int found = countNamed(first, child); found != 1) return missingOrDuplicate(first, found);
    if (path.size() == 1) return child->getContent()->text();
    return child->getContent()->textAtPath(path.drop(1));
}

_eString XMLcontent::text() const {
    // Gathered in one buffer and trimmed there, so that one string is made of it.
    std::wstring all;
    for (int i = 0, n = items.size(); i < n; ++i)
        if (const auto* data = dynamic_cast<const XMLCharData*>(items.get(i).get())) data->appendTextTo(all);
    std::size_t from = all.find_first_not_of(L' ');
    if (from == std::wstring::npos) return {};
    return _eString(std::wstring_view(all).substr(from, all.find_last_not_of(L' ') + 1 - from));
}

ElementSeq XMLcontent::elementsAtPath(std::initializer_list<std::wstring_view> path) const {
    return elementsAlong(*this, path.begin(), path.end());
}

int XMLcontent::countAtPath(std::initializer_list<std::wstring_view> path, const XMLElement*& first) const {
    first = nullptr;
    return countAlong(*this, path.begin(), path.end(), 2, first);
}

ElementSeq XMLcontent::childrenInSet(const Names& names) const {
    return elementsWhere(items, [&](const XMLElement& e) { return names.contains(e.getName()); });
}

ElementSeq XMLcontent::childrenNamed(const TextView& name) const {
    return elementsWhere(items, [&](const XMLElement& e) { return name.isIn(e.getName()); });
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
