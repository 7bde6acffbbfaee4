#include "xml/XMLValues.h"

#include "xml/XMLNames.h"

void XMLAttributeValue::shareElements() {
    constexpr int longest = 32;
    int size = getCharacters().size();
    if (!hasOnlyCharacters() || size == 0 || size > longest) return;
    replaceCharacters(XMLNames::sharedValue(getCharacters()));
}
