// file_names.h -- FileNames, the names of the variables or constraints of a model in files
#pragma once
#include "body/body.h"
#include "files/name_table.h"
#include "runtime/text_pool.h"

enum class FileNameKind : char { VARIABLE = 'C', CONSTRAINT = 'R' };

// Names are the model's own if each can stand in a file and no two are equal, else numbers with a letter before.
struct FileNames {
    FileNameKind kind = FileNameKind::VARIABLE;
    int count = 0; // elements
    // [count] the model's names, entries may be null; null: all numbered
    const char *const *own = nullptr;
    bool wide = false;        // numbered names are "C12", not "C0000012"
    bool has_blanks = false;  // some own name holds a blank
    int longest = 0;          // bytes of the longest own name
    Array<const char *> kept; // own points here when a format refused some names
    int n_refused = 0;        // and how many
};
using NameTest = bool (*)(const char *name);
static constexpr int FILE_NAME_LENGTH = 16;    // room for a numbered name
static constexpr int SHORT_NUMBERS = 10000000; // elements that the short form can number

// Tests whether the names of the model can be used. 0 or OUT_OF_MEMORY. With wide false the numbered names are short if
// no name of the model is longer than 8 bytes and no number longer than 7 digits.
// With a test, the names that fail it are numbered one by one.
[[nodiscard]] int file_names_choose(FileNames *names, const ModelBody *body,
                                    FileNameKind kind, bool wide, NameTest test = nullptr);
void file_names_number(FileNames *names); // numbers all elements
// The name of element k; a numbered one is written into buffer.
const char *file_name(const FileNames *names, int k, char *buffer);

// For readers: every name of the model with its number. Numbered names are found in both forms.
struct FileNameIndex {
    const FileNames *names = nullptr;
    NameTable table;
    TextPool *pool = nullptr;
    int last = -1; // found last: files often go in order
};
// 0 or OUT_OF_MEMORY.
[[nodiscard]] int file_index_make(FileNameIndex *index, const FileNames *names);
void file_index_free(FileNameIndex *index);
// The number of the element, or NAME_ABSENT.
int file_index_find(FileNameIndex *index, const char *text, int64_t length);
