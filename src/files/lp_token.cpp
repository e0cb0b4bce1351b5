// lp_token.cpp -- the text of an LP-format file in tokens
//
// Method      There is one current token ("in hand"); nothing is copied. The byte at `stop` is a control character, so
//             that loops over blanks, names or digits need not test for the end.
// Line ends   They part tokens and are no tokens; a token knows whether it is the first of its line.
// Cost        One pass; looking ahead goes to the end of a word or line, at most once for each word or constraint.
#include "files/lp_names.h"
#include "runtime/text_number.h"
#include <algorithm>
#include <cstring>

namespace
{
bool is_compared(char c)
{
    return c == '<' || c == '>' || c == '=';
}

const char *skip_comment(const LpReader *reader, const char *p)
{
    const void *newline = memchr(p, '\n', static_cast<size_t>(reader->stop - p));
    return newline ? static_cast<const char *>(newline) : reader->stop;
}

// To the next byte that is no blank, line end or comment.
const char *skip_blanks(const LpReader *reader, const char *p, bool *fresh)
{
    for (;;) {
        switch (lp_class(*p)) {
        case LpClass::NEWLINE:
            *fresh = true;
            [[fallthrough]];
        case LpClass::BLANK:
            p++;
            break;
        case LpClass::COMMENT:
            p = skip_comment(reader, p);
            break;
        default:
            return p;
        }
    }
}

const char *skip_line_blanks(const char *p)
{
    while (lp_class(*p) == LpClass::BLANK) p++;
    return p;
}

void take_name(LpReader *reader)
{
    LpToken *token = &reader->token;
    const char *end = token->text.begin;
    signed char least = 0; // negative if a byte is not ASCII
    for (; lp_in_name(*end); end++) least = std::min(least, static_cast<signed char>(*end));
    token->text.end = end;
    const bool odd = lp_class(*token->text.begin) != LpClass::LETTER || end[-1] == ',' ||
                     end[-1] == ';' || (least < 0 && lp_has_foreign_sign(token->text));
    token->kind = odd ? LpKind::ODD : LpKind::NAME;
    if (odd) return;
    token->word = lp_word(token->text);
    const char first = static_cast<char>(*token->text.begin | 0x20);
    if (first != 's')
        return; // of two-word keywords: semi-continuous, subject to, such that
    if (const char *second = lp_second_word(token->text, reader->stop)) {
        token->word = token->word == LpWord::SEMIS ? LpWord::SEMIS : LpWord::SUBJECT_TO;
        token->text.end = second;
    }
}

// < <= =< > >= => =
void take_comparison(LpToken *token)
{
    const char first = *token->text.begin;
    const char second = token->text.begin[1];
    const bool pair = first == '=' ? second == '<' || second == '>' : second == '=';
    const char side = first == '=' && pair ? second : first;
    token->kind = side == '<'   ? LpKind::LESS
                  : side == '>' ? LpKind::GREATER
                                : LpKind::EQUAL;
    token->text.end += pair;
}

void take_sign(LpToken *token)
{
    token->text.end = token->text.begin + 1;
    switch (*token->text.begin) {
    case '+':
        token->kind = LpKind::PLUS;
        return;
    case '-':
        token->kind = LpKind::MINUS;
        return;
    case '*':
        token->kind = LpKind::TIMES;
        return;
    case ':':
        token->kind = token->text.begin[1] == ':' ? LpKind::DOUBLE_COLON : LpKind::COLON;
        token->text.end += token->kind == LpKind::DOUBLE_COLON;
        return;
    case '^':
        token->kind = LpKind::ODD;
        return;
    default:
        take_comparison(token);
        return;
    }
}
} // namespace

void lp_next(LpReader *reader)
{
    LpToken *token = &reader->token;
    token->fresh = false;
    token->word = LpWord::NONE;
    const char *p = skip_blanks(reader, reader->next, &token->fresh);
    token->text.begin = p;
    switch (lp_class(*p)) {
    case LpClass::STOP:
        token->kind = LpKind::END;
        token->text.end = p;
        break;
    case LpClass::SIGN:
        take_sign(token);
        break;
    case LpClass::DIGIT:
    case LpClass::POINT:
        if (!text_to_decimal(p, &token->text.end, &token->value)) {
            token->kind = LpKind::NUMBER;
            break;
        }
        [[fallthrough]];
    default:
        take_name(reader);
        break;
    }
    reader->next = token->text.end;
}

void lp_start(LpReader *reader)
{
    text_rewind(&reader->text);
    reader->stop = reader->text.bad;
    reader->next = reader->counted = reader->text.next;
    lp_next(reader);
    reader->token.fresh = true;
}

bool lp_before_colon(const LpReader *reader)
{
    const char *p = skip_line_blanks(reader->next);
    return *p == ':' && p[1] != ':';
}

namespace
{
constexpr int64_t LONGEST_ST = 4; // letters of "s.t."
} // namespace

bool lp_at_section(const LpReader *reader)
{
    const LpToken *token = &reader->token;
    if (token->kind != LpKind::NAME || token->word == LpWord::NONE ||
        token->word > LpWord::END)
        return false;
    const char follower = *skip_line_blanks(reader->next);
    if (follower == ':') // two words label nothing
        return token->word == LpWord::SUBJECT_TO && span_length(token->text) > LONGEST_ST;
    return !is_compared(follower) && follower != '*';
}

bool lp_ends_line(const LpReader *reader)
{
    const LpClass kind = lp_class(*skip_line_blanks(reader->next));
    return kind == LpClass::NEWLINE || kind == LpClass::COMMENT || kind == LpClass::STOP;
}

int64_t lp_indent(const LpReader *reader)
{
    const char *const first = reader->text.bytes.data;
    const char *p = reader->token.text.begin;
    while (p > first && p[-1] != '\n') p--;
    return reader->token.text.begin - p;
}

bool lp_compared_ahead(const LpReader *reader)
{
    const char *p = reader->token.text.begin;
    for (;; p++) {
        const LpClass kind = lp_class(*p);
        if (kind == LpClass::NEWLINE || kind == LpClass::COMMENT || kind == LpClass::STOP ||
            *p == ':')
            return false;
        if (is_compared(*p)) return true;
    }
}

bool lp_take_label(LpReader *reader, TextSpan *label)
{
    const char *begin = reader->token.text.begin;
    const char *end = begin;
    while (lp_class(*end) >= LpClass::SIGN && !is_compared(*end) && *end != ':') end++;
    const char *colon = skip_line_blanks(end);
    if (end == begin || *colon != ':' || colon[1] == ':') return false;
    *label = {begin, end};
    reader->next = colon + 1;
    reader->token.text = {begin, colon + 1};
    lp_next(reader);
    return true;
}
