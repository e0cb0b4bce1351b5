// json_check.cpp -- is a text valid JSON: a recursive descent over the grammar of RFC 8259
#include "cli/json_check.h"
#include <cctype>
#include <cstring>

namespace
{

struct Reader {
    const char *at;
    const char *end;

    bool is(char c) const { return at < end && *at == c; }
    bool take(char c)
    {
        if (!is(c)) return false;
        at++;
        return true;
    }
    void blanks()
    {
        while (at < end && strchr(" \t\r\n", *at)) at++;
    }
    bool word(const char *text)
    {
        const size_t size = strlen(text);
        if (static_cast<size_t>(end - at) < size || strncmp(at, text, size) != 0)
            return false;
        at += size;
        return true;
    }
    bool digits()
    {
        const char *const begin = at;
        while (at < end && isdigit(static_cast<unsigned char>(*at))) at++;
        return at > begin;
    }
    bool number()
    {
        take('-');
        const bool zero = is('0');
        const char *const begin = at;
        if (!digits() || (zero && at > begin + 1)) return false;
        if (take('.') && !digits()) return false;
        if (!take('e') && !take('E')) return true;
        if (!take('-')) take('+');
        return digits();
    }
    // What stands behind a backslash.
    bool escape()
    {
        if (!take('u')) return at < end && strchr("\"\\/bfnrt", *at++);
        for (int k = 0; k < 4; k++, at++)
            if (at >= end || !isxdigit(static_cast<unsigned char>(*at))) return false;
        return true;
    }
    // The bytes behind the first one of a character that is not ASCII.
    bool rest_of_character(unsigned char first)
    {
        const int more = first >= 0xf0 ? 3 : first >= 0xe0 ? 2 : 1;
        if (first < 0xc2 || first > 0xf4) return false;
        for (int k = 0; k < more; k++, at++)
            if (at >= end || (static_cast<unsigned char>(*at) & 0xc0) != 0x80) return false;
        return true;
    }
    bool text()
    {
        if (!take('"')) return false;
        while (at < end) {
            const unsigned char c = static_cast<unsigned char>(*at++);
            if (c == '"') return true;
            if (c < ' ') return false;
            if (c == '\\' && !escape()) return false;
            if (c >= 0x80 && !rest_of_character(c)) return false;
        }
        return false;
    }
    bool member(char closing) { return closing == ']' || (text() && colon()); }
    bool colon()
    {
        blanks();
        return take(':');
    }
    bool list(char opening, char closing)
    {
        if (!take(opening)) return false;
        blanks();
        if (take(closing)) return true;
        do {
            blanks();
            if (!member(closing) || !value()) return false;
        } while (take(','));
        return take(closing);
    }
    bool value() // NOLINT(misc-no-recursion): as deep as the text, which is ours
    {
        blanks();
        const bool good = is('{')   ? list('{', '}')
                          : is('[') ? list('[', ']')
                          : is('"')
                              ? text()
                              : word("null") || word("true") || word("false") || number();
        blanks();
        return good;
    }
};

} // namespace

bool is_json(const std::string &text)
{
    Reader reader = {text.data(), text.data() + text.size()};
    return reader.value() && reader.at == reader.end;
}
