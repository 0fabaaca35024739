// The line samplers, written once over the vector operations of
// ops_<isa>.h. A line is walked a block of V::kFloats points at a time:
// lane j holds the byte offset of point k + j from the first point and its
// error term, and the block advances by kFloats points at once (each lane
// takes q minor steps, plus one where its error goes negative), so no point
// waits for the one before it. Single-channel float pixels are gathered,
// other pixels copied lane by lane. Short lines, lines whose offsets would
// not fit 32-bit lanes and the points after the last whole block go to the
// scalar twin. Internal linkage: each instruction-set file instantiates its
// own.
#pragma once

#include <cstdint>

#include "a6/samplers.h"

namespace orucv {
namespace a6 {
namespace {

template <class V>
struct SamplerRows {
    using I = typename V::I;
    static constexpr int kLanes = V::kFloats;

    // Whether the offsets of the line's points, and of a block beyond its
    // end, fit 32-bit lanes, and its error terms stay clear of their sign.
    static bool lanes_fit(const LineState& line, int n) {
        if (line.two_major >= (1u << 30)) return false;
        const uint64_t major_bytes = static_cast<uint64_t>(line.major_step < 0 ? -line.major_step : line.major_step);
        const uint64_t minor_bytes = static_cast<uint64_t>(line.minor_step < 0 ? -line.minor_step : line.minor_step);
        return static_cast<uint64_t>(n - 1 + kLanes) * (major_bytes + minor_bytes) <= INT32_MAX;
    }

    template <class T, int C>
    static void copy_block(const uint8_t* base, I offsets, T* out) {
        if constexpr (sizeof(T) == 4 && C == 1) {
            V::store(out, V::gather32(base, offsets));
        } else {
            alignas(32) int32_t o[kLanes];
            V::store(o, offsets);
            for (int j = 0; j < kLanes; ++j) scalar::copy_pixel<T, C>(base + o[j], out + j * C);
        }
    }

    template <class T, int C>
    static void sample_line(const LineState& line, void* dst, int n) {
        if (n < 2 * kLanes || !lanes_fit(line, n)) return scalar::sample_line<T, C>(line, dst, n);
        T* out = static_cast<T*>(dst);

        // The first block's points, stepped one by one.
        alignas(32) int32_t offset[kLanes], error[kLanes];
        const uint8_t* at = line.at;
        uint32_t e = line.error;
        for (int j = 0; j < kLanes; ++j) {
            offset[j] = static_cast<int32_t>(at - line.at);
            error[j] = static_cast<int32_t>(e);
            if (j + 1 < kLanes) scalar::line_step(line, at, e);
        }
        // kLanes steps subtract 2 * minor * kLanes = q * (2 * major) + r.
        const uint64_t advance = static_cast<uint64_t>(line.two_minor) * kLanes;
        const int32_t q = static_cast<int32_t>(advance / line.two_major);
        const I r = V::set32(static_cast<int32_t>(advance % line.two_major));
        const I two_major = V::set32(static_cast<int32_t>(line.two_major));
        const I minor_step = V::set32(static_cast<int32_t>(line.minor_step));
        const I block_step = V::set32(static_cast<int32_t>(kLanes * line.major_step + q * line.minor_step));

        I off = V::load(offset), err = V::load(error);
        int k = 0;
        for (; k + kLanes <= n; k += kLanes, out += kLanes * C) {
            copy_block<T, C>(line.at, off, out);
            err = V::sub32(err, r);
            const I negative = V::template srai32<31>(err);
            err = V::add32(err, V::and_(negative, two_major));
            off = V::add32(off, V::add32(block_step, V::and_(negative, minor_step)));
        }
        if (k < n) {
            V::store(offset, off);
            V::store(error, err);
            LineState rest = line;
            rest.at = line.at + offset[0];
            rest.error = static_cast<uint32_t>(error[0]);
            scalar::sample_line<T, C>(rest, out, n - k);
        }
    }

    static constexpr SamplerKernels table() {
        SamplerKernels k{};
#define ORUCV_SAMPLERS_KERNEL(name, shape, T, C) k.line[static_cast<int>(SampleLineFn::name)] = sample_line<T, C>;
        ORUCV_SAMPLERS_FUNCTIONS(ORUCV_SAMPLERS_KERNEL)
#undef ORUCV_SAMPLERS_KERNEL
        return k;
    }
};

}  // namespace
}  // namespace a6
}  // namespace orucv
