// Reading a file of the output folder that may not be there: one look tells absence, a file's
// bytes, and why something that stands there can't be read, as two separate looks would.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "output/OutputFolder.h"
#include "support/TempDir.h"

TEST(OutputFolder, ReadingWhatMayBeThereAgreesWithLookingFirst) {
    TempDir dir;
    dir.write("Plain.tv", "text\n");
    dir.write("Empty.tv", "");
    ASSERT_EQ(mkdir((dir / "Folder.tv").c_str(), 0755), 0);
    ASSERT_EQ(symlink("Plain.tv", (dir / "Link.tv").c_str()), 0);
    ASSERT_EQ(symlink("Gone.tv", (dir / "Dangling.tv").c_str()), 0);
    OutputFolder folder(dir.path());
    for (const char* name : {"Plain.tv", "Empty.tv", "Missing.tv", "Folder.tv", "Link.tv", "Dangling.tv", "../x.tv",
                             "a/b.tv", "Missing/x.tv"}) {
        std::string text = "unchanged", error;
        bool there = false;
        bool read = folder.readIfThere(name, text, there, error);
        EXPECT_EQ(there, folder.holdsAnything(name)) << name;
        std::string expectedText, expectedError;
        bool expected = there && folder.read(name, expectedText, expectedError);
        EXPECT_EQ(read, expected) << name;
        EXPECT_EQ(error, there ? expectedError : "") << name;
        if (read) {
            EXPECT_EQ(text, expectedText) << name;
        }
    }
    std::string text, error;
    bool there = false;
    EXPECT_TRUE(folder.readIfThere("Plain.tv", text, there, error));
    EXPECT_EQ(text, "text\n");
    EXPECT_FALSE(folder.readIfThere("Link.tv", text, there, error));
    EXPECT_TRUE(there);
    EXPECT_NE(error.find("cannot read"), std::string::npos);
    // A pipe where a file was is no file to read, and no wait for a writer that never comes.
    ASSERT_EQ(mkfifo((dir / "Pipe.tv").c_str(), 0644), 0);
    EXPECT_FALSE(folder.readIfThere("Pipe.tv", text, there, error));
    EXPECT_TRUE(there);
    EXPECT_EQ(error, "cannot read '" + (dir / "Pipe.tv") + "': not a plain file");
    EXPECT_FALSE(folder.read("Pipe.tv", text, error));
}
