// lalrgen: builds the LALR(1) tables of a grammar file and writes them as C++ constants.
//
//   lalrgen GRAMMAR OUTPUT.cpp TABLES-NAME [--report]
//
// Beside OUTPUT.cpp it writes OUTPUT.h: the grammar's token codes and named semantic actions
// as constants, so that the lexer and the reductions spell them as the grammar does.
//
// The steps: read the grammar; nullable and first sets; the LR(0) states; LALR(1) look-aheads
// by spontaneous generation and propagation; the actions of each state, failing on any
// conflict; then three reductions of the automaton (chain folding, shift merged with reduce,
// skip for value-less left-recursive lists); renumbering; statistics; emission. The output
// holds no time stamp and is rewritten only when its content changes.

#include <algorithm>
#include <bitset>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr int terminalCount = 512;    // token codes that a grammar may use, with the end marker
constexpr int endMarker = terminalCount - 1;  // the look-ahead after the start symbol; no token has it
constexpr int nonTerminalBase = 1000; // symbol numbers of nonterminals start here
using Lookahead = std::bitset<terminalCount + 1>;  // the last bit stands for "propagate"
constexpr int propagateBit = terminalCount;

enum Action { actError = 0, actShift = 1, actReduce = 2, actShRed = 3, actHalt = 4, actSkip = 5 };

struct Production {
    int row;                 // number in the reduce table
    int lhs;                 // nonterminal index
    std::vector<int> rhs;    // symbols
    int action = 0;          // semantic action
    bool placeholder = false;
    std::string text;        // the line as written, for comments
};

struct Grammar {
    std::vector<std::string> nonTerminals;
    std::map<std::string, int> nonTerminalIndex;
    std::map<std::string, int> tokens;
    std::vector<std::pair<std::string, int>> declaredTokens;   // in the order of the grammar
    std::map<std::string, int> actions;                        // named semantic actions
    std::vector<std::pair<std::string, int>> declaredActions;  // in the order of the grammar
    std::vector<Production> productions;  // by row; the augmented production last
    std::vector<std::vector<int>> byLhs;  // productions of each nonterminal, placeholders left out
    std::vector<std::pair<int, std::vector<int>>> recovery;  // opening token, closing tokens
    int start = -1;
    int augmented = -1;  // index of the production S' : start
};

[[noreturn]] void fail(const std::string& message) {
    std::cerr << "lalrgen: " << message << "\n";
    std::exit(1);
}

bool isNonTerminal(int symbol) { return symbol >= nonTerminalBase; }

// Splits a line into words; quoted words keep their quotes and may hold escaped quotes.
std::vector<std::string> words(const std::string& line) {
    std::vector<std::string> out;
    std::size_t i = 0;
    while (i < line.size()) {
        if (line[i] == ' ' || line[i] == '\t') {
            ++i;
            continue;
        }
        std::size_t j = i;
        if (line[i] == '\'' || line[i] == '"') {
            char quote = line[i];
            for (j = i + 1; j < line.size() && line[j] != quote; ++j)
                if (line[j] == '\\') ++j;
            ++j;
        } else {
            while (j < line.size() && line[j] != ' ' && line[j] != '\t') ++j;
        }
        out.push_back(line.substr(i, j - i));
        i = j;
    }
    return out;
}

std::string unescape(const std::string& quoted) {
    std::string out;
    for (std::size_t i = 1; i + 1 < quoted.size(); ++i) {
        if (quoted[i] == '\\') ++i;
        out.push_back(quoted[i]);
    }
    return out;
}

int nonTerminal(Grammar& g, const std::string& name) {
    auto found = g.nonTerminalIndex.find(name);
    if (found != g.nonTerminalIndex.end()) return found->second;
    int index = int(g.nonTerminals.size());
    g.nonTerminals.push_back(name);
    g.nonTerminalIndex[name] = index;
    return index;
}

// The symbols that one word of a right-hand side stands for.
std::vector<int> symbolsOf(Grammar& g, const std::string& word, std::vector<std::string>& later) {
    if (word[0] == '\'') {
        std::string c = unescape(word);
        if (c.size() != 1) fail("a quoted token must be one character: " + word);
        return {static_cast<unsigned char>(c[0])};
    }
    if (word[0] == '"') {
        std::vector<int> out;
        for (char c : unescape(word)) out.push_back(static_cast<unsigned char>(c));
        return out;
    }
    auto token = g.tokens.find(word);
    if (token != g.tokens.end()) return {token->second};
    later.push_back(word);
    return {-1};  // a nonterminal, numbered once all left sides are known
}

// Reads the grammar. Nonterminals are numbered in the order in which they first stand on a
// left side, row by row.
Grammar readGrammar(const std::string& path) {
    std::ifstream in(path);
    if (!in) fail("cannot read " + path);
    Grammar g;
    std::string line, startName;
    std::vector<std::vector<std::string>> pendingNames;
    while (std::getline(in, line)) {
        std::vector<std::string> w = words(line);
        if (w.empty() || w[0][0] == '#') continue;
        if (w[0] == "%token") {
            int code = std::stoi(w.at(2));
            if (code < 0 || code >= endMarker) fail("token code out of range: " + line);
            g.tokens[w[1]] = code;
            g.declaredTokens.push_back({w[1], code});
            continue;
        }
        if (w[0] == "%action") {
            g.actions[w[1]] = std::stoi(w.at(2));
            g.declaredActions.push_back({w[1], std::stoi(w[2])});
            continue;
        }
        if (w[0] == "%start") {
            startName = w[1];
            continue;
        }
        if (w[0] == "%recover") {
            std::vector<std::string> later;
            int opening = symbolsOf(g, w[1], later)[0];
            std::vector<int> closers;
            for (std::size_t i = 2; i < w.size(); ++i) closers.push_back(symbolsOf(g, w[i], later)[0]);
            if (!later.empty()) fail("recovery pairs take tokens only");
            g.recovery.push_back({opening, closers});
            continue;
        }
        if (w.size() < 4 || w[2] != ":") fail("bad line: " + line);
        Production p;
        p.row = std::stoi(w[0]);
        if (p.row != int(g.productions.size())) fail("rows must run from 0 without gaps: " + line);
        p.lhs = nonTerminal(g, w[1]);
        p.text = line;
        std::vector<std::string> later;
        for (std::size_t i = 3; i < w.size(); ++i) {
            if (w[i] == "~") {
                p.placeholder = true;
            } else if (w[i] == "empty") {
            } else if (w[i] == "=>") {
                auto named = g.actions.find(w.at(i + 1));
                if (named == g.actions.end()) fail("no %action " + w[i + 1] + ": " + line);
                p.action = named->second;
                break;
            } else {
                for (int s : symbolsOf(g, w[i], later)) p.rhs.push_back(s);
            }
        }
        pendingNames.push_back(later);
        g.productions.push_back(p);
    }
    for (std::size_t i = 0; i < g.productions.size(); ++i) {
        std::size_t next = 0;
        for (int& s : g.productions[i].rhs) {
            if (s != -1) continue;
            const std::string& name = pendingNames[i][next++];
            auto found = g.nonTerminalIndex.find(name);
            if (found == g.nonTerminalIndex.end()) fail("no production for " + name);
            s = nonTerminalBase + found->second;
        }
    }
    if (startName.empty()) fail("no %start");
    g.start = g.nonTerminalIndex.at(startName);
    int startPrime = nonTerminal(g, "$accept");
    Production accept;
    accept.row = -1;
    accept.lhs = startPrime;
    accept.rhs = {nonTerminalBase + g.start};
    g.augmented = int(g.productions.size());
    g.productions.push_back(accept);
    g.byLhs.assign(g.nonTerminals.size(), {});
    for (std::size_t i = 0; i < g.productions.size(); ++i)
        if (!g.productions[i].placeholder) g.byLhs[std::size_t(g.productions[i].lhs)].push_back(int(i));
    return g;
}

struct FirstSets {
    std::vector<bool> nullable;
    std::vector<Lookahead> first;
};

// Nullable nonterminals and first sets, to a fixed point.
FirstSets firstSets(const Grammar& g) {
    FirstSets f;
    f.nullable.assign(g.nonTerminals.size(), false);
    f.first.assign(g.nonTerminals.size(), Lookahead());
    for (bool changed = true; changed;) {
        changed = false;
        for (const Production& p : g.productions) {
            if (p.placeholder) continue;
            auto lhs = std::size_t(p.lhs);
            bool allNullable = true;
            for (int s : p.rhs) {
                if (!isNonTerminal(s)) {
                    if (!f.first[lhs].test(std::size_t(s))) f.first[lhs].set(std::size_t(s)), changed = true;
                    allNullable = false;
                    break;
                }
                auto n = std::size_t(s - nonTerminalBase);
                Lookahead merged = f.first[lhs] | f.first[n];
                if (merged != f.first[lhs]) f.first[lhs] = merged, changed = true;
                if (!f.nullable[n]) {
                    allNullable = false;
                    break;
                }
            }
            if (allNullable && !f.nullable[lhs]) f.nullable[lhs] = true, changed = true;
        }
    }
    return f;
}

using Item = std::pair<int, int>;  // production, position of the dot

struct State {
    std::vector<Item> kernel;
    std::map<int, int> transitions;  // symbol to state
    int accessing = -1;              // the symbol that leads here
};

struct Automaton {
    std::vector<State> states;
    std::vector<std::vector<Lookahead>> lookaheads;  // per state, per kernel item
};

int symbolAfterDot(const Grammar& g, const Item& item) {
    const Production& p = g.productions[std::size_t(item.first)];
    return item.second < int(p.rhs.size()) ? p.rhs[std::size_t(item.second)] : -1;
}

std::vector<Item> closure(const Grammar& g, const std::vector<Item>& kernel) {
    std::vector<Item> items = kernel;
    std::vector<bool> added(g.nonTerminals.size(), false);
    for (std::size_t i = 0; i < items.size(); ++i) {
        int s = symbolAfterDot(g, items[i]);
        if (s < 0 || !isNonTerminal(s) || added[std::size_t(s - nonTerminalBase)]) continue;
        added[std::size_t(s - nonTerminalBase)] = true;
        for (int p : g.byLhs[std::size_t(s - nonTerminalBase)]) items.push_back({p, 0});
    }
    return items;
}

// The LR(0) states, numbered in the order in which they are found, breadth first.
Automaton lr0(const Grammar& g) {
    Automaton a;
    std::map<std::vector<Item>, int> known;
    a.states.push_back({{{g.augmented, 0}}, {}, -1});
    known[a.states[0].kernel] = 0;
    for (std::size_t s = 0; s < a.states.size(); ++s) {
        std::map<int, std::vector<Item>> moves;
        for (const Item& item : closure(g, a.states[s].kernel)) {
            int x = symbolAfterDot(g, item);
            if (x >= 0) moves[x].push_back({item.first, item.second + 1});
        }
        for (auto& [symbol, kernel] : moves) {
            std::sort(kernel.begin(), kernel.end());
            auto found = known.find(kernel);
            int target;
            if (found == known.end()) {
                target = int(a.states.size());
                known[kernel] = target;
                a.states.push_back({kernel, {}, symbol});
            } else {
                target = found->second;
            }
            a.states[s].transitions[symbol] = target;
        }
    }
    return a;
}

// LR(1) closure of items with their look-aheads; the result maps each item to its set.
std::map<Item, Lookahead> closure1(const Grammar& g, const FirstSets& f, const std::vector<std::pair<Item, Lookahead>>& seed) {
    std::map<Item, Lookahead> la;
    std::vector<Item> work;
    for (const auto& [item, set] : seed) {
        la[item] |= set;
        work.push_back(item);
    }
    while (!work.empty()) {
        Item item = work.back();
        work.pop_back();
        const Production& p = g.productions[std::size_t(item.first)];
        if (item.second >= int(p.rhs.size()) || !isNonTerminal(p.rhs[std::size_t(item.second)])) continue;
        Lookahead follow;
        bool restNullable = true;
        for (std::size_t k = std::size_t(item.second) + 1; k < p.rhs.size() && restNullable; ++k) {
            int s = p.rhs[k];
            if (!isNonTerminal(s)) {
                follow.set(std::size_t(s));
                restNullable = false;
            } else {
                follow |= f.first[std::size_t(s - nonTerminalBase)];
                restNullable = f.nullable[std::size_t(s - nonTerminalBase)];
            }
        }
        if (restNullable) follow |= la[item];
        for (int q : g.byLhs[std::size_t(p.rhs[std::size_t(item.second)] - nonTerminalBase)]) {
            Lookahead& target = la[{q, 0}];
            Lookahead merged = target | follow;
            if (merged != target) {
                target = merged;
                work.push_back({q, 0});
            }
        }
    }
    return la;
}

// Look-aheads of the kernel items: generated spontaneously, then propagated to a fixed point.
void lalr(const Grammar& g, const FirstSets& f, Automaton& a) {
    a.lookaheads.assign(a.states.size(), {});
    for (std::size_t s = 0; s < a.states.size(); ++s) a.lookaheads[s].assign(a.states[s].kernel.size(), Lookahead());
    a.lookaheads[0][0].set(endMarker);
    struct Link {
        int state, index;
    };
    std::vector<std::vector<std::vector<Link>>> links(a.states.size());
    auto kernelIndex = [&](int state, const Item& item) {
        const auto& k = a.states[std::size_t(state)].kernel;
        return int(std::lower_bound(k.begin(), k.end(), item) - k.begin());
    };
    for (std::size_t s = 0; s < a.states.size(); ++s) {
        links[s].resize(a.states[s].kernel.size());
        for (std::size_t k = 0; k < a.states[s].kernel.size(); ++k) {
            Lookahead probe;
            probe.set(propagateBit);
            for (const auto& [item, set] : closure1(g, f, {{a.states[s].kernel[k], probe}})) {
                int x = symbolAfterDot(g, item);
                if (x < 0) continue;
                int target = a.states[s].transitions.at(x);
                int index = kernelIndex(target, {item.first, item.second + 1});
                Lookahead spontaneous = set;
                spontaneous.reset(propagateBit);
                a.lookaheads[std::size_t(target)][std::size_t(index)] |= spontaneous;
                if (set.test(propagateBit)) links[s][k].push_back({target, index});
            }
        }
    }
    for (bool changed = true; changed;) {
        changed = false;
        for (std::size_t s = 0; s < a.states.size(); ++s)
            for (std::size_t k = 0; k < links[s].size(); ++k)
                for (const Link& l : links[s][k]) {
                    Lookahead& target = a.lookaheads[std::size_t(l.state)][std::size_t(l.index)];
                    Lookahead merged = target | a.lookaheads[s][k];
                    if (merged != target) target = merged, changed = true;
                }
    }
}

struct Entry {
    int symbol, action, parameter;
};

struct Tables {
    std::vector<std::vector<Entry>> terminal, nonTerminal;
    int plainStates = 0;
    int conflicts = 0;
};

std::string symbolName(const Grammar& g, int s) {
    if (isNonTerminal(s)) return g.nonTerminals[std::size_t(s - nonTerminalBase)];
    for (const auto& [name, code] : g.tokens)
        if (code == s) return name;
    if (s >= 32 && s < 127) return std::string("'") + char(s) + "'";
    return std::to_string(s);
}

// The actions of the plain automaton, then the reductions, then the tables of the states that remain.
Tables buildTables(const Grammar& g, const FirstSets& f, const Automaton& a, std::ostream& report) {
    Tables t;
    t.plainStates = int(a.states.size());
    std::size_t n = a.states.size();
    // A state holding one completed item and nothing else has no row of its own.
    std::vector<int> single(n, -1);
    int acceptState = -1;
    for (std::size_t s = 0; s < n; ++s) {
        const auto& k = a.states[s].kernel;
        if (k.size() != 1) continue;
        const Production& p = g.productions[std::size_t(k[0].first)];
        if (k[0].second != int(p.rhs.size())) continue;
        if (k[0].first == g.augmented)
            acceptState = int(s);
        else
            single[s] = k[0].first;
    }

    // A character class: every production has one symbol and no action. Only classes fold.
    std::vector<bool> isClass(g.nonTerminals.size(), true);
    for (const Production& p : g.productions)
        if (!p.placeholder && (p.rhs.size() != 1 || p.action != 0)) isClass[std::size_t(p.lhs)] = false;

    // A list carries no value worth keeping when no production has an action and none takes a
    // character class alone (a list of characters may spell a name or a number).
    std::vector<bool> valueless(g.nonTerminals.size(), true);
    for (const Production& p : g.productions) {
        bool ofClass = p.rhs.size() == 1 && isNonTerminal(p.rhs[0]) && isClass[std::size_t(p.rhs[0] - nonTerminalBase)];
        if (p.action != 0 || ofClass) valueless[std::size_t(p.lhs)] = false;
    }

    std::vector<int> number(n, -1);
    int kept = 0;
    for (std::size_t s = 0; s < n; ++s)
        if (single[s] < 0 && int(s) != acceptState) number[s] = kept++;

    // What the transition on `symbol` from `state` does once chains are folded.
    auto resolve = [&](int state, int symbol) {
        const int original = symbol;
        for (int depth = 0;; ++depth) {
            if (depth > 100) fail("chain folding does not end");
            int target = a.states[std::size_t(state)].transitions.at(symbol);
            if (target == acceptState) return Entry{original, actHalt, 0};
            int p = single[std::size_t(target)];
            if (p < 0) return Entry{original, actShift, number[std::size_t(target)]};
            const Production& prod = g.productions[std::size_t(p)];
            if (isClass[std::size_t(prod.lhs)]) {
                symbol = nonTerminalBase + prod.lhs;
                continue;
            }
            bool selfList = prod.rhs.size() == 2 && prod.rhs[0] == nonTerminalBase + prod.lhs && prod.action == 0 &&
                            valueless[std::size_t(prod.lhs)] &&
                            a.states[std::size_t(state)].accessing == nonTerminalBase + prod.lhs;
            return Entry{original, selfList ? actSkip : actShRed, prod.row};
        }
    };

    for (std::size_t s = 0; s < n; ++s) {
        if (number[s] < 0) continue;
        report << "state " << number[s] << ":";
        for (const Item& item : a.states[s].kernel) {
            const Production& p = g.productions[std::size_t(item.first)];
            report << "  [" << p.row << " " << g.nonTerminals[std::size_t(p.lhs)] << " :";
            for (std::size_t k = 0; k <= p.rhs.size(); ++k) {
                if (int(k) == item.second) report << " .";
                if (k < p.rhs.size()) report << " " << symbolName(g, p.rhs[k]);
            }
            report << "]";
        }
        report << "\n";
    }
    t.terminal.resize(std::size_t(kept));
    t.nonTerminal.resize(std::size_t(kept));
    for (std::size_t s = 0; s < n; ++s) {
        if (number[s] < 0) continue;
        std::vector<std::pair<Item, Lookahead>> seed;
        for (std::size_t k = 0; k < a.states[s].kernel.size(); ++k)
            seed.push_back({a.states[s].kernel[k], a.lookaheads[s][k]});
        std::map<int, std::vector<int>> reductions;  // token to productions
        for (const auto& [item, set] : closure1(g, f, seed)) {
            const Production& p = g.productions[std::size_t(item.first)];
            if (item.second != int(p.rhs.size())) continue;
            for (int tok = 0; tok < terminalCount; ++tok)
                if (set.test(std::size_t(tok))) reductions[tok].push_back(item.first);
        }
        std::map<int, Entry> row;
        for (const auto& [tok, prods] : reductions) {
            bool shifts = a.states[s].transitions.count(tok) != 0;
            if (prods.size() > 1 || shifts) {
                ++t.conflicts;
                report << "conflict in state " << s << " on " << symbolName(g, tok) << ":";
                if (shifts) report << " shift";
                for (int p : prods) report << " reduce " << g.productions[std::size_t(p)].row;
                report << "\n";
            }
            if (tok != endMarker) row[tok] = Entry{tok, actReduce, g.productions[std::size_t(prods[0])].row};
        }
        std::vector<Entry>& terminalRow = t.terminal[std::size_t(number[s])];
        std::vector<Entry>& nonTerminalRow = t.nonTerminal[std::size_t(number[s])];
        for (const auto& [symbol, target] : a.states[s].transitions) {
            (void)target;
            Entry e = resolve(int(s), symbol);
            if (isNonTerminal(symbol)) {
                nonTerminalRow.push_back({symbol - nonTerminalBase, e.action, e.parameter});
            } else if (row.count(symbol) == 0) {
                row[symbol] = e;
            }
        }
        for (const auto& [tok, e] : row) terminalRow.push_back(e);
        std::sort(nonTerminalRow.begin(), nonTerminalRow.end(),
                  [](const Entry& x, const Entry& y) { return x.symbol < y.symbol; });
    }
    return t;
}

void printStatistics(const Grammar& g, const Tables& t, std::ostream& out) {
    auto count = [](const std::vector<std::vector<Entry>>& table, int action) {
        int c = 0;
        for (const auto& row : table)
            for (const Entry& e : row) c += e.action == action;
        return c;
    };
    auto entries = [](const std::vector<std::vector<Entry>>& table) {
        std::size_t c = 0, longest = 0, empty = 0;
        for (const auto& row : table) c += row.size(), longest = std::max(longest, row.size()), empty += row.empty();
        return std::vector<std::size_t>{c, longest, empty};
    };
    auto distinct = [](const std::vector<std::vector<Entry>>& table) {
        std::set<std::vector<std::tuple<int, int, int>>> rows;
        for (const auto& row : table) {
            std::vector<std::tuple<int, int, int>> r;
            for (const Entry& e : row) r.emplace_back(e.symbol, e.action, e.parameter);
            rows.insert(r);
        }
        return rows.size();
    };
    std::set<int> tokens;
    for (const auto& row : t.terminal)
        for (const Entry& e : row) tokens.insert(e.symbol);
    std::set<int> used;
    for (const auto* table : {&t.terminal, &t.nonTerminal})
        for (const auto& row : *table)
            for (const Entry& e : row)
                if (e.action == actReduce || e.action == actShRed || e.action == actSkip) used.insert(e.parameter);
    auto te = entries(t.terminal);
    auto ne = entries(t.nonTerminal);
    out << "productions " << g.productions.size() - 1 << ", nonterminals " << g.nonTerminals.size() - 1
        << ", states " << t.plainStates << " before the reductions, " << t.terminal.size() << " after\n"
        << "terminal table: " << te[0] << " entries over " << tokens.size() << " token codes ("
        << count(t.terminal, actShift) << " shift, " << count(t.terminal, actReduce) << " reduce, "
        << count(t.terminal, actShRed) << " sh_red, " << count(t.terminal, actSkip) << " skip), longest row "
        << te[1] << ", " << distinct(t.terminal) << " distinct rows\n"
        << "nonterminal table: " << ne[0] << " entries (" << count(t.nonTerminal, actShift) << " shift, "
        << count(t.nonTerminal, actShRed) << " sh_red, " << count(t.nonTerminal, actSkip) << " skip, "
        << count(t.nonTerminal, actHalt) << " halt), " << ne[2] << " empty rows, longest " << ne[1] << ", "
        << distinct(t.nonTerminal) << " distinct rows\n"
        << "productions without an entry: " << (g.productions.size() - 1 - used.size()) << "\n"
        << "conflicts: " << t.conflicts << "\n";
}

const char* actionName(int action) {
    static const char* const names[] = {"ActionName::error", "ActionName::shift", "ActionName::reduce",
                                        "ActionName::sh_red", "ActionName::halt", "ActionName::skip"};
    return names[action];
}

// One block of rows: the entries of its states, then where each row starts.
void emitBlock(std::ostream& out, const std::string& prefix, const std::vector<std::vector<Entry>>& table,
               std::size_t from, std::size_t to, int block) {
    out << "const ActionTableEntry " << prefix << "Entries" << block << "[] = {\n";
    std::size_t total = 0;
    for (std::size_t s = from; s < to; ++s) {
        out << "    // state " << s << "\n";
        for (const Entry& e : table[s]) {
            out << "    {" << e.symbol << ", " << actionName(e.action) << ", " << e.parameter << "},\n";
            ++total;
        }
    }
    if (total == 0) out << "    {0, ActionName::error, 0},  // no entries\n";
    out << "};\n";
    out << "const std::int32_t " << prefix << "Starts" << block << "[] = {";
    std::size_t at = 0;
    for (std::size_t s = from; s <= to; ++s) {
        if ((s - from) % 16 == 0) out << "\n    ";
        out << at << ", ";
        if (s < to) at += table[s].size();
    }
    out << "\n};\n\n";
}

// A table packed for the parser's inner loop: the rows overlap where their entries don't. Row s
// keeps its entry for symbol k at base[s] + k, where check names s; every other slot of the row
// holds no entry. Each cell is the action in its three low bits and the parameter above them.
// The rows with the most entries are placed first, each at the lowest base where all its
// slots are free; the slots run on far enough that base + any symbol below the width is one.
struct Packed {
    std::vector<int> base;
    std::vector<int> check;  // the state of each slot; -1 where none
    std::vector<unsigned> cells;
    int width = 0;  // one more than the largest symbol of any entry
};

constexpr int actionBits = 3;
constexpr int parameterLimit = 1 << (16 - actionBits);
constexpr int noState = 0xFFFF;

Packed pack(const std::vector<std::vector<Entry>>& table) {
    Packed p;
    std::vector<std::vector<Entry>> rows(table.size());
    for (std::size_t s = 0; s < table.size(); ++s)
        for (const Entry& e : table[s]) {
            // Negative symbols are no byte and no nonterminal; an error is no entry.
            if (e.symbol < 0 || e.action == actError) continue;
            if (e.parameter < 0 || e.parameter >= parameterLimit) fail("a parameter beyond 13 bits");
            rows[s].push_back(e);
            p.width = std::max(p.width, e.symbol + 1);
        }
    if (table.size() >= std::size_t(noState)) fail("too many states to pack");
    std::vector<std::size_t> order(rows.size());
    for (std::size_t s = 0; s < order.size(); ++s) order[s] = s;
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return rows[a].size() > rows[b].size(); });
    p.base.assign(rows.size(), 0);
    for (std::size_t s : order) {
        if (rows[s].empty()) continue;
        auto fits = [&](int base) {
            for (const Entry& e : rows[s]) {
                std::size_t slot = std::size_t(base + e.symbol);
                if (slot < p.check.size() && p.check[slot] >= 0) return false;
            }
            return true;
        };
        int base = 0;
        while (!fits(base)) ++base;
        p.base[s] = base;
        for (const Entry& e : rows[s]) {
            std::size_t slot = std::size_t(base + e.symbol);
            if (slot >= p.check.size()) {
                p.check.resize(slot + 1, -1);
                p.cells.resize(slot + 1, 0);
            }
            p.check[slot] = int(s);
            p.cells[slot] = unsigned(e.action) | unsigned(e.parameter) << actionBits;
        }
    }
    std::size_t slots = 0;
    for (int base : p.base) slots = std::max(slots, std::size_t(base + p.width));
    p.check.resize(std::max(slots, std::size_t(1)), -1);
    p.cells.resize(p.check.size(), 0);
    return p;
}

// The packed form of one table, as constants named after `prefix`.
void emitPacked(std::ostream& out, const std::string& prefix, const Packed& p) {
    auto list = [&](const char* type, const char* what, std::size_t count, auto value) {
        out << "const " << type << " " << prefix << what << "[] = {";
        for (std::size_t i = 0; i < count; ++i) {
            if (i % 16 == 0) out << "\n    ";
            out << value(i) << ", ";
        }
        out << "\n};\n";
    };
    list("std::int32_t", "Base", std::max(p.base.size(), std::size_t(1)),
         [&](std::size_t i) { return i < p.base.size() ? p.base[i] : 0; });
    list("std::uint16_t", "Check", p.check.size(), [&](std::size_t i) { return p.check[i] < 0 ? noState : p.check[i]; });
    list("std::uint16_t", "Cells", p.cells.size(), [&](std::size_t i) { return p.cells[i]; });
    out << "\n";
}

std::string emit(const Grammar& g, const Tables& t, const std::string& grammarPath, const std::string& name) {
    std::ostringstream out;
    std::string base = grammarPath.substr(grammarPath.rfind('/') + 1);
    out << "// Parse tables generated by tools/lalrgen.cpp from " << base << ". Do not edit.\n"
        << "// The build regenerates this file when the grammar or the generator changes:\n"
        << "//   lalrgen tools/" << base << " <this file> " << name << "\n\n"
        << "#include \"Generated/ParseTableData.h\"\n\n"
        << "namespace {\n\n";
    std::size_t states = t.terminal.size();
    std::vector<std::pair<std::size_t, std::size_t>> blocks;
    for (std::size_t from = 0; from < states; from += 100) blocks.push_back({from, std::min(states, from + 100)});
    for (std::size_t b = 0; b < blocks.size(); ++b) {
        emitBlock(out, "terminal", t.terminal, blocks[b].first, blocks[b].second, int(b));
        emitBlock(out, "nonTerminal", t.nonTerminal, blocks[b].first, blocks[b].second, int(b));
    }
    out << "const ParseTableBlock terminalBlocks[] = {\n";
    for (std::size_t b = 0; b < blocks.size(); ++b)
        out << "    {terminalEntries" << b << ", terminalStarts" << b << ", " << blocks[b].second - blocks[b].first << "},\n";
    out << "};\nconst ParseTableBlock nonTerminalBlocks[] = {\n";
    for (std::size_t b = 0; b < blocks.size(); ++b)
        out << "    {nonTerminalEntries" << b << ", nonTerminalStarts" << b << ", " << blocks[b].second - blocks[b].first
            << "},\n";
    out << "};\n\n";
    Packed terminal = pack(t.terminal), nonTerminal = pack(t.nonTerminal);
    emitPacked(out, "packedTerminal", terminal);
    emitPacked(out, "packedNonTerminal", nonTerminal);
    out << "// nonterminal, length, semantic action\nconst ReduceTableEntry reductions[] = {\n";
    for (std::size_t i = 0; i + 1 < g.productions.size(); ++i) {
        const Production& p = g.productions[i];
        out << "    {" << p.lhs << ", " << p.rhs.size() << ", " << p.action << "},  // " << p.text << "\n";
    }
    out << "};\n\n";
    for (std::size_t r = 0; r < g.recovery.size(); ++r) {
        out << "const std::int32_t closers" << r << "[] = {";
        for (int c : g.recovery[r].second) out << c << ", ";
        out << "};\n";
    }
    out << "const RecoveryPairData recovery[] = {\n";
    for (std::size_t r = 0; r < g.recovery.size(); ++r)
        out << "    {" << g.recovery[r].first << ", closers" << r << ", " << g.recovery[r].second.size() << "},\n";
    if (g.recovery.empty()) out << "    {0, nullptr, 0},  // none\n";
    out << "};\n\nconst char* const nonTerminalNames[] = {\n";
    for (std::size_t i = 0; i + 1 < g.nonTerminals.size(); ++i) out << "    \"" << g.nonTerminals[i] << "\",\n";
    out << "};\n\n}  // namespace\n\n"
        << "extern const ParseTableData " << name << ";\n"
        << "const ParseTableData " << name << " = {\n"
        << "    terminalBlocks, nonTerminalBlocks, " << blocks.size() << ",\n"
        << "    reductions, " << g.productions.size() - 1 << ",\n"
        << "    recovery, " << g.recovery.size() << ",\n"
        << "    nonTerminalNames, " << g.nonTerminals.size() - 1 << ",\n"
        << "    {packedTerminalBase, packedTerminalCheck, packedTerminalCells, " << states << ", " << terminal.width
        << "},\n"
        << "    {packedNonTerminalBase, packedNonTerminalCheck, packedNonTerminalCells, " << states << ", "
        << nonTerminal.width << "},\n"
        << "};\n";
    return out.str();
}

// The constants of the grammar: its token codes, named as the grammar names them less the
// prefix "tok", and its semantic actions.
std::string emitHeader(const Grammar& g, const std::string& grammarPath, const std::string& name) {
    std::string base = grammarPath.substr(grammarPath.find_last_of('/') + 1);
    std::ostringstream out;
    out << "// Constants generated by tools/lalrgen.cpp from " << base << ", with the tables " << name
        << ". Do not edit.\n"
        << "#pragma once\n\n#include <cstdint>\n\n"
        << "// Token codes above the 256 characters.\nnamespace Token {\n";
    for (const auto& [token, code] : g.declaredTokens) {
        std::string constant = token.rfind("tok", 0) == 0 ? token.substr(3) : token;
        constant[0] = char(std::tolower(static_cast<unsigned char>(constant[0])));
        out << "inline constexpr std::int32_t " << constant << " = " << code << ";\n";
    }
    out << "}  // namespace Token\n\n// The semantic actions that reductions run.\nnamespace SemanticAction {\n";
    for (const auto& [action, number] : g.declaredActions)
        out << "inline constexpr std::int32_t " << action << " = " << number << ";\n";
    out << "}  // namespace SemanticAction\n";
    return out.str();
}

// Writes `text` to `path` unless the file already holds it.
void writeIfChanged(const std::string& path, const std::string& text) {
    std::ifstream old(path, std::ios::binary);
    std::string before((std::istreambuf_iterator<char>(old)), std::istreambuf_iterator<char>());
    if (before == text) return;
    std::ofstream out(path, std::ios::binary);
    out << text;
    if (!out) fail("cannot write " + path);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 4) fail("usage: lalrgen GRAMMAR OUTPUT.cpp TABLES-NAME [--report]");
    std::string grammarPath = argv[1], outputPath = argv[2], name = argv[3];
    bool verbose = argc > 4 && std::string(argv[4]) == "--report";
    Grammar g = readGrammar(grammarPath);          // read the grammar
    FirstSets f = firstSets(g);                     // nullable and first sets
    Automaton a = lr0(g);                           // the LR(0) states
    lalr(g, f, a);                                  // their LALR(1) look-aheads
    std::ostringstream report;
    Tables t = buildTables(g, f, a, report);        // actions, conflicts and reductions
    printStatistics(g, t, std::cout);               // what came out
    if (verbose || t.conflicts != 0) std::cerr << report.str();
    if (t.conflicts != 0) fail(std::to_string(t.conflicts) + " conflicts");
    writeIfChanged(outputPath, emit(g, t, grammarPath, name));  // the tables as constants
    std::string headerPath = outputPath.substr(0, outputPath.rfind('.')) + ".h";
    writeIfChanged(headerPath, emitHeader(g, grammarPath, name));  // token codes and actions
    return 0;
}
