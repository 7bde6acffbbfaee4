#include "Generated/ParseTables.h"

#include <algorithm>

#include "runtime/Failure.h"

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
    for (std::int32_t i = 0; i < data.recoveryCount; ++i) {
        _eSet<int> closers;
        for (std::int32_t c = 0; c < data.recovery[i].closerCount; ++c) closers.add(data.recovery[i].closers[c]);
        t.recovery.pushBack({data.recovery[i].opening, closers});
    }
    t.flatTerminal = FlatActionTable(t.terminal);
    t.flatNonTerminal = FlatActionTable(t.nonTerminal);
    _eSeqReader<ReduceTableEntry> reductions(t.reductions);
    for (int i = 0, n = t.reductions.size(); i < n; ++i) t.flatReductions.push_back(reductions.next());
    return t;
}

FlatActionTable::FlatActionTable(const ActionTable& table) : states(table.size()) {
    for (int state = 0; state < states; ++state) {
        const _eSeq<ActionTableEntry>& row = table.get(state);
        if (!row.isEmpty()) width = std::max(width, row.get(row.size() - 1).symbol + 1);
    }
    cells.assign(std::size_t(states) * std::size_t(width), std::uint16_t(ActionName::error));
    for (int state = 0; state < states; ++state) {
        const _eSeq<ActionTableEntry>& row = table.get(state);
        _eSeqReader<ActionTableEntry> reader(row);
        for (int i = 0, n = row.size(); i < n; ++i) {
            const ActionTableEntry& entry = reader.next();
            if (entry.symbol < 0) continue;  // no byte or nonterminal has a negative code
            if (entry.parameter < 0 || entry.parameter >= parameterLimit) raiseCannotHappen(_xPlaces::parserAbsurd, L"Parse table parameter out of range");
            cells[std::size_t(state) * std::size_t(width) + std::size_t(entry.symbol)] =
                std::uint16_t(std::uint32_t(entry.action) | (std::uint32_t(entry.parameter) << actionBits));
        }
    }
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
