// crush.cpp -- maps a basis or a point of the model to the reduced model
//
// Basis       Columns and rows that were not removed keep their status.
// Point       The undo records are followed from the oldest to the newest: each replaces columns as its reduction did. A
//             reduction may have removed the point, so the result is tested against the reduced model.
#include "presolve/work.h"
#include <algorithm>

// If basic entries are missing, slacks become basic; if there are too many, the last ones become nonbasic, columns
// first.
void presolve_mend_basis(int n, int m, int *statuses)
{
    int basic = 0;
    for (int k = 0; k < n + m; k++) basic += statuses[k] >= 0;
    for (int k = n + m - 1; k >= n && basic < m; k--)
        if (statuses[k] < 0) {
            statuses[k] = 0;
            basic++;
        }
    for (int j = n - 1; j >= 0 && basic > m; j--)
        if (statuses[j] >= 0) {
            statuses[j] = -1;
            basic--;
        }
    for (int k = n; k < n + m && basic > m; k++)
        if (statuses[k] >= 0) {
            statuses[k] = -1;
            basic--;
        }
}

void presolve_crush_basis(const PresolveResult *result, const int *full, int *reduced)
{
    const int n = result->Reduced->numvars, m = result->Reduced->numconstrs;
    for (int j = 0; j < result->NumCols; j++)
        if (result->ColMap.data[j] >= 0) reduced[result->ColMap.data[j]] = full[j];
    for (int i = 0; i < result->NumRows; i++)
        if (result->RowMap.data[i] >= 0)
            reduced[n + result->RowMap.data[i]] = full[result->NumCols + i];
    presolve_mend_basis(n, m, reduced);
}

namespace
{
// Distance up to which a value counts as the one that presolve has fixed.
constexpr double SAME_VALUE = 1e-6;

// What is left of the right-hand side of the record's row, without its own column.
double rest_of(const UndoRecord *undo, int count, const double *x)
{
    double left = undo->value;
    for (int k = 0; k < count; k++) left -= undo->entry[k].value * x[undo->entry[k].index];
    return left;
}

// Applies the reduction of one record to the point. False if it has removed the point.
bool follow(const UndoRecord *undo, double *x)
{
    const int j = undo->col;
    switch (undo->kind) {
    case UNDO_FIX:
        return std::fabs(x[j] - undo->value) <= SAME_VALUE * (1 + std::fabs(undo->value));
    case UNDO_SUBSTITUTE: {
        const double size = 1 + std::fabs(undo->value) + std::fabs(undo->factor * x[j]);
        return std::fabs(rest_of(undo, undo->split, x) - undo->factor * x[j]) <=
               SAME_VALUE * size;
    }
    case UNDO_MERGE_COLS:
        x[j] += undo->factor * x[undo->other];
        return true;
    case UNDO_COLUMN_SHIFT:
        x[j] = (x[j] - undo->value) / undo->factor;
        return true;
    case UNDO_FREE_TO_SLACK:
        x[j] = rest_of(undo, undo->count, x) - undo->factor * x[j];
        return true;
    default:
        return true;
    }
}

int follow_all(const UndoRecord *head, double *x, bool *kept)
{
    Array<const UndoRecord *> order;
    for (const UndoRecord *undo = head; undo; undo = undo->next)
        TRY(array_append(&order, undo));
    *kept = true;
    for (int64_t k = order.size - 1; k >= 0 && *kept; k--) *kept = follow(order.data[k], x);
    return 0;
}

void set_indicators(const PresolveResult *result, double *x)
{
    for (const SemiColumn &semi : result->Semi) {
        const bool on = std::fabs(x[semi.col]) >
                        0.5 * std::min(std::fabs(semi.lower), std::fabs(semi.upper));
        x[semi.indicator] = on == (semi.kind == SemiKind::ON_AT_ONE) ? 1 : 0;
    }
}

// True if the point satisfies bounds, types and rows of the body within the tolerances.
int is_accepted(const ModelBody *body, const TVXenv *env, double *x, bool *accepted)
{
    Array<double> left;
    const double tol = env->FeasibilityTol;
    TRY(array_copy(&left, body->rhs.data, body->numconstrs));
    *accepted = true;
    for (int j = 0; j < body->numvars; j++) {
        if (body->vtypes.size > 0 && body->vtypes.data[j] != 'C') {
            const double whole = std::round(x[j]);
            *accepted = *accepted && std::fabs(x[j] - whole) <= env->IntFeasTol;
            x[j] = whole;
        }
        *accepted =
            *accepted && x[j] >= body->lb.data[j] - tol && x[j] <= body->ub.data[j] + tol;
        for (int p = body->vbeg.data[j]; p < body->vbeg.data[j + 1]; p++)
            left.data[body->vind.data[p]] -= body->vval.data[p] * x[j];
    }
    for (int i = 0; i < body->numconstrs; i++) {
        const double out =
            body->senses.data[i] == '=' ? std::fabs(left.data[i]) : -left.data[i];
        *accepted = *accepted && out <= tol;
    }
    return 0;
}
} // namespace

int presolve_crush_point(const PresolveResult *result, const double *x_full,
                         double *x_reduced, bool *mapped)
{
    Array<double> x;
    TRY(array_copy(&x, x_full, result->NumCols));
    TRY(follow_all(result->Undo.head, x.data, mapped));
    const ModelBody *body = result->Reduced;
    if (!*mapped || !body) return 0;
    for (int j = 0; j < result->NumCols; j++)
        if (result->ColMap.data[j] >= 0) x_reduced[result->ColMap.data[j]] = x.data[j];
    set_indicators(result, x_reduced);
    return is_accepted(body, result->Env, x_reduced, mapped);
}
