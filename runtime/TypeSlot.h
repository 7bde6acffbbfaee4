// Where a class's type stands: its module's record and the row in that module's table.
#pragma once

#include "runtime/Config.h"

struct _eModuleDescriptor;

struct _aTypeSlot {
    _eModuleDescriptor* module;
    int index;
};

// The records of the system's own modules, `_aModule1` the first to register.
inline constexpr int _aSystemModuleCount = 37;
MB_API extern _eModuleDescriptor _aModule1, _aModule2, _aModule3, _aModule4, _aModule5, _aModule6, _aModule7,
    _aModule8, _aModule9, _aModule10, _aModule11, _aModule12, _aModule13, _aModule14, _aModule15, _aModule16,
    _aModule17, _aModule18, _aModule19, _aModule20, _aModule21, _aModule22, _aModule23, _aModule24,
    _aModule25, _aModule26, _aModule27, _aModule28, _aModule29, _aModule30, _aModule31, _aModule32,
    _aModule33, _aModule34, _aModule35, _aModule36, _aModule37;
