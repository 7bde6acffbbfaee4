// The library's observable behaviour against the committed record: parse outcomes,
// diagnostics, errors, class lists and every generated file, for the examples, the corpus,
// synthetic models and a few hundred broken and altered inputs.
#include <gtest/gtest.h>

#include <sstream>

#include "../../tools/Observer.h"
#include "support/TempDir.h"

namespace {

std::wstring excerpt(const std::wstring& text) { return text.size() <= 3000 ? text : text.substr(0, 3000) + L"..."; }

}  // namespace

TEST(Observations, Unchanged) {
    std::istringstream recorded(observer::readFile(MODELBRIDGE_OBSERVATIONS));
    ASSERT_FALSE(recorded.str().empty()) << "no record at " << MODELBRIDGE_OBSERVATIONS;
    TempDir work;
    int inputs = 0;
    int differences = 0;
    observer::observeAll(MODELBRIDGE_PROJECT_DIR, MODELBRIDGE_SHARED_DIR, work.path(),
                         [&](const observer::Input& input, const observer::Observations& seen) {
                             ++inputs;
                             std::string then;
                             std::getline(recorded, then);
                             std::string now = observer::recordOf(input.name, seen);
                             if (now == then + "\n" || ++differences > 5) return;
                             testing::Message report;
                             report << "recorded: " << then << "\nnow:      " << now;
                             for (const auto& [key, text] : seen) {
                                 std::string entry = " " + observer::entryOf(key, text);
                                 if ((then + " ").find(entry + " ") == std::string::npos)
                                     report << "-- " << key << " now reads:\n" << excerpt(text) << "\n";
                             }
                             ADD_FAILURE() << report;
                         });
    std::string rest;
    EXPECT_FALSE(std::getline(recorded, rest)) << "the record holds more than was observed: " << rest;
    EXPECT_EQ(differences, 0);
    EXPECT_GT(inputs, 300);
}

TEST(Observations, RecordSeesEveryUnitAndMasksOnlyTheRun) {
    const std::wstring text = L"//* File: '/tmp/w/out/A.tv'\n//* File generated at 10:00:01 on Monday\nParsed 3 lines "
                              L"from file 'model.xmi' in 12 seconds\nclass A ^=";
    std::uint64_t whole = observer::digest(text);
    for (std::size_t i = 0; i < text.size(); ++i) {
        std::wstring changed = text;
        changed[i] = wchar_t(changed[i] + 1);
        EXPECT_NE(observer::digest(changed), whole) << "unit " << i;
        EXPECT_NE(observer::digest(text.substr(0, i) + text.substr(i + 1)), whole) << "without unit " << i;
    }
    EXPECT_EQ(observer::masked(text, L"/tmp/w"),
              L"//* File: '$DIR/out/A.tv'\n//* File generated at <time>\nParsed 3 lines from file 'model.xmi' in <n> "
              L"seconds\nclass A ^=");
    // Seconds are masked only in that one phrase.
    EXPECT_EQ(observer::masked(L"'x' in 12 parts", L"/nowhere"), L"'x' in 12 parts");
}
