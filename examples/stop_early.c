/* stop_early.c -- stop a solve from a callback once a plan is good enough
 *
 *   stop_early MODEL [ENOUGH]
 *
 * The primal simplex goes from feasible plan to better feasible plan: the first one whose objective is as good as ENOUGH will
 * do, or the first of all when no ENOUGH is given.
 */
#include <stdio.h>
#include <stdlib.h>
#include <tarvex.h>

#define GOOD_ENOUGH 1 /* our own code, which TVXoptimize returns */

struct goal {
    int sense; /* 1: the objective is to be small, -1: large */
    double enough;
};

static int watch(TVXmodel *model, void *cbdata, int where, void *usrdata)
{
    const struct goal *goal = usrdata;
    double infeasibility, objective;

    (void)model;
    if (where != TVX_WHERE_SIMPLEX) return 0;
    TVXcbget(cbdata, where, TVX_CB_SIMPLEX_PRIMAL_INFEASIBILITY, &infeasibility);
    TVXcbget(cbdata, where, TVX_CB_SIMPLEX_OBJECTIVE, &objective);
    if (infeasibility > 0 || goal->sense * objective > goal->sense * goal->enough) return 0;
    return GOOD_ENOUGH;
}

int main(int argc, char **argv)
{
    struct goal goal;
    TVXenv *env = NULL;
    TVXmodel *model = NULL;
    double objective;
    int status = 0, error;

    if (argc < 2) {
        fprintf(stderr, "usage: stop_early MODEL [ENOUGH]\n");
        return 2;
    }
    error = TVXloadenv(&env, NULL);
    if (!error) error = TVXreadmodel(env, argv[1], &model);
    if (!error) error = TVXgetintattr(model, "ModelSense", &goal.sense);
    if (!error) goal.enough = argc > 2 ? atof(argv[2]) : goal.sense * TVX_INFINITY;
    if (!error)
        error = TVXsetintparam(TVXgetenv(model), "LPMethod", 0); /* primal simplex */
    if (!error)
        error = TVXsetintparam(TVXgetenv(model), "Presolve", 0); /* on the model itself */
    if (!error) error = TVXsetcallbackfunc(model, watch, &goal);
    if (!error) error = TVXoptimize(model);
    if (error == GOOD_ENOUGH) error = 0; /* no failure: Status is TVX_INTERRUPTED */
    if (!error) error = TVXgetintattr(model, "Status", &status);
    if (!error && (status == TVX_OPTIMAL || status == TVX_INTERRUPTED)) {
        error = TVXgetdblattr(model, "ObjVal", &objective);
        if (!error)
            printf("%s: %.2f\n", status == TVX_OPTIMAL ? "the best plan" : "good enough",
                   objective);
    }
    if (error) fprintf(stderr, "error %d: %s\n", error, TVXgeterrormsg(env));
    TVXfreemodel(model);
    TVXfreeenv(env);
    return error != 0;
}
