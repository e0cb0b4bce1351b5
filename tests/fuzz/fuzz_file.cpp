// fuzz_file.cpp -- one file of any bytes given to its reader, and what must hold then
//
// Models      Read, or refused with a code and a message and without a model. What was read is sound, and written and
//             read again it is the same but for names; from then on names stay too.
// Other files Are read into a small model that must keep its content, or are refused with a message; what can be
//             written then can be read back.
#include "files/files_support.h"
#include "fuzz/fuzz_kind.h"
#include "model/model_store.h"

namespace
{
constexpr char PLAN[] =
    "max 3 x + 2 y - z + 0 w st c1: x + y <= 4 c2: x - z >= -2 c3: y + w = 3\n"
    "bounds y <= 9 z free general x end";

struct Session {
    TestEnv own;
    TVXenv *env = own.env;
    TVXmodel *model = nullptr;
    ~Session() { TVXfreemodel(model); }

    int read(const std::string &name)
    {
        TVXfreemodel(model);
        return TVXreadmodel(env, name.c_str(), &model);
    }
    // Writes the model and reads it back in its place; what changed.
    std::string round_trip(const std::string &name, Names names)
    {
        const std::string wrong = ::round_trip(model, name, names);
        return wrong.empty() && read(name) ? "is read only once" : wrong;
    }
};

std::string check_model(const std::string &suffix)
{
    Session session;
    const int code = session.read("f" + suffix);
    if (code != 0) {
        if (code != TVX_ERROR_FILE_READ) return "code " + std::to_string(code);
        if (!*TVXgeterrormsg(session.env)) return "an error without a message";
        return session.model ? "an error with a model" : "";
    }
#ifdef TVX_DEBUG
    char where[256] = "";
    if (body_check(session.model->body, where)) return where;
#endif
    std::string wrong;
    for (const std::string other : {".mps", ".lp"})
        if (wrong.empty()) wrong = session.round_trip("w" + other, Names::IGNORE);
    return wrong.empty() ? session.round_trip("w" + suffix, Names::COMPARE) : wrong;
}

std::string check_side_file(const std::string &suffix)
{
    Session session;
    file_put("plan.lp", PLAN);
    if (session.read("plan.lp")) return "the plan cannot be read";
    const std::string before = stored_text(session.model, Names::COMPARE);
    const int code = TVXread(session.model, ("f" + suffix).c_str());
    if (code != 0 && code != TVX_ERROR_FILE_READ) return "code " + std::to_string(code);
    if (code != 0 && !*TVXgetmerrormsg(session.model)) return "an error without a message";
    if (stored_text(session.model, Names::COMPARE) != before) return "the model changed";
    const std::string back = "b" + suffix;
    const int written = TVXwrite(session.model, back.c_str());
    if (written == TVX_ERROR_DATA_NOT_AVAILABLE) return ""; // nothing solved
    if (written) return "cannot be written";
    return TVXread(session.model, back.c_str()) ? "written, but not read" : "";
}

// A parameter file may name files that would be written.
bool is_harmless(const std::string &bytes)
{
    std::string key;
    for (const char c : bytes)
        if (c != '_') key += char(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
    return key.find("logfile") == std::string::npos;
}
} // namespace

std::string fuzz_file(const std::string &suffix, const std::string &bytes)
{
    if (suffix == ".prm" && !is_harmless(bytes)) return "";
    file_put("f" + suffix, bytes);
    const bool is_model = suffix == ".mps" || suffix == ".lp";
    return is_model ? check_model(suffix) : check_side_file(suffix);
}
