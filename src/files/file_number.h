// file_number.h -- one field of a file as a number
#pragma once
#include "files/text_file.h"

enum class NumberKind {
    FINITE,
    INFINITE,   // one of the words inf and infinity, with or without sign
    NOT_NUMBER, // anything else, nan too
    TOO_LARGE   // digits whose value exceeds the largest double
};
// The whole span must be the number, and the byte behind it must be readable and no part of a number (white space, a
// line end). *value is set for FINITE and INFINITE. Exponent letters e, E, d, D; never depends on the locale.
NumberKind number_read(TextSpan span, double *value);

// The writer's text of a number: as "%g" when that reads back the same, else as "%.16e". buffer has NUMBER_LENGTH
// characters; the length.
int number_write(char *buffer, double value);
// Likewise, but the fewest digits that read back the same instead of "%.16e".
int number_write_short(char *buffer, double value);
