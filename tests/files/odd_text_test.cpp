// odd_text_test.cpp -- line ends and marks of every kind make no difference, whatever file they stand in
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
        const auto with_end = [&text = text](const std::string &end) {
            std::string other;
            for (const char c : text) other += c == '\n' ? end : std::string(1, c);
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
