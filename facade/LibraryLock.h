// The one lock of the library. The facade and the C API hold it for every call, so hosts may
// call them from any thread: the pool, the handle counts and the caches are process-wide and
// unlocked, and one thread at a time may be inside.
#pragma once

#include <mutex>

std::recursive_mutex& libraryLock();
