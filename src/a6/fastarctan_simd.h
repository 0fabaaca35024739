// The fast arctangent, written once over the vector operations of
// ops_<isa>.h. Each vector goes through three stages: the quotient t (a
// long division) with the masks that need the magnitudes, the quadratic,
// and the three corrections. The loop runs them as a software pipeline,
// two vectors ahead in the division, so the long chain of one vector never
// holds up the next; the last n mod kFloats elements are copied into a
// vector whose spare lanes hold 1.0f, computed by the same code and copied
// back, so every element gets the same arithmetic wherever it stands. No
// alignment is needed, and the angles may replace either input (every vector
// is read before its angles are stored). Internal linkage: each
// instruction-set file instantiates its own.
#pragma once

#include "a6/fastarctan.h"
#include "core/bytes.h"

namespace orucv {
namespace a6 {
namespace {

template <class V>
struct FastArctanRows {
    using F = typename V::F;
    static constexpr int kLanes = V::kFloats;

    // The first stage: t = min(ax, ay) / max(ax, ay, floor), 1 where it is
    // NaN (two infinities; NaN inputs are replaced at the end), whether
    // ay > ax, and whether either component is NaN.
    struct Quotient {
        F t, steep, nan;
    };
    static Quotient quotient(const float* y, const float* x) {
        const F vy = V::loadf(y), vx = V::loadf(x);
        const F ax = V::absf(vx), ay = V::absf(vy);
        const F big = V::maxf(V::maxf(ax, ay), V::setf(kArctanFloor));
        return {V::minf(V::divf(V::minf(ax, ay), big), V::setf(1.0f)), V::cmpltf(ax, ay), V::cmpunordf(vx, vy)};
    }

    static F quadratic(F t) {
        return V::subf(V::mulf(V::addf(V::mulf(V::setf(kArctanT2), t), V::setf(kArctanT1)), t), V::setf(kArctanT0));
    }

    // 90 - p where ay > ax, then 180 - a where x < 0, then 360 - a where
    // y < 0; the quiet NaN where a component is NaN.
    static F corrected(F p, const Quotient& q, const float* y, const float* x) {
        const F a = V::selectf(q.steep, V::subf(V::setf(90.0f), p), p);
        const F b = V::selectf(V::cmpltf(V::loadf(x), V::zerof()), V::subf(V::setf(180.0f), a), a);
        const F c = V::selectf(V::cmpltf(V::loadf(y), V::zerof()), V::subf(V::setf(360.0f), b), b);
        return V::selectf(q.nan, V::castf(V::set32(static_cast<int>(kQuietNanBits))), c);
    }

    static F angles_of(const float* y, const float* x) {
        const Quotient q = quotient(y, x);
        return corrected(quadratic(q.t), q, y, x);
    }

    static void angles(const float* y, const float* x, float* dst, int n) {
        constexpr int L = kLanes;
        int i = 0;
        if (n >= 3 * L) {
            // Vector i is corrected while i + 1 is in the quadratic and i + 2
            // in the division.
            Quotient q0 = quotient(y, x), q1 = quotient(y + L, x + L);
            F p0 = quadratic(q0.t);
            for (; i + 3 * L <= n; i += L) {
                const Quotient q2 = quotient(y + i + 2 * L, x + i + 2 * L);
                const F p1 = quadratic(q1.t);
                V::storef(dst + i, corrected(p0, q0, y + i, x + i));
                q0 = q1;
                q1 = q2;
                p0 = p1;
            }
            V::storef(dst + i, corrected(p0, q0, y + i, x + i));
            V::storef(dst + i + L, corrected(quadratic(q1.t), q1, y + i + L, x + i + L));
            i += 2 * L;
        }
        for (; i + L <= n; i += L) V::storef(dst + i, angles_of(y + i, x + i));
        if (i == n) return;
        alignas(32) float ty[L], tx[L], ta[L];
        V::storef(ty, V::setf(1.0f));
        V::storef(tx, V::setf(1.0f));
        const size_t bytes = sizeof(float) * static_cast<size_t>(n - i);
        copy_bytes(ty, y + i, bytes);
        copy_bytes(tx, x + i, bytes);
        V::storef(ta, angles_of(ty, tx));
        copy_bytes(dst + i, ta, bytes);
    }

    static constexpr FastArctanKernels table() {
        FastArctanKernels k{};
        k.angles = angles;
        return k;
    }
};

}  // namespace
}  // namespace a6
}  // namespace orucv
