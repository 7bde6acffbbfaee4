// Text in element content: character data, and CDATA sections.
#pragma once

#include <algorithm>
#include <string>

#include "xml/CompactText.h"
#include "xml/XMLNames.h"
#include "xml/XMLNode.h"

class XMLCharData : public _eClass<XMLCharData, XMLContentItem> {
public:
    static constexpr _aTypeSlot _aType{&_aModule16, 18};

    explicit XMLCharData(const _eHndl<Terminal>& first) : _eClass(first->getPosition()) {
        wchar_t unit = first->getCharacter();
        text.append(&unit, 1);
    }
    explicit XMLCharData(const Position& position) : _eClass(position) {}

    bool equalFields(const XMLCharData& other) const { return XMLContentItem::equalFields(other) && text == other.text; }

    virtual void appendCharacter(const _eHndl<Terminal>& next) {
        wchar_t unit = next->getCharacter();
        appendCharacters(&unit, 1);
    }
    template <class Unit>
    void appendCharacters(const Unit* units, std::int32_t count) {
        _eFreeze freeze(this);
        text.append(units, count);
    }

    // Once the text is whole: holds the string that other character data of the same text
    // hold, when it is short and one is kept for it, and gives back the room gathered beyond
    // a text kept as it stands.
    void shareText() {
        _eFreeze freeze(this);
        text.settle<XMLNames::longest>(XMLNames::sharedText);
    }

    _eString getText() const { return text.text(); }
    // Appends the text to `out`.
    void appendTextTo(std::wstring& out) const { text.appendTo(out); }

private:
    CompactText text;
};

class XMLCDSect : public _eClass<XMLCDSect, XMLContentItem> {
public:
    static constexpr _aTypeSlot _aType{&_aModule16, 19};

    // The character data of a section still holds the two "]" of its end, which are cut off.
    XMLCDSect(const Position& position, const _eHndl<XMLCharData>& data)
        : _eClass(position), text(data->getText().take(std::max(0, data->getText().size() - 2))) {}

    bool equalFields(const XMLCDSect& other) const { return XMLContentItem::equalFields(other) && text == other.text; }

    const _eString& getText() const { return text; }

private:
    _eString text;
};
