// `TarvaneOutput`: a stretch of generated text as tokens; immutable, every operation gives a
// new value. One of them is finally written to a file with a header and a footer.
#pragma once

#include <string>

#include "Generated/XMLError.h"
#include "output/TarvaneElements.h"

class TarvaneOutput : public _eClass<TarvaneOutput, _eAny> {
public:
    static constexpr _aTypeSlot _aType{&_aModule12, 0};

    TarvaneOutput() : elements(new TarvaneElements()) {}
    explicit TarvaneOutput(const Tokens& tokens) : elements(new TarvaneElements(tokens)) {}

    // The one output without tokens.
    static const _eHndl<TarvaneOutput>& empty() {
        static const _eHndl<TarvaneOutput> shared(new TarvaneOutput());
        return shared;
    }

    bool equalFields(const TarvaneOutput& other) const { return elements == other.elements; }

    bool isEmpty() const { return elements->size() == 0; }
    _eHndl<TarvaneOutput> concat(const TarvaneOutput& other) const { return joined(tokens().concat(other.tokens())); }
    _eHndl<TarvaneOutput> appendElement(const Tokens& more) const { return joined(tokens().concat(more)); }
    _eHndl<TarvaneOutput> prependElement(const Tokens& more) const { return joined(more.concat(tokens())); }
    const Tokens& tokens() const { return elements->getTokens(); }

    // Writes header, tokens and footer to the file named by `file` (with the options' prefix,
    // always with the extension "tv"). `errors` is replaced by what went wrong.
    void writeFile(const ImportOptions& options, const FileName& file, const FileName& sourceFile,
                   const _eHndl<const Environment>& environment, XMLErrors& errors) const;

    // The file that `writeFile` writes for `file`: in its directory, the options' prefix before
    // its name, with the extension "tv".
    static FileName target(const ImportOptions& options, const FileName& file, const Environment& environment);
    // The text that `writeFile` writes, as bytes, without touching a file.
    std::string render(const ImportOptions& options, const FileName& file, const FileName& sourceFile,
                       const Environment& environment) const;

    // The seven header lines, naming `time`.
    static _eString header(const FileName& file, const FileName& sourceFile, const Environment& environment,
                           const Time& time);
    // The options' fixed time, else the clock's.
    static _eHndl<Time> generationTime(const ImportOptions& options, const Environment& environment);
    // "6.01.02" from the library's four version numbers: at least two, zero-padded after the first.
    static _eString versionText(const _eSeq<int>& version);
    // "13:05:09 on Wednesday November 18th 2026 UTC"
    static _eString timeText(const Time& time);
    static _eString ordinalSuffix(int day);

private:
    static _eString footer() { return L"\n\n// End of file.\n"; }
    static _eHndl<TarvaneOutput> joined(const Tokens& tokens) { return _eHndl<TarvaneOutput>(new TarvaneOutput(tokens)); }

    _eHndl<TarvaneElements> elements;  // the tokens
};
