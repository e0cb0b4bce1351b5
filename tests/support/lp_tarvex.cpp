// lp_tarvex.cpp -- load, read back and solve through the public interface; see the header
#include "support/lp_tarvex.h"
#include <cstdlib>

TestEnv::TestEnv()
{
    if (TVXloadenv(&env, nullptr) || TVXsetintparam(env, "OutputFlag", 0)) abort();
}

namespace
{

// The matrix in compressed form, by columns or by rows.
struct Compressed {
    std::vector<int> beg, len, ind;
    std::vector<double> val;
};

} // namespace

static Compressed by_columns(const LpModel *lp)
{
    Compressed a;
    for (const std::vector<LpEntry> &col : lp->cols) {
        a.beg.push_back(static_cast<int>(a.ind.size()));
        a.len.push_back(static_cast<int>(col.size()));
        for (const LpEntry &e : col) {
            a.ind.push_back(e.row);
            a.val.push_back(e.value);
        }
    }
    a.beg.push_back(static_cast<int>(a.ind.size()));
    a.ind.reserve(1); // never a null pointer
    a.val.reserve(1);
    return a;
}

static Compressed by_rows(const LpModel *lp)
{
    std::vector<std::vector<std::pair<int, double>>> rows(lp->rhs.size());
    for (size_t j = 0; j < lp->cols.size(); j++)
        for (const LpEntry &e : lp->cols[j])
            rows[static_cast<size_t>(e.row)].push_back({static_cast<int>(j), e.value});
    Compressed a;
    for (const auto &row : rows) {
        a.beg.push_back(static_cast<int>(a.ind.size()));
        for (const auto &[col, value] : row) {
            a.ind.push_back(col);
            a.val.push_back(value);
        }
    }
    a.ind.reserve(1);
    a.val.reserve(1);
    return a;
}

TVXmodel *lp_load(TVXenv *env, const LpModel *lp)
{
    TVXmodel *model = nullptr;
    const Compressed a = by_columns(lp);
    const int error =
        TVXloadmodel(env, &model, nullptr, lp->num_vars(), lp->num_rows(), lp->sense,
                     lp->objcon, lp->obj.data(), lp->senses.data(), lp->rhs.data(),
                     a.beg.data(), a.len.data(), a.ind.data(), a.val.data(), lp->lb.data(),
                     lp->ub.data(), nullptr, nullptr, nullptr);
    return error ? nullptr : model;
}

TVXmodel *lp_build_by_rows(TVXenv *env, const LpModel *lp)
{
    TVXmodel *model = nullptr;
    const Compressed a = by_rows(lp);
    int error = TVXnewmodel(env, &model, nullptr, lp->num_vars(), lp->obj.data(),
                            lp->lb.data(), lp->ub.data(), nullptr, nullptr);
    if (!error) error = TVXsetintattr(model, "ModelSense", lp->sense);
    if (!error) error = TVXsetdblattr(model, "ObjCon", lp->objcon);
    if (!error)
        error = TVXaddconstrs(model, lp->num_rows(), static_cast<int>(a.ind.size()),
                              a.beg.data(), a.ind.data(), a.val.data(), lp->senses.data(),
                              lp->rhs.data(), nullptr);
    if (!error) error = TVXupdatemodel(model);
    if (!error) return model;
    TVXfreemodel(model);
    return nullptr;
}

static int read_columns(TVXmodel *model, LpModel *lp)
{
    const int n = lp->num_vars();
    int numnz = 0;
    if (n == 0) return 0;
    if (const int error = TVXgetvars(model, &numnz, nullptr, nullptr, nullptr, 0, n))
        return error;
    std::vector<int> beg(static_cast<size_t>(n) + 1), ind(static_cast<size_t>(numnz) + 1);
    std::vector<double> val(static_cast<size_t>(numnz) + 1);
    if (const int error =
            TVXgetvars(model, &numnz, beg.data(), ind.data(), val.data(), 0, n))
        return error;
    beg[static_cast<size_t>(n)] = numnz;
    for (size_t j = 0; j < lp->cols.size(); j++)
        for (int p = beg[j]; p < beg[j + 1]; p++)
            lp->cols[j].push_back(
                {ind[static_cast<size_t>(p)], val[static_cast<size_t>(p)]});
    return 0;
}

int lp_read_back(TVXmodel *model, LpModel *lp)
{
    *lp = LpModel{};
    int n = 0, m = 0;
    if (const int error = TVXgetintattr(model, "NumVars", &n)) return error;
    if (const int error = TVXgetintattr(model, "NumConstrs", &m)) return error;
    if (const int error = TVXgetintattr(model, "ModelSense", &lp->sense)) return error;
    if (const int error = TVXgetdblattr(model, "ObjCon", &lp->objcon)) return error;
    const size_t cols = static_cast<size_t>(n), rows = static_cast<size_t>(m);
    lp->obj.resize(cols);
    lp->lb.resize(cols);
    lp->ub.resize(cols);
    lp->cols.resize(cols);
    lp->rhs.resize(rows);
    lp->senses.resize(rows);
    if (n > 0) {
        int error = TVXgetdblattrarray(model, "Obj", 0, n, lp->obj.data());
        if (!error) error = TVXgetdblattrarray(model, "LB", 0, n, lp->lb.data());
        if (!error) error = TVXgetdblattrarray(model, "UB", 0, n, lp->ub.data());
        if (error) return error;
    }
    if (m > 0) {
        int error = TVXgetdblattrarray(model, "RHS", 0, m, lp->rhs.data());
        if (!error) error = TVXgetcharattrarray(model, "Sense", 0, m, lp->senses.data());
        if (error) return error;
    }
    return read_columns(model, lp);
}

static int read_doubles(TVXmodel *model, const char *name, int count,
                        std::vector<double> *values)
{
    values->resize(static_cast<size_t>(count));
    return count > 0 ? TVXgetdblattrarray(model, name, 0, count, values->data()) : 0;
}

static int read_ints(TVXmodel *model, const char *name, int count, std::vector<int> *values)
{
    values->resize(static_cast<size_t>(count));
    return count > 0 ? TVXgetintattrarray(model, name, 0, count, values->data()) : 0;
}

int lp_read_point(TVXmodel *model, LpSolution *solution)
{
    int n = 0, m = 0;
    int error = TVXgetintattr(model, "NumVars", &n);
    if (!error) error = TVXgetintattr(model, "NumConstrs", &m);
    if (!error) error = TVXgetdblattr(model, "ObjVal", &solution->objval);
    if (!error) error = read_doubles(model, "X", n, &solution->x);
    if (!error) error = read_doubles(model, "RC", n, &solution->rc);
    if (!error) error = read_doubles(model, "Pi", m, &solution->pi);
    if (!error) error = read_doubles(model, "Slack", m, &solution->slack);
    if (!error) error = read_ints(model, "VBasis", n, &solution->vbasis);
    if (!error) error = read_ints(model, "CBasis", m, &solution->cbasis);
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
        error = TVXsetintattrarray(model, "VBasis", 0, static_cast<int>(vbasis.size()),
                                   vbasis.data());
    if (!error && !cbasis.empty())
        error = TVXsetintattrarray(model, "CBasis", 0, static_cast<int>(cbasis.size()),
                                   cbasis.data());
    return error;
}
