// parameters.cpp -- parameters by name, from text
//
// Numbers are read whole or not at all, with a decimal point whatever the locale: "1O" and "10 s" are refused
// rather than taken for 1 and 10.
#include "parameters.h"
#include <charconv>
#include <cmath>
#include <cstdio>

enum ParameterType { INT_PARAMETER = 1, DOUBLE_PARAMETER = 2, STRING_PARAMETER = 3 };

static bool parse_number(const std::string &text, double *value)
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

static int set_int(TVXenv *env, const std::string &name, double value, std::string *error)
{
    if (value != std::floor(value) || std::fabs(value) > 2e9) {
        *error = "takes a whole number between -2000000000 and 2000000000";
        return TVX_ERROR_VALUE_OUT_OF_RANGE;
    }
    return TVXsetintparam(env, name.c_str(), static_cast<int>(value));
}

ExitCode parameter_set(TVXenv *env, const std::string &name, const std::string &text,
                       std::string *error)
{
    const int type = TVXgetparamtype(env, name.c_str());
    int code = 0;
    if (type == STRING_PARAMETER) {
        code = TVXsetstrparam(env, name.c_str(), text.c_str());
    } else {
        double value = 0;
        if (!parse_number(text, &value)) {
            *error = "takes a number, not '" + text + "'";
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
        if (type == INT_PARAMETER) {
            int low = 0;
            int high = 0;
            int usual = 0;
            TVXgetintparaminfo(env, name, nullptr, &low, &high, &usual);
            printf("%-16s %-7s %12d %12d %12d\n", name, "int", low, high, usual);
        } else if (type == DOUBLE_PARAMETER) {
            double low = 0;
            double high = 0;
            double usual = 0;
            TVXgetdblparaminfo(env, name, nullptr, &low, &high, &usual);
            printf("%-16s %-7s %12g %12g %12g\n", name, "double", low, high, usual);
        } else {
            char usual[TVX_PARAM_LENGTH + 1] = "";
            TVXgetstrparaminfo(env, name, nullptr, usual);
            printf("%-16s %-7s %12s %12s %12s\n", name, "string", "", "", usual);
        }
    }
}
