// wrapped_text.cpp -- texts of any length on a screen
#include "wrapped_text.h"
#include <algorithm>
#include <cstdio>

void print_wrapped(const std::string &text)
{
    static constexpr size_t LINE = 78; // of text on a screen
    std::string line;
    for (size_t at = 0; at < text.size();) {
        const size_t end = std::min(text.find(' ', at), text.size());
        const std::string word = text.substr(at, end - at);
        if (!line.empty() && line.size() + 1 + word.size() > LINE) {
            printf("  %s\n", line.c_str());
            line.clear();
        }
        line += (line.empty() ? "" : " ") + word;
        at = end + 1;
    }
    if (!line.empty()) printf("  %s\n", line.c_str());
}
