// facts_judge.cpp -- see the header
#include "support/facts_judge.h"
#include "support/mip_oracle.h"

static constexpr int NODES = 400;      // of the exact judge
static constexpr double PLAY = 1e-6;   // by which an implied bound may be passed
static constexpr int MOST_FACTS = 100; // of a kind, judged per model

static bool is_binary(const LpModel &lp, int j)
{
    return (lp.type(j) == 'B' || lp.type(j) == 'I') && lp.lb[j] == 0 && lp.ub[j] == 1;
}

static void make_true(LpModel *lp, int literal)
{
    const int j = literal_col(literal);
    lp->lb[j] = lp->ub[j] = literal_value(literal);
}

static void judge_pair(const LpModel &reduced, int u, int v, FactsJudged *out)
{
    if (out->pairs++ >= MOST_FACTS) return;
    LpModel lp = reduced;
    for (double &c : lp.obj) c = 0;
    if (!is_binary(lp, literal_col(u)) || !is_binary(lp, literal_col(v)) ||
        literal_col(u) == literal_col(v)) {
        out->faults +=
            formatted("literals %d and %d are not of two binary columns\n", u, v);
        return;
    }
    make_true(&lp, u);
    make_true(&lp, v);
    const MipStatus status = mip_truth(&lp, NODES).status;
    if (status != MipStatus::INFEASIBLE && status != MipStatus::UNKNOWN)
        out->faults += formatted("literals %d and %d can both be true\n", u, v);
}

static void judge_implication(const LpModel &reduced, const Implication &e,
                              FactsJudged *out)
{
    if (out->bounds++ >= MOST_FACTS) return;
    LpModel lp = reduced;
    for (double &c : lp.obj) c = 0;
    const bool upper = e.Side == BoundSide::UPPER;
    const double now = upper ? lp.ub[e.Col] : lp.lb[e.Col];
    if (e.Global != now)
        out->faults += formatted("an implication names the bound %g of column %d, not %g\n",
                                 e.Global, e.Col, now);
    make_true(&lp, e.Trigger);
    lp.obj[e.Col] = upper ? -1 : 1;
    lp.sense = 1;
    lp.objcon = 0;
    const MipTruth truth = mip_truth(&lp, NODES);
    if (truth.status == MipStatus::UNKNOWN || truth.status == MipStatus::INFEASIBLE) return;
    const double least = upper ? -e.Value - PLAY : e.Value - PLAY;
    if (truth.status == MipStatus::UNBOUNDED || truth.value.get_d() < least)
        out->faults += formatted("literal %d does not imply the bound %g of column %d\n",
                                 e.Trigger, e.Value, e.Col);
}

FactsJudged judge_facts(const LpModel &reduced, const CliqueTable *cliques,
                        const ImplicationLog *log)
{
    FactsJudged out;
    const int n = reduced.num_vars();
    if ((cliques && cliques->NumCols != n) || (log && log->NumCols != n))
        out.faults += "a table of other columns\n";
#ifdef TVX_DEBUG
    if (cliques && clique_table_check(cliques)) out.faults += "broken table of cliques\n";
    if (log && implication_log_check(log)) out.faults += "broken log of implications\n";
#endif
    int64_t effort = 0;
    for (int u = 0; cliques && u < 2 * n; u++)
        for (int v = u + 1; v < 2 * n; v++)
            if (clique_adjacent(cliques, u, v, &effort)) judge_pair(reduced, u, v, &out);
    for (int64_t k = 0; log && k < log->Entry.size; k++)
        judge_implication(reduced, log->Entry.data[k], &out);
    return out;
}
