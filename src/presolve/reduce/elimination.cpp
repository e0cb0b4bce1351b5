// elimination.cpp -- lines (rows or columns) that are linear combinations of others, by sparse Gaussian elimination
//
// Method      A line with an index where no other line has an entry is independent; such lines are removed first, as
//             long as there are any. The others are eliminated one by one, short ones first: multiples of earlier lines
//             are subtracted in their order (a heap holds the pivots met), and the pivot is the index with the fewest
//             entries among the large entries. If nothing remains, the line is dependent; its multipliers in terms of
//             the original lines follow from the stored ones, last to first.
// In, out     Lines in, dependent ones to the handler. A line that becomes almost zero counts as neither and is
//             ignored.
// Cost        Limited by the work limit; beyond that the remaining lines are not processed.
// Literature  E. D. Andersen, "Finding all linearly dependent rows in large-scale linear programming", Optimization
//             Methods and Software 6, 1995; J. R. Gilbert and T. Peierls, "Sparse partial pivoting in time proportional
//             to arithmetic operations", SIAM J. Sci. Stat. Comp. 9, 1988.
#include "presolve/reduce/elimination.h"
#include "presolve/sort_keys.h"
#include <algorithm>
#include <cfloat>
#include <cmath>
#include <functional>

namespace
{
// Remaining entries relative to the largest term that went into the line: below VANISHED the line is dependent, below
// DOUBTFUL it is ignored.
constexpr double VANISHED = 1e-10, DOUBTFUL = 1e-6;

// smaller entries, relative to their largest term, are rounding errors
constexpr double DROP = 1e-12;

// smaller multipliers are ignored; the handler verifies the combination
constexpr double NO_FACTOR = 1e-11;

constexpr double THRESHOLD = 0.05; // smallest pivot relative to the largest entry

struct Entry {
    int index; // place, or pivot
    double value;
};

// Pivot k: its line, the index of its pivot, the other entries of the eliminated line, and the multiples subtracted.
struct Pivot {
    int line, place;
    double value;
    int64_t upper_begin, upper_end, lower_begin, lower_end;
};

struct Elimination {
    PresolveWork *w;
    Axis axis;
    Array<Pivot> Pivots;
    Array<Entry> Upper, Lower;
    Array<int> PivotAt;   // [places] pivot of a place, or -1
    Array<int> Count;     // [places] entries of the lines that take part
    Array<int> Touched;   // places of the current line
    Array<int> Heap;      // pivots whose lines have still to be subtracted from it
    Array<double> Value;  // [places] entries of the current line, zero between lines
    Array<double> Size;   // [places] largest term that went into Value, zero likewise
    Array<double> Factor; // [lines] by pivot, zero between uses
    Array<LineTerm> Terms;
};

int alloc(Elimination *e, int count)
{
    const int places = e->axis == Axis::ROWS ? e->w->NumCols : e->w->NumRows;
    TRY(array_assign(&e->PivotAt, places, -1));
    TRY(array_assign(&e->Count, places, 0));
    TRY(array_resize(&e->Touched, places));
    TRY(array_resize(&e->Heap, places));
    TRY(array_assign(&e->Value, places, 0.0));
    TRY(array_assign(&e->Size, places, 0.0));
    TRY(array_assign(&e->Factor, count, 0.0));
    TRY(array_resize(&e->Terms, count));
    return array_reserve(&e->Pivots, count);
}

// Moves lines with a unique index to the back of lines[] and returns the number of the others. Lines in the elimination
// are marked in the flags of the work record.
int peel(Elimination *e, int *lines, int count, int *left_out)
{
    PresolveWork *w = e->w;
    for (int k = 0; k < count; k++) {
        TRY(check_limits(w, 1 + length_of(w, e->axis, lines[k])));
        w->Flag.data[lines[k]] = 1;
        for (int p = first_of(w, e->axis, lines[k]); p >= 0; p = next_of(w, e->axis, p))
            e->Count.data[place_of(w, e->axis, p)]++;
    }
    const Axis other = e->axis == Axis::ROWS ? Axis::COLS : Axis::ROWS;
    int waiting = 0; // places with one entry, in Touched
    const int places = static_cast<int>(e->Count.size);
    for (int q = 0; q < places; q++)
        if (e->Count.data[q] == 1) e->Touched.data[waiting++] = q;
    while (waiting > 0) {
        const int q = e->Touched.data[--waiting];
        if (e->Count.data[q] != 1) continue;
        int p = first_of(w, other, q);
        while (!w->Flag.data[line_of(w, e->axis, p)]) p = next_of(w, other, p);
        const int line = line_of(w, e->axis, p);
        TRY(check_limits(w, 1 + length_of(w, e->axis, line)));
        w->Flag.data[line] = 0;
        for (p = first_of(w, e->axis, line); p >= 0; p = next_of(w, e->axis, p)) {
            const int place = place_of(w, e->axis, p);
            if (--e->Count.data[place] == 1) e->Touched.data[waiting++] = place;
        }
    }
    int left = 0;
    TRY(presolve_check(w));
    for (int k = 0; k < count; k++) {
        if (!w->Flag.data[lines[k]]) continue;
        w->Flag.data[lines[k]] = 0;
        std::swap(lines[left++], lines[k]);
    }
    *left_out = left;
    return 0;
}

// Value[place] += term, with the bookkeeping for a new place.
struct Work {
    int touched = 0, heap = 0;
};

void add_term(Elimination *e, Work *at, int place, double term)
{
    double *size = &e->Size.data[place];
    if (*size == 0) { // first term
        e->Touched.data[at->touched++] = place;
        if (e->PivotAt.data[place] >= 0) {
            int *heap = e->Heap.data;
            heap[at->heap++] = e->PivotAt.data[place];
            std::push_heap(heap, heap + at->heap, std::greater<int>());
        }
    }
    e->Value.data[place] += term;
    *size = std::max({*size, std::fabs(term), DBL_MIN});
}

// Subtracts the earlier lines from the line; the multiples are appended to Lower.
int eliminate(Elimination *e, int line, Work *at)
{
    PresolveWork *w = e->w;
    for (int p = first_of(w, e->axis, line); p >= 0; p = next_of(w, e->axis, p))
        add_term(e, at, place_of(w, e->axis, p), w->Nodes.data[p].value);
    while (at->heap > 0) {
        int *heap = e->Heap.data;
        std::pop_heap(heap, heap + at->heap, std::greater<int>());
        const int k = heap[--at->heap];
        const Pivot &pivot = e->Pivots.data[k];
        const double v = e->Value.data[pivot.place];
        e->Value.data[pivot.place] = 0;
        w->Work += 10;
        if (std::fabs(v) <= DROP * e->Size.data[pivot.place]) continue;
        const double factor = v / pivot.value;
        TRY(array_append(&e->Lower, Entry{k, factor}));
        for (int64_t u = pivot.upper_begin; u < pivot.upper_end; u++)
            add_term(e, at, e->Upper.data[u].index, -factor * e->Upper.data[u].value);
        w->Work += 5.0 * static_cast<double>(pivot.upper_end - pivot.upper_begin);
    }
    return 0;
}

// Largest remaining entry, and its ratio to the largest term.
double largest_left(const Elimination *e, const Work *at, double *largest)
{
    double size = DBL_MIN;
    *largest = 0;
    for (int k = 0; k < at->touched; k++) {
        const int q = e->Touched.data[k];
        size = std::max(size, e->Size.data[q]);
        *largest = std::max(*largest, std::fabs(e->Value.data[q]));
    }
    return *largest / size;
}

int store_pivot(Elimination *e, int line, int64_t lower_begin, double largest,
                const Work *at)
{
    int best = -1;
    for (int k = 0; k < at->touched; k++) {
        const int q = e->Touched.data[k];
        if (std::fabs(e->Value.data[q]) < THRESHOLD * largest) continue;
        if (best < 0 || e->Count.data[q] < e->Count.data[best]) best = q;
    }
    const int64_t begin = e->Upper.size;
    for (int k = 0; k < at->touched; k++) {
        const int q = e->Touched.data[k];
        const double v = e->Value.data[q];
        if (q == best || std::fabs(v) <= DROP * e->Size.data[q]) continue;
        TRY(array_append(&e->Upper, Entry{q, v}));
    }
    e->PivotAt.data[best] = static_cast<int>(e->Pivots.size);
    array_push(&e->Pivots, Pivot{line, best, e->Value.data[best], begin, e->Upper.size,
                                 lower_begin, e->Lower.size});
    return 0;
}

// Expresses the multiples at the end of Lower in terms of the original lines.
int collect_terms(Elimination *e, int64_t lower_begin)
{
    for (int64_t u = lower_begin; u < e->Lower.size; u++)
        e->Factor.data[e->Lower.data[u].index] = e->Lower.data[u].value;
    int count = 0;
    e->w->Work += static_cast<double>(e->Pivots.size);
    for (int64_t k = e->Pivots.size - 1; k >= 0; k--) {
        const double factor = e->Factor.data[k];
        e->Factor.data[k] = 0;
        if (std::fabs(factor) <= NO_FACTOR) continue;
        const Pivot &pivot = e->Pivots.data[k];
        e->Terms.data[count++] = {pivot.line, factor};
        for (int64_t u = pivot.lower_begin; u < pivot.lower_end; u++)
            e->Factor.data[e->Lower.data[u].index] -= factor * e->Lower.data[u].value;
        e->w->Work += 3.0 * static_cast<double>(pivot.lower_end - pivot.lower_begin);
    }
    return count;
}

int try_line(Elimination *e, int line, DependentHandler handle)
{
    Work at;
    const int64_t lower_begin = e->Lower.size;
    TRY(eliminate(e, line, &at));
    double largest = 0;
    const double share = largest_left(e, &at, &largest);
    const bool dependent = share <= VANISHED, doubtful = share <= DOUBTFUL;
    if (!doubtful) TRY(store_pivot(e, line, lower_begin, largest, &at));
    for (int k = 0; k < at.touched; k++)
        e->Value.data[e->Touched.data[k]] = e->Size.data[e->Touched.data[k]] = 0;
    if (!doubtful) return 0;
    const int count = dependent ? collect_terms(e, lower_begin) : 0;
    e->Lower.size = lower_begin;
    return dependent ? handle(e->w, line, e->Terms.data, count) : 0;
}
} // namespace

int dependent_lines(PresolveWork *w, Axis axis, int *lines, int count, double work_limit,
                    DependentHandler handle)
{
    Elimination e;
    e.w = w;
    e.axis = axis;
    TRY(alloc(&e, count));
    const double limit = w->Work + work_limit;
    int left = 0;
    TRY(peel(&e, lines, count, &left));
    TRY(sort_by_rank(w, lines, w->IndexB.data, left,
                     axis == Axis::ROWS ? w->RowCnt.data : w->ColCnt.data));
    for (int k = 0; k < left && w->Work < limit; k++) {
        const double before = w->Work;
        TRY(try_line(&e, lines[k], handle));
        TRY(check_limits(w, 1 + w->Work - before));
    }
    return 0;
}
