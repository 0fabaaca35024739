// Every family's list of exported names. Each list is an X-macro whose
// entries start with the exported name: X(name, ...). A new family adds its
// list here; tests/interface_test.cpp proves that the lists and the public
// header name the same functions, and tools/check-library that the library
// exports exactly what the header declares.
#pragma once

#include "absdiff_list.h"
#include "accum_list.h"
#include "canny_list.h"
#include "distransform_list.h"
#include "eigen_list.h"
#include "fastarctan_list.h"
#include "filter_list.h"
#include "floodfill_list.h"
#include "frame_list.h"
#include "matchtemplate_list.h"
#include "morph_list.h"
#include "pyramid_list.h"
#include "samplers_list.h"
#include "sobel3x3_list.h"
#include "stats_list.h"

#define ORUCV_LISTED_FUNCTIONS(X)     \
    ORUCV_ABSDIFF_FUNCTIONS(X)        \
    ORUCV_FILTER_FUNCTIONS(X)         \
    ORUCV_EIGEN_FUNCTIONS(X)          \
    ORUCV_ACCUM_FUNCTIONS(X)          \
    ORUCV_SOBEL3X3_FUNCTIONS(X)       \
    ORUCV_CANNY_FUNCTIONS(X)          \
    ORUCV_FRAME_FUNCTIONS(X)          \
    ORUCV_MORPH_FUNCTIONS(X)          \
    ORUCV_FASTARCTAN_FUNCTIONS(X)     \
    ORUCV_SAMPLERS_FUNCTIONS(X)       \
    ORUCV_DISTRANSFORM_FUNCTIONS(X)   \
    ORUCV_FLOODFILL_FUNCTIONS(X)      \
    ORUCV_MATCHTEMPLATE_FUNCTIONS(X)  \
    ORUCV_PYRAMID_FUNCTIONS(X)        \
    ORUCV_STATS_FUNCTIONS(X)

// Every family has its list, so every declared name must stand in one.
#define ORUCV_ALL_FAMILIES_LISTED 1
