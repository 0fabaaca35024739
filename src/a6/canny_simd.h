// The Canny rows, written once over the vector operations of ops_<isa>.h:
// kBytes / 2 cells (one vector of 16-bit lanes) per step, the scalar twin
// for the tail. Internal linkage: each instruction-set file instantiates
// its own.
#pragma once

#include "a6/canny.h"
#include "a6/loops.h"

namespace orucv {
namespace a6 {
namespace {

template <class V>
struct CannyRows {
    using I = typename V::I;
    static constexpr int kCells = V::kBytes / 2;

    // |v| saturated: -32768 gives 32767.
    static I abs16(I v) { return V::max16(v, V::subs_s16(V::zero(), v)); }

    static void magnitude(const int16_t* dx, const int16_t* dy, int16_t* mag, int n) {
        const int i = vector_blocks<kCells>(
            n, [&](int j) { V::store(mag + j, V::adds_s16(abs16(V::load(dx + j)), abs16(V::load(dy + j)))); });
        scalar::magnitude(dx + i, dy + i, mag + i, n - i);
    }

    // A cell is a candidate above the low threshold; groups without one are
    // cleared at once. The direction tests c a - 4096 b > 0 take their
    // products in 32 bits.
    static void suppress(const CannySuppressRow& r) {
        const I low = V::set16(r.low), high = V::set16(r.high);
        const I weak = V::set16(kCannyWeak), edge = V::set16(kCannyEdge);
        const int16_t *up = r.up, *mid = r.mid, *down = r.down;
        uint8_t *map = r.map, *out = r.out;
        int x = 0;
        for (; x + kCells <= r.width; x += kCells) {
            const I m = V::load(mid + x);
            const I candidate = V::cmpgt16(m, low);
            if (V::movemask8(candidate) == 0) {
                V::store_half(map + x, V::zero());
                V::store_half(out + x, V::zero());
                continue;
            }
            const I dx = V::load(r.dx + x), dy = V::load(r.dy + x);
            const I a = abs16(dx), b = abs16(dy);
            const I horizontal = V::cmpgt16(V::madd2_sat16(a, b, kCannyTan22, -kCannyOne), V::zero());
            const I diagonal = V::cmpgt16(V::madd2_sat16(a, b, kCannyTan67, -kCannyOne), V::zero());
            const I opposite_signs = V::template srai16<15>(V::xor_(dx, dy));

            const I n_h = V::max16(V::load(mid + x - 1), V::load(mid + x + 1));
            const I n_v = V::max16(V::load(up + x), V::load(down + x));
            const I n_main = V::max16(V::load(up + x - 1), V::load(down + x + 1));
            const I n_anti = V::max16(V::load(up + x + 1), V::load(down + x - 1));
            const I n_d = V::select(opposite_signs, n_anti, n_main);
            const I n = V::select(horizontal, n_h, V::select(diagonal, n_d, n_v));

            const I kept = V::and_(candidate, V::cmpgt16(m, n));
            const I strong = V::and_(kept, V::cmpgt16(m, high));
            const I code = V::select(strong, edge, V::and_(kept, weak));
            V::store_half(map + x, V::narrow_u8(code));
            const I strong8 = V::narrow_s8(strong);
            V::store_half(out + x, strong8);

            for (unsigned bits = V::movemask8(strong8); bits; bits &= bits - 1)
                canny_push(r.stack, r.first_cell + static_cast<uint32_t>(x + __builtin_ctz(bits)));
        }
        scalar::suppress_from(r, x);
    }
};

}  // namespace
}  // namespace a6
}  // namespace orucv
