// files_faults_test.cpp -- every allocation of every reader and writer fails in turn: the code, no leak, and a model
// that is as it was
#include "files/files.h"
#include "files/files_support.h"
#include "frame/model_store.h"
#include "frame/warm_start.h"
#include <functional>
#include <utility>

#ifdef TVX_DEBUG
class FilesFaults : public Files
{
  protected:
    TVXmodel *result = nullptr; // of a step that reads a model
    TVXmodel *before = nullptr; // what `model` must stay equal to
    const std::string everything =
        mps_with("    M         'MARKER'                 'INTORG'\n    Z         R1        "
                 "           1\n"
                 "    X         R2                   3\n"
                 "RHS\n    RHS       R1                   4\n"
                 "RANGES\n    RNG       R1                   4\nBOUNDS\n UP BND       X    "
                 "               9\n"
                 "SOS\n S1 one\n    X            1\n    Y            2\nENDATA\n");

    void SetUp() override
    {
        Files::SetUp();
        ASSERT_EQ(read(everything), 0) << message();
        std::swap(model, before);
        ASSERT_EQ(read(everything), 0);
    }
    void TearDown() override
    {
        TVXfreemodel(result);
        TVXfreemodel(before);
        Files::TearDown();
    }

    struct Outcome {
        int code;
        bool hit;
    };
    static Outcome run(const std::function<int()> &step, int64_t k)
    {
        Output quiet; // ends before a failure is reported
        mem_fault_arm(k);
        const int code = step();
        const bool hit = mem_fault_hits() > 0;
        mem_fault_arm(0);
        return {code, hit};
    }
    // Runs the step with the k-th request failing, for all k until it goes through; `check` looks at what a step that
    // returned 0 has done: some requests only make later calls faster, and may fail.
    void sweep(
        const std::function<int()> &step, int64_t at_least,
        const std::function<void()> &check = [] {})
    {
        for (int64_t k = 1;; k++) {
            const Outcome outcome = run(step, k);
            ASSERT_TRUE(outcome.code == 0 || (outcome.hit && outcome.code == OUT_OF_MEMORY))
                << "request " << k << ": " << outcome.code << message();
            ASSERT_EQ(model_difference(model, before, Names::COMPARE), "")
                << "request " << k;
            if (outcome.code == 0) check();
            if (outcome.hit) continue;
            EXPECT_GE(k, at_least);
            return;
        }
    }
    void sweep_read(const char *file, const std::function<void()> &check)
    {
        const int64_t held = mem_blocks_held();
        const auto step = [&] { return TVXreadmodel(env, file, &result); };
        sweep(step, 50, [&] {
            check();
            TVXfreemodel(result);
            result = nullptr;
            ASSERT_EQ(mem_blocks_held(), held);
        });
    }
};

TEST_F(FilesFaults, ReadingAModel)
{
    file_put("f.mps", everything);
    sweep_read("f.mps",
               [&] { ASSERT_EQ(model_difference(result, before, Names::COMPARE), ""); });
}

TEST_F(FilesFaults, ReadingAModelInAllThreeAttempts)
{
    file_put("f.mps", "ROWS\n N C\n L R\nCOLUMNS\n X NONE 1 R 2\nRHS\nENDATA\n");
    sweep_read("f.mps", [&] { ASSERT_EQ(result->body->numnz, 1); });
}

TEST_F(FilesFaults, WritingAModel)
{
    sweep([&] { return TVXwrite(model, "w.mps"); }, 5,
          [&] { ASSERT_EQ(round_trip("w.mps", Names::COMPARE), ""); });
    sweep([&] { return TVXwrite(model, "w.rew.gz"); }, 5);
}

TEST_F(FilesFaults, ReadingSideFiles)
{
    file_put("b.bas", " XL X R1\nENDATA\n");
    sweep([&] { return TVXread(model, "b.bas"); }, 8);
    EXPECT_NE(warm_start_usable(model), nullptr);
    file_put("s.mst", "X 1\nY 2\n");
    sweep([&] { return TVXread(model, "s.mst"); }, 8);
    double start = 0;
    EXPECT_EQ(TVXupdatemodel(model), 0);
    EXPECT_EQ(TVXgetdblattrelement(model, "Start", 1, &start), 0);
    EXPECT_EQ(start, 2);
}

TEST_F(FilesFaults, WritingSideFiles)
{
    model->mip_result = record_create<MipResult>();
    model->mip_result->status = TVX_OPTIMAL;
    model->mip_result->has_solution = model->mip_result->sol_count = 1;
    ASSERT_EQ(array_assign(&model->mip_result->x, model->body->numvars, 1.0), 0);
    sweep([&] { return TVXwrite(model, "w.mst"); }, 3,
          [] { ASSERT_EQ(file_get("w.mst"), "# MIP start\nZ 1\n"); });
    sweep([&] { return TVXwrite(model, "w.sol"); }, 2,
          [] { ASSERT_NE(file_get("w.sol").find("Z 1\n"), std::string::npos); });
    const std::vector<int> columns(static_cast<size_t>(model->body->numvars), -1),
        rows(2, 0);
    sweep([&] { return basis_write_statuses(model, columns.data(), rows.data(), "w.bas"); },
          5, [] { ASSERT_NE(file_get("w.bas").find("ENDATA"), std::string::npos); });
}
#endif
