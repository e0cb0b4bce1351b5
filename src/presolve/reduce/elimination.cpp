// elimination.cpp -- lines (rows or columns) that are linear combinations of others, by sparse Gaussian elimination
//
// Method      A line with a place where no other line has an entry is independent; such lines go first, as long as there
//             are any. What is left is factored line by line, short ones first: a line has the multiples of earlier
//             lines taken off in their order (a heap holds the pivots met), and its pivot becomes the place with the
//             fewest entries among the large ones. Where nothing is left, the line is dependent; its multipliers in
//             terms of the lines themselves come from the stored ones, last to first.
// In, out     Lines in, dependent ones to the handler. A line that nearly vanishes is neither: it is left out.
// Cost        Bounded by the work limit: then the rest of the lines is not looked at.
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
constexpr double VANISHED = 1e-10;  // of the largest term that went into a line
constexpr double DOUBTFUL = 1e-6;   // below: no pivot
constexpr double DROP = 1e-12;      // of the largest term: rounding
constexpr double NO_FACTOR = 1e-11; // multiples below are rounding; the handler verifies
constexpr double THRESHOLD = 0.05;  // of the largest entry: may be the pivot

struct Entry {
    int index; // place, or pivot
    double value;
};

// Pivot k: its line, the place of its pivot, the rest of the eliminated line, and the multiples that were taken off.
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
    Array<int> Touched;   // places of the line at work
    Array<int> Heap;      // pivots that it still has to meet
    Array<double> Value;  // [places] of the line at work, zero between lines
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

// Moves independent lines to the back of lines[] and tells how many are left. Lines that take part are marked in the
// work record's flags.
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

// Value[place] += term, with what belongs to a place that is met for the first time.
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

// Takes the earlier lines off the line; their multiples go to the end of Lower.
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

// Largest entry that is left, and the share of the largest term that this is.
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

// The multiples at the end of Lower in terms of the lines themselves.
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
