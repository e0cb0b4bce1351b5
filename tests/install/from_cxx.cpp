// from_cxx.cpp -- the C interface used from C++: an infeasible model is told as one
#include <tarvex.h>

int main()
{
    TVXenv *env = nullptr;
    TVXmodel *model = nullptr;
    const int column = 0;
    const double one = 1;
    int status = 0;
    if (TVXloadenv(&env, nullptr) ||
        TVXnewmodel(env, &model, "empty set", 1, nullptr, nullptr, nullptr, nullptr,
                    nullptr) ||
        TVXaddconstr(model, 1, &column, &one, '<', -1, nullptr) || TVXoptimize(model) ||
        TVXgetintattr(model, "Status", &status))
        return 1;
    TVXfreemodel(model);
    TVXfreeenv(env);
    return status == TVX_INFEASIBLE ? 0 : 1;
}
