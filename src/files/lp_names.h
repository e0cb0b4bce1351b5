// lp_names.h -- which texts are names in the LP format, and which names are words of it
#pragma once
#include "files/lp_reader.h"

enum class LpClass : unsigned char {
    STOP,  // control characters: no text
    BLANK, // white space but newlines
    NEWLINE,
    COMMENT,
    SIGN, // + - * < > = : ^
    DIGIT,
    POINT,
    INNER, // in a name, but not at its start
    LETTER // anywhere in a name
};
LpClass lp_class(char c);
inline bool lp_in_name(char c)
{
    return lp_class(c) >= LpClass::DIGIT;
}
// What a name may mean as a word.
LpWord lp_word(TextSpan name);
// The section that two words "subject to" or "such that" open: the end of the second, or null.
const char *lp_second_word(TextSpan first, const char *stop);
// Whether a name that means nothing else was probably meant as the heading of a section: of another dialect, or
// misspelt.
bool lp_like_heading(TextSpan name);
// Whether a blank or dash beyond ASCII stands in a text: of a word processor or web page, and hardly meant as part of a
// name.
bool lp_has_foreign_sign(TextSpan text);
// Whether the reader takes the whole text as the name of a variable or a constraint wherever one can stand.
bool lp_is_name(const char *text);
