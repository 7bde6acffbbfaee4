// The lexer over a 10 MB file: every byte becomes a token, which is dropped at once as the
// parser would.
#include <benchmark/benchmark.h>

#include <string>

#include "BenchFile.h"
#include "environment/PlatformText.h"
#include "xml/XMLLex.h"

namespace {

// A file of XML-like lines.
std::string xmlLines() {
    std::string text;
    for (int i = 0; text.size() < 10u * 1024 * 1024; ++i)
        text += "  <UML:Attribute xmi.id=\"a" + std::to_string(i) + "\" name=\"balance\" visibility=\"public\"/>\n";
    return text;
}

void LexTenMegabytes(benchmark::State& state) {
    static BenchFile input(xmlLines());
    _eHndl<Environment> env(new Environment());
    _eHndl<FileName> name(new FileName(fromPlatformText(input.path), env.get()));
    for (auto _ : state) {
        _eHndl<XMLLex> lex(new XMLLex(env.get(), 4));
        bool ok = false;
        lex->openFile(name, ok);
        _eHndl<Terminal> token;
        std::size_t tokens = 0;
        do {
            token.reset();
            lex->nextToken(token);
            ++tokens;
        } while (token->getToken() != Token::endOfFile);
        lex->closeFile();
        benchmark::DoNotOptimize(tokens);
    }
    state.SetBytesProcessed(std::int64_t(state.iterations()) * std::int64_t(input.size));
}

}  // namespace

BENCHMARK(LexTenMegabytes)->Unit(benchmark::kMillisecond);
