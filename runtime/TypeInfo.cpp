#include "runtime/TypeInfo.h"

#include "runtime/TypeMatcher.h"
#include "runtime/UrelException.h"

namespace {

_eString flagsText(bool from, bool ref) {
    _eString text;
    if (ref) text = text + L"ref ";
    if (from) text = text + L"from ";
    return text;
}

// The text of a failed lookup: the name, and for a template its parameters "T1", "T2", ...
// with the labels of their separators between them.
_eString unknownTypeText(const _eTypeTableEntry& wanted) {
    _eString text = wanted.name;
    if (wanted.parameterCount <= 0) return text;
    text = text + L" of (T1";
    for (int i = 2; i <= wanted.parameterCount; ++i) {
        const wchar_t* label = i - 2 < wanted.separators.size() ? _eSeparatorId::labels[wanted.separators.at(i - 2)] : L"";
        text = text + label + L"T" + intToString(i);
    }
    return text + L")";
}

// Three-way order of two flags or numbers: set or greater above.
template <class T>
_eRank order(const T& a, const T& b) {
    if (a == b) return rankSame;
    return a > b ? rankAbove : rankBelow;
}

}  // namespace

void _eTypeInfo::setFlags(bool newFrom, bool newRef) {
    _eFreeze freeze(this);
    from = newFrom;
    ref = newRef;
}

bool _eTypeInfo::isEqual(const _eAnyBase* other) const {
    if (other == this) return true;
    auto type = dynamic_cast<const _eTypeInfo*>(other);
    return type != nullptr && typeid(*other) == typeid(*this) && from == type->from && ref == type->ref &&
           args == type->args;
}

const _eFullTypeInfo* _eTypeInfo::_aGetFullTypeInfo() const { return _aTypeRecord(); }

const _eFullTypeInfo* _eTypeInfo::_aTypeRecord() {
    static const _eFullTypeInfo record(_aTypeOf({&_aModule27, 0}), nullptr);
    return &record;
}

_eString _eTypeInfo::toString() const {
    _eString name = entry().name;
    _eString text = flagsText(from, ref) + (name.isEmpty() ? _eString(L"(Union)") : name);
    int count = args.size();
    if (count == 0) return text;
    if (count == 1) return text + L" of " + args.at(0)->toString();
    text = text + L" of (" + args.at(0)->toString();
    for (int i = 1; i < count; ++i) text = text + L", " + args.at(i)->toString();
    return text + L")";
}

bool _eTypeInfo::matches(const _eTypeInfo& other) const {
    int count = args.size();
    if (count != other.args.size() || ref != other.ref || !(entry() == other.entry())) return false;
    for (int i = 0; i < count; ++i)
        if (!args.at(i)->matches(*other.args.at(i))) return false;
    return true;
}

_eInstblTypeInfo::_eInstblTypeInfo(const _eModuleDescriptor* module, int typeIndex)
    : module(module), typeIndex(typeIndex) {}

_eInstblTypeInfo::_eInstblTypeInfo(int typeIndex, bool isRef) : module(builtInModule()), typeIndex(typeIndex) {
    ref = isRef;
}

_eInstblTypeInfo::_eInstblTypeInfo(const _eString& name, int parameterCount,
                                   const _eSeq<_eSeparatorId::_eEnum>& separators, bool isFrom, bool isRef)
    : module(nullptr), typeIndex(0) {
    _eTypeTableEntry wanted{name, parameterCount, separators};
    _eHndl<_eCandidateMDAnode> found = _eTemplateTypeMatcher::shared().match(wanted);
    if (found.isNull()) streamFailure(SerialErrorType::streamError, unknownTypeText(wanted));
    module = moduleAt(found->getModuleIndex());
    typeIndex = found->getIndexes().at(0);
    from = isFrom;
    ref = isRef;
}

_eHndl<_eInstblTypeInfo> _eInstblTypeInfo::makeType(const _eString& name, bool from, bool ref) {
    return _eHndl<_eInstblTypeInfo>(new _eInstblTypeInfo(name, 0, {}, from, ref));
}

_eRank _eInstblTypeInfo::rank(const _eAnyBase* other) const {
    auto type = dynamic_cast<const _eInstblTypeInfo*>(other);
    if (type == nullptr) return defaultRank(other);
    if (type == this) return rankSame;
    for (_eRank step : {order(from, type->from), order(ref, type->ref), order(typeIndex, type->typeIndex),
                        order(module, type->module)})
        if (step != rankSame) return step;
    return defaultRank(other);
}

const _eFullTypeInfo* _eInstblTypeInfo::_aGetFullTypeInfo() const { return _aTypeRecord(); }

const _eFullTypeInfo* _eInstblTypeInfo::_aTypeRecord() {
    static const _eFullTypeInfo record(_aTypeOf({&_aModule27, 1}), _eTypeInfo::_aTypeRecord());
    return &record;
}

_eAnyBase* _eInstblTypeInfo::clone() const { return new _eInstblTypeInfo(*this); }

bool _eInstblTypeInfo::isEqual(const _eAnyBase* other) const {
    if (!_eTypeInfo::isEqual(other)) return false;
    auto type = static_cast<const _eInstblTypeInfo*>(other);
    return module == type->module && typeIndex == type->typeIndex;
}

bool _eInstblTypeInfo::isTemplate() const { return entry().parameterCount > 0; }

_eTypeTableEntry _eInstblTypeInfo::entry() const { return module->data->getTypes().at(typeIndex); }

_eString _eInstblTypeInfo::typeName() const { return entry().name; }

_eHndl<_eInstblTypeInfo> _eInstblTypeInfo::instantiate(const _eTypeArgs& arguments) const {
    _eHndl<_eInstblTypeInfo> type(new _eInstblTypeInfo(*this));
    type->args = _eTypeArgs();
    for (int i = 0; i < arguments.size(); ++i) type->args.pushBack(arguments.at(i));
    return type;
}

_eHndl<_eInstblTypeInfo> _eInstblTypeInfo::withoutArguments() const { return instantiate({}); }

_eFullTypeInfo::_eFullTypeInfo(_eHndl<_eInstblTypeInfo> info, const _eFullTypeInfo* parent)
    : info(std::move(info)), level(parent != nullptr ? parent->level + 1 : 1), parent(parent) {}

_eFullTypeInfo::~_eFullTypeInfo() = default;

_eHndl<_eInstblTypeInfo> _aTypeOf(const _aTypeSlot& slot) {
    return _eHndl<_eInstblTypeInfo>(new _eInstblTypeInfo(slot.module, slot.index));
}

_eHndl<_eInstblTypeInfo> _aInstantiable(const _eFrom<_eTypeInfo>& type) {
    return _eHndl<_eInstblTypeInfo>(dynamic_cast<_eInstblTypeInfo*>(type.get()));
}

const _eTemplateTypeMatcher& _eTemplateTypeMatcher::shared() {
    static const _eHndl<_eTemplateTypeMatcher> matcher = [] {
        _eSeq<_eHndl<_eModuleDescriptorData>> modules;
        for (const _eModuleDescriptor* record = firstModule(); record != nullptr; record = record->next)
            modules.pushBack(record->data);
        return _eHndl<_eTemplateTypeMatcher>(new _eTemplateTypeMatcher(modules));
    }();
    return *matcher;
}

_eHndl<_eCandidateMDAnode> _eTemplateTypeMatcher::match(const _eTypeTableEntry& wanted) const {
    for (int m = 0; m < modules.size(); ++m) {
        const _eSeq<_eTypeTableEntry>& types = modules.get(m)->getTypes();
        _eSeq<int> indexes;
        for (int i = 0; i < types.size(); ++i)
            if (types.get(i) == wanted) indexes.pushBack(i);
        if (!indexes.isEmpty()) return _eHndl<_eCandidateMDAnode>(new _eCandidateMDAnode(modules.get(m), m, indexes));
    }
    return {};
}
