// feasibility_model.cpp -- TVXfeasibility: the model of the smallest sum of constraint violations
//
// Method      Elastic constraints: each gets a variable for every side that can be violated, and the objective is the
//             sum of these. Bounds, types and SOS constraints are not relaxed.
// Invariant   A point of the model with the violations of its constraints is a point of the new model and conversely:
//             its optimum is 0 if and only if the model has a feasible point.
// Cost        O(size of the model)
// Literature  G. B. Dantzig, "Linear Programming and Extensions", Princeton 1963, ch. 5 (phase one).
//             J. W. Chinneck, "Feasibility and Infeasibility in Optimization", Springer 2008, ch. 6 (elastic programs).
#include "analysis/derived.h"
#include "body/row_kind.h"
#include "model/model.h"

namespace
{
constexpr char ABOVE[] = "_above", BELOW[] = "_below"; // the right-hand side

// The new columns, one entry each.
struct Elastic {
    Array<int> beg, row;
    Array<double> value, cost;
    Array<char *> name;
};

int elastic_alloc(Elastic *e, int64_t n)
{
    TRY(array_reserve(&e->beg, n));
    TRY(array_reserve(&e->row, n));
    TRY(array_reserve(&e->value, n));
    TRY(array_reserve(&e->name, n));
    return array_assign(&e->cost, n, 1.0);
}

int elastic_add(ModelBody *body, int i, double value, Elastic *e)
{
    char buffer[DEFAULT_NAME_LENGTH];
    const char *name = nullptr;
    TRY(body_join_name(body, constr_name(body, i, buffer), value < 0 ? ABOVE : BELOW,
                       &name));
    array_push(&e->beg, static_cast<int>(e->row.size));
    array_push(&e->row, i);
    array_push(&e->value, value);
    array_push(&e->name, const_cast<char *>(name)); // the interface does not say const
    return 0;
}

void drop_objective(TVXmodel *copy)
{
    ModelBody *body = copy->body;
    for (double &cost : body->obj) cost = 0;
    body->objcon = 0;
    body->sense = 1;
    copy->env->Cutoff = UNDEFINED_VALUE; // the Cutoff was for the old objective
}

int count_sides(const ModelBody *body)
{
    int n = body->numconstrs;
    for (int i = 0; i < body->numconstrs; i++) n += is_equation(body, i);
    return n;
}

int make_elastic(TVXmodel * /*source*/, TVXmodel *copy)
{
    ModelBody *body = copy->body;
    Elastic e;
    const int n = count_sides(body);
    drop_objective(copy);
    TRY(elastic_alloc(&e, n));
    for (int i = 0; i < body->numconstrs; i++) {
        const char sense = counted_sense(body->senses.data[i]);
        if (sense != '>') TRY(elastic_add(body, i, -1, &e));
        if (sense != '<') TRY(elastic_add(body, i, 1, &e));
    }
    TRY(TVXaddvars(copy, n, n, e.beg.data, e.row.data, e.value.data, e.cost.data, nullptr,
                   nullptr, nullptr, e.name.data));
    return model_update(copy);
}
} // namespace

TVXmodel *TVXfeasibility(TVXmodel *model)
{
    return derive(model, "_feasibility", make_elastic);
}
