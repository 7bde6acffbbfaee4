// The lexer: one token per byte, positions, classes of characters, the end and failures.
#include <gtest/gtest.h>

#include <unistd.h>

#include <string>
#include <vector>

#include "environment/PlatformText.h"
#include "support/TempDir.h"
#include "xml/XMLLex.h"

namespace {

struct Seen {
    std::int32_t code;
    wchar_t character;
    int line;
    int column;
    bool complex;

    bool operator==(const Seen&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Seen& s) {
    return out << "{" << s.code << ", " << int(s.character) << ", (" << s.line << "," << s.column << ")"
               << (s.complex ? " complex" : "") << "}";
}

Seen simple(std::int32_t code, int line, int column) { return {code, wchar_t(code & 0xFFFF), line, column, false}; }
Seen complex(std::int32_t code, wchar_t c, int line, int column) { return {code, c, line, column, true}; }
Seen end(int line, int column) { return simple(Token::endOfFile, line, column); }

class Lexing : public testing::Test {
protected:
    _eHndl<XMLLex> open(const std::string& bytes, bool expectOpen = true) {
        std::string path = dir.write("in.xml", bytes);
        _eHndl<XMLLex> lex(new XMLLex(env.get(), 4));
        bool ok = false;
        lex->openFile(_eHndl<FileName>(new FileName(fromPlatformText(path), env.get())), ok);
        EXPECT_EQ(ok, expectOpen);
        return lex;
    }
    // Every token up to the first end, and `extraEnds` more; the tokens are kept meanwhile.
    std::vector<Seen> tokens(const std::string& bytes, int extraEnds = 0) {
        _eHndl<XMLLex> lex = open(bytes);
        std::vector<_eHndl<Terminal>> held;
        int ends = 0;
        while (ends <= extraEnds) {
            _eHndl<Terminal> t;
            lex->nextToken(t);
            held.push_back(t);
            if (t->getToken() == Token::endOfFile) ++ends;
        }
        std::vector<Seen> out;
        for (const auto& t : held) {
            const Position& at = t->getPosition();
            out.push_back({t->getToken(), t->getCharacter(), at.line, at.column,
                           dynamic_cast<const ComplexTerminal*>(t.get()) != nullptr});
        }
        lex->closeFile();
        EXPECT_TRUE(lex->getErrors().isEmpty());
        return out;
    }

    TempDir dir;
    _eHndl<Environment> env{new Environment()};
};

}  // namespace

TEST_F(Lexing, PositionsFromTheFirstByteToTheRepeatedEnd) {
    EXPECT_EQ(tokens("", 2), (std::vector<Seen>{end(1, 1), end(2, 1), end(3, 1)}));
    EXPECT_EQ(tokens("ab"), (std::vector<Seen>{simple('a', 1, 1), simple('b', 1, 2), end(1, 3)}));
    // A last line feed is not delivered: the end takes its place.
    EXPECT_EQ(tokens("a\n", 1), (std::vector<Seen>{simple('a', 1, 1), end(1, 2), end(2, 1)}));
    EXPECT_EQ(tokens("a\nb"),
              (std::vector<Seen>{simple('a', 1, 1), complex(261, 10, 1, 2), simple('b', 2, 1), end(2, 2)}));
    // Carriage return and line feed are two tokens and one line; a lone carriage return is a column.
    EXPECT_EQ(tokens("a\r\nb"), (std::vector<Seen>{simple('a', 1, 1), complex(261, 13, 1, 2),
                                                   complex(261, 10, 1, 3), simple('b', 2, 1), end(2, 2)}));
    EXPECT_EQ(tokens("\rb"), (std::vector<Seen>{complex(261, 13, 1, 1), simple('b', 1, 2), end(1, 3)}));
    // Tab stops every 4 columns: from columns 1 and 4 the next character is at 5.
    EXPECT_EQ(tokens("\tx"), (std::vector<Seen>{complex(261, 9, 1, 1), simple('x', 1, 5), end(1, 6)}));
    EXPECT_EQ(tokens("abc\tx")[4], simple('x', 1, 5));
    EXPECT_EQ(tokens("abcd\tx")[5], simple('x', 1, 9));
}

// Taking runs of bytes reads what one token per byte reads: the same bytes, and the tokens
// after each run at the same places, across the lexer's blocks, with and without line ends in
// runs, and with room for less than a whole run.
TEST_F(Lexing, RunsReadWhatTokensRead) {
    std::string input;
    for (int i = 0; input.size() < 150000; ++i)
        input += std::string(std::size_t(i % 7000), 'w') + "ab\tc d\n\t x" + (i % 3 == 0 ? "\n" : "") + "<";
    input += "end";
    std::vector<Seen> each = tokens(input);
    bool member[256] = {};
    for (unsigned char c : std::string("abcdwx \t\n")) member[c] = true;
    for (bool stopAtLineEnd : {false, true})
        for (std::int32_t room : {1000, 4096}) {
            _eHndl<XMLLex> lex = open(input);
            std::vector<unsigned char> units(std::size_t(room), 0);
            std::size_t at = 0;
            int runs = 0;
            for (_eHndl<Terminal> t; at < each.size(); ++at) {
                lex->nextToken(t);
                const Position& where = t->getPosition();
                ASSERT_EQ((Seen{t->getToken(), t->getCharacter(), where.line, where.column,
                                dynamic_cast<const ComplexTerminal*>(t.get()) != nullptr}),
                          each[at]) << "byte " << at;
                std::int32_t count = lex->readRun(member, stopAtLineEnd, units.data(), room);
                ASSERT_LE(count, room);
                for (std::int32_t i = 0; i < count; ++i) {
                    ASSERT_EQ(units[std::size_t(i)], static_cast<unsigned char>(input[at + 1 + std::size_t(i)])) << "byte " << at + 1 + i;
                    ASSERT_FALSE(stopAtLineEnd && units[std::size_t(i)] == 10);
                }
                at += std::size_t(count);
                runs += count > 0;
            }
            EXPECT_GT(runs, 100);
            EXPECT_TRUE(lex->getErrors().isEmpty());
        }
}

// One handle passed again and again: a token that nothing else holds is remade in place for
// the next byte, of either kind, and so is one let go a few bytes later, as the parser lets go
// of what it reduces; one held elsewhere keeps its code, character and position.
TEST_F(Lexing, ATokenIsRemadeOnlyWhereNothingElseHoldsIt) {
    // Runs of each kind, so that a kept token is followed by one of its own kind.
    std::string input;
    for (int i = 0; i < 4; ++i) input += "abc  \t\n+=<\xB7\xB7" "de";
    std::vector<Seen> fresh = tokens(input);
    _eHndl<XMLLex> lex = open(input);
    std::vector<std::pair<std::size_t, _eHndl<Terminal>>> kept;
    _eHndl<Terminal> briefly;  // let go four bytes later, for the next one
    _eHndl<Terminal> t;
    const Terminal* previous = nullptr;
    int remade = 0;
    for (std::size_t i = 0; i < fresh.size(); ++i) {
        lex->nextToken(t);
        remade += t.get() == previous;
        const Position& at = t->getPosition();
        EXPECT_EQ((Seen{t->getToken(), t->getCharacter(), at.line, at.column,
                        dynamic_cast<const ComplexTerminal*>(t.get()) != nullptr}),
                  fresh[i]) << "byte " << i;
        previous = t.get();
        if (i % 2 == 0)
            kept.emplace_back(i, t);
        else if (i % 4 == 1)
            briefly = t;
    }
    EXPECT_GT(remade, 0);
    for (const auto& [i, held] : kept) {
        const Position& at = held->getPosition();
        EXPECT_EQ((Seen{held->getToken(), held->getCharacter(), at.line, at.column,
                        dynamic_cast<const ComplexTerminal*>(held.get()) != nullptr}),
                  fresh[i]) << "kept byte " << i;
    }
}

TEST_F(Lexing, ClassesOfBytes) {
    const std::pair<unsigned char, std::int32_t> codes[] = {
        {'a', 'a'}, {'Z', 'Z'}, {'7', '7'}, {' ', Token::whiteSpace}, {'+', Token::otherChar},
        {183, Token::extender}, {215, Token::otherChar}, {247, Token::otherChar}, {192, Token::baseChar},
        {255, Token::baseChar}, {0, Token::illegalChar}, {31, Token::illegalChar}, {127, Token::otherChar},
    };
    for (const auto& [byte, code] : codes) EXPECT_EQ(XMLLex::tokenCode(byte), code) << int(byte);

    // Tokens of the classes carry their byte; the others are plain.
    EXPECT_EQ(tokens("a +\xB7\xD7"),
              (std::vector<Seen>{simple('a', 1, 1), complex(261, 32, 1, 2), complex(264, 43, 1, 3),
                                 complex(263, 183, 1, 4), complex(264, 215, 1, 5), end(1, 6)}));
    EXPECT_EQ(tokens(std::string("\0", 1))[0], complex(265, 0, 1, 1));
    // A byte-order mark arrives as three bytes, the first of them a base character.
    EXPECT_EQ(tokens("\xEF\xBB\xBF<")[0], complex(259, 0xEF, 1, 1));
}

TEST_F(Lexing, TerminalTexts) {
    _eHndl<Location> here = Location::nowhere();
    EXPECT_EQ(toWString(SimpleTerminal(here, L'<').getText()), L"'<'");
    EXPECT_EQ(toWString(SimpleTerminal(here, std::int32_t(127)).getText()), L"'\x7F'");
    EXPECT_EQ(toWString(SimpleTerminal(here, std::int32_t(128)).getText()), L"character(128)");
    EXPECT_EQ(toWString(SimpleTerminal(here, Token::endOfFile).getText()), L"character(256)");
    EXPECT_EQ(toWString(SimpleTerminal(here, std::int32_t(31)).getText()), L"character(31)");
    EXPECT_EQ(toWString(ComplexTerminal(here, Token::otherChar, L'+').getText()), L"+");
    EXPECT_EQ(SimpleTerminal(here, Token::endOfFile).getCharacter(), wchar_t(256));
}

TEST_F(Lexing, FailuresBecomeErrorRecords) {
    _eHndl<XMLLex> lex(new XMLLex(env.get(), 4));
    bool ok = true;
    _eHndl<FileName> missing(new FileName(fromPlatformText(dir / "missing.xml"), env.get()));
    lex->openFile(missing, ok);
    EXPECT_FALSE(ok);
    ASSERT_EQ(lex->getErrors().size(), 1);
    EXPECT_EQ(toWString(lex->getErrors().at(0)->text(true)),
              L"missing.xml (0,0): Fatal error! Unable to open file '" + toWString(missing->fullPathText()) +
                  L"' for 'read' access.");
    _eHndl<Terminal> t;
    lex->nextToken(t);
    EXPECT_EQ(t->getToken(), Token::endOfFile);
    lex->closeFile();
    EXPECT_EQ(lex->getErrors().size(), 1);

    // A file that turns out shorter than its size: one read error, then the end. The stream
    // may hold a block already, so the file is cut well behind the first one.
    _eHndl<XMLLex> shrunk = open(std::string(100000, 'a'));
    ASSERT_EQ(truncate((dir / "in.xml").c_str(), 10000), 0);
    int letters = 0;
    for (shrunk->nextToken(t); t->getToken() == 'a'; shrunk->nextToken(t)) ++letters;
    EXPECT_EQ(letters, 10000);
    EXPECT_EQ(t->getToken(), Token::endOfFile);
    shrunk->nextToken(t);
    EXPECT_EQ(t->getToken(), Token::endOfFile);
    ASSERT_EQ(shrunk->getErrors().size(), 1);
    EXPECT_EQ(shrunk->getErrors().at(0)->getKind(), XMLErrorType::fileRead);
    EXPECT_EQ(shrunk->getErrors().at(0)->getLocation()->getColumn(), 10001);
    shrunk->closeFile();
    EXPECT_EQ(shrunk->getErrors().size(), 1);
}
