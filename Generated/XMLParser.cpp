#include "Generated/XMLParser.h"

#include "xml/XMLCharData.h"
#include "xml/XMLDocument.h"

const ParseTables& XMLParser::tables() {
    static const ParseTables built = ParseTables::build(xmlParseTables);
    return built;
}

namespace {

// Symbol k of the production being reduced: the right-hand side lies at peek(0) onwards.
template <class T>
_eHndl<T> symbol(const ParseStack& stack, int k) {
    return _eHndl<T>(static_cast<T*>(stack.peek(k - 1).value.get()));
}

// Symbol 1, made unique to be changed in place; it stays the value of the nonterminal.
template <class T>
T* firstToChange(ParseStack& stack) {
    return static_cast<T*>(stack.peekToChange(0).value.uniquePointer());
}

}  // namespace

// The semantic actions: each builds a node of the tree from the popped right-hand side, or adds
// to the node of its first symbol. Values not named here do nothing.
void XMLParser::reduceAction(std::int32_t semanticAction) {
    const _eHndl<Location>& at = getReduceLocation();
    auto result = [this](StackValue* value) { stack.peekToChange(0).value = value; };
    using T = Terminal;
    switch (semanticAction) {
        case 2: result(new XMLDocument(at, symbol<XMLElement>(stack, 2))); break;
        case 3: result(new XMLDocument(at, symbol<XMLElement>(stack, 3))); break;
        case 8: result(new XMLString(symbol<T>(stack, 1))); break;
        case 10: firstToChange<XMLString>(stack)->appendCharacter(symbol<T>(stack, 2)); break;
        case 11: result(new XMLEntityValue(at)); break;
        case 12: firstToChange<XMLEntityValue>(stack)->addCharacter(symbol<T>(stack, 2)); break;
        case 13: firstToChange<XMLEntityValue>(stack)->addPEReference(symbol<XMLPEReference>(stack, 2)); break;
        case 14: firstToChange<XMLEntityValue>(stack)->addReference(symbol<XMLReference>(stack, 2)); break;
        case 15: result(new XMLAttributeValue(at)); break;
        case 16: firstToChange<XMLAttributeValue>(stack)->addCharacter(symbol<T>(stack, 2)); break;
        case 17: firstToChange<XMLAttributeValue>(stack)->addReference(symbol<XMLReference>(stack, 2)); break;
        case 20: result(new XMLCharData(symbol<T>(stack, 1))); break;
        case 21: firstToChange<XMLCharData>(stack)->appendCharacter(symbol<T>(stack, 2)); break;
        case 33: result(new XMLCDSect(at, symbol<XMLCharData>(stack, 2))); break;
        case 35: result(new XMLCharData(at)); break;
        case 43: result(ElementCreation::createEmptyElement(symbol<XMLEmptyElemTag>(stack, 1)).get()); break;
        case 44:
            result(ElementCreation::createElement(symbol<XMLSTag>(stack, 1), symbol<XMLcontent>(stack, 2),
                                                  symbol<XMLETag>(stack, 3))
                       .get());
            break;
        case 45:
        case 46:
            result(new XMLSTag(at, symbol<XMLString>(stack, 2), symbol<XMLAttributeList>(stack, 3)));
            break;
        case 47: result(new XMLAttributeList(at)); break;
        case 48: firstToChange<XMLAttributeList>(stack)->addAttribute(symbol<XMLAttribute>(stack, 3)); break;
        case 49: result(new XMLAttribute(symbol<XMLString>(stack, 1), symbol<XMLAttributeValue>(stack, 3))); break;
        case 50: result(new XMLETag(at, symbol<XMLString>(stack, 3))); break;
        case 51: result(new XMLcontent(at)); break;
        case 52:
        case 53:
        case 54:
        case 55: firstToChange<XMLcontent>(stack)->addItem(symbol<XMLContentItem>(stack, 2)); break;
        case 56:
        case 57:
            result(new XMLEmptyElemTag(at, symbol<XMLString>(stack, 2), symbol<XMLAttributeList>(stack, 3)));
            break;
        case 75: result(new XMLCharReference(at, symbol<XMLNumber>(stack, 3))); break;
        case 76: result(new XMLCharReference(at, symbol<XMLNumber>(stack, 4))); break;
        case 77: result(new XMLNumber(symbol<T>(stack, 1))); break;
        case 78: firstToChange<XMLNumber>(stack)->addDigit(symbol<T>(stack, 2), false); break;
        case 79: firstToChange<XMLNumber>(stack)->addDigit(symbol<T>(stack, 2), true); break;
        case 80: result(new XMLEntityReference(at, symbol<XMLString>(stack, 2))); break;
        case 81: result(new XMLPEReference(at, symbol<XMLString>(stack, 2))); break;
        default:
            if (semanticAction < 0 || semanticAction > 89) raiseNoChoice(_xPlaces::parserNoAction);
    }
}
