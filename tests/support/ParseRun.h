// Runs the lexer and the XML parser over a text, as the importer does, and reports the outcome.
#pragma once

#include <string>
#include <vector>

#include "Generated/XMLParser.h"
#include "environment/PlatformText.h"
#include "support/TempDir.h"
#include "xml/XMLLex.h"

struct ParseOutcome {
    bool accepted = false;
    std::vector<std::wstring> errors;  // with short file names
    _eHndl<StackValue> result;
};

// Without `runs` every byte is offered as a token of its own.
inline ParseOutcome parseFile(const std::string& path, bool runs = true, const ImportExtensions& extensions = {}) {
    _eHndl<Environment> env(new Environment());
    _eHndl<XMLLex> lex(new XMLLex(env.get(), 4));
    bool ok = false;
    lex->openFile(_eHndl<FileName>(new FileName(fromPlatformText(path), env.get())), ok);
    _eHndl<XMLParser> parser(new XMLParser(ParseControl::shared(), 0));
    parser->chooseExtensions(extensions);
    parser->parseAll(*lex, runs, false, [](const Terminal&) {});
    lex->closeFile();
    ParseOutcome outcome;
    outcome.result = parser->getResult();
    outcome.accepted = !outcome.result.isNull();
    XMLErrors errors = parser->getErrors();
    errors.addAll(lex->getErrors());
    for (int i = 0; i < errors.size(); ++i) outcome.errors.push_back(toWString(errors.at(i)->text(true)));
    return outcome;
}

inline ParseOutcome parseText(const std::string& bytes, const ImportExtensions& extensions = {}) {
    TempDir dir;
    return parseFile(dir.write("in.xml", bytes), true, extensions);
}
