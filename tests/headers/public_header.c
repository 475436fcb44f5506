#include "vlm_internal.h"

_Static_assert(sizeof(VXP_MA_CONFIGURATION) == 32, "two doubles, two integers, a double");
_Static_assert(STREAM_CLOSED == 5, "the codes are plain integers");
