// The C API with two threads writing through one model: each thread's results are its own,
// whether it asks for an outcome of each write or reads its last write.
#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "modelbridge/modelbridge.h"
#include "support/TempDir.h"

TEST(CApiThreads, EachThreadReadsItsOwnResults) {
    TempDir dir;
    mb_model* model = nullptr;
    ASSERT_EQ(mb_parse(MODELBRIDGE_MODELS_DIR "/bank.xmi", nullptr, &model), MB_OK);
    const std::string good = dir.path();
    const std::string missing = dir / "no/such";
    constexpr int rounds = 200;
    // One thread's writes all succeed, the other's all fail: a result read in between that
    // came from the other thread shows as a wrong count.
    auto run = [&](const std::string& directory, int expected, int& wrong) {
        for (int i = 0; i < rounds; ++i) {
            mb_outcome* outcome = nullptr;
            int status = mb_write_class_outcome(model, "Account", directory.c_str(), &outcome);
            if (status != (expected == 0 ? MB_OK : MB_FAILED) || mb_outcome_count(outcome) != expected) ++wrong;
            const char* text = mb_outcome_text(outcome, 0);
            if ((text != nullptr) != (expected != 0)) ++wrong;
            mb_outcome_free(outcome);
            mb_write_class(model, "Customer", directory.c_str());
            std::this_thread::yield();
            if (mb_result_count(model) != expected) ++wrong;
            if ((mb_result_text(model, 0) != nullptr) != (expected != 0)) ++wrong;
        }
    };
    int wrongGood = 0;
    int wrongMissing = 0;
    std::thread writer([&] { run(good, 0, wrongGood); });
    std::thread failer([&] { run(missing, 1, wrongMissing); });
    writer.join();
    failer.join();
    EXPECT_EQ(wrongGood, 0);
    EXPECT_EQ(wrongMissing, 0);
    // This thread has written nothing: it has no last write.
    EXPECT_EQ(mb_result_count(model), 0);
    mb_free(model);
}
