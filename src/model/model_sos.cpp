// model_sos.cpp -- new special ordered sets are queued
#include "model/model_store.h"

struct NewSos {
    int count = 0, n_members = 0;
    const int *types = nullptr, *beg = nullptr, *ind = nullptr;
    const double *weight = nullptr;
};

static int sos_end(const NewSos *given, int s)
{
    return s + 1 < given->count ? given->beg[s + 1] : given->n_members;
}

static int check_sos(TVXmodel *model, const NewSos *given)
{
    if (given->n_members < 0) return TVX_ERROR_INVALID_ARGUMENT;
    if (!given->types) return TVX_ERROR_NULL_ARGUMENT;
    for (int s = 0; s < given->count; s++)
        if (given->types[s] != 1 && given->types[s] != 2)
            return fail_model(model, TVX_ERROR_INVALID_ARGUMENT, Report::KEEP_FIRST,
                              "SOS %d has type %d, not 1 or 2", s, given->types[s]);
    if (given->n_members == 0) return 0;
    if (!(given->beg && given->ind && given->weight)) return TVX_ERROR_NULL_ARGUMENT;
    TRY(check_values(model->env, given->n_members, given->weight));
    for (int s = 0; s < given->count; s++) {
        const int end = sos_end(given, s);
        if (given->beg[s] < 0 || end < given->beg[s] || end > given->n_members)
            return fail_model(model, TVX_ERROR_INDEX_OUT_OF_RANGE, Report::KEEP_FIRST,
                              "Invalid start %d of SOS %d", given->beg[s], s);
    }
    return 0;
}

// Members are existing variables, each once per set; as in model_add.cpp.
static int check_members(const NewSos *given, int numvars, ElementChanges *scratch)
{
    TRY(array_extend(&scratch->mark, numvars, 0));
    int *__restrict mark = scratch->mark.data;
    for (int s = given->count - 1; s >= 0; s--) {
        const int stamp = element_changes_stamp(scratch);
        const int end = sos_end(given, s);
        for (int p = given->beg[s]; p < end; p++) {
            const int j = given->ind[p];
            if (j < 0 || j >= numvars) return TVX_ERROR_INDEX_OUT_OF_RANGE;
            if (mark[j] == stamp) return TVX_ERROR_DUPLICATES;
            mark[j] = stamp;
        }
    }
    return 0;
}

static int add_sos(TVXmodel *model, const NewSos *given)
{
    TRY(check_sos(model, given));
    TRY(pending_get(model));
    if (given->n_members > 0)
        TRY(check_members(given, model->body->numvars, &model->pending->vars));

    PendingSos *sos = &model->pending->sos_changes;
    const int64_t old_count = sos->type.size;
    const int64_t old_members = sos->ind.size;
    if (old_count + given->count + model->body->numsos > MODEL_SIZE_LIMIT ||
        old_members + given->n_members + model->body->sosind.size > MODEL_ENTRY_LIMIT)
        return fail_model(model, TVX_ERROR_INVALID_ARGUMENT, Report::KEEP_FIRST,
                          "Model too large: too many SOS constraints or members");
    TRY(array_grow(&sos->type, old_count + given->count));
    TRY(array_grow(&sos->beg, old_count + given->count + 1));
    TRY(array_grow(&sos->ind, old_members + given->n_members));
    TRY(array_grow(&sos->wt, old_members + given->n_members));

    if (old_count == 0) {
        sos->beg.size = 0;
        array_push(&sos->beg, 0);
    }
    for (int s = 0; s < given->count; s++) {
        if (given->n_members > 0) {
            const int length = sos_end(given, s) - given->beg[s];
            array_append_n(&sos->ind, given->ind + given->beg[s], length, 0);
            array_append_n(&sos->wt, given->weight + given->beg[s], length, 0.0);
        }
        array_push(&sos->type, given->types[s]);
        array_push(&sos->beg, static_cast<int>(sos->ind.size));
    }
    const int error = sos_sort_members(given->count, sos->beg.data + old_count,
                                       sos->ind.data, sos->wt.data);
    if (error) {
        sos->type.size = old_count;
        sos->beg.size = old_count + 1;
        sos->ind.size = sos->wt.size = old_members;
    }
    return error;
}

int TVXaddsos(TVXmodel *model, int numsos, int nummembers, const int *types, const int *beg,
              const int *ind, const double *weight)
{
    int error = TVXcheckmodel(model);
    if (error || numsos < 1) return finish_model(model, error);
    const NewSos given = {.count = numsos,
                          .n_members = nummembers,
                          .types = types,
                          .beg = beg,
                          .ind = ind,
                          .weight = weight};
    error = add_sos(model, &given);
    fail_model(model, error, Report::KEEP_FIRST, "Problem adding SOS constraints");
    return finish_model(model, error);
}
