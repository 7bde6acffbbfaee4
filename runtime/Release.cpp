// Deletion of objects without deep recursion.
#include <cstdlib>

#include "runtime/Handle.h"

namespace {

constexpr int deepest = 256;  // nested deletions before objects start to wait

// Objects whose deletion waits. Constant-initialised and kept in plain memory, so it works at
// any time, also while statics are being destroyed.
struct Waiting {
    const _eAnyBase** items;
    std::size_t size;
    std::size_t capacity;
    int depth;  // deletions under way, one inside another
};

constinit Waiting waiting{nullptr, 0, 0, 0};

void wait(const _eAnyBase* object) {
    if (waiting.size == waiting.capacity) {
        std::size_t capacity = waiting.capacity == 0 ? 1024 : waiting.capacity * 2;
        void* grown = std::realloc(static_cast<void*>(waiting.items), capacity * sizeof(const _eAnyBase*));
        if (grown == nullptr) std::abort();
        waiting.items = static_cast<const _eAnyBase**>(grown);
        waiting.capacity = capacity;
    }
    waiting.items[waiting.size++] = object;
}

}  // namespace

void _aHandle::destroy(const _eAnyBase* object) {
    if (waiting.depth >= deepest) {
        wait(object);
        return;
    }
    ++waiting.depth;
    delete object;
    if (waiting.depth == 1) {
        while (waiting.size > 0) delete waiting.items[--waiting.size];
        std::free(static_cast<void*>(waiting.items));
        waiting = Waiting{nullptr, 0, 0, 1};
    }
    --waiting.depth;
}
