// presolve_free.cpp -- placeholder until the presolve subsystem is there: no record ever exists
#include "frame/model.h"

void presolve_free(PresolveResult *) {}
