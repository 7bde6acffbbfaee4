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
    // One thread's writes all succeed, the other's all fail: a result read in between that
    // came from the other thread shows as a wrong count.
    auto run = [&](const std::string& directory, int expected, int& wrong) {
        for (int i = 0; i < 200; ++i) {
            mb_outcome* outcome = nullptr;
            int status = mb_write_class_outcome(model, "Account", directory.c_str(), &outcome);
            wrong += status != (expected == 0 ? MB_OK : MB_FAILED) || mb_outcome_count(outcome) != expected ||
                     (mb_outcome_text(outcome, 0) != nullptr) != (expected != 0);
            mb_outcome_free(outcome);
            mb_write_class(model, "Customer", directory.c_str());
            std::this_thread::yield();
            wrong += mb_result_count(model) != expected || (mb_result_text(model, 0) != nullptr) != (expected != 0);
        }
    };
    int wrong[2] = {0, 0};
    std::thread writer([&] { run(dir.path(), 0, wrong[0]); });
    std::thread failer([&] { run(dir / "no/such", 1, wrong[1]); });
    writer.join();
    failer.join();
    EXPECT_EQ(wrong[0] + wrong[1], 0);
    // This thread has written nothing: it has no last write.
    EXPECT_EQ(mb_result_count(model), 0);
    mb_free(model);
}
