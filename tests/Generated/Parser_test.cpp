// The LR driver: the search in a row, the actions, and the recovery machinery, on a small
// grammar of the tests' own.
#include <gtest/gtest.h>

#include <cstdio>
#include <utility>
#include <vector>

#include "Generated/XMLParser.h"
#include "support/TempDir.h"
#include "support/TestModule.h"

extern const ParseTableData bracketParseTables;

namespace {

// The entry of `symbol` in row `state`, by a walk along the row: what the packed tables must give.
ActionTableEntry searchRow(const ActionTable& table, std::int32_t symbol, std::int32_t state) {
    const _eSeq<ActionTableEntry>& row = table.get(state);
    for (int i = 0; i < row.size(); ++i)
        if (row.get(i).symbol == symbol) return row.get(i);
    return {0, ActionName::error, 0};
}

// A parser that logs its semantic actions with their locations.
class BracketParser : public _eClass<BracketParser, Parser> {
public:
    static constexpr _aTypeSlot _aType{&testModule, 6};
    using _eClass::_eClass;

    bool equalFields(const BracketParser& other) const { return Parser::equalFields(other); }
    ActionTableEntry terminalAction(std::int32_t state, std::int32_t token) const override {
        return direct().terminal.find(state, token);
    }
    ActionTableEntry nonTerminalAction(std::int32_t state, std::int32_t n) const override {
        return direct().nonTerminal.find(state, n);
    }
    ReduceTableEntry reduction(std::int32_t p) const override { return tables().reductions.at(p); }
    void reduceAction(std::int32_t action) override {
        if (action != 0) log.push_back({action, getReducePosition().column});
    }
    RecoveryTable recoveryTable() const override { return tables().recovery; }

    static const ParseTables& tables() {
        static const ParseTables built = ParseTables::build(bracketParseTables);
        return built;
    }
    static const DirectTables& direct() {
        static const DirectTables tables(bracketParseTables);
        return tables;
    }

    std::vector<std::pair<int, int>> log;  // semantic action, column of its location
};

_eHndl<Terminal> token(std::int32_t code, int column) {
    _eHndl<Location> at(new Location());
    at->nextLine();
    for (int i = 1; i < column; ++i) at->nextColumn();
    return _eHndl<Terminal>(new SimpleTerminal(at, code));
}

// Offers each character, then the end, until the parser has finished.
template <class P>
void feed(P& parser, const std::string& text) {
    int column = 1;
    for (char c : text) {
        if (parser.isFinished()) return;
        parser.offerToken(token(static_cast<unsigned char>(c), column++));
    }
    while (!parser.isFinished()) parser.offerToken(token(Token::endOfFile, column++));
}

std::vector<std::wstring> texts(const XMLErrors& errors) {
    std::vector<std::wstring> out;
    for (int i = 0; i < errors.size(); ++i) out.push_back(toWString(errors.at(i)->text(true)));
    return out;
}

using Log = std::vector<std::pair<int, int>>;

// The bracket grammar with one action of its tables replaced, to reach what correct tables never do.
class RiggedParser : public BracketParser {
public:
    RiggedParser(ActionTableEntry terminalOverride, ActionTableEntry nonTerminalOverride)
        : BracketParser(ParseControl::shared(), 0), terminalOverride(terminalOverride),
          nonTerminalOverride(nonTerminalOverride) {}
    ActionTableEntry terminalAction(std::int32_t state, std::int32_t token) const override {
        return token == terminalOverride.symbol ? terminalOverride : BracketParser::terminalAction(state, token);
    }
    ActionTableEntry nonTerminalAction(std::int32_t state, std::int32_t n) const override {
        return n == nonTerminalOverride.symbol ? nonTerminalOverride : BracketParser::nonTerminalAction(state, n);
    }

private:
    ActionTableEntry terminalOverride, nonTerminalOverride;
};

}  // namespace

// Every row of both grammars, every symbol and a few beyond: the packed rows overlap, so an
// entry of one row must never answer for another.
TEST(ParserSearch, PackedTablesAnswerAsTheRowsDo) {
    const std::pair<const ParseTables*, const DirectTables*> grammars[] = {
        {&XMLParser::tables(), &XMLParser::directTables()}, {&BracketParser::tables(), &BracketParser::direct()}};
    for (const auto& [tables, direct] : grammars) {
        for (int state = -1; state <= tables->terminal.size(); ++state) {
            for (int symbol = -2; symbol < 300; ++symbol) {
                ActionTableEntry expected = state < 0 || state == tables->terminal.size()
                                                ? ActionTableEntry{0, ActionName::error, 0}
                                                : searchRow(tables->terminal, symbol, state);
                ASSERT_EQ(direct->terminal.find(state, symbol), expected) << state << " " << symbol;
                if (state >= 0 && state < tables->nonTerminal.size()) {
                    ASSERT_EQ(direct->nonTerminal.find(state, symbol), searchRow(tables->nonTerminal, symbol, state))
                        << state << " " << symbol;
                }
            }
        }
        for (int p = 0; p < tables->reductions.size(); ++p) EXPECT_TRUE(direct->reductions[p] == tables->reductions.get(p));
    }
}

TEST(ParserRecovery, ErrorProductionsAndSkippedBrackets) {
    BracketParser good(ParseControl::shared(), 0);
    feed(good, "a;(a;);b;bc;");
    EXPECT_FALSE(good.getResult().isNull());
    EXPECT_TRUE(good.getErrors().isEmpty());
    // The empty Opt takes the location of the token behind it: ";" in column 11.
    EXPECT_EQ(good.log, (Log{{1, 1}, {1, 4}, {2, 3}, {4, 8}, {4, 10}}));

    BracketParser bad(ParseControl::shared(), 0);
    feed(bad, "a;x;a;");
    EXPECT_FALSE(bad.getResult().isNull());
    EXPECT_EQ(texts(bad.getErrors()), std::vector<std::wstring>{L"<no file>: Fatal error! Syntax error at ''x''."});
    EXPECT_EQ(bad.log, (Log{{1, 1}, {3, 3}, {1, 5}}));

    // While recovering, a bracket is passed over whole, nested ones too.
    BracketParser brackets(ParseControl::shared(), 0);
    feed(brackets, "x((a;);a;)b;a;");
    EXPECT_FALSE(brackets.getResult().isNull());
    EXPECT_EQ(brackets.getErrors().size(), 1);
    EXPECT_EQ(brackets.log, (Log{{3, 1}, {1, 13}}));  // "b" went while still recovering

    // The end of the input while recovering ends the parse without a result.
    BracketParser cut(ParseControl::shared(), 0);
    feed(cut, "a;x(a;");
    EXPECT_TRUE(cut.isFinished());
    EXPECT_TRUE(cut.getResult().isNull());
    EXPECT_EQ(cut.getErrors().size(), 1);
}

TEST(ParserRecovery, ActionsThatCorrectTablesNeverHold) {
    const ActionTableEntry none{-1, ActionName::error, 0};
    RiggedParser haltOnA({'a', ActionName::halt, 0}, none);
    EXPECT_THROW(haltOnA.offerToken(token('a', 1)), _xNoChoice);

    // Item, nonterminal 2, has no transition after "a;": the reduction reports it and goes on.
    RiggedParser noItem(none, {2, ActionName::error, 0});
    feed(noItem, "a;");
    ASSERT_GE(noItem.getErrors().size(), 1);
    EXPECT_EQ(texts(noItem.getErrors())[0], L"<no file>: Fatal error! Illegal nonterminal action 'Error' in state '0'.");
}

TEST(ParseTableGenerator, RegeneratesTheCommittedTablesByteForByte) {
    std::string dir = testing::TempDir();
    std::string out = dir + "/GrcParse.cpp";
    std::string command = std::string(LALRGEN_PATH) + " " + XML_GRAMMAR_PATH + " " + out + " xmlParseTables";
    FILE* pipe = popen(command.c_str(), "r");
    ASSERT_NE(pipe, nullptr);
    std::string statistics;
    char buffer[512];
    while (std::fgets(buffer, sizeof buffer, pipe) != nullptr) statistics += buffer;
    ASSERT_EQ(pclose(pipe), 0);
    EXPECT_EQ(readFile(out), readFile(XML_TABLES_PATH));
    std::string header = dir + "/GrcParse.h";
    std::string committedHeader = std::string(XML_TABLES_PATH);
    committedHeader.replace(committedHeader.size() - 3, 3, "h");
    EXPECT_EQ(readFile(header), readFile(committedHeader));
    std::remove(out.c_str());
    std::remove(header.c_str());
    EXPECT_NE(statistics.find("conflicts: 0"), std::string::npos) << statistics;
}
