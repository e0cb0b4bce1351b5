// dependent_rows.cpp -- linearly dependent equations and free columns
//
// Method      The elimination of elimination.cpp proposes a linear combination, which is verified with the entries. If
//             the right-hand sides (costs) have the same combination, the equation is removed; otherwise the model is
//             infeasible. A free column that is a combination of free columns is removed if its cost is that
//             combination of their costs; otherwise the model is unbounded or infeasible.
// Postsolve   A removed row has a basic slack and dual value 0. A removed column is free nonbasic at zero; its reduced
//             cost is that combination of others, hence zero.
// Cost        At most a fixed multiple of the entries.
#include "presolve/errors.h"
#include "presolve/reduce/elimination.h"

namespace
{
// Largest difference of an entry to the combination, relative to the largest term.
constexpr double EXACT = 1e-10;

constexpr double SAME = 1e-9; // the same for right-hand sides

// Largest sum of multipliers, as violations of the remaining rows add up in the removed one.
constexpr double LARGEST_SUM = 1e3;

// a difference of this many tolerances is a contradiction
constexpr double CERTAIN = 10;

constexpr double WORK_PER_ENTRY = 20; // limit of the effort

// Difference of a line to a combination of lines.
struct Remainder {
    bool exact = true;
    double gap = 0;   // right-hand side or cost minus the same combination
    double size = 0;  // size of the terms of the gap
    double sum = 1;   // sum of |multipliers|, with 1 for the line itself
    double error = 0; // error of the gap
};

void add_line(PresolveWork *w, Axis axis, int line, double factor)
{
    for (int p = first_of(w, axis, line); p >= 0; p = next_of(w, axis, p)) {
        const int q = place_of(w, axis, p);
        const double term = factor * w->Nodes.data[p].value;
        w->Scratch.data[q] += term;
        w->ScratchB.data[q] = std::max(w->ScratchB.data[q], std::fabs(term));
    }
}

bool line_is_zero(PresolveWork *w, Axis axis, int line)
{
    bool zero = true;
    for (int p = first_of(w, axis, line); p >= 0; p = next_of(w, axis, p)) {
        const int q = place_of(w, axis, p);
        zero = zero && std::fabs(w->Scratch.data[q]) <= EXACT * w->ScratchB.data[q];
        w->Scratch.data[q] = w->ScratchB.data[q] = 0;
    }
    return zero;
}

Remainder remainder_of(PresolveWork *w, Axis axis, int line, const LineTerm *terms,
                       int count)
{
    const double *sides = axis == Axis::ROWS ? w->Rhs.data : w->Obj.data;
    const double *errors = axis == Axis::ROWS ? w->RhsErr.data : w->ObjErr.data;
    Remainder r;
    r.gap = sides[line];
    r.error = errors[line];
    r.size = std::fabs(r.gap);
    add_line(w, axis, line, 1);
    for (int k = 0; k < count; k++) {
        const double term = terms[k].factor * sides[terms[k].line];
        add_line(w, axis, terms[k].line, -terms[k].factor);
        r.gap -= term;
        r.size = std::max(r.size, std::fabs(term));
        r.sum += std::fabs(terms[k].factor);
        raise_to(&r.error, std::fabs(terms[k].factor) * errors[terms[k].line]);
        w->Work += 4.0 * length_of(w, axis, terms[k].line);
    }
    r.exact = line_is_zero(w, axis, line);
    for (int k = 0; k < count; k++)
        r.exact = line_is_zero(w, axis, terms[k].line) && r.exact;
    return r;
}

int judge_row(PresolveWork *w, int i, const LineTerm *terms, int count)
{
    const Remainder r = remainder_of(w, Axis::ROWS, i, terms, count);
    const double gap = std::fabs(r.gap);
    if (!r.exact || r.sum > LARGEST_SUM) return 0;
    if (gap > CERTAIN * r.sum * w->FeasTol + ERROR_MARGIN * r.error &&
        gap > SAME * r.size) {
        w->InfeasRow = i;
        return claim_row_sum(w, i, terms, count, r.gap > 0 ? 1 : -1);
    }
    if (gap <= std::min(SAME * (1 + r.size), 0.1 * w->FeasTol))
        remove_row(w, i, ROW_REDUNDANT);
    return 0;
}

int judge_col(PresolveWork *w, int j, const LineTerm *terms, int count)
{
    const Remainder r = remainder_of(w, Axis::COLS, j, terms, count);
    const double gap = std::fabs(r.gap);
    if (!r.exact || r.sum > LARGEST_SUM) return 0;
    if (gap > CERTAIN * r.sum * w->OptTol + ERROR_MARGIN * r.error && gap > SAME * r.size) {
        w->InfeasCol = j;
        return claim_col_sum(w, j, terms, count, r.gap > 0 ? -1 : 1);
    }
    const double same =
        w->IsMip ? ERROR_MARGIN * r.error : std::min(SAME * (1 + r.size), 0.1 * w->OptTol);
    return gap <= same ? fix_column(w, j, 0, -3) : 0;
}

double work_limit(const PresolveWork *w)
{
    return WORK_PER_ENTRY * static_cast<double>(w->NumNz + w->NumRows + w->NumCols);
}
} // namespace

int pre_dependent_rows(PresolveWork *w)
{
    int *list = w->IndexA.data, count = 0;
    for (int i = 0; i < w->NumRows; i++)
        if (w->Sense.data[i] == '=' && w->RowCnt.data[i] > 0) list[count++] = i;
    return dependent_lines(w, Axis::ROWS, list, count, work_limit(w), judge_row);
}

int pre_dependent_cols(PresolveWork *w)
{
    int *list = w->IndexA.data, count = 0;
    for (int j = 0; j < w->NumCols; j++)
        if (w->ColCnt.data[j] > 0 && !has_lb(w, j) && !has_ub(w, j) &&
            w->ColFlags.data[j] == 0 && !is_integer(w, j))
            list[count++] = j;
    return dependent_lines(w, Axis::COLS, list, count, work_limit(w), judge_col);
}
