// lp_tarvex.cpp -- load, read back and solve through the public interface; see the header
#include "support/lp_tarvex.h"
#include "support/model_text.h"
#include <cstdlib>
#include <numeric>
#include <tuple>

TestEnv::TestEnv()
{
    if (TVXloadenv(&env, nullptr) || TVXsetintparam(env, "OutputFlag", 0)) abort();
}

static bool add_sets(const LpModel *lp, TVXmodel *model)
{
    for (const LpSet &set : lp->sets) {
        const int count = static_cast<int>(set.members.size()), begin = 0;
        std::vector<double> weights(set.members.size());
        std::iota(weights.begin(), weights.end(), 1);
        if (TVXaddsos(model, 1, count, &set.type, &begin, set.members.data(),
                      weights.data()))
            return false;
    }
    return lp->sets.empty() || TVXupdatemodel(model) == 0;
}

TVXmodel *lp_load(TVXenv *env, const LpModel *lp, const Settings &settings)
{
    TVXmodel *model = nullptr;
    std::vector<int> beg, len, ind;
    std::vector<double> val;
    for (const std::vector<LpEntry> &col : lp->cols) {
        beg.push_back(int(ind.size()));
        len.push_back(int(col.size()));
        for (const LpEntry &e : col) {
            ind.push_back(e.row);
            val.push_back(e.value);
        }
    }
    for (std::vector<int> *list : {&beg, &len, &ind}) list->reserve(1); // never null
    val.reserve(1);
    const int error = TVXloadmodel(
        env, &model, nullptr, lp->num_vars(), lp->num_rows(), lp->sense, lp->objcon,
        lp->obj.data(), lp->senses.data(), lp->rhs.data(), beg.data(), len.data(),
        ind.data(), val.data(), lp->lb.data(), lp->ub.data(),
        lp->types.empty() ? nullptr : lp->types.data(), nullptr, nullptr);
    if (error) return nullptr;
    if (add_sets(lp, model) && settings_apply(TVXgetenv(model), settings) == 0)
        return model;
    TVXfreemodel(model);
    return nullptr;
}

template<class T, class Query>
static int read_array(Query query, TVXmodel *model, const char *name, int count,
                      std::vector<T> *values)
{
    values->resize(count);
    return count > 0 ? query(model, name, 0, count, values->data()) : 0;
}

int lp_read_back(TVXmodel *model, LpModel *lp)
{
    const ModelContent content = model_content(model);
    *lp = LpModel{};
    lp->sense = content.sense;
    lp->objcon = content.objcon;
    for (const ModelContent::Constr &c : content.constrs) lp_add_row(lp, c.sense, c.rhs);
    for (const ModelContent::Var &v : content.vars) {
        lp_add_var(lp, v.obj, v.lb, v.ub, v.vtype);
        for (const auto &[row, value] : v.column) lp->cols.back().push_back({row, value});
    }
    for (const ModelContent::Sos &s : content.sos) {
        LpSet *set = &lp->sets.emplace_back(LpSet{s.type, {}});
        for (const auto &[col, weight] : s.members) set->members.push_back(col);
    }
    return content.unreadable.empty() ? 0 : TVX_ERROR_DATA_NOT_AVAILABLE;
}

int lp_read_point(TVXmodel *model, LpSolution *solution)
{
    int n = 0, m = 0;
    int error = TVXgetintattr(model, "NumVars", &n);
    if (!error) error = TVXgetintattr(model, "NumConstrs", &m);
    if (!error) error = TVXgetdblattr(model, "ObjVal", &solution->objval);
    for (const auto &[name, count, values] : {std::tuple{"X", n, &solution->x},
                                              {"RC", n, &solution->rc},
                                              {"Pi", m, &solution->pi},
                                              {"Slack", m, &solution->slack}})
        if (!error) error = read_array(TVXgetdblattrarray, model, name, count, values);
    for (const auto &[name, count, values] :
         {std::tuple{"VBasis", n, &solution->vbasis}, {"CBasis", m, &solution->cbasis}})
        if (!error) error = read_array(TVXgetintattrarray, model, name, count, values);
    solution->has_basis = !error;
    return error;
}

int lp_read_solution(TVXmodel *model, LpSolution *solution)
{
    *solution = LpSolution{};
    int error = TVXgetintattr(model, "Status", &solution->status);
    if (!error) error = TVXgetdblattr(model, "IterCount", &solution->iterations);
    if (error || solution->status != TVX_OPTIMAL) return error;
    return lp_read_point(model, solution);
}

int lp_solve(TVXmodel *model, LpSolution *solution)
{
    const int error = TVXoptimize(model);
    return error ? error : lp_read_solution(model, solution);
}

int lp_set_basis(TVXmodel *model, const std::vector<int> &vbasis,
                 const std::vector<int> &cbasis)
{
    int error = 0;
    if (!vbasis.empty())
        error = TVXsetintattrarray(model, "VBasis", 0, int(vbasis.size()), vbasis.data());
    if (!error && !cbasis.empty())
        error = TVXsetintattrarray(model, "CBasis", 0, int(cbasis.size()), cbasis.data());
    return error;
}
