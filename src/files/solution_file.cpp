// solution_file.cpp -- the solution of a model as a text file (".sol")
//
// Form        "# Solution for model NAME" when the model has a name, then for each variable its name, as the name query
//             gives it, and the shortest decimal number that reads back as its value.
#include "files/files.h"
#include "files/text_out.h"
#include "runtime/text_number.h"

namespace
{
void write_values(const ModelBody *body, const double *x, const char *comment, TextOut *out)
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
} // namespace

int solution_write(const ModelBody *body, TVXenv *env, const double *x, const char *comment,
                   const char *file_name)
{
    TextOut out;
    int error = text_out_open(&out, env, file_name);
    if (!error) {
        write_values(body, x, comment, &out);
        error = text_out_close(&out);
    }
    if (error == TVX_ERROR_FILE_WRITE)
        return fail(env, error, Report::KEEP_FIRST, "Unable to write to file '%s'\n",
                    file_name);
    return error;
}
