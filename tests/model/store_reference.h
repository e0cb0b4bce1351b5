// store_reference.h -- StoreReference, what the model store must do, written as plainly as possible
//
// Current content and queued changes stand in standard containers, in the caller's signs. Each
// queueing routine mirrors a call of the library; update() makes the queue real in the documented
// order. compare() reads a model through its queries and attributes and reports what differs.
#pragma once
#include "model/model.h"
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

using Entries = std::vector<std::pair<int, double>>; // index, value

struct StoreReference {
    struct Var {
        std::string name;                  // "": by its index
        double obj = 0, lb = 0, ub = 1e30; // bounds as given, whatever the type
        char vtype = 'C';
        Entries column; // rows in stored order
    };
    struct Constr {
        std::string name;
        char sense = '<';
        double rhs = 0;
    };
    struct Sos {
        int type = 1;
        Entries members; // variables and weights
    };
    struct NewConstr {
        Constr constr;
        Entries row;
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
        std::map<int, double> obj, lb, ub, rhs;
        std::map<int, char> vtype, sense;
        std::map<int, std::string> varname, constrname;
        std::vector<Coef> coefs;
        std::optional<int> model_sense;
        std::optional<double> objcon;
        std::optional<std::string> name;
    };

    std::optional<std::string> name;
    int sense = 1;
    double objcon = 0;
    std::vector<Var> vars;
    std::vector<Constr> constrs;
    std::vector<Sos> sos;
    int next_var_name = 0, next_constr_name = 0;
    Queue queue;

    void add_var(Var var); // "" as name: the next default
    void add_constr(NewConstr constr);
    void add_sos(Sos set); // sorts members and sets ties apart, unless monotone
    void update();

  private:
    void update_values();
    void update_coefs();
    void update_deletions();
    void update_additions();
};

// Both as texts when they differ, and what is broken inside; empty when all is well.
std::string compare(TVXmodel *model, const StoreReference &reference);
