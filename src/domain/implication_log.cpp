// implication_log.cpp -- the record ImplicationLog
//
// Method   Entries stand in the order in which they were added, with two lists of their numbers. A search for the same
//          trigger and bound goes through the shorter of the two lists, at most MOST_PER_BOUND entries.
#include "domain/implication_log.h"
#include "runtime/record.h"
#include <algorithm>
#include <cmath>
#include <utility>

namespace
{
// A bound that was mapped from one model to another may differ by rounding from the one there.
constexpr double SAME_BOUND = 1e-9;

bool is_tighter(BoundSide side, double value, double than)
{
    return side == BoundSide::UPPER ? value < than : value > than;
}

// The entry of the same trigger and bound, or -1.
int find_entry(const ImplicationLog *log, const Implication *e)
{
    const int bound = bound_number(e->Col, e->Side);
    const bool by_bound =
        log->ByBound.Size.data[bound] < log->ByTrigger.Size.data[e->Trigger];
    const IntLists *lists = by_bound ? &log->ByBound : &log->ByTrigger;
    const int number = by_bound ? bound : e->Trigger;
    const int *list = lists_at(lists, number);
    for (int k = 0; k < lists->Size.data[number]; k++) {
        const Implication *other = &log->Entry.data[list[k]];
        if (other->Trigger == e->Trigger && other->Col == e->Col && other->Side == e->Side)
            return list[k];
    }
    return -1;
}

int start_lists(ImplicationLog *log, int n_cols)
{
    log->NumCols = n_cols;
    TRY(lists_create(&log->ByTrigger, 2 * int64_t{n_cols}));
    return lists_create(&log->ByBound, 2 * int64_t{n_cols});
}

// Is the entry still a variable bound under these bounds? Its Global is the bound of now.
bool renew(Implication *e, const double *lower, const double *upper)
{
    const int z = literal_col(e->Trigger);
    if (upper[z] - lower[z] < 0.5) return false; // of a binary column
    const double now = e->Side == BoundSide::UPPER ? upper[e->Col] : lower[e->Col];
    const double room = SAME_BOUND * std::max(1.0, std::fabs(now));
    const double known = e->Global + (e->Side == BoundSide::UPPER ? room : -room);
    if (is_tighter(e->Side, known, now) || !is_tighter(e->Side, e->Value, now))
        return false;
    e->Global = now;
    return true;
}

// In the columns of another model; false when it has no place there.
bool translate(Implication *e, const int *image, const ColumnMap *map)
{
    const int literal = image[literal_col(e->Trigger)];
    const ColumnMap to = map[e->Col];
    if (literal < 0 || to.Col < 0) return false;
    e->Trigger = literal ^ (e->Trigger & 1);
    e->Col = to.Col;
    e->Value = (e->Value - to.Offset) / to.Scale;
    if (!domain_is_infinite(e->Global)) e->Global = (e->Global - to.Offset) / to.Scale;
    if (to.Scale > 0) return true;
    e->Side = e->Side == BoundSide::UPPER ? BoundSide::LOWER : BoundSide::UPPER;
    if (domain_is_infinite(e->Global)) e->Global = -e->Global;
    return true;
}
} // namespace

int implication_log_create(ImplicationLog **out, int n_cols)
{
    *out = nullptr;
    ImplicationLog *log = record_create<ImplicationLog>();
    if (!log) return OUT_OF_MEMORY;
    if (const int error = start_lists(log, n_cols)) {
        implication_log_free(log);
        return error;
    }
    *out = log;
    return 0;
}

void implication_log_free(ImplicationLog *log)
{
    record_free(log);
}

int implication_log_add(ImplicationLog *log, Implication entry)
{
    const int bound = bound_number(entry.Col, entry.Side);
    if (!is_tighter(entry.Side, entry.Value, entry.Global)) return 0;
    if (literal_col(entry.Trigger) == entry.Col) return 0;
    const int known = find_entry(log, &entry);
    if (known >= 0) {
        if (is_tighter(entry.Side, entry.Value, log->Entry[known].Value))
            log->Entry[known] = entry;
        return 0;
    }
    if (log->ByBound.Size[bound] >= MOST_PER_BOUND || log->Entry.size == INT32_MAX)
        return 0;
    TRY(lists_reserve(&log->ByTrigger, entry.Trigger));
    TRY(lists_reserve(&log->ByBound, bound));
    TRY(array_append(&log->Entry, entry));
    lists_push(&log->ByTrigger, entry.Trigger, static_cast<int>(log->Entry.size - 1));
    lists_push(&log->ByBound, bound, static_cast<int>(log->Entry.size - 1));
    return 0;
}

int implication_log_revalidate(ImplicationLog *log, const double *lower,
                               const double *upper)
{
    ImplicationLog valid;
    TRY(start_lists(&valid, log->NumCols));
    TRY(array_reserve(&valid.Entry, log->Entry.size));
    for (Implication e : log->Entry)
        if (renew(&e, lower, upper)) TRY(implication_log_add(&valid, e));
    *log = std::move(valid);
    return 0;
}

int implication_log_remap(const ImplicationLog *log, const int *image, const ColumnMap *map,
                          int n_cols, ImplicationLog **out)
{
    ImplicationLog *to = nullptr;
    *out = nullptr;
    TRY(implication_log_create(&to, n_cols));
    for (Implication e : log->Entry) {
        if (!translate(&e, image, map)) continue;
        if (const int error = implication_log_add(to, e)) {
            implication_log_free(to);
            return error;
        }
    }
    *out = to;
    return 0;
}

#ifdef TVX_DEBUG
int implication_log_check(const ImplicationLog *log)
{
    int wrong = 0;
    int64_t by_trigger = 0, by_bound = 0;
    for (int k = 0; k < 2 * log->NumCols; k++) {
        const int *list = lists_at(&log->ByTrigger, k),
                  *bounds = lists_at(&log->ByBound, k);
        for (int p = 0; p < log->ByTrigger.Size[k]; p++)
            wrong += log->Entry[list[p]].Trigger != k;
        for (int p = 0; p < log->ByBound.Size[k]; p++) {
            const Implication *e = &log->Entry[bounds[p]];
            wrong += bound_number(e->Col, e->Side) != k;
            wrong += !is_tighter(e->Side, e->Value, e->Global);
        }
        by_trigger += log->ByTrigger.Size[k];
        by_bound += log->ByBound.Size[k];
        wrong += log->ByBound.Size[k] > MOST_PER_BOUND;
    }
    return wrong + (by_trigger != log->Entry.size) + (by_bound != log->Entry.size);
}
#endif
