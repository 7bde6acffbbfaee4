// Module records: the chain and its order, and heaps.
#include <gtest/gtest.h>

#include <vector>

#include "runtime/Heap.h"
#include "runtime/ModuleDescriptor.h"
#include "support/TestModule.h"

namespace {

// The system's modules, oldest first.
std::vector<_eModuleDescriptor*> systemChain() {
    std::vector<_eModuleDescriptor*> chain;
    for (_eModuleDescriptor* record = firstModule(); record != nullptr; record = record->next)
        chain.insert(chain.begin(), record);
    chain.resize(_aSystemModuleCount);
    return chain;
}

}  // namespace

TEST(ModuleDescriptor, TheChainRunsFromTheNewestToModuleOne) {
    // In this program the test module registered last.
    EXPECT_EQ(firstModule(), &testModule);
    EXPECT_EQ(moduleAt(0), firstModule());
    EXPECT_EQ(moduleAt(1), &_aModule37);
    EXPECT_EQ(builtInModule(), &_aModule28);

    std::vector<_eModuleDescriptor*> chain = systemChain();
    ASSERT_EQ(chain[0], &_aModule1);
    EXPECT_EQ(chain[0]->next, nullptr);
    for (int number = 1; number <= _aSystemModuleCount; ++number) {
        const _eModuleDescriptor* module = chain[number - 1];
        EXPECT_EQ(module->index, number);
        EXPECT_EQ(module->heapOf != nullptr, number == 35) << number;
    }
}

namespace {

struct Element : _eHeapElem {
    Element(int& detached, int& deleted) : detached(detached), deleted(deleted) {}
    ~Element() override { ++deleted; }
    void detach() override { ++detached; }
    int& detached;
    int& deleted;
};

}  // namespace

TEST(ModuleDescriptor, AHeapDetachesAllAndDeletesTheUnpinned) {
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
