// json_result.h -- the result of one solve for programs, as a JSON object
#pragma once
#include "model_input.h"
#include "tarvex.h"
#include <string>
#include <vector>

struct SolveTimes {
    // seconds from the command's begin of work on the file until the model was there
    double read = 0;
    double solve = 0; // seconds of the solve
    double total = 0; // seconds of everything, files written included
};

// One object. The model may be null when it could not be read; numbers that are not known are null.
std::string json_result(TVXmodel *model, const std::string &file, const Failure &failure,
                        const SolveTimes &times);

enum class JsonForm { OBJECT, ARRAY };
// What the file holds: the one object, or an array of any number of them.
std::string json_document(const std::vector<std::string> &objects, JsonForm form);

// Text with quotes. Bytes that are no UTF-8 become U+FFFD.
std::string json_text(const std::string &text);
// A finite number below TVX_INFINITY in magnitude, or null.
std::string json_number(double value);
