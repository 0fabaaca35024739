/* Direct C calls of oruiSobel3x3_Dx_8u16s_C1R, timed in C: built as a small
 * shared object that the benchmark loads, so the C loop and the Python calls
 * use the same buffers in the same process. Returns mean nanoseconds per
 * call, or -1 when a call fails. */
#define _POSIX_C_SOURCE 199309L
#include <time.h>

#include "orucv.h"

double orucv_bench_direct(const Oru8u* src, int srcStep, Oru16s* dst, int dstStep, int width, int height,
                          int calls) {
    struct timespec t0, t1;
    OruSize roi = {width, height};
    clock_gettime(CLOCK_MONOTONIC, &t0);
    for (int i = 0; i < calls; ++i)
        if (oruiSobel3x3_Dx_8u16s_C1R(src, srcStep, dst, dstStep, roi) != oruStsOk) return -1;
    clock_gettime(CLOCK_MONOTONIC, &t1);
    return ((t1.tv_sec - t0.tv_sec) * 1e9 + (t1.tv_nsec - t0.tv_nsec)) / calls;
}
