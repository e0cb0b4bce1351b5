// rational_lp.cpp -- from a basis in many digits to a proved answer, see the header
#include "support/dictionary.h"
#include <cstdio>
#include <cstdlib>

static constexpr unsigned BITS = 320, MOST_BITS = 20480; // of the first and last attempt

const char *lp_status_name(LpStatus status)
{
    static constexpr const char *NAMES[] = {"optimal", "infeasible", "unbounded"};
    return NAMES[size_t(status)];
}

static RationalRange relax_range(double low, double high, double relax)
{
    RationalRange range{!lp_is_infinite(low), !lp_is_infinite(high), 0, 0};
    if (range.has_low) range.low = mpq_class(low) - relax;
    if (range.has_high) range.high = mpq_class(high) + relax;
    return range;
}

RationalRange relaxed_row(const LpModel *lp, size_t row, double relax)
{
    const double rhs = lp->rhs[row];
    return relax_range(lp->senses[row] == '<' ? -LP_INFINITY : rhs,
                       lp->senses[row] == '>' ? LP_INFINITY : rhs, relax);
}

RationalRange relaxed_column(const LpModel *lp, size_t col, double relax)
{
    return relax_range(lp->lb[col], lp->ub[col], relax);
}

// Bounds of one column that exclude each other.
static bool find_crossed(const LpModel *lp, double relax, RationalResult *result)
{
    for (size_t j = 0; j < lp->obj.size(); j++) {
        const bool absurd = lp->lb[j] >= 1e20 || lp->ub[j] <= -1e20;
        if (absurd) abort();
        const RationalRange range = relaxed_column(lp, j, relax);
        if (!range.has_low || !range.has_high || range.low <= range.high) continue;
        result->status = LpStatus::INFEASIBLE;
        result->crossed = int(j);
        result->farkas.assign(lp->rhs.size(), 0);
        return true;
    }
    return false;
}

RationalResult rational_solve(const LpModel *lp, double relax)
{
    RationalResult result;
    if (find_crossed(lp, relax, &result)) return result;
    std::string wrong;
    for (unsigned bits = BITS; bits <= MOST_BITS; bits *= 4) {
        mpf_set_default_prec(bits);
        const bool regular =
            rational_certificate(lp, relax, dictionary_solve(lp, relax), &result);
        wrong = regular ? rational_verify(lp, &result, relax) : "singular basis";
        if (wrong.empty()) return result;
    }
    fprintf(stderr, "exact judge contradicts itself: %s\n%s", wrong.c_str(),
            lp_to_mps(lp, "").c_str());
    abort();
}
