// The block policies of the flood fills' run primitives (BlockOps in
// floodfill_spans.h), written once over the vector operations of
// ops_<isa>.h (V): 32 bytes or 16 floats per block, in as many vectors as
// that takes. Internal linkage: each instruction-set file instantiates its
// own.
#pragma once

#include "a6/floodfill_spans.h"

namespace orucv {
namespace a6 {
namespace {

// NB bytes at p as vectors: NB is a multiple of kBytes, or half of it.
template <class V, int NB>
struct ByteRun {
    using I = typename V::I;
    static constexpr int kVectors = NB / V::kBytes;

    // Bit i set where byte i equals the byte of v.
    static uint32_t equal(const uint8_t* p, I v) {
        if constexpr (kVectors == 0) return V::movemask8(V::cmpeq8(V::load_half(p), v)) & ((1u << NB) - 1);
        uint32_t bits = 0;
        for (int k = 0; k < kVectors; ++k) bits |= V::movemask8(V::cmpeq8(V::load(p + k * V::kBytes), v)) << (k * V::kBytes);
        return bits;
    }
    static void set(uint8_t* p, I v) {
        if constexpr (kVectors == 0) return V::store_half(p, v);
        for (int k = 0; k < kVectors; ++k) V::store(p + k * V::kBytes, v);
    }
};

template <class V>
struct ByteBlocks {
    using I = typename V::I;
    using Run = ByteRun<V, 32>;
    static constexpr int N = 32;

    struct FixedC {
        I value, fill;
    };
    static FixedC fixed_const(const Qual8u& q) { return {V::set8(q.value), V::set8(q.fill)}; }
    static uint32_t match(const uint8_t* p, const FixedC& c) { return Run::equal(p, c.value); }
    static void store(uint8_t* p, const FixedC& c) { Run::set(p, c.fill); }

    // c - lo <= n <= c + hi as (c -sat n) <= lo and (n -sat c) <= hi.
    struct RangeC {
        I lo, hi;
    };
    static RangeC range_const(const Range8u& r) { return {V::set8(r.lo8), V::set8(r.hi8)}; }
    static uint32_t in_range(const uint8_t* n, const uint8_t* c, const RangeC& g) {
        uint32_t bits = 0;
        for (int k = 0; k < N / V::kBytes; ++k) {
            const I a = V::load(n + k * V::kBytes), b = V::load(c + k * V::kBytes);
            const I over = V::or_(V::subs_u8(V::subs_u8(b, a), g.lo), V::subs_u8(V::subs_u8(a, b), g.hi));
            bits |= V::movemask8(V::cmpeq8(over, V::zero())) << (k * V::kBytes);
        }
        return bits;
    }

    static uint32_t free(const uint8_t* m) { return Run::equal(m, V::zero()); }
    static void mark(uint8_t* m) { Run::set(m, V::set8(kVisited)); }

    static I value_const(uint8_t v) { return V::set8(v); }
    static void store_value(uint8_t* p, I v) { Run::set(p, v); }
};

template <class V>
struct FloatBlocks {
    using F = typename V::F;
    using Mask = ByteRun<V, 16>;  // the mask bytes of a block
    static constexpr int N = 16;
    static constexpr int L = V::kFloats;

    // A NaN seed matches the unordered lanes; any other seed the equal ones.
    struct FixedC {
        F value, fill, nan;
    };
    static FixedC fixed_const(const Qual32f& q) {
        return {V::setf(q.value), V::setf(q.fill), V::castf(V::set32(q.nan ? -1 : 0))};
    }
    static uint32_t match(const float* p, const FixedC& c) {
        uint32_t bits = 0;
        for (int k = 0; k < N / L; ++k) {
            const F v = V::loadf(p + k * L);
            const F nan = V::andf(V::cmpunordf(v, v), c.nan);
            bits |= V::movemaskf(V::orf(V::cmpeqf(v, c.value), nan)) << (k * L);
        }
        return bits;
    }
    static void store(float* p, const FixedC& c) { store_value(p, c.fill); }

    struct RangeC {
        F h, w;
    };
    static RangeC range_const(const Range32f& r) { return {V::setf(r.h), V::setf(r.w)}; }
    // Fails where |n + h - c| > w, or where exactly one of n, c is a NaN.
    static uint32_t in_range(const float* n, const float* c, const RangeC& g) {
        uint32_t fails = 0;
        for (int k = 0; k < N / L; ++k) {
            const F a = V::loadf(n + k * L), b = V::loadf(c + k * L);
            const F d = V::absf(V::subf(V::addf(a, g.h), b));
            const F odd_nan = V::xorf(V::cmpunordf(a, a), V::cmpunordf(b, b));
            fails |= V::movemaskf(V::orf(V::cmpgtf(d, g.w), odd_nan)) << (k * L);
        }
        return ~fails & 0xFFFFu;
    }

    static uint32_t free(const uint8_t* m) { return Mask::equal(m, V::zero()); }
    static void mark(uint8_t* m) { Mask::set(m, V::set8(kVisited)); }

    static F value_const(float v) { return V::setf(v); }
    static void store_value(float* p, F v) {
        for (int k = 0; k < N / L; ++k) V::storef(p + k * L, v);
    }
};

template <class V>
constexpr FloodFillKernels floodfill_table() {
    return span_fills<BlockOps<ByteBlocks<V>, FloatBlocks<V>>>();
}

}  // namespace
}  // namespace a6
}  // namespace orucv
