// The fast arctangent: one wrapper per line of fastarctan_list.h, checking
// in the family's order before handing over.
#include "a6/fastarctan.h"
#include "core/checks.h"
#include "fastarctan_list.h"
#include "orucv.h"

using namespace orucv;

#define ORUCV_FASTARCTAN_Vectors(name, T)                                                        \
    extern "C" OruStatus name(const T* pSrcY, const T* pSrcX, T* pDst, int len) {                \
        if (OruStatus s = check_fast_arctan(pSrcY, pSrcX, pDst, len)) return s;                   \
        if (len > 0) a6::fast_arctan(pSrcY, pSrcX, pDst, len);                                   \
        return oruStsOk;                                                                          \
    }
#define ORUCV_FASTARCTAN_WRAPPER(name, shape, T) ORUCV_FASTARCTAN_##shape(name, T)
ORUCV_FASTARCTAN_FUNCTIONS(ORUCV_FASTARCTAN_WRAPPER)
