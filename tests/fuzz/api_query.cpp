// api_query.cpp -- attributes and parameters of a fuzzed model: every form of a query must tell the same
#include "attributes/attribute_table.h"
#include "env/parameter_rows.h"
#include "fuzz/api_model.h"
#include <cmath>

namespace
{
// The calls of one type as one shape; values are compared as doubles, texts by their characters.
template<class T> struct Calls {
    int (*of_model)(TVXmodel *, const char *, T *);
    int (*element)(TVXmodel *, const char *, int, T *);
    int (*array)(TVXmodel *, const char *, int, int, T *);
    int (*list)(TVXmodel *, const char *, int, const int *, T *);
};
constexpr Calls<int> INT_CALLS = {TVXgetintattr, TVXgetintattrelement, TVXgetintattrarray,
                                  TVXgetintattrlist};
constexpr Calls<double> DBL_CALLS = {TVXgetdblattr, TVXgetdblattrelement,
                                     TVXgetdblattrarray, TVXgetdblattrlist};
constexpr Calls<char> CHAR_CALLS = {nullptr, TVXgetcharattrelement, TVXgetcharattrarray,
                                    TVXgetcharattrlist};
constexpr Calls<char *> STR_CALLS = {TVXgetstrattr, TVXgetstrattrelement,
                                     TVXgetstrattrarray, TVXgetstrattrlist};

template<class T> bool same(T a, T b)
{
    if constexpr (std::is_same_v<T, char *>)
        return std::string(a ? a : "") == (b ? b : "");
    else
        return a == b;
}

template<class T> bool sane(T value)
{
    if constexpr (std::is_same_v<T, double>)
        return std::isfinite(value) && (value != 0 || !std::signbit(value));
    else
        return true;
}

template<class T>
std::string query_elements(ApiModel *a, const Calls<T> &calls, const char *name, int n)
{
    TVXmodel *model = a->model;
    std::vector<T> all(n + 1), part(n + 1), listed(n + 1);
    const int code = calls.array(model, name, 0, -1, n > 0 ? all.data() : nullptr);
    T one{};
    if (calls.element(model, name, n, &one) == 0) return "an element beyond the last";
    if (calls.element(model, name, -1, &one) == 0) return "an element before the first";
    if (n == 0) return "";
    const int start = a->dice()->range(0, n - 1), len = a->dice()->range(1, n - start);
    std::vector<int> ind;
    for (int k = 0; k < n; k++) ind.push_back(a->dice()->range(0, n - 1));
    if (calls.array(model, name, start, len, part.data()) != code ||
        calls.list(model, name, n, ind.data(), listed.data()) != code ||
        calls.element(model, name, start, &one) != code)
        return "the forms answer with several codes";
    if (calls.array(model, name, start, n - start + 1, part.data()) == 0)
        return "a stretch beyond the last";
    if (code) return "";
    (void)calls.array(model, name, start, len, part.data());
    for (int k = 0; k < len; k++)
        if (!same(part[k], all[start + k])) return "array differs";
    for (int k = 0; k < n; k++)
        if (!same(listed[k], all[ind[k]]) || !sane(all[k]))
            return "list differs, is no number, or minus zero";
    return same(one, all[start]) ? "" : "element differs";
}

template<class T>
std::string query(ApiModel *a, const Calls<T> &calls, const AttributeRow &row)
{
    T one{}, again{};
    const int sizes[] = {0, a->player.n_vars(), a->player.n_constrs(), a->player.n_sos()};
    if (row.kind != AttrKind::MODEL)
        return query_elements(a, calls, row.name, sizes[int(row.kind)]);
    if (!calls.of_model) return "a character of the model";
    const int code = calls.of_model(a->model, row.name, &one);
    if (calls.of_model(a->model, row.name, &again) != code || !same(one, again))
        return "a second query differs";
    return code || sane(one) ? "" : "no number, or minus zero";
}

// Integers take any value, but for those that print, write files, ask for threads, or change what the reference says.
constexpr const char *LEFT_ALONE[] = {"OutputFlag", "Threads", "TARV_PAR_DUMP",
                                      "TARV_PAR_WRITEPREMODEL"};

// Doubles take values under which the answer stays the same, or a limit that tells itself.
// clang-format off
const std::map<std::string, std::vector<double>> doubles = {
    {"IterationLimit", {0, 1, 2, 5, 20}}, {"TimeLimit", {0}}, {"NodeLimit", {0, 1, 3}}, {"Heuristics", {0, 0.05, 0.5}},
    {"MIPGap", {0, 1e-4, 0.1}}, {"MIPGapAbs", {0, 0.5}}, {"IntFeasTol", {1e-9, 1e-5}}, {"Cutoff", {-5, 0, 3}}, {"FeasibilityTol", {1e-9, 1e-8}},
    {"OptimalityTol", {1e-9, 1e-8}}, {"MarkowitzTol", {1e-4, 0.1, 0.999}}, {"PerturbValue", {0, 1e-5, 0.01}},
    {"ObjScale", {-1, -0.5, 1, 1000}}, {"TARV_PAR_PIVOTTOL", {1e-10, 1e-6}}, {"TARV_PAR_BIGTOL", {1e-9, 1e-4}},
    {"TARV_PAR_BIGM", {1e4, 1e13}}, {"TARV_PAR_ASPIRE", {0, 0.2}}};
// clang-format on

double draw_value(Dice *dice, const ParameterRow &p)
{
    if (dice->chance(20)) return p.value;
    if (!p.is_int) return dice->pick(doubles.at(p.name));
    const double small = dice->range(-2, 4);
    if (small >= p.minimum && small <= p.maximum) return small;
    return dice->chance(50) ? p.minimum : p.maximum;
}
} // namespace

std::string api_query(ApiModel *a)
{
    const AttributeRow &row = attribute_rows[a->dice()->range(0, ATTRIBUTE_COUNT - 1)];
    const std::string wrong = row.type == AttrType::CHAR     ? query(a, CHAR_CALLS, row)
                              : row.type == AttrType::INT    ? query(a, INT_CALLS, row)
                              : row.type == AttrType::DOUBLE ? query(a, DBL_CALLS, row)
                                                             : query(a, STR_CALLS, row);
    return wrong.empty() ? "" : std::string(row.name) + ": " + wrong;
}

std::string api_set_parameter(ApiModel *a)
{
    const ParameterRow &p = a->dice()->pick(parameter_rows);
    for (const char *name : LEFT_ALONE)
        if (std::string(name) == p.name) return "";
    if (!p.is_int && !doubles.count(p.name)) return "";
    if (p.maximum < 1e9 && p.set(a->env(), p.maximum + 1) != TVX_ERROR_VALUE_OUT_OF_RANGE)
        return std::string(p.name) + " takes a value beyond its range";
    const double value = draw_value(a->dice(), p);
    if (p.set(a->env(), value)) return std::string(p.name) + " refuses a value";
    a->values[p.name] = value;
    return "";
}

std::string api_set_start(ApiModel *a)
{
    const int n = a->player.n_vars(), m = a->player.n_constrs();
    Dice *dice = a->dice();
    LpSolution point;
    const bool from_solution = dice->chance(60) && lp_read_point(a->model, &point) == 0;
    point.vbasis.resize(n, -1);
    point.cbasis.resize(m, 0);
    const int changes = from_solution ? dice->range(0, 3) : n + m;
    for (int k = 0; k < changes && n + m > 0; k++) {
        const int place = dice->range(0, n + m - 1);
        if (place < n)
            point.vbasis[place] = dice->range(-3, 0);
        else
            point.cbasis[place - n] = dice->range(-1, 0);
    }
    if (lp_set_basis(a->model, point.vbasis, point.cbasis))
        return std::string("a basis is refused: ") + TVXgetmerrormsg(a->model);
    if (n == 0) return "";
    std::vector<double> values;
    for (int j = 0; j < n; j++)
        values.push_back(dice->chance(30) ? 1e100 : dice->range(-3, 9));
    if (dice->chance(30) && TVXsetdblattrarray(a->model, "Start", 0, n, values.data()))
        return "a start is refused";
    for (double &value : values) value = dice->range(1, 9);
    if (dice->chance(20)) // refused without a basis
        (void)TVXsetdblattrarray(a->model, "VDualNorm", 0, n, values.data());
    return "";
}
