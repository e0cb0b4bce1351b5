// text_number.h -- conversion between numbers and text, independent of the locale
#pragma once
#include <cstdarg>
#include <cstddef>
#include <cstdio>

// Room for any text written by the number_ routines, with the terminating zero.
static constexpr int NUMBER_LENGTH = 32;

// The number at the start of text (no white space is skipped): optional sign '+' or '-', decimal digits with an
// optional point, optional exponent after e, E, d or D; or inf, infinity, nan in any case. Correctly rounded; too large
// a number is infinite, too small a one zero. 0; or 1 when no number stands there, *value then unchanged and
// *end == text. end may be null.
int text_to_double(const char *text, const char **end, double *value);
// Likewise, but no word, and only e and E begin an exponent: "2d1" is a 2 with text behind.
int text_to_decimal(const char *text, const char **end, double *value);

// Writes value into buffer (NUMBER_LENGTH characters) and returns the length.
int number_general(char *buffer, double value,
                   int digits); // like %.<digits>g, digits 1..17
int number_scientific(char *buffer, double value,
                      int digits); // like %.<digits>e, digits 0..17
int number_shortest(char *buffer,
                    double value); // fewest digits that read back as the same number

// snprintf, vsnprintf, fprintf and vfprintf as in the "C" locale, whatever the process has set. A null text prints as
// (null).
int text_format(char *buffer, size_t size, const char *format, ...)
    __attribute__((format(printf, 3, 4)));
int text_format_v(char *buffer, size_t size, const char *format, va_list arguments)
    __attribute__((format(printf, 3, 0)));
int text_print(FILE *stream, const char *format, ...) __attribute__((format(printf, 2, 3)));
int text_print_v(FILE *stream, const char *format, va_list arguments)
    __attribute__((format(printf, 2, 0)));
