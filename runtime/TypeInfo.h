// The static type record of each class, and the type object that names the class.
#pragma once

#include "runtime/Any.h"

// The run-time type object of a class. It carries the class's name, which is what the
// default order of unrelated classes reads.
class MB_API _eInstblTypeInfo : public _eAny {
public:
    explicit _eInstblTypeInfo(const wchar_t* name);
    _eInstblTypeInfo(const _eInstblTypeInfo& other) = default;

    _eAnyBase* clone() const override;
    bool isEqual(const _eAnyBase* other) const override;
    const _eFullTypeInfo* _aGetFullTypeInfo() const override;
    static const _eFullTypeInfo* _aTypeRecord();

    _eString toString() const override;

    const _eString& typeName() const { return name; }
    bool equalFields(const _eInstblTypeInfo& other) const { return name == other.name; }

private:
    _eString name;  // the class's name in the modelling language
};

// One per class, built on first use and kept until process exit.
struct MB_API _eFullTypeInfo {
    _eFullTypeInfo(const wchar_t* name, const _eFullTypeInfo* parent);
    ~_eFullTypeInfo();
    _eFullTypeInfo(const _eFullTypeInfo&) = delete;
    _eFullTypeInfo& operator=(const _eFullTypeInfo&) = delete;

    _eHndl<_eInstblTypeInfo> info;   // the class's run-time type object
    int level;                       // depth below `_eAny`: 1 for its direct descendants
    const _eFullTypeInfo* parent;    // the parent class's record; null at level 1
};
