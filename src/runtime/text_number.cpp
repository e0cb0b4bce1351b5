// text_number.cpp -- conversion between numbers and text, independent of the locale
//
// Problem     Read hundreds of megabytes of decimal numbers with correct rounding, in a process whose locale may write
//             the decimal point as a comma.
// Method      One scan finds the end of the number, up to 19 digits of its mantissa and its exponent. When the
//             mantissa is below 2^53 and the power of ten is exact (up to 10^22), one multiplication or division
//             rounds correctly (Clinger); everything else goes to the standard library's exact conversion.
//             Output uses the standard conversions; general formats run under a "C" locale of the calling thread.
// Literature  W. D. Clinger, "How to read floating point numbers accurately", PLDI 1990.
#include "runtime/text_number.h"
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <locale.h>
#include <system_error>

namespace
{
constexpr int MANTISSA_DIGITS = 19; // always fit 64 bits

constexpr uint64_t EXACT_MANTISSA = 1ull << 53; // integers up to here are doubles

constexpr int EXACT_POWER = 22; // 10^22 is the last power of ten that is a double

// Larger exponents are out of range in any case.
constexpr int64_t EXPONENT_LIMIT = 1'000'000;

const double powers[EXACT_POWER + 1] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                        1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                        1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

bool is_digit(char c)
{
    return c >= '0' && c <= '9';
}

// An unsigned decimal number as the scan finds it: value = Mantissa * 10^Power when Exact.
struct Decimal {
    uint64_t Mantissa = 0;      // the first significant digits
    int Digits = 0;             // how many are in Mantissa
    int64_t Power = 0;          // exponent of ten that belongs to Mantissa
    bool Exact = true;          // no non-zero digit was left out
    bool Double = true;         // d and D are exponent letters
    const char *Mark = nullptr; // the exponent letter, or null
};

void take_digit(Decimal *d, char c, bool fraction)
{
    if (d->Digits == MANTISSA_DIGITS) {
        if (c != '0') d->Exact = false;
        if (!fraction) d->Power++;
        return;
    }
    if (fraction) d->Power--;
    if (c == '0' && d->Digits == 0) return;
    d->Mantissa = 10 * d->Mantissa + static_cast<uint64_t>(c - '0');
    d->Digits++;
}

// The exponent with its letter; none unless a digit follows.
const char *scan_exponent(const char *text, Decimal *d)
{
    const char letter = static_cast<char>(*text | 0x20);
    if (letter != 'e' && !(letter == 'd' && d->Double)) return text;
    const char *p = text + 1;
    const bool negative = *p == '-';
    if (*p == '-' || *p == '+') p++;
    if (!is_digit(*p)) return text;
    int64_t exponent = 0;
    for (; is_digit(*p); p++)
        if (exponent < EXPONENT_LIMIT) exponent = 10 * exponent + (*p - '0');
    d->Power += negative ? -exponent : exponent;
    d->Mark = text;
    return p;
}

// The end of the number, or null when there is none.
const char *scan_decimal(const char *text, Decimal *d)
{
    const char *p = text;
    for (; is_digit(*p); p++) take_digit(d, *p, false);
    const bool whole = p != text;
    if (*p == '.' && (whole || is_digit(p[1])))
        for (p++; is_digit(*p); p++) take_digit(d, *p, true);
    if (p == text) return nullptr;
    return scan_exponent(p, d);
}

// Exact conversion by the standard library. It knows no exponent letter but e: the digits and the exponent go to
// a copy then, in which digits beyond COPY_DIGITS cannot matter but for being non-zero.
double convert_exactly(const char *text, const char *end, const Decimal *d)
{
    // no rounding of a double depends on more than 768 digits
    static constexpr int COPY_DIGITS = 1024;
    char copy[COPY_DIGITS + 64];
    if (d->Mark && (*d->Mark == 'd' || *d->Mark == 'D')) {
        int length = 0;
        int64_t power = d->Power + d->Digits; // of the leading digit, plus one
        bool sticky = false;
        copy[length++] = '.';
        for (const char *p = text; p < d->Mark; p++) {
            if (*p == '.' || (*p == '0' && length == 1)) continue;
            if (length <= COPY_DIGITS)
                copy[length++] = *p;
            else if (*p != '0')
                sticky = true;
        }
        if (sticky) copy[length++] = '1';
        length += snprintf(copy + length, 32, "e%lld", static_cast<long long>(power));
        text = copy;
        end = copy + length;
    }
    double value = 0.0;
    const std::from_chars_result result = std::from_chars(text, end, value);
    if (result.ec != std::errc{})
        value = d->Power + d->Digits > 0 ? std::numeric_limits<double>::infinity() : 0.0;
    return value;
}

// The length of the word at text (lower case given) in any case, or 0.
int match_word(const char *text, const char *word)
{
    int k = 0;
    for (; word[k]; k++)
        if ((text[k] | 0x20) != word[k]) return 0;
    return k;
}

const char *scan_word(const char *text, double *value)
{
    int length = match_word(text, "infinity");
    if (!length) length = match_word(text, "inf");
    if (length) {
        *value = std::numeric_limits<double>::infinity();
        return text + length;
    }
    length = match_word(text, "nan");
    if (!length) return nullptr;
    *value = std::numeric_limits<double>::quiet_NaN();
    return text + length;
}

enum class NumberWords { YES, NO };

// With what *d allows.
int convert(const char *text, const char **end, double *value, Decimal d, NumberWords words)
{
    const bool negative = *text == '-';
    const char *start = *text == '-' || *text == '+' ? text + 1 : text;
    double magnitude = 0.0;
    const char *stop = scan_decimal(start, &d);
    if (!stop) {
        stop = words == NumberWords::YES ? scan_word(start, &magnitude) : nullptr;
    } else if (d.Exact && d.Mantissa <= EXACT_MANTISSA && d.Power >= -EXACT_POWER &&
               d.Power <= EXACT_POWER) {
        const double m = static_cast<double>(d.Mantissa);
        magnitude = d.Power < 0 ? m / powers[-d.Power] : m * powers[d.Power];
    } else if (d.Digits > 0) {
        magnitude = convert_exactly(start, stop, &d);
    }
    if (end) *end = stop ? stop : text;
    if (!stop) return 1;
    *value = negative ? -magnitude : magnitude;
    return 0;
}
} // namespace

int text_to_double(const char *text, const char **end, double *value)
{
    return convert(text, end, value, Decimal{}, NumberWords::YES);
}

int text_to_decimal(const char *text, const char **end, double *value)
{
    Decimal d;
    d.Double = false;
    return convert(text, end, value, d, NumberWords::NO);
}

namespace
{
int number_finish(char *buffer, std::to_chars_result result)
{
    *result.ptr = '\0'; // NUMBER_LENGTH holds the longest text: -d.(17 digits)e-ddd
    return static_cast<int>(result.ptr - buffer);
}
} // namespace

int number_general(char *buffer, double value, int digits)
{
    char *last = buffer + NUMBER_LENGTH - 1;
    return number_finish(
        buffer, std::to_chars(buffer, last, value, std::chars_format::general, digits));
}

int number_scientific(char *buffer, double value, int digits)
{
    char *last = buffer + NUMBER_LENGTH - 1;
    return number_finish(
        buffer, std::to_chars(buffer, last, value, std::chars_format::scientific, digits));
}

int number_shortest(char *buffer, double value)
{
    return number_finish(buffer, std::to_chars(buffer, buffer + NUMBER_LENGTH - 1, value));
}

// ---- Formats under the "C" locale of the calling thread ----

namespace
{
struct PlainLocale {
    locale_t Plain; // a constant of the C library: no allocation
    locale_t Previous;
};

PlainLocale locale_enter()
{
    const locale_t plain = newlocale(LC_ALL_MASK, "C", nullptr);
    return {plain, uselocale(plain)};
}

void locale_leave(PlainLocale entered)
{
    uselocale(entered.Previous);
    freelocale(entered.Plain);
}
} // namespace

int text_format_v(char *buffer, size_t size, const char *format, va_list arguments)
{
    const PlainLocale entered = locale_enter();
    const int length = vsnprintf(buffer, size, format, arguments);
    locale_leave(entered);
    return length;
}

int text_format(char *buffer, size_t size, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int length = text_format_v(buffer, size, format, arguments);
    va_end(arguments);
    return length;
}

int text_print_v(FILE *stream, const char *format, va_list arguments)
{
    const PlainLocale entered = locale_enter();
    const int length = vfprintf(stream, format, arguments);
    locale_leave(entered);
    return length;
}

int text_print(FILE *stream, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int length = text_print_v(stream, format, arguments);
    va_end(arguments);
    return length;
}
