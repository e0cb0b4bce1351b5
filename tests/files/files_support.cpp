#include "files/files_support.h"
#include <algorithm>
#include <cmath>
#include <sstream>
#include <utility>

static std::string shown(double value)
{
    if (value >= 1e30) return "inf";
    if (value <= -1e30) return "-inf";
    char text[40];
    snprintf(text, sizeof text, "%.17g", value + 0.0); // -0 is 0
    return text;
}

static char stored_sense(char sense)
{
    return sense == '>' ? '<' : sense;
}

using Column = std::vector<std::pair<int, double>>;

static Column column_of(const ModelBody *body, int j)
{
    Column column;
    for (int p = body->vbeg[j]; p < body->vbeg[j] + body->vlen[j]; p++)
        if (body->vval[p] != 0) column.emplace_back(body->vind[p], body->vval[p]);
    std::sort(column.begin(), column.end());
    return column;
}

static char type_of(const ModelBody *body, int j)
{
    return body->vtypes.size ? body->vtypes[j] : 'C';
}

static std::string text_of(const char *text)
{
    return text ? text : "";
}

static void compare_columns(const ModelBody *a, const ModelBody *b, std::ostringstream *out)
{
    for (int j = 0; j < a->numvars; j++) {
        if (a->obj[j] != b->obj[j]) *out << "obj of column " << j << "; ";
        if (a->lb[j] != b->lb[j] || a->ub[j] != b->ub[j])
            *out << "bounds of column " << j << ": [" << shown(a->lb[j]) << ","
                 << shown(a->ub[j]) << "] and [" << shown(b->lb[j]) << ","
                 << shown(b->ub[j]) << "]; ";
        if (type_of(a, j) != type_of(b, j))
            *out << "type of column " << j << ": " << type_of(a, j) << type_of(b, j)
                 << "; ";
        if (a->bound_kind[j] != b->bound_kind[j])
            *out << "bound kind of column " << j << "; ";
        if (column_of(a, j) != column_of(b, j)) *out << "entries of column " << j << "; ";
    }
}

static void compare_sets(const ModelBody *a, const ModelBody *b, std::ostringstream *out)
{
    if (a->numsos != b->numsos) {
        *out << "number of sets";
        return;
    }
    for (int s = 0; s < a->numsos; s++) {
        bool same = a->sostype[s] == b->sostype[s] && a->sosbeg[s + 1] == b->sosbeg[s + 1];
        for (int k = a->sosbeg[s]; same && k < a->sosbeg[s + 1]; k++)
            same = a->sosind[k] == b->sosind[k] && a->soswt[k] == b->soswt[k];
        if (!same) *out << "set " << s << "; ";
    }
}

static void compare_names(const ModelBody *a, const ModelBody *b, std::ostringstream *out)
{
    char one[DEFAULT_NAME_LENGTH];
    char two[DEFAULT_NAME_LENGTH];
    if (text_of(a->modelname) != text_of(b->modelname))
        *out << "model name '" << text_of(a->modelname) << "' and '"
             << text_of(b->modelname) << "'; ";
    for (int j = 0; j < a->numvars; j++)
        if (text_of(var_name(a, j, one)) != var_name(b, j, two))
            *out << "name of column " << j << "; ";
    for (int i = 0; i < a->numconstrs; i++)
        if (text_of(constr_name(a, i, one)) != constr_name(b, i, two))
            *out << "name of row " << i << "; ";
}

std::string model_difference(const TVXmodel *first, const TVXmodel *second, Names names)
{
    const ModelBody *a = first->body;
    const ModelBody *b = second->body;
    if (a->numvars != b->numvars || a->numconstrs != b->numconstrs) return "size";
    std::ostringstream out;
    compare_columns(a, b, &out);
    for (int i = 0; i < a->numconstrs; i++)
        if (a->rhs[i] != b->rhs[i] ||
            stored_sense(a->senses[i]) != stored_sense(b->senses[i]))
            out << "row " << i << "; ";
    if (a->objcon != b->objcon)
        out << "constant " << shown(a->objcon) << " and " << shown(b->objcon) << "; ";
    compare_sets(a, b, &out);
    if (names == Names::COMPARE) compare_names(a, b, &out);
    return out.str();
}

int Files::read_file(const std::string &name)
{
    TVXfreemodel(model);
    model = nullptr;
    Output output;
    const int code = TVXreadmodel(env, name.c_str(), &model);
    log = output.text();
    return code;
}

int Files::read(const std::string &text)
{
    remove("t.mps"); // some file systems write a truncated file to the disk
    file_put("t.mps", text);
    return read_file("t.mps");
}

std::string Files::round_trip(const std::string &name, Names names)
{
    TVXmodel *back = nullptr;
    Output output;
    remove(name.c_str());
    if (const int code = TVXwrite(model, name.c_str()))
        return "write: " + std::to_string(code) + " " + TVXgetmerrormsg(model);
    if (const int code = TVXreadmodel(env, name.c_str(), &back))
        return "read: " + std::to_string(code) + " " + message();
    const std::string difference = model_difference(model, back, names);
    TVXfreemodel(back);
    return difference;
}

int Files::column(const std::string &name) const
{
    char buffer[DEFAULT_NAME_LENGTH];
    for (int j = 0; j < model->body->numvars; j++)
        if (name == var_name(model->body, j, buffer)) return j;
    return -1;
}

int Files::row(const std::string &name) const
{
    char buffer[DEFAULT_NAME_LENGTH];
    for (int i = 0; i < model->body->numconstrs; i++)
        if (name == constr_name(model->body, i, buffer)) return i;
    return -1;
}

double Files::coefficient(const std::string &row_name, const std::string &column_name) const
{
    const int i = row(row_name);
    const int j = column(column_name);
    double value = NAN;
    if (i >= 0 && j >= 0 && TVXgetcoeff(model, i, j, &value)) return NAN;
    return value;
}

std::string Files::domain(const std::string &column_name) const
{
    const int j = column(column_name);
    if (j < 0) return "none";
    const ModelBody *body = model->body;
    return std::string(1, type_of(body, j)) + " [" + shown(body->lb[j]) + "," +
           shown(body->ub[j]) + "]";
}

std::string mps_with(const std::string &sections)
{
    return "NAME          TEST\n"
           "ROWS\n"
           " N  COST\n"
           " G  R1\n"
           " L  R2\n"
           "COLUMNS\n"
           "    X         COST                 1   R1                   1\n"
           "    X         R2                   2\n"
           "    Y         COST                 2   R1                   1\n" +
           sections;
}
