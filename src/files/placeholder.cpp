// placeholder.cpp -- until model files can be written; to be deleted then
#include "frame/model.h"

int TVXwrite(TVXmodel *model, const char *)
{
    return finish_model(model, TVX_ERROR_FILE_WRITE);
}
