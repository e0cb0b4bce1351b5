// inside.h -- the records behind a model, for tests that look below the public interface
#pragma once
#include "model/model.h"
#include "presolve/presolve.h"
#include "support/lp_tarvex.h"
#include <cstdlib>

// The simplex alone on the model: no presolve, no other ways. 0 or a code; the status is that of the record.
inline int simplex_alone(TVXmodel *model, const SimplexCall &call)
{
    const int code = SimplexOptimize(&model->lp.simplex, model->body, model->env, call);
    if (!code) model->lp.status = simplex_status(model->lp.simplex);
    return code;
}

// Presolve alone; the result ends with the scope.
struct Reduced {
    PresolveResult *result = nullptr;
    double work = 0;
    PresolveStatus status = PRESOLVE_OK;
    explicit Reduced(TVXmodel *model, LpClaim *claim = nullptr)
    {
        const LpMethod method = static_cast<LpMethod>(model->env->LPMethod);
        if (presolve_lp(model->body, model->env, method, &result, &status, &work, claim))
            abort();
    }
    ~Reduced() { presolve_free(result); }
    Reduced(const Reduced &) = delete;
    Reduced &operator=(const Reduced &) = delete;
    const ModelBody *body() const { return result ? presolve_reduced(result) : nullptr; }
};

// A body as a model that can be queried and solved; the body stays where it belongs.
struct BodyView {
    TVXmodel *model = nullptr;
    BodyView(TVXenv *env, const ModelBody *body)
    {
        if (model_of_body(env, EnvUse::SHARED, const_cast<ModelBody *>(body), &model))
            abort();
    }
    ~BodyView()
    {
        model->body = nullptr;
        TVXfreemodel(model);
    }
    BodyView(const BodyView &) = delete;
    BodyView &operator=(const BodyView &) = delete;
    operator TVXmodel *() const { return model; }
};
