#include "xmi/ClassSearch.h"

#include "runtime/Map.h"
#include "xmi/ClassRenderer.h"
#include "xmi/XMLDictionary.h"

// Folds the values of the classes at and below `root` in document order, with a stack of its
// own rather than by recursion: packages may nest as deep as the input likes. Every element
// the search goes into joins the values below it, starting from its own value as a class, or
// from `none`; a class it doesn't go into gives `leaf(element)`.
template <class Value, class Leaf, class Join>
Value ClassSearch::fold(const XMLElement& root, const Value& none, Leaf leaf, Join join) const {
    struct Frame {
        ElementSeq children;
        int next;
        Value joined;
    };
    std::vector<Frame> frames;
    frames.push_back({descent(root), 0, isClass(root) ? leaf(root) : none});
    while (true) {
        Frame& last = frames.back();
        if (last.next < last.children.size()) {
            const XMLElement& child = *last.children.get(last.next++);
            ElementSeq below = descent(child);
            if (!below.isEmpty())
                frames.push_back({below, 0, isClass(child) ? leaf(child) : none});
            else if (isClass(child))
                last.joined = join(last.joined, leaf(child));
            continue;
        }
        Value done = last.joined;
        frames.pop_back();
        if (frames.empty()) return done;
        frames.back().joined = join(frames.back().joined, done);
    }
}

ClassMap ClassSearch::classMap(const XMLElement& root) const {
    return fold(
        root, ClassMap(),
        [this](const XMLElement& element) {
            ClassMap one;
            one.put(className(element), const_cast<XMLElement*>(&element));
            return one;
        },
        [](ClassMap a, const ClassMap& b) {
            a.unitePairs(b);
            return a;
        });
}

_eHndl<TarvaneOutput> ClassSearch::declarations(const XMLElement& root, const Names& classNames,
                                                const _eHndl<Context>& context) const {
    return fold(
        root, TarvaneOutput::empty(),
        [&](const XMLElement& element) {
            return classNames.contains(className(element)) ? declaration(element, context) : TarvaneOutput::empty();
        },
        [](const _eHndl<TarvaneOutput>& a, const _eHndl<TarvaneOutput>& b) { return a->concat(*b); });
}

bool ClassSearch::readsDocument(const XMLElement& root) const { return root.getName() == _eString(L"XMI"); }

_eHndl<XMLDictionary> ClassSearch::dictionary(const XMLElement& root) const { return root.dictionary(); }

ClassRecord ClassSearch::readClass(const XMLElement& element, const _eHndl<Context>& context) const {
    return FCClassElement::readClass(element, context);
}

NameRecord ClassSearch::readName(const XMLElement& element) const { return element.readName(); }

_eHndl<TarvaneOutput> ClassSearch::declaration(const XMLElement& element, const _eHndl<Context>& context) const {
    return ClassRenderer::classDeclaration(readClass(element, context));
}

_eString ClassSearch::className(const XMLElement& element) const { return ClassRenderer::typeName(readName(element)); }

bool PathSearch::isClass(const XMLElement& element) const {
    return element.isRecognised() && element.getName() == _eString(L"UML:Class");
}

ElementSeq PathSearch::descent(const XMLElement& element) const {
    static const _eMap<_eString, Names> steps = [] {
        _eMap<_eString, Names> m;
        m.put(L"XMI", Names(_eString(L"XMI.content")));
        m.put(L"XMI.content", Names(_eString(L"UML:Model")));
        m.put(L"UML:Model", Names(_eString(L"UML:Namespace.ownedElement")));
        m.put(L"UML:Namespace.ownedElement", Names(_eString(L"UML:Class"), _eString(L"UML:Package")));
        m.put(L"UML:Package", Names(_eString(L"UML:Namespace.ownedElement"), _eString(L"UML:Package")));
        return m;
    }();
    if (!element.isRecognised()) return {};
    auto [index, end] = steps.lookup(element.getName());
    return index == end ? ElementSeq() : element.getContent()->childrenInSet(steps.elements().get(index).second);
}

const std::shared_ptr<const PathSearch>& PathSearch::instance() {
    static const std::shared_ptr<const PathSearch> search = std::make_shared<const PathSearch>();
    return search;
}

bool AnywhereSearch::isClass(const XMLElement& element) const {
    return element.getName() == _eString(L"UML:Class") && element.hasAttribute(L"xmi.id") &&
           !element.hasAttribute(L"xmi.idref");
}

ElementSeq AnywhereSearch::descent(const XMLElement& element) const {
    if (element.getName() == _eString(L"XMI")) return element.getContent()->childrenNamed(L"XMI.content");
    return element.getContent()->childElements();
}

const std::shared_ptr<const AnywhereSearch>& AnywhereSearch::instance() {
    static const std::shared_ptr<const AnywhereSearch> search = std::make_shared<const AnywhereSearch>();
    return search;
}
