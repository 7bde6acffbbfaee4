// A heap of elements: detached together when it goes, deleted unless pinned.
#include <gtest/gtest.h>

#include "runtime/Heap.h"

namespace {

struct Element : _eHeapElem {
    Element(int& detached, int& deleted) : detached(detached), deleted(deleted) {}
    ~Element() override { ++deleted; }
    void detach() override { ++detached; }
    int& detached;
    int& deleted;
};

}  // namespace

TEST(Heap, DetachesAllAndDeletesTheUnpinned) {
    int detached = 0, deleted = 0;
    Element* pinned = new Element(detached, deleted);
    pinned->pinned = 1;
    {
        _eHeap heap;
        heap.add(new Element(detached, deleted));
        heap.add(pinned);
        heap.add(new Element(detached, deleted));
        EXPECT_EQ(heap.getFirst()->next, pinned);
    }
    EXPECT_EQ(detached, 3);
    EXPECT_EQ(deleted, 2);
    delete pinned;
    EXPECT_EQ(deleted, 3);
}
