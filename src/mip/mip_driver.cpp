// mip_driver.cpp -- the route of a mixed-integer program: its parameters around the search
//
// Method   Presets of MIPFocus hold for the length of the search and are taken back whatever its
//          outcome. There is no search yet, so the model is refused as a whole: its relaxation alone
//          would be an answer to another question.
#include "api/optimize.h"

// Where the search is to be called. Leaves no result, so that the status stays TVX_LOADED.
static int search(TVXmodel *model)
{
    const ModelBody *body = model->body;
    return fail_model(model, TVX_ERROR_NOT_FOR_MIP, Report::KEEP_FIRST,
                      "Only continuous models can be solved: this one has %d integer or "
                      "semi-continuous variables and %d SOS constraints",
                      body->numintvars, body->numsos);
}

int mip_driver(TVXmodel *model)
{
    model_free_results(model);
    model->status = TVX_LOADED;
    const MipFocusSaved saved = mip_focus_apply(model->env);
    const int code = search(model);
    mip_focus_restore(model->env, saved);
    return code;
}
