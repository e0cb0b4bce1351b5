// solution_file.cpp -- the solution of a model as a text file (".sol")
//
// Form        "# Solution for model NAME" when the model has a name, then for each variable its name, as the name query
//             gives it, and the shortest decimal number that reads back as its value.
#include "files/files.h"
#include "files/text_out.h"
#include "frame/model.h"
#include "frame/runtime/text_number.h"

static void write_values(const ModelBody *body, const double *x, TextOut *out)
{
    char name[DEFAULT_NAME_LENGTH];
    char number[NUMBER_LENGTH];
    if (body->modelname) {
        text_out(out, "# Solution for model ");
        text_out_line(out, body->modelname);
        text_out(out, "\n");
    }
    for (int j = 0; j < body->numvars; j++) {
        text_out_line(out, var_name(body, j, name));
        text_out(out, " ");
        text_out_bytes(out, number, number_shortest(number, x[j]));
        text_out(out, "\n");
    }
}

int solution_write(TVXmodel *model, const char *file_name)
{
    Array<double> x;
    TRY(array_resize(&x, model->body->numvars));
    TRY(TVXgetdblattrarray(model, "X", 0, model->body->numvars, x.data));
    TextOut out;
    int error = text_out_open(&out, model->env, file_name);
    if (!error) {
        write_values(model->body, x.data, &out);
        error = text_out_close(&out);
    }
    if (error == TVX_ERROR_FILE_WRITE)
        return fail_model(model, error, Report::KEEP_FIRST,
                          "Unable to write to file '%s'\n", file_name);
    return error;
}
