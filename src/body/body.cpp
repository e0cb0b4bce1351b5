// body.cpp -- rules that hold for every body, however it was built
#include "body/body.h"
#include <algorithm>
#include <bit>
#include <cmath>

namespace
{
// A bound of an integer variable within this distance of an integer is rounded to it.
constexpr double INTEGER_BOUND_TOL = 1e-5;
} // namespace

char normal_sense(char sense)
{
    switch (sense) {
    case 'L':
    case 'l':
        return '<';
    case 'G':
    case 'g':
        return '>';
    case 'E':
    case 'e':
        return '=';
    default:
        return sense;
    }
}

char normal_vtype(char vtype)
{
    switch (vtype) {
    case 'C':
    case 'c':
        return 'C';
    case 'B':
    case 'b':
        return 'B';
    case 'I':
    case 'i':
        return 'I';
    case 'S':
    case 's':
        return 'S';
    case 'N':
    case 'n':
        return 'N';
    default:
        return 0;
    }
}

int check_vtype(TVXenv *env, char vtype, int j)
{
    if (normal_vtype(vtype)) return 0;
    return fail(env, TVX_ERROR_INVALID_ARGUMENT, Report::KEEP_FIRST,
                "Variable %d has an unknown type (character code %d)", j,
                static_cast<int>(static_cast<unsigned char>(vtype)));
}

void round_bounds(char vtype, double *lb, double *ub)
{
    if (vtype == 'C' || vtype == 'S') return;
    *lb = std::ceil(*lb - INTEGER_BOUND_TOL) + 0.0; // + 0.0: no negative zero
    *ub = std::floor(*ub + INTEGER_BOUND_TOL) + 0.0;
    if (vtype == 'B') {
        *lb = std::max(*lb, 0.0);
        *ub = std::min(*ub, 1.0);
    }
}

void body_free(ModelBody *body)
{
    if (!body) return;
    PoolFree(&body->name_pool);
    record_free(body);
}

void body_negate_rows(ModelBody *body, const char *marked)
{
    const int *__restrict ind = body->vind.data;
    double *__restrict val = body->vval.data;
    for (int p = 0; p < body->numnz; p++)
        if (marked[ind[p]]) val[p] = -val[p];
}

void body_count_types(ModelBody *body)
{
    body->numintvars = body->numbinvars = 0;
    for (const char vtype : body->vtypes) {
        body->numintvars += vtype != 'C';
        body->numbinvars += vtype == 'B';
    }
}

void body_find_flipped(ModelBody *body)
{
    const bool any =
        std::find(body->senses.begin(), body->senses.end(), '>') != body->senses.end();
    body->row_flipped = any ? 1 : -1;
}

void body_drop_rows(ModelBody *body)
{
    array_free(&body->row_beg);
    array_free(&body->row_ind);
    array_free(&body->row_val);
}

namespace
{
// The product of three such numbers is finite.
constexpr double EXTREME = 1e100;

// The bits of |a| as an integer have the order of the magnitudes, so that one comparison tests both limits. Fast, since
// every solve tests every entry.
bool is_extreme(double a)
{
    constexpr uint64_t LEAST = std::bit_cast<uint64_t>(1 / EXTREME) << 1,
                       MOST = std::bit_cast<uint64_t>(EXTREME) << 1;
    const uint64_t size = std::bit_cast<uint64_t>(a) << 1;
    return size - LEAST > MOST - LEAST && size != 0;
}
} // namespace

bool body_is_extreme(const ModelBody *body)
{
    for (const double a : body->vval)
        if (is_extreme(a)) return true;
    for (const double cost : body->obj)
        if (!(std::fabs(cost) <= EXTREME)) return true;
    return false;
}

void body_find_kinds(ModelBody *body, double infinite)
{
    body->kind_infinity = infinite;
    for (int j = 0; j < body->numvars; j++)
        body->bound_kind[j] = bound_kind_of(body->lb[j], body->ub[j], infinite);
}

bool body_is_mip(const ModelBody *body)
{
    return body->numintvars > 0 || body->numsos > 0;
}
