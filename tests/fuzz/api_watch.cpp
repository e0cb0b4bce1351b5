// api_watch.cpp -- the callback of a fuzzed program: asks for everything, tries what is forbidden, and may end the
// solve
#include "fuzz/api_model.h"
#include <cmath>
#include <cstring>

namespace
{
// What a code answers when the caller says that the moment is `named`.
std::string ask(ApiModel *a, void *cbdata, int what, int named, int where)
{
    int type = 0, is_array = 0;
    union Result {
        double number;
        int integer;
        const char *text;
    };
    std::vector<Result> result(static_cast<size_t>(a->player.n_vars()) + 1, Result{0});
    const bool fits =
        !TVXgetcbwhatinfo(cbdata, what, &type, &is_array) && what / 1000 == named;
    int expected = fits && named == where ? 0 : TVX_ERROR_CALLBACK;
    if (fits && is_array && named != where) expected = TVX_ERROR_DATA_NOT_AVAILABLE;
    if (what == TVX_CB_SECONDS) expected = 0;
    const int code = TVXcbget(cbdata, named, what, result.data());
    const bool no_array = is_array && code == TVX_ERROR_DATA_NOT_AVAILABLE && fits;
    if (code != expected && !no_array) // a node may have no solution of its relaxation
        return "code " + std::to_string(what) + " answers " + std::to_string(code);
    const bool is_fine = code || type != 2 || std::isfinite(result[0].number);
    return is_fine ? "" : "code " + std::to_string(what) + " is not finite";
}

// Each code answers where it belongs, and nowhere else.
std::string ask_all(ApiModel *a, void *cbdata, int where)
{
    std::string wrong;
    for (int what = 999; what <= 7007 && wrong.empty(); what += what % 1000 == 7 ? 992 : 1)
        for (int named = 0; named < 8 && wrong.empty(); named++)
            wrong = ask(a, cbdata, what, named, where);
    return wrong;
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
    (void)TVXgetdblattr(a->model, "ConstrVio", &value);
    // What would work on the running simplex is refused, also when the solution is there already.
    int norms = 0, served = !TVXgetintattr(a->model, "HasDualNorm", &norms);
    for (const char *name : {"Kappa", "N2Kappa"})
        served += !TVXgetdblattr(a->model, name, &value);
    for (const char *name :
         {"SAObjLow", "SALBUp", "SAUBLow", "SARHSLow", "VDualNorm", "CDualNorm"})
        served += !TVXgetdblattrelement(a->model, name, 0, &value);
    if (served) return "a query of the running simplex is served";
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
    const char *line = "";
    if (where == TVX_WHERE_MESSAGE)
        (void)TVXcbget(cbdata, where, TVX_CB_MESSAGE_TEXT, &line);
    if (strstr(line, "Warning in ")) w->wrong = line; // checks of debug builds
    if (w->wrong.empty() && w->calls % 8 == 1) w->wrong = ask_all(a, cbdata, where);
    const bool now = w->calls == w->at_call;
    if (w->wrong.empty()) w->wrong = api_propose(a, cbdata, where);
    if (w->wrong.empty() && now) w->wrong = try_forbidden(a, where);
    if (now) TVXmsg(a->env(), "a line"); // a call within this call
    if (w->wrong.empty() && now) w->wrong = ask_all(a, cbdata, where);
    w->busy = false;
    if (!now || w->end == Watch::End::NEVER) return 0;
    w->asked = true;
    if (w->end == Watch::End::TERMINATE) TVXterminate(model);
    return w->end == Watch::End::CODE ? WATCH_CODE : 0;
}
