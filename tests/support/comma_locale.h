// comma_locale.h -- CommaLocale, a scope in which the process runs under a locale whose decimal point is a comma
//
// Such a locale is seldom installed on a test machine, so it is made: the C library's own LC_NUMERIC file with two
// characters changed, in a scratch directory of its own.
#pragma once
#include "support/scratch.h"
#include <clocale>
#include <cstring>

struct CommaLocale {
    Scratch scratch;
    bool in_force = false; // false: the C library does not take the locale; skip

    CommaLocale()
    {
        std::filesystem::create_directory("comma");
        std::string bytes = file_get("/usr/lib/locale/C.utf8/LC_NUMERIC");
        // The decimal point stands twice: as text and as a wide character.
        for (size_t at = 0; (at = bytes.find('.', at)) != std::string::npos;)
            bytes[at] = ',';
        file_put("comma/LC_NUMERIC", bytes);
        setenv("LOCPATH", scratch.path.c_str(), 1);
        in_force =
            setlocale(LC_NUMERIC, "comma") && strcmp(localeconv()->decimal_point, ",") == 0;
    }
    ~CommaLocale()
    {
        setlocale(LC_NUMERIC, "C");
        unsetenv("LOCPATH");
    }
};
