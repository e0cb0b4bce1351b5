// model_update_test.cpp -- what an update does inside: which basis survives, what is kept, what is forgotten
#include "model/model_store.h"
#include "model/warm_start.h"
#include "support/model_test.h"
#include <climits>
#include <cmath>
#include <functional>

namespace
{
const int A_ROW = 0; // its slack is nonbasic at the optimum
const int B_ROW = 1; // its slack is basic
const int Y_VAR = 1; // basic
const int Z_VAR = 2; // nonbasic
const double ONE = 1;
constexpr std::nullptr_t NONE = nullptr;

// maximise 3x + 2y + z  subject to  a: x + y + z <= 4,  b: x + 3y <= 7,  c: x - z >= -5,
// x in [0, 3], y and z nonnegative: x = 3 at its bound, y = 1, z = 0; b and c are slack.
struct ModelUpdate : ModelTest {
    void SetUp() override
    {
        load(lp_make({{3, 0, 3}, {2}, {1}},
                     {{{1, 1, 1}, '<', 4}, {{1, 3, 0}, '<', 7}, {{1, 0, -1}, '>', -5}},
                     -1));
    }
    void optimize() { EXPECT_NEAR(objective(), 11, 1e-9); }
    bool live() const { return model->lp.simplex != nullptr; }
    std::vector<int> statuses() // basic is 0
    {
        std::vector<int> list;
        if (const WarmStart *warm = warm_start_usable(model))
            for (const int s : warm->statuses) list.push_back(std::min(s, 0));
        return list;
    }
    void set(const char *name, int index, double value)
    {
        ASSERT_EQ(TVXsetdblattrelement(model, name, index, value), 0);
    }
    void set_basis(const std::vector<int> &vars, const std::vector<int> &constrs)
    {
        ASSERT_EQ(lp_set_basis(model, vars, constrs), 0);
    }
    void update_says(const char *text)
    {
        own()->OutputFlag = 1;
        Output output;
        update();
        own()->OutputFlag = 0;
        EXPECT_EQ(output.text(), text);
    }
};

// ---- Which basis survives ----

TEST_F(ModelUpdate, changed_bounds_keep_the_live_record_unless_a_variable_becomes_free)
{
    optimize();
    set("UB", 0, 2);
    set("LB", Z_VAR, 0.5);
    update();
    EXPECT_TRUE(live());
    EXPECT_EQ(integer("Status"), TVX_LOADED);
    EXPECT_EQ(model->lp.result, nullptr);
    EXPECT_NEAR(objective(), 3 * 2 + 2 * 1.5 + 0.5, 1e-9);
    set("LB", Z_VAR, 0);
    set("UB", 0, 3);
    for (const double bound : {-1e30, 0.0}) { // becoming free, and ceasing to be
        set("LB", Y_VAR, bound);
        update();
        EXPECT_FALSE(live());
        EXPECT_EQ(statuses().size(), 6u);
        optimize();
    }
}

struct Carried {
    const char *what;
    std::function<int(TVXmodel *)> change;
    size_t size; // of the statuses carried over
};

int add_sos(TVXmodel *m)
{
    const int type = 1, beg = 0, ind[] = {0, 1};
    const double weight[] = {1, 2};
    return TVXaddsos(m, 1, 2, &type, &beg, ind, weight);
}

const std::vector<Carried> CHANGES = {
    {"rhs", [](TVXmodel *m) { return TVXsetdblattrelement(m, "RHS", 0, 3); }, 6},
    {"sense", [](TVXmodel *m) { return TVXsetcharattrelement(m, "Sense", 1, '='); }, 6},
    {"cost", [](TVXmodel *m) { return TVXsetdblattrelement(m, "Obj", 0, 9); }, 6},
    {"constant", [](TVXmodel *m) { return TVXsetdblattr(m, "ObjCon", 9); }, 6},
    {"model sense", [](TVXmodel *m) { return TVXsetintattr(m, "ModelSense", 1); }, 6},
    {"added variable",
     [](TVXmodel *m) { return TVXaddvar(m, 1, &B_ROW, &ONE, 1, 0, 1, 'C', NONE); }, 7},
    {"added row",
     [](TVXmodel *m) { return TVXaddconstr(m, 1, &Y_VAR, &ONE, '<', 1, NONE); }, 7},
    {"added range",
     [](TVXmodel *m) { return TVXaddrangeconstr(m, 1, &Y_VAR, &ONE, 0, 1, NONE); }, 8},
    {"deleted slack row", [](TVXmodel *m) { return TVXdelconstrs(m, 1, &B_ROW); }, 5},
    {"deleted nonbasic variable", [](TVXmodel *m) { return TVXdelvars(m, 1, &Z_VAR); }, 5},
    {"coefficient", [](TVXmodel *m) { return TVXchgcoeffs(m, 1, &B_ROW, &Z_VAR, &ONE); },
     6},
    // These break a basis:
    {"deleted basic variable", [](TVXmodel *m) { return TVXdelvars(m, 1, &Y_VAR); }, 0},
    {"deleted tight row", [](TVXmodel *m) { return TVXdelconstrs(m, 1, &A_ROW); }, 0},
    {"type", [](TVXmodel *m) { return TVXsetcharattrelement(m, "VType", 0, 'I'); }, 0},
    {"added integer",
     [](TVXmodel *m) { return TVXaddvar(m, 0, NONE, NONE, 0, 0, 1, 'B', NONE); }, 0},
    {"added SOS", add_sos, 0},
};

TEST_F(ModelUpdate, other_changes_carry_a_basis_over_or_drop_it)
{
    for (const Carried &c : CHANGES) {
        SCOPED_TRACE(c.what);
        SetUp();
        optimize();
        ASSERT_EQ(c.change(model), 0);
        update();
        EXPECT_FALSE(live());
        const std::vector<int> list = statuses();
        EXPECT_EQ(list.size(), c.size);
        if (c.size == 0) continue;
        EXPECT_EQ(std::count(list.begin(), list.end(), 0), model->body->numconstrs);
        const TestModel fresh(TVXcopymodel(model)); // without a start the same optimum
        LpSolution solution;
        ASSERT_EQ(lp_solve(fresh, &solution), 0);
        EXPECT_NEAR(objective(), solution.objval, 1e-7);
    }
}

TEST_F(ModelUpdate, carried_statuses_are_in_their_new_places)
{
    optimize(); // basic: y, slacks of b and c; x at upper, z and slack of a at lower
    ASSERT_EQ(TVXdelvars(model, 1, &Z_VAR), 0);
    ASSERT_EQ(TVXdelconstrs(model, 1, &B_ROW), 0);
    const double lb[] = {0, -1e30, -1e30}, ub[] = {1, 1, 1e30};
    ASSERT_EQ(TVXaddvars(model, 3, 0, NONE, NONE, NONE, NONE, lb, ub, NONE, NONE), 0);
    ASSERT_EQ(TVXaddconstr(model, 1, &Y_VAR, &ONE, '<', 1, NONE), 0);
    ASSERT_EQ(TVXaddrangeconstr(model, 1, &Y_VAR, &ONE, 0, 1, NONE), 0);
    update();
    // x, y | three added | the range variable | a, c | added row | range row
    EXPECT_EQ(statuses(), (std::vector<int>{-2, 0, -1, -2, -3, 0, -1, 0, 0, -1}));
    set("Obj", 0, 4); // carries it over; nonbasics do not stay on bounds that are gone
    set("UB", 0, 1e30);
    set("LB", 2, -1e30);
    set("UB", 3, 1e30);
    set("LB", 4, 1);
    update();
    EXPECT_EQ(statuses(), (std::vector<int>{-1, 0, -2, -3, -1, 0, -1, 0, 0, -1}));
}

TEST_F(ModelUpdate, a_changed_basic_column_asks_for_repair_unless_the_parameter_forbids)
{
    optimize();
    ASSERT_EQ(TVXchgcoeffs(model, 1, &B_ROW, &Y_VAR, &ONE), 0);
    update();
    ASSERT_NE(warm_start_usable(model), nullptr);
    EXPECT_EQ(model->warm_start->repair, 1);
    ASSERT_EQ(TVXoptimize(model), 0);
    own()->TARV_PAR_WARMBASIS = 0;
    const double seven = 7;
    ASSERT_EQ(TVXchgcoeffs(model, 1, &B_ROW, &Y_VAR, &seven), 0);
    update();
    EXPECT_EQ(warm_start_usable(model), nullptr);
}

TEST_F(ModelUpdate, names_and_empty_updates_leave_the_solved_state_and_a_reset_does_not)
{
    optimize();
    ASSERT_EQ(TVXsetstrattrelement(model, "VarName", 1, "renamed"), 0);
    for (int round = 0; round < 2; round++) {
        update();
        EXPECT_EQ(integer("Status"), TVX_OPTIMAL);
        EXPECT_TRUE(live());
        EXPECT_FALSE(model_has_pending(model));
    }
    ASSERT_EQ(TVXresetmodel(model), 0);
    EXPECT_FALSE(live());
    EXPECT_EQ(statuses().size(), 0u);
    EXPECT_EQ(integer("Status"), TVX_LOADED);
    optimize();
}

// ---- The caller's start ----

TEST_F(ModelUpdate, a_start_is_taken_when_it_is_a_basis_and_else_discarded_with_a_warning)
{
    const char *warning = "Warning, invalid warm-start basis discarded\n";
    const int vars[] = {-2, 0, -1};
    ASSERT_EQ(TVXsetintattrarray(model, "VBasis", 0, 3, vars), 0);
    update_says(warning); // CBasis is not set
    set_basis({-2, 0, 0}, {-1, 0, 0});
    update_says(warning); // four are basic
    EXPECT_EQ(warm_start_usable(model), nullptr);
    set_basis({-2, 0, -1}, {-1, 0, 0});
    update_says("");
    EXPECT_EQ(model->warm_start->kind, WARM_CHECKED);
    optimize();
    EXPECT_EQ(dbl("IterCount"), 0) << "it was optimal";
    set_basis({-1, -1, -1}, {0, 0, 0}); // displaces the earlier solve
    update();
    EXPECT_FALSE(live());
    EXPECT_EQ(integer("Status"), TVX_LOADED);
    EXPECT_EQ(statuses(), (std::vector<int>{-1, -1, -1, 0, 0, 0}));
    optimize();
}

TEST_F(ModelUpdate, a_start_survives_changes_of_bounds_with_its_norms)
{
    for (const int code : {-4, 1, INT_MAX, INT_MIN}) {
        const int codes[] = {0, -1, code};
        refused(10003, "Invalid VBasis value " + std::to_string(code),
                TVXsetintattrarray(model, "VBasis", 0, 3, codes));
        EXPECT_EQ(TVXsetintattrarray(model, "CBasis", 0, 3, codes), 10003) << code;
    }
    EXPECT_EQ(TVXsetintattrelement(model, "CBasis", 0, -2), 10003);
    EXPECT_EQ(model->warm_start, nullptr);
    EXPECT_EQ(TVXsetdblattrelement(model, "VDualNorm", 0, 1), 10003) << "no start yet";
    set_basis({-2, 0, -1}, {-1, 0, 0});
    set("VDualNorm", 0, 2);
    set("UB", 0, 2);
    set("RHS", 0, 5);
    update();
    ASSERT_NE(warm_start_usable(model), nullptr);
    EXPECT_EQ(model->warm_start->kind, WARM_CARRIED);
    EXPECT_EQ(model->warm_start->norms.size, 6);
    EXPECT_EQ(statuses(), (std::vector<int>{-2, 0, -1, -1, 0, 0}));
}

TEST_F(ModelUpdate, a_start_point_is_taken_at_once_and_moves_with_its_variables)
{
    double value = 0;
    EXPECT_EQ(TVXgetdblattrelement(model, "Start", 0, &value), 10005);
    set("Start", 1, 2.5);
    EXPECT_EQ(dbl("Start", 1), 2.5);
    EXPECT_EQ(dbl("Start", 0), 1e101); // undefined
    const double start[] = {1, 1e100, 3};
    ASSERT_EQ(TVXsetdblattrarray(model, "Start", 0, 3, start), 0);
    EXPECT_EQ(dbl("Start", 1), 1e101);
    ASSERT_EQ(TVXdelvars(model, 1, &Y_VAR), 0);
    ASSERT_EQ(TVXaddvar(model, 0, NONE, NONE, 0, 0, 1, 'C', NONE), 0);
    update();
    EXPECT_EQ(all("Start", 3), (std::vector<double>{1, 3, 1e101}));
}

// ---- Pieces inside ----

TEST_F(ModelUpdate, names_that_come_and_go_do_not_pile_up)
{
    const std::string name(1000, 'n');
    for (int round = 0; round < 20000; round++) { // 20 MB of names in all
        ASSERT_EQ(TVXsetstrattrelement(model, "VarName", 0, name.c_str()), 0);
        update();
        ASSERT_LT(model->body->name_bytes, 3 << 20);
    }
    EXPECT_EQ(text("VarName", 0), name);
    EXPECT_EQ(text("VarName", 1), "C1");
}

TEST_F(ModelUpdate, duplicate_tests_outlive_their_numbers)
{
    const int ind[] = {0, 1}, twice[] = {2, 2};
    const double val[] = {1, 1};
    ASSERT_EQ(TVXaddvar(model, 2, ind, val, 0, 0, 1, 'C', NONE), 0);
    model->pending->constrs.stamp = INT32_MAX - 1;
    for (int k = 0; k < 4; k++) {
        EXPECT_EQ(TVXaddvar(model, 2, ind, val, 0, 0, 1, 'C', NONE), 0);
        EXPECT_EQ(TVXaddvar(model, 2, twice, val, 0, 0, 1, 'C', NONE), 10018);
    }
    update();
    EXPECT_EQ(integer("NumVars"), 8);
}

#ifdef TVX_DEBUG
TEST_F(ModelUpdate, the_checker_sees_planted_faults)
{
    ModelBody *body = model->body;
    char where[BODY_CHECK_LENGTH];
    ASSERT_EQ(body_build_rows(body), 0);
    // Each fault is planted, seen, and taken back.
    const auto sees = [&](auto &place, auto fault, const char *text) {
        const auto good = place;
        place = static_cast<std::remove_reference_t<decltype(place)>>(fault);
        EXPECT_GT(body_check(body, where), 0) << text;
        EXPECT_STREQ(where, text);
        place = good;
        EXPECT_EQ(body_check(body, where), 0) << where;
    };
    sees(body->numvars, 4, "obj has the wrong size, -1");
    sees(body->sense, 0, "sense, 0");
    sees(body->ub[1], 1e25, "bounds of variable, 1");
    sees(body->bound_kind[1], 3, "bound_kind of variable, 1");
    sees(body->kind_infinity, 1, "bound_kind of variable, 0");
    sees(body->numintvars, 1, "numintvars, -1");
    sees(body->row_flipped, -1, "row_flipped, -1");
    sees(body->vlen[0], 2, "start or length of column, 0");
    sees(body->vind[1], 0, "row index in column, 0");
    sees(body->vind[4], 3, "row index in column, 1");
    sees(body->rhs[2], NAN, "rhs of row, 2");
    sees(body->row_val[0], 9.0, "row-wise copy, column, 0");
}
#endif
} // namespace
