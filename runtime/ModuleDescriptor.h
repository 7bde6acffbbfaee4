// Each module describes itself to the runtime with a static record: the types it declares,
// its heaps, and how to make a new object of one of its types. The records form one chain,
// newest first.
#pragma once

#include <cstdint>

#include "runtime/Class.h"

class _eHeap;

// The name of a heap, as a path of parts.
class MB_API _aHeapInfo : public _eClass<_aHeapInfo, _eAny> {
public:
    static constexpr _aTypeSlot _aType{&_aModule32, 3};

    explicit _aHeapInfo(_eSeq<_eString> path) : path(std::move(path)) {}

    bool equalFields(const _aHeapInfo& other) const { return path == other.path; }
    // By path; the same path, or another class, falls to the order of classes.
    _eRank rank(const _eAnyBase* other) const override;
    _eString toString() const override;

    const _eSeq<_eString>& getPath() const { return path; }

private:
    _eSeq<_eString> path;
};

struct MB_API _eHeapTableEntry {
    _eHndl<_aHeapInfo> heap;

    bool operator==(const _eHeapTableEntry& other) const { return heap == other.heap; }
};

// A row that every module of this system leaves empty; it is only ever compared.
struct MB_API _eInstantiationTableEntry {
    _eString name;
    _eSeq<int> numbers;
    _eTypeArgs arguments;

    bool operator==(const _eInstantiationTableEntry& other) const {
        return name == other.name && numbers == other.numbers && arguments == other.arguments;
    }
};

// The content of a module's description; never changed once made.
class MB_API _eModuleDescriptorData : public _eClass<_eModuleDescriptorData, _eAny> {
public:
    static constexpr _aTypeSlot _aType{&_aModule31, 1};

    _eModuleDescriptorData(_eSeq<_eHeapTableEntry> heaps, _eSeq<_eTypeTableEntry> types,
                           _eSeq<_eInstantiationTableEntry> instantiations = {})
        : heaps(std::move(heaps)), types(std::move(types)), instantiations(std::move(instantiations)) {}

    bool equalFields(const _eModuleDescriptorData& other) const {
        return heaps == other.heaps && types == other.types && instantiations == other.instantiations;
    }

    const _eSeq<_eHeapTableEntry>& getHeaps() const { return heaps; }
    const _eSeq<_eTypeTableEntry>& getTypes() const { return types; }
    const _eSeq<_eInstantiationTableEntry>& getInstantiations() const { return instantiations; }

private:
    _eSeq<_eHeapTableEntry> heaps;
    _eSeq<_eTypeTableEntry> types;
    _eSeq<_eInstantiationTableEntry> instantiations;
};

// A new object of the module's type at an index, in its default state; null for a row that
// isn't storable.
using _eFactory = _eFrom<_eAny> (*)(int typeIndex);
using _eHeapOf = _eHeap* (*)();

// A module's static record, not counted.
struct MB_API _eModuleDescriptor {
    _eModuleDescriptor* next = nullptr;  // the record made before this one
    _eHndl<_eModuleDescriptorData> data;
    std::int32_t index = 0;              // running number of the record, from 1
    _eFactory factory = nullptr;         // null for a module without storable classes
    std::int32_t reserved = 0;
    _eHeapOf heapOf = nullptr;           // null for a module without a heap
};

// Fills in a record in static storage and makes it the newest of the chain. The system's own
// modules are always registered before any other.
MB_API void registerModule(_eModuleDescriptor& record, _eHndl<_eModuleDescriptorData> data, _eFactory factory,
                           std::int32_t reserved, _eHeapOf heapOf);
// The newest record.
MB_API _eModuleDescriptor* firstModule();
// The record `position` steps along the chain from the newest; null beyond the oldest.
MB_API _eModuleDescriptor* moduleAt(int position);
// The module of the built-in types.
MB_API _eModuleDescriptor* builtInModule();
