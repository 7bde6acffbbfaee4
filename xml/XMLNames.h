// Names of tags and attributes repeat all through a document, so equal names share one string.
#pragma once

#include "runtime/Seq.h"

class XMLNames {
public:
    // A table keeps at most this many names, first come first kept, of at most `longest`
    // units each: what it holds stays small whatever the input.
    static constexpr int capacity = 4096;
    static constexpr int longest = 128;

    // A string equal to `name`: the one kept for that text if there is one, else `name` itself,
    // which is then kept if there is room.
    static _eString shared(const _eString& name);
    // The string kept for `name` by `derive`, made by it on the first request: a name that
    // stands for another, such as a long tag for its canonical form, is worked out once.
    // There is one such table, so every caller passes the same function.
    static _eString derived(const _eString& name, _eString (*derive)(const _eString&));
};
