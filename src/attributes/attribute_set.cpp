// attribute_set.cpp -- sets attributes, for all exported calls
//
// Method   All tests are made before the setter is called, which takes all values or none. Setters of the model's
//          content add to the pending changes for the next update; those of start data write their record immediately.
#include "attributes/attribute_access.h"

namespace
{
int set_values(TVXmodel *model, const char *name, AttrType type,
               const AttrSelection &selection, const void *values)
{
    const AttributeRow *row = nullptr;
    ElementRange range;
    TRY(attribute_head(model, name, type, AttrAccess::SET, selection, &row, &range));
    if (!values && range.len > 0)
        return fail_model(model, TVX_ERROR_NULL_ARGUMENT, Report::FORCE,
                          "NULL 'value' argument supplied");
    int code = 0;
    if (type == AttrType::DOUBLE)
        code = check_values(model->env, range.len, static_cast<const double *>(values));
    if (!code) code = row->set(model, row->part, range, values);
    return fail_model(model, code, Report::KEEP_FIRST, "Unable to set attribute '%s'",
                      name);
}
} // namespace

int attribute_set(TVXmodel *model, const char *name, AttrType type,
                  const AttrSelection &selection, const void *values)
{
    int code = TVXcheckmodel(model);
    if (!code) code = set_values(model, name, type, selection, values);
    return finish_model(model, code);
}
