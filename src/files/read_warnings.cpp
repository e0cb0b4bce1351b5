// read_warnings.cpp -- ReadWarnings, warnings of a reader: counted by kind, written to the log at the end
//
// Problem     An attempt may be dropped and repeated in another form, and a damaged file may give a million warnings.
// Method      Warnings are counted, the first few of a kind with line and name, and shown when the reading is over.
#include "files/read_warnings.h"

namespace
{
constexpr int NAME_SHOWN = 80; // bytes
} // namespace

void warning_note(ReadWarnings *warnings, int kind, int64_t line, TextSpan name)
{
    if (warning_is_shown(warnings, kind))
        warnings->place[kind][warnings->count[kind]] = {line, name};
    warnings->count[kind]++;
}

namespace
{
void show_place(const WarningText *text, const WarningPlace *place, TVXenv *env)
{
    char name[NAME_SHOWN];
    text_printable(name, NAME_SHOWN, place->name);
    if (text->behind) TVXmsg(env, "%s%s%s", text->text, name, text->behind);
    if (place->line && text->behind)
        TVXmsg(env, "         line %lld\n", static_cast<long long>(place->line));
    else if (place->line)
        TVXmsg(env, "         line %lld: %s\n", static_cast<long long>(place->line), name);
    else if (*name && !text->behind)
        TVXmsg(env, "         %s\n", name);
}

void show_kind(const ReadWarnings *warnings, int kind, const WarningText *text, TVXenv *env)
{
    const int64_t count = warnings->count[kind];
    if (count && !text->behind) TVXmsg(env, "%s", text->text);
    for (int64_t i = 0; i < count && i < WARNING_SHOWN; i++)
        show_place(text, &warnings->place[kind][i], env);
    if (count > WARNING_SHOWN)
        TVXmsg(env, "         and %lld more\n",
               static_cast<long long>(count - WARNING_SHOWN));
}
} // namespace

void warnings_show(const ReadWarnings *warnings, const WarningText *texts, int kinds,
                   TVXenv *env)
{
    for (int k = 0; k < kinds; k++) show_kind(warnings, k, &texts[k], env);
}
