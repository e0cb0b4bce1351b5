// parameters.cpp -- parameters by name, from text
//
// Numbers are read whole or not at all, with a decimal point whatever the locale: "1O" and "10 s" are refused
// rather than taken for 1 and 10.
#include "parameters.h"
#include "near_miss.h"
#include "option_words.h"
#include "wrapped_text.h"
#include <charconv>
#include <cmath>
#include <cstdio>

namespace
{
enum ParameterType { INT_PARAMETER = 1, DOUBLE_PARAMETER = 2, STRING_PARAMETER = 3 };

bool parse_number(const std::string &text, double *value)
{
    const char *begin = text.c_str();
    const char *end = begin + text.size();
    if (*begin == '+') begin++;
    const auto [rest, code] = std::from_chars(begin, end, *value);
    if (rest != end || begin == end || std::isnan(*value)) return false;
    if (code == std::errc::result_out_of_range) return false;
    if (std::isinf(*value)) *value = std::copysign(TVX_INFINITY, *value);
    return code == std::errc();
}

int set_int(TVXenv *env, const std::string &name, double value, std::string *error)
{
    if (value != std::floor(value) || std::fabs(value) > 2e9) {
        *error = "takes a whole number between -2000000000 and 2000000000";
        return TVX_ERROR_VALUE_OUT_OF_RANGE;
    }
    return TVXsetintparam(env, name.c_str(), static_cast<int>(value));
}

// " or one of the words ...", or empty.
std::string word_choice(const std::string &name)
{
    std::string list;
    const ParameterText *text = parameter_text(name);
    if (text)
        for (const ValueWord &word : value_words(*text))
            list += (list.empty() ? "" : ", ") + word.word;
    return list.empty() ? "" : " or a word (" + list + ")";
}
} // namespace

ExitCode parameter_set(TVXenv *env, const std::string &name, const std::string &text,
                       std::string *error)
{
    const int type = TVXgetparamtype(env, name.c_str());
    int code = 0;
    if (type == STRING_PARAMETER) {
        code = TVXsetstrparam(env, name.c_str(), text.c_str());
    } else {
        double value = 0;
        if (!parse_number(value_of_word(name, text), &value)) {
            *error = "takes a number" + word_choice(name) + ", not '" + text + "'";
            return EXIT_USAGE;
        }
        if (type == INT_PARAMETER)
            code = set_int(env, name, value, error);
        else
            code = TVXsetdblparam(env, name.c_str(), value);
    }
    if (code == 0) return EXIT_SOLVED;
    if (error->empty()) *error = describe_failure(code, TVXgeterrormsg(env));
    return code == TVX_ERROR_VALUE_OUT_OF_RANGE || code == TVX_ERROR_UNKNOWN_PARAMETER
               ? EXIT_USAGE
               : EXIT_ERROR;
}

void parameters_list(TVXenv *env)
{
    printf("%-16s %-7s %12s %12s %12s\n", "Name", "type", "minimum", "maximum", "default");
    const int count = TVXgetnumparams(env);
    for (int k = 0; k < count; k++) {
        char *name = nullptr;
        if (TVXgetparamname(env, k, &name) != 0) continue;
        const int type = TVXgetparamtype(env, name);
        const ParameterText *text = parameter_text(name);
        const bool unused = text && text->use == ParameterUse::NOT_YET;
        const char *remark = unused ? "  not used yet" : "";
        if (type == INT_PARAMETER) {
            int low = 0;
            int high = 0;
            int usual = 0;
            TVXgetintparaminfo(env, name, nullptr, &low, &high, &usual);
            printf("%-16s %-7s %12d %12d %12d%s\n", name, "int", low, high, usual, remark);
        } else if (type == DOUBLE_PARAMETER) {
            double low = 0;
            double high = 0;
            double usual = 0;
            TVXgetdblparaminfo(env, name, nullptr, &low, &high, &usual);
            printf("%-16s %-7s %12g %12g %12g%s\n", name, "double", low, high, usual,
                   remark);
        } else {
            char usual[TVX_PARAM_LENGTH + 1] = "";
            TVXgetstrparaminfo(env, name, nullptr, usual);
            printf("%-16s %-7s %12s %12s %12s%s\n", name, "string", "", "", usual, remark);
        }
    }
}

// ---- One parameter ----

namespace
{
void print_int_head(TVXenv *env, const char *name)
{
    int now = 0;
    int low = 0;
    int high = 0;
    int usual = 0;
    TVXgetintparaminfo(env, name, &now, &low, &high, &usual);
    printf("%s: int, %d to %d, default %d\n", name, low, high, usual);
    if (now != usual) printf("  set to %d by tarvex.env\n", now);
}

void print_double_head(TVXenv *env, const char *name)
{
    double now = 0;
    double low = 0;
    double high = 0;
    double usual = 0;
    TVXgetdblparaminfo(env, name, &now, &low, &high, &usual);
    printf("%s: double, %g to %g, default %g\n", name, low, high, usual);
    if (now != usual) printf("  set to %g by tarvex.env\n", now);
}

void print_string_head(TVXenv *env, const char *name)
{
    char now[TVX_PARAM_LENGTH + 1] = "";
    char usual[TVX_PARAM_LENGTH + 1] = "";
    TVXgetstrparaminfo(env, name, now, usual);
    printf("%s: string, default '%s'\n", name, usual);
    if (std::string(now) != usual) printf("  set to '%s' by tarvex.env\n", now);
}
} // namespace

ExitCode parameter_describe(TVXenv *env, const std::string &name)
{
    const ParameterText *text = option_parameter(name);
    const int type = text ? TVXgetparamtype(env, text->name) : 0;
    if (type <= 0) {
        report_error(unknown_name("parameter", name, parameter_names()));
        return EXIT_USAGE;
    }
    if (type == INT_PARAMETER)
        print_int_head(env, text->name);
    else if (type == DOUBLE_PARAMETER)
        print_double_head(env, text->name);
    else
        print_string_head(env, text->name);
    print_wrapped(text->use == ParameterUse::NOT_YET
                      ? std::string("Not used yet. ") + text->does
                      : text->does);
    if (*text->when) print_wrapped(std::string("When to change it: ") + text->when);
    std::string words;
    for (const ValueWord &word : value_words(*text))
        words += (words.empty() ? "Words: " : ", ") + word.word + " (" + word.value + ")";
    print_wrapped(words);
    printf("  tarvex %s=VALUE ...", text->name);
    if (!std::string_view(text->name).starts_with("TARV_")) // those have no handy option
        printf("  or  tarvex %s VALUE ...", parameter_option(text->name).c_str());
    printf("\n");
    return EXIT_SOLVED;
}
