// mps_write.cpp -- a model as an MPS file
//
// Problem     What is written must be read back as the same model: the same matrix, bounds, types, sets and constant,
//             bit for bit, whatever the names are.
// Form        The stored form of the model: minimisation, rows of sense '>' negated, so that ROWS holds L and E only.
//             Lines keep the places of the fixed form as far as names are not longer than 8 bytes.
// Names       The model's own where they can stand in a file (file_names.h). Names with blanks need the fixed form, and
//             so all names of both kinds at most 8 bytes long; where that fails, the kind that has blanks is numbered.
// Bounds      The defaults of a reader are 0 and infinite, for columns between markers 0 and 1. Types are declared
//             before bounds (SC, BV), an infinite upper bound of an integer column is said by PL, and a lower bound of
//             0 is said when the upper bound is negative, since it would be taken as infinite otherwise.
// Constant    Minus the constant is the right-hand side of the objective row, as all readers understand it; the NAME
//             line shows it too, for people.
#include "files/file_names.h"
#include "files/files.h"
#include "files/text_out.h"
#include "runtime/text_number.h"
#include <cstring>

namespace
{
constexpr int FIXED_NAME_LENGTH = 8;

struct MpsWriter {
    const ModelBody *body = nullptr;
    FileNames vars, constrs;
    char objective[FILE_NAME_LENGTH] = "OBJ"; // made different from all constraint names
    TextOut out;
};

// ---- Names ----

bool is_short(const FileNames *names)
{
    return !names->own || names->longest <= FIXED_NAME_LENGTH;
}

// Blanks in names are only read in fixed form.
void settle_blanks(TVXenv *env, MpsWriter *writer)
{
    FileNames *both[] = {&writer->vars, &writer->constrs};
    const bool fixed = is_short(both[0]) && is_short(both[1]);
    for (FileNames *names : both) {
        if (fixed || !names->own || !names->has_blanks) continue;
        file_names_number(names);
        TVXmsg(env,
               "Warning: %s names with blanks cannot be written, default names are used.\n",
               names->kind == FileNameKind::VARIABLE ? "variable" : "constraint");
    }
}

void warn_unusable(TVXenv *env, const FileNames *names, const Array<const char *> *own)
{
    if (names->own || !own->size) return;
    TVXmsg(
        env,
        "Warning: %s names are not all different and printable, default names are used.\n",
        names->kind == FileNameKind::VARIABLE ? "variable" : "constraint");
}

// "OBJ", or with the first number behind that no constraint bears.
int choose_objective(MpsWriter *writer)
{
    FileNameIndex index;
    TRY(file_index_make(&index, &writer->constrs));
    for (int k = 1;; k++) {
        const int64_t length = static_cast<int64_t>(strlen(writer->objective));
        if (file_index_find(&index, writer->objective, length) == NAME_ABSENT) break;
        text_format(writer->objective, FILE_NAME_LENGTH, "OBJ%d", k);
    }
    file_index_free(&index);
    return 0;
}

int choose_names(TVXenv *env, MpsWriter *writer, WriteNames use)
{
    const ModelBody *body = writer->body;
    TRY(file_names_choose(&writer->vars, body, FileNameKind::VARIABLE, false));
    TRY(file_names_choose(&writer->constrs, body, FileNameKind::CONSTRAINT, false));
    if (use == WriteNames::OWN) {
        warn_unusable(env, &writer->vars, &body->varnames);
        warn_unusable(env, &writer->constrs, &body->constrnames);
        settle_blanks(env, writer);
    } else {
        writer->vars.wide = writer->constrs.wide =
            body->numvars > SHORT_NUMBERS || body->numconstrs > SHORT_NUMBERS;
        file_names_number(&writer->vars);
        file_names_number(&writer->constrs);
    }
    return choose_objective(writer);
}

// ---- Sections ----

// A data line: what stands before the name, the name, and perhaps a number.
void line_of(MpsWriter *writer, const char *head, const char *name)
{
    text_out(&writer->out, head);
    text_out_padded(&writer->out, name);
    text_out(&writer->out, "\n");
}

void number_line(MpsWriter *writer, const char *head, const char *name, double value)
{
    text_out(&writer->out, head);
    text_out_padded(&writer->out, name);
    text_out(&writer->out, "  ");
    text_out_number(&writer->out, value);
    text_out(&writer->out, "\n");
}

void write_head(MpsWriter *writer)
{
    const ModelBody *body = writer->body;
    TextOut *out = &writer->out;
    text_out(out, "NAME ");
    if (body->modelname) text_out_line(out, body->modelname);
    if (body->objcon != 0.0) { // exactly
        char shown[2 * NUMBER_LENGTH];
        text_format(shown, sizeof shown, " with objcon=%12g", body->objcon);
        text_out(out, shown);
    }
    text_out(out, "\n");
    if (body->sense < 0) text_out(out, "* Max problem is converted into Min one\n");
    if (body->row_flipped > 0)
        text_out(out, "* All the >= constraints are converted into <= ones\n");
}

void write_rows(MpsWriter *writer)
{
    const ModelBody *body = writer->body;
    char buffer[FILE_NAME_LENGTH];
    text_out(&writer->out, "ROWS\n N  ");
    text_out(&writer->out, writer->objective);
    text_out(&writer->out, "\n");
    for (int i = 0; i < body->numconstrs; i++)
        line_of(writer, body->senses.data[i] == '=' ? " E  " : " L  ",
                file_name(&writer->constrs, i, buffer));
}

char type_of(const ModelBody *body, int j)
{
    return body->vtypes.size ? body->vtypes.data[j] : 'C';
}

bool is_integer(char type)
{
    return type == 'I' || type == 'B' || type == 'N';
}

void write_marker(MpsWriter *writer, const char *which)
{
    text_out(&writer->out, "    MARKER    'MARKER'                 ");
    text_out(&writer->out, which);
    text_out(&writer->out, "\n");
}

void entry_line(MpsWriter *writer, const char *column, const char *row, double value)
{
    text_out(&writer->out, "    ");
    text_out_padded(&writer->out, column);
    number_line(writer, "  ", row, value);
}

// Stored zeros are no entries; a column without any entry still needs a line.
void write_column(MpsWriter *writer, int j)
{
    const ModelBody *body = writer->body;
    char column_buffer[FILE_NAME_LENGTH];
    char row_buffer[FILE_NAME_LENGTH];
    const char *column = file_name(&writer->vars, j, column_buffer);
    const int begin = body->vbeg.data[j];
    const int end = begin + body->vlen.data[j];
    bool empty = true;
    for (int p = begin; p < end && empty; p++) empty = body->vval.data[p] == 0.0;
    if (body->obj.data[j] != 0.0 || empty)
        entry_line(writer, column, writer->objective, body->obj.data[j]);
    for (int p = begin; p < end; p++) {
        const double value = body->vval.data[p];
        if (value == 0.0) continue;
        entry_line(writer, column,
                   file_name(&writer->constrs, body->vind.data[p], row_buffer), value);
    }
}

void write_columns(MpsWriter *writer)
{
    const ModelBody *body = writer->body;
    text_out(&writer->out, "COLUMNS\n");
    bool integer = false;
    for (int j = 0; j < body->numvars; j++) {
        const bool wanted = is_integer(type_of(body, j));
        if (wanted != integer) write_marker(writer, wanted ? "'INTORG'" : "'INTEND'");
        integer = wanted;
        write_column(writer, j);
    }
    if (integer) write_marker(writer, "'INTEND'");
}

void write_rhs(MpsWriter *writer)
{
    const ModelBody *body = writer->body;
    char buffer[FILE_NAME_LENGTH];
    text_out(&writer->out, "RHS\n");
    if (body->objcon != 0.0)
        number_line(writer, "    RHS1      ", writer->objective, -body->objcon);
    for (int i = 0; i < body->numconstrs; i++)
        if (body->rhs.data[i] != 0.0)
            number_line(writer, "    RHS1      ", file_name(&writer->constrs, i, buffer),
                        body->rhs.data[i]);
}

// ---- Bounds ----

struct ColumnBounds {
    double lb, ub;
    char type;
    const char *name;
    bool no_lower, no_upper;
};

// Lower bounds; 0 is written only where the default would be another value.
void write_lower(MpsWriter *writer, const ColumnBounds *column, const char *head)
{
    if (column->no_lower)
        line_of(writer, " MI BND1      ", column->name);
    else if (column->lb != 0.0 || column->ub < 0.0)
        number_line(writer, head, column->name, column->lb);
}

// Semi-continuous: SC declares the type and carries the upper bound.
void write_semicontinuous(MpsWriter *writer, const ColumnBounds *column)
{
    number_line(writer, " SC BND1      ", column->name, column->ub);
    write_lower(writer, column, " LO BND1      ");
}

// BV declares the type with the bounds 0 and 1.
void write_binary(MpsWriter *writer, const ColumnBounds *column)
{
    line_of(writer, " BV BND1      ", column->name);
    if (column->lb == column->ub) {
        number_line(writer, " FX BND1      ", column->name, column->lb);
        return;
    }
    write_lower(writer, column, " LO BND1      ");
    if (column->ub != 1.0) number_line(writer, " UP BND1      ", column->name, column->ub);
}

void write_plain(MpsWriter *writer, const ColumnBounds *column)
{
    const bool integer = is_integer(column->type);
    if (column->no_lower && column->no_upper) {
        line_of(writer, " FR BND1      ", column->name);
    } else if (column->lb == column->ub) {
        number_line(writer, " FX BND1      ", column->name, column->lb);
    } else {
        write_lower(writer, column,
                    integer && !column->no_upper ? " LI BND1      " : " LO BND1      ");
        if (!column->no_upper)
            number_line(writer, " UP BND1      ", column->name, column->ub);
        else if (integer)
            line_of(writer, " PL BND1      ", column->name);
    }
}

void write_bounds(MpsWriter *writer)
{
    const ModelBody *body = writer->body;
    char buffer[FILE_NAME_LENGTH];
    text_out(&writer->out, "BOUNDS\n");
    for (int j = 0; j < body->numvars; j++) {
        const ColumnBounds column = {body->lb.data[j],
                                     body->ub.data[j],
                                     type_of(body, j),
                                     file_name(&writer->vars, j, buffer),
                                     body->lb.data[j] <= -INFINITE_BOUND,
                                     body->ub.data[j] >= INFINITE_BOUND};
        if (column.type == 'S' || column.type == 'N')
            write_semicontinuous(writer, &column);
        else if (column.type == 'B')
            write_binary(writer, &column);
        else
            write_plain(writer, &column);
    }
}

void write_sos(MpsWriter *writer)
{
    const ModelBody *body = writer->body;
    TextOut *out = &writer->out;
    char buffer[FILE_NAME_LENGTH];
    if (body->numsos) text_out(out, "SOS\n");
    for (int s = 0; s < body->numsos; s++) {
        text_out(out, body->sostype.data[s] == 1 ? " S1 s" : " S2 s");
        text_out_int(out, s);
        text_out(out, "\n");
        for (int k = body->sosbeg.data[s]; k < body->sosbeg.data[s + 1]; k++) {
            text_out(out, "    ");
            text_out_padded(out, file_name(&writer->vars, body->sosind.data[k], buffer));
            text_out(out, "     ");
            text_out_number(out, body->soswt.data[k]);
            text_out(out, "\n");
        }
    }
}

void write_all(MpsWriter *writer)
{
    write_head(writer);
    write_rows(writer);
    write_columns(writer);
    write_rhs(writer);
    write_bounds(writer);
    write_sos(writer);
    text_out(&writer->out, "ENDATA\n");
}
} // namespace

int mps_write(const ModelBody *body, TVXenv *env, const char *file_name, WriteNames names)
{
    MpsWriter writer;
    writer.body = body;
    TRY(choose_names(env, &writer, names));
    TRY(text_out_open(&writer.out, env, file_name));
    write_all(&writer);
    return text_out_close(&writer.out);
}
