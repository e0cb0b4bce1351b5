// model_text.cpp -- reading and printing; see the header
#include "support/model_text.h"
#include <sstream>

namespace
{
struct Reader {
    TVXmodel *model;
    std::string unreadable;

    int count(const char *attribute)
    {
        int value = 0;
        if (TVXgetintattr(model, attribute, &value))
            unreadable += std::string(" ") + attribute;
        return value;
    }
    // use(k, value) for each of n elements
    template<class T, class Use>
    void each(int (*query)(TVXmodel *, const char *, int, int, T *), const char *attribute,
              int n, const Use &use)
    {
        std::vector<T> values(n);
        if (n > 0 && query(model, attribute, 0, n, values.data()))
            unreadable += std::string(" ") + attribute;
        for (int k = 0; k < n; k++) use(size_t(k), values[k]);
    }
    template<class Query, class Use> void vectors(const Query &query, int n, const Use &use)
    {
        int count = 0;
        if (n == 0) return;
        if (query(&count, nullptr, nullptr, nullptr)) unreadable += " vectors";
        std::vector<int> beg(n + 1), ind(count + 1);
        std::vector<double> val(count + 1);
        query(&count, beg.data(), ind.data(), val.data());
        beg[n] = count;
        for (int k = 0; k < n; k++)
            for (int p = beg[k]; p < beg[k + 1]; p++)
                use(size_t(k))->emplace_back(ind[p], val[p]);
    }
};
} // namespace

ModelContent model_content(TVXmodel *model)
{
    ModelContent c;
    Reader r = {model, ""};
    const int n = r.count("NumVars"), m = r.count("NumConstrs"), sets = r.count("NumSOS");
    c.vars.resize(n);
    c.constrs.resize(m);
    c.sos.resize(sets);
    char *name = nullptr;
    TVXgetstrattr(model, "ModelName", &name);
    TVXgetdblattr(model, "ObjCon", &c.objcon);
    c.name = name ? name : "(null)";
    c.sense = r.count("ModelSense");
    c.counts =
        content_counts(r.count("NumNZs"), r.count("NumIntVars"), r.count("NumBinVars"));
    r.each(TVXgetstrattrarray, "VarName", n,
           [&](size_t j, const char *v) { c.vars[j].name = v ? v : "(null)"; });
    r.each(TVXgetcharattrarray, "VType", n, [&](size_t j, char v) { c.vars[j].vtype = v; });
    r.each(TVXgetdblattrarray, "Obj", n, [&](size_t j, double v) { c.vars[j].obj = v; });
    r.each(TVXgetdblattrarray, "LB", n, [&](size_t j, double v) { c.vars[j].lb = v; });
    r.each(TVXgetdblattrarray, "UB", n, [&](size_t j, double v) { c.vars[j].ub = v; });
    r.each(TVXgetstrattrarray, "ConstrName", m,
           [&](size_t i, const char *v) { c.constrs[i].name = v ? v : "(null)"; });
    r.each(TVXgetcharattrarray, "Sense", m,
           [&](size_t i, char v) { c.constrs[i].sense = v; });
    r.each(TVXgetdblattrarray, "RHS", m, [&](size_t i, double v) { c.constrs[i].rhs = v; });
    const auto columns = [=](auto... to) { return TVXgetvars(model, to..., 0, n); };
    const auto rows = [=](auto... to) { return TVXgetconstrs(model, to..., 0, m); };
    const auto members = [=](int *count, auto... to) {
        return TVXgetsos(model, count, nullptr, to..., 0, sets);
    };
    r.vectors(columns, n, [&](size_t j) { return &c.vars[j].column; });
    r.vectors(rows, m, [&](size_t i) { return &c.constrs[i].row; });
    r.vectors(members, sets, [&](size_t k) { return &c.sos[k].members; });
    std::vector<int> types(sets);
    int all = 0;
    if (sets > 0) TVXgetsos(model, &all, types.data(), nullptr, nullptr, nullptr, 0, sets);
    for (int k = 0; k < sets; k++) c.sos[k].type = types[k];
    c.unreadable = r.unreadable;
    return c;
}

std::string content_counts(int nonzeros, int integers, int binaries)
{
    return "nonzeros " + std::to_string(nonzeros) + " integers " +
           std::to_string(integers) + " binaries " + std::to_string(binaries);
}

static void put(std::ostringstream *text, const Entries &entries)
{
    for (const auto &[k, value] : entries) *text << " (" << k << ", " << value << ")";
    *text << "\n";
}

std::string content_text(const ModelContent &c)
{
    std::ostringstream text;
    text.precision(17);
    text << c.name.value_or("") << " sense " << c.sense << " constant " << c.objcon << " "
         << c.counts << (c.unreadable.empty() ? "" : " unreadable" + c.unreadable) << "\n";
    for (const ModelContent::Var &v : c.vars) { // + 0.0: no -0
        text << v.name << " " << v.vtype << " " << v.obj + 0.0 << " in " << v.lb + 0.0
             << " " << v.ub + 0.0;
        put(&text, v.column);
    }
    for (const ModelContent::Constr &constr : c.constrs) {
        text << constr.name << " " << constr.sense << " " << constr.rhs + 0.0;
        put(&text, constr.row);
    }
    for (const ModelContent::Sos &set : c.sos) {
        text << "set " << set.type;
        put(&text, set.members);
    }
    return text.str();
}

std::string model_text(TVXmodel *model)
{
    return content_text(model_content(model));
}
