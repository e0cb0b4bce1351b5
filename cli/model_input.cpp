// model_input.cpp -- a model from a file or from standard input
#include "model_input.h"
#include "arguments.h"
#include "report.h"

namespace
{
// Puts "standard input" for each place where a message names the temporary file.
std::string with_own_name(std::string text, const std::string &temporary)
{
    static constexpr std::string_view NAME = "standard input";
    for (size_t at = 0; (at = text.find(temporary, at)) != std::string::npos;
         at += NAME.size())
        text.replace(at, temporary.size(), NAME);
    return text;
}

// What to do about a file that is not there or of no known type.
std::string name_hint(const std::string &file, int code)
{
    const bool told = file_kind(file) != FileKind::UNKNOWN;
    if (code == TVX_ERROR_INVALID_ARGUMENT && !told)
        return "; there is none with .mps, .lp, .gz or the like behind the name either";
    if (code == TVX_ERROR_FILE_READ && !told)
        return "; end its name in .mps or .lp, or give it on standard input: tarvex - "
               "<FILE";
    return "";
}

OwnedModel read_named(TVXenv *env, const std::string &file, Failure *failure)
{
    TVXmodel *model = nullptr;
    if (const int code = TVXreadmodel(env, file.c_str(), &model)) {
        failure->code = code;
        failure->text = describe_failure(code, TVXgeterrormsg(env));
    }
    return OwnedModel(model);
}

OwnedModel read_input(TVXenv *env, ModelFormat format, Failure *failure)
{
    const StandardInput input(format);
    if (!input.error().empty()) {
        failure->text = "cannot read standard input: " + input.error();
        return nullptr;
    }
    OwnedModel model = read_named(env, input.name(), failure);
    if (!model)
        failure->text =
            "cannot read standard input: " + with_own_name(failure->text, input.name());
    return model;
}

// The sense of the objective alone is changed: its coefficients and its constant stay as they are.
void set_sense(TVXmodel *model, int sense, Failure *failure)
{
    int code = TVXsetintattr(model, "ModelSense", sense);
    if (code == 0) code = TVXupdatemodel(model);
    if (code == 0) return;
    failure->code = code;
    failure->text = "cannot set the sense of the objective: " +
                    describe_failure(code, TVXgetmerrormsg(model));
}
} // namespace

OwnedModel model_input(TVXenv *env, const std::string &file, const InputRequest &request,
                       Failure *failure)
{
    OwnedModel model;
    if (file == STANDARD_INPUT) {
        model = read_input(env, request.format, failure);
    } else {
        model = read_named(env, file, failure);
        if (!model)
            failure->text = "cannot read '" + file + "': " + failure->text +
                            name_hint(file, failure->code);
    }
    if (model && request.sense != 0) set_sense(model.get(), request.sense, failure);
    if (!failure->text.empty()) model.reset();
    return model;
}
