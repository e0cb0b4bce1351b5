#include "support/model_text.h"
#include <sstream>
#include <vector>

static int count_of(TVXmodel *model, const char *attribute)
{
    int count = -1;
    TVXgetintattr(model, attribute, &count);
    return count;
}

static void put_doubles(std::ostringstream &text, TVXmodel *model, const char *attribute,
                        int n)
{
    std::vector<double> values(n);
    text << attribute << ":";
    if (n > 0 && TVXgetdblattrarray(model, attribute, 0, n, values.data()))
        text << " unreadable";
    for (const double value : values) text << " " << value + 0.0; // no -0
    text << "\n";
}

static void put_chars(std::ostringstream &text, TVXmodel *model, const char *attribute,
                      int n)
{
    std::string values(n, '?');
    if (n > 0) TVXgetcharattrarray(model, attribute, 0, n, values.data());
    text << attribute << ": " << values << "\n";
}

static void put_names(std::ostringstream &text, TVXmodel *model, const char *attribute,
                      int n)
{
    std::vector<char *> values(n, nullptr);
    if (n > 0) TVXgetstrattrarray(model, attribute, 0, n, values.data());
    text << attribute << ":";
    for (const char *value : values) text << " " << (value ? value : "(null)");
    text << "\n";
}

using Query = int (*)(TVXmodel *, int *, int *, int *, double *, int, int);

static void put_vectors(std::ostringstream &text, TVXmodel *model, Query query, int n)
{
    int count = 0;
    if (n == 0) return;
    if (query(model, &count, nullptr, nullptr, nullptr, 0, n)) text << "unreadable";
    std::vector<int> beg(n + 1);
    std::vector<int> ind(count + 1);
    std::vector<double> val(count + 1);
    query(model, &count, beg.data(), ind.data(), val.data(), 0, n);
    beg.back() = count;
    for (size_t k = 0; k + 1 < beg.size(); k++) {
        for (int p = beg[k]; p < beg[k + 1]; p++)
            text << " (" << ind[p] << ", " << val[p] << ")";
        text << "\n";
    }
}

std::string model_text(TVXmodel *model)
{
    std::ostringstream text;
    text.precision(17);
    const int n = count_of(model, "NumVars");
    const int m = count_of(model, "NumConstrs");
    const int sos = count_of(model, "NumSOS");
    if (n < 0 || m < 0 || sos < 0) return "unreadable";
    char *name = nullptr;
    double objcon = 0;
    TVXgetstrattr(model, "ModelName", &name);
    TVXgetdblattr(model, "ObjCon", &objcon);
    text << (name ? name : "(null)") << " sense " << count_of(model, "ModelSense")
         << " constant " << objcon << " nonzeros " << count_of(model, "NumNZs")
         << " integers " << count_of(model, "NumIntVars") << " binaries "
         << count_of(model, "NumBinVars") << "\n";
    put_names(text, model, "VarName", n);
    put_chars(text, model, "VType", n);
    for (const char *attribute : {"Obj", "LB", "UB"})
        put_doubles(text, model, attribute, n);
    put_names(text, model, "ConstrName", m);
    put_chars(text, model, "Sense", m);
    put_doubles(text, model, "RHS", m);
    text << "columns\n";
    put_vectors(text, model, TVXgetvars, n);
    text << "rows\n";
    put_vectors(text, model, TVXgetconstrs, m);
    text << "sos";
    std::vector<int> types(sos);
    int members = 0;
    if (sos > 0)
        TVXgetsos(model, &members, types.data(), nullptr, nullptr, nullptr, 0, sos);
    for (const int type : types) text << " " << type;
    text << "\n";
    const Query members_of = [](TVXmodel *of, int *count, int *beg, int *ind,
                                double *weight, int start, int len) {
        return TVXgetsos(of, count, nullptr, beg, ind, weight, start, len);
    };
    put_vectors(text, model, members_of, sos);
    return text.str();
}
