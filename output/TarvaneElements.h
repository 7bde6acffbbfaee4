// Generated text as a flat sequence of tokens, and the small pretty-printer that lays them out
// in lines. `ElementBase` is the engine; `TarvaneElements` gives it the layout of the language.
#pragma once

#include <cstdint>

#include "Generated/ImportOptions.h"
#include "environment/Environment.h"
#include "runtime/Set.h"

using Tokens = _eSeq<_eString>;

class ElementBase : public _eAbstractClass<ElementBase, _eAny> {
public:
    static constexpr _aTypeSlot _aType{&_aModule2, 0};

    ElementBase() = default;
    explicit ElementBase(const Tokens& tokens) : tokens(tokens) {}

    bool equalFields(const ElementBase& other) const { return tokens == other.tokens; }

    // The text that stands for a token: the token itself.
    virtual _eString tokenText(const _eString& token) const { return token; }
    // "", " " or "\n": what stands between two tokens.
    virtual _eString separatorBetween(const _eString& previous, const _eString& current, std::int32_t indent,
                                      const ImportOptions& options) const = 0;
    // A section keyword, printed one level further out.
    virtual bool isSectionHead(const _eString& token) const = 0;
    // A token whose following bracket pair ends the line.
    virtual bool startsParameterLine(const _eString& token) const = 0;
    virtual bool opensBlock(const _eString& previous, const _eString& current) const = 0;
    virtual bool closesBlock(const _eString& previous, const _eString& current) const = 0;
    // Writes a comment, cut into pieces that line up under the first where it is too long.
    virtual void writeWrapped(const Environment& environment, const _eHndl<FileRef>& file, const _eString& lead,
                              const _eString& text, std::int32_t column, const ImportOptions& options,
                              FileError::_eEnum& status) const;
    // Where a comment that doesn't fit in `room` is cut: at its last blank before `room`, else at `room`.
    virtual std::int32_t breakPosition(const _eString& text, std::int32_t room, const ImportOptions& options) const;

    std::int32_t size() const { return tokens.size(); }
    const Tokens& getTokens() const { return tokens; }

    // Writes every token, in lines, and a last line end; `status` is the first failed write's code.
    void writeTo(const Environment& environment, const _eHndl<FileRef>& file, const ImportOptions& options,
                 FileError::_eEnum& status) const;

private:
    Tokens tokens;  // in order; "\n" asks for a line break
};

class TarvaneElements : public _eClass<TarvaneElements, ElementBase> {
public:
    static constexpr _aTypeSlot _aType{&_aModule11, 0};

    using _eClass::_eClass;

    bool equalFields(const TarvaneElements& other) const { return ElementBase::equalFields(other); }

    _eString separatorBetween(const _eString& previous, const _eString& current, std::int32_t indent,
                              const ImportOptions& options) const override;
    bool isSectionHead(const _eString& token) const override { return sectionHeads().contains(token); }
    bool startsParameterLine(const _eString& token) const override { return parameterLineStarters().contains(token); }
    bool opensBlock(const _eString&, const _eString& current) const override { return blockOpeners().contains(current); }
    bool closesBlock(const _eString&, const _eString& current) const override { return blockClosers().contains(current); }

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
};
