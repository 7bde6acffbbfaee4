// `XMLLex`: one token per input byte. It reads a byte, keeps the line and column, and puts the
// byte into one of a few token classes; the grammar spells out everything else.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "Generated/StackValue.h"
#include "Generated/XMLError.h"
#include "environment/Environment.h"
#include "environment/FileName.h"

class XMLLex : public _eClass<XMLLex, _eAny> {
public:
    static constexpr _aTypeSlot _aType{&_aModule23, 0};

    XMLLex(const Environment* environment, std::int32_t tabWidth);

    bool equalFields(const XMLLex& other) const;

    // Opens the file for reading and learns its size; failures go to the error set.
    virtual void openFile(const _eHndl<FileName>& fileName, bool& succeeded);
    virtual void closeFile();
    // After `openFile`: an input that a byte-order mark, UTF-16 or its declared encoding
    // (ISO-8859-1, windows-1252) tells is read as the UTF-8 that stands for the same characters;
    // a UTF-8 mark is passed over. Anything else is read as it stands.
    void readAsUtf8();
    // The token of the next byte; at the end `Token::endOfFile`, again and again, a line further
    // each time. A token in `token` that no other handle holds is remade in place.
    virtual void nextToken(_eHndl<Terminal>& token);
    // Reads on while the next byte is a `member`, each as `nextToken` would have read it, at
    // most `room` bytes into `units`; never the file's last byte, which may stand for its end.
    // With `stopAtLineEnd` no line end is read. Gives the number of bytes read.
    std::int32_t readRun(const bool (&member)[256], bool stopAtLineEnd, unsigned char* units, std::int32_t room);
    // The bytes that `nextToken` would read next, as far as they have been read ahead, never the
    // file's last byte: `bytes` points at them, and the count is given back.
    std::int32_t ahead(const unsigned char*& bytes) const {
        bytes = buffer.data() + next;
        std::int32_t buffered = std::int32_t(filled - next);
        return std::max(0, std::min(buffered, bytesLeft - 1));
    }
    // Reads `count` of the bytes that `ahead` gives, at least one, as so many tokens would have
    // read them; gives the place of the last.
    const Position& take(std::int32_t count) {
        here.passAll(currentChar, buffer.data() + next, count - 1, tabWidth);
        currentChar = buffer[next + std::size_t(count) - 1];
        next += std::size_t(count);
        bytesLeft -= count;
        tokenAt.line = here.getLine();
        tokenAt.column = here.getColumn();
        return tokenAt;
    }
    virtual std::int32_t lineNumber() const { return here.getLine(); }
    virtual XMLErrors getErrors() const { return errors; }

    // The code of each byte; above 255 for the classes that carry their character.
    static std::int32_t tokenCode(unsigned char byte) { return codes().table[byte]; }

private:
    struct CodeTable {
        std::int32_t table[256];
    };
    static const CodeTable& codes();

    // Moves past `currentChar` and reads the next byte.
    void advance();
    // Reads the next block of the input into `buffer`; false where nothing more could be read.
    bool refill();
    // A location of its own at `here`, for an error to keep.
    _eHndl<Location> place() const;

    static constexpr std::size_t bufferBytes = 65536;

    _eHndl<FileRef> file;              // the open input; null before opening and after closing
    wchar_t currentChar = 10;          // the last byte read; 10 also for nothing yet and nothing more
    std::int32_t bytesLeft = 0;        // bytes of the file not yet read
    Location here;                     // the position of `currentChar`
    Position tokenAt;                  // `here` as each token keeps it: the file set once per file
    XMLErrors errors;                  // what went wrong, each error once
    _eString path;                     // the file's name, for messages
    _eHndl<const Environment> environment;
    std::int32_t tabWidth;             // distance of tab stops
    std::shared_ptr<std::string> converted;  // the input as UTF-8, when `readAsUtf8` converted it: `file` reads it
    std::vector<unsigned char> buffer;  // input read ahead of the lexer, `bufferBytes` once first read
    std::size_t next = 0;               // the first byte of `buffer` not yet lexed
    std::size_t filled = 0;             // the bytes of `buffer` that hold input
    // The last tokens replaced while something else still held them (the parser's stack, as a
    // rule, until their production is reduced): one that nothing holds any more is remade
    // rather than a new one made.
    static constexpr std::size_t spareRoom = 4;
    _eHndl<Terminal> spares[spareRoom];
    std::size_t nextSpare = 0;          // the spare to be replaced next
};
