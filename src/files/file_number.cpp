// file_number.cpp -- one field of a file as a number
#include "files/file_number.h"
#include "runtime/text_number.h"
#include <cmath>

NumberKind number_read(TextSpan span, double *value)
{
    const char *stop = nullptr;
    double x = 0.0;
    if (span_empty(span) || text_to_double(span.begin, &stop, &x) || stop != span.end)
        return NumberKind::NOT_NUMBER;
    if (std::isnan(x)) return NumberKind::NOT_NUMBER;
    *value = x;
    if (!std::isinf(x)) return NumberKind::FINITE;
    const char first =
        *span.begin == '-' || *span.begin == '+' ? span.begin[1] : *span.begin;
    return first == 'i' || first == 'I' ? NumberKind::INFINITE : NumberKind::TOO_LARGE;
}

namespace
{
// The length, or 0 when "%g" does not read back the same.
int write_general(char *buffer, double value)
{
    static constexpr int SHORT_DIGITS = 6; // of "%g"
    const int length = number_general(buffer, value, SHORT_DIGITS);
    double back = 0.0;
    return !text_to_double(buffer, nullptr, &back) && back == value ? length : 0;
}
} // namespace

int number_write_short(char *buffer, double value)
{
    const int length = write_general(buffer, value);
    return length ? length : number_shortest(buffer, value);
}

int number_write(char *buffer, double value)
{
    // Digits after the point of "%.16e": 17 digits identify every double.
    static constexpr int FULL_DIGITS = 16;
    const int length = write_general(buffer, value);
    return length ? length : number_scientific(buffer, value, FULL_DIGITS);
}
