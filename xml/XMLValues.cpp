#include "xml/XMLValues.h"

#include <array>
#include <string>
#include <unordered_map>

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

void XMLAttributeValue::shareElements() {
    constexpr int longest = 32;
    constexpr std::size_t capacity = 4096;  // values kept, first come first kept
    static std::unordered_map<std::wstring, ValueElements> kept;
    const ValueElements& elements = getElements();
    int size = elements.size();
    if (size == 0 || size > longest) return;
    wchar_t units[longest];
    _eSeqReader<_eFrom<XMLEntityValueElement>> reader(elements);
    for (int i = 0; i < size; ++i) {
        const XMLCharValue* character = reader.next()->asCharacter();
        if (character == nullptr) return;
        units[i] = character->getCharacter();
    }
    std::wstring text(units, std::size_t(size));
    auto found = kept.find(text);
    if (found != kept.end())
        replaceElements(found->second);
    else if (kept.size() < capacity)
        kept.emplace(std::move(text), elements);
}
