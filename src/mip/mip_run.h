// mip_run.h -- mip_run, one search in a caller's solve or inside another search
#pragma once
#include "mip/search.h"

// Begins or continues the search, for which another one stands after a restart; its status tells how it ends. 0 or a code:
// the status is TVX_INTERRUPTED then, and the search can only be freed.
[[nodiscard]] int mip_run(MIPState **search);
