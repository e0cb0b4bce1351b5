// commented_parameters.cpp -- parameter files that say what their parameters do
//
// Method   The lines are those of the library, unchanged; above each stands what the parameter does, as a line that the
//          reader passes over. The new file takes the place of the old one when it is complete: behind links, and with
//          the same permissions. A queue or device, and a file with several names, keep the bare lines.
#include "commented_parameters.h"
#include "arguments.h"
#include "option_words.h"
#include "runtime/file.h"
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <sys/stat.h>

namespace
{
constexpr mode_t PERMISSIONS = 07777; // the bits of a file mode that chmod sets

std::string with_comments(std::istream &lines)
{
    std::string commented;
    for (std::string line; std::getline(lines, line);) {
        std::string name;
        std::istringstream(line) >> name;
        if (const ParameterText *text = parameter_text(name))
            commented += "# " + std::string(text->does) + '\n';
        commented += line + '\n';
    }
    return commented;
}
} // namespace

void comment_parameters(const std::string &file)
{
    if (file_kind(file) != FileKind::PARAMETERS || FileCommand(file.c_str())) return;
    struct stat status = {};
    std::error_code failed;
    const std::string target = std::filesystem::canonical(file, failed).string();
    if (failed || stat(target.c_str(), &status) != 0) return;
    if (!S_ISREG(status.st_mode) || status.st_nlink > 1) return;
    std::ifstream written(target);
    const std::string text = with_comments(written);
    if (written.bad() || text.empty()) return;
    const std::string fresh = target + ".new";
    FileHandle handle;
    if (std::filesystem::exists(fresh, failed) || FileOpen(fresh.c_str(), 'w', &handle))
        return;
    fwrite(text.data(), 1, text.size(), handle.stream);
    if (FileClose(&handle) != 0 ||
        chmod(fresh.c_str(), status.st_mode & PERMISSIONS) != 0 ||
        rename(fresh.c_str(), target.c_str()) != 0)
        FileRemove(fresh.c_str());
}
