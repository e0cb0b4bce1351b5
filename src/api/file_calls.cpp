// file_calls.cpp -- TVXreadmodel, TVXread and TVXwrite: what a file name means
//
// Method      One table says for each type by which routine a model is read, data are read into a model, and a file is
//             written. Names are completed by model and compression suffixes, in table order, until one opens.
#include "api/file_calls.h"
#include "api/file_data.h"
#include "files/files.h"
#include "runtime/clock.h"
#include "runtime/file.h"
#include <cstring>

// ---- The table ----

using ModelReader = int (*)(TVXenv *env, const char *file_name, ModelDraft *draft);
using ModelVisitor = int (*)(TVXmodel *model, const char *file_name);

// No model has an irreducible inconsistent subsystem in this build.
static int write_ilp(TVXmodel *model, const char *file_name)
{
    (void)file_name;
    return fail_model(model, TVX_ERROR_DATA_NOT_AVAILABLE, Report::KEEP_FIRST,
                      "No IIS available for current model");
}

static int read_parameters(TVXmodel *model, const char *file_name)
{
    return TVXreadparams(model->env, file_name);
}

static int write_parameters(TVXmodel *model, const char *file_name)
{
    return TVXwriteparams(model->env, file_name);
}

struct FileKind {
    FileType type;
    const char *suffix;
    const char *form;       // of a model, for people; null: no model
    ModelReader read_model; // null: cannot be read as a model
    ModelVisitor read_into; // null: cannot be read into a model
    ModelVisitor write;
};

// Rows of models first: they are also the order in which a name without suffix is completed.
static const FileKind kinds[] = {
    {FILE_MPS, ".mps", "MPS", mps_read, nullptr, write_mps},
    {FILE_REW, ".rew", "MPS", mps_read, nullptr, write_rew},
    {FILE_LP, ".lp", "LP", lp_read, nullptr, write_lp},
    {FILE_RLP, ".rlp", "LP", lp_read, nullptr, write_rlp},
    {FILE_ILP, ".ilp", "LP", lp_read, nullptr, write_ilp},
    {FILE_MST, ".mst", nullptr, nullptr, read_start, write_start},
    {FILE_SOL, ".sol", nullptr, nullptr, nullptr, write_solution},
    {FILE_BAS, ".bas", nullptr, nullptr, read_basis, write_basis},
    {FILE_PRM, ".prm", nullptr, nullptr, read_parameters, write_parameters},
};
static const char *const compressions[] = {"", ".gz", ".bz2"};

static char small_letter(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// Whether name[0..length-1] ends in the suffix; *rest is the length before it.
static bool ends_in(const char *name, size_t length, const char *suffix, size_t *rest)
{
    const size_t n = strlen(suffix);
    if (n > length) return false;
    for (size_t k = 0; k < n; k++)
        if (small_letter(name[length - n + k]) != suffix[k]) return false;
    *rest = length - n;
    return true;
}

// The row of a name, or null. The last match wins.
static const FileKind *kind_of(const char *name)
{
    const FileKind *found = nullptr;
    for (const FileKind &kind : kinds)
        for (const char *compression : compressions) {
            size_t rest = strlen(name);
            const bool compressed = ends_in(name, rest, compression, &rest);
            if (compressed && ends_in(name, rest, kind.suffix, &rest)) found = &kind;
        }
    return found;
}

FileType file_type(const char *file_name)
{
    const FileKind *kind = kind_of(file_name);
    return kind ? kind->type : FILE_UNKNOWN;
}

// ---- Completing names ----

struct Completion {
    Array<char> name;                 // that opens, terminated
    const FileKind *suffix = nullptr; // model suffix that was added, or null
};

// name + suffix + compression. 0 or OUT_OF_MEMORY.
static int compose(Array<char> *composed, const char *name, const char *suffix,
                   const char *compression)
{
    const char *const parts[] = {name, suffix, compression};
    int64_t length = 1;
    for (const char *part : parts) length += static_cast<int64_t>(strlen(part));
    TRY(array_resize(composed, length));
    composed->data[0] = '\0';
    for (const char *part : parts) strcat(composed->data, part);
    return 0;
}

// Tries the compression suffixes. *found says whether one opens.
static int complete_compression(Completion *completion, const char *name,
                                const FileKind *suffix, bool *found)
{
    *found = false;
    for (const char *compression : compressions) {
        TRY(compose(&completion->name, name, suffix ? suffix->suffix : "", compression));
        *found = FileCanRead(completion->name.data);
        if (*found) break;
    }
    completion->suffix = suffix;
    return 0;
}

// The name as it is, then with each model suffix.
static int complete_model(Completion *completion, const char *name, bool *found)
{
    TRY(complete_compression(completion, name, nullptr, found));
    for (const FileKind &kind : kinds) {
        if (*found || !kind.form) break;
        TRY(complete_compression(completion, name, &kind, found));
    }
    return 0;
}

static int cannot_open(TVXenv *env, const char *file_name)
{
    return fail(env, TVX_ERROR_INVALID_ARGUMENT, Report::KEEP_FIRST,
                "Unable to open file '%s' for input", file_name);
}

// ---- Reading models ----

static void announce(TVXmodel *model, const FileKind *kind, const char *file_name,
                     double seconds)
{
    const ModelBody *body = model->body;
    TVXmsg(model->env, "Read %s format model from file %s\n", kind->form, file_name);
    TVXmsg(model->env, "Reading time = %.2f seconds\n", seconds);
    TVXmsg(model->env, "%s: %d rows, %d columns, %d nonzeros\n",
           body->modelname ? body->modelname : "(unnamed)", body->numconstrs, body->numvars,
           body->numnz);
}

static int read_draft(TVXenv *env, const FileKind *kind, const char *name,
                      TVXmodel **model_out)
{
    ModelDraft draft;
    int error = kind->read_model(env, name, &draft);
    if (!error) error = model_from_draft(env, &draft, model_out);
    draft_free(&draft);
    return error;
}

static int read_model(TVXenv *env, const char *name, TVXmodel **model_out)
{
    const double start = WallClock();
    Completion completion;
    bool found = false;
    TRY(complete_model(&completion, name, &found));
    if (!found) return cannot_open(env, name);
    const FileKind *kind = completion.suffix ? completion.suffix : kind_of(name);
    if (!kind || !kind->form)
        return fail(env, TVX_ERROR_FILE_READ, Report::KEEP_FIRST,
                    "Unknown file type for file '%s'", name);
    TRY(read_draft(env, kind, completion.name.data, model_out));
    announce(*model_out, kind, completion.name.data, WallClock() - start);
    return 0;
}

int TVXreadmodel(TVXenv *env, const char *filename, TVXmodel **model_out)
{
    if (model_out) *model_out = nullptr;
    // Also for null; there is no place for a message.
    if (env_enter(env)) return TVX_ERROR_INVALID_ARGUMENT;
    if (!model_out) return finish(env, TVX_ERROR_NULL_ARGUMENT);
    if (!filename) {
        fail(env, TVX_ERROR_NULL_ARGUMENT, Report::KEEP_FIRST,
             "No 'filename' argument supplied");
        return finish(env, cannot_open(env, "(null)"));
    }
    return finish(env, read_model(env, filename, model_out));
}

// ---- Reading into a model ----

static int read_into(TVXmodel *model, const char *name)
{
    Completion completion;
    bool found = false;
    TRY(complete_compression(&completion, name, nullptr, &found));
    if (!found) return cannot_open(model->env, name);
    const FileKind *kind = kind_of(name);
    if (!kind)
        return fail_model(model, TVX_ERROR_FILE_READ, Report::KEEP_FIRST,
                          "Unknown file type for file '%s'", name);
    if (!kind->read_into)
        return fail_model(model, TVX_ERROR_FILE_READ, Report::KEEP_FIRST,
                          "Can't import file '%s' into a model", name);
    return kind->read_into(model, completion.name.data);
}

int TVXread(TVXmodel *model, const char *filename)
{
    if (const int error = TVXcheckmodel(model)) return error;
    if (!filename) {
        fail_model(model, TVX_ERROR_NULL_ARGUMENT, Report::KEEP_FIRST,
                   "No 'filename' argument supplied");
        return finish_model(model, cannot_open(model->env, "(null)"));
    }
    const int error = read_into(model, filename);
    // A basis that does not fit is no error: the caller goes on without it, and the message stands.
    if (error == TVX_ERROR_FILE_READ && file_type(filename) == FILE_BAS) return 0;
    return finish_model(model, error);
}

// ---- Writing ----

static int cannot_write(TVXmodel *model, const char *name)
{
    return fail_model(model, TVX_ERROR_FILE_WRITE, Report::KEEP_FIRST,
                      "Unable to open file '%s' for output", name);
}

static int write_file(TVXmodel *model, const char *name)
{
    const FileKind *kind = kind_of(name);
    if (!kind) {
        fail_model(model, TVX_ERROR_FILE_WRITE, Report::FORCE,
                   "Unknown file type for file '%s'", name);
        return cannot_write(model, name);
    }
    const int error = kind->write(model, name);
    if (error == TVX_ERROR_FILE_WRITE) return cannot_write(model, name);
    return fail_model(model, error, Report::KEEP_FIRST, "Failed to write '%s'", name);
}

int TVXwrite(TVXmodel *model, const char *filename)
{
    if (const int error = TVXcheckmodel(model)) return error;
    if (!filename) {
        fail_model(model, TVX_ERROR_NULL_ARGUMENT, Report::KEEP_FIRST,
                   "No 'filename' argument supplied");
        return finish_model(model, cannot_write(model, "(null)"));
    }
    return finish_model(model, write_file(model, filename));
}
