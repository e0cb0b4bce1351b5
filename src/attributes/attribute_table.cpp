// attribute_table.cpp -- the rows of the table of attributes, and the search by name
//
// Method   Names are compared by their keys. The keys are sorted at compile time; a look-up is a binary search without
//          allocation.
#include "attributes/attribute_routines.h"
#include "runtime/name_index.h"

// clang-format off
static constexpr AttrType CHR = AttrType::CHAR, INT = AttrType::INT, DBL = AttrType::DOUBLE,
                          STR = AttrType::STRING;
static constexpr AttrKind MODEL = AttrKind::MODEL, VAR = AttrKind::VARIABLE,
                          CON = AttrKind::CONSTRAINT, SOS = AttrKind::SOS;
static constexpr bool SET = true, FIXED = false; // may a caller set it
// lost when the content of the model changes
static constexpr bool SOLUTION = true, CONTENT = false;

#define QUALITY(name, type, group, part)                                                      \
    {name, type, MODEL, compute_quality, nullptr, nullptr, FIXED, SOLUTION,                   \
     quality_part(group, part)}

constexpr AttributeRow attribute_rows[ATTRIBUTE_COUNT] = {
    // name         type kind   compute              get            set             set?   lost      part
    {"NumConstrs",  INT, MODEL, compute_count,       nullptr,       nullptr,         FIXED, CONTENT,  PART_CONSTRS},
    {"NumVars",     INT, MODEL, compute_count,       nullptr,       nullptr,         FIXED, CONTENT,  PART_VARS},
    {"NumSOS",      INT, MODEL, compute_count,       nullptr,       nullptr,         FIXED, CONTENT,  PART_SOS},
    {"NumNZs",      INT, MODEL, compute_count,       nullptr,       nullptr,         FIXED, CONTENT,  PART_NZS},
    {"NumIntVars",  INT, MODEL, compute_count,       nullptr,       nullptr,         FIXED, CONTENT,  PART_INTVARS},
    {"NumBinVars",  INT, MODEL, compute_count,       nullptr,       nullptr,         FIXED, CONTENT,  PART_BINVARS},
    {"ModelName",   STR, MODEL, nullptr,             get_modelname, set_modelname,   SET,   CONTENT,  0},
    {"ModelSense",  INT, MODEL, compute_model_sense, nullptr,       set_model_sense, SET,   CONTENT,  0},
    {"ObjCon",      DBL, MODEL, nullptr,             get_objcon,    set_objcon,      SET,   CONTENT,  0},
    {"IsMIP",       INT, MODEL, nullptr,             get_is_mip,    nullptr,         FIXED, CONTENT,  0},
    {"IISMinimal",  INT, MODEL, nullptr,             nullptr,       nullptr,         FIXED, CONTENT,  0},

    {"LB",          DBL, VAR,   nullptr,             get_bounds,    set_bounds,      SET,   CONTENT,  PART_LOWER},
    {"UB",          DBL, VAR,   nullptr,             get_bounds,    set_bounds,      SET,   CONTENT,  PART_UPPER},
    {"Obj",         DBL, VAR,   nullptr,             get_obj,       set_obj,         SET,   CONTENT,  0},
    {"VType",       CHR, VAR,   nullptr,             get_vtype,     set_vtype,       SET,   CONTENT,  0},
    {"Start",       DBL, VAR,   nullptr,             get_start,     set_start,       SET,   CONTENT,  0},
    {"VarName",     STR, VAR,   nullptr,             get_names,     set_names,       SET,   CONTENT,  PART_OF_VARS},
    {"RHS",         DBL, CON,   nullptr,             get_rhs,       set_rhs,         SET,   CONTENT,  0},
    {"Sense",       CHR, CON,   compute_senses,      nullptr,       set_senses,      SET,   CONTENT,  0},
    {"ConstrName",  STR, CON,   nullptr,             get_names,     set_names,       SET,   CONTENT,  PART_OF_CONSTRS},

    {"MaxCoeff",    DBL, MODEL, compute_statistic,   nullptr,       nullptr,         FIXED, SOLUTION, MAX_COEFF},
    {"MinCoeff",    DBL, MODEL, compute_statistic,   nullptr,       nullptr,         FIXED, SOLUTION, MIN_COEFF},
    {"MaxBound",    DBL, MODEL, compute_statistic,   nullptr,       nullptr,         FIXED, SOLUTION, MAX_BOUND},
    {"MinBound",    DBL, MODEL, compute_statistic,   nullptr,       nullptr,         FIXED, SOLUTION, MIN_BOUND},
    {"MaxObjCoeff", DBL, MODEL, compute_statistic,   nullptr,       nullptr,         FIXED, SOLUTION, MAX_OBJ_COEFF},
    {"MinObjCoeff", DBL, MODEL, compute_statistic,   nullptr,       nullptr,         FIXED, SOLUTION, MIN_OBJ_COEFF},
    {"MaxRHS",      DBL, MODEL, compute_statistic,   nullptr,       nullptr,         FIXED, SOLUTION, MAX_RHS},
    {"MinRHS",      DBL, MODEL, compute_statistic,   nullptr,       nullptr,         FIXED, SOLUTION, MIN_RHS},

    {"Runtime",     DBL, MODEL, compute_runtime,     nullptr,       nullptr,         FIXED, CONTENT,  0},
    {"X",           DBL, VAR,   compute_x,           nullptr,       nullptr,         FIXED, SOLUTION, 0},
    {"Xn",          DBL, VAR,   compute_xn,          nullptr,       nullptr,         FIXED, SOLUTION, 0},
    {"RC",          DBL, VAR,   compute_duals,       nullptr,       nullptr,         FIXED, SOLUTION, PART_RC},
    {"Slack",       DBL, CON,   compute_slack,       nullptr,       nullptr,         FIXED, SOLUTION, 0},
    {"Pi",          DBL, CON,   compute_duals,       nullptr,       nullptr,         FIXED, SOLUTION, PART_PI},
    {"VDualNorm",   DBL, VAR,   compute_norms,       nullptr,       set_norms,       SET,   SOLUTION, PART_OF_VARS},
    {"CDualNorm",   DBL, CON,   compute_norms,       nullptr,       set_norms,       SET,   SOLUTION, PART_OF_CONSTRS},
    {"HasDualNorm", INT, MODEL, nullptr,             get_has_norms, nullptr,         FIXED, CONTENT,  0},
    {"VBasis",      INT, VAR,   compute_basis,       nullptr,       set_basis,       SET,   SOLUTION, PART_OF_VARS},
    {"CBasis",      INT, CON,   compute_basis,       nullptr,       set_basis,       SET,   SOLUTION, PART_OF_CONSTRS},
    {"Status",      INT, MODEL, nullptr,             get_status,    nullptr,         FIXED, CONTENT,  0},
    {"SolCount",    INT, MODEL, nullptr,             get_solcount,  nullptr,         FIXED, CONTENT,  0},
    {"ObjVal",      DBL, MODEL, compute_objval,      nullptr,       nullptr,         FIXED, SOLUTION, 0},
    {"ObjBound",    DBL, MODEL, compute_objbound,    nullptr,       nullptr,         FIXED, SOLUTION, 0},
    {"IterCount",   DBL, MODEL, compute_itercount,   nullptr,       nullptr,         FIXED, SOLUTION, 0},
    {"NodeCount",   DBL, MODEL, compute_nodecount,   nullptr,       nullptr,         FIXED, SOLUTION, 0},
    {"BarIterCount", INT, MODEL, compute_bar_itercount, nullptr,    nullptr,         FIXED, SOLUTION, 0},

    QUALITY("BoundVio",              DBL, BOUND_VIO,         PART_MAX),
    QUALITY("BoundVioSum",           DBL, BOUND_VIO,         PART_SUM),
    QUALITY("BoundVioIndex",         INT, BOUND_VIO,         PART_INDEX),
    QUALITY("BoundSVio",             DBL, BOUND_S_VIO,       PART_MAX),
    QUALITY("BoundSVioSum",          DBL, BOUND_S_VIO,       PART_SUM),
    QUALITY("BoundSVioIndex",        INT, BOUND_S_VIO,       PART_INDEX),
    QUALITY("ConstrVio",             DBL, CONSTR_VIO,        PART_MAX),
    QUALITY("ConstrVioSum",          DBL, CONSTR_VIO,        PART_SUM),
    QUALITY("ConstrVioIndex",        INT, CONSTR_VIO,        PART_INDEX),
    QUALITY("ConstrSVio",            DBL, CONSTR_S_VIO,      PART_MAX),
    QUALITY("ConstrSVioSum",         DBL, CONSTR_S_VIO,      PART_SUM),
    QUALITY("ConstrSVioIndex",       INT, CONSTR_S_VIO,      PART_INDEX),
    QUALITY("ConstrResidual",        DBL, CONSTR_RESIDUAL,   PART_MAX),
    QUALITY("ConstrResidualSum",     DBL, CONSTR_RESIDUAL,   PART_SUM),
    QUALITY("ConstrResidualIndex",   INT, CONSTR_RESIDUAL,   PART_INDEX),
    QUALITY("ConstrSResidual",       DBL, CONSTR_S_RESIDUAL, PART_MAX),
    QUALITY("ConstrSResidualSum",    DBL, CONSTR_S_RESIDUAL, PART_SUM),
    QUALITY("ConstrSResidualIndex",  INT, CONSTR_S_RESIDUAL, PART_INDEX),
    QUALITY("DualVio",               DBL, DUAL_VIO,          PART_MAX),
    QUALITY("DualVioSum",            DBL, DUAL_VIO,          PART_SUM),
    QUALITY("DualVioIndex",          INT, DUAL_VIO,          PART_INDEX),
    QUALITY("DualSVio",              DBL, DUAL_S_VIO,        PART_MAX),
    QUALITY("DualSVioSum",           DBL, DUAL_S_VIO,        PART_SUM),
    QUALITY("DualSVioIndex",         INT, DUAL_S_VIO,        PART_INDEX),
    QUALITY("DualResidual",          DBL, DUAL_RESIDUAL,     PART_MAX),
    QUALITY("DualResidualSum",       DBL, DUAL_RESIDUAL,     PART_SUM),
    QUALITY("DualResidualIndex",     INT, DUAL_RESIDUAL,     PART_INDEX),
    QUALITY("DualSResidual",         DBL, DUAL_S_RESIDUAL,   PART_MAX),
    QUALITY("DualSResidualSum",      DBL, DUAL_S_RESIDUAL,   PART_SUM),
    QUALITY("DualSResidualIndex",    INT, DUAL_S_RESIDUAL,   PART_INDEX),
    QUALITY("ComplVio",              DBL, COMPL_VIO,         PART_MAX),
    QUALITY("ComplVioSum",           DBL, COMPL_VIO,         PART_SUM),
    QUALITY("ComplVioIndex",         INT, COMPL_VIO,         PART_INDEX),
    QUALITY("IntVio",                DBL, INT_VIO,           PART_MAX),
    QUALITY("IntVioSum",             DBL, INT_VIO,           PART_SUM),
    QUALITY("IntVioIndex",           INT, INT_VIO,           PART_INDEX),

    // condition of the last basis
    {"Kappa",       DBL, MODEL, compute_kappa,       nullptr,       nullptr,         FIXED, SOLUTION, 0},
    {"N2Kappa",     DBL, MODEL, compute_kappa,       nullptr,       nullptr,         FIXED, SOLUTION, 1},
    // sensitivity ranges
    {"SAObjLow",    DBL, VAR,   nullptr,             get_range,     nullptr,         FIXED, SOLUTION, OBJ_LOW},
    {"SAObjUp",     DBL, VAR,   nullptr,             get_range,     nullptr,         FIXED, SOLUTION, OBJ_UP},
    {"SALBLow",     DBL, VAR,   nullptr,             get_range,     nullptr,         FIXED, SOLUTION, LB_LOW},
    {"SALBUp",      DBL, VAR,   nullptr,             get_range,     nullptr,         FIXED, SOLUTION, LB_UP},
    {"SAUBLow",     DBL, VAR,   nullptr,             get_range,     nullptr,         FIXED, SOLUTION, UB_LOW},
    {"SAUBUp",      DBL, VAR,   nullptr,             get_range,     nullptr,         FIXED, SOLUTION, UB_UP},
    {"SARHSLow",    DBL, CON,   nullptr,             get_range,     nullptr,         FIXED, SOLUTION, RHS_LOW},
    {"SARHSUp",     DBL, CON,   nullptr,             get_range,     nullptr,         FIXED, SOLUTION, RHS_UP},
    // irreducible inconsistent subsystem
    {"IISLB",       INT, VAR,   nullptr,             nullptr,       nullptr,         FIXED, SOLUTION, 0},
    {"IISUB",       INT, VAR,   nullptr,             nullptr,       nullptr,         FIXED, SOLUTION, 0},
    {"IISConstr",   INT, CON,   nullptr,             nullptr,       nullptr,         FIXED, SOLUTION, 0},
    {"IISSOS",      INT, SOS,   nullptr,             nullptr,       nullptr,         FIXED, SOLUTION, 0},
};
// clang-format on

// A name of the table has no underscore, so its key is the name in lower case.
static constexpr int key_char(char c)
{
    return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c;
}

// Compares two names by their keys, as strcmp does.
static constexpr int key_compare(const char *a, const char *b)
{
    while (*a && key_char(*a) == key_char(*b)) a++, b++;
    return key_char(*a) - key_char(*b);
}

struct KeyOrder {
    int row[ATTRIBUTE_COUNT]; // rows by ascending key
};

static constexpr KeyOrder sort_rows()
{
    KeyOrder order = {};
    for (int k = 0; k < ATTRIBUTE_COUNT; k++) {
        int place = k;
        for (; place > 0; place--) {
            const int before = order.row[place - 1];
            if (key_compare(attribute_rows[before].name, attribute_rows[k].name) < 0) break;
            order.row[place] = before;
        }
        order.row[place] = k;
    }
    return order;
}

static constexpr KeyOrder by_key = sort_rows();

const AttributeRow *attribute_find(const char *name)
{
    char key[NAME_KEY_LENGTH + 1];
    name_key(name, key);
    int low = 0, high = ATTRIBUTE_COUNT;
    while (low < high) {
        const int middle = (low + high) / 2;
        const AttributeRow *row = &attribute_rows[by_key.row[middle]];
        const int order = key_compare(row->name, key);
        if (order == 0) return row;
        if (order < 0)
            low = middle + 1;
        else
            high = middle;
    }
    return nullptr;
}
