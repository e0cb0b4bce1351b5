/* solve_file.c -- read a model from a file, solve it within a time limit, report how that ended
 *
 *   solve_file MODEL [SECONDS]
 */
#include <stdio.h>
#include <stdlib.h>
#include <tarvex.h>

/* Says what the status means for the caller and prints the values that are not zero. */
static int report(TVXmodel *model)
{
    int status, numvars, solutions, j, error;
    double objective, x;
    char *name;

    error = TVXgetintattr(model, "Status", &status);
    if (!error) error = TVXgetintattr(model, "NumVars", &numvars);
    if (!error) error = TVXgetintattr(model, "SolCount", &solutions);
    if (error) return error;
    if (status == TVX_INFEASIBLE) printf("no point satisfies all constraints\n");
    if (status == TVX_UNBOUNDED) printf("the objective can grow without limit\n");
    if (status == TVX_INF_OR_UNBD)
        printf("infeasible or unbounded; Presolve=0 tells which\n");
    if (status == TVX_TIME_LIMIT) printf("out of time\n");
    if (solutions == 0) return 0;

    error = TVXgetdblattr(model, "ObjVal", &objective);
    if (error) return error;
    printf("objective %.10g\n", objective);
    for (j = 0; j < numvars; j++) {
        error = TVXgetdblattrelement(model, "X", j, &x);
        if (!error) error = TVXgetstrattrelement(model, "VarName", j, &name);
        if (error) return error;
        if (x != 0) printf("%s = %.10g\n", name, x);
    }
    return 0;
}

int main(int argc, char **argv)
{
    TVXenv *env = NULL;
    TVXmodel *model = NULL;
    int error;

    if (argc < 2) {
        fprintf(stderr, "usage: solve_file MODEL [SECONDS]\n");
        return 2;
    }
    error = TVXloadenv(&env, NULL);
    if (!error && argc > 2) error = TVXsetdblparam(env, "TimeLimit", atof(argv[2]));
    if (!error) error = TVXreadmodel(env, argv[1], &model);
    if (!error) error = TVXoptimize(model);
    if (!error) error = report(model);
    if (error) fprintf(stderr, "error %d: %s\n", error, TVXgeterrormsg(env));
    TVXfreemodel(model);
    TVXfreeenv(env);
    return error != 0;
}
