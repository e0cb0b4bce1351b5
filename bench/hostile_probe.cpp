// hostile_probe.cpp -- solve hostile LPs and judge each outcome exactly, as lines of JSON; see bench/hostile
//
//   tarvex_hostile solve [--save DIR] SUBJECTS --setting "Name=Value ..." ...   each model under each setting
//   tarvex_hostile write DIR SUBJECTS          each model as DIR/NAME.mps, as a minimisation (for other solvers)
//   tarvex_hostile judge DIR SUBJECTS          each DIR/NAME.outcome, another solver's, see read_outcome
// SUBJECTS is  FAMILY FIRST COUNT  or  --files MODEL ...  (LPs; the exact answers of large ones take long).
//
// A line {"begin": ...} stands before each solve, so that whoever reads knows where a crash happened.
// Exit code 0, or 2 with a line on standard error.
#include "support/hostile_gen.h"
#include "support/hostile_judge.h"
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>

namespace
{

struct Request {
    std::string mode, folder;              // folder: of --save, or behind the mode
    const HostileFamily *family = nullptr; // or files
    uint64_t first = 0, count = 0;
    std::vector<std::string> files, settings;
};

} // namespace

[[noreturn]] static void refuse(const std::string &why)
{
    fprintf(stderr, "tarvex_hostile: %s\n", why.c_str());
    exit(2);
}

static Settings parse_settings(const std::string &words)
{
    Settings settings;
    std::istringstream in(words);
    for (std::string word; in >> word;) {
        const size_t equals = word.find('=');
        if (equals == std::string::npos) refuse("not a setting: " + word);
        settings.emplace_back(word.substr(0, equals),
                              strtod(word.c_str() + equals + 1, nullptr));
    }
    return settings;
}

static LpModel read_model(TVXenv *env, const std::string &file)
{
    TVXmodel *read = nullptr;
    LpModel lp;
    if (TVXreadmodel(env, file.c_str(), &read)) refuse(file + ": " + TVXgeterrormsg(env));
    const TestModel model(read);
    if (lp_read_back(model, &lp)) refuse(file + " cannot be read back");
    return lp;
}

static std::string base_name(const std::string &file)
{
    const size_t slash = file.rfind('/');
    std::string name = slash == std::string::npos ? file : file.substr(slash + 1);
    return name.substr(0, name.find('.'));
}

static HostileModel subject(TVXenv *env, const Request &request, uint64_t index)
{
    if (request.family) return hostile_generate(*request.family, request.first + index);
    HostileModel h;
    h.name = base_name(request.files[index]);
    h.lp = read_model(env, request.files[index]);
    return h;
}

static std::string quoted(const std::string &text)
{
    std::string out = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') out += '\\';
        out += c == '\n' ? ' ' : c;
    }
    return out + "\"";
}

static void print_verdict(const HostileModel &h, const std::string &setting,
                          const HostileOutcome &outcome, const HostileJudgement &j)
{
    static constexpr const char *KINDS[] = {"plain", "infeasible", "unbounded"};
    printf("{\"model\": %s, \"setting\": %s, \"meant\": \"%s\", \"verdict\": \"%s\", "
           "\"text\": %s, ",
           quoted(h.name).c_str(), quoted(setting).c_str(), KINDS[static_cast<int>(h.kind)],
           verdict_name(j.verdict), quoted(j.text).c_str());
    printf("\"wrong\": %s, \"status\": %d, \"iterations\": %.0f, \"seconds\": %.4f, "
           "\"rows\": %d, ",
           verdict_wrong(j.verdict) ? "true" : "false", outcome.solution.status,
           outcome.solution.iterations, outcome.seconds, h.lp.num_rows());
    printf("\"columns\": %d, \"primal_vio\": %.3g, \"dual_vio\": %.3g}\n", h.lp.num_vars(),
           j.primal_vio, j.dual_vio);
    fflush(stdout);
}

static void write_text(const std::string &file, const std::string &text)
{
    std::ofstream out(file);
    out << text;
    if (!out.flush()) refuse("cannot write " + file);
}

static void solve_under(TVXenv *env, const Request &request, const HostileModel &h,
                        HostileTruth *truth, const std::string &setting)
{
    printf("{\"begin\": %s, \"setting\": %s}\n", quoted(h.name).c_str(),
           quoted(setting).c_str());
    fflush(stdout);
    const HostileOutcome outcome = hostile_solve(env, &h.lp, parse_settings(setting));
    const HostileJudgement j = hostile_judge(truth, &outcome);
    print_verdict(h, setting, outcome, j);
    if (request.folder.empty() || !verdict_wrong(j.verdict)) return;
    write_text(request.folder + "/" + h.name + ".mps",
               lp_to_mps(&h.lp, h.name + "\n" + verdict_name(j.verdict) + ": " + j.text +
                                    "\nsetting: " + setting));
}

// As free MPS by its first card, which some readers need to see.
static std::string free_mps(const LpModel &lp, const std::string &comment)
{
    static const std::string NAME = "NAME TEST";
    std::string text = lp_to_mps(&lp, comment);
    return text.insert(text.find(NAME) + NAME.size(), " FREE");
}

// The same model as a minimisation, which every reader understands.
static LpModel as_minimum(const LpModel &lp)
{
    LpModel low = lp;
    low.sense = 1;
    low.objcon *= lp.sense;
    for (double &c : low.obj) c *= lp.sense;
    return low;
}

static bool read_numbers(std::istream *in, size_t count, std::vector<double> *values)
{
    values->resize(count);
    std::string word; // not *in >> double, which knows no infinities
    for (double &v : *values) {
        if (!(*in >> word)) return false;
        v = strtod(word.c_str(), nullptr);
    }
    return true;
}

// Words: status (in our numbers), iterations, seconds, tolerance, rounding of the numbers, objective, then under status
// 2 the values of columns, their reduced costs and the multipliers of rows, of the model as a minimisation. The
// objective nan means that of the values; reduced costs that begin with nan: those that the multipliers give.
static bool read_outcome(const std::string &file, const LpModel &lp,
                         HostileOutcome *outcome)
{
    std::ifstream in(file);
    std::vector<double> head;
    if (!in || !read_numbers(&in, 6, &head)) return false;
    LpSolution *s = &outcome->solution;
    s->status = static_cast<int>(head[0]);
    s->iterations = head[1];
    outcome->seconds = head[2];
    outcome->feasibility = outcome->optimality = head[3];
    outcome->rounding = head[4];
    s->objval = head[5];
    if (s->status != TVX_OPTIMAL) return true;
    const size_t n = lp.obj.size();
    if (!read_numbers(&in, n, &s->x) || !read_numbers(&in, n, &s->rc) ||
        !read_numbers(&in, lp.rhs.size(), &s->pi))
        return false;
    if (std::isnan(s->objval)) s->objval = static_cast<double>(lp_objective(&lp, s->x));
    if (n > 0 && std::isnan(s->rc[0]))
        for (size_t j = 0; j < n; j++) {
            long double rc = lp.obj[j];
            for (const LpEntry &e : lp.cols[j])
                rc -= static_cast<long double>(s->pi[e.row]) * e.value;
            s->rc[j] = static_cast<double>(rc);
        }
    return true;
}

static void serve(TVXenv *env, const Request &request, HostileModel *h)
{
    const std::string path = request.folder + "/" + h->name;
    if (request.mode == "solve") {
        HostileTruth truth(&h->lp);
        for (const std::string &setting : request.settings)
            solve_under(env, request, *h, &truth, setting);
        return;
    }
    h->lp = as_minimum(h->lp);
    if (request.mode == "write") {
        write_text(path + ".mps", free_mps(h->lp, h->name));
        return;
    }
    HostileTruth truth(&h->lp);
    HostileOutcome outcome;
    if (!read_outcome(path + ".outcome", h->lp, &outcome)) {
        outcome.error = TVX_ERROR_FILE_READ;
        outcome.message = "no outcome";
    }
    print_verdict(*h, "", outcome, hostile_judge(&truth, &outcome));
}

static const HostileFamily *find_family(const std::string &name)
{
    for (const HostileFamily &family : hostile_families())
        if (name == family.name) return &family;
    refuse("no family " + name);
}

static Request parse(const std::vector<std::string> &words)
{
    Request r;
    size_t k = 0;
    const auto next = [&]() -> const std::string & {
        if (k >= words.size()) refuse("more words expected");
        return words[k++];
    };
    r.mode = next();
    if (r.mode != "solve" && r.mode != "write" && r.mode != "judge")
        refuse("no mode " + r.mode);
    if (r.mode != "solve") r.folder = next();
    while (k < words.size()) {
        const std::string word = next();
        if (word == "--save")
            r.folder = next();
        else if (word == "--setting")
            r.settings.push_back(next());
        else if (word == "--files")
            while (k < words.size() && words[k].compare(0, 2, "--") != 0)
                r.files.push_back(next());
        else {
            r.family = find_family(word);
            r.first = strtoull(next().c_str(), nullptr, 10);
            r.count = strtoull(next().c_str(), nullptr, 10);
        }
    }
    if (!r.family) r.count = r.files.size();
    if (r.settings.empty()) r.settings.push_back("");
    return r;
}

int main(int argc, char **argv)
{
    const Request request = parse({argv + 1, argv + argc});
    const TestEnv env;
    for (uint64_t index = 0; index < request.count; index++) {
        HostileModel h = subject(env.env, request, index);
        serve(env.env, request, &h);
    }
    return 0;
}
