// primal_partial.cpp -- partial pricing: price a part of the columns in each iteration
//
// Problem     With many more columns than rows the pivot row over all columns takes most of an iteration.
// Method      Keep the dual values Pi instead of all reduced costs; d_j = c_j - a_j Pi only for the columns that are
//             priced. merit_j = d_j^2 / w_j with the static weights w_j = 1 + ||a_j||^2.
//   rotating    a window moves cyclically over all variables; at its length it ends if it contains a candidate
//   multiple    a list of good candidates from one window is priced in each iteration until its merits are small
//   bucket      classes by powers of two of the merit last computed; the best classes are priced first. Every
//               BUCKET_SHIFT choices all classes rise by one, so that each variable is priced again.
// Out         PivotCol, -1 only after all variables were priced with the current Pi.
// Invariant   Pi are the dual values of the phase. bucket: every nonbasic that may enter is in a class; basic variables
//             are removed from theirs when they are priced.
// Cost        The columns priced, and one BTRAN per pivot for Pi.
// Literature  I. Maros, Computational Techniques of the Simplex Method, 2003, 9.5; J. J. Forrest and J. A. Tomlin,
//             "Implementing the simplex method for the Optimization Subroutine Library", IBM Systems J. 31, 1992.
#include "simplex/primal.h"
#include <algorithm>

namespace
{
constexpr int WINDOW_LEAST = 100;     // variables priced in one choice, at least;
constexpr double WINDOW_SHARE = 0.02; // this share of all if that is more
constexpr int LIST_LENGTH = 60;       // candidates kept by multiple pricing
// A new list is made when the best merit falls below this share of the best one when the list was made.
constexpr double LIST_KEEP = 0.1;
constexpr int BUCKET_VISITS = 60; // variables priced after the first candidate was found
constexpr int BUCKET_SHIFT = 10;  // choices until all classes rise by one
constexpr int BUCKET_MIDDLE = 25; // class of merit 1

int window_length(const sopt *s)
{
    return std::max(WINDOW_LEAST, static_cast<int>(WINDOW_SHARE * s->NumVars));
}

// Reduced cost and merit of variable j with the current Pi.
template<class R> R price_column(sopt *s, swork<R> *w, int j)
{
    popt<R> *p = w->Primal;
    const int status = s->VStat.data[j];
    if (status >= 0 || status == AT_FIXED) return R(0);
    const R d = R(p->Phase1 ? p->CostWeight : 1.0) * R(s->Cost.data[j]) -
                column_dot(s, j, p->Pi.data);
    if (j < s->NumCols) p->PriceWork += s->ColBeg.data[j + 1] - s->ColBeg.data[j];
    w->Cbar.data[j] = d;
    const R gain = status == AT_LOWER ? -d : status == AT_UPPER ? d : std::abs(d);
    if (gain <= R(s->OptTol) || p->ColRejected.data[j]) return R(0);
    return d * d / p->Weights.data[j];
}

template<class R> int choose_rotating(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    const int length = window_length(s);
    int best = -1, j = p->PriceStart;
    R best_merit = 0;
    for (int seen = 0; seen < s->NumVars && (best < 0 || seen < length); seen++) {
        if (j >= s->NumVars) j = 0;
        const R merit = price_column(s, w, j);
        if (merit > best_merit) {
            best_merit = merit;
            best = j;
        }
        j++;
    }
    p->PriceStart = j;
    return best;
}

// Prices the list again; variables that are no candidates any more are removed.
template<class R> int best_listed(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    int best = -1, kept = 0;
    R best_merit = 0;
    for (int k = 0; k < p->AuxCount; k++) {
        const int j = p->AuxList.data[k];
        const R merit = price_column(s, w, j);
        if (merit == R(0)) continue; // assigned
        p->AuxList.data[kept++] = j;
        if (merit > best_merit) {
            best_merit = merit;
            best = j;
        }
    }
    p->AuxCount = kept;
    if (best_merit < R(LIST_KEEP) * p->ListMerit) return -1;
    return best;
}

// The best candidates of the next windows; at least one if there is any.
template<class R> int fill_list(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    const int length = window_length(s);
    int best = -1, weakest = 0, j = p->PriceStart;
    R best_merit = 0;
    p->AuxCount = 0;
    for (int seen = 0; seen < s->NumVars && (best < 0 || seen < length * LIST_LENGTH / 10);
         seen++) {
        if (j >= s->NumVars) j = 0;
        const R merit = price_column(s, w, j++);
        if (merit == R(0)) continue; // assigned
        if (p->AuxCount < LIST_LENGTH) {
            p->AuxList.data[p->AuxCount++] = j - 1;
        } else { // replaces another candidate, each in turn, if it is better
            const int other = p->AuxList.data[weakest];
            const R d = w->Cbar.data[other];
            if (d * d / p->Weights.data[other] < merit) p->AuxList.data[weakest] = j - 1;
            weakest = (weakest + 1) % LIST_LENGTH;
        }
        if (merit > best_merit) {
            best_merit = merit;
            best = j - 1;
        }
    }
    p->PriceStart = j;
    p->ListMerit = best_merit;
    return best;
}

int class_of(double merit)
{
    if (merit <= 0) return 0;
    return std::clamp(BUCKET_MIDDLE + std::ilogb(merit) / 2, 1, PRICE_CLASSES - 1);
}

template<class R> void put_in_class(popt<R> *p, int j, int c)
{
    p->ClassNext.data[j] = -1;
    if (p->ClassTail[c] < 0)
        p->ClassHead[c] = j;
    else
        p->ClassNext.data[p->ClassTail[c]] = j;
    p->ClassTail[c] = j;
    p->InClass.data[j] = 1;
}

// All classes rise by one: the members of class c - 1 are appended to class c.
template<class R> void raise_classes(popt<R> *p)
{
    for (int c = PRICE_CLASSES - 1; c > 0; c--) {
        if (p->ClassHead[c - 1] < 0) continue;
        if (p->ClassTail[c] < 0)
            p->ClassHead[c] = p->ClassHead[c - 1];
        else
            p->ClassNext.data[p->ClassTail[c]] = p->ClassHead[c - 1];
        p->ClassTail[c] = p->ClassTail[c - 1];
        p->ClassHead[c - 1] = p->ClassTail[c - 1] = -1;
    }
}

// One choice in bucket pricing.
template<class R> struct BucketWalk {
    int Best = -1;
    R BestMerit = 0;
    int Visits = 0;
    bool is_over() const { return Best >= 0 && Visits >= BUCKET_VISITS; }
};

// Prices the members of class c and moves them to the class of their merit, but not to a higher one within this choice,
// so that the walk over the classes ends.
template<class R> void walk_class(sopt *s, swork<R> *w, int c, BucketWalk<R> *walk)
{
    popt<R> *p = w->Primal;
    const int last = p->ClassTail[c];
    for (int j = p->ClassHead[c], next = -1; j >= 0 && !walk->is_over(); j = next) {
        next = j == last ? -1 : p->ClassNext.data[j];
        p->ClassHead[c] = p->ClassNext.data[j];
        if (p->ClassHead[c] < 0) p->ClassTail[c] = -1;
        p->InClass.data[j] = 0;
        if (is_basic(s, j) || s->VStat.data[j] == AT_FIXED) continue;
        const R merit = price_column(s, w, j);
        walk->Visits++;
        put_in_class(p, j, std::min(c, class_of(static_cast<double>(merit))));
        if (merit <= walk->BestMerit) continue;
        walk->BestMerit = merit;
        walk->Best = j;
    }
}

template<class R> int choose_bucket(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    if (++p->ClassAge % BUCKET_SHIFT == 0) raise_classes(p);
    BucketWalk<R> walk;
    for (int c = PRICE_CLASSES - 1; c >= 0 && !walk.is_over(); c--)
        walk_class(s, w, c, &walk);
    return walk.Best;
}

template<class R> void fill_classes(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    for (int c = 0; c < PRICE_CLASSES; c++) p->ClassHead[c] = p->ClassTail[c] = -1;
    for (int j = 0; j < s->NumVars; j++) {
        p->InClass.data[j] = 0;
        if (is_basic(s, j) || s->VStat.data[j] == AT_FIXED) continue;
        put_in_class(p, j, class_of(static_cast<double>(price_column(s, w, j))));
    }
}
} // namespace

// Dual values of the phase: minus the reduced costs of the slacks, whose columns are unit vectors of cost 0.
template<class R> void primal_partial_refresh(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    for (int i = 0; i < s->NumRows; i++) {
        const int j = s->NumCols + i, status = s->VStat.data[j];
        const R cost = status >= 0 && p->Phase1 ? R(p->RowState.data[status]) : R(0);
        p->Pi.data[i] = cost - w->Cbar.data[j];
    }
    p->AuxCount = 0;
    p->ListMerit = 0;
    if (p->PricingKind == PARTIAL_BUCKET) fill_classes(s, w);
}

template<class R> int primal_partial_choose(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    const double before = p->PriceWork;
    int q = -1;
    switch (p->PricingKind) {
    case PARTIAL_BUCKET:
        q = choose_bucket(s, w);
        break;
    case PARTIAL_MULTIPLE:
        q = best_listed(s, w);
        if (q < 0) q = fill_list(s, w);
        break;
    default:
        q = choose_rotating(s, w);
    }
    s->WorkUnits += p->PriceWork - before;
    return q;
}

template<class R> void primal_partial_costs(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    if (p->CostChange.Count == 0) return;
    svec_copy(&w->Rho, &p->CostChange);
    Btran(&w->Lu, &w->Rho, SOLVE_COSTS, Keep::NO);
    for (int k = 0; k < w->Rho.Count; k++) {
        const int i = w->Rho.Index.data[k];
        p->Pi.data[i] += w->Rho.Value.data[i];
    }
    w->Cbar.data[p->PivotCol] = primal_exact_cbar(s, w);
}

// Pi += (d_q / pivot) Rho, Rho being the pivot row of the inverse.
template<class R> void primal_partial_pivot(sopt *s, swork<R> *w, R pivot)
{
    popt<R> *p = w->Primal;
    const R theta = w->Cbar.data[p->PivotCol] / pivot;
    p->RhoEntries += w->Rho.Count;
    p->RhoCount++;
    for (int k = 0; k < w->Rho.Count; k++) {
        const int i = w->Rho.Index.data[k];
        p->Pi.data[i] += theta * w->Rho.Value.data[i];
    }
    w->Cbar.data[p->PivotCol] = R(0);
    const int leaving = s->BasisHead.data[p->PivotRow];
    if (p->PricingKind == PARTIAL_BUCKET && !p->InClass.data[leaving])
        put_in_class(p, leaving, 0);
}

#define INSTANTIATE(R)                                                                     \
    template void primal_partial_refresh<R>(sopt *, swork<R> *);                           \
    template int primal_partial_choose<R>(sopt *, swork<R> *);                             \
    template void primal_partial_costs<R>(sopt *, swork<R> *);                             \
    template void primal_partial_pivot<R>(sopt *, swork<R> *, R);
INSTANTIATE(double)
INSTANTIATE(long double)
