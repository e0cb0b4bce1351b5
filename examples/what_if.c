/* what_if.c -- change a solved model and solve it again, from where the last solve ended
 *
 * A bakery asks what another hour of oven time would earn, hour by hour. Every solve after the first starts from
 * the optimal basis of the one before and needs few iterations or none.
 */
#include <stdio.h>
#include <tarvex.h>

static TVXmodel *build(TVXenv *env)
{
    char *products[] = {"bread", "cake", "rolls"};
    char *resources[] = {"oven", "flour", "work"};
    double profit[] = {45, 80, 30}, need[] = {1, 1.5, 0.5, 14, 8, 9, 0.6, 2, 0.8},
           available[] = {10, 180, 20};
    int begin[] = {0, 3, 6}, product[] = {0, 1, 2, 0, 1, 2, 0, 1, 2};
    TVXmodel *model = NULL;

    if (TVXnewmodel(env, &model, "bakery", 3, profit, NULL, NULL, NULL, products) ||
        TVXsetintattr(model, "ModelSense", -1) ||
        TVXaddconstrs(model, 3, 9, begin, product, need, "<<<", available, resources) ||
        TVXupdatemodel(model)) {
        TVXfreemodel(model);
        return NULL;
    }
    return model;
}

int main(void)
{
    TVXenv *env = NULL;
    TVXmodel *model;
    double profit, iterations;
    int hours, error;

    if (TVXloadenv(&env, NULL)) return 1;
    error = TVXsetintparam(env, "OutputFlag", 0);
    model = error ? NULL : build(env);
    if (!model) error = 1;
    for (hours = 10; !error && hours <= 20; hours++) {
        error = TVXsetdblattrelement(model, "RHS", 0, hours);
        if (!error) error = TVXoptimize(model);
        if (!error) error = TVXgetdblattr(model, "ObjVal", &profit);
        if (!error) error = TVXgetdblattr(model, "IterCount", &iterations);
        if (!error)
            printf("%2d hours of oven: profit %7.2f (%.0f iterations)\n", hours, profit,
                   iterations);
    }
    if (error) fprintf(stderr, "error: %s\n", TVXgeterrormsg(env));
    TVXfreemodel(model);
    TVXfreeenv(env);
    return error != 0;
}
