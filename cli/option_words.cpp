// option_words.cpp -- parameters as long options, and words for their values
//
// Problem     Parameters are written Name=value. People and completion of shells expect options.
// Method      Every option is compared with the names of all parameters, both without regard to case, dashes and
//             underscores, and with a few shorter names. What is no parameter is left as it is.
#include "option_words.h"
#include "arguments.h"
#include <algorithm>

namespace
{
struct ShortName {
    const char *option;    // without the dashes
    const char *parameter; // or "Name=value", which takes no value behind it
};
constexpr ShortName SHORT_NAMES[] = {
    {"method", "LPMethod"},
    {"quiet", "OutputFlag=0"},
};

// The options of the command itself with a file or a word behind them. They are joined with it here, before that word
// can be taken for an option of its own.
constexpr const char *VALUE_OPTIONS[] = {"--json", "--params", "--start", "--format",
                                         "--solution-file"};

} // namespace

const ParameterText *option_parameter(const std::string &option)
{
    std::string name;
    for (const char c : option)
        if (c != '-') name += c;
    return parameter_text(name);
}

const ParameterText *parameter_text(const std::string &name)
{
    const std::string key = name_key(name);
    for (const ParameterText &text : parameter_texts::rows)
        if (name_key(text.name) == key) return &text;
    return nullptr;
}

namespace
{
// The parameter that an option means, as in ShortName, or empty.
std::string meaning(const std::string &option)
{
    for (const ShortName &name : SHORT_NAMES)
        if (option == name.option) return name.parameter;
    const ParameterText *text = option_parameter(option);
    return text ? text->name : "";
}

bool takes_value(const std::string &word)
{
    return std::ranges::any_of(VALUE_OPTIONS,
                               [&](const char *option) { return word == option; });
}

// Whether argv[k] can be a value: it is there, is not empty and is no option. A value that begins with two dashes
// stands behind '='.
bool is_value(int argc, char **argv, int k)
{
    return k < argc && *argv[k] && std::string_view(argv[k]).substr(0, 2) != "--";
}
} // namespace

std::vector<std::string> option_words(int argc, char **argv, std::string *error)
{
    std::vector<std::string> words;
    const auto fail = [error](const std::string &word, const char *reason) {
        if (error->empty()) *error = "'" + word + "'" + reason;
    };
    for (int k = 1; k < argc; k++) {
        const std::string word = argv[k];
        if (word == "--") {
            words.insert(words.end(), argv + k, argv + argc);
            break;
        }
        const size_t equals = word.find('=');
        const std::string parameter =
            word.starts_with("--") ? meaning(word.substr(2, equals - 2)) : "";
        const bool whole = parameter.find('=') != std::string::npos;
        if (word.starts_with("--") && word.back() == '=') {
            fail(word, " needs a value");
        } else if (whole) {
            words.push_back(parameter);
            if (equals != std::string::npos) fail(word, ": this option takes no value");
        } else if (equals != std::string::npos && !parameter.empty()) {
            words.push_back(parameter + word.substr(equals));
        } else if (parameter.empty() && !takes_value(word)) {
            words.push_back(word);
        } else if (is_value(argc, argv, k + 1)) {
            words.push_back((parameter.empty() ? word : parameter) + "=" + argv[++k]);
        } else {
            fail(word, " needs a value behind it");
            k++; // what stands there counts as no option: "--quiet" must not silence this
        }
    }
    return words;
}

namespace
{
bool is_capital(char c)
{
    return 'A' <= c && c <= 'Z';
}
} // namespace

// A dash before each capital that begins a word: LogFile log-file, MIPGapAbs mip-gap-abs, LPMethod lp-method.
std::string parameter_option(const std::string &name)
{
    std::string option = "--";
    for (size_t k = 0; k < name.size(); k++) {
        const bool begins =
            k > 0 && is_capital(name[k]) &&
            (!is_capital(name[k - 1]) || (k + 1 < name.size() && !is_capital(name[k + 1])));
        if (begins) option += '-';
        option += is_capital(name[k]) ? static_cast<char>(name[k] - 'A' + 'a') : name[k];
    }
    return option;
}

std::vector<ValueWord> value_words(const ParameterText &text)
{
    std::vector<ValueWord> words;
    const std::string all = text.words;
    for (size_t at = 0; at < all.size();) {
        const size_t end = std::min(all.find(' ', at), all.size());
        const size_t equals = all.find('=', at);
        words.push_back(
            {all.substr(at, equals - at), all.substr(equals + 1, end - equals - 1)});
        at = end + 1;
    }
    return words;
}

std::string value_of_word(const std::string &name, const std::string &value)
{
    const ParameterText *text = parameter_text(name);
    if (!text) return value;
    for (const ValueWord &known : value_words(*text))
        if (name_key(known.word) == name_key(value)) return known.value;
    return value;
}
