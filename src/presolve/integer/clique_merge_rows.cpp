// clique_merge_rows.cpp -- set packing rows become larger cliques, and rows inside them go
//
// Method      The cliques of rows are extended by literals adjacent to all their members in the clique table
//             (domain/clique_merge.cpp). A row that is extended gets the new literals if rows with as many entries go for it,
//             or with level 2 if any row goes. Of an equation exactly one member is true: literals adjacent to all are false.
// Safety      A row is only removed if all its literals are in a row that is in the model, not because of the table alone,
//             which may know of an edge from no other row than this one.
// Postsolve   None, but that of fixing.
// Cost        Limited by an effort in proportion to the entries.
// Literature  T. Achterberg et al., "Presolve reductions in mixed integer programming", INFORMS J. Computing 32, 2020.
#include "presolve/errors.h"
#include "presolve/integer/clique_sets.h"
#include "presolve/integer/facts.h"
#include "presolve/reduce/aggregate.h"
#include <algorithm>
#include <utility>

namespace
{
constexpr double EFFORT = 10, MUCH_EFFORT = 100; // per entry, by level
constexpr int64_t EFFORT_LEAST = 100000;

struct MergeRows {
    PresolveWork *w;
    int Level;
    RowCliques Rows;
    LiteralSets Extended; // by set; empty if the set is inside of another one
    Array<int> InsideOf;  // by set: the last one that holds it, or -1
    Array<int> Begin;     // [sets + 1] in Inside
    Array<int> Inside;    // sets inside of each one
    Array<char> IsMember; // [literals] of the set at hand; zero between
};

int set_size(const LiteralSets &sets, int s)
{
    return static_cast<int>(sets.Beg.data[s + 1] - sets.Beg.data[s]);
}

// Chains of sets inside of others are followed to their end, and grouped by it.
int group_by_end(MergeRows *m)
{
    const int count = static_cast<int>(m->Rows.Rows.size);
    TRY(array_assign(&m->Begin, int64_t{count} + 1, 0));
    TRY(array_assign(&m->Inside, count, 0));
    for (int s = 0; s < count; s++) {
        int end = s;
        while (m->InsideOf.data[end] >= 0) end = m->InsideOf.data[end];
        for (int at = s; at != end;) // shortens the way of the next ones
            at = std::exchange(m->InsideOf.data[at], end);
        if (end != s) m->Begin.data[end + 1]++;
    }
    for (int s = 0; s < count; s++) m->Begin.data[s + 1] += m->Begin.data[s];
    for (int s = count - 1; s >= 0; s--)
        if (m->InsideOf.data[s] >= 0)
            m->Inside.data[--m->Begin.data[m->InsideOf.data[s] + 1]] = s;
    // each begin has moved to the place of the one before
    for (int s = 0; s < count; s++) m->Begin.data[s] = m->Begin.data[s + 1];
    m->Begin.data[count] = static_cast<int>(std::count_if(
        m->InsideOf.begin(), m->InsideOf.end(), [](int e) { return e >= 0; }));
    return 0;
}

void mark_members(MergeRows *m, const LiteralSets &sets, int s, char mark)
{
    for (int64_t p = sets.Beg.data[s]; p < sets.Beg.data[s + 1]; p++)
        m->IsMember.data[sets.Lit.data[p]] = mark;
}

bool all_members(const MergeRows *m, int s)
{
    const LiteralSets &sets = m->Rows.Sets;
    for (int64_t p = sets.Beg.data[s]; p < sets.Beg.data[s + 1]; p++)
        if (!m->IsMember.data[sets.Lit.data[p]]) return false;
    return true;
}

// Rows change as columns are fixed: is the row what it was?
bool is_unchanged(const MergeRows *m, int s)
{
    return m->w->RowCnt.data[m->Rows.Rows.data[s]] == set_size(m->Rows.Sets, s);
}

// The row of set s, an inequality, becomes: at most one of its literals and of these others is true.
void write_row(MergeRows *m, int s, const int *literals, int count)
{
    PresolveWork *w = m->w;
    const int i = m->Rows.Rows.data[s];
    int negated = 0;
    for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p)) {
        PresolveNode *node = &w->Nodes.data[p];
        const double unit = node->value > 0 ? 1 : -1;
        w->CoefsChanged += node->value != unit; // assigned
        node->value = unit;
        set_entry_size(w, p, 1);
        negated += unit < 0;
        mark_col(w, node->col);
    }
    for (int k = 0; k < count; k++) {
        const bool is_negated = !literal_value(literals[k]);
        insert_entry(w, i, literal_col(literals[k]), is_negated ? -1 : 1);
        negated += is_negated;
        w->CoefsChanged++;
        mark_col(w, literal_col(literals[k]));
    }
    w->Rhs.data[i] = 1 - negated;
    row_activity(w, i);
    mark_row(w, i);
}

// All literals of an equation's extension beyond its own are false.
int fix_others(MergeRows *m, const Array<int> &added)
{
    for (const int literal : added) {
        const int j = literal_col(literal);
        if (is_binary_now(m->w, j)) TRY(settle_integer(m->w, j, !literal_value(literal)));
    }
    return 0;
}

bool all_binary(const PresolveWork *w, const Array<int> &literals)
{
    return std::all_of(literals.begin(), literals.end(),
                       [w](int u) { return is_binary_now(w, literal_col(u)); });
}

// Do the rows that would go, not all of which may be inside of the set as it is, pay for the new entries?
bool is_worth_extending(const MergeRows *m, int s, int64_t added)
{
    int64_t gone = 0;
    for (int k = m->Begin.data[s]; k < m->Begin.data[s + 1]; k++) {
        const int other = m->Inside.data[k], i = m->Rows.Rows.data[other];
        if (m->w->Sense.data[i] == '<' && is_unchanged(m, other))
            gone += set_size(m->Rows.Sets, other);
    }
    return m->Level >= 2 ? gone > 0 : gone >= added;
}

int extend_row(MergeRows *m, int s, const Array<int> &added)
{
    PresolveWork *w = m->w;
    bool there = false;
    if (w->Sense.data[m->Rows.Rows.data[s]] == '=') return fix_others(m, added);
    if (!is_worth_extending(m, s, added.size) || !all_binary(w, added)) return 0;
    TRY(room_for_fill(w, added.size, &there));
    if (!there) return 0;
    write_row(m, s, added.data, static_cast<int>(added.size));
    mark_members(m, m->Extended, s, 1);
    return 0;
}

// Set s stays: its row, and those inside of it.
int take_set(MergeRows *m, int s)
{
    PresolveWork *w = m->w;
    const bool inside = m->Begin.data[s] < m->Begin.data[s + 1];
    const int own = set_size(m->Rows.Sets, s), all = set_size(m->Extended, s);
    if ((!inside && own == all) || !is_unchanged(m, s)) return 0;
    Array<int> added;
    bool is_written = w->Sense.data[m->Rows.Rows.data[s]] == '=';
    mark_members(m, m->Rows.Sets, s, 1);
    for (int64_t p = m->Extended.Beg.data[s]; p < m->Extended.Beg.data[s + 1]; p++)
        if (!m->IsMember.data[m->Extended.Lit.data[p]])
            TRY(array_append(&added, m->Extended.Lit.data[p]));
    if (added.size > 0) TRY(extend_row(m, s, added));
    for (int k = m->Begin.data[s]; k < m->Begin.data[s + 1]; k++) {
        const int other = m->Inside.data[k], i = m->Rows.Rows.data[other];
        if (w->Sense.data[i] != '<' || !is_unchanged(m, other) || !all_members(m, other))
            continue;
        if (!is_written) write_row(m, s, nullptr, 0); // coefficients may differ
        is_written = true;
        remove_row(w, i, ROW_REDUNDANT);
    }
    mark_members(m, m->Extended, s, 0);
    mark_members(m, m->Rows.Sets, s, 0);
    return check_limits(w, 1.0 + all);
}

int merge_rows(PresolveWork *w, int level)
{
    MergeRows m = {w, level, {}, {}, {}, {}, {}, {}};
    TRY(row_cliques(w, &m.Rows));
    if (m.Rows.Rows.size == 0) return 0;
    const double share = level >= 2 ? MUCH_EFFORT : EFFORT;
    const int64_t entries = m.Rows.Sets.Lit.size,
                  effort = EFFORT_LEAST +
                           static_cast<int64_t>(share * static_cast<double>(entries));
    TRY(array_assign(&m.IsMember, 2 * int64_t{w->NumCols}, char(0)));
    TRY(clique_merge(w->Facts->OfRows, &m.Rows.Sets, effort, entries, &m.Extended,
                     &m.InsideOf));
    w->Work += static_cast<double>(effort);
    TRY(check_limits(w, static_cast<double>(effort)));
    TRY(group_by_end(&m));
    for (int s = 0; s < m.Rows.Rows.size; s++)
        if (m.InsideOf.data[s] < 0) TRY(take_set(&m, s));
    return 0;
}
} // namespace

int pre_clique_merge(PresolveWork *w)
{
    TRY(facts_refresh(w));
    MipFacts *facts = w->Facts;
    if (!facts->OfRows || !facts->IsNew) return 0;
    facts->IsNew = false;
    const bool thorough = w->Env->Presolve > 1 || w->Env->TARV_PAR_PRECLIQUE > 1;
    return merge_rows(w, thorough ? 2 : 1);
}
