// api_watch.cpp -- the callback of a fuzzed program: asks for everything, tries what is forbidden, and may end the solve
#include "fuzz/api_model.h"
#include <cmath>
#include <cstring>

namespace
{
// Each code answers where it belongs, and nowhere else.
std::string ask(void *cbdata, int where)
{
    for (int what = 1000; what <= 7006; what += what % 1000 == 6 ? 994 : 1) {
        int type = 0, is_array = 0, integer = 0;
        double number = 0;
        const char *text = nullptr;
        if (TVXgetcbwhatinfo(cbdata, what, &type, &is_array) || is_array) continue;
        void *result = &integer;
        if (type == 2) result = &number;
        if (type == 3) result = &text;
        const int code = TVXcbget(cbdata, where, what, result);
        const bool belongs = what / 1000 == where && where != TVX_WHERE_MESSAGE;
        if (belongs && code)
            return "code " + std::to_string(what) + " answers " + std::to_string(code);
        if (!std::isfinite(number))
            return "code " + std::to_string(what) + " is not finite";
    }
    return "";
}

// The first messages come before the queued changes are real.
std::string try_forbidden(ApiModel *a, int where)
{
    double value = 0;
    const int index = 0;
    const int codes[] = {TVXoptimize(a->model), TVXupdatemodel(a->model),
                         TVXresetmodel(a->model), TVXfreemodel(a->model),
                         TVXstrongbranch(a->model, 0, &index, 1, &value, &value, nullptr)};
    for (const int code : codes)
        if (code != TVX_ERROR_OPTIMIZATION_IN_PROGRESS)
            return "from a callback: code " + std::to_string(code);
    if (TVXpresolvemodel(a->model)) return "presolved from a callback";
    (void)TVXgetdblattr(a->model, "ObjVal", &value); // whatever stands there now
    (void)TVXgetdblattr(a->model, "Kappa", &value);
    (void)TVXgetdblattr(a->model, "ConstrVio", &value);
    if (where == TVX_WHERE_MESSAGE) return "";
    std::string wrong = compare(a->model, a->player.reference);
    for (int k = a->watch.queues ? a->dice()->range(1, 4) : 0; k > 0; k--) a->player.step();
    if (wrong.empty()) wrong = compare(a->model, a->player.reference);
    return wrong;
}
} // namespace

int api_callback(TVXmodel *model, void *cbdata, int where, void *usrdata)
{
    ApiModel *a = static_cast<ApiModel *>(usrdata);
    Watch *w = &a->watch;
    if (w->busy || !w->wrong.empty()) return 0;
    if (w->asked && where != TVX_WHERE_MESSAGE) w->wrong = "called after it asked to stop";
    if (model != a->model) w->wrong = "called with another model";
    w->busy = true;
    w->calls++;
    if (w->wrong.empty() && w->calls % 8 == 1) w->wrong = ask(cbdata, where);
    const bool now = w->calls == w->at_call;
    if (w->wrong.empty() && now) w->wrong = try_forbidden(a, where);
    w->busy = false;
    if (!now || w->end == Watch::End::NEVER) return 0;
    w->asked = true;
    if (w->end == Watch::End::TERMINATE) TVXterminate(model);
    return w->end == Watch::End::CODE ? WATCH_CODE : 0;
}
