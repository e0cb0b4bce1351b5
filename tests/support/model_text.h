// model_text.h -- all that a caller can read of a model's content, as plain data and as one text
//
// Two models are the same when their texts are. Only public calls are used.
#pragma once
#include "tarvex.h"
#include <optional>
#include <string>
#include <utility>
#include <vector>

using Entries = std::vector<std::pair<int, double>>; // index, value

struct ModelContent {
    struct Var {
        std::string name;
        double obj = 0, lb = 0, ub = 1e30;
        char vtype = 'C';
        Entries column; // rows in stored order
    };
    struct Constr {
        std::string name;
        char sense = '<';
        double rhs = 0;
        Entries row;
    };
    struct Sos {
        int type = 1;
        Entries members; // variables and weights
    };
    std::optional<std::string> name;
    int sense = 1;
    double objcon = 0;
    std::vector<Var> vars;
    std::vector<Constr> constrs;
    std::vector<Sos> sos;
    std::string counts;     // nonzeros, integers and binaries, as a text
    std::string unreadable; // queries that fail
};

ModelContent model_content(TVXmodel *model);
std::string content_text(const ModelContent &content);
std::string content_counts(int nonzeros, int integers, int binaries);
std::string model_text(TVXmodel *model);
