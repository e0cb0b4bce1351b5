// propagation_rows.cpp -- build and extend the layout for bound propagation
//
// Method   Rows are copied one after the other, each sorted by its keys; then the columns of a block are filled by
//          counting. Appended rows stand behind the others, and their block of columns is built anew each time.
// Cost     O(entries log(longest row))
#include "domain/propagation_rows.h"
#include "runtime/record.h"
#include <algorithm>
#include <cmath>
#include <limits>

namespace
{
constexpr double LARGEST_NUMBER = 1e100; // products of two and their sums stay finite

// An infinite bound counts with this size: the largest that propagation gives a variable.
constexpr double SIZE_OF_INFINITE = 1e8;

struct Bounds {
    const double *Lower, *Upper; // [NumCols]
};

double bound_size(double bound)
{
    return domain_is_infinite(bound) ? SIZE_OF_INFINITE : std::fabs(bound);
}

float key_of(double a, double lower, double upper)
{
    constexpr float INFINITE = std::numeric_limits<float>::infinity();
    if (domain_is_infinite(lower) || domain_is_infinite(upper)) return INFINITE;
    const double key = std::fabs(a) * (upper - lower);
    const float rounded = static_cast<float>(key);
    return rounded < key ? std::nextafterf(rounded, INFINITE) : rounded;
}

// Copies row k of the source behind the other entries. False if its numbers are too large.
bool copy_row(PropagationRows *rows, const RowSource *source, int k, Bounds bounds)
{
    bool usable = true;
    const int64_t begin = rows->Entry.size;
    for (int p = source->Beg[k]; p < source->Beg[k + 1]; p++) {
        const double a = source->Val[p];
        const int j = source->Ind[p];
        if (a == 0) continue;
        if (!(std::fabs(a) <= LARGEST_NUMBER)) usable = false;
        array_push(&rows->Entry, {a, j, key_of(a, bounds.Lower[j], bounds.Upper[j])});
    }
    std::sort(rows->Entry.data + begin, rows->Entry.end(),
              [](const RowEntry &a, const RowEntry &b) {
                  return a.Key > b.Key || (a.Key == b.Key && a.Col < b.Col);
              });
    array_push(&rows->RowBeg, rows->Entry.size);
    return usable;
}

void push_directed(PropagationRows *rows, DirectedRow directed, Bounds bounds)
{
    const int64_t begin = rows->RowBeg[directed.Row], end = rows->RowBeg[directed.Row + 1];
    directed.Size = std::fabs(directed.Side);
    for (int64_t p = begin; p < end; p++) {
        const RowEntry e = rows->Entry.data[p];
        directed.Size += std::fabs(e.Val) * std::max(bound_size(bounds.Lower[e.Col]),
                                                     bound_size(bounds.Upper[e.Col]));
        if (!rows->IsInteger[e.Col]) directed.Soft += std::fabs(e.Val);
    }
    directed.Reach = begin < end ? static_cast<double>(rows->Entry.data[begin].Key) : 0;
    array_push(&rows->Directed, directed);
}

// The directed rows of row i.
void direct_row(PropagationRows *rows, int i, double low, double high, Bounds bounds)
{
    const bool has_high = high<INFINITE_VALUE, has_low = low> - INFINITE_VALUE;
    const int first = static_cast<int>(rows->Directed.size);
    const bool both = has_high && has_low;
    if (has_high) push_directed(rows, {i, both ? first + 1 : -1, 1, high, 0, 0, 0}, bounds);
    if (has_low) push_directed(rows, {i, both ? first : -1, -1, -low, 0, 0, 0}, bounds);
}

// Rows of the source behind the others; there is room.
void copy_rows(PropagationRows *rows, const RowSource *source, Bounds bounds)
{
    for (int k = 0; k < source->NumRows; k++) {
        const int i = rows->NumRows++;
        const double low = source->Low[k], high = source->High[k];
        const bool usable = copy_row(rows, source, k, bounds);
        if (low >= INFINITE_VALUE || high <= -INFINITE_VALUE)
            rows->Impossible = i;
        else if (usable)
            direct_row(rows, i, low, high, bounds);
        array_push(&rows->FirstDirected, static_cast<int>(rows->Directed.size));
    }
}

int reserve_rows(PropagationRows *rows, const RowSource *source)
{
    const int64_t entries = source->NumRows ? source->Beg[source->NumRows] : 0;
    TRY(array_reserve(&rows->Entry, rows->Entry.size + entries));
    TRY(array_reserve(&rows->RowBeg, rows->RowBeg.size + source->NumRows));
    TRY(array_reserve(&rows->FirstDirected, rows->FirstDirected.size + source->NumRows));
    return array_reserve(&rows->Directed,
                         rows->Directed.size + 2 * int64_t{source->NumRows});
}

// Place of an entry's list in ColumnBlock::Beg.
int list_of(const RowEntry &entry, const DirectedRow &directed)
{
    return 2 * entry.Col + (entry.Val * directed.Sign < 0);
}

// Columns of the directed rows from `first` on. 0 or OUT_OF_MEMORY.
int build_block(const PropagationRows *rows, int first, ColumnBlock *block)
{
    TRY(array_assign<int64_t>(&block->Beg, 2 * int64_t{rows->NumCols} + 1, 0));
    int64_t *beg = block->Beg.data, total = 0;
    for (int64_t d = first; d < rows->Directed.size; d++) {
        const DirectedRow &row = rows->Directed.data[d];
        const int64_t end = rows->RowBeg[row.Row + 1];
        for (int64_t p = rows->RowBeg[row.Row]; p < end; p++)
            beg[list_of(rows->Entry.data[p], row)]++;
        total += end - rows->RowBeg[row.Row];
    }
    TRY(array_resize(&block->Entry, total));
    for (int64_t k = 0, sum = 0; k < block->Beg.size; k++)
        beg[k] = sum += beg[k]; // the end of each list
    for (int64_t d = rows->Directed.size - 1; d >= first; d--) {
        const DirectedRow &row = rows->Directed.data[d];
        for (int64_t p = rows->RowBeg[row.Row]; p < rows->RowBeg[row.Row + 1]; p++) {
            const RowEntry &e = rows->Entry.data[p];
            block->Entry.data[--beg[list_of(e, row)]] = {row.Sign * e.Val,
                                                         static_cast<int>(d)};
        }
    }
    return 0;
}

int build_all(PropagationRows *rows, const ColumnSource *cols, const RowSource *source)
{
    rows->NumCols = cols->NumCols;
    TRY(array_copy(&rows->IsInteger, cols->IsInteger, cols->NumCols));
    TRY(array_assign<int64_t>(&rows->RowBeg, 1, 0));
    TRY(array_assign(&rows->FirstDirected, 1, 0));
    TRY(reserve_rows(rows, source));
    copy_rows(rows, source, {cols->Lower, cols->Upper});
    rows->NumModelRows = rows->NumRows;
    rows->NumModelDirected = static_cast<int>(rows->Directed.size);
    return build_block(rows, 0, &rows->ModelCols);
}

// ---- From a body ----
struct BodyRows {
    Array<int> Beg, Ind;
    Array<double> Val, Low, High;
    Array<double> Lower, Upper;
    Array<char> IsInteger;
};

// The matrix row by row: beg counts ends first, then entries are filled in from the back.
int transpose(const ModelBody *body, BodyRows *r)
{
    TRY(array_assign(&r->Beg, body->numconstrs + 1, 0));
    TRY(array_resize(&r->Ind, body->numnz));
    TRY(array_resize(&r->Val, body->numnz));
    int *beg = r->Beg.data;
    for (int p = 0; p < body->numnz; p++) beg[body->vind[p]]++;
    for (int i = 0, sum = 0; i <= body->numconstrs; i++) beg[i] = sum += beg[i];
    for (int j = body->numvars - 1; j >= 0; j--) {
        for (int p = body->vbeg[j]; p < body->vbeg[j] + body->vlen[j]; p++) {
            const int to = --beg[body->vind[p]];
            r->Ind[to] = j;
            r->Val[to] = body->vval[p];
        }
    }
    return 0;
}

// Sides, types, and bounds; a semi-continuous variable may be 0.
int describe(const ModelBody *body, BodyRows *r)
{
    TRY(array_copy(&r->High, body->rhs.data, body->numconstrs));
    TRY(array_copy(&r->Low, body->rhs.data, body->numconstrs));
    TRY(array_copy(&r->Lower, body->lb.data, body->numvars));
    TRY(array_copy(&r->Upper, body->ub.data, body->numvars));
    TRY(array_assign<char>(&r->IsInteger, body->numvars, 0));
    for (int i = 0; i < body->numconstrs; i++) {
        const bool equation = body->senses[i] == '=';
        if (!equation) r->Low[i] = -INFINITE_BOUND;
    }
    if (body->vtypes.size == 0) return 0;
    for (int j = 0; j < body->numvars; j++) {
        const char type = body->vtypes[j];
        r->IsInteger[j] = type != 'C' && type != 'S';
        if (type != 'S' && type != 'N') continue;
        r->Lower[j] = std::min(r->Lower[j], 0.0);
        r->Upper[j] = std::max(r->Upper[j], 0.0);
    }
    return 0;
}
} // namespace

int propagation_rows_build(PropagationRows **out, const ColumnSource *cols,
                           const RowSource *source)
{
    *out = nullptr;
    PropagationRows *rows = record_create<PropagationRows>();
    if (!rows) return OUT_OF_MEMORY;
    if (const int error = build_all(rows, cols, source)) {
        propagation_rows_free(rows);
        return error;
    }
    *out = rows;
    return 0;
}

int propagation_rows_of_body(PropagationRows **out, const ModelBody *body)
{
    BodyRows r;
    *out = nullptr;
    TRY(transpose(body, &r));
    TRY(describe(body, &r));
    const ColumnSource cols = {body->numvars, r.Lower.data, r.Upper.data, r.IsInteger.data};
    const RowSource source = {body->numconstrs, r.Beg.data, r.Ind.data,
                              r.Val.data,       r.Low.data, r.High.data};
    return propagation_rows_build(out, &cols, &source);
}

void propagation_rows_free(PropagationRows *rows)
{
    record_free(rows);
}

int propagation_rows_append(PropagationRows *rows, const RowSource *source,
                            const double *lower, const double *upper)
{
    const PropagationRows &r = *rows;
    const int old_rows = r.NumRows, old_impossible = r.Impossible;
    const int64_t old_entries = r.Entry.size, old_directed = r.Directed.size;
    TRY(reserve_rows(rows, source));
    copy_rows(rows, source, {lower, upper});
    ColumnBlock block;
    if (const int error = build_block(rows, r.NumModelDirected, &block)) {
        rows->NumRows = old_rows;
        rows->Impossible = old_impossible;
        rows->Entry.size = old_entries;
        rows->Directed.size = old_directed;
        rows->RowBeg.size = rows->FirstDirected.size = old_rows + 1;
        return error;
    }
    rows->AppendedCols = static_cast<ColumnBlock &&>(block);
    return 0;
}

void propagation_rows_drop_appended(PropagationRows *rows)
{
    if (rows->Impossible >= rows->NumModelRows) rows->Impossible = -1;
    rows->NumRows = rows->NumModelRows;
    rows->RowBeg.size = rows->FirstDirected.size = rows->NumRows + 1;
    rows->Entry.size = rows->RowBeg[rows->NumRows];
    rows->Directed.size = rows->NumModelDirected;
    rows->AppendedCols = ColumnBlock{};
}

#ifdef TVX_DEBUG
int propagation_rows_check(const PropagationRows *rows)
{
    int wrong = 0;
    wrong += rows->RowBeg.size != rows->NumRows + 1;
    wrong += rows->FirstDirected.size != rows->NumRows + 1;
    wrong += rows->IsInteger.size != rows->NumCols;
    wrong += rows->FirstDirected[rows->NumRows] != rows->Directed.size;
    wrong += rows->RowBeg[rows->NumRows] != rows->Entry.size;
    int64_t entries = 0;
    for (const DirectedRow &row : rows->Directed) {
        const int64_t begin = rows->RowBeg[row.Row], end = rows->RowBeg[row.Row + 1];
        entries += end - begin;
        for (int64_t p = begin + 1; p < end; p++)
            wrong += rows->Entry[p].Key > rows->Entry[p - 1].Key;
        wrong += row.Sibling >= 0 && rows->Directed[row.Sibling].Row != row.Row;
    }
    wrong += entries != rows->ModelCols.Entry.size + rows->AppendedCols.Entry.size;
    return wrong;
}
#endif
