// `_ePair<A,B>`: a plain record of two values, stored directly in tree leaves.
#pragma once

template <class A, class B>
struct _ePair {
    A first;
    B second;

    bool operator==(const _ePair& other) const { return first == other.first && second == other.second; }
};
