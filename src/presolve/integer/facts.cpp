// facts.cpp -- the record MipFacts, and its way through later reductions to the reduced model
//
// Method      The undo records pushed since Mark are read from the newest to the oldest: each says what an older column is
//             in terms of newer ones. A column that other columns were merged into, or whose slack took its place, has
//             another meaning: what was known of it goes.
// Cost        O(columns + new undo records + entries of the tables), when there are new records
#include "presolve/integer/facts.h"
#include "domain/propagation_rows.h"
#include "runtime/record.h"
#include <utility>

namespace
{
constexpr int64_t LIMIT_MORE =
    1000000; // literals of the table, beyond twice the entries of the model
constexpr double WORTH_LOOKING = 0.02; // share of the model that has changed
constexpr double SAME = 1e-6;          // distance of values of a binary column

// An older column in terms of the present ones: Scale x_Col + Offset, a constant (AT_VALUE), or not known.
constexpr int AT_VALUE = -1, NOT_KNOWN = -2;

ColumnMap composed(double offset, double factor, const ColumnMap &inner)
{
    if (inner.Col == NOT_KNOWN) return inner;
    return {inner.Col, factor * inner.Scale, offset + factor * inner.Offset};
}

void follow_substitution(const UndoRecord *undo, ColumnMap *map)
{
    const double value = undo->value / undo->factor;
    ColumnMap *own = &map[undo->col];
    *own = {NOT_KNOWN, 0, 0};
    if (undo->split == 0) *own = {AT_VALUE, 0, value};
    if (undo->split == 1)
        *own = composed(value, -undo->entry[0].value / undo->factor,
                        map[undo->entry[0].index]);
}

void follow(const UndoRecord *undo, ColumnMap *map)
{
    switch (undo->kind) {
    case UNDO_FIX:
        map[undo->col] = {AT_VALUE, 0, undo->value};
        break;
    case UNDO_SUBSTITUTE:
        follow_substitution(undo, map);
        break;
    case UNDO_COLUMN_SHIFT:
        map[undo->col] = composed(undo->value, undo->factor, map[undo->col]);
        break;
    case UNDO_MERGE_COLS:
        map[undo->col] = map[undo->other] = {NOT_KNOWN, 0, 0};
        break;
    case UNDO_FREE_TO_SLACK:
    case UNDO_SLACK_COLUMN:
    case UNDO_DOMINATED:
        map[undo->col] = {NOT_KNOWN, 0, 0};
        break;
    default: // no column changes
        break;
    }
}

// Columns of the time of `mark` in terms of the present ones.
int map_columns(const PresolveWork *w, const UndoRecord *head, const UndoRecord *mark,
                Array<ColumnMap> *map)
{
    TRY(array_resize(map, w->NumCols));
    for (int j = 0; j < w->NumCols; j++)
        map->data[j] = {is_live_col(w, j) ? j : NOT_KNOWN, 1, 0};
    for (const UndoRecord *undo = head; undo != mark; undo = undo->next)
        follow(undo, map->data);
    return 0;
}

int image_of_constant(double value)
{
    if (std::fabs(value) <= SAME) return IMAGE_ZERO;
    return std::fabs(value - 1) <= SAME ? IMAGE_ONE : IMAGE_GONE;
}

// The literal that has the value of an older column, if that was binary.
int image_of(const PresolveWork *w, const ColumnMap &m)
{
    if (m.Col == NOT_KNOWN) return IMAGE_GONE;
    if (m.Col == AT_VALUE) return image_of_constant(m.Offset);
    const double lb = w->Lb.data[m.Col], ub = w->Ub.data[m.Col];
    if (lb == ub) return image_of_constant(m.Scale * lb + m.Offset); // integral
    if (!is_binary_now(w, m.Col)) return IMAGE_GONE;
    if (m.Scale == 1 && m.Offset == 0) return literal_of(m.Col, 1); // exact: from integers
    if (m.Scale == -1 && m.Offset == 1) return literal_of(m.Col, 0);
    return IMAGE_GONE;
}

// Images of the literals, and the map without constants, as src/domain reads them. number: of a column in the model that
// is meant, or null.
int make_images(const PresolveWork *w, Array<ColumnMap> *map, const int *number,
                Array<int> *image)
{
    TRY(array_resize(image, w->NumCols));
    for (int j = 0; j < w->NumCols; j++) {
        ColumnMap *m = &map->data[j];
        int at = image_of(w, *m);
        if (at >= 0 && number) at = 2 * number[literal_col(at)] + (at & 1);
        image->data[j] = at;
        if (m->Col < 0)
            m->Col = -1;
        else if (number)
            m->Col = number[m->Col];
    }
    return 0;
}

int remap_table(CliqueTable **t, const Array<int> &image, int n_cols)
{
    if (!*t) return 0;
    CliqueTable *to = nullptr;
    TRY(clique_table_remap(*t, image.data, n_cols, &to));
    clique_table_free(std::exchange(*t, to));
    return 0;
}

int remap_log(ImplicationLog **log, const Array<int> &image, const Array<ColumnMap> &map,
              int n_cols)
{
    ImplicationLog *to = nullptr;
    TRY(implication_log_remap(*log, image.data, map.data, n_cols, &to));
    implication_log_free(std::exchange(*log, to));
    return 0;
}

int remap(PresolveWork *w)
{
    MipFacts *facts = w->Facts;
    Array<ColumnMap> map;
    Array<int> image;
    TRY(map_columns(w, w->Undo.head, facts->Mark, &map));
    TRY(make_images(w, &map, nullptr, &image));
    TRY(remap_table(&facts->Found, image, w->NumCols));
    TRY(remap_table(&facts->OfRows, image, w->NumCols));
    TRY(remap_log(&facts->Log, image, map, w->NumCols));
    facts->Mark = w->Undo.head;
    return 0;
}

int create(PresolveWork *w)
{
    w->Facts = record_create<MipFacts>();
    if (!w->Facts) return OUT_OF_MEMORY;
    w->Facts->Mark = w->Undo.head;
    TRY(array_assign(&w->Facts->Probes, w->NumCols, 0));
    TRY(clique_table_create(&w->Facts->Found, w->NumCols, facts_limit(w)));
    return implication_log_create(&w->Facts->Log, w->NumCols);
}

// Cliques of the rows of the reduced model, too.
int add_rows(CliqueTable *t, const ModelBody *body)
{
    PropagationRows *rows = nullptr;
    TRY(propagation_rows_of_body(&rows, body));
    int code = clique_table_add_rows(t, rows, body->lb.data, body->ub.data);
    propagation_rows_free(rows);
    if (!code && t->Fixed.size > 0) code = clique_table_clean(t);
    return code;
}

bool is_empty(const CliqueTable *t)
{
    return t->Infeasible || (t->NumEdges == 0 && clique_count(t) == 0);
}

// The table that probing has filled, and one with the cliques of the rows, too.
int give_cliques(const CliqueTable *found, const Array<int> &image, PresolveResult *result)
{
    const int n = result->Reduced->numvars;
    TRY(clique_table_remap(found, image.data, n, &result->Found));
    TRY(clique_table_remap(found, image.data, n, &result->Cliques));
    TRY(add_rows(result->Cliques, result->Reduced));
    for (CliqueTable **t : {&result->Found, &result->Cliques})
        if (is_empty(*t)) clique_table_free(std::exchange(*t, nullptr));
    return 0;
}

int give_implications(ImplicationLog *log, PresolveResult *result)
{
    result->Implications = log;
    const ModelBody *body = result->Reduced;
    TRY(implication_log_revalidate(log, body->lb.data, body->ub.data));
    if (log->Entry.size > 0) return 0;
    implication_log_free(std::exchange(result->Implications, nullptr));
    return 0;
}
} // namespace

ChangeCounts counts_now(const PresolveWork *w)
{
    return {w->RowsRemoved, w->ColsRemoved, w->CoefsChanged};
}

bool is_much_the_same(const PresolveWork *w, const ChangeCounts &then)
{
    const ChangeCounts now = counts_now(w);
    const double rows = 1.0 + w->NumRows - now.Rows, cols = 1.0 + w->NumCols - now.Cols,
                 entries = 1.0 + static_cast<double>(w->NumNz);
    return (now.Rows - then.Rows) / rows + (now.Cols - then.Cols) / cols +
               (now.Coefs - then.Coefs) / entries <
           WORTH_LOOKING;
}

int64_t facts_limit(const PresolveWork *w)
{
    return 2 * w->NumNz + LIMIT_MORE;
}

int facts_refresh(PresolveWork *w)
{
    if (!w->Facts) return create(w);
    return w->Facts->Mark == w->Undo.head ? 0 : remap(w);
}

void facts_free(MipFacts *facts)
{
    if (!facts) return;
    clique_table_free(facts->Found);
    clique_table_free(facts->OfRows);
    implication_log_free(facts->Log);
    record_free(facts);
}

int facts_to_result(PresolveWork *w, PresolveResult *result)
{
    MipFacts *facts = w->Facts;
    if (!facts || !result->Reduced) return 0;
    const int n = result->Reduced->numvars;
    Array<ColumnMap> map;
    Array<int> image;
    TRY(map_columns(w, result->Undo.head, facts->Mark, &map));
    TRY(make_images(w, &map, result->ColMap.data, &image));
    ImplicationLog *log = nullptr;
    TRY(give_cliques(facts->Found, image, result));
    TRY(implication_log_remap(facts->Log, image.data, map.data, n, &log));
    return give_implications(log, result);
}
