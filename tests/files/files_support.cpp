#include "files/files_support.h"
#include "model/model_store.h"
#include "model/warm_start.h"
#include <algorithm>
#include <cmath>
#include <sstream>

std::string shown(double value)
{
    if (std::fabs(value) >= 1e30) return value > 0 ? "inf" : "-inf";
    char text[40];
    snprintf(text, sizeof text, "%.17g", value + 0.0); // -0 is 0
    return text;
}

static std::string domain_of(const ModelBody *body, int j)
{
    return std::string(1, body->vtypes.size ? body->vtypes[j] : 'C') + " [" +
           shown(body->lb[j]) + "," + shown(body->ub[j]) + "]";
}

static std::string name_of(const ModelBody *body, char kind, int k)
{
    char buffer[DEFAULT_NAME_LENGTH];
    return kind == 'C' ? var_name(body, k, buffer) : constr_name(body, k, buffer);
}

std::string stored_text(const TVXmodel *model, Names names)
{
    const ModelBody *body = model->body;
    const bool named = names == Names::COMPARE;
    std::ostringstream text;
    if (named) text << (body->modelname ? body->modelname : "") << "\n";
    text << "constant " << shown(body->objcon) << "\n";
    for (int j = 0; j < body->numvars; j++) {
        if (named) text << name_of(body, 'C', j) << " ";
        text << domain_of(body, j) << " " << shown(body->obj[j]);
        std::vector<std::pair<int, double>> entries;
        for (int p = body->vbeg[j]; p < body->vbeg[j] + body->vlen[j]; p++)
            if (body->vval[p] != 0) entries.emplace_back(body->vind[p], body->vval[p]);
        std::sort(entries.begin(), entries.end());
        for (const auto &[i, value] : entries) text << " " << i << ":" << shown(value);
        text << "\n";
    }
    for (int i = 0; i < body->numconstrs; i++) {
        if (named) text << name_of(body, 'R', i) << " ";
        text << (body->senses[i] == '=' ? "= " : "< ") << shown(body->rhs[i]) << "\n";
    }
    for (int s = 0; s < body->numsos; s++) {
        text << "S" << body->sostype[s];
        for (int k = body->sosbeg[s]; k < body->sosbeg[s + 1]; k++)
            text << " " << body->sosind[k] << ":" << shown(body->soswt[k]);
        text << "\n";
    }
    return text.str();
}

std::string round_trip(TVXmodel *model, const std::string &name, Names names)
{
    TVXmodel *read = nullptr;
    const bool written = TVXwrite(model, name.c_str()) == 0;
    if (!written || TVXreadmodel(TVXgetenv(model), name.c_str(), &read))
        return name + (written ? " is not read back: " : " is not written: ") +
               TVXgetmerrormsg(model);
    const TestModel back(read);
    const std::string was = stored_text(model, names), is = stored_text(back, names);
    return was == is ? "" : was + "became\n" + is;
}

void Files::TearDown()
{
    TVXfreemodel(model);
    Env::TearDown();
#ifdef TVX_DEBUG
    EXPECT_EQ(mem_blocks_held(), 0);
#endif
}

int Files::read_file(const std::string &name)
{
    TVXfreemodel(model);
    model = nullptr;
    Output output;
    const int code = TVXreadmodel(env, name.c_str(), &model);
    log = output.text();
    return code;
}

int Files::read(const std::string &text, const std::string &name)
{
    remove(name.c_str()); // some file systems write a truncated file to the disk
    file_put(name, text);
    return read_file(name);
}

int Files::read_into(const std::string &name)
{
    Output output;
    const int code = TVXread(model, name.c_str());
    log = output.text();
    return code;
}

void Files::give_solution(const std::vector<double> &x)
{
    MipResult *result = model->mip.result = record_create<MipResult>();
    ASSERT_NE(result, nullptr);
    result->status = TVX_OPTIMAL;
    result->has_solution = result->sol_count = 1;
    ASSERT_EQ(array_resize(&result->x, int64_t(x.size())), 0);
    std::copy(x.begin(), x.end(), result->x.data);
}

std::vector<int> Files::basis() const
{
    const WarmStart *warm = warm_start_usable(model);
    std::vector<int> statuses;
    for (int k = 0; warm && k < warm->count + model->body->numconstrs; k++)
        statuses.push_back(std::min(warm->statuses[k], 0));
    return statuses;
}

double Files::start(int j)
{
    double value = 0;
    EXPECT_EQ(TVXupdatemodel(model), 0);
    return TVXgetdblattrelement(model, "Start", j, &value) ? 0 : value;
}

void Files::take(const LpModel &lp, std::vector<std::string> vars,
                 std::vector<std::string> rows)
{
    const auto name = [this](const char *attribute, std::vector<std::string> &names) {
        std::vector<char *> pointers;
        for (std::string &text : names) pointers.push_back(text.data());
        EXPECT_EQ(
            TVXsetstrattrarray(model, attribute, 0, int(names.size()), pointers.data()), 0);
    };
    TVXfreemodel(model);
    model = lp_load(env, &lp);
    name("VarName", vars);
    name("ConstrName", rows);
    ASSERT_EQ(TVXupdatemodel(model), 0);
}

std::string Files::round_trip(const std::string &name, Names names)
{
    Output output;
    remove(name.c_str());
    return ::round_trip(model, name, names);
}

std::string Files::content() const
{
    std::string text = stored_text(model, Names::COMPARE), line, all;
    for (std::istringstream lines(text); std::getline(lines, line);) all += line + "; ";
    return all;
}

int Files::column(const std::string &name) const
{
    for (int j = 0; j < model->body->numvars; j++)
        if (name == name_of(model->body, 'C', j)) return j;
    return -1;
}

int Files::row(const std::string &name) const
{
    for (int i = 0; i < model->body->numconstrs; i++)
        if (name == name_of(model->body, 'R', i)) return i;
    return -1;
}

std::string Files::domain(const std::string &column_name) const
{
    const int j = column(column_name);
    return j < 0 ? "none" : domain_of(model->body, j);
}

std::string mps_with(const std::string &sections)
{
    return "NAME          TEST\n"
           "ROWS\n"
           " N  COST\n"
           " G  R1\n"
           " L  R2\n"
           "COLUMNS\n"
           "    X         COST                 1   R1                   1\n"
           "    X         R2                   2\n"
           "    Y         COST                 2   R1                   1\n" +
           sections;
}
