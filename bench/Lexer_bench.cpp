// The lexer over a 10 MB file: every byte becomes a token, which is dropped at once as the
// parser would.
#include <benchmark/benchmark.h>

#include <unistd.h>

#include <cstdio>
#include <string>

#include "environment/PlatformText.h"
#include "xml/XMLLex.h"

namespace {

// A file of XML-like text, removed when the program ends.
struct InputFile {
    InputFile() {
        char name[] = "/tmp/modelbridge-lex-XXXXXX";
        int fd = mkstemp(name);
        path = name;
        std::string text;
        for (int i = 0; text.size() < 10u * 1024 * 1024; ++i)
            text += "  <UML:Attribute xmi.id=\"a" + std::to_string(i) + "\" name=\"balance\" visibility=\"public\"/>\n";
        size = text.size();
        if (fd < 0 || write(fd, text.data(), text.size()) != ssize_t(text.size())) std::abort();
        close(fd);
    }
    ~InputFile() { unlink(path.c_str()); }
    std::string path;
    std::size_t size = 0;
};

void LexTenMegabytes(benchmark::State& state) {
    static InputFile input;
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
