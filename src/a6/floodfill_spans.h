// The span fills of the flood fills, written once over a set of run
// primitives (find a qualifying pixel, grow a run left or right while
// filling or marking it): ScalarOps supplies them pixel by pixel (the
// portable twin, and the tails of the others), BlockOps a block of N pixels
// at a time from the block policies of floodfill_simd.h. Blocks never reach
// outside the row or the segment and the pixels left over go through the
// scalar primitives, so every path visits the same runs.
//
// Internal linkage: the scalar file and each instruction-set file keep their
// own instances.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "a6/floodfill.h"
#include "a6/segment_stack.h"
#include "core/bytes.h"
#include "core/floats.h"
#include "core/rows.h"

namespace orucv {
namespace a6 {

namespace {

// ---- Admission tests ------------------------------------------------------

// Fixed range: the seed's value and the fill value. For floats a NaN seed
// takes the NaN pixels; any other seed the pixels comparing equal to it.
struct Qual8u {
    uint8_t value, fill;
};
struct Qual32f {
    float value, fill;
    bool nan;
};
inline Qual8u make_qual(uint8_t seed, uint8_t fill) { return {seed, fill}; }
inline Qual32f make_qual(float seed, float fill) { return {seed, fill, seed != seed}; }
inline bool qualifies(uint8_t p, const Qual8u& q) { return p == q.value; }
inline bool qualifies(float p, const Qual32f& q) { return q.nan ? p != p : p == q.value; }

// Gradient range. 8u: n is in range of c when n + lo - c, as an unsigned
// 32-bit number, is at most lo + hi. 32f: |n + h - c| <= w in single
// precision (a NaN there does not fail), and n, c both NaN or both not.
struct Range8u {
    uint32_t lo, sum;
    uint8_t lo8, hi8;
};
struct Range32f {
    float h, w;
};
inline Range8u make_range(int lo, int hi) {
    return {static_cast<uint32_t>(lo), static_cast<uint32_t>(lo + hi), static_cast<uint8_t>(lo),
            static_cast<uint8_t>(hi)};
}
inline Range32f make_range(float lo, float hi) { return {(lo - hi) * 0.5f, (lo + hi) * 0.5f}; }

inline bool in_range(uint8_t n, uint8_t c, const Range8u& r) {
    return static_cast<uint32_t>(n) + r.lo - c <= r.sum;
}
inline float clear_sign(float f) { return bits_float(float_bits(f) & 0x7FFFFFFFu); }
inline bool in_range(float n, float c, const Range32f& r) {
    const float d = (n + r.h) - c;
    return !(clear_sign(d) > r.w) && ((n != n) == (c != c));
}

template <class T>
struct PixelTraits;
template <>
struct PixelTraits<uint8_t> {
    using Qual = Qual8u;
    using Range = Range8u;
};
template <>
struct PixelTraits<float> {
    using Qual = Qual32f;
    using Range = Range32f;
};

inline void fill_values(uint8_t* p, int n, uint8_t v) { fill_bytes(p, v, static_cast<size_t>(n)); }
inline void fill_values(float* p, int n, float v) {
    for (int i = 0; i < n; ++i) p[i] = v;
}

// ---- Scalar run primitives ------------------------------------------------

// The portable twin, and the tails of the SIMD primitives.
struct ScalarOps {
    // First x in [x, xe] whose pixel qualifies, or xe + 1.
    template <class T, class Q>
    static int find(const T* row, int x, int xe, const Q& q) {
        while (x <= xe && !qualifies(row[x], q)) ++x;
        return x;
    }
    // Fills from x rightwards while pixels qualify; returns the first
    // column not filled.
    template <class T, class Q>
    static int fill_right(T* row, int x, int width, const Q& q) {
        while (x < width && qualifies(row[x], q)) row[x++] = q.fill;
        return x;
    }
    // Fills from x leftwards while pixels qualify; returns the last column
    // filled (x + 1 when none).
    template <class T, class Q>
    static int fill_left(T* row, int x, const Q& q) {
        while (x >= 0 && qualifies(row[x], q)) row[x--] = q.fill;
        return x + 1;
    }

    // Gradient: is n[x] admitted from the popped segment cur[L..R]?
    template <bool kEight, class T, class R>
    static bool admitted(const T* n, const T* cur, int x, int L, int Rt, const R& r) {
        if (!kEight) return in_range(n[x], cur[x], r);
        bool ok = false;
        if (x - 1 >= L && x - 1 <= Rt) ok = ok || in_range(n[x], cur[x - 1], r);
        if (x >= L && x <= Rt) ok = ok || in_range(n[x], cur[x], r);
        if (x + 1 >= L && x + 1 <= Rt) ok = ok || in_range(n[x], cur[x + 1], r);
        return ok;
    }
    // First free, admitted x in [x, xe] (4-connectivity: [x, xe] lies in
    // [L, R]), or xe + 1.
    template <bool kEight, class T, class R>
    static int find_candidate(const T* n, const uint8_t* m, const T* cur, int x, int xe, int L, int Rt,
                              const R& r) {
        while (x <= xe && !(m[x] == 0 && admitted<kEight>(n, cur, x, L, Rt, r))) ++x;
        return x;
    }
    // Grows a run rightwards from x, marking it: a free pixel joins when in
    // range of its left neighbour or, while inside [L, R], admitted from the
    // popped segment. The mask frame stops it at the image's edge. Returns
    // the run's last column.
    template <bool kEight, class T, class R>
    static int grow_right(const T* n, uint8_t* m, const T* cur, int x, int L, int Rt, int width, const R& r) {
        for (; x <= Rt; ++x) {
            if (m[x] != 0 || !(in_range(n[x], n[x - 1], r) || admitted<kEight>(n, cur, x, L, Rt, r))) return x - 1;
            m[x] = kVisited;
        }
        return grow_right_free(n, m, x, width, r);
    }
    template <class T, class R>
    static int grow_right_free(const T* n, uint8_t* m, int x, int /*width*/, const R& r) {
        while (m[x] == 0 && in_range(n[x], n[x - 1], r)) m[x++] = kVisited;
        return x - 1;
    }
    // Grows a run leftwards from x: a free pixel joins when in range of its
    // right neighbour only. Returns the run's first column.
    template <class T, class R>
    static int grow_left(const T* n, uint8_t* m, int x, const R& r) {
        while (m[x] == 0 && in_range(n[x], n[x + 1], r)) m[x--] = kVisited;
        return x + 1;
    }
    static void mark(uint8_t* m, int n) { fill_bytes(m, kVisited, static_cast<size_t>(n)); }
    template <class T>
    static void write(T* p, int n, T v) {
        fill_values(p, n, v);
    }
};

// ---- Block run primitives -------------------------------------------------

// The run primitives over blocks of N pixels, for the instruction-set
// files, from a block policy per pixel type with:
//   N                      pixels per block (at most 32)
//   fixed_const(q)         constants of a fixed fill
//   match(p, c)            bit i set when p[i] qualifies
//   store(p, c)            p[0..N) = fill value
//   range_const(r)         constants of a gradient range
//   in_range(n, c, g)      bit i set when n[i] is in range of c[i]
//   free(m)                bit i set when mask byte m[i] is 0
//   mark(m)                m[0..N) = visited
//   value_const(v), store_value(p, c)   p[0..N) = v
// Blocks never reach outside the row or the segment; the pixels left over
// go through the scalar primitives, so the runs are the scalar ones.
template <class B8, class B32>
struct BlockOps {
    template <class T>
    using B = typename std::conditional<std::is_same<T, uint8_t>::value, B8, B32>::type;

    template <int N>
    static constexpr uint32_t full() {
        return N == 32 ? ~0u : (1u << N) - 1u;
    }
    // Number of set bits above the highest clear one of a not-full N-bit mask.
    template <int N>
    static int leading_ones(uint32_t bits) {
        return __builtin_clz(~bits & full<N>()) - (32 - N);
    }

    template <class T, class Q>
    static int find(const T* row, int x, int xe, const Q& q) {
        using Bk = B<T>;
        const auto c = Bk::fixed_const(q);
        for (; x <= xe - (Bk::N - 1); x += Bk::N)
            if (const uint32_t bits = Bk::match(row + x, c)) return x + __builtin_ctz(bits);
        return ScalarOps::find(row, x, xe, q);
    }
    template <class T, class Q>
    static int fill_right(T* row, int x, int width, const Q& q) {
        using Bk = B<T>;
        const auto c = Bk::fixed_const(q);
        for (; x <= width - Bk::N; x += Bk::N) {
            const uint32_t bits = Bk::match(row + x, c);
            if (bits != full<Bk::N>()) {
                const int k = __builtin_ctz(~bits);
                fill_values(row + x, k, q.fill);
                return x + k;
            }
            Bk::store(row + x, c);
        }
        return ScalarOps::fill_right(row, x, width, q);
    }
    template <class T, class Q>
    static int fill_left(T* row, int x, const Q& q) {
        using Bk = B<T>;
        const auto c = Bk::fixed_const(q);
        for (; x >= Bk::N - 1; x -= Bk::N) {
            T* block = row + x - (Bk::N - 1);
            const uint32_t bits = Bk::match(block, c);
            if (bits != full<Bk::N>()) {
                const int k = leading_ones<Bk::N>(bits);
                fill_values(row + x - k + 1, k, q.fill);
                return x - k + 1;
            }
            Bk::store(block, c);
        }
        return ScalarOps::fill_left(row, x, q);
    }

    // Admission of a block n[x..x+N) from the popped segment; the caller
    // makes sure every tap lies inside it.
    template <bool kEight, class Bk, class G, class T>
    static uint32_t admitted(const T* n, const T* cur, const G& g) {
        uint32_t bits = Bk::in_range(n, cur, g);
        if (kEight) bits |= Bk::in_range(n, cur - 1, g) | Bk::in_range(n, cur + 1, g);
        return bits;
    }

    template <bool kEight, class T, class R>
    static int find_candidate(const T* n, const uint8_t* m, const T* cur, int x, int xe, int L, int Rt, const R& r) {
        using Bk = B<T>;
        constexpr int K = kEight ? 1 : 0;
        const auto g = Bk::range_const(r);
        const int last_block = (xe < Rt - K ? xe : Rt - K) - (Bk::N - 1);
        while (x <= xe) {
            if (x - K >= L && x <= last_block) {
                const uint32_t bits = Bk::free(m + x) & admitted<kEight, Bk>(n + x, cur + x, g);
                if (bits) return x + __builtin_ctz(bits);
                x += Bk::N;
            } else {
                if (m[x] == 0 && ScalarOps::admitted<kEight>(n, cur, x, L, Rt, r)) return x;
                ++x;
            }
        }
        return x;
    }

    template <bool kEight, class T, class R>
    static int grow_right(const T* n, uint8_t* m, const T* cur, int x, int L, int Rt, int width, const R& r) {
        using Bk = B<T>;
        constexpr int K = kEight ? 1 : 0;
        const auto g = Bk::range_const(r);
        const int last_block = Rt - K - (Bk::N - 1);
        while (x <= Rt) {
            if (x - K >= L && x <= last_block) {
                const uint32_t bits =
                    Bk::free(m + x) & (Bk::in_range(n + x, n + x - 1, g) | admitted<kEight, Bk>(n + x, cur + x, g));
                if (bits != full<Bk::N>()) {
                    const int k = __builtin_ctz(~bits);
                    ScalarOps::mark(m + x, k);
                    return x + k - 1;
                }
                Bk::mark(m + x);
                x += Bk::N;
            } else {
                if (m[x] != 0 || !(in_range(n[x], n[x - 1], r) || ScalarOps::admitted<kEight>(n, cur, x, L, Rt, r)))
                    return x - 1;
                m[x++] = kVisited;
            }
        }
        return grow_right_free(n, m, x, width, r);
    }

    // Past the popped segment; n[x - 1] is in the run, so x >= 1. The loads
    // stop at the row's end, the frame stops the scalar tail.
    template <class T, class R>
    static int grow_right_free(const T* n, uint8_t* m, int x, int width, const R& r) {
        using Bk = B<T>;
        const auto g = Bk::range_const(r);
        for (; x <= width - Bk::N; x += Bk::N) {
            const uint32_t bits = Bk::free(m + x) & Bk::in_range(n + x, n + x - 1, g);
            if (bits != full<Bk::N>()) {
                const int k = __builtin_ctz(~bits);
                ScalarOps::mark(m + x, k);
                return x + k - 1;
            }
            Bk::mark(m + x);
        }
        return ScalarOps::grow_right_free(n, m, x, width, r);
    }

    template <class T, class R>
    static int grow_left(const T* n, uint8_t* m, int x, const R& r) {
        using Bk = B<T>;
        const auto g = Bk::range_const(r);
        for (; x >= Bk::N - 1; x -= Bk::N) {
            const int b = x - (Bk::N - 1);
            const uint32_t bits = Bk::free(m + b) & Bk::in_range(n + b, n + b + 1, g);
            if (bits != full<Bk::N>()) {
                const int k = leading_ones<Bk::N>(bits);
                ScalarOps::mark(m + x - k + 1, k);
                return x - k + 1;
            }
            Bk::mark(m + b);
        }
        return ScalarOps::grow_left(n, m, x, r);
    }

    template <class T>
    static void write(T* p, int count, T v) {
        using Bk = B<T>;
        const auto c = Bk::value_const(v);
        int i = 0;
        for (; i <= count - Bk::N; i += Bk::N) Bk::store_value(p + i, c);
        fill_values(p + i, count - i, v);
    }
};

// ---- The segment loop ----------------------------------------------------

// Pops segments until the stack and the pending marks are exhausted:
// visit(segment, lo, hi) examines the neighbouring rows of a popped segment
// over columns lo..hi (one column more on each side for 8-connectivity).
// Returns how often the pending marks were collected.
template <bool kEight, class Pending, class Visit>
inline int drain(SegmentStack& stack, Pending& pending, RegionBox& box, int width, Visit visit) {
    int collections = 0;
    for (;;) {
        Segment s;
        while (stack.pop(s)) {
            box.add(s);
            const int lo = kEight ? (s.left > 0 ? s.left - 1 : 0) : s.left;
            const int hi = kEight ? (s.right < width - 1 ? s.right + 1 : width - 1) : s.right;
            visit(s, lo, hi);
        }
        if (!pending.any()) return collections;
        pending.collect(stack);
        ++collections;
    }
}

// ---- Fixed-range fill -----------------------------------------------------

// Walks columns xs..xe of a row next to the popped segment: each qualifying
// pixel is filled and grown into a maximal run, which is pushed (or marked
// pending) with the popped segment as its parent.
template <class Ops, class T, class Q>
inline void fixed_scan(T* row, int y, int xs, int xe, int width, const Q& q, const Segment& parent, int dir,
                       SegmentStack& stack, PendingBits& pending, int64_t& area) {
    int x = xs;
    while (x <= xe) {
        x = Ops::find(row, x, xe, q);
        if (x > xe) return;
        const int r = Ops::fill_right(row, x, width, q) - 1;
        const int l = Ops::fill_left(row, x - 1, q);
        area += r - l + 1;
        if (!stack.push(y, l, r, parent.left, parent.right, dir)) pending.mark(y, l, r);
        if (r >= xe - 1) return;
        x = r + 2;  // r + 1 does not qualify
    }
}

// The image is the visited set: a filled pixel holds the fill value, which
// never qualifies.
template <class Ops, class T, bool kEight>
void fixed_fill(FillJob<T>& job) {
    using Q = typename PixelTraits<T>::Qual;
    const int w = job.width, h = job.height;
    const size_t bitmap = static_cast<size_t>(bitmap_bytes(w, h));
    SegmentStack stack(job.buffer, job.buffer_bytes - bitmap);
    PendingBits pending(job.buffer + (job.buffer_bytes - bitmap), w, h);
    T* const image = job.image;
    const int step = job.step;

    T* seed_row = row_at(image, step, job.seed_y);
    const Q q = make_qual(seed_row[job.seed_x], job.new_value);
    seed_row[job.seed_x] = q.fill;
    const int r0 = Ops::fill_right(seed_row, job.seed_x + 1, w, q) - 1;
    const int l0 = Ops::fill_left(seed_row, job.seed_x - 1, q);
    int64_t area = r0 - l0 + 1;
    // An empty parent range just right of the run: both neighbouring rows
    // are scanned over the whole run.
    stack.push(job.seed_y, l0, r0, r0 + 1, r0, job.seed_y == h - 1 ? -1 : 1);

    RegionBox box;
    // The closures take their values by copy: byte stores may alias anything
    // reached through a reference.
    const auto visit = [&stack, &pending, &area, image, step, w, h, q](const Segment& s, int lo, int hi) {
        const int ya = s.y - s.dir;  // away from the parent
        if (static_cast<unsigned>(ya) < static_cast<unsigned>(h))
            fixed_scan<Ops>(row_at(image, step, ya), ya, lo, hi, w, q, s, s.dir, stack, pending, area);
        const int yb = s.y + s.dir;  // the parent's row, outside its range
        if (static_cast<unsigned>(yb) < static_cast<unsigned>(h)) {
            T* row = row_at(image, step, yb);
            fixed_scan<Ops>(row, yb, lo, s.prev_left - 1, w, q, s, -s.dir, stack, pending, area);
            fixed_scan<Ops>(row, yb, s.prev_right + 1, hi, w, q, s, -s.dir, stack, pending, area);
        }
    };
    const int collections = drain<kEight>(stack, pending, box, w, visit);
    job.result = FillResult{area, box.min_x, box.min_y, box.max_x, box.max_y, collections};
}

// ---- Gradient fill --------------------------------------------------------

template <class Ops, bool kEight, class T, class R>
inline void grad_scan(const T* n, uint8_t* m, const T* cur, int y, int xs, int xe, int width, const Segment& parent,
                      int dir, const R& r, SegmentStack& stack, PendingMask& pending) {
    int x = xs;
    while (x <= xe) {
        x = Ops::template find_candidate<kEight>(n, m, cur, x, xe, parent.left, parent.right, r);
        if (x > xe) return;
        m[x] = kVisited;
        const int right = Ops::template grow_right<kEight>(n, m, cur, x + 1, parent.left, parent.right, width, r);
        const int left = Ops::grow_left(n, m, x - 1, r);
        if (!stack.push(y, left, right, parent.left, parent.right, dir)) pending.mark(y, left, right);
        // Column right + 1 is tested again as a walk candidate: past the
        // popped segment's end the growth did not try the diagonal from it.
        x = right + 1;
    }
}

// The region is tracked in the byte mask; the image keeps its values until
// a popped segment's neighbours are examined, then takes the new value.
template <class Ops, class T, class Tol, bool kEight>
void grad_fill(GradJob<T, Tol>& job) {
    using R = typename PixelTraits<T>::Range;
    const int w = job.width, h = job.height;
    const size_t pitch = static_cast<size_t>(w) + 2;
    const size_t mask_size = static_cast<size_t>(mask_bytes(w, h));
    uint8_t* const mask = job.buffer;
    fill_bytes(mask, kVisited, pitch);
    for (int y = 0; y < h; ++y) {
        uint8_t* row = mask + pitch * static_cast<size_t>(y + 1);
        row[0] = kVisited;
        fill_bytes(row + 1, 0, static_cast<size_t>(w));
        row[w + 1] = kVisited;
    }
    fill_bytes(mask + pitch * (static_cast<size_t>(h) + 1), kVisited, pitch);

    SegmentStack stack(job.buffer + mask_size, job.buffer_bytes - mask_size);
    PendingMask pending(mask, pitch, w);
    const R range = make_range(job.min_delta, job.max_delta);
    T* const image = job.image;
    const int step = job.step;

    // The seed's run: plain neighbour growth (no parent segment).
    const T* seed_row = row_at(image, step, job.seed_y);
    uint8_t* seed_mask = pending.row(job.seed_y);
    seed_mask[job.seed_x] = kVisited;
    const int r0 = Ops::grow_right_free(seed_row, seed_mask, job.seed_x + 1, w, range);
    const int l0 = Ops::grow_left(seed_row, seed_mask, job.seed_x - 1, range);
    // An empty parent range just right of the run: the rows above and below
    // are scanned over the whole run (and one column beyond it for
    // 8-connectivity); a row outside the image is frame only.
    stack.push(job.seed_y, l0, r0, r0 + 1, r0, 1);

    RegionBox box;
    int64_t area = 0;
    const T fill = job.new_value;
    const auto visit = [&stack, &pending, &area, image, step, w, h, range, fill](const Segment& s, int lo, int hi) {
        T* cur = row_at(image, step, s.y);
        // Rows outside the image hold only frame in the mask; they are
        // skipped without touching the image.
        const int ya = s.y - s.dir;
        if (static_cast<unsigned>(ya) < static_cast<unsigned>(h))
            grad_scan<Ops, kEight>(row_at(image, step, ya), pending.row(ya), cur, ya, lo, hi, w, s, s.dir, range,
                                   stack, pending);
        const int yb = s.y + s.dir;
        if (static_cast<unsigned>(yb) < static_cast<unsigned>(h)) {
            const T* n = row_at(image, step, yb);
            uint8_t* m = pending.row(yb);
            grad_scan<Ops, kEight>(n, m, cur, yb, lo, s.prev_left - 1, w, s, -s.dir, range, stack, pending);
            grad_scan<Ops, kEight>(n, m, cur, yb, s.prev_right + 1, hi, w, s, -s.dir, range, stack, pending);
        }
        Ops::write(cur + s.left, s.right - s.left + 1, fill);
        area += s.right - s.left + 1;
    };
    const int collections = drain<kEight>(stack, pending, box, w, visit);
    job.result = FillResult{area, box.min_x, box.min_y, box.max_x, box.max_y, collections};
}

// The table of one set of run primitives, filled by name.
template <class Ops>
constexpr FloodFillKernels span_fills() {
    FloodFillKernels k{};
    k.fill_8u[kFourConnected] = fixed_fill<Ops, uint8_t, false>;
    k.fill_8u[kEightConnected] = fixed_fill<Ops, uint8_t, true>;
    k.fill_32f[kFourConnected] = fixed_fill<Ops, float, false>;
    k.fill_32f[kEightConnected] = fixed_fill<Ops, float, true>;
    k.grad_8u[kFourConnected] = grad_fill<Ops, uint8_t, int, false>;
    k.grad_8u[kEightConnected] = grad_fill<Ops, uint8_t, int, true>;
    k.grad_32f[kFourConnected] = grad_fill<Ops, float, float, false>;
    k.grad_32f[kEightConnected] = grad_fill<Ops, float, float, true>;
    return k;
}

}  // namespace
}  // namespace a6
}  // namespace orucv
