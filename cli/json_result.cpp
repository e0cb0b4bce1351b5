// json_result.cpp -- the result of one solve for programs, as a JSON object
//
// Invariant   The text is valid JSON whatever names, messages and numbers come in: JSON knows no infinity and no NaN,
//             and is UTF-8, while names may hold any bytes.
#include "json_result.h"
#include "report.h"
#include "status.h"
#include <cmath>
#include <cstdio>

// ---- Values ----

namespace
{
// Length of the UTF-8 character at text[at], or 0 when there is none: RFC 3629, without overlong forms and surrogates.
size_t utf8_length(const std::string &text, size_t at)
{
    const auto byte = [&](size_t k) {
        return k < text.size() ? static_cast<unsigned char>(text[k]) : 0u;
    };
    const unsigned first = byte(at);
    const unsigned second = byte(at + 1);
    const size_t length = first < 0x80                     ? 1
                          : first >= 0xc2 && first <= 0xdf ? 2
                          : first >= 0xe0 && first <= 0xef ? 3
                          : first >= 0xf0 && first <= 0xf4 ? 4
                                                           : 0;
    for (size_t k = 1; k < length; k++)
        if (byte(at + k) < 0x80 || byte(at + k) > 0xbf) return 0;
    const bool overlong =
        (first == 0xe0 && second < 0xa0) || (first == 0xf0 && second < 0x90);
    const bool beyond =
        (first == 0xed && second > 0x9f) || (first == 0xf4 && second > 0x8f);
    return overlong || beyond ? 0 : length;
}
} // namespace

std::string json_text(const std::string &text)
{
    std::string quoted = "\"";
    for (size_t at = 0; at < text.size();) {
        const size_t length = utf8_length(text, at);
        const char c = text[at];
        if (length == 0) {
            quoted += "\\ufffd";
        } else if (c == '"' || c == '\\') {
            quoted += {'\\', c};
        } else if (length == 1 && (static_cast<unsigned char>(c) < ' ' || c == 127)) {
            char code[8];
            snprintf(code, sizeof code, "\\u%04x", static_cast<unsigned>(c));
            quoted += code;
        } else {
            quoted += text.substr(at, length);
        }
        at += length > 0 ? length : 1;
    }
    return quoted + '"';
}

std::string json_number(double value)
{
    return std::fabs(value) < TVX_INFINITY ? number_text(value) : "null"; // NaN: null too
}

// ---- The model ----

namespace
{
std::string json_double(TVXmodel *model, const char *name)
{
    double value = 0;
    if (!model || TVXgetdblattr(model, name, &value) != 0) return "null";
    return json_number(value);
}

std::string json_int(TVXmodel *model, const char *name)
{
    int value = 0;
    if (!model || TVXgetintattr(model, name, &value) != 0) return "null";
    return std::to_string(value);
}

std::string json_string(TVXmodel *model, const char *name)
{
    char *value = nullptr;
    if (!model || TVXgetstrattr(model, name, &value) != 0 || !value) return "null";
    return json_text(value);
}

// Members of one object, in the order they are added.
class Members
{
  public:
    void add(const char *name, const std::string &value)
    {
        text += (text.empty() ? "\"" : ", \"") + std::string(name) + "\": " + value;
    }
    std::string object() const { return "{" + text + "}"; }

  private:
    std::string text;
};

std::string version()
{
    int major = 0;
    int minor = 0;
    int technical = 0;
    TVXversion(&major, &minor, &technical);
    return std::to_string(major) + "." + std::to_string(minor) + "." +
           std::to_string(technical);
}

std::string model_object(TVXmodel *model, const std::string &file)
{
    int sense = 1;
    if (model) TVXgetintattr(model, "ModelSense", &sense);
    Members members;
    members.add("file", json_text(file));
    members.add("name", json_string(model, "ModelName"));
    members.add("sense", !model ? "null" : sense < 0 ? "\"maximise\"" : "\"minimise\"");
    members.add("variables", json_int(model, "NumVars"));
    members.add("constraints", json_int(model, "NumConstrs"));
    members.add("nonzeros", json_int(model, "NumNZs"));
    members.add("integer_variables", json_int(model, "NumIntVars"));
    members.add("binary_variables", json_int(model, "NumBinVars"));
    members.add("sos", json_int(model, "NumSOS"));
    return members.object();
}

std::string violation_object(TVXmodel *model)
{
    Members members;
    members.add("bound", json_double(model, "BoundVio"));
    members.add("constraint", json_double(model, "ConstrVio"));
    members.add("dual", json_double(model, "DualVio"));
    members.add("complementarity", json_double(model, "ComplVio"));
    members.add("integrality", json_double(model, "IntVio"));
    return members.object();
}

std::string time_object(const SolveTimes &times)
{
    Members members;
    members.add("read", json_number(times.read));
    members.add("solve", json_number(times.solve));
    members.add("total", json_number(times.total));
    return members.object();
}

std::string error_object(const Failure &failure)
{
    if (failure.text.empty()) return "null";
    Members members;
    members.add("code", failure.code == 0 ? "null" : std::to_string(failure.code));
    members.add("text", json_text(one_line(failure.text)));
    return members.object();
}

// A MIP is told by objective and bound how far apart they are; for an optimal LP they are the same.
struct Bounds {
    std::string objective = "null", bound = "null", gap = "null";
};

bool is_mip_model(TVXmodel *model)
{
    int is_mip = 0;
    if (model) TVXgetintattr(model, "IsMIP", &is_mip);
    return is_mip != 0;
}

Bounds bounds_of(TVXmodel *model, int status)
{
    Bounds bounds;
    double objective = 0;
    double bound = 0;
    const bool is_mip = is_mip_model(model);
    if (!model || TVXgetdblattr(model, "ObjVal", &objective) != 0) return bounds;
    bounds.objective = json_number(objective);
    if (!is_mip && status != TVX_OPTIMAL) return bounds;
    if (!is_mip)
        bound = objective;
    else if (TVXgetdblattr(model, "ObjBound", &bound) != 0)
        return bounds;
    bounds.bound = json_number(bound);
    const double distance = std::fabs(objective - bound);
    bounds.gap = json_number(distance == 0 ? 0 : distance / std::fabs(objective));
    return bounds;
}
} // namespace

std::string json_result(TVXmodel *model, const std::string &file, const Failure &failure,
                        const SolveTimes &times)
{
    int status = 0;
    if (model) TVXgetintattr(model, "Status", &status);
    const bool failed = !failure.text.empty() && status <= TVX_LOADED;
    const Bounds bounds = bounds_of(model, status);
    Members members;
    members.add("solver", "\"tarvex\"");
    members.add("version", json_text(version()));
    members.add("model", model_object(model, file));
    members.add("status", failed ? "\"error\"" : json_text(status_word(status)));
    members.add("status_number", status > 0 ? std::to_string(status) : "null");
    members.add("objective", bounds.objective);
    members.add("bound", bounds.bound);
    members.add("gap", bounds.gap);
    members.add("solutions", json_int(model, "SolCount"));
    members.add("iterations", json_double(model, "IterCount"));
    members.add("barrier_iterations", json_int(model, "BarIterCount"));
    // Of an LP the attribute is an estimate of the work.
    members.add("nodes",
                !model || is_mip_model(model) ? json_double(model, "NodeCount") : "0");
    members.add("violations", violation_object(model));
    members.add("seconds", time_object(times));
    members.add("error", error_object(failure));
    return members.object();
}

std::string json_document(const std::vector<std::string> &objects, JsonForm form)
{
    if (form == JsonForm::OBJECT) return objects.at(0) + "\n";
    std::string text = "[";
    for (const std::string &object : objects)
        text += (text.size() > 1 ? ",\n" : "\n") + object;
    return text + "\n]\n";
}
