#include "xmi/XmiHelpers.h"

#include <unordered_set>
#include <utility>

#include "runtime/StringUtils.h"
#include "xml/XMLNames.h"

namespace {

int colonAt(const _eString& name) {
    for (int i = 0, n = name.size(); i < n; ++i)
        if (name.get(i) == L':') return i;
    return -1;
}

_eString prefixOf(const _eString& name) {
    int at = colonAt(name);
    return at < 0 ? _eString() : name.take(at);
}

_eString localOf(const _eString& name) { return name.drop(colonAt(name) + 1); }

}  // namespace

_eString XmiNames::prefix(const _eString& name) { return XMLNames::derived<prefixOf>(name); }

_eString XmiNames::local(const _eString& name) { return XMLNames::derived<localOf>(name); }

_eSeq<_eString> XmiNames::words(const _eString& text) {
    _eSeq<_eString> out;
    _eString word;
    for (int i = 0, n = text.size(); i <= n; ++i) {
        wchar_t c = i < n ? text.get(i) : L' ';
        if (c != L' ' && c != L'\t' && c != L'\r' && c != L'\n') {
            word.pushBack(c);
        } else if (!word.isEmpty()) {
            out.pushBack(word);
            word = {};
        }
    }
    return out;
}

namespace {

// The meaning of the word among `words`; `otherwise` for any other word.
template <class Meaning, std::size_t count>
Meaning meaningOf(const _eString& text, const std::pair<const wchar_t*, Meaning> (&words)[count], Meaning otherwise) {
    for (const auto& [word, meaning] : words)
        if (textIs(text, word)) return meaning;
    return otherwise;
}

}  // namespace

Visibility XmiWords::visibility(const _eString& text) {
    static constexpr std::pair<const wchar_t*, Visibility> words[] = {{L"public", Visibility::public_},
                                                                      {L"protected", Visibility::protected_},
                                                                      {L"private", Visibility::private_},
                                                                      {L"package", Visibility::package}};
    return meaningOf(text, words, Visibility::unknown);
}

Changeability XmiWords::changeability(const _eString& text) {
    static constexpr std::pair<const wchar_t*, Changeability> words[] = {{L"changeable", Changeability::changeable},
                                                                         {L"frozen", Changeability::frozen},
                                                                         {L"addOnly", Changeability::addOnly}};
    return meaningOf(text, words, Changeability::unknown);
}

Scope XmiWords::scope(const _eString& text) {
    static constexpr std::pair<const wchar_t*, Scope> words[] = {{L"instance", Scope::instance},
                                                                 {L"classifier", Scope::classifier}};
    return meaningOf(text, words, Scope::unknown);
}

Direction XmiWords::direction(const _eString& text) {
    static constexpr std::pair<const wchar_t*, Direction> words[] = {
        {L"in", Direction::in}, {L"out", Direction::out}, {L"inout", Direction::inout}, {L"return", Direction::result}};
    return meaningOf(text, words, Direction::unknown);
}

Aggregation XmiWords::aggregation(const _eString& text) {
    static constexpr std::pair<const wchar_t*, Aggregation> words[] = {{L"none", Aggregation::none},
                                                                       {L"aggregate", Aggregation::shared},
                                                                       {L"composite", Aggregation::composite}};
    return meaningOf(text, words, Aggregation::unknown);
}

bool XmiWords::flag(const _eString& text) { return textIs(text, L"true"); }

bool XmiWords::olderFlag(const _eString& text) { return textIs(text, L"1") || textIs(text, L"true"); }

XmiVocabulary::XmiVocabulary(const _eString& xmiPrefix, const Names& modelPrefixes)
    : idAttribute(xmiPrefix + L":id"),
      idrefAttribute(xmiPrefix + L":idref"),
      typeAttribute(xmiPrefix + L":type"),
      modelPrefixes(modelPrefixes) {
    this->modelPrefixes.add(_eString());
}

_eString XmiVocabulary::metaclass(const XMLElement& element, bool& ofModel) const {
    const _eString& tag = element.getName();
    _eString tagPrefix = XmiNames::prefix(tag);
    ofModel = modelPrefixes.contains(tagPrefix);
    if (!element.hasAttribute(typeAttribute)) return tagPrefix.isEmpty() ? _eString() : XmiNames::local(tag);
    _eString type = element.attributeText(typeAttribute, Context::shared());
    ofModel = ofModel && modelPrefixes.contains(XmiNames::prefix(type));
    return XmiNames::local(type);
}

_eString XmiVocabulary::metaclass(const XMLElement& element) const {
    bool ofModel = false;
    return metaclass(element, ofModel);
}

bool XmiVocabulary::isOfModel(const XMLElement& element) const {
    bool ofModel = false;
    metaclass(element, ofModel);
    return ofModel;
}

ElementSeq XmiVocabulary::properties(const XMLElement& element, const wchar_t* name) const {
    ElementSeq children = element.getContent()->childElements();
    ElementSeq out;
    for (int i = 0, n = children.size(); i < n; ++i) {
        const XMLElement& child = *children.get(i);
        if (textIs(XmiNames::local(child.getName()), name) && isOfModel(child)) out.pushBack(children.get(i));
    }
    return out;
}

std::optional<_eString> XmiVocabulary::property(const XMLElement& element, const wchar_t* name) const {
    if (element.hasAttribute(name)) return element.attributeText(name, Context::shared());
    ElementSeq written = properties(element, name);
    if (written.size() != 1) return std::nullopt;
    return written.get(0)->getContent()->text();
}

_eString XmiVocabulary::property(const XMLElement& element, const wchar_t* name, const wchar_t* absent) const {
    return property(element, name).value_or(_eString(absent));
}

_eSeq<_eString> XmiVocabulary::references(const XMLElement& element, const wchar_t* name) const {
    if (element.hasAttribute(name)) return XmiNames::words(element.attributeText(name, Context::shared()));
    _eSeq<_eString> out;
    ElementSeq written = properties(element, name);
    for (int i = 0, n = written.size(); i < n; ++i)
        if (written.get(i)->hasAttribute(idrefAttribute))
            out.pushBack(written.get(i)->attributeText(idrefAttribute, Context::shared()));
    return out;
}

_eString XmiVocabulary::id(const XMLElement& element) const {
    return element.hasAttribute(idAttribute) ? element.attributeText(idAttribute, Context::shared()) : _eString();
}

std::optional<_eString> XmiVocabulary::documentation(const XMLElement& element) const {
    ElementSeq comments = properties(element, L"ownedComment");
    std::optional<_eString> text;
    for (int i = 0, n = comments.size(); i < n; ++i) {
        std::optional<_eString> body = property(*comments.get(i), L"body");
        if (!body || body->isEmpty()) continue;
        text = text ? *text + L"\n\n" + *body : *body;
    }
    return text;
}

IdIndex::IdIndex(const XMLElement& root, const _eString& idAttribute) {
    std::unordered_set<std::wstring> duplicates;
    walkTree(
        root,
        [&](const XMLElement& element) {
            if (element.hasAttribute(idAttribute)) {
                std::wstring id = toWString(element.attributeText(idAttribute, Context::shared()));
                if (!ids.emplace(id, const_cast<XMLElement*>(&element)).second) duplicates.insert(id);
            }
            return WalkChildren(*element.getContent());
        },
        [](const XMLElement&) {});
    for (const std::wstring& id : duplicates) ids.erase(id);
}

_eFrom<XMLElement> IdIndex::find(const _eString& id) const {
    auto found = ids.find(toWString(id));
    return found == ids.end() ? _eFrom<XMLElement>() : found->second;
}
