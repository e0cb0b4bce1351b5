// attribute_texts.h -- what every attribute tells, in the order and the sections of docs/attributes.md
//
// Data and words for it, and no include: the command line and the program that writes docs/attributes.md take their
// texts from here as well. Type, kind, and whether an attribute may be set stand in attribute_table.cpp only. Names
// are between backticks, as the page wants them.
#pragma once

enum class AttributeSection {
    CONTENT,
    STATISTICS,
    RESULTS,
    SOLUTION,
    BASIS,
    QUALITY,
    SENSITIVITY,
    INFEASIBLE
};

enum class AttributeNote {
    NONE,
    AT_ONCE, // what is set is the start of the next solve, without an update
    NOT_YET  // nothing fills it: it never has a value, or is always 0
};

struct AttributeText {
    AttributeSection section;
    const char *names[2]; // as attribute_table.cpp spells them; the second one may be null
    AttributeNote note;
    const char *means; // and when there is no value, where its section does not tell
};

struct AttributeSectionText {
    const char *title;
    const char *intro; // what holds for each of its attributes; may be empty
    const char *more;  // for the page alone, behind the table; may be empty
};

namespace attribute_texts
{
// Words for the numbers that TVXgetattrinfo gives.
inline constexpr const char *types[] = {"char", "int", "double", "string"};
inline constexpr const char *kinds[] = {"model", "variable", "constraint", "SOS"};
constexpr const char *set_word(bool settable, AttributeNote note)
{
    if (!settable) return "no";
    return note == AttributeNote::AT_ONCE ? "at once" : "yes";
}

// clang-format off
inline constexpr AttributeSectionText sections[] = { // by AttributeSection
    {"Content", "",
     "A range constraint is an equality with one more variable, named `Rg` and the constraint's name, which counts and "
     "shows\nlike any other variable.\n"},
    {"Statistics of the content",
     "Over all coefficients of a kind that are not zero; 0 when there is none. To judge whether a model is well scaled.",
     ""},
    {"Results of a solve", "", ""},
    {"Solution",
     "`X` and `Slack` exist for an LP under `Status` 2, 6, 7, 9, 11, 12 and 13 (only under 2 they are a solution: "
     "otherwise where the simplex stood, if it had begun), for a MIP when it has found a solution. `RC` and `Pi` exist "
     "for an LP only, under the same statuses.",
     "So that optimality can be verified, with s = `ModelSense` and all else as read:\n"
     "\n"
     "- s · `Pi` ≤ 0 in `<` rows, ≥ 0 in `>` rows, any sign in `=` rows; `Pi` · `Slack` = 0;\n"
     "- s · `RC` ≥ 0 for a variable at its lower bound, ≤ 0 at its upper bound, = 0 between them;\n"
     "- `ObjVal` = `ObjCon` + Σ `Obj` · `X` = `ObjCon` + Σ `Pi` · `RHS` + Σ `RC` · `X`.\n"
     "\n"
     "All hold within `FeasibilityTol` and `OptimalityTol` of the scaled model; the quality attributes measure by how "
     "much.\n"},
    {"Basis",
     "For an LP only. A start basis needs all of `VBasis` and `CBasis`, with as many basic entries as there are "
     "constraints; otherwise it is discarded with a warning at the next update. Norms can be set only after a basis.",
     ""},
    {"Quality of the solution",
     "How far the last solution is from satisfying the model, computed at the first question from the model and the "
     "solution alone, with sums of higher precision. Each measure has three attributes: the maximum, with `Sum` behind "
     "the name the sum, with `Index` the place of the maximum (-1 when nothing is violated). With an `S` before the "
     "last word the measure is taken on the scaled model that the simplex worked on. They exist where `X` does; for a "
     "MIP only `BoundVio`, `ConstrVio` and `IntVio`.",
     "The signs that `DualVio` measures are the first two of the conditions above.\n"
     "\n"
     "A variable or slack counts as being at a bound when its distance is at most `FeasibilityTol` plus 1e-9 times the "
     "largest\nnumber it was computed from.\n"},
    {"Sensitivity",
     "How far one number of a solved LP may move, all others staying, until the optimal basis changes; -1e100 and 1e100 "
     "where it never does. There for `Status` 2 of a model that is no MIP. The first question after a solve may factor "
     "the basis once; each element then costs one solve with the factors.",
     "While a bound moves, a nonbasic variable that stands at it moves along, and `ObjVal` by `RC` per unit; a basic one "
     "stays,\nso its bounds may come up to its value. A variable with `LB` equal to `UB` stands at the bound that its "
     "`RC` pushes it to:\nmoving the other one away changes nothing. When several bases are optimal, the ranges are "
     "those of the one that was found.\n"},
    {"Infeasible subsystems",
     "An irreducible inconsistent subsystem is a part of an infeasible model that is infeasible by itself, and feasible "
     "without any one of its bounds and constraints.",
     ""},
};

inline constexpr AttributeSection CONTENT = AttributeSection::CONTENT, STATISTICS = AttributeSection::STATISTICS,
    RESULTS = AttributeSection::RESULTS, SOLUTION = AttributeSection::SOLUTION, BASIS = AttributeSection::BASIS,
    QUALITY = AttributeSection::QUALITY, SENSITIVITY = AttributeSection::SENSITIVITY,
    INFEASIBLE = AttributeSection::INFEASIBLE;
inline constexpr AttributeNote NONE = AttributeNote::NONE, AT_ONCE = AttributeNote::AT_ONCE,
    NOT_YET = AttributeNote::NOT_YET;
inline constexpr const char *PLACE_VARIABLE = "Index of the variable where the measure is largest.";
inline constexpr const char *PLACE_CONSTRAINT = "Index of the constraint where the measure is largest.";
inline constexpr const char *PLACE_EITHER = "Index of the variable, or `NumVars` plus that of the constraint, where the measure is largest.";

inline constexpr AttributeText rows[] = {
    {CONTENT, {"NumConstrs"}, NONE, "Number of constraints."},
    {CONTENT, {"NumVars"}, NONE, "Number of variables."},
    {CONTENT, {"NumSOS"}, NONE, "Number of SOS constraints."},
    {CONTENT, {"NumNZs"}, NONE, "Number of coefficients stored in the constraint matrix."},
    {CONTENT, {"NumIntVars"}, NONE,
     "Number of variables of a type other than `C`: integer, binary, semi-continuous, semi-integer."},
    {CONTENT, {"NumBinVars"}, NONE, "Number of variables of type `B`."},
    {CONTENT, {"ModelName"}, NONE, "Name of the model; empty when it has none."},
    {CONTENT, {"ModelSense"}, NONE, "1 minimise, -1 maximise; a value below 1 is taken as -1, any other as 1."},
    {CONTENT, {"ObjCon"}, NONE, "Constant of the objective."},
    {CONTENT, {"IsMIP"}, NONE, "1 if the model has a variable of a type other than `C`, or an SOS constraint; else 0."},
    {CONTENT, {"LB"}, NONE, "Lower bound; -1e100 for none. To set none, give -1e20 or less."},
    {CONTENT, {"UB"}, NONE, "Upper bound; 1e100 for none. To set none, give 1e20 or more."},
    {CONTENT, {"Obj"}, NONE, "Coefficient in the objective."},
    {CONTENT, {"VType"}, NONE,
     "`C` continuous, `B` binary, `I` integer, `S` semi-continuous (zero, or within its bounds), `N` semi-integer; bounds "
     "as given stay known when the type rounds them."},
    {CONTENT, {"Start"}, AT_ONCE,
     "Start value for a MIP; 1e101 where none was given, and a value of magnitude 1e100 or more takes one back. No value "
     "before one has been set."},
    {CONTENT, {"VarName"}, NONE,
     "Name; a variable without one shows `C` and its index. Setting an empty text asks for that."},
    {CONTENT, {"RHS"}, NONE,
     "Right-hand side; 1e20 and more, or -1e20 and less, is infinite: the constraint asks for nothing, or makes the model "
     "infeasible."},
    {CONTENT, {"Sense"}, NONE,
     "`<`, `>` or `=`; `L`, `G` and `E` are understood when set, any other character stands and counts as `<`."},
    {CONTENT, {"ConstrName"}, NONE,
     "Name; a constraint without one shows `R` and its index. Setting an empty text asks for that."},

    {STATISTICS, {"MaxCoeff"}, NONE, "Largest magnitude in the constraint matrix."},
    {STATISTICS, {"MinCoeff"}, NONE, "Smallest magnitude in the constraint matrix."},
    {STATISTICS, {"MaxBound"}, NONE, "Largest finite upper bound, with its sign."},
    {STATISTICS, {"MinBound"}, NONE, "Smallest finite lower bound, with its sign."},
    {STATISTICS, {"MaxObjCoeff"}, NONE, "Largest magnitude in the objective."},
    {STATISTICS, {"MinObjCoeff"}, NONE, "Smallest magnitude in the objective."},
    {STATISTICS, {"MaxRHS"}, NONE, "Largest magnitude of a right-hand side."},
    {STATISTICS, {"MinRHS"}, NONE, "Smallest magnitude of a right-hand side."},

    {RESULTS, {"Status"}, NONE,
     "How the last solve ended: 1 loaded, not solved since the last change; 2 optimal; 3 infeasible; 4 infeasible or "
     "unbounded; 5 unbounded; 6 objective beyond `Cutoff`; 7 `IterationLimit`; 8 `NodeLimit`; 9 `TimeLimit`; 10 "
     "`SolutionLimit`; 11 interrupted; 12 numeric trouble; 13 sub-optimal. 0 after an update that failed half-way."},
    {RESULTS, {"SolCount"}, NONE, "Solutions found; for an LP 1 when optimal, else 0."},
    {RESULTS, {"Runtime"}, NONE, "Seconds of the last solve; 0 before one and after an update."},
    {RESULTS, {"ObjVal"}, NONE,
     "Objective of the solution, constant included. No value under `Status` 1, 3, 4 and 5."},
    {RESULTS, {"ObjBound"}, NONE,
     "Best bound on the objective of a MIP: no solution is better. No value under `Status` 1, 3, 4 and 5."},
    {RESULTS, {"IterCount"}, NONE, "Simplex iterations. No value under `Status` 1."},
    {RESULTS, {"BarIterCount"}, NOT_YET, "Barrier iterations. No value under `Status` 1."},
    {RESULTS, {"NodeCount"}, NONE, "Nodes of a MIP; for an LP an estimate of the work done. No value under `Status` 1."},

    {SOLUTION, {"X"}, NONE, "Value of the variable in the solution."},
    {SOLUTION, {"Xn"}, NONE,
     "Value in the solution of number `SolutionNumber` (a parameter; 0 is the best one). Exists where `X` does, if there "
     "is a solution of that number."},
    {SOLUTION, {"RC"}, NONE,
     "Reduced cost: `Obj` of the variable minus the sum of coefficient times `Pi` over its rows, in units of the objective "
     "per unit of the variable."},
    {SOLUTION, {"Slack"}, NONE,
     "`RHS` minus the activity of the row: at least 0 in a `<` row that holds, at most 0 in a `>` row."},
    {SOLUTION, {"Pi"}, NONE, "Dual value: change of the optimal objective per unit of `RHS`."},

    {BASIS, {"VBasis"}, AT_ONCE,
     "0 basic, -1 nonbasic at the lower bound, -2 nonbasic at the upper bound, -3 superbasic (nonbasic at no bound). "
     "Exists where `X` does."},
    {BASIS, {"CBasis"}, AT_ONCE,
     "0: the slack is basic, -1: nonbasic, the row holds with equality. Exists where `X` does."},
    {BASIS, {"HasDualNorm"}, NONE,
     "Pricing norms held with the basis: 0 none, 1 those of the dual simplex, 2 those of the primal."},
    {BASIS, {"VDualNorm"}, AT_ONCE, "Pricing norm. No value where `HasDualNorm` is 0."},
    {BASIS, {"CDualNorm"}, AT_ONCE, "Pricing norm of the slack. No value where `HasDualNorm` is 0."},

    {QUALITY, {"BoundVio", "BoundVioSum"}, NONE,
     "By how much a variable lies outside its bounds; a semi-continuous variable at 0 does not."},
    {QUALITY, {"BoundSVio", "BoundSVioSum"}, NONE, "The same as `BoundVio`, scaled."},
    {QUALITY, {"BoundVioIndex", "BoundSVioIndex"}, NONE, PLACE_VARIABLE},
    {QUALITY, {"ConstrVio", "ConstrVioSum"}, NONE,
     "By how much a row's activity is on the wrong side of its right-hand side."},
    {QUALITY, {"ConstrSVio", "ConstrSVioSum"}, NONE, "The same as `ConstrVio`, scaled."},
    {QUALITY, {"ConstrVioIndex", "ConstrSVioIndex"}, NONE, PLACE_CONSTRAINT},
    {QUALITY, {"ConstrResidual", "ConstrResidualSum"}, NONE,
     "Magnitude of `Slack` in rows whose slack the basis holds at 0, and in equalities."},
    {QUALITY, {"ConstrSResidual", "ConstrSResidualSum"}, NONE, "The same as `ConstrResidual`, scaled."},
    {QUALITY, {"ConstrResidualIndex", "ConstrSResidualIndex"}, NONE, PLACE_CONSTRAINT},
    {QUALITY, {"DualVio", "DualVioSum"}, NONE,
     "Magnitude of a dual value or reduced cost whose sign is wrong for where its slack or variable stands."},
    {QUALITY, {"DualSVio", "DualSVioSum"}, NONE, "The same as `DualVio`, scaled."},
    {QUALITY, {"DualVioIndex", "DualSVioIndex"}, NONE, PLACE_EITHER},
    {QUALITY, {"DualResidual", "DualResidualSum"}, NONE,
     "Difference of `RC` and what its definition gives for `Pi`."},
    {QUALITY, {"DualSResidual", "DualSResidualSum"}, NONE, "The same as `DualResidual`, scaled."},
    {QUALITY, {"DualResidualIndex", "DualSResidualIndex"}, NONE, PLACE_VARIABLE},
    {QUALITY, {"ComplVio", "ComplVioSum"}, NONE,
     "Dual value or reduced cost times the distance to the bound that it prices."},
    {QUALITY, {"ComplVioIndex"}, NONE, PLACE_EITHER},
    {QUALITY, {"IntVio", "IntVioSum"}, NONE, "Distance of an integer variable to the nearest integer."},
    {QUALITY, {"IntVioIndex"}, NONE, PLACE_VARIABLE},
    {QUALITY, {"Kappa"}, NONE,
     "Condition of the scaled basis matrix in the 1-norm, estimated from below, as a rule within a factor of three: a "
     "number from 1 to 1e100, 1 for a model without constraints, 1e100 where the estimate is no smaller number. A basis "
     "that proves to be singular when it is factored is repaired first, with slacks in place of some variables, and the "
     "condition is that of the repaired one; no value where no factors can be made."},
    {QUALITY, {"N2Kappa"}, NONE, "The same as `Kappa` in the 2-norm, as a rule to a few digits."},

    {SENSITIVITY, {"SAObjLow", "SAObjUp"}, NONE,
     "Range of `Obj` over which the basis stays optimal; `X` does not change, `ObjVal` moves by `X` per unit."},
    {SENSITIVITY, {"SALBLow", "SALBUp"}, NONE,
     "Range of `LB` over which the basis stays feasible, and with it optimal."},
    {SENSITIVITY, {"SAUBLow", "SAUBUp"}, NONE,
     "Range of `UB` over which the basis stays feasible, and with it optimal."},
    {SENSITIVITY, {"SARHSLow", "SARHSUp"}, NONE,
     "Range of `RHS` over which the basis stays feasible, and with it optimal; `ObjVal` moves by `Pi` per unit."},

    {INFEASIBLE, {"IISMinimal"}, NOT_YET, "1 if the subsystem found is proved to be minimal."},
    {INFEASIBLE, {"IISLB", "IISUB"}, NOT_YET, "1 if the bound belongs to the subsystem."},
    {INFEASIBLE, {"IISConstr"}, NOT_YET, "1 if the constraint belongs to the subsystem."},
    {INFEASIBLE, {"IISSOS"}, NOT_YET, "1 if the SOS constraint belongs to the subsystem."},
};
// clang-format on
} // namespace attribute_texts
