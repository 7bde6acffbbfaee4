// The standard-typed facade, used as a host uses it: per-call results, refused names,
// diagnostics in parts, names beyond ASCII, reproducible headers and calls from several threads.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

#include "modelbridge/modelbridge.hpp"
#include "support/GeneratedText.h"
#include "support/TempDir.h"

namespace fs = std::filesystem;
using modelbridge::Model;

namespace {

class Facade : public testing::Test {
protected:
    fs::path write(const std::string& name, const std::string& text) const { return temp.write(name, text); }

    TempDir temp;
    const fs::path dir = temp.path();
};

const fs::path bank = fs::path(MODELBRIDGE_MODELS_DIR) / "bank.xmi";

}  // namespace

TEST_F(Facade, ParsesListsWritesAndRendersWithResultsOfEachCall) {
    Model model = Model::parse(bank);
    ASSERT_TRUE(model.ok());
    EXPECT_EQ(model.classes(), (std::vector<std::string>{"Account", "Customer", "SavingsAccount"}));
    // What the text leaves out is information: the model's data types.
    ASSERT_EQ(model.diagnostics().size(), 1u);
    EXPECT_EQ(model.diagnostics()[0].severity, modelbridge::Severity::information);
    EXPECT_EQ(model.diagnostics()[0].text, "Left out: 4 data types not generated: int, double, boolean, void");
    EXPECT_TRUE(Model::parse(bank, modelbridge::Options::specified()).diagnostics().empty());
    EXPECT_EQ(model.report().rfind("Parsed 116 lines from file 'bank.xmi' in ", 0), 0u) << model.report();

    // A directory without its separator is joined properly.
    modelbridge::Result written = model.writeClass("Account", dir);
    EXPECT_TRUE(written);
    EXPECT_TRUE(written.diagnostics.empty());
    std::string account = readFile(dir / "Account.tv");
    EXPECT_NE(account.find("//* File: '" + (dir / "Account.tv").string() + "'\n"), std::string::npos) << account;
    EXPECT_EQ(afterHeader(model.renderClass("Account")), afterHeader(account));
    EXPECT_EQ(model.renderClass("Nobody"), "");

    // Unknown names are refused before anything is written.
    modelbridge::Result unknown = model.writeClass("Nobody", dir);
    EXPECT_FALSE(unknown);
    ASSERT_EQ(unknown.diagnostics.size(), 1u);
    EXPECT_EQ(unknown.diagnostics[0].text, "the model has no class 'Nobody'");
    EXPECT_FALSE(fs::exists(dir / "Nobody.tv"));
    modelbridge::Result mixed = model.writeClasses({"Customer", "Nobody", "Else"}, dir / "some.tv");
    EXPECT_FALSE(mixed);
    EXPECT_EQ(mixed.diagnostics.size(), 2u);
    EXPECT_FALSE(fs::exists(dir / "some.tv"));

    EXPECT_TRUE(model.writeClasses({"SavingsAccount", "Account"}, dir / "pair"));
    std::string pair = afterHeader(readFile(dir / "pair.tv"));
    EXPECT_LT(pair.find("class Account ^="), pair.find("final class SavingsAccount ^="));
    EXPECT_TRUE(model.writeClasses({}, dir / "every.tv"));
    EXPECT_NE(readFile(dir / "every.tv").find("class Customer ^="), std::string::npos);

    // A failed write fails alone; the next good one succeeds.
    modelbridge::Result failed = model.writeClass("Account", dir / "missing" / "deeper");
    EXPECT_FALSE(failed);
    ASSERT_EQ(failed.diagnostics.size(), 1u);
    const modelbridge::Diagnostic& cause = failed.diagnostics[0];
    EXPECT_EQ(cause.severity, modelbridge::Severity::fatal);
    EXPECT_EQ(cause.file, "");
    // No stand-in for a file opens the text; the system's reason closes it.
    std::string refused = "Unable to open file '" + (dir / "missing/deeper/Account.tv").string() + "' for 'write' access";
    EXPECT_EQ(cause.text, "Fatal error! " + refused + ": No such file or directory.");
    EXPECT_EQ(cause.message, refused + ": No such file or directory.");
    EXPECT_TRUE(model.writeClass("Customer", dir));

    // A file in the way of the folder, and a folder in the way of the file.
    std::ofstream(dir / "plain") << "x";
    modelbridge::Result underFile = model.writeClass("Account", dir / "plain");
    ASSERT_EQ(underFile.diagnostics.size(), 1u);
    EXPECT_NE(underFile.diagnostics[0].text.find("for 'write' access: Not a directory."), std::string::npos);
    std::filesystem::create_directories(dir / "held" / "Account.tv");
    modelbridge::Result onFolder = model.writeClass("Account", dir / "held");
    ASSERT_EQ(onFolder.diagnostics.size(), 1u);
    EXPECT_NE(onFolder.diagnostics[0].text.find("for 'write' access: Is a directory."), std::string::npos);

    // A model that can't be read says why.
    Model missing = Model::parse(dir / "nowhere.xmi");
    ASSERT_FALSE(missing.diagnostics().empty());
    EXPECT_NE(missing.diagnostics()[0].message.find("for 'read' access: No such file or directory."), std::string::npos);
    Model folder = Model::parse(dir);
    ASSERT_FALSE(folder.diagnostics().empty());
    EXPECT_NE(folder.diagnostics()[0].text.find(": Is a directory."), std::string::npos);
}

TEST_F(Facade, DiagnosticsInPartsAndOptions) {
    Model bad = Model::parse(write("bad.xmi", "<XMI>\n<a b=c/>\n</XMI>\n"));
    EXPECT_FALSE(bad.ok());
    ASSERT_EQ(bad.diagnostics().size(), 1u);
    const modelbridge::Diagnostic& syntax = bad.diagnostics()[0];
    EXPECT_EQ(syntax.severity, modelbridge::Severity::fatal);
    EXPECT_EQ(syntax.file, (dir / "bad.xmi").string());
    EXPECT_EQ(syntax.line, 2);
    EXPECT_EQ(syntax.column, 6);
    EXPECT_EQ(syntax.message, "Syntax error at ''c''.");
    EXPECT_EQ(syntax.text, "bad.xmi (2,6): Fatal error! Syntax error at ''c''.");
    EXPECT_FALSE(bad.writeClass("Account", dir));

    modelbridge::Options narrow;
    narrow.lineWidth = 5;
    Model refused = Model::parse(bank, narrow);
    EXPECT_FALSE(refused.ok());
    ASSERT_EQ(refused.diagnostics().size(), 1u);
    EXPECT_EQ(refused.diagnostics()[0].text, "the line width 5 is out of bounds: it must be from 20 to 10000");

    modelbridge::Options layout;
    layout.lineWidth = 30;
    layout.indent = "  ";
    layout.filePrefix = "tv_";
    layout.reproducible = true;
    setenv("SOURCE_DATE_EPOCH", "1700000000", 1);
    Model laidOut = Model::parse(bank, layout);
    std::string customer = laidOut.renderClass("Customer");
    unsetenv("SOURCE_DATE_EPOCH");
    EXPECT_NE(customer.find("//* File generated at 22:13:20 on Tuesday November 14th 2023 UTC\n"), std::string::npos)
        << customer;
    EXPECT_NE(customer.find("\n  var accounts: those x: set\n"), std::string::npos) << customer;
    EXPECT_TRUE(laidOut.writeClass("Customer", dir));
    EXPECT_TRUE(fs::exists(dir / "tv_Customer.tv"));
    EXPECT_EQ(Model::parse(bank).renderClass("Customer").find("22:13:20 on Tuesday"), std::string::npos);

    // Every extension by default; the specified options have none, and take them back by name:
    // a class inside a subsystem is found only with "anywhere".
    fs::path nested = write("nested.xmi", "<XMI><XMI.content><UML:Model><UML:Namespace.ownedElement><UML:Subsystem>"
                                             "<UML:Class xmi.id='n' name='Inner'/></UML:Subsystem>"
                                             "</UML:Namespace.ownedElement></UML:Model></XMI.content></XMI>");
    modelbridge::Options switched = modelbridge::Options::specified();
    EXPECT_TRUE(Model::parse(nested, switched).classes().empty());
    EXPECT_TRUE(setImportSwitch(switched.extensions, "anywhere", true));
    EXPECT_FALSE(setImportSwitch(switched.extensions, "everywhere", true));
    EXPECT_EQ(Model::parse(nested, switched).classes(), std::vector<std::string>{"Inner"});
    EXPECT_EQ(Model::parse(nested).classes(), std::vector<std::string>{"Inner"});
}

// A Latin-1 model's names come back in UTF-8, and the same text finds them again and names
// their files once encoded.
TEST_F(Facade, NamesBeyondAscii) {
    const std::string header = "<XMI><XMI.content><UML:Model xmi.id='m'><UML:Namespace.ownedElement>";
    const std::string footer = "</UML:Namespace.ownedElement></UML:Model></XMI.content></XMI>\n";
    Model latin1 = Model::parse(write("latin1.xmi", "<?xml version='1.0' encoding='ISO-8859-1'?>" + header +
                                                        "<UML:Class xmi.id='k' name='Gr\xFC\xDF'></UML:Class>" + footer));
    ASSERT_TRUE(latin1.ok());
    EXPECT_EQ(latin1.classes(), std::vector<std::string>{"Gr\xC3\xBC\xC3\x9F"});
    EXPECT_TRUE(latin1.writeClass("Gr\xC3\xBC\xC3\x9F", dir));
    EXPECT_TRUE(fs::exists(dir / "Gr\xC3\xBC\xC3\x9F.tv"));
}

// Several threads, each with models of its own, get what one thread gets.
TEST_F(Facade, CallsFromSeveralThreads) {
    Model shared = Model::parse(bank);
    const std::string expected = afterHeader(shared.renderClass("SavingsAccount"));
    std::vector<int> matches(4, 0);
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&, t] {
            for (int round = 0; round < 10; ++round) {
                Model own = Model::parse(bank);
                Model copy = shared;
                if (own.classes().size() == 3 && afterHeader(own.renderClass("SavingsAccount")) == expected &&
                    afterHeader(copy.renderClass("SavingsAccount")) == expected &&
                    own.writeClass("Account", dir / ("t" + std::to_string(t))).diagnostics.size() == 1)
                    ++matches[std::size_t(t)];
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(matches, std::vector<int>(4, 10));
}

// An update through the facade: a report file by file; the user's body stays when the model
// renames its operation; unknown names are refused before anything is written.
TEST_F(Facade, UpdatesAFolderKeepingTheUsersBodies) {
    fs::path out = dir / "out";
    Model model = Model::parse(bank);
    UpdateReport first = model.update(out);
    ASSERT_TRUE(first.ok) << first.error;
    ASSERT_EQ(first.files.size(), 3u);
    EXPECT_EQ(first.files[0].file, "Account.tv");
    EXPECT_EQ(first.files[0].outcome, FileOutcome::created);
    std::string account = temp.read("out/Account.tv");
    std::string filled = account;
    filled.replace(filled.find("schema !deposit (amount: real) post ?;"), 38, "schema !deposit (amount: real) post balance! = 1;");
    temp.write("out/Account.tv", filled);
    std::string renamed = readFile(bank);
    renamed.replace(renamed.find("\"deposit\""), 9, "\"payIn\"");
    Model changed = Model::parse(write("renamed.xmi", renamed));
    UpdateOptions check;
    check.write = false;
    check.diff = true;
    UpdateReport asked = changed.update(out, check);
    ASSERT_TRUE(asked.ok) << asked.error;
    EXPECT_EQ(asked.files[0].outcome, FileOutcome::merged);
    EXPECT_NE(asked.files[0].diff.find("+\tschema !payIn (amount: real) post balance! = 1;\n"), std::string::npos)
        << asked.files[0].diff;
    EXPECT_EQ(temp.read("out/Account.tv"), filled);
    UpdateReport done = changed.update(out);
    EXPECT_TRUE(done.ok);
    EXPECT_EQ(done.files[1].outcome, FileOutcome::unchanged);
    EXPECT_NE(temp.read("out/Account.tv").find("schema !payIn (amount: real) post balance! = 1;"), std::string::npos);
    UpdateReport refused = changed.update(out, {}, {"Nobody"});
    EXPECT_EQ(refused.error, "the model has no class 'Nobody'");
    EXPECT_TRUE(refused.files.empty());
    temp.write("out/.modelbridge/record", "modelbridge-record 1\nfile ../A.tv\n");
    EXPECT_EQ(changed.update(out).error, out.string() + "/.modelbridge/record:2: '../A.tv' is not a plain file name");
}
