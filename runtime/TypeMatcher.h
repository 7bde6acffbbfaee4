// Finding a type by the contents of its row, along the chain of modules from the newest.
#pragma once

#include "runtime/ModuleDescriptor.h"

// Where a row was found: the first module, counted from the newest, that has it, and every
// index of that module's table that holds it.
class MB_API _eCandidateMDAnode : public _eClass<_eCandidateMDAnode, _eAny> {
public:
    static constexpr _aTypeSlot _aType{&_aModule34, 1};

    _eCandidateMDAnode(_eHndl<_eModuleDescriptorData> module, int moduleIndex, _eSeq<int> indexes)
        : module(std::move(module)), moduleIndex(moduleIndex), indexes(std::move(indexes)) {}

    bool equalFields(const _eCandidateMDAnode& other) const {
        return moduleIndex == other.moduleIndex && module == other.module && indexes == other.indexes;
    }

    const _eHndl<_eModuleDescriptorData>& getModule() const { return module; }
    int getModuleIndex() const { return moduleIndex; }
    const _eSeq<int>& getIndexes() const { return indexes; }

private:
    _eHndl<_eModuleDescriptorData> module;
    int moduleIndex;
    _eSeq<int> indexes;  // ascending
};

// One per process, made from the chain as it stands at first use.
class MB_API _eTemplateTypeMatcher : public _eClass<_eTemplateTypeMatcher, _eAny> {
public:
    static constexpr _aTypeSlot _aType{&_aModule34, 0};

    explicit _eTemplateTypeMatcher(_eSeq<_eHndl<_eModuleDescriptorData>> modules) : modules(std::move(modules)) {}

    bool equalFields(const _eTemplateTypeMatcher& other) const { return modules == other.modules; }

    static const _eTemplateTypeMatcher& shared();
    // Null when no module has the row.
    _eHndl<_eCandidateMDAnode> match(const _eTypeTableEntry& wanted) const;

private:
    _eSeq<_eHndl<_eModuleDescriptorData>> modules;  // newest first
};
