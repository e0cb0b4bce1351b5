// sopt.cpp -- the working LP: created from a model body, refreshed for each run
#include "simplex/sopt.h"
#include "body/row_kind.h"
#include "runtime/clock.h"
#include "runtime/text_number.h"
#include <algorithm>
#include <cmath>
#include <cstring>

namespace
{
constexpr int UPDATES_LEAST = 20; // smallest update limit

// room in the factors: with few rows the primal simplex allows more updates
constexpr int UPDATES_ROOM = 100;

constexpr double UPDATES_POWER = 0.7; // update limit m^0.7

constexpr double UPDATES_FREE_POWER = 0.45; // below m^0.45 updates the fill is not tested

// TARV_PAR_SIMPLEXALLOCS over ROOM_USUAL is a factor on the size of the factors' pools, at most ROOM_MOST.
constexpr double ROOM_USUAL = 5, ROOM_MOST = 100;

constexpr uint64_t RANDOM_SEED = 101;

constexpr int SHOWN_DIGITS = 6; // digits of %g

constexpr double START_WORK = 50; // work units of an empty model

// Factors on the size of perturbations, up to PERTURB_SMALL_ROWS rows and beyond, if PerturbValue is at most its
// default.
constexpr int PERTURB_SMALL_ROWS = 10000;

constexpr double PERTURB_SMALL = 10, PERTURB_LARGE = 25, PERTURB_DEFAULT = 0.0002;

// The matrix without coefficients of 0, which a model may contain: a work vector takes a listed value of 0 for an entry
// that is not listed, and would list it twice. Free rows become empty: their slack is basic with value 0.
int copy_matrix(sopt *s, const ModelBody *body)
{
    const int n = s->NumCols;
    TRY(array_assign(&s->ColBeg, int64_t{n} + 1, 0));
    const int room = body->vbeg.data ? body->vbeg.data[n] : 0;
    TRY(array_resize(&s->ColInd, room));
    TRY(array_resize(&s->ColVal, room));
    Array<char> free_rows;
    TRY(array_resize(&free_rows, s->NumRows));
    for (int i = 0; i < s->NumRows; i++)
        free_rows.data[i] = row_kind(body, i) == RowKind::FREE;
    int count = 0;
    for (int j = 0; j < n && room > 0; j++) {
        for (int p = body->vbeg.data[j]; p < body->vbeg.data[j + 1]; p++) {
            const int i = body->vind.data[p];
            s->ColInd.data[count] = i;
            s->ColVal.data[count] = body->vval.data[p];
            count += body->vval.data[p] != 0 && !free_rows.data[i];
        }
        s->ColBeg.data[j + 1] = count;
    }
    TRY(array_resize(&s->ColInd, count));
    return array_resize(&s->ColVal, count);
}

int copy_model(sopt *s)
{
    const ModelBody *body = s->Body;
    const int m = s->NumRows, n = s->NumCols, nv = s->NumVars;
    TRY(copy_matrix(s, body));
    TRY(array_copy(&s->Rhs, body->rhs.data, m));
    TRY(array_assign(&s->Cost, nv, 0.0));
    TRY(array_assign(&s->Lower, nv, 0.0));
    TRY(array_assign(&s->Upper, nv, 0.0));
    std::copy_n(body->obj.data, n, s->Cost.data);
    for (int j = 0; j < n; j++) {
        s->Lower.data[j] = working_bound(s, body->lb.data[j]);
        s->Upper.data[j] = working_bound(s, body->ub.data[j]);
    }
    for (int i = 0; i < m; i++) {
        s->Upper.data[n + i] = is_equation(body, i) ? 0 : s->Infinity;
        if (row_kind(body, i) == RowKind::FREE) s->Rhs.data[i] = 0;
    }
    s->ObjOffset = body->objcon;
    s->Sense = body->sense;
    return 0;
}

int allocate_vectors(sopt *s)
{
    for (Array<double> *a : {&s->WorkCost, &s->WorkLower, &s->WorkUpper})
        TRY(array_resize(a, s->NumVars));
    TRY(array_assign(&s->SuperVal, s->NumVars, 0.0));
    TRY(array_assign(&s->ProofVector, s->NumVars, 0.0));
    TRY(array_assign(&s->Mark, s->NumVars, 0));
    TRY(array_resize(&s->VStat, s->NumVars));
    for (Array<double> *a : {&s->BasicLower, &s->BasicUpper, &s->RowWork})
        TRY(array_resize(a, s->NumRows));
    for (Array<int> *a : {&s->BasisHead, &s->BadRows, &s->BadCols})
        TRY(array_resize(a, s->NumRows));
    return 0;
}

// SimplexTuning::Widen, for models whose data are infeasible by rounding.
void widen(sopt *s)
{
    if (s->Tuning.Widen <= 0) return;
    for (int j = 0; j < s->NumVars; j++) {
        const double step = s->Tuning.Widen / user_unit(s, j);
        if (has_lower(s, s->Lower.data[j])) s->Lower.data[j] -= step;
        if (has_upper(s, s->Upper.data[j])) s->Upper.data[j] += step;
    }
}

int build(sopt *s)
{
    TRY(copy_model(s));
    TRY(allocate_vectors(s));
    random_seed(&s->Rng, RANDOM_SEED);
    TRY(scale_working_lp(s));
    widen(s);
    TRY(row_copy_build(s));
    s->WorkUnits += 5.0 * s->NumRows + 3.0 * s->NumVars;
    return 0;
}
} // namespace

int sopt_create(const ModelBody *body, TVXenv *env, const SimplexTuning &tuning, sopt **out)
{
    *out = nullptr;
    void *block = MemAllocZero(1, sizeof(sopt));
    if (!block) return OUT_OF_MEMORY;
    sopt *s = static_cast<sopt *>(block);
    *s = sopt{};
    s->Body = body;
    s->Tuning = tuning;
    s->Env = env;
    s->NumRows = body->numconstrs;
    s->NumCols = body->numvars;
    if (s->NumRows > INT32_MAX - s->NumCols) {
        MemFree(block);
        return OUT_OF_MEMORY;
    }
    s->NumVars = s->NumRows + s->NumCols;
    s->WorkUnits = START_WORK;
    if (int error = build(s)) {
        simplex_free(s);
        return error;
    }
    *out = s;
    return 0;
}

int update_limit(const sopt *s, double power)
{
    return std::max(UPDATES_LEAST, static_cast<int>(std::pow(s->NumRows, power)));
}

// The parameter Cutoff is given for the sense of the model; its default means no cutoff in either sense.
void sopt_take_cutoff(sopt *s)
{
    s->Cutoff = s->Env->Cutoff < UNDEFINED_VALUE && s->HasCutoff
                    ? s->Sense * s->Env->Cutoff - s->ObjOffset
                    : HUGE_VAL;
}

int sopt_keep_stop(sopt *s)
{
    array_free(&s->StoppedShift);
    array_free(&s->StoppedUpper);
    s->Stopped = s->Status == SIMPLEX_ITERATION_LIMIT || s->Status == SIMPLEX_TIME_LIMIT ||
                 s->Status == SIMPLEX_INTERRUPTED;
    s->StoppedMethod = s->Method;
    s->StoppedPerturb = s->PerturbAllowed;
    const int nv = s->NumVars;
    if (s->Stopped && s->BoxPhase) {
        TRY(array_resize(&s->StoppedUpper, nv));
        for (int j = 0; j < nv; j++) s->StoppedUpper.data[j] = s->VStat.data[j] == AT_UPPER;
    }
    if (!s->Stopped || !s->Perturbed) return 0;
    const bool dual = s->Method == METHOD_DUAL;
    TRY(array_assign(&s->StoppedShift, dual ? nv : 2 * int64_t{nv}, 0.0));
    double *shift = s->StoppedShift.data;
    for (int j = 0; j < nv; j++) {
        const double lower = s->Lower.data[j], upper = s->Upper.data[j];
        if (dual) {
            shift[j] = s->WorkCost.data[j] - s->Cost.data[j];
            continue;
        }
        if (has_lower(s, lower)) shift[j] = s->WorkLower.data[j] - lower;
        if (has_upper(s, upper)) shift[nv + j] = s->WorkUpper.data[j] - upper;
    }
    return 0;
}

bool sopt_take_up_stop(sopt *s)
{
    const bool goes_on = s->Stopped && s->Method == s->StoppedMethod;
    s->Stopped = 0;
    if (!goes_on) return false;
    s->PerturbAllowed = s->StoppedPerturb;
    if (s->StoppedShift.size == 0) return true;
    const int nv = s->NumVars;
    const double *shift = s->StoppedShift.data;
    for (int j = 0; j < nv; j++) {
        if (s->Method == METHOD_DUAL) {
            s->WorkCost.data[j] += shift[j];
        } else {
            s->WorkLower.data[j] += shift[j];
            s->WorkUpper.data[j] += shift[nv + j];
        }
    }
    array_free(&s->StoppedShift);
    s->Perturbed = PERTURBED_ALL;
    return true;
}

void sopt_forget_trouble(sopt *s)
{
    const TVXenv *env = s->Env;
    s->MarkowitzTol = std::max(env->MarkowitzTol, s->Tuning.Markowitz);
    s->FeasTolCount = s->OptTolCount = 0;
    s->NumericCount = s->SingularCount = s->SwitchCount = 0;
    s->PerturbAllowed = env->PerturbValue > 0;
    s->PerturbCur = env->PerturbValue;
    if (env->PerturbValue <= PERTURB_DEFAULT)
        s->PerturbCur *= s->NumRows <= PERTURB_SMALL_ROWS ? PERTURB_SMALL : PERTURB_LARGE;
}

void sopt_refresh(sopt *s, const SimplexCall &call)
{
    const TVXenv *env = s->Env;
    s->StartTime = WallClock();
    s->TickLength = env->DisplayInterval;
    s->TickIndex = -1;
    s->LastLogIter = -1;
    s->HeaderDone = 0;
    s->RootLog = call.Root;
    s->NextLogIter = 0;
    s->IterBase = call.Iterations;
    s->HasCutoff = call.Cutoff;
    s->IterLimit = call.Inner ? call.Limit : std::min(env->IterationLimit, call.Limit);
    s->EndFactor = env->TARV_PAR_SIMPLEXENDFAC;
    s->Live = LIVE_NO;
    s->CutoffFrom = HUGE_VAL;
    s->Running = !call.Inner;
    s->NPvt = s->Work = 0;
    s->NumFactor = 0;
    s->Status = SIMPLEX_RUNNING;
    s->BadVar = -1;
    s->Proof = PROOF_NONE;
    s->Stall = StallGuard{};
    stall_reset(s);
    s->LimitedFarkas = LimitedProof{};
    s->FeasTol = std::min(env->FeasibilityTol, s->Tuning.Tolerance);
    s->OptTol = std::min(env->OptimalityTol, s->Tuning.Tolerance);
    s->PivotTol = env->TARV_PAR_PIVOTTOL;
    s->BigTol = env->TARV_PAR_BIGTOL;
    s->ZeroTol = env->TARV_PAR_ZERO;
    s->TightProof = 0;
    s->Perturbed = PERTURBED_NONE;
    s->BoxPhase = 0;
    sopt_forget_trouble(s);
    s->DegenCount = s->LastDegenCount = s->LastPerturbIter = 0;
    const double m = s->NumRows;
    s->MaxUpdates = update_limit(s, UPDATES_POWER);
    s->MinUpdates = static_cast<int>(std::pow(m, UPDATES_FREE_POWER));
    sopt_take_cutoff(s);
    random_seed(&s->Rng, RANDOM_SEED);
}

namespace
{
// Bounds that cross by little look the same with six digits: then a second line shows all digits.
void tell_bad_bounds(const sopt *s, int j)
{
    char name[DEFAULT_NAME_LENGTH], below[NUMBER_LENGTH], above[NUMBER_LENGTH];
    const ModelBody *body = s->Body;
    const double lower = body->lb.data[j], upper = body->ub.data[j];
    TVXmsg(s->Env, "Warning: variable %s has bad bounds, lower = %g and upper = %g\n",
           var_name(body, j, name), lower, upper);
    number_general(below, lower, SHOWN_DIGITS);
    number_general(above, upper, SHOWN_DIGITS);
    if (strcmp(below, above) == 0)
        TVXmsg(s->Env, "         in full, lower = %.17g and upper = %.17g\n", lower, upper);
}
} // namespace

void sopt_check_bounds(sopt *s)
{
    for (int j = 0; j < s->NumCols; j++) {
        double *lower = &s->Lower.data[j], *upper = &s->Upper.data[j];
        if (!bounds_exclude(s, j, *lower, *upper)) {
            // Crossed by less than the tolerance: fixed.
            if (*lower > *upper) *upper = *lower;
            continue;
        }
        const bool runs_away = (*lower >= s->Infinity && s->Cost.data[j] < 0) ||
                               (*upper <= -s->Infinity && s->Cost.data[j] > 0);
        s->Status = *lower <= *upper && runs_away ? SIMPLEX_UNBOUNDED : SIMPLEX_INFEASIBLE;
        s->BadVar = j;
        tell_bad_bounds(s, j);
        return; // InfeasCheckNeeded stays set: the next run has to test again
    }
    s->InfeasCheckNeeded = 0;
}

template<class R> int swork_create(sopt *s, swork<R> **out)
{
    *out = nullptr;
    void *block = MemAllocZero(1, sizeof(swork<R>));
    if (!block) return OUT_OF_MEMORY;
    swork<R> *w = *out = static_cast<swork<R> *>(block);
    *w = swork<R>{};
    const int m = s->NumRows;
    TRY(lu_alloc(&w->Lu, m, std::max(s->MaxUpdates, UPDATES_ROOM),
                 ROUNDING_SHARE<R> * s->ZeroTol));
    const double room = std::min(ROOM_MOST, s->Env->TARV_PAR_SIMPLEXALLOCS / ROOM_USUAL);
    w->Lu.PoolFactor *= room;
    w->Lu.EtaFactor *= room;
    TRY(array_assign(&w->Cbar, s->NumVars, R(0)));
    TRY(array_assign(&w->Bbar, m, R(0)));
    for (SVec<R> *v : {&w->Rho, &w->Alpha, &w->Tau, &w->Work}) TRY(svec_alloc(v, m));
    TRY(array_assign(&w->RowAcc, s->NumCols, SVEC_TINY<R>));
    TRY(array_resize(&w->RowInd, s->NumVars));
    return array_resize(&w->RowVal, s->NumVars);
}

template<class R> void swork_free(swork<R> **work)
{
    swork<R> *w = *work;
    if (!w) return;
    dopt_free(&w->Dual);
    popt_free(&w->Primal);
    *w = swork<R>{};
    MemFree(w);
    *work = nullptr;
}

void simplex_free(sopt *s)
{
    if (!s) return;
    swork_free(&s->Double);
    swork_free(&s->Extended);
    *s = sopt{};
    MemFree(s);
}

template int swork_create<double>(sopt *, swork<double> **);

template int swork_create<long double>(sopt *, swork<long double> **);

template void swork_free<double>(swork<double> **);

template void swork_free<long double>(swork<long double> **);
