// The record of a generation: read back as written, and refused with the file and line of the
// first thing wrong in it.
#include "output/GenerationRecord.h"

#include <gtest/gtest.h>

TEST(GenerationRecord, ReadsBackWhatItWrites) {
    GenerationRecord record;
    RecordEntry entry;
    entry.file = {"Account.tv", {"c 1"}, "", {"class Account ^=\n", "\tschema !reset post ?;\n", "end;\n"}, {}, {}};
    entry.file.pieces = {{"head c%201", 0, 1, {}}, {"member o1", 1, 2, {{1, 21}}}, {"end c%201", 2, 3, {}}};
    entry.kept = {{"member o9", {"\tschema !gone post x! = 1;\n"}}};
    entry.file.source = "9f86d081884c7d65";
    record.entries = {entry, {{"B.tv", {}, "", {"|x\n"}, {}, {}}, {}}};
    GenerationRecord back;
    std::string error;
    ASSERT_TRUE(GenerationRecord::read(record.text(), "r", back, error)) << error;
    EXPECT_EQ(back.entries, record.entries);
    // What a file was made from stands as a comment, which readers that don't know it pass over.
    std::string text = record.text();
    EXPECT_NE(text.find("\n# from 9f86d081884c7d65\n"), std::string::npos) << text;
    std::string unknown = text;
    unknown.erase(unknown.find("# from 9f86d081884c7d65\n"), 24);
    ASSERT_TRUE(GenerationRecord::read(unknown, "r", back, error)) << error;
    EXPECT_EQ(back.entries[0].file.source, "");
    EXPECT_EQ(back.entries[1], record.entries[1]);
    EXPECT_EQ(back.byClass("c 1"), &back.entries[0]);
    EXPECT_EQ(back.byName("B.tv"), &back.entries[1]);
    EXPECT_EQ(back.byName("C.tv"), nullptr);
    // Whether a text is the record's, found without writing it: any byte changed, missing or
    // added, at the start, within a line of text or at the end, makes it another record's.
    EXPECT_TRUE(record.writes(text));
    for (std::size_t at : {std::size_t(0), text.find("schema"), text.size() - 1}) {
        std::string changed = text;
        changed[at] ^= 1;
        EXPECT_FALSE(record.writes(changed)) << at;
        EXPECT_FALSE(record.writes(std::string(text).erase(at, 1))) << at;
        EXPECT_FALSE(record.writes(std::string(text).insert(at, "x"))) << at;
    }
    EXPECT_FALSE(record.writes(text + "\n"));
    EXPECT_FALSE(record.writes(""));
    EXPECT_FALSE(record.writes(unknown));
    // Read without splitting, each text stays as the record holds it until it is split, and
    // the record writes the same text either way.
    GenerationRecord unsplit;
    ASSERT_TRUE(GenerationRecord::read(text, "r", unsplit, error, false)) << error;
    GeneratedFile& account = unsplit.entries[0].file;
    EXPECT_TRUE(account.lines.empty());
    EXPECT_EQ(account.lineCount(), 3u);
    EXPECT_EQ(account.textLines(), entry.file.textLines());
    EXPECT_EQ(unsplit.entries[1].file.textLines(), LineViews{"|x\n"});
    EXPECT_EQ(unsplit.text(), text);
    EXPECT_TRUE(unsplit.writes(text));
    account.split();
    EXPECT_EQ(unsplit.entries[0], record.entries[0]);
    // Texts given twice for one file add up, split or not.
    const std::string twice = "modelbridge-record 1\nfile A.tv\ntext 1\n|a\ntext 1\n|b\nend\n";
    ASSERT_TRUE(GenerationRecord::read(twice, "r", back, error, false)) << error;
    EXPECT_EQ(back.entries[0].file.textLines(), (LineViews{"a\n", "b\n"}));
    ASSERT_TRUE(GenerationRecord::read(twice, "r", back, error)) << error;
    EXPECT_EQ(back.entries[0].file.lines, (Lines{"a\n", "b\n"}));
    EXPECT_EQ(GenerationRecord::keyText("a b%\n"), "a%20b%25%0A");
    EXPECT_EQ(GenerationRecord::idOfKeyText("a%20b%25%0A%"), "a b%\n%");
}

TEST(GenerationRecord, RefusesWhatItCantReadByFileAndLine) {
    const std::string start = "modelbridge-record 1\n";
    struct Row {
        std::string text, error;
    };
    const Row rows[] = {
        {"", "rec:0: an empty record"},
        {"modelbridge-record 2\n", "rec:1: not a record of ModelBridge, or one of a newer version"},
        {start + "piece 0 1 head c\n", "rec:2: 'piece' before the first file"},
        {start + "file ../x.tv\n", "rec:2: '../x.tv' is not a plain file name"},
        {start + "file a/b.tv\n", "rec:2: 'a/b.tv' is not a plain file name"},
        {start + "file A.tv\nend\nfile A.tv\n", "rec:4: the file 'A.tv' is recorded twice"},
        {start + "file A.tv\npiece 1 1 head c\n", "rec:3: a piece needs its first line, its end and its key"},
        {start + "file A.tv\npiece x 1 head c\n", "rec:3: a piece needs its first line, its end and its key"},
        {start + "file A.tv\nbody 0 0\n", "rec:3: a body needs its piece, its line and its column"},
        {start + "file A.tv\ntext 2\n|a\n", "rec:4: the record ends within a text"},
        // A count far beyond the record's lines costs nothing before the lines run out.
        {start + "file A.tv\ntext 2000000000\n|a\n", "rec:4: the record ends within a text"},
        {start + "file A.tv\ntext 1\na\n", "rec:4: a line of text must start with '|'"},
        {start + "file A.tv\nkept 1\n", "rec:3: 'kept' needs its number of lines and its key"},
        {start + "file A.tv\npiece 0 2 head c\ntext 1\n|a\nend\n", "rec:6: the pieces of 'A.tv' don't fit its text"},
        {start + "file A.tv\ntext 0\n", "rec:3: the record ends within the file 'A.tv'"},
        {start + "file A.tv\npiece 5 6 member o\nfile B.tv\n", "rec:4: the file 'A.tv' has no 'end' before the next file"},
        {start + "file A.tv\nwhat\n", "rec:3: unknown item 'what'"},
    };
    // Texts split or not, the same faults are found at the same lines.
    for (bool split : {true, false}) {
        for (const Row& row : rows) {
            GenerationRecord record;
            std::string error;
            EXPECT_FALSE(GenerationRecord::read(row.text, "rec", record, error, split)) << row.text;
            EXPECT_EQ(error, row.error) << row.text;
            EXPECT_TRUE(record.entries.empty());
        }
    }
}
