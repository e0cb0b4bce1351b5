// domain_literals.cpp -- what a literal that has become true says of other columns
//
// Method   Entries of the trail are followed in their order: when a column is fixed at 0 or 1, the other literals of its
//          cliques are false, and the bounds of its implications hold.
// Cost     The sizes of the cliques and implications of each such literal.
#include "domain/domain_parts.h"

namespace
{
void make_false(Domain *d, int literal, ReasonKind kind, int because)
{
    const int j = literal_col(literal);
    const int value = !literal_value(literal);
    const BoundSide side = value ? BoundSide::LOWER : BoundSide::UPPER;
    domain_tighten(d, j, side, value, {kind, because});
}

void follow_cliques(Domain *d, int literal)
{
    const CliqueTable *t = d->Cliques;
    const int *neighbour = lists_at(&t->Neighbours, literal);
    const int n_neighbours = t->Neighbours.Size.data[literal];
    for (int k = 0; k < n_neighbours; k++)
        make_false(d, neighbour[k], ReasonKind::CLIQUE, literal);
    d->Effort += n_neighbours;
    const int *list = lists_at(&t->CliquesOf, literal);
    for (int k = 0; k < t->CliquesOf.Size.data[literal]; k++) {
        const int *member = clique_literals(t, list[k]);
        const int size = clique_size(t, list[k]);
        for (int p = 0; p < size; p++)
            if (member[p] != literal) make_false(d, member[p], ReasonKind::CLIQUE, literal);
        d->Effort += size + 1;
    }
}

void follow_implications(Domain *d, int literal)
{
    const int *list = lists_at(&d->Log->ByTrigger, literal);
    const int count = d->Log->ByTrigger.Size.data[literal];
    for (int k = 0; k < count; k++) {
        const Implication *e = &d->Log->Entry.data[list[k]];
        domain_tighten(d, e->Col, e->Side, e->Value, {ReasonKind::IMPLICATION, literal});
    }
    d->Effort += count;
}

void follow_column(Domain *d, int j)
{
    const double value = d->Lower.data[j];
    // Bounds of integer columns are integral, so they can be compared.
    if (!d->Rows->IsInteger.data[j] || value != d->Upper.data[j]) return;
    if (value != 0 && value != 1) return;
    const int literal = literal_of(j, static_cast<int>(value));
    if (d->Cliques) follow_cliques(d, literal);
    if (d->Log) follow_implications(d, literal);
}
} // namespace

void domain_follow_literals(Domain *d)
{
    if (!d->Cliques && !d->Log) return;
    if (d->FreshLiterals)
        for (int j = 0; j < d->Rows->NumCols && !d->Infeasible; j++) follow_column(d, j);
    d->FreshLiterals = false;
    while (d->NextLiteral < d->Trail.size && !d->Infeasible && !d->Error)
        follow_column(d, d->Trail.data[d->NextLiteral++].Col);
}
