#include "xml/XMLNames.h"

#include "runtime/Set.h"

_eString XMLNames::shared(const _eString& name) {
    static _eSet<_eString> kept;
    auto [index, end] = kept.lookup(name);
    if (index != end) return kept.elements().get(index);
    if (kept.size() < capacity && name.size() <= longest) kept.add(name);
    return name;
}
