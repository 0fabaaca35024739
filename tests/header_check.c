/* Compiled as strict C99: the public header must need nothing else. */
#include "orucv.h"

int orucv_header_check(void) {
    OruSize size = {1, 1};
    return size.width + oruStsOk;
}
