#include "runtime/ModuleDescriptor.h"

// Registers the system's 37 modules, once, in the order of their numbers.
void _aRegisterSystemModules();

namespace {

_eModuleDescriptor* chainHead = nullptr;

void link(_eModuleDescriptor& record, _eHndl<_eModuleDescriptorData> data, _eFactory factory, std::int32_t reserved,
          _eHeapOf heapOf) {
    record.data = std::move(data);
    record.factory = factory;
    record.reserved = reserved;
    record.heapOf = heapOf;
    record.index = chainHead != nullptr ? chainHead->index + 1 : 1;
    record.next = chainHead;
    chainHead = &record;
}

}  // namespace

constinit _eModuleDescriptor _aModule1, _aModule2, _aModule3, _aModule4, _aModule5, _aModule6, _aModule7,
    _aModule8, _aModule9, _aModule10, _aModule11, _aModule12, _aModule13, _aModule14, _aModule15, _aModule16,
    _aModule17, _aModule18, _aModule19, _aModule20, _aModule21, _aModule22, _aModule23, _aModule24,
    _aModule25, _aModule26, _aModule27, _aModule28, _aModule29, _aModule30, _aModule31, _aModule32,
    _aModule33, _aModule34, _aModule35, _aModule36, _aModule37;

namespace {

_eModuleDescriptor* const systemModules[_aSystemModuleCount] = {
    &_aModule1, &_aModule2, &_aModule3, &_aModule4, &_aModule5, &_aModule6, &_aModule7, &_aModule8, &_aModule9,
    &_aModule10, &_aModule11, &_aModule12, &_aModule13, &_aModule14, &_aModule15, &_aModule16, &_aModule17,
    &_aModule18, &_aModule19, &_aModule20, &_aModule21, &_aModule22, &_aModule23, &_aModule24, &_aModule25,
    &_aModule26, &_aModule27, &_aModule28, &_aModule29, &_aModule30, &_aModule31, &_aModule32, &_aModule33,
    &_aModule34, &_aModule35, &_aModule36, &_aModule37};

}  // namespace

void _aRegisterSystemModule(int number, _eHndl<_eModuleDescriptorData> data, _eFactory factory, _eHeapOf heapOf) {
    link(*systemModules[number - 1], std::move(data), factory, 0, heapOf);
}

void registerModule(_eModuleDescriptor& record, _eHndl<_eModuleDescriptorData> data, _eFactory factory,
                    std::int32_t reserved, _eHeapOf heapOf) {
    _aRegisterSystemModules();
    link(record, std::move(data), factory, reserved, heapOf);
}

_eModuleDescriptor* firstModule() {
    _aRegisterSystemModules();
    return chainHead;
}

_eModuleDescriptor* moduleAt(int position) {
    _eModuleDescriptor* record = firstModule();
    for (int i = 0; i < position && record != nullptr; ++i) record = record->next;
    return record;
}

_eModuleDescriptor* builtInModule() { return &_aModule28; }

_eRank _aHeapInfo::rank(const _eAnyBase* other) const {
    auto heap = dynamic_cast<const _aHeapInfo*>(other);
    if (heap == nullptr || heap == this) return defaultRank(other);
    int count = path.size() < heap->path.size() ? path.size() : heap->path.size();
    for (int i = 0; i < count; ++i) {
        _eRank part = rankStrings(path.get(i), heap->path.get(i));
        if (part != rankSame) return part;
    }
    if (path.size() != heap->path.size()) return path.size() < heap->path.size() ? rankBelow : rankAbove;
    return defaultRank(other);
}

_eString _aHeapInfo::toString() const {
    _eString text = L"Heap: ";
    for (int i = 0; i < path.size(); ++i) text = i == 0 ? text + path.get(i) : text + L"::" + path.get(i);
    return text;
}
