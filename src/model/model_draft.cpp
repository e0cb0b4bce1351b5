// model_draft.cpp -- a model from what a reader has collected
#include "files/draft.h"
#include "model/model.h"

static int create(TVXenv *env, const ModelDraft *draft, TVXmodel **model_out)
{
    const DraftColumns *columns = &draft->columns;
    Array<const char *> varnames;
    TRY(array_reserve(&varnames, columns->names.entries.size));
    for (const TableName &name : columns->names.entries) array_push(&varnames, name.text);
    const ModelData model_data = {
        .name = draft->name,
        .numvars = static_cast<int>(columns->names.entries.size),
        .numconstrs = static_cast<int>(draft->rhs.size),
        .sense = draft->sense,
        .objcon = draft->objcon,
        .obj = columns->obj.data,
        .senses = draft->row_sense.data,
        .rhs = draft->rhs.data,
        .vbeg = draft->vbeg.data,
        .vind = columns->entry_row.data,
        .vval = columns->entry_value.data,
        .lb = columns->lb.data,
        .ub = columns->ub.data,
        .vtype = columns->type.data,
        .varnames = varnames.data,
        .constrnames = draft->row_names.data,
    };
    return model_create(env, EnvUse::PRIVATE_COPY, &model_data, model_out);
}

static int add_sets(const DraftSets *sets, TVXmodel *model)
{
    if (!sets->type.size) return 0;
    TRY(TVXaddsos(model, static_cast<int>(sets->type.size),
                  static_cast<int>(sets->member.size), sets->type.data, sets->begin.data,
                  sets->member.data, sets->weight.data));
    return TVXupdatemodel(model);
}

int model_from_draft(TVXenv *env, const ModelDraft *draft, TVXmodel **model_out)
{
    TVXmodel *model = nullptr;
    *model_out = nullptr;
    int error = create(env, draft, &model);
    if (!error) error = add_sets(&draft->sets, model);
    if (error) {
        model_free(model);
        return error;
    }
    *model_out = model;
    return 0;
}
