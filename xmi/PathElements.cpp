// The elements on the path from the document element to the classes: each descends into the
// children of the names it gives, in document order.
#include "xmi/XMLElement.h"

#include <vector>

namespace {

// Folds the values of the elements below `top` along the path, in document order, with a
// stack of its own rather than by recursion: packages may nest as deep as the input likes.
// An element on the path joins the values of the children it descends into, starting from
// `none`; any other element gives `leaf(element)`.
template <class Value, class Leaf, class Join>
Value foldPath(const XMLElement& top, const Value& none, Leaf leaf, Join join) {
    struct Frame {
        ElementSeq children;
        int next;
        Value joined;
    };
    std::vector<Frame> frames;
    frames.push_back({top.getContent()->childrenInSet(*top.pathDescent()), 0, none});
    while (true) {
        Frame& last = frames.back();
        if (last.next < last.children.size()) {
            const XMLElement& child = *last.children.get(last.next++);
            if (const Names* descent = child.pathDescent())
                frames.push_back({child.getContent()->childrenInSet(*descent), 0, none});
            else
                last.joined = join(last.joined, leaf(child));
            continue;
        }
        Value done = last.joined;
        frames.pop_back();
        if (frames.empty()) return done;
        frames.back().joined = join(frames.back().joined, done);
    }
}

}  // namespace

#define MB_PATH_ELEMENT(Class, ...)                                                                            \
    const Names& Class::descent() {                                                                            \
        static const Names names(__VA_ARGS__);                                                                 \
        return names;                                                                                          \
    }                                                                                                          \
    _eHndl<TarvaneOutput> Class::generateClasses(const Names& classNames, const _eHndl<Context>& context) const { \
        return foldPath(                                                                                       \
            *this, TarvaneOutput::empty(),                                                                     \
            [&](const XMLElement& e) { return e.generateClasses(classNames, context); },                        \
            [](const _eHndl<TarvaneOutput>& a, const _eHndl<TarvaneOutput>& b) { return a->concat(*b); });     \
    }                                                                                                          \
    ClassMap Class::classMap() const {                                                                         \
        return foldPath(*this, ClassMap(), [](const XMLElement& e) { return e.classMap(); },                   \
                        [](ClassMap a, const ClassMap& b) {                                                     \
                            a.addAll(b);                                                                       \
                            return a;                                                                          \
                        });                                                                                    \
    }

MB_PATH_ELEMENT(XMIRootElement, _eString(L"XMI.content"))
MB_PATH_ELEMENT(XMIContentElement, _eString(L"UML:Model"))
MB_PATH_ELEMENT(Model_ManagementModelElement, _eString(L"UML:Namespace.ownedElement"))
MB_PATH_ELEMENT(FCNamespaceOwnedElement, _eString(L"UML:Class"), _eString(L"UML:Package"))
MB_PATH_ELEMENT(Model_ManagementPackageElement, _eString(L"UML:Namespace.ownedElement"), _eString(L"UML:Package"))

#undef MB_PATH_ELEMENT
