// near_miss.h -- the name that somebody who mistyped probably meant
#pragma once
#include <string>
#include <vector>

// The one of `names` that is nearest to `word` by their keys (name_key), or empty when none is near.
std::string nearest_name(const std::string &word, const std::vector<std::string> &names);

// "; did you mean 'name'?", or empty.
std::string nearest_hint(const std::string &word, const std::vector<std::string> &names);

// "there is no parameter 'name'", where `kind` is "parameter", with a hint and the option that lists all names.
std::string unknown_name(const std::string &kind, const std::string &name,
                         const std::vector<std::string> &names);

// The names of all parameters that can be listed.
const std::vector<std::string> &parameter_names();
