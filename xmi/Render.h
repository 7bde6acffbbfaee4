// Short forms for building output: runs of tokens, and their joining.
#pragma once

#include <initializer_list>

#include "output/TarvaneSections.h"

inline _eHndl<TarvaneOutput> tokens(std::initializer_list<_eString> run) {
    return _eHndl<TarvaneOutput>(new TarvaneOutput(Tokens(run)));
}

inline _eHndl<TarvaneOutput> operator+(const _eHndl<TarvaneOutput>& a, const _eHndl<TarvaneOutput>& b) {
    return a->concat(*b);
}

// The declaration always in the abstract part; the accessor where the visibility puts it.
inline _eHndl<TarvaneSections> byVisibility(const _eString& visibility, const _eHndl<TarvaneOutput>& declaration,
                                            const _eHndl<TarvaneOutput>& accessor) {
    const _eHndl<TarvaneOutput>& none = TarvaneOutput::empty();
    if (visibility == _eString(L"public")) return _eHndl<TarvaneSections>(new TarvaneSections(declaration, none, accessor));
    if (visibility == _eString(L"protected"))
        return _eHndl<TarvaneSections>(new TarvaneSections(declaration, accessor, none));
    return _eHndl<TarvaneSections>(new TarvaneSections(declaration, none, none));
}
