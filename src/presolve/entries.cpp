// entries.cpp -- deletion and insertion of entries of the presolve matrix, and clean-up of its lists
//
// Deletion only marks an entry. A sweep unlinks the marked entries from the list of one row or column; a compression
// rebuilds all lists and frees the deleted nodes. Between compressions a node may be in one list and not in the other,
// so it is not reused before.
#include "presolve/work.h"

void delete_entry(PresolveWork *w, int p)
{
    PresolveNode *node = &w->Nodes.data[p];
    w->RowCnt.data[node->row]--;
    w->ColCnt.data[node->col]--;
    w->RowMark.data[node->row] |= NEEDS_SWEEP;
    w->ColMark.data[node->col] |= NEEDS_SWEEP;
    node->col = -1;
    w->DeadCount++;
}

void remove_row(PresolveWork *w, int i, int state)
{
    for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p)) {
        mark_col(w, w->Nodes.data[p].col);
        delete_entry(w, p);
    }
    w->RowHead.data[i] = -1;
    w->RowCnt.data[i] = state;
    w->RowsRemoved++;
}

int sweep_row(PresolveWork *w, int i)
{
    int *link = &w->RowHead.data[i], entries = 0;
    for (; *link >= 0; entries++) {
        PresolveNode *node = &w->Nodes.data[*link];
        if (node->col < 0)
            *link = node->next_in_row;
        else
            link = &node->next_in_row;
    }
    w->RowMark.data[i] &= ~NEEDS_SWEEP;
    return entries;
}

int sweep_col(PresolveWork *w, int j)
{
    int *link = &w->ColHead.data[j], entries = 0;
    for (; *link >= 0; entries++) {
        PresolveNode *node = &w->Nodes.data[*link];
        if (node->col < 0)
            *link = node->next_in_col;
        else
            link = &node->next_in_col;
    }
    w->ColMark.data[j] &= ~NEEDS_SWEEP;
    return entries;
}

// Rows and columns with deletions are in the pending part of both worklists.
int sweep_marked(PresolveWork *w)
{
    for (int k = 0; k < w->RowsB.PendingCnt; k++) {
        const int i = w->RowsB.List.data[k];
        if (w->RowMark.data[i] & NEEDS_SWEEP) TRY(check_limits(w, 1 + sweep_row(w, i)));
    }
    for (int k = 0; k < w->ColsB.PendingCnt; k++) {
        const int j = w->ColsB.List.data[k];
        if (w->ColMark.data[j] & NEEDS_SWEEP) TRY(check_limits(w, 1 + sweep_col(w, j)));
    }
    return 0;
}

int compress(PresolveWork *w)
{
    for (int i = 0; i < w->NumRows; i++) {
        w->RowHead.data[i] = -1;
        w->RowMark.data[i] &= ~NEEDS_SWEEP;
    }
    for (int j = 0; j < w->NumCols; j++) {
        w->ColHead.data[j] = -1;
        w->ColMark.data[j] &= ~NEEDS_SWEEP;
    }
    w->FreeList = -1;
    w->FreeCount = 0;
    for (int p = static_cast<int>(w->Nodes.size) - 1; p >= 0; p--) {
        PresolveNode *node = &w->Nodes.data[p];
        TRY(check_limits(w, 1));
        if (node->col < 0) {
            node->next_in_row = w->FreeList;
            w->FreeList = p;
            w->FreeCount++;
            continue;
        }
        node->next_in_row = w->RowHead.data[node->row];
        node->next_in_col = w->ColHead.data[node->col];
        w->RowHead.data[node->row] = w->ColHead.data[node->col] = p;
    }
    w->DeadCount = 0;
    w->Work += 5.0 * static_cast<double>(w->NumNz);
    return 0;
}

void insert_entry(PresolveWork *w, int i, int j, double value)
{
    const int p = w->FreeList;
    PresolveNode *node = &w->Nodes.data[p];
    w->FreeList = node->next_in_row;
    w->FreeCount--;
    *node = {value, i, j, w->RowHead.data[i], w->ColHead.data[j]};
    if (w->HasSizes) w->EntrySize.data[p] = 0;
    w->RowHead.data[i] = w->ColHead.data[j] = p;
    w->RowCnt.data[i]++;
    w->ColCnt.data[j]++;
}
