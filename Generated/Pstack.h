// The parser's stack. Popping doesn't erase: a reduction reads its right-hand side where it
// lies and writes its result over the first symbol.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "Generated/StackValue.h"
#include "runtime/Failure.h"
#include "runtime/Seq.h"

struct StackEntry {
    std::int32_t state;        // the state before this symbol was read
    _eHndl<StackValue> value;  // the symbol's value

    bool operator==(const StackEntry& other) const { return state == other.state && value == other.value; }
};

// Entries have no order: a collection that asks for one has gone wrong.
[[noreturn]] inline _eRank _aOrderOf(const StackEntry&, const StackEntry&) {
    raiseCannotHappen(_xPlaces::stackEntryOrder);
}

class ParseStack {
public:
    bool isEmpty() const { return top == 0; }
    // Between two tokens `top` equals the number of entries.
    void push(const StackEntry& entry) {
        entries.push_back(entry);
        ++top;
    }
    void push(StackEntry&& entry) {
        entries.push_back(std::move(entry));
        ++top;
    }
    void pop(std::int32_t count) { top -= count; }
    // offset 0 is the first symbol popped, 1 the second, and so on.
    const StackEntry& peek(std::int32_t offset) const { return entries[std::size_t(top + offset)]; }
    StackEntry& peekToChange(std::int32_t offset) { return entries[std::size_t(top + offset)]; }
    // Drops the popped entries.
    void trim() {
        // One or two entries at a time: popping them in place is cheaper than a general resize.
        while (entries.size() > std::size_t(top)) entries.pop_back();
    }
    // Keeps the first popped entry, now the nonterminal's, and drops the rest.
    void keepTop() {
        ++top;
        trim();
    }

    std::int32_t getTop() const { return top; }
    // Live and popped entries.
    std::int32_t entryCount() const { return std::int32_t(entries.size()); }

private:
    std::vector<StackEntry> entries;  // bottom first
    std::int32_t top = 0;       // live entries
};
