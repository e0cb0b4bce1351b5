// lp_lists.cpp -- the types of variables and the special ordered sets of an LP-format file
//
// Types       Lists of names. Their order means nothing: integer and semi-continuous make semi-integer, binary and
//             general make binary. A binary variable lies between 0 and 1, or within narrower bounds that a line gives.
// Sets        "name: S1:: x:1 y:2", the name may be missing. What cannot be understood is an error, not a warning: a
//             set with fewer members is another model.
#include "files/lp_names.h"

// ---- Types ----

namespace
{
void make_binary(DraftColumns *columns, int j)
{
    const unsigned char flags = columns->flags.data[j];
    char *type = &columns->type.data[j];
    *type = *type == 'S' || *type == 'N' ? 'N' : 'B';
    if (!(flags & LP_LOWER_GIVEN)) columns->lb.data[j] = 0.0;
    if (!(flags & LP_UPPER_GIVEN)) columns->ub.data[j] = 1.0;
}

void make_type(DraftColumns *columns, int j, LpWord section)
{
    char *type = &columns->type.data[j];
    if (section == LpWord::BINARIES)
        make_binary(columns, j);
    else if (section == LpWord::SEMIS)
        *type = *type == 'C' || *type == 'S' ? 'S' : 'N';
    else if (*type != 'B')
        *type = *type == 'S' || *type == 'N' ? 'N' : 'I';
}

// A name that no variable has is passed over with a warning, but not one that may have been meant as the heading of the
// names below it: they would get the type of the section above. Such a word is alone on its line, and looks like a
// heading or stands further left than the names of the list, which begin at `indent`.
int take_unknown(LpReader *reader, int64_t indent)
{
    const LpToken *token = &reader->token;
    if (token->word != LpWord::NONE) // free, inf
        return lp_stop_here(reader, "this is no variable");
    const bool alone = token->fresh && lp_ends_line(reader);
    if (alone && (lp_indent(reader) < indent || lp_like_heading(token->text)))
        return lp_stop_here(reader, "this is neither a variable nor a section");
    lp_warn(reader, LpWarning::UNKNOWN_IN_LIST, token->text);
    return 0;
}
} // namespace

int lp_types(LpReader *reader, LpWord section)
{
    int64_t indent = -1; // of the first name at the start of a line
    for (;; lp_next(reader)) {
        const LpToken *token = &reader->token;
        if (token->kind == LpKind::END) return 0;
        const bool is_section = lp_at_section(reader);
        const int j =
            token->kind == LpKind::NAME ? draft_find(&reader->draft, token->text) : -1;
        if (is_section && j >= 0)
            return lp_stop_here(reader, "this could be the section or the variable");
        if (is_section) return 0;
        if (token->kind != LpKind::NAME)
            return lp_stop_here(reader, "only names of variables can stand here");
        if (j < 0)
            TRY(take_unknown(reader, indent));
        else
            make_type(&reader->draft.columns, j, section);
        if (token->fresh && indent < 0) indent = lp_indent(reader);
    }
}

// ---- Sets ----

namespace
{
// The type when "S1 ::" or "S2 ::" is in hand, which is taken then; else 0.
int take_header(LpReader *reader)
{
    const TextSpan word = reader->token.text;
    if (!span_is_word(word, "S1") && !span_is_word(word, "S2")) return 0;
    const char *p = reader->next;
    while (p < reader->stop && is_white(*p)) p++;
    if (p[0] != ':' || p[1] != ':') return 0;
    const int type = word.begin[1] - '0';
    lp_next(reader); // skips the colons
    lp_next(reader);
    return type;
}

int take_weight(LpReader *reader, TextSpan name)
{
    bool infinite = false;
    double weight = 0.0;
    bool twice = false;
    TRY(lp_value(reader, &weight, &infinite));
    if (infinite) return lp_stop(reader, name, "the weight is infinite");
    if (!reader->draft.sets.type.size)
        return lp_stop(reader, name, "S1:: or S2:: must begin a set");
    const int j = draft_find(&reader->draft, name);
    if (j < 0) return lp_stop(reader, name, "the set's member is no variable");
    TRY(draft_set_member(&reader->draft.sets, j, weight, &twice));
    return twice ? lp_stop(reader, name, "the variable is in this set already") : 0;
}

// A set's head with or without a name, or a member.
int take_item(LpReader *reader)
{
    int type = take_header(reader);
    if (type) return draft_set_begin(&reader->draft.sets, type);
    TextSpan name = reader->token.text;
    if (!lp_take_label(reader, &name))
        return lp_stop_here(reader, "a set or a member \"name:weight\" must stand here");
    type = take_header(reader);
    if (type) return draft_set_begin(&reader->draft.sets, type);
    return take_weight(reader, name);
}
} // namespace

int lp_sets(LpReader *reader)
{
    while (reader->token.kind != LpKind::END && !lp_at_section(reader))
        TRY(take_item(reader));
    return 0;
}
