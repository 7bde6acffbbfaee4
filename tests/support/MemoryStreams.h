// An in-memory byte stream pair for the storage stream, of the tests' own: numbers are written
// little-endian in the width asked for and read back sign-extended; a character is two bytes,
// little-endian, whatever the coder; a double is its eight bytes. Reading past the end, or
// writing once `failAfter` bytes are out, reports `readError` or `writeError`.
#pragma once

#include <cstring>
#include <vector>

#include "runtime/StorageStream.h"
#include "support/TestModule.h"

class TestEncoder : public _eClass<TestEncoder, CharEncoder> {
public:
    static constexpr _aTypeSlot _aType{&_aModule37, 3};  // "_DefaultEncoder"
    bool equalFields(const TestEncoder&) const { return true; }
};

class TestDecoder : public _eClass<TestDecoder, CharDecoder> {
public:
    static constexpr _aTypeSlot _aType{&_aModule37, 4};  // "_DefaultDecoder"
    bool equalFields(const TestDecoder&) const { return true; }
};

class MemoryOutputStream : public _eClass<MemoryOutputStream, _OutputStream> {
public:
    static constexpr _aTypeSlot _aType{&_aModule35, 10};

    bool equalFields(const MemoryOutputStream& other) const { return bytes == other.bytes; }

    void writeDouble(double value, FileError::_eEnum& error) override {
        unsigned char raw[8];
        std::memcpy(raw, &value, 8);
        for (unsigned char b : raw) put(b, error);
    }
    void writeChar(wchar_t unit, const CharEncoder&, FileError::_eEnum& error) override {
        writeInt(std::int64_t(unit), 2, error);
    }
    void writeInt(std::int64_t value, int width, FileError::_eEnum& error) override {
        for (int i = 0; i < width; ++i) put((unsigned char)(std::uint64_t(value) >> (8 * i)), error);
    }
    void writeBytes(const _eSeq<unsigned char>& data, FileError::_eEnum& error) override {
        error = FileError::success;
        for (int i = 0; i < data.size(); ++i) put(data.at(i), error);
    }
    void writeByte(unsigned char value, FileError::_eEnum& error) override { put(value, error); }

    std::vector<unsigned char> bytes;
    std::size_t failAfter = std::size_t(-1);

private:
    void put(unsigned char b, FileError::_eEnum& error) {
        if (bytes.size() >= failAfter) {
            error = FileError::writeError;
            return;
        }
        bytes.push_back(b);
        error = FileError::success;
    }
};

class MemoryInputStream : public _eClass<MemoryInputStream, _InputStream> {
public:
    static constexpr _aTypeSlot _aType{&_aModule35, 9};

    explicit MemoryInputStream(std::vector<unsigned char> bytes) : bytes(std::move(bytes)) {}
    bool equalFields(const MemoryInputStream& other) const { return bytes == other.bytes && at == other.at; }

    void readDouble(double& value, FileError::_eEnum& error) override {
        unsigned char raw[8];
        for (unsigned char& b : raw) get(b, error);
        std::memcpy(&value, raw, 8);
    }
    void readChar(wchar_t& unit, const CharDecoder&, FileError::_eEnum& error) override {
        std::int64_t value = 0;
        readInt(value, 2, error);
        unit = wchar_t(std::uint16_t(value));
    }
    void readInt(std::int64_t& value, int width, FileError::_eEnum& error) override {
        std::uint64_t raw = 0;
        error = FileError::success;
        for (int i = 0; i < width && error == FileError::success; ++i) {
            unsigned char b = 0;
            get(b, error);
            raw |= std::uint64_t(b) << (8 * i);
        }
        int shift = 64 - 8 * width;
        value = std::int64_t(raw << shift) >> shift;
    }
    void readBytes(_eSeq<unsigned char>& data, int count, FileError::_eEnum& error) override {
        error = FileError::success;
        for (int i = 0; i < count && error == FileError::success; ++i) {
            unsigned char b = 0;
            get(b, error);
            data.pushBack(b);
        }
    }
    void readByte(unsigned char& value, FileError::_eEnum& error) override { get(value, error); }

    bool atEnd() const { return at == bytes.size(); }

private:
    void get(unsigned char& b, FileError::_eEnum& error) {
        if (at >= bytes.size()) {
            error = FileError::readError;
            return;
        }
        b = bytes[at++];
        error = FileError::success;
    }

    std::vector<unsigned char> bytes;
    std::size_t at = 0;
};
