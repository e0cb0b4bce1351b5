// parameters.h -- parameters by name, from text
#pragma once
#include "report.h"
#include "tarvex.h"
#include <string>

// Sets parameter `name`, whatever its type, from `text`. EXIT_SOLVED; or EXIT_USAGE when the text is no value for
// it, EXIT_ERROR when the library could not do it, with the reason in *error.
ExitCode parameter_set(TVXenv *env, const std::string &name, const std::string &text,
                       std::string *error);

// Prints the table of all public parameters on standard output.
void parameters_list(TVXenv *env);

// Prints everything about one parameter, named as in Name=Value or as an option; EXIT_USAGE, reported, when there is
// none of that name.
ExitCode parameter_describe(TVXenv *env, const std::string &name);
