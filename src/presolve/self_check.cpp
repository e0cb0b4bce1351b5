// self_check.cpp -- invariants of the presolve record between reductions, tested in debug builds
#ifdef TVX_DEBUG
#include "presolve/work.h"
#include <algorithm>
#include <cmath>
#include <cstdio>

namespace
{
struct Checker {
    int broken = 0;
    void expect(bool holds, const char *what, int index, double have, double want)
    {
        if (!holds && broken++ == 0)
            fprintf(stderr, "presolve: %s trouble on %d (%g vs %g)\n", what, index, have,
                    want);
    }
};

void check_rows(const PresolveWork *w, Checker *c)
{
    for (int i = 0; i < w->NumRows; i++) {
        if (!is_live_row(w, i)) continue;
        int count = 0, wrong = 0;
        for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p)) {
            count++;
            wrong += w->Nodes.data[p].row != i || !is_live_col(w, w->Nodes.data[p].col);
        }
        c->expect(wrong == 0, "row list", i, wrong, 0);
        c->expect(count == w->RowCnt.data[i], "RowCnt", i, w->RowCnt.data[i], count);
    }
}

void check_cols(const PresolveWork *w, Checker *c)
{
    for (int j = 0; j < w->NumCols; j++) {
        int count = 0, wrong = 0;
        for (int p = first_in_col(w, j); p >= 0; p = next_in_col(w, p)) {
            count++;
            wrong += w->Nodes.data[p].col != j || !is_live_row(w, w->Nodes.data[p].row);
        }
        c->expect(wrong == 0, "column list", j, wrong, 0);
        c->expect(count == std::max(0, w->ColCnt.data[j]), "ColCnt", j, w->ColCnt.data[j],
                  count);
    }
}

void check_activity(const PresolveWork *w, int i, Checker *c)
{
    double low = -w->Rhs.data[i], high = low, size = std::fabs(low);
    int infinite_low = 0, infinite_high = 0;
    for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p)) {
        const PresolveNode &node = w->Nodes.data[p];
        const double lb = w->Lb.data[node.col], ub = w->Ub.data[node.col];
        const double least = node.value > 0 ? lb : ub, most = node.value > 0 ? ub : lb;
        if (std::fabs(least) >= w->INF)
            infinite_low++;
        else
            low += node.value * least;
        if (std::fabs(most) >= w->INF)
            infinite_high++;
        else
            high += node.value * most;
        size = std::max({size, std::fabs(low), std::fabs(high)});
    }
    const double tol = 1e-8 * (1 + size);
    c->expect(infinite_low == w->Rmincnt.data[i], "Rmincnt", i, w->Rmincnt.data[i],
              infinite_low);
    c->expect(infinite_high == w->Rmaxcnt.data[i], "Rmaxcnt", i, w->Rmaxcnt.data[i],
              infinite_high);
    c->expect(std::fabs(low - w->RMin.data[i]) <= tol, "RMin", i, w->RMin.data[i], low);
    c->expect(std::fabs(high - w->RMax.data[i]) <= tol, "RMax", i, w->RMax.data[i], high);
}

void check_errors(const PresolveWork *w, Checker *c)
{
    for (int i = 0; i < w->NumRows; i++)
        c->expect(w->RhsErr.data[i] >= w->DataErr, "RhsErr", i, w->RhsErr.data[i],
                  w->DataErr);
    for (int j = 0; j < w->NumCols; j++)
        c->expect(w->ObjErr.data[j] >= 0 && w->BoundErr.data[j] >= 0, "ObjErr or BoundErr",
                  j, w->ObjErr.data[j], w->BoundErr.data[j]);
    for (int p = 0; p < w->EntrySize.size; p++)
        c->expect(w->EntrySize.data[p] >= 0, "EntrySize", p, w->EntrySize.data[p], 0);
}

void check_integers(const PresolveWork *w, Checker *c)
{
    for (int j = 0; j < w->NumCols; j++) {
        const double lb = w->Lb.data[j], ub = w->Ub.data[j];
        if (!is_live_col(w, j) || !is_integer(w, j)) continue;
        c->expect(lb == std::floor(lb) && ub == std::floor(ub), "integral bounds", j, lb,
                  ub);
    }
    for (int s = 0; s < w->NumSos; s++)
        for (int k = w->SosBeg.data[s]; w->SosType.data[s] && k < w->SosEnd.data[s]; k++) {
            const int j = w->SosInd.data[k];
            c->expect(is_live_col(w, j) && (w->ColFlags.data[j] & COL_IN_SOS), "SOS member",
                      j, w->ColFlags.data[j], COL_IN_SOS);
        }
}
} // namespace

int presolve_verify(const PresolveWork *w)
{
    Checker c;
    check_rows(w, &c);
    check_cols(w, &c);
    for (int i = 0; i < w->NumRows; i++)
        if (is_live_row(w, i)) check_activity(w, i, &c);
    check_errors(w, &c);
    check_integers(w, &c);
    for (int k = 0; k < w->Flag.size; k++)
        c.expect(w->Flag.data[k] == 0 && w->Scratch.data[k] == 0 &&
                     w->ScratchB.data[k] == 0 && w->ScratchC.data[k] == 0,
                 "scratch", k, w->Scratch.data[k], 0);
    return c.broken;
}

#endif
