// lp_write.cpp -- a model in the LP format
//
// Problem     What is written must be read back as the same model: matrix, bounds, types, sets and constant bit for
//             bit, the variables in their order.
// Form        Signs are those of the caller: the objective in its sense, rows with '>' as they were given. Numbers have
//             the fewest digits that read back the same. Lines have at most 75 bytes unless one name needs more.
// Order       A reader numbers variables as it meets them. The objective is written in full as far as that is needed,
//             with coefficients of 0: up to the last variable with a cost, with no entry, or that the rows mention
//             after one with a higher number.
// Names       The model's own where they are names in this format and different; others by number.
// Constant    A term on "Constant", which a bound fixes at 1; a plain number when a variable has that name.
// Bounds      Omitted if they are 0 and infinite, for binary variables 0 and 1. With an upper bound below 0 the lower
//             bound is always written, since a reader may take a missing one as infinite.
#include "files/file_names.h"
#include "files/file_number.h"
#include "files/files.h"
#include "files/lp_names.h"
#include "files/text_out.h"
#include "runtime/text_number.h"
#include <cstring>

namespace
{
constexpr int64_t LINE_LENGTH = 75; // bytes

constexpr char CONSTANT[] = "Constant";

constexpr char MINUS_INFINITY[] = "-infinity";

struct LpWriter {
    const ModelBody *body = nullptr;
    FileNames vars, constrs;
    TextOut out;
    int64_t column = 0;       // bytes on the line so far
    bool constant_is = false; // the model has a variable CONSTANT
    int n_listed = 0;         // variables written in the objective, with zero cost too
};

// ---- Names ----

void warn_names(TVXenv *env, const FileNames *names, const Array<const char *> *own)
{
    const char *kind = names->kind == FileNameKind::VARIABLE ? "variable" : "constraint";
    if (!names->own && own->size)
        TVXmsg(env, "Warning: %s names are not all different, default names are used.\n",
               kind);
    else if (names->n_refused)
        TVXmsg(env,
               "Warning: %d %s names cannot stand in an LP file, default names are used.\n",
               names->n_refused, kind);
}

int choose_names(TVXenv *env, LpWriter *writer, WriteNames use)
{
    const ModelBody *body = writer->body;
    char buffer[FILE_NAME_LENGTH];
    TRY(file_names_choose(&writer->vars, body, FileNameKind::VARIABLE, false, lp_is_name));
    TRY(file_names_choose(&writer->constrs, body, FileNameKind::CONSTRAINT, false,
                          lp_is_name));
    if (use == WriteNames::OWN) {
        warn_names(env, &writer->vars, &body->varnames);
        warn_names(env, &writer->constrs, &body->constrnames);
    } else {
        writer->vars.wide = writer->constrs.wide =
            body->numvars > SHORT_NUMBERS || body->numconstrs > SHORT_NUMBERS;
        file_names_number(&writer->vars);
        file_names_number(&writer->constrs);
    }
    for (int j = 0; j < body->numvars && !writer->constant_is; j++)
        writer->constant_is = !strcmp(file_name(&writer->vars, j, buffer), CONSTANT);
    return 0;
}

// ---- Order ----

// The first row that mentions variable j, or numconstrs.
int first_row(const ModelBody *body, int j)
{
    int first = body->numconstrs;
    for (int p = body->vbeg.data[j]; p < body->vbeg.data[j + 1]; p++)
        if (body->vval.data[p] != 0.0 && body->vind.data[p] < first)
            first = body->vind.data[p];
    return first;
}

// How many variables the objective must name: behind them, rows name the others in order.
int count_listed(const ModelBody *body)
{
    int next = body->numconstrs - 1; // first row with an entry of the next variable
    for (int j = body->numvars - 1; j >= 0; j--) {
        const int row = first_row(body, j);
        if (body->obj.data[j] != 0.0 || row > next) return j + 1;
        next = row;
    }
    return 0;
}

// ---- Lines ----

void put(LpWriter *writer, const char *text)
{
    const int64_t length = static_cast<int64_t>(strlen(text));
    text_out_bytes(&writer->out, text, length);
    writer->column += length;
}

void end_line(LpWriter *writer)
{
    text_out(&writer->out, "\n");
    writer->column = 0;
}

// Begins a new line if that many bytes do not fit any more.
void make_room(LpWriter *writer, int64_t length)
{
    if (writer->column + length <= LINE_LENGTH) return;
    end_line(writer);
    put(writer, "  ");
}

void put_number(LpWriter *writer, double value)
{
    char buffer[NUMBER_LENGTH];
    number_write_short(buffer, value);
    put(writer, buffer);
}

// " + 3 x", without the number when it is 1 and a name follows.
void put_term(LpWriter *writer, double value, const char *name)
{
    static constexpr int64_t SIGN_LENGTH = 3;
    const bool negative = value < 0.0;
    const double size = negative ? -value : value;
    char number[NUMBER_LENGTH] = "";
    int64_t length = SIGN_LENGTH + static_cast<int64_t>(strlen(name));
    if (size != 1.0 || !*name) length += number_write_short(number, size) + (*name != '\0');
    make_room(writer, length);
    put(writer, negative ? " - " : " + ");
    put(writer, number);
    if (*number && *name) put(writer, " ");
    put(writer, name);
}

// ---- Objective and constraints ----

void write_objective(LpWriter *writer)
{
    const ModelBody *body = writer->body;
    char buffer[FILE_NAME_LENGTH];
    put(writer, body->sense < 0 ? "Maximize\n" : "Minimize\n");
    writer->column = 0;
    for (int j = 0; j < writer->n_listed; j++)
        put_term(writer, body->sense * body->obj.data[j],
                 file_name(&writer->vars, j, buffer));
    if (body->objcon != 0.0)
        put_term(writer, body->sense * body->objcon, writer->constant_is ? "" : CONSTANT);
    text_out(&writer->out, "\n\n");
}

void write_row(LpWriter *writer, int i)
{
    const ModelBody *body = writer->body;
    char buffer[FILE_NAME_LENGTH];
    const char sense = body->senses.data[i];
    const double side = sense == '>' ? -1.0 : 1.0; // rows with '>' are stored negated
    writer->column = 0;
    put(writer, " ");
    put(writer, file_name(&writer->constrs, i, buffer));
    put(writer, ":");
    bool empty = true;
    for (int p = body->row_beg.data[i]; p < body->row_beg.data[i + 1]; p++) {
        const double value = side * body->row_val.data[p];
        if (value == 0.0) continue;
        put_term(writer, value, file_name(&writer->vars, body->row_ind.data[p], buffer));
        empty = false;
    }
    if (empty)
        put_term(writer, 0.0, body->numvars ? file_name(&writer->vars, 0, buffer) : "");
    const double rhs = side * body->rhs.data[i];
    char number[NUMBER_LENGTH];
    make_room(writer, number_write_short(number, rhs + 0.0) + 4);
    put(writer, sense == '>' ? " >= " : sense == '=' ? " = " : " <= ");
    put(writer, number);
    end_line(writer);
}

void write_rows(LpWriter *writer)
{
    text_out(&writer->out, "Subject To\n");
    for (int i = 0; i < writer->body->numconstrs; i++) write_row(writer, i);
}

// ---- Bounds ----

struct LpBounds {
    double lb, ub;
    const char *name;
    bool binary, no_lower, no_upper;
};

char type_of(const ModelBody *body, int j)
{
    return body->vtypes.size ? body->vtypes.data[j] : 'C';
}

void write_both(LpWriter *writer, const LpBounds *column)
{
    put(writer, " ");
    if (column->no_lower)
        put(writer, MINUS_INFINITY);
    else
        put_number(writer, column->lb);
    put(writer, " <= ");
    put(writer, column->name);
    put(writer, " <= ");
    if (column->no_upper)
        put(writer, MINUS_INFINITY + 1);
    else
        put_number(writer, column->ub);
}

void write_one(LpWriter *writer, const LpBounds *column, const char *sense, double value)
{
    put(writer, " ");
    put(writer, column->name);
    put(writer, sense);
    put_number(writer, value);
}

void write_column_bounds(LpWriter *writer, const LpBounds *column)
{
    const bool at_one = column->lb == 1.0 && column->ub == 1.0; // exactly
    if (column->no_lower && column->no_upper) {
        put(writer, " ");
        put(writer, column->name);
        put(writer, " free");
    } else if (column->lb == column->ub && !(at_one && !strcmp(column->name, CONSTANT))) {
        write_one(writer, column, " = ", column->lb);
    } else if (column->lb == 0.0 && column->ub >= 0.0 && !column->no_upper) {
        write_one(writer, column, " <= ", column->ub);
    } else if (column->no_upper && !column->binary) {
        write_one(writer, column, " >= ", column->lb);
    } else {
        write_both(writer, column);
    }
    end_line(writer);
}

void write_bounds(LpWriter *writer)
{
    const ModelBody *body = writer->body;
    char buffer[FILE_NAME_LENGTH];
    text_out(&writer->out, "Bounds\n");
    for (int j = 0; j < body->numvars; j++) {
        const LpBounds column = {body->lb.data[j],
                                 body->ub.data[j],
                                 file_name(&writer->vars, j, buffer),
                                 type_of(body, j) == 'B',
                                 body->lb.data[j] <= -INFINITE_BOUND,
                                 body->ub.data[j] >= INFINITE_BOUND};
        const bool usual =
            column.lb == 0.0 && (column.binary ? column.ub == 1.0 : column.no_upper);
        if (!usual) write_column_bounds(writer, &column);
    }
    if (body->objcon != 0.0 && !writer->constant_is)
        text_out(&writer->out, " Constant = 1\n");
}

// ---- Types and sets ----

// The variables of these types, if there are any.
void write_types(LpWriter *writer, const char *heading, const char *types)
{
    const ModelBody *body = writer->body;
    char buffer[FILE_NAME_LENGTH];
    bool any = false;
    writer->column = 0;
    for (int j = 0; j < body->numvars; j++) {
        if (!strchr(types, type_of(body, j))) continue;
        if (!any) text_out(&writer->out, heading);
        any = true;
        const char *name = file_name(&writer->vars, j, buffer);
        make_room(writer, 1 + static_cast<int64_t>(strlen(name)));
        put(writer, " ");
        put(writer, name);
    }
    if (any) end_line(writer);
}

void write_set(LpWriter *writer, int s)
{
    const ModelBody *body = writer->body;
    char buffer[FILE_NAME_LENGTH];
    char text[NUMBER_LENGTH];
    writer->column = 0;
    text_format(text, NUMBER_LENGTH, " s%d:  S%d ::", s, body->sostype.data[s]);
    put(writer, text);
    for (int k = body->sosbeg.data[s]; k < body->sosbeg.data[s + 1]; k++) {
        const char *name = file_name(&writer->vars, body->sosind.data[k], buffer);
        const int length = number_write_short(text, body->soswt.data[k]);
        if (writer->column + 2 + length + static_cast<int64_t>(strlen(name)) >
            LINE_LENGTH) {
            end_line(writer);
            put(writer, "    ");
        }
        put(writer, " ");
        put(writer, name);
        put(writer, ":");
        put(writer, text);
    }
    end_line(writer);
}

void write_all(LpWriter *writer)
{
    write_objective(writer);
    write_rows(writer);
    write_bounds(writer);
    write_types(writer, "Binaries\n", "B");
    write_types(writer, "Generals\n", "IN");
    write_types(writer, "Semi-continuous\n", "SN");
    if (writer->body->numsos) text_out(&writer->out, "SOS\n");
    for (int s = 0; s < writer->body->numsos; s++) write_set(writer, s);
    text_out(&writer->out, "End\n");
}
} // namespace

int lp_write(const ModelBody *body, TVXenv *env, const char *file_name, WriteNames names)
{
    LpWriter writer;
    writer.body = body;
    TRY(choose_names(env, &writer, names));
    writer.n_listed = count_listed(body);
    const int error = text_out_open(&writer.out, env, file_name);
    if (error == TVX_ERROR_FILE_WRITE)
        TVXmsg(env, "Unable to write to file '%s'\n", file_name);
    if (error) return error;
    write_all(&writer);
    return text_out_close(&writer.out);
}
