// Updating a folder with the sample host, as a user who completes the generated skeletons does
// it: step by step over small models with fixed ids, each step with the user's edits before it,
// and after it the exact text of each file, the exit status, what stands on standard error, and
// the files that must not have been touched at all.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <utime.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "support/GeneratedText.h"
#include "support/HostRun.h"
#include "support/UpdateModels.h"

namespace {

// A replacement the user makes in a file before a step.
struct Edit {
    std::string file, from, to;
};

struct Step {
    std::vector<ModelClass> model;
    std::vector<Edit> edits;
    std::string options;
    int status;
    // Each file's text after its header; an empty text: the file must not be there.
    std::map<std::string, std::string> texts;
    std::vector<std::string> stderrHas;
    std::vector<std::string> untouched;  // files whose bytes and modification time stay
};

struct Scenario {
    const char* name;
    std::vector<Step> steps;
};

// The text of a class file after its header: its lines, then the footer.
std::string body(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) text += line + "\n";
    return text + "\n\n// End of file.\n";
}

const std::time_t longAgo = 1'000'000'000;

class FolderUpdate : public testing::Test {
protected:
    // Runs the steps of a scenario in one folder.
    void play(const Scenario& scenario) {
        TempDir temp;
        std::string out = temp / "out", model = temp / "model.xmi";
        for (std::size_t s = 0; s < scenario.steps.size(); ++s) {
            const Step& step = scenario.steps[s];
            SCOPED_TRACE(std::string(scenario.name) + ", step " + std::to_string(s + 1));
            for (const Edit& edit : step.edits) {
                std::string text = readFile(out + "/" + edit.file);
                std::size_t at = text.find(edit.from);
                ASSERT_NE(at, std::string::npos) << edit.from;
                std::ofstream(out + "/" + edit.file, std::ios::binary) << text.replace(at, edit.from.size(), edit.to);
            }
            std::map<std::string, std::string> before;
            for (const std::string& file : step.untouched) {
                before[file] = readFile(out + "/" + file);
                utimbuf times{longAgo, longAgo};
                ASSERT_EQ(utime((out + "/" + file).c_str(), &times), 0) << file;
            }
            temp.write("model.xmi", modelText(step.model));
            HostRun run = runHost(model + " -q -o " + out + " " + step.options, temp / "run", "SOURCE_DATE_EPOCH=86400");
            EXPECT_EQ(run.status, step.status) << run.err;
            for (const auto& [file, text] : step.texts) {
                bool there = std::filesystem::exists(out + "/" + file);
                EXPECT_EQ(there, !text.empty()) << file;
                if (there && !text.empty()) {
                    EXPECT_EQ(afterHeader(readFile(out + "/" + file)), text) << file;
                }
            }
            for (const std::string& part : step.stderrHas) EXPECT_NE(run.err.find(part), std::string::npos) << part << "\n" << run.err;
            for (const std::string& file : step.untouched) {
                struct stat info {};
                ASSERT_EQ(stat((out + "/" + file).c_str(), &info), 0) << file;
                EXPECT_EQ(info.st_mtime, longAgo) << file;
                EXPECT_EQ(readFile(out + "/" + file), before[file]) << file;
            }
        }
    }
};

// The running example: an account with a balance, "reset" and "size".
const ModelClass account{"c1", "Account", {"a1 balance", "o1 reset()", "o2 size():int"}};
const std::string accountText = body({"class Account ^=", "abstract", "\tvar balance: int;", "interface",
                                      "\tselector balance;", "\tschema !reset post ?;", "\tfunction size: int ^= ?;", "end;"});
// The user's work on it: two bodies and an invariant.
const std::vector<Edit> completed = {
    {"Account.tv", "schema !reset post ?;", "schema !reset post balance! = 0;"},
    {"Account.tv", "function size: int ^= ?;", "function size: int ^= 1;"},
    {"Account.tv", "end;", "\tinvariant balance >= 0;\nend;"},
};
const std::string completedText =
    body({"class Account ^=", "abstract", "\tvar balance: int;", "interface", "\tselector balance;",
          "\tschema !reset post balance! = 0;", "\tfunction size: int ^= 1;", "\tinvariant balance >= 0;", "end;"});

}  // namespace

TEST_F(FolderUpdate, FirstGenerationNothingChangedAndTheUsersWorkWhileTheModelGrows) {
    play({"growing",
          {
              {{account}, {}, "", 0, {{"Account.tv", accountText}}, {}, {}},
              // Nothing changed: not a byte, not the time.
              {{account}, {}, "", 0, {{"Account.tv", accountText}}, {}, {"Account.tv"}},
              // The model gains an attribute and an operation while the user fills two bodies and
              // adds an invariant: all of it is in the file.
              {{{"c1", "Account", {"a1 balance", "a2 limit", "o1 reset()", "o2 size():int", "o3 close()"}}},
               completed,
               "",
               0,
               {{"Account.tv", body({"class Account ^=", "abstract", "\tvar balance: int;", "\tvar limit: int;",
                                     "interface", "\tselector balance;", "\tselector limit;",
                                     "\tschema !reset post balance! = 0;", "\tfunction size: int ^= 1;",
                                     "\tschema !close post ?;", "\tinvariant balance >= 0;", "end;"})}},
               {"Account.tv: the model's changes merged into yours"},
               {}},
              // Updating again changes nothing.
              {{{"c1", "Account", {"a1 balance", "a2 limit", "o1 reset()", "o2 size():int", "o3 close()"}}},
               {}, "", 0, {}, {}, {"Account.tv"}},
          }});
}

TEST_F(FolderUpdate, RenamesInTheModelKeepWhatTheUserWrote) {
    play({"renamed member",
          {
              {{account}, {}, "", 0, {{"Account.tv", accountText}}, {}, {}},
              // "reset" becomes "clear" and "size" gets a parameter-free new name: the bodies follow.
              {{{"c1", "Account", {"a1 balance", "o1 clear()", "o2 count():int"}}},
               completed,
               "",
               0,
               {{"Account.tv", body({"class Account ^=", "abstract", "\tvar balance: int;", "interface",
                                     "\tselector balance;", "\tschema !clear post balance! = 0;",
                                     "\tfunction count: int ^= 1;", "\tinvariant balance >= 0;", "end;"})}},
               {},
               {}},
          }});
    play({"renamed class",
          {
              {{account}, {}, "", 0, {{"Account.tv", accountText}}, {}, {}},
              {{{"c1", "Konto", account.members}},
               completed,
               "",
               0,
               {{"Account.tv", ""},
                {"Konto.tv", body({"class Konto ^=", "abstract", "\tvar balance: int;", "interface",
                                   "\tselector balance;", "\tschema !reset post balance! = 0;",
                                   "\tfunction size: int ^= 1;", "\tinvariant balance >= 0;", "end;"})}},
               {"Konto.tv: renamed from Account.tv with its class"},
               {}},
          }});
}

TEST_F(FolderUpdate, AMemberDeletedWithTheUsersBodyIsKeptAndComesBack) {
    const std::string kept =
        body({"class Account ^=", "abstract", "\tvar balance: int;", "interface", "\tselector balance;",
              "\tfunction size: int ^= 1;", "\tinvariant balance >= 0;",
              "// Kept by ModelBridge, no longer in the model: member o1",
              "//\tschema !reset post balance! = 0;", "end;"});
    play({"deleted member",
          {
              {{account}, {}, "", 0, {{"Account.tv", accountText}}, {}, {}},
              {{{"c1", "Account", {"a1 balance", "o2 size():int"}}},
               completed,
               "",
               0,
               {{"Account.tv", kept}},
               {"'schema !reset post balance! = 0;' is no longer in the model"},
               {}},
              {{{"c1", "Account", {"a1 balance", "o2 size():int"}}}, {}, "", 0, {{"Account.tv", kept}}, {}, {"Account.tv"}},
              {{account}, {}, "", 0, {{"Account.tv", completedText}}, {"is back in the model"}, {}},
          }});
    // A comment the user wrote before a member the model deletes stays, before what follows.
    play({"comment before a deleted member",
          {
              {{account}, {}, "", 0, {{"Account.tv", accountText}}, {}, {}},
              {{{"c1", "Account", {"a1 balance", "o2 size():int"}}},
               {{"Account.tv", "\tschema !reset", "\t// reset only at the end of the year\n\tschema !reset"}},
               "",
               0,
               {{"Account.tv", body({"class Account ^=", "abstract", "\tvar balance: int;", "interface",
                                     "\tselector balance;", "\t// reset only at the end of the year",
                                     "\tfunction size: int ^= ?;", "end;"})}},
               {},
               {}},
          }});
}

TEST_F(FolderUpdate, TheSameLineChangedOnBothSidesIsAConflict) {
    const ModelClass ledger{"c2", "Ledger", {"a9 entries"}};
    const std::string ledgerText = body({"class Ledger ^=", "abstract", "\tvar entries: int;", "interface",
                                         "\tselector entries;", "end;"});
    const ModelClass renamed{"c1", "Account", {"a1 amount", "o1 reset()", "o2 size():int"}};
    const ModelClass grown{"c2", "Ledger", {"a9 entries", "a8 count"}};
    const std::vector<Edit> retyped = {{"Account.tv", "\tvar balance: int;", "\tvar balance: real;"}};
    std::string userText = accountText;
    userText.replace(userText.find("balance: int"), 12, "balance: real");
    play({"conflict",
          {
              {{account, ledger}, {}, "", 0, {{"Account.tv", accountText}, {"Ledger.tv", ledgerText}}, {}, {}},
              // The file in conflict stays as it is; the other file is still updated.
              {{renamed, grown},
               retyped,
               "",
               1,
               {{"Account.tv", userText},
                {"Ledger.tv", body({"class Ledger ^=", "abstract", "\tvar entries: int;", "\tvar count: int;",
                                    "interface", "\tselector entries;", "\tselector count;", "end;"})}},
               {"Account.tv:10: conflict in 'var amount: int;'"},
               {"Account.tv"}},
              // With markers it is written, and once the user resolves them the next update is clean.
              {{renamed, grown},
               {},
               "--conflict-markers",
               1,
               {{"Account.tv", body({"class Account ^=", "abstract", "<<<<<<< yours", "\tvar balance: real;",
                                     "=======", "\tvar amount: int;", ">>>>>>> model", "interface",
                                     "\tselector amount;", "\tschema !reset post ?;", "\tfunction size: int ^= ?;",
                                     "end;"})}},
               {},
               {}},
              {{renamed, grown},
               {{"Account.tv", "<<<<<<< yours\n\tvar balance: real;\n=======\n\tvar amount: int;\n>>>>>>> model\n",
                 "\tvar amount: real;\n"}},
               "",
               0,
               {},
               {},
               {"Account.tv"}},
          }});
}

TEST_F(FolderUpdate, ForeignAndStaleFilesAndAskingWithoutWriting) {
    const std::string handWritten = "class Account ^= end;\n";
    TempDir temp;
    std::string out = temp / "out", model = temp.write("model.xmi", modelText({account}));
    std::filesystem::create_directory(out);
    temp.write("out/Account.tv", handWritten);
    auto host = [&](const std::string& options) { return runHost(model + " -q -o " + out + " " + options, temp / "run"); };
    // A file the record doesn't know is left alone, unless --overwrite is given.
    HostRun foreign = host("");
    EXPECT_EQ(foreign.status, 1);
    EXPECT_NE(foreign.err.find("not written by an update here"), std::string::npos) << foreign.err;
    EXPECT_EQ(temp.read("out/Account.tv"), handWritten);
    // --check tells what would change and writes nothing; --dry-run and --diff tell how.
    HostRun check = host("--check --overwrite");
    EXPECT_EQ(check.status, 1);
    EXPECT_EQ(check.out, out + "/Account.tv\n");
    EXPECT_EQ(host("--dry-run --overwrite").out, "updated " + out + "/Account.tv\n");
    HostRun diff = host("--diff --overwrite");
    EXPECT_EQ(diff.out.rfind("--- a/Account.tv\n+++ b/Account.tv\n@@ -1,1 +1,18 @@\n-class Account ^= end;\n+//****", 0), 0u)
        << diff.out;
    EXPECT_EQ(temp.read("out/Account.tv"), handWritten);
    EXPECT_EQ(temp.read("out/.modelbridge/record").find("file Account.tv"), std::string::npos);
    EXPECT_EQ(host("--overwrite").status, 0);
    EXPECT_EQ(afterHeader(temp.read("out/Account.tv")), accountText);
    HostRun upToDate = host("--check");
    EXPECT_EQ(upToDate.status, 0);
    EXPECT_EQ(upToDate.out, "");
    // A class gone from the model: its file is stale until --prune removes it, unless the user
    // changed it.
    temp.write("model.xmi", modelText({{"c2", "Ledger", {}}}));
    HostRun stale = host("");
    EXPECT_EQ(stale.status, 0);
    EXPECT_NE(stale.err.find("Account.tv: its class is gone from the model; --prune removes it"), std::string::npos) << stale.err;
    EXPECT_TRUE(std::filesystem::exists(out + "/Account.tv"));
    EXPECT_EQ(host("--prune").status, 0);
    EXPECT_FALSE(std::filesystem::exists(out + "/Account.tv"));
    EXPECT_EQ(host("--list-outputs").out, out + "/Ledger.tv\n");
    // Without -q a line sums up what the update did.
    HostRun told = runHost(model + " -o " + out, temp / "run");
    EXPECT_NE(told.err.find("modelbridge-gen: " + out + "/: 1 unchanged\n"), std::string::npos) << told.err;
}

TEST_F(FolderUpdate, TheHeadersTimeComesFromSourceDateEpochAndStaysWhenNothingElseChanges) {
    TempDir temp;
    std::string out = temp / "out", model = temp.write("model.xmi", modelText({account}));
    auto host = [&](const std::string& epoch) {
        return runHost(model + " -q -o " + out, temp / "run", "SOURCE_DATE_EPOCH=" + epoch);
    };
    EXPECT_EQ(host("1700000000").status, 0);
    std::string first = temp.read("out/Account.tv");
    EXPECT_NE(first.find("//* File generated at 22:13:20 on Tuesday November 14th 2023 UTC\n"), std::string::npos) << first;
    EXPECT_EQ(host("1800000000").status, 0);
    EXPECT_EQ(temp.read("out/Account.tv"), first);
    // The record holds neither paths nor times.
    std::string record = temp.read("out/.modelbridge/record");
    EXPECT_EQ(record.find(temp.path()), std::string::npos);
    EXPECT_EQ(record.find("2023"), std::string::npos);
}

// An update with the model and the options as they were takes each file's text from the record
// instead of laying the class out again; any change of either lays it out anew. A record that
// says the last generation gave other text shows which road was taken.
TEST_F(FolderUpdate, AnUnchangedModelIsReadFromTheRecordAndAnyChangeIsLaidOutAgain) {
    TempDir temp;
    std::string out = temp / "out", model = temp.write("model.xmi", modelText({account}));
    auto host = [&](const std::string& options) { return runHost(model + " -q -o " + out + " " + options, temp / "run"); };
    ASSERT_EQ(host("").status, 0);
    std::string record = temp.read("out/.modelbridge/record");
    std::size_t from = record.find("\n# from ");
    ASSERT_NE(from, std::string::npos) << record;
    std::string madeFrom = record.substr(from + 8, record.find('\n', from + 1) - from - 8);
    EXPECT_EQ(madeFrom.size(), 16u);

    auto mark = [&](const std::string& name, const std::string& from, const std::string& to) {
        std::string text = temp.read(name);
        ASSERT_NE(text.find(from), std::string::npos) << text;
        temp.write(name, text.replace(text.find(from), from.size(), to));
    };
    mark("out/.modelbridge/record", "\n|end;\n", "\n|end; // as recorded\n");
    mark("out/Account.tv", "\nend;\n", "\nend; // as recorded\n");
    HostRun same = host("--dry-run");
    EXPECT_EQ(same.out, "unchanged " + out + "/Account.tv\n");
    EXPECT_EQ(host("").status, 0);
    EXPECT_NE(temp.read("out/Account.tv").find("end; // as recorded"), std::string::npos);
    // A file its user removed comes back whole, with the record's text.
    std::filesystem::remove(out + "/Account.tv");
    EXPECT_EQ(host("").status, 0);
    std::string recorded = accountText;
    recorded.replace(recorded.find("\nend;\n"), 6, "\nend; // as recorded\n");
    EXPECT_EQ(afterHeader(temp.read("out/Account.tv")), recorded);

    // Another layout lays the class out again: the file, untouched by its user, takes the text.
    EXPECT_EQ(host("--line-width 80").status, 0);
    EXPECT_EQ(afterHeader(temp.read("out/Account.tv")), accountText);
    std::string relaid = temp.read("out/.modelbridge/record");
    EXPECT_EQ(relaid.find("# from " + madeFrom), std::string::npos);
    EXPECT_NE(relaid.find("\n# from "), std::string::npos);

    // One file of several classes, and a model whose types are named in other files, keep no
    // source: their text depends on more than the model's bytes and the options.
    EXPECT_EQ(host("--single all").status, 0);
    std::string single = temp.read("out/.modelbridge/record");
    std::size_t entry = single.find("file all.tv\n");
    ASSERT_NE(entry, std::string::npos);
    EXPECT_EQ(single.substr(entry, single.find("\nend\n", entry) - entry).find("# from"), std::string::npos);
    std::string papyrus = temp.write("shop.uml", readFile(std::string(MODELBRIDGE_PROJECT_DIR) + "/tests/data/xmi2/shop-papyrus.uml"));
    ASSERT_EQ(runHost(papyrus + " -q -o " + temp / "shop", temp / "run").status, 0);
    EXPECT_EQ(temp.read("shop/.modelbridge/record").find("# from"), std::string::npos);
    ASSERT_EQ(runHost(papyrus + " -q --no-cross-file-types -o " + temp / "plain", temp / "run").status, 0);
    EXPECT_NE(temp.read("plain/.modelbridge/record").find("# from"), std::string::npos);
}

// Lines the user adds after everything generated are theirs like any other: a change of the
// model merges round them.
TEST_F(FolderUpdate, LinesAddedAfterTheEndSurviveAChangeOfTheModel) {
    play({"appended",
          {
              {{account}, {}, "", 0, {{"Account.tv", accountText}}, {}, {}},
              {{{"c1", "Account", {"a1 balance", "a2 limit", "o1 reset()", "o2 size():int"}}},
               {{"Account.tv", "// End of file.\n", "// End of file.\n// Kept: what the user wrote last.\n"}},
               "",
               0,
               {{"Account.tv", body({"class Account ^=", "abstract", "\tvar balance: int;", "\tvar limit: int;",
                                     "interface", "\tselector balance;", "\tselector limit;", "\tschema !reset post ?;",
                                     "\tfunction size: int ^= ?;", "end;"}) +
                                   "// Kept: what the user wrote last.\n"}},
               {},
               {}},
          }});
}
