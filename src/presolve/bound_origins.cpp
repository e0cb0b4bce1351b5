// bound_origins.cpp -- what conclusions from propagated bounds rest on
//
// Problem     A constraint that the others imply may go, but not because of bounds that it has implied itself, be it
//             through a chain of others; and two constraints may not both go, each because of the other.
// Method      A conclusion rests on versions of bounds; a version rests on its constraint and, for each other variable
//             of it, on the version that was the newest when it was found. These links run to earlier versions only. A
//             claim walks all of them: when it meets a constraint (or a bound of the model) that is gone, or the very
//             one that is to go, it fails. Else all it has met is bound to stay, and what was claimed is gone.
// Invariant   What is gone follows from what is bound to stay.
// Cost        Each version is expanded once in all successful claims; failures are paid anew, so that claims are refused
//             once the effort is large.
#include "presolve/bound_propagation.h"
#include <climits>
#include <cmath>

namespace
{
constexpr double ROUNDING = 1e-13; // of the size of a sum
constexpr int SETTLED = -1;        // all that the version rests on is bound to stay
constexpr double MOST_EFFORT = 10; // entries looked at, against those of the matrix

// The newest version of a bound older than version `before` that does not come from constraint `not_from`; -1: the model.
int version_before(const BoundPropagation *p, int place, int before, int not_from)
{
    int k = p->Newest.data[place];
    while (k >= 0 && (k >= before || p->Log.data[k].con == not_from))
        k = p->Log.data[k].before;
    return k;
}

bool see_start(BoundPropagation *p, int place)
{
    char *state = &p->StartState.data[place];
    if (*state == START_GONE) return false;
    if (*state != START_FREE) return true;
    *state = START_SEEN;
    p->StartTrail.data[p->NumStartTrail++] = place;
    return true;
}

bool see(BoundPropagation *p, int place, int version)
{
    if (version < 0) return see_start(p, place);
    if (p->Seen.data[version] == SETTLED || p->Seen.data[version] == p->Claim) return true;
    if (p->ConState.data[p->Log.data[version].con] & CON_GONE) return false;
    p->Seen.data[version] = p->Claim;
    p->Trail.data[p->NumTrail++] = version;
    return true;
}

// The bounds behind the activity of a constraint, without the term of `but`.
bool see_terms(BoundPropagation *p, int con, int side, int but, int before, int not_from)
{
    const ConEntries entries = entries_of(p, con);
    for (int k = entries.begin; k < entries.end; k++) {
        const int v = p->ConVar.data[k];
        p->Effort++;
        if (v == but) continue;
        const int place = term_place(v, p->ConVal.data[k], side);
        if (!see(p, place, version_before(p, place, before, not_from))) return false;
    }
    return true;
}

void begin_claim(BoundPropagation *p)
{
    p->Claim++;
    p->NumTrail = p->NumStartTrail = 0;
}

bool see_origins(BoundPropagation *p)
{
    for (int k = 0; k < p->NumTrail; k++) {
        const int version = p->Trail.data[k];
        const BoundVersion &b = p->Log.data[version];
        if (!see_terms(p, b.con, b.side, b.place / 2, version, -1)) return false;
    }
    return true;
}

bool end_claim(BoundPropagation *p, bool holds)
{
    for (int k = 0; k < p->NumStartTrail; k++)
        p->StartState.data[p->StartTrail.data[k]] =
            static_cast<char>(holds ? START_USED : START_FREE);
    for (int k = 0; holds && k < p->NumTrail; k++) {
        const BoundVersion &b = p->Log.data[p->Trail.data[k]];
        p->Seen.data[p->Trail.data[k]] = SETTLED;
        p->ConState.data[b.con] |=
            static_cast<uint8_t>(b.side == UPPER_SIDE ? CON_HIGH_USED : CON_LOW_USED);
    }
    return holds;
}

bool too_much(const BoundPropagation *p)
{
    return p->Effort > MOST_EFFORT * (static_cast<double>(p->w->NumNz) + 1);
}
} // namespace

double activity_of_others(BoundPropagation *p, int con, int side)
{
    double sum = 0, size = 0;
    const ConEntries entries = entries_of(p, con);
    for (int k = entries.begin; k < entries.end; k++) {
        p->Effort++;
        const double a = p->ConVal.data[k];
        const int place = term_place(p->ConVar.data[k], a, side),
                  version = version_before(p, place, INT_MAX, con);
        const double bound =
            version >= 0 ? p->Log.data[version].value : p->Start.data[place];
        if (std::fabs(bound) >= p->w->INF)
            return side == UPPER_SIDE ? -p->w->INF : p->w->INF;
        sum += a * bound;
        size += std::fabs(a * bound);
    }
    return side == UPPER_SIDE ? sum - ROUNDING * size : sum + ROUNDING * size;
}

bool claim_con(BoundPropagation *p, int con, int sides)
{
    uint8_t *state = &p->ConState.data[con];
    if (*state != 0 || too_much(p)) return false;
    *state = CON_GONE;
    begin_claim(p);
    bool holds = true;
    for (const int side : {LOWER_SIDE, UPPER_SIDE})
        if (sides & (1 << side)) holds = holds && see_terms(p, con, side, -1, INT_MAX, con);
    holds = end_claim(p, holds && see_origins(p));
    if (!holds) *state = 0;
    return holds;
}

bool claim_start(BoundPropagation *p, int place)
{
    char *state = &p->StartState.data[place];
    if (*state != START_FREE || too_much(p)) return false;
    *state = START_GONE;
    begin_claim(p);
    const bool holds = end_claim(p, see(p, place, p->Newest.data[place]) && see_origins(p));
    if (!holds) *state = START_FREE;
    return holds;
}
