// lp_form.h -- LpForm, the form of a linear model that is presolved and solved: the model or its dual
#pragma once
#include "lp/lp.h"
#include "presolve/presolve.h"

struct LpForm {
    const ModelBody *body = nullptr;      // the model's own, or `dual`
    ModelBody *dual = nullptr;            // owned; null: the form is the model itself
    bool presolved = false;               // presolve has run
    PresolveStatus outcome = PRESOLVE_OK; // of presolve
    LpClaim claim;                        // behind an outcome without optimum
    PresolveResult *presolve = nullptr;   // owned; with PRESOLVE_OK
    sopt *simplex = nullptr;              // owned; of the reduced body
};
// What a status of presolve says as a status of the solve; 0 for PRESOLVE_OK, which says nothing of it.
int lp_status_of(PresolveStatus outcome);
// For this method, by PreDual and the shape; PreDual 2 presolves both, on two threads, and compares. The work is added
// to lp->work. 0 or OUT_OF_MEMORY.
[[nodiscard]] int lp_form_choose(LpSolve *lp, LpMethod method, LpForm **out);
// Presolve runs, if it has not yet. 0 or OUT_OF_MEMORY; the outcome is in the form.
[[nodiscard]] int lp_form_presolve(LpSolve *lp, LpMethod method, LpForm *form);
void lp_form_free(LpForm *form);          // null is ignored
void lp_form_drop_presolve(LpForm *form); // the result of presolve and the record on it
inline const ModelBody *lp_form_reduced(const LpForm *form) // or null when nothing is left
{
    return form->presolve ? presolve_reduced(form->presolve) : nullptr;
}
// Makes the optimal basis of a reduced body one that postsolve can use. The status of the record may become
// TVX_NUMERIC. 0 or OUT_OF_MEMORY.
[[nodiscard]] int lp_postsolve_prepare(const PresolveResult *presolve, sopt *simplex);
// The basis of the body behind `presolve` [n + m] that belongs to the one in `simplex` (null when nothing is left): of
// an optimal one it is optimal, of another one it may lack or exceed basic entries. `stopped` as in postsolve_lp; after
// a limit *statuses is as before. 0 or OUT_OF_MEMORY.
[[nodiscard]] int lp_postsolve_basis(const PresolveResult *presolve, const sopt *simplex,
                                     Array<int> *statuses, PresolveStatus *stopped);
