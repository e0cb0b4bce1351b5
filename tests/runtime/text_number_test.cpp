// text_number_test.cpp -- numbers to text and back, against the C library in the "C" locale
//
// Other locales are tried in api/locale_test.cpp.
#include "runtime/text_number.h"
#include "support/dice.h"
#include <bit>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <string>

static uint64_t bits(double value)
{
    return std::bit_cast<uint64_t>(value);
}

// A whole text is read as strtod reads it, with an e or a Fortran d before its exponent.
static void expect_read(std::string text, const char *letters)
{
    const double expected = strtod(text.c_str(), nullptr);
    for (const char *letter = letters; *letter; letter++) {
        for (char &c : text)
            if (strchr("edD", c)) c = *letter;
        double value = 7;
        const char *end = nullptr;
        ASSERT_EQ(text_to_double(text.c_str(), &end, &value), 0) << text;
        ASSERT_EQ(*end, '\0') << text;
        ASSERT_EQ(bits(value), bits(expected)) << text;
    }
}

// All bit patterns, and numbers as models have them.
static double random_double(Dice *dice)
{
    if (dice->chance(30))
        return dice->range(-2000000000, 2000000000) / std::pow(10, dice->range(0, 9));
    double value = 0;
    do {
        const uint64_t high = static_cast<uint64_t>(dice->range(0, 0x3fffffff));
        const uint64_t low = static_cast<uint64_t>(dice->range(0, 0x3fffffff));
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
        ASSERT_EQ(length, static_cast<int>(strlen(theirs)));
        expect_read(ours, dice.chance(50) ? "eD" : "ed");
        number_shortest(ours, value);
        ASSERT_EQ(bits(strtod(ours, nullptr)), bits(value)) << ours;
    }
}

TEST(TextNumber, LongAndExtremeNumbersAreRoundedCorrectly)
{
    const std::string zeros(1500, '0'), half = "9007199254740993"; // 2^53 + 1, a tie
    // clang-format off
    const std::string texts[] = {
        half, half + "." + zeros + "1", half + "." + zeros, "0." + zeros + "123e1510",
        std::string(400, '7') + "e-300", zeros + "1." + zeros, "1e400", "-1e400", "1e-400",
        "1e99999999999999999999", "-1e-99999999999999999999", "0e99999999999999999999",
        "0.000e-5", "2.2250738585072011e-308", // and just above and below half the smallest number
        "2.4703282292062328e-324", "2.4703282292062327e-324", "1.7976931348623158e308",
        "1.7976931348623159e308", "123456789012345678901234567890e-30", "9007199254740992e22",
        "9007199254740991e-22", "1e23", ".5", "5.", "+.5e+01", "-0"};
    // clang-format on
    for (const std::string &text : texts) expect_read(text, "eD");
}

TEST(TextNumber, StopsBehindTheNumberOrWordAndRefusesWhatIsNone)
{
    const double infinity = std::numeric_limits<double>::infinity();
    const struct {
        const char *text, *rest;
        double expected;
    } cases[] = {{"1e+", "e+", 1},
                 {"12abc", "abc", 12},
                 {"1.5.5", ".5", 1.5},
                 {"1d", "d", 1},
                 {"3,5", ",5", 3},
                 {"0x10", "x10", 0},
                 {"1-2", "-2", 1},
                 {"1ee5", "ee5", 1},
                 {"inf", "", infinity},
                 {"Inf", "", infinity},
                 {"+INFINITY", "", infinity},
                 {"iNfInItY", "", infinity},
                 {"-infinite", "inite", -infinity}};
    double value = 7;
    const char *end = nullptr;
    for (const auto &one : cases) {
        EXPECT_EQ(text_to_double(one.text, &end, &value), 0) << one.text;
        EXPECT_STREQ(end, one.rest);
        EXPECT_EQ(value, one.expected);
    }
    ASSERT_EQ(text_to_double("NaN ", &end, &value), 0);
    EXPECT_STREQ(end, " ");
    EXPECT_TRUE(std::isnan(value));
    value = 7;
    for (const char *text :
         {"", "+", "-", ".", "e5", "-.e1", " 1", "+-1", "in", "na", "\xff", "d"}) {
        EXPECT_EQ(text_to_double(text, &end, &value), 1) << text;
        EXPECT_EQ(end, text);
        EXPECT_EQ(value, 7);
    }
    EXPECT_EQ(text_to_double("x", nullptr, &value), 1);
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
