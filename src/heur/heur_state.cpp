// heur_state.cpp -- the record of the heuristics: creation and locks, and what all heuristics do with the working point
#include "heur/heur_state.h"
#include "body/row_kind.h"
#include "runtime/record.h"

namespace
{
void count_locks(HeurState *h)
{
    const ModelBody *body = h->Model.Body;
    for (int j = 0; j < h->NumCols; j++) {
        for (int p = body->vbeg.data[j]; p < body->vbeg.data[j + 1]; p++) {
            const int i = body->vind.data[p];
            const double a = body->vval.data[p];
            if (a == 0 || row_kind(body, i) == RowKind::FREE) continue;
            const bool both = is_equation(body, i);
            h->UpLocks.data[j] += both || a > 0;
            h->DownLocks.data[j] += both || a < 0;
        }
    }
}

void freeze(HeurState *h)
{
    for (const int j : h->Model.Body->sosind) h->Frozen.data[j] = 1;
    for (int k = 0; k < h->Model.NumSemis; k++) {
        h->Frozen.data[h->Model.Semis[k].col] = 1;
        h->Frozen.data[h->Model.Semis[k].indicator] = 1;
    }
}

int alloc(HeurState *h)
{
    const int n = h->NumCols, m = h->NumRows;
    TRY(array_assign(&h->DownLocks, n, 0));
    TRY(array_assign(&h->UpLocks, n, 0));
    TRY(array_assign(&h->Frozen, n, char{0}));
    const ModelBody *body = h->Model.Body;
    TRY(point_alloc(&h->At, body, h->Model.Rows, h->Model.RowTolerance));
    TRY(point_alloc(&h->Polished, body, h->Model.Rows, 0));
    TRY(array_assign(&h->Shifts, n, 0));
    TRY(array_reserve(&h->Shifted, n));
    TRY(array_assign(&h->Order, n, 0));
    TRY(array_assign(&h->Keys, n, 0.0));
    TRY(array_assign(&h->ColPlace, n, -1));
    return array_assign(&h->RowPlace, m, -1);
}
} // namespace

int heur_create(const HeurModel &model, HeurState **out)
{
    *out = nullptr;
    HeurState *h = record_create<HeurState>();
    if (!h) return OUT_OF_MEMORY;
    h->Model = model;
    h->NumCols = model.Body->numvars;
    h->NumRows = model.Body->numconstrs;
    h->NumEntries = model.Body->numnz;
    random_seed(&h->Rng, 1);
    const int code = alloc(h);
    if (code) {
        record_free(h);
        return code;
    }
    count_locks(h);
    freeze(h);
    *out = h;
    return 0;
}

void heur_free(HeurState *h)
{
    record_free(h);
}

double heur_take_work(HeurState *h)
{
    const double work = heur_work(h);
    h->Work = h->At.Work = h->Polished.Work = 0;
    return work;
}

void heur_start_point(HeurState *h, const HeurCall &call)
{
    for (const int j : h->Shifted) h->Shifts.data[j] = 0;
    h->Shifted.size = 0;
    point_start(&h->At, call.X, call.Objective);
}

int heur_offer(HeurState *h, const HeurCall &call, bool *improved)
{
    *improved = false;
    if (!point_is_feasible(&h->At) || !(h->At.Objective < *call.PruneValue)) return 0;
    h->Work += h->NumEntries; // of the check
    return call.Search.Try(call.Search.Owner, h->At.X.data, improved);
}
