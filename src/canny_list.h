// The exported functions of the Canny edge detector, one line each:
// X(name, shape). The wrappers (orcvcanny.cpp) and the benchmark
// registrations come from this list.
//   BufferSize  the scratch size query: (roiSize, pBufferSize)
//   Detect      the detector over x and y derivative images
#pragma once

#define ORUCV_CANNY_FUNCTIONS(X)         \
    X(oruiCannyGetSize, BufferSize)      \
    X(oruiCanny_16s8u_C1R, Detect)
