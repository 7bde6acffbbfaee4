// `Parser`: the grammar-independent LR driver. It is pushed one token at a time; the grammar
// reaches it only through five operations that a derived class supplies.
#pragma once

#include <cstdint>

#include "Generated/ParseTables.h"
#include "Generated/Pstack.h"
#include "Generated/XMLError.h"

class Parser : public _eAbstractClass<Parser, _eAny> {
public:
    static constexpr _aTypeSlot _aType{&_aModule10, 3};

    Parser(const _eHndl<ParseControl>& control, std::int32_t initialState);

    // Parsers have no equality: comparing two different ones raises.
    bool equalFields(const Parser& other) const;

    virtual ActionTableEntry terminalAction(std::int32_t token) const = 0;
    virtual ActionTableEntry nonTerminalAction(std::int32_t nonTerminal) const = 0;
    virtual ReduceTableEntry reduction(std::int32_t production) const = 0;
    virtual void reduceAction(std::int32_t semanticAction) = 0;
    virtual RecoveryTable recoveryTable() const = 0;

    // Runs every action that the token allows. Not to be called once `isFinished()`.
    void offerToken(const _eHndl<Terminal>& offered);

    bool isFinished() const { return finished; }
    const XMLErrors& getErrors() const { return errors; }
    // The value of the start symbol; null unless the input was accepted.
    const _eHndl<StackValue>& getResult() const { return result; }
    std::int32_t getState() const { return state; }
    const ParseStack& getStack() const { return stack; }

protected:
    ParseStack stack;
    std::int32_t state;
    const _eHndl<Location>& getReduceLocation() const { return reduceLocation; }

private:
    // Reports `current`, pops to a state that takes the error token, and makes it the current token.
    void resynchronise(_eHndl<Terminal>& current, ActionTableEntry& entry);
    void reduceLoop(const _eHndl<Terminal>& current, ActionTableEntry entry);

    bool finished = false;
    bool recovering = false;             // an error was reported and no real token accepted since
    _eHndl<ParseControl> control;
    _eHndl<Location> reduceLocation;     // where the nonterminal being reduced begins
    _eHndl<Location> tokenLocation;      // the last token that reached the tables
    XMLErrors errors;
    _eSeq<_eSet<int>> pendingClosers;    // closing tokens awaited while skipping brackets
    _eHndl<StackValue> result;           // set by `halt`
};
