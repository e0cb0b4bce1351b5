// fuzz_api.cpp -- the interpreter of API programs
//
// Method      Bytes are the choices of a Dice: each move is one draw. Up to three models live at a time, each with a
//             plain reference that queues and updates as the store must. After every move the model that it concerned
//             must read as the reference says, and results must be what the exact judge finds.
// Ends        With the bytes, or after 60 moves. Models and environment are then freed in an order that the last draw
//             chooses, and no memory may be left.
#include "fuzz/api_model.h"
#include "fuzz/fuzz_kind.h"
#include "runtime/memory.h"
#include "support/mip_gen.h"
#include "support/model_gen.h"
#include "support/solve_judge.h"
#include <memory>

namespace
{
constexpr int MOST_MOVES = 60; // each may take a solve
constexpr size_t MOST_MODELS = 3;
constexpr int MOST_ELEMENTS = 12;
constexpr int MOST_INTEGERS = 5; // about, of a generated MIP

struct Program {
    Dice dice;
    TVXenv *env = nullptr;
    std::vector<std::unique_ptr<ApiModel>> models;
    std::string story; // the moves so far

    explicit Program(const std::string &bytes)
        : dice(reinterpret_cast<const uint8_t *>(bytes.data()), bytes.size())
    {
        if (TVXloadenv(&env, nullptr) || TVXsetintparam(env, "OutputFlag", 0)) abort();
    }

    ApiModel *adopt(TVXmodel *model);
    std::string make_model();
    std::string copy_model(const ApiModel *a);
    std::string move(ApiModel *a);
    std::string run();
    std::string free_all();
};

// The iteration limit turns a cycle into a wrong status.
ApiModel *Program::adopt(TVXmodel *model)
{
    models.push_back(std::make_unique<ApiModel>(&dice, model));
    ApiModel *a = models.back().get();
    a->player.most_elements = MOST_ELEMENTS;
    TVXsetdblparam(a->env(), "IterationLimit", RUNAWAY_ITERATIONS);
    TVXsetdblparam(a->env(), "NodeLimit", RUNAWAY_NODES);
    return a;
}

std::string Program::make_model()
{
    LpModel lp = dice.chance(80) ? gen_tiny(&dice, TinyLimits{.max_vars = MOST_ELEMENTS,
                                                              .max_rows = MOST_ELEMENTS})
                                 : LpModel{};
    const bool linear = dice.chance(80);
    if (!linear && dice.chance(70)) lp = gen_mip(&dice, MOST_INTEGERS).lp;
    TVXmodel *made = lp_load(env, &lp);
    if (!made) return std::string("not loaded: ") + TVXgeterrormsg(env);
    ApiModel *a = adopt(made);
    a->player.linear = linear;
    if (!a->from_lp(lp)) return "names are refused";
    return compare(made, a->player.reference);
}

std::string Program::copy_model(const ApiModel *a)
{
    if (models.size() == MOST_MODELS) return "";
    TVXmodel *made = TVXcopymodel(a->model);
    if (!made) return "not copied";
    ApiModel *copy = adopt(made);
    copy->values = a->values;
    copy->player.linear = a->player.linear;
    copy->player.reference = a->player.reference;
    copy->player.reference.queue = {};
    copy->player.reference.name = a->player.reference.name.value_or("(null)") + "_copy";
    for (const char *name : {"IterationLimit", "NodeLimit"})
        if (const auto limit = a->values.find(name); limit != a->values.end())
            TVXsetdblparam(copy->env(), name, limit->second);
    return compare(made, copy->player.reference);
}

std::string update(ApiModel *a)
{
    const auto call = a->dice()->chance(20) ? TVXresetmodel : TVXupdatemodel;
    if (call(a->model)) return "update fails";
    a->player.reference.update();
    return "";
}

std::string edit(ApiModel *a)
{
    for (int k = a->dice()->range(1, 3); k > 0; k--) a->player.step();
    return a->player.wrong;
}

std::string watch(ApiModel *a)
{
    a->watched = a->dice()->chance(70);
    TVXcallback installed = nullptr;
    if (TVXsetcallbackfunc(a->model, a->watched ? api_callback : nullptr, a) ||
        TVXgetcallbackfunc(a->model, &installed))
        return "callback refused";
    return installed == (a->watched ? api_callback : nullptr) ? "" : "another callback";
}

constexpr struct {
    const char *name;
    int weight;
    std::string (*make)(ApiModel *);
} MOVES[] = {
    {"edit", 3, edit},         {"update", 1, update},
    {"solve", 4, api_solve},   {"query", 2, api_query},
    {"branch", 1, api_branch}, {"file", 1, api_file},
    {"derive", 1, api_derive}, {"start", 1, api_set_start},
    {"watch", 1, watch},       {"parameter", 4, api_set_parameter},
};
constexpr int WEIGHTS = 19;

std::string Program::move(ApiModel *a)
{
    int ticket = dice.range(0, WEIGHTS + 1);
    for (const auto &row : MOVES) {
        ticket -= row.weight;
        if (ticket >= 0) continue;
        story += std::string(" ") + row.name;
        const std::string wrong = row.make(a);
        return wrong.empty() ? compare(a->model, a->player.reference) : wrong;
    }
    story += ticket == 0 ? " copy" : " make";
    if (ticket == 0) return copy_model(a);
    if (models.size() < MOST_MODELS) return make_model();
    models.erase(models.begin() + dice.range(0, MOST_MODELS - 1));
    return "";
}

std::string Program::run()
{
    std::string wrong = make_model();
    for (int k = 0; k < MOST_MOVES && wrong.empty() && !dice.used_up(); k++) {
        const int count = int(models.size());
        const int which = dice.range(0, count - 1);
        story += " " + std::to_string(which);
        wrong = move(models[which].get());
    }
    return wrong.empty() ? "" : "after" + story + "\n" + wrong;
}

// The models that outlive their environment refuse everything, and are freed all the same.
std::string Program::free_all()
{
    const int before = dice.range(0, int(models.size()));
    if (!dice.chance(15)) models.clear();
    while (int(models.size()) > before) models.pop_back();
    TVXfreeenv(env);
    std::string wrong;
    for (const auto &a : models)
        if (TVXupdatemodel(a->model) != TVX_ERROR_INVALID_ARGUMENT || TVXgetenv(a->model))
            wrong = "a model works without its environment";
    models.clear();
#ifdef TVX_DEBUG
    if (mem_blocks_held() != 0) wrong += "memory is left";
#endif
    return wrong;
}
} // namespace

std::string fuzz_api(const std::string &bytes)
{
    Program program(bytes);
    const std::string wrong = program.run(), at_end = program.free_all();
    return wrong.empty() ? at_end : wrong;
}
