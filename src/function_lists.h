// Every family's list of exported names. Each list is an X-macro whose
// entries start with the exported name: X(name, ...). A new family adds its
// list here; tests/interface_test.cpp proves that the lists and the public
// header name the same functions, and tools/check-library that the library
// exports exactly what the header declares.
#pragma once

#include "absdiff_list.h"
#include "accum_list.h"
#include "canny_list.h"
#include "eigen_list.h"
#include "fastarctan_list.h"
#include "filter_list.h"
#include "frame_list.h"
#include "morph_list.h"
#include "samplers_list.h"
#include "sobel3x3_list.h"
#include "stats_list.h"

#define ORUCV_LISTED_FUNCTIONS(X) \
    ORUCV_ABSDIFF_FUNCTIONS(X)   \
    ORUCV_FILTER_FUNCTIONS(X)    \
    ORUCV_EIGEN_FUNCTIONS(X)     \
    ORUCV_ACCUM_FUNCTIONS(X)     \
    ORUCV_SOBEL3X3_FUNCTIONS(X)  \
    ORUCV_CANNY_FUNCTIONS(X)     \
    ORUCV_FRAME_FUNCTIONS(X)     \
    ORUCV_MORPH_FUNCTIONS(X)      \
    ORUCV_FASTARCTAN_FUNCTIONS(X) \
    ORUCV_SAMPLERS_FUNCTIONS(X)   \
    ORUCV_STATS_FUNCTIONS(X)

// Families whose lists are still to come; the check that every declared
// name is listed waits for them.
#define ORUCV_ALL_FAMILIES_LISTED 0
