// `ImportOptions`: the settings of generated text. Generation reads one shared instance with the
// defaults, unless a host has given its importer settings of its own.
#pragma once

#include <cstdint>

#include "environment/Time.h"
#include "runtime/Class.h"

class ImportOptions : public _eClass<ImportOptions, _eAny> {
public:
    static constexpr _aTypeSlot _aType{&_aModule6, 0};

    ImportOptions() : lineWidth(100), indentText(L"\t"), commentPrefix(L"//") {}
    // Settings chosen by a host; comments keep their prefix. A `fixedTime` stands in the header
    // of every file in place of the clock's time. With `commentsByKind` only the tokens that
    // generation makes as comments are laid out as comments, whatever a model text starts with.
    ImportOptions(std::int32_t lineWidth, const _eString& indentText, const _eString& filePrefix,
                  const _eHndl<Time>& fixedTime = {}, bool commentsByKind = false)
        : lineWidth(lineWidth),
          indentText(indentText),
          commentPrefix(L"//"),
          filePrefix(filePrefix),
          fixedTime(fixedTime),
          commentsByKind(commentsByKind) {}

    bool equalFields(const ImportOptions& other) const {
        return lineWidth == other.lineWidth && indentText == other.indentText &&
               commentPrefix == other.commentPrefix && filePrefix == other.filePrefix &&
               fixedTime == other.fixedTime && commentsByKind == other.commentsByKind;
    }

    // The instance with the defaults, shared by every importer that keeps them; nothing changes it.
    static const ImportOptions& defaults() {
        static const _eHndl<ImportOptions> shared(new ImportOptions());
        return *shared;
    }

    std::int32_t getLineWidth() const { return lineWidth; }
    const _eString& getIndentText() const { return indentText; }
    const _eString& getCommentPrefix() const { return commentPrefix; }
    const _eString& getFilePrefix() const { return filePrefix; }
    const _eHndl<Time>& getFixedTime() const { return fixedTime; }
    bool getCommentsByKind() const { return commentsByKind; }

private:
    std::int32_t lineWidth;  // the column beyond which a line is broken
    _eString indentText;     // one level of indentation
    _eString commentPrefix;  // a token that begins with it is a comment
    _eString filePrefix;     // put before the base name of each generated file
    _eHndl<Time> fixedTime;  // the time that headers name; null: the clock's
    bool commentsByKind = false;  // a comment is a token of that kind, not any with the prefix
};
