// sos_fixings.cpp -- special ordered sets with members that cannot be zero
//
// Method      In a set of type 1 a member that cannot be zero makes all others zero. In a set of type 2 two such members
//             have to be neighbours, and all outside of them are zero; one leaves its two neighbours. Members that are
//             fixed at zero leave the set. In a set of type 2 one of them stays between others: without it these
//             would become neighbours. A set that excludes nothing is dissolved.
// Postsolve   None: the columns are members until the set is dissolved, and fixed later like any others.
// Cost        O(members)
// Literature  E. M. L. Beale, J. A. Tomlin, "Special facilities in a general mathematical programming system for
//             non-convex problems using ordered sets of variables", OR 69, 1970.
#include "presolve/errors.h"

namespace
{
// True if column j is above or below 0 in every solution.
bool is_forced(const PresolveWork *w, int j)
{
    const double zero = w->FeasTol + bound_error(w, j);
    return w->Lb.data[j] > zero || w->Ub.data[j] < -zero;
}

bool is_zero(const PresolveWork *w, int j)
{
    return w->Lb.data[j] == 0 && w->Ub.data[j] == 0; // as fixed or given
}

// The first and the last member that is forced, as places in SosInd; first > last if there is none.
struct Forced {
    int first, last;
};

Forced find_forced(const PresolveWork *w, int s)
{
    Forced f = {w->SosEnd.data[s], w->SosBeg.data[s] - 1};
    for (int k = w->SosBeg.data[s]; k < w->SosEnd.data[s]; k++) {
        if (!is_forced(w, w->SosInd.data[k])) continue;
        if (f.first > f.last) f.first = k;
        f.last = k;
    }
    return f;
}

int fix_at_zero(PresolveWork *w, int j)
{
    if (is_zero(w, j)) return 0;
    w->BoundsChanged++;
    return fix_column(w, j, 0, STATUS_BY_SIGN);
}

// Fixes what the forced members exclude.
int apply_forced(PresolveWork *w, int s)
{
    const Forced f = find_forced(w, s);
    if (f.first > f.last) return 0;
    const int most = w->SosType.data[s], more = most - 1 - (f.last - f.first);
    if (more < 0) {
        w->InfeasCol = w->SosInd.data[f.last];
        return END_INFEASIBLE;
    }
    for (int k = w->SosBeg.data[s]; k < w->SosEnd.data[s]; k++)
        if (k < f.first - more || k > f.last + more) TRY(fix_at_zero(w, w->SosInd.data[k]));
    return 0;
}

// Column j is no longer member of one of its sets.
void leave_set(PresolveWork *w, int j)
{
    if (--w->SosCount.data[j] > 0) return;
    w->ColFlags.data[j] &= ~COL_IN_SOS;
    mark_col(w, j);
    mark_rows_of_col(w, j);
}

// Keeps the members that matter: others than zero, and in a set of type 2 one zero between them.
void compact_set(PresolveWork *w, int s)
{
    const bool separates = w->SosType.data[s] == 2;
    const int begin = w->SosBeg.data[s], end = w->SosEnd.data[s];
    int kept = begin, waiting = -1; // a zero since the last other member
    for (int k = begin; k < end; k++) {
        const int j = w->SosInd.data[k];
        const double weight = w->SosWeight.data[k];
        if (is_zero(w, j)) {
            if (separates && kept > begin && waiting < 0)
                waiting = k;
            else
                leave_set(w, j);
            continue;
        }
        if (waiting >= 0) { // kept <= waiting < k
            w->SosInd.data[kept] = w->SosInd.data[waiting];
            w->SosWeight.data[kept++] = w->SosWeight.data[waiting];
            waiting = -1;
        }
        w->SosInd.data[kept] = j;
        w->SosWeight.data[kept++] = weight;
    }
    if (waiting >= 0) leave_set(w, w->SosInd.data[waiting]);
    w->SosEnd.data[s] = kept;
}

void dissolve_if_empty(PresolveWork *w, int s)
{
    const int begin = w->SosBeg.data[s], end = w->SosEnd.data[s];
    if (end - begin > w->SosType.data[s]) return;
    for (int k = begin; k < end; k++) leave_set(w, w->SosInd.data[k]);
    w->SosType.data[s] = 0;
    w->SosEnd.data[s] = begin;
}
} // namespace

int pre_sos_fixings(PresolveWork *w)
{
    for (int s = 0; s < w->NumSos; s++) {
        if (w->SosType.data[s] == 0) continue;
        TRY(check_limits(w, 3.0 * (w->SosEnd.data[s] - w->SosBeg.data[s])));
        w->Work += 3.0 * (w->SosEnd.data[s] - w->SosBeg.data[s]);
        TRY(apply_forced(w, s));
        compact_set(w, s);
        dissolve_if_empty(w, s);
    }
    return 0;
}
