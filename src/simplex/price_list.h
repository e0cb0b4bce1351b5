// price_list.h -- PriceList, the candidate list of both pricings
//
// Problem     Find the index with the largest merit (rows in the dual simplex, columns in the primal simplex) in every
//             iteration, although an iteration changes only a few merits.
// Method      A list holds every index whose merit has reached a threshold. While some listed merit is at or above the
//             threshold, the largest listed merit is the largest of all. Otherwise one pass over all indices sets a
//             lower threshold: a share of the largest merit, which adapts to the number of choices that a list served.
// Invariant   Merit[i] >= Threshold implies InList[i]; merits are >= 0, 0 means not eligible.
// Cost        price_list_best: length of the list; O(Dim) per rebuild. Allocates nothing after price_list_alloc.
#pragma once
#include "runtime/array.h"
#include <algorithm>

// Kinds of pricing: the values of the parameter SimplexPricing.
enum Pricing { PRICE_PARTIAL = 0, PRICE_STEEPEST = 1, PRICE_DEVEX = 2, PRICE_QUICK = 3 };

template<class R> struct PriceList {
    int Dim = 0;
    Array<R> Merit;     // [Dim]
    Array<int> Listed;  // [Dim] the list: its first Count entries
    Array<char> InList; // [Dim] index is in the list
    int Count = 0;
    R Threshold = 0;    // every index with at least this merit is in the list
    double Share = 0.1; // threshold of the next rebuild, as a share of the largest merit
    int Age = 0;        // choices since the last rebuild
    double Work = 0;    // entries visited
};

// A list that served fewer choices than this was too short: Share is multiplied by LIST_SHARE_DOWN.
static constexpr int LIST_SHORT_LIFE = 4;
static constexpr double LIST_SHARE_DOWN = 0.3;
// A list with more than this share of all indices was too long: Share is multiplied by LIST_SHARE_UP.
static constexpr double LIST_LONG = 0.05;
static constexpr double LIST_SHARE_UP = 1.5;
static constexpr double LIST_SHARE_MIN = 1e-6, LIST_SHARE_MAX = 0.5; // range of Share
static constexpr int LIST_MANY = 200; // up to this Dim no list is too long

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
    // so that the next rebuild does not count this list as too short
    list->Age = LIST_SHORT_LIFE;
    list->Threshold = R(1e300);
}

// False if no index has a positive merit.
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

// The index with the largest merit, or -1.
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
