// Module records: the chain and its order, the tables, the factories, heaps.
#include <gtest/gtest.h>

#include <vector>

#include "Generated/ErrorEnums.h"
#include "environment/EnvironmentEnums.h"
#include "environment/FileName.h"
#include "environment/Time.h"
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

std::wstring rowName(const _eModuleDescriptor* module, int row) {
    return toWString(module->data->getTypes().at(row).name);
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
    const int rows[] = {1, 1, 3, 1, 1, 1, 1, 1, 1, 4, 1, 1, 2, 1, 1, 20, 2, 1, 1, 14, 2, 2, 1, 1, 3, 8, 3, 25, 15, 3, 3,
                        7, 3, 2, 11, 1, 9};
    for (int number = 1; number <= _aSystemModuleCount; ++number) {
        const _eModuleDescriptor* module = chain[number - 1];
        EXPECT_EQ(module->index, number);
        EXPECT_EQ(module->data->getTypes().size(), rows[number - 1]) << number;
        EXPECT_EQ(module->data->getInstantiations().size(), 0);
        EXPECT_EQ(module->data->getHeaps().size(), number == 35 ? 1 : 0) << number;
        EXPECT_EQ(module->heapOf != nullptr, number == 35);
        for (int row = 0; row < module->data->getTypes().size() && number != 28; ++row)
            EXPECT_EQ(module->data->getTypes().at(row).parameterCount, 0);
    }
    EXPECT_EQ(rowName(&_aModule1, 0), L"Context");
    EXPECT_EQ(rowName(&_aModule3, 2), L"Error");
    EXPECT_EQ(rowName(&_aModule10, 3), L"Parser");
    EXPECT_EQ(rowName(&_aModule16, 19), L"XMLCDSect");
    EXPECT_EQ(rowName(&_aModule20, 13), L"FCGeneralizationElement");
    EXPECT_EQ(rowName(&_aModule29, 14), L"SocketError");
    EXPECT_EQ(rowName(&_aModule32, 6), L"StreamException");
    EXPECT_EQ(rowName(&_aModule35, 10), L"_MemoryOutputStream");
    EXPECT_EQ(rowName(&_aModule37, 8), L"_UTF8_Decoder");
    // Templates of the built-in module carry one separator fewer than their parameters.
    const _eSeq<_eTypeTableEntry>& builtIn = builtInModule()->data->getTypes();
    EXPECT_EQ(toWString(builtIn.at(9).name), L"map");
    EXPECT_EQ(builtIn.at(9).separators.at(0), _eSeparatorId::RightArrow);
    EXPECT_EQ(builtIn.at(14).separators.at(2), _eSeparatorId::Comma);
}

TEST(ModuleDescriptor, FactoriesMakeDefaultObjects) {
    EXPECT_EQ(_aModule1.factory, nullptr);
    ASSERT_NE(_aModule29.factory, nullptr);
    _eFrom<_eAny> time = _aModule29.factory(1);
    ASSERT_FALSE(time.isNull());
    EXPECT_TRUE(time->isEqual(_eHndl<Time>(new Time()).get()));
    EXPECT_TRUE(_aModule29.factory(0).isNull());  // a FilePath isn't storable
    _eFrom<_eAny> error = _aModule29.factory(3);
    ASSERT_NE(dynamic_cast<const FileError::_eWrapper*>(error.get()), nullptr);
    EXPECT_EQ(toWString(error->toString()), L"success");
    EXPECT_TRUE(_aModule4.factory(0)->isEqual(_eHndl<FileName>(new FileName()).get()));
    EXPECT_EQ(toWString(_aModule28.factory(3)->toString()), L"0.0");
    EXPECT_TRUE(_aModule28.factory(5).isNull());
    EXPECT_NE(dynamic_cast<const ValidityStatus::_eWrapper*>(_aModule22.factory(1).get()), nullptr);
    EXPECT_TRUE(_aModule22.factory(0).isNull());
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
