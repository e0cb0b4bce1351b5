// store_reference.h -- StoreReference, what the model store must do, written as plainly as possible
//
// Current content and queued changes stand in standard containers, in the caller's signs. Each
// queueing routine mirrors a call of the library; update() makes the queue real in the documented
// order. compare() reads a model through its queries and its body and reports each difference.
#pragma once
#include "frame/model.h"
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

using Entries = std::vector<std::pair<int, double>>; // index, value

struct StoreReference {
    struct Var {
        std::string name; // "": by its index
        double obj = 0, lb = 0, ub = 1e30;
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

    std::string name;
    bool has_name = false;
    int sense = 1;
    double objcon = 0;
    std::vector<Var> vars;
    std::vector<Constr> constrs;
    std::vector<Sos> sos;
    int next_var_name = 0, next_constr_name = 0;

    // The queue.
    std::vector<Var> new_vars;
    std::vector<NewConstr> new_constrs;
    std::vector<Sos> new_sos;
    std::set<int> gone_vars, gone_constrs, gone_sos;
    std::map<int, double> new_obj, new_lb, new_ub, new_rhs;
    std::map<int, char> new_vtype, new_sense;
    std::map<int, std::string> new_varname, new_constrname;
    std::vector<Coef> coefs;
    int new_model_sense = 0;
    bool has_objcon = false, has_new_name = false;
    double new_objcon = 0;
    std::string new_name;

    void add_var(Var var); // "" as name: the next default
    void add_constr(NewConstr constr);
    void add_sos(Sos set); // sorts members and sets ties apart, unless monotone
    void update();

    std::string var_text(int j) const;
    std::string constr_text(int i) const;

  private:
    void update_values();
    void update_coefs();
    void update_deletions();
    void update_additions();
    void clear();
};

// What differs between the model and the reference, one line each; empty when nothing does.
std::string compare(TVXmodel *model, const StoreReference &reference);
