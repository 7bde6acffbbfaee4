// The sample host, run as a user runs it.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

namespace {

struct HostRun {
    int status;
    std::string output;  // standard output and error together
};

HostRun run(const std::string& arguments) {
    std::string command = std::string(MODELBRIDGE_GEN_PATH) + " " + arguments + " 2>&1";
    FILE* pipe = popen(command.c_str(), "r");
    HostRun result{-1, {}};
    if (pipe == nullptr) return result;
    char buffer[4096];
    while (std::fgets(buffer, sizeof buffer, pipe) != nullptr) result.output += buffer;
    int status = pclose(pipe);
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return result;
}

std::string models(const std::string& name) { return std::string(MODELBRIDGE_MODELS_DIR) + "/" + name; }

std::string slurp(const std::string& path) {
    std::ifstream in(path);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

class SampleHost : public testing::Test {
protected:
    void SetUp() override {
        char pattern[] = "/tmp/modelbridge-gen-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        dir = pattern;
    }
    void TearDown() override { std::system(("rm -rf " + dir).c_str()); }
    std::string dir;
};

}  // namespace

TEST_F(SampleHost, GeneratesEveryClassOfBothExampleModels) {
    HostRun bank = run(models("bank.xmi") + " -o " + dir);
    EXPECT_EQ(bank.status, 0) << bank.output;
    EXPECT_NE(bank.output.find("Parsed 116 lines from file 'bank.xmi'"), std::string::npos) << bank.output;
    EXPECT_NE(bank.output.find("wrote " + dir + "/SavingsAccount.tv"), std::string::npos) << bank.output;
    std::string savings = slurp(dir + "/SavingsAccount.tv");
    EXPECT_NE(savings.find("final class SavingsAccount ^= inherits Account\n"), std::string::npos) << savings;
    std::string customer = slurp(dir + "/Customer.tv");
    EXPECT_NE(customer.find("\tvar accounts: those x: set of ref from Account :- # x >= 1;\n"), std::string::npos)
        << customer;

    HostRun list = run(models("ledger-long.xmi") + " --list");
    EXPECT_EQ(list.status, 0);
    EXPECT_NE(list.output.find("\nEntry\nJournal\n"), std::string::npos) << list.output;

    HostRun single = run(models("ledger-long.xmi") + " -o " + dir + " --single ledger --class Journal");
    EXPECT_EQ(single.status, 0) << single.output;
    std::string ledger = slurp(dir + "/ledger.tv");
    EXPECT_NE(ledger.find("class Journal ^=\nabstract\n\tvar entries: set of Entry;\nconfined\n"), std::string::npos)
        << ledger;
    EXPECT_EQ(ledger.find("class Entry"), std::string::npos);
}

// A UML 2 model saved as XMI 2.x is read without asking.
TEST_F(SampleHost, ReadsXmi2Models) {
    std::string model = std::string(MODELBRIDGE_PROJECT_DIR) + "/tests/data/xmi2/shop-papyrus.uml";
    HostRun uml2 = run(model + " -o " + dir);
    EXPECT_EQ(uml2.status, 0) << uml2.output;
    EXPECT_NE(uml2.output.find("wrote " + dir + "/Special.tv"), std::string::npos) << uml2.output;
    EXPECT_NE(slurp(dir + "/Book.tv").find("\nfinal class Book ^= inherits Item\n"), std::string::npos);
}

TEST_F(SampleHost, FailuresAreReportedWithAnExitCode) {
    HostRun missing = run(dir + "/none.xmi -o " + dir);
    EXPECT_EQ(missing.status, 1);
    EXPECT_NE(missing.output.find("Failed to open '" + dir + "/none.xmi' for parsing!"), std::string::npos)
        << missing.output;

    std::ofstream(dir + "/bad.xmi") << "<XMI>\n<a b=c/>\n</XMI>\n";
    HostRun bad = run(dir + "/bad.xmi -o " + dir);
    EXPECT_EQ(bad.status, 1);
    EXPECT_NE(bad.output.find("bad.xmi (2,6): Fatal error! Syntax error at ''c''."), std::string::npos) << bad.output;

    HostRun nowhere = run(models("bank.xmi") + " -o " + dir + "/no/such/dir");
    EXPECT_EQ(nowhere.status, 1);
    EXPECT_NE(nowhere.output.find("Unable to open file '" + dir + "/no/such/dir/Account.tv' for 'write' access."),
              std::string::npos)
        << nowhere.output;

    EXPECT_EQ(run("").status, 2);
    HostRun help = run("--help");
    EXPECT_EQ(help.status, 0);
    EXPECT_NE(help.output.find("usage: modelbridge-gen MODEL "), std::string::npos);
}

// A model whose classes stand off the specified path: the host names the option that finds
// them and fails a generation; with the option it writes them. A model without any class says so.
TEST_F(SampleHost, ClassesOffThePathAndModelsWithoutClasses) {
    std::ofstream(dir + "/nested.xmi") << "<XMI><XMI.content><UML:Model xmi.id='m'><UML:Namespace.ownedElement>"
                                          "<UML:Model xmi.id='v' name='Logical View'><UML:Namespace.ownedElement>"
                                          "<UML:Class xmi.id='a' name='Alpha'/><UML:Class xmi.id='b' name='Beta'/>"
                                          "</UML:Namespace.ownedElement></UML:Model>"
                                          "</UML:Namespace.ownedElement></UML:Model></XMI.content></XMI>\n";
    HostRun plain = run(dir + "/nested.xmi -o " + dir);
    EXPECT_EQ(plain.status, 1);
    EXPECT_NE(plain.output.find("no class stands on the path that XMI 1.x specifies, but 2 stand elsewhere in the "
                                "model; --anywhere finds them"),
              std::string::npos)
        << plain.output;
    HostRun listed = run(dir + "/nested.xmi --list");
    EXPECT_EQ(listed.status, 0) << listed.output;
    EXPECT_NE(listed.output.find("--anywhere finds them"), std::string::npos) << listed.output;

    HostRun anywhere = run(dir + "/nested.xmi --anywhere -o " + dir);
    EXPECT_EQ(anywhere.status, 0) << anywhere.output;
    EXPECT_NE(anywhere.output.find("wrote " + dir + "/Alpha.tv\nwrote " + dir + "/Beta.tv"), std::string::npos)
        << anywhere.output;
    EXPECT_NE(slurp(dir + "/Beta.tv").find("\nclass Beta ^=\ninterface\nend;\n"), std::string::npos);

    std::ofstream(dir + "/empty.xmi") << "<XMI><XMI.content></XMI.content></XMI>\n";
    for (const char* option : {"", " --anywhere"}) {
        HostRun empty = run(dir + "/empty.xmi -o " + dir + option);
        EXPECT_EQ(empty.status, 0) << empty.output;
        EXPECT_NE(empty.output.find("modelbridge-gen: the model holds no class"), std::string::npos) << empty.output;
    }
}
