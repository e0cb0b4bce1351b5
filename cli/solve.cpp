// solve.cpp -- one model from file to answer
#include "solve.h"
#include "arguments.h"
#include "commented_parameters.h"
#include "json_result.h"
#include "solution_text.h"
#include "status.h"
#include <chrono>
#include <cstdio>

namespace
{
Failure failed_call(const std::string &what, int code, const char *message)
{
    return {code, what + ": " + describe_failure(code, message)};
}

// A start file that names what the model does not have reads "successfully" with the message left standing: for
// someone who asked for this start that is an error.
Failure read_start(TVXmodel *model, const std::string &file)
{
    const int code = TVXread(model, file.c_str());
    const char *message = TVXgetmerrormsg(model);
    if (code == 0 && !*message) return {};
    return failed_call("cannot start from '" + file + "'", code, message);
}
} // namespace

// ---- Result files ----

bool is_result_of_solve(const std::string &file)
{
    const FileKind kind = file_kind(file);
    return kind == FileKind::START || kind == FileKind::SOLUTION;
}

namespace
{
// A solve that ends without a point is an answer, and so is a file that is not there.
Failure write_result(TVXmodel *model, const std::string &file)
{
    const int code = TVXwrite(model, file.c_str());
    if (code == 0) {
        comment_parameters(file);
        TVXmsg(TVXgetenv(model), "Wrote requested result file '%s'\n", file.c_str());
        return {};
    }
    const std::string message = TVXgetmerrormsg(model);
    int status = TVX_LOADED;
    TVXgetintattr(model, "Status", &status);
    const bool absent = code == TVX_ERROR_DATA_NOT_AVAILABLE && is_result_of_solve(file);
    if (absent)
        TVXmsg(TVXgetenv(model), "WARNING: unable to write requested result file '%s'\n",
               file.c_str());
    if (absent && status != TVX_OPTIMAL) {
        TVXmsg(TVXgetenv(model), "         There is nothing to write: %s\n",
               status_text(status));
        return {};
    }
    return failed_call("cannot write '" + file + "'", code, message.c_str());
}

// Every file is tried, and every failure reported; returned is the last one.
Failure write_results(TVXmodel *model, const SolveRequest &request)
{
    Failure last;
    for (const std::string &file : request.results) {
        const Failure failure = write_result(model, file);
        if (failure.text.empty()) continue;
        report_error(failure.text);
        last = failure;
    }
    const std::string &text = request.solution_file;
    if (text.empty()) return last;
    if (solution_text_write(model, text, request.ranging)) {
        TVXmsg(TVXgetenv(model), "Wrote solution file '%s'\n", text.c_str());
    } else {
        last = {TVX_ERROR_FILE_WRITE,
                "cannot write '" + text + "': check folder, permissions and free space"};
        report_error(last.text);
    }
    return last;
}

// ---- The model ----

void print_solution(TVXmodel *model)
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

// Seconds since the clock was made.
class Clock
{
  public:
    double seconds() const
    {
        const auto passed = std::chrono::steady_clock::now() - begin;
        return std::chrono::duration<double>(passed).count();
    }

  private:
    std::chrono::steady_clock::time_point begin = std::chrono::steady_clock::now();
};

// What failed before there was a result is reported here; what failed in writing the result, where it is written.
Failure solve_model(TVXmodel *model, const std::string &file, const SolveRequest &request)
{
    if (!request.start.empty()) {
        Failure failure = read_start(model, request.start);
        if (!failure.text.empty()) {
            report_error(failure.text);
            return failure;
        }
    }
    TVXsetsignal(model);
    if (const int code = TVXoptimize(model)) {
        const std::string message = TVXgetmerrormsg(model);
        Failure failure = failed_call("cannot solve '" + file + "'", code, message.c_str());
        report_error(failure.text);
        return failure;
    }
    Failure failure = write_results(model, request);
    if (request.solution) print_solution(model);
    return failure;
}
} // namespace

ExitCode solve_file(TVXenv *env, const std::string &file, const SolveRequest &request,
                    std::string *json)
{
    const Clock clock;
    SolveTimes times;
    Failure failure;
    int status = TVX_LOADED;
    const OwnedModel model = model_input(env, file, request.input, &failure);
    times.read = clock.seconds();
    if (model) {
        failure = solve_model(model.get(), file, request);
        TVXgetintattr(model.get(), "Status", &status);
        TVXgetdblattr(model.get(), "Runtime", &times.solve);
    } else {
        report_error(failure.text);
    }
    times.total = clock.seconds();
    if (json) *json = json_result(model.get(), file, failure, times);
    if (status == TVX_INTERRUPTED) return EXIT_INTERRUPTED;
    return failure.text.empty() ? EXIT_SOLVED : EXIT_ERROR;
}

ExitCode convert_file(TVXenv *env, const std::string &file, const std::string &target,
                      const InputRequest &input)
{
    Failure failure;
    const OwnedModel model = model_input(env, file, input, &failure);
    if (model)
        if (const int code = TVXwrite(model.get(), target.c_str()))
            failure = failed_call("cannot write '" + target + "'", code,
                                  TVXgetmerrormsg(model.get()));
    if (failure.text.empty()) {
        TVXmsg(env, "Wrote '%s'\n", target.c_str());
        return EXIT_SOLVED;
    }
    report_error(failure.text);
    return EXIT_ERROR;
}
