// mip_oracle.h -- the exact judge of tiny MIPs
//
// Problem     Is this model optimal (with which value), infeasible or unbounded, beyond any rounding?
// Method      Branch and bound over linear relaxations that rational_lp.h solves exactly and proves, best bound first,
//             pruning by exact comparison only. A semi-continuous column branches into 0 and its bounds, a set into
//             two windows, an integer column into floor and ceiling.
// Unbounded   Where a relaxation has an improving ray, semi-continuous columns and sets are decided first. What is left
//             is a MIP with rational data: if it has a point at all it is unbounded (Meyer 1974), and the point is
//             sought without the objective.
// Unknown     When the nodes allowed do not suffice, as with free integers that no row holds together, or when an
//             integer would leave the doubles that are exact.
// Cost        An exact LP a node, about a twentieth of a millisecond for six columns.
// Literature  R. R. Meyer, "On the existence of optimal solutions to integer and mixed-integer programming problems",
//             Math. Prog. 7, 1974.
#pragma once
#include "support/rational_lp.h"

enum class MipStatus { OPTIMAL, INFEASIBLE, UNBOUNDED, UNKNOWN };
const char *mip_status_name(MipStatus status);

struct MipTruth {
    MipStatus status = MipStatus::UNKNOWN;
    mpq_class value; // OPTIMAL: the objective in the model's own sense, constant included
    std::vector<mpq_class> x; // [n] OPTIMAL: a point of that value
    int nodes = 0;            // relaxations solved
};

inline constexpr int MIP_ORACLE_NODES = 3000;
MipTruth mip_truth(const LpModel *lp, int most_nodes = MIP_ORACLE_NODES);
