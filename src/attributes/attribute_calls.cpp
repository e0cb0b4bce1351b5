// attribute_calls.cpp -- the exported calls that read and set attributes
//
// One line each: the type, the selection of elements, and the call of attribute_get or attribute_set.
#include "attributes/attribute_access.h"

int TVXgetattrinfo(TVXmodel *model, const char *name, int *datatype_out, int *size_out,
                   int *settable_out)
{
    for (int *out : {datatype_out, size_out, settable_out})
        if (out) *out = -1;
    const AttributeRow *row = nullptr;
    int code = TVXcheckmodel(model);
    if (!code) code = attribute_row(model, name, &row);
    if (code) return finish_model(model, code);
    if (datatype_out) *datatype_out = static_cast<int>(row->type);
    if (size_out) *size_out = static_cast<int>(row->kind);
    if (settable_out) *settable_out = row->settable;
    return finish_model(model, 0);
}

// ---- One value of the model ----

int TVXgetintattr(TVXmodel *model, const char *name, int *value_out)
{
    return attribute_get(model, name, AttrType::INT, attr_scalar(), value_out);
}

int TVXgetdblattr(TVXmodel *model, const char *name, double *value_out)
{
    return attribute_get(model, name, AttrType::DOUBLE, attr_scalar(), value_out);
}

int TVXgetstrattr(TVXmodel *model, const char *name, char **value_out)
{
    return attribute_get(model, name, AttrType::STRING, attr_scalar(), value_out);
}

int TVXsetintattr(TVXmodel *model, const char *name, int value)
{
    return attribute_set(model, name, AttrType::INT, attr_scalar(), &value);
}

int TVXsetdblattr(TVXmodel *model, const char *name, double value)
{
    return attribute_set(model, name, AttrType::DOUBLE, attr_scalar(), &value);
}

int TVXsetstrattr(TVXmodel *model, const char *name, const char *value)
{
    return attribute_set(model, name, AttrType::STRING, attr_scalar(),
                         value ? &value : nullptr);
}

// ---- One element ----

int TVXgetintattrelement(TVXmodel *model, const char *name, int index, int *value_out)
{
    return attribute_get(model, name, AttrType::INT, attr_element(index), value_out);
}

int TVXgetdblattrelement(TVXmodel *model, const char *name, int index, double *value_out)
{
    return attribute_get(model, name, AttrType::DOUBLE, attr_element(index), value_out);
}

int TVXgetcharattrelement(TVXmodel *model, const char *name, int index, char *value_out)
{
    return attribute_get(model, name, AttrType::CHAR, attr_element(index), value_out);
}

int TVXgetstrattrelement(TVXmodel *model, const char *name, int index, char **value_out)
{
    return attribute_get(model, name, AttrType::STRING, attr_element(index), value_out);
}

int TVXsetintattrelement(TVXmodel *model, const char *name, int index, int value)
{
    return attribute_set(model, name, AttrType::INT, attr_element(index), &value);
}

int TVXsetdblattrelement(TVXmodel *model, const char *name, int index, double value)
{
    return attribute_set(model, name, AttrType::DOUBLE, attr_element(index), &value);
}

int TVXsetcharattrelement(TVXmodel *model, const char *name, int index, char value)
{
    return attribute_set(model, name, AttrType::CHAR, attr_element(index), &value);
}

int TVXsetstrattrelement(TVXmodel *model, const char *name, int index, const char *value)
{
    return attribute_set(model, name, AttrType::STRING, attr_element(index), &value);
}

// ---- A range of elements, or all ----

int TVXgetintattrarray(TVXmodel *model, const char *name, int start, int len, int *values)
{
    return attribute_get(model, name, AttrType::INT, attr_array(start, len), values);
}

int TVXgetdblattrarray(TVXmodel *model, const char *name, int start, int len,
                       double *values)
{
    return attribute_get(model, name, AttrType::DOUBLE, attr_array(start, len), values);
}

int TVXgetcharattrarray(TVXmodel *model, const char *name, int start, int len, char *values)
{
    return attribute_get(model, name, AttrType::CHAR, attr_array(start, len), values);
}

int TVXgetstrattrarray(TVXmodel *model, const char *name, int start, int len, char **values)
{
    return attribute_get(model, name, AttrType::STRING, attr_array(start, len), values);
}

int TVXsetintattrarray(TVXmodel *model, const char *name, int start, int len,
                       const int *values)
{
    return attribute_set(model, name, AttrType::INT, attr_array(start, len), values);
}

int TVXsetdblattrarray(TVXmodel *model, const char *name, int start, int len,
                       const double *values)
{
    return attribute_set(model, name, AttrType::DOUBLE, attr_array(start, len), values);
}

int TVXsetcharattrarray(TVXmodel *model, const char *name, int start, int len,
                        const char *values)
{
    return attribute_set(model, name, AttrType::CHAR, attr_array(start, len), values);
}

int TVXsetstrattrarray(TVXmodel *model, const char *name, int start, int len, char **values)
{
    return attribute_set(model, name, AttrType::STRING, attr_array(start, len), values);
}

// ---- Elements by index ----

int TVXgetintattrlist(TVXmodel *model, const char *name, int len, const int *ind,
                      int *values)
{
    return attribute_get(model, name, AttrType::INT, attr_list(len, ind), values);
}

int TVXgetdblattrlist(TVXmodel *model, const char *name, int len, const int *ind,
                      double *values)
{
    return attribute_get(model, name, AttrType::DOUBLE, attr_list(len, ind), values);
}

int TVXgetcharattrlist(TVXmodel *model, const char *name, int len, const int *ind,
                       char *values)
{
    return attribute_get(model, name, AttrType::CHAR, attr_list(len, ind), values);
}

int TVXgetstrattrlist(TVXmodel *model, const char *name, int len, const int *ind,
                      char **values)
{
    return attribute_get(model, name, AttrType::STRING, attr_list(len, ind), values);
}

int TVXsetintattrlist(TVXmodel *model, const char *name, int len, const int *ind,
                      const int *values)
{
    return attribute_set(model, name, AttrType::INT, attr_list(len, ind), values);
}

int TVXsetdblattrlist(TVXmodel *model, const char *name, int len, const int *ind,
                      const double *values)
{
    return attribute_set(model, name, AttrType::DOUBLE, attr_list(len, ind), values);
}

int TVXsetcharattrlist(TVXmodel *model, const char *name, int len, const int *ind,
                       const char *values)
{
    return attribute_set(model, name, AttrType::CHAR, attr_list(len, ind), values);
}

int TVXsetstrattrlist(TVXmodel *model, const char *name, int len, const int *ind,
                      char **values)
{
    return attribute_set(model, name, AttrType::STRING, attr_list(len, ind), values);
}
