// Generated text as a flat sequence of tokens with their kinds, and the small pretty-printer
// that lays them out in lines. `ElementBase` is the engine; `TarvaneElements` gives it the
// layout of the language.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "Generated/ImportOptions.h"
#include "environment/Environment.h"
#include "output/Declaration.h"
#include "runtime/Set.h"

class TextBatch;

using Tokens = _eSeq<_eString>;

// The lines, counted from 1, on which a laid-out token starts and ends (a long comment is
// wrapped over several), and the bytes before it on its first line.
struct TokenLines {
    std::int32_t first;
    std::int32_t last;
    std::int32_t column = 0;
};

class ElementBase : public _eAbstractClass<ElementBase, _eAny> {
public:
    static constexpr _aTypeSlot _aType{&_aModule2, 0};

    ElementBase() = default;
    // Each token of the kind its text looks like (`kindOf`).
    explicit ElementBase(const Tokens& texts);
    explicit ElementBase(const _eSeq<OutputToken>& tokens) : tokens(tokens) {}

    bool equalFields(const ElementBase& other) const { return tokens == other.tokens; }

    // The kind of a token known only by its text: a line break, a comment by its prefix "//",
    // a keyword when it starts with a letter, punctuation otherwise.
    static TokenKind kindOf(const _eString& token);

    // The text that stands for a token: the token itself.
    virtual _eString tokenText(const _eString& token) const { return token; }
    // "", " " or "\n": what stands between two tokens, each of which may be a comment.
    virtual _eString separatorBetween(const _eString& previous, bool previousIsComment, const _eString& current,
                                      bool currentIsComment, std::int32_t indent,
                                      const ImportOptions& options) const = 0;
    // A section keyword, printed one level further out.
    virtual bool isSectionHead(const _eString& token) const = 0;
    // A token whose following bracket pair ends the line.
    virtual bool startsParameterLine(const _eString& token) const = 0;
    virtual bool opensBlock(const _eString& previous, const _eString& current) const = 0;
    virtual bool closesBlock(const _eString& previous, const _eString& current) const = 0;
    // Writes a comment, cut into pieces that line up under the first where it is too long; gives
    // the number of line breaks it put between the pieces. The pieces after the first start on
    // a line of `column` blanks, or, where `indentation` is given, of that text. A piece that
    // would leave nothing behind it is the last, however far it reaches.
    virtual std::int32_t writeWrapped(TextBatch& out, const _eString& lead, const _eString& text, std::int32_t column,
                                      const ImportOptions& options, const _eString* indentation = nullptr) const;
    // Where a comment that doesn't fit in `room` is cut: at its last blank before `room`, else at `room`.
    virtual std::int32_t breakPosition(std::wstring_view text, std::int32_t room, const ImportOptions& options) const;

    std::int32_t size() const { return tokens.size(); }
    const _eSeq<OutputToken>& getTokens() const { return tokens; }
    // The texts of the tokens, and their kinds, each in a sequence of its own.
    Tokens texts() const;
    TokenKinds kinds() const;

    // Writes every token, in lines, and a last line end; `status` is the first failed write's
    // code. A token is a comment by its kind where the options tell comments by kind, else by
    // its prefix. `lines`, when given, receives the lines of each token.
    void writeTo(const Environment& environment, const _eHndl<FileRef>& file, const ImportOptions& options,
                 FileError::_eEnum& status, std::vector<TokenLines>* lines = nullptr) const;

private:
    _eSeq<OutputToken> tokens;  // in order; "\n" asks for a line break
};

class TarvaneElements : public _eClass<TarvaneElements, ElementBase> {
public:
    static constexpr _aTypeSlot _aType{&_aModule11, 0};

    using _eClass::_eClass;

    bool equalFields(const TarvaneElements& other) const { return ElementBase::equalFields(other); }

    _eString separatorBetween(const _eString& previous, bool previousIsComment, const _eString& current,
                              bool currentIsComment, std::int32_t indent, const ImportOptions& options) const override;
    bool isSectionHead(const _eString& token) const override { return (wordSets(token) & sectionHead) != 0; }
    bool startsParameterLine(const _eString& token) const override { return parameterLineStarters().contains(token); }
    bool opensBlock(const _eString&, const _eString& current) const override { return (wordSets(current) & opener) != 0; }
    bool closesBlock(const _eString&, const _eString& current) const override { return (wordSets(current) & closer) != 0; }

    _eHndl<TarvaneElements> concat(const TarvaneElements& other) const {
        return _eHndl<TarvaneElements>(new TarvaneElements(getTokens().concat(other.getTokens())));
    }

    static const _eSet<_eString>& blockOpeners();
    static const _eSet<_eString>& blockClosers();
    static const _eSet<_eString>& sectionHeads();
    static const _eSet<_eString>& lineEnders();
    static const _eSet<_eString>& lineStarters();
    static const _eSet<_eString>& noBlankAfter();
    static const _eSet<_eString>& noBlankBefore();
    static const _eSet<_eString>& parameterLineStarters();

    // The sets above that hold a word, a bit each: every token of the output is asked about,
    // and one lookup answers what a search of each set in turn would.
    enum WordSet : unsigned {
        opener = 1,
        closer = 2,
        sectionHead = 4,
        lineEnder = 8,
        lineStarter = 16,
        blankNotAfter = 32,
        blankNotBefore = 64
    };
    static unsigned wordSets(const _eString& token);

private:
    // The sets that hold a word, asked of the sets themselves.
    static unsigned lookUpWordSets(const _eString& token);
};
