#include "Generated/Parser.h"

#include "runtime/StringUtils.h"

namespace {

bool isErrorToken(const _eHndl<Terminal>& t) { return t->getToken() == Token::error; }

}  // namespace

Parser::Parser(const _eHndl<ParseControl>& control, std::int32_t initialState)
    : state(initialState), control(control) {}

bool Parser::equalFields(const Parser&) const { raiseCannotHappen(_xPlaces::parserAbsurd); }

void Parser::offerToken(const _eHndl<Terminal>& offered) {
    _eFreeze freeze(this);
    std::int32_t code = offered->getToken();
    if (!pendingClosers.isEmpty() && code != Token::endOfFile) {
        // Inside a bracket that recovery skips: wait for its closer.
        _eSet<int> closers = pendingClosers.at(pendingClosers.size() - 1);
        if (closers.contains(code)) pendingClosers.removeLast();
    } else {
        _eHndl<Terminal> current = offered;
        bool consumed = false;
        while (!finished) {
            ActionTableEntry entry = terminalEntry(state, current->getToken());
            if (recovering && entry.action == ActionName::error) {
                if (current->getToken() == Token::endOfFile) {
                    finished = true;
                    result.reset();
                    pendingClosers = {};
                }
                break;
            }
            if (entry.action == ActionName::error) resynchronise(current, offered->getPosition(), entry);
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

void Parser::resynchronise(_eHndl<Terminal>& current, const Position& offeredAt, ActionTableEntry& entry) {
    addError(errors, current->getLocation(), XMLErrorType::unexpectedToken, {current->getText()});
    entry = terminalEntry(state, Token::error);
    while (!stack.isEmpty() && entry.action == ActionName::error) {
        stack.pop(1);
        state = stack.peek(0).state;
        entry = terminalEntry(state, Token::error);
    }
    stack.trim();
    current = new SimpleTerminal(offeredAt, Token::error);
    recovering = true;
}

void Parser::reduceLoop(const _eHndl<Terminal>& current, ActionTableEntry entry) {
    while (entry.action == ActionName::reduce || entry.action == ActionName::sh_red) {
        ReduceTableEntry r = reductionEntry(entry.parameter);
        ActionKind kind = kindOf(r.semanticAction);
        if (r.length == 0) {
            // An empty nonterminal begins where the token ahead does. All a value of its own
            // would hold is that place, which the token holds too; an action that makes the
            // value needs none.
            reducePosition = &current->getPosition();
            switch (kind) {
                case ActionKind::nothing: stack.push({state, current.get()}); break;
                case ActionKind::makesValue: stack.push({state, nullptr}); break;
                default: stack.push({state, _eHndl<StackValue>(new StackValue(*reducePosition))});
            }
            stack.pop(1);
        } else {
            stack.pop(r.length);
            state = stack.peek(0).state;
            reducePosition = &stack.peek(0).value->getPosition();
        }
        entry = nonTerminalEntry(state, r.nonTerminal);
        if (entry.action != ActionName::halt && entry.action != ActionName::shift &&
            entry.action != ActionName::sh_red && entry.action != ActionName::skip) {
            // The action may drop the value the place lies in: the place is kept for the error.
            Position reported = *reducePosition;
            reduceAction(r.semanticAction);
            addError(errors, reported.location(), XMLErrorType::illegalNonterminalAction,
                     {actionDisplayName(entry.action), intToString(state)});
            continue;
        }
        if (kind != ActionKind::nothing) reduceAction(r.semanticAction);
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
                break;
        }
    }
}

Parser::ActionKind Parser::learnKind(std::int32_t semanticAction) {
    if (semanticAction < 0) return actionKind(semanticAction);
    while (kinds.size() <= std::size_t(semanticAction)) kinds.push_back(actionKind(std::int32_t(kinds.size())));
    return kinds.back();
}

const Parser::RunBytes* Parser::learnRunBytes(std::int32_t below) {
    if (std::size_t(state) >= knownRuns.size()) knownRuns.resize(std::size_t(state) + 1);
    std::vector<KnownRuns>& known = knownRuns[std::size_t(state)];
    known.push_back({below, findRunBytes(below)});
    return known.back().bytes.get();
}

std::shared_ptr<const Parser::RunBytes> Parser::findRunBytes(std::int32_t below) const {
    auto run = std::make_shared<RunBytes>();
    bool any = false;
    for (int byte = 0; byte < 256; ++byte) {
        std::optional<std::int32_t> action = loopAction(below, byteToken(static_cast<unsigned char>(byte)));
        if (!action || (any && *action != run->semanticAction)) continue;
        run->semanticAction = *action;
        run->member[byte] = true;
        any = true;
    }
    return any ? run : nullptr;
}

// Follows what `offerToken` would do with `token`, on the states alone: the entries of the
// stack above the value on top, each with the state before it and whether it holds that value
// or the token. The token loops when it is consumed, the stack is back at its depth with the
// value on top, the state is where it was, and nothing ran but actions that do nothing and at
// most one that appends the token's character to that value.
std::optional<std::int32_t> Parser::loopAction(std::int32_t below, std::int32_t token) const {
    struct Entry {
        std::int32_t state;
        bool holdsTop;  // the value on top, else the token
    };
    constexpr int room = 8;
    Entry entries[room] = {{below, true}};
    int size = 1;
    std::int32_t at = state;
    std::int32_t appended = noAction;
    bool consumed = false;
    ActionTableEntry entry = terminalEntry(at, token);
    for (int steps = 0; steps < 64; ++steps) {
        switch (entry.action) {
            case ActionName::shift:
            case ActionName::sh_red:
                if (consumed || size == room) return std::nullopt;
                entries[size++] = {at, false};
                consumed = true;
                if (entry.action == ActionName::shift) at = entry.parameter;
                break;
            case ActionName::reduce:
                if (consumed) return std::nullopt;
                break;
            case ActionName::skip:
                consumed = true;  // the token is dropped
                break;
            default:
                return std::nullopt;
        }
        // Reductions, as `reduceLoop` runs them.
        while (entry.action == ActionName::reduce || entry.action == ActionName::sh_red) {
            ReduceTableEntry r = reductionEntry(entry.parameter);
            if (r.length < 1 || r.length > size) return std::nullopt;
            int first = size - r.length;
            switch (actionKind(r.semanticAction)) {
                case ActionKind::nothing:
                    break;
                case ActionKind::appendsCharacter:
                    if (appended != noAction || r.length != 2 || !entries[first].holdsTop || entries[first + 1].holdsTop)
                        return std::nullopt;
                    appended = r.semanticAction;
                    break;
                default:
                    return std::nullopt;
            }
            at = entries[first].state;
            size = first + 1;
            entry = nonTerminalEntry(at, r.nonTerminal);
            if (entry.action == ActionName::shift)
                at = entry.parameter;
            else if (entry.action == ActionName::skip)
                size = first;  // the nonterminal is dropped
            else if (entry.action != ActionName::sh_red)
                return std::nullopt;
        }
        if (consumed) break;
        entry = terminalEntry(at, token);
    }
    if (!consumed || size != 1 || !entries[0].holdsTop || at != state) return std::nullopt;
    return appended;
}

bool Parser::follow(Configuration& at, std::int32_t token, std::vector<std::int32_t>& ran, bool untilShift) const {
    // Where the token is shifted and reduced at once, the loop below runs its reductions.
    auto enter = [&at](const ActionTableEntry& entry) {
        at.below.push_back(at.state);
        if (entry.action == ActionName::shift) at.state = entry.parameter;
    };
    ActionTableEntry entry = terminalEntry(at.state, token);
    for (int steps = 0; steps < 64; ++steps) {
        bool consumed = entry.action == ActionName::shift || entry.action == ActionName::sh_red;
        if (consumed) {
            if (untilShift) return true;
            enter(entry);
        } else if (entry.action != ActionName::reduce) {
            return false;
        }
        while (entry.action == ActionName::reduce || entry.action == ActionName::sh_red) {
            ReduceTableEntry r = reductionEntry(entry.parameter);
            std::size_t size = at.below.size();
            if (std::size_t(r.length) > size) return false;
            if (actionKind(r.semanticAction) != ActionKind::nothing) ran.push_back(r.semanticAction);
            if (r.length > 0) {
                at.state = at.below[size - std::size_t(r.length)];
                at.below.resize(size - std::size_t(r.length));
            }
            entry = nonTerminalEntry(at.state, r.nonTerminal);
            if (entry.action != ActionName::shift && entry.action != ActionName::sh_red) return false;
            enter(entry);
        }
        if (consumed) return true;
        entry = terminalEntry(at.state, token);
    }
    return false;
}

void Parser::takeRun(const RunBytes& run, const unsigned char* units, std::int32_t count) {
    if (run.semanticAction == noAction || count == 0) return;
    _eFreeze freeze(this);
    appendRun(run.semanticAction, *stack.peekToChange(-1).value.uniquePointer(), units, count);
}
