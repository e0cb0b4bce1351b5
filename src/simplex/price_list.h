// price_list.h -- PriceList, the places worth looking at when the best of many is wanted again and again
//
// Problem     Find the place with the largest merit (rows of the dual, columns of the primal) although each iteration
//             changes the merits of a few places only.
// Method      A list holds every place whose merit reached a threshold. While the list has a place at or above the
//             threshold, its best is the best of all. When it has none, one pass over all places sets a lower threshold,
//             a share of the largest merit that adapts to how long lists last.
// Invariant   Merit[i] >= Threshold implies InList[i]; merits are >= 0, 0 means not eligible.
// Cost        best: length of the list; O(Dim) per rebuild. Allocates nothing after price_list_alloc.
#pragma once
#include "runtime/array.h"
#include <algorithm>

// Kinds of pricing, as SimplexPricing names them.
enum Pricing { PRICE_PARTIAL = 0, PRICE_STEEPEST = 1, PRICE_DEVEX = 2, PRICE_QUICK = 3 };

template<class R> struct PriceList {
    int Dim = 0;
    Array<R> Merit;     // [Dim]
    Array<int> Listed;  // [Dim] places in the list, first Count
    Array<char> InList; // [Dim]
    int Count = 0;
    R Threshold = 0;    // every place with at least this merit is in the list
    double Share = 0.1; // threshold of the next rebuild over the largest merit
    int Age = 0;        // choices since the last rebuild
    double Work = 0;    // places looked at
};

static constexpr int LIST_SHORT_LIFE =
    4; // choices after which a list that ran out was too short
static constexpr double LIST_SHARE_DOWN = 0.3; // then the next one reaches this much lower
static constexpr double LIST_SHARE_UP =
    1.5;                                  // a list that is too long starts higher next time
static constexpr double LIST_LONG = 0.05; // share of places in a list that is too long
static constexpr double LIST_SHARE_MIN = 1e-6, LIST_SHARE_MAX = 0.5;
static constexpr int LIST_MANY = 200; // below this a list may hold them all

template<class R> [[nodiscard]] int price_list_alloc(PriceList<R> *list, int dim)
{
    list->Dim = dim;
    TRY(array_assign(&list->Merit, dim, R(0)));
    TRY(array_resize(&list->Listed, dim));
    return array_assign(&list->InList, dim, char(0));
}

template<class R> inline void price_list_set(PriceList<R> *list, int i, R merit)
{
    list->Merit.data[i] = merit;
    if (merit < list->Threshold || merit == R(0) || list->InList.data[i]) return;
    list->InList.data[i] = 1;
    list->Listed.data[list->Count++] = i;
}

// Empties the list; the next choice rebuilds it from the merits.
template<class R> void price_list_reset(PriceList<R> *list)
{
    for (int k = 0; k < list->Count; k++) list->InList.data[list->Listed.data[k]] = 0;
    list->Count = 0;
    list->Age = LIST_SHORT_LIFE; // this list did not run out
    list->Threshold = R(1e300);
}

// False when no place is eligible.
template<class R> bool price_list_rebuild(PriceList<R> *list)
{
    const R *__restrict merit = list->Merit.data;
    R largest = 0;
    for (int i = 0; i < list->Dim; i++) largest = std::max(largest, merit[i]);
    list->Work += 2.0 * list->Dim;
    const int age = list->Age;
    price_list_reset(list);
    if (largest == R(0)) return false;
    if (age < LIST_SHORT_LIFE)
        list->Share = std::max(list->Share * LIST_SHARE_DOWN, LIST_SHARE_MIN);
    list->Age = 0;
    list->Threshold = largest * R(list->Share);
    for (int i = 0; i < list->Dim; i++)
        if (merit[i] >= list->Threshold) price_list_set(list, i, merit[i]);
    if (list->Dim > LIST_MANY && list->Count > LIST_LONG * list->Dim)
        list->Share = std::min(list->Share * LIST_SHARE_UP, LIST_SHARE_MAX);
    return true;
}

// The place of largest merit, or -1.
template<class R> int price_list_best(PriceList<R> *list)
{
    for (;;) {
        int best = -1, kept = 0;
        R best_merit = 0;
        for (int k = 0; k < list->Count; k++) {
            const int i = list->Listed.data[k];
            const R merit = list->Merit.data[i];
            if (merit < list->Threshold) {
                list->InList.data[i] = 0;
                continue;
            }
            list->Listed.data[kept++] = i;
            if (merit > best_merit) {
                best_merit = merit;
                best = i;
            }
        }
        list->Work += list->Count;
        list->Count = kept;
        if (best >= 0) {
            list->Age++;
            return best;
        }
        if (!price_list_rebuild(list)) return -1;
    }
}
