// work_probe.cpp -- solve one model and tell what it cost, as a line of JSON behind the log
//
//   tarvex_probe [Name=Value ...] MODEL
//
// Iterations, factorisations and work units are counts that do not depend on the machine: two builds can be
// compared by them while the machine is busy. The solve time is that of the Runtime attribute, finer than the
// log's. Of the iterations, clean_up are those after the way back from a reduced model. Of an optimum the worst
// violations of the model as it was read are told, and whether the basis is one (as many basic entries as rows).
// Exit code 0, or 1 with a line on standard error.
#include "model/model.h"
#include "simplex/simplex.h"
#include "tarvex.h"
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

static constexpr int INT_TYPE = 1, DOUBLE_TYPE = 2;

static int set_parameter(TVXenv *env, char *word, char *equals)
{
    *equals = 0;
    const char *value = equals + 1;
    switch (TVXgetparamtype(env, word)) {
    case INT_TYPE:
        return TVXsetintparam(env, word, atoi(value));
    case DOUBLE_TYPE:
        return TVXsetdblparam(env, word, strtod(value, nullptr));
    default:
        return TVXsetstrparam(env, word, value);
    }
}

static const char *status_name(int status)
{
    switch (status) {
    case TVX_OPTIMAL:
        return "optimal";
    case TVX_INFEASIBLE:
        return "infeasible";
    case TVX_INF_OR_UNBD:
        return "inf_or_unbd";
    case TVX_UNBOUNDED:
        return "unbounded";
    case TVX_NUMERIC:
        return "error";
    default:
        return "limit";
    }
}

static bool has_basis(TVXmodel *model)
{
    int n = 0, m = 0, basic = 0, status = 0;
    TVXgetintattr(model, "NumVars", &n);
    TVXgetintattr(model, "NumConstrs", &m);
    for (int k = 0; k < n + m; k++) {
        const bool var = k < n;
        if (TVXgetintattrelement(model, var ? "VBasis" : "CBasis", var ? k : k - n,
                                 &status))
            return false;
        basic += status == TVX_BASIC;
    }
    return basic == m;
}

static double attribute(TVXmodel *model, const char *name)
{
    double value = NAN;
    return TVXgetdblattr(model, name, &value) ? NAN : value;
}

static void print_optimum(TVXmodel *model)
{
    printf(", \"objective\": %.17g", attribute(model, "ObjVal"));
    const double primal = fmax(attribute(model, "ConstrVio"), attribute(model, "BoundVio"));
    printf(", \"primal_vio\": %.3e, \"dual_vio\": %.3e, \"basis\": %d", primal,
           attribute(model, "DualVio"), has_basis(model));
}

static void print_result(TVXmodel *model, double processor_seconds)
{
    int status = 0;
    const double iterations = attribute(model, "IterCount");
    TVXgetintattr(model, "Status", &status);
    printf("\n{\"status\": \"%s\", \"iterations\": %.0f, \"solve_wall\": %.6f, "
           "\"solve_cpu\": %.6f",
           status_name(status), iterations, attribute(model, "Runtime"), processor_seconds);
    printf(", \"total_work\": %.0f", model->lp.work); // with presolve, all stages
    if (model->lp.result)
        printf(", \"clean_up\": %.0f", iterations - model->lp.result->reduced_itercount);
    if (status == TVX_OPTIMAL) print_optimum(model);
    if (const sopt *s = model->lp.simplex)
        printf(", \"factorizations\": %d, \"work\": %.0f", simplex_factorizations(s),
               simplex_work_units(s));
    printf("}\n");
}

// Of all threads, in seconds.
static double processor_time()
{
    timespec now = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

int main(int argc, char **argv)
{
    TVXenv *env = nullptr;
    TVXmodel *model = nullptr;
    const char *file = nullptr;
    int error = TVXloadenv(&env, nullptr);
    for (int k = 1; k < argc && !error; k++) {
        if (char *equals = strchr(argv[k], '='))
            error = set_parameter(env, argv[k], equals);
        else
            file = argv[k];
    }
    if (argc == 2 && !strcmp(argv[1], "--version")) {
        int major = 0, minor = 0, technical = 0;
        TVXversion(&major, &minor, &technical);
        printf("Tarvex probe %d.%d.%d\n", major, minor, technical);
        TVXfreeenv(env);
        return 0;
    }
    if (!error && !file) {
        fprintf(stderr, "usage: tarvex_probe [Name=Value ...] MODEL\n");
        error = TVX_ERROR_NULL_ARGUMENT;
    }
    if (!error) error = TVXreadmodel(env, file, &model);
    const double begin = processor_time();
    if (!error) error = TVXoptimize(model);
    if (!error)
        print_result(model, processor_time() - begin);
    else
        fprintf(stderr, "tarvex_probe: error %d: %s\n", error, TVXgeterrormsg(env));
    TVXfreemodel(model);
    TVXfreeenv(env);
    return error != 0;
}
