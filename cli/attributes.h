// attributes.h -- what attributes there are, and what they tell
#pragma once
#include "report.h"
#include "tarvex.h"
#include <string>

// Prints the table of all attributes on standard output.
void attributes_list(TVXenv *env);

// Prints everything about one attribute; EXIT_USAGE, reported, when there is none of that name.
ExitCode attribute_describe(TVXenv *env, const std::string &name);
