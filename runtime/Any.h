// `_eAny`: the root of every class of the modelling world.
#pragma once

#include "runtime/Seq.h"

class _eInstblTypeInfo;

class MB_API _eAny : public _eAnyBase {
public:
    // The text of the value; classes with an output form override it.
    virtual _eString toString() const;
    virtual const _eAny* self() const;
    // A handle on the run-time type object of the object's class.
    virtual _eHndl<_eInstblTypeInfo> _aGetMyTypeInfo() const;
};
