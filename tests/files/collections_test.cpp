// collections_test.cpp -- public models and odd files, where they are at hand
//
// The folder is that of the environment variable TARVEX_INSTANCES, or ../shared/instances beside the project; without
// it these tests are skipped.
#include "files/files_support.h"
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <sstream>

namespace fs = std::filesystem;

class Collections : public Files
{
  protected:
    fs::path folder;

    void SetUp() override
    {
        const char *given = getenv("TARVEX_INSTANCES");
        folder = given ? given : fs::path(TARVEX_SOURCE_DIR) / "../shared/instances";
        Files::SetUp();
        folder = fs::weakly_canonical(folder);
        if (!fs::exists(folder))
            GTEST_SKIP() << "no model collections: set TARVEX_INSTANCES";
    }
    std::vector<fs::path> files_of(const std::string &part, const std::string &suffix) const
    {
        std::vector<fs::path> files;
        if (!fs::exists(folder / part)) return files;
        for (const auto &entry : fs::directory_iterator(folder / part)) {
            const std::string name = entry.path().filename();
            if (name.size() > suffix.size() && name.ends_with(suffix))
                files.push_back(entry.path());
        }
        std::sort(files.begin(), files.end());
        return files;
    }
};

struct Size {
    std::string rows, cols, nonzeros;
};

// file -> size, from the first columns of reference.csv.
static std::map<std::string, Size> references(const fs::path &table)
{
    std::map<std::string, Size> sizes;
    std::istringstream text(file_get(table));
    for (std::string line; std::getline(text, line);) {
        std::istringstream fields(line);
        std::string file, kind;
        Size size;
        std::getline(fields, file, ',');
        std::getline(fields, kind, ',');
        std::getline(fields, size.rows, ',');
        std::getline(fields, size.cols, ',');
        std::getline(fields, size.nonzeros, ',');
        sizes[file] = size;
    }
    return sizes;
}

TEST_F(Collections, AreReadWholeAndWrittenTheSame)
{
    const std::map<std::string, Size> sizes = references(folder / "reference.csv");
    int count = 0;
    for (const char *part : {"netlib", "kennington", "infeasible", "meszaros", "lp",
                             "miplib3", "mip", "sossc"})
        for (const fs::path &file : files_of(part, ".mps.gz")) {
            ASSERT_EQ(read_file(file), 0) << file << message();
            count++;
            const std::string key = std::string(part) + "/" + file.filename().string();
            const Size size = sizes.count(key) ? sizes.at(key) : Size{};
            // Here the reference leaves twelve tiny coefficients out.
            if (!size.rows.empty() && file.filename() != "gas11.mps.gz") {
                const ModelBody *body = model->body;
                const int ranges = size.cols.empty() ? 0 : body->numvars - stoi(size.cols);
                EXPECT_EQ(std::to_string(body->numconstrs), size.rows) << file;
                EXPECT_EQ(std::to_string(body->numnz - ranges), size.nonzeros) << file;
            }
            EXPECT_EQ(round_trip("w.mps", Names::COMPARE), "") << file;
            EXPECT_EQ(round_trip("w.rew", Names::IGNORE), "") << file;
            EXPECT_EQ(round_trip("w.lp", Names::IGNORE), "") << file;
        }
    EXPECT_GT(count, 0);
}

// The odd files that hold no model, with the line that says so; all others must be read.
// clang-format off
static const std::map<std::string, int> bad_lines = {
    {"binary-garbage", 1}, {"columns-before-rows", 2}, {"duplicate-row-name", 6},
    {"empty-file", 1}, {"endata-missing", 12}, {"h-2894", 73}, {"h-comment", 7},
    {"h-garbage", 2}, {"h-nan0", 8}, {"h-nan1", 9}, {"h-nan2", 12}, {"missing-value", 7},
    {"numbers-comma", 7}, {"numbers-inf-coefficient", 8}, {"numbers-nan-bound", 12},
    {"numbers-nan-cost", 7}, {"numbers-nan-rhs", 10}, {"numbers-overflow", 8},
    {"only-comments", 1}, {"q-bad-mps-1", 2}, {"q-bad-mps-10", 10}, {"q-bad-mps-11", 3},
    {"q-bad-mps-12", 9}, {"q-bad-mps-14", 1}, {"q-bad-mps-15", 1}, {"q-bad-mps-2", 5},
    {"q-bad-mps-3", 6}, {"q-bad-mps-4", 8}, {"q-bad-mps-5", 8}, {"q-bad-mps-6", 8},
    {"q-bad-mps-7", 10}, {"q-bad-mps-9", 10}, {"q-bad-mps-bound-2", 21},
    {"q-bad-mps-fixed-ranges-value", 27}, {"q-good-mps-rhs-cost", 10},
    {"row-type-unknown", 5}, {"unknown-section", 13}
};
// clang-format on

TEST_F(Collections, OddFilesAreReadOrRefusedAtTheRightLine)
{
    const std::map<std::string, Size> sizes = references(folder / "edge/reference.csv");
    for (const fs::path &file : files_of("edge", ".mps")) {
        const std::string name = file.stem();
        const int code = read_file(file);
        const auto bad = bad_lines.find(name);
        EXPECT_EQ(code == 0, bad == bad_lines.end()) << name << message();
        if (code == 0) {
            const Size &size = sizes.at(name + ".mps");
            const std::string rows = std::to_string(model->body->numconstrs);
            EXPECT_EQ(rows, size.rows.empty() ? rows : size.rows) << name;
            EXPECT_EQ(round_trip("w.mps", Names::COMPARE), "") << name;
        } else if (bad != bad_lines.end()) {
            EXPECT_NE(message().find("line " + std::to_string(bad->second)),
                      std::string::npos)
                << name << ": " << message();
        }
    }
}
