#include "xml/CompactText.h"

#include <algorithm>

#include "runtime/Pool.h"

namespace {

// Units widened at a time when a string is made of bytes.
constexpr std::int32_t stretch = 512;

void appendWidened(_eString& out, const unsigned char* from, std::uint32_t count) {
    wchar_t units[stretch];
    for (std::uint32_t start = 0; start < count; start += stretch) {
        std::uint32_t n = std::min<std::uint32_t>(stretch, count - start);
        for (std::uint32_t i = 0; i < n; ++i) units[i] = from[start + i];
        out.appendRange(std::int32_t(n), units);
    }
}

}  // namespace

CompactText::CompactText(const CompactText& other) {
    if (other.bytes() != nullptr) {
        new (storage) _eString();
        holdBytes(other.movedTo(other.bytes()->size));
    } else {
        new (storage) _eString(other.wide());
    }
}

CompactText::CompactText(CompactText&& other) noexcept {
    if (other.bytes() != nullptr) {
        std::memcpy(storage, other.storage, sizeof storage);
        new (other.storage) _eString();
    } else {
        new (storage) _eString(other.wide());
        other.wide() = _eString();
    }
}

CompactText::~CompactText() {
    if (Bytes* held = bytes())
        release(held);
    else
        wide().~_eString();
}

void CompactText::release(Bytes* held) { _ePool::shared.release(held, sizeof(Bytes) + held->capacity); }

void CompactText::holdBytes(Bytes* held) {
    if (Bytes* before = bytes())
        release(before);
    else
        wide().~_eString();
    std::uintptr_t tagged = reinterpret_cast<std::uintptr_t>(held) | 1;
    std::memcpy(storage, &tagged, sizeof tagged);
}

void CompactText::holdString(const _eString& text) {
    if (Bytes* before = bytes()) {
        release(before);
        new (storage) _eString(text);
    } else {
        wide() = text;
    }
}

CompactText::Bytes* CompactText::movedTo(std::uint32_t capacity) const {
    auto* moved = static_cast<Bytes*>(_ePool::shared.allocateUnzeroed(sizeof(Bytes) + capacity));
    moved->capacity = capacity;
    moved->size = 0;
    if (const Bytes* held = bytes()) {
        moved->size = std::min(held->size, capacity);
        std::memcpy(moved->units(), held->units(), moved->size);
    }
    return moved;
}

CompactText::Bytes* CompactText::roomFor(std::uint32_t more) {
    Bytes* held = bytes();
    std::uint32_t size = (held != nullptr ? held->size : 0) + more;
    if (held != nullptr && size <= held->capacity) return held;
    // The first block fills a pooled block of 32 bytes; each growth at least doubles.
    holdBytes(movedTo(held == nullptr ? std::max<std::uint32_t>(size, 32 - sizeof(Bytes))
                                      : std::max(size, held->capacity * 2)));
    return bytes();
}

void CompactText::append(const wchar_t* units, std::int32_t count) {
    if (count <= 0) return;
    if (bytes() == nullptr && !wide().isEmpty()) {
        wide().appendRange(count, units);
        return;
    }
    // Copies first and checks after: a unit above a byte is rare, and then the whole text
    // goes over to the string, this run from its own units.
    Bytes* held = roomFor(std::uint32_t(count));
    unsigned char* out = held->units() + held->size;
    wchar_t all = 0;
    for (std::int32_t i = 0; i < count; ++i) {
        all |= units[i];
        out[i] = static_cast<unsigned char>(units[i]);
    }
    if (static_cast<std::uint32_t>(all) < 256) {
        held->size += std::uint32_t(count);
        return;
    }
    holdString(text());
    wide().appendRange(count, units);
}

void CompactText::append(const unsigned char* units, std::int32_t count) {
    if (count <= 0) return;
    if (bytes() == nullptr && !wide().isEmpty()) {
        appendWidened(wide(), units, std::uint32_t(count));
        return;
    }
    Bytes* held = roomFor(std::uint32_t(count));
    std::memcpy(held->units() + held->size, units, std::size_t(count));
    held->size += std::uint32_t(count);
}

void CompactText::replace(const _eString& text) { holdString(text); }

void CompactText::fit() {
    // A block is moved only when one of a smaller size class of the pool holds it.
    const Bytes* held = bytes();
    if (held == nullptr) return;
    if (_ePool::classOf(sizeof(Bytes) + held->capacity) == _ePool::classOf(sizeof(Bytes) + held->size)) return;
    holdBytes(movedTo(held->size));
}

void CompactText::copyTo(wchar_t* out) const {
    const Bytes* held = bytes();
    if (held == nullptr) {
        _eSeqReader<wchar_t> reader(wide());
        for (std::int32_t i = 0, n = wide().size(); i < n; ++i) out[i] = reader.next();
        return;
    }
    const unsigned char* units = held->units();
    for (std::uint32_t i = 0; i < held->size; ++i) out[i] = units[i];
}

_eString CompactText::text() const {
    if (bytes() == nullptr) return wide();
    _eString out;
    appendTo(out);
    return out;
}

void CompactText::appendTo(_eString& out) const {
    const Bytes* held = bytes();
    if (held == nullptr) {
        out.appendAll(wide());
        return;
    }
    appendWidened(out, held->units(), held->size);
}

void CompactText::appendTo(std::wstring& out) const {
    std::size_t at = out.size();
    out.resize(at + std::size_t(size()));
    copyTo(out.data() + at);
}

bool CompactText::operator==(const CompactText& other) const {
    const Bytes* mine = bytes();
    const Bytes* theirs = other.bytes();
    if (mine == nullptr && theirs == nullptr) return wide() == other.wide();
    if (mine != nullptr && theirs != nullptr)
        return mine->size == theirs->size && std::memcmp(mine->units(), theirs->units(), mine->size) == 0;
    return text() == other.text();
}
