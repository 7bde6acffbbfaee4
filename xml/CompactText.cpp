#include "xml/CompactText.h"

#include <algorithm>
#include <cstring>

#include "runtime/Pool.h"

namespace {

// Units widened at a time when a string is made of bytes.
constexpr std::int32_t stretch = 512;

}  // namespace

CompactText::CompactText(const CompactText& other) : wide(other.wide) {
    if (other.bytes == nullptr) return;
    reserve(other.bytes->size);
    std::memcpy(bytes->units(), other.bytes->units(), other.bytes->size);
    bytes->size = other.bytes->size;
}

CompactText::~CompactText() { release(); }

void CompactText::release() {
    if (bytes != nullptr) _ePool::shared.release(bytes, sizeof(Bytes) + bytes->capacity);
    bytes = nullptr;
}

void CompactText::moveTo(std::uint32_t capacity) {
    auto* moved = static_cast<Bytes*>(_ePool::shared.allocate(sizeof(Bytes) + capacity));
    moved->capacity = capacity;
    if (bytes != nullptr) {
        moved->size = bytes->size;
        std::memcpy(moved->units(), bytes->units(), bytes->size);
        release();
    }
    bytes = moved;
}

void CompactText::reserve(std::uint32_t size) {
    if (bytes != nullptr && size <= bytes->capacity) return;
    // The first block fills a pooled block of 32 bytes; each growth at least doubles.
    moveTo(bytes == nullptr ? std::max<std::uint32_t>(size, 32 - sizeof(Bytes)) : std::max(size, bytes->capacity * 2));
}

void CompactText::append(const wchar_t* units, std::int32_t count) {
    if (count <= 0) return;
    if (bytes == nullptr && !wide.isEmpty()) {
        wide.appendRange(count, units);
        return;
    }
    // Copies first and checks after: a unit above a byte is rare, and then the whole text
    // goes over to the string, this run from its own units.
    reserve(bytes == nullptr ? std::uint32_t(count) : bytes->size + std::uint32_t(count));
    unsigned char* out = bytes->units() + bytes->size;
    wchar_t all = 0;
    for (std::int32_t i = 0; i < count; ++i) {
        all |= units[i];
        out[i] = static_cast<unsigned char>(units[i]);
    }
    if (static_cast<std::uint32_t>(all) < 256) {
        bytes->size += std::uint32_t(count);
        return;
    }
    widen();
    wide.appendRange(count, units);
}

void CompactText::widen() {
    wide = text();
    release();
}

void CompactText::replace(const _eString& text) {
    release();
    wide = text;
}

void CompactText::fit() {
    // Pooled blocks come in steps of 16 bytes: a block is moved only when a smaller one holds it.
    if (bytes == nullptr || (sizeof(Bytes) + bytes->capacity + 15) / 16 == (sizeof(Bytes) + bytes->size + 15) / 16) return;
    moveTo(bytes->size);
}

void CompactText::copyTo(wchar_t* out) const {
    if (bytes == nullptr) {
        _eSeqReader<wchar_t> reader(wide);
        for (std::int32_t i = 0, n = wide.size(); i < n; ++i) out[i] = reader.next();
        return;
    }
    const unsigned char* units = bytes->units();
    for (std::uint32_t i = 0; i < bytes->size; ++i) out[i] = units[i];
}

_eString CompactText::text() const {
    if (bytes == nullptr) return wide;
    _eString out;
    appendTo(out);
    return out;
}

void CompactText::appendTo(_eString& out) const {
    if (bytes == nullptr) {
        out.appendAll(wide);
        return;
    }
    wchar_t units[stretch];
    const unsigned char* from = bytes->units();
    for (std::uint32_t start = 0; start < bytes->size; start += stretch) {
        std::uint32_t n = std::min<std::uint32_t>(stretch, bytes->size - start);
        for (std::uint32_t i = 0; i < n; ++i) units[i] = from[start + i];
        out.appendRange(std::int32_t(n), units);
    }
}

bool CompactText::operator==(const CompactText& other) const {
    if (bytes == nullptr && other.bytes == nullptr) return wide == other.wide;
    if (bytes != nullptr && other.bytes != nullptr)
        return bytes->size == other.bytes->size && std::memcmp(bytes->units(), other.bytes->units(), bytes->size) == 0;
    return text() == other.text();
}
