// standard_input.cpp -- a model that comes on standard input
//
// Problem     The library reads files by name, and the end of the name tells the format.
// Method      The text is copied to a temporary file. While that is there, signals that would end the program remove it
//             first and then do what they would have done.
#include "standard_input.h"
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace
{
constexpr size_t BLOCK = 1 << 16;
constexpr std::string_view GZIP_BEGIN = "\x1f\x8b", BZIP2_BEGIN = "BZh";
constexpr int DEADLY[] = {SIGHUP,  SIGINT,  SIGQUIT, SIGTERM, SIGPIPE, SIGALRM, SIGXCPU,
                          SIGXFSZ, SIGABRT, SIGSEGV, SIGBUS,  SIGFPE,  SIGILL};

// What the signals remove. Read by a signal handler, which no argument reaches.
// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables)
char file_to_remove[4096];

void remove_and_die(int signal)
{
    unlink(file_to_remove);
    raise(signal); // held back until this returns, then as it was before
}

void watch_signals()
{
    for (const int signal : DEADLY) {
        struct sigaction now = {};
        if (sigaction(signal, nullptr, &now) != 0 || now.sa_handler != SIG_DFL) continue;
        struct sigaction mine = {};
        mine.sa_handler = remove_and_die;
        mine.sa_flags = static_cast<int>(SA_RESETHAND);
        sigaction(signal, &mine, nullptr);
    }
}

void leave_signals()
{
    for (const int signal : DEADLY) {
        struct sigaction now = {};
        if (sigaction(signal, nullptr, &now) != 0 || now.sa_handler != remove_and_die)
            continue;
        now.sa_handler = SIG_DFL;
        sigaction(signal, &now, nullptr);
    }
}

// ---- The format ----

std::string small_letters(std::string text)
{
    for (char &c : text) c = static_cast<char>('A' <= c && c <= 'Z' ? c - 'A' + 'a' : c);
    return text;
}

// What one line says: an MPS file begins with the name of a section or a comment after '*', an LP file with the word
// for minimise or maximise or a comment after '\'.
ModelFormat format_of_line(const std::string &line)
{
    const size_t begin = line.find_first_not_of(" \t\r\f\v");
    if (begin == std::string::npos) return ModelFormat::UNKNOWN;
    if (line[begin] == '*') return ModelFormat::MPS;
    if (line[begin] == '\\') return ModelFormat::LP;
    const size_t end = line.find_first_of(" \t\r:", begin);
    const std::string word = small_letters(line.substr(begin, end - begin));
    if (word.starts_with("min") || word.starts_with("max")) return ModelFormat::LP;
    for (const char *section : {"name", "rows", "objsense", "objname"})
        if (word == section) return ModelFormat::MPS;
    return ModelFormat::UNKNOWN;
}
} // namespace

ModelFormat model_format(const std::string &text)
{
    static constexpr std::string_view BYTE_ORDER_MARK = "\xef\xbb\xbf";
    size_t at = text.starts_with(BYTE_ORDER_MARK) ? BYTE_ORDER_MARK.size() : 0;
    while (at < text.size()) {
        const size_t end = std::min(text.find_first_of("\r\n", at), text.size());
        const std::string line = text.substr(at, end - at);
        if (line.find_first_not_of(" \t\f\v") != std::string::npos)
            return format_of_line(line);
        at = end + 1;
    }
    return ModelFormat::UNKNOWN;
}

// ---- The copy ----

namespace
{
bool write_all(int file, const char *data, size_t size)
{
    while (size > 0) {
        const ssize_t done = write(file, data, size);
        if (done < 0 && errno == EINTR) continue;
        if (done <= 0) return false;
        data += done;
        size -= static_cast<size_t>(done);
    }
    return true;
}

// Appends what comes to *text until there are `wanted` bytes or nothing more; false when reading fails.
bool read_some(std::string *text, size_t wanted)
{
    std::vector<char> block(BLOCK);
    while (text->size() < wanted) {
        const ssize_t done = read(STDIN_FILENO, block.data(), block.size());
        if (done < 0 && errno == EINTR) continue;
        if (done < 0) return false;
        if (done == 0) break;
        text->append(block.data(), static_cast<size_t>(done));
    }
    return true;
}

bool copy_input(int file, const std::string &beginning)
{
    if (!write_all(file, beginning.data(), beginning.size())) return false;
    for (std::string block;; block.clear()) {
        if (!read_some(&block, 1)) return false;
        if (block.empty()) return true;
        if (!write_all(file, block.data(), block.size())) return false;
    }
}

std::string packing(const std::string &text)
{
    return text.starts_with(GZIP_BEGIN)    ? ".gz"
           : text.starts_with(BZIP2_BEGIN) ? ".bz2"
                                           : "";
}
} // namespace

StandardInput::StandardInput(ModelFormat format)
{
    std::string beginning;
    if (!read_some(&beginning, BLOCK)) {
        reason = std::string("it cannot be read: ") + strerror(errno);
        return;
    }
    const std::string packed = packing(beginning);
    if (format == ModelFormat::UNKNOWN && packed.empty()) format = model_format(beginning);
    if (format == ModelFormat::UNKNOWN) {
        reason = beginning.empty() ? "it is empty"
                 : packed.empty()
                     ? "it begins like no model file; name the format by --format "
                       "mps or --format lp"
                     : "it is compressed; name the format by --format mps or "
                       "--format lp";
        return;
    }
    const char *folder = getenv("TMPDIR");
    const std::string ending = (format == ModelFormat::MPS ? ".mps" : ".lp") + packed;
    const std::string form =
        std::string(folder && *folder ? folder : "/tmp") + "/tarvex-XXXXXX" + ending;
    if (form.size() >= sizeof file_to_remove) {
        reason = "the folder TMPDIR has too long a name";
        return;
    }
    // The signals are watched before there is a file, and its name is made in the place where they look for it.
    memcpy(file_to_remove, form.c_str(), form.size() + 1);
    watch_signals();
    const int copy = mkstemps(file_to_remove, static_cast<int>(ending.size()));
    if (copy < 0) {
        reason = "no temporary file '" + form + "': " + strerror(errno) +
                 "; set TMPDIR to a folder that can be written";
        leave_signals();
        return;
    }
    file = file_to_remove;
    const bool copied = copy_input(copy, beginning);
    if (close(copy) != 0 || !copied)
        reason = "it could not be copied to '" + file + "'; check the free space there";
}

StandardInput::~StandardInput()
{
    if (file.empty()) return;
    unlink(file.c_str());
    leave_signals();
}
