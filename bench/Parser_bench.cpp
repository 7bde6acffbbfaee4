// Recognising a 10 MB XMI file: the lexer and the parser together, as the importer drives them.
#include <benchmark/benchmark.h>

#include <unistd.h>

#include <string>

#include "Generated/XMLParser.h"
#include "environment/PlatformText.h"
#include "xml/XMLLex.h"

namespace {

// An XMI document of about 10 MB, removed when the program ends.
struct ModelFile {
    ModelFile() {
        char name[] = "/tmp/modelbridge-parse-XXXXXX";
        int fd = mkstemp(name);
        path = name;
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
        size = text.size();
        if (fd < 0 || write(fd, text.data(), text.size()) != ssize_t(text.size())) std::abort();
        close(fd);
    }
    ~ModelFile() { unlink(path.c_str()); }
    std::string path;
    std::size_t size = 0;
};

void ParseTenMegabytes(benchmark::State& state) {
    static ModelFile model;
    _eHndl<Environment> env(new Environment());
    _eHndl<FileName> name(new FileName(fromPlatformText(model.path), env.get()));
    XMLParser::tables();
    for (auto _ : state) {
        _eHndl<XMLLex> lex(new XMLLex(env.get(), 4));
        bool ok = false;
        lex->openFile(name, ok);
        _eHndl<XMLParser> parser(new XMLParser(ParseControl::shared(), 0));
        _eHndl<Terminal> token;
        while (!parser->isFinished()) {
            token.reset();
            lex->nextToken(token);
            parser->offerToken(token);
        }
        lex->closeFile();
        if (parser->getResult().isNull()) state.SkipWithError("the model was refused");
    }
    state.SetBytesProcessed(std::int64_t(state.iterations()) * std::int64_t(model.size));
}

}  // namespace

BENCHMARK(ParseTenMegabytes)->Unit(benchmark::kMillisecond);
