// commented_parameters.cpp -- parameter files that say what their parameters do
//
// Method   The lines are those of the library, unchanged; above each stands what the parameter does, as a line that the
//          reader passes over. The new file takes the place of the old one when it is complete.
#include "commented_parameters.h"
#include "arguments.h"
#include "option_words.h"
#include "runtime/file.h"
#include <cstdio>
#include <fstream>
#include <sstream>

static std::string with_comments(std::istream &lines)
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

void comment_parameters(const std::string &file)
{
    if (file_kind(file) != FileKind::PARAMETERS || FileCommand(file.c_str())) return;
    std::ifstream written(file);
    const std::string text = with_comments(written);
    if (written.bad() || text.empty()) return;
    const std::string fresh = file + ".new";
    FileHandle handle;
    if (FileCanRead(fresh.c_str()) || FileOpen(fresh.c_str(), 'w', &handle)) return;
    fwrite(text.data(), 1, text.size(), handle.stream);
    if (FileClose(&handle) != 0 || rename(fresh.c_str(), file.c_str()) != 0)
        FileRemove(fresh.c_str());
}
