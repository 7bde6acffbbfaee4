// Parse tables as the parser reads them, and the control object that parsers hold.
#pragma once

#include <cstddef>
#include <cstdint>

#include "Generated/ParseTableData.h"
#include "runtime/Class.h"
#include "runtime/Pair.h"
#include "runtime/Set.h"

using ActionTable = _eSeq<_eSeq<ActionTableEntry>>;
using ReduceTable = _eSeq<ReduceTableEntry>;
using RecoveryTable = _eSeq<_ePair<int, _eSet<int>>>;

// An action table as the lookup that runs for every token reads it: the packed rows of the
// generated constants, read in place (no table is built at start).
class PackedActionTable {
public:
    explicit PackedActionTable(const PackedActionData& data) : data(&data) {}

    // The entry for `symbol` in row `state`; an error entry if the row has none.
    ActionTableEntry find(std::int32_t state, std::int32_t symbol) const {
        if (std::uint32_t(state) >= std::uint32_t(data->states) || std::uint32_t(symbol) >= std::uint32_t(data->width))
            return {0, ActionName::error, 0};
        std::size_t slot = std::size_t(data->base[state]) + std::size_t(symbol);
        if (data->check[slot] != std::uint32_t(state)) return {0, ActionName::error, 0};
        std::uint32_t cell = data->cells[slot];
        return {symbol, ActionName::_eEnum(cell & actionMask), std::int32_t(cell >> actionBits)};
    }

private:
    static constexpr std::uint32_t actionBits = 3;
    static constexpr std::uint32_t actionMask = (1u << actionBits) - 1;

    const PackedActionData* data;
};

// What a parser reads for every token and reduction, in place in the generated constants.
struct DirectTables {
    explicit DirectTables(const ParseTableData& data)
        : terminal(data.packedTerminal), nonTerminal(data.packedNonTerminal), reductions(data.reductions) {}

    PackedActionTable terminal;
    PackedActionTable nonTerminal;
    const ReduceTableEntry* reductions;  // by production
};

// The four tables of one grammar as sequences, built from its generated blocks for whoever
// reads them whole.
struct ParseTables {
    ActionTable terminal;     // by state, rows ascending by token code
    ActionTable nonTerminal;  // by state, rows ascending by nonterminal
    ReduceTable reductions;   // by production
    RecoveryTable recovery;   // opening token and closing set

    static ParseTables build(const ParseTableData& data);
    static RecoveryTable recoveryOf(const ParseTableData& data);
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
