// `Location`: a position in an input file, or nowhere.
#pragma once

#include <cstdint>

#include "environment/FileName.h"
#include "runtime/Class.h"

class Location : public _eClass<Location, _eAny> {
public:
    static constexpr _aTypeSlot _aType{&_aModule7, 0};

    // Line 0, column 0, no file.
    Location() = default;
    // Line 0, column 0 at `file`.
    explicit Location(const _eHndl<FileName>& file) : file(file) {}
    Location(const _eHndl<FileName>& file, std::int32_t line, std::int32_t column)
        : line(line), column(column), file(file) {}

    // The one location of every error that has no position.
    static const _eHndl<Location>& nowhere() {
        static const _eHndl<Location> shared(new Location());
        return shared;
    }

    bool equalFields(const Location& other) const {
        return line == other.line && column == other.column && file == other.file;
    }
    // By file (none first), then line, then column.
    _eRank rank(const _eAnyBase* other) const override;

    // "<no file>", or the file's name, a blank and `positionText()`.
    virtual _eString text(bool shortFileNames) const;
    // "(line,column)"
    virtual _eString positionText() const;
    // The three steps of the virtual interface, which is fixed by design: the lexer moves by the
    // inline `pass` below, which does without a virtual call per byte.
    virtual void nextColumn();
    // To column 1 of the next line.
    virtual void nextLine();
    // To the next tab stop: with width 4 the stops are 1, 5, 9, ...
    virtual void nextTabStop(std::int32_t width);
    // Past `character` read here: a line end goes to the next line, a tab to the next tab stop,
    // anything else a column on.
    void pass(wchar_t character, std::int32_t tabWidth) {
        if (character == 10) {
            line += 1;
            column = 1;
        } else if (character == 9) {
            column = tabStopAfter(column, tabWidth);
        } else {
            column += 1;
        }
    }

    // Past `character` and then past each of `count` bytes, as `pass` for each in turn.
    void passAll(wchar_t character, const unsigned char* bytes, std::int32_t count, std::int32_t tabWidth) {
        // Most are a few bytes within a line, without tabs: each moves the column by one.
        constexpr std::int32_t few = 32;
        if (count <= few && character != 9 && character != 10) {
            bool plain = true;
            for (std::int32_t i = 0; i < count; ++i) plain &= bytes[i] != 9 && bytes[i] != 10;
            if (plain) {
                column += count + 1;
                return;
            }
        }
        passAny(character, bytes, count, tabWidth);
    }

    std::int32_t getLine() const { return line; }
    std::int32_t getColumn() const { return column; }
    const _eHndl<FileName>& getFile() const { return file; }

private:
    // `passAll` for bytes of any kind and number.
    void passAny(wchar_t character, const unsigned char* bytes, std::int32_t count, std::int32_t tabWidth);
    static std::int32_t tabStopAfter(std::int32_t column, std::int32_t width);

    std::int32_t line = 0;
    std::int32_t column = 0;
    _eHndl<FileName> file;  // null for a location without a file
};

// What a `Location` holds, kept by value: the tokens and nodes of a parse keep their places so,
// and a `Location` of its own is made only where one is asked for. The file is kept as its
// number among the files that places have named, so that a place is three plain numbers.
struct Position {
    std::int32_t line = 0;
    std::int32_t column = 0;
    std::uint32_t fileNumber = 0;  // 0 for a place without a file

    Position() = default;
    Position(const Location& at) : line(at.getLine()), column(at.getColumn()), fileNumber(numberOf(at.getFile())) {}
    // A null location is line 0, column 0, without a file, as `Location::nowhere()`.
    Position(const _eHndl<Location>& at) : Position(at.isNull() ? Position() : Position(*at)) {}

    bool operator==(const Position& other) const = default;
    const _eHndl<FileName>& file() const { return fileOf(fileNumber); }
    _eHndl<Location> location() const { return _eHndl<Location>(new Location(file(), line, column)); }

    // The number of `file`, the same for equal files, kept for the rest of the process; 0 for
    // none.
    static std::uint32_t numberOf(const _eHndl<FileName>& file);
    // The file of a number `numberOf` gave; null for 0.
    static const _eHndl<FileName>& fileOf(std::uint32_t number);
};
