// lp_names.cpp -- which texts are names in the LP format, and which names are words of it
//
// Names       Any printable characters but blanks, the signs + - * < > = : ^ and the backslash; UTF-8 too. A name does
//             not begin with a digit, a point, a bracket, a comma or a semicolon, and does not end in one of the last
//             two: "3(x+y);" or "x, y" of other languages must not be read as names by accident.
#include "files/lp_names.h"
#include <array>

static constexpr LpClass class_of(unsigned char c)
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

static constexpr int BYTES = 256;
static constexpr std::array<LpClass, BYTES> make_classes()
{
    std::array<LpClass, BYTES> classes{};
    for (int c = 0; c < BYTES; c++)
        classes[static_cast<size_t>(c)] = class_of(static_cast<unsigned char>(c));
    return classes;
}
static constexpr std::array<LpClass, BYTES> classes = make_classes();

LpClass lp_class(char c)
{
    return classes[static_cast<unsigned char>(c)];
}

static const struct {
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
             {"SEMIS", LpWord::SEMIS},       {"SEMI", LpWord::SEMIS},
             {"SOS", LpWord::SOS},           {"END", LpWord::END},
             {"INFINITY", LpWord::INFINITE}, {"INF", LpWord::INFINITE},
             {"FREE", LpWord::FREE}};

static constexpr int64_t SHORTEST_WORD = 2;
static constexpr int64_t LONGEST_WORD = 8;

LpWord lp_word(TextSpan name)
{
    const int64_t length = span_length(name);
    if (length < SHORTEST_WORD || length > LONGEST_WORD) return LpWord::NONE;
    const char last = static_cast<char>(name.end[-1] | 0x20);
    // Most names end in a digit or a bracket, no word does.
    if ((last < 'a' || last > 'z') && name.end[-1] != '.') return LpWord::NONE;
    for (const auto &row : words)
        if (span_is_word(name, row.text)) return row.word;
    return LpWord::NONE;
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

bool lp_is_name(const char *text)
{
    if (lp_class(*text) != LpClass::LETTER) return false;
    const char *end = text;
    while (lp_in_name(*end)) end++;
    if (*end || end[-1] == ',' || end[-1] == ';') return false;
    const TextSpan name = {text, end};
    return lp_word(name) == LpWord::NONE && !span_is_word(name, "SUBJECT") &&
           !span_is_word(name, "SUCH");
}
