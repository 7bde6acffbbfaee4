// The elements on the path from the document element to the classes: each descends into the
// children of the names it gives, in document order.
#include "xmi/XMLElement.h"

#define MB_PATH_ELEMENT(Class, ...)                                                                            \
    const Names& Class::descent() {                                                                            \
        static const Names names(__VA_ARGS__);                                                                 \
        return names;                                                                                          \
    }                                                                                                          \
    _eHndl<TarvaneOutput> Class::generateClasses(const Names& classNames, const _eHndl<Context>& context) const { \
        return getContent()->generateInSet(classNames, descent(), context);                                    \
    }                                                                                                          \
    ClassMap Class::classMap() const { return getContent()->classesInSet(descent()); }

MB_PATH_ELEMENT(XMIRootElement, _eString(L"XMI.content"))
MB_PATH_ELEMENT(XMIContentElement, _eString(L"UML:Model"))
MB_PATH_ELEMENT(Model_ManagementModelElement, _eString(L"UML:Namespace.ownedElement"))
MB_PATH_ELEMENT(FCNamespaceOwnedElement, _eString(L"UML:Class"), _eString(L"UML:Package"))
MB_PATH_ELEMENT(Model_ManagementPackageElement, _eString(L"UML:Namespace.ownedElement"), _eString(L"UML:Package"))

#undef MB_PATH_ELEMENT
