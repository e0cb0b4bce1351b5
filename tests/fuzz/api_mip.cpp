// api_mip.cpp -- MIPs of a fuzzed program: the judgement of an outcome, and what its callback hands in
#include "fuzz/api_model.h"
#include "support/solve_judge.h"

namespace
{
constexpr double UNDEFINED = 1e100; // a value that the search is to find

struct Cut {
    std::vector<int> ind;
    std::vector<double> val;
    char sense = '<';
    double rhs = 0;
};

// A row of the model times a number, or the objective against a value that nothing beats.
Cut valid_cut(Dice *dice, const LpModel *lp, const MipTruth *truth)
{
    Cut cut;
    const int n = lp->num_vars(), m = lp->num_rows();
    const bool of_objective = m == 0 || dice->chance(40);
    const int row = of_objective ? 0 : dice->range(0, m - 1);
    const double factor = of_objective ? 1 : dice->range(1, 3);
    for (int j = 0; j < n; j++) {
        const double value = of_objective ? lp->obj[j] : lp_get_entry(lp, row, j) * factor;
        if (value == 0) continue;
        cut.ind.push_back(j);
        cut.val.push_back(value);
    }
    if (of_objective) {
        cut.sense = lp->sense > 0 ? '>' : '<';
        cut.rhs = truth->value.get_d() - lp->objcon - lp->sense * dice->range(1, 4) * 0.25;
    } else {
        cut.sense = lp->senses[row] == '=' ? "<>"[dice->range(0, 1)] : lp->senses[row];
        cut.rhs = lp->rhs[row] * factor;
    }
    return cut;
}

std::string propose_cut(ApiModel *a, void *cbdata, int where)
{
    const LpModel *lp = a->watch.mip;
    if (lp->num_vars() == 0 || a->watch.truth->status != MipStatus::OPTIMAL) return "";
    Cut cut = valid_cut(a->dice(), lp, a->watch.truth);
    int length = static_cast<int>(cut.ind.size()),
        expected = where == TVX_WHERE_NODE ? 0 : TVX_ERROR_CALLBACK;
    if (length > 0 && a->dice()->chance(10)) {
        cut.ind[0] = a->dice()->chance(50) ? -1 : lp->num_vars();
        expected = TVX_ERROR_CALLBACK;
    }
    cut.ind.push_back(0); // never null
    cut.val.push_back(0);
    const std::vector<double> before = cut.val;
    const int code =
        TVXcbcut(cbdata, length, cut.ind.data(), cut.val.data(), cut.sense, cut.rhs);
    if (code != expected) return "a cut: " + std::to_string(code);
    return cut.val == before ? "" : "a cut has changed";
}

// The optimum, whole or in part, or anything; none of them makes the answer wrong.
std::string propose_solution(ApiModel *a, void *cbdata)
{
    Dice *dice = a->dice();
    const MipTruth *truth = a->watch.truth;
    const int kind = dice->range(0, 2);
    std::vector<double> x;
    for (int j = 0; j < a->watch.mip->num_vars(); j++) {
        const bool known = kind < 2 && truth->status == MipStatus::OPTIMAL;
        const double value = known ? truth->x[j].get_d() : dice->range(-8, 12) * 0.5;
        x.push_back(kind == 1 && dice->chance(50) ? UNDEFINED : value);
    }
    x.push_back(0); // never null
    const int code = TVXcbsolution(cbdata, x.data());
    return code == 0 || code == TVX_ERROR_CALLBACK ? ""
                                                   : "a solution: " + std::to_string(code);
}
} // namespace

std::string api_propose(ApiModel *a, void *cbdata, int where)
{
    const Watch &w = a->watch;
    if (!w.proposes || !w.mip) return "";
    if (where < TVX_WHERE_MIP || where > TVX_WHERE_NODE) return "";
    return a->dice()->chance(60) ? propose_cut(a, cbdata, where)
                                 : propose_solution(a, cbdata);
}

std::string api_judge_mip(ApiModel *a, const LpModel *lp, const MipTruth *truth)
{
    const MipAnswer answer = mip_read(a->model);
    Settings settings = {{"IterationLimit", RUNAWAY_ITERATIONS}};
    for (const auto &[name, value] : a->values) settings.emplace_back(name, value);
    if (truth->status == MipStatus::UNKNOWN)
        settings.emplace_back("NodeLimit", RUNAWAY_NODES);
    return mip_judge(lp, truth, settings, &answer, 1, a->watch.asked);
}
