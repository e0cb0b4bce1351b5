// node_result.h -- NodeLPResult and NodeOutbox: what a node holds only while it is being worked on
#pragma once
#include "mip/row_list.h"

// A variable that may be branched on, with what is known of its two sides.
struct BranchCandidate {
    int Var;
    double Value;              // in the LP solution
    double Down, Up;           // objectives of the two sides, at least
    double DownGain, UpGain;   // estimates of the gains against the LP of the node
    bool DownClosed, UpClosed; // the side has no solution, or none that is good enough
};

struct NodeLPResult {
    int Kind = 0;     // status of the LP
    double Bound = 0; // lower bound by the LP, when it is optimal
    double Iterations = 0;
    // Counts, -1 while not made: integer variables with a fractional value, semi-continuous variables within their gap,
    // SOS constraints
    int Fractionals = -1, SemiViolated = -1, SosViolated = -1;
    Array<BranchCandidate>
        Candidates;          // fractional variables, and indicators of semi-continuous ones
    Array<int> Sos;          // the violated SOS constraints
    bool GainsValid = false; // of the candidates
};

// What is handed to the search when the node is finished, because a worker of a parallel search may not apply it.
struct NodeOutbox {
    double IncumbentLimit = 1e100;
    RowList Rows; // from callbacks: valid for the whole model
};
