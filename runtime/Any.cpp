#include "runtime/TypeInfo.h"

_eAnyBase::~_eAnyBase() = default;

_eRank _eAnyBase::rank(const _eAnyBase* other) const { return defaultRank(other); }

const _eFullTypeInfo* _eAnyBase::_aGetFullTypeInfo() const { return nullptr; }

const std::type_info& _eAnyBase::typeIdentity() const { return typeid(*this); }

void _eAnyBase::store(StoreStream&) const {}

void _eAnyBase::fill(FillStream&) {}

// Classes ordered by their records: an ancestor below its descendants, otherwise by the
// names of the two sibling ancestors below their nearest common one.
_eRank _eAnyBase::defaultRank(const _eAnyBase* other) const {
    if (other == nullptr) return rankAbove;
    const _eFullTypeInfo* a = _aGetFullTypeInfo();
    const _eFullTypeInfo* b = other->_aGetFullTypeInfo();
    if (a == b) return rankSame;
    if (a == nullptr || b == nullptr) return rankSame;
    int levelA = a->level;
    int levelB = b->level;
    while (a->level > b->level) a = a->parent;
    while (b->level > a->level) b = b->parent;
    if (a == b) {
        if (levelA == levelB) return rankSame;
        return levelA > levelB ? rankAbove : rankBelow;
    }
    while (a->parent != b->parent) {
        a = a->parent;
        b = b->parent;
    }
    return rankStrings(a->info->typeName(), b->info->typeName());
}

_eString _eAny::toString() const { return L"No output string defined for this class"; }

const _eAny* _eAny::self() const { return this; }

_eHndl<_eInstblTypeInfo> _eAny::_aGetMyTypeInfo() const { return _aGetFullTypeInfo()->info; }
