// attributes_page.cpp -- writes docs/attributes.md from the tables of attributes
#include "attributes/attribute_table.h"
#include "attributes/attribute_texts.h"
#include <cstdio>
#include <cstring>

static const char *const HEAD =
    "# Attributes\n"
    "\n"
    "Made from the tables of the library by `make docs`; `tarvex --attributes NAME` tells "
    "the row and section of one.\n"
    "\n"
    "Everything about a model is read, and most of it set, through named attributes; the "
    "calls are described in\n"
    "`include/tarvex.h`. Case and inner underscores of a name do not matter.\n"
    "\n"
    "- **Type**: char, int, double or string. **Of**: what has a value: the model, each "
    "variable, each constraint, or each\n"
    "  SOS constraint. **Set**: whether a caller may set it.\n"
    "- A set shows after the next `TVXupdatemodel` or `TVXoptimize`. What is marked *at "
    "once* is the start of the next\n"
    "  solve and needs no update; reading it shows the last solve, not what was set (but "
    "for `Start`).\n"
    "- Values are those of the model as the caller gave it: its objective sense, its `>` "
    "rows, its units. How the solver\n"
    "  scales, flips or reduces the model is never seen.\n"
    "- An attribute that has no value answers `TVX_ERROR_DATA_NOT_AVAILABLE` (10005). "
    "Inside a callback\n"
    "  `HasDualNorm`, `VDualNorm` and `CDualNorm`, and `Kappa`, `N2Kappa` and the "
    "attributes of sensitivity when they have a\n"
    "  value, would need the solver, and are refused with "
    "`TVX_ERROR_OPTIMIZATION_IN_PROGRESS` (10017).\n"
    "- Every change of content takes the results of the last solve away at the next "
    "update; a change of names alone does\n"
    "  not.\n"
    "- What is *not filled yet* has no value, or 0, whatever the model.\n";

static void print_head(const AttributeSectionText &section)
{
    printf("\n## %s\n", section.title);
    if (*section.intro) printf("\n%s\n", section.intro);
    printf("\n| Name | Type | Of | Set | Meaning |\n|---|---|---|---|---|\n");
}

// The row of the table that all names of a text share but for their routines; null, with a message, when there is none.
static const AttributeRow *common_row(const AttributeText &text)
{
    const AttributeRow *common = nullptr;
    for (const char *name : text.names) {
        if (!name) continue;
        const AttributeRow *row = attribute_find(name);
        if (!common) common = row;
        const bool same = row && strcmp(row->name, name) == 0 &&
                          row->type == common->type && row->kind == common->kind &&
                          row->settable == common->settable;
        if (same && (row->compute || row->get || text.note == AttributeNote::NOT_YET))
            continue;
        fprintf(stderr, "attribute_texts.h does not agree with the table about %s\n", name);
        return nullptr;
    }
    return common;
}

static void print_row(const AttributeText &text, const AttributeRow &row)
{
    printf("| `%s`", text.names[0]);
    if (text.names[1]) printf(", `%s`", text.names[1]);
    printf(" | %s | %s | %s | %s%s |\n", attribute_texts::types[static_cast<int>(row.type)],
           attribute_texts::kinds[static_cast<int>(row.kind)],
           attribute_texts::set_word(row.settable, text.note),
           text.note == AttributeNote::NOT_YET ? "**Not filled yet.** " : "", text.means);
}

int main()
{
    fputs(HEAD, stdout);
    const AttributeSectionText *section = nullptr;
    const auto close = [&section] {
        if (section && *section->more) printf("\n%s", section->more);
    };
    for (const AttributeText &text : attribute_texts::rows) {
        const AttributeSectionText *own =
            &attribute_texts::sections[static_cast<int>(text.section)];
        if (own != section) {
            close();
            print_head(*own);
        }
        section = own;
        const AttributeRow *row = common_row(text);
        if (!row) return 1;
        print_row(text, *row);
    }
    close();
    return 0;
}
