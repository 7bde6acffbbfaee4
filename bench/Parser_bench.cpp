// Recognising a 10 MB XMI file: the lexer and the parser together, as the importer drives them.
#include <benchmark/benchmark.h>

#include <string>

#include "BenchFile.h"
#include "Generated/XMLParser.h"
#include "environment/PlatformText.h"
#include "xml/XMLLex.h"

namespace {

// An XMI document of about 10 MB.
std::string model() {
    std::string text = "<?xml version='1.0' encoding='UTF-8'?>\n<XMI xmi.version='1.1'>\n<XMI.content>\n"
                       "<UML:Model xmi.id='m' name='Bank'>\n<UML:Namespace.ownedElement>\n";
    for (int i = 0; text.size() < 10u * 1024 * 1024; ++i) {
        std::string n = std::to_string(i);
        text += "  <UML:Class xmi.id='c" + n + "' name='Account" + n + "' visibility='public' isAbstract='false'>\n"
                "    <UML:Classifier.feature>\n"
                "      <UML:Attribute xmi.id='a" + n + "' name='balance' visibility='private'>\n"
                "        <UML:StructuralFeature.multiplicity>0..1</UML:StructuralFeature.multiplicity>\n"
                "      </UML:Attribute>\n"
                "      <!-- an operation follows -->\n"
                "      <UML:Operation xmi.id='o" + n + "' name='deposit' visibility='public'/>\n"
                "    </UML:Classifier.feature>\n"
                "  </UML:Class>\n";
    }
    text += "</UML:Namespace.ownedElement>\n</UML:Model>\n</XMI.content>\n</XMI>\n";
    return text;
}

void ParseTenMegabytes(benchmark::State& state) {
    static BenchFile file(model());
    _eHndl<Environment> env(new Environment());
    _eHndl<FileName> name(new FileName(fromPlatformText(file.path), env.get()));
    XMLParser::directTables();
    for (auto _ : state) {
        _eHndl<XMLLex> lex(new XMLLex(env.get(), 4));
        bool ok = false;
        lex->openFile(name, ok);
        _eHndl<XMLParser> parser(new XMLParser(ParseControl::shared(), 0));
        parser->parseAll(*lex);
        lex->closeFile();
        if (parser->getResult().isNull()) state.SkipWithError("the model was refused");
    }
    state.SetBytesProcessed(std::int64_t(state.iterations()) * std::int64_t(file.size));
}

}  // namespace

BENCHMARK(ParseTenMegabytes)->Unit(benchmark::kMillisecond);
