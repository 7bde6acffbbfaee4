// The keywords of Tarvane, and the one change a name undergoes when it is one.
#pragma once

#include "runtime/Set.h"

// All 106, lower case; compared by exact characters.
const _eSet<_eString>& reservedWords();
// `name` with "_" behind it if it is reserved, else `name` unchanged.
_eString escapeReservedWord(const _eString& name);
