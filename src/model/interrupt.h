// interrupt.h -- Ctrl-C on the console and SIGTERM end the running solve, not the program
#pragma once
#include "model/model.h"

// A solve opens, its stop flag cleared: a signal that has come since TVXsetsignal stops it.
void interrupt_begin(TVXmodel *model);
// After a solve, or before the model goes, signals mean what they meant before TVXsetsignal.
void interrupt_end(TVXmodel *model);
