#include "Generated/ParseTables.h"

namespace {

// Rows of all blocks, in order of states.
ActionTable joinBlocks(const ParseTableBlock* blocks, std::int32_t count) {
    ActionTable table;
    for (std::int32_t b = 0; b < count; ++b) {
        const ParseTableBlock& block = blocks[b];
        for (std::int32_t r = 0; r < block.rows; ++r) {
            std::int32_t from = block.starts[r];
            table.pushBack(_eSeq<ActionTableEntry>(block.starts[r + 1] - from, block.entries + from));
        }
    }
    return table;
}

}  // namespace

ParseTables ParseTables::build(const ParseTableData& data) {
    ParseTables t;
    t.terminal = joinBlocks(data.terminalBlocks, data.blockCount);
    t.nonTerminal = joinBlocks(data.nonTerminalBlocks, data.blockCount);
    t.reductions = ReduceTable(data.reductionCount, data.reductions);
    t.recovery = recoveryOf(data);
    return t;
}

RecoveryTable ParseTables::recoveryOf(const ParseTableData& data) {
    RecoveryTable recovery;
    for (std::int32_t i = 0; i < data.recoveryCount; ++i) {
        _eSet<int> closers;
        for (std::int32_t c = 0; c < data.recovery[i].closerCount; ++c) closers.add(data.recovery[i].closers[c]);
        recovery.pushBack({data.recovery[i].opening, closers});
    }
    return recovery;
}

const _eSeq<_ePair<ActionName::_eEnum, _eString>>& actionDisplayNames() {
    static const _eSeq<_ePair<ActionName::_eEnum, _eString>> names{
        {ActionName::error, L"Error"},   {ActionName::shift, L"Shift"},
        {ActionName::reduce, L"Reduce"}, {ActionName::sh_red, L"Shift Reduce"},
        {ActionName::halt, L"Halt"},     {ActionName::skip, L"Skip"},
    };
    return names;
}

_eString actionDisplayName(ActionName::_eEnum action) { return actionDisplayNames().at(action).second; }
