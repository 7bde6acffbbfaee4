// `Parser`: the grammar-independent LR driver. It is pushed one token at a time; the grammar
// reaches it only through five operations that a derived class supplies, and three more for
// taking runs of bytes in one step.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "Generated/ParseTables.h"
#include "Generated/Pstack.h"
#include "Generated/XMLError.h"

class Parser : public _eAbstractClass<Parser, _eAny> {
public:
    static constexpr _aTypeSlot _aType{&_aModule10, 3};

    Parser(const _eHndl<ParseControl>& control, std::int32_t initialState);

    // Parsers have no equality: comparing two different ones raises.
    bool equalFields(const Parser& other) const;

    virtual ActionTableEntry terminalAction(std::int32_t state, std::int32_t token) const = 0;
    virtual ActionTableEntry nonTerminalAction(std::int32_t state, std::int32_t nonTerminal) const = 0;
    virtual ReduceTableEntry reduction(std::int32_t production) const = 0;
    virtual void reduceAction(std::int32_t semanticAction) = 0;
    virtual RecoveryTable recoveryTable() const = 0;

    // Runs every action that the token allows. Not to be called once `isFinished()`.
    void offerToken(const _eHndl<Terminal>& offered);

    // The bytes that would only loop where the parse stands: each would be shifted and folded
    // into the value on top of the stack by the same semantic action (or by none), leaving the
    // state and the depth of the stack as they were. A run of them is taken in one step.
    struct RunBytes {
        std::int32_t semanticAction = noAction;  // what each byte runs on the value on top
        bool member[256] = {};
    };
    static constexpr std::int32_t noAction = -1;
    // Null where no byte loops, and while an error is being recovered from.
    const RunBytes* runBytes() {
        if (!steady()) return nullptr;
        std::int32_t below = stack.peek(-1).state;
        if (std::size_t(state) < knownRuns.size())
            for (const KnownRuns& k : knownRuns[std::size_t(state)])
                if (k.below == below) return k.bytes.get();
        return learnRunBytes(below);
    }
    // Takes `count` bytes of `run`, as many tokens of them would have been taken one by one.
    void takeRun(const RunBytes& run, const unsigned char* units, std::int32_t count);

    bool isFinished() const { return finished; }
    const XMLErrors& getErrors() const { return errors; }
    // The value of the start symbol; null unless the input was accepted.
    const _eHndl<StackValue>& getResult() const { return result; }
    std::int32_t getState() const { return state; }
    const ParseStack& getStack() const { return stack; }

protected:
    ParseStack stack;
    std::int32_t state;
    // Between two tokens, and neither finished nor recovering from an error: what the stack holds
    // is what the tables made of the input.
    bool steady() const { return !recovering && !finished && !stack.isEmpty() && pendingClosers.isEmpty(); }

    // The states of a parse without its values, to follow what tokens would do before they come:
    // the state before each entry, from the lowest one known up, and the present state.
    struct Configuration {
        std::vector<std::int32_t> below;
        std::int32_t state;
        bool operator==(const Configuration&) const = default;
    };
    // Offers `token` to `at` as `offerToken` would, on the states alone, and appends to `ran` each
    // semantic action it runs but those that do nothing. With `untilShift` it stops where the
    // token would be shifted. False where it would do anything but reduce and shift, or reduce
    // below the entries known; `at` is then left part way.
    bool follow(Configuration& at, std::int32_t token, std::vector<std::int32_t>& ran, bool untilShift) const;
    // Where the nonterminal being reduced begins, while `reduceAction` runs.
    const Position& getReducePosition() const { return *reducePosition; }
    // A parser whose three lookups are exactly those of `tables` hands them over: the driver
    // then reads them in place, without a virtual call per lookup.
    void readTablesDirectly(const DirectTables& tables) { direct = &tables; }

    // What a semantic action does to the symbols of its production.
    enum class ActionKind {
        nothing,          // the value of symbol 1 stays the nonterminal's
        appendsCharacter, // symbol 2's character is appended to the value of symbol 1
        makesValue,       // a new value is made for the nonterminal, whatever its symbols held
        other
    };
    // The grammar's side of runs: the token of a byte, what an action does, and an appending
    // action run once for many characters on the value it appends to. With the defaults no
    // byte runs.
    virtual std::int32_t byteToken(unsigned char byte) const { return byte; }
    virtual ActionKind actionKind(std::int32_t) const { return ActionKind::other; }
    virtual void appendRun(std::int32_t, StackValue&, const unsigned char*, std::int32_t) {}

private:
    ActionTableEntry terminalEntry(std::int32_t at, std::int32_t token) const {
        return direct != nullptr ? direct->terminal.find(at, token) : terminalAction(at, token);
    }
    ActionTableEntry nonTerminalEntry(std::int32_t at, std::int32_t nonTerminal) const {
        return direct != nullptr ? direct->nonTerminal.find(at, nonTerminal) : nonTerminalAction(at, nonTerminal);
    }
    ReduceTableEntry reductionEntry(std::int32_t production) const {
        return direct != nullptr ? direct->reductions[production] : reduction(production);
    }

    // The semantic action (or `noAction`) that `token` runs when it only loops over the value
    // on top, whose entry holds `below`; nothing when it does more.
    std::optional<std::int32_t> loopAction(std::int32_t below, std::int32_t token) const;
    std::shared_ptr<const RunBytes> findRunBytes(std::int32_t below) const;
    // Finds the run bytes of the state over `below` and keeps them.
    const RunBytes* learnRunBytes(std::int32_t below);

    // `actionKind`, asked once for each semantic action and kept.
    ActionKind kindOf(std::int32_t semanticAction) {
        std::size_t at = std::size_t(semanticAction);
        return at < kinds.size() ? kinds[at] : learnKind(semanticAction);
    }
    ActionKind learnKind(std::int32_t semanticAction);

    // Reports `current`, pops to a state that takes the error token, and makes it the current
    // token, at `offeredAt`, where the token offered stands.
    void resynchronise(_eHndl<Terminal>& current, const Position& offeredAt, ActionTableEntry& entry);
    void reduceLoop(const _eHndl<Terminal>& current, ActionTableEntry entry);

    bool finished = false;
    bool recovering = false;             // an error was reported and no real token accepted since
    _eHndl<ParseControl> control;
    // Where the nonterminal being reduced begins: the place of its first symbol, or of the token
    // ahead when it is empty. It lies in that value, so it holds until the action puts another
    // value in the first symbol's entry; an action reads it before it does so.
    const Position* reducePosition = nullptr;
    std::vector<ActionKind> kinds;       // by semantic action, up to the highest asked
    XMLErrors errors;
    _eSeq<_eSet<int>> pendingClosers;    // closing tokens awaited while skipping brackets
    _eHndl<StackValue> result;           // set by `halt`
    const DirectTables* direct = nullptr; // the tables read in place, if the parser handed them over
    // Run bytes found so far, by state, for each state below the value on top.
    struct KnownRuns {
        std::int32_t below;
        std::shared_ptr<const RunBytes> bytes;  // null where none loops
    };
    std::vector<std::vector<KnownRuns>> knownRuns;
};
