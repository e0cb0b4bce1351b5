// store_reference.h -- StoreReference, what the model store must do, written as plainly as possible
//
// Current content and queued changes stand in standard containers, in the caller's signs. Each
// queueing routine mirrors a call of the library; update() makes the queue real in the documented
// order. compare() reads a model through its queries and attributes and reports what differs.
#pragma once
#include "support/model_text.h"
#include <functional>
#include <set>

// Of variables the bounds as given, whatever the type, and "" as name until the index is known; of constraints the row
// only while they are queued.
struct StoreReference : ModelContent {
    struct NewConstr {
        Constr constr;
        bool is_range = false;
        double lower = 0;
    };
    struct Coef {
        int row, var;
        double value;
    };

    struct Queue {
        std::vector<Var> vars;
        std::vector<NewConstr> constrs;
        std::vector<Sos> sos;
        std::set<int> gone_vars, gone_constrs, gone_sos;
        std::vector<std::function<void(StoreReference *)>> values;
        std::vector<Coef> coefs;
    };

    int next_var_name = 0, next_constr_name = 0;
    Queue queue;

    void add_var(Var var); // "" as name: the next default
    void add_constr(NewConstr constr);
    void add_sos(Sos set); // sorts members and sets ties apart, unless monotone
    // A change of values: a later one of the same place counts.
    void set(const std::function<void(StoreReference *)> &change)
    {
        queue.values.push_back(change);
    }
    void update();

  private:
    void update_coefs();
    void update_deletions();
    void update_additions();
};

double bounded(double value); // a bound as it is held

// Both as texts when they differ, and what is broken inside; empty when all is well.
std::string compare(TVXmodel *model, const StoreReference &reference);
