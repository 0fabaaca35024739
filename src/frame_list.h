// The exported names of the library frame, one line each: X(name, shape,
// ...). The copy wrappers (orcvcopy.cpp), the copy kernel table
// (a6/copy.h) and the tests' list of copies come from this list.
//   Version          the version query
//   Alloc, Free      the aligned allocator
//   Table            a constant table
//   Channel, Split, Merge
//                    the channel copies: X(name, shape, pixel type,
//                    channels). Channel copies one channel of interleaved
//                    pixels out, Split all of them into planes, Merge planes
//                    into interleaved pixels.
#pragma once

#define ORUCV_COPY_FUNCTIONS(X)                          \
    X(a6_orcvCopy_8u_C3CC1R, Channel, Oru8u, 3)          \
    X(a6_orcvCopy_8u_C4CC1R, Channel, Oru8u, 4)          \
    X(a6_orcvCopy_32f_C3CC1R, Channel, Oru32f, 3)        \
    X(a6_orcvCopy_32f_C4CC1R, Channel, Oru32f, 4)        \
    X(a6_orcvCopy_8u_C3P3R, Split, Oru8u, 3)             \
    X(a6_orcvCopy_8u_C4P4R, Split, Oru8u, 4)             \
    X(a6_orcvCopy_32f_C3P3R, Split, Oru32f, 3)           \
    X(a6_orcvCopy_32f_C4P4R, Split, Oru32f, 4)           \
    X(a6_orcvCopy_8u_P3C3R, Merge, Oru8u, 3)             \
    X(a6_orcvCopy_8u_P4C4R, Merge, Oru8u, 4)             \
    X(a6_orcvCopy_32f_P3C3R, Merge, Oru32f, 3)           \
    X(a6_orcvCopy_32f_P4C4R, Merge, Oru32f, 4)

#define ORUCV_FRAME_FUNCTIONS(X)          \
    X(orucvGetLibVersion, Version)        \
    X(oruiAlloc, Alloc)                   \
    X(_orcvAlloc, Alloc)                  \
    X(_orcvFree_, Free)                   \
    X(a6__orcv8to32f, Table)              \
    X(_orcvCoiMask_A6, Table)             \
    X(_orcvMaskShuffTable_A6, Table)      \
    X(_orcvAdd128_A6, Table)              \
    ORUCV_COPY_FUNCTIONS(X)
