// odd_text_test.cpp -- line ends and marks of every kind make no difference, whatever file they stand in; and the examples
// of docs/formats.md are what the page says
#include "files/files_support.h"

struct OddText : Files {
    // All that the file may have changed.
    std::string state()
    {
        return stored_text(model, Names::COMPARE) + testing::PrintToString(basis()) +
               shown(start(0)) + shown(start(1)) + std::to_string(TVXgetenv(model)->Cuts);
    }
};

TEST_F(OddText, LineEndsMarksAndMissingNewlinesMakeNoDifference)
{
    const std::pair<std::string, std::string> files[] = {
        {"t.mps",
         "ROWS\n N C\n G R1\nCOLUMNS\n a C 1 R1 2\n b C 1\nRHS\n R R1 4\nENDATA\n"},
        {"t.lp", "max x + 2 y\nst\n c: x + y\n <= 4\nbounds\n x <= 3\ngen\n x\nend\n"},
        {"t.bas", "NAME t\n UL a\n XL b b\nENDATA\n"},
        {"t.mst", "# start\na 1.5\nb -2\n"},
        {"t.prm", "# cuts\nCuts 2\n"}};
    for (const auto &[name, text] : files) {
        const auto with_end = [&lines = text](const std::string &end) {
            std::string other;
            for (const char c : lines) other += c == '\n' ? end : std::string(1, c);
            return other;
        };
        const std::string variants[] = {text,
                                        with_end("\r\n"),
                                        with_end("\r"),
                                        with_end(" \t \n"),
                                        with_end("\n\n"),
                                        "\xef\xbb\xbf" + text,
                                        "\xef\xbb\xbf" + with_end("\r\n"),
                                        text.substr(0, text.size() - 1),
                                        with_end("\r\n") + "\r",
                                        text + "\x1a",
                                        text + "\x1a\n\x1a"};
        std::string plain;
        for (const std::string &variant : variants) {
            SCOPED_TRACE(name + ": " + variant);
            take(lp_make({{1, 0, 9}, {1, 0, 9}}, {{{1, 1}, '>', 1}}), {"a", "b"}, {"b"});
            file_put(name, variant);
            ASSERT_EQ(
                (name == "t.lp" || name == "t.mps") ? read_file(name) : read_into(name), 0)
                << message();
            if (plain.empty()) plain = state();
            EXPECT_EQ(state(), plain);
        }
    }
}

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
