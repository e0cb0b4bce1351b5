// parameter_file.cpp -- the files of --params
//
// Problem     TVXreadparams goes on after a line that it cannot use and tells the log only. Who asks for a file of
//             settings must not have one of them ignored.
// Method      The same form (a name and a value on each line, '#' begins a comment), every line set like Name=Value;
//             the first one that is wrong ends it, with its number.
#include "parameter_file.h"
#include "arguments.h"
#include "near_miss.h"
#include "parameters.h"
#include "runtime/file.h"
#include <sstream>
#include <vector>

namespace
{
// All of the file, or false.
bool read_text(const std::string &file, std::string *text)
{
    static constexpr size_t BLOCK = 1 << 16;
    FileHandle handle;
    if (FileOpen(file.c_str(), 'r', &handle)) return false;
    std::vector<char> block(BLOCK);
    for (size_t n = 0; (n = fread(block.data(), 1, BLOCK, handle.stream)) > 0;)
        text->append(block.data(), n);
    return FileClose(&handle) == 0;
}

bool is_control(char c)
{
    return static_cast<unsigned char>(c) < ' ' && c != '\t' && c != '\r' && c != '\f';
}

// A log file is opened when it is set.
std::string log_fault(const std::string &name, const std::string &value, FileUse *files)
{
    if (name_key(name) != "logfile") return "";
    const std::string fault = ending_refused("LogFile", value);
    return fault.empty() ? files->writes("LogFile", value, Output::LOG) : fault;
}

ExitCode set_line(TVXenv *env, const std::string &line, FileUse *files, std::string *error)
{
    std::istringstream words(line);
    std::string name;
    std::string value;
    std::string rest;
    if (!(words >> name) || name[0] == '#') return EXIT_SOLVED;
    words >> value >> rest;
    for (const char c : line)
        if (is_control(c)) *error = "a control character: this is no text file";
    if (error->empty() && TVXgetparamtype(env, name.c_str()) <= 0)
        *error = unknown_name("parameter", name, parameter_names());
    if (error->empty() && !rest.empty() && rest[0] != '#')
        *error = "'" + rest + "' is too much: a line is a name and a value";
    if (!error->empty()) return EXIT_ERROR;
    *error = log_fault(name, value, files);
    if (!error->empty()) return EXIT_USAGE;
    if (parameter_set(env, name, value, error) != EXIT_SOLVED) {
        *error = name + "=" + value + ": " + *error;
        return EXIT_ERROR;
    }
    TVXmsg(env, "Set parameter %s to value %s\n", name.c_str(), value.c_str());
    return EXIT_SOLVED;
}

void report_at(const std::string &file, int line, const std::string &error)
{
    report_error("--params '" + file + "' line " + std::to_string(line) + ": " + error);
}
} // namespace

ExitCode parameter_file_set(TVXenv *env, const std::string &file, FileUse *files)
{
    static constexpr char DOS_END = 26;
    static constexpr char BYTE_ORDER_MARK[] = "\xef\xbb\xbf";
    std::string text;
    if (!read_text(file, &text)) {
        report_error("--params '" + file +
                     "': it cannot be read; check name, folder, permissions and content");
        return EXIT_ERROR;
    }
    if (!text.empty() && text.back() == DOS_END) text.pop_back();
    if (text.starts_with(BYTE_ORDER_MARK)) text.erase(0, sizeof BYTE_ORDER_MARK - 1);
    std::istringstream lines(text);
    std::string line;
    for (int number = 1; std::getline(lines, line); number++) {
        std::string error;
        const ExitCode code = set_line(env, line, files, &error);
        if (code == EXIT_SOLVED) continue;
        report_at(file, number, error);
        return code;
    }
    return EXIT_SOLVED;
}
