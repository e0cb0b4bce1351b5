// check.cpp -- the invariants of a model body, tested in debug builds
//
// Counts the broken invariants, in the order of the fields of ModelBody, and describes the first one. Shares no code
// with the routines that build and change bodies. Cost: O(size of the model).
#include "body/body.h"
#ifdef TVX_DEBUG
#include "runtime/text_number.h"
#include <cmath>

namespace
{
struct Faults {
    int count = 0;
    char *where = nullptr; // [BODY_CHECK_LENGTH] the first fault
};

// k is the element concerned, or -1.
void expect(Faults *faults, bool holds, const char *what, int k)
{
    if (holds) return;
    if (faults->count++ == 0)
        text_format(faults->where, BODY_CHECK_LENGTH, "%s, %d", what, k);
}

bool is_sized(int64_t size, int64_t count)
{
    return size == count;
}

bool is_optional(int64_t size, int64_t count)
{
    return size == 0 || size == count;
}

bool check_shape(const ModelBody *b, Faults *f)
{
    const int64_t n = b->numvars;
    const int64_t m = b->numconstrs;
    expect(f, n >= 0 && m >= 0 && b->numnz >= 0 && b->numsos >= 0, "a count is negative",
           -1);
    expect(f, b->sense == 1 || b->sense == -1, "sense", b->sense);
    expect(f, is_sized(b->obj.size, n), "obj has the wrong size", -1);
    expect(f, is_sized(b->lb.size, n) && is_sized(b->ub.size, n), "lb or ub: wrong size",
           -1);
    expect(f, is_sized(b->bound_kind.size, n), "bound_kind has the wrong size", -1);
    expect(f, is_optional(b->vtypes.size, n), "vtypes has the wrong size", -1);
    expect(f, b->given_lb.size == b->vtypes.size && b->given_ub.size == b->vtypes.size,
           "given_lb or given_ub: wrong size", -1);
    expect(f, is_optional(b->varnames.size, n), "varnames has the wrong size", -1);
    expect(f, is_sized(b->vbeg.size, n + 1), "vbeg has the wrong size", -1);
    expect(f, is_sized(b->vlen.size, n), "vlen has the wrong size", -1);
    expect(f, is_sized(b->vind.size, b->numnz), "vind has the wrong size", -1);
    expect(f, is_sized(b->vval.size, b->numnz), "vval has the wrong size", -1);
    expect(f, is_sized(b->rhs.size, m), "rhs has the wrong size", -1);
    expect(f, is_sized(b->senses.size, m), "senses has the wrong size", -1);
    expect(f, is_optional(b->constrnames.size, m), "constrnames has the wrong size", -1);
    expect(f, is_optional(b->row_beg.size, m + 1), "row_beg has the wrong size", -1);
    expect(f, is_sized(b->sostype.size, b->numsos), "sostype has the wrong size", -1);
    expect(f, is_sized(b->sosbeg.size, b->numsos ? b->numsos + 1 : 0), "sosbeg: wrong size",
           -1);
    expect(f, is_sized(b->sosind.size, b->soswt.size), "sosind and soswt differ in size",
           -1);
    return f->count == 0;
}

bool is_bound(double value)
{
    return std::fabs(value) < INFINITE_VALUE ||
           std::fabs(value) == INFINITE_BOUND; // assigned
}

void check_vars(const ModelBody *b, Faults *f)
{
    const double infinite = b->kind_infinity;
    int n_int = 0;
    int n_bin = 0;
    for (int j = 0; j < b->numvars; j++) {
        const char vtype = b->vtypes.size ? b->vtypes[j] : 'C';
        const double lb = b->lb[j];
        const double ub = b->ub[j];
        n_int += vtype != 'C';
        n_bin += vtype == 'B';
        expect(f, strchr("CBISN", vtype) && vtype, "type of variable", j);
        expect(f, std::isfinite(b->obj[j]), "obj of variable", j);
        expect(f, is_bound(lb) && is_bound(ub), "bounds of variable", j);
        expect(f, (b->bound_kind[j] & 1) == (lb <= -infinite), "bound_kind of variable", j);
        expect(f, (b->bound_kind[j] & 2) == (ub >= infinite ? 2 : 0),
               "bound_kind of variable", j);
        if (strchr("CS", vtype) && b->vtypes.size)
            expect(f, lb == b->given_lb[j] && ub == b->given_ub[j], // copies
                   "bounds of a variable that is not integral", j);
        if (strchr("BIN", vtype))
            expect(f, lb == std::floor(lb) && ub == std::floor(ub),
                   "fractional bound of variable", j);
        if (vtype == 'B') expect(f, lb >= 0 && ub <= 1, "binary bounds of variable", j);
    }
    expect(f, n_int == b->numintvars, "numintvars", -1);
    expect(f, n_bin == b->numbinvars, "numbinvars", -1);
}

void check_columns(const ModelBody *b, Faults *f)
{
    expect(f, b->vbeg[0] == 0 && b->vbeg[b->numvars] == b->numnz, "vbeg: ends", -1);
    for (int j = 0; j < b->numvars && f->count == 0; j++)
        expect(f, b->vlen[j] >= 0 && b->vbeg[j] + b->vlen[j] == b->vbeg[j + 1],
               "start or length of column", j);
    Array<int> met;
    if (f->count || array_assign(&met, b->numconstrs, -1))
        return; // benign: only this check is skipped
    for (int j = 0; j < b->numvars; j++) {
        for (int p = b->vbeg[j]; p < b->vbeg[j + 1]; p++) {
            const int i = b->vind[p];
            const bool in = i >= 0 && i < b->numconstrs;
            expect(f, in && met[i] != j, "row index in column", j);
            expect(f, std::isfinite(b->vval[p]), "value in column", j);
            if (in) met[i] = j;
        }
    }
}

void check_constrs(const ModelBody *b, Faults *f)
{
    bool flipped = false;
    for (int i = 0; i < b->numconstrs; i++) {
        flipped = flipped || b->senses[i] == '>';
        expect(f, std::isfinite(b->rhs[i]), "rhs of row", i);
    }
    expect(f, (b->row_flipped == 1) == flipped && abs(b->row_flipped) == 1, "row_flipped",
           -1);
}

// The row-wise copy lists what the columns hold, columns in increasing order.
void check_rows(const ModelBody *b, Faults *f)
{
    if (b->row_beg.size == 0) return;
    Array<int> next;
    if (array_copy(&next, b->row_beg.data, b->row_beg.size)) return; // benign: skipped
    for (int j = 0; j < b->numvars; j++) {
        for (int p = b->vbeg[j]; p < b->vbeg[j + 1]; p++) {
            const int at = next[b->vind[p]]++;
            expect(f,
                   at < b->row_ind.size && b->row_ind[at] == j &&
                       b->row_val[at] == b->vval[p], // a copy
                   "row-wise copy, column", j);
        }
    }
}

void check_sos(const ModelBody *b, Faults *f)
{
    if (b->numsos == 0) return;
    expect(f, b->sosbeg[0] == 0 && b->sosbeg[b->numsos] == b->sosind.size, "sosbeg: ends",
           -1);
    for (int s = 0; s < b->numsos && f->count == 0; s++) {
        bool up = true;
        bool down = true;
        expect(f, b->sostype[s] == 1 || b->sostype[s] == 2, "type of SOS", s);
        expect(f, b->sosbeg[s] <= b->sosbeg[s + 1], "start of SOS", s);
        for (int p = b->sosbeg[s]; p < b->sosbeg[s + 1]; p++) {
            const int j = b->sosind[p];
            expect(f, j >= 0 && j < b->numvars, "member of SOS", s);
            expect(f, std::isfinite(b->soswt[p]), "weight of SOS", s);
            if (p == b->sosbeg[s]) continue;
            up = up && b->soswt[p] >= b->soswt[p - 1];
            down = down && b->soswt[p] <= b->soswt[p - 1];
        }
        expect(f, !b->sos_sorted || up || down, "weights not in order of SOS", s);
    }
}
} // namespace

int body_check(const ModelBody *body, char *where)
{
    Faults faults = {.where = where};
    where[0] = 0;
    if (!check_shape(body, &faults)) return faults.count;
    check_vars(body, &faults);
    check_constrs(body, &faults);
    check_columns(body, &faults);
    if (faults.count == 0) check_rows(body, &faults);
    check_sos(body, &faults);
    return faults.count;
}

#endif
