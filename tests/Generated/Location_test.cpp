// Positions in input files: their order, by file, then line, then column.
#include <gtest/gtest.h>

#include "Generated/Location.h"
#include "environment/Environment.h"

namespace {

class Locations : public testing::Test {
protected:
    _eHndl<FileName> file(const wchar_t* path) { return _eHndl<FileName>(new FileName(path, env.get())); }
    _eHndl<Location> at(const _eHndl<FileName>& f, int line, int column) {
        _eHndl<Location> l(new Location(f));
        for (int i = 0; i < line; ++i) l->nextLine();
        for (int i = 1; i < column; ++i) l->nextColumn();
        return l;
    }
    _eHndl<Environment> env{new Environment()};
};

}  // namespace

TEST_F(Locations, OrderByFileThenLineThenColumn) {
    _eHndl<FileName> a = file(L"/m/a.xmi");
    _eHndl<FileName> b = file(L"/m/b.xmi");
    _eHndl<Location> none = Location::nowhere();
    EXPECT_EQ(none->rank(at(a, 0, 0).get()), rankBelow);
    EXPECT_EQ(at(a, 0, 0)->rank(none.get()), rankAbove);
    EXPECT_EQ(none->rank(_eHndl<Location>(new Location()).get()), rankSame);
    EXPECT_EQ(at(a, 9, 9)->rank(at(b, 1, 1).get()), rankBelow);
    EXPECT_EQ(at(a, 2, 9)->rank(at(a, 3, 1).get()), rankBelow);
    EXPECT_EQ(at(a, 3, 2)->rank(at(a, 3, 1).get()), rankAbove);
    EXPECT_EQ(at(a, 3, 2)->rank(at(file(L"/m/a.xmi"), 3, 2).get()), rankSame);
    EXPECT_TRUE(*at(a, 3, 2) == *at(file(L"/m/a.xmi"), 3, 2));
    EXPECT_FALSE(*at(a, 3, 2) == *at(b, 3, 2));
    EXPECT_FALSE(*at(a, 3, 2) == *none);
}

// Passing a run of bytes at once lands where passing them one by one does: line ends, tabs at
// every column, a tab after the last line end and runs without either.
TEST_F(Locations, PassingARunEqualsPassingEachByte) {
    const std::string runs[] = {"", "abc", "a\tb", "\t\t", "x\ny", "ab\n\tc\td", "\n\n\n", "a\nb\tc\nd  e"};
    for (int width : {1, 4, 8})
        for (wchar_t before : {L'a', L'\t', L'\n'})
            for (const std::string& run : runs) {
                Location one(file(L"/m/a.xmi")), all(file(L"/m/a.xmi"));
                for (int column = 0; column < 3; ++column) {
                    one.nextColumn();
                    all.nextColumn();
                }
                one.pass(before, width);
                for (char c : run) one.pass(wchar_t(c), width);
                all.passAll(before, reinterpret_cast<const unsigned char*>(run.data()), std::int32_t(run.size()), width);
                EXPECT_EQ(all.getLine(), one.getLine()) << run << " width " << width;
                EXPECT_EQ(all.getColumn(), one.getColumn()) << run << " width " << width;
            }
}

// A position keeps its file as a number: equal files, however made, have one number, and the
// location a position makes again names the file it was made from.
TEST_F(Locations, PositionsKeepTheirFilesByNumber) {
    Position a(at(file(L"/m/a.xmi"), 3, 2));
    Position again(at(file(L"/m/a.xmi"), 3, 2));
    Position other(at(file(L"/m/b.xmi"), 3, 2));
    Position byPath(at(file(L"/n/a.xmi"), 3, 2));
    EXPECT_NE(a.fileNumber, 0u);
    EXPECT_EQ(a.fileNumber, again.fileNumber);
    EXPECT_NE(a.fileNumber, other.fileNumber);
    EXPECT_NE(a.fileNumber, byPath.fileNumber);
    EXPECT_TRUE(a == again);
    EXPECT_FALSE(a == other);
    // Naming a file named before, after others, finds its number.
    EXPECT_EQ(Position(at(file(L"/m/a.xmi"), 1, 1)).fileNumber, a.fileNumber);
    EXPECT_EQ(toWString(a.file()->fullPathText()), L"/m/a.xmi");
    EXPECT_EQ(toWString(byPath.file()->fullPathText()), L"/n/a.xmi");
    EXPECT_TRUE(*a.location() == *at(file(L"/m/a.xmi"), 3, 2));
    EXPECT_EQ(toWString(other.location()->text(true)), L"b.xmi (3,2)");

    Position none(Location::nowhere());
    EXPECT_EQ(none.fileNumber, 0u);
    EXPECT_TRUE(none.file().isNull());
    EXPECT_TRUE(*none.location() == *Location::nowhere());
    EXPECT_TRUE(Position(_eHndl<Location>()) == none);
}
