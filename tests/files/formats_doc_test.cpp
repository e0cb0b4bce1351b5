// formats_doc_test.cpp -- the examples of docs/formats.md are what the page says
#include "files/files_support.h"

class FormatsDoc : public Files
{
  protected:
    // The examples marked with the word, in order.
    static std::vector<std::string> examples(const std::string &word)
    {
        const std::string page = file_get(TARVEX_SOURCE_DIR "/docs/formats.md");
        const std::string mark = "```" + word + "\n";
        std::vector<std::string> found;
        for (size_t at = 0; (at = page.find(mark, at)) != std::string::npos;) {
            at += mark.size();
            found.push_back(page.substr(at, page.find("```", at) - at));
        }
        return found;
    }
    // Reads the only example of a side file into the model; what stands on the log.
    std::string read_into(const std::string &word)
    {
        file_put("example." + word, examples(word).at(0));
        Output output;
        EXPECT_EQ(TVXread(model, ("example." + word).c_str()), 0);
        EXPECT_STREQ(TVXgetmerrormsg(model), "");
        return output.text();
    }
};

TEST_F(FormatsDoc, ExamplesAreReadWithoutAWarning)
{
    const std::vector<std::string> models = examples("mps");
    ASSERT_EQ(models.size(), 3u);
    for (const std::string &text : models) {
        ASSERT_EQ(read(text), 0) << message();
        EXPECT_EQ(log.find("Warning"), std::string::npos) << log;
    }
    EXPECT_EQ(domain("trucks") + domain("open") + domain("lease"),
              "I [0,inf]B [0,1]S [5,20]");
    const std::vector<std::string> lps = examples("lp");
    ASSERT_EQ(lps.size(), 2u);
    for (size_t k = 0; k < 2; k++) {
        ASSERT_EQ(read(lps[k], "t.lp"), 0) << message();
        EXPECT_EQ(log.find("Warning"), std::string::npos) << log;
        ASSERT_EQ(TVXwrite(model, "t.mps"), 0);
        EXPECT_EQ(model->body->numconstrs, k == 0 ? 3 : 2);
    }
    EXPECT_EQ(domain("trucks") + domain("open") + domain("lease"),
              "I [0,inf]B [0,1]S [5,20]");
    EXPECT_EQ(read_into("mst"), "");

    ASSERT_EQ(read(models[1]), 0);
    const std::string free_form = stored_text(model, Names::COMPARE);
    ASSERT_EQ(read(models[0]), 0);
    EXPECT_EQ(stored_text(model, Names::COMPARE), free_form);
    EXPECT_EQ(model->body->objcon, -10); // held for minimisation
    EXPECT_EQ(read_into("bas"), "");
    EXPECT_EQ(read_into("prm").find("Failed"), std::string::npos);

    std::string wrong = models[1];
    wrong.replace(wrong.find("UP BND chair 60"), 15, "UP BND chair sixty");
    EXPECT_EQ(read(wrong), TVX_ERROR_FILE_READ);
    EXPECT_EQ(message(), "MPS read error at line 19:\n UP BND chair sixty\n"
                         "'sixty' is not a number\n");
}
