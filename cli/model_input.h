// model_input.h -- a model from a file or from standard input
#pragma once
#include "standard_input.h"
#include "tarvex.h"
#include <memory>
#include <string>

struct FreeModel {
    void operator()(TVXmodel *model) const { TVXfreemodel(model); }
};
using OwnedModel = std::unique_ptr<TVXmodel, FreeModel>;

static constexpr const char *STANDARD_INPUT = "-";

struct InputRequest {
    ModelFormat format = ModelFormat::UNKNOWN; // of standard input
    int sense = 0; // 1 minimise, -1 maximise, 0 as the model says
};

// What went wrong: nothing, or the code of the library (0 when it was not the library) and a text for people.
struct Failure {
    int code = 0;
    std::string text; // empty: nothing
};

// The model in a file, "-" being standard input, with the sense that was asked for; null with *failure set.
OwnedModel model_input(TVXenv *env, const std::string &file, const InputRequest &request,
                       Failure *failure);
