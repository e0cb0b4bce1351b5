// live_rows.cpp -- rows of a live record are appended and deleted
//
// Method      Appended rows come last in both copies of the matrix, and their slacks are the last variables; each slack
//             is basic in its row, so the factors grow by one row eta per row (lu_append.cpp) and values, reduced costs
//             and weights of the others do not change. Deleted rows have a basic slack; the rest of the basis is a
//             basis of the rest of the rows with the same values, reduced costs and weights. The factors shrink with
//             it (lu_delete.cpp) unless a slack has left its row in the basis and come back in another: then the next
//             solve factors anew.
// Cost        O(nonzeros of the matrix and the factors), and the solves of lu_append_row.
#include "simplex/dual.h"
#include <algorithm>
#include <cmath>

namespace
{
// ---- Appending ----

template<class R> int grow_work(swork<R> *w, int64_t m, int64_t nv)
{
    TRY(array_extend(&w->Cbar, nv, R(0)));
    TRY(array_extend(&w->Bbar, m, R(0)));
    TRY(array_extend(&w->RowInd, nv, 0));
    TRY(array_extend(&w->RowVal, nv, R(0)));
    for (SVec<R> *v : {&w->Rho, &w->Alpha, &w->Tau, &w->Work}) {
        svec_clear(v);
        TRY(array_extend(&v->Index, m, 0));
        TRY(array_extend(&v->Value, m, R(0)));
        v->Dim = static_cast<int>(m);
    }
    popt_free(&w->Primal);
    dopt<R> *d = w->Dual;
    for (Array<R> *a : {&d->WeightOf, &d->CandAlpha, &d->CandDual, &d->CandRange})
        TRY(array_extend(a, nv, R(1)));
    for (Array<int> *a : {&d->CandPlace, &d->Flips}) TRY(array_extend(a, nv, 0));
    TRY(array_extend(&d->GroupEnd, nv + 1, 0));
    TRY(array_extend(&d->Reference, nv, char(0)));
    TRY(array_extend(&d->Weights, m, R(1)));
    TRY(array_extend(&d->RowRejected, m, char(0)));
    TRY(array_extend(&d->Rows.Merit, m, R(0)));
    TRY(array_extend(&d->Rows.Listed, m, 0));
    TRY(array_extend(&d->Rows.InList, m, char(0)));
    d->Rows.Dim = static_cast<int>(m);
    return lu_grow(&w->Lu, static_cast<int>(m));
}

int grow_record(sopt *s, int64_t m, int64_t nv)
{
    for (Array<double> *a :
         {&s->Cost, &s->Lower, &s->WorkCost, &s->WorkLower, &s->SuperVal, &s->ProofVector})
        TRY(array_extend(a, nv, 0.0));
    for (Array<double> *a : {&s->Upper, &s->WorkUpper})
        TRY(array_extend(a, nv, s->Infinity));
    TRY(array_extend(&s->Mark, nv, 0));
    TRY(array_extend(&s->QueryVar, nv, 0));
    TRY(array_extend(&s->QueryVal, nv, 0.0));
    TRY(array_extend(&s->VStat, nv, 0));
    TRY(array_extend(&s->RowScale, m, 1.0));
    for (Array<double> *a : {&s->Rhs, &s->BasicLower, &s->RowWork})
        TRY(array_extend(a, m, 0.0));
    TRY(array_extend(&s->BasicUpper, m, s->Infinity));
    for (Array<int> *a : {&s->BasisHead, &s->BadRows, &s->BadCols, &s->RowFill})
        TRY(array_extend(a, m, 0));
    return array_extend(&s->RowBeg, m + 1, s->ColBeg.data[s->NumCols]);
}

// Power of two that scales the largest entry of the row, in scaled columns, to about 1.
double row_factor(const sopt *s, const LiveRow &row)
{
    if (!s->Scaled) return 1;
    double largest = 0;
    for (int k = 0; k < row.Count; k++)
        largest = std::max(largest, std::fabs(row.Val[k] * s->ColScale.data[row.Ind[k]]));
    if (largest == 0 || (largest > 0.5 && largest < 2)) return 1;
    return std::exp2(std::floor(std::log2(1 / largest)));
}

// Makes room at the end of every column for its entries in the new rows; extra[j]: their number.
int spread_columns(sopt *s, const int *extra, int64_t more)
{
    const int n = s->NumCols, nz = s->ColBeg.data[n];
    if (nz + more > INT32_MAX) return OUT_OF_MEMORY; // positions are 32-bit
    TRY(array_extend(&s->ColInd, nz + more, 0));
    TRY(array_extend(&s->ColVal, nz + more, 0.0));
    for (Array<int> *a : {&s->RowInd, &s->SlotOfEntry, &s->EntryOfSlot})
        TRY(array_extend(a, nz + more, 0));
    TRY(array_extend(&s->RowVal, nz + more, 0.0));
    int shift = static_cast<int>(more);
    for (int j = n - 1; j >= 0 && shift > 0; j--) {
        const int beg = s->ColBeg.data[j], end = s->ColBeg.data[j + 1];
        s->ColBeg.data[j + 1] = end + shift;
        shift -= extra[j];
        for (int p = end - 1; p >= beg && shift > 0; p--) {
            s->ColInd.data[p + shift] = s->ColInd.data[p];
            s->ColVal.data[p + shift] = s->ColVal.data[p];
            s->SlotOfEntry.data[p + shift] = s->SlotOfEntry.data[p];
            s->EntryOfSlot.data[s->SlotOfEntry.data[p]] = p + shift;
        }
    }
    return 0;
}

// Row i of both copies of the matrix; in the row copy the columns that may enter come first. next[j]: place of the next
// entry of column j.
void put_row(sopt *s, const LiveRow &row, int i, int *next)
{
    int slot = s->RowBeg.data[i];
    for (const bool front : {true, false}) {
        for (int k = 0; k < row.Count; k++) {
            const int j = row.Ind[k];
            if (row.Val[k] == 0 || (s->InRowCopy.data[j] != 0) != front) continue;
            const int p = next[j]++;
            s->ColInd.data[p] = i;
            s->RowInd.data[slot] = j;
            s->ColVal.data[p] = s->RowVal.data[slot] =
                row.Val[k] * s->RowScale.data[i] * s->ColScale.data[j];
            s->SlotOfEntry.data[p] = slot;
            s->EntryOfSlot.data[slot++] = p;
        }
        if (front) s->RowFill.data[i] = slot - s->RowBeg.data[i];
    }
    s->RowBeg.data[i + 1] = slot;
}

// A row without a finite right-hand side is no condition, or one that no point satisfies.
void put_infinite_row(sopt *s, char sense, double rhs, int i)
{
    s->RowFill.data[i] = 0;
    s->RowBeg.data[i + 1] = s->RowBeg.data[i];
    s->RowScale.data[i] = 1;
    s->Rhs.data[i] = sense == '<' && rhs > 0 ? 0 : -1;
}

bool has_finite_rhs(const sopt *s, const LiveRow &row)
{
    const double rhs = working_bound(s, row.Rhs);
    return has_lower(s, rhs) && has_upper(s, rhs);
}

int put_rows(sopt *s, const LiveRow *rows, int count, int first)
{
    Array<int> extra;
    TRY(array_assign(&extra, s->NumCols, 0));
    int64_t more = 0;
    for (int k = 0; k < count; k++)
        for (int p = 0; p < rows[k].Count && has_finite_rhs(s, rows[k]); p++) {
            extra.data[rows[k].Ind[p]] += rows[k].Val[p] != 0;
            more += rows[k].Val[p] != 0;
        }
    TRY(spread_columns(s, extra.data, more));
    int *next = extra.data;
    for (int j = 0; j < s->NumCols; j++) next[j] = s->ColBeg.data[j + 1] - extra.data[j];
    for (int k = 0; k < count; k++) {
        const int i = first + k;
        if (!has_finite_rhs(s, rows[k])) {
            put_infinite_row(s, rows[k].Sense, rows[k].Rhs, i);
            continue;
        }
        s->RowScale.data[i] = row_factor(s, rows[k]);
        s->Scaled |= s->RowScale.data[i] != 1;
        s->Rhs.data[i] = rows[k].Rhs * s->RowScale.data[i];
        put_row(s, rows[k], i, next);
    }
    return 0;
}

// The slack of row i becomes basic there.
void put_slack(sopt *s, int i, char sense)
{
    const int k = s->NumCols + i;
    s->VStat.data[k] = i;
    s->BasisHead.data[i] = k;
    s->Upper.data[k] = s->WorkUpper.data[k] = s->BasicUpper.data[i] =
        sense == '=' ? 0 : s->Infinity;
    s->BasicLower.data[i] = 0;
}

template<class R> R slack_value(const sopt *s, const swork<R> *w, int i)
{
    R value = R(s->Rhs.data[i]);
    for (int p = s->RowBeg.data[i]; p < s->RowBeg.data[i + 1]; p++) {
        const int j = s->RowInd.data[p];
        value -= R(s->RowVal.data[p]) * (is_basic(s, j) ? w->Bbar.data[s->VStat.data[j]]
                                                        : R(nonbasic_value(s, j)));
    }
    return value;
}

// The factors follow, and the slack gets its value, merit and exact weight.
template<class R> int join_basis(sopt *s, swork<R> *w, int i)
{
    SVec<R> *row = &w->Work;
    for (int p = s->RowBeg.data[i]; p < s->RowBeg.data[i + 1]; p++)
        if (is_basic(s, s->RowInd.data[p]))
            svec_add(row, s->VStat.data[s->RowInd.data[p]], R(s->RowVal.data[p]));
    TRY(lu_append_row(&w->Lu, i, row));
    svec_clear(row);
    w->Bbar.data[i] = slack_value(s, w, i);
    svec_unit(&w->Rho, i, R(1));
    Btran(&w->Lu, &w->Rho, SOLVE_ROW, Keep::NO);
    w->Dual->Weights.data[i] = dual_true_weight(w);
    dual_set_merit(s, w, i);
    return 0;
}

template<class R> int append(sopt *s, swork<R> *w, const LiveRow *rows, int count)
{
    const int first = s->NumRows;
    if (count > INT32_MAX - s->NumVars) return OUT_OF_MEMORY;
    const bool factored = has_factor(s, w);
    TRY(grow_record(s, int64_t{first} + count, int64_t{s->NumVars} + count));
    TRY(grow_work(w, int64_t{first} + count, int64_t{s->NumVars} + count));
    TRY(put_rows(s, rows, count, first));
    s->NumRows += count;
    s->NumVars += count;
    for (int k = 0; k < count; k++) put_slack(s, first + k, rows[k].Sense);
    for (int i = first; i < s->NumRows; i++) {
        w->Cbar.data[s->NumCols + i] = R(0);
        w->Dual->Weights.data[i] = R(1);
        w->Dual->RowRejected.data[i] = 0;
        if (factored) TRY(join_basis(s, w, i));
    }
    if (!factored) s->Live = LIVE_STALE;
    s->Status = SIMPLEX_RUNNING;
    s->Unclean = 0;
    return 0;
}

// ---- Deleting ----

// Entries of a[0..] whose place is kept move to the front; keep(k) tells.
template<class T, class F> void compact(Array<T> *a, int from, int to, const F &keep)
{
    int next = from;
    for (int k = from; k < to; k++)
        if (keep(k)) a->data[next++] = a->data[k];
    a->size = next;
}

// The matrix without the rows whose number is -1 in `number`.
void drop_entries(sopt *s, const int *number)
{
    int next = 0, beg = 0;
    for (int j = 0; j < s->NumCols; j++) {
        const int end = s->ColBeg.data[j + 1];
        for (int p = beg; p < end; p++) {
            const int i = number[s->ColInd.data[p]];
            if (i < 0) continue;
            s->ColInd.data[next] = i;
            s->ColVal.data[next++] = s->ColVal.data[p];
        }
        beg = end;
        s->ColBeg.data[j + 1] = next;
    }
    s->ColInd.size = s->ColVal.size = next;
}

// The positions without those of deleted slacks, with their weights; number: as above.
template<class R> void compact_basis(sopt *s, swork<R> *w, const int *number)
{
    const int n = s->NumCols;
    int next = 0;
    for (int r = 0; r < s->NumRows; r++) {
        const int k = s->BasisHead.data[r];
        if (k >= n && number[k - n] < 0) continue;
        s->BasisHead.data[next] = k < n ? k : n + number[k - n];
        w->Dual->Weights.data[next++] = w->Dual->Weights.data[r];
    }
}

// The same of what a fresh record holds besides; each deleted slack is in its row's position.
template<class R> void compact_values(sopt *s, swork<R> *w, const char *drop)
{
    const int m = s->NumRows, n = s->NumCols;
    const auto row = [=](int i) { return drop[i] == 0; };
    for (Array<R> *a : {&w->Bbar, &w->Dual->Rows.Merit}) compact(a, 0, m, row);
    for (Array<double> *a : {&s->BasicLower, &s->BasicUpper}) compact(a, 0, m, row);
    compact(&w->Dual->RowRejected, 0, m, row);
    compact(&w->Cbar, n, s->NumVars, [=](int k) { return drop[k - n] == 0; });
}

// The record can go on without a refresh: a deleted slack has no shifted cost, which would make multipliers of others,
// and the factors shrink.
template<class R> bool stays_fresh(const sopt *s, swork<R> *w, const int *number)
{
    if (s->Live != LIVE_FRESH || !has_factor(s, w)) return false;
    for (int i = 0; i < s->NumRows; i++)
        if (number[i] < 0 && s->WorkCost.data[s->NumCols + i] != 0) return false;
    return lu_delete_rows(&w->Lu, number);
}

template<class R> void compact_vectors(sopt *s, swork<R> *w, const char *drop)
{
    const int m = s->NumRows, n = s->NumCols;
    const auto row = [=](int i) { return drop[i] == 0; };
    const auto slack = [=](int k) { return drop[k - n] == 0; };
    for (Array<double> *a : {&s->Rhs, &s->RowScale}) compact(a, 0, m, row);
    for (Array<double> *a : {&s->Cost, &s->Lower, &s->Upper, &s->WorkCost, &s->WorkLower,
                             &s->WorkUpper, &s->SuperVal})
        compact(a, n, s->NumVars, slack);
    compact(&s->VStat, n, s->NumVars, slack);
    compact(&w->Dual->Reference, n, s->NumVars, slack);
}

template<class R> void shrink_work(swork<R> *w, int m)
{
    for (SVec<R> *v : {&w->Rho, &w->Alpha, &w->Tau, &w->Work}) {
        svec_clear(v);
        v->Dim = m;
    }
    price_list_reset(&w->Dual->Rows);
    w->Dual->Rows.Dim = m;
    w->Dual->WeightAge = -1;
    popt_free(&w->Primal);
    w->Lu.NumRows = m;
}

template<class R> int remove(sopt *s, swork<R> *w, const char *drop)
{
    const int m = s->NumRows;
    Array<int> number; // new number of each row, -1 deleted
    TRY(array_resize(&number, m));
    int left = 0;
    for (int i = 0; i < m; i++) number.data[i] = drop[i] ? -1 : left++;
    if (left == m) return 0;
    const bool fresh = stays_fresh(s, w, number.data);
    if (fresh) compact_values(s, w, drop);
    compact_basis(s, w, number.data);
    compact_vectors(s, w, drop);
    drop_entries(s, number.data);
    s->NumRows = left;
    s->NumVars = s->NumCols + left;
    for (int r = 0; r < left; r++) s->VStat.data[s->BasisHead.data[r]] = r;
    std::fill_n(s->Mark.data, s->NumVars, 0);
    shrink_work(w, left);
    if (s->ShiftCount > 0) s->ShiftCount = MOST_SHIFTS + 1; // the slacks have other numbers
    s->Status = SIMPLEX_RUNNING;
    s->Unclean = 0;
    TRY(row_copy_build(s));
    if (fresh) {
        row_copy_partition(s);
        return 0;
    }
    w->Lu.NeedBasis = 1;
    s->BasisAge++;
    s->Live = LIVE_STALE;
    return 0;
}
} // namespace

int simplex_append_rows(sopt *s, const LiveRow *rows, int count)
{
    assert(s->Live != LIVE_NO);
    return s->Quad ? append(s, s->Extended, rows, count)
                   : append(s, s->Double, rows, count);
}

int simplex_delete_rows(sopt *s, const char *drop)
{
    assert(s->Live != LIVE_NO);
    return s->Quad ? remove(s, s->Extended, drop) : remove(s, s->Double, drop);
}
