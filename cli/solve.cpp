// solve.cpp -- one model from file to answer
#include "solve.h"
#include "arguments.h"
#include "runtime/file.h"
#include <charconv>
#include <cstdio>
#include <memory>

struct FreeModel {
    void operator()(TVXmodel *model) const { TVXfreemodel(model); }
};
using OwnedModel = std::unique_ptr<TVXmodel, FreeModel>;

static ExitCode fail_with(const std::string &what, int code, const char *message)
{
    report_error(what + ": " + describe_failure(code, message));
    return EXIT_ERROR;
}

// Shortest text that reads back as the same number, whatever the locale.
static std::string number_text(double value)
{
    char text[32];
    const auto [end, code] = std::to_chars(text, text + sizeof text, value);
    return code == std::errc() ? std::string(text, end) : "?";
}

static const char *status_text(int status)
{
    switch (status) {
    case TVX_LOADED:
        return "not solved";
    case TVX_OPTIMAL:
        return "optimal";
    case TVX_INFEASIBLE:
        return "infeasible";
    case TVX_INF_OR_UNBD:
        return "infeasible or unbounded";
    case TVX_UNBOUNDED:
        return "unbounded";
    case TVX_CUTOFF:
        return "objective worse than Cutoff";
    case TVX_ITERATION_LIMIT:
        return "iteration limit";
    case TVX_NODE_LIMIT:
        return "node limit";
    case TVX_TIME_LIMIT:
        return "time limit";
    case TVX_SOLUTION_LIMIT:
        return "solution limit";
    case TVX_INTERRUPTED:
        return "interrupted";
    case TVX_NUMERIC:
        return "numeric trouble";
    case TVX_SUBOPTIMAL:
        return "suboptimal";
    default:
        return "unknown status";
    }
}

// A start file that names what the model does not have reads "successfully" with the message left standing: for
// someone who asked for this start that is an error.
static ExitCode read_start(TVXmodel *model, const std::string &file)
{
    const int code = TVXread(model, file.c_str());
    const char *message = TVXgetmerrormsg(model);
    if (code == 0 && !*message) return EXIT_SOLVED;
    return fail_with("cannot start from '" + file + "'", code, message);
}

// ---- Result files ----

// Whether only a solve can make the file: what stands there from an earlier one must not pass for the result of this.
static bool is_result_of_solve(const std::string &file)
{
    const FileKind kind = file_kind(file);
    return kind == FileKind::START || kind == FileKind::SOLUTION;
}

static void drop_old_result(TVXmodel *model, const std::string &file)
{
    TVXenv *env = TVXgetenv(model);
    TVXmsg(env, "WARNING: unable to write requested result file '%s'\n", file.c_str());
    if (FileRemove(file.c_str()))
        TVXmsg(env, "         The file of that name was older and is removed\n");
    else if (FileCanRead(file.c_str()))
        TVXmsg(env,
               "         The file of that name is older, not the result of this solve\n");
}

static void drop_old_results(TVXmodel *model, const std::vector<std::string> &files)
{
    for (const std::string &file : files)
        if (is_result_of_solve(file)) drop_old_result(model, file);
}

// A solve that ends without a point is an answer, and so is a file that is not there.
static ExitCode write_result(TVXmodel *model, const std::string &file)
{
    const int code = TVXwrite(model, file.c_str());
    if (code == 0) {
        TVXmsg(TVXgetenv(model), "Wrote requested result file '%s'\n", file.c_str());
        return EXIT_SOLVED;
    }
    const std::string message = TVXgetmerrormsg(model);
    int status = TVX_LOADED;
    TVXgetintattr(model, "Status", &status);
    const bool absent = code == TVX_ERROR_DATA_NOT_AVAILABLE && is_result_of_solve(file);
    if (absent) drop_old_result(model, file);
    if (absent && status != TVX_OPTIMAL) {
        TVXmsg(TVXgetenv(model), "         There is nothing to write: %s\n",
               status_text(status));
        return EXIT_SOLVED;
    }
    return fail_with("cannot write '" + file + "'", code, message.c_str());
}

static ExitCode write_results(TVXmodel *model, const std::vector<std::string> &files)
{
    ExitCode exit_code = EXIT_SOLVED;
    for (const std::string &file : files)
        if (const ExitCode code = write_result(model, file)) exit_code = code;
    return exit_code;
}

// ---- The model ----

static void print_solution(TVXmodel *model)
{
    int status = TVX_LOADED;
    int numvars = 0;
    double objective = 0;
    char *name = nullptr;
    TVXgetintattr(model, "Status", &status);
    TVXgetintattr(model, "NumVars", &numvars);
    if (TVXgetstrattr(model, "ModelName", &name) != 0 || !name) name = nullptr;
    const std::string title = name && *name ? std::string("model ") + name : "the model";
    std::vector<double> x(static_cast<size_t>(numvars));
    const bool has_point = numvars == 0
                               ? status == TVX_OPTIMAL
                               : TVXgetdblattrarray(model, "X", 0, numvars, x.data()) == 0;
    if (!has_point) {
        printf("# No solution for %s: %s\n", title.c_str(), status_text(status));
        return;
    }
    printf("# Solution for %s: %s\n", title.c_str(), status_text(status));
    if (TVXgetdblattr(model, "ObjVal", &objective) == 0)
        printf("# Objective value %s\n", number_text(objective).c_str());
    for (int j = 0; j < numvars; j++) {
        const double value = x[static_cast<size_t>(j)];
        if (value == 0 || TVXgetstrattrelement(model, "VarName", j, &name) != 0) continue;
        printf("%s %s\n", name, number_text(value).c_str());
    }
}

ExitCode solve_file(TVXenv *env, const std::string &file, const SolveRequest &request)
{
    TVXmodel *read = nullptr;
    if (const int code = TVXreadmodel(env, file.c_str(), &read))
        return fail_with("cannot read '" + file + "'", code, TVXgeterrormsg(env));
    const OwnedModel owner(read);
    if (!request.start.empty())
        if (const ExitCode code = read_start(read, request.start)) return code;

    TVXsetsignal(read);
    const int code = TVXoptimize(read);
    if (code != 0) {
        const std::string message = TVXgetmerrormsg(read);
        drop_old_results(read, request.results);
        return fail_with("cannot solve '" + file + "'", code, message.c_str());
    }

    const ExitCode written = write_results(read, request.results);
    if (request.solution) print_solution(read);
    int status = 0;
    TVXgetintattr(read, "Status", &status);
    return status == TVX_INTERRUPTED ? EXIT_INTERRUPTED : written;
}
