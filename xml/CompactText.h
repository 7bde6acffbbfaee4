// Text gathered run by run, held one byte a unit while every unit is below 256, and as a
// string from the first unit that is not. Long character data is mostly such text, and a byte
// a unit is a quarter of what a string of it holds.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <new>
#include <string>
#include <string_view>

#include "runtime/Seq.h"

class CompactText {
public:
    CompactText() { new (storage) _eString(); }
    CompactText(const CompactText& other);
    CompactText(CompactText&& other) noexcept;
    CompactText& operator=(const CompactText&) = delete;
    ~CompactText();

    void append(const wchar_t* units, std::int32_t count);
    // The same for units that are bytes, as the lexer reads them.
    void append(const unsigned char* units, std::int32_t count);
    // Holds `text` as it is, in place of what was gathered.
    void replace(const _eString& text);
    // Gives back the room gathered beyond the units.
    void fit();
    // Once the text is whole: a text of up to `longest` units is held as the string `make`
    // gives for its units, unless it gives none (the empty string); the room gathered beyond
    // a text held otherwise is given back.
    template <std::int32_t longest, class Make>
    void settle(Make make) {
        std::int32_t count = size();
        if (count > 0 && count <= longest) {
            wchar_t units[longest];
            copyTo(units);
            if (holdMade(units, count, make)) return;
        }
        fit();
    }
    // On an empty text, the same as `append` of the units, then `settle`: the units of a short
    // text are looked up as they stand, without a block to gather them in.
    template <std::int32_t longest, class Make>
    void settleFrom(const unsigned char* units, std::int32_t count, Make make) {
        if (count > 0 && count <= longest) {
            wchar_t widened[longest];
            std::copy(units, units + count, widened);
            if (holdMade(widened, count, make)) return;
        }
        append(units, count);
        fit();
    }

    // The units where the text is held in bytes (`size()` of them), else null.
    const unsigned char* byteUnits() const {
        const Bytes* held = bytes();
        return held != nullptr ? held->units() : nullptr;
    }
    std::int32_t size() const {
        const Bytes* held = bytes();
        return held != nullptr ? std::int32_t(held->size) : wide().size();
    }
    // The whole text, made a string for the asking when it is held in bytes.
    _eString text() const;
    // Widens the text into `out`, which holds at least `size()` units.
    void copyTo(wchar_t* out) const;
    // Appends the text to `out`.
    void appendTo(_eString& out) const;
    void appendTo(std::wstring& out) const;

    bool operator==(const CompactText& other) const;

private:
    // The bytes, behind a head that counts them; a pooled block.
    struct Bytes {
        std::uint32_t size;
        std::uint32_t capacity;
        unsigned char* units() { return reinterpret_cast<unsigned char*>(this + 1); }
        const unsigned char* units() const { return reinterpret_cast<const unsigned char*>(this + 1); }
    };

    // One word holds either a string or the address of the bytes with its lowest bit set: a
    // string's word is the address of its node, and nodes and blocks both start at even
    // addresses.
    static_assert(sizeof(_eString) == sizeof(std::uintptr_t));
    std::uintptr_t word() const {
        std::uintptr_t held;
        std::memcpy(&held, storage, sizeof held);
        return held;
    }
    Bytes* bytes() const {
        std::uintptr_t held = word();
        return (held & 1) != 0 ? reinterpret_cast<Bytes*>(held - 1) : nullptr;
    }
    _eString& wide() { return *std::launder(reinterpret_cast<_eString*>(storage)); }
    const _eString& wide() const { return *std::launder(reinterpret_cast<const _eString*>(storage)); }
    // Holds `held` from now on, in place of the string or of the bytes before.
    void holdBytes(Bytes* held);
    // Holds `text` from now on, in place of the string or of the bytes before.
    void holdString(const _eString& text);
    // Holds the string `make` gives for the units, if it gives one (not the empty string).
    template <class Make>
    bool holdMade(const wchar_t* units, std::int32_t count, Make make) {
        _eString made = make(std::wstring_view(units, std::size_t(count)));
        if (made.isEmpty()) return false;
        holdString(made);
        return true;
    }

    // The bytes held (none yet: a new block), with room for `more` after them.
    Bytes* roomFor(std::uint32_t more);
    // A block of `capacity` with the bytes held, if any, moved in.
    Bytes* movedTo(std::uint32_t capacity) const;
    static void release(Bytes* held);

    alignas(_eString) unsigned char storage[sizeof(_eString)];
};
