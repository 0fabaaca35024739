// Every family's list of exported names. Each list is an X-macro whose
// entries start with the exported name: X(name, ...). A new family adds its
// list here; tests/interface_test.cpp proves that the lists and the public
// header name the same functions, and tools/check-library that the library
// exports exactly what the header declares.
#pragma once

#include "absdiff_list.h"
#include "stats_list.h"

#define ORUCV_LISTED_FUNCTIONS(X) \
    ORUCV_ABSDIFF_FUNCTIONS(X) \
    ORUCV_STATS_FUNCTIONS(X)

// Families whose lists are still to come; the check that every declared
// name is listed waits for them.
#define ORUCV_ALL_FAMILIES_LISTED 0
