// attribute_table_test.cpp -- attributes are what docs/attributes.md says, row by row; texts that stay, statistics
//
// That what is set is what is read is looked at by fuzz/corpus_test.cpp.
#include "attributes/attribute_table.h"
#include "support/model_test.h"
#include <cctype>
#include <fstream>
#include <set>
#include <sstream>

struct AttributeTableTest : ModelTest {
    void SetUp() override
    {
        load("max 3 x - y + 7 st x + 2 y <= 8  R1: x - y >= -2  R2: x + y = 4 "
             "bounds y free");
    }
};

// The rows of the page: "| `A`, `B` | type | of | set | meaning |".
TEST_F(AttributeTableTest, every_attribute_is_what_the_page_says)
{
    const std::vector<std::string> types = {"char", "int", "double", "string"};
    const std::vector<std::string> kinds = {"model", "variable", "constraint", "SOS"};
    std::ifstream page(std::string(TARVEX_SOURCE_DIR) + "/docs/attributes.md");
    std::set<std::string> names;
    for (std::string line; std::getline(page, line);) {
        if (!line.starts_with("| `")) continue;
        std::istringstream cells(line);
        std::string list, of_type, of_kind, set, bar, name;
        std::getline(cells.ignore(2), list, '|');
        cells >> of_type >> bar >> of_kind >> bar >> set;
        std::istringstream quoted(list);
        while (std::getline(quoted, bar, '`') && std::getline(quoted, name, '`')) {
            SCOPED_TRACE(name);
            EXPECT_TRUE(names.insert(name).second) << "stands twice";
            int type = 0, kind = 0, settable = 0;
            ASSERT_EQ(TVXgetattrinfo(model, name.c_str(), &type, &kind, &settable), 0);
            EXPECT_EQ(types[type], of_type);
            EXPECT_EQ(kinds[kind], of_kind);
            EXPECT_EQ(settable != 0, set != "no");
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

TEST_F(AttributeTableTest, texts_are_copied_and_stay_where_they_are_until_the_next_update)
{
    char name_a[] = "a", name_b[] = "b", *names[] = {name_a, name_b};
    ASSERT_EQ(TVXsetstrattrarray(model, "ConstrName", 1, 2, names), 0);
    name_a[0] = 'z';
    update();
    char *first[3] = {}, *again[3] = {};
    ASSERT_EQ(TVXgetstrattrarray(model, "ConstrName", 0, 3, first), 0);
    ASSERT_EQ(TVXgetstrattrarray(model, "ConstrName", 0, 3, again), 0);
    for (int i = 0; i < 3; i++) EXPECT_EQ(first[i], again[i]);
    EXPECT_EQ(std::string(first[0]) + first[1] + first[2], "R0ab");
    ASSERT_EQ(TVXaddvar(model, 0, nullptr, nullptr, 0, 0, 1, 'C', "later"), 0);
    EXPECT_STREQ(first[0], "R0");
}

TEST_F(AttributeTableTest, statistics_pass_over_zeros_and_infinities)
{
    const auto statistics = [this] {
        std::vector<double> found;
        for (const char *name : {"MaxCoeff", "MinCoeff", "MaxObjCoeff", "MinObjCoeff",
                                 "MaxRHS", "MinRHS", "MaxBound", "MinBound"})
            found.push_back(dbl(name));
        return found;
    };
    const std::vector<double> before{2, 1, 3, 1, 8, 2, 0, 0}; // no finite upper bound
    EXPECT_EQ(statistics(), before);
    const double upper[] = {-3, -8}, obj[] = {0, 9};
    ASSERT_EQ(TVXsetdblattrarray(model, "UB", 0, 2, upper), 0);
    ASSERT_EQ(TVXsetdblattrelement(model, "LB", 0, -20), 0);
    ASSERT_EQ(TVXsetdblattrarray(model, "Obj", 0, 2, obj), 0);
    EXPECT_EQ(statistics(), before) << "still those of the model before the update";
    update();
    EXPECT_EQ(statistics(), (std::vector<double>{2, 1, 9, 9, 8, 2, -3, -20}));
}
