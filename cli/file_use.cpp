// file_use.cpp -- which files one call reads and writes
//
// Problem     A slip on the command line must not cost a file: "--json a.lp b.lp" means no output called a.lp. And an
//             output of an earlier call must not pass for that of this one.
// Method      Files that are there are compared by device and inode, which links and other spellings share; files that
//             are not there yet by their absolute names.
#include "file_use.h"
#include "arguments.h"
#include "runtime/file.h"
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
constexpr int MOST_LINKS = 40; // in a chain, as the system itself follows

// What a link leads to, also when nothing is there.
std::filesystem::path behind_links(std::filesystem::path name)
{
    std::error_code failed;
    for (int k = 0; k < MOST_LINKS && std::filesystem::is_symlink(name, failed); k++) {
        const std::filesystem::path target = std::filesystem::read_symlink(name, failed);
        if (failed) break;
        name = name.parent_path() / target;
    }
    return name;
}
} // namespace

bool FileUse::find(const std::string &name, Place *place)
{
    place->name = name;
    struct stat status = {};
    if (stat(name.c_str(), &status) == 0) {
        if (!S_ISREG(status.st_mode)) return false;
        place->device = status.st_dev;
        place->number = status.st_ino;
    }
    std::error_code failed;
    const std::filesystem::path whole =
        std::filesystem::absolute(behind_links(name), failed);
    place->path = std::filesystem::weakly_canonical(whole, failed).string();
    return true;
}

bool FileUse::is_same(const Place &a, const Place &b)
{
    if (a.number != 0 && b.number != 0) return a.number == b.number && a.device == b.device;
    return !a.path.empty() && a.path == b.path;
}

namespace
{
// The name that the library opens: the first that can be read with the endings it tries, in its order. A named pipe is
// not opened: whoever writes into it would lose its reader.
std::string completed(const std::string &name)
{
    std::error_code failed;
    if (std::filesystem::is_fifo(name, failed)) return name;
    for (const char *ending : {"", ".mps", ".rew", ".lp", ".rlp", ".ilp"})
        for (const char *packed : {"", ".gz", ".bz2"})
            if (FileCanRead((name + ending + packed).c_str()))
                return name + ending + packed;
    return name;
}
} // namespace

void FileUse::reads(const std::string &what, const std::string &name)
{
    for (const std::string &file : {name, completed(name)}) {
        Place place;
        place.what = what;
        if (find(file, &place)) inputs.push_back(place);
    }
}

void FileUse::reads_standard_input()
{
    struct stat status = {};
    if (fstat(STDIN_FILENO, &status) != 0 || !S_ISREG(status.st_mode)) return;
    Place place;
    place.what = "the model on";
    place.name = "standard input";
    place.device = status.st_dev;
    place.number = status.st_ino;
    inputs.push_back(place);
}

std::string FileUse::writes(const std::string &what, const std::string &name, Output kind)
{
    Place place;
    place.what = what;
    place.is_log = kind == Output::LOG;
    if (name.empty() || !find(name, &place)) return "";
    for (const Place &input : inputs)
        if (is_same(place, input))
            return what + " '" + name + "' would overwrite " + input.what + " '" +
                   input.name + "', which is read; name another file";
    for (const Place &output : outputs)
        if (is_same(place, output) && !(place.is_log && output.is_log))
            return what + " '" + name + "' and " + output.what + " '" + output.name +
                   "' are the same file; name another one";
    outputs.push_back(place);
    return "";
}

std::string ending_refused(const std::string &what, const std::string &name)
{
    switch (file_kind(name)) {
    case FileKind::MODEL:
    case FileKind::IIS:
    case FileKind::START:
    case FileKind::PARAMETERS:
        return what + " '" + name +
               "': this ending is for models, bases, starts and parameter files; is the "
               "name of the file to write missing? End it in .txt, .json or .log";
    default:
        return "";
    }
}

std::string clear_output(const std::string &name)
{
    struct stat status = {};
    if (lstat(name.c_str(), &status) != 0) return "";
    bool cleared = true;
    if (S_ISREG(status.st_mode)) {
        cleared = unlink(name.c_str()) == 0 || errno == ENOENT;
    } else if (stat(name.c_str(), &status) == 0) {
        if (S_ISDIR(status.st_mode)) errno = EISDIR;
        cleared = !S_ISDIR(status.st_mode) &&
                  (!S_ISREG(status.st_mode) || truncate(name.c_str(), 0) == 0);
    }
    if (cleared) return "";
    return "cannot write '" + name +
           "': what stands there cannot be removed: " + strerror(errno) +
           "; name another file";
}
