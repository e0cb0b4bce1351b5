// api_model.h -- ApiModel, one model of a fuzzed program with all that is known about it besides the library
#pragma once
#include "model/store_player.h"
#include "support/mip_judge.h"
#include <map>

// What the callback of a model does, and what it has seen. Drawn once for each solve.
struct Watch {
    enum class End { NEVER, CODE, TERMINATE };
    End end = End::NEVER;
    int at_call = 0;     // the call at which it does so, and tries what is forbidden
    bool queues = false; // at that call it also makes moves of the player
    int calls = 0;
    bool busy = false;  // inside a call: what calls made there log is heard as a call, too
    bool asked = false; // the solve was asked to stop
    std::string wrong;
    bool proposes = false;        // hands in cuts and solutions, of the model below
    const LpModel *mip = nullptr; // what is being solved, when it is a MIP that is clear
    const MipTruth *truth = nullptr;
};

static constexpr int WATCH_CODE = 777;         // End::CODE
static constexpr double RUNAWAY_NODES = 20000; // no model of a program needs so many

struct ApiModel {
    TVXmodel *model = nullptr;
    StorePlayer player;
    std::map<std::string, double> values; // of the parameters that were set
    bool watched = false;                 // the callback is installed
    Watch watch;
    LpSolution solution; // of the last solve: status and, if optimal, all

    ApiModel(Dice *dice, TVXmodel *made) : model(made)
    {
        player.dice = dice;
        player.model = made;
    }
    ~ApiModel() { TVXfreemodel(model); }
    ApiModel(const ApiModel &) = delete;
    ApiModel &operator=(const ApiModel &) = delete;

    Dice *dice() const { return player.dice; }
    TVXenv *env() const { return TVXgetenv(model); }
    double value(const char *parameter, double otherwise) const
    {
        const auto found = values.find(parameter);
        return found == values.end() ? otherwise : found->second;
    }
    std::string settings() const; // as text, for messages
    bool is_mip() const;
    // The reference as the judges see it; false when a side is infinite on the wrong side, so that no one can say
    // what the model means.
    bool to_lp(LpModel *lp) const;
    // The reference of a model that lp_load made; names everything, since default names follow the index.
    bool from_lp(const LpModel &lp);
};

// From inside the callback: cuts that no solution breaks, and solutions, right, partial and wrong.
std::string api_propose(ApiModel *a, void *cbdata, int where);
// The outcome of a MIP solve, judged exactly.
std::string api_judge_mip(ApiModel *a, const LpModel *lp, const MipTruth *truth);

int api_callback(TVXmodel *model, void *cbdata, int where, void *usrdata);

// Each makes one draw of calls and says what is wrong, or "".
std::string api_solve(ApiModel *a); // TVXoptimize, and everything about the outcome
std::string api_set_parameter(ApiModel *a);
std::string api_query(ApiModel *a);     // an attribute in all its forms
std::string api_set_start(ApiModel *a); // VBasis, CBasis, norms, Start
std::string api_branch(ApiModel *a);    // strong branching, against the exact judge
std::string api_derive(ApiModel *a); // presolved and fixed models, against the exact judge
std::string api_file(ApiModel *a);   // written and read back
