// solution_text.h -- the solution with all its values as a text file
#pragma once
#include "tarvex.h"
#include <string>

// Writes the result of the last solve; ranging: with the sensitivity ranges. False when the file could not be
// written to its end; it is removed then.
bool solution_text_write(TVXmodel *model, const std::string &file, bool ranging);
