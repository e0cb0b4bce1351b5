// attribute_table_test.cpp -- attributes are what docs/attributes.md says, row by row, and are found by their keys
#include "attributes/attribute_table.h"
#include "support/model_test.h"
#include <cctype>
#include <fstream>
#include <regex>
#include <set>

struct AttributeTableTest : ModelTest {
    void SetUp() override { load(LpModel{}); }
};

// The rows of the page: "| `A`, `B` | type | of | set | meaning |".
TEST_F(AttributeTableTest, every_attribute_is_what_the_page_says)
{
    const std::vector<std::string> types = {"char", "int", "double", "string"};
    const std::vector<std::string> kinds = {"model", "variable", "constraint", "SOS"};
    const std::regex row(R"(\| (`.*`) \| (\w+) \| (\w+) \| (\w+).*)"), quoted("`(\\w+)`");
    std::ifstream page(std::string(TARVEX_SOURCE_DIR) + "/docs/attributes.md");
    std::set<std::string> names;
    std::smatch cells;
    for (std::string line; std::getline(page, line);) {
        if (!std::regex_match(line, cells, row)) continue;
        const std::string list = cells[1];
        for (std::sregex_token_iterator at(list.begin(), list.end(), quoted, 1), end;
             at != end; ++at) {
            SCOPED_TRACE(*at);
            EXPECT_TRUE(names.insert(*at).second) << "stands twice";
            int type = 0, kind = 0, settable = 0;
            ASSERT_EQ(TVXgetattrinfo(model, at->str().c_str(), &type, &kind, &settable), 0);
            EXPECT_EQ(types[type], cells[2]);
            EXPECT_EQ(kinds[kind], cells[3]);
            EXPECT_EQ(settable != 0, cells[4] != "no");
        }
    }
    EXPECT_EQ(names.size(), static_cast<size_t>(ATTRIBUTE_COUNT));
    int type = 7, kind = 7, settable = 7;
    refused(10004, "Unknown attribute 'Nothing'",
            TVXgetattrinfo(model, "Nothing", &type, &kind, &settable));
    EXPECT_EQ(type + kind + settable, -3);
    EXPECT_EQ(TVXgetattrinfo(model, "X", nullptr, nullptr, nullptr), 0);
}

TEST_F(AttributeTableTest, case_and_inner_underscores_of_a_name_do_not_matter)
{
    for (const AttributeRow &row : attribute_rows) {
        std::string spread;
        for (const char *c = row.name; *c; c++)
            spread += {static_cast<char>(tolower(*c)), '_'};
        EXPECT_EQ(attribute_find(row.name), &row);
        EXPECT_EQ(attribute_find(spread.c_str()), &row);
    }
    for (const char *name :
         {"", "_NumVars", "NumVar", "NumVarss", "A", "zzz", "End", "X ", "\xff"})
        EXPECT_EQ(attribute_find(name), nullptr) << name;
    EXPECT_EQ(attribute_find(std::string(100000, 'x').c_str()), nullptr);
}
