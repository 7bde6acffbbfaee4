// Names of tags and attributes repeat all through a document, so equal names share one string.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "runtime/Seq.h"
#include "runtime/StringUtils.h"

class XMLNames {
public:
    // A table keeps at most this many names, first come first kept, of at most `longest`
    // units each: what it holds stays small whatever the input.
    static constexpr int capacity = 4096;
    static constexpr int longest = 128;

    using Derivation = _eString (*)(const _eString&);

    // A string equal to `name`: the one kept for that text if there is one, else `name` itself,
    // which is then kept if there is room.
    static _eString shared(const _eString& name);
    // The same for a name whose units are not yet a string: one is made only where none is kept.
    static _eString shared(std::wstring_view name);
    // The same for short texts that repeat, such as the white space between elements: a table
    // of their own, so that they never crowd out the names. Once the table is full, a text it
    // doesn't hold gets no string (the empty one): its holder keeps it as it stands.
    static _eString sharedText(std::wstring_view text);
    // The same for short attribute values ("public", "false", the ids of common types).
    static _eString sharedValue(std::wstring_view text);
    // The string that `Derive` makes of `name`, made on the first request and kept: a name that
    // stands for another, such as a long tag for its canonical form, is worked out once. Each
    // derivation keeps a table of its own.
    template <Derivation Derive>
    static _eString derived(const _eString& name) {
        static Table kept;
        return derivedIn(kept, name, Derive);
    }

private:
    // Strings kept by a text, so that a lookup costs one hash of the units and one comparison;
    // in front of them the last strings asked for, by the node that holds their text: a name
    // read again from the same shared string is found by one comparison of addresses. A slot
    // holds its string, so that its node stays what it was. The text a string is kept by is a
    // string too: the name it was asked for, which for a name shared is the string kept.
    struct Table {
        StringMap<_eString> kept;
        struct Recent {
            _eString asked;
            _eString answer;
        };
        Recent recent[64];
        // Behind them the texts last found, by a hash of a few of their units: a name met again
        // is mostly one of the last few, found here by one comparison of units.
        struct Found {
            std::wstring text;
            _eString answer;
        };
        Found found[256];
    };

    static _eString derivedIn(Table& table, const _eString& name, Derivation derive);
    // The table of `shared`, whichever form the name comes in.
    static Table& names();
};
