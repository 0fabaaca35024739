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

// Distance transforms: order B with the weights among the pointers; every
// step fault is oruStsSize and zero sizes pass.
inline OruStatus check_distance_transform(const void* src, int srcStep, const void* dst, int dstStep, OruSize roi,
                                          const void* metrics) {
    return check_order_b({src, dst, metrics}, {{srcStep, 1}, {dstStep, 4}}, roi);
}

// The distance mask query: the output, then the code (10 * side + norm; 5x5
// only with the Euclidean norm).
inline OruStatus check_distance_mask(int maskType, const void* metrics) {
    if (!metrics) return oruStsNullPointer;
    if (maskType != 30 && maskType != 31 && maskType != 32 && maskType != 52) return oruStsOutOfRange;
    return oruStsOk;
}

// Flood fills: order A over the image, the record and the buffer among the
// pointers; then the seed inside the region; then an 8-bit fill value in
// 0..255.
template <class T, class V>
inline OruStatus check_flood_fill(const T* image, int step, OruSize roi, OruPoint seed, V new_value,
                                  const void* region, const void* buffer) {
    if (OruStatus s = check_order_a({image, region, buffer}, {step}, roi, sizeof(T) == 4 ? 4 : 0)) return s;
    if (seed.x < 0 || seed.x >= roi.width || seed.y < 0 || seed.y >= roi.height) return oruStsOutOfRange;
    if constexpr (sizeof(T) == 1) {
        if (new_value < 0 || new_value >= 256) return oruStsBadArg;
    }
    return oruStsOk;
}

// Gradient fills: the flood fill's order, then the tolerances: both at
// least 0 (a NaN fails) and, for 8-bit images, a sum below 256 (taken
// without wrapping).
template <class T, class V>
inline OruStatus check_gradient_fill(const T* image, int step, OruSize roi, OruPoint seed, V new_value, V min_delta,
                                     V max_delta, const void* region, const void* buffer) {
    if (OruStatus s = check_flood_fill(image, step, roi, seed, new_value, region, buffer)) return s;
    if (!(min_delta >= 0) || !(max_delta >= 0)) return oruStsOutOfRange;
    if constexpr (sizeof(T) == 1) {
        if (static_cast<long long>(min_delta) + max_delta >= 256) return oruStsOutOfRange;
    }
    return oruStsOk;
}

// The flood fills' buffer-size queries: the size before the pointer.
inline OruStatus check_fill_size(OruSize roi, const void* size) {
    if (roi.width < 1 || roi.height < 1) return oruStsSize;
    if (!size) return oruStsNullPointer;
    return oruStsOk;
}

// Template matching: the pointers; the template width, then the other
// sizes; each step against its row (template, source, destination); then
// the alignment of float steps and of the destination step, reported as
// short steps are. element is 1 for 8-bit images, 4 for float ones.
inline OruStatus check_match_template(const void* src, int srcStep, OruSize src_size, const void* tpl, int tplStep,
                                      OruSize tpl_size, const void* dst, int dstStep, const void* buffer,
                                      int element) {
    if (any_null({src, tpl, dst, buffer})) return oruStsNullPointer;
    if (tpl_size.width < 1) return oruStsSize;
    if (tpl_size.height < 1 || src_size.width < tpl_size.width || src_size.height < tpl_size.height) return oruStsSize;
    if (tplStep < row_bytes(tpl_size.width, element)) return oruStsStep;
    if (srcStep < row_bytes(src_size.width, element)) return oruStsStep;
    if (dstStep < row_bytes(src_size.width - tpl_size.width + 1, 4)) return oruStsStep;
    if ((element == 4 && (tplStep % 4 != 0 || srcStep % 4 != 0)) || dstStep % 4 != 0) return oruStsStep;
    return oruStsOk;
}

// The template-matching size queries: the output, which is then cleared;
// the sizes; the data type (8u, 8s or 32f).
inline OruStatus check_match_buffer_size(OruSize src_size, OruSize tpl_size, int dataType, int* size) {
    if (!size) return oruStsNullPointer;
    *size = 0;
    if (tpl_size.width <= 0 || tpl_size.height <= 0 || tpl_size.width > src_size.width ||
        tpl_size.height > src_size.height)
        return oruStsSize;
    if (dataType != oruDataType8u && dataType != oruDataType8s && dataType != oruDataType32f) return oruStsDataType;
    return oruStsOk;
}

// Pyramid filters: the pointers, then every size and step fault as
// oruStsSize: negative sizes, steps short of the source and destination
// rows (half or twice the width), a PyrDown region with an odd side, a
// float step that is not a whole number of floats. element is 1 for 8-bit
// images, 4 for float ones.
inline OruStatus check_pyramid(const void* src, int srcStep, const void* dst, int dstStep, OruSize roi,
                               const void* buffer, int channels, int element, bool down) {
    if (any_null({src, dst, buffer})) return oruStsNullPointer;
    const long long w = roi.width, h = roi.height;
    if (w < 0 || h < 0) return oruStsSize;
    const long long dst_pixels = down ? w / 2 : 2 * w;
    if (srcStep < w * channels * element || dstStep < dst_pixels * channels * element) return oruStsSize;
    if (down && (w % 2 != 0 || h % 2 != 0)) return oruStsSize;
    if (element == 4 && (srcStep % 4 != 0 || dstStep % 4 != 0)) return oruStsSize;
    return oruStsOk;
}

// The pyramid size queries: the output, which is then cleared; the width
// (not negative, even for PyrDown); the channels (1 or 3); the data type
// (8u, 8s or 32f).
inline OruStatus check_pyramid_buffer_size(int width, int dataType, int channels, bool down, int* size) {
    if (!size) return oruStsNullPointer;
    *size = 0;
    if (width < 0 || (down && width % 2 != 0)) return oruStsSize;
    if (channels != 1 && channels != 3) return oruStsNumChannels;
    if (dataType != oruDataType8u && dataType != oruDataType8s && dataType != oruDataType32f) return oruStsDataType;
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
