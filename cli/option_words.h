// option_words.h -- parameters as long options, and words for their values
#pragma once
#include "env/parameter_texts.h"
#include <string>
#include <vector>

// The words of the command line behind the name of the command, with each option that means a parameter turned into
// Name=value: "--time-limit 10" is "TimeLimit=10", and other options joined with their value:
// "--json=out.json". *error, unless it is set, says what is wrong with such an option; the rest of the words is there
// all the same.
std::vector<std::string> option_words(int argc, char **argv, std::string *error);

// "TimeLimit" as an option: "--time-limit".
std::string parameter_option(const std::string &name);

// What is known about a parameter whatever the form of its name, or null.
const ParameterText *parameter_text(const std::string &name);

// The same for an option without its two dashes: those within do not matter either.
const ParameterText *option_parameter(const std::string &option);

struct ValueWord {
    std::string word, value;
};
// The words for values of a parameter: auto -1, off 0, ...
std::vector<ValueWord> value_words(const ParameterText &text);

// `value`, or the number that stands for it when it is a word of this parameter.
std::string value_of_word(const std::string &name, const std::string &value);
