#include "Generated/Parser.h"

#include "runtime/StringUtils.h"

namespace {

bool isErrorToken(const _eHndl<Terminal>& t) { return t->getToken() == Token::error; }

}  // namespace

Parser::Parser(const _eHndl<ParseControl>& control, std::int32_t initialState)
    : state(initialState), control(control), reduceLocation(Location::nowhere()), tokenLocation(Location::nowhere()) {}

bool Parser::equalFields(const Parser&) const { raiseCannotHappen(_xPlaces::parserAbsurd); }

void Parser::offerToken(const _eHndl<Terminal>& offered) {
    _eFreeze freeze(this);
    std::int32_t code = offered->getToken();
    if (!pendingClosers.isEmpty() && code != Token::endOfFile) {
        // Inside a bracket that recovery skips: wait for its closer.
        _eSet<int> closers = pendingClosers.at(pendingClosers.size() - 1);
        if (closers.contains(code)) pendingClosers.removeLast();
    } else {
        tokenLocation = offered->getLocation();
        _eHndl<Terminal> current = offered;
        bool consumed = false;
        while (!finished) {
            ActionTableEntry entry = terminalAction(current->getToken());
            if (recovering && entry.action == ActionName::error) {
                if (current->getToken() == Token::endOfFile) {
                    finished = true;
                    result.reset();
                    pendingClosers = {};
                }
                break;
            }
            if (entry.action == ActionName::error) resynchronise(current, entry);
            bool done = false;
            switch (entry.action) {
                case ActionName::shift:
                    stack.push({state, current.get()});
                    state = entry.parameter;
                    if (!isErrorToken(current)) {
                        recovering = false;
                        done = true;
                    }
                    break;
                case ActionName::reduce:
                    reduceLoop(current, entry);
                    break;
                case ActionName::sh_red:
                    stack.push({state, current.get()});
                    if (!isErrorToken(current)) {
                        recovering = false;
                        consumed = true;
                    }
                    reduceLoop(current, entry);
                    done = consumed;
                    break;
                case ActionName::skip:
                    recovering = false;
                    done = true;
                    break;
                case ActionName::error:
                    finished = true;
                    break;
                default:
                    raiseNoChoice(_xPlaces::parserNoAction);
            }
            if (done) break;
        }
    }
    if (recovering) {
        RecoveryTable pairs = recoveryTable();
        for (int i = 0, n = pairs.size(); i < n; ++i)
            if (pairs.at(i).first == code) pendingClosers.pushBack(pairs.at(i).second);
    }
}

void Parser::resynchronise(_eHndl<Terminal>& current, ActionTableEntry& entry) {
    addError(errors, current->getLocation(), XMLErrorType::unexpectedToken, {current->getText()});
    entry = terminalAction(Token::error);
    while (!stack.isEmpty() && entry.action == ActionName::error) {
        stack.pop(1);
        state = stack.peek(0).state;
        entry = terminalAction(Token::error);
    }
    stack.trim();
    current = new SimpleTerminal(tokenLocation, Token::error);
    recovering = true;
}

void Parser::reduceLoop(const _eHndl<Terminal>& current, ActionTableEntry entry) {
    while (entry.action == ActionName::reduce || entry.action == ActionName::sh_red) {
        ReduceTableEntry r = reduction(entry.parameter);
        if (r.length == 0) {
            reduceLocation = current->getLocation();
            stack.push({state, _eHndl<StackValue>(new StackValue(reduceLocation))});
            stack.pop(1);
        } else {
            stack.pop(r.length);
            state = stack.peek(0).state;
            reduceLocation = stack.peek(0).value->getLocation();
        }
        reduceAction(r.semanticAction);
        entry = nonTerminalAction(r.nonTerminal);
        switch (entry.action) {
            case ActionName::halt:
                finished = true;
                result = stack.peek(0).value;
                break;
            case ActionName::shift:
                stack.keepTop();
                state = entry.parameter;
                break;
            case ActionName::sh_red:
                stack.keepTop();
                break;
            case ActionName::skip:
                stack.trim();
                break;
            default:
                addError(errors, reduceLocation, XMLErrorType::illegalNonterminalAction,
                         {actionDisplayName(entry.action), intToString(state)});
        }
    }
}
