// mip_oracle.cpp -- exact branch and bound, see the header
#include "support/mip_oracle.h"
#include "support/mip_check.h"
#include <algorithm>
#include <map>

namespace
{
constexpr double EXACT_INTEGERS = 9007199254740992.0; // 2^53

// Of a semi-continuous column: may it be 0 or within its bounds, and what does a node ask for?
enum class Semi : char { OPEN, ZERO, ON };

struct Window { // of a set: members first to end - 1 may differ from 0
    size_t first, end;
    size_t size() const { return end - first; }
};

struct Node {
    std::vector<double> lb, ub;     // [n] of columns that are on
    std::vector<Semi> semi;         // [n] ON for those that are not semi-continuous
    std::vector<Window> windows;    // [sets]
    bool without_objective = false; // a point here makes the model unbounded
};

// Nodes without a bound come first, in the order in which they were made; then by bound, of a minimisation.
using Key = std::pair<bool, mpq_class>;

struct Search {
    LpModel lp; // with the bounds that count
    MipTruth truth;
    bool found = false;     // truth.value and truth.x are there
    bool unbounded = false; // proved
    bool left_out = false;  // a part of the tree that needs integers beyond the doubles
    std::multimap<Key, Node> open;
    RationalResult relaxation; // of the node at hand

    Node root() const;
    LpModel relaxed(const Node &node) const;
    void branch_semi(const Key &key, const Node &node, size_t j);
    void branch_set(const Key &key, const Node &node, size_t k, Window used);
    void branch_integer(const Key &key, const Node &node, size_t j);
    void branch_ray(Node node);
    bool branch(const Key &key, const Node &node);
    bool is_off(const Node &node, size_t j) const;
    Window support(size_t k) const;
    void visit(const Node &node);
    void run(int most_nodes);
};
} // namespace

const char *mip_status_name(MipStatus status)
{
    static constexpr const char *NAMES[] = {"optimal", "infeasible", "unbounded",
                                            "unknown"};
    return NAMES[static_cast<size_t>(status)];
}

static bool is_semi(char type)
{
    return type == 'S' || type == 'N';
}

static bool is_integer(char type)
{
    return type != 'C' && type != 'S';
}

static bool is_whole(const mpq_class &value)
{
    return value.get_den() == 1;
}

Node Search::root() const
{
    Node node = {lp.lb, lp.ub, {}, {}};
    for (size_t j = 0; j < lp.obj.size(); j++)
        node.semi.push_back(is_semi(lp.type(j)) ? Semi::OPEN : Semi::ON);
    for (const LpSet &set : lp.sets) node.windows.push_back({0, set.members.size()});
    return node;
}

LpModel Search::relaxed(const Node &node) const
{
    LpModel r = lp;
    if (node.without_objective) r.obj.assign(r.obj.size(), 0);
    r.lb = node.lb;
    r.ub = node.ub;
    for (size_t j = 0; j < lp.obj.size(); j++) {
        if (node.semi[j] == Semi::ON) continue;
        const bool only_zero = node.semi[j] == Semi::ZERO || r.lb[j] > r.ub[j];
        r.lb[j] = only_zero ? 0 : std::min(r.lb[j], 0.0);
        r.ub[j] = only_zero ? 0 : std::max(r.ub[j], 0.0);
    }
    for (size_t k = 0; k < lp.sets.size(); k++)
        for (size_t p = 0; p < lp.sets[k].members.size(); p++) {
            const int j = lp.sets[k].members[p];
            if (p >= node.windows[k].first && p < node.windows[k].end) continue;
            r.lb[j] = std::max(r.lb[j], 0.0);
            r.ub[j] = std::min(r.ub[j], 0.0);
        }
    return r;
}

void Search::branch_semi(const Key &key, const Node &node, size_t j)
{
    for (const Semi side : {Semi::ZERO, Semi::ON}) {
        Node child = node;
        child.semi[j] = side;
        open.emplace(key, child);
    }
}

// The members used are more than the type allows. Neighbours lie on one side of a member in the middle, itself
// included; of a set of type 1 that member belongs to the first side only.
void Search::branch_set(const Key &key, const Node &node, size_t k, Window used)
{
    const size_t middle = (used.first + used.end - 1) / 2;
    Node child = node;
    child.windows[k].end = middle + 1;
    open.emplace(key, child);
    child.windows[k] = {lp.sets[k].type == 1 ? middle + 1 : middle, node.windows[k].end};
    open.emplace(key, child);
}

void Search::branch_integer(const Key &key, const Node &node, size_t j)
{
    const mpq_class &v = relaxation.x[j];
    mpz_class below;
    mpz_fdiv_q(below.get_mpz_t(), v.get_num_mpz_t(), v.get_den_mpz_t());
    if (abs(below) >= EXACT_INTEGERS) {
        left_out = true;
        return;
    }
    Node child = node;
    child.ub[j] = below.get_d();
    open.emplace(key, child);
    child = node;
    child.lb[j] = below.get_d() + 1;
    open.emplace(key, child);
}

// Of a relaxation with a ray: decide what is not linear but for integers, then look for a point.
void Search::branch_ray(Node node)
{
    for (size_t j = 0; j < lp.obj.size(); j++)
        if (node.semi[j] == Semi::OPEN) return branch_semi({}, node, j);
    for (size_t k = 0; k < lp.sets.size(); k++)
        if (node.windows[k].size() > static_cast<size_t>(lp.sets[k].type))
            return branch_set({}, node, k, node.windows[k]);
    node.without_objective = true;
    open.emplace(Key{}, node);
}

// Neither 0 nor a value within the bounds.
bool Search::is_off(const Node &node, size_t j) const
{
    const mpq_class &v = relaxation.x[j];
    if (node.semi[j] != Semi::OPEN || v == 0) return false;
    return (!lp_is_infinite(node.lb[j]) && v < node.lb[j]) ||
           (!lp_is_infinite(node.ub[j]) && v > node.ub[j]) || node.lb[j] > node.ub[j] ||
           (is_integer(lp.type(j)) && !is_whole(v));
}

// From the first to the last member that differs from 0.
Window Search::support(size_t k) const
{
    Window used = {0, 0};
    for (size_t p = 0; p < lp.sets[k].members.size(); p++) {
        if (relaxation.x[lp.sets[k].members[p]] == 0) continue;
        if (used.end == 0) used.first = p;
        used.end = p + 1;
    }
    return used;
}

// False when the point of the relaxation is one of the model.
bool Search::branch(const Key &key, const Node &node)
{
    for (size_t j = 0; j < lp.obj.size(); j++)
        if (is_off(node, j)) return branch_semi(key, node, j), true;
    for (size_t k = 0; k < lp.sets.size(); k++) {
        const Window used = support(k);
        if (used.size() > static_cast<size_t>(lp.sets[k].type))
            return branch_set(key, node, k, used), true;
    }
    for (size_t j = 0; j < lp.obj.size(); j++)
        if (is_integer(lp.type(j)) && !is_whole(relaxation.x[j]))
            return branch_integer(key, node, j), true;
    return false;
}

void Search::visit(const Node &node)
{
    const LpModel r = relaxed(node);
    truth.nodes++;
    relaxation = rational_solve(&r);
    if (relaxation.status == LpStatus::INFEASIBLE) return;
    if (relaxation.status == LpStatus::UNBOUNDED) return branch_ray(node);
    const mpq_class value = relaxation.value * lp.sense;
    if (found && !node.without_objective && value >= truth.value * lp.sense) return;
    const Key key = node.without_objective ? Key{} : Key{true, value};
    if (branch(key, node)) return;
    unbounded = node.without_objective;
    if (unbounded) return;
    found = true;
    truth.value = relaxation.value;
    truth.x = relaxation.x;
}

void Search::run(int most_nodes)
{
    open.emplace(Key{}, root());
    while (!open.empty() && !unbounded && truth.nodes < most_nodes) {
        const auto first = open.begin();
        const auto [bounded, bound] = first->first;
        if (found && bounded && bound >= truth.value * lp.sense) break;
        const Node node = std::move(first->second);
        open.erase(first);
        visit(node);
    }
    const bool stopped = !open.empty() && truth.nodes >= most_nodes;
    truth.status = unbounded             ? MipStatus::UNBOUNDED
                   : left_out || stopped ? MipStatus::UNKNOWN
                   : found               ? MipStatus::OPTIMAL
                                         : MipStatus::INFEASIBLE;
}

MipTruth mip_truth(const LpModel *lp, int most_nodes)
{
    Search search;
    search.lp = mip_rounded(lp);
    search.run(most_nodes);
    return search.truth;
}
