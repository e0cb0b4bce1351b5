// mps_card.cpp -- a data line of an MPS file as a card: the fields of the fixed form, whatever the form of the file
//
// Problem     MPS has two forms that files do not tell apart. Fixed form puts the fields at columns 2-3, 5-12, 15-22,
//             25-36, 40-47 and 50-61: names may hold blanks and fields may be left out. Free form separates them by
//             white space. Most files satisfy both; a file read in the wrong form may go through with wrong fields.
// Method      Free form: the number of fields tells their roles, and only for bounds without set name the declared
//             columns are asked. Fixed form: the spaces between the fields must be blank, the value of a last pair may
//             run on to the end of the line. A line of a free file that has blanks where field 2 would end, and fits
//             the columns as a whole, is SUSPECT (see mps_reader.h): fixed form then has the first word.
// Comments    A name field other than the first that begins with '$' starts a comment, unless it is a declared name.
// Cost        O(length of the line).
#include "files/file_number.h"
#include "files/mps_reader.h"

void mps_split(TextSpan line, MpsTokens *tokens)
{
    const char *p = line.begin;
    const char *const end = line.end;
    int count = 0;
    for (;;) {
        while (p < end && is_white(*p)) p++;
        if (p == end) break;
        const char *begin = p;
        p = skip_word(p, end);
        if (count < MPS_TOKENS) tokens->token[count] = {begin, p};
        if (++count > MPS_TOKENS) break;
    }
    tokens->count = count;
}

int mps_stop_fields(MpsReader *reader)
{
    return mps_stop(reader, MpsFault::FIELDS,
                    "MPS reader: not free format\na field is missing, or one too many\n");
}

namespace
{
bool is_number(TextSpan span)
{
    double value = 0.0;
    return number_read(span, &value) != NumberKind::NOT_NUMBER;
}

// ---- Comments ----

// Whether a name of this section that begins with '$' is one, and no comment.
bool is_declared(const MpsReader *reader, TextSpan name)
{
    if (reader->section == MpsSection::ROWS) return false;
    if (reader->section == MpsSection::BOUNDS) return mps_find_column(reader, name) >= 0;
    return mps_find_row(reader, name) >= 0;
}

// Cuts the tokens at the first comment. The first name of a line is always a name.
void cut_comment(const MpsReader *reader, MpsTokens *tokens)
{
    const bool typed =
        reader->section == MpsSection::ROWS || reader->section == MpsSection::BOUNDS;
    const int count = tokens->count < MPS_TOKENS ? tokens->count : MPS_TOKENS;
    for (int k = typed ? 2 : 1; k < count; k++)
        if (*tokens->token[k].begin == '$' && !is_declared(reader, tokens->token[k])) {
            tokens->count = k;
            return;
        }
}

// ---- Fixed form ----

// Offsets from the start of the line: a field is [FIELD_BEGIN, FIELD_END).
constexpr int FIELDS = 6;

constexpr int FIELD_BEGIN[FIELDS] = {1, 4, 14, 24, 39, 49};

constexpr int FIELD_END[FIELDS] = {3, 12, 22, 36, 47, 61};

constexpr int SEQUENCE_BEGIN = 72; // card numbers stand behind; no data

bool is_blank(TextSpan span)
{
    for (const char *p = span.begin; p < span.end; p++)
        if (*p != ' ') return false;
    return true;
}

// Columns [from, to) of the line; empty where the line is shorter.
TextSpan columns_of(TextSpan line, int64_t from, int64_t to)
{
    const int64_t length = span_length(line);
    if (from > length) from = length;
    if (to > length) to = length;
    return {line.begin + from, line.begin + to};
}

TextSpan field_of(TextSpan line, int k)
{
    const TextSpan span = columns_of(line, FIELD_BEGIN[k], FIELD_END[k]);
    return span_trim(span.begin, span.end);
}

bool one_token(TextSpan span)
{
    for (const char *p = span.begin; p < span.end; p++)
        if (*p == ' ') return false;
    return !span_empty(span);
}

// Fields 5 and 6, behind a field 4 that ends in its columns.
bool fixed_second_pair(TextSpan line, MpsCard *card)
{
    if (!is_blank(columns_of(line, FIELD_END[3], FIELD_BEGIN[4]))) return false;
    if (!is_blank(columns_of(line, FIELD_END[4], FIELD_BEGIN[5]))) return false;
    const TextSpan rest = columns_of(line, FIELD_BEGIN[5], span_length(line));
    card->entry[1] = field_of(line, 4);
    card->value[1] = span_trim(rest.begin, rest.end);
    if (span_empty(card->entry[1]) != span_empty(card->value[1])) return false;
    card->entries = span_empty(card->entry[1]) ? 1 : 2;
    return span_empty(card->value[1]) || one_token(card->value[1]);
}
} // namespace

bool mps_fixed_fields(TextSpan line, MpsCard *card)
{
    *card = MpsCard{};
    for (const char *p = line.begin; p < line.end; p++)
        if (static_cast<unsigned char>(*p) < ' ') return false;
    if (span_length(line) > SEQUENCE_BEGIN && line.begin[SEQUENCE_BEGIN - 1] == ' ')
        line = {line.begin, line.begin + SEQUENCE_BEGIN};
    for (int k = 0; k < 3; k++)
        if (!is_blank(columns_of(line, k ? FIELD_END[k - 1] : 0, FIELD_BEGIN[k])))
            return false;
    if (!is_blank(columns_of(line, FIELD_END[2], FIELD_BEGIN[3]))) return false;
    card->type = field_of(line, 0);
    card->name = field_of(line, 1);
    card->entry[0] = field_of(line, 2);
    const TextSpan rest = columns_of(line, FIELD_BEGIN[3], span_length(line));
    card->value[0] = span_trim(rest.begin, rest.end);
    if (one_token(card->value[0]) || span_empty(card->value[0])) {
        card->entries = !span_empty(card->entry[0]);
        return card->entries || span_empty(card->value[0]);
    }
    card->value[0] = field_of(line, 3);
    return one_token(card->value[0]) && fixed_second_pair(line, card);
}

namespace
{
// The line without a comment that starts in field 3 or 5.
TextSpan fixed_without_comment(const MpsReader *reader, TextSpan line)
{
    for (int k = 2; k <= 4; k += 2) {
        if (span_length(line) <= FIELD_BEGIN[k] || line.begin[FIELD_BEGIN[k]] != '$')
            continue;
        if (!is_declared(reader, field_of(line, k)))
            return {line.begin, line.begin + FIELD_BEGIN[k]};
    }
    return line;
}

// Which fields the section demands.
bool fixed_card_fits(const MpsReader *reader, const MpsCard *card)
{
    const bool typed = !span_empty(card->type);
    if (reader->section == MpsSection::ROWS)
        return typed && !span_empty(card->name) && !card->entries;
    if (reader->section == MpsSection::BOUNDS) {
        const MpsBoundValue demand = mps_bound_value(card->type);
        if (!typed || card->entries > 1) return false;
        if (!card->entries) return demand == MpsBoundValue::NONE && !span_empty(card->name);
        return demand != MpsBoundValue::REQUIRED || !span_empty(card->value[0]);
    }
    if (typed || !card->entries) return false;
    return !span_empty(card->value[0]);
}

int card_fixed(MpsReader *reader, MpsCard *card)
{
    const TextSpan line = fixed_without_comment(reader, reader->line);
    const TextSpan cut = span_trim(line.begin, line.end);
    if (!mps_fixed_fields({line.begin, cut.end}, card) || !fixed_card_fits(reader, card))
        return mps_stop(reader, MpsFault::FIELDS,
                        "fields do not stand in the columns of the fixed form\n");
    const bool no_set = reader->section == MpsSection::BOUNDS && !card->entries;
    if (no_set) { // the column is in the field of the set name
        card->entry[0] = card->name;
        card->name = TextSpan{};
        card->entries = 1;
    }
    return 0;
}

// ---- Free form ----

// A line that fits the fixed columns too, with a blank inside field 2.
bool fits_fixed_with_blanks(const MpsReader *reader, const MpsTokens *tokens)
{
    const int second = reader->section == MpsSection::BOUNDS ? 2 : 1;
    if (tokens->count <= second + 1) return false;
    if (tokens->token[second].end - reader->line.begin > FIELD_END[1]) return false;
    MpsCard card;
    if (!mps_fixed_fields(reader->line, &card) || !fixed_card_fits(reader, &card))
        return false;
    for (int k = 0; k < card.entries; k++)
        if (!span_empty(card.value[k]) && !is_number(card.value[k])) return false;
    return true;
}

void take_pairs(const MpsTokens *tokens, int first, MpsCard *card)
{
    card->entries = (tokens->count - first) / 2;
    for (int k = 0; k < card->entries; k++) {
        card->entry[k] = tokens->token[first + 2 * k];
        card->value[k] = tokens->token[first + 2 * k + 1];
    }
}

// A bound without value, of a type that carries none: the last name is the column. Where the set's name is missing
// and a value stands behind the column all the same, the names that are declared decide.
void bound_without_value(const MpsReader *reader, const MpsTokens *tokens, MpsCard *card)
{
    const TextSpan *token = tokens->token;
    const bool shifted = tokens->count == 3 && mps_find_column(reader, token[2]) < 0 &&
                         mps_find_column(reader, token[1]) >= 0 && is_number(token[2]);
    const bool named = tokens->count > 2 && !shifted;
    card->name = named ? token[1] : TextSpan{};
    card->entry[0] = token[named ? 2 : 1];
}

// Without a set's name one token less; SC and SI may leave the value out, too.
bool bound_with_value(const MpsReader *reader, const MpsTokens *tokens, bool optional,
                      MpsCard *card)
{
    const TextSpan *token = tokens->token;
    if (tokens->count == 4) {
        card->name = token[1];
        card->entry[0] = token[2];
        card->value[0] = token[3];
        return true;
    }
    if (tokens->count == 2 && optional) {
        card->entry[0] = token[1];
        return true;
    }
    if (tokens->count != 3) return false;
    const bool no_value = optional && mps_find_column(reader, token[2]) >= 0 &&
                          (!is_number(token[2]) || mps_find_column(reader, token[1]) < 0);
    card->name = no_value ? token[1] : TextSpan{};
    card->entry[0] = token[no_value ? 2 : 1];
    card->value[0] = no_value ? TextSpan{} : token[2];
    return true;
}

int card_bound(MpsReader *reader, const MpsTokens *tokens, MpsCard *card)
{
    if (tokens->count < 2 || tokens->count > 4) return mps_stop_fields(reader);
    card->type = tokens->token[0];
    card->entries = 1;
    const MpsBoundValue demand = mps_bound_value(card->type);
    if (demand == MpsBoundValue::UNKNOWN) return 0; // the section reports it
    if (demand == MpsBoundValue::NONE)
        bound_without_value(reader, tokens, card);
    else if (!bound_with_value(reader, tokens, demand == MpsBoundValue::OPTIONAL, card))
        return mps_stop_fields(reader);
    return 0;
}

bool has_dollar(const MpsTokens *tokens)
{
    for (int k = 1; k < tokens->count && k < MPS_TOKENS; k++)
        if (*tokens->token[k].begin == '$') return true;
    return false;
}

int card_free(MpsReader *reader, MpsTokens *tokens, MpsCard *card)
{
    const int count_before = tokens->count;
    if (has_dollar(tokens)) cut_comment(reader, tokens);
    const int count = tokens->count;
    if (reader->form == MpsForm::CHECKED && count > 3 &&
        fits_fixed_with_blanks(reader, tokens))
        return mps_stop(reader, MpsFault::SUSPECT, "fixed form may be meant\n");
    switch (reader->section) {
    case MpsSection::ROWS:
        if (count != 2) return mps_stop_fields(reader);
        card->type = tokens->token[0];
        card->name = tokens->token[1];
        return 0;
    case MpsSection::COLUMNS:
        card->name = tokens->token[0];
        if (count == 1 && count_before > 1) return 0; // a name and a comment
        if (count != 3 && count != 5) return mps_stop_fields(reader);
        take_pairs(tokens, 1, card);
        return 0;
    case MpsSection::BOUNDS:
        return card_bound(reader, tokens, card);
    default: // RHS, RANGES: an odd number of tokens starts with the set
        if (count == 1 && count_before > 1) return 0;
        if (count < 2 || count > 5) return mps_stop_fields(reader);
        if (count % 2) card->name = tokens->token[0];
        take_pairs(tokens, count % 2, card);
        return 0;
    }
}

// "name 'MARKER' 'INTORG'", the name perhaps missing.
bool is_marker(const MpsTokens *tokens)
{
    if (tokens->count < 2 || tokens->count > 3) return false;
    const TextSpan *last = &tokens->token[tokens->count - 1];
    return *last->begin == '\'' && span_is_word(last[-1], "'MARKER'");
}
} // namespace

int mps_card(MpsReader *reader, MpsCard *card)
{
    MpsTokens tokens;
    mps_split(reader->line, &tokens);
    if (reader->section == MpsSection::COLUMNS && is_marker(&tokens)) {
        card->marker = true;
        card->value[0] = tokens.token[tokens.count - 1];
        return 0;
    }
    if (reader->form == MpsForm::FIXED) return card_fixed(reader, card);
    return card_free(reader, &tokens, card);
}
