// store_player.h -- StorePlayer, random calls that build and change a model, mirrored in the plain reference
//
// Each move calls the library and queues the same in the reference; the caller makes both real (TVXupdatemodel and
// reference.update) and compares. Numbers are small multiples of a quarter, so that no verdict on the model hangs on a
// rounding. A call whose code is not the expected one leaves a line in `wrong`.
#pragma once
#include "model/store_reference.h"
#include "support/dice.h"
#include "tarvex.h"
#include <climits>
#include <string>

struct StorePlayer {
    Dice *dice = nullptr; // of the caller
    TVXmodel *model = nullptr;
    StoreReference reference;
    bool linear = false;         // continuous variables only, no SOS
    int most_elements = INT_MAX; // variables, and constraints: no more are added
    int names_made = 0;
    std::string wrong;
    int failed = 0; // the first code that is not the expected one

    void step(); // one move

    int n_vars() const { return int(reference.vars.size()); }
    int n_constrs() const { return int(reference.constrs.size()); }
    int n_sos() const { return int(reference.sos.size()); }

  private:
    enum class Side { LOWER, UPPER };

    void expect(int code, int returned, int line = __builtin_LINE());
    int room(bool of_vars) const;
    double number();
    double bound(Side side);
    void uncross(double *low, double *up);
    char vtype();
    char sense();
    std::string name();
    Entries entries(int n_elements);

    void add_vars();
    void add_rows(bool ranges);
    void add_constrs() { add_rows(false); }
    void add_ranges() { add_rows(true); }
    void add_sos();
    void set_values();
    void set_bounds();
    void set_names();
    void set_model();
    void change_coeffs();
    void remove();
};
