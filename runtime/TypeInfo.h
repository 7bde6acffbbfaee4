// Run-time types in the terms of the modelling language: a module's record and an index in its
// table of types, actual arguments for a template, and the two flags `from` and `ref`.
#pragma once

#include "runtime/Any.h"
#include "runtime/SeparatorId.h"

class _eTypeInfo;
class _eInstblTypeInfo;

using _eTypeArgs = _eSeq<_eFrom<_eTypeInfo>>;

// One row of a module's table of types.
struct MB_API _eTypeTableEntry {
    _eString name;
    int parameterCount = 0;                   // 0 for a plain type
    _eSeq<_eSeparatorId::_eEnum> separators;  // one less than the parameters; printed between them

    bool operator==(const _eTypeTableEntry& other) const {
        return parameterCount == other.parameterCount && name == other.name && separators == other.separators;
    }
};

class MB_API _eTypeInfo : public _eAny {
public:
    _eTypeInfo() = default;
    _eTypeInfo(const _eTypeInfo&) = default;

    // `args` and both flags; `_eInstblTypeInfo` adds its module and row.
    bool isEqual(const _eAnyBase* other) const override;
    const _eFullTypeInfo* _aGetFullTypeInfo() const override;
    static const _eFullTypeInfo* _aTypeRecord();
    _eString toString() const override;

    virtual bool isUninstantiable() const = 0;
    virtual bool isTemplate() const = 0;
    virtual _eTypeTableEntry entry() const = 0;
    // Same arguments in number and kind, the same row contents and the same `ref`.
    virtual bool matches(const _eTypeInfo& other) const;

    const _eTypeArgs& getArgs() const { return args; }
    bool isFrom() const { return from; }
    bool isRef() const { return ref; }
    void setFlags(bool from, bool ref);

protected:
    _eTypeArgs args;   // the actual arguments of an instantiated template
    bool from = false; // stands for the class or a descendant
    bool ref = false;  // a reference
};

class MB_API _eInstblTypeInfo : public _eTypeInfo {
public:
    // A plain type of a class of `module`.
    _eInstblTypeInfo(const _eModuleDescriptor* module, int typeIndex);
    // A type of the built-in table.
    _eInstblTypeInfo(int typeIndex, bool ref);
    // The first row of that description along the chain of modules, newest first; a row that
    // no module has raises a stream failure.
    _eInstblTypeInfo(const _eString& name, int parameterCount, const _eSeq<_eSeparatorId::_eEnum>& separators,
                     bool from, bool ref);
    static _eHndl<_eInstblTypeInfo> makeType(const _eString& name, bool from, bool ref);
    _eInstblTypeInfo(const _eInstblTypeInfo&) = default;

    _eRank rank(const _eAnyBase* other) const override;
    const _eFullTypeInfo* _aGetFullTypeInfo() const override;
    static const _eFullTypeInfo* _aTypeRecord();
    _eAnyBase* clone() const override;
    bool isEqual(const _eAnyBase* other) const override;
    bool isUninstantiable() const override { return false; }
    bool isTemplate() const override;
    _eTypeTableEntry entry() const override;

    // A new type: this one with `arguments` as its actual arguments, or with none.
    _eHndl<_eInstblTypeInfo> instantiate(const _eTypeArgs& arguments) const;
    _eHndl<_eInstblTypeInfo> withoutArguments() const;
    // The name of the row, which the default order of classes compares.
    _eString typeName() const;

    const _eModuleDescriptor* getModule() const { return module; }
    int getTypeIndex() const { return typeIndex; }

private:
    const _eModuleDescriptor* module;  // not counted: the records are static
    int typeIndex;
};

// One per class, built on first use and kept until process exit.
struct MB_API _eFullTypeInfo {
    _eFullTypeInfo(_eHndl<_eInstblTypeInfo> info, const _eFullTypeInfo* parent);
    ~_eFullTypeInfo();
    _eFullTypeInfo(const _eFullTypeInfo&) = delete;
    _eFullTypeInfo& operator=(const _eFullTypeInfo&) = delete;

    _eHndl<_eInstblTypeInfo> info;   // the class's run-time type object
    int level;                       // depth below `_eAny`: 1 for its direct descendants
    const _eFullTypeInfo* parent;    // the parent class's record; null at level 1
};

// The type object of a class's slot.
MB_API _eHndl<_eInstblTypeInfo> _aTypeOf(const _aTypeSlot& slot);
// An argument of a type as the instantiable type that every argument of this system is.
MB_API _eHndl<_eInstblTypeInfo> _aInstantiable(const _eFrom<_eTypeInfo>& type);
