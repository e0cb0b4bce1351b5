// attribute_routines.h -- the routines named in the table of attributes, by file
//
// Signatures and contract: AttrCompute, AttrGetter and AttrSetter in attribute_table.h.
#pragma once
#include "attributes/attribute_table.h"
#include "model/attribute_cache.h"

// Values of `part` for the routines below.
enum CountPart { PART_CONSTRS, PART_VARS, PART_SOS, PART_NZS, PART_INTVARS, PART_BINVARS };
enum BoundPart { PART_LOWER, PART_UPPER };
enum DualPart { PART_PI, PART_RC };
enum ElementPart { PART_OF_VARS, PART_OF_CONSTRS };
enum ViolationPart { PART_MAX, PART_SUM, PART_INDEX };

// ---- attribute_model.cpp: the content of the model ----
int compute_count(TVXmodel *model, int part, const void **place); // CountPart
int compute_model_sense(TVXmodel *model, int part, const void **place);
int compute_senses(TVXmodel *model, int part, const void **place);
int get_objcon(TVXmodel *model, int part, ElementRange range, void *values);
int get_is_mip(TVXmodel *model, int part, ElementRange range, void *values);
int get_bounds(TVXmodel *model, int part, ElementRange range, void *values); // BoundPart
int get_obj(TVXmodel *model, int part, ElementRange range, void *values);
int get_vtype(TVXmodel *model, int part, ElementRange range, void *values);
int get_rhs(TVXmodel *model, int part, ElementRange range, void *values);
int get_start(TVXmodel *model, int part, ElementRange range, void *values);
int set_model_sense(TVXmodel *model, int part, ElementRange range, const void *values);
int set_objcon(TVXmodel *model, int part, ElementRange range, const void *values);
int set_bounds(TVXmodel *model, int part, ElementRange range, const void *values);
int set_obj(TVXmodel *model, int part, ElementRange range, const void *values);
int set_vtype(TVXmodel *model, int part, ElementRange range, const void *values);
int set_rhs(TVXmodel *model, int part, ElementRange range, const void *values);
int set_senses(TVXmodel *model, int part, ElementRange range, const void *values);
int set_start(TVXmodel *model, int part, ElementRange range, const void *values);

// ---- attribute_names.cpp: texts ----
int get_modelname(TVXmodel *model, int part, ElementRange range, void *values);
int get_names(TVXmodel *model, int part, ElementRange range, void *values); // ElementPart
int set_modelname(TVXmodel *model, int part, ElementRange range, const void *values);
int set_names(TVXmodel *model, int part, ElementRange range, const void *values);

// ---- attribute_result.cpp: figures of the last solve ----
int compute_runtime(TVXmodel *model, int part, const void **place);
int compute_objval(TVXmodel *model, int part, const void **place);
int compute_objbound(TVXmodel *model, int part, const void **place);
int compute_itercount(TVXmodel *model, int part, const void **place);
int compute_bar_itercount(TVXmodel *model, int part, const void **place);
int compute_nodecount(TVXmodel *model, int part, const void **place);
int get_status(TVXmodel *model, int part, ElementRange range, void *values);
int get_solcount(TVXmodel *model, int part, ElementRange range, void *values);

// ---- attribute_solution.cpp: the solution, element by element ----
int compute_x(TVXmodel *model, int part, const void **place);
int compute_xn(TVXmodel *model, int part, const void **place);
int compute_slack(TVXmodel *model, int part, const void **place);
int compute_duals(TVXmodel *model, int part, const void **place); // DualPart

// ---- attribute_basis.cpp: basis and pricing norms ----
int compute_basis(TVXmodel *model, int part, const void **place); // ElementPart
int compute_norms(TVXmodel *model, int part, const void **place); // ElementPart
int get_has_norms(TVXmodel *model, int part, ElementRange range, void *values);
int set_basis(TVXmodel *model, int part, ElementRange range, const void *values);
int set_norms(TVXmodel *model, int part, ElementRange range, const void *values);

// ---- attribute_ranges.cpp: sensitivity ----
int get_range(TVXmodel *model, int part, ElementRange range, void *values); // RangeEnd

// ---- attribute_statistics.cpp ----
int compute_statistic(TVXmodel *model, int part, const void **place); // Statistic

// ---- attribute_quality.cpp ----
int compute_quality(TVXmodel *model, int part, const void **place); // quality_part()
int compute_kappa(TVXmodel *model, int part, const void **place);   // 0: 1-norm, 1: 2-norm

// The groups of quality measures, in the order of the table; attribute_quality.cpp has their
// fields in the same order.
enum QualityGroup {
    BOUND_VIO,
    BOUND_S_VIO,
    CONSTR_VIO,
    CONSTR_S_VIO,
    CONSTR_RESIDUAL,
    CONSTR_S_RESIDUAL,
    DUAL_VIO,
    DUAL_S_VIO,
    DUAL_RESIDUAL,
    DUAL_S_RESIDUAL,
    COMPL_VIO,
    INT_VIO,
    QUALITY_GROUPS
};
static constexpr int VIOLATION_PARTS = 3; // of each group
constexpr int quality_part(int group, int part)
{
    return group * VIOLATION_PARTS + part;
}
