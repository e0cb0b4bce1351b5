// copy.cpp -- a copy of a body with other bounds or costs, for problems that a solver derives from its own
#include "body/build.h"

int body_copy_changed(const ModelBody *body, TVXenv *env, const BodyChanges &changes,
                      ModelBody **out)
{
    const int n = body->numvars, m = body->numconstrs, sets = body->numsos;
    ModelArrays a;
    *out = nullptr;
    a.sense = body->sense;
    a.objcon = body->objcon;
    TRY(array_copy(&a.obj, changes.obj ? changes.obj : body->obj.data, n));
    TRY(array_copy(&a.lb, changes.lb ? changes.lb : body->lb.data, n));
    TRY(array_copy(&a.ub, changes.ub ? changes.ub : body->ub.data, n));
    TRY(array_copy(&a.rhs, body->rhs.data, m));
    TRY(array_copy(&a.senses, body->senses.data, m));
    TRY(array_copy(&a.vbeg, body->vbeg.data, int64_t{n} + 1));
    TRY(array_copy(&a.vind, body->vind.data, body->numnz));
    TRY(array_copy(&a.vval, body->vval.data, body->numnz));
    TRY(array_copy(&a.vtypes, body->vtypes.data, body->vtypes.size));
    TRY(array_copy(&a.sostype, body->sostype.data, sets));
    TRY(array_copy(&a.sosbeg, body->sosbeg.data, body->sosbeg.size));
    TRY(array_copy(&a.sosind, body->sosind.data, body->sosind.size));
    TRY(array_copy(&a.soswt, body->soswt.data, body->soswt.size));
    return body_adopt(env, &a, out);
}
