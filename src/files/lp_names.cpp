// lp_names.cpp -- which texts are names in the LP format, and which names are words of it
//
// Names       Any printable characters but blanks, the signs + - * < > = : ^ and the backslash; UTF-8 too. A name does
//             not begin with a digit, a point, a bracket, a comma or a semicolon, and does not end in one of the last
//             two: "3(x+y);" or "x, y" of other languages must not be read as names by accident. For the same reason
//             blanks and dashes of Unicode are refused: "2 x" with a no-break space would be a new variable.
#include "files/lp_names.h"
#include <algorithm>
#include <array>
#include <cstring>

namespace
{
constexpr LpClass class_of(unsigned char c)
{
    if (c == '\n') return LpClass::NEWLINE;
    if (c == ' ' || (c >= 9 && c <= 13)) return LpClass::BLANK;
    if (c < ' ') return LpClass::STOP;
    if (c >= '0' && c <= '9') return LpClass::DIGIT;
    switch (c) {
    case '\\':
        return LpClass::COMMENT;
    case '+':
    case '-':
    case '*':
    case '<':
    case '>':
    case '=':
    case ':':
    case '^':
        return LpClass::SIGN;
    case '.':
        return LpClass::POINT;
    case '(':
    case ')':
    case '[':
    case ']':
    case ',':
    case ';':
        return LpClass::INNER;
    default:
        return LpClass::LETTER;
    }
}

constexpr int BYTES = 256;

constexpr std::array<LpClass, BYTES> make_classes()
{
    std::array<LpClass, BYTES> classes{};
    for (int c = 0; c < BYTES; c++)
        classes[static_cast<size_t>(c)] = class_of(static_cast<unsigned char>(c));
    return classes;
}

constexpr std::array<LpClass, BYTES> classes = make_classes();
} // namespace

LpClass lp_class(char c)
{
    return classes[static_cast<unsigned char>(c)];
}

namespace
{
const struct {
    const char *text;
    LpWord word;
} words[] = {{"MINIMIZE", LpWord::MINIMIZE}, {"MINIMUM", LpWord::MINIMIZE},
             {"MINIMISE", LpWord::MINIMIZE}, {"MIN", LpWord::MINIMIZE},
             {"MAXIMIZE", LpWord::MAXIMIZE}, {"MAXIMUM", LpWord::MAXIMIZE},
             {"MAXIMISE", LpWord::MAXIMIZE}, {"MAX", LpWord::MAXIMIZE},
             {"ST", LpWord::SUBJECT_TO},     {"S.T.", LpWord::SUBJECT_TO},
             {"ST.", LpWord::SUBJECT_TO},    {"BOUNDS", LpWord::BOUNDS},
             {"BOUND", LpWord::BOUNDS},      {"BINARY", LpWord::BINARIES},
             {"BINARIES", LpWord::BINARIES}, {"BIN", LpWord::BINARIES},
             {"GENERAL", LpWord::GENERALS},  {"GENERALS", LpWord::GENERALS},
             {"GEN", LpWord::GENERALS},      {"INTEGERS", LpWord::GENERALS},
             {"INTEGER", LpWord::GENERALS},  {"INTS", LpWord::GENERALS},
             {"INT", LpWord::GENERALS},      {"SEMIS", LpWord::SEMIS},
             {"SEMI", LpWord::SEMIS},        {"SOS", LpWord::SOS},
             {"END", LpWord::END},           {"INFINITY", LpWord::INFINITE},
             {"INF", LpWord::INFINITE},      {"FREE", LpWord::FREE}};

constexpr int64_t SHORTEST_WORD = 2;

constexpr int64_t LONGEST_WORD = 8;
} // namespace

LpWord lp_word(TextSpan name)
{
    const int64_t length = span_length(name);
    if (length < SHORTEST_WORD || length > LONGEST_WORD) return LpWord::NONE;
    const char last = static_cast<char>(name.end[-1] | 0x20);
    // Most names end in a digit or a bracket, no keyword does.
    if ((last < 'a' || last > 'z') && name.end[-1] != '.') return LpWord::NONE;
    for (const auto &row : words)
        if (span_is_word(name, row.text)) return row.word;
    return LpWord::NONE;
}

// ---- Headings that are no words of the format ----

namespace
{
// Sections of other dialects.
const char *const foreign[] = {
    "SEC",     "SIN",  "SOS1",       "SOS2",        "LAZY",     "USER",     "RANGE",
    "RANGES",  "RHS",  "INDICATOR",  "INDICATORS",  "PWLOBJ",   "DISCRETE", "CONTINUOUS",
    "SUBJECT", "SUCH", "CONSTRAINT", "CONSTRAINTS", "VARIABLES"};

// One or two characters are wrong, missing, too many, or two neighbours have changed places.
constexpr int64_t LONG_WORD = 6; // from here on two faults are forgiven, else one

constexpr int64_t SHORTEST_MISSPELT = 5;

constexpr int64_t LONGEST_COMPARED = LONGEST_WORD + 2;

// The least number of such faults that turn one word into the other (optimal string alignment).
int64_t spelling_faults(TextSpan name, const char *word, int64_t length)
{
    int64_t rows[LONGEST_COMPARED + 1][LONGEST_WORD + 1];
    const int64_t n = span_length(name);
    for (int64_t j = 0; j <= length; j++) rows[0][j] = j;
    for (int64_t i = 1; i <= n; i++) {
        rows[i][0] = i;
        for (int64_t j = 1; j <= length; j++) {
            const char a = capital(name.begin[i - 1]);
            const int64_t change = rows[i - 1][j - 1] + (a != word[j - 1]);
            rows[i][j] = std::min({change, rows[i - 1][j] + 1, rows[i][j - 1] + 1});
            if (i > 1 && j > 1 && a == word[j - 2] &&
                capital(name.begin[i - 2]) == word[j - 1])
                rows[i][j] = std::min(rows[i][j], rows[i - 2][j - 2] + 1);
        }
    }
    return rows[n][length];
}
} // namespace

bool lp_like_heading(TextSpan name)
{
    static constexpr int64_t SEMI = 4; // letters: of semiint, semicontinuous, ...
    if (span_length(name) > SEMI && span_is_word({name.begin, name.begin + SEMI}, "SEMI"))
        return true;
    for (const char *word : foreign)
        if (span_is_word(name, word)) return true;
    if (span_length(name) > LONGEST_COMPARED) return false;
    for (const auto &row : words) {
        const int64_t length = static_cast<int64_t>(strlen(row.text));
        if (length < SHORTEST_MISSPELT) continue;
        if (spelling_faults(name, row.text, length) <= (length < LONG_WORD ? 1 : 2))
            return true;
    }
    return false;
}

const char *lp_second_word(TextSpan first, const char *stop)
{
    const char *p = first.end;
    if (span_is_word(first, "SEMI")) {
        static constexpr int64_t TAIL = 11;
        if (stop - p < TAIL || !span_is_word({p, p + TAIL}, "-CONTINUOUS")) return nullptr;
        return p + TAIL < stop && lp_in_name(p[TAIL]) ? nullptr : p + TAIL;
    }
    const bool subject = span_is_word(first, "SUBJECT");
    if (!subject && !span_is_word(first, "SUCH")) return nullptr;
    while (lp_class(*p) == LpClass::BLANK) p++;
    const char *end = p;
    while (lp_in_name(*end)) end++;
    return span_is_word({p, end}, subject ? "TO" : "THAT") ? end : nullptr;
}

bool lp_has_foreign_sign(TextSpan text)
{
    static constexpr unsigned char ASCII_END = 0x80;
    static constexpr const char *signs[] = {
        "\u00a0", "\u2000", "\u2001", "\u2002", "\u2003", "\u2004", "\u2005",
        "\u2006", "\u2007", "\u2008", "\u2009", "\u200a", "\u200b", "\u202f",
        "\u205f", "\u3000",                                                    // blanks
        "\u2010", "\u2011", "\u2012", "\u2013", "\u2014", "\u2015", "\u2212"}; // dashes
    for (const char *p = text.begin; p < text.end; p++) {
        if (static_cast<unsigned char>(*p) < ASCII_END) continue;
        for (const char *sign : signs) {
            const auto length = static_cast<int64_t>(strlen(sign));
            if (text.end - p >= length && memcmp(p, sign, static_cast<size_t>(length)) == 0)
                return true;
        }
    }
    return false;
}

bool lp_is_name(const char *text)
{
    if (lp_class(*text) != LpClass::LETTER) return false;
    const char *end = text;
    while (lp_in_name(*end)) end++;
    if (*end || end[-1] == ',' || end[-1] == ';') return false;
    const TextSpan name = {text, end};
    return lp_word(name) == LpWord::NONE && !lp_has_foreign_sign(name) &&
           !span_is_word(name, "SUBJECT") && !span_is_word(name, "SUCH");
}
