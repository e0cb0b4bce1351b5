// lists.cpp -- worklists: the rows and columns that reductions have to process again
//
// Method      Each of two worklists holds the rows and columns that were touched before its last rotation (active) and
//             those touched since (pending). Reductions of the inner loop use worklist B, the others A. If the active
//             part is small the candidates are its members and their neighbours; otherwise all rows and columns.
// Cost        Marking O(1); candidates O(their number and the entries of the active part).
#include "presolve/work.h"

namespace
{
constexpr int MANY_ROWS = 5,
              MANY_NEIGHBOURS = 2; // shares from which all rows and columns are candidates

constexpr double MANY_COLS = 5, MANY_COL_ENTRIES = 3;

constexpr int MANY_COL_NEIGHBOURS = 2, MANY_SENSE_COLS = 4, MANY_SENSE_NEIGHBOURS = 3;

void mark(int *flags, int k, WorkList *a, WorkList *b)
{
    if (!(*flags & (A_ACTIVE | A_TOUCHED))) a->List.data[a->PendingCnt++] = k;
    if (!(*flags & (B_ACTIVE | B_TOUCHED))) b->List.data[b->PendingCnt++] = k;
    *flags |= A_TOUCHED | B_TOUCHED;
}

void rotate_list(WorkList *list, int *marks, const int *count, int active, int touched)
{
    int kept = 0;
    for (int q = 0; q < list->PendingCnt; q++) {
        const int k = list->List.data[q];
        const bool keep = (marks[k] & touched) && count[k] >= 0;
        marks[k] &= ~(active | touched);
        if (!keep) continue;
        marks[k] |= active;
        list->List.data[kept++] = k;
    }
    list->ActiveCnt = list->PendingCnt = kept;
}

int all_rows(const PresolveWork *w, int least, int *list)
{
    int count = 0;
    for (int i = 0; i < w->NumRows; i++)
        if (w->RowCnt.data[i] >= least) list[count++] = i;
    return count;
}

int all_cols(const PresolveWork *w, int *list)
{
    int count = 0;
    for (int j = 0; j < w->NumCols; j++)
        if (is_live_col(w, j)) list[count++] = j;
    return count;
}

// Adds k to the list unless it is there.
void add_once(PresolveWork *w, int *list, int *count, int k)
{
    if (w->Flag.data[k]) return;
    w->Flag.data[k] = 1;
    list[(*count)++] = k;
}

// Clears the flags of a list and keeps its members with enough entries.
int keep_counted(PresolveWork *w, const int *counts, int least, int *list, int count)
{
    int kept = 0;
    for (int q = 0; q < count; q++) {
        const int k = list[q];
        w->Flag.data[k] = 0;
        if (counts[k] >= least) list[kept++] = k;
    }
    return kept;
}

// Active columns and the columns of active rows (of these senses, with at least `least` entries).
int cols_nearby(PresolveWork *w, int senses, int least, int *list)
{
    const WorkList *rows = rows_of_phase(w), *cols = cols_of_phase(w);
    int count = 0;
    for (int q = 0; q < cols->ActiveCnt; q++) add_once(w, list, &count, cols->List.data[q]);
    for (int q = 0; q < rows->ActiveCnt; q++) {
        const int i = rows->List.data[q];
        const int sense = w->Sense.data[i] == '=' ? SENSE_EQUAL : SENSE_LESS;
        if (w->RowCnt.data[i] < least || !(sense & senses)) continue;
        for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p))
            add_once(w, list, &count, w->Nodes.data[p].col);
    }
    return keep_counted(w, w->ColCnt.data, 0, list, count);
}

double row_lengths(const PresolveWork *w, int senses, int least)
{
    const WorkList *rows = rows_of_phase(w);
    double total = 0;
    for (int q = 0; q < rows->ActiveCnt; q++) {
        const int i = rows->List.data[q];
        const int sense = w->Sense.data[i] == '=' ? SENSE_EQUAL : SENSE_LESS;
        if (w->RowCnt.data[i] >= least && (sense & senses)) total += w->RowCnt.data[i];
    }
    return total;
}
} // namespace

void mark_row(PresolveWork *w, int i)
{
    mark(&w->RowMark.data[i], i, &w->RowsA, &w->RowsB);
}

void mark_col(PresolveWork *w, int j)
{
    mark(&w->ColMark.data[j], j, &w->ColsA, &w->ColsB);
}

void mark_rows_of_col(PresolveWork *w, int j)
{
    for (int p = first_in_col(w, j); p >= 0; p = next_in_col(w, p))
        mark_row(w, w->Nodes.data[p].row);
}

void mark_cols_of_row(PresolveWork *w, int i)
{
    for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p))
        mark_col(w, w->Nodes.data[p].col);
}

namespace
{
int fill_list(PresolveWork *w, WorkList *list, int count)
{
    for (int k = 0; k < count; k++) list->List.data[k] = k;
    list->ActiveCnt = list->PendingCnt = count;
    return check_limits(w, count);
}
} // namespace

int mark_everything(PresolveWork *w)
{
    for (WorkList *list : {&w->RowsA, &w->RowsB}) TRY(fill_list(w, list, w->NumRows));
    for (WorkList *list : {&w->ColsA, &w->ColsB}) TRY(fill_list(w, list, w->NumCols));
    for (int i = 0; i < w->NumRows; i++) w->RowMark.data[i] = A_ACTIVE | B_ACTIVE;
    for (int j = 0; j < w->NumCols; j++) w->ColMark.data[j] = A_ACTIVE | B_ACTIVE;
    return presolve_check(w);
}

void rotate(PresolveWork *w)
{
    const bool a = w->Phase == 1;
    const int active = a ? A_ACTIVE : B_ACTIVE, touched = a ? A_TOUCHED : B_TOUCHED;
    rotate_list(a ? &w->RowsA : &w->RowsB, w->RowMark.data, w->RowCnt.data, active,
                touched);
    rotate_list(a ? &w->ColsA : &w->ColsB, w->ColMark.data, w->ColCnt.data, active,
                touched);
}

int active_rows(const PresolveWork *w, int *list)
{
    if (w->Phase == 0) return all_rows(w, 0, list);
    const WorkList *rows = rows_of_phase(w);
    int count = 0;
    for (int q = 0; q < rows->ActiveCnt; q++)
        if (is_live_row(w, rows->List.data[q])) list[count++] = rows->List.data[q];
    return count;
}

int candidate_rows(PresolveWork *w, int *list)
{
    const WorkList *rows = rows_of_phase(w);
    if (w->Phase == 0 || w->NumRows <= double{MANY_ROWS} * rows->ActiveCnt)
        return all_rows(w, 2, list);
    int near = 0;       // columns of the active rows
    double entries = 0; // in these
    int *cols = w->IndexC.data;
    for (int q = 0; q < rows->ActiveCnt; q++) {
        const int i = rows->List.data[q];
        if (!is_live_row(w, i)) continue;
        for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p)) {
            const int j = w->Nodes.data[p].col;
            if (w->ColCnt.data[j] >= 2 && !w->Flag.data[j]) entries += w->ColCnt.data[j];
            if (w->ColCnt.data[j] >= 2) add_once(w, cols, &near, j);
        }
    }
    for (int q = 0; q < near; q++) w->Flag.data[cols[q]] = 0;
    if (w->NumRows <= MANY_NEIGHBOURS * (entries + rows->ActiveCnt))
        return all_rows(w, 2, list);
    int count = 0;
    for (int q = 0; q < rows->ActiveCnt; q++) add_once(w, list, &count, rows->List.data[q]);
    for (int q = 0; q < near; q++)
        for (int p = first_in_col(w, cols[q]); p >= 0; p = next_in_col(w, p))
            add_once(w, list, &count, w->Nodes.data[p].row);
    return keep_counted(w, w->RowCnt.data, 2, list, count);
}

int candidate_cols(PresolveWork *w, int *list)
{
    const WorkList *rows = rows_of_phase(w), *cols = cols_of_phase(w);
    const double guess =
        MANY_COLS * cols->ActiveCnt + static_cast<double>(w->NumNz) * MANY_COL_ENTRIES *
                                          rows->ActiveCnt / (w->NumCols + 1.0);
    if (w->Phase == 0 || w->NumCols <= guess) return all_cols(w, list);
    const double entries = row_lengths(w, SENSE_LESS | SENSE_EQUAL, 2);
    if (w->NumCols <= MANY_COL_NEIGHBOURS * (entries + cols->ActiveCnt))
        return all_cols(w, list);
    return cols_nearby(w, SENSE_LESS | SENSE_EQUAL, 2, list);
}

int candidate_cols_by_sense(PresolveWork *w, int senses, int *list)
{
    const WorkList *rows = rows_of_phase(w), *cols = cols_of_phase(w);
    const double entries = row_lengths(w, senses, 0);
    const bool few = w->Phase != 0 && w->NumRows > double{MANY_ROWS} * rows->ActiveCnt &&
                     w->NumCols >= double{MANY_SENSE_COLS} * cols->ActiveCnt &&
                     w->NumCols > MANY_SENSE_NEIGHBOURS * (entries + cols->ActiveCnt);
    return few ? cols_nearby(w, senses, 0, list) : all_cols(w, list);
}
