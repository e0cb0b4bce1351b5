// sos_window.h -- SosWindow: from the first to the last member of an SOS constraint that is not zero
#pragma once
#include "mip/mip_state.h"
#include <cmath>

struct SosWindow {
    int First = -1, Last = -1; // positions in sosind, or -1: all members are zero
    bool fits(int type) const { return Last - First < type; }
};

// `value` gives the value of a column.
template<class Value> SosWindow sos_window(const MIPState *state, int k, Value value)
{
    const ModelBody *body = state->Body;
    SosWindow window;
    for (int p = body->sosbeg.data[k]; p < body->sosbeg.data[k + 1]; p++) {
        if (std::fabs(value(body->sosind.data[p])) <= state->Env->IntFeasTol) continue;
        if (window.First < 0) window.First = p;
        window.Last = p;
    }
    return window;
}
