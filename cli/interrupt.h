// interrupt.h -- Ctrl-C ends the running solve, not the program
#pragma once
#include "tarvex.h"

// From now on an interrupt stops the solve of `model`, which ends with the best it has; a second one during the
// same solve ends the program.
void interrupt_watch(TVXmodel *model);
// Back to the usual behaviour. True when an interrupt came since interrupt_watch.
bool interrupt_unwatch();
