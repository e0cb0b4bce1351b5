// mps_sos.cpp -- SOS: special ordered sets
//
// Forms       A set begins with "S1" or "S2", perhaps followed by names and a priority, which mean nothing here. Its
//             members are lines "column weight", perhaps with the set's name before. In fixed form the column stands in
//             field 2 (or in field 3 with the set's name in field 2), since its name may hold blanks.
// Rules       What cannot be understood is an error, not a warning: a set with fewer members is another model.
#include "files/mps_reader.h"

namespace
{
constexpr int HEADER_COLUMN = 3; // a header starts in columns 2 or 3

constexpr int FIELD2_BEGIN = 4; // offsets of fields 2 and 3 of the fixed form

constexpr int FIELD2_END = 12;

constexpr int FIELD3_BEGIN = 14;

constexpr int FIELD3_END = 22;

// "S1" or "S2" at the start of the line, or anywhere when no column has that name.
int header_type(const MpsReader *reader, const MpsTokens *tokens)
{
    const TextSpan first = tokens->token[0];
    if (!span_is_word(first, "S1") && !span_is_word(first, "S2")) return 0;
    const bool in_place = first.begin - reader->line.begin < HEADER_COLUMN;
    if (!in_place && mps_find_column(reader, first) >= 0) return 0;
    return first.begin[1] - '0';
}

// The column of the member in fixed form: all before the weight, less the set's name.
TextSpan fixed_member(const MpsReader *reader, TextSpan weight)
{
    const TextSpan line = reader->line;
    const TextSpan all = span_trim(line.begin, weight.begin);
    if (all.end - line.begin <= FIELD2_END) return all;
    if (all.end - line.begin > FIELD3_END || span_length(line) <= FIELD3_BEGIN) return all;
    const TextSpan second = span_trim(line.begin + FIELD3_BEGIN, all.end);
    return all.begin - line.begin >= FIELD2_BEGIN ? second : all;
}

int member_line(MpsReader *reader, const MpsTokens *tokens)
{
    DraftSets *sets = &reader->draft.sets;
    if (!sets->type.size)
        return mps_stop(reader, MpsFault::CONTENT, "S1 or S2 must begin a set\n");
    if (tokens->count < 2 || tokens->count > MPS_TOKENS ||
        (tokens->count > 3 && reader->form != MpsForm::FIXED))
        return mps_stop_fields(reader);
    const TextSpan weight = tokens->token[tokens->count - 1];
    TextSpan name = tokens->token[tokens->count - 2];
    if (reader->form == MpsForm::FIXED) name = fixed_member(reader, weight);
    double value = 0.0;
    TRY(mps_finite(reader, weight, &value));
    const int column = mps_find_column(reader, name);
    if (column < 0)
        return mps_stop(reader, MpsFault::CONTENT, "the set's member is no column\n");
    bool twice = false;
    TRY(draft_set_member(sets, column, value, &twice));
    if (twice)
        return mps_stop(reader, MpsFault::CONTENT, "the column is in this set already\n");
    return 0;
}
} // namespace

int mps_sos_line(MpsReader *reader)
{
    MpsTokens tokens;
    mps_split(reader->line, &tokens);
    const int type = header_type(reader, &tokens);
    if (!type) return member_line(reader, &tokens);
    return draft_set_begin(&reader->draft.sets, type);
}
