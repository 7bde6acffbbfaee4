#include "Generated/XMLParser.h"

const ParseTables& XMLParser::tables() {
    static const ParseTables built = ParseTables::build(xmlParseTables);
    return built;
}

// The semantic actions run against the popped right-hand side. Those that build the syntax
// tree belong to the tree's classes; until then every action passes on its first symbol.
void XMLParser::reduceAction(std::int32_t semanticAction) {
    if (semanticAction < 0 || semanticAction > 89) raiseNoChoice(_xPlaces::parserNoAction);
}
