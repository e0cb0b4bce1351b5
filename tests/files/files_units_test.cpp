// files_units_test.cpp -- the small parts under the readers and writers
#include "files/file_number.h"
#include "files/name_table.h"
#include "files/text_file.h"
#include "frame/runtime/text_number.h"
#include "support/dice.h"
#include "support/scratch.h"
#include <cmath>
#include <map>
#include <string>
#include <vector>

// ---- Name table ----

TEST(NameTableTest, AgreesWithAMap)
{
    Dice dice(7);
    std::vector<std::string> texts; // stay where they are
    texts.reserve(40000);
    std::map<std::string, int> reference;
    NameTable table;
    EXPECT_EQ(name_table_find(&table, "x", 1), NAME_ABSENT);
    for (int k = 0; k < 20000; k++) {
        std::string name(static_cast<size_t>(dice.range(0, dice.chance(1) ? 600 : 24)),
                         'a');
        for (char &c : name)
            c = static_cast<char>(dice.chance(90) ? 'a' + dice.range(0, 1)
                                                  : dice.range(0, 255));
        const int64_t length = static_cast<int64_t>(name.size());
        const auto known = reference.find(name);
        ASSERT_EQ(name_table_find(&table, name.data(), length),
                  known == reference.end() ? NAME_ABSENT : known->second);
        if (known != reference.end()) continue;
        texts.push_back(name);
        reference[name] = static_cast<int>(table.entries.size);
        ASSERT_EQ(name_table_append(&table, texts.back().data(), length), 0);
    }
    for (const auto &[name, number] : reference)
        ASSERT_EQ(name_table_find(&table, name.data(), static_cast<int64_t>(name.size())),
                  number);
}

// Names that differ only where a slot does not look, or in length only.
TEST(NameTableTest, TellsSimilarNamesApart)
{
    std::vector<std::string> texts;
    for (const size_t length : {1, 2, 3, 4, 7, 8, 9, 15, 16, 17, 24, 25, 255, 256, 300})
        for (size_t k = 0; k < length; k += 1 + length / 20) {
            texts.push_back(std::string(length, 'x'));
            texts.back()[k] = 'y';
        }
    for (const size_t length : {254, 255, 256, 1000})
        texts.push_back(std::string(length, 'z'));
    NameTable table;
    for (const std::string &text : texts) {
        ASSERT_EQ(name_table_find(&table, text.data(), static_cast<int64_t>(text.size())),
                  NAME_ABSENT)
            << text;
        ASSERT_EQ(name_table_append(&table, text.data(), static_cast<int64_t>(text.size())),
                  0);
    }
    for (size_t k = 0; k < texts.size(); k++)
        ASSERT_EQ(
            name_table_find(&table, texts[k].data(), static_cast<int64_t>(texts[k].size())),
            static_cast<int>(k));
}

// Probes must stay short for names as models have them.
TEST(NameTableTest, NumberedNamesSpread)
{
    std::vector<std::string> texts;
    for (int k = 0; k < 100000; k++)
        texts.push_back("x#" + std::to_string(k) + "#" + std::to_string(k % 7));
    NameTable table;
    for (const std::string &text : texts)
        ASSERT_EQ(name_table_append(&table, text.data(), static_cast<int64_t>(text.size())),
                  0);
    int64_t run = 0;
    int64_t longest = 0;
    for (const TableSlot &slot : table.slots) {
        run = slot.index >= 0 ? run + 1 : 0;
        longest = std::max(longest, run);
    }
    EXPECT_LT(longest, 100);
}

// ---- Numbers ----

static NumberKind kind_of(const std::string &text, double *value)
{
    return number_read({text.data(), text.data() + text.size()}, value);
}

TEST(FileNumber, KindsOfFields)
{
    double value = 0;
    EXPECT_EQ(kind_of("+1.5D+3", &value), NumberKind::FINITE);
    EXPECT_EQ(value, 1500);
    EXPECT_EQ(kind_of("-1e-999", &value), NumberKind::FINITE);
    EXPECT_EQ(value, 0);
    EXPECT_EQ(kind_of("-Infinity", &value), NumberKind::INFINITE);
    EXPECT_EQ(value, -HUGE_VAL);
    EXPECT_EQ(kind_of("+inf", &value), NumberKind::INFINITE);
    EXPECT_EQ(kind_of("1e309", &value), NumberKind::TOO_LARGE);
    EXPECT_EQ(kind_of("-" + std::string(400, '9'), &value), NumberKind::TOO_LARGE);
    for (const char *text : {"", "-", ".", "nan", "1x", "1e", "1e+", "0x1", "1,5", "1.2.3",
                             "infx", "in", "e5"})
        EXPECT_EQ(kind_of(text, &value), NumberKind::NOT_NUMBER) << text;
}

TEST(FileNumber, WrittenNumbersReadBackTheSame)
{
    Dice dice(11);
    char text[NUMBER_LENGTH];
    for (int k = 0; k < 20000; k++) {
        const double value = std::ldexp(dice.nonzero(2000000000), dice.range(-1100, 990));
        const int length = number_write(text, value);
        double back = 0;
        ASSERT_EQ(kind_of(std::string(text, static_cast<size_t>(length)), &back),
                  NumberKind::FINITE);
        ASSERT_EQ(back, value) << text;
    }
    number_write(text, 0.1);
    EXPECT_STREQ(text, "0.1");
    number_write(text, 1234567);
    EXPECT_STREQ(text, "1.2345670000000000e+06");
}

// ---- Lines ----

static std::vector<std::string> lines_of(const std::string &text)
{
    Scratch scratch;
    file_put("t", text);
    TextFile file;
    EXPECT_EQ(text_load("t", &file), TextLoad::OK);
    std::vector<std::string> lines;
    TextSpan line;
    while (text_next(&file, &line) == TextStep::LINE)
        lines.emplace_back(line.begin, line.end);
    return lines;
}

TEST(TextFileTest, Lines)
{
    using Lines = std::vector<std::string>;
    EXPECT_EQ(lines_of(""), Lines{""});
    EXPECT_EQ(lines_of("a\nb"), (Lines{"a", "b"}));
    EXPECT_EQ(lines_of("a \t\r\n\r\n b\n"), (Lines{"a", "", " b"}));
    EXPECT_EQ(lines_of("a\rb\r"), (Lines{"a", "b"}));
    EXPECT_EQ(lines_of("\xef\xbb\xbf"
                       "a\n"),
              Lines{"a"});
    EXPECT_EQ(lines_of("a\n\x1a"), Lines{"a"});
    EXPECT_EQ(lines_of("a\nb\x02\nc\n"), Lines{"a"});
    // Longer than any block that is read at a time.
    const std::string long_line(5 << 20, 'x');
    EXPECT_EQ(lines_of(long_line + "\n" + long_line), (Lines{long_line, long_line}));
}

TEST(TextFileTest, WhatCannotBeReadIsTold)
{
    Scratch scratch;
    TextFile file;
    EXPECT_EQ(text_load("none", &file), TextLoad::NOT_FOUND);
    EXPECT_EQ(text_load(".", &file), TextLoad::NOT_FOUND);
    file_put("x.gz", "no");
    EXPECT_EQ(text_load("x.gz", &file), TextLoad::BROKEN);
    EXPECT_EQ(file.bytes.data, nullptr);
}

static std::string printable(const std::string &text, int size)
{
    std::vector<char> buffer(static_cast<size_t>(size));
    text_printable(buffer.data(), size, {text.data(), text.data() + text.size()});
    return buffer.data();
}

TEST(TextFileTest, PrintableTextIsCutAndHarmless)
{
    EXPECT_EQ(printable("abc", 10), "abc");
    EXPECT_EQ(printable("abcdefghi", 10), "abcdefghi");
    EXPECT_EQ(printable("abcdefghij", 10), "abcdef...");
    EXPECT_EQ(printable("a\x1b\x7f\tb", 10), "a?? b");
    EXPECT_EQ(printable("\xc3\xa9\xff\xc2\x9b\xe2\x82\xac", 20), "\xc3\xa9???\xe2\x82\xac");
    EXPECT_EQ(printable("\xe2\x82", 10), "??");
    for (int size = 1; size < 12; size++)
        EXPECT_LT(printable("\xe2\x82\xac\xe2\x82\xac\xe2\x82\xac", size).size(),
                  static_cast<size_t>(size));
}
