// The sample host, run as a user runs it: exit codes, what goes to which stream, the files and
// folders it makes.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <sstream>
#include <string>

#include "support/HostRun.h"

namespace {

std::string models(const std::string& name) { return std::string(MODELBRIDGE_MODELS_DIR) + "/" + name; }

class SampleHost : public testing::Test {
protected:

    // Runs the host with the two streams caught apart (in files beside the test's folder).
    HostRun run(const std::string& arguments) const { return runHost(arguments, dir); }

    TempDir temp;
    const std::string dir = temp.path();
};

bool contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

}  // namespace

// Standard output carries only data, the report and errors go to standard error, and -q drops
// the report alone.
TEST_F(SampleHost, DataOnStandardOutputTheReportAndErrorsOnStandardError) {
    HostRun bank = run(models("bank.xmi") + " -o " + dir);
    EXPECT_EQ(bank.status, 0) << bank.err;
    EXPECT_EQ(bank.out, dir + "/Account.tv\n" + dir + "/Customer.tv\n" + dir + "/SavingsAccount.tv\n");
    EXPECT_EQ(bank.err.rfind("Parsed 116 lines from file 'bank.xmi' in ", 0), 0u) << bank.err;
    // After the parse report, what the text leaves out: the first five items of each kind, or
    // with --verbose every one; with -q nothing.
    EXPECT_TRUE(contains(bank.err, " seconds\nLeft out: 4 data types not generated: int, double, boolean, void\n"))
        << bank.err;
    std::string types;
    for (const char* type : {"a", "b", "c", "d", "e", "f"}) types += std::string("<UML:DataType xmi.id='") + type + "' name='" + type + "'/>";
    std::string many = temp.write("types.xmi", "<XMI><XMI.content><UML:Model><UML:Namespace.ownedElement>" + types +
                                                   "</UML:Namespace.ownedElement></UML:Model></XMI.content></XMI>");
    EXPECT_TRUE(contains(run(many + " --list").err, "Left out: 6 data types not generated: a, b, c, d, e, and 1 more\n"));
    EXPECT_TRUE(contains(run(many + " --list -v").err, "Left out: 6 data types not generated: a, b, c, d, e, f\n"));
    EXPECT_EQ(run(many + " --list -q").err, "modelbridge-gen: the model holds no class\n");
    std::string savings = readFile(dir + "/SavingsAccount.tv");
    EXPECT_TRUE(contains(savings, "final class SavingsAccount ^= inherits Account\n")) << savings;
    std::string customer = readFile(dir + "/Customer.tv");
    EXPECT_TRUE(contains(customer, "\tvar accounts: those x: set of ref from Account :- # x >= 1;\n")) << customer;

    HostRun list = run(models("ledger-long.xmi") + " --list");
    EXPECT_EQ(list.status, 0);
    EXPECT_EQ(list.out, "Entry\nJournal\n");
    EXPECT_TRUE(contains(list.err, "Parsed ")) << list.err;
    HostRun piped = run(models("ledger-long.xmi") + " --list --progress");  // progress only on a terminal
    EXPECT_FALSE(contains(piped.err, "Parsed line")) << piped.err;
    HostRun quiet = run(models("ledger-long.xmi") + " --list -q");
    EXPECT_EQ(quiet.out, list.out);
    EXPECT_EQ(quiet.err, "");

    HostRun single = run(models("ledger-long.xmi") + " -o " + dir + " --single ledger --class Journal --quiet");
    EXPECT_EQ(single.status, 0) << single.err;
    EXPECT_EQ(single.out, dir + "/ledger.tv\n");
    std::string ledger = readFile(dir + "/ledger.tv");
    EXPECT_TRUE(contains(ledger, "class Journal ^=\nabstract\n\tvar entries: set of Entry;\nconfined\n")) << ledger;
    EXPECT_FALSE(contains(ledger, "class Entry"));

    // A UML 2 model saved as XMI 2.x is read without asking.
    HostRun uml2 = run(std::string(MODELBRIDGE_PROJECT_DIR) + "/tests/data/xmi2/shop-papyrus.uml -q -o " + dir);
    EXPECT_EQ(uml2.status, 0) << uml2.err;
    EXPECT_TRUE(contains(uml2.out, dir + "/Special.tv\n")) << uml2.out;
    EXPECT_TRUE(contains(readFile(dir + "/Book.tv"), "\nfinal class Book ^= inherits Item\n"));

    HostRun bad = run(temp.write("bad.xmi", "<XMI>\n<a b=c/>\n</XMI>\n") + " -q -o " + dir);
    EXPECT_EQ(bad.status, 1);
    EXPECT_EQ(bad.out, "");
    EXPECT_EQ(bad.err, "bad.xmi (2,6): Fatal error! Syntax error at ''c''.\n");
    HostRun missing = run(dir + "/none.xmi");
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.err, "modelbridge-gen: cannot read the model '" + dir + "/none.xmi': No such file or directory\n");
}

// The output folder is made with its parents; what can't be made, or nothing to generate, ends
// with one line on standard error and exit 1, and no empty file is written.
TEST_F(SampleHost, FoldersAreMadeAndRunsThatWriteNothingFail) {
    HostRun nested = run(models("bank.xmi") + " -q -o " + dir + "/new/deep --class Account");
    EXPECT_EQ(nested.status, 0) << nested.err;
    EXPECT_EQ(nested.out, dir + "/new/deep/Account.tv\n");
    EXPECT_TRUE(contains(readFile(dir + "/new/deep/Account.tv"), "// End of file.\n"));

    temp.write("plain", "a file\n");
    HostRun blocked = run(models("bank.xmi") + " -q -o " + dir + "/plain/sub");
    EXPECT_EQ(blocked.status, 1);
    EXPECT_EQ(blocked.out, "");
    EXPECT_EQ(blocked.err,
              "modelbridge-gen: cannot make the output folder '" + dir + "/plain/sub/': Not a directory\n");

    HostRun someMissing = run(models("bank.xmi") + " -q -o " + dir + " --class Nope --class Customer --class Nope");
    EXPECT_EQ(someMissing.status, 1);
    EXPECT_EQ(someMissing.out, dir + "/Customer.tv\n");
    EXPECT_EQ(someMissing.err, "modelbridge-gen: the model has no class 'Nope'\n");
    HostRun noneFound = run(models("bank.xmi") + " -q -o " + dir + "/none --class Nope --single all");
    EXPECT_EQ(noneFound.status, 1);
    EXPECT_EQ(noneFound.err, "modelbridge-gen: the model has no class 'Nope'\nmodelbridge-gen: nothing to generate\n");
    struct stat info;
    EXPECT_NE(stat((dir + "/none").c_str(), &info), 0);  // no folder for nothing
    EXPECT_NE(stat((dir + "/Nope.tv").c_str(), &info), 0);

    // Classes off the specified path: the host finds them, and names the option that finds them
    // when the specified road is asked for.
    const std::string offModel = std::string(MODELBRIDGE_PROJECT_DIR) + "/tests/data/anywhere/magicdraw.xmi";
    const std::string offPath =
        "modelbridge-gen: no class stands on the path that XMI 1.x specifies, but 2 stand "
        "elsewhere in the model; --anywhere finds them\n";
    HostRun plain = run(offModel + " -q --specified -o " + dir);
    EXPECT_EQ(plain.status, 1);
    EXPECT_EQ(plain.err, offPath + "modelbridge-gen: nothing to generate\n");
    HostRun listed = run(offModel + " -q --list --specified");
    EXPECT_EQ(listed.status, 0);
    EXPECT_EQ(listed.out, "");
    EXPECT_EQ(listed.err, offPath);
    HostRun anywhere = run(offModel + " -q -o " + dir);
    EXPECT_EQ(anywhere.status, 0) << anywhere.err;
    EXPECT_EQ(anywhere.out, dir + "/Inner.tv\n" + dir + "/Outer.tv\n");

    // A name beyond ASCII is listed, asked for and written as the model spells it.
    temp.write("kunde.xmi", "<XMI><XMI.content><UML:Model xmi.id='m'><UML:Namespace.ownedElement>"
                            "<UML:Class xmi.id='k' name='Kund\xC3\xA9'></UML:Class>"
                            "</UML:Namespace.ownedElement></UML:Model></XMI.content></XMI>\n");
    HostRun named = run(dir + "/kunde.xmi -q -o " + dir + " --class Kund\xC3\xA9");
    EXPECT_EQ(named.status, 0) << named.err;
    EXPECT_EQ(named.out, dir + "/Kund\xC3\xA9.tv\n");

    HostRun empty = run(temp.write("empty.xmi", "<XMI><XMI.content></XMI.content></XMI>\n") + " -q --anywhere -o " + dir);
    EXPECT_EQ(empty.status, 1);
    EXPECT_EQ(empty.err, "modelbridge-gen: the model holds no class\nmodelbridge-gen: nothing to generate\n");
}

// Options that can't go together, and options of one value given twice, are refused with one
// line and exit 2 before anything is read; --profile is no option of the program.
TEST_F(SampleHost, OptionsThatCantGoTogetherAreRefused) {
    struct Row {
        const char* arguments;
        const char* reason;
    };
    const Row rows[] = {
        {"--list -o out", "--list and -o can't go together: --list only lists the classes and writes nothing"},
        {"--class A --list", "--list and --class can't go together: --list only lists the classes and writes nothing"},
        {"--list --single all", "--list and --single can't go together: --list only lists the classes and writes nothing"},
        {"--list --prune", "--list and --prune can't go together: --list only lists the classes and writes nothing"},
        {"--check --dry-run", "--check and --dry-run can't go together: each asks for its own account of an update"},
        {"--diff --check", "--check and --diff can't go together: each asks for its own account of an update"},
        {"--dry-run --list-outputs", "--dry-run and --list-outputs can't go together: each asks for its own account of an update"},
        {"--list-outputs --overwrite", "--list-outputs and --overwrite can't go together: --list-outputs updates nothing"},
        {"-q --verbose", "--quiet and --verbose can't go together: one asks for less and the other for more"},
        {"-o a -o b", "-o is given twice; it takes one value"},
        {"--single a --single b", "--single is given twice; it takes one value"},
        {"--line-width 80 --line-width 90", "--line-width is given twice; it takes one value"},
    };
    for (const Row& row : rows) {
        HostRun refused = run(models("bank.xmi") + " " + row.arguments);
        EXPECT_EQ(refused.status, 2) << row.arguments;
        EXPECT_EQ(refused.err, std::string("modelbridge-gen: ") + row.reason + "\n") << row.arguments;
        EXPECT_EQ(refused.out, "") << row.arguments;
    }
    HostRun profile = run(models("bank.xmi") + " --profile -o " + dir);
    EXPECT_EQ(profile.status, 2);
    EXPECT_TRUE(contains(profile.err, "unknown option --profile")) << profile.err;
    // Options that do go together still run: several classes, and a layout with an update.
    HostRun together = run(models("bank.xmi") + " -q --class Account --class Customer --line-width 80 --check -o " + dir);
    EXPECT_EQ(together.status, 1) << together.err;  // nothing generated yet: both files would change
    EXPECT_EQ(together.out, dir + "/Account.tv\n" + dir + "/Customer.tv\n");
}

// A model or folder the system refuses is named with the system's reason, in the program's own
// words; as a user without the right to write, a read-only folder says so.
TEST_F(SampleHost, FileErrorsCarryTheSystemsReason) {
    HostRun missing = run(dir + "/nowhere.xmi -o " + dir);
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.err, "modelbridge-gen: cannot read the model '" + dir + "/nowhere.xmi': No such file or directory\n");
    HostRun folder = run(dir + " --list");
    EXPECT_EQ(folder.status, 1);
    EXPECT_EQ(folder.err, "modelbridge-gen: cannot read the model '" + dir + "': Is a directory\n");
    std::filesystem::create_directories(dir + "/Account.tv");
    HostRun inTheWay = run(models("bank.xmi") + " -q --class Account -o " + dir);
    EXPECT_EQ(inTheWay.status, 1);
    EXPECT_TRUE(contains(inTheWay.err, "Account.tv': Is a directory\n")) << inTheWay.err;

    // Root may write anywhere: the program then runs as nobody, where the system lets it (and
    // where nobody may run the program at all: the build may lie in a folder closed to others).
    std::string launcher = geteuid() == 0 ? "setpriv --reuid=65534 --regid=65534 --clear-groups" : "";
    std::string model = temp.write("bank.xmi", readFile(models("bank.xmi")));
    std::string locked = dir + "/locked";
    ASSERT_EQ(mkdir(locked.c_str(), 0555), 0);
    chmod(locked.c_str(), 0555);
    chmod(dir.c_str(), 0755);
    if (std::system((launcher + " test -x " MODELBRIDGE_GEN_PATH).c_str()) == 0) {
        HostRun readOnly = runHost(model + " -q -o " + locked, dir, "", launcher);
        EXPECT_EQ(readOnly.status, 1);
        EXPECT_EQ(readOnly.err, "modelbridge-gen: cannot make '" + locked + "/.modelbridge': Permission denied\n");
    } else {
        std::printf("the program can't be run by another user here: the read-only folder is not tried\n");
    }
    chmod(locked.c_str(), 0755);

    // A read-only file system, mounted in a namespace of the run's own where the system allows one.
    std::string mounted = dir + "/mounted";
    ASSERT_EQ(mkdir(mounted.c_str(), 0755), 0);
    if (std::system("unshare -rm true >/dev/null 2>&1") != 0) {
        std::printf("no mount namespace here: the read-only file system is not tried\n");
        return;
    }
    HostRun readOnlySystem = runHost(model + " -q -o " + mounted, dir, "",
                                     "unshare -rm sh -c 'mount -t tmpfs -o ro none " + mounted + " && exec \"$0\" \"$@\"'");
    EXPECT_EQ(readOnlySystem.status, 1);
    EXPECT_EQ(readOnlySystem.err, "modelbridge-gen: cannot make '" + mounted + "/.modelbridge': Read-only file system\n");
}

// Formatting options reach the generated text; bad values and bad usage end with exit 2 before
// anything is read or written.
TEST_F(SampleHost, FormattingOptionsAndRefusedValues) {
    HostRun laidOut = run(models("bank.xmi") + " -q -o " + dir +
                          " --class Customer --line-width 30 --indent '\\t.' --file-prefix tv_");
    EXPECT_EQ(laidOut.status, 0) << laidOut.err;
    EXPECT_EQ(laidOut.out, dir + "/tv_Customer.tv\n");
    std::string customer = readFile(dir + "/tv_Customer.tv");
    EXPECT_TRUE(contains(customer, "\n\t.var accounts: those x: set\n\t.\t.of ref from Account :- # x\n\t.\t.>= 1;\n"))
        << customer;

    struct Refused {
        const char* arguments;
        const char* message;
    };
    const Refused refused[] = {
        {"--line-width 19", "modelbridge-gen: the line width 19 is out of bounds: it must be from 20 to 10000\n"},
        {"--line-width -5", "modelbridge-gen: --line-width needs a whole number of columns, not '-5'\n"},
        {"--indent ''", "modelbridge-gen: the indentation is empty\n"},
        {"--file-prefix a/", "modelbridge-gen: the file prefix holds a path separator\n"},
        {"--indent", "modelbridge-gen: --indent needs a value\n"},
    };
    for (const Refused& row : refused) {
        HostRun result = run(models("bank.xmi") + " -o " + dir + "/refused " + row.arguments);
        EXPECT_EQ(result.status, 2) << row.arguments;
        EXPECT_EQ(result.err, row.message) << row.arguments;
        EXPECT_EQ(result.out, "") << row.arguments;
    }
    struct stat info;
    EXPECT_NE(stat((dir + "/refused").c_str(), &info), 0);
    EXPECT_EQ(run("").status, 2);
    EXPECT_EQ(run(models("bank.xmi") + " --unknown").status, 2);
}

// --version names the host's and the library's version; the files the library writes name it too.
TEST_F(SampleHost, VersionsOfTheHostTheLibraryAndItsFiles) {
    const int major = MODELBRIDGE_TEST_VERSION_0, minor = MODELBRIDGE_TEST_VERSION_1;
    std::string version = std::to_string(major) + "." + std::to_string(minor) + "." +
                          std::to_string(MODELBRIDGE_TEST_VERSION_2) + "." + std::to_string(MODELBRIDGE_TEST_VERSION_3);
    HostRun shown = run("--version");
    EXPECT_EQ(shown.status, 0);
    EXPECT_EQ(shown.out, "modelbridge-gen " + version + "\nlibModelBridge " + version + "\n");

    ASSERT_EQ(run(models("bank.xmi") + " -q -o " + dir + " --class Account").status, 0);
    std::string stamp = "\n//* Generated by Tarvane Studio Model Bridge version " + std::to_string(major) + "." +
                        (minor < 10 ? "0" : "") + std::to_string(minor);
    EXPECT_TRUE(contains(readFile(dir + "/Account.tv"), stamp)) << stamp;
}

namespace {

// The options and the exit codes a text names: on a line whose first word (after blanks, a
// manual page's macro or a table's bar) is a digit from 0 to 2, that digit; on one whose first
// word starts with a dash, every word that does. A manual page's "\-" is a dash.
std::set<std::string> optionsAndCodes(const std::string& text) {
    std::set<std::string> found;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        for (std::size_t at; (at = line.find("\\-")) != std::string::npos;) line.erase(at, 1);
        std::istringstream words(line);
        std::string word;
        words >> word;
        if (word == ".B" || word == ".BI" || word == ".BR" || word == "|") words >> word;
        if (word.size() == 1 && word[0] >= '0' && word[0] <= '2') found.insert(word);
        if (word.size() < 2 || word[0] != '-') continue;
        do
            if (word.size() > 1 && word[0] == '-') found.insert(word.substr(0, word.find_first_of(",\"")));
        while (words >> word);
    }
    return found;
}

}  // namespace

// --help, the manual page and the README's table of exit codes describe the same options and
// the same exit codes.
TEST_F(SampleHost, HelpManualAndReadmeAgree) {
    HostRun help = run("--help");
    EXPECT_EQ(help.status, 0);
    std::set<std::string> named = optionsAndCodes(help.out);
    EXPECT_EQ(named.size(), 51u + 3u);
    EXPECT_EQ(named, optionsAndCodes(readFile(std::string(MODELBRIDGE_PROJECT_DIR) + "/examples/modelbridge-gen.1.in")));
    std::set<std::string> codes = optionsAndCodes(readFile(std::string(MODELBRIDGE_PROJECT_DIR) + "/README.md"));
    for (const char* code : {"0", "1", "2"}) EXPECT_EQ(codes.count(code), 1u) << code;
}

// The shell's completion offers every option that --help names, and no other; run by bash, it
// completes an option and the model's classes after --class.
TEST_F(SampleHost, CompletionOffersEveryOption) {
    std::set<std::string> named = optionsAndCodes(run("--help").out);
    for (const char* code : {"0", "1", "2"}) named.erase(code);
    const std::string script = std::string(MODELBRIDGE_PROJECT_DIR) + "/examples/modelbridge-gen.bash-completion";
    std::string text = readFile(script);
    std::size_t start = text.find("options=\"");
    ASSERT_NE(start, std::string::npos);
    start += 9;
    std::istringstream words(text.substr(start, text.find('"', start) - start));
    std::set<std::string> offered;
    for (std::string word; words >> word;) offered.insert(word);
    EXPECT_EQ(offered, named);

    std::string complete = "bash -c 'shopt -s extglob; . " + script + "; COMP_WORDS=(\"$0\" \"$1\" --class S); COMP_CWORD=3; "
                           "_modelbridge_gen; echo \"${COMPREPLY[*]}\"; COMP_WORDS=(x --dry); COMP_CWORD=1; _modelbridge_gen; "
                           "echo \"${COMPREPLY[*]}\"' " MODELBRIDGE_GEN_PATH " " + models("bank.xmi") + " >" + dir + "/completed";
    ASSERT_EQ(std::system(complete.c_str()), 0);
    EXPECT_EQ(readFile(dir + "/completed"), "SavingsAccount\n--dry-run\n");
}

// Each switch of the library's extensions is an option of its own, on by default: decoded
// references and model text that is never a comment change the text; without them, switched
// off one by one or all at once, it is as specified.
TEST_F(SampleHost, SwitchesOfTheExtensionsAreOptions) {
    TempDir models;
    std::string model = models.write(
        "m.xmi",
        "<XMI><XMI.content><UML:Model><UML:Namespace.ownedElement><UML:Class xmi.id='c' name='Tally'>"
        "<UML:Classifier.feature><UML:Attribute name='//count' visibility='private'></UML:Attribute>"
        "<UML:Attribute name='a&amp;b' visibility='private'></UML:Attribute></UML:Classifier.feature>"
        "</UML:Class></UML:Namespace.ownedElement></UML:Model></XMI.content></XMI>");
    struct Row {
        const char* options;
        const char* text;
    };
    const char* specified = "abstract\n\tvar\n\t//count\n\t: ?;\n\tvar a[[EntityRef'amp']]b: ?;\n";
    const char* decoded = "abstract\n\tvar //count: ?;\n\tvar a&b: ?;\n";
    const Row rows[] = {
        {"--specified", specified},
        {"--no-plain-model-text --no-decode-references --no-safe-names", specified},
        {"", "abstract\n\tvar __count: ?;\n\tvar a_b: ?;\n"},
        {"--no-safe-names", decoded},
        {"--specified --plain-model-text --decode-references", decoded},
    };
    for (const Row& row : rows) {
        HostRun host = run(model + " -q -o " + dir + " " + row.options);
        EXPECT_EQ(host.status, 0) << host.err;
        std::string text = readFile(dir + "/Tally.tv");
        EXPECT_TRUE(contains(text, row.text)) << row.options << "\n" << text;
    }
    EXPECT_EQ(run(model + " --no-everywhere").status, 2);
}
