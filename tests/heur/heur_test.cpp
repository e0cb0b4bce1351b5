// heur_test.cpp -- heuristics at a node: what they offer satisfies the rows, and the search finds its records as they were
#include "heur/fix_dive.h"
#include "heur/rounding.h"
#include "support/mip_check.h"
#include "support/mip_gen.h"
#include "support/model_test.h"
#include <cmath>
#include <memory>

namespace
{
using Point = std::vector<double>;

// A node of a search for a model, with an LP solution of the test's choice. What is offered is kept.
struct Node {
    const ModelBody *body;
    std::vector<char> integer;
    PropagationRows *rows = nullptr;
    Domain *bounds = nullptr;
    HeurState *heur = nullptr;
    HeurCall call;
    Point x;
    double prune = 1e100, incumbent = 1e100;
    std::vector<Point> offered;
    std::vector<Point> searched; // lower bounds, then upper ones, of each search inside
    int steps = 1000000;         // after which the search stops

    explicit Node(TVXmodel *model) : body(model->body)
    {
        for (int j = 0; j < body->numvars; j++)
            integer.push_back(body->vtypes.size > 0 &&
                              std::string("BIN").find(body->vtypes[j]) < 3);
        HeurModel shape;
        shape.Body = body;
        shape.IsInteger = integer.data();
        if (propagation_rows_of_body(&rows, body) ||
            domain_create(&bounds, rows, nullptr, nullptr, body->lb.data, body->ub.data,
                          {}))
            abort();
        shape.Rows = rows;
        if (heur_create(shape, &heur)) abort();
        call.Bounds = bounds;
        call.PruneValue = &prune;
        call.Incumbent = &incumbent;
        call.Share = 0.05;
        call.SearchWork = 1e9;
        call.Env = model->env;
        call.Search = {this, offer, search, difference, goes_on};
    }
    ~Node()
    {
        heur_free(heur);
        domain_free(bounds);
        propagation_rows_free(rows);
    }
    Node(const Node &) = delete;
    Node &operator=(const Node &) = delete;

    static int offer(void *owner, const double *point, bool *improved)
    {
        Node *node = static_cast<Node *>(owner);
        node->offered.emplace_back(point, point + node->body->numvars);
        double objective = node->body->objcon;
        for (int j = 0; j < node->body->numvars; j++)
            objective += node->body->obj[j] * point[j];
        *improved = objective < node->prune;
        if (*improved) node->prune = node->incumbent = objective;
        return 0;
    }
    static int search(void *owner, const double *lower, const double *upper, bool *,
                      double *work)
    {
        Node *node = static_cast<Node *>(owner);
        node->searched.emplace_back(lower, lower + node->body->numvars);
        node->searched.emplace_back(upper, upper + node->body->numvars);
        *work = 1;
        return 0;
    }
    static double difference(void *, int j) { return j; }
    static bool goes_on(void *owner) { return static_cast<Node *>(owner)->steps-- > 0; }

    void set_point(const Point &point)
    {
        x = point;
        call.X = x.data();
        call.Objective = body->objcon;
        for (int j = 0; j < body->numvars; j++) call.Objective += body->obj[j] * x[j];
    }
    int run(HeurStage stage, double nodes = 1)
    {
        call.Stage = stage;
        call.Nodes = nodes;
        return stage == HeurStage::NODE ? HeurNode(heur, call) : HeurRoot(heur, call);
    }
};

struct Heuristics : ModelTest {
    std::unique_ptr<Node> node;
    void node_of(const std::string &text, const Point &x)
    {
        load(text);
        ASSERT_NE(model, nullptr);
        node = std::make_unique<Node>(model);
        node->set_point(x);
    }
    void node_of(const LpModel &lp, const Point &x)
    {
        load(lp);
        node = std::make_unique<Node>(model);
        node->set_point(x);
    }
};

// Rows, bounds and integers only: sets and semi-continuous columns are for the search to check.
LpModel without_sets(LpModel lp)
{
    lp.sets.clear();
    for (size_t j = 0; j < lp.types.size(); j++) {
        char &type = lp.types[j];
        if (type == 'S' || type == 'N') lp.lb[j] = std::min(0.0, lp.lb[j]);
        type = type == 'S' ? 'C' : type == 'N' ? 'I' : type;
    }
    return lp;
}

LpModel relaxed(LpModel lp)
{
    lp = mip_rounded(&lp);
    lp.types.clear();
    return lp;
}
} // namespace

TEST_F(Heuristics, locks_count_the_rows_that_a_step_can_violate)
{
    node_of("min x+y+z st x+2y<=4\nx-y>=-2\nx+z=3 bounds y free general x y", {0, 0, 0});
    const HeurState *h = node->heur;
    EXPECT_EQ(h->UpLocks[0], 2); // first and equation
    EXPECT_EQ(h->DownLocks[0], 2);
    EXPECT_EQ(h->UpLocks[1], 2);
    EXPECT_EQ(h->DownLocks[1], 0);
    EXPECT_EQ(h->UpLocks[2], 1);
    EXPECT_EQ(h->DownLocks[2], 1);
}

TEST_F(Heuristics, rounding_takes_the_nearest_integers_within_the_bounds_of_the_node)
{
    node_of("max x+y+w st x+y+w<=10 bounds x<=9 y<=9 w<=2 general x y", {2.4, 3.6, 1.5});
    domain_tighten(node->bounds, 1, BoundSide::UPPER, 3, {ReasonKind::DECISION, -1});
    ASSERT_EQ(node->run(HeurStage::NODE), 0);
    ASSERT_FALSE(node->offered.empty());
    EXPECT_EQ(node->offered[0], (Point{2, 3, 1.5}));
}

TEST_F(Heuristics, shifting_repairs_what_rounding_has_violated)
{
    // Rounding violates both rows; an equation needs exactly one more unit.
    node_of("min 3a+2b+4c st a+b+c=1\n2a+b>=1 binary a b c", {0.4, 0.3, 0.3});
    ASSERT_EQ(node->run(HeurStage::NODE), 0);
    ASSERT_FALSE(node->offered.empty());
    const Point &x = node->offered.back();
    EXPECT_EQ(x[0] + x[1] + x[2], 1);
    EXPECT_GE(2 * x[0] + x[1], 1);
}

TEST_F(Heuristics, members_of_sets_do_not_move)
{
    LpModel lp;
    const int a = lp_add_var(&lp, 1, 0, 5, 'I'), b = lp_add_var(&lp, 5, 0, 5, 'I');
    lp_add_row_entries(&lp, {{a, 1}, {b, 1}}, '>', 3.5);
    lp.sets.push_back({1, {a}});
    node_of(lp, {2.2, 1.3});
    ASSERT_EQ(node->run(HeurStage::NODE), 0);
    ASSERT_FALSE(node->offered.empty());
    EXPECT_EQ(node->offered.back(), (Point{2, 2})); // the cheaper column would do
}

TEST_F(Heuristics, an_lp_over_continuous_columns_repairs_their_rows)
{
    // With z at 0 the flow y1 has to go, and y2 and y3 to grow by as much; w is in none of these rows.
    node_of("min y1+3y2+z-w st y1+y2=4\ny1-9z<=0\ny2-y3=0\nw+v<=3 bounds v<=2 binary z",
            {3, 1, 0.3, 1, 1, 1});
    HeurState *h = node->heur;
    point_round(h, node->call, RoundingInput::LP);
    EXPECT_EQ(h->At.Violated.size, 1);
    ASSERT_EQ(repair_continuous(h, node->call), 0);
    EXPECT_TRUE(point_is_feasible(&h->At));
    const Point expected = {0, 4, 0, 1, 4, 1}; // in the order y1 y2 z w y3 v
    for (size_t j = 0; j < expected.size(); j++)
        EXPECT_NEAR(h->At.X[static_cast<int>(j)], expected[j], 1e-9) << j;
    for (const int place : h->ColPlace) EXPECT_EQ(place, -1);
    for (const int place : h->RowPlace) EXPECT_EQ(place, -1);
}

TEST_F(Heuristics, points_that_cannot_be_better_are_not_offered)
{
    node_of("max x+y st x+y<=10 bounds x<=9 y<=9 general x y", {2.4, 3.6});
    node->prune = -7; // of the minimisation
    ASSERT_EQ(node->run(HeurStage::NODE), 0);
    EXPECT_TRUE(node->offered.empty());
}

TEST_F(Heuristics, stop_between_two_steps_and_at_their_share_of_the_work)
{
    const char *text = "min 3a+2b+4c st a+b+c=1\n2a+b>=1 binary a b c";
    node_of(text, {0.4, 0.3, 0.3}); // rounding alone finds nothing
    node->steps = 0;
    ASSERT_EQ(node->run(HeurStage::NODE), 0);
    EXPECT_TRUE(node->offered.empty());
    node_of(text, {0.4, 0.3, 0.3});
    node->call.HeurWork = node->call.SearchWork; // far beyond the share
    ASSERT_EQ(node->run(HeurStage::NODE), 0);
    EXPECT_EQ(heur_take_work(node->heur), 0);
}

TEST_F(Heuristics, the_end_of_the_root_fixes_most_columns_and_searches_the_rest)
{
    LpModel lp;
    Point x;
    std::vector<std::pair<int, double>> row;
    for (int j = 0; j < 20; j++) {
        row.emplace_back(lp_add_var(&lp, -1, 0, 1, 'B'), 1);
        x.push_back(j % 2 ? 1 : 0.45);
    }
    lp_add_row_entries(&lp, row, '<', 14.5);
    node_of(lp, x);
    ASSERT_EQ(node->run(HeurStage::ROOT_END, 0), 0);
    ASSERT_GE(node->searched.size(), 2u);
    int fixed = 0;
    for (size_t j = 0; j < x.size(); j++) {
        const double low = node->searched[0][j], high = node->searched[1][j];
        fixed += low == high;
        EXPECT_TRUE(j % 2 == 0 || low == 1) << j; // whole ones come first, at their value
    }
    EXPECT_EQ(fixed, 18);
    EXPECT_EQ(domain_check(node->bounds), 0);
    for (size_t j = 0; j < x.size(); j++) // as it was
        EXPECT_TRUE(node->bounds->Lower[j] == 0 && node->bounds->Upper[j] == 1) << j;
}

TEST_F(Heuristics, one_opt_goes_as_far_as_rows_and_bounds_allow)
{
    node_of("max 5x+y+2z+v st 2x+y<=9\nz+v<=6\nv-w=0 bounds x<=9 y<=3 z<=4 v<=9 w<=9 "
            "general x y z v w",
            {0, 0, 0, 0, 0});
    const Point start = {0, 0, 0, 0, 0};
    const double *better =
        heur_improve(node->heur, node->body->lb.data, node->body->ub.data, start.data());
    ASSERT_NE(better, nullptr);
    EXPECT_EQ(Point(better, better + 5), (Point{4, 1, 4, 0, 0})); // equations hold columns
    const Point best(better, better + 5);
    EXPECT_EQ(
        heur_improve(node->heur, node->body->lb.data, node->body->ub.data, best.data()),
        nullptr);
}

// Every point that is offered satisfies rows, bounds and integrality, from any solution of the relaxation; one-opt keeps
// that, and what belongs to the search is as before.
TEST_F(Heuristics, every_point_offered_satisfies_the_model)
{
    int points = 0, improved = 0;
    for (int seed = 0; seed < campaign("TARVEX_HEUR_COUNT", 1500); seed++) {
        Dice dice(static_cast<uint64_t>(seed));
        const GeneratedMip generated = gen_mip(&dice, 14);
        const LpModel lp = without_sets(generated.lp), linear = relaxed(lp);
        const TestModel relaxation(lp_load(env.env, &linear));
        LpSolution solution;
        if (lp_solve(relaxation, &solution) || solution.status != TVX_OPTIMAL) continue;
        node_of(lp, solution.x);
        if (!DomPropagate(node->bounds, -1)) {
            const int64_t mark = domain_mark(node->bounds);
            for (const HeurStage stage :
                 {HeurStage::ROOT_PASS, HeurStage::ROOT_END, HeurStage::NODE})
                ASSERT_EQ(node->run(stage, 91), 0);
            EXPECT_EQ(domain_mark(node->bounds), mark);
            EXPECT_EQ(domain_check(node->bounds), 0);
        }
        for (const Point &x : node->offered) {
            const std::string wrong = mip_check_point(&lp, x, {});
            ASSERT_EQ(wrong, "") << generated.family << " " << seed << "\n"
                                 << lp_to_mps(&lp, "");
            const double *better = heur_improve(node->heur, node->body->lb.data,
                                                node->body->ub.data, x.data());
            points++;
            if (!better) continue;
            improved++;
            const Point y(better, better + x.size());
            ASSERT_EQ(mip_check_point(&lp, y, {}), "") << generated.family << " " << seed;
            EXPECT_LT(lp.sense * lp_objective(&lp, y), lp.sense * lp_objective(&lp, x));
        }
    }
    EXPECT_GT(points, 100);
    EXPECT_GT(improved, 10);
}

// Through the whole library: the first solution comes from a heuristic, and Heuristics=0 leaves all to the tree.
TEST_F(Heuristics, a_parameter_switches_them_off)
{
    LpModel lp;
    Dice dice(7);
    std::vector<std::pair<int, double>> row;
    for (int j = 0; j < 30; j++)
        row.emplace_back(lp_add_var(&lp, dice.range(5, 30), 0, 1, 'B'), dice.range(5, 30));
    lp.sense = -1;
    lp_add_row_entries(&lp, row, '<', 200);
    for (const int on : {0, 1}) {
        load(lp, {{"Heuristics", on * 0.05}, {"OutputFlag", 1}, {"Presolve", 0}});
        Output output;
        ASSERT_EQ(TVXoptimize(model), 0);
        const std::string log = output.text();
        EXPECT_EQ(log.find("\nH ") != std::string::npos, on == 1) << log;
        EXPECT_EQ(integer("Status"), TVX_OPTIMAL);
    }
}
