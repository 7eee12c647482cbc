/* The generated public header is valid C. */
#include "vek.h"

int vek_public_header_is_c(void) { return 0; }
