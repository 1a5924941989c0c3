// The C interface from the oldest C++ a host may still build with.
#include "zerbin/zerbin.h"

int ZerbinHeaderCxx98() {
    ZerbinBlock* block = 0;
    return ZerbinBlockNew("T", &block) == ZERBIN_OK ? ZERBIN_HEADER_VERSION : ZERBIN_E_NOT_FOUND;
}
