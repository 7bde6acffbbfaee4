// Build switches and the export marker, in one place.
#pragma once

#if !defined(__cplusplus) || __cplusplus < 202002L
#error "The headers of ModelBridge's importer need C++20 (-std=c++20 or later); <modelbridge/modelbridge.hpp> needs only C++17 and <modelbridge/modelbridge.h> plain C."
#endif

// Marks what a host may link against. Everything else in the shared library is hidden.
#define MB_API __attribute__((visibility("default")))

// MODELBRIDGE_SANITIZE: set by the sanitizer build. Pooled blocks are poisoned while they
// wait in the free lists, so that a use after release is reported. Off by default.
#ifndef MODELBRIDGE_SANITIZE
#define MODELBRIDGE_SANITIZE 0
#endif

// MODELBRIDGE_POOL_BYPASS: every block goes straight to the system allocator, so that the
// address sanitizer sees each block's own lifetime. Off by default.
#ifndef MODELBRIDGE_POOL_BYPASS
#define MODELBRIDGE_POOL_BYPASS 0
#endif

// MODELBRIDGE_POOL_MAPS: the pool maps its chunks from the system itself, in slabs, rather than
// taking them from the C++ allocator. Off where a sanitizer runs, so that it sees the chunks as
// heap memory: a leak checker looks for pointers in them.
#ifndef MODELBRIDGE_POOL_MAPS
#if MODELBRIDGE_SANITIZE || defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define MODELBRIDGE_POOL_MAPS 0
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) || __has_feature(memory_sanitizer)
#define MODELBRIDGE_POOL_MAPS 0
#endif
#endif
#ifndef MODELBRIDGE_POOL_MAPS
#define MODELBRIDGE_POOL_MAPS 1
#endif
#endif

// MODELBRIDGE_DEEP_CHECK: every change to a tree ends with a walk of the whole tree that
// checks its invariants. Slow; for tests and fuzzing. Off by default.
#ifndef MODELBRIDGE_DEEP_CHECK
#define MODELBRIDGE_DEEP_CHECK 0
#endif

#if MODELBRIDGE_SANITIZE
#include <sanitizer/asan_interface.h>
#define MB_POISON(address, size) ASAN_POISON_MEMORY_REGION((address), (size))
#define MB_UNPOISON(address, size) ASAN_UNPOISON_MEMORY_REGION((address), (size))
#else
#define MB_POISON(address, size) ((void)(address), (void)(size))
#define MB_UNPOISON(address, size) ((void)(address), (void)(size))
#endif

#define MB_UNLIKELY(x) __builtin_expect(!!(x), 0)
