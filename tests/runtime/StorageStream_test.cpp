// The storage stream, byte by byte, through the tests' in-memory streams (little-endian; a
// character is two bytes).
#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <vector>

#include "Generated/ErrorEnums.h"
#include "environment/FileName.h"
#include "environment/OsInfo.h"
#include "environment/Time.h"
#include "runtime/StorageStream.h"
#include "support/MemoryStreams.h"
#include "support/StreamFailure.h"

namespace {

using Bytes = std::vector<unsigned char>;

class Storing : public testing::Test {
protected:
    Bytes written() const { return out->bytes; }
    // Everything written since the last call.
    Bytes fresh() {
        Bytes all = out->bytes;
        Bytes part(all.begin() + long(seen), all.end());
        seen = all.size();
        return part;
    }
    _eHndl<FillStream> reader(const Bytes& bytes, int version = 2) {
        input = new MemoryInputStream(bytes);
        return _eHndl<FillStream>(new FillStream(input, _eHndl<StreamHeader>(new StreamHeader(version)),
                                                 _eHndl<TestDecoder>(new TestDecoder())));
    }
    _eHndl<FillStream> readBack() { return reader(out->bytes); }

    _eHndl<MemoryOutputStream> out{new MemoryOutputStream()};
    _eHndl<StoreStream> store{new StoreStream(out, _eHndl<StreamHeader>(new StreamHeader(2)),
                                              _eHndl<TestEncoder>(new TestEncoder()))};
    _eHndl<MemoryInputStream> input;
    std::size_t seen = 0;
};

std::pair<int, std::wstring> failure(SerialErrorType::_eEnum code, const wchar_t* message) { return {code, message}; }

// A system string: two bytes of length, then the bytes.
Bytes systemString(const std::string& text) {
    Bytes bytes{(unsigned char)text.size(), 0};
    bytes.insert(bytes.end(), text.begin(), text.end());
    return bytes;
}

Bytes concat(std::initializer_list<Bytes> parts) {
    Bytes all;
    for (const Bytes& part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
}

}  // namespace

TEST_F(Storing, IntegersTakeTheShortestSymmetricalForm) {
    const std::pair<std::int32_t, Bytes> cases[] = {
        {0, {15}},
        {127, {16, 127}},
        {-127, {16, 0x81}},
        {128, {17, 0x80, 0}},
        {-128, {17, 0x80, 0xFF}},
        {32767, {17, 0xFF, 0x7F}},
        {-32768, {18, 0x00, 0x80, 0xFF, 0xFF}},
        {32768, {18, 0, 0x80, 0, 0}},
        {INT_MAX, {18, 0xFF, 0xFF, 0xFF, 0x7F}},
        {INT_MIN, {19, 0, 0, 0, 0x80, 0xFF, 0xFF, 0xFF, 0xFF}},
    };
    for (const auto& [value, bytes] : cases) {
        store->storeInt(value);
        EXPECT_EQ(fresh(), bytes) << value;
    }
    _eHndl<FillStream> in = readBack();
    for (const auto& [value, bytes] : cases) {
        std::int32_t read = 1;
        in->fillInt(read);
        EXPECT_EQ(read, value);
    }
    EXPECT_TRUE(input->atEnd());
}

TEST_F(Storing, StringsGoAsCollectionsWithRunsOfCharacters) {
    store->storeString(L"");
    EXPECT_EQ(fresh(), (Bytes{11, 15}));
    store->storeString(L"A");
    EXPECT_EQ(fresh(), (Bytes{11, 16, 1, 21, 'A', 0}));
    store->storeString(L"abc");
    EXPECT_EQ(fresh(), (Bytes{11, 16, 3, 2, 3, 0, 21, 'a', 0, 'b', 0, 'c', 0}));
    EXPECT_EQ(store->getRepeatCount(), 0);
    // A character after the run carries its code again.
    store->storeChar(L'z');
    EXPECT_EQ(fresh(), (Bytes{21, 'z', 0}));

    _eHndl<FillStream> in = readBack();
    for (const wchar_t* expected : {L"", L"A", L"abc"}) {
        _eString text = L"old";
        in->fillString(text);
        EXPECT_EQ(toWString(text), expected);
    }
    wchar_t unit = 0;
    in->fillChar(unit);
    EXPECT_EQ(unit, L'z');
    EXPECT_TRUE(input->atEnd());

    // A string longer than a run's count can hold goes in several runs.
    _eString longText(std::wstring(40000, L'q'));
    store->storeString(longText);
    EXPECT_EQ(fresh().size(), 6u + 4u + 4u + 2u * 40000u);
    _eHndl<FillStream> again = readBack();
    _eString skipped;
    for (int i = 0; i < 3; ++i) again->fillString(skipped);
    again->fillChar(unit);
    again->fillString(skipped);
    EXPECT_TRUE(skipped == longText);
}

// Before version 2 a character is a single byte.
TEST_F(Storing, OldStreamsHoldCharactersOfOneByte) {
    _eHndl<FillStream> old = reader({21, 'q'}, 1);
    wchar_t unit = 0;
    old->fillChar(unit);
    EXPECT_EQ(unit, L'q');
}

TEST_F(Storing, AnObjectGoesOnceAndItsTypeIsDeclaredOnce) {
    Time first(1, 2, 3, 4, 5, 6, 2026), second;
    first.store(*store);
    Bytes fields{16, 1, 16, 2, 16, 3, 16, 4, 16, 5, 16, 6, 17, 0xEA, 0x07};
    EXPECT_EQ(fresh(), concat({{26}, systemString("Time"), {5, 15}, fields, {4}}));
    first.store(*store);
    EXPECT_EQ(fresh(), (Bytes{6, 15}));
    second.store(*store);
    EXPECT_EQ(fresh(), (Bytes{5, 15, 15, 15, 15, 15, 15, 15, 15, 4}));
    second.store(*store);
    EXPECT_EQ(fresh(), (Bytes{6, 16, 1}));

    // Reading back: the object's code and type, then its fields.
    _eHndl<FillStream> in = readBack();
    EXPECT_EQ(in->readCode(), CV_HNDL);
    std::int32_t typeIndex = -1;
    in->fillInt(typeIndex);
    EXPECT_EQ(typeIndex, 0);
    EXPECT_EQ(toWString(in->getCompleteTypes().at(0)->toString()), L"Time");
    _eHndl<Time> read(new Time());
    read->fill(*in);
    EXPECT_TRUE(read->isEqual(&first));
    EXPECT_EQ(in->readCode(), CV_END);
}

TEST_F(Storing, EnumerationsBySizeOfValue) {
    store->storeEnum(L"ErrorSeverity", 255);
    EXPECT_EQ(fresh(), concat({{26}, systemString("ErrorSeverity"), {12, 15, 255}}));
    store->storeEnum(L"ErrorSeverity", 256);
    EXPECT_EQ(fresh(), (Bytes{13, 15, 0, 1}));
    store->storeEnum(L"ErrorSeverity", 65536);
    EXPECT_EQ(fresh(), (Bytes{14, 15, 0, 0, 1, 0}));

    _eHndl<FillStream> in = readBack();
    for (std::int32_t expected : {255, 256, 65536}) {
        std::int32_t value = 0;
        in->fillEnum(L"ErrorSeverity", value);
        EXPECT_EQ(value, expected);
    }
}

TEST_F(Storing, WrappersRoundTripByTheirValues) {
    using Storable = _eFrom<_eStorable>;
    auto blank = [](_eModuleDescriptor& module, int row) {
        return Storable(_eHndl<_eStorable>(dynamic_cast<_eStorable*>(module.factory(row).get())));
    };
    // Each value, and a default object of its class from its module's factory.
    const std::pair<Storable, Storable> cases[] = {
        {_eHndl<_eBasicTypeWrapper<std::int32_t>>(new _eBasicTypeWrapper<std::int32_t>(-40000)), blank(_aModule28, 0)},
        {_eHndl<_eBasicTypeWrapper<bool>>(new _eBasicTypeWrapper<bool>(true)), blank(_aModule28, 1)},
        {_eHndl<_eBasicTypeWrapper<wchar_t>>(new _eBasicTypeWrapper<wchar_t>(L'\u00e9')), blank(_aModule28, 2)},
        {_eHndl<_eBasicTypeWrapper<double>>(new _eBasicTypeWrapper<double>(2.5)), blank(_aModule28, 3)},
        {_eHndl<_eBasicTypeWrapper<unsigned char>>(new _eBasicTypeWrapper<unsigned char>(200)), blank(_aModule28, 4)},
        {_eHndl<_eStorableWrapper<_eString>>(new _eStorableWrapper<_eString>(L"text")),
         _eHndl<_eStorableWrapper<_eString>>(new _eStorableWrapper<_eString>())},
        {_eHndl<ErrorSeverity::_eWrapper>(new ErrorSeverity::_eWrapper(ErrorSeverity::fatal)), blank(_aModule3, 0)},
        {_eHndl<FileError::_eWrapper>(new FileError::_eWrapper(FileError::fileNotFound)), blank(_aModule29, 3)},
    };
    for (const auto& [value, empty] : cases) value->store(*store);
    _eHndl<FillStream> in = readBack();
    for (const auto& [value, empty] : cases) {
        ASSERT_FALSE(empty.isNull());
        EXPECT_FALSE(empty->isEqual(value.get()));
        empty.get()->fill(*in);
        EXPECT_TRUE(empty->isEqual(value.get())) << toWString(value->toString());
    }
    EXPECT_TRUE(input->atEnd());
    // An enumeration is declared by the row of its storage name, or else of that name without "_".
    EXPECT_EQ(toWString(in->getCompleteTypes().at(0)->toString()), L"ErrorSeverity");
    EXPECT_EQ(toWString(in->getCompleteTypes().at(1)->toString()), L"FileError");
    EXPECT_THROW(cases[0].first->storeFields(*store), _xCannotHappen);
}

TEST_F(Storing, DeclarationsOfTemplatesAreReadOnTheWay) {
    _eHndl<_eInstblTypeInfo> map = _eHndl<_eInstblTypeInfo>(new _eInstblTypeInfo(9, false))
                                       ->instantiate({_eHndl<_eInstblTypeInfo>(new _eInstblTypeInfo(0, false)),
                                                      FileName::_aMyTypeInfo()});
    store->storeInt(7);
    store->declareType(map);
    store->declareType(map);
    store->storeInt(8);
    EXPECT_EQ(written(), concat({{16, 7, 27}, systemString("map"), {16, 2, 16, 2, 26}, systemString("int"), {26},
                                 systemString("FileName"), {28, 15, 15, 22, 0, 22, 0, 16, 1, 22, 0, 22, 0, 16, 8}}));

    _eHndl<FillStream> in = readBack();
    std::int32_t value = 0;
    in->fillInt(value);
    EXPECT_EQ(value, 7);
    in->fillInt(value);
    EXPECT_EQ(value, 8);
    ASSERT_EQ(in->getCompleteTypes().size(), 3);
    EXPECT_EQ(toWString(in->getCompleteTypes().at(2)->toString()), L"map of (int, FileName)");
    EXPECT_EQ(toWString(in->getTemplateTypes().at(0)->toString()), L"map");

    // A heap declaration: an Int one less than the number of parts, then the parts.
    _eHndl<FillStream> heaps = reader(concat({{25, 16, 1}, systemString("a"), systemString("b"), {15}}));
    heaps->fillInt(value);
    ASSERT_EQ(heaps->getHeaps().size(), 1);
    EXPECT_EQ(toWString(heaps->getHeaps().at(0)->toString()), L"Heap: a::b");
}

TEST_F(Storing, FailuresCarryTheirCodesAndMessages) {
    std::int32_t number;
    bool flag;
    double real;
    struct Row {
        Bytes bytes;
        std::function<void(FillStream&)> read;
        SerialErrorType::_eEnum code;
        const wchar_t* message;
    };
    auto code = [](FillStream& in) { in.readCode(); };
    const Row rows[] = {
        {{30}, code, SerialErrorType::missingHeap, L"reading CV code from storage-stream"},
        {{}, code, SerialErrorType::readError, L"reading CV code from storage-stream"},
        {{20}, [&](FillStream& in) { in.fillInt(number); }, SerialErrorType::missingInstantiation, L"expected int"},
        {{17, 1}, [&](FillStream& in) { in.fillInt(number); }, SerialErrorType::readError,
         L"reading int from storage-stream"},
        {{22, 7}, [&](FillStream& in) { in.fillBool(flag); }, SerialErrorType::missingInstantiation, L"expected bool"},
        {{15}, [&](FillStream& in) { in.fillCollection(number); }, SerialErrorType::missingInstantiation,
         L"expected a collection"},
        {{12, 16, 3, 9}, [&](FillStream& in) { in.fillEnum(L"ErrorSeverity", number); }, SerialErrorType::missingType,
         L"complete-type index out of range"},
        {{28, 15, 15}, code, SerialErrorType::missingType, L"invalid template type index"},
        {{26, 0xFF, 0xFF}, code, SerialErrorType::missingType, L"invalid string length"},
        {{26, 3, 0, 'a'}, code, SerialErrorType::readError, L"reading system-string from storage-stream"},
        {{2, 3}, code, SerialErrorType::readError, L"reading CV repeat-count from storage-stream"},
        {{2, 3, 0}, code, SerialErrorType::readError, L"reading CV repeat-code from storage-stream"},
        {{29, 1}, [&](FillStream& in) { in.fillDouble(real); }, SerialErrorType::missingInstantiation,
         L"expected real"},
    };
    for (const Row& row : rows) EXPECT_EQ(failureOf([&] { row.read(*reader(row.bytes)); }), failure(row.code, row.message));

    out->failAfter = 0;
    EXPECT_EQ(failureOf([&] { store->storeInt(1); }),
              failure(SerialErrorType::writeError, L"writing CV code to storage-stream"));
    out->failAfter = 1;
    EXPECT_EQ(failureOf([&] { store->storeInt(1); }),
              failure(SerialErrorType::writeError, L"writing int to storage-stream"));
    out->bytes.clear();
    EXPECT_EQ(failureOf([&] { store->storeByte(1); }),
              failure(SerialErrorType::writeError, L"writing byte to storage-stream"));
    out->bytes.clear();
    EXPECT_EQ(failureOf([&] { store->storeEnum(L"ErrorSeverity", 1); }),
              failure(SerialErrorType::writeError, L"writing system-string to storage-stream"));
    // The freeze brackets are undone as the failure passes.
    EXPECT_FALSE(store->isFrozen());
}
