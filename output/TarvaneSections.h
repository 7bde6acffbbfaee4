// `TarvaneSections`: what a feature, or a group of them, contributes to the three sections of
// a class: state and constants, the protected face, the public face.
#pragma once

#include "output/TarvaneOutput.h"

class TarvaneSections : public _eClass<TarvaneSections, _eAny> {
public:
    static constexpr _aTypeSlot _aType{&_aModule17, 0};

    TarvaneSections()
        : abstractPart(TarvaneOutput::empty()), confinedPart(TarvaneOutput::empty()),
          interfacePart(TarvaneOutput::empty()) {}
    TarvaneSections(const _eHndl<TarvaneOutput>& abstractPart, const _eHndl<TarvaneOutput>& confinedPart,
                    const _eHndl<TarvaneOutput>& interfacePart)
        : abstractPart(abstractPart), confinedPart(confinedPart), interfacePart(interfacePart) {}

    // The one value that contributes nothing.
    static const _eHndl<TarvaneSections>& empty() {
        static const _eHndl<TarvaneSections> shared(new TarvaneSections());
        return shared;
    }

    bool equalFields(const TarvaneSections& other) const {
        return abstractPart == other.abstractPart && confinedPart == other.confinedPart &&
               interfacePart == other.interfacePart;
    }

    // Part by part: this value's tokens, then `other`'s.
    _eHndl<TarvaneSections> merge(const TarvaneSections& other) const {
        return _eHndl<TarvaneSections>(new TarvaneSections(abstractPart->concat(*other.abstractPart),
                                                           confinedPart->concat(*other.confinedPart),
                                                           interfacePart->concat(*other.interfacePart)));
    }

    const _eHndl<TarvaneOutput>& getAbstractPart() const { return abstractPart; }
    const _eHndl<TarvaneOutput>& getConfinedPart() const { return confinedPart; }
    const _eHndl<TarvaneOutput>& getInterfacePart() const { return interfacePart; }

private:
    _eHndl<TarvaneOutput> abstractPart;   // under "abstract"
    _eHndl<TarvaneOutput> confinedPart;   // under "confined"
    _eHndl<TarvaneOutput> interfacePart;  // under "interface"
};
