#include "facade/LibraryLock.h"

namespace {

// Built when the library loads, before any host thread can call in.
std::recursive_mutex lock;

}  // namespace

std::recursive_mutex& libraryLock() { return lock; }
