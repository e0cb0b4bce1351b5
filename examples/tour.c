/* tour.c -- the shortest round trip through all towns, by cuts from a callback
 *
 * Each town has two of its roads on the trip. Of the many constraints that keep the trip in one piece only those are
 * handed in that the solution of a node violates.
 */
#include <stdio.h>
#include <tarvex.h>

#define TOWNS 8
#define ROADS (TOWNS * (TOWNS - 1) / 2)

static const double east[TOWNS] = {0, 1, 0, 1, 8, 9, 8, 9};
static const double north[TOWNS] = {0, 0, 1, 1, 5, 5, 6, 6};

static int road(int a, int b) /* the variable of the road between two towns, a < b */
{
    return a * (2 * TOWNS - a - 1) / 2 + b - a - 1;
}

/* The town's part of the trip: in_part[i] becomes 1 for the towns that can be reached from it. Returns their number. */
static int reach(const double *x, int town, int *in_part)
{
    int queue[TOWNS], count = 0, next, i;

    for (i = 0; i < TOWNS; i++) in_part[i] = 0;
    in_part[town] = 1;
    queue[count++] = town;
    for (next = 0; next < count; next++)
        for (i = 0; i < TOWNS; i++) {
            const int a = i < queue[next] ? i : queue[next],
                      b = i < queue[next] ? queue[next] : i;
            if (in_part[i] || x[road(a, b)] < 1e-6) continue;
            in_part[i] = 1;
            queue[count++] = i;
        }
    return count;
}

/* Among n towns, but for all of them, a trip has at most n - 1 roads. */
static int cut_off(void *cbdata, const int *in_part, int n)
{
    int ind[ROADS], length = 0, a, b;
    double val[ROADS];

    for (a = 0; a < TOWNS; a++)
        for (b = a + 1; b < TOWNS; b++) {
            if (!in_part[a] || !in_part[b]) continue;
            ind[length] = road(a, b);
            val[length++] = 1;
        }
    return TVXcbcut(cbdata, length, ind, val, '<', n - 1);
}

static int connect(TVXmodel *model, void *cbdata, int where, void *usrdata)
{
    double x[ROADS];
    int in_part[TOWNS], status = 0, count, error;

    (void)model;
    if (where != TVX_WHERE_NODE) return 0;
    error = TVXcbget(cbdata, where, TVX_CB_NODE_STATUS, &status);
    if (error || status != TVX_OPTIMAL) return error; /* there is no solution to look at */
    error = TVXcbget(cbdata, where, TVX_CB_NODE_VALUES, x);
    if (error) return error;
    count = reach(x, 0, in_part);
    if (count == TOWNS) return 0;
    *(int *)usrdata += 1;
    return cut_off(cbdata, in_part, count);
}

/* Roads with their lengths, squared to need no square root, and two roads at each town. */
static int build(TVXenv *env, TVXmodel **model)
{
    double length[ROADS], ones[TOWNS - 1];
    char types[ROADS];
    int ind[TOWNS - 1], a, b, k, error;

    for (a = 0; a < TOWNS; a++)
        for (b = a + 1; b < TOWNS; b++) {
            const double x = east[a] - east[b], y = north[a] - north[b];
            length[road(a, b)] = x * x + y * y;
            types[road(a, b)] = 'B';
        }
    error = TVXnewmodel(env, model, "tour", ROADS, length, NULL, NULL, types, NULL);
    for (a = 0; a < TOWNS && !error; a++) {
        for (b = 0, k = 0; b < TOWNS; b++) {
            if (b == a) continue;
            ind[k] = a < b ? road(a, b) : road(b, a);
            ones[k++] = 1;
        }
        error = TVXaddconstr(*model, TOWNS - 1, ind, ones, '=', 2, NULL);
    }
    return error;
}

/* Cuts that do not follow from the model need all its columns and all its solutions: no presolve. */
static int prepare(TVXmodel *model, int *cuts)
{
    TVXenv *env = TVXgetenv(model);
    int error = TVXsetintparam(env, "Presolve", 0);

    if (!error) error = TVXsetintparam(env, "TARV_PAR_DUALREDUCTION", 0);
    if (!error)
        error =
            TVXsetdblparam(env, "Heuristics", 0); /* what they find is not seen at a node */
    if (!error) error = TVXsetdblparam(env, "MIPGap", 0);
    if (!error) error = TVXsetcallbackfunc(model, connect, cuts);
    return error;
}

int main(void)
{
    TVXenv *env = NULL;
    TVXmodel *model = NULL;
    double x[ROADS], length;
    int status = 0, cuts = 0, a, b, error;

    error = TVXloadenv(&env, NULL);
    if (!error) error = build(env, &model);
    if (!error) error = prepare(model, &cuts);
    if (!error) error = TVXoptimize(model);
    if (!error) error = TVXgetintattr(model, "Status", &status);
    if (!error && status == TVX_OPTIMAL) {
        error = TVXgetdblattr(model, "ObjVal", &length);
        if (!error) error = TVXgetdblattrarray(model, "X", 0, ROADS, x);
        if (!error) {
            printf("\nsum of squared lengths %.0f, %s\n", length,
                   cuts > 0 ? "with cuts" : "without a cut");
            for (a = 0; a < TOWNS; a++)
                for (b = a + 1; b < TOWNS; b++)
                    if (x[road(a, b)] > 0.5) printf("%d - %d\n", a, b);
        }
    }
    if (error) fprintf(stderr, "error %d: %s\n", error, TVXgeterrormsg(env));
    TVXfreemodel(model);
    TVXfreeenv(env);
    return error != 0;
}
