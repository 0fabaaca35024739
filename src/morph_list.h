// The exported functions of morphology, one line each:
// X(name, kind, operation, element shape, pixel type, channels). The
// wrappers (orcvmorph.cpp), the tests' and the benchmarks' lists of
// functions come from this list.
//   State   the state's constructor and release (no operation, shape or type)
//   Strip   erosion (Erode, minimum) or dilation (Dilate, maximum) of one
//           strip by a rectangle (Rect), a cross (Cross) or the state's mask
//           (Mask: arbitrary masks and ellipses)
#pragma once

#define ORUCV_MORPH_FUNCTIONS(X)                                      \
    X(oruiMorphologyInitAlloc, State, None, None, Oru8u, 0)           \
    X(oruiMorphologyFree, State, None, None, Oru8u, 0)                \
    X(oruiErodeStrip_Rect_8u_C1R, Strip, Erode, Rect, Oru8u, 1)       \
    X(oruiErodeStrip_Rect_8u_C3R, Strip, Erode, Rect, Oru8u, 3)       \
    X(oruiErodeStrip_Rect_8u_C4R, Strip, Erode, Rect, Oru8u, 4)       \
    X(oruiErodeStrip_Cross_8u_C1R, Strip, Erode, Cross, Oru8u, 1)     \
    X(oruiErodeStrip_Cross_8u_C3R, Strip, Erode, Cross, Oru8u, 3)     \
    X(oruiErodeStrip_Cross_8u_C4R, Strip, Erode, Cross, Oru8u, 4)     \
    X(oruiErodeStrip_8u_C1R, Strip, Erode, Mask, Oru8u, 1)            \
    X(oruiErodeStrip_8u_C3R, Strip, Erode, Mask, Oru8u, 3)            \
    X(oruiErodeStrip_8u_C4R, Strip, Erode, Mask, Oru8u, 4)            \
    X(oruiDilateStrip_Rect_8u_C1R, Strip, Dilate, Rect, Oru8u, 1)     \
    X(oruiDilateStrip_Rect_8u_C3R, Strip, Dilate, Rect, Oru8u, 3)     \
    X(oruiDilateStrip_Rect_8u_C4R, Strip, Dilate, Rect, Oru8u, 4)     \
    X(oruiDilateStrip_Cross_8u_C1R, Strip, Dilate, Cross, Oru8u, 1)   \
    X(oruiDilateStrip_Cross_8u_C3R, Strip, Dilate, Cross, Oru8u, 3)   \
    X(oruiDilateStrip_Cross_8u_C4R, Strip, Dilate, Cross, Oru8u, 4)   \
    X(oruiDilateStrip_8u_C1R, Strip, Dilate, Mask, Oru8u, 1)          \
    X(oruiDilateStrip_8u_C3R, Strip, Dilate, Mask, Oru8u, 3)          \
    X(oruiDilateStrip_8u_C4R, Strip, Dilate, Mask, Oru8u, 4)          \
    X(oruiErodeStrip_Rect_32f_C1R, Strip, Erode, Rect, Oru32f, 1)     \
    X(oruiErodeStrip_Rect_32f_C3R, Strip, Erode, Rect, Oru32f, 3)     \
    X(oruiErodeStrip_Rect_32f_C4R, Strip, Erode, Rect, Oru32f, 4)     \
    X(oruiErodeStrip_Cross_32f_C1R, Strip, Erode, Cross, Oru32f, 1)   \
    X(oruiErodeStrip_Cross_32f_C3R, Strip, Erode, Cross, Oru32f, 3)   \
    X(oruiErodeStrip_Cross_32f_C4R, Strip, Erode, Cross, Oru32f, 4)   \
    X(oruiErodeStrip_32f_C1R, Strip, Erode, Mask, Oru32f, 1)          \
    X(oruiErodeStrip_32f_C3R, Strip, Erode, Mask, Oru32f, 3)          \
    X(oruiErodeStrip_32f_C4R, Strip, Erode, Mask, Oru32f, 4)          \
    X(oruiDilateStrip_Rect_32f_C1R, Strip, Dilate, Rect, Oru32f, 1)   \
    X(oruiDilateStrip_Rect_32f_C3R, Strip, Dilate, Rect, Oru32f, 3)   \
    X(oruiDilateStrip_Rect_32f_C4R, Strip, Dilate, Rect, Oru32f, 4)   \
    X(oruiDilateStrip_Cross_32f_C1R, Strip, Dilate, Cross, Oru32f, 1) \
    X(oruiDilateStrip_Cross_32f_C3R, Strip, Dilate, Cross, Oru32f, 3) \
    X(oruiDilateStrip_Cross_32f_C4R, Strip, Dilate, Cross, Oru32f, 4) \
    X(oruiDilateStrip_32f_C1R, Strip, Dilate, Mask, Oru32f, 1)        \
    X(oruiDilateStrip_32f_C3R, Strip, Dilate, Mask, Oru32f, 3)        \
    X(oruiDilateStrip_32f_C4R, Strip, Dilate, Mask, Oru32f, 4)
