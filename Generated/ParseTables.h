// Parse tables as the parser reads them, and the control object that parsers hold.
#pragma once

#include <cstdint>

#include "Generated/ParseTableData.h"
#include "runtime/Class.h"
#include "runtime/Pair.h"
#include "runtime/Set.h"

using ActionTable = _eSeq<_eSeq<ActionTableEntry>>;
using ReduceTable = _eSeq<ReduceTableEntry>;
using RecoveryTable = _eSeq<_ePair<int, _eSet<int>>>;

// The four tables of one grammar, built from its generated blocks.
struct ParseTables {
    ActionTable terminal;     // by state, rows ascending by token code
    ActionTable nonTerminal;  // by state, rows ascending by nonterminal
    ReduceTable reductions;   // by production
    RecoveryTable recovery;   // opening token and closing set

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
