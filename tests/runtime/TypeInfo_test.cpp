// Type objects: equality and order, matching, and lookup by name.
#include <gtest/gtest.h>

#include "environment/EnvironmentEnums.h"
#include "environment/FileName.h"
#include "runtime/TypeMatcher.h"
#include "support/StreamFailure.h"
#include "support/TestModule.h"

namespace {

using Type = _eHndl<_eInstblTypeInfo>;

Type builtIn(int row) { return Type(new _eInstblTypeInfo(row, false)); }

}  // namespace

TEST(TypeInfo, EqualityWeighsArgumentsThatTheOrderIgnores) {
    Type seqOfChar = builtIn(6)->instantiate({builtIn(2)});
    Type again = builtIn(6)->instantiate({builtIn(2)});
    Type seqOfInt = builtIn(6)->instantiate({builtIn(0)});
    EXPECT_TRUE(seqOfChar->isEqual(again.get()));
    EXPECT_FALSE(seqOfChar->isEqual(seqOfInt.get()));
    EXPECT_EQ(seqOfChar->rank(seqOfInt.get()), rankSame);
    EXPECT_TRUE(seqOfChar->isEqual(_eStorableWrapper<_eString>::_aMyTypeInfo().get()));

    // The order: flags first, then the row, then the module.
    Type from(new _eInstblTypeInfo(*builtIn(0)));
    from->setFlags(true, false);
    EXPECT_EQ(from->rank(builtIn(5).get()), rankAbove);
    EXPECT_EQ(builtIn(1)->rank(builtIn(0).get()), rankAbove);
    EXPECT_EQ(builtIn(0)->rank(builtIn(1).get()), rankBelow);
    Type otherModule(new _eInstblTypeInfo(&_aModule27, 0));
    EXPECT_NE(builtIn(0)->rank(otherModule.get()), rankSame);
    EXPECT_EQ(builtIn(0)->rank(otherModule.get()) == rankAbove, otherModule->rank(builtIn(0).get()) == rankBelow);

    // Matching ignores `from` but not `ref`, and looks into the arguments.
    Type seqOfFromChar = builtIn(6)->instantiate({from});
    EXPECT_FALSE(seqOfChar->matches(*seqOfInt));
    Type fromChar(new _eInstblTypeInfo(*builtIn(2)));
    fromChar->setFlags(true, false);
    EXPECT_TRUE(seqOfChar->matches(*builtIn(6)->instantiate({fromChar})));
    Type refChar(new _eInstblTypeInfo(2, true));
    EXPECT_FALSE(seqOfChar->matches(*builtIn(6)->instantiate({refChar})));
    EXPECT_FALSE(seqOfChar->matches(*builtIn(7)->instantiate({builtIn(2)})));
}

TEST(TypeInfo, LookupByNameTakesTheNewestModule) {
    Type location = _eInstblTypeInfo::makeType(L"Location", false, false);
    EXPECT_EQ(location->getModule(), &_aModule7);
    EXPECT_EQ(location->getTypeIndex(), 0);
    // The test module registered after the system's and repeats "FileName" as its row 7.
    Type fileName = _eInstblTypeInfo::makeType(L"FileName", true, false);
    EXPECT_EQ(fileName->getModule(), &testModule);
    EXPECT_EQ(fileName->getTypeIndex(), 7);
    EXPECT_TRUE(fileName->isFrom());

    _eSeq<_eSeparatorId::_eEnum> arrow{_eSeparatorId::RightArrow};
    Type map(new _eInstblTypeInfo(L"map", 2, arrow, false, false));
    EXPECT_EQ(map->getModule(), builtInModule());
    EXPECT_EQ(map->getTypeIndex(), 9);

    EXPECT_EQ(failureOf([] { _eInstblTypeInfo::makeType(L"NoSuchType", false, false); }),
              std::make_pair(int(SerialErrorType::streamError), std::wstring(L"NoSuchType")));
    EXPECT_EQ(failureOf([&] { _eInstblTypeInfo(L"dict", 2, arrow, false, false); }),
              std::make_pair(int(SerialErrorType::streamError), std::wstring(L"dict of (T1RightArrowT2)")));
}
