// sos_window.h -- SosWindow: from the first to the last member of an SOS constraint that is not zero
#pragma once
#include "mip/mip_state.h"
#include <cmath>

struct SosWindow {
    int First = -1, Last = -1; // positions in sosind, or -1: all members are zero
    bool fits(int type) const { return Last - First < type; }
};

// `value` gives the value of a column, values up to `zero` are none.
template<class Value>
SosWindow sos_window_beyond(double zero, const MIPState *state, int k, Value value)
{
    const ModelBody *body = state->Body;
    SosWindow window;
    for (int p = body->sosbeg.data[k]; p < body->sosbeg.data[k + 1]; p++) {
        if (std::fabs(value(body->sosind.data[p])) <= zero) continue;
        if (window.First < 0) window.First = p;
        window.Last = p;
    }
    return window;
}
template<class Value> SosWindow sos_window(const MIPState *state, int k, Value value)
{
    return sos_window_beyond(state->Env->IntFeasTol, state, k, value);
}

static constexpr double SOS_ROUNDING = 1e-12; // a member this near zero is so by rounding

// For a branch: members that are zero within the tolerance only count where no others violate the constraint.
template<class Value> SosWindow sos_branch_window(const MIPState *state, int k, Value value)
{
    const SosWindow window = sos_window(state, k, value);
    return window.fits(state->Body->sostype.data[k])
               ? sos_window_beyond(SOS_ROUNDING, state, k, value)
               : window;
}
