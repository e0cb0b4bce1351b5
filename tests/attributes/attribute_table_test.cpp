// The table of attributes is what docs/attributes.md says, row by row, and names are found by their keys.
#include "attributes/attribute_table.h"
#include "support/model_test.h"
#include <algorithm>
#include <cctype>
#include <fstream>
#include <set>
#include <sstream>

namespace
{

struct DocumentedAttribute {
    std::string name;
    int type, kind, settable;
};

int place(const std::string &word, const std::vector<std::string> &words)
{
    const auto at = std::find(words.begin(), words.end(), word);
    return at == words.end() ? -2 : static_cast<int>(at - words.begin()); // -2: no code
}

// The rows "| `A`, `B` | type | of | set | meaning |" of the page.
std::vector<DocumentedAttribute> documented()
{
    std::vector<DocumentedAttribute> found;
    std::ifstream page(std::string(TARVEX_SOURCE_DIR) + "/docs/attributes.md");
    for (std::string line, bar; std::getline(page, line);) {
        if (line.rfind("| `", 0) != 0) continue;
        const size_t end_of_names = line.find('|', 1);
        std::istringstream cells(line.substr(end_of_names));
        std::string type, kind, set;
        cells >> bar >> type >> bar >> kind >> bar >> set;
        for (size_t at = line.find('`'); at < end_of_names; at = line.find('`', at + 1)) {
            const size_t end = line.find('`', at + 1);
            found.push_back({line.substr(at + 1, end - at - 1),
                             place(type, {"char", "int", "double", "string"}),
                             place(kind, {"model", "variable", "constraint", "SOS"}),
                             set != "no"});
            at = end;
        }
    }
    return found;
}

struct AttributeTableTest : ModelTest {
    void SetUp() override { load(LpModel{}); }
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

TEST_F(AttributeTableTest, attribute_info_leaves_minus_one_behind_a_failure)
{
    int type = 7, kind = 7, settable = 7;
    refused(10004, "Unknown attribute 'Nothing'",
            TVXgetattrinfo(model, "Nothing", &type, &kind, &settable));
    EXPECT_EQ(type + kind + settable, -3);
    EXPECT_EQ(TVXgetattrinfo(model, "X", nullptr, nullptr, nullptr), 0);
    EXPECT_STREQ(TVXgetmerrormsg(model), "");
    EXPECT_EQ(TVXgetattrinfo(nullptr, "X", &type, nullptr, nullptr), 10002);
}
