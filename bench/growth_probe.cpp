// growth_probe.cpp -- make a model of a family, presolve it and come back, and tell what that took, as a line of JSON
//
//   tarvex_growth FAMILY ENTRIES [Name=Value ...]             presolve and postsolve
//   tarvex_growth FAMILY ENTRIES solve [Name=Value ...]       solve, and compare with the optimum where it is known
//   tarvex_growth FAMILY ENTRIES limits COUNT [Name=Value...]  stop a solve at so many moments of presolve: overruns
//   tarvex_growth                                             names of the families
//
// Postsolve starts from made-up values of the reduced model: its cost does not depend on them. Times are those of
// the processor; `late` is what the solve still used of it after the limit, so that a busy machine does not count.
#include "growth_families.h"
#include "model/model.h"
#include "presolve/presolve.h"
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <malloc.h>
#include <string>
#include <thread>
#include <time.h>

namespace
{
double processor_time(clockid_t clock)
{
    timespec t = {};
    clock_gettime(clock, &t);
    return static_cast<double>(t.tv_sec) + 1e-9 * static_cast<double>(t.tv_nsec);
}

// MB of this process: VmRSS now, VmHWM at most since the last reset.
double memory(const char *field)
{
    char line[200];
    double kb = 0;
    FILE *f = fopen("/proc/self/status", "r");
    while (f && fgets(line, sizeof line, f))
        if (!strncmp(line, field, strlen(field))) kb = atof(line + strlen(field) + 1);
    if (f) fclose(f);
    return kb / 1024;
}
void reset_peak()
{
    malloc_trim(0);
    if (FILE *f = fopen("/proc/self/clear_refs", "w")) {
        fputs("5", f);
        fclose(f);
    }
}

// The arrays of a model by columns; entries that meet in one place are summed.
struct Columns {
    std::vector<int> beg, len, ind;
    std::vector<double> val;
};

Columns sort_entries(const GrowthModel &g)
{
    Columns c;
    const size_t n = g.obj.size();
    c.beg.assign(n + 1, 0);
    for (const int j : g.col) c.beg[static_cast<size_t>(j) + 1]++;
    for (size_t j = 0; j < n; j++) c.beg[j + 1] += c.beg[j];
    c.len.assign(n, 0);
    c.ind.resize(g.col.size());
    c.val.resize(g.col.size());
    for (size_t p = 0; p < g.col.size(); p++) {
        const size_t j = static_cast<size_t>(g.col[p]);
        const size_t begin = static_cast<size_t>(c.beg[j]),
                     end = begin + static_cast<size_t>(c.len[j]);
        const size_t known =
            std::min(end, begin + 32); // only short columns meet a row twice
        const size_t q = static_cast<size_t>(
            std::find(c.ind.begin() + static_cast<long>(begin),
                      c.ind.begin() + static_cast<long>(known), g.row[p]) -
            c.ind.begin());
        if (q < known) {
            c.val[q] += g.value[p];
            continue;
        }
        c.ind[end] = g.row[p];
        c.val[end] = g.value[p];
        c.len[j]++;
    }
    return c;
}

int load(TVXenv *env, GrowthModel *g, TVXmodel **model)
{
    Columns c = sort_entries(*g);
    g->row = g->col = {};
    g->value = {};
    return TVXloadmodel(env, model, "growth", g->num_cols(), g->num_rows(), 1, 0,
                        g->obj.data(), g->senses.data(), g->rhs.data(), c.beg.data(),
                        c.len.data(), c.ind.data(), c.val.data(), g->lb.data(),
                        g->ub.data(), nullptr, nullptr, nullptr);
}

int set_parameter(TVXenv *env, const char *word)
{
    const std::string name(word, static_cast<size_t>(strchr(word, '=') - word));
    const char *value = strchr(word, '=') + 1;
    return TVXgetparamtype(env, name.c_str()) == 1
               ? TVXsetintparam(env, name.c_str(), atoi(value))
               : TVXsetdblparam(env, name.c_str(), atof(value));
}

// A point of the reduced model that sends postsolve through its longer branches.
int made_up_point(const ModelBody *reduced, LpPoint *point)
{
    const int n = reduced->numvars, m = reduced->numconstrs;
    if (const int error = lp_point_alloc(point, reduced, true)) return error;
    for (int k = 0; k < n + m; k++) {
        point->x.data[k] = k % 7;
        point->dual.data[k] = k % 5 - 2;
        point->status.data[k] = k >= n ? 0 : -1;
    }
    return 0;
}

int measure(TVXmodel *model)
{
    const ModelBody *body = model->body;
    const double at_start = memory("VmRSS:");
    const double t0 = processor_time(CLOCK_PROCESS_CPUTIME_ID);
    PresolveResult *result = nullptr;
    double work = 0;
    PresolveStatus status = PRESOLVE_OK;
    if (const int code =
            presolve_lp(body, model->env, LP_DUAL_SIMPLEX, &result, &status, &work))
        return code;
    const double t1 = processor_time(CLOCK_PROCESS_CPUTIME_ID),
                 peak = memory("VmHWM:") - at_start;
    LpPoint reduced, full;
    int error = 0;
    const ModelBody *small = result ? presolve_reduced(result) : nullptr;
    if (small) error = made_up_point(small, &reduced);
    const double t2 = processor_time(CLOCK_PROCESS_CPUTIME_ID);
    if (!error && status == PRESOLVE_OK)
        error = postsolve_lp(result, small ? &reduced : nullptr, &full);
    const double t3 = processor_time(CLOCK_PROCESS_CPUTIME_ID);
    const ModelBody none, *left = small ? small : &none;
    printf("{\"rows\": %d, \"cols\": %d, \"entries\": %d, \"status\": %d, \"rows_left\": "
           "%d, \"cols_left\": %d, "
           "\"entries_left\": %d, \"presolve\": %.6f, \"postsolve\": %.6f, \"work\": %.0f, "
           "\"memory\": %.1f}\n",
           body->numconstrs, body->numvars, body->numnz, static_cast<int>(status),
           left->numconstrs, left->numvars, left->numnz, t1 - t0, t3 - t2, work, peak);
    presolve_free(result);
    return error;
}

int solve(TVXmodel *model, const GrowthModel &g)
{
    const double t0 = processor_time(CLOCK_PROCESS_CPUTIME_ID);
    if (const int error = TVXoptimize(model)) return error;
    const double seconds = processor_time(CLOCK_PROCESS_CPUTIME_ID) - t0;
    int status = 0;
    double objective = 0, iterations = 0, worst[3] = {0, 0, 0};
    TVXgetintattr(model, "Status", &status);
    TVXgetdblattr(model, "IterCount", &iterations);
    TVXgetdblattr(model, "ObjVal", &objective);
    TVXgetdblattr(model, "ConstrVio", &worst[0]);
    TVXgetdblattr(model, "BoundVio", &worst[1]);
    TVXgetdblattr(model, "DualVio", &worst[2]);
    const bool wrong =
        g.planted && status == TVX_OPTIMAL &&
        std::abs(objective - g.optimum) > 1e-6 * std::max(1.0, std::abs(g.optimum));
    printf("{\"status\": %d, \"objective\": %.12g, \"iterations\": %.0f, \"seconds\": "
           "%.3f, \"violation\": %.1e, "
           "\"wrong\": %d}\n",
           status, objective, iterations, seconds, *std::max_element(worst, worst + 3),
           wrong);
    return 0;
}

// Stops the solve after so many seconds and tells how much of the processor it took from then on.
int stop(TVXmodel *model, bool terminate, double limit, double *late)
{
    clockid_t clock = CLOCK_PROCESS_CPUTIME_ID;
    pthread_getcpuclockid(pthread_self(), &clock);
    TVXsetdblparam(TVXgetenv(model), "TimeLimit", terminate ? 1e100 : limit);
    TVXresetmodel(model);
    std::atomic<bool> done{false};
    double at_limit = -1;
    std::thread watcher([&] {
        std::this_thread::sleep_for(std::chrono::duration<double>(limit));
        if (done) return;
        at_limit = processor_time(clock);
        if (terminate) TVXterminate(model);
    });
    const int error = TVXoptimize(model);
    const double end = processor_time(clock);
    done = true;
    watcher.join();
    *late = at_limit < 0 ? 0 : end - at_limit;
    return error;
}

// Limits at equal steps over the time of presolve, by turns the time limit and an interruption.
int stop_often(TVXmodel *model, int count)
{
    const double begin = processor_time(CLOCK_PROCESS_CPUTIME_ID);
    PresolveResult *result = nullptr;
    double work = 0;
    PresolveStatus status = PRESOLVE_OK;
    if (const int code =
            presolve_lp(model->body, model->env, LP_DUAL_SIMPLEX, &result, &status, &work))
        return code;
    presolve_free(result);
    const double seconds = processor_time(CLOCK_PROCESS_CPUTIME_ID) - begin;
    double worst = 0, worst_at = 0;
    for (int k = 1; k <= count; k++) {
        double late = 0;
        const double limit = seconds * k / (count + 1);
        if (const int error = stop(model, k % 2, limit, &late)) return error;
        if (late > worst) worst_at = limit;
        worst = std::max(worst, late);
    }
    printf("{\"status\": %d, \"presolve\": %.3f, \"late\": %.4f, \"late_at\": %.3f}\n",
           static_cast<int>(status), seconds, worst, worst_at);
    return 0;
}

int run(TVXenv *env, const GrowthFamily *family, int argc, char **argv)
{
    const char *mode = argc > 3 && !strchr(argv[3], '=') ? argv[3] : "presolve";
    TVXsetintparam(env, "OutputFlag", 0);
    if (family->parameter && TVXsetintparam(env, family->parameter, family->setting))
        return 1;
    for (int k = 3; k < argc; k++)
        if (strchr(argv[k], '=') && set_parameter(env, argv[k])) return 1;
    GrowthModel g;
    family->make(&g, atoll(argv[2]));
    TVXmodel *model = nullptr;
    int error = load(env, &g, &model);
    reset_peak();
    if (!error && !strcmp(mode, "presolve")) {
        error = measure(model);
    } else if (!error && !strcmp(mode, "solve")) {
        error = solve(model, g);
    } else if (!error) {
        error = stop_often(model, atoi(argv[4]));
    }
    TVXfreemodel(model);
    return error;
}
} // namespace

int main(int argc, char **argv)
{
    const GrowthFamily *family = growth_families;
    if (argc < 3) {
        for (; family->name; family++) printf("%s\n", family->name);
        return 0;
    }
    while (family->name && strcmp(family->name, argv[1]) != 0) family++;
    TVXenv *env = nullptr;
    int error = family->name ? TVXloadenv(&env, nullptr) : 1;
    if (!error) error = run(env, family, argc, argv);
    if (error)
        fprintf(stderr, "tarvex_growth: error %d: %s\n", error,
                env ? TVXgeterrormsg(env) : "no such family");
    TVXfreeenv(env);
    return error != 0;
}
