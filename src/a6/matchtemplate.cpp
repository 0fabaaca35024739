// The template-matching engine: the scratch layout and the column sweep
// shared by all 18 match functions, and the scalar table.
//
// The source is re-laid into a strip whose row pitch is the template width,
// so that the template-sized blocks of one destination column are contiguous
// runs tplW elements apart. The destination is produced column by column:
// the strip advances by one source column (each row takes the new element in
// the slot the previous view's next row no longer needs), the per-row sums
// follow the advance, the patch sums run down the column, a column kernel
// gives the scores, which leave for the destination several columns at a
// time. Byte images, whose sums are exact, and float images under the
// methods without patch sums are swept so in bands of rows.
#include "a6/matchtemplate.h"

#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

#include "core/bytes.h"
#include "core/cpu.h"
#include "core/floats.h"
#include "core/rows.h"

namespace orucv {
namespace a6 {

// The twins themselves, compiled here without vectorisation.
const MatchKernels match_kernels_scalar = match_table<scalar::ScalarKernels>();

const MatchKernels& match_kernels() { return ORUCV_CHOOSE(match_kernels); }

namespace {

// n + 16 rounded up to a multiple of 32: every scratch block has at least
// 16 spare bytes and starts 32-byte aligned.
int64_t block_bytes(int64_t n) { return (n + 47) & ~int64_t(31); }

// Offsets of the scratch blocks from the aligned start, and the size the
// caller must provide (the 32 covers rounding the start up).
struct Layout {
    int64_t strip, block, row_sum, row_sq, patch, total;
};

// Destination rows per band of a byte image (see the sweep).
constexpr int kByteBand = 64;
// Longest run whose row and patch sums of squares fit 32 bits (255^2 each).
constexpr int kGroupedRunMax = 32768;

// False when the scratch would not fit an int.
bool match_layout(OruSize src, OruSize tpl, int element, bool coeff, bool normed, Layout* out) {
    const int64_t n = static_cast<int64_t>(tpl.width) * tpl.height;
    const int64_t strip = static_cast<int64_t>(src.height) * tpl.width + src.width;
    if (n > INT_MAX || strip > INT_MAX) return false;
    const int64_t rows = src.height - tpl.height + 1;
    Layout l;
    l.strip = block_bytes(n * element);
    l.block = l.strip + block_bytes(strip * element);
    int64_t end = l.block + block_bytes(rows * 8);
    l.row_sum = l.row_sq = l.patch = end;
    if (coeff || normed) {
        l.row_sq = l.row_sum + block_bytes(static_cast<int64_t>(src.height) * 8);
        l.patch = l.row_sq + block_bytes(static_cast<int64_t>(src.height) * 8);
        end = l.patch + block_bytes((int64_t(coeff) + int64_t(normed)) * rows * 8);
    }
    l.total = end + 32;
    if (l.total > INT_MAX) return false;
    *out = l;
    return true;
}

// Patch sums of every destination row of the column from the row values:
// the first adds rows 0..height-1, each next one adds the row entering at
// the bottom and subtracts the row leaving at the top. Integer sums are
// exact, so the difference of the two rows is taken first, off the chain
// of additions; double sums add, then subtract. Either sum may be absent.
inline void patch_sums(const int64_t* row_a, const int64_t* row_b, int height, int count, int64_t* out_a,
                       int64_t* out_b) {
    for (int pass = 0; pass < 2; ++pass) {
        const int64_t* row = pass ? row_b : row_a;
        int64_t* out = pass ? out_b : out_a;
        if (!row) continue;
        int64_t p = 0;
        for (int j = 0; j < height; ++j) p += row[j];
        out[0] = p;
        for (int y = 1; y < count; ++y) {
            p += row[y + height - 1] - row[y - 1];
            out[y] = p;
        }
    }
}

inline void patch_sums(const double* row_a, const double* row_b, int height, int count, double* out_a,
                       double* out_b) {
    double a = 0.0, b = 0.0;
    for (int j = 0; j < height; ++j) {
        if (row_a) a += row_a[j];
        if (row_b) b += row_b[j];
    }
    if (row_a) out_a[0] = a;
    if (row_b) out_b[0] = b;
    // Both running sums in one loop, so that their chains overlap.
    if (row_a && row_b) {
        for (int y = 1; y < count; ++y) {
            a = a + row_a[y + height - 1] - row_a[y - 1];
            b = b + row_b[y + height - 1] - row_b[y - 1];
            out_a[y] = a;
            out_b[y] = b;
        }
        return;
    }
    const double* row = row_a ? row_a : row_b;
    double* out = row_a ? out_a : out_b;
    double p = row_a ? a : b;
    for (int y = 1; y < count; ++y) {
        p = p + row[y + height - 1] - row[y - 1];
        out[y] = p;
    }
}

// Writes n held columns of scores into the destination: column k of them
// is ring slot (first + k) mod held, row y of a slot at y * held.
// NaN scores (from NaN pixels of float images) are stored as the one quiet
// NaN: which payload a sum of two NaNs keeps depends on the operand order,
// which the compiler chooses, so no path passes payloads through.
void write_held(const float* ring, int held, int first, int n, int rows, float* dst, int dstStep, bool may_be_nan) {
    if (first + n > held) {  // wraps around the ring
        write_held(ring, held, first, held - first, rows, dst, dstStep, may_be_nan);
        write_held(ring, held, 0, n - (held - first), rows, dst + (held - first), dstStep, may_be_nan);
        return;
    }
    for (int y = 0; y < rows; ++y) {
        const float* from = ring + static_cast<ptrdiff_t>(y) * held + first;
        float* to = row_at(dst, dstStep, y);
        if (n == 8) std::memcpy(to, from, 8 * sizeof(float));
        else if (n == 2) std::memcpy(to, from, 2 * sizeof(float));
        else copy_bytes(to, from, n * sizeof(float));
        if (may_be_nan)
            for (int i = 0; i < n; ++i) to[i] = canonical_nan(to[i]);
    }
}

// The scores of the last columns of a band wait in the block-result column
// (8 bytes per destination row) as a ring of `held` columns and go out in
// groups: pairs for whole columns; for bands groups of up to 8 columns (half
// a cache line per row), each written one group late so that its scores
// have left the store queue when they are read back.
class HeldScores {
public:
    // Scores of float images may be NaN; those of byte images never are.
    HeldScores(float* ring, int rows, int band, bool may_be_nan) : ring_(ring), may_be_nan_(may_be_nan) {
        if (band < rows) {
            const int most = 2 * rows / band;
            held_ = most < 16 ? most : 16;
            group_ = held_ / 2;
            delay_ = group_;
        } else {
            held_ = group_ = 2;
            delay_ = 0;
        }
    }
    int step() const { return held_; }
    float* column(int x) const { return ring_ + x % held_; }
    void start_band() { written_ = 0; }

    // Column x of `cols` has its scores in place.
    void done(int x, int cols, int count, float* dst, int dstStep) {
        const int ready = x + 1 == cols ? cols : x + 1 - delay_;
        if (((x + 1) % group_ == 0 || x + 1 == cols) && ready > written_) {
            write_held(ring_, held_, written_ % held_, ready - written_, count, dst + written_, dstStep, may_be_nan_);
            written_ = ready;
        }
    }

private:
    float* ring_;
    bool may_be_nan_;
    int held_, group_, delay_, written_ = 0;
};

// One call's sweep: the scratch carved into its blocks, the template
// constants and the kernels. Each band of destination rows (the whole
// column for float images with patch sums) is swept column by column.
template <class T, int M>
class Sweep {
    using Acc = typename MatchAcc<T>::type;
    static constexpr bool kCoeff = method_coeff(M), kNormed = method_normed(M);
    static constexpr int kSums = sums_index(kCoeff, kNormed);  // kernel index of the row sums

public:
    Sweep(const T* src, int srcStep, OruSize src_size, const T* tpl, int tplStep, OruSize tpl_size, float* dst,
          int dstStep, uint8_t* buffer, const Layout& layout)
        : src_(src), src_step_(srcStep), dst_(dst), dst_step_(dstStep), tw_(tpl_size.width), th_(tpl_size.height),
          cols_(src_size.width - tw_ + 1), rows_(src_size.height - th_ + 1),
          // Float sums depend on the order of the running sums, so float
          // images with patch sums are swept over whole columns, exactly as
          // the sums are defined. Byte sums are exact integers, which leaves
          // the order free, and methods without patch sums have none: there
          // the destination is swept in bands of rows, each band column by
          // column, so that a band's source rows, strip and sums stay in the
          // first-level cache from one column to the next and its scores
          // leave several columns at a time.
          band_((sizeof(T) == 1 || kSums == 0) && kByteBand < rows_ ? kByteBand : rows_),
          bk_(block_kernels<T>(match_kernels())),
          held_(reinterpret_cast<float*>(align32(buffer) + layout.block), rows_, band_, sizeof(T) == sizeof(float)) {
        uint8_t* base = align32(buffer);
        packed_ = reinterpret_cast<T*>(base);
        strip_ = reinterpret_cast<T*>(base + layout.strip);
        if (kCoeff) row_sum_ = reinterpret_cast<Acc*>(base + layout.row_sum);
        if (kNormed) row_sq_ = reinterpret_cast<Acc*>(base + layout.row_sq);
        if (kCoeff) patch_sum_ = reinterpret_cast<Acc*>(base + layout.patch);
        if (kNormed) patch_sq_ = reinterpret_cast<Acc*>(base + layout.patch) + (kCoeff ? rows_ : 0);
        for_each_row(tpl_size, copy_row, plane(tpl, tplStep), plane(packed_, pitch()));
        constants();
        plan_grouped(base + layout.row_sum, layout.total - 32 - layout.row_sum);
    }

    void run() {
        for (int y0 = 0; y0 < rows_; y0 += band_) {
            const int count = rows_ - y0 < band_ ? rows_ - y0 : band_;
            const T* src = row_at(src_, src_step_, y0);
            for_each_row({tw_, count + th_ - 1}, copy_row, plane(src, src_step_), plane(strip_, pitch()));
            held_.start_band();
            if (grouped_) grouped_band(src, count, row_at(dst_, dst_step_, y0));
            else band(src, count, row_at(dst_, dst_step_, y0));
        }
    }

private:
    static uint8_t* align32(uint8_t* p) { return p + (32 - reinterpret_cast<uintptr_t>(p) % 32) % 32; }
    // Template and strip rows lie tplW elements apart.
    int pitch() const { return tw_ * static_cast<int>(sizeof(T)); }
    static void copy_row(const T* from, T* to, int n) { copy_bytes(to, from, static_cast<size_t>(n) * sizeof(T)); }

    // T, T2, k and the template's reciprocal square root.
    void constants() {
        const int n = tw_ * th_;
        c_.k = 1.0 / (static_cast<double>(n) + scalar::kDoubleEpsilon);
        double t = 0.0;
        if (kCoeff) {
            t = scalar::to_double(bk_.sum(packed_, n));
            c_.neg_t = -t;
        }
        if (kNormed) {
            c_.t2 = scalar::to_double(bk_.corr(packed_, packed_, n));
            c_.r_tpl = scalar::rsqrt(kCoeff ? c_.t2 - t * t * c_.k : c_.t2);
        }
    }

    // Bands of byte images take their row and patch sums eight columns at a
    // time (32-bit row sums, 8 per row; patch sums column by column) when
    // the runs are short enough for 32-bit sums and the row-sum and
    // patch-sum blocks have room for them.
    void plan_grouped(uint8_t* blocks, int64_t room) {
        const int kinds = int(kCoeff) + int(kNormed);
        const size_t rows8 = 32 * (static_cast<size_t>(band_) + th_ - 1), cols8 = 64 * static_cast<size_t>(band_);
        grouped_ = sizeof(T) == 1 && band_ < rows_ && kinds > 0 && tw_ * th_ <= kGroupedRunMax &&
                   static_cast<int64_t>(kinds * (rows8 + cols8)) <= room;
        if (!grouped_) return;
        if (kCoeff) rows8_sum_ = reinterpret_cast<int32_t*>(blocks), blocks += rows8;
        if (kNormed) rows8_sq_ = reinterpret_cast<int32_t*>(blocks), blocks += rows8;
        if (kCoeff) cols_sum_ = reinterpret_cast<int64_t*>(blocks), blocks += cols8;
        if (kNormed) cols_sq_ = reinterpret_cast<int64_t*>(blocks);
    }

    // A band with the row and patch sums advanced column by column.
    void band(const T* src, int count, float* dst) {
        const int src_rows = count + th_ - 1;
        for (int i = 0; i < src_rows; ++i) {
            const T* r = strip_ + static_cast<ptrdiff_t>(i) * tw_;
            if (kCoeff) row_sum_[i] = bk_.sum(r, tw_);
            if (kNormed) row_sq_[i] = bk_.corr(r, r, tw_);
        }
        if (kCoeff || kNormed) patch_sums(row_sum_, row_sq_, th_, count, patch_sum_, patch_sq_);
        for (int x = 0; x < cols_; ++x) {
            T* view = strip_ + x;
            if (x > 0)
                bk_.advance[kSums](view, src + x + tw_ - 1, src_step_, src_rows, tw_, th_, row_sum_, row_sq_,
                                   patch_sum_, patch_sq_);
            score_column(view, count, patch_sum_, patch_sq_, x, dst);
        }
    }

    // A band of a byte image with grouped row and patch sums: the first
    // column's sums from the run kernels, then eight columns' at a time
    // while the strip advances column by column.
    void grouped_band(const T* src, int count, float* dst) {
        if constexpr (sizeof(T) == 1) {
            const int src_rows = count + th_ - 1;
            int64_t ps = 0, pq = 0;
            for (int i = 0; i < src_rows; ++i) {
                const T* r = strip_ + static_cast<ptrdiff_t>(i) * tw_;
                const int y = i - th_ + 1;
                if (kCoeff) {
                    rows8_sum_[8 * i + 7] = static_cast<int32_t>(bk_.sum(r, tw_));
                    ps += rows8_sum_[8 * i + 7] - (y > 0 ? rows8_sum_[8 * (y - 1) + 7] : 0);
                    if (y >= 0) cols_sum_[y] = ps;
                }
                if (kNormed) {
                    rows8_sq_[8 * i + 7] = static_cast<int32_t>(bk_.corr(r, r, tw_));
                    pq += rows8_sq_[8 * i + 7] - (y > 0 ? rows8_sq_[8 * (y - 1) + 7] : 0);
                    if (y >= 0) cols_sq_[y] = pq;
                }
            }
            for (int x = 0; x < cols_; ++x) {
                T* view = strip_ + x;
                const int slot = x == 0 ? 0 : (x - 1) % 8;
                if (x > 0) {
                    if (slot == 0)
                        bk_.group_sums[kSums](src, src_step_, src_rows, tw_, th_, x, cols_ - x < 8 ? cols_ - x : 8,
                                              rows8_sum_, rows8_sq_, cols_sum_, cols_sq_);
                    bk_.advance[sums_index(false, false)](view, src + x + tw_ - 1, src_step_, src_rows, tw_, th_, nullptr, nullptr, nullptr,
                                   nullptr);
                }
                const ptrdiff_t at = static_cast<ptrdiff_t>(slot) * count;
                score_column(view, count, kCoeff ? cols_sum_ + at : nullptr, kNormed ? cols_sq_ + at : nullptr, x, dst);
            }
        }
    }

    void score_column(const T* view, int count, const Acc* sum, const Acc* sum_sq, int x, float* dst) {
        bk_.column_scores[M](view, tw_, th_, count, packed_, sum, sum_sq, c_, held_.column(x), held_.step());
        held_.done(x, cols_, count, dst, dst_step_);
    }

    const T* src_;
    int src_step_;
    float* dst_;
    int dst_step_;
    int tw_, th_, cols_, rows_, band_;
    const BlockKernels<T>& bk_;
    HeldScores held_;
    ScoreConstants c_{};
    T* packed_ = nullptr;
    T* strip_ = nullptr;
    Acc *row_sum_ = nullptr, *row_sq_ = nullptr, *patch_sum_ = nullptr, *patch_sq_ = nullptr;
    bool grouped_ = false;
    int32_t *rows8_sum_ = nullptr, *rows8_sq_ = nullptr;
    int64_t *cols_sum_ = nullptr, *cols_sq_ = nullptr;
};

// Runs the sweep of method m, a compile-time constant inside.
template <class T, class... Args, int... M>
void sweep(MatchMethod m, std::integer_sequence<int, M...>, Args... args) {
    ((m == M ? Sweep<T, M>(args...).run() : void()), ...);
}

}  // namespace

int64_t match_buffer_bytes(MatchMethod m, OruSize src, OruSize tpl, int element) {
    Layout layout;
    if (!match_layout(src, tpl, element, method_coeff(m), method_normed(m), &layout)) return -1;
    return layout.total;
}

template <class T>
OruStatus match_template(MatchMethod m, const T* src, int srcStep, OruSize src_size, const T* tpl, int tplStep,
                         OruSize tpl_size, float* dst, int dstStep, uint8_t* buffer) {
    Layout layout;
    if (!match_layout(src_size, tpl_size, sizeof(T), method_coeff(m), method_normed(m), &layout)) return oruStsSize;
    sweep<T>(m, std::make_integer_sequence<int, kMatchMethods>(), src, srcStep, src_size, tpl, tplStep, tpl_size, dst,
             dstStep, buffer, layout);
    return oruStsOk;
}

template OruStatus match_template(MatchMethod, const uint8_t*, int, OruSize, const uint8_t*, int, OruSize, float*, int,
                                  uint8_t*);
template OruStatus match_template(MatchMethod, const int8_t*, int, OruSize, const int8_t*, int, OruSize, float*, int,
                                  uint8_t*);
template OruStatus match_template(MatchMethod, const float*, int, OruSize, const float*, int, OruSize, float*, int,
                                  uint8_t*);

}  // namespace a6
}  // namespace orucv
