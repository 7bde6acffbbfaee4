// What a stream failure carries, for tests that provoke one.
#pragma once

#include <string>
#include <utility>

#include "runtime/UrelException.h"

// The code and message of the stream failure that `action` raises; (-1, "") if it raises none.
template <class F>
std::pair<int, std::wstring> failureOf(F action) {
    try {
        action();
    } catch (const _aUrelExceptionWrapper& thrown) {
        return {thrown.errorCode(), toWString(thrown.message())};
    }
    return {-1, L""};
}
