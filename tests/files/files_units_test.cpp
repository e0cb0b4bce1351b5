// files_units_test.cpp -- the small parts under the readers and writers
#include "files/name_table.h"
#include "files/text_file.h"
#include "support/dice.h"
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

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

static std::string printable(const std::string &text, int size)
{
    std::vector<char> buffer(size);
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
