// mip_presolve_try.cpp -- see the header
#include "support/mip_presolve_try.h"
#include "presolve/integer/facts.h"
#include "support/dice.h"
#include "support/facts_judge.h"
#include "support/inside.h"
#include <algorithm>
#include <cmath>
#include <cstdlib>

static constexpr double LOOSE = 1e-10, ROUNDING = 1e-14;
static constexpr int OBJECTIVES = 2; // random ones, per model
static constexpr int NODES = 400;    // of the exact judge
static constexpr double SAME = 1e-5; // relative difference of equal objectives
static constexpr double FAR =
    1e8; // beyond all optima; a rounded cost of 1e-16 is not worth SAME there

MipQuestion mip_question(const LpModel *lp, const Settings &settings)
{
    return {lp, mip_truth(lp, NODES), 1, settings, 0};
}

static LpModel model_of_body(const ModelBody *body)
{
    LpModel lp;
    lp.objcon = body->objcon;
    for (int i = 0; i < body->numconstrs; i++)
        lp_add_row(&lp, body->senses[i], body->rhs[i]);
    for (int j = 0; j < body->numvars; j++) {
        const char type = body->vtypes.size ? body->vtypes[j] : 'C';
        lp_add_var(&lp, body->obj[j], body->lb[j], body->ub[j], type);
        for (int p = body->vbeg[j]; p < body->vbeg[j + 1]; p++)
            lp.cols.back().push_back({body->vind[p], body->vval[p]});
    }
    for (int s = 0; s < body->numsos; s++) {
        LpSet set = {body->sostype[s], {}};
        for (int p = body->sosbeg[s]; p < body->sosbeg[s + 1]; p++)
            set.members.push_back(body->sosind[p]);
        lp.sets.push_back(set);
    }
    return lp;
}

// By how much a number gives way.
static double play(double number)
{
    return LOOSE + ROUNDING * std::fabs(number);
}

// Sides of rows give way.
static LpModel loosened(const LpModel &lp)
{
    LpModel loose = lp;
    for (int i = 0; i < lp.num_rows(); i++) {
        const double side = lp.rhs[i];
        if (lp.senses[i] != '=') {
            loose.rhs[i] += lp.senses[i] == '<' ? play(side) : -play(side);
            continue;
        }
        loose.senses[i] = '<';
        loose.rhs[i] += play(side);
        const int other = lp_add_row(&loose, '>', side - play(side));
        for (int j = 0; j < lp.num_vars(); j++)
            lp_set_entry(&loose, other, j, lp_get_entry(&lp, i, j));
    }
    return loose;
}

// Numbers without a bound get a far one.
static LpModel enclosed(const LpModel &lp)
{
    LpModel box = lp;
    for (double &lb : box.lb) lb = std::max(lb, -FAR);
    for (double &ub : box.ub) ub = std::min(ub, FAR);
    return box;
}

static std::vector<double> doubles_of(const LpModel &lp, const std::vector<mpq_class> &x)
{
    std::vector<double> values;
    for (size_t j = 0; j < x.size(); j++)
        values.push_back(lp.type(j) == 'C' || lp.type(j) == 'S' ? x[j].get_d()
                                                                : std::round(x[j].get_d()));
    return values;
}

namespace
{
struct Judge {
    const MipQuestion &question;
    const PresolveResult *result;
    MipTry *out;

    void fault(const std::string &text) { out->faults += text + "\n"; }
    bool dual() const
    {
        return setting_value(question.settings, "TARV_PAR_DUALREDUCTION", 1) != 0;
    }
    bool differ(double a, double b, double size) const
    {
        return std::fabs(a - b) > SAME * std::max({1.0, std::fabs(a), std::fabs(b), size});
    }
    double value_of(const std::vector<double> &x) const // minimised, of the model
    {
        return static_cast<double>(question.lp->sense * lp_objective(question.lp, x));
    }
    double wanted() const // likewise, the optimum
    {
        return question.lp->sense * question.of_costs * question.truth.value.get_d();
    }
    // True if rounding of scaled data has changed the optimum by more than the judge forgives.
    bool moved_by_scaling() const
    {
        const LpModel loose = loosened(*question.lp); // else no equation might hold
        const MipTruth own = mip_truth(&loose, NODES);
        return own.status != MipStatus::OPTIMAL ||
               differ(question.lp->sense * own.value.get_d(), wanted(), 0);
    }
    // True if the reduced model is unbounded only because its costs are rounded: with far bounds its optimum is right.
    bool unbounded_by_rounding() const
    {
        const LpModel box = enclosed(out->reduced);
        const MipTruth truth = mip_truth(&box, NODES);
        return truth.status == MipStatus::OPTIMAL &&
               !differ(truth.value.get_d(), wanted(), 0);
    }
    void map_back(const std::vector<double> &x, bool is_optimum);
    void map_forth();
    void random_objectives(const LpModel &loose);
    void optimum();
    void no_optimum();
    void ended_early();
};
} // namespace

void Judge::map_back(const std::vector<double> &x, bool is_optimum)
{
    const LpModel *lp = question.lp;
    std::vector<double> full(lp->obj.size());
    postsolve_primal(result, x.data(), full.data());
    MipTolerances tol;
    tol.integer = 0;
    const std::string wrong = mip_check_point(lp, full, tol);
    if (!wrong.empty()) fault("mapped back, " + wrong);
    const double before = static_cast<double>(lp_objective(&out->reduced, x)),
                 size = static_cast<double>(lp_sums(lp, full, {}).objective.largest);
    const double value = value_of(full);
    if (differ(before, value, size))
        fault(formatted("objective %.12g, mapped back %.12g", before, value));
    if (is_optimum && differ(value, wanted(), size) && !moved_by_scaling())
        fault(formatted("the best point has %.12g instead of %.12g", value, wanted()));
}

void Judge::map_forth()
{
    const std::vector<double> full = doubles_of(*question.lp, question.truth.x);
    std::vector<double> x(out->reduced.obj.size() + 1);
    if (presolve_crush_point(result, full.data(), x.data(), &out->crushed)) abort();
    if (!out->crushed) return;
    x.resize(out->reduced.obj.size());
    const std::string wrong = mip_check_point(&out->reduced, x, {});
    if (!wrong.empty()) fault("mapped to the reduced model, " + wrong);
    const double value = static_cast<double>(lp_objective(&out->reduced, x));
    if (differ(value, wanted(), 0) && !moved_by_scaling())
        fault(formatted("mapped to the reduced model, %.12g instead of %.12g", value,
                        wanted()));
}

void Judge::random_objectives(const LpModel &loose)
{
    Dice dice(question.seed);
    for (int k = 0; k < OBJECTIVES; k++) {
        LpModel other = loose;
        for (double &c : other.obj) c = dice.range(-5, 5);
        const MipTruth best = mip_truth(&other, NODES);
        if (best.status != MipStatus::OPTIMAL) continue;
        const std::vector<double> x = doubles_of(loose, best.x);
        // Where rays meet by the rounding of entries, a vertex may be too far away to have digits left.
        if (std::ranges::all_of(x, [](double v) { return std::fabs(v) <= FAR; }))
            map_back(x, false);
    }
}

void Judge::optimum()
{
    if (out->empty) {
        map_back({}, true);
        out->judged = true;
        return map_forth();
    }
    LpModel loose = out->reduced;
    MipTruth truth = mip_truth(&loose, NODES);
    if (truth.status == MipStatus::INFEASIBLE ||
        (truth.status == MipStatus::OPTIMAL && differ(truth.value.get_d(), wanted(), 0))) {
        loose = loosened(out->reduced);
        truth = mip_truth(&loose, NODES);
    }
    if (truth.status == MipStatus::UNKNOWN) return;
    out->judged = true;
    if (truth.status == MipStatus::UNBOUNDED && unbounded_by_rounding()) return;
    if (truth.status != MipStatus::OPTIMAL) {
        if (mip_truth(question.lp, NODES).status == truth.status) return; // by scaling
        return fault(formatted("the reduced model is %s", mip_status_name(truth.status)));
    }
    map_back(doubles_of(loose, truth.x), true);
    random_objectives(loose);
    map_forth();
}

// An unbounded model may look infeasible after reductions that keep an optimum only.
void Judge::no_optimum()
{
    const bool unbounded = question.truth.status == MipStatus::UNBOUNDED;
    if (out->empty) return fault("nothing is left of a model without optimum");
    MipTruth truth = mip_truth(&out->reduced, NODES);
    out->judged = truth.status != MipStatus::UNKNOWN;
    if (!out->judged || truth.status == question.truth.status) return;
    if (unbounded && truth.status == MipStatus::INFEASIBLE && dual()) return;
    const MipStatus own = mip_truth(question.lp, NODES).status; // scaled
    if (own == truth.status || own == MipStatus::UNKNOWN) return;
    const LpModel loose = loosened(out->reduced);
    if (unbounded && mip_truth(&loose, NODES).status == MipStatus::UNBOUNDED) return;
    fault(formatted("the reduced model is %s", mip_status_name(truth.status)));
}

void Judge::ended_early()
{
    out->judged = true;
    const MipStatus truth = question.truth.status;
    if (out->status == PRESOLVE_INFEASIBLE && truth == MipStatus::INFEASIBLE) return;
    if (out->status == PRESOLVE_INF_OR_UNBD && truth != MipStatus::OPTIMAL) return;
    fault(formatted("presolve ends with status %d, the model is %s",
                    static_cast<int>(out->status), mip_status_name(truth)));
}

static void judge(const MipQuestion &question, PresolveResult *result, MipTry *out)
{
    Judge judge = {question, result, out};
    const ModelBody *body = result ? presolve_reduced(result) : nullptr;
    out->empty = !body;
    if (body) {
#ifdef TVX_DEBUG
        char where[BODY_CHECK_LENGTH];
        if (body_check(body, where)) judge.fault(std::string("reduced body: ") + where);
#endif
        out->reduced = model_of_body(body);
        int count = 0;
        const SemiColumn *semi = presolved_semi(result, &count);
        out->semi.assign(semi, semi + count);
    } else if (result) {
        out->reduced.objcon = question.lp->sense * presolved_constant(result);
    }
    for (const char type : out->reduced.types)
        if (type == 'S' || type == 'N') judge.fault("a type that the search does not know");
    if (question.truth.status == MipStatus::UNKNOWN) return;
    if (out->status != PRESOLVE_OK)
        judge.ended_early();
    else if (question.truth.status == MipStatus::OPTIMAL)
        judge.optimum();
    else
        judge.no_optimum();
}

// What presolve tells the search of the reduced model.
static void judge_learned(PresolveResult *result, MipTry *out)
{
    CliqueTable *cliques = presolve_take_cliques(result);
    ImplicationLog *log = presolve_take_implications(result);
    const FactsJudged judged = judge_facts(out->reduced, cliques, log);
    CliqueTable *found = presolve_take_found_cliques(result);
    out->faults += judged.faults + judge_facts(out->reduced, found, nullptr).faults;
    clique_table_free(found);
    out->pairs = judged.pairs;
    out->bounds = judged.bounds;
    clique_table_free(cliques);
    implication_log_free(log);
}

// ComponentSolver: the exact judge.
static int solve_exactly(void *, const ModelBody *body, double *x, bool *solved)
{
    const LpModel lp = model_of_body(body);
    const MipTruth truth = mip_truth(&lp, NODES);
    *solved = truth.status == MipStatus::OPTIMAL;
    if (*solved) std::ranges::copy(doubles_of(lp, truth.x), x);
    return 0;
}
static const ComponentSolver EXACT = {solve_exactly, nullptr};

MipTry mip_presolved(const MipQuestion &question)
{
    MipTry out;
    const TestEnv env;
    const TestModel model(lp_load(env.env, question.lp, question.settings));
    if (!model) abort();
    PresolveResult *result = nullptr;
    double work = 0;
    if (presolve_mip(model->body, model->env, model->env->TARV_PAR_PREPROBE, &result,
                     &out.status, &work, &EXACT))
        abort();
    judge(question, result, &out);
    if (result) judge_learned(result, &out);
    presolve_free(result);
    return out;
}

static int reduce(PresolveWork *w, TVXmodel *model,
                  std::initializer_list<Reduction> reductions, PresolveResult **result)
{
    w->IsMip = 1;
    w->Components = &EXACT;
    TRY(work_load(w, model->body, model->env));
    TRY(pre_round_int_bounds(w));
    TRY(mark_everything(w));
    TRY(pre_activity(w));
    for (const Reduction reduction : reductions) {
        TRY(reduction(w));
        TRY(sum_stale(w));
#ifdef TVX_DEBUG
        if (presolve_verify(w)) abort();
#endif
        TRY(compress(w));
        TRY(pre_activity(w));
    }
    TRY(pre_sos_fixings(w));
    TRY(pre_semi_fixings(w));
    TRY(build_reduced(w, result));
    return facts_to_result(w, *result);
}

std::string mip_trap_faults(const PresolveTrap &trap, const std::vector<Settings> &ways)
{
    LpModel lp = trap.lp;
    lp.types.assign(trap.types.begin(), trap.types.end());
    lp.types.resize(lp.obj.size(), 'C');
    MipQuestion question = mip_question(&lp);
    const double value = question.truth.value.get_d();
    const bool optimal = question.truth.status == MipStatus::OPTIMAL;
    if (optimal ? !(std::fabs(value - trap.optimum) <= 1e-6) : !std::isnan(trap.optimum))
        return formatted("%s: the optimum is %g\n", trap.name, optimal ? value : NAN);
    std::string faults;
    for (const Settings &settings : ways) {
        question.settings = settings;
        const std::string found = mip_presolved(question).faults;
        if (!found.empty())
            faults += trap.name + std::string("\n") + settings_text(settings) + found;
    }
    return faults;
}

MipTry mip_reduced_by(const MipQuestion &question,
                      std::initializer_list<Reduction> reductions)
{
    MipTry out;
    const TestEnv env;
    const TestModel model(lp_load(env.env, question.lp, question.settings));
    if (!model) abort();
    PresolveWork work;
    PresolveResult *result = nullptr;
    int end = reduce(&work, model, reductions, &result);
    if (end == OUT_OF_MEMORY) abort();
    if (end == END_UNBOUNDED) end = END_INF_OR_UNBD;
    out.status = presolve_status_of(end);
    out.effect = work.RowsRemoved + work.ColsRemoved + work.IneqToEq + work.CoefsChanged +
                 work.BoundsChanged;
    work_free(&work);
    judge(question, result, &out);
    if (result) judge_learned(result, &out);
    presolve_free(result);
    return out;
}
