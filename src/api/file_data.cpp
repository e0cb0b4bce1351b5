// file_data.cpp -- between a model and the files that belong to it: gets what they show, sets what they say
#include "api/file_data.h"
#include "files/files.h"
#include "model/solution.h"
#include "model/warm_start.h"
#include "runtime/text_number.h"

// ---- Models ----

namespace
{
void warn_of_pending(TVXmodel *model, const char *file_name)
{
    if (!model_has_pending(model)) return;
    TVXmsg(model->env, "Warning: model has pending changes.\n");
    TVXmsg(model->env, "File '%s' does not contain these changes.\n", file_name);
}

int mps(TVXmodel *model, const char *file_name, WriteNames names)
{
    warn_of_pending(model, file_name);
    return mps_write(model->body, model->env, file_name, names);
}
} // namespace

int write_mps(TVXmodel *model, const char *file_name)
{
    return mps(model, file_name, WriteNames::OWN);
}

int write_rew(TVXmodel *model, const char *file_name)
{
    return mps(model, file_name, WriteNames::NUMBERED);
}

namespace
{
int lp(TVXmodel *model, const char *file_name, WriteNames names)
{
    warn_of_pending(model, file_name);
    TRY(body_build_rows(model->body));
    return lp_write(model->body, model->env, file_name, names);
}
} // namespace

int write_lp(TVXmodel *model, const char *file_name)
{
    return lp(model, file_name, WriteNames::OWN);
}

int write_rlp(TVXmodel *model, const char *file_name)
{
    return lp(model, file_name, WriteNames::NUMBERED);
}

// ---- Bases ----

namespace
{
// Says more than that an attribute is missing.
int no_basis(TVXmodel *model, int error)
{
    return fail_model(model, error, Report::FORCE,
                      "Unable to retrieve basis for current model");
}
} // namespace

int write_basis(TVXmodel *model, const char *file_name)
{
    const int n = model->body->numvars;
    const int m = model->body->numconstrs;
    Array<int> vbasis;
    Array<int> cbasis;
    TRY(array_resize(&vbasis, n));
    TRY(array_resize(&cbasis, m));
    int error = n ? TVXgetintattrarray(model, "VBasis", 0, n, vbasis.data) : 0;
    if (!error && m) error = TVXgetintattrarray(model, "CBasis", 0, m, cbasis.data);
    if (!error)
        error = basis_write(model->body, model->env, vbasis.data, cbasis.data, file_name);
    return error && error != TVX_ERROR_FILE_WRITE && error != OUT_OF_MEMORY
               ? no_basis(model, error)
               : error;
}

// The basis is judged at once, as by an update, but queued changes stay queued. From a callback it waits for the
// update.
int read_basis(TVXmodel *model, const char *file_name)
{
    BasisCodes codes;
    TRY(basis_read(model->body, model->env, file_name, &codes));
    if (codes.vbasis.size == 0) return 0; // of a model without variables or constraints
    TRY(TVXsetintattrarray(model, "VBasis", 0, model->body->numvars, codes.vbasis.data));
    TRY(TVXsetintattrarray(model, "CBasis", 0, model->body->numconstrs, codes.cbasis.data));
    if (!model_is_occupied(model)) warm_start_validate(model);
    return 0;
}

// ---- MIP starts ----

int read_start(TVXmodel *model, const char *file_name)
{
    StartValues start;
    TRY(mip_start_read(model->body, model->env, file_name, &start));
    if (start.var.size == 0) return 0;
    const int error = TVXsetdblattrlist(model, "Start", static_cast<int>(start.var.size),
                                        start.var.data, start.value.data);
    return fail_model(model, error, Report::KEEP_FIRST, "Problem reading MIP start");
}

int write_start(TVXmodel *model, const char *file_name)
{
    Array<double> x;
    TRY(array_resize(&x, model->body->numvars));
    if (const int error = TVXgetdblattrarray(model, "X", 0, model->body->numvars, x.data)) {
        TVXmsg(model->env, "No solution available to write to MIP start file\n");
        return fail_model(model, error, Report::KEEP_FIRST, "Problem writing MIP start");
    }
    return mip_start_write(model->body, model->env, x.data, file_name);
}

// ---- Solutions ----

namespace
{
// Why a solve has left a point that is not optimal.
const char *reason(int status)
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

// The comment on a point that is not optimal, with the reason and its largest violations; else nothing. 0 or
// OUT_OF_MEMORY.
int describe_point(TVXmodel *model, char *text, int size)
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
} // namespace

int write_solution(TVXmodel *model, const char *file_name)
{
    static constexpr int COMMENT_LENGTH = 256;
    char comment[COMMENT_LENGTH];
    Array<double> x;
    TRY(array_resize(&x, model->body->numvars));
    TRY(TVXgetdblattrarray(model, "X", 0, model->body->numvars, x.data));
    TRY(describe_point(model, comment, COMMENT_LENGTH));
    return solution_write(model->body, model->env, x.data, comment, file_name);
}
