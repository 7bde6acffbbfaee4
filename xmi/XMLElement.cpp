#include "xmi/XMLElement.h"

#include <cstdint>
#include <optional>
#include <string>
#include <typeinfo>
#include <unordered_map>
#include <vector>

#include "runtime/StringUtils.h"
#include "xmi/XMLDictionary.h"
#include "xmi/XmiHelpers.h"

namespace {

// One error for each attribute defined again in the tag.
XMLErrors repeatedAttributeErrors(const Position& where, const XMLAttributeList& list) {
    XMLErrors errors;
    const _eSeq<_eString>& repeated = list.getRepeatedNames();
    for (int i = 0, n = repeated.size(); i < n; ++i)
        addError(errors, where.location(), XMLErrorType::duplicateAttribute, {repeated.get(i)});
    return errors;
}

}  // namespace

XMLElement::XMLElement(const _eHndl<XMLSTag>& startTag, const _eHndl<XMLcontent>& content,
                       const _eHndl<XMLETag>& endTag, TagNaming naming)
    : _eClass(startTag->getPosition()),
      name(canonicalTagName(startTag->getName(), naming)),
      attributes(startTag->getAttributes()->getAttributes()),
      content(content),
      elementErrors(repeatedAttributeErrors(startTag->getPosition(), *startTag->getAttributes())) {
    if (!(startTag->getName() == endTag->getName()))
        ::addError(elementErrors, endTag->getLocation(), XMLErrorType::tagMismatch,
                 {endTag->getName(), startTag->getName(), startTag->getLocation()->positionText()});
}

XMLElement::XMLElement(const _eHndl<XMLEmptyElemTag>& emptyTag, TagNaming naming)
    : _eClass(emptyTag->getPosition()),
      name(canonicalTagName(emptyTag->getName(), naming)),
      attributes(emptyTag->getAttributes()->getAttributes()),
      content(new XMLcontent(emptyTag->getPosition())),
      elementErrors(repeatedAttributeErrors(emptyTag->getPosition(), *emptyTag->getAttributes())) {}

bool XMLElement::equalFields(const XMLElement& other) const {
    return XMLContentItem::equalFields(other) && name == other.name && attributes == other.attributes &&
           content == other.content && elementErrors == other.elementErrors;
}

XMLErrors XMLElement::getErrors() const {
    XMLErrors all = XMLContentItem::getErrors();
    all.addAll(elementErrors);
    return all;
}

TypeRecord XMLElement::typeRecord(const _eHndl<Context>&) const {
    return {TypeRecord::named, readName(), false, ownId()};
}

_eString XMLElement::ownId() const {
    const XMLAttributeValue* id = attributeValue(L"xmi.id");
    return id != nullptr ? id->text(Context::shared()) : _eString();
}

namespace {

const TypeRecord unresolvedType = TypeRecord::unresolvedReference();

}  // namespace

TypeRecord XMLElement::readType(std::wstring_view elementName, const _eHndl<Context>& context) const {
    if (hasAttribute(L"type")) return typeOfAttribute(attributeText(L"type", context), context);
    const XMLElement* child = nullptr;
    int count = content->countNamed(elementName, child);
    if (count == 0) return {};
    if (count != 1) return unresolvedType;
    return child->referencedType(context);
}

// Where features name their types (straight under their class), a text that no element bears as
// its id is the name of the type.
TypeRecord XMLElement::typeOfAttribute(const _eString& text, const _eHndl<Context>& context) {
    _eFrom<XMLElement> found = context->lookup(text);
    if (!found.isNull()) return typeOfTarget(*found, context);
    if (context->getForms() == MemberForms::everyByName && !text.isEmpty())
        return {TypeRecord::named, NameRecord::plain(text), false, {}};
    return unresolvedType;
}

// A reference that can't be followed is only the key of a failing lookup, whatever message
// `referencedId` gave: it reads "?".
TypeRecord XMLElement::referencedType(const _eHndl<Context>& context) const {
    _eFrom<XMLElement> found = context->lookup(content->referencedId(context));
    return found.isNull() ? unresolvedType : typeOfTarget(*found, context);
}

TypeRecord XMLElement::typeOfTarget(const XMLElement& target, const _eHndl<Context>& context) {
    const ModelParts& parts = context->getParts();
    if (parts.interfaces && textIs(target.getName(), L"UML:Interface"))
        return {TypeRecord::classType, target.readName(), false, target.ownId()};
    if (parts.associationClasses && textIs(target.getName(), L"UML:AssociationClass"))
        return {TypeRecord::classType, target.readName(), XmiWords::flag(target.isLeaf(context)), target.ownId()};
    return target.typeRecord(context);
}

// In every form, "multiplicity" as an XML attribute: "0..*", "1..n", "1", or "*" for 0..*.
MultiplicityRecord XMLElement::readMultiplicity(std::wstring_view multiplicityElement,
                                                const _eHndl<Context>& context) const {
    if (std::optional<_eString> written = olderAttribute(L"multiplicity", context)) {
        _eString text = trimSpaces(*written);
        if (text.isEmpty()) return {};
        for (int i = 0, n = text.size(); i + 1 < n; ++i)
            if (text.get(i) == L'.' && text.get(i + 1) == L'.') return {true, trimSpaces(text.take(i)), trimSpaces(text.drop(i + 2))};
        if (textIs(text, L"*")) return {true, _eString(L"0"), text};
        return {true, text, text};
    }
    const XMLElement* only = nullptr;
    if (content->countAtPath({multiplicityElement, L"UML:Multiplicity", L"UML:Multiplicity.range",
                              L"UML:MultiplicityRange"},
                             only) != 1)
        return {};
    const XMLElement& range = *only;
    return {true, range.propertyText(L"lower", L"UML:MultiplicityRange.lower", context),
            range.propertyText(L"upper", L"UML:MultiplicityRange.upper", context)};
}

// An unrecognised element is of no class below its own, so its type is compared, not searched.
bool XMLElement::isRecognised() const { return typeid(*this) != typeid(UnrecognisedElement); }

// The dictionary of the subtree, gathered with a stack of its own rather than by recursion.
_eHndl<XMLDictionary> XMLElement::dictionary(const _eString& idAttribute, bool extensions) const {
    auto childrenOf = [&](const XMLElement& element) {
        if (!extensions && textIs(element.name, L"XMI.extension")) return WalkChildren();
        return WalkChildren(*element.content);
    };
    // This element and the line of only children below it: they are left last, deepest first.
    std::vector<const XMLElement*> line{this};
    for (;;) {
        WalkChildren children = childrenOf(*line.back());
        const XMLElement* only = children.next();
        if (only == nullptr || children.next() != nullptr) break;
        line.push_back(only);
    }
    DictionaryGathering gathered;
    auto enter = [&](const XMLElement& element) {
        gathered.enter();
        return childrenOf(element);
    };
    walkTree(*this, enter, [&](const XMLElement& element) {
        const XMLAttributeValue* value = element.attributeValue(idAttribute);
        std::optional<DictionaryKey> id;
        if (value != nullptr) id = DictionaryKey::of(*value);
        bool onLine = &element == line.back();
        if (onLine && line.size() > 1) line.pop_back();
        gathered.leave(element, id ? &*id : nullptr, onLine);
    });
    return std::move(gathered).dictionary();
}

const XMLAttributeValue* XMLElement::attributeValue(const TextView& attribute) const {
    return findAttribute(attributes, attribute.text());
}

_eString XMLElement::attributeText(const TextView& attribute, const _eHndl<Context>& context) const {
    return attributeValue(attribute)->text(context);
}

std::optional<_eString> XMLElement::propertyText(const TextView& attribute, const TextView& subElement,
                                                const _eHndl<Context>& context) const {
    if (const XMLAttributeValue* value = attributeValue(attribute)) return value->text(context);
    const XMLElement* child = nullptr;
    if (content->countNamed(subElement, child) != 1) return std::nullopt;
    if (const XMLAttributeValue* value = child->attributeValue(L"xmi.value")) return value->text(context);
    return child->getContent()->text();
}

_eString XMLElement::attributeOrSubElement(const TextView& attribute, const TextView& subElement,
                                           const _eHndl<Context>& context) const {
    static const _eString unknown = L"?";
    std::optional<_eString> text = propertyText(attribute, subElement, context);
    return text ? std::move(*text) : unknown;
}

_eString XMLElement::requiredAttribute(const TextView& attribute, const _eHndl<Context>& context) const {
    if (const XMLAttributeValue* value = attributeValue(attribute)) return value->text(context);
    return _eString(L"?[[Missing Attribute '") + _eString(attribute.text()) + L"']]";
}

// The text of an attribute is read with the shared context, as everywhere that no other is at
// hand: the values' text is asked for with a context, though no value reads it.
NameRecord XMLElement::readName() const {
    if (const XMLAttributeValue* written = attributeValue(L"name"))
        return NameRecord::plain(written->text(Context::shared()));
    const _eString tag = L"UML:ModelElement.name";
    const XMLElement* written = nullptr;
    int found = content->countNamed(tag, written);
    if (found == 0) return {NameRecord::missing, tag};
    if (found > 1) return {NameRecord::repeated, tag};
    return {NameRecord::element, written->getContent()->text()};
}

// In every form, where the visibility is left out: the number some exporters write as "scope".
_eString XMLElement::visibility(const _eHndl<Context>& context) const {
    _eString written = attributeOrSubElement(L"visibility", L"UML:ModelElement.visibility", context);
    std::optional<_eString> scope = textIs(written, L"?") ? olderAttribute(L"scope", context) : std::nullopt;
    if (!scope) return written;
    static const std::pair<const wchar_t*, const wchar_t*> numbers[] = {
        {L"200", L"public"}, {L"201", L"private"}, {L"202", L"protected"}, {L"203", L"package"}};
    for (const auto& [number, word] : numbers)
        if (textIs(*scope, number)) return _eString(word);
    return *scope;
}

std::optional<_eString> XMLElement::olderAttribute(const wchar_t* name, const _eHndl<Context>& context) const {
    if (!context->everyForm() || !hasAttribute(name)) return std::nullopt;
    return attributeText(name, context);
}

_eString XMLElement::flagOrOlder(const _eString& written, const wchar_t* olderName, const _eHndl<Context>& context) const {
    if (!textIs(written, L"?")) return written;
    std::optional<_eString> older = olderAttribute(olderName, context);
    if (!older) return written;
    return _eString(XmiWords::olderFlag(*older) ? L"true" : L"false");
}

_eString XMLElement::parameterKind(const _eHndl<Context>& context) const {
    return attributeOrSubElement(L"kind", L"UML:Parameter.kind", context);
}

_eString XMLElement::isLeaf(const _eHndl<Context>& context) const {
    return flagOrOlder(attributeOrSubElement(L"isLeaf", L"UML:GeneralizableElement.isLeaf", context), L"leaf", context);
}

_eString XMLElement::isAbstract(const _eHndl<Context>& context) const {
    return flagOrOlder(attributeOrSubElement(L"isAbstract", L"UML:GeneralizableElement.isAbstract", context),
                       L"abstract", context);
}

namespace {

_eString withShortPrefix(const _eString& written) {
    for (const wchar_t* prefix : {L"Model_Management.", L"Foundation.Core.", L"Foundation.Data_Types."}) {
        _eString p = prefix;
        if (written.startsWith(p)) return _eString(L"UML:") + written.drop(p.size());
    }
    return written;
}

// The short form, or "UML:" before a tag that has no colon and doesn't begin with "XMI".
_eString withUmlPrefix(const _eString& written) {
    _eString shortForm = withShortPrefix(written);
    if (!(shortForm == written) || containsUnit(written, L':') || written.startsWith(_eString(L"XMI"))) return shortForm;
    return _eString(L"UML:") + written;
}

}  // namespace

_eString XMLElement::canonicalTagName(const _eString& tag, TagNaming naming) {
    return naming == TagNaming::specified ? XMLNames::derived<withShortPrefix>(tag) : XMLNames::derived<withUmlPrefix>(tag);
}

namespace {

// The element of the class its canonical tag name decides, built from either form of tag: a
// start tag with content and end tag, or an empty-element tag.
template <class... Parts>
_eFrom<XMLElement> elementOfTag(const _eString& canonical, const Parts&... parts) {
    using Maker = XMLElement* (*)(const Parts&...);
    static const UnitsMap<Maker> classes = [] {
        UnitsMap<Maker> m;
        auto make = []<class C>(C*) -> Maker { return [](const Parts&... p) -> XMLElement* { return new C(p...); }; };
        m.emplace(L"XMI", make(static_cast<XMIRootElement*>(nullptr)));
        m.emplace(L"XMI.content", make(static_cast<XMIContentElement*>(nullptr)));
        m.emplace(L"UML:Model", make(static_cast<Model_ManagementModelElement*>(nullptr)));
        m.emplace(L"UML:Package", make(static_cast<Model_ManagementPackageElement*>(nullptr)));
        m.emplace(L"UML:Namespace.ownedElement", make(static_cast<FCNamespaceOwnedElement*>(nullptr)));
        m.emplace(L"UML:Class", make(static_cast<FCClassElement*>(nullptr)));
        m.emplace(L"UML:Classifier.feature", make(static_cast<FCClassifierFeatureElement*>(nullptr)));
        m.emplace(L"UML:Attribute", make(static_cast<FCAttributeElement*>(nullptr)));
        m.emplace(L"UML:Operation", make(static_cast<FCOperationElement*>(nullptr)));
        m.emplace(L"UML:Association", make(static_cast<FCAssociationElement*>(nullptr)));
        m.emplace(L"UML:Generalization", make(static_cast<FCGeneralizationElement*>(nullptr)));
        m.emplace(L"", make(static_cast<UnrecognisedElement*>(nullptr)));  // for any other name
        return m;
    }();
    // The makers last found, by the node that holds the name: canonical names are kept strings,
    // so a tag met again is found by one comparison of addresses. A slot holds its name, so
    // that the node stays what it was.
    struct Recent {
        _eString canonical;
        Maker maker = nullptr;
    };
    static Recent recent[32];
    Recent& slot = recent[(reinterpret_cast<std::uintptr_t>(canonical.rootNode()) >> 5) & 31];
    if (slot.maker == nullptr || slot.canonical.rootNode() != canonical.rootNode()) {
        std::wstring scratch;
        auto found = classes.find(unitsOf(canonical, scratch));
        slot = {canonical, (found != classes.end() ? found : classes.find(std::wstring_view()))->second};
    }
    return slot.maker(parts...);
}

// The start tag refers to an element ("xmi.idref") rather than defining one.
bool refersToElement(const AttributeMap& attributes) { return findAttribute(attributes, L"xmi.idref") != nullptr; }

}  // namespace

_eFrom<XMLElement> ElementCreation::createElement(const _eHndl<XMLSTag>& startTag, const _eHndl<XMLcontent>& content,
                                                  const _eHndl<XMLETag>& endTag, TagNaming naming) {
    if (refersToElement(startTag->getAttributes()->getAttributes()))
        return new UnrecognisedElement(startTag, content, endTag, naming);
    return elementOfTag(XMLElement::canonicalTagName(startTag->getName(), naming), startTag, content, endTag, naming);
}

_eFrom<XMLElement> ElementCreation::createEmptyElement(const _eHndl<XMLEmptyElemTag>& emptyTag, TagNaming naming,
                                                       bool byTag) {
    if (!byTag || refersToElement(emptyTag->getAttributes()->getAttributes()))
        return new UnrecognisedElement(emptyTag, naming);
    return elementOfTag(XMLElement::canonicalTagName(emptyTag->getName(), naming), emptyTag, naming);
}
