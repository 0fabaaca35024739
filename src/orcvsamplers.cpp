// Line sampling: one wrapper per line of samplers_list.h. Each checks in the
// family's order and hands the line to the engine, which sets it up.
#include "a6/samplers.h"
#include "core/checks.h"
#include "orucv.h"
#include "samplers_list.h"

using namespace orucv;

#define ORUCV_SAMPLERS_Line(name, T, C)                                                                        \
    extern "C" OruStatus name(const T* pSrc, int srcStep, OruSize roiSize, T* pDst, OruPoint pt1, OruPoint pt2) { \
        if (OruStatus s = check_sample_line(pSrc, pDst, srcStep, roiSize, sizeof(T) == 4 ? 4 : 0)) return s;      \
        return a6::sample_line(a6::SampleLineFn::name, pSrc, srcStep, roiSize, pDst, pt1, pt2,                     \
                               static_cast<int>(sizeof(T)) * (C));                                                \
    }
#define ORUCV_SAMPLERS_WRAPPER(name, shape, T, C) ORUCV_SAMPLERS_##shape(name, T, C)
ORUCV_SAMPLERS_FUNCTIONS(ORUCV_SAMPLERS_WRAPPER)
