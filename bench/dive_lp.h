// dive_lp.h -- the relaxation of a MIP, and the ways to solve it again, as the measuring programs use them
#pragma once
#include "model/model.h"
#include "simplex/resolve.h"
#include "tarvex.h"
#include <random>
#include <vector>

double processor_time();                // of the thread, in seconds
int pick(std::mt19937 *rng, int width); // 0 .. width - 1

// Calls of one kind, with the sums for the fit.
struct Kind {
    const char *name = "";
    explicit Kind(const char *n) : name(n) {}
    double calls = 0, iterations = 0, factored = 0, seconds = 0;
    double xx = 0, xy = 0;

    void add(double iters, double factors, double time);
    void print() const;
};

struct Bounds {
    int var;
    double lower, upper;
};

// The relaxation.
struct Lp {
    const ModelBody *body = nullptr;
    TVXenv *env = nullptr;
    sopt *record = nullptr;
    bool live = true;                 // solved by simplex_resolve, else by SimplexOptimize
    std::vector<double> lower, upper; // bounds in force

    // Applies changes and solves. `kind` takes the figures if it is not null.
    ResolveOutcome solve(const std::vector<Bounds> &changes, Kind *kind,
                         double cutoff = 1e100, const NodeBasis *basis = nullptr);
    bool integer(int j) const;
    // The integer variable farthest from an integer, or -1.
    int most_fractional(double *x) const;
    Bounds branch(int j, double x, bool up) const;
    // What leads from the bounds in force to these.
    std::vector<Bounds> changes_to(const std::vector<double> &low,
                                   const std::vector<double> &high) const;

  private:
    ResolveOutcome resolve(const std::vector<Bounds> &changes, double cutoff,
                           const NodeBasis *basis);
    ResolveOutcome optimize(const std::vector<Bounds> &changes);
};

[[noreturn]] void fail(const char *what, int code); // ends the program

// ---- Gomory mixed-integer cuts of the point (dive_cuts.cpp) ----
struct Cut {
    std::vector<int> ind;
    std::vector<double> val;
    double rhs = 0;
};
std::vector<Cut> cuts_of_point(const Lp *lp); // at most CUTS
// Appends them to the live record.
void append_cuts(Lp *lp, const std::vector<Cut> &cuts);
// Deletes the rows that are not in the body and have a basic slack.
void delete_slack_cuts(Lp *lp);

// Depth-first branch and bound without anything else; writes nodes, iterations and nodes a second (dive_tree.cpp).
void tree(Lp *lp, double most, double seconds);
// Compares re-solves with fresh solves; writes their numbers (dive_check.cpp).
void check(Lp *lp, TVXmodel *model);
