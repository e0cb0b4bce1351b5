// formats_doc_test.cpp -- the examples of docs/formats.md are what the page says
#include "files/files_support.h"

struct FormatsDoc : Files {
    // The examples marked with the word, in order.
    static std::vector<std::string> examples(const std::string &word)
    {
        const std::string page = file_get(TARVEX_SOURCE_DIR "/docs/formats.md"),
                          mark = "```" + word + "\n";
        std::vector<std::string> found;
        for (size_t at = 0; (at = page.find(mark, at)) != std::string::npos;) {
            at += mark.size();
            found.push_back(page.substr(at, page.find("```", at) - at));
        }
        return found;
    }
    // Reads the only example of a side file; what stands on the log.
    std::string read_example(const std::string &word)
    {
        EXPECT_EQ(read_into("example." + word, examples(word).at(0)), 0);
        EXPECT_EQ(model_message(), "");
        return log;
    }
};

TEST_F(FormatsDoc, ExamplesAreReadWithoutAWarning)
{
    const std::vector<std::string> models = examples("mps"), lps = examples("lp");
    ASSERT_EQ(10 * models.size() + lps.size(), 32u);
    for (const auto *texts : {&models, &lps}) {
        for (const std::string &text : *texts) {
            ASSERT_EQ(read(text, texts == &lps ? "t.lp" : "t.mps"), 0) << message();
            EXPECT_EQ(log.find("Warning"), std::string::npos) << log;
        }
        EXPECT_EQ(domain("trucks") + domain("open") + domain("lease"),
                  "I [0,inf]B [0,1]S [5,20]");
    }
    EXPECT_EQ(read_example("mst"), "");

    ASSERT_EQ(read(models[1]), 0);
    const std::string free_form = content();
    ASSERT_EQ(read(models[0]), 0);
    EXPECT_EQ(content(), free_form);
    EXPECT_EQ(model->body->objcon, -10); // held for minimisation
    EXPECT_EQ(read_example("bas"), "");
    EXPECT_EQ(read_example("prm").find("Failed"), std::string::npos);

    std::string wrong = models[1];
    wrong.replace(wrong.find("UP BND chair 60"), 15, "UP BND chair sixty");
    EXPECT_EQ(read(wrong), TVX_ERROR_FILE_READ);
    EXPECT_TRUE(message().starts_with("MPS read error at line 19:\n UP BND chair sixty\n"));
}
