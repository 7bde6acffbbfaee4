// Syntax nodes: numbers, character references and entities.
#include <gtest/gtest.h>

#include "support/ParseRun.h"
#include "xml/XMLCharData.h"
#include "xml/XMLDocument.h"
#include "xml/XMLTags.h"

namespace {

// No node reads the context it is given; a null handle stands in. A handle is one pointer
// wide, so a null pointer seen as a handle is one, and no context class needs to be complete.
const _eHndl<Context>& noContext() {
    static_assert(sizeof(_eHndl<Context>) == sizeof(void*));
    static void* const null = nullptr;
    return *reinterpret_cast<const _eHndl<Context>*>(&null);
}

_eHndl<Location> at(int column) {
    _eHndl<Location> l(new Location());
    l->nextLine();
    for (int i = 1; i < column; ++i) l->nextColumn();
    return l;
}

_eHndl<Terminal> ch(wchar_t c, int column = 1) { return _eHndl<Terminal>(new SimpleTerminal(at(column), std::int32_t(c))); }

// Character data of `text`, whole and settled.
_eHndl<XMLCharData> charData(const std::wstring& text) {
    _eHndl<XMLCharData> made(new XMLCharData(ch(text[0])));
    made->appendCharacters(text.data() + 1, std::int32_t(text.size() - 1));
    made->shareText();
    return made;
}

_eHndl<XMLNumber> number(const std::wstring& digits, bool hex) {
    _eHndl<XMLNumber> n(new XMLNumber(ch(digits[0])));
    for (std::size_t i = 1; i < digits.size(); ++i) n->addDigit(ch(digits[i]), hex);
    return n;
}

}  // namespace

TEST(XMLNodes, NumbersInBothBasesWrapWithoutCheck) {
    EXPECT_EQ(number(L"65", false)->getValue(), 65);
    EXPECT_EQ(number(L"41", true)->getValue(), 65);
    EXPECT_EQ(number(L"FF", true)->getValue(), 255);
    EXPECT_EQ(number(L"ff", true)->getValue(), 255);
    EXPECT_EQ(number(L"4294967297", false)->getValue(), 1);
    EXPECT_EQ(digitValue(L'z'), 35);
    EXPECT_EQ(digitValue(L'Z'), 35);
    _eHndl<XMLCharReference> big(new XMLCharReference(at(1), number(L"1F600", true)));
    EXPECT_EQ(big->getCode(), 0x1F600);
    EXPECT_EQ(toWString(big->referenceText(noContext())), std::wstring(1, wchar_t(0xF600)));
}

// The predefined entities and character references, in attribute values and in character
// data: placeholders and nothing as specified, their characters when decoding is asked for.
TEST(XMLNodes, ReferencesDecodedOnlyWhenAskedFor) {
    const std::string text =
        "<r a='x&amp;&lt;&gt;&quot;&apos;&#65;&#x42;&other;y'>  p&amp;q&#67;r&other;s &#x20AC; </r>";
    struct Row {
        bool decode;
        const wchar_t* attribute;
        const wchar_t* content;
    };
    const Row rows[] = {
        {false,
         L"x[[EntityRef'amp']][[EntityRef'lt']][[EntityRef'gt']][[EntityRef'quot']][[EntityRef'apos']]AB[[EntityRef'other']]y",
         L"pqrs"},
        {true, L"x&<>\"'AB[[EntityRef'other']]y", L"p&qCrs \u20AC"},
    };
    for (const Row& row : rows) {
        ImportExtensions extensions;
        extensions.decodeReferences = row.decode;
        ParseOutcome o = parseText(text, extensions);
        ASSERT_TRUE(o.accepted);
        const XMLElement& root = *static_cast<XMLDocument*>(o.result.get())->getRoot();
        EXPECT_EQ(toWString(root.attributeText(L"a", Context::shared())), row.attribute) << row.decode;
        EXPECT_EQ(toWString(root.getContent()->text()), row.content) << row.decode;
    }
}

// A name is gathered unit by unit and run by run; whatever its length, the element, its
// attributes and its references come back with the whole of it.
TEST(XMLNodes, NamesOfEveryLengthComeBackWhole) {
    auto name = [](std::size_t length, char first) {
        std::string text(1, first);
        for (std::size_t i = 1; i < length; ++i) text.push_back(char('a' + i % 26));
        return text;
    };
    for (std::size_t length : {1, 2, 31, 32, 33, 64, 128, 129, 300}) {
        std::string tag = name(length, 'T');
        std::string text = "<" + tag;
        std::vector<std::string> attributes;
        for (std::size_t each : {std::size_t(1), length, length + 1}) {
            attributes.push_back(name(each, 'a'));
            text += " " + attributes.back() + "='v" + std::to_string(each) + "'";
        }
        std::string entity = name(length, 'e');
        text += " r='&" + entity + ";'></" + tag + ">";
        ParseOutcome o = parseText(text);
        ASSERT_TRUE(o.accepted) << length;
        const XMLElement& root = *static_cast<XMLDocument*>(o.result.get())->getRoot();
        EXPECT_EQ(toWString(root.getName()), toWString(fromPlatformText(tag))) << length;
        for (std::size_t i = 0; i < attributes.size(); ++i) {
            const XMLAttributeValue* value = root.attributeValue(fromPlatformText(attributes[i]));
            ASSERT_NE(value, nullptr) << length << " " << i;
            EXPECT_EQ(toWString(value->text(Context::shared())), L"v" + std::to_wstring(i == 0 ? 1 : length + i - 1));
        }
        EXPECT_EQ(toWString(root.attributeText(L"r", Context::shared())),
                  L"[[EntityRef'" + toWString(fromPlatformText(entity)) + L"']]")
            << length;
    }
}

TEST(XMLNodes, ShortCharacterDataSharesItsTextAndLongDataKeepsItWhole) {
    const std::wstring indent = L"\n      ";
    EXPECT_EQ(charData(indent)->getText().rootNode(), charData(indent)->getText().rootNode());
    EXPECT_EQ(toWString(charData(indent)->getText()), indent);
    const std::wstring accented = L"\u00e9t\u00e9 \u2192 hiver";
    // Shared while the table of texts has room: a test before this one in the same process may
    // have filled it (each test has a process of its own under ctest).
    if (!XMLNames::sharedText(accented).isEmpty()) {
        EXPECT_EQ(charData(accented)->getText().rootNode(), charData(accented)->getText().rootNode());
    }
    EXPECT_EQ(toWString(charData(accented)->getText()), accented);

    // Longer than any kept text: each is its own, whole, and equal to the other.
    std::wstring prose;
    while (prose.size() < 3 * std::size_t(XMLNames::longest)) prose += L"the account balance moves; ";
    _eHndl<XMLCharData> first = charData(prose), second = charData(prose + L"\u0100");
    EXPECT_EQ(toWString(first->getText()), prose);
    EXPECT_EQ(toWString(second->getText()), prose + L"\u0100");
    EXPECT_TRUE(first->isEqual(charData(prose).get()));
    EXPECT_FALSE(first->isEqual(second.get()));
    // A section of character data drops the two units of its end.
    XMLCDSect section(first->getPosition(), charData(L"<kept>]]"));
    EXPECT_EQ(toWString(section.getText()), L"<kept>");
}

// Once the table of short texts is full, one it doesn't hold is given no string: character
// data keeps such a text as it stands, and a text kept before is still shared.
TEST(XMLNodes, ShortCharacterDataPastTheTablesRoomKeepsItsOwnText) {
    const std::wstring kept = L"\n   kept early", late = L"came too late";
    _eString first = XMLNames::sharedText(kept);
    for (int i = 0; i < XMLNames::capacity; ++i) XMLNames::sharedText(L"filler " + std::to_wstring(i));
    EXPECT_TRUE(XMLNames::sharedText(late).isEmpty());
    EXPECT_EQ(XMLNames::sharedText(kept).rootNode(), first.rootNode());
    EXPECT_EQ(toWString(charData(late)->getText()), late);
}

// An attribute value gives its characters and references in order, whatever their length and
// units; a short one without references shares its string with the values of the same text.
TEST(XMLNodes, AttributeValuesKeepCharactersAroundReferencesWhole) {
    auto value = [](const std::vector<std::wstring>& runs, bool withReference) {
        _eHndl<XMLAttributeValue> made(new XMLAttributeValue(at(1)));
        for (std::size_t i = 0; i < runs.size(); ++i) {
            if (i > 0 && withReference) {
                _eHndl<XMLString> name(new XMLString(ch(L'a')));
                name->appendCharacters(L"mp", 2);
                made->addReference(new XMLEntityReference(at(1), name));
            }
            made->addCharacters(runs[i].data(), std::int32_t(runs[i].size()));
        }
        made->shareElements();
        return made;
    };
    std::wstring prose;
    while (prose.size() < 2 * std::size_t(XMLNames::longest)) prose += L"caf\u00e9 balance ";
    const std::wstring middle(std::size_t(XMLNames::longest) - 5, L'm');
    for (bool withReference : {false, true}) {
        std::wstring join = withReference ? L"[[EntityRef'amp']]" : L"";
        for (const std::vector<std::wstring>& runs :
             {std::vector<std::wstring>{L"public"}, {prose, L"\u20ac " + prose}, {middle, L"\u2026"}, {L"x", prose, L""}}) {
            std::wstring expected;
            for (std::size_t i = 0; i < runs.size(); ++i) expected += (i > 0 ? join : L"") + runs[i];
            _eHndl<XMLAttributeValue> first = value(runs, withReference), second = value(runs, withReference);
            EXPECT_EQ(toWString(first->text(noContext())), expected);
            EXPECT_TRUE(first->isEqual(second.get()));
        }
    }
    EXPECT_EQ(value({L"pub", L"lic"}, false)->text(noContext()).rootNode(),
              value({L"public"}, false)->text(noContext()).rootNode());
    EXPECT_FALSE(value({prose}, false)->isEqual(value({prose + L"."}, false).get()));
}

// A value gives the texts of its references where they stand, of every kind, in an entity
// value and in an attribute value: the characters of character references (cut to 16 bits,
// above a byte too), the placeholders of the others. A short value with references is the
// same text, and shares the same string, as the value of its characters alone.
TEST(XMLNodes, ValuesGiveTheirReferencesTextsInPlace) {
    auto name = [](const std::wstring& text) {
        _eHndl<XMLString> made(new XMLString(ch(text[0])));
        made->appendCharacters(text.data() + 1, std::int32_t(text.size() - 1));
        return made;
    };
    _eHndl<XMLEntityValue> entity(new XMLEntityValue(at(1)));
    entity->addCharacters(L"v", 1);
    entity->addReference(new XMLCharReference(at(2), number(L"65", false)));
    entity->addPEReference(new XMLPEReference(at(3), name(L"pe")));
    entity->addReference(new XMLEntityReference(at(4), name(L"e")));
    entity->addCharacters(L"w", 1);
    EXPECT_EQ(toWString(entity->text(noContext())), L"vA[[PERef'pe']][[EntityRef'e']]w");

    _eHndl<XMLAttributeValue> wide(new XMLAttributeValue(at(1)));
    wide->addCharacters(L"caf", 3);
    wide->addReference(new XMLCharReference(at(2), 0xE9));
    wide->addReference(new XMLCharReference(at(3), 0x1F600));
    wide->addCharacters(L" s", 2);
    wide->shareElements();
    EXPECT_EQ(toWString(wide->text(noContext())), std::wstring(L"caf\u00e9") + wchar_t(0xF600) + L" s");

    const std::wstring written = L"a[[EntityRef'amp']]<";
    _eHndl<XMLAttributeValue> referring(new XMLAttributeValue(at(1))), plain(new XMLAttributeValue(at(1)));
    referring->addCharacters(L"a", 1);
    referring->addReference(new XMLEntityReference(at(2), name(L"amp")));
    referring->addReference(new XMLCharReference(at(3), 60));
    plain->addCharacters(written.data(), std::int32_t(written.size()));
    for (XMLAttributeValue* value : {referring.get(), plain.get()}) value->shareElements();
    EXPECT_EQ(toWString(referring->text(noContext())), written);
    EXPECT_TRUE(referring->isEqual(plain.get()));
    if (!XMLNames::sharedValue(written).isEmpty()) {
        EXPECT_EQ(referring->text(noContext()).rootNode(), plain->text(noContext()).rootNode());
    }
}

// A value made whole from its units at once holds what one made unit by unit holds: a short
// text as the string kept for it, a long one in bytes.
TEST(XMLNodes, ValuesMadeFromTheirUnitsSettleAsValuesAddedTo) {
    const std::string bytes = "caf\xE9 " + std::string(60, 'x');
    for (std::size_t count : {0, 1, 5, 32, 33, 65}) {
        SCOPED_TRACE(count);
        const auto* units = reinterpret_cast<const unsigned char*>(bytes.data());
        _eHndl<XMLAttributeValue> whole(new XMLAttributeValue(at(1))), added(new XMLAttributeValue(at(1)));
        whole->shareElements(units, std::int32_t(count));
        added->addCharacters(units, std::int32_t(count));
        added->shareElements();
        EXPECT_TRUE(whole->isEqual(added.get()));
        std::wstring text(units, units + count);
        EXPECT_EQ(toWString(whole->text(noContext())), text);
        bool shared = count > 0 && count <= 32 && !XMLNames::sharedValue(text).isEmpty();
        EXPECT_EQ(whole->wholeInBytes() != nullptr, count > 32);
        if (shared) {
            EXPECT_EQ(whole->text(noContext()).rootNode(), added->text(noContext()).rootNode());
        }
    }
}
