// The vector kernels of template matching, written once over the vector
// operations of ops_<isa>.h (V):
//  - bytes: 16-bit products (or squared differences) summed in pairs into
//    32-bit lanes, widened to 64 bits before a lane can overflow; a column
//    is summed several blocks at a time, each template piece widened once
//    for all of them;
//  - floats: eight double lanes (core/lanes.h order, as the scalar twin);
//    columns of templates whose width is a multiple of 8 are summed row by
//    row, several blocks at a time, each strip row converted once for every
//    block that holds it, against the template converted to double once per
//    column;
//  - scores: a vector of doubles at a time, a batch of blocks after its
//    sums, the reciprocal square roots of several vectors interleaved.
// What the width of V decides (MatchVectors: how many blocks go together,
// and whether the strip advance and the grouped sums of byte images gather
// strided rows into vectors, which pays only with 64-bit lanes to spare) is
// chosen there; everything else is the same code for every set.
//
// Internal linkage: each instruction-set file instantiates its own.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "a6/matchtemplate.h"

namespace orucv {
namespace a6 {
namespace {

// Bytes of a run summed in 32-bit lanes before they are widened to 64 bits:
// a lane gains at most 2 * 2 * 255^2 per 16 bytes, so 65536 bytes stay below
// 2^30.
constexpr int kByteGroup = 65536;

// Longest run whose total fits a signed 32-bit lane: 32768 * 255^2 < 2^31.
// The column kernels sum blocks up to this length in 32 bits throughout.
constexpr int kExactBlock = 32768;

// Longest template the float column kernels convert to double on the stack
// (8 KB); longer ones are summed run by run.
constexpr int kStackTemplate = 1024;

// Blocks summed before their scores are taken, so that the reciprocal
// square roots of a batch run side by side rather than behind the sums.
constexpr int kBatch = 64;

// 16 bytes read from offset k (k = 0..16) keep the last k bytes; the last
// 16 are ones.
alignas(32) constexpr uint8_t kTailMask16[32] = {0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,
                                                 0,    0,    0,    0,    0,    0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
                                                 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};

// Bits of 1.5 * 2^52: an integer below 2^51 in magnitude added to them gives
// the bits of 1.5 * 2^52 plus that integer.
constexpr long long kInt64ToDoubleBits = 0x4338000000000000ll;

template <class V>
struct MatchVectors {
    using I = typename V::I;
    using F = typename V::F;
    using D = typename V::D;

    // ---- What the width decides
    static constexpr bool kWide = V::kBytes >= 32;
    // Byte blocks summed together (besides groups of 4), float blocks summed
    // row by row together, score vectors whose square roots interleave:
    // as many as the registers hold (eight on 32-bit x86).
    static constexpr int kByteBlocks = kWide ? 8 : 4;
    static constexpr int kFloatRows = kWide ? 4 : sizeof(void*) == 8 ? 3 : 2;
    static constexpr int kScoreGroups = kWide ? 8 : 1;
    // Vectors of 16-bit lanes per 16 bytes, of doubles per eight lanes.
    static constexpr int kPiece = 32 / V::kBytes;
    static constexpr int kLanes = 8 / V::kDoubles;

    // ---- Bytes

    // 16 bytes (in the low 16 bytes of x) as 16-bit lanes.
    template <class T>
    static void widen(I x, I* w) {
        I lo, hi;
        if constexpr (std::is_signed<T>::value) V::widen_s8(x, lo, hi);
        else V::widen_u8(x, lo, hi);
        w[0] = lo;
        if constexpr (kPiece == 2) w[1] = hi;
    }
    // 16 bytes from memory as 16-bit lanes: one vector loaded and split in
    // halves, or half a vector's bytes widened as they are loaded.
    template <class T>
    static void load_piece(const T* p, I* w) {
        if constexpr (kPiece == 2) {
            widen<T>(V::load(p), w);
        } else if constexpr (std::is_signed<T>::value) {
            w[0] = V::load_widen_s8(p);
        } else {
            w[0] = V::load_widen_u8(p);
        }
    }

    // Products or squared differences of 16 pieces, summed in pairs.
    template <bool kSq>
    static I madd(I s, I t) {
        if (kSq) {
            const I d = V::sub16(s, t);
            return V::madd16(d, d);
        }
        return V::madd16(s, t);
    }
    template <bool kSq>
    static I add_piece(I acc, const I* s, const I* t) {
        I m = madd<kSq>(s[0], t[0]);
        for (int p = 1; p < kPiece; ++p) m = V::add32(m, madd<kSq>(s[p], t[p]));
        return V::add32(acc, m);
    }

    // The last piece of a run of n >= 8 bytes, as 16 bytes of which only
    // those set in tail_mask count: the 16 bytes ending at the run's end when
    // n >= 16 (after the whole 16-byte pieces), else the first 8 and the last
    // 8 bytes.
    static I tail_bytes(const void* run, int n) {
        const uint8_t* p = static_cast<const uint8_t*>(run);
        return n >= 16 ? V::load16(p + n - 16) : V::load8x2(p, p + n - 8);
    }
    static I tail_mask(int n) {
        if (n >= 16) return V::load16(kTailMask16 + (n & 15));
        return V::or_(V::load16(kTailMask16 + n - 8), V::load8x2(kTailMask16 + 16, kTailMask16));
    }

    // Sum of bytes: eight bytes into a 64-bit lane at a time (sad); signed
    // bytes are moved to the unsigned range first and the offset taken off at
    // the end.
    template <class T>
    static int64_t sum_bytes(const T* p, int n) {
        const I flip = V::set8(std::is_signed<T>::value ? 0x80 : 0);
        I acc = V::zero();
        int i = 0;
        for (; i + V::kBytes <= n; i += V::kBytes) acc = V::add64(acc, V::sad_u8(V::xor_(V::load(p + i), flip), V::zero()));
        int64_t s = V::reduce_add64(acc);
        if (std::is_signed<T>::value) s -= 128 * static_cast<int64_t>(i);
        return s + scalar::sum_bytes(p + i, n - i);
    }

    // Sum of products or squared differences of one run of any length.
    template <class T, bool kSq>
    static int64_t run_bytes(const T* a, const T* b, int n) {
        I acc64 = V::zero();
        int i = 0;
        const int main = n & ~(V::kBytes - 1);
        while (i < main) {
            const int stop = main - i > kByteGroup ? i + kByteGroup : main;
            I acc = V::zero();
            for (; i < stop; i += V::kBytes)
                for (int h = 0; h < V::kBytes; h += 16) {
                    I s[kPiece], t[kPiece];
                    load_piece(a + i + h, s);
                    load_piece(b + i + h, t);
                    acc = add_piece<kSq>(acc, s, t);
                }
            I lo, hi;
            V::widen_s32(acc, lo, hi);
            acc64 = V::add64(V::add64(acc64, lo), hi);
        }
        const int64_t tail = kSq ? scalar::sqdiff_bytes(a + i, b + i, n - i) : scalar::corr_bytes(a + i, b + i, n - i);
        return V::reduce_add64(acc64) + tail;
    }

    // Block sums of a column of byte runs, several blocks at a time in 32-bit
    // lanes: 16-byte pieces, then the tail piece with the bytes already
    // counted masked out (of the template, and for squared differences of the
    // strip too). Runs short of 8 bytes, and runs long enough for a 32-bit
    // total to overflow, go block by block through the run kernel. Totals are
    // exact in double.
    template <class T, bool kSq>
    class ByteBlocks {
    public:
        ByteBlocks(int width, int height, const T* tpl)
            : width_(width), n_(width * height), tpl_(tpl), main_(n_ >= 16 ? n_ & ~15 : 0) {
            if (n_ >= 8) {
                mask_ = tail_mask(n_);
                widen<T>(V::and_(tail_bytes(tpl, n_), mask_), tail_t_);
            }
        }

        void sums(const T* runs, int count, double* totals) const {
            if (n_ < 8 || n_ > kExactBlock) {
                for (int y = 0; y < count; ++y) totals[y] = static_cast<double>(run_bytes<T, kSq>(at(runs, y), tpl_, n_));
                return;
            }
            int y = 0;
            if constexpr (kByteBlocks > 4)
                for (; y + kByteBlocks <= count; y += kByteBlocks) blocks<kByteBlocks>(at(runs, y), totals + y);
            for (; y + 4 <= count; y += 4) blocks<4>(at(runs, y), totals + y);
            for (; y < count; ++y) {
                const T* s = at(runs, y);
                I a = V::zero();
                for (int i = 0; i < main_; i += 16) {
                    I w[kPiece], t[kPiece];
                    load_piece(s + i, w);
                    load_piece(tpl_ + i, t);
                    a = add_piece<kSq>(a, w, t);
                }
                totals[y] = V::reduce_add32(tail(s, a));
            }
        }

    private:
        const T* at(const T* runs, int y) const { return runs + static_cast<ptrdiff_t>(y) * width_; }

        // G (a multiple of 4) consecutive blocks, each template piece widened
        // once.
        template <int G>
        void blocks(const T* runs, double* totals) const {
            const T* s[G];
            I a[G];
            for (int g = 0; g < G; ++g) s[g] = at(runs, g), a[g] = V::zero();
            for (int i = 0; i < main_; i += 16) {
                I t[kPiece];
                load_piece(tpl_ + i, t);
                for (int g = 0; g < G; ++g) {
                    I w[kPiece];
                    load_piece(s[g] + i, w);
                    a[g] = add_piece<kSq>(a[g], w, t);
                }
            }
            for (int g = 0; g < G; ++g) a[g] = tail(s[g], a[g]);
            for (int g = 0; g < G; g += 4) V::totals32x4(a[g], a[g + 1], a[g + 2], a[g + 3], totals + g);
        }

        I tail(const T* s, I acc) const {
            if (main_ == n_) return acc;
            I v = tail_bytes(s, n_);
            if (kSq) v = V::and_(v, mask_);
            I w[kPiece];
            widen<T>(v, w);
            return add_piece<kSq>(acc, w, tail_t_);
        }

        int width_, n_;
        const T* tpl_;
        int main_;
        I mask_ = V::zero();
        I tail_t_[kPiece] = {};
    };

    // ---- Floats

    // Eight lanes: lane j in element j % kDoubles of x[j / kDoubles].
    struct Lanes {
        D x[kLanes];
    };

    static void load8(const float* p, D* d) {
        for (int q = 0; q < kLanes; ++q) d[q] = V::load_widen_f(p + q * V::kDoubles);
    }

    template <class Term>
    static D term(D a, D b) {
        if constexpr (std::is_same<Term, scalar::SumTerm>::value) {
            return a;
        } else if constexpr (std::is_same<Term, scalar::SqDiffTerm>::value) {
            const D d = V::subd(a, b);
            return V::muld(d, d);
        } else {
            return V::muld(a, b);
        }
    }

    // The lanes' total, halves folded: ((l0 + l4) + (l2 + l6)) + ((l1 + l5) + (l3 + l7)).
    static double combine(Lanes l) {
        for (int half = kLanes / 2; half > 0; half /= 2)
            for (int j = 0; j < half; ++j) l.x[j] = V::addd(l.x[j], l.x[j + half]);
        return V::reduce_addd(l.x[0]);
    }

    template <class Term>
    static double run_floats(const float* a, const float* b, int n) {
        Lanes l;
        for (D& x : l.x) x = V::zerod();
        int i = 0;
        for (; i + 8 <= n; i += 8) {
            D da[kLanes], db[kLanes];
            load8(a + i, da);
            load8(b + i, db);
            for (int q = 0; q < kLanes; ++q) l.x[q] = V::addd(l.x[q], term<Term>(da[q], db[q]));
        }
        if (i == n) return combine(l);
        double lanes[8];
        for (int q = 0; q < kLanes; ++q) V::stored(lanes + q * V::kDoubles, l.x[q]);
        scalar::add_lanes<Term>(lanes, a, b, i, n);
        return scalar::combine_lanes(lanes);
    }

    // Adds strip row s, converted once, to blocks lo..hi of a group (every
    // block when kAll), as their template rows r - g (t0 is template row r).
    // kWidth is the width when known at compile time, else 0. Inlined, so
    // that the accumulators stay in registers.
    template <class Term, int G, int kWidth, bool kAll>
    __attribute__((always_inline)) static void add_row(D (&acc)[G][kLanes], const float* s, const double* t0,
                                                       int width, int lo, int hi) {
        const int w = kWidth ? kWidth : width;
        for (int c = 0; c < w; c += 8) {
            D d[kLanes];
            load8(s + c, d);
            for (int g = 0; g < G; ++g) {
                if (!kAll && (g < lo || g > hi)) continue;
                const double* t = t0 - static_cast<ptrdiff_t>(g) * w + c;
                for (int q = 0; q < kLanes; ++q)
                    acc[g][q] = V::addd(acc[g][q], term<Term>(d[q], V::loadd(t + q * V::kDoubles)));
            }
        }
    }

    // G consecutive blocks of a template `width` (a multiple of 8) wide, row
    // by row: strip row r goes to every block g of the group that holds it,
    // as its template row r - g. Each lane of each block still takes its
    // elements in increasing order, so the sums equal the run kernel's.
    template <class Term, int G, int kWidth>
    static void blocks_by_rows(const float* runs, int width, int height, const double* tpl, double* out) {
        D acc[G][kLanes];
        for (int g = 0; g < G; ++g)
            for (int q = 0; q < kLanes; ++q) acc[g][q] = V::zerod();
        const int w = kWidth ? kWidth : width, rows = G + height - 1;
        auto edge = [&](int r) {
            const int lo = r - height + 1 > 0 ? r - height + 1 : 0, hi = r < G - 1 ? r : G - 1;
            add_row<Term, G, kWidth, false>(acc, runs + static_cast<ptrdiff_t>(r) * w,
                                            tpl + static_cast<ptrdiff_t>(r) * w, w, lo, hi);
        };
        int r = 0;
        for (; r < G - 1 && r < rows; ++r) edge(r);
        for (; r < height; ++r) {  // every block holds these rows
            // The template rows are the same from one strip row to the next,
            // one block on; the pointer is hidden from the compiler so that
            // it loads them again rather than keep them from row to row,
            // which leaves too few registers for the sums.
            const float* s = runs + static_cast<ptrdiff_t>(r) * w;
            const double* t0 = tpl + static_cast<ptrdiff_t>(r) * w;
            __asm__("" : "+r"(s), "+r"(t0));
            add_row<Term, G, kWidth, true>(acc, s, t0, w, 0, G - 1);
        }
        for (; r < rows; ++r) edge(r);
        for (int g = 0; g < G; ++g) {
            Lanes l;
            for (int q = 0; q < kLanes; ++q) l.x[q] = acc[g][q];
            out[g] = combine(l);
        }
    }

    // Block sums of a column of float runs.
    template <bool kSq>
    class FloatBlocks {
        using Term = typename std::conditional<kSq, scalar::SqDiffTerm, scalar::CorrTerm>::type;

    public:
        FloatBlocks(int width, int height, const float* tpl)
            : width_(width), height_(height), tpl_(tpl), by_rows_(width % 8 == 0 && width * height <= kStackTemplate) {
            if (by_rows_)
                for (int i = 0; i < width * height; i += V::kDoubles) V::stored(tpl_d_ + i, V::load_widen_f(tpl + i));
        }

        void sums(const float* runs, int count, double* totals) const {
            if (!by_rows_) {
                const int n = width_ * height_;
                for (int y = 0; y < count; ++y) totals[y] = run_floats<Term>(at(runs, y), tpl_, n);
                return;
            }
            switch (width_) {  // the widths of common templates unrolled
            case 8: by_rows<8>(runs, count, totals); break;
            case 16: by_rows<16>(runs, count, totals); break;
            case 32: by_rows<32>(runs, count, totals); break;
            default: by_rows<0>(runs, count, totals); break;
            }
        }

    private:
        const float* at(const float* runs, int y) const { return runs + static_cast<ptrdiff_t>(y) * width_; }

        template <int kWidth>
        void by_rows(const float* runs, int count, double* totals) const {
            int y = 0;
            for (; y + kFloatRows <= count; y += kFloatRows)
                blocks_by_rows<Term, kFloatRows, kWidth>(at(runs, y), width_, height_, tpl_d_, totals + y);
            rest<kWidth, kFloatRows - 1>(at(runs, y), count - y, totals + y);
        }
        // The last left < kFloatRows blocks.
        template <int kWidth, int G>
        void rest(const float* runs, int left, double* totals) const {
            if constexpr (G > 0) {
                if (left == G) blocks_by_rows<Term, G, kWidth>(runs, width_, height_, tpl_d_, totals);
                else rest<kWidth, G - 1>(runs, left, totals);
            }
        }

        int width_, height_;
        const float* tpl_;
        bool by_rows_;
        alignas(32) double tpl_d_[kStackTemplate];
    };

    // ---- Scores (the scalar formulas, lane by lane)

    static D load_sums(const double* p) { return V::loadd(p); }
    // Exact for |v| < 2^51: the integer is added into the significand of
    // 1.5 * 2^52.
    static D load_sums(const int64_t* p) {
        const I magic = V::set64(kInt64ToDoubleBits);
        return V::subd(V::castd(V::add64(V::load(p), magic)), V::castd(magic));
    }

    // Reciprocal square roots of G vectors, their steps interleaved so that
    // the G dependency chains overlap (inlined, so the vectors stay in
    // registers).
    template <int G>
    __attribute__((always_inline)) static void rsqrt_xG(D* v) {
        D half_a[G], y[G];
        for (int g = 0; g < G; ++g) {
            const D a = V::addd(V::absd(v[g]), V::setd(scalar::kFloatEpsilon));
            const I b = V::cast(V::narrow_d(a));
            const I yb = V::template srli32<1>(V::sub32(V::set32(static_cast<int>(scalar::kRsqrtMagic)), b));
            y[g] = V::widen_lo_f(V::castf(yb));
            half_a[g] = V::muld(V::setd(0.5), a);
        }
        for (int i = 0; i < 4; ++i)
            for (int g = 0; g < G; ++g)
                y[g] = V::muld(y[g], V::subd(V::setd(1.5), V::muld(V::muld(half_a[g], y[g]), y[g])));
        for (int g = 0; g < G; ++g) v[g] = y[g];
    }

    // Scores of blocks y .. y + G kDoubles - 1 from their sums; block y + j
    // goes to out[j * step].
    template <int M, int G, class Acc>
    static void scores_xG(const double* totals, int y, const Acc* sum, const Acc* sum_sq, const ScoreConstants& c,
                          float* out, int step) {
        constexpr int kD = V::kDoubles;
        D r[G], den[G];
        for (int g = 0; g < G; ++g) {
            const int yg = y + kD * g;
            const D b = V::loadd(totals + kD * g);
            if (M == kSqDiff || M == kCorr) {
                r[g] = b;
            } else if (M == kSqDiffNormed || M == kCorrNormed) {
                r[g] = V::muld(b, V::setd(c.r_tpl));
                den[g] = load_sums(sum_sq + yg);
            } else {
                const D s = load_sums(sum + yg);
                const D sk = V::muld(s, V::setd(c.k));
                r[g] = V::addd(b, V::muld(sk, V::setd(c.neg_t)));
                if (M == kCoeffNormed) {
                    r[g] = V::muld(r[g], V::setd(c.r_tpl));
                    den[g] = V::subd(load_sums(sum_sq + yg), V::muld(V::muld(s, s), V::setd(c.k)));
                }
            }
        }
        if (method_normed(M)) {
            rsqrt_xG<G>(den);
            for (int g = 0; g < G; ++g) r[g] = V::muld(r[g], den[g]);
        }
        for (int g = 0; g < G; ++g) V::storef_strided(out + static_cast<ptrdiff_t>(kD * g) * step, step, V::narrow_d(r[g]));
    }

    // Squared differences S2 - 2 C + T2 of the first k of m product totals;
    // returns k.
    static int from_products(double* totals, int m, const int64_t* sum_sq, double t2) {
        int k = 0;
        for (; k + V::kDoubles <= m; k += V::kDoubles) {
            const D c = V::loadd(totals + k);
            V::stored(totals + k, V::addd(V::subd(load_sums(sum_sq + k), V::addd(c, c)), V::setd(t2)));
        }
        return k;
    }

    // Scores of blocks y0 .. y0 + count - 1 from their sums; block y0 + k
    // goes to out[k * step].
    template <int M, class Acc>
    static void batch_scores(const double* totals, int y0, int count, const Acc* sum, const Acc* sum_sq,
                             const ScoreConstants& c, float* out, int step) {
        constexpr int kD = V::kDoubles;
        int k = 0;
        if constexpr (kScoreGroups > 1)
            for (; k + kScoreGroups * kD <= count; k += kScoreGroups * kD)
                scores_xG<M, kScoreGroups>(totals + k, y0 + k, sum, sum_sq, c, out + static_cast<ptrdiff_t>(k) * step,
                                           step);
        for (; k + kD <= count; k += kD)
            scores_xG<M, 1>(totals + k, y0 + k, sum, sum_sq, c, out + static_cast<ptrdiff_t>(k) * step, step);
        for (; k < count; ++k)
            out[static_cast<ptrdiff_t>(k) * step] = scalar::score_at<M>(totals[k], sum, sum_sq, y0 + k, c);
    }

    // ---- Strip advance and grouped sums of byte images (wide sets)

    // Adds the deltas of rows i.. (one per 64-bit lane) to their row sums and
    // extends the patch sums: patch y = patch y - 1 + row y + height - 1 -
    // row y - 1, as a prefix sum over the lanes on top of `run`, the last
    // patch sum in every lane, which is returned updated. Row y - 1 is read
    // after the new row sums are stored, so short templates see the current
    // column's values.
    static I add_row_sums(int64_t* row, I delta, int64_t* patch, int i, int y, I run) {
        const I r = V::add64(V::load(row + i), delta);
        V::store(row + i, r);
        const I p = V::add64(run, V::prefix_add64(V::sub64(r, V::load(row + y - 1))));
        V::store(patch + y, p);
        return V::broadcast_last64(p);
    }

    // One row of the strip advance: the entering element goes into the row's
    // last slot, whose old content (the element leaving the next row) becomes
    // `leaving`; returns the entering element.
    template <class T>
    static int advance_row(T* slot, const char* src, int src_step, int i, int rows, T& leaving) {
        const int e = *reinterpret_cast<const T*>(src + static_cast<ptrdiff_t>(src_step) * i);
        if (i + 1 < rows) leaving = *slot;
        *slot = static_cast<T>(e);
        return e;
    }

    // The strip advance of byte images with the scalar twin's arithmetic:
    // rows up to the one completing the first patch one at a time, then a
    // vector of 64-bit lanes of rows at a time, their deltas gathered into
    // registers and added to the row and patch sums with vector prefix sums
    // (integer sums are exact, so the order of the additions is free).
    template <class T, bool kSum, bool kSq>
    static void advance_bytes(T* view, const T* src_col, int src_step, int rows, int width, int height,
                              int64_t* row_sum, int64_t* row_sq, int64_t* patch_sum, int64_t* patch_sq) {
        constexpr int R = V::kBytes / 8;
        const char* src = reinterpret_cast<const char*>(src_col);
        T leaving = view[-1];
        T* slot = view + width - 1;
        int i = 0;
        auto one_row = [&](int i) {
            const int o = leaving, e = advance_row(slot, src, src_step, i, rows, leaving);
            slot += width;
            if (kSum) row_sum[i] += e - o;
            if (kSq) row_sq[i] += (o + e) * (e - o);
        };
        for (; i < rows && i < height; ++i) one_row(i);
        if (i < height) return;  // no complete patch
        int64_t a = 0, b = 0;
        for (int j = 0; j < height; ++j) {
            if (kSum) a += row_sum[j];
            if (kSq) b += row_sq[j];
        }
        if (kSum) patch_sum[0] = a;
        if (kSq) patch_sq[0] = b;
        I run_sum = V::set64(a), run_sq = V::set64(b);
        for (; i + R <= rows; i += R) {
            int64_t d[R], q[R];
            for (int u = 0; u < R; ++u) {
                const int o = leaving, e = advance_row(slot, src, src_step, i + u, rows, leaving);
                slot += width;
                d[u] = e - o;
                q[u] = (o + e) * (e - o);
            }
            const int y = i - height + 1;
            if (kSum) run_sum = add_row_sums(row_sum, V::set64_lanes(d), patch_sum, i, y, run_sum);
            if (kSq) run_sq = add_row_sums(row_sq, V::set64_lanes(q), patch_sq, i, y, run_sq);
        }
        for (; i < rows; ++i) {
            one_row(i);
            const int y = i - height + 1;
            if (kSum) patch_sum[y] = patch_sum[y - 1] + row_sum[i] - row_sum[y - 1];
            if (kSq) patch_sq[y] = patch_sq[y - 1] + row_sq[i] - row_sq[y - 1];
        }
    }

    // kFloats bytes as 32-bit lanes.
    static I load_widen(const uint8_t* p) { return V::load_widen4_u8(p); }
    static I load_widen(const int8_t* p) { return V::load_widen4_s8(p); }

    // Patch sums of eight columns for destination rows y0 .. y0 + n - 1
    // (n <= 8), given as eight-lane vectors rows[0..n), stored column by
    // column as 64-bit.
    static void store_patches(const I* rows, int n, int64_t* patch, int count, int y0) {
        I p[8];
        for (int r = 0; r < 8; ++r) p[r] = r < n ? rows[r] : V::zero();
        V::transpose32(p);
        for (int k = 0; k < 8; ++k) {
            int64_t* out = patch + static_cast<ptrdiff_t>(k) * count + y0;
            I lo, hi;
            V::widen_s32(p[k], lo, hi);
            if (n == 8) {
                V::store(out, lo);
                V::store(out + 4, hi);
            } else {
                alignas(32) int64_t tmp[8];
                V::store(tmp, lo);
                V::store(tmp + 4, hi);
                for (int r = 0; r < n; ++r) out[r] = tmp[r];
            }
        }
    }

    // Grouped row and patch sums of eight columns (see GroupSums), eight
    // 32-bit lanes to a vector: row deltas of the eight columns from two
    // loads per row, their prefix sums across the lanes, then the patch sums
    // down the rows, eight columns per vector, transposed into columns.
    // Fewer than eight columns (the last group of a band, whose loads would
    // pass the row's end) go through the twin.
    template <class T, bool kSum, bool kSq>
    static void group_sums_8(const T* src, int src_step, int rows, int width, int height, int x0, int ncols,
                             int32_t* row_sum8, int32_t* row_sq8, int64_t* patch_sum, int64_t* patch_sq) {
        static_assert(V::kFloats == 8, "eight columns to a vector");
        if (ncols < 8) {
            scalar::group_sums<T, kSum, kSq>(src, src_step, rows, width, height, x0, ncols, row_sum8, row_sq8,
                                             patch_sum, patch_sq);
            return;
        }
        for (int i = 0; i < rows; ++i) {
            const T* r = reinterpret_cast<const T*>(reinterpret_cast<const char*>(src) + static_cast<ptrdiff_t>(src_step) * i);
            const I o = load_widen(r + x0 - 1), e = load_widen(r + x0 + width - 1);
            const I d = V::sub32(e, o);
            if (kSum) V::store(row_sum8 + 8 * i, V::add32(V::set32(row_sum8[8 * i + 7]), V::prefix_add32(d)));
            if (kSq) {
                const I q = V::mullo32(V::add32(o, e), d);
                V::store(row_sq8 + 8 * i, V::add32(V::set32(row_sq8[8 * i + 7]), V::prefix_add32(q)));
            }
        }
        const int count = rows - height + 1;
        I ps = V::zero(), pq = V::zero();
        for (int j = 0; j < height; ++j) {
            if (kSum) ps = V::add32(ps, V::load(row_sum8 + 8 * j));
            if (kSq) pq = V::add32(pq, V::load(row_sq8 + 8 * j));
        }
        I vs[8], vq[8];
        for (int y0 = 0; y0 < count; y0 += 8) {
            const int n = count - y0 < 8 ? count - y0 : 8;
            for (int r = 0; r < n; ++r) {
                const int y = y0 + r;
                if (y > 0) {
                    if (kSum)
                        ps = V::add32(ps, V::sub32(V::load(row_sum8 + 8 * (y + height - 1)), V::load(row_sum8 + 8 * (y - 1))));
                    if (kSq)
                        pq = V::add32(pq, V::sub32(V::load(row_sq8 + 8 * (y + height - 1)), V::load(row_sq8 + 8 * (y - 1))));
                }
                vs[r] = ps;
                vq[r] = pq;
            }
            if (kSum) store_patches(vs, n, patch_sum, count, y0);
            if (kSq) store_patches(vq, n, patch_sq, count, y0);
        }
    }

    // ---- The kernel set (see block_table)

    template <class T>
    static typename MatchAcc<T>::type sum(const T* p, int n) {
        if constexpr (sizeof(T) == 4) return run_floats<scalar::SumTerm>(p, p, n);
        else return sum_bytes(p, n);
    }
    template <class T>
    static typename MatchAcc<T>::type sqdiff(const T* a, const T* b, int n) {
        if constexpr (sizeof(T) == 4) return run_floats<scalar::SqDiffTerm>(a, b, n);
        else return run_bytes<T, true>(a, b, n);
    }
    template <class T>
    static typename MatchAcc<T>::type corr(const T* a, const T* b, int n) {
        if constexpr (sizeof(T) == 4) return run_floats<scalar::CorrTerm>(a, b, n);
        else return run_bytes<T, false>(a, b, n);
    }

    template <class T, int M>
    static void column_scores(const T* runs, int width, int height, int count, const T* tpl,
                              const typename MatchAcc<T>::type* sum, const typename MatchAcc<T>::type* sum_sq,
                              const ScoreConstants& c, float* out, int out_step) {
        // Byte sums are exact integers, so the squared differences of a
        // normalised match follow from the products and the sums of squares
        // already at hand: D = S2 - 2 C + T2, every term exact in double.
        constexpr bool kFromProducts = sizeof(T) == 1 && M == kSqDiffNormed;
        constexpr bool kSq = method_sqdiff(M) && !kFromProducts;
        using Blocks = typename std::conditional<sizeof(T) == 4, FloatBlocks<kSq>, ByteBlocks<T, kSq>>::type;
        const Blocks blocks(width, height, tpl);
        alignas(32) double totals[kBatch];
        for (int y = 0; y < count; y += kBatch) {
            const int m = count - y < kBatch ? count - y : kBatch;
            blocks.sums(runs + static_cast<ptrdiff_t>(y) * width, m, totals);
            if constexpr (kFromProducts) {
                int k = from_products(totals, m, sum_sq + y, c.t2);
                for (; k < m; ++k) totals[k] = (scalar::to_double(sum_sq[y + k]) - 2.0 * totals[k]) + c.t2;
            }
            batch_scores<M>(totals, y, m, sum, sum_sq, c, out + static_cast<ptrdiff_t>(y) * out_step, out_step);
        }
    }

    // Floats, and byte images on narrow sets, advance with the scalar twin:
    // without 64-bit lanes to spare, gathering the deltas of strided rows
    // into registers costs more than it saves.
    template <class T, bool kSum, bool kSq>
    static void advance(T* view, const T* src_col, int src_step, int rows, int width, int height,
                        typename MatchAcc<T>::type* row_sum, typename MatchAcc<T>::type* row_sq,
                        typename MatchAcc<T>::type* patch_sum, typename MatchAcc<T>::type* patch_sq) {
        if constexpr (sizeof(T) == 1 && kWide && (kSum || kSq))
            advance_bytes<T, kSum, kSq>(view, src_col, src_step, rows, width, height, row_sum, row_sq, patch_sum,
                                        patch_sq);
        else
            scalar::advance<T, kSum, kSq>(view, src_col, src_step, rows, width, height, row_sum, row_sq, patch_sum,
                                          patch_sq);
    }

    template <class T, bool kSum, bool kSq>
    static void group_sums(const T* src, int src_step, int rows, int width, int height, int x0, int ncols,
                           int32_t* row_sum8, int32_t* row_sq8, int64_t* patch_sum, int64_t* patch_sq) {
        if constexpr (kWide && (kSum || kSq))
            group_sums_8<T, kSum, kSq>(src, src_step, rows, width, height, x0, ncols, row_sum8, row_sq8, patch_sum,
                                       patch_sq);
        else
            scalar::group_sums<T, kSum, kSq>(src, src_step, rows, width, height, x0, ncols, row_sum8, row_sq8,
                                             patch_sum, patch_sq);
    }
};

}  // namespace
}  // namespace a6
}  // namespace orucv
