// Text gathered run by run, held one byte a unit while every unit is below 256, and as a
// string from the first unit that is not. Long character data is mostly such text, and a byte
// a unit is a quarter of what a string of it holds.
#pragma once

#include <cstdint>
#include <string_view>
#include <utility>

#include "runtime/Seq.h"

class CompactText {
public:
    CompactText() = default;
    CompactText(const CompactText& other);
    CompactText(CompactText&& other) noexcept : bytes(other.bytes), wide(std::move(other.wide)) {
        other.bytes = nullptr;
        other.wide = _eString();
    }
    CompactText& operator=(const CompactText&) = delete;
    ~CompactText();

    void append(const wchar_t* units, std::int32_t count);
    // Holds `text` as it is, in place of what was gathered.
    void replace(const _eString& text);
    // Gives back the room gathered beyond the units.
    void fit();

    std::int32_t size() const { return bytes != nullptr ? bytes->size : wide.size(); }
    // The whole text, made a string for the asking when it is held in bytes.
    _eString text() const;
    // Widens the text into `out`, which holds at least `size()` units.
    void copyTo(wchar_t* out) const;
    // Appends the text to `out`.
    void appendTo(_eString& out) const;

    bool operator==(const CompactText& other) const;

private:
    // The bytes, behind a head that counts them.
    struct Bytes {
        std::uint32_t size;
        std::uint32_t capacity;
        unsigned char* units() { return reinterpret_cast<unsigned char*>(this + 1); }
        const unsigned char* units() const { return reinterpret_cast<const unsigned char*>(this + 1); }
    };

    void reserve(std::uint32_t size);
    // Moves the bytes into a block of `capacity`, or makes an empty one.
    void moveTo(std::uint32_t capacity);
    void release();
    void widen();

    Bytes* bytes = nullptr;  // the text while every unit fits a byte; null once widened or replaced
    _eString wide;           // the text otherwise
};
