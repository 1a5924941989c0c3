/* Both headers as a C89 host includes them; the plug-in's C++ part must stay out of C. */
#include "zerbin/plugin.h"
#include "zerbin/zerbin.h"

int zerbin_header_c89(void) {
    ZerbinBlock* block = 0;
    ZerbinGetClassObjectFn getClassObject = 0;
    (void)getClassObject;
    return ZerbinBlockNew("T", &block) == ZERBIN_OK ? ZERBIN_HEADER_VERSION : ZERBIN_E_NOT_FOUND;
}
