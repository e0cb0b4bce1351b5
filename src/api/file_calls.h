// file_calls.h -- what a file name means: the table of file types
#pragma once
#include "tarvex.h"

// Types as the table numbers them; a name without known suffix has FILE_UNKNOWN.
enum FileType {
    FILE_UNKNOWN = -1,
    FILE_MPS = 1,
    FILE_REW = 2,
    FILE_LP = 3,
    FILE_RLP = 4,
    FILE_ILP = 5,
    FILE_MST = 6,
    FILE_SOL = 7,
    FILE_BAS = 8,
    FILE_PRM = 9
};
// By the end of the name, a compression suffix taken off; capitals count as small letters.
FileType file_type(const char *file_name);
