// load.cpp -- creates the presolve record from a model body
//
// Method      Vectors are copied; entries go into the pool column by column, linked so that lists are in ascending
//             order. Entries that count as zero are left out. Spare nodes give room for fill.
#include "body/row_kind.h"
#include "presolve/errors.h"
#include "presolve/integer/facts.h"
#include "runtime/clock.h"

namespace
{
constexpr double TINY_ENTRY = 1e-13;
constexpr double LITTLE_TERM = 1e-3; // tolerances
// DataErr, the violation that rounding of the data may cause in a feasible model.
constexpr double DATA_ERROR = 1e-9, DATA_ERROR_SHARE = 1e-3; // of the tolerance, at most
constexpr double SOS_ROW_SIDE = 1; // of the row sum of members <= 1
constexpr int64_t SPARE_LEAST = 10000;
constexpr int SPARE_SHARE = 10;        // entries per spare node
constexpr int LONG_COLUMN = 5;         // of the class with unit entries
constexpr double SMALLEST_CLASS = 0.5; // share of equations in it

int copy_vectors(PresolveWork *w, const ModelBody *body)
{
    const int n = w->NumCols, m = w->OrigRows;
    TRY(array_copy(&w->Obj, body->obj.data, n));
    TRY(presolve_check(w));
    TRY(array_copy(&w->Lb, body->lb.data, n));
    TRY(presolve_check(w));
    TRY(array_copy(&w->Ub, body->ub.data, n));
    TRY(presolve_check(w));
    TRY(array_reserve(&w->Rhs, w->NumRows));
    TRY(array_copy(&w->Rhs, body->rhs.data, m));
    TRY(presolve_check(w));
    TRY(array_reserve(&w->Sense, w->NumRows));
    TRY(array_resize(&w->Sense, m));
    for (int j = 0; j < n; j++) {
        if (w->Lb.data[j] <= -w->INF) w->Lb.data[j] = -w->INF;
        if (w->Ub.data[j] >= w->INF) w->Ub.data[j] = w->INF;
    }
    for (int i = 0; i < m; i++) {
        if (row_kind(body, i) == RowKind::IMPOSSIBLE) return END_INFEASIBLE;
        w->Sense.data[i] = is_equation(body, i) ? '=' : '<';
    }
    return 0;
}

// Errors of the original data: rounding of costs and right-hand sides, for the latter at least DataErr.
int set_errors(PresolveWork *w)
{
    w->DataErr = std::min(DATA_ERROR, DATA_ERROR_SHARE * w->FeasTol);
    TRY(array_assign(&w->BoundErr, w->NumCols, 0.0));
    TRY(array_resize(&w->ObjErr, w->NumCols));
    TRY(array_resize(&w->RhsErr, w->NumRows));
    TRY(presolve_check(w));
    for (int j = 0; j < w->NumCols; j++)
        w->ObjErr.data[j] = ROUNDING_UNIT * std::fabs(w->Obj.data[j]);
    for (int i = 0; i < w->NumRows; i++)
        w->RhsErr.data[i] = std::max(w->DataErr, ROUNDING_UNIT * std::fabs(w->Rhs.data[i]));
    return presolve_check(w);
}

template<class T> int assign_checked(PresolveWork *w, Array<T> *a, int64_t size, T value)
{
    TRY(array_assign(a, size, value));
    return check_limits(w, static_cast<double>(size));
}

// Worklists and activities are filled later, when the reductions begin.
int allocate_lines(PresolveWork *w)
{
    const int n = w->NumCols, m = w->NumRows;
    for (Array<int> *a : {&w->RowsA.List, &w->RowsB.List, &w->Rmaxcnt, &w->Rmincnt})
        TRY(array_resize(a, m));
    for (Array<int> *a : {&w->ColsA.List, &w->ColsB.List}) TRY(array_resize(a, n));
    for (Array<double> *a : {&w->RMax, &w->RMin}) TRY(array_resize(a, m));
    TRY(assign_checked(w, &w->RowHead, m, -1));
    TRY(assign_checked(w, &w->ColHead, n, -1));
    for (Array<int> *a : {&w->RowCnt, &w->RowMark}) TRY(assign_checked(w, a, m, 0));
    for (Array<int> *a : {&w->ColCnt, &w->ColMark, &w->ColFlags})
        TRY(assign_checked(w, a, n, 0));
    return w->IsMip ? load_flags(w) : 0;
}

int allocate_scratch(PresolveWork *w)
{
    const int most = std::max(w->NumCols, w->NumRows);
    for (Array<double> *a : {&w->Scratch, &w->ScratchB, &w->ScratchC})
        TRY(assign_checked(w, a, most, 0.0));
    for (Array<int> *a : {&w->IndexA, &w->IndexB, &w->IndexC}) TRY(array_resize(a, most));
    return assign_checked(w, &w->Flag, most, char(0));
}

// Tiny entries are left out; with integers only where the bounds of the column make their terms negligible, as nothing
// repairs the point that would break the row.
bool is_left_out(const PresolveWork *w, int j, double value)
{
    if (std::fabs(value) > TINY_ENTRY) return false;
    const double largest = std::max(std::fabs(w->Lb.data[j]), std::fabs(w->Ub.data[j]));
    return !w->IsMip || std::fabs(value) * largest <= LITTLE_TERM * w->FeasTol;
}

// From the last entry to the first, each at the head of its lists.
int link_entries(PresolveWork *w, const ModelBody *body, int *used_out)
{
    int used = *used_out;
    for (int j = w->NumCols - 1; j >= 0; j--) {
        TRY(check_limits(w, 1.0 + body->vbeg.data[j + 1] - body->vbeg.data[j]));
        for (int p = body->vbeg.data[j + 1] - 1; p >= body->vbeg.data[j]; p--) {
            const double value = body->vval.data[p];
            if (is_left_out(w, j, value)) continue;
            const int i = body->vind.data[p];
            w->Nodes.data[used] = {value, i, j, w->RowHead.data[i], w->ColHead.data[j]};
            w->RowHead.data[i] = w->ColHead.data[j] = used++;
            w->RowCnt.data[i]++;
            w->ColCnt.data[j]++;
        }
    }
    *used_out = used;
    return 0;
}

void link_free(PresolveWork *w, int used)
{
    const int end = static_cast<int>(w->Nodes.size);
    for (int p = end - 1; p >= used; p--) {
        w->Nodes.data[p] = {0, -1, -1, w->FreeList, -1};
        w->FreeList = p;
    }
    w->FreeCount = end - used;
}

int classify(const PresolveWork *w, int used)
{
    int64_t plus = 0, minus = 0;
    for (int p = 0; p < used; p++) {
        plus += w->Nodes.data[p].value == 1; // coefficients as given
        minus += w->Nodes.data[p].value == -1;
    }
    const int longest =
        w->NumCols > 0 ? *std::max_element(w->ColCnt.begin(), w->ColCnt.end()) : 0;
    int64_t equations = 0;
    for (int i = 0; i < w->NumRows; i++) equations += w->Sense.data[i] == '=';
    if (plus + minus < used || plus == 0 || minus == 0) return MATRIX_GENERAL;
    if (longest <= 2 && plus == minus && equations == w->NumRows) return MATRIX_NETWORK;
    const bool unit = longest >= LONG_COLUMN &&
                      static_cast<double>(equations) > SMALLEST_CLASS * w->NumRows;
    return unit ? MATRIX_UNIT_EQUATIONS : MATRIX_GENERAL;
}
} // namespace

int work_load(PresolveWork *w, const ModelBody *body, TVXenv *env)
{
    w->Body = body;
    w->Env = env;
    w->Watch = {env};
    w->NumCols = body->numvars;
    w->OrigRows = w->NumRows = body->numconstrs;
    w->StartTime = w->LastLogTime = WallClock();
    w->INF = infinite_bound(env);
    w->FeasTol = env->FeasibilityTol;
    w->OptTol = env->OptimalityTol;
    w->ZeroTol = env->TARV_PAR_ZERO;
    w->IntTol = env->IntFeasTol;
    w->StepLimit = env->TARV_PAR_PRELIMIT;
    w->KeepCrush = env->PreCrush;
    w->ObjCon = body->objcon;
    w->Undo.block_size =
        int64_t{body->numnz} / 5 * static_cast<int64_t>(sizeof(UndoEntry)) + 4096;
    if (w->IsMip) TRY(load_types(w));
    const int64_t spare = std::max({int64_t{w->NumRows}, SPARE_LEAST,
                                    int64_t{body->numnz} / SPARE_SHARE, w->SosInd.size});
    if (body->numnz + spare > INT32_MAX) return OUT_OF_MEMORY;
    TRY(copy_vectors(w, body));
    TRY(array_extend(&w->Rhs, w->NumRows, SOS_ROW_SIDE));
    TRY(array_extend(&w->Sense, w->NumRows, '<'));
    TRY(set_errors(w));
    TRY(array_resize(&w->Nodes, body->numnz + spare));
    TRY(array_assign(&w->EntrySize, w->Nodes.size, 0.0));
    TRY(array_reserve(&w->Stale, w->Nodes.size / LONG_STALE_ROW + 1));
    TRY(allocate_lines(w));
    TRY(allocate_scratch(w));
    int used = 0;
    if (w->IsMip) load_sos_rows(w, &used);
    TRY(link_entries(w, body, &used));
    w->NumNz = used;
    TRY(presolve_check(w));
    link_free(w, used);
    TRY(presolve_check(w));
    w->MatrixClass = classify(w, used);
    return presolve_check(w);
}

void work_free(PresolveWork *w)
{
    undo_free(&w->Undo);
    facts_free(w->Facts);
    *w = PresolveWork{};
}
