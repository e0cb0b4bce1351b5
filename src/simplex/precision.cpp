// precision.cpp -- change between double and extended precision
//
// The simplex is one template over its number type. After numeric trouble a run continues in 80-bit extended precision
// from the current basis: only vectors and factors are created again.
#include "simplex/sopt.h"

int switch_precision(sopt *s, int quad)
{
    if (quad && !s->Extended) TRY(swork_create(s, &s->Extended));
    if (!quad && !s->Double) TRY(swork_create(s, &s->Double));
    if (quad && s->Double) s->FactorWork += s->Double->Lu.WorkUnits;
    if (!quad && s->Extended) s->FactorWork += s->Extended->Lu.WorkUnits;
    if (quad)
        swork_free(&s->Double);
    else
        swork_free(&s->Extended);
    s->Quad = quad;
    return 0;
}
