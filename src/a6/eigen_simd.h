// The corner rows, written once over the vector operations of ops_<isa>.h:
// the twin's arithmetic lane by lane, its branches as masks chosen in the
// same order. Internal linkage: each instruction-set file instantiates its
// own.
#pragma once

#include "a6/eigen.h"

namespace orucv {
namespace a6 {
namespace {

template <class V>
struct EigenRows {
    using I = typename V::I;
    using F = typename V::F;
    static constexpr int kLanes = V::kFloats;

    // Right to left, a vector at a time; the twin finishes the left end.
    static void products_16s(float* xx, float* xy, float* yy, int n) {
        const int rest = n % kLanes;
        for (int x = n - kLanes; x >= rest; x -= kLanes) {
            const F dx = V::to_float(V::load_widen4_s16(reinterpret_cast<const int16_t*>(xx) + x));
            const F dy = V::to_float(V::load_widen4_s16(reinterpret_cast<const int16_t*>(yy) + x));
            V::storef(xx + x, V::mulf(dx, dx));
            V::storef(xy + x, V::mulf(dx, dy));
            V::storef(yy + x, V::mulf(dy, dy));
        }
        scalar::products_16s(xx, xy, yy, n, rest);
    }

    static void products_32f(float* xx, float* xy, float* yy, int n) {
        int x = 0;
        for (; x + kLanes <= n; x += kLanes) {
            const F dx = V::loadf(xx + x), dy = V::loadf(yy + x);
            V::storef(xx + x, V::mulf(dx, dx));
            V::storef(xy + x, V::mulf(dx, dy));
            V::storef(yy + x, V::mulf(dy, dy));
        }
        scalar::products_32f(xx, xy, yy, n, x);
    }

    static void min_eigen(const float* sxx, const float* sxy, const float* syy, float* dst, int n, float k) {
        const F half = V::setf(0.5f), scale = V::setf(k);
        int x = 0;
        for (; x + kLanes <= n; x += kLanes) {
            const F p = V::mulf(half, V::loadf(sxx + x)), q = V::mulf(half, V::loadf(syy + x));
            const F b = V::loadf(sxy + x), t = V::subf(p, q);
            const F root = V::sqrtf(V::addf(V::mulf(b, b), V::mulf(t, t)));
            V::storef(dst + x, V::quiet_nans(V::mulf(V::subf(V::addf(p, q), root), scale)));
        }
        scalar::min_eigen(sxx, sxy, syy, dst, n, k, x);
    }

    // Unit vector (b / m, u / m) with m = sqrt(u u + b b), 2^-23 for 0.
    static void unit(F b, F u, F& vx, F& vy) {
        F m = V::sqrtf(V::addf(V::mulf(u, u), V::mulf(b, b)));
        m = V::selectf(V::cmpeqf(m, V::zerof()), V::setf(scalar::kEigenEpsilon), m);
        vx = V::divf(b, m);
        vy = V::divf(u, m);
    }

    static void eigen_vv(const float* sxx, const float* sxy, const float* syy, float* dst, int n, float k) {
        const F scale = V::setf(k), zero = V::zerof(), one = V::setf(1.0f);
        int x = 0;
        for (; x + kLanes <= n; x += kLanes) {
            const F a = V::mulf(scale, V::loadf(sxx + x));
            const F c = V::mulf(scale, V::loadf(syy + x));
            const F b = V::mulf(scale, V::loadf(sxy + x));
            const F t = V::mulf(V::setf(scalar::kEigenThreshold), V::maxf(a, c));
            const F flat = V::cmpltf(V::minf(a, c), t);          // case 1
            const F aligned = V::cmpltf(V::absf(b), t);          // case 2
            const F det = V::subf(V::mulf(a, c), V::mulf(b, b));
            const F degenerate = V::cmpltf(det, t);              // case 3
            const F s = V::addf(a, c);
            const F d = V::sqrtf(V::subf(V::mulf(s, s), V::mulf(V::setf(4.0f), det)));
            F v[6];
            v[0] = V::mulf(V::addf(s, d), V::setf(0.5f));
            v[1] = V::mulf(V::subf(s, d), V::setf(0.5f));
            unit(b, V::subf(v[0], a), v[2], v[3]);
            unit(b, V::subf(v[1], a), v[4], v[5]);
            const F axes[6] = {a, c, one, zero, zero, one};
            const F zeroed = V::castf(V::or_(V::cast(flat), V::andnot(V::cast(aligned), V::cast(degenerate))));
            alignas(32) float lanes[6][kLanes];
            for (int i = 0; i < 6; ++i)
                V::storef(lanes[i], V::quiet_nans(V::selectf(zeroed, zero, V::selectf(aligned, axes[i], v[i]))));
            float* out = dst + 6 * x;
            for (int j = 0; j < kLanes; ++j)
                for (int i = 0; i < 6; ++i) scalar::st(out + 6 * j + i, lanes[i][j]);
        }
        scalar::eigen_vv(sxx, sxy, syy, dst, n, k, x);
    }

    static constexpr EigenKernels table() {
        EigenKernels k{};
        k.products_16s = products_16s;
        k.products_32f = products_32f;
        k.min_eigen = min_eigen;
        k.eigen_vv = eigen_vv;
        return k;
    }
};

}  // namespace
}  // namespace a6
}  // namespace orucv
