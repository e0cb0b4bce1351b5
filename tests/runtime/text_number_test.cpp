// text_number_test.cpp -- numbers to text and back, against the C library in the "C" locale
//
// Other locales are tried in api/citizen_test.cpp.
#include "runtime/text_number.h"
#include "support/dice.h"
#include <bit>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <string>

static uint64_t bits(double value)
{
    return std::bit_cast<uint64_t>(value);
}

// A text is read as strtod reads it, up to the same place, with an e or a Fortran d before the exponent; without
// leading blanks, hexadecimal digits and texts behind "nan".
static void expect_read(std::string text, const char *letters)
{
    for (const char *letter = letters; *letter; letter++) {
        for (char &c : text)
            if (strchr("edD", c)) c = 'e';
        char *stop = nullptr;
        double value = 7, expected = strtod(text.c_str(), &stop);
        const long length = stop - text.c_str();
        if (length == 0) expected = 7;
        for (char &c : text)
            if (c == 'e') c = *letter;
        const char *end = nullptr;
        ASSERT_EQ(text_to_double(text.c_str(), &end, &value), length == 0) << text;
        ASSERT_EQ(end - text.c_str(), length) << text;
        ASSERT_TRUE(bits(value) == bits(expected) ||
                    (value != value && expected != expected))
            << text;
    }
}

// All bit patterns, and numbers as models have them.
static double random_double(Dice *dice)
{
    if (dice->chance(30))
        return dice->range(-2000000000, 2000000000) / std::pow(10, dice->range(0, 9));
    double value = 0;
    do {
        const uint64_t high = uint64_t(dice->range(0, 0x3fffffff));
        const uint64_t low = uint64_t(dice->range(0, 0x3fffffff));
        value = std::bit_cast<double>((high << 34) ^ (low << 10) ^ high);
    } while (!std::isfinite(value));
    return value;
}

TEST(TextNumber, PrintsAsPrintfAndReadsAsStrtodOnRandomNumbers)
{
    Dice dice(4);
    char ours[NUMBER_LENGTH];
    char theirs[64];
    for (int k = 0; k < 200'000; k++) {
        const double value = random_double(&dice);
        const int digits = dice.range(1, 17);
        const bool general = dice.chance(50);
        const int length = general ? number_general(ours, value, digits)
                                   : number_scientific(ours, value, digits);
        snprintf(theirs, sizeof theirs, general ? "%.*g" : "%.*e", digits, value);
        ASSERT_STREQ(ours, theirs);
        ASSERT_EQ(length, int(strlen(theirs)));
        expect_read(ours, dice.chance(50) ? "eD" : "ed");
        number_shortest(ours, value);
        ASSERT_EQ(bits(strtod(ours, nullptr)), bits(value)) << ours;
    }
}

TEST(TextNumber, ReadsPiecedTextsAsStrtod)
{
    // clang-format off
    const std::string pieces[] = {
        "0", "1", "9", "+", "-", ".", ".", "e", "e", "e-3", "e22", "e-22", "inf", "Inf", "INITY", "inity", "in", "na",
        "nan", ",", "\xff", "5e-324", "e99999999999999999999", std::string(1500, '0'), std::string(400, '7'),
        "9007199254740993." + std::string(1500, '0'),
        "9007199254740993", // 2^53 + 1, a tie; behind it just below and above half the smallest number
        "2.4703282292062327e-324", "2.4703282292062328e-324", "2.2250738585072011e-308", "1.7976931348623158e308",
        "1.7976931348623159e308", "123456789012345678901234567890e-30", "9007199254740992e22", "9007199254740991e-22"};
    // clang-format on
    Dice dice(5);
    for (int k = 0; k < 100'000; k++) {
        std::string text;
        for (int count = dice.range(0, 6); count > 0; count--)
            text += pieces[dice.range(0, std::size(pieces) - 1)];
        expect_read(text, "eD");
    }
    const char *end = nullptr;
    double value = 7;
    for (const char *text : {" 1", "x", "\n"})
        EXPECT_EQ(text_to_double(text, nullptr, &value), 1);
    EXPECT_EQ(text_to_double("0x10", &end, &value), 0);
    EXPECT_STREQ(end, "x10");
}

TEST(TextNumber, FormatsCutLongTextsAndSurviveNullOnes)
{
    char buffer[8];
    EXPECT_EQ(text_format(buffer, sizeof buffer, "%d %s", 12345, "many words"), 16);
    EXPECT_STREQ(buffer, "12345 m");
    const char *volatile nothing = nullptr;
    text_format(buffer, sizeof buffer, "%s", nothing);
    EXPECT_STREQ(buffer, "(null)");
}
