// sos.cpp -- the order of the members of special ordered sets
//
// The order of a set is that of its weights. Solvers use the order of storage, so a set whose weights are not monotone
// is sorted; a monotone one, in either direction, is not changed. Equal weights inside a sorted set keep their order
// and are made different by less than half the smallest gap between weights, so that the weights still define the
// order. E. M. L. Beale and J. A. Tomlin, 1970, for the sets themselves. Cost: O(k log k) for a set of k members.
#include "body/body.h"
#include <algorithm>

namespace
{
struct Member {
    double weight;
    int var;
    int position; // in the caller's list, for a stable order
};

bool is_monotone(const double *weight, int n)
{
    bool up = true;
    bool down = true;
    for (int k = 1; k < n; k++) {
        up = up && weight[k] >= weight[k - 1];
        down = down && weight[k] <= weight[k - 1];
    }
    return up || down;
}

// Sorted weights, not all equal: ties get apart.
void separate_ties(Member *member, int n)
{
    double gap = 0;
    bool ties = false;
    for (int k = 1; k < n; k++) {
        const double step = member[k].weight - member[k - 1].weight;
        if (step > 0)
            gap = gap > 0 ? std::min(gap, step) : step;
        else
            ties = true;
    }
    if (!ties) return;
    for (int k = 0; k < n; k++) member[k].weight += k * (gap / (2.0 * n));
}
} // namespace

int sos_sort_members(int n_sos, const int *beg, int *ind, double *weight)
{
    Array<Member> members;
    for (int s = 0; s < n_sos; s++) {
        const int n = beg[s + 1] - beg[s];
        double *w = weight + beg[s];
        int *v = ind + beg[s];
        if (n < 3 || is_monotone(w, n)) continue;
        TRY(array_resize(&members, n));
        for (int k = 0; k < n; k++)
            members[k] = {.weight = w[k], .var = v[k], .position = k};
        std::sort(members.begin(), members.end(), [](const Member &a, const Member &b) {
            return a.weight != b.weight ? a.weight < b.weight : a.position < b.position;
        });
        separate_ties(members.data, n);
        for (int k = 0; k < n; k++) {
            w[k] = members[k].weight;
            v[k] = members[k].var;
        }
    }
    return 0;
}
