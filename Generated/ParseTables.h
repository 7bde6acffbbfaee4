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

// An action table's rows side by side in one array, for the search that runs once per input
// byte: the entries of the `_eSeq` rows, reached without a walk down two trees.
class FlatActionTable {
public:
    FlatActionTable() = default;
    explicit FlatActionTable(const ActionTable& table);

    // The entry for `symbol` in row `state`, found by a binary search; an error entry if the
    // row has none.
    ActionTableEntry find(std::int32_t state, std::int32_t symbol) const {
        if (state < 0 || std::size_t(state) + 1 >= rowStart.size()) return {0, ActionName::error, 0};
        const ActionTableEntry* base = entries.data() + rowStart[std::size_t(state)];
        std::size_t length = rowStart[std::size_t(state) + 1] - rowStart[std::size_t(state)];
        if (length == 0) return {0, ActionName::error, 0};
        // Halving without branches on the data: the next input byte is as good as random here.
        while (length > 1) {
            std::size_t half = length / 2;
            base = base[half].symbol <= symbol ? base + half : base;
            length -= half;
        }
        return base->symbol == symbol ? *base : ActionTableEntry{0, ActionName::error, 0};
    }

private:
    std::vector<std::uint32_t> rowStart;  // where each row begins, and where the last one ends
    std::vector<ActionTableEntry> entries;
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

// Handed to every parser; nothing reads it.
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
