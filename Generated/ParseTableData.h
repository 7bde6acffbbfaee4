// The form in which the table generator writes parse tables: constant blocks of rows, which
// the parser turns into its sequences once, on first use.
#pragma once

#include <cstdint>

#include "Generated/ActionName.h"

struct ActionTableEntry {
    std::int32_t symbol;        // a token code, or a nonterminal number
    ActionName::_eEnum action;
    std::int32_t parameter;     // the next state, or the production; 0 otherwise

    bool operator==(const ActionTableEntry&) const = default;
};

struct ReduceTableEntry {
    std::int32_t nonTerminal;     // the left-hand side
    std::int32_t length;          // symbols on the right-hand side
    std::int32_t semanticAction;  // 0 where nothing is to be done

    bool operator==(const ReduceTableEntry&) const = default;
};

// Consecutive rows: row i holds entries[starts[i]] up to entries[starts[i+1]].
struct ParseTableBlock {
    const ActionTableEntry* entries;
    const std::int32_t* starts;
    std::int32_t rows;
};

struct RecoveryPairData {
    std::int32_t opening;          // a token that opens a bracket
    const std::int32_t* closers;   // the tokens that close it
    std::int32_t closerCount;
};

// An action table packed for the parser's inner loop: its rows overlap where their entries
// don't. The entry for `symbol` in row `state` lies in the slot `base[state] + symbol` when
// `check` there holds the state; the row has none else. A cell holds the action in its three
// low bits and the parameter above them. Every symbol below `width` of every row has a slot.
struct PackedActionData {
    const std::int32_t* base;    // by state
    const std::uint16_t* check;  // the state whose entry a slot holds
    const std::uint16_t* cells;
    std::int32_t states;
    std::int32_t width;  // one more than the largest symbol of any entry
};

struct ParseTableData {
    const ParseTableBlock* terminalBlocks;
    const ParseTableBlock* nonTerminalBlocks;
    std::int32_t blockCount;
    const ReduceTableEntry* reductions;  // by production number
    std::int32_t reductionCount;
    const RecoveryPairData* recovery;
    std::int32_t recoveryCount;
    const char* const* nonTerminalNames;  // for reading only
    std::int32_t nonTerminalCount;
    PackedActionData packedTerminal;     // the same entries as the blocks, packed
    PackedActionData packedNonTerminal;
};

// The tables of the XML grammar.
extern const ParseTableData xmlParseTables;
