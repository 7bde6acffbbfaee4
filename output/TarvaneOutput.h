// `TarvaneOutput`: a stretch of generated text as tokens with their kinds, and the declarations
// that its runs of tokens make; immutable, every operation gives a new value. One of them is
// finally written to a file, or laid out in memory, with a header and a footer.
#pragma once

#include <string>
#include <vector>

#include "Generated/XMLError.h"
#include "output/TarvaneElements.h"

class TarvaneOutput : public _eClass<TarvaneOutput, _eAny> {
public:
    static constexpr _aTypeSlot _aType{&_aModule12, 0};

    TarvaneOutput() : elements(new TarvaneElements()) {}
    // Each token of the kind its text looks like; no declarations.
    explicit TarvaneOutput(const Tokens& tokens) : elements(new TarvaneElements(tokens)) {}
    explicit TarvaneOutput(const _eSeq<OutputToken>& tokens) : elements(new TarvaneElements(tokens)) {}
    // The tokens with the runs of declarations among them, as `concat` and `declared` keep
    // them: none while no token is declared, else runs whose counts add up to the tokens.
    TarvaneOutput(const _eSeq<OutputToken>& tokens, const _eSeq<DeclarationRun>& runs)
        : elements(new TarvaneElements(tokens)), runs(runs) {}

    // The one output without tokens.
    static const _eHndl<TarvaneOutput>& empty() {
        static const _eHndl<TarvaneOutput> shared(new TarvaneOutput());
        return shared;
    }

    bool equalFields(const TarvaneOutput& other) const {
        return elements == other.elements && runsOf(*this) == runsOf(other);
    }

    bool isEmpty() const { return elements->size() == 0; }
    // This output's tokens and declarations, then `other`'s.
    _eHndl<TarvaneOutput> concat(const TarvaneOutput& other) const;
    _eHndl<TarvaneOutput> appendElement(const Tokens& more) const { return concat(TarvaneOutput(more)); }
    _eHndl<TarvaneOutput> prependElement(const Tokens& more) const { return TarvaneOutput(more).concat(*this); }
    // The same tokens as one declaration of the element `id`, which takes the place of any
    // declarations within them.
    _eHndl<TarvaneOutput> declared(const _eString& id, DeclarationPart part) const;
    // The texts of the tokens and their kinds (each a sequence made anew).
    Tokens tokens() const { return elements->texts(); }
    TokenKinds kinds() const { return elements->kinds(); }
    // In the order of their tokens; the tokens between them belong to none.
    std::vector<Declaration> declarations() const;

    // The text of a file laid out in memory, and where each declaration stands in it.
    struct Layout {
        std::string bytes;
        std::vector<DeclarationLines> declarations;
    };

    // Writes header, tokens and footer to the file named by `file` (with the options' prefix,
    // always with the extension "tv"). `errors` is replaced by what went wrong.
    void writeFile(const ImportOptions& options, const FileName& file, const FileName& sourceFile,
                   const _eHndl<const Environment>& environment, XMLErrors& errors) const;
    // What `writeFile` writes, laid out in memory, without touching a file.
    Layout layOut(const ImportOptions& options, const FileName& file, const FileName& sourceFile,
                  const Environment& environment) const;

    // The file that `writeFile` writes for `file`: in its directory, the options' prefix before
    // its name, with the extension "tv".
    static FileName target(const ImportOptions& options, const FileName& file, const Environment& environment);
    // The text that `writeFile` writes, as bytes, without touching a file.
    std::string render(const ImportOptions& options, const FileName& file, const FileName& sourceFile,
                       const Environment& environment) const;

    // The bytes of the header alone, as `layOut` lays it out for `file` now.
    static std::string headerBytes(const ImportOptions& options, const FileName& file, const FileName& sourceFile,
                                   const Environment& environment);

    // The seven header lines, naming `time`, and the blank line after them.
    static constexpr std::size_t headerLines = 7;
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
    // Header, tokens and footer into `out`; false when a write failed. `lines`, when given,
    // receives where each declaration stands.
    bool writeWhole(const Environment& environment, const _eHndl<FileRef>& out, const _eString& head,
                    const ImportOptions& options, std::vector<DeclarationLines>* lines) const;
    // What `write` writes to a file, as bytes in memory.
    template <class Write>
    static std::string memoryBytes(Write write);
    // The whole text as `writeFile` writes it, laid out in memory; `lines` as for `writeWhole`.
    std::string inMemory(const ImportOptions& options, const FileName& file, const FileName& sourceFile,
                         const Environment& environment, std::vector<DeclarationLines>* lines) const;

    TarvaneOutput(const _eHndl<TarvaneElements>& elements, const _eSeq<DeclarationRun>& runs)
        : elements(elements), runs(runs) {}
    // The runs of an output, the one undeclared run of its tokens where it keeps none.
    static _eSeq<DeclarationRun> runsOf(const TarvaneOutput& output);

    _eHndl<TarvaneElements> elements;  // the tokens and their kinds
    // The tokens run by run, declarations among them; none while no token is declared, so
    // that joining runs of plain tokens costs nothing.
    _eSeq<DeclarationRun> runs;
};
