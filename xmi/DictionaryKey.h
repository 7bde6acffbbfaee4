// `DictionaryKey`: an id as a hash table of ids holds it, and the hash and equality such a
// table asks by.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

#include "runtime/StringUtils.h"
#include "xml/XMLValues.h"
#include "xmi/Context.h"

// An id as a dictionary's hash index holds it: a string, or the value that holds it in bytes.
// A long id is mostly held so, and a string of it would take four bytes a unit in nodes of its
// own; the key holds the value, so its bytes stay as long as the key does.
class DictionaryKey {
public:
    explicit DictionaryKey(const _eString& text) : text(text) {}
    // `value` holds its whole text in bytes.
    explicit DictionaryKey(const XMLAttributeValue& value) : value(const_cast<XMLAttributeValue*>(&value)) {}
    // The key of the text of `value`: the value itself where it holds the text in bytes.
    static DictionaryKey of(const XMLAttributeValue& value) {
        return value.wholeInBytes() != nullptr ? DictionaryKey(value) : DictionaryKey(value.text(Context::shared()));
    }

    // What `read(units, count)` gives for the units: the bytes, or the string's units in place
    // where it lies in one leaf, else a copy of them.
    template <class Read>
    auto withUnits(Read read) const {
        if (const CompactText* held = value.isNull() ? nullptr : value->wholeInBytes())
            return read(held->byteUnits(), std::size_t(held->size()));
        std::wstring scratch;
        std::wstring_view units = unitsOf(text, scratch);
        return read(units.data(), units.size());
    }
    bool isEmpty() const {
        return withUnits([](const auto*, std::size_t count) { return count == 0; });
    }
    // The id as a string, made for the asking where the key holds bytes.
    _eString string() const { return value.isNull() ? text : value->text(Context::shared()); }

private:
    _eString text;
    _eHndl<XMLAttributeValue> value;
};

// Hash and equality of keys by their units, whichever form each holds them in; asked by a
// string, a table of keys makes no key of its own (the string is read where it lies).
struct DictionaryKeyHash {
    using is_transparent = void;
    std::size_t operator()(const DictionaryKey& key) const {
        return key.withUnits([](const auto* units, std::size_t count) { return hashUnits(units, count); });
    }
    std::size_t operator()(const _eString& id) const { return (*this)(DictionaryKey(id)); }
};

struct DictionaryKeyEqual {
    using is_transparent = void;
    bool operator()(const DictionaryKey& a, const DictionaryKey& b) const {
        return a.withUnits([&](const auto* x, std::size_t n) {
            return b.withUnits([&](const auto* y, std::size_t m) {
                return n == m && std::equal(x, x + n, y, [](auto p, auto q) { return std::uint32_t(p) == std::uint32_t(q); });
            });
        });
    }
    bool operator()(const _eString& a, const DictionaryKey& b) const { return (*this)(DictionaryKey(a), b); }
    bool operator()(const DictionaryKey& a, const _eString& b) const { return (*this)(a, DictionaryKey(b)); }
};

// A hash table by ids, asked by strings.
template <class Value>
using KeyMap = std::unordered_map<DictionaryKey, Value, DictionaryKeyHash, DictionaryKeyEqual>;
