// facts_judge.h -- are the cliques and implications of a presolved model true in all its points?
#pragma once
#include "domain/clique_table.h"
#include "domain/implication_log.h"
#include "support/lp_model.h"

struct FactsJudged {
    std::string faults; // empty: none
    int pairs = 0;      // pairs of literals found to exclude each other
    int bounds = 0;     // implied bounds found to hold
};
// Each pair of literals of a clique and each implication is given to the exact judge. Null tables say nothing.
FactsJudged judge_facts(const LpModel &reduced, const CliqueTable *cliques,
                        const ImplicationLog *log);
