// heur_state.h -- HeurState: what the heuristics of one search share
#pragma once
#include "heur/heur.h"
#include "heur/working_point.h"

struct HeurState {
    HeurModel Model;
    int NumCols = 0, NumRows = 0;
    double NumEntries = 0;
    // [columns] rows that a column can violate by moving down, or up. An equation is one of each.
    Array<int> DownLocks, UpLocks;
    Array<char> Frozen; // [columns] members of sets, semi-continuous columns: never moved

    WorkingPoint At; // of the heuristics of a node
    WorkingPoint
        Polished; // of heur_improve, which the search calls when a point of these is offered
    Array<int> Shifts;  // [columns] how often a repair of At has moved it
    Array<int> Shifted; // columns with Shifts > 0; room for all

    // Scratch; the places are all -1 between two calls.
    Array<int> Order;              // [columns]
    Array<double> Keys;            // [columns] by which Order is sorted
    Array<int> ColPlace, RowPlace; // [columns], [rows] in a list, or -1

    double Work = 0; // beside that of the points, since it was last taken
    Random Rng;
};
inline double heur_work(const HeurState *h) // since it was last taken
{
    return h->Work + h->At.Work + h->Polished.Work;
}
// At starts at the LP solution of the node.
void heur_start_point(HeurState *h, const HeurCall &call);
// Offers At if no known row is violated and its objective is good enough.
[[nodiscard]] int heur_offer(HeurState *h, const HeurCall &call, bool *improved);
