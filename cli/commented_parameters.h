// commented_parameters.h -- parameter files that say what their parameters do
#pragma once
#include <string>

// Puts a comment above each line of a parameter file that has just been written; files of other kinds, and compressed
// ones, stay as they are, and so does a file that cannot be written again.
void comment_parameters(const std::string &file);
