// solution_text.cpp -- the solution with all its values as a text file
//
// Method   A head of comments; the section [variables] and the section [constraints], each with a line that names its
//          columns and then a line for each element, columns apart by one tab. A column whose attribute the model does
//          not have now (prices of a model with integers, ranges of a point that is not optimal) is left out.
#include "solution_text.h"
#include "runtime/file.h"
#include "status.h"
#include <cstdio>
#include <vector>

namespace
{
struct Column {
    const char *attribute; // in the library
    const char *title;     // in the file
    bool is_basis;         // VBasis or CBasis: words
    bool is_range;         // only with ranging
};
constexpr Column VARIABLE_COLUMNS[] = {
    {"X", "value", false, false},          {"RC", "reduced_cost", false, false},
    {"VBasis", "basis", true, false},      {"Obj", "cost", false, true},
    {"SAObjLow", "cost_low", false, true}, {"SAObjUp", "cost_up", false, true},
    {"LB", "lower", false, true},          {"SALBLow", "lower_low", false, true},
    {"SALBUp", "lower_up", false, true},   {"UB", "upper", false, true},
    {"SAUBLow", "upper_low", false, true}, {"SAUBUp", "upper_up", false, true},
};
constexpr Column CONSTRAINT_COLUMNS[] = {
    {"Slack", "slack", false, false},     {"Pi", "dual", false, false},
    {"CBasis", "basis", true, false},     {"RHS", "rhs", false, true},
    {"SARHSLow", "rhs_low", false, true}, {"SARHSUp", "rhs_up", false, true},
};

// A constraint has one way only of not being basic: it holds with equality.
const char *basis_word(int status, bool is_constraint)
{
    switch (status) {
    case TVX_BASIC:
        return "basic";
    case TVX_NONBASIC_LOWER:
        return is_constraint ? "tight" : "lower";
    case TVX_NONBASIC_UPPER:
        return "upper";
    default: // TVX_SUPERBASIC
        return "superbasic";
    }
}

// The values of one column: numbers or places in the basis, as the column has it.
struct Values {
    const Column *column;
    std::vector<double> numbers;
    std::vector<int> places;
};

// False when the model does not have them.
bool column_values(TVXmodel *model, const Column &column, int count, Values *values)
{
    values->column = &column;
    const size_t size = static_cast<size_t>(count);
    if (column.is_basis) {
        values->places.resize(size);
        return TVXgetintattrarray(model, column.attribute, 0, count,
                                  values->places.data()) == 0;
    }
    values->numbers.resize(size);
    return TVXgetdblattrarray(model, column.attribute, 0, count, values->numbers.data()) ==
           0;
}

std::string value_text(const Values &values, size_t j)
{
    if (!values.column->is_basis) return number_text(values.numbers[j]);
    return basis_word(values.places[j], values.column->attribute[0] == 'C');
}

struct Section {
    const char *title;     // as it stands in the file
    const char *count;     // attribute: how many elements
    const char *name;      // attribute: name of an element
    const Column *columns; // [n_columns]
    size_t n_columns;      // the first one must be there, else there is no section
};

void write_section(FILE *stream, TVXmodel *model, const Section &section, bool ranging)
{
    int count = 0;
    TVXgetintattr(model, section.count, &count);
    std::string head = "name";
    std::vector<Values> columns;
    for (size_t k = 0; k < section.n_columns; k++) {
        const Column &column = section.columns[k];
        if (column.is_range && !ranging) continue;
        Values values;
        if (count > 0 && !column_values(model, column, count, &values)) {
            if (k == 0) return;
            continue;
        }
        columns.push_back(std::move(values));
        head += std::string("\t") + column.title;
    }
    fprintf(stream, "[%s]\n%s\n", section.title, head.c_str());
    for (int j = 0; j < count; j++) {
        char *name = nullptr;
        if (TVXgetstrattrelement(model, section.name, j, &name) != 0) return;
        fputs(name, stream);
        for (const Values &values : columns)
            fprintf(stream, "\t%s", value_text(values, static_cast<size_t>(j)).c_str());
        fputc('\n', stream);
    }
}

void write_head(FILE *stream, TVXmodel *model)
{
    char *name = nullptr;
    int status = TVX_LOADED;
    double objective = 0;
    TVXgetintattr(model, "Status", &status);
    const bool named = TVXgetstrattr(model, "ModelName", &name) == 0 && name && *name;
    fprintf(stream, "# Solution of %s%s\n", named ? "model " : "the model",
            named ? name : "");
    fprintf(stream, "# Status %d %s\n", status, status_text(status));
    if (TVXgetdblattr(model, "ObjVal", &objective) == 0)
        fprintf(stream, "# Objective %s\n", number_text(objective).c_str());
}
} // namespace

bool solution_text_write(TVXmodel *model, const std::string &file, bool ranging)
{
    static constexpr Section SECTIONS[] = {
        {"variables", "NumVars", "VarName", VARIABLE_COLUMNS, std::size(VARIABLE_COLUMNS)},
        {"constraints", "NumConstrs", "ConstrName", CONSTRAINT_COLUMNS,
         std::size(CONSTRAINT_COLUMNS)},
    };
    FileHandle handle;
    if (FileOpen(file.c_str(), 'w', &handle)) return false;
    write_head(handle.stream, model);
    int status = TVX_LOADED;
    TVXgetintattr(model, "Status", &status);
    const bool has_none = status == TVX_INFEASIBLE || status == TVX_INF_OR_UNBD ||
                          status == TVX_UNBOUNDED || status == TVX_LOADED;
    for (const Section &section : SECTIONS)
        if (!has_none) write_section(handle.stream, model, section, ranging);
    if (FileClose(&handle) == 0) return true;
    FileRemove(file.c_str());
    return false;
}
