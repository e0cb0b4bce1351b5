// file_names.cpp -- FileNames, the names of the variables or constraints of a model in files
//
// Problem     A caller may give any names: empty, equal, with line ends inside. A file written with such names could
//             not be read back, or be read back as another model.
// Method      The model's names are used only if all of them can stand in a file (not empty, no control characters, no
//             blanks at the ends) and all are different, numbered ones for elements without a name included. Otherwise
//             all elements are numbered. Writer and reader of a file for the same model make the same choice.
// Cost        One hash table over the names.
#include "files/file_names.h"
#include <charconv>
#include <climits>
#include <cstring>

namespace
{
constexpr int SHORT_LENGTH = 8; // of a name in the fixed form

constexpr int SHORT_DIGITS = 7;

// Letter and number.
int numbered_name(FileNameKind kind, bool wide, int k, char *buffer)
{
    char digits[FILE_NAME_LENGTH];
    const std::to_chars_result result = std::to_chars(digits, digits + sizeof digits, k);
    const int n = static_cast<int>(result.ptr - digits);
    int length = 0;
    buffer[length++] = static_cast<char>(kind);
    if (!wide)
        for (int d = n; d < SHORT_DIGITS; d++) buffer[length++] = '0';
    memcpy(buffer + length, digits, static_cast<size_t>(n));
    length += n;
    buffer[length] = '\0';
    return length;
}
} // namespace

const char *file_name(const FileNames *names, int k, char *buffer)
{
    if (names->own && names->own[k]) return names->own[k];
    numbered_name(names->kind, names->wide, k, buffer);
    return buffer;
}

void file_names_number(FileNames *names)
{
    names->own = nullptr;
    names->has_blanks = false;
    names->longest = 0;
}

namespace
{
// Whether the name can stand in a file; notes length and blanks.
bool name_usable(FileNames *names, const char *name)
{
    if (!*name || *name == ' ') return false;
    int64_t length = 0;
    for (; name[length]; length++) {
        if (static_cast<unsigned char>(name[length]) < ' ') return false;
        if (name[length] == ' ') names->has_blanks = true;
    }
    if (name[length - 1] == ' ' || length > INT_MAX) return false;
    if (length > names->longest) names->longest = static_cast<int>(length);
    return true;
}

bool all_usable(FileNames *names)
{
    for (int k = 0; k < names->count; k++)
        if (names->own[k] && !name_usable(names, names->own[k])) return false;
    return true;
}

// Puts every name into the index; *distinct is false when two are equal.
int index_fill(FileNameIndex *index, bool *distinct)
{
    const FileNames *names = index->names;
    *distinct = true;
    for (int k = 0; k < names->count && *distinct; k++) {
        char buffer[FILE_NAME_LENGTH];
        const char *name = file_name(names, k, buffer);
        const size_t length = strlen(name);
        if (name == buffer) {
            name = PoolCopy(index->pool, buffer, length);
            if (!name) return OUT_OF_MEMORY;
        }
        const int64_t n = static_cast<int64_t>(length);
        *distinct = name_table_find(&index->table, name, n) == NAME_ABSENT;
        TRY(name_table_append(&index->table, name, n));
    }
    return 0;
}

int index_open(FileNameIndex *index, const FileNames *names)
{
    static constexpr size_t CHUNK = 4096;
    *index = FileNameIndex{};
    index->names = names;
    index->pool = PoolCreate(CHUNK);
    return index->pool ? 0 : OUT_OF_MEMORY;
}
} // namespace

void file_index_free(FileNameIndex *index)
{
    PoolFree(&index->pool);
    *index = FileNameIndex{};
}

namespace
{
int test_distinct(const FileNames *names, bool *distinct)
{
    FileNameIndex index;
    TRY(index_open(&index, names));
    const int error = index_fill(&index, distinct);
    file_index_free(&index);
    return error;
}

// Of the own names, those that pass the test.
int keep_names(FileNames *names, NameTest test)
{
    TRY(array_copy(&names->kept, names->own, names->count));
    for (const char *&name : names->kept) {
        if (!name || test(name)) continue;
        name = nullptr;
        names->n_refused++;
    }
    names->own = names->kept.data;
    return 0;
}
} // namespace

int file_names_choose(FileNames *names, const ModelBody *body, FileNameKind kind, bool wide,
                      NameTest test)
{
    const bool variables = kind == FileNameKind::VARIABLE;
    const Array<const char *> *own = variables ? &body->varnames : &body->constrnames;
    *names = FileNames{};
    names->kind = kind;
    names->count = variables ? body->numvars : body->numconstrs;
    names->wide = wide || names->count > SHORT_NUMBERS;
    if (own->size < names->count || !names->count) return 0;
    names->own = own->data;
    if (test) TRY(keep_names(names, test));
    if (!all_usable(names)) {
        file_names_number(names);
        return 0;
    }
    if (names->longest > SHORT_LENGTH) names->wide = true;
    bool distinct = true;
    TRY(test_distinct(names, &distinct));
    if (!distinct) file_names_number(names);
    return 0;
}

// ---- Look-up ----

// If all names are numbered, no table is needed: the index is read from the name.
int file_index_make(FileNameIndex *index, const FileNames *names)
{
    TRY(index_open(index, names));
    if (!names->own) return 0;
    bool distinct = true;
    const int error = index_fill(index, &distinct);
    if (error) file_index_free(index);
    return error;
}

namespace
{
// Whether element k has no name but its number: none, or the default name written out.
bool is_numbered(const FileNames *names, int k)
{
    if (!names->own || !names->own[k]) return true;
    char buffer[FILE_NAME_LENGTH];
    numbered_name(names->kind, true, k, buffer);
    return !strcmp(names->own[k], buffer);
}

// An element that is numbered, by its letter and number in either form.
int find_numbered(const FileNames *names, const char *text, int64_t length)
{
    if (length < 2 || *text != static_cast<char>(names->kind)) return NAME_ABSENT;
    int k = 0;
    const std::from_chars_result result = std::from_chars(text + 1, text + length, k);
    if (result.ec != std::errc{} || result.ptr != text + length) return NAME_ABSENT;
    if (text[1] < '0' || text[1] > '9' || k >= names->count) return NAME_ABSENT;
    return is_numbered(names, k) ? k : NAME_ABSENT;
}
} // namespace

int file_index_find(FileNameIndex *index, const char *text, int64_t length)
{
    const int next = index->last + 1;
    if (next < index->table.entries.size) {
        const TableName *name = &index->table.entries.data[next];
        if (name->length == length &&
            !memcmp(name->text, text, static_cast<size_t>(length)))
            return index->last = next;
    }
    int k = name_table_find(&index->table, text, length);
    if (k == NAME_ABSENT) k = find_numbered(index->names, text, length);
    if (k != NAME_ABSENT) index->last = k;
    return k;
}
