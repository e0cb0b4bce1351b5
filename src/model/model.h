// model.h -- TVXmodel, the model store: body, pending changes, warm start, results
//
// States   alive    magic == MODEL_MAGIC
//          busy     during TVXoptimize; only calls from inside a callback pass the model check
//          loaded   status == 1: nothing solved since the last change of content
//          solved   status >  1: simplex and result records hold what the attributes show
// TVXupdatemodel and TVXfreemodel are the only events that release solver records.
#pragma once
#include "env/env.h"
#include "runtime/array.h"
#include "runtime/text_pool.h"

static constexpr uint32_t MODEL_MAGIC = 0x231d8a78;

struct sopt;           // simplex/sopt.h
struct PendingChanges; // frame/pending.h
struct AttributeTable; // frame/attributes.h
struct PresolveResult; // presolve

// The matrix and all that belongs to it, in the form solvers read. Rows with sense '>' are held negated
// (coefficients and rhs), so that every inequality is "at most"; a maximise objective is held negated.
struct ModelBody {
    int sense = 1;      // ModelSense: +1 minimise, -1 maximise
    int numconstrs = 0; // rows, m
    int numvars = 0;    // columns, n
    int numnz = 0;      // matrix entries
    int numsos = 0;     // SOS constraints
    int numintvars = 0; // variables whose type is not 'C'
    int numbinvars = 0; // variables of type 'B'
    int solve_tag =
        -1; // -1 after any change; solvers tell by it whether their record still matches
    int row_flipped = -1; // +1 if at least one row has sense '>', else -1

    double objcon = 0;  // objective constant, negated for a maximise model
    Array<double> obj;  // [numvars] objective for minimisation
    Array<double> lb;   // [numvars] -1e30 when infinite
    Array<double> ub;   // [numvars] 1e30 when infinite
    Array<char> vtypes; // [numvars] 'C' 'B' 'I' 'S' 'N', or empty: all 'C'
    // With vtypes, of their size: the bounds as given, before the type rounded them. A change of type starts from them.
    Array<double> given_lb, given_ub;
    Array<char> bound_kind;   // [numvars] 1 when lb is infinite, plus 2 when ub is
    double kind_infinity = 0; // magnitude from which bound_kind says so: infinite_bound

    Array<int> vbeg;    // [numvars + 1] column starts; columns contiguous and in order
    Array<int> vlen;    // [numvars] column lengths, vbeg[j + 1] - vbeg[j]
    Array<int> vind;    // [numnz] row indices, in the caller's order inside a column
    Array<double> vval; // [numnz]

    Array<int>
        row_beg; // [numconstrs + 1] row-wise copy, built on demand; empty when not there
    Array<int> row_ind;    // [numnz] column indices
    Array<double> row_val; // [numnz]

    Array<double> rhs;  // [numconstrs] negated for '>' rows
    Array<char> senses; // [numconstrs] '<' '>' '=', or what the caller gave (row_kind.h)

    int sos_sorted = 0;  // members stand in weight order
    Array<int> sostype;  // [numsos] 1 or 2
    Array<int> sosbeg;   // [numsos + 1]
    Array<int> sosind;   // [members]
    Array<double> soswt; // [members]

    const char *modelname = nullptr; // in name_pool, or null
    Array<const char *>
        constrnames; // [numconstrs], or empty: all default; entries may be null
    Array<const char *> varnames; // [numvars], likewise
    int next_constr_name = 0;     // next number for a default name
    int next_var_name = 0;
    TextPool *name_pool = nullptr; // owns all name texts; made on first use
    int64_t name_bytes = 0; // handed out by name_pool, texts no longer in use included
    int64_t name_limit = 0; // name_bytes at which an update looks for dead texts
};

enum WarmStartKind {
    WARM_NONE = 0,
    WARM_UNCHECKED = 1,
    WARM_CHECKED = 2,
    WARM_CARRIED = 3
};
static constexpr int STATUS_UNSET = -10; // entry of `statuses` that nobody has set

struct WarmStart {
    int count = 0; // numvars the arrays were made for; negative: stale
    int kind = WARM_NONE;
    int repair = 0; // coefficients of basic columns changed: the factor may need mending
    Array<int>
        statuses; // [numvars + numconstrs] >= 0 basic, -1 lower, -2 upper, -3 superbasic
    Array<double>
        norms; // [numvars + numconstrs] dual pricing norms given by a caller, or empty
};

// One group of violations: the largest, where it is, and the sum.
struct Violation {
    double max = 0;
    double sum = 0;
    int index = -1; // row or variable of the maximum, -1 when nothing is violated
};

// Measures of one solution; the names of the quality attributes.
struct Quality {
    int computed = 0; // the fields below are valid
    Violation BoundVio, BoundSVio, ConstrVio, ConstrSVio, ConstrResidual, ConstrSResidual;
    Violation DualVio, DualSVio, DualResidual, DualSResidual, ComplVio, IntVio;
};

struct LpResult {
    double runtime = 0;           // seconds
    Array<double> x;              // [numvars] postsolved point, or empty
    Array<double> pi;             // [numconstrs] postsolved duals, or empty
    double objval = 0;            // in the caller's sense
    double itercount = 0;         // simplex iterations
    double reduced_itercount = 0; // of these, on a reduced model
    int bar_itercount = 0;
    int restarted = 0;
    int from_dual = 0; // came from the dual form
    Quality quality;   // filled on first query
};

struct MipResult {
    int status = 0;
    int has_solution = 0;
    Array<double> x;     // [numvars]
    Array<double> slack; // [numconstrs]
    double objval = 0;
    double objbound = 0;
    double node_count = 0;
    double run_time = 0;
    double iter_count = 0;
    int bar_iter_count = 0;
    int sol_count = 0;
    int thread_count = 0;
    Quality quality;
};

static constexpr double START_UNSET = 1e101; // entry of `mip_start` that nobody has set

struct TVXmodel {
    uint32_t magic = 0;
    int busy = 0;                  // TVXoptimize is running
    uintptr_t callback_thread = 0; // that runs a user callback on this model, or 0
    int signal_set = 0;            // TVXsetsignal was called for this solve
    int status = 0;                // the Status attribute of an LP
    double node_count = 0;         // simplex work of a finished LP, as NodeCount reports it
    double start_time = 0;         // WallClock of the last optimize
    double run_time = 0;           // its length
    int64_t size_estimate = 0;     // 13 per variable + 7 per constraint + 23 per nonzero
    sopt *simplex = nullptr;       // live simplex record
    ModelBody *body = nullptr;
    TVXenv *env = nullptr;
    int env_owned = 0; // env is this model's own copy
    LpResult *lp_result = nullptr;
    MipResult *mip_result = nullptr;
    PresolveResult *presolve = nullptr; // way back from `presolved`
    TVXmodel *presolved = nullptr;
    int no_cutoff = 0; // a dual form, or reduced from one: Cutoff is not for it
    TVXmodel *dual_form =
        nullptr; // dual of the model, on which a limit has stopped a solve
    PendingChanges *pending = nullptr;
    WarmStart *warm_start = nullptr;
    AttributeTable *attributes = nullptr;
    Array<double>
        mip_start; // [numvars] Start attribute, START_UNSET where undefined; empty when none
};

// ---- model_create.cpp ----
// What a new model is made of; the arrays belong to the caller. Null members take their defaults.
struct ModelData {
    const char *name = nullptr;
    int numvars = 0, numconstrs = 0;
    int sense = 1; // +1 or -1; other values count by sign
    double objcon = 0;
    const double *obj = nullptr;
    const char *senses = nullptr;
    const double *rhs = nullptr;
    const int *vbeg = nullptr, *vlen = nullptr,
              *vind = nullptr; // vlen null: contiguous, vbeg has numvars + 1 entries
    const double *vval = nullptr;
    const double *lb = nullptr, *ub = nullptr;
    const char *vtype = nullptr;
    const char *const *varnames = nullptr, *const *constrnames = nullptr;
};
enum class EnvUse { PRIVATE_COPY, SHARED };
// The worker behind every new model. 0 or a code; *model_out is null on failure.
[[nodiscard]] int model_create(TVXenv *env, EnvUse use, const ModelData *data,
                               TVXmodel **model_out);
// The same for arrays in the form that a body has (minimise, '>' rows negated, columns one behind the other), which move
// into it: for models that the library makes, which have no indices to check, and may be large. The environment is
// shared. 0, OUT_OF_MEMORY, or TVX_ERROR_INVALID_ARGUMENT for a value that is no finite number.
struct ModelArrays {
    int sense = 1;
    double objcon = 0;
    Array<double> obj, lb, ub, rhs, vval;
    Array<char> senses;
    Array<int> vbeg, vind;
};
[[nodiscard]] int model_adopt(TVXenv *env, ModelArrays *arrays, TVXmodel **model_out);
// A copy of the content, with an environment of its own and these names (null: default ones). 0 or OUT_OF_MEMORY.
[[nodiscard]] int model_copy(TVXmodel *source, const char *const *varnames,
                             const char *const *constrnames, TVXmodel **copy_out);
void model_free(TVXmodel *model); // any state, half-built too; null is ignored
void model_free_results(
    TVXmodel *model); // drops lp, mip and presolve results, keeps simplex and warm start
void presolve_free(PresolveResult *presolve); // of the presolve subsystem; null is ignored
int model_check(TVXmodel *model);             // as TVXcheckmodel but keeps the error state
// A solve runs, or a callback, which may hear a line of any call: nothing may be updated, solved or freed.
bool model_is_occupied(TVXmodel *model);
// TVX_ERROR_OPTIMIZATION_IN_PROGRESS then, else 0: opens whatever works on the live simplex record.
[[nodiscard]] int check_idle(TVXmodel *model);
bool model_is_mip(const TVXmodel *model); // integers, semi-continuous variables or SOS

// ---- model_update.cpp ----
// Makes pending changes real: TVXupdatemodel without its checks and closing report. 0 or OUT_OF_MEMORY.
[[nodiscard]] int model_update(TVXmodel *model);

// ---- model_rows.cpp, model_names.cpp ----
[[nodiscard]] int
body_build_rows(ModelBody *body); // row-wise copy if not there; 0 or OUT_OF_MEMORY
// Names as a caller sees them; a default name is written into buffer.
static constexpr int DEFAULT_NAME_LENGTH = 16;
const char *var_name(const ModelBody *body, int j, char *buffer);
const char *constr_name(const ModelBody *body, int i, char *buffer);
