// Parse tables as the parser reads them, and the control object that parsers hold.
#pragma once

#include <cstdint>
#include <vector>

#include "Generated/ParseTableData.h"
#include "runtime/Class.h"
#include "runtime/Pair.h"
#include "runtime/Set.h"

using ActionTable = _eSeq<_eSeq<ActionTableEntry>>;
using ReduceTable = _eSeq<ReduceTableEntry>;
using RecoveryTable = _eSeq<_ePair<int, _eSet<int>>>;

// An action table laid out as one dense grid of state by symbol, for the lookup that runs
// once per input byte: the entries of the `_eSeq` rows, found by one index instead of a walk
// down two trees and a search. Each cell packs the action and its parameter (a state or a
// production, below 8192) into 16 bits.
class FlatActionTable {
public:
    FlatActionTable() = default;
    explicit FlatActionTable(const ActionTable& table);

    // The entry for `symbol` in row `state`; an error entry if the row has none.
    ActionTableEntry find(std::int32_t state, std::int32_t symbol) const {
        if (std::uint32_t(state) >= std::uint32_t(states) || std::uint32_t(symbol) >= std::uint32_t(width))
            return {0, ActionName::error, 0};
        std::uint32_t cell = cells[std::size_t(state) * std::size_t(width) + std::size_t(symbol)];
        auto action = ActionName::_eEnum(cell & actionMask);
        if (action == ActionName::error) return {0, ActionName::error, 0};
        return {symbol, action, std::int32_t(cell >> actionBits)};
    }

private:
    static constexpr std::uint32_t actionBits = 3;
    static constexpr std::uint32_t actionMask = (1u << actionBits) - 1;
    static constexpr std::int32_t parameterLimit = 1 << (16 - actionBits);

    std::int32_t states = 0;
    std::int32_t width = 0;  // one more than the largest symbol of any row
    std::vector<std::uint16_t> cells;
};

// The four tables of one grammar, built from its generated blocks.
struct ParseTables {
    ActionTable terminal;     // by state, rows ascending by token code
    ActionTable nonTerminal;  // by state, rows ascending by nonterminal
    ReduceTable reductions;   // by production
    RecoveryTable recovery;   // opening token and closing set
    // The same entries laid out flat for the parser's inner loop.
    FlatActionTable flatTerminal;
    FlatActionTable flatNonTerminal;
    std::vector<ReduceTableEntry> flatReductions;

    static ParseTables build(const ParseTableData& data);
};

// The display name of each action, for diagnostics: "Error", "Shift", ...
const _eSeq<_ePair<ActionName::_eEnum, _eString>>& actionDisplayNames();
_eString actionDisplayName(ActionName::_eEnum action);

// Handed to every parser, as the parser's interface is fixed by design; nothing reads it.
class ParseControl : public _eClass<ParseControl, _eAny> {
public:
    static constexpr _aTypeSlot _aType{&_aModule9, 0};

    bool equalFields(const ParseControl&) const { return true; }

    // The one instance that the importer hands to its parsers.
    static const _eHndl<ParseControl>& shared() {
        static const _eHndl<ParseControl> control(new ParseControl());
        return control;
    }
};
