// warm_start.cpp -- the start basis that a caller gave or an update carried over
//
// Setters write at once; whether the whole makes a basis shows when an update validates it: no
// entry unset and exactly one basic variable per row. A caller who has set a basis wants the next
// solve to begin there, so a valid one displaces a simplex record that an earlier solve left.
// Cost: O(entries set); validation O(rows + columns).
#include "model/warm_start.h"
#include "model/model_store.h"
#include "simplex/simplex.h"

namespace
{
constexpr int STALE = -1; // count of a record that holds nothing

bool fits(const TVXmodel *model)
{
    const WarmStart *warm = model->warm_start;
    const ModelBody *body = model->body;
    return warm && warm->kind != WARM_NONE && warm->count == body->numvars &&
           warm->statuses.size == int64_t{body->numvars} + body->numconstrs;
}

// A record for the model's present size with every status unset, of kind WARM_UNCHECKED. 0 or OUT_OF_MEMORY.
int make_unset(TVXmodel *model)
{
    if (!model->warm_start) model->warm_start = record_create<WarmStart>();
    WarmStart *warm = model->warm_start;
    if (!warm) return OUT_OF_MEMORY;
    warm_start_drop(model);
    const int64_t size = int64_t{model->body->numvars} + model->body->numconstrs;
    TRY(array_assign(&warm->statuses, size, STATUS_UNSET));
    warm->count = model->body->numvars;
    warm->kind = WARM_UNCHECKED;
    return 0;
}
} // namespace

const WarmStart *warm_start_usable(const TVXmodel *model)
{
    return fits(model) && model->warm_start->kind >= WARM_CHECKED ? model->warm_start
                                                                  : nullptr;
}

void warm_start_drop(TVXmodel *model)
{
    WarmStart *warm = model->warm_start;
    if (!warm) return;
    warm->count = STALE;
    warm->kind = WARM_NONE;
    warm->repair = 0;
    warm->norms.size = 0;
}

void warm_start_free(WarmStart *warm_start)
{
    record_free(warm_start);
}

void warm_start_from_simplex(TVXmodel *model)
{
    if (make_unset(model)) { // benign: the next solve starts without a basis
        warm_start_drop(model);
        return;
    }
    simplex_get_basis(model->lp.simplex, model->warm_start->statuses.data);
    model->warm_start->kind = WARM_CARRIED;
}

// ---- Setters ----

namespace
{
int check_codes(TVXmodel *model, const char *attribute, int lowest, int len,
                const int *codes)
{
    for (int k = 0; k < len; k++)
        if (codes[k] < lowest || codes[k] > TVX_BASIC)
            return fail_model(model, TVX_ERROR_INVALID_ARGUMENT, Report::KEEP_FIRST,
                              "Invalid %s value %d", attribute, codes[k]);
    return 0;
}

// Entries first, first + 1, ... of the record are those of the elements 0, 1, ...
int set_statuses(TVXmodel *model, int first, ElementRange range, const int *codes)
{
    if (!fits(model)) TRY(make_unset(model));
    WarmStart *warm = model->warm_start;
    for (int k = 0; k < range.len; k++)
        warm->statuses[first + element_at(range, k)] = codes[k];
    warm->kind = WARM_UNCHECKED;
    warm->repair = 0;
    return 0;
}
} // namespace

int warm_start_set_vars(TVXmodel *model, ElementRange range, const int *codes)
{
    TRY(check_codes(model, "VBasis", TVX_SUPERBASIC, range.len, codes));
    return set_statuses(model, 0, range, codes);
}

int warm_start_set_constrs(TVXmodel *model, ElementRange range, const int *codes)
{
    TRY(check_codes(model, "CBasis", TVX_NONBASIC_LOWER, range.len, codes));
    return set_statuses(model, model->body->numvars, range, codes);
}

namespace
{
int set_norms(TVXmodel *model, int first, ElementRange range, const double *norms)
{
    if (!fits(model))
        return fail_model(model, TVX_ERROR_INVALID_ARGUMENT, Report::KEEP_FIRST,
                          "Dual norms need a start basis: set VBasis and CBasis first");
    WarmStart *warm = model->warm_start;
    if (warm->norms.size != warm->statuses.size)
        TRY(array_assign(&warm->norms, warm->statuses.size, 0.0));
    for (int k = 0; k < range.len; k++)
        warm->norms[first + element_at(range, k)] = norms[k];
    return 0;
}
} // namespace

int warm_start_set_var_norms(TVXmodel *model, ElementRange range, const double *norms)
{
    return set_norms(model, 0, range, norms);
}

int warm_start_set_constr_norms(TVXmodel *model, ElementRange range, const double *norms)
{
    return set_norms(model, model->body->numvars, range, norms);
}

// ---- Validation ----

void warm_start_validate(TVXmodel *model)
{
    WarmStart *warm = model->warm_start;
    if (!fits(model) || warm->kind != WARM_UNCHECKED) return;
    int n_basic = 0;
    bool complete = true;
    for (const int status : warm->statuses) {
        n_basic += status >= 0;
        complete = complete && status != STATUS_UNSET;
    }
    if (!complete || n_basic != model->body->numconstrs) {
        TVXmsg(model->env, "Warning, invalid warm-start basis discarded\n");
        return;
    }
    warm->kind = WARM_CHECKED;
    if (!model->lp.simplex) return;
    lp_drop_simplex(&model->lp);
    model_free_results(model);
    lp_set_loaded(&model->lp);
}
