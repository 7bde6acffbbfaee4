#include "xml/XMLValues.h"

#include <array>

_eFrom<XMLEntityValueElement> XMLCharValue::of(wchar_t character) {
    static const std::array<_eFrom<XMLEntityValueElement>, 256> bytes = [] {
        std::array<_eFrom<XMLEntityValueElement>, 256> made;
        for (int c = 0; c < 256; ++c) made[std::size_t(c)] = new XMLCharValue(wchar_t(c));
        return made;
    }();
    auto unit = std::uint32_t(character);
    if (unit < 256) return bytes[unit];
    return new XMLCharValue(character);
}
