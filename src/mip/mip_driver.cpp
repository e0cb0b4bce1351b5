// mip_driver.cpp -- the solve of a mixed-integer program: its parameters around the search
//
// Method   The search works in a copy of the caller's environment, in which the presets of MIPFocus are made. There is
//          no search yet, so the model is refused as a whole: its relaxation alone would be an answer to another
//          question.
#include "mip/mip.h"

namespace
{
// Where the search is to be called. Leaves no result, so that the status stays TVX_LOADED.
int search(const ModelBody *body, TVXenv *env)
{
    return fail(env, TVX_ERROR_NOT_FOR_MIP, Report::KEEP_FIRST,
                "Only continuous models can be solved: this one has %d integer or "
                "semi-continuous variables and %d SOS constraints",
                body->numintvars, body->numsos);
}
} // namespace

void mip_drop(MipSolve *mip)
{
    record_free(mip->result);
    mip->result = nullptr;
}

int mip_solve(MipSolve *mip, const ModelBody *body, TVXenv *env)
{
    mip->body = body;
    mip->env = env;
    mip_drop(mip);
    TVXenv *own = nullptr;
    TRY(env_variant(&own, env));
    mip_focus_apply(own);
    const int code = search(body, own);
    env_free(own);
    return code;
}
