// Argument-check orders shared by the families. Each returns the status of
// the first failing group, or oruStsOk; within a group every member yields
// the same status, so the order inside a group does not matter.
#pragma once

#include <initializer_list>

#include "orucv.h"

namespace orucv {

inline bool any_null(std::initializer_list<const void*> pointers) {
    for (const void* p : pointers)
        if (!p) return true;
    return false;
}

inline bool any_step_below(std::initializer_list<int> steps, int least) {
    for (int s : steps)
        if (s < least) return true;
    return false;
}

inline bool any_step_not_multiple(std::initializer_list<int> steps, int of) {
    for (int s : steps)
        if (s % of != 0) return true;
    return false;
}

// A row step together with the bytes of one pixel (channels included).
struct StepOf {
    int step;
    int pixel_bytes;
};

// Row width in bytes, widened so that huge widths cannot wrap.
inline long long row_bytes(int width, int pixel_bytes) {
    return static_cast<long long>(width) * pixel_bytes;
}

// Order A (two-image arithmetic): pointers, steps >= 1, size >= 1, then for
// float images every step divisible by the element size.
inline OruStatus check_order_a(std::initializer_list<const void*> pointers, std::initializer_list<int> steps,
                               OruSize roi, int float_element_bytes = 0) {
    if (any_null(pointers)) return oruStsNullPointer;
    if (any_step_below(steps, 1)) return oruStsStep;
    if (roi.width < 1 || roi.height < 1) return oruStsSize;
    if (float_element_bytes && any_step_not_multiple(steps, float_element_bytes)) return oruStsNotEvenStep;
    return oruStsOk;
}

// Order B (accumulators, motion history): pointers, then negative sizes,
// short steps and misaligned float steps, all reported as oruStsSize.
// For 8-bit images pixel_bytes is 1, so the divisibility test never fails.
inline OruStatus check_order_b(std::initializer_list<const void*> pointers, std::initializer_list<StepOf> steps,
                               OruSize roi) {
    if (any_null(pointers)) return oruStsNullPointer;
    if (roi.width < 0 || roi.height < 0) return oruStsSize;
    for (const StepOf& s : steps)
        if (s.step < row_bytes(roi.width, s.pixel_bytes) || s.step % s.pixel_bytes != 0) return oruStsSize;
    return oruStsOk;
}

// Order C (statistics): pointers, size >= 1 (before steps), steps >= 1, the
// float source step divisible by 4 (pass 0 for 8-bit sources), then coi
// (pass 0 when the function has none).
inline OruStatus check_order_c(std::initializer_list<const void*> pointers, std::initializer_list<int> steps,
                               OruSize roi, int float_src_step, int coi = 0) {
    if (any_null(pointers)) return oruStsNullPointer;
    if (roi.width < 1 || roi.height < 1) return oruStsSize;
    if (any_step_below(steps, 1)) return oruStsStep;
    if (float_src_step % 4 != 0) return oruStsNotEvenStep;
    if (coi && (coi < 1 || coi > 3)) return oruStsCoi;
    return oruStsOk;
}

// Order D (extrema with locations): pointers, negative sizes, steps below the
// row width or misaligned float steps (oruStsStep), then coi.
inline OruStatus check_order_d(std::initializer_list<const void*> pointers, std::initializer_list<StepOf> steps,
                               OruSize roi, int coi = 0) {
    if (any_null(pointers)) return oruStsNullPointer;
    if (roi.width < 0 || roi.height < 0) return oruStsSize;
    for (const StepOf& s : steps)
        if (s.step < row_bytes(roi.width, s.pixel_bytes) || s.step % (s.pixel_bytes % 4 == 0 ? 4 : 1) != 0)
            return oruStsStep;
    if (coi && (coi < 1 || coi > 3)) return oruStsCoi;
    return oruStsOk;
}

// The coi argument of the order helpers for a function that has a channel
// of interest: there a coi of 0 must fail like any other out of range, while
// the helpers read 0 as "no channel".
inline int coi_to_check(int coi) { return coi == 0 ? -1 : coi; }

// Order C with the channel of interest tested before the float source step
// (the one mean that departs from order C).
inline OruStatus check_order_c_coi_first(std::initializer_list<const void*> pointers,
                                         std::initializer_list<int> steps, OruSize roi, int float_src_step,
                                         int coi) {
    if (any_null(pointers)) return oruStsNullPointer;
    if (roi.width < 1 || roi.height < 1) return oruStsSize;
    if (any_step_below(steps, 1)) return oruStsStep;
    if (coi < 1 || coi > 3) return oruStsCoi;
    if (float_src_step % 4 != 0) return oruStsNotEvenStep;
    return oruStsOk;
}

// Norms: pointers, every step (the mask's too) >= 1, size >= 1, then coi
// (0 when the function has none), then the float image steps divisible by 4
// (pass none for 8-bit images; the mask step is never tested).
inline OruStatus check_order_norm(std::initializer_list<const void*> pointers, std::initializer_list<int> steps,
                                  OruSize roi, int coi, std::initializer_list<int> float_steps) {
    if (any_null(pointers)) return oruStsNullPointer;
    if (any_step_below(steps, 1)) return oruStsStep;
    if (roi.width < 1 || roi.height < 1) return oruStsSize;
    if (coi && (coi < 1 || coi > 3)) return oruStsCoi;
    if (any_step_not_multiple(float_steps, 4)) return oruStsNotEvenStep;
    return oruStsOk;
}

}  // namespace orucv
