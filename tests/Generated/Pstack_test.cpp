// The parse stack: popping keeps the right-hand side readable until it is trimmed.
#include <gtest/gtest.h>

#include "Generated/Pstack.h"
#include "runtime/Set.h"

namespace {

StackEntry entry(std::int32_t state, wchar_t c) {
    return {state, _eHndl<StackValue>(new SimpleTerminal(Location::nowhere(), c))};
}

wchar_t charOf(const StackEntry& e) { return static_cast<const Terminal*>(e.value.get())->getCharacter(); }

}  // namespace

TEST(ParseStack, PopKeepsEntriesUntilTrimOrKeepTop) {
    ParseStack stack;
    EXPECT_TRUE(stack.isEmpty());
    stack.push(entry(0, L'a'));
    stack.push(entry(4, L'b'));
    stack.push(entry(7, L'c'));
    stack.push(entry(9, L'd'));
    stack.pop(3);
    EXPECT_EQ(stack.getTop(), 1);
    EXPECT_EQ(stack.peek(0).state, 4);
    EXPECT_EQ(charOf(stack.peek(2)), L'd');
    stack.peekToChange(0).value = new NonTerminal(Location::nowhere());
    stack.keepTop();
    EXPECT_EQ(stack.getTop(), 2);
    EXPECT_EQ(stack.entryCount(), 2);
    EXPECT_EQ(stack.peek(-1).state, 4);
    EXPECT_NE(dynamic_cast<const NonTerminal*>(stack.peek(-1).value.get()), nullptr);

    stack.trim();
    EXPECT_EQ(stack.entryCount(), 2);
    stack.pop(2);
    stack.trim();
    EXPECT_TRUE(stack.entryCount() == 0);
    EXPECT_TRUE(stack.isEmpty());

    // An empty production pushes first, so that peek(0) is an entry of its own.
    stack.push(entry(3, L'x'));
    stack.push({5, _eHndl<StackValue>(new StackValue(Location::nowhere()))});
    stack.pop(1);
    stack.keepTop();
    EXPECT_EQ(stack.entryCount(), 2);
    EXPECT_EQ(stack.peek(-1).state, 5);
}

TEST(ParseStack, ChangingACopyLeavesTheOriginal) {
    ParseStack stack;
    for (int i = 0; i < 40; ++i) stack.push(entry(i, wchar_t(L'a' + i % 26)));
    ParseStack copy = stack;
    copy.pop(1);
    copy.peekToChange(0).state = 99;
    EXPECT_EQ(copy.peek(0).state, 99);
    EXPECT_EQ(stack.peek(-1).state, 39);
}
