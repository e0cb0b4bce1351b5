// load_mip.cpp -- types, special ordered sets and semi-continuous columns in the presolve record
//
// Method      Semi-continuous columns become continuous and semi-integer ones integer; their working bounds are the
//             smallest range with 0 and the given one, so that reductions that look at bounds alone stay right. An SOS1
//             whose members are all 0 or 1 is dissolved: sum of members <= 1.
#include "presolve/work.h"
#include <algorithm>

namespace
{
// Bounds between which an integer is 0 or 1.
constexpr double ABOVE_MINUS_ONE = -0.99999, BELOW_TWO = 1.99999;

bool is_semi(const ModelBody *body, int j)
{
    return body->vtypes.size > 0 &&
           (body->vtypes.data[j] == 'S' || body->vtypes.data[j] == 'N');
}

bool is_zero_or_one(const ModelBody *body, int j)
{
    if (body->vtypes.size == 0) return false;
    const char type = body->vtypes.data[j];
    return type != 'C' && type != 'S' && body->lb.data[j] >= ABOVE_MINUS_ONE &&
           body->ub.data[j] <= BELOW_TWO;
}

bool can_dissolve(const PresolveWork *w, int s)
{
    if (w->SosType.data[s] != 1) return false;
    for (int k = w->SosBeg.data[s]; k < w->SosEnd.data[s]; k++)
        if (!is_zero_or_one(w->Body, w->SosInd.data[k])) return false;
    return true;
}

int load_sets(PresolveWork *w)
{
    const ModelBody *body = w->Body;
    const int count = body->numsos;
    w->NumSos = count;
    if (count == 0) return 0;
    TRY(array_copy(&w->SosType, body->sostype.data, count));
    TRY(array_copy(&w->SosBeg, body->sosbeg.data, count));
    TRY(array_copy(&w->SosEnd, body->sosbeg.data + 1, count));
    TRY(array_copy(&w->SosInd, body->sosind.data, body->sosind.size));
    TRY(array_copy(&w->SosWeight, body->soswt.data, body->soswt.size));
    TRY(array_assign(&w->SosCount, w->NumCols, 0));
    if (!body->sos_sorted)
        TRY(sos_sort_members(count, body->sosbeg.data, w->SosInd.data, w->SosWeight.data));
    for (int s = 0; s < count; s++)
        if (can_dissolve(w, s)) w->SosType.data[s] = 0;
    return presolve_check(w);
}
} // namespace

int load_types(PresolveWork *w)
{
    const ModelBody *body = w->Body;
    TRY(array_assign(&w->VType, w->NumCols, 'C'));
    for (int j = 0; j < w->NumCols && body->vtypes.size > 0; j++) {
        const char type = body->vtypes.data[j];
        w->VType.data[j] = type == 'S' ? 'C' : type == 'N' ? 'I' : type;
        w->NumSemi += is_semi(body, j);
    }
    TRY(load_sets(w));
    for (int s = 0; s < w->NumSos; s++) w->NumRows += w->SosType.data[s] == 0;
    return presolve_check(w);
}

void load_sos_rows(PresolveWork *w, int *used)
{
    int row = w->OrigRows;
    for (int s = 0; s < w->NumSos; s++) {
        if (w->SosType.data[s] != 0) continue;
        for (int k = w->SosBeg.data[s]; k < w->SosEnd.data[s]; k++) {
            const int j = w->SosInd.data[k];
            w->Nodes.data[*used] = {1, row, j, w->RowHead.data[row], w->ColHead.data[j]};
            w->RowHead.data[row] = w->ColHead.data[j] = (*used)++;
            w->RowCnt.data[row]++;
            w->ColCnt.data[j]++;
        }
        row++;
    }
}

int load_flags(PresolveWork *w)
{
    for (int s = 0; s < w->NumSos; s++) {
        if (w->SosType.data[s] == 0) continue;
        for (int k = w->SosBeg.data[s]; k < w->SosEnd.data[s]; k++) {
            w->ColFlags.data[w->SosInd.data[k]] |= COL_IN_SOS;
            w->SosCount.data[w->SosInd.data[k]]++;
        }
    }
    if (w->NumSemi == 0) return 0;
    TRY(array_reserve(&w->SemiCols, w->NumSemi));
    for (Array<double> *a : {&w->SemiLb, &w->SemiUb}) TRY(array_reserve(a, w->NumSemi));
    for (int j = 0; j < w->NumCols; j++) {
        if (!is_semi(w->Body, j)) continue;
        array_push(&w->SemiCols, j);
        array_push(&w->SemiLb, w->Lb.data[j]);
        array_push(&w->SemiUb, w->Ub.data[j]);
        w->ColFlags.data[j] |= COL_IS_SEMI;
        w->Lb.data[j] = std::min(w->Lb.data[j], 0.0);
        w->Ub.data[j] = std::max(w->Ub.data[j], 0.0);
    }
    return presolve_check(w);
}
