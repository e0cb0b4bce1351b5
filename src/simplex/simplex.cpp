// simplex.cpp -- placeholder bodies until the simplex subsystem is there: no record ever exists
#include "simplex/simplex.h"

void simplex_free(sopt *) {}
void simplex_get_basis(const sopt *, int *) {}
bool simplex_change_bound(sopt *, int, double, double) { return false; }
