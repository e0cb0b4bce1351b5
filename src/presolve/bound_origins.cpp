// bound_origins.cpp -- the constraints and bounds that a conclusion from propagated bounds depends on
//
// Problem     A constraint implied by the others may be removed, but not because of bounds that it has implied itself,
//             directly or through other constraints; and two constraints must not both be removed because of each
//             other.
// Method      A conclusion depends on versions of bounds; a version depends on its constraint and, for each other
//             variable of it, on the version that was the newest when it was found. These dependencies lead to earlier
//             versions only. A claim visits all of them: if it meets a constraint (or a bound of the model) that is
//             removed, or the one that is to be removed, it fails. Otherwise all that it has visited is kept from then
//             on, and the claimed constraint or bound counts as removed.
// Invariant   What is removed is implied by what is kept.
// Cost        Each version is expanded once over all successful claims; failed claims are not stored, so claims are
//             refused when the effort becomes large.
#include "presolve/bound_propagation.h"
#include <climits>
#include <cmath>

namespace
{
constexpr double ROUNDING = 1e-13; // rounding error of a sum relative to its size
constexpr int SETTLED = -1;        // everything that the version depends on is kept
// limit of the effort, as a multiple of the entries of the matrix
constexpr double MOST_EFFORT = 10;

// The newest version of a bound before version `before` that is not from constraint `not_from`; -1: the bound of the
// model.
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

// Visits the bounds in the activity of a constraint, without the term of variable `but`.
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
