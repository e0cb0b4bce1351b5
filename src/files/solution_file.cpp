// solution_file.cpp -- the solution of a model as a text file (".sol")
//
// Form        "# Solution for model NAME" when the model has a name, then for each variable its name, as the name query
//             gives it, and the shortest decimal number that reads back as its value. A point that is no optimal
//             solution is called so in a comment, with the reason and its largest violations.
#include "attributes/solution.h"
#include "files/files.h"
#include "files/text_out.h"
#include "model/model.h"
#include "runtime/text_number.h"

// Why a solve has left a point that is not optimal.
static const char *reason(int status)
{
    switch (status) {
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
    default:
        return "suboptimal";
    }
}

// The comment on a point that is not optimal, else nothing. 0 or OUT_OF_MEMORY.
static int describe_point(TVXmodel *model, char *text, int size)
{
    static constexpr int MEASURES = 3;
    static const char *const attributes[MEASURES] = {"BoundVio", "ConstrVio", "IntVio"};
    const int status = solution_status(model);
    double violation[MEASURES];
    *text = '\0';
    if (status == TVX_OPTIMAL) return 0;
    bool known = true;
    for (int k = 0; k < MEASURES && known; k++) {
        const int code = TVXgetdblattr(model, attributes[k], &violation[k]);
        if (code == TVX_ERROR_OUT_OF_MEMORY) return code;
        known = code == 0;
    }
    if (known)
        text_format(text, size,
                    "# Not optimal (%s): violates bounds by %g, constraints by %g, "
                    "integrality by %g\n",
                    reason(status), violation[0], violation[1], violation[2]);
    else
        text_format(text, size, "# Not optimal (%s): violations are not known\n",
                    reason(status));
    return 0;
}

static void write_values(const ModelBody *body, const double *x, const char *comment,
                         TextOut *out)
{
    char name[DEFAULT_NAME_LENGTH];
    char number[NUMBER_LENGTH];
    if (body->modelname) {
        text_out(out, "# Solution for model ");
        text_out_line(out, body->modelname);
        text_out(out, "\n");
    }
    text_out(out, comment);
    for (int j = 0; j < body->numvars; j++) {
        text_out_line(out, var_name(body, j, name));
        text_out(out, " ");
        text_out_bytes(out, number, number_shortest(number, x[j]));
        text_out(out, "\n");
    }
}

int solution_write(TVXmodel *model, const char *file_name)
{
    static constexpr int COMMENT_LENGTH = 256;
    char comment[COMMENT_LENGTH];
    Array<double> x;
    TRY(array_resize(&x, model->body->numvars));
    TRY(TVXgetdblattrarray(model, "X", 0, model->body->numvars, x.data));
    TRY(describe_point(model, comment, COMMENT_LENGTH));
    TextOut out;
    int error = text_out_open(&out, model->env, file_name);
    if (!error) {
        write_values(model->body, x.data, comment, &out);
        error = text_out_close(&out);
    }
    if (error == TVX_ERROR_FILE_WRITE)
        return fail_model(model, error, Report::KEEP_FIRST,
                          "Unable to write to file '%s'\n", file_name);
    return error;
}
