// Any bytes through the lexer and the table-driven parser alone, as the importer drives them.
#include <cstdint>

#include "FuzzInput.h"
#include "Generated/XMLParser.h"
#include "environment/PlatformText.h"
#include "xml/XMLLex.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static _eHndl<Environment> environment(new Environment());
    std::string path = writeInput(data, size);
    _eHndl<XMLLex> lexer(new XMLLex(environment.get(), 4));
    bool opened = false;
    lexer->openFile(_eHndl<FileName>(new FileName(fromPlatformText(path), environment.get())), opened);
    _eHndl<XMLParser> parser(new XMLParser(ParseControl::shared(), 0));
    while (!parser->isFinished()) {
        _eHndl<Terminal> token;
        lexer->nextToken(token);
        parser->offerToken(token);
    }
    lexer->closeFile();
    XMLErrors errors = parser->getErrors();
    for (int i = 0; i < errors.size(); ++i) errors.at(i)->text(true);
    return 0;
}
