// The table of attributes is what docs/attributes.md says, row by row, and names are found by their keys.
#include "frame/attribute_table.h"
#include "support/lp_tarvex.h"
#include <cctype>
#include <fstream>
#include <gtest/gtest.h>
#include <set>
#include <string>

namespace
{

struct DocumentedAttribute {
    std::string name;
    int type, kind, settable;
};

int place(const std::string &word, const std::vector<std::string> &words)
{
    for (size_t k = 0; k < words.size(); k++)
        if (words[k] == word) return static_cast<int>(k);
    return -2; // no code of a call
}

std::string trimmed(const std::string &text)
{
    const size_t first = text.find_first_not_of(' ');
    return first == std::string::npos
               ? ""
               : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

// The rows "| `A`, `B` | type | of | set | meaning |" of the page.
std::vector<DocumentedAttribute> documented()
{
    std::vector<DocumentedAttribute> found;
    std::ifstream page(std::string(TARVEX_SOURCE_DIR) + "/docs/attributes.md");
    for (std::string line; std::getline(page, line);) {
        if (line.rfind("| `", 0) != 0) continue;
        std::vector<std::string> cells;
        for (size_t begin = 1; cells.size() < 4;) {
            const size_t end = line.find('|', begin);
            cells.push_back(trimmed(line.substr(begin, end - begin)));
            begin = end + 1;
        }
        const int type = place(cells[1], {"char", "int", "double", "string"});
        const int kind = place(cells[2], {"model", "variable", "constraint", "SOS"});
        for (size_t at = cells[0].find('`'); at != std::string::npos;) {
            const size_t end = cells[0].find('`', at + 1);
            found.push_back(
                {cells[0].substr(at + 1, end - at - 1), type, kind, cells[3] != "no"});
            at = cells[0].find('`', end + 1);
        }
    }
    return found;
}

struct AttributeTableTest : testing::Test {
    TestEnv env;
    LpModel empty;
    TestModel model{lp_load(env.env, &empty)};
};

} // namespace

TEST_F(AttributeTableTest, every_attribute_is_what_the_page_says)
{
    const std::vector<DocumentedAttribute> page = documented();
    std::set<std::string> names;
    for (const DocumentedAttribute &row : page) {
        SCOPED_TRACE(row.name);
        names.insert(row.name);
        int type = 0, kind = 0, settable = 0;
        ASSERT_EQ(TVXgetattrinfo(model, row.name.c_str(), &type, &kind, &settable), 0);
        EXPECT_EQ(type, row.type);
        EXPECT_EQ(kind, row.kind);
        EXPECT_EQ(settable, row.settable);
    }
    EXPECT_EQ(names.size(), 96u);
    EXPECT_EQ(page.size(), 96u);
}

TEST_F(AttributeTableTest, case_and_inner_underscores_of_a_name_do_not_matter)
{
    for (const AttributeRow &row : attribute_rows) {
        std::string lower, spread;
        for (const char *c = row.name; *c; c++) {
            lower += static_cast<char>(tolower(*c));
            spread += *c;
            spread += '_';
        }
        EXPECT_EQ(attribute_find(row.name), &row);
        EXPECT_EQ(attribute_find(lower.c_str()), &row);
        EXPECT_EQ(attribute_find(spread.c_str()), &row);
    }
    for (const char *name :
         {"", "_NumVars", "NumVar", "NumVarss", "A", "zzz", "End", "X ", "\xff"})
        EXPECT_EQ(attribute_find(name), nullptr) << name;
    EXPECT_EQ(attribute_find(std::string(100000, 'x').c_str()), nullptr);
}

TEST_F(AttributeTableTest,
       exactly_the_settable_rows_have_a_setter_and_no_row_two_ways_to_be_read)
{
    for (const AttributeRow &row : attribute_rows) {
        EXPECT_EQ(row.settable, row.set != nullptr) << row.name;
        EXPECT_FALSE(row.compute && row.get) << row.name;
    }
}

TEST_F(AttributeTableTest, attribute_info_leaves_minus_one_behind_a_failure)
{
    int type = 7, kind = 7, settable = 7;
    EXPECT_EQ(TVXgetattrinfo(model, "Nothing", &type, &kind, &settable), 10004);
    EXPECT_EQ(type, -1);
    EXPECT_EQ(kind, -1);
    EXPECT_EQ(settable, -1);
    EXPECT_STREQ(TVXgetmerrormsg(model), "Unknown attribute 'Nothing'");
    EXPECT_EQ(TVXgetattrinfo(model, "X", nullptr, nullptr, nullptr), 0);
    EXPECT_STREQ(TVXgetmerrormsg(model), "");
    EXPECT_EQ(TVXgetattrinfo(nullptr, "X", &type, nullptr, nullptr), 10002);
}

// No attribute of any model may crash a caller who asks for it, whatever was solved or not.
TEST_F(AttributeTableTest, every_attribute_of_an_unsolved_model_answers_a_value_or_no_data)
{
    for (const AttributeRow &row : attribute_rows) {
        SCOPED_TRACE(row.name);
        char c = 0, *s = nullptr;
        int i = 0;
        double d = 0;
        int code = 0;
        const bool scalar = row.kind == AttrKind::MODEL;
        switch (row.type) {
        case AttrType::CHAR:
            code = TVXgetcharattrarray(model, row.name, 0, -1, &c);
            break;
        case AttrType::INT:
            code = scalar ? TVXgetintattr(model, row.name, &i)
                          : TVXgetintattrarray(model, row.name, 0, -1, &i);
            break;
        case AttrType::DOUBLE:
            code = scalar ? TVXgetdblattr(model, row.name, &d)
                          : TVXgetdblattrarray(model, row.name, 0, -1, &d);
            break;
        case AttrType::STRING:
            code = scalar ? TVXgetstrattr(model, row.name, &s)
                          : TVXgetstrattrarray(model, row.name, 0, -1, &s);
            break;
        }
        EXPECT_TRUE(code == 0 || code == 10005) << code;
        if (!code) continue;
        EXPECT_EQ(TVXgetmerrormsg(model),
                  "Unable to retrieve attribute '" + std::string(row.name) + "'");
    }
}
