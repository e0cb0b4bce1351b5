// mps_read.cpp -- the driver of the MPS reader: sections, and the attempts at the form of the file
//
// Problem     Read MPS files in all common variants into a model, or report where and why that is not possible.
// Method      The text is in memory; an attempt reads its lines once. The first attempt is free form with checks: if a
//             line cannot be read, or names are unknown, or the columns of the fixed form would give another meaning,
//             strict fixed form is tried from the first line, and last free form without these checks. The failure
//             reported is that of the attempt that read the most lines.
// Order       NAME, OBJSENSE and OBJNAME may be missing; ROWS, then COLUMNS, then RHS, RANGES, BOUNDS and SOS in any
//             order, also repeatedly; ENDATA must end the file.
// Cost        One pass for nearly all files, at most three.
#include "files/files.h"
#include "files/mps_reader.h"
#include "runtime/text_number.h"
#include <utility>

bool mps_set_counts(MpsReader *reader, MpsSet *set, TextSpan name, MpsWarning warning)
{
    if (span_empty(name)) return !set->skipping; // same set as in the line before
    if (span_empty(set->first)) set->first = name;
    const bool counts =
        span_length(name) == span_length(set->first) &&
        !memcmp(name.begin, set->first.begin, static_cast<size_t>(span_length(name)));
    if (!counts && !set->skipping)
        mps_warn(&reader->warnings, warning, reader->text.line, name);
    set->skipping = !counts;
    return counts;
}

// ---- Sections ----

namespace
{
int stop_section(MpsReader *reader, const char *reason)
{
    if (!reader->seen_rows) return mps_stop(reader, MpsFault::NO_ROWS, "%s", reason);
    if (!reader->seen_columns) return mps_stop(reader, MpsFault::NO_COLUMNS, "%s", reason);
    return mps_stop(reader, MpsFault::NO_END, "%s", reason);
}

// "MAX..." or "MIN...", in any case.
int read_sense(MpsReader *reader, TextSpan word)
{
    static constexpr int64_t COMPARED = 3;
    const bool long_enough = span_length(word) >= COMPARED;
    const TextSpan head = {word.begin, long_enough ? word.begin + COMPARED : word.end};
    const bool maximise = span_is_word(head, "MAX");
    if (!maximise && !span_is_word(head, "MIN"))
        return mps_stop(reader, MpsFault::CONTENT, "the objective's sense is MAX or MIN\n");
    reader->draft.sense = maximise ? -1 : 1;
    return 0;
}

// OBJSENSE and OBJNAME carry their word on the same line or on the next.
int begin_head_word(MpsReader *reader, MpsSection section, TextSpan rest)
{
    const bool name = section == MpsSection::OBJNAME;
    if (name && reader->seen_columns)
        return mps_stop(reader, MpsFault::NO_END, "OBJNAME must stand before COLUMNS\n");
    if (span_empty(rest)) {
        reader->back = reader->section;
        reader->section = section;
        return 0;
    }
    if (!name) return read_sense(reader, rest);
    reader->objective_name = rest;
    return 0;
}

int begin_rows(MpsReader *reader)
{
    if (reader->seen_columns)
        return mps_stop(reader, MpsFault::NO_END, "ROWS must stand before COLUMNS\n");
    reader->section = MpsSection::ROWS;
    reader->seen_rows = true;
    return 0;
}

int begin_columns(MpsReader *reader)
{
    if (!reader->seen_rows)
        return mps_stop(reader, MpsFault::NO_ROWS, "COLUMNS stands before ROWS\n");
    if (!reader->seen_columns) {
        TRY(mps_rows_choose_objective(reader));
        if (!reader->rows.has_objective)
            mps_warn(&reader->warnings, MpsWarning::NO_OBJECTIVE, 0, TextSpan{});
    }
    reader->section = MpsSection::COLUMNS;
    reader->seen_columns = true;
    return 0;
}

const struct {
    const char *name;
    MpsSection section;
} sections[] = {{"NAME", MpsSection::HEAD},       {"OBJSENSE", MpsSection::SENSE},
                {"OBJNAME", MpsSection::OBJNAME}, {"ROWS", MpsSection::ROWS},
                {"RHS", MpsSection::RHS},         {"RANGES", MpsSection::RANGES},
                {"BOUNDS", MpsSection::BOUNDS},   {"SOS", MpsSection::SOS},
                {"SETS", MpsSection::SOS}};

// The section of a header's first word; false when there is none. Of COLUMNS only four letters count.
bool section_find(TextSpan word, MpsSection *section)
{
    static constexpr int64_t COLUMNS_COMPARED = 4;
    if (span_length(word) >= COLUMNS_COMPARED &&
        span_is_word({word.begin, word.begin + COLUMNS_COMPARED}, "COLU")) {
        *section = MpsSection::COLUMNS;
        return true;
    }
    for (const auto &row : sections)
        if (span_is_word(word, row.name)) {
            *section = row.section;
            return true;
        }
    return false;
}

int section_begin(MpsReader *reader, MpsSection section, TextSpan rest)
{
    switch (section) {
    case MpsSection::HEAD:
        if (reader->seen_rows) return stop_section(reader, "NAME must stand first\n");
        reader->model_name = rest;
        return 0;
    case MpsSection::SENSE:
    case MpsSection::OBJNAME:
        return begin_head_word(reader, section, rest);
    default:
        break;
    }
    if (!span_empty(rest) && *rest.begin != '$')
        return stop_section(reader, "text behind the name of the section\n");
    if (section == MpsSection::ROWS) return begin_rows(reader);
    if (section == MpsSection::COLUMNS) return begin_columns(reader);
    if (!reader->seen_columns)
        return stop_section(reader, "the section stands too early\n");
    if (section == MpsSection::RHS) reader->seen_rhs = true;
    reader->section = section;
    return 0;
}

// ---- Lines ----

enum class Walk { GO_ON, DONE };

int header_line(MpsReader *reader, Walk *walk)
{
    MpsTokens tokens;
    mps_split(reader->line, &tokens);
    const TextSpan word = tokens.token[0];
    if (span_is_word(word, "ENDATA")) {
        *walk = Walk::DONE;
        return reader->seen_columns ? 0 : stop_section(reader, "ENDATA stands too early\n");
    }
    MpsSection section{};
    if (!section_find(word, &section))
        return stop_section(reader, "this section is not known or not supported\n");
    return section_begin(reader, section, span_trim(word.end, reader->line.end));
}

// The line behind OBJSENSE or OBJNAME, wherever it begins.
int head_word_line(MpsReader *reader)
{
    const TextSpan word = span_trim(reader->line.begin, reader->line.end);
    const bool name = reader->section == MpsSection::OBJNAME;
    reader->section = reader->back;
    if (!name) return read_sense(reader, word);
    reader->objective_name = word;
    return 0;
}

int data_line(MpsReader *reader)
{
    switch (reader->section) {
    case MpsSection::ROWS:
        return mps_rows_line(reader);
    case MpsSection::COLUMNS:
        return mps_columns_line(reader);
    case MpsSection::RHS:
        return mps_rhs_line(reader);
    case MpsSection::RANGES:
        return mps_ranges_line(reader);
    case MpsSection::BOUNDS:
        return mps_bounds_line(reader);
    case MpsSection::SOS:
        return mps_sos_line(reader);
    default:
        return stop_section(reader, "data before the first section\n");
    }
}

int take_line(MpsReader *reader, Walk *walk)
{
    if (span_empty(reader->line)) return 0;
    const char first = *reader->line.begin;
    if (first == '*' || first == '$') return 0; // comments
    if (reader->section == MpsSection::SENSE || reader->section == MpsSection::OBJNAME)
        return head_word_line(reader);
    if (!is_white(first)) return header_line(reader, walk);
    return data_line(reader);
}

int walk_lines(MpsReader *reader)
{
    Walk walk = Walk::GO_ON;
    while (walk == Walk::GO_ON) {
        switch (text_next(&reader->text, &reader->line)) {
        case TextStep::LINE:
            TRY(take_line(reader, &walk));
            break;
        case TextStep::BINARY:
            return mps_stop(reader, MpsFault::BINARY,
                            "the line holds a control character: this is no text file\n");
        case TextStep::END:
            reader->line = TextSpan{};
            return stop_section(reader, "the file ends here\n");
        }
    }
    const DraftColumns *columns = &reader->draft.columns;
    bool cost = false;
    for (const unsigned char flags : columns->flags) cost = cost || (flags & COST_GIVEN);
    if (reader->segments.n_left_out && !columns->entry_row.size && !cost)
        return mps_stop(reader, MpsFault::EMPTY, "no entry belongs to a declared row\n");
    return 0;
}

// ---- Attempts ----

int attempt(MpsReader *reader, MpsForm form)
{
    TextFile text = static_cast<TextFile &&>(reader->text);
    draft_free(&reader->draft);
    *reader = MpsReader{};
    reader->text = static_cast<TextFile &&>(text);
    reader->form = form;
    text_rewind(&reader->text);
    TRY(draft_open(&reader->draft));
    return walk_lines(reader);
}

bool form_may_be_wrong(MpsFault fault)
{
    return fault == MpsFault::SUSPECT || fault == MpsFault::FIELDS ||
           fault == MpsFault::CONTENT;
}

int parse(MpsReader *reader)
{
    int error = attempt(reader, MpsForm::CHECKED);
    if (error != TVX_ERROR_FILE_READ || !form_may_be_wrong(reader->failure.fault))
        return error;
    const MpsFailure first = reader->failure;

    error = attempt(reader, MpsForm::FIXED);
    if (error != TVX_ERROR_FILE_READ) return error;
    const MpsFailure second = reader->failure;

    // FREE form fails at the same line, unless the CHECKED failure was SUSPECT.
    reader->failure = first;
    if (first.fault == MpsFault::SUSPECT) error = attempt(reader, MpsForm::FREE);
    if (error == TVX_ERROR_FILE_READ && second.line > reader->failure.line)
        reader->failure = second;
    return error;
}

int read_loaded(TVXenv *env, MpsReader *reader)
{
    const int error = parse(reader);
    if (!error) return mps_build(env, reader);
    if (error == OUT_OF_MEMORY) return mps_report_memory(env);
    mps_warnings_show(&reader->warnings, env);
    return mps_report(env, &reader->failure);
}
} // namespace

int mps_read(TVXenv *env, const char *file_name, ModelDraft *draft)
{
    MpsReader reader;
    if (const TextLoad result = text_load(file_name, &reader.text);
        result != TextLoad::OK) {
        const int error = text_load_failed(env, file_name, result);
        return error == OUT_OF_MEMORY ? mps_report_memory(env) : error;
    }
    const int error = read_loaded(env, &reader);
    *draft = std::exchange(reader.draft, ModelDraft{});
    return error;
}
