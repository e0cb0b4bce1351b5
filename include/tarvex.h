/* tarvex.h -- the public interface of the Tarvex Optimizer
 *
 * A flat C interface. Every function returns 0 or an error code unless it says otherwise; the text of the last
 * error is kept in the environment (TVXgeterrormsg). Arrays are 0-based; arrays handed in are copied, results
 * are copied out. One thread per model at a time; TVXterminate may be called from any thread.
 */
#ifndef TARVEX_H
#define TARVEX_H

#include <stdio.h>

#ifdef __cplusplus
extern "C" {
#endif

#if defined(__GNUC__)
#define TVX_API __attribute__((visibility("default")))
#define TVX_PRINTF(text, first) __attribute__((format(printf, text, first)))
#else
#define TVX_API
#define TVX_PRINTF(text, first)
#endif

typedef struct TVXenv TVXenv;
typedef struct TVXmodel TVXmodel;

#define TVX_INFINITY 1e100 /* a bound of this magnitude, or of 1e20 and more, is no bound */

/* Error codes */
#define TVX_ERROR_OUT_OF_MEMORY 10001
#define TVX_ERROR_NULL_ARGUMENT 10002
#define TVX_ERROR_INVALID_ARGUMENT 10003
#define TVX_ERROR_UNKNOWN_ATTRIBUTE 10004
#define TVX_ERROR_DATA_NOT_AVAILABLE 10005
#define TVX_ERROR_INDEX_OUT_OF_RANGE 10006
#define TVX_ERROR_UNKNOWN_PARAMETER 10007
#define TVX_ERROR_VALUE_OUT_OF_RANGE 10008
#define TVX_ERROR_PROCESSOR 10009
#define TVX_ERROR_CALLBACK 10011
#define TVX_ERROR_FILE_READ 10012
#define TVX_ERROR_FILE_WRITE 10013
#define TVX_ERROR_NUMERIC 10014
#define TVX_ERROR_IIS_NOT_INFEASIBLE 10015
#define TVX_ERROR_NOT_FOR_MIP 10016
#define TVX_ERROR_OPTIMIZATION_IN_PROGRESS 10017
#define TVX_ERROR_DUPLICATES 10018
#define TVX_ERROR_NODEFILE 10019

/* Values of the Status attribute */
#define TVX_LOADED 1
#define TVX_OPTIMAL 2
#define TVX_INFEASIBLE 3
#define TVX_INF_OR_UNBD 4
#define TVX_UNBOUNDED 5
#define TVX_CUTOFF 6
#define TVX_ITERATION_LIMIT 7
#define TVX_NODE_LIMIT 8
#define TVX_TIME_LIMIT 9
#define TVX_SOLUTION_LIMIT 10
#define TVX_INTERRUPTED 11
#define TVX_NUMERIC 12
#define TVX_SUBOPTIMAL 13

/* Values of VBasis and CBasis */
#define TVX_BASIC 0
#define TVX_NONBASIC_LOWER (-1)
#define TVX_NONBASIC_UPPER (-2)
#define TVX_SUPERBASIC (-3)

/* ---- Environment, errors, log, version ----
 *
 * An environment holds parameter values, the text of the last error and the log. Every model works on a private
 * copy of the environment it was created on (TVXgetenv), so that parameters set later on one do not reach the other.
 *
 * Every function that takes an environment returns TVX_ERROR_NULL_ARGUMENT for a null one and
 * TVX_ERROR_INVALID_ARGUMENT for one that was freed, and writes no error text then. In the descriptions, "in" arguments
 * are read, "out" arguments written.
 */

/* Creates an environment.
 *   env_out        out   the environment; null when the call fails
 *   log_file_name  in    file to which the log is appended, or null for none; when it cannot be opened there is a
 *                        warning on standard output, and no log file
 * The parameter file "tarvex.env" of the current directory is read if there is one (see TVXreadparams).
 * Returns 0; TVX_ERROR_OUT_OF_MEMORY; TVX_ERROR_NULL_ARGUMENT when env_out is null. Free with TVXfreeenv. */
TVX_API int TVXloadenv(TVXenv **env_out, const char *log_file_name);

/* Frees an environment made by TVXloadenv and closes its log. Null is ignored, and so is the environment of a model,
 * which goes with its model. Free the models first: those that are left refuse all further calls with
 * TVX_ERROR_INVALID_ARGUMENT and a warning; TVXfreemodel still frees them. */
TVX_API void TVXfreeenv(TVXenv *env);

/* The environment that belongs to a model: parameters set on it act on this model only. It lives as long as the
 * model. Returns null when the model is not valid or is being solved by another thread. */
TVX_API TVXenv *TVXgetenv(TVXmodel *model);

/* The text of the last error of a call on this environment or its models, at most 512 characters; empty after
 * success, or when the handle is not valid. The text stays in place until the next call. */
TVX_API const char *TVXgeterrormsg(TVXenv *env);
TVX_API const char *TVXgetmerrormsg(TVXmodel *model);

/* Is this a model that can be used now? On success the text of the last error is forgotten.
 * Returns 0; TVX_ERROR_NULL_ARGUMENT; TVX_ERROR_INVALID_ARGUMENT no live model, or its environment was freed;
 * TVX_ERROR_OPTIMIZATION_IN_PROGRESS it is being solved, and the call does not come from its callback. */
TVX_API int TVXcheckmodel(TVXmodel *model);

/* Prints a message as the solver prints its own: to standard output and to the log file, each flushed at once.
 *   format  in  as of printf; numbers print with a decimal point whatever the locale
 * Parameter read: OutputFlag (0: nothing is printed). An environment that is not valid prints nothing. */
TVX_API void TVXmsg(TVXenv *env, const char *format, ...) TVX_PRINTF(2, 3);

/* Makes an open stream the log of this environment, in place of the present one, which is closed.
 *   stream  in  open for writing; null detaches. The environment closes it in the end, unless it is stdout or stderr.
 * Sets the parameter LogFile to empty. Models made later get no log file from it.
 * Returns 0, or the code of the environment check. */
TVX_API int TVXsetlogfile(TVXenv *env, FILE *stream);

/* The stream of the log.
 *   stream_out  out  null when there is none
 * Returns 0; TVX_ERROR_NULL_ARGUMENT when stream_out is null. */
TVX_API int TVXgetlogfile(TVXenv *env, FILE **stream_out);

/* Version numbers of the library, 3.0.3. Each argument is out, one int, and may be null. */
TVX_API void TVXversion(int *major, int *minor, int *technical);
/* One word for the platform the library was built for, such as "linux64". */
TVX_API const char *TVXplatform(void);
/* The revision of the sources, as digits. */
TVX_API const char *TVXsvnrevision(void);

/* ---- Parameters ----
 *
 * A parameter is of type 1 (int), 2 (double) or 3 (string). Names ignore case and, behind the first other character,
 * underscores: "TimeLimit" and "time_limit" are one. Functions that take a name return TVX_ERROR_NULL_ARGUMENT when it
 * is null, and TVX_ERROR_UNKNOWN_PARAMETER for an unknown name ("Unknown parameter: ...") or another type ("Wrong type
 * for parameter: ..."). To set a parameter for one model, use its own environment, TVXgetenv(model).
 */

#define TVX_PARAM_LENGTH 512 /* characters of a string parameter, without the end */

/* The value of a parameter.
 *   value_out  out  one number; for a string, room for TVX_PARAM_LENGTH + 1 characters
 * Returns 0; TVX_ERROR_NULL_ARGUMENT; TVX_ERROR_UNKNOWN_PARAMETER. */
TVX_API int TVXgetintparam(TVXenv *env, const char *name, int *value_out);
TVX_API int TVXgetdblparam(TVXenv *env, const char *name, double *value_out);
TVX_API int TVXgetstrparam(TVXenv *env, const char *name, char *value_out);

/* Sets a parameter.
 *   value  in  a number within the parameter's range. Ints beyond 2e9 in magnitude count as 2e9, doubles beyond 1e100
 *              as 1e100. Of a string the first TVX_PARAM_LENGTH characters are kept.
 * Setting LogFile opens that file for appending, or closes the log for an empty name. Setting Dummy to a text such as
 * "Presolve 2" sets the named int or double parameter.
 * On an environment from which models were made, a warning says once that they are not affected.
 * Returns 0; TVX_ERROR_NULL_ARGUMENT; TVX_ERROR_UNKNOWN_PARAMETER; TVX_ERROR_VALUE_OUT_OF_RANGE value
 * outside the range; TVX_ERROR_FILE_WRITE log file cannot be opened. After an error the parameter has its old value. */
TVX_API int TVXsetintparam(TVXenv *env, const char *name, int value);
TVX_API int TVXsetdblparam(TVXenv *env, const char *name, double value);
TVX_API int TVXsetstrparam(TVXenv *env, const char *name, const char *value);

/* Present value, range and default of a parameter. All arguments behind the name are out and may be null; strings need
 * room for TVX_PARAM_LENGTH + 1 characters.
 * Returns 0; TVX_ERROR_NULL_ARGUMENT when name is null; TVX_ERROR_UNKNOWN_PARAMETER. */
TVX_API int TVXgetintparaminfo(TVXenv *env, const char *name, int *current, int *minimum,
                               int *maximum, int *default_value);
TVX_API int TVXgetdblparaminfo(TVXenv *env, const char *name, double *current,
                               double *minimum, double *maximum, double *default_value);
TVX_API int TVXgetstrparaminfo(TVXenv *env, const char *name, char *current,
                               char *default_value);

/* The type of a parameter: 1 int, 2 double, 3 string; -1 when there is no such parameter or on any other failure. */
TVX_API int TVXgetparamtype(TVXenv *env, const char *name);

/* How many parameters can be listed with TVXgetparamname; 0 for an environment that is not valid. */
TVX_API int TVXgetnumparams(TVXenv *env);

/* The name of a parameter.
 *   index     in   0 .. TVXgetnumparams(env) - 1
 *   name_out  out  constant text, not to be changed or freed; null on failure
 * Returns 0; TVX_ERROR_NULL_ARGUMENT when name_out is null; TVX_ERROR_INVALID_ARGUMENT index out of range. */
TVX_API int TVXgetparamname(TVXenv *env, int index, char **name_out);

/* Gives every int and double parameter its default; strings keep their values. Returns 0. */
TVX_API int TVXresetparams(TVXenv *env);

/* Sets parameters from a file. Each line holds a name and a value; blank lines and lines that start with # are
 * passed over. What each line did is told in the log. Unknown names and bad values do not end the reading. Lines longer
 * than 159 characters are taken apart there, comments excepted.
 *   file_name  in  names ending in .gz and .bz2 are decompressed
 * Returns 0, also after warnings; TVX_ERROR_NULL_ARGUMENT; TVX_ERROR_INVALID_ARGUMENT the file cannot be
 * opened; TVX_ERROR_FILE_READ it cannot be read to its end, or is no text file (what was read before is set). */
TVX_API int TVXreadparams(TVXenv *env, const char *file_name);

/* Writes the int and double parameters that differ from their defaults, one "name  value" a line, in a form that
 * TVXreadparams takes; doubles with six digits.
 *   file_name  in  is replaced; names ending in .gz and .bz2 are compressed
 * Returns 0; TVX_ERROR_NULL_ARGUMENT; TVX_ERROR_INVALID_ARGUMENT the file cannot be opened;
 * TVX_ERROR_FILE_WRITE it could not be written completely, and is removed. */
TVX_API int TVXwriteparams(TVXenv *env, const char *file_name);

/* ---- Building and querying models ----
 *
 * A model is n variables x with bounds and costs, m linear constraints, and special ordered sets (SOS):
 *
 *   minimise or maximise  objcon + obj'x   subject to   row(i) x  <=, = or >=  rhs(i),   lb <= x <= ub
 *
 * Variables, constraints and SOS are numbered from 0. Sparse vectors come in compressed form: vector k is
 * ind[beg[k]], ..., ind[beg[k + 1] - 1] with the same stretch of val; the last one ends at the total number given
 * (numnz, nummembers). A vector may not hold an index twice.
 *
 * Changes are queued: every add, delete and change (and every set of an attribute) takes effect at the next
 * TVXupdatemodel or TVXoptimize, and no query shows it before. Until then indices mean the elements that exist now: a
 * variable that is queued cannot be named in a constraint. A call that fails has queued nothing. Many changes before
 * one update cost one pass over the matrix.
 *
 * Values      Bounds of magnitude 1e20 and more are infinite, and so are right-hand sides: "at most" 1e20 or more asks
 *             for nothing, at most -1e20 or less makes the model infeasible; likewise "at least", and an equation with
 *             either is infeasible. They read back as given. NaN and infinities are refused.
 * Types       'C' continuous, 'B' binary, 'I' integer, 'S' semi-continuous (0 or within its bounds), 'N' semi-integer;
 *             lower case will do. Bounds of 'B', 'I' and 'N' are rounded inwards to integers (a fraction of 1e-5 is
 *             forgiven), those of 'B' cut to 0 and 1. The bounds given are kept: after a change of type they are
 *             rounded anew, or stand again.
 * Senses      '<' (also 'L', 'l'), '>' ('G', 'g'), '=' ('E', 'e'). Any other character is kept as given and counts as
 *             '<'.
 * Names       Null or "" asks for the default, "C" or "R" with a number. Names need not differ.
 *
 * Calls on a model return TVX_ERROR_NULL_ARGUMENT for a null one, TVX_ERROR_INVALID_ARGUMENT for one that is not alive
 * or whose environment was freed, TVX_ERROR_OPTIMIZATION_IN_PROGRESS while it is being solved (calls from its callback
 * pass, but for TVXupdatemodel, TVXresetmodel and TVXfreemodel), and TVX_ERROR_OUT_OF_MEMORY when memory is exhausted;
 * these are not repeated below. A count below 1 of things to add, delete or change is a successful call without effect.
 * All arrays are in unless said otherwise, and are copied.
 */

/* Creates a model with variables and no constraints.
 *   model_out   out  the model; null when the call fails. Free with TVXfreemodel
 *   name        in   null: none
 *   numvars     in   0 or more
 *   obj, lb, ub      [numvars] costs, default 0; bounds, default 0 and infinite
 *   vtype            [numvars] types, default 'C'
 *   varnames         [numvars] names
 * Every array may be null for its default. The model works on a private copy of env.
 * Returns 0; TVX_ERROR_OUT_OF_MEMORY; TVX_ERROR_NULL_ARGUMENT model_out is null; TVX_ERROR_INVALID_ARGUMENT env is not
 * alive, negative numvars, NaN or infinity, unknown type. */
TVX_API int TVXnewmodel(TVXenv *env, TVXmodel **model_out, const char *name, int numvars,
                        const double *obj, const double *lb, const double *ub,
                        const char *vtype, char **varnames);

/* Creates a whole model.
 *   numvars, numconstrs    in  0 or more
 *   objsense               in  1 minimise, -1 maximise (by sign; 0 minimises)
 *   objcon                 in  constant of the objective
 *   sense, rhs                 [numconstrs] required when there are constraints
 *   vbeg, vlen                 [numvars] start and length of each column in vind and vval. Columns may lie in any order
 *                              and with gaps, but may not share entries
 *   vind, vval                 row indices and coefficients. These four are required when there are variables
 *   constrnames                [numconstrs] names
 *   others                     as in TVXnewmodel
 * Returns 0; TVX_ERROR_OUT_OF_MEMORY; TVX_ERROR_NULL_ARGUMENT a required argument is null; TVX_ERROR_INVALID_ARGUMENT
 * env is not alive, a negative count, NaN or infinity, unknown type; TVX_ERROR_INDEX_OUT_OF_RANGE a row index, a start
 * or a length is out of range, or columns overlap; TVX_ERROR_DUPLICATES a row index twice in one column. The text tells
 * where. */
TVX_API int TVXloadmodel(TVXenv *env, TVXmodel **model_out, const char *name, int numvars,
                         int numconstrs, int objsense, double objcon, const double *obj,
                         const char *sense, const double *rhs, const int *vbeg,
                         const int *vlen, const int *vind, const double *vval,
                         const double *lb, const double *ub, const char *vtype,
                         char **varnames, char **constrnames);

/* A new model with the content and the parameters of this one (ResultFile too), called "NAME_copy", or "(null)_copy"
 * when this one has no name. Queued changes, a start and results are not copied; a warning on the log tells of queued
 * changes.
 * Returns null on failure. */
TVX_API TVXmodel *TVXcopymodel(TVXmodel *model);

/* The five calls below make a model from another one. It has the parameters of this one, but for those that write files
 * after a solve: ResultFile is empty, so that a result of this model is not overwritten. Its name is that of this one
 * with the ending told below; without a name it is the ending alone. */

/* What presolve leaves of this model, as a new model with the names of the variables and constraints that are left,
 * called "NAME_presolved"; no variables and constraints when it is solved by presolve alone, and all of them with
 * Presolve 0. Other parameters as for a solve (Aggregate, PrePasses, ...); queued changes do not count. Figures and
 * results of the last solve stay as they are. An optimal solution of the new model has the objective of this one's.
 * Returns null on failure, and the error text tells why: no memory; TVX_ERROR_DATA_NOT_AVAILABLE when presolve finds
 * that there is no optimal solution, meets numbers beyond about 1e100, or is stopped by TimeLimit (counted from this
 * call), TVXterminate or a callback; TVX_ERROR_NOT_FOR_MIP for a model with integer or semi-continuous variables or SOS
 * constraints; TVX_ERROR_OPTIMIZATION_IN_PROGRESS from a callback. */
TVX_API TVXmodel *TVXpresolvemodel(TVXmodel *model);

/* A linear model in which everything is fixed that a solution of this one decides, called "NAME_fixed", with the same
 * variables and constraints.
 *   with integer or semi-continuous variables or SOS constraints: the solution, or the values of attribute Start when
 *     there is none, decides. Integer variables are fixed at their values; a semi-continuous variable and a member of
 *     an SOS constraint are fixed at zero if they are zero, else they keep their bounds. Types and SOS constraints go.
 *     The optimum of the new model is the best solution with these decisions, and it has dual values.
 *   linear: the optimal solution decides. Variables with a reduced cost other than zero are fixed at their bound, and
 *     constraints with a dual value other than zero become equations. The feasible points of the new model are the
 *     optimal solutions of this one: with another objective it finds the best of them.
 * Zero is what lies within OptimalityTol. Queued changes do not count.
 * Returns null on failure, and the error text tells why: no memory; TVX_ERROR_DATA_NOT_AVAILABLE when there is no
 * solution or start, or when a start lacks a value that is needed or has one that type, bounds or SOS do not allow. */
TVX_API TVXmodel *TVXconverttofixed(TVXmodel *model);

/* The same for a solution that was found: it alone decides, not attribute Start. Integer variables are fixed at its
 * values, rounded. A linear model leaves nothing to decide: the new model is a copy of it. Called "NAME_fixed".
 * Returns null on failure, and the error text tells why: no memory; TVX_ERROR_DATA_NOT_AVAILABLE without a solution. */
TVX_API TVXmodel *TVXfixedmodel(TVXmodel *model);

/* The linear relaxation, called "NAME_relaxed", with the same variables and constraints: all variables are continuous
 * within their bounds, and SOS constraints go. The bounds of a semi-continuous variable are widened to hold 0. The
 * optimum is a bound on that of the model. Queued changes do not count. Returns null when there is no memory. */
TVX_API TVXmodel *TVXrelaxmodel(TVXmodel *model);

/* By how much must constraints be violated? A model called "NAME_feasibility" with the variables and constraints of
 * this one, in which each constraint may be missed: by a new variable "CONSTR_above" that takes up what a '<' or '='
 * constraint exceeds, and one "CONSTR_below" that makes up what a '>' or '=' constraint lacks. They stand behind the
 * other variables, in the order of the constraints. Their sum is to be minimised; the objective goes, and so does
 * parameter Cutoff. Bounds, types and SOS constraints stay: the optimum is 0 when this model has a feasible point, else
 * the least sum of violations that these leave. An infinite right-hand side that makes this model infeasible makes the
 * new one infeasible too. Queued changes do not count. Returns null on failure: no memory, or
 * TVX_ERROR_INVALID_ARGUMENT when the new model would be too large. */
TVX_API TVXmodel *TVXfeasibility(TVXmodel *model);

/* Frees a model with all that belongs to it. Null is ignored.
 * Returns 0; TVX_ERROR_OPTIMIZATION_IN_PROGRESS while it is being solved, and the model stays;
 * TVX_ERROR_INVALID_ARGUMENT for what is no live model, which is left alone, and for a model whose environment was
 * freed before: it is freed all the same, with the warning that calls on such a model print. */
TVX_API int TVXfreemodel(TVXmodel *model);

/* Makes the queued changes real, in this order: names; right-hand sides, senses, objective, types and bounds;
 * coefficients; deletions; new variables; new constraints; SOS. Indices of a queued change mean the elements before the
 * update; what refers to a deleted element goes with it. Results of an earlier solve go, unless only names change. The
 * next solve starts from the last basis if it survives: it does not when a basic variable or a nonbasic constraint is
 * deleted, or integer variables or SOS are involved.
 * A start set through VBasis and CBasis is checked; a warning on the log tells when it is no basis.
 * Returns 0; TVX_ERROR_OUT_OF_MEMORY: the model is as before, but the queued changes are lost and Status is 0. */
TVX_API int TVXupdatemodel(TVXmodel *model);

/* Updates, then forgets every solve: results and start basis. The next solve starts from scratch.
 * Returns as TVXupdatemodel. */
TVX_API int TVXresetmodel(TVXmodel *model);

/* Queues one variable, or numvars variables, behind the present ones.
 *   numnz            in  entries in all columns together; with 0 the next three arrays are not looked at
 *   vbeg                 [numvars] start of each column
 *   vind, vval           [numnz] rows (existing ones) and coefficients
 *   obj, lb, ub, vtype   [numvars] as in TVXnewmodel; null for the defaults
 *   varnames             [numvars] names, or null
 * Returns 0; TVX_ERROR_NULL_ARGUMENT numnz is positive and one of its arrays null; TVX_ERROR_INVALID_ARGUMENT negative
 * numnz, NaN or infinity, unknown type; TVX_ERROR_INDEX_OUT_OF_RANGE a row or a start out of range;
 * TVX_ERROR_DUPLICATES a row twice in one column. */
TVX_API int TVXaddvar(TVXmodel *model, int numnz, const int *vind, const double *vval,
                      double obj, double lb, double ub, char vtype, const char *varname);
TVX_API int TVXaddvars(TVXmodel *model, int numvars, int numnz, const int *vbeg,
                       const int *vind, const double *vval, const double *obj,
                       const double *lb, const double *ub, const char *vtype,
                       char **varnames);

/* Queues one constraint, or numconstrs constraints, behind the present ones.
 *   numnz         in  entries in all rows together; with 0 the next three arrays are not looked at
 *   cbeg              [numconstrs] start of each row
 *   cind, cval        [numnz] variables (existing ones) and coefficients
 *   sense, rhs        [numconstrs] null for all '<' and all 0
 *   constrnames       [numconstrs] names, or null
 * Returns 0; TVX_ERROR_NULL_ARGUMENT, TVX_ERROR_INVALID_ARGUMENT, TVX_ERROR_INDEX_OUT_OF_RANGE and TVX_ERROR_DUPLICATES
 * as TVXaddvars. */
TVX_API int TVXaddconstr(TVXmodel *model, int numnz, const int *cind, const double *cval,
                         char sense, double rhs, const char *constrname);
TVX_API int TVXaddconstrs(TVXmodel *model, int numconstrs, int numnz, const int *cbeg,
                          const int *cind, const double *cval, const char *sense,
                          const double *rhs, char **constrnames);

/* Queues one or more constraints lower <= row <= upper.
 *   lower, upper      [numconstrs] required. An infinite lower side makes an ordinary '<' row, else an infinite upper
 *                     side an ordinary '>' row. Sides that cross make an infeasible model
 * A row NAME with two finite sides becomes an equation with right-hand side upper and one more variable, "RgNAME", with
 * bounds 0 and upper - lower and coefficient 1. These variables come behind all others that the update adds, in order
 * of their rows, and are normal variables from then on.
 * Returns as TVXaddconstrs; TVX_ERROR_NULL_ARGUMENT also when lower or upper is null. */
TVX_API int TVXaddrangeconstr(TVXmodel *model, int numnz, const int *cind,
                              const double *cval, double lower, double upper,
                              const char *constrname);
TVX_API int TVXaddrangeconstrs(TVXmodel *model, int numconstrs, int numnz, const int *cbeg,
                               const int *cind, const double *cval, const double *lower,
                               const double *upper, char **constrnames);

/* Queues special ordered sets: of type 1 at most one member may be nonzero, of type 2 at most two that are neighbours.
 *   nummembers   in  members of all sets together
 *   types            [numsos] 1 or 2
 *   beg              [numsos] start of each set
 *   ind, weight      [nummembers] variables (existing ones) and their weights, which give the order. Members whose
 *                    weights go up and down are sorted by increasing weight; equal weights in such a set then become
 *                    slightly different, in the order given
 * Returns 0; TVX_ERROR_NULL_ARGUMENT a required array is null; TVX_ERROR_INVALID_ARGUMENT negative nummembers, unknown
 * type, NaN or infinity; TVX_ERROR_INDEX_OUT_OF_RANGE a variable or a start out of range; TVX_ERROR_DUPLICATES a
 * variable twice in one set. */
TVX_API int TVXaddsos(TVXmodel *model, int numsos, int nummembers, const int *types,
                      const int *beg, const int *ind, const double *weight);

/* Queues deletions. Indices behind a deleted element move up at the update; a deleted variable also leaves its SOS.
 *   ind  [numdel] may hold an index twice
 * Returns 0; TVX_ERROR_NULL_ARGUMENT ind is null; TVX_ERROR_INDEX_OUT_OF_RANGE an index out of range. */
TVX_API int TVXdelvars(TVXmodel *model, int numdel, const int *ind);
TVX_API int TVXdelconstrs(TVXmodel *model, int numdel, const int *ind);
TVX_API int TVXdelsos(TVXmodel *model, int numdel, const int *ind);

/* Queues new values of coefficients, stored or not; a value of 0 removes the coefficient.
 *   cind, vind, val  [numchgs] constraint, variable and value; of two changes to one place the later counts
 * Returns 0; TVX_ERROR_NULL_ARGUMENT an array is null; TVX_ERROR_INVALID_ARGUMENT NaN or infinity;
 * TVX_ERROR_INDEX_OUT_OF_RANGE an index out of range. */
TVX_API int TVXchgcoeffs(TVXmodel *model, int numchgs, const int *cind, const int *vind,
                         const double *val);

/* One coefficient.
 *   value_out  out  0 for a coefficient that is not stored
 * Returns 0; TVX_ERROR_NULL_ARGUMENT value_out is null; TVX_ERROR_INDEX_OUT_OF_RANGE row or variable out of range. */
TVX_API int TVXgetcoeff(TVXmodel *model, int row, int var, double *value_out);

/* The coefficients of len consecutive variables (columns), or constraints (rows), from start on.
 *   numnz_out         out  their number
 *   vbeg              out  [len] start of each in vind, the first is 0
 *   vind, vval        out  [*numnz_out] constraints (variables) and coefficients. Without all three arrays only the
 *                          number is told, so that a first call can ask for the room needed
 * Columns list their entries in the order in which they came, rows by increasing variable.
 * Returns 0; TVX_ERROR_NULL_ARGUMENT numnz_out is null; TVX_ERROR_INDEX_OUT_OF_RANGE len below 1 or elements that do
 * not exist. */
TVX_API int TVXgetvars(TVXmodel *model, int *numnz_out, int *vbeg, int *vind, double *vval,
                       int start, int len);
TVX_API int TVXgetconstrs(TVXmodel *model, int *numnz_out, int *cbeg, int *cind,
                          double *cval, int start, int len);

/* len consecutive special ordered sets, in the same way.
 *   types  out  [len] 1 or 2; may be null
 * Returns as TVXgetvars. */
TVX_API int TVXgetsos(TVXmodel *model, int *nummembers_out, int *types, int *beg, int *ind,
                      double *weight, int start, int len);

/* ---- Attributes ----
 *
 * Everything about a model is read, and most of it set, by the name of an attribute. An attribute
 * has a type (char, int, double or string) and a kind: it belongs to the model as a whole, or
 * has one value for each variable, each constraint or each SOS constraint. docs/attributes.md
 * lists all of them. Case, and underscores inside a name, do not matter: "num_vars" is NumVars.
 *
 * The calls form four families of one shape, for each type:
 *   TVX get|set TYPE attr           value of the model            (name, value)
 *   TVX get|set TYPE attrelement    value of one element          (name, index, value)
 *   TVX get|set TYPE attrarray      values of consecutive ones    (name, start, len, values)
 *   TVX get|set TYPE attrlist       values of elements by index   (name, len, ind, values)
 * with TYPE int, dbl, char or str; there is no char attribute of the model. Arguments:
 *   model    in       not busy with a solve, but for calls from inside its callback
 *   name     in       name of the attribute, of the type of the call
 *   index    in       0 to the number of elements less 1
 *   start    in       first element; ignored when len is negative
 *   len      in       number of elements; for arrays negative means all of them
 *   ind      in       [len] indices of elements, each in range; null means the first len ones
 *   values   out, in  [len] one value per element (value_out, value: one value)
 * Texts read belong to the model and stay valid until its next update.
 *
 * A set queues the value: it shows after TVXupdatemodel or TVXoptimize. Only Start, VBasis, CBasis,
 * VDualNorm and CDualNorm are taken over at once, as the start of the next solve. A set whose
 * arguments are refused changes nothing.
 *
 * Codes: 0; TVX_ERROR_NULL_ARGUMENT for a null model or name, or null values unless there are none;
 * TVX_ERROR_INVALID_ARGUMENT for a bad model, a negative len of a list, a value that is NaN or
 * infinite (an infinite bound is one of magnitude 1e20 and more), or a character or basis code with
 * no meaning; TVX_ERROR_UNKNOWN_ATTRIBUTE for an unknown name, another type, another kind than the
 * call's, or an attribute that may not be set; TVX_ERROR_INDEX_OUT_OF_RANGE;
 * TVX_ERROR_DATA_NOT_AVAILABLE when the attribute has no value at present, for example X
 * without a solution; TVX_ERROR_OPTIMIZATION_IN_PROGRESS; TVX_ERROR_OUT_OF_MEMORY. On failure output
 * values are unspecified, but for those of TVXget*attr, which are set to 0 before anything else.
 */

/* Describes an attribute. Every out pointer may be null; each is -1 after a failure.
 *   datatype_out   0 char, 1 int, 2 double, 3 string
 *   size_out       0 one value for the model, 1 one per variable, 2 per constraint, 3 per SOS
 *   settable_out   1 if a caller may set it, else 0
 * Codes: those of an unknown name and a bad model above. */
TVX_API int TVXgetattrinfo(TVXmodel *model, const char *name, int *datatype_out,
                           int *size_out, int *settable_out);

/* Values of the model. TVXsetstrattr copies its text. */
TVX_API int TVXgetintattr(TVXmodel *model, const char *name, int *value_out);
TVX_API int TVXgetdblattr(TVXmodel *model, const char *name, double *value_out);
TVX_API int TVXgetstrattr(TVXmodel *model, const char *name, char **value_out);
TVX_API int TVXsetintattr(TVXmodel *model, const char *name, int value);
TVX_API int TVXsetdblattr(TVXmodel *model, const char *name, double value);
TVX_API int TVXsetstrattr(TVXmodel *model, const char *name, const char *value);

/* Values of one element. Texts given are copied; a null or empty name asks for the default one. */
TVX_API int TVXgetintattrelement(TVXmodel *model, const char *name, int index,
                                 int *value_out);
TVX_API int TVXgetdblattrelement(TVXmodel *model, const char *name, int index,
                                 double *value_out);
TVX_API int TVXgetcharattrelement(TVXmodel *model, const char *name, int index,
                                  char *value_out);
TVX_API int TVXgetstrattrelement(TVXmodel *model, const char *name, int index,
                                 char **value_out);
TVX_API int TVXsetintattrelement(TVXmodel *model, const char *name, int index, int value);
TVX_API int TVXsetdblattrelement(TVXmodel *model, const char *name, int index,
                                 double value);
TVX_API int TVXsetcharattrelement(TVXmodel *model, const char *name, int index, char value);
TVX_API int TVXsetstrattrelement(TVXmodel *model, const char *name, int index,
                                 const char *value);

/* Values of the elements start to start + len - 1, or of all. */
TVX_API int TVXgetintattrarray(TVXmodel *model, const char *name, int start, int len,
                               int *values);
TVX_API int TVXgetdblattrarray(TVXmodel *model, const char *name, int start, int len,
                               double *values);
TVX_API int TVXgetcharattrarray(TVXmodel *model, const char *name, int start, int len,
                                char *values);
TVX_API int TVXgetstrattrarray(TVXmodel *model, const char *name, int start, int len,
                               char **values);
TVX_API int TVXsetintattrarray(TVXmodel *model, const char *name, int start, int len,
                               const int *values);
TVX_API int TVXsetdblattrarray(TVXmodel *model, const char *name, int start, int len,
                               const double *values);
TVX_API int TVXsetcharattrarray(TVXmodel *model, const char *name, int start, int len,
                                const char *values);
TVX_API int TVXsetstrattrarray(TVXmodel *model, const char *name, int start, int len,
                               char **values);

/* Values of the elements ind[0] to ind[len - 1]; one may be named twice, a later value then wins. */
TVX_API int TVXgetintattrlist(TVXmodel *model, const char *name, int len, const int *ind,
                              int *values);
TVX_API int TVXgetdblattrlist(TVXmodel *model, const char *name, int len, const int *ind,
                              double *values);
TVX_API int TVXgetcharattrlist(TVXmodel *model, const char *name, int len, const int *ind,
                               char *values);
TVX_API int TVXgetstrattrlist(TVXmodel *model, const char *name, int len, const int *ind,
                              char **values);
TVX_API int TVXsetintattrlist(TVXmodel *model, const char *name, int len, const int *ind,
                              const int *values);
TVX_API int TVXsetdblattrlist(TVXmodel *model, const char *name, int len, const int *ind,
                              const double *values);
TVX_API int TVXsetcharattrlist(TVXmodel *model, const char *name, int len, const int *ind,
                               const char *values);
TVX_API int TVXsetstrattrlist(TVXmodel *model, const char *name, int len, const int *ind,
                              char **values);

/* ---- Solving ---- */

/* Updates and solves the model. Infeasible and unbounded models, limits and interruptions are ends
 * like any other: the call returns 0 and the Status attribute tells. A linear program is solved by
 * the method of LPMethod; solved again without a change it is not solved anew, and after a limit
 * or an interruption it goes on from where it stopped. A basis set through VBasis and CBasis
 * since the last solve is its start. A model with integer or semi-continuous variables or SOS
 * constraints (a MIP) is solved by branch and bound, up to MIPGap or MIPGapAbs between ObjVal and
 * ObjBound; after a limit or an interruption the search goes on from where it stopped, as long as
 * model, tolerances, Cutoff, Presolve, TARV_PAR_DUALREDUCTION and MIPFocus stay. Values of the
 * attribute Start, all or some, are a first solution, or what one is sought around.
 *   model   in, out
 * Codes: 0; TVX_ERROR_OPTIMIZATION_IN_PROGRESS also when called from inside a callback;
 *   TVX_ERROR_OUT_OF_MEMORY, with "Optimization exhausted available memory" when nothing more
 *   specific is known: Status is then TVX_LOADED and the model as usable as before; any code that
 *   a callback returned.
 * Parameters read: all; those of limits, tolerances and LPMethod matter most. With ResultFile set,
 *   the model or its result is written under that name after a solve; failing to do so is
 *   told in the log and does not change the code. When the solve leaves no solution or basis to
 *   write (.sol, .mst, .bas), or fails, an older file of that name is removed.
 * Sets: the attributes of results, see docs/attributes.md. */
TVX_API int TVXoptimize(TVXmodel *model);

/* Asks the solve that runs on this model to stop soon; TVXoptimize then returns 0 with Status 11 (interrupted), unless
 * it ends by itself first. Returns at once. May be called from any thread and from a signal handler. Without a running
 * solve, and for a model that is not valid, nothing happens: the next TVXoptimize starts afresh. */
TVX_API void TVXterminate(TVXmodel *model);

/* Ends the solve that is about to run on this model at the first interrupt from the console (Ctrl-C) from now on, as by
 * TVXterminate, with the line "Interrupt request received"; a second interrupt ends the program as usual. The signal
 * SIGTERM does the same, unless the program has a handler for it or ignores it. What both meant before stands again
 * after the solve, or when the model is freed. One model at a time can be watched; where interrupts are ignored they
 * stay ignored. Not from several threads at once.
 * Returns 0. */
TVX_API int TVXsetsignal(TVXmodel *model);

/* What would branching do? For each candidate variable of an optimal LP, with value x and d = floor(x + IntFeasTol):
 * the optimal objective with x <= d, and with x >= d + 1, all else as it is. The model stays as it was: bounds,
 * solution, basis, counts. Queued changes do not count.
 *   numcands          in   0 or more
 *   ind               in   [numcands] the variables
 *   iterations        in   limit of the dual simplex iterations for each side, 0 or more
 *   down_out, up_out  out  [numcands] the objective; a bound on it where the limit was reached or numeric trouble
 *                          stopped the run; 1e100, or -1e100 for a maximise model, where there is no feasible point or
 *                          none within Cutoff. Where the optimum itself is as bad as that or worse the largest
 *                          number of its sign, 1.8e308, stands in its place. An objective is never exactly either, nor
 *                          NaN or infinite. Either may be null, and its sides are left out then
 *   status_out        out  2 done; 9 TimeLimit reached (counted from this call) and 11 stopped by TVXterminate: sides
 *                          that were not finished show a bound; 0 on failure. May be null
 * Nothing is logged. Parameters read: IntFeasTol, TimeLimit, Cutoff, SimplexPricing, tolerances.
 * Returns 0; TVX_ERROR_NULL_ARGUMENT ind is null; TVX_ERROR_INVALID_ARGUMENT a negative count or limit;
 * TVX_ERROR_DATA_NOT_AVAILABLE without an optimal LP solution (Status 2, no MIP); TVX_ERROR_INDEX_OUT_OF_RANGE a
 * variable out of range; TVX_ERROR_OPTIMIZATION_IN_PROGRESS from a callback. */
TVX_API int TVXstrongbranch(TVXmodel *model, int numcands, const int *ind,
                            double iterations, double *down_out, double *up_out,
                            int *status_out);

/* ---- Callbacks ----
 *
 * One function of the caller's is called at certain moments of a solve, on the thread that solves. It may ask for what
 * is known there (TVXcbget) and stop the solve: by a result other than 0, which becomes the code of TVXoptimize, or by
 * TVXterminate, after which TVXoptimize returns 0; Status is TVX_INTERRUPTED either way. Once the solve was asked to
 * stop only messages still reach the function. It may call what reads the model; what changes it waits for the next
 * update. It must not free the model, nor leave by an exception or a long jump.
 */

/* Where the function is called from. Later versions may call it from more places. */
#define TVX_WHERE_POLLING 0  /* now and then, nothing to report */
#define TVX_WHERE_PRESOLVE 1 /* between and within reductions */
#define TVX_WHERE_SIMPLEX 2  /* every iteration */
#define TVX_WHERE_MIP                                                                      \
    3 /* a line of the MIP log: a node, or a solution of a start or of the caller's */
#define TVX_WHERE_SOLUTION 4 /* a new MIP solution */
#define TVX_WHERE_NODE 5     /* a MIP node was solved; again after cuts were handed in */
#define TVX_WHERE_MESSAGE 6  /* a line is logged, also outside a solve, printed or not */
#define TVX_WHERE_BARRIER 7  /* an iteration of the barrier method */

/* What it may ask for: int, unless told otherwise. The barrier has no moments yet. Objectives and bounds
 * are in the sense of the model; without a solution the best objective is 1e100, of a maximise model -1e100. */
#define TVX_CB_PRESOLVE_COLUMNS 1000      /* columns removed */
#define TVX_CB_PRESOLVE_ROWS 1001         /* rows removed */
#define TVX_CB_PRESOLVE_EQUATIONS 1002    /* inequalities turned into equations */
#define TVX_CB_PRESOLVE_BOUNDS 1003       /* bounds changed */
#define TVX_CB_PRESOLVE_COEFFICIENTS 1004 /* coefficients changed */
#define TVX_CB_SIMPLEX_ITERATIONS 2000    /* double: iterations of this solve so far */
#define TVX_CB_SIMPLEX_OBJECTIVE 2001 /* double: objective, of the model as it was given */
#define TVX_CB_SIMPLEX_PRIMAL_INFEASIBILITY                                                \
    2002 /* double: sum of primal infeasibilities, in the solver's scaling */
#define TVX_CB_SIMPLEX_DUAL_INFEASIBILITY                                                  \
    2003 /* double: sum of dual infeasibilities, in the solver's scaling */
#define TVX_CB_SIMPLEX_PERTURBED                                                           \
    2004 /* costs and bounds: 0 the true ones, 1 some were shifted, 2 perturbed */
#define TVX_CB_MIP_OBJECTIVE 3000      /* double: best objective */
#define TVX_CB_MIP_BOUND 3001          /* double: best bound */
#define TVX_CB_MIP_NODES 3002          /* double: nodes explored */
#define TVX_CB_MIP_SOLUTIONS 3003      /* solutions found */
#define TVX_CB_MIP_CUTS 3004           /* cuts in use: so far those handed in */
#define TVX_CB_MIP_OPEN_NODES 3005     /* double: nodes still open */
#define TVX_CB_MIP_ITERATIONS 3006     /* double: simplex iterations */
#define TVX_CB_SOLUTION_VALUES 4001    /* double [NumVars]: the new solution */
#define TVX_CB_SOLUTION_OBJECTIVE 4002 /* double: its objective */
#define TVX_CB_SOLUTION_BEST 4003      /* double: best objective */
#define TVX_CB_SOLUTION_BOUND 4004     /* double: best bound */
#define TVX_CB_SOLUTION_NODES 4005     /* double: nodes explored */
#define TVX_CB_SOLUTION_COUNT 4006     /* solutions found */
#define TVX_CB_NODE_STATUS                                                                 \
    5001 /* of the node relaxation: 2 optimal, 3 infeasible, 6 cut off, 1 not known */
#define TVX_CB_NODE_VALUES 5002    /* double [NumVars]: its solution */
#define TVX_CB_NODE_BEST 5003      /* double: best objective */
#define TVX_CB_NODE_BOUND 5004     /* double: best bound */
#define TVX_CB_NODE_NODES 5005     /* double: nodes explored */
#define TVX_CB_NODE_SOLUTIONS 5006 /* solutions found */
#define TVX_CB_MESSAGE_TEXT 6001   /* const char *: the line, valid during the call */
#define TVX_CB_SECONDS 6002 /* double: seconds since TVXoptimize began; from anywhere */
#define TVX_CB_BARRIER_ITERATIONS 7001           /* iterations */
#define TVX_CB_BARRIER_PRIMAL_OBJECTIVE 7002     /* double: primal objective */
#define TVX_CB_BARRIER_DUAL_OBJECTIVE 7003       /* double: dual objective */
#define TVX_CB_BARRIER_PRIMAL_INFEASIBILITY 7004 /* double: primal infeasibility */
#define TVX_CB_BARRIER_DUAL_INFEASIBILITY 7005   /* double: dual infeasibility */
#define TVX_CB_BARRIER_COMPLEMENTARITY 7006      /* double: complementarity */

/* The caller's function.
 *   model    in  whose solve it is
 *   cbdata   in  for the calls below, valid during the call
 *   where    in  TVX_WHERE_POLLING ... TVX_WHERE_BARRIER
 *   usrdata  in  as given to TVXsetcallbackfunc */
typedef int (*TVXcallback)(TVXmodel *model, void *cbdata, int where, void *usrdata);

/* Installs the function for all later solves of this model, or removes it when it is null. Copies of the model do not
 * inherit it.
 * Returns 0. */
TVX_API int TVXsetcallbackfunc(TVXmodel *model, TVXcallback function, void *usrdata);

/* The function installed, or null.
 * Returns 0; TVX_ERROR_NULL_ARGUMENT function_out is null. */
TVX_API int TVXgetcallbackfunc(TVXmodel *model, TVXcallback *function_out);

/* Inside the function: what is known at this moment.
 *   cbdata, where  in   as the function got them
 *   what           in   one of the codes above that belong to where
 *   result_out     out  int, double, const char *, or the caller's double [NumVars], as the code tells
 * Returns 0; TVX_ERROR_NULL_ARGUMENT result_out is null; TVX_ERROR_DATA_NOT_AVAILABLE the array is not known;
 * TVX_ERROR_CALLBACK no such what here, or cbdata is not valid. */
TVX_API int TVXcbget(void *cbdata, int where, int what, void *result_out);

/* The type of what a code stands for.
 *   type_out  out  1 int, 2 double, 3 const char *
 *   size_out  out  1 for an array, else 0
 * Returns 0; TVX_ERROR_NULL_ARGUMENT an out argument is null; TVX_ERROR_CALLBACK no such code, or cbdata is not
 * valid. */
TVX_API int TVXgetcbwhatinfo(void *cbdata, int what, int *type_out, int *size_out);

/* Inside the function, at TVX_WHERE_MIP, TVX_WHERE_SOLUTION and TVX_WHERE_NODE: hands a point to the search.
 *   cbdata    in  as the function got it
 *   solution  in  [NumVars] the values; 1e100 or more where one is not known. What is not known, outside the bounds or
 *                 not whole where it should be is sought, in a search of at most SubMIPNodes nodes
 * The point becomes the best solution if it satisfies the model, and all cuts handed in, and is better than the best one
 * so far; else nothing happens: read TVX_CB_MIP_SOLUTIONS, or its like, to know. The function is called with
 * TVX_WHERE_SOLUTION for it, from inside this call.
 * Returns 0, also for a point that is not taken; TVX_ERROR_NULL_ARGUMENT solution is null;
 * TVX_ERROR_CALLBACK a value is NaN, no search is at work here, or cbdata is not valid; TVX_ERROR_OUT_OF_MEMORY. */
TVX_API int TVXcbsolution(void *cbdata, const double *solution);

/* Inside the function, at TVX_WHERE_NODE: hands in a row  sum of cutval x <= cutrhs,  or >=. From then on, until the end
 * of the search, it is a constraint of the model: it may cut off the solution of the node's relaxation, solutions of the
 * integer model too (a lazy constraint), and the best solution so far, which is then dropped. After the function has
 * returned the relaxation of the node is solved again, and the function called again, until it hands in nothing more: so
 * hand in only what the node's solution violates. No later point that violates a row handed in is accepted.
 *   cbdata    in  as the function got it
 *   cutlen    in  entries, 0 or more
 *   cutind    in  [cutlen] variables; one may be named twice, the values are added then
 *   cutval    in  [cutlen] coefficients
 *   cutsense  in  '<' or '>'; any other sense counts as '<'
 *   cutrhs    in
 * Points that need lazy constraints have to be seen at nodes: a solution that a start, TVXcbsolution or a heuristic of the
 * search has found is accepted without a call at a node, and only announced at TVX_WHERE_SOLUTION, where no cuts can be
 * handed in. A row that the next node hands in still takes it away if it violates the row. Heuristics=0 lets all
 * solutions of the search come from nodes.
 * Presolve works on the model as it was given. PreCrush=1 keeps the columns that a cut may need; without it a cut over a
 * column that presolve has removed may be refused. Rows that do not follow from the model (lazy constraints) need both
 * Presolve=0 and TARV_PAR_DUALREDUCTION=0: presolve might otherwise keep only such solutions as the row excludes, or
 * solve the model without a node at which the function could be asked. A warning is printed when a row excludes an
 * integer solution while they are on.
 * Returns 0; TVX_ERROR_NULL_ARGUMENT an array is null and cutlen is not 0; TVX_ERROR_CALLBACK not at a node, cutlen is
 * negative, a variable is out of range, a value is NaN or infinite, the cut cannot be stated for the presolved model
 * ("Presolve has removed columns of the cut: set parameter PreCrush"), or cbdata is not valid; TVX_ERROR_OUT_OF_MEMORY. */
TVX_API int TVXcbcut(void *cbdata, int cutlen, const int *cutind, const double *cutval,
                     char cutsense, double cutrhs);

/* ---- Files ----
 *
 * What a file is follows from the end of its name, in any case: .mps and .rew models in MPS format, .lp, .rlp and .ilp
 * models in LP format, .bas bases, .mst MIP starts, .sol solutions, .prm parameters; with .gz or .bz2 behind it the
 * file is compressed by the commands gzip and bzip2, which must be installed. docs/formats.md describes all of them.
 * Texts of errors name the line of the file where there is one; what was odd in a file that was read is told in the
 * log.
 */

/* Reads a model from a file.
 *   filename   in   when no file of this name opens, it is tried with .gz, .bz2, .mps, .mps.gz, ... behind it
 *   model_out  out  the model, on a private copy of env; null when the call fails. Free with TVXfreemodel
 * Returns 0; TVX_ERROR_OUT_OF_MEMORY; TVX_ERROR_NULL_ARGUMENT model_out is null; TVX_ERROR_INVALID_ARGUMENT env is not
 * alive, filename is null, or no such file opens; TVX_ERROR_FILE_READ the file is of another type, damaged, or no
 * model. */
TVX_API int TVXreadmodel(TVXenv *env, const char *filename, TVXmodel **model_out);

/* Reads what belongs to a model: a basis (.bas) or a MIP start (.mst), from which the next solve starts, or parameters
 * (.prm), for this model alone (see TVXreadparams).
 *   filename  in  also tried with .gz and .bz2 behind it
 * Returns 0; TVX_ERROR_INVALID_ARGUMENT filename is null or no such file opens; TVX_ERROR_FILE_READ the file is of
 * another type, damaged, or a line of a MIP start is not understood: no value is set then. A basis file that is damaged
 * or names what the model does not have sets no basis and returns 0 all the same, with the reason in the log and in the
 * text of the error. */
TVX_API int TVXread(TVXmodel *model, const char *filename);

/* Writes the model (.mps or .lp; .rew and .rlp with numbers for names), its basis (.bas), its solution (.sol), its
 * solution as a MIP start (.mst), or its parameters (.prm). Queued changes are not written.
 *   filename  in  is replaced
 * Returns 0; TVX_ERROR_OUT_OF_MEMORY; TVX_ERROR_INVALID_ARGUMENT a parameter file does not open;
 * TVX_ERROR_DATA_NOT_AVAILABLE there is no solution, basis or IIS (.ilp) to write; TVX_ERROR_FILE_WRITE filename is
 * null or of unknown type, the file does not open, or could not be written to its end: it is removed then. */
TVX_API int TVXwrite(TVXmodel *model, const char *filename);

#ifdef __cplusplus
}
#endif
#endif
