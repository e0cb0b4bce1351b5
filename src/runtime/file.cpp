// file.cpp -- opening plain and compressed files
//
// Problem     Read and write model files, plain or compressed by gzip or bzip2, under any name a file can have.
// Method      The file is opened here and its descriptor passed to the command as standard input or output, so that
//             the command does not get the name and no shell is used. The other end of the command is a pipe for
//             reading; for writing it is a socket pair with a custom stream, since writes to a socket can be made
//             without SIGPIPE if the command has ended. Messages of the command are discarded; its exit status is
//             tested. A regular file is written beside its name and renamed when it is complete; where that is not
//             possible it is truncated after the command was started, which writes nothing before it gets input.
// Invariant   Every descriptor is closed on exec and at least 3, also in a process without standard streams, so that a
//             file cannot become standard output.
// Cost        One process per compressed file.
#include "runtime/file.h"
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{
constexpr int FIRST_DESCRIPTOR = 3; // above the standard streams

constexpr mode_t NEW_FILE_MODE = 0666;

// Moves a descriptor above the standard streams; -1 stays -1.
int descriptor_raise(int descriptor)
{
    if (descriptor < 0 || descriptor >= FIRST_DESCRIPTOR) return descriptor;
    const int raised = fcntl(descriptor, F_DUPFD_CLOEXEC, FIRST_DESCRIPTOR);
    close(descriptor);
    return raised;
}

// ---- Writing beside the name ----

// A standard stream leads to this file, so that another one in its place would not get what the stream writes.
bool is_standard_stream(const struct stat &status)
{
    for (int descriptor = 0; descriptor < FIRST_DESCRIPTOR; descriptor++) {
        struct stat other {
        };
        if (fstat(descriptor, &other) == 0 && other.st_dev == status.st_dev &&
            other.st_ino == status.st_ino)
            return true;
    }
    return false;
}

// The file that `name` means, behind links, when it is new or may be replaced by another one: a regular file that may
// be written and has this one name. Its mode, or that of new files. False: it is to be written directly.
bool is_replaceable(const char *name, FileHandle *file, mode_t *mode)
{
    struct stat status {
    };
    *mode = 0;
    if (strlen(name) >= FILE_NAME_ROOM) return false;
    strcpy(file->name, name);
    if (lstat(name, &status) != 0) return errno == ENOENT;
    if (S_ISLNK(status.st_mode)) {
        static_assert(FILE_NAME_ROOM >= PATH_MAX);
        if (!realpath(name, file->name) || stat(name, &status) != 0) return false;
    }
    *mode = status.st_mode & 07777;
    return S_ISREG(status.st_mode) && status.st_nlink == 1 && access(name, W_OK) == 0 &&
           !is_standard_stream(status);
}

// A new file beside file->name, called file->part; a descriptor, or -1.
int open_part(FileHandle *file, mode_t mode)
{
    static constexpr int TRIES = 100;
    for (int k = 0; k < TRIES; k++) {
        const int length = snprintf(file->part, FILE_NAME_ROOM, "%s.part%ld-%d", file->name,
                                    static_cast<long>(getpid()), k);
        if (length < 0 || length >= FILE_NAME_ROOM) return -1;
        const int descriptor = descriptor_raise(
            open(file->part, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, NEW_FILE_MODE));
        if (descriptor < 0 && errno == EEXIST) continue;
        if (descriptor >= 0 && mode) static_cast<void>(fchmod(descriptor, mode));
        return descriptor;
    }
    return -1;
}

int descriptor_open(const char *name, char mode);

// For writing. A descriptor, or -1; names as FileHandle says.
int descriptor_for_writing(const char *name, FileHandle *file)
{
    mode_t mode = 0;
    if (is_replaceable(name, file, &mode)) {
        const int descriptor = open_part(file, mode);
        if (descriptor >= 0) return descriptor;
    }
    if (strlen(name) < FILE_NAME_ROOM) {
        strcpy(file->name, name);
        strcpy(file->part, name);
    }
    return descriptor_open(name, 'w');
}

bool is_beside(const FileHandle *file)
{
    return file->part[0] && strcmp(file->part, file->name) != 0;
}

// A descriptor of the file, or -1. Directories do not open.
int descriptor_open(const char *name, char mode)
{
    const int flags = mode == 'r' ? O_RDONLY : O_WRONLY | O_CREAT;
    const int descriptor = descriptor_raise(open(name, flags | O_CLOEXEC, NEW_FILE_MODE));
    struct stat status {
    };
    if (descriptor < 0) return -1;
    if (fstat(descriptor, &status) == 0 && !S_ISDIR(status.st_mode)) return descriptor;
    close(descriptor);
    return -1;
}

// Whether the name ends in the suffix, which is in small letters. Not by the locale.
bool ends_in(const char *name, const char *suffix)
{
    const size_t length = strlen(name);
    const size_t n = strlen(suffix);
    if (n > length) return false;
    for (const char *p = name + length - n; *p; p++, suffix++)
        if ((*p >= 'A' && *p <= 'Z' ? *p - 'A' + 'a' : *p) != *suffix) return false;
    return true;
}
} // namespace

const char *FileCommand(const char *name)
{
    if (ends_in(name, ".gz")) return "gzip";
    return ends_in(name, ".bz2") ? "bzip2" : nullptr;
}

namespace
{
// Runs command with the two descriptors as its standard input and output. The process id, or 0. The command gets
// default SIGPIPE and an empty signal mask, whatever the caller's process uses.
pid_t command_start(const char *command, char mode, int input, int output)
{
    const char *option = mode == 'r' ? "-dc" : "-c";
    char *arguments[] = {const_cast<char *>(command), const_cast<char *>(option),
                         nullptr}; // not written to

    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    if (posix_spawn_file_actions_init(&actions)) return 0;
    if (posix_spawnattr_init(&attributes)) {
        posix_spawn_file_actions_destroy(&actions);
        return 0;
    }
    sigset_t none;
    sigset_t restored;
    sigemptyset(&none);
    sigemptyset(&restored);
    sigaddset(&restored, SIGPIPE);
    int error = posix_spawnattr_setsigmask(&attributes, &none);
    if (!error) error = posix_spawnattr_setsigdefault(&attributes, &restored);
    if (!error)
        error = posix_spawnattr_setflags(&attributes,
                                         POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    if (!error) error = posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
    if (!error) error = posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    if (!error)
        error = posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null",
                                                 O_WRONLY, 0);
    pid_t child = 0;
    if (!error)
        error = posix_spawnp(&child, command, &actions, &attributes, arguments, environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return error ? 0 : child;
}

// True if the command ended with status 0. False if another part of the process has collected its status.
bool command_succeeded(pid_t child)
{
    int status = 0;
    pid_t waited = 0;
    do waited = waitpid(child, &status, 0);
    while (waited < 0 && errno == EINTR);
    return waited == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// ---- The stream into a command: a socket whose writes fail instead of raising SIGPIPE ----

int cookie_descriptor(void *cookie)
{
    return static_cast<int>(reinterpret_cast<intptr_t>(cookie));
}

ssize_t socket_write(void *cookie, const char *bytes, size_t count)
{
    size_t sent = 0;
    while (sent < count) {
        const ssize_t n =
            send(cookie_descriptor(cookie), bytes + sent, count - sent, MSG_NOSIGNAL);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;
        sent += static_cast<size_t>(n);
    }
    return static_cast<ssize_t>(sent); // fewer than count is an error to the stream
}

int socket_close(void *cookie)
{
    return close(cookie_descriptor(cookie));
}

FILE *socket_stream(int descriptor)
{
    cookie_io_functions_t functions{};
    functions.write = socket_write;
    functions.close = socket_close;
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the cookie is the number itself
    return fopencookie(reinterpret_cast<void *>(static_cast<intptr_t>(descriptor)), "w",
                       functions);
}

// Our end and the command's end of a connection. 0 or 1.
int connection_open(char mode, int *ours, int *theirs)
{
    int ends[2] = {-1, -1};
    const int error = mode == 'r'
                          ? pipe2(ends, O_CLOEXEC)
                          : socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends);
    if (error) return 1;
    *ours = descriptor_raise(ends[0]);
    *theirs = descriptor_raise(ends[1]);
    if (*ours >= 0 && *theirs >= 0) return 0;
    if (*ours >= 0) close(*ours);
    if (*theirs >= 0) close(*theirs);
    return 1;
}

// Owns descriptor `target` from here on: closes it unless it is kept in *file.
int open_through_command(const char *command, char mode, int target, FileHandle *file)
{
    int ours = -1;
    int theirs = -1;
    if (connection_open(mode, &ours, &theirs)) {
        close(target);
        return FILE_NO_COMMAND;
    }
    const bool reading = mode == 'r';
    const pid_t child =
        command_start(command, mode, reading ? target : theirs, reading ? theirs : target);
    close(theirs);
    FILE *stream = nullptr;
    if (child) stream = reading ? fdopen(ours, "r") : socket_stream(ours);
    if (!stream) {
        close(ours);
        close(target);
        if (child) static_cast<void>(command_succeeded(child));
        return FILE_NO_COMMAND;
    }
    if (reading) close(target);
    file->stream = stream;
    file->kind = 'p';
    file->mode = mode;
    file->child = child;
    file->target = reading ? -1 : target;
    return 0;
}

int open_plain(char mode, int descriptor, FileHandle *file)
{
    FILE *stream = fdopen(descriptor, mode == 'r' ? "r" : "w");
    if (!stream) {
        close(descriptor);
        return FILE_UNREACHABLE;
    }
    file->stream = stream;
    file->kind = 'f';
    file->mode = mode;
    return 0;
}

// Truncates the file that was opened for writing; devices and queues cannot be truncated. 0 or 1.
int empty_file(const FileHandle *file)
{
    const int descriptor = file->kind == 'p' ? file->target : fileno(file->stream);
    struct stat status {
    };
    if (fstat(descriptor, &status)) return 1;
    return S_ISREG(status.st_mode) && ftruncate(descriptor, 0);
}
} // namespace

int FileOpen(const char *name, char mode, FileHandle *file)
{
    *file = FileHandle{};
    if (!name || !*name) return FILE_UNREACHABLE;
    const bool is_new = mode == 'w' && access(name, F_OK) != 0;
    const int descriptor =
        mode == 'w' ? descriptor_for_writing(name, file) : descriptor_open(name, mode);
    if (descriptor < 0) return FILE_UNREACHABLE;
    const char *command = FileCommand(name);
    int fault = command ? open_through_command(command, mode, descriptor, file)
                        : open_plain(mode, descriptor, file);
    if (!fault && mode == 'w' && empty_file(file)) {
        FileClose(file);
        fault = FILE_UNREACHABLE;
    }
    if (fault && is_beside(file)) FileRemove(file->part);
    if (fault && is_new) FileRemove(name);
    if (fault) *file = FileHandle{};
    return fault;
}

int FileClose(FileHandle *file)
{
    if (!file->stream) return 0;
    const FileHandle closed = *file;
    *file = FileHandle{};
    const bool at_end = feof(closed.stream) != 0;
    bool failed = ferror(closed.stream) != 0;
    if (fclose(closed.stream) && closed.mode == 'w') failed = true;
    if (closed.kind == 'p') {
        const bool succeeded = command_succeeded(closed.child);
        if (!succeeded && (closed.mode == 'w' || at_end)) failed = true;
    }
    if (closed.target >= 0 && close(closed.target)) failed = true;
    if (closed.mode == 'w') {
        if (!failed && is_beside(&closed)) failed = rename(closed.part, closed.name) != 0;
        if (failed) FileRemove(closed.part);
    }
    return failed;
}

bool FileRemove(const char *name)
{
    struct stat status {
    };
    return lstat(name, &status) == 0 && S_ISREG(status.st_mode) && unlink(name) == 0;
}

bool FileCanRead(const char *name)
{
    if (!name || !*name) return false;
    const int descriptor =
        open(name, O_RDONLY | O_CLOEXEC |
                       O_NONBLOCK); // opening a FIFO without a writer must not block
    if (descriptor < 0) return false;
    struct stat status {
    };
    const bool readable = fstat(descriptor, &status) == 0 && !S_ISDIR(status.st_mode);
    close(descriptor);
    return readable;
}
