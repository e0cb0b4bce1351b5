// transport.cpp -- build a model from C++: errors become exceptions, handles free themselves
//
// Plants ship to shops; a shop gets what it needs, a plant ships no more than it makes, at the least cost.
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <tarvex.h>
#include <vector>

struct FreeEnv {
    void operator()(TVXenv *env) const { TVXfreeenv(env); }
};
struct FreeModel {
    void operator()(TVXmodel *model) const { TVXfreemodel(model); }
};
using Env = std::unique_ptr<TVXenv, FreeEnv>;
using Model = std::unique_ptr<TVXmodel, FreeModel>;

struct Place {
    std::string name;
    double amount; // what a plant makes, or a shop needs
};

// Every call returns 0 or a code, and the environment keeps the text of the last error.
static void check(TVXenv *env, int code)
{
    if (code != 0)
        throw std::runtime_error("error " + std::to_string(code) + ": " +
                                 TVXgeterrormsg(env));
}

static Env open_env()
{
    TVXenv *env = nullptr;
    const int code = TVXloadenv(&env, nullptr);
    Env owner(env);
    if (code != 0)
        throw std::runtime_error("no environment: error " + std::to_string(code));
    return owner;
}

// A variable for each plant and shop, plant by plant; its column has two entries, made here row by row.
static Model build(TVXenv *env, const std::vector<Place> &plants,
                   const std::vector<Place> &shops, const std::vector<double> &costs)
{
    TVXmodel *model = nullptr;
    const int count = static_cast<int>(costs.size());
    const int shop_count = static_cast<int>(shops.size());
    const int plant_count = static_cast<int>(plants.size());
    check(env, TVXnewmodel(env, &model, "transport", count, costs.data(), nullptr, nullptr,
                           nullptr, nullptr));
    Model owner(model);
    for (int i = 0; i < plant_count; i++) {
        std::vector<int> columns;
        for (int j = 0; j < shop_count; j++) columns.push_back(i * shop_count + j);
        const std::vector<double> ones(columns.size(), 1.0);
        check(env, TVXaddconstr(model, shop_count, columns.data(), ones.data(), '<',
                                plants[i].amount, plants[i].name.c_str()));
    }
    for (int j = 0; j < shop_count; j++) {
        std::vector<int> columns;
        for (int i = 0; i < plant_count; i++) columns.push_back(i * shop_count + j);
        const std::vector<double> ones(columns.size(), 1.0);
        check(env, TVXaddconstr(model, plant_count, columns.data(), ones.data(), '>',
                                shops[j].amount, shops[j].name.c_str()));
    }
    return owner;
}

static void solve_and_print()
{
    const std::vector<Place> plants = {{"north", 35}, {"south", 50}};
    const std::vector<Place> shops = {{"harbour", 30}, {"market", 25}, {"station", 20}};
    const std::vector<double> costs = {8, 6, 10, 9, 12, 13}; // a unit, plant by plant

    const Env env = open_env();
    const Model model = build(env.get(), plants, shops, costs);
    check(env.get(), TVXsetintparam(TVXgetenv(model.get()), "OutputFlag", 0));
    check(env.get(), TVXoptimize(model.get()));

    int status = 0;
    check(env.get(), TVXgetintattr(model.get(), "Status", &status));
    if (status != TVX_OPTIMAL) {
        std::printf("no plan: status %d\n", status);
        return;
    }
    double cost = 0;
    std::vector<double> shipped(costs.size());
    check(env.get(), TVXgetdblattr(model.get(), "ObjVal", &cost));
    check(env.get(), TVXgetdblattrarray(model.get(), "X", 0,
                                        static_cast<int>(shipped.size()), shipped.data()));
    std::printf("cost %.2f\n", cost);
    for (size_t k = 0; k < shipped.size(); k++)
        if (shipped[k] > 0)
            std::printf("%s to %s: %.0f\n", plants[k / shops.size()].name.c_str(),
                        shops[k % shops.size()].name.c_str(), shipped[k]);
}

int main()
{
    try {
        solve_and_print();
        return 0;
    } catch (const std::exception &e) {
        std::fprintf(stderr, "%s\n", e.what());
        return 1;
    }
}
