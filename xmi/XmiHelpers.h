// What every reader of XMI shares: the one walk over a tree of elements, the parts of a
// prefixed name, the words of the properties with a fixed set of meanings, and the reading of
// properties, references and ids in documents whose elements are told apart by prefixes
// (`XmiVocabulary`).
#pragma once

#include <unordered_map>
#include <vector>

#include "xmi/ClassRecords.h"
#include "xmi/XMLElement.h"

// The children a walk goes on into below an element: every child element of a content, read
// from its items as they stand so that no list is made, or a list of the caller's choosing.
class WalkChildren {
public:
    WalkChildren() = default;
    WalkChildren(const ElementSeq& chosen) : chosen(chosen) {}
    WalkChildren(const XMLcontent& content) : items(&content.getItems()) {}

    // The next child; null after the last.
    const XMLElement* next() {
        if (items == nullptr) return at < chosen.size() ? chosen.get(at++).get() : nullptr;
        while (at < items->size())
            if (const XMLElement* element = items->get(at++)->asElement()) return element;
        return nullptr;
    }

private:
    const _eSeq<_eFrom<XMLContentItem>>* items = nullptr;  // the content's, which outlives the walk
    ElementSeq chosen;
    int at = 0;
};

// Visits `root` and the elements below it depth first, with a stack of its own rather than by
// recursion, so that the nesting of the input doesn't decide the depth of the machine stack.
// `enter(element)` gives the children the walk goes on into, in order (none: no deeper);
// `leave(element)` runs once all of them are done.
template <class Enter, class Leave>
void walkTree(const XMLElement& root, Enter enter, Leave leave) {
    struct Frame {
        const XMLElement* element;
        WalkChildren children;
    };
    std::vector<Frame> frames;
    frames.push_back({&root, enter(root)});
    while (!frames.empty()) {
        if (const XMLElement* child = frames.back().children.next()) {
            WalkChildren below = enter(*child);
            frames.push_back({child, std::move(below)});
            continue;
        }
        const XMLElement* done = frames.back().element;
        frames.pop_back();
        leave(*done);
    }
}

namespace XmiNames {
// "uml" of "uml:Class"; empty for a name without a prefix.
_eString prefix(const _eString& name);
// "Class" of "uml:Class".
_eString local(const _eString& name);
// The words of a list of ids, split at white space.
_eSeq<_eString> words(const _eString& text);
}  // namespace XmiNames

// The words XMI writes for properties with a fixed set of meanings; anything else is `unknown`.
namespace XmiWords {
Visibility visibility(const _eString& text);
Changeability changeability(const _eString& text);
Scope scope(const _eString& text);
Direction direction(const _eString& text);
// The words of UML 1.x, where "aggregate" is the shared aggregation ("shared" of UML 2 is its
// reader's own word).
Aggregation aggregation(const _eString& text);
// "true", and nothing else, is true.
bool flag(const _eString& text);
// The flags of older exporters' attributes ("static", "abstract"): "1" or "true" is true.
bool olderFlag(const _eString& text);
}  // namespace XmiWords

// The vocabulary of a document that tells the model's elements by prefix: the attributes that
// carry ids, references and metaclasses, and the prefixes bound to the metamodel (the empty
// prefix among them: tags without one are properties of the elements that hold them).
class XmiVocabulary {
public:
    XmiVocabulary(const _eString& xmiPrefix, const Names& modelPrefixes);

    const _eString& idKey() const { return idAttribute; }

    // The element is of the model: its tag and its "xmi:type" have no prefix or one of the model's.
    bool isOfModel(const XMLElement& element) const;
    // The metaclass of an element: the local part of its "xmi:type", else of its tag when that
    // has a prefix; empty for a property element without a type. `ofModel` tells `isOfModel`.
    _eString metaclass(const XMLElement& element, bool& ofModel) const;
    _eString metaclass(const XMLElement& element) const;
    // The children of the model whose tag, without prefix, is `name`.
    ElementSeq properties(const XMLElement& element, const wchar_t* name) const;
    // A property of one value: the attribute, else the text of the one child element of that
    // name; none otherwise.
    std::optional<_eString> property(const XMLElement& element, const wchar_t* name) const;
    // `property`, or `absent` where there is none.
    _eString property(const XMLElement& element, const wchar_t* name, const wchar_t* absent) const;
    // The ids that the property `name` refers to: the attribute's list, else the "xmi:idref" of
    // each child of that name.
    _eSeq<_eString> references(const XMLElement& element, const wchar_t* name) const;
    // The element's own id; empty when it has none.
    _eString id(const XMLElement& element) const;
    // The documentation of an element: the bodies of its "ownedComment"s, joined by blank lines.
    std::optional<_eString> documentation(const XMLElement& element) const;

private:
    _eString idAttribute;     // "xmi:id", in the document's prefix
    _eString idrefAttribute;  // "xmi:idref"
    _eString typeAttribute;   // "xmi:type"
    Names modelPrefixes;
};

// Every element below a root by its id; an id that two elements bear names neither.
class IdIndex {
public:
    IdIndex() = default;
    IdIndex(const XMLElement& root, const _eString& idAttribute);

    // The element of `id`, or null.
    _eFrom<XMLElement> find(const _eString& id) const;

private:
    std::unordered_map<std::wstring, _eFrom<XMLElement>> ids;
};
