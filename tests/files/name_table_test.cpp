// name_table_test.cpp -- the table of names under the readers, against a map
#include "files/name_table.h"
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
