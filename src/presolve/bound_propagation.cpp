// bound_propagation.cpp -- bound propagation in rounds
//
// Problem     Constraints low <= a v <= high and bounds l <= v <= u imply tighter bounds: a_k v_k <= high - (minimal
//             activity of the other terms), and likewise with low and the maximal activity.
// Method      A round processes the listed constraints and uses bounds as soon as they are found; the next round lists
//             the constraints of the variables whose bounds changed. Activities are computed afresh each time, with a
//             margin for rounding. A bound has to improve by a minimal share, so that no long sequence of tiny
//             improvements arises.
// Invariant   Every version follows from the constraint it names and the bounds that stood before it.
// Cost        A round: O(entries of the listed constraints and of the variables that moved). Versions end with the
//             room of the log.
// Literature  A. L. Brearley, G. Mitra, H. P. Williams, "Analysis of mathematical programming problems prior to
//             applying the simplex algorithm", Math. Prog. 8, 1975.
//             M. W. P. Savelsbergh, "Preprocessing and probing techniques for mixed integer programming problems",
//             ORSA J. Computing 6, 1994.
#include "presolve/bound_propagation.h"
#include "presolve/errors.h"

namespace
{
constexpr double ROUNDING = 1e-13; // rounding error of a sum relative to its size

constexpr double SMALL_ENTRY = 1e-8; // smaller entries imply no reliable bound

constexpr double LARGEST_BOUND = 1e8; // larger implied bounds are ignored

// Smallest improvement of a bound: VISIBLE times its size plus LEAST_MOVE tolerances.
constexpr double VISIBLE = 1e-3, LEAST_MOVE = 10;

constexpr double CHECK_EFFORT = 5e4; // entries between tests of the limits

// If the first round has this share of the constraints, all are copied.
constexpr double SHARE_COPIED = 0.1;

bool is_absent(const BoundPropagation *p, double bound)
{
    return std::fabs(bound) >= p->w->INF;
}

// Activity of one side: the sum of finite terms, the number of infinite ones, the sum of magnitudes.
struct Activity {
    double sum = 0, size = 0;
    int infinite = 0;
};

Activity activity_of(BoundPropagation *p, int con, int side)
{
    Activity a;
    const ConEntries row = entries_of(p, con);
    const int *__restrict var = p->ConVar.data;
    const double *__restrict val = p->ConVal.data, *__restrict bounds = p->Bound.data;
    int k = row.begin;
    for (; k < row.end; k++) {
        const double bound = bounds[term_place(var[k], val[k], side)];
        if (is_absent(p, bound)) {
            if (++a.infinite > 1) break; // no bound is implied
            continue;
        }
        a.sum += val[k] * bound;
        a.size += std::fabs(val[k] * bound);
    }
    p->Effort += k - row.begin;
    return a;
}

void contradict(BoundPropagation *p, int con, int side)
{
    p->Contradiction = true;
    p->WrongCon = con;
    p->WrongSide = side;
}

// Constraint `con` implies that bound `place` is at least as tight as `value`.
void tighten(BoundPropagation *p, int place, double value, int con, int side)
{
    const bool upper = place & 1;
    if (std::fabs(value) >= LARGEST_BOUND || p->Log.size == p->Log.room) return;
    const double old = p->Bound.data[place], other = p->Bound.data[place ^ 1];
    const double gain = upper ? old - value : value - old;
    if (!is_absent(p, old) &&
        gain <= LEAST_MOVE * p->Tol + VISIBLE * std::max(std::fabs(old), std::fabs(value)))
        return;
    if (gain <= 0) return;
    const double crossed = upper ? other - value : value - other;
    if (!is_absent(p, other) && crossed > 0) { // bounds cross within the tolerance: ignored
        if (crossed > p->Tol * (1 + ROUNDING / SMALL_ENTRY * std::fabs(other)))
            contradict(p, con, side);
        return;
    }
    array_push(&p->Log, BoundVersion{value, place, con, side, p->Newest.data[place]});
    p->Seen.data[p->Log.size - 1] = 0;
    p->Newest.data[place] = static_cast<int>(p->Log.size - 1);
    p->Bound.data[place] = value;
    const int v = place / 2;
    if (p->VarListed.data[v]) return;
    p->VarListed.data[v] = 1;
    p->VarList.data[p->NumTightened++] = v;
}

double rounded_if_integer(const BoundPropagation *p, int place, double value)
{
    if (p->kind == PROPAGATE_DUAL || !is_integer(p->w, place / 2)) return value;
    return place & 1 ? std::floor(value + p->w->IntTol) : std::ceil(value - p->w->IntTol);
}

void imply(BoundPropagation *p, int con, int side)
{
    const double limit = p->Limit.data[2 * con + side];
    if (is_absent(p, limit)) return;
    const Activity all = activity_of(p, con, side);
    if (all.infinite > 1) return;
    const double margin = ROUNDING * (all.size + std::fabs(limit));
    const double excess = side == UPPER_SIDE ? all.sum - limit : limit - all.sum;
    if (all.infinite == 0 && excess > p->Tol + margin) return contradict(p, con, side);
    const ConEntries row = entries_of(p, con);
    for (int k = row.begin; k < row.end && !p->Contradiction; k++) {
        const double a = p->ConVal.data[k];
        const int place = term_place(p->ConVar.data[k], a, side);
        const double own = p->Bound.data[place];
        const bool missing = is_absent(p, own);
        if (all.infinite != (missing ? 1 : 0) || std::fabs(a) < SMALL_ENTRY) continue;
        const double range = std::fabs(a * (p->Bound.data[place ^ 1] - own));
        if (!missing && range <= -excess) continue; // not tighter
        const double rest = missing ? all.sum : all.sum - a * own;
        const double t = (limit - rest) / a, slack = margin / std::fabs(a);
        const bool upper = !(place & 1); // the term used the other bound
        tighten(p, place ^ 1,
                rounded_if_integer(p, place ^ 1, upper ? t + slack : t - slack), con, side);
    }
}

// Lists the constraints of the variables whose bounds changed.
int list_next(BoundPropagation *p)
{
    const bool primal = p->kind == PROPAGATE_PRIMAL;
    p->NumListed = 0;
    for (int k = 0; k < p->NumTightened; k++) {
        const int v = p->VarList.data[k];
        p->VarListed.data[v] = 0;
        TRY(propagation_check(p));
        for (int e = primal ? first_in_col(p->w, v) : first_in_row(p->w, v); e >= 0;
             e = primal ? next_in_col(p->w, e) : next_in_row(p->w, e)) {
            const PresolveNode &node = p->w->Nodes.data[e];
            propagation_list(p, primal ? node.row : node.col);
            p->Effort++;
        }
    }
    p->NumTightened = 0;
    return 0;
}

int alloc_bounds(BoundPropagation *p)
{
    const int64_t places = 2 * int64_t{p->NumVars};
    TRY(array_assign(&p->Newest, places, -1));
    TRY(presolve_check(p->w));
    TRY(array_assign(&p->StartState, places, char(START_FREE)));
    TRY(array_resize(&p->StartTrail, places));
    TRY(array_resize(&p->Start, places));
    for (int64_t k = 0; k < places; k++) p->Start.data[k] = k & 1 ? p->w->INF : -p->w->INF;
    TRY(presolve_check(p->w));
    return array_resize(&p->Bound, places);
}

int alloc_cons(BoundPropagation *p)
{
    TRY(array_resize(&p->Limit, 2 * int64_t{p->NumCons}));
    for (int64_t k = 0; k < p->Limit.size; k++)
        p->Limit.data[k] = k & 1 ? p->w->INF : -p->w->INF;
    TRY(presolve_check(p->w));
    TRY(array_assign(&p->Con, p->NumCons, ConEntries{-1, -1}));
    TRY(presolve_check(p->w));
    TRY(array_resize(&p->ConList, p->NumCons));
    TRY(array_assign(&p->ConListed, p->NumCons, char(0)));
    return array_assign(&p->ConState, p->NumCons, uint8_t{0});
}

// The log has room for a version of each bound and each entry.
int alloc_lists(BoundPropagation *p)
{
    const PresolveWork *w = p->w;
    int64_t entries = 0;
    for (int i = 0; i < w->NumRows; i++) entries += std::max(0, w->RowCnt.data[i]);
    const int64_t room = 2 * int64_t{p->NumVars} + 16 + entries;
    TRY(array_reserve(&p->Log, std::min(room, int64_t{INT32_MAX})));
    TRY(array_resize(&p->Seen, p->Log.room));
    TRY(array_resize(&p->Trail, p->Log.room));
    TRY(array_resize(&p->ConVar, entries));
    TRY(array_resize(&p->ConVal, entries));
    TRY(array_resize(&p->VarList, p->NumVars));
    TRY(presolve_check(w));
    return array_assign(&p->VarListed, p->NumVars, char(0));
}
} // namespace

int propagation_alloc(BoundPropagation *p, PresolveWork *w, PropagationKind kind)
{
    const bool primal = kind == PROPAGATE_PRIMAL;
    p->w = w;
    p->kind = kind;
    p->NumVars = primal ? w->NumCols : w->NumRows;
    p->NumCons = primal ? w->NumRows : w->NumCols;
    p->Tol = primal ? w->FeasTol : w->OptTol;
    TRY(alloc_bounds(p));
    TRY(alloc_cons(p));
    return alloc_lists(p);
}

void propagation_copy(BoundPropagation *p, int con)
{
    const PresolveWork *w = p->w;
    const bool primal = p->kind == PROPAGATE_PRIMAL;
    int k = p->NumCopied;
    p->Con.data[con].begin = k;
    for (int e = primal ? first_in_row(w, con) : first_in_col(w, con); e >= 0;
         e = primal ? next_in_row(w, e) : next_in_col(w, e)) {
        const PresolveNode &node = w->Nodes.data[e];
        p->ConVar.data[k] = primal ? node.col : node.row;
        p->ConVal.data[k++] = node.value;
    }
    p->Con.data[con].end = p->NumCopied = k;
}

namespace
{
int copy_all(BoundPropagation *p)
{
    PresolveWork *w = p->w;
    const bool primal = p->kind == PROPAGATE_PRIMAL;
    const int *count = primal ? w->RowCnt.data : w->ColCnt.data;
    int at = 0;
    for (int c = 0; c < p->NumCons; c++) {
        p->Con.data[c] = {at, at};
        at += std::max(0, count[c]);
    }
    p->NumCopied = at;
    for (int64_t e = 0; e < w->Nodes.size; e++) {
        const PresolveNode &node = w->Nodes.data[e];
        TRY(check_limits(w, 1));
        if (node.col < 0) continue;
        const int k = p->Con.data[primal ? node.row : node.col].end++;
        p->ConVar.data[k] = primal ? node.col : node.row;
        p->ConVal.data[k] = node.value;
    }
    return 0;
}
} // namespace

void propagation_set_rows(BoundPropagation *p, double relax)
{
    const PresolveWork *w = p->w;
    for (int i = 0; i < w->NumRows; i++) {
        if (!is_live_row(w, i)) continue;
        const double wider = std::max(relax, rhs_error(w, i));
        p->Limit.data[2 * i + UPPER_SIDE] = w->Rhs.data[i] + wider;
        if (w->Sense.data[i] == '=')
            p->Limit.data[2 * i + LOWER_SIDE] = w->Rhs.data[i] - wider;
    }
    for (int j = 0; j < w->NumCols; j++) {
        const double wider = bound_error(w, j); // 0 for original bounds
        p->Start.data[2 * j + LOWER_SIDE] = has_lb(w, j) ? w->Lb.data[j] - wider : -w->INF;
        p->Start.data[2 * j + UPPER_SIDE] = has_ub(w, j) ? w->Ub.data[j] + wider : w->INF;
    }
}

void propagation_list(BoundPropagation *p, int con)
{
    if (p->ConListed.data[con]) return;
    p->ConListed.data[con] = 1;
    p->ConList.data[p->NumListed++] = con;
}

void propagation_list_all(BoundPropagation *p)
{
    const int *count = p->kind == PROPAGATE_PRIMAL ? p->w->RowCnt.data : p->w->ColCnt.data;
    for (int c = 0; c < p->NumCons; c++)
        if (count[c] > 0) propagation_list(p, c);
}

int propagation_check(BoundPropagation *p)
{
    if (p->Effort < p->NextCheck) return 0;
    p->NextCheck = p->Effort + CHECK_EFFORT;
    return presolve_check(p->w);
}

int propagation_run(BoundPropagation *p, int rounds)
{
    std::copy_n(p->Start.data, p->Start.size, p->Bound.data);
    TRY(presolve_check(p->w));
    if (p->NumListed > SHARE_COPIED * p->NumCons) TRY(copy_all(p));
    for (int round = 0; round < rounds && p->NumListed > 0; round++) {
        for (int k = 0; k < p->NumListed && !p->Contradiction; k++) {
            const int con = p->ConList.data[k];
            p->ConListed.data[con] = 0;
            p->Effort++;
            TRY(propagation_check(p));
            imply(p, con, UPPER_SIDE);
            imply(p, con, LOWER_SIDE);
        }
        if (p->Contradiction) break;
        TRY(list_next(p));
    }
    return 0;
}

namespace
{
// Adds t times constraint `con` to the sum.
void add_multiple(BoundPropagation *p, int con, double t, double *cons, double *vars)
{
    const ConEntries row = entries_of(p, con);
    cons[con] += t;
    for (int k = row.begin; k < row.end; k++)
        vars[p->ConVar.data[k]] -= t * p->ConVal.data[k];
}

double coefficient(BoundPropagation *p, int con, int var)
{
    const ConEntries row = entries_of(p, con);
    int k = row.begin;
    while (p->ConVar.data[k] != var) k++;
    return p->ConVal.data[k];
}
} // namespace

// From the newest version to the oldest: the multiplier of an implied bound is replaced by one of its constraint.
void propagation_unfold(BoundPropagation *p, double *con, double *var)
{
    for (int64_t k = p->Log.size - 1; k >= 0; k--) {
        const BoundVersion &b = p->Log.data[k];
        const int v = b.place / 2;
        const double d = var[v];
        if (b.place & 1 ? d >= 0 : d <= 0) continue;
        add_multiple(p, b.con, d / coefficient(p, b.con, v), con, var);
        var[v] = 0;
    }
}

int propagation_proof(BoundPropagation *p, Array<double> *con, Array<double> *var)
{
    TRY(array_assign(con, p->NumCons, 0.0));
    TRY(array_assign(var, p->NumVars, 0.0));
    add_multiple(p, p->WrongCon, p->WrongSide == UPPER_SIDE ? -1 : 1, con->data, var->data);
    propagation_unfold(p, con->data, var->data);
    return 0;
}
