// env.cpp -- the life of an environment, its log file, and the version calls
//
// Problem     Everything a caller does starts from an environment; every model carries a copy of its own.
// Method      A master counts its holders, itself and all copies. Freeing it makes it dead at once, but its
//             record, message buffer and parameter table go with the last holder, so that a copy that outlives
//             its master finds a dead record and not freed memory.
// Invariant   holders >= 1 while the record exists; a copy holds exactly its master.
#include "env/env.h"
#include "env/parameters.h"
#include <cstring>

namespace
{
constexpr int VERSION_MAJOR = 3, VERSION_MINOR = 0, VERSION_TECHNICAL = 3;

const char parameter_file[] = "tarvex.env"; // read at start-up from the current directory
} // namespace

void TVXversion(int *major, int *minor, int *technical)
{
    if (major) *major = VERSION_MAJOR;
    if (minor) *minor = VERSION_MINOR;
    if (technical) *technical = VERSION_TECHNICAL;
}

const char *TVXplatform(void)
{
#if defined(__linux__) && defined(__x86_64__)
    return "linux64";
#elif defined(__linux__) && defined(__aarch64__)
    return "linuxarm64";
#else
    return "unix";
#endif
}

const char *TVXsvnrevision(void)
{
    return "7014";
}

// ---- Log file ----

namespace
{
// Streams of the process are the caller's to close.
void close_log(TVXenv *env)
{
    if (env->log_file && env->log_file != stdout && env->log_file != stderr)
        fclose(env->log_file);
    env->log_file = nullptr;
}
} // namespace

int env_open_log(TVXenv *env, const char *name)
{
    const size_t length = strlen(name);
    if (length == 0) {
        close_log(env);
        env->LogFile[0] = '\0';
        return 0;
    }
    // A longer name could not be kept whole, and a copy would open another file.
    FILE *stream = length <= MESSAGE_LENGTH ? fopen(name, "ae") : nullptr;
    if (!stream) {
        message_stdout(env, "Warning: Failed to open log file '%s'\n", name);
        return fail(env, TVX_ERROR_FILE_WRITE, Report::FORCE,
                    "Failed to open log file '%s'", name);
    }
    close_log(env);
    env->log_file = stream;
    memmove(env->LogFile, name, length + 1);
    log_started(env, stream);
    return 0;
}

int TVXsetlogfile(TVXenv *env, FILE *stream)
{
    TRY(env_enter(env));
    if (stream != env->log_file) close_log(env);
    env->log_file = stream;
    env->LogFile[0] = '\0'; // no longer the log of that name
    if (stream) log_started(env, stream);
    return finish(env, 0);
}

int TVXgetlogfile(TVXenv *env, FILE **stream_out)
{
    TRY(env_enter(env));
    if (!stream_out) return finish(env, TVX_ERROR_NULL_ARGUMENT);
    *stream_out = env->log_file;
    return finish(env, 0);
}

// ---- Life ----

namespace
{
void hold(TVXenv *master)
{
    std::atomic_ref(master->holders).fetch_add(1, std::memory_order_relaxed);
}

void release(TVXenv *master)
{
    if (std::atomic_ref(master->holders).fetch_sub(1, std::memory_order_acq_rel) > 1)
        return;
    parameters_free(&master->params);
    MemFree(master->errmsg);
    MemFree(master);
}
} // namespace

void env_free(TVXenv *env)
{
    if (!env || env->magic != ENV_MAGIC) return;
    close_log(env);
    if (env->cb_record) {
        memset(env->cb_record, 0,
               sizeof(uint32_t)); // its magic: a caller may still hold the pointer
        MemFree(env->cb_record);
        env->cb_record = nullptr;
    }
    env->magic = 0;
    TVXenv *master = env->master;
    if (env != master) MemFree(env);
    release(master);
}

void TVXfreeenv(TVXenv *env)
{
    if (env && env->magic == ENV_MAGIC && env->is_master) env_free(env);
}

namespace
{
// Fills in everything behind the bare record. 0 or a code.
int load(TVXenv *env, const char *log_file_name)
{
    env->OutputFlag = 1;
    env->errmsg = static_cast<char *>(MemAllocZero(MESSAGE_LENGTH + 1, 1));
    if (!env->errmsg) return OUT_OF_MEMORY;
    if (log_file_name)
        static_cast<void>(env_open_log(env, log_file_name)); // goes on without a log
    TRY(parameters_create(&env->params));
    parameters_set_defaults(env);
    static_cast<void>(parameters_read(env, parameter_file)); // usually there is none
    return 0;
}
} // namespace

int TVXloadenv(TVXenv **env_out, const char *log_file_name)
{
    if (!env_out) return TVX_ERROR_NULL_ARGUMENT;
    *env_out = nullptr;
    TVXenv *env = static_cast<TVXenv *>(MemAllocZero(1, sizeof(TVXenv)));
    if (!env) return TVX_ERROR_OUT_OF_MEMORY;
    env->magic = ENV_MAGIC;
    env->terminate_ptr = &env->terminate;
    env->master = env;
    env->holders = 1;
    env->is_master = 1;
    HeapTuning();
    const int error = load(env, log_file_name);
    if (error) {
        if (env->errmsg) finish(env, error);
        TVXmsg(env, "\nERROR: %s\n\n", env->errmsg ? env->errmsg : "Out of memory");
        env_free(env);
        return error;
    }
    *env_out = env;
    return finish(env, 0);
}

void env_write_no_files(TVXenv *copy)
{
    copy->ResultFile[0] = '\0';
    copy->TARV_PAR_DUMP = 0;
}

int env_copy(TVXenv **copy_out, TVXenv *source, EnvFiles files)
{
    *copy_out = nullptr;
    TVXenv *copy = static_cast<TVXenv *>(MemAlloc(sizeof(TVXenv)));
    if (!copy) return OUT_OF_MEMORY;
    static constexpr size_t bytes_from = offsetof(TVXenv, terminate_ptr);
    memcpy(reinterpret_cast<char *>(copy) + bytes_from,
           reinterpret_cast<char *>(source) + bytes_from, sizeof(TVXenv) - bytes_from);
    copy->magic = source->magic;
    copy->terminate = flag_load(&source->terminate);
    copy->model_copies = 0;
    copy->holders = 0;
    copy->message_lock = 0;
    copy->cb_record = nullptr;
    copy->cb_active = nullptr;
    copy->outer = nullptr;
    copy->is_master = 0;
    copy->lender = nullptr;
    copy->log_file = nullptr;
    if (files == EnvFiles::NONE) env_write_no_files(copy);
    flag_store(&source->model_copies, 1);
    hold(source->master);
    if (files == EnvFiles::AS_SOURCE && source->log_file && source->LogFile[0])
        if (env_open_log(copy, source->LogFile)) {
            copy->LogFile[0] =
                '\0'; // benign: the warning is out, the model has no log file
            error_clear(copy);
        }
    *copy_out = copy;
    return 0;
}

int env_variant(TVXenv **variant_out, TVXenv *env)
{
    TRY(env_copy(variant_out, env, EnvFiles::NONE));
    TVXenv *variant = *variant_out;
    variant->lender = env_outlet(env);
    variant->outer = env->outer;
    return 0;
}

int env_inner(TVXenv **inner_out, TVXenv *outer)
{
    TRY(env_copy(inner_out, outer, EnvFiles::NONE));
    (*inner_out)->outer = outer;
    (*inner_out)->OutputFlag = 0;
    (*inner_out)->quiet_solve = 1;
    return 0;
}

// ---- Checks ----

bool env_alive(const TVXenv *env)
{
    return env && env->magic == ENV_MAGIC && env->master->magic == ENV_MAGIC;
}

int env_check(TVXenv *env)
{
    if (!env) return TVX_ERROR_NULL_ARGUMENT;
    if (env->magic != ENV_MAGIC) return TVX_ERROR_INVALID_ARGUMENT;
    if (env->master->magic == ENV_MAGIC) return 0;
    warn_dead_master(env);
    return TVX_ERROR_INVALID_ARGUMENT;
}

int env_enter(TVXenv *env)
{
    TRY(env_check(env));
    error_clear(env);
    return 0;
}

const char *TVXgeterrormsg(TVXenv *env)
{
    return env_check(env) ? "" : env->errmsg;
}
