// attributes.cpp -- what attributes there are, and what they tell
//
// The texts are those of docs/attributes.md. Type, kind, and whether one may be set are asked of the library, which
// tells them of a model: an empty one.
#include "attributes.h"
#include "arguments.h"
#include "attributes/attribute_texts.h"
#include "model_input.h"
#include "near_miss.h"
#include "wrapped_text.h"
#include <cstdio>
#include <new>

namespace
{
OwnedModel empty_model(TVXenv *env)
{
    TVXmodel *model = nullptr;
    if (TVXnewmodel(env, &model, "", 0, nullptr, nullptr, nullptr, nullptr, nullptr))
        throw std::bad_alloc();
    return OwnedModel(model);
}

// What the library tells of an attribute, as numbers for the words in attribute_texts.h.
struct Traits {
    int type = 0, kind = 0, settable = 0;
};

Traits traits_of(TVXmodel *model, const char *name)
{
    Traits traits;
    TVXgetattrinfo(model, name, &traits.type, &traits.kind, &traits.settable);
    return traits;
}

// A text without the marks that the page needs around names.
std::string plain(std::string text)
{
    std::erase(text, '`');
    return text;
}

void print_attribute(TVXmodel *model, const char *name, const AttributeText &text)
{
    const Traits traits = traits_of(model, name);
    const bool one = traits.kind == 0;
    printf("%s: %s, of %s %s, set: %s\n", name, attribute_texts::types[traits.type],
           one ? "the" : "each", attribute_texts::kinds[traits.kind],
           attribute_texts::set_word(traits.settable, text.note));
    const bool unfilled = text.note == AttributeNote::NOT_YET;
    print_wrapped(plain((unfilled ? "Not filled yet. " : "") + std::string(text.means)));
    const int section = static_cast<int>(text.section);
    print_wrapped(plain(attribute_texts::sections[section].intro));
}
} // namespace

void attributes_list(TVXenv *env)
{
    const OwnedModel model = empty_model(env);
    printf("%-20s  %-6s  %-10s  %s\n", "Name", "type", "of", "set");
    for (const AttributeText &text : attribute_texts::rows)
        for (const char *name : text.names) {
            if (!name) continue;
            const Traits traits = traits_of(model.get(), name);
            const bool unfilled = text.note == AttributeNote::NOT_YET;
            printf("%-20s  %-6s  %-10s  %s%s\n", name, attribute_texts::types[traits.type],
                   attribute_texts::kinds[traits.kind],
                   attribute_texts::set_word(traits.settable, text.note),
                   unfilled ? "  not filled yet" : "");
        }
}

ExitCode attribute_describe(TVXenv *env, const std::string &name)
{
    std::vector<std::string> names;
    for (const AttributeText &text : attribute_texts::rows)
        for (const char *known : text.names) {
            if (!known) continue;
            if (name_key(known) == name_key(name)) {
                print_attribute(empty_model(env).get(), known, text);
                return EXIT_SOLVED;
            }
            names.emplace_back(known);
        }
    report_error(unknown_name("attribute", name, names));
    return EXIT_USAGE;
}
