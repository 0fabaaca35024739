// Template matching: argument checks, the scratch layout and the column
// sweep shared by all 18 match functions.
//
// The source is re-laid into a strip whose row pitch is the template width,
// so that the template-sized blocks of one destination column are contiguous
// runs tplW elements apart. The destination is produced column by column:
// the strip advances by one source column (each row takes the new element in
// the slot the previous view's next row no longer needs), the per-row sums
// follow the advance, the patch sums run down the column, a column kernel
// gives the scores, which leave for the destination several columns at a
// time.
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "a6/matchtemplate.h"
#include "core/checks.h"
#include "core/image.h"
#include "orucv.h"

using namespace orucv;
using a6::MatchAcc;

namespace {

// Copies n bytes without a library call (the library needs nothing from
// libc but malloc, free and __assert_fail): each moved word passes an empty
// asm, so the loop is not turned back into memcpy.
void copy_bytes(void* dst, const void* src, size_t n) {
    uint8_t* d = static_cast<uint8_t*>(dst);
    const uint8_t* s = static_cast<const uint8_t*>(src);
    size_t i = 0;
    for (; i + 8 <= n; i += 8) {
        uint64_t v;
        std::memcpy(&v, s + i, 8);
        __asm__("" : "+r"(v));
        std::memcpy(d + i, &v, 8);
    }
    for (; i < n; ++i) {
        unsigned v = s[i];
        __asm__("" : "+r"(v));
        d[i] = static_cast<uint8_t>(v);
    }
}

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

OruStatus check_match(const void* pSrc, int srcStep, OruSize src, const void* pTpl, int tplStep, OruSize tpl,
                      const void* pDst, int dstStep, const void* pBuffer, int element) {
    if (any_null({pSrc, pTpl, pDst, pBuffer})) return oruStsNullPointer;
    if (tpl.width < 1) return oruStsSize;
    if (tpl.height < 1 || src.width < tpl.width || src.height < tpl.height) return oruStsSize;
    if (tplStep < row_bytes(tpl.width, element)) return oruStsStep;
    if (srcStep < row_bytes(src.width, element)) return oruStsStep;
    if (dstStep < row_bytes(src.width - tpl.width + 1, sizeof(Oru32f))) return oruStsStep;
    if ((element == 4 && (tplStep % 4 != 0 || srcStep % 4 != 0)) || dstStep % 4 != 0) return oruStsStep;
    return oruStsOk;
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
void write_held(const float* ring, int held, int first, int n, int rows, float* dst, int dstStep) {
    if (first + n > held) {  // wraps around the ring
        write_held(ring, held, first, held - first, rows, dst, dstStep);
        write_held(ring, held, 0, n - (held - first), rows, dst + (held - first), dstStep);
        return;
    }
    for (int y = 0; y < rows; ++y) {
        const float* from = ring + static_cast<ptrdiff_t>(y) * held + first;
        float* to = row_at(dst, dstStep, y);
        if (n == 8) std::memcpy(to, from, 8 * sizeof(float));
        else if (n == 2) std::memcpy(to, from, 2 * sizeof(float));
        else copy_bytes(to, from, n * sizeof(float));
    }
}

template <class T, int M>
OruStatus match(const T* pSrc, int srcStep, OruSize src, const T* pTpl, int tplStep, OruSize tpl, Oru32f* pDst,
                int dstStep, Oru8u* pBuffer) {
    using Acc = typename MatchAcc<T>::type;
    constexpr bool coeff = a6::method_coeff(M), normed = a6::method_normed(M);
    constexpr int element = sizeof(T);
    if (OruStatus s = check_match(pSrc, srcStep, src, pTpl, tplStep, tpl, pDst, dstStep, pBuffer, element)) return s;
    Layout layout;
    if (!match_layout(src, tpl, element, coeff, normed, &layout)) return oruStsSize;

    const int tw = tpl.width, th = tpl.height, sh = src.height;
    const int n = tw * th, cols = src.width - tw + 1, rows = sh - th + 1;

    // Carve the scratch, its start rounded up to 32 bytes.
    uint8_t* base = pBuffer + ((32 - reinterpret_cast<uintptr_t>(pBuffer) % 32) % 32);
    T* packed = reinterpret_cast<T*>(base);
    T* strip = reinterpret_cast<T*>(base + layout.strip);
    Acc* row_sum = coeff ? reinterpret_cast<Acc*>(base + layout.row_sum) : nullptr;
    Acc* row_sq = normed ? reinterpret_cast<Acc*>(base + layout.row_sq) : nullptr;
    Acc* patch_sum = coeff ? reinterpret_cast<Acc*>(base + layout.patch) : nullptr;
    Acc* patch_sq = normed ? reinterpret_cast<Acc*>(base + layout.patch) + (coeff ? rows : 0) : nullptr;
    float* scores = reinterpret_cast<float*>(base + layout.block);

    for (int j = 0; j < th; ++j) copy_bytes(packed + static_cast<ptrdiff_t>(j) * tw, row_at(pTpl, tplStep, j), tw * sizeof(T));

    const a6::MatchKernels& kernels = a6::match_kernels();
    const a6::BlockKernels<T>& bk = a6::block_kernels<T>(kernels);

    // Template constants.
    a6::ScoreConstants c{};
    c.k = 1.0 / (static_cast<double>(n) + a6::scalar::kDoubleEpsilon);
    double t = 0.0;
    if (coeff) {
        t = a6::scalar::to_double(bk.sum(packed, n));
        c.neg_t = -t;
    }
    if (normed) {
        const double t2 = a6::scalar::to_double(bk.corr(packed, packed, n));
        c.t2 = t2;
        c.r_tpl = a6::scalar::rsqrt(coeff ? t2 - t * c.k * t : t2);
    }

    // Float sums depend on the order of the running sums, so float images
    // are swept over whole columns, exactly as the sums are defined. Byte
    // sums are exact integers, which leaves the order free: there the
    // destination is swept in bands of rows, each band column by column, so
    // that a band's source rows, strip and sums stay in the first-level
    // cache from one column to the next.
    const int band = sizeof(T) == 1 ? kByteBand : rows;
    // The block-result column (8 bytes per destination row) holds the
    // scores of the last columns of a band in a ring, and they go out in
    // groups: pairs for whole columns; for bands groups of up to 8 columns
    // (half a cache line per row), each written one group late so that its
    // scores have left the store queue when they are read back.
    const int held_max = 2 * rows / (rows < band ? rows : band);
    const int held = band < rows ? (held_max < 16 ? held_max : 16) : 2;
    const int group = band < rows ? held / 2 : 2;
    const int delay = band < rows ? group : 0;
    const a6::ColumnScores<T> column = bk.column_scores[M];
    const int sums_index = int(coeff) + 2 * int(normed);
    const auto advance = bk.advance[sums_index];

    // Bands of byte images can take their row and patch sums eight columns
    // at a time (32-bit row sums, 8 per row; patch sums column by column),
    // when the runs are short enough for 32-bit sums and the row-sum and
    // patch-sum blocks have room for them.
    const int kinds = int(coeff) + int(normed);
    const int64_t group_bytes = kinds * (32 * (static_cast<int64_t>(band) + th - 1) + 64 * static_cast<int64_t>(band));
    const bool grouped = sizeof(T) == 1 && band < rows && kinds > 0 && n <= kGroupedRunMax &&
                         group_bytes <= layout.total - 32 - layout.row_sum;
    int32_t* rows8_sum = nullptr;
    int32_t* rows8_sq = nullptr;
    int64_t* cols_sum = nullptr;
    int64_t* cols_sq = nullptr;
    if (grouped) {
        uint8_t* p = base + layout.row_sum;
        const size_t rows8 = 32 * (static_cast<size_t>(band) + th - 1), cols8 = 64 * static_cast<size_t>(band);
        if (coeff) rows8_sum = reinterpret_cast<int32_t*>(p), p += rows8;
        if (normed) rows8_sq = reinterpret_cast<int32_t*>(p), p += rows8;
        if (coeff) cols_sum = reinterpret_cast<int64_t*>(p), p += cols8;
        if (normed) cols_sq = reinterpret_cast<int64_t*>(p);
    }

    for (int y0 = 0; y0 < rows; y0 += band) {
        const int count = rows - y0 < band ? rows - y0 : band;
        const int src_rows = count + th - 1;
        const T* src = row_at(pSrc, srcStep, y0);
        float* dst = row_at(pDst, dstStep, y0);
        for (int i = 0; i < src_rows; ++i)
            copy_bytes(strip + static_cast<ptrdiff_t>(i) * tw, row_at(src, srcStep, i), tw * sizeof(T));

        // Row and patch sums of the first column.
        if (grouped) {
            int64_t ps = 0, pq = 0;
            for (int i = 0; i < src_rows; ++i) {
                const T* r = strip + static_cast<ptrdiff_t>(i) * tw;
                if (coeff) rows8_sum[8 * i + 7] = static_cast<int32_t>(a6::scalar::to_double(bk.sum(r, tw)));
                if (normed) rows8_sq[8 * i + 7] = static_cast<int32_t>(a6::scalar::to_double(bk.corr(r, r, tw)));
                const int y = i - th + 1;
                if (coeff) ps += rows8_sum[8 * i + 7] - (y > 0 ? rows8_sum[8 * (y - 1) + 7] : 0);
                if (normed) pq += rows8_sq[8 * i + 7] - (y > 0 ? rows8_sq[8 * (y - 1) + 7] : 0);
                if (y >= 0 && coeff) cols_sum[y] = ps;
                if (y >= 0 && normed) cols_sq[y] = pq;
            }
        } else {
            for (int i = 0; i < src_rows; ++i) {
                const T* r = strip + static_cast<ptrdiff_t>(i) * tw;
                if (coeff) row_sum[i] = bk.sum(r, tw);
                if (normed) row_sq[i] = bk.corr(r, r, tw);
            }
            if (coeff || normed) patch_sums(row_sum, row_sq, th, count, patch_sum, patch_sq);
        }

        int written = 0;
        for (int x = 0; x < cols; ++x) {
            T* view = strip + x;
            const Acc* sum = patch_sum;
            const Acc* sum_sq = patch_sq;
            if (grouped) {
                const int slot = x == 0 ? 0 : (x - 1) % 8;
                if (x > 0 && slot == 0)
                    bk.group_sums[sums_index](src, srcStep, src_rows, tw, th, x, cols - x < 8 ? cols - x : 8,
                                              rows8_sum, rows8_sq, cols_sum, cols_sq);
                if (x > 0) bk.advance[0](view, src + x + tw - 1, srcStep, src_rows, tw, th, nullptr, nullptr, nullptr, nullptr);
                sum = coeff ? reinterpret_cast<const Acc*>(cols_sum + static_cast<ptrdiff_t>(slot) * count) : nullptr;
                sum_sq = normed ? reinterpret_cast<const Acc*>(cols_sq + static_cast<ptrdiff_t>(slot) * count) : nullptr;
            } else if (x > 0) {
                advance(view, src + x + tw - 1, srcStep, src_rows, tw, th, row_sum, row_sq, patch_sum, patch_sq);
            }
            column(view, tw, th, count, packed, sum, sum_sq, c, scores + x % held, held);
            // Columns up to `written` are in the destination.
            const int ready = x + 1 - delay;
            if ((x + 1) % group == 0 && ready > written) {
                write_held(scores, held, written % held, ready - written, count, dst + written, dstStep);
                written = ready;
            }
            if (x == cols - 1 && written < cols) {
                write_held(scores, held, written % held, cols - written, count, dst + written, dstStep);
                written = cols;
            }
        }
    }
    return oruStsOk;
}

template <int M>
OruStatus buffer_size(OruSize src, OruSize tpl, int dataType, int* pBufferSize) {
    if (!pBufferSize) return oruStsNullPointer;
    *pBufferSize = 0;
    if (tpl.width <= 0 || tpl.height <= 0 || tpl.width > src.width || tpl.height > src.height) return oruStsSize;
    if (dataType != oruDataType8u && dataType != oruDataType8s && dataType != oruDataType32f) return oruStsDataType;
    Layout layout;
    if (!match_layout(src, tpl, dataType == oruDataType32f ? 4 : 1, a6::method_coeff(M), a6::method_normed(M),
                      &layout))
        return oruStsSize;
    *pBufferSize = static_cast<int>(layout.total);
    return oruStsOk;
}

}  // namespace

#define ORUCV_MATCH_FUNCTION(Method, Types, T)                                                                   \
    extern "C" OruStatus oruiMatchTemplate_##Method##_##Types##_C1R(                                             \
        const T* pSrc, int srcStep, OruSize srcRoiSize, const T* pTpl, int tplStep, OruSize tplRoiSize,          \
        Oru32f* pDst, int dstStep, Oru8u* pBuffer) {                                                             \
        return match<T, a6::k##Method>(pSrc, srcStep, srcRoiSize, pTpl, tplStep, tplRoiSize, pDst, dstStep,      \
                                       pBuffer);                                                                 \
    }
#define ORUCV_MATCH_METHOD(Method)                                                                               \
    ORUCV_MATCH_FUNCTION(Method, 8u32f, Oru8u)                                                                   \
    ORUCV_MATCH_FUNCTION(Method, 8s32f, Oru8s)                                                                   \
    ORUCV_MATCH_FUNCTION(Method, 32f, Oru32f)                                                                    \
    extern "C" OruStatus oruiMatchTemplateGetBufSize_##Method(OruSize srcRoiSize, OruSize tplRoiSize,            \
                                                              int dataType, int* pBufferSize) {                  \
        return buffer_size<a6::k##Method>(srcRoiSize, tplRoiSize, dataType, pBufferSize);                        \
    }

ORUCV_MATCH_METHOD(SqDiff)
ORUCV_MATCH_METHOD(SqDiffNormed)
ORUCV_MATCH_METHOD(Corr)
ORUCV_MATCH_METHOD(CorrNormed)
ORUCV_MATCH_METHOD(Coeff)
ORUCV_MATCH_METHOD(CoeffNormed)
