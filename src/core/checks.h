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

// General strip filters, the Sobel order: pointers; then a size below 1, a
// step below its row width, or a step not a multiple of its element size
// (`pixel_bytes`), all oruStsSize; then a strip flag other than 0, 1, 2 or 4.
inline OruStatus check_strip_sobel(std::initializer_list<const void*> pointers, const OruSize* roi, StepOf src,
                                   StepOf dst, int strip_flag) {
    if (any_null(pointers)) return oruStsNullPointer;
    if (roi->width < 1 || roi->height < 1) return oruStsSize;
    for (const StepOf& s : {src, dst})
        if (s.step < row_bytes(roi->width, s.pixel_bytes) || s.step % s.pixel_bytes != 0) return oruStsSize;
    if (strip_flag != 0 && strip_flag != 1 && strip_flag != 2 && strip_flag != 4) return oruStsBadArg;
    return oruStsOk;
}

// General strip filters, the blur and Laplace order (order A's pattern):
// pointers; a step below 1 (oruStsStep); a size below 1 (oruStsSize); a step
// not a multiple of its granularity (oruStsNotEvenStep); a strip flag
// outside 0..4 (oruStsBadArg). StepOf carries the granularity here.
inline OruStatus check_strip_order_a(std::initializer_list<const void*> pointers, const OruSize* roi, StepOf src,
                                     StepOf dst, int strip_flag) {
    if (any_null(pointers)) return oruStsNullPointer;
    if (src.step < 1 || dst.step < 1) return oruStsStep;
    if (roi->width < 1 || roi->height < 1) return oruStsSize;
    if (src.step % src.pixel_bytes != 0 || dst.step % dst.pixel_bytes != 0) return oruStsNotEvenStep;
    if (strip_flag < 0 || strip_flag > 4) return oruStsBadArg;
    return oruStsOk;
}

// Corner eigenvalues: the aperture and window sizes are odd in 3..7.
inline bool corner_size_ok(int size) { return size == 3 || size == 5 || size == 7; }

// Corner eigenvalues: pointers, then every size and step fault in one test
// (oruStsSize): a size below 1, a source step below its row width, an
// output step below its row width or not a multiple of 4, an aperture or
// window size not odd in 3..7.
inline OruStatus check_corners(std::initializer_list<const void*> pointers, OruSize roi, StepOf src, StepOf out,
                               int aperture, int window) {
    if (any_null(pointers)) return oruStsNullPointer;
    if (roi.width < 1 || roi.height < 1 || src.step < row_bytes(roi.width, src.pixel_bytes) ||
        out.step < row_bytes(roi.width, out.pixel_bytes) || out.step % 4 != 0 || !corner_size_ok(aperture) ||
        !corner_size_ok(window))
        return oruStsSize;
    return oruStsOk;
}

// Accumulators: order B over the two sources, the mask and the float
// accumulator, each step with the bytes of one of its pixels. An image the
// function does not take repeats the first source, so it decides nothing.
inline OruStatus check_accumulator_order(const void* src1, StepOf src1Step, const void* src2, StepOf src2Step,
                                         const void* mask, StepOf maskStep, const void* acc, int accStep,
                                         OruSize roi) {
    return check_order_b({src1, src2, mask, acc}, {src1Step, src2Step, maskStep, {accStep, 4}}, roi);
}

// Fixed 3x3 derivative filters: pointers; steps below 1 (oruStsStep); width
// below 1 or height below 2 (oruStsSize); a step not a whole number of its
// elements (oruStsNotEvenStep; 8-bit steps never fail); for the one member
// whose steps must hold a row, steps below the row (oruStsSize); origin
// other than 0 and 1, then shift below 0 (oruStsBadArg). Members without an
// origin or a shift pass 0.
inline OruStatus check_fixed_filter_order(const void* src, StepOf srcStep, const void* dst, StepOf dstStep,
                                          OruSize roi, bool steps_hold_rows, int origin, int shift) {
    if (any_null({src, dst})) return oruStsNullPointer;
    if (any_step_below({srcStep.step, dstStep.step}, 1)) return oruStsStep;
    if (roi.width < 1 || roi.height < 2) return oruStsSize;
    if (srcStep.step % srcStep.pixel_bytes != 0 || dstStep.step % dstStep.pixel_bytes != 0) return oruStsNotEvenStep;
    if (steps_hold_rows && (srcStep.step < row_bytes(roi.width, srcStep.pixel_bytes) ||
                            dstStep.step < row_bytes(roi.width, dstStep.pixel_bytes)))
        return oruStsSize;
    if (origin != 0 && origin != 1) return oruStsBadArg;
    if (shift < 0) return oruStsBadArg;
    return oruStsOk;
}

// Canny scratch size: width or height below 1 (oruStsSize) before a null
// result pointer.
inline OruStatus check_canny_size_order(OruSize roi, const void* result) {
    if (roi.width < 1 || roi.height < 1) return oruStsSize;
    if (!result) return oruStsNullPointer;
    return oruStsOk;
}

// Canny: pointers (derivatives, edges, buffer); steps below 1 (oruStsStep);
// width or height below 1 (oruStsSize); an odd derivative step
// (oruStsNotEvenStep; the edge step may be odd); then a low threshold not
// >= 0 or a high one not >= the low one (oruStsBadArg; NaN fails too).
inline OruStatus check_canny_order(const void* dx, int dxStep, const void* dy, int dyStep, const void* edges,
                                   int edgeStep, OruSize roi, float low, float high, const void* buffer) {
    if (OruStatus s = check_order_a({dx, dy, edges, buffer}, {dxStep, dyStep, edgeStep}, roi)) return s;
    if (any_step_not_multiple({dxStep, dyStep}, 2)) return oruStsNotEvenStep;
    if (!(low >= 0.0f) || !(high >= low)) return oruStsBadArg;
    return oruStsOk;
}

// Morphology state creation: the state variable; the sizes; the data type,
// then the channels; the anchor inside the element, compared unsigned so
// that a negative anchor fails too; the shape, and a mask for shape 100.
inline OruStatus check_morph_init(int roi_width, int data_type, int channels, OruSize mask, OruPoint anchor,
                                  int shape, const void* mask_bytes, const void* state_variable) {
    if (!state_variable) return oruStsNullPointer;
    if (roi_width <= 0 || mask.width <= 0 || mask.height <= 0) return oruStsSize;
    if (data_type != oruDataType8u && data_type != oruDataType32f) return oruStsDataType;
    if (channels != 1 && channels != 3 && channels != 4) return oruStsDataType;
    if (static_cast<unsigned>(anchor.x) >= static_cast<unsigned>(mask.width) ||
        static_cast<unsigned>(anchor.y) >= static_cast<unsigned>(mask.height))
        return oruStsOutOfRange;
    if (shape != 0 && shape != 1 && shape != 2 && shape != 100) return oruStsOutOfRange;
    if (shape == 100 && !mask_bytes) return oruStsNullPointer;
    return oruStsOk;
}

// What a morphology strip is checked against: the state's facts, or the
// function's (width and in_progress unused there).
struct StripFacts {
    int width;
    int data_type;
    int channels;
    int shape;
    bool in_progress;
};

// Morphology strips: pointers (state is null when the state pointer is);
// the strip's width within the state's and a height of at least 0; the
// state made for this function; steps of at least a row; the flag. Then the
// warning oruStsNoOperation, with the height set to 0, for a middle or last
// strip of no image in progress and for an empty strip that is not a last.
inline OruStatus check_morph_strip(const void* src, int src_step, const void* dst, int dst_step, OruSize* roi,
                                   const StripFacts* state, const StripFacts& function, int pixel_bytes, int flag) {
    if (any_null({src, dst, roi}) || !state) return oruStsNullPointer;
    if (roi->width < 1 || roi->width > state->width || roi->height < 0) return oruStsSize;
    if (state->data_type != function.data_type || state->channels != function.channels ||
        state->shape != function.shape)
        return oruStsContextMismatch;
    if (row_bytes(roi->width, pixel_bytes) > src_step || row_bytes(roi->width, pixel_bytes) > dst_step)
        return oruStsStep;
    if (flag != 0 && flag != 1 && flag != 2 && flag != 4) return oruStsOutOfRange;
    const bool nothing_to_do = (!state->in_progress && (flag == 2 || flag == 4)) || (roi->height == 0 && flag != 2);
    if (nothing_to_do) {
        roi->height = 0;
        return oruStsNoOperation;
    }
    return oruStsOk;
}

// Line sampling: order A with its one step; the line itself is checked when
// it is set up (oruStsBadLine).
inline OruStatus check_sample_line(const void* src, const void* dst, int step, OruSize roi, int float_element_bytes) {
    return check_order_a({src, dst}, {step}, roi, float_element_bytes);
}

// Fast arctangent: a null array (oruStsNullPointer), then a negative length
// (oruStsSize).
inline OruStatus check_fast_arctan(const void* y, const void* x, const void* dst, int len) {
    if (any_null({y, x, dst})) return oruStsNullPointer;
    if (len < 0) return oruStsSize;
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
