// model_text.h -- all that a caller can read of a model's content, as one text
//
// Two models are the same when their texts are. Only public calls are used.
#pragma once
#include "tarvex.h"
#include <string>

std::string model_text(TVXmodel *model);
