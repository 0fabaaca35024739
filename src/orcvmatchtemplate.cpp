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

// Moves the strip view one column right: row i of the new view takes the
// source element src_col[i] in its last slot, which held the first element
// of row i + 1 of the previous view; that element leaves row i + 1, so it is
// read before being overwritten. Row sums follow with old = the leaving and
// new = the entering element, and the patch sums of the column follow the
// row sums in the same pass: patch y is complete once row y + height - 1 is.
template <class T, bool kSum, bool kSq>
void advance_strip(T* view, const T* src_col, int srcStep, int rows, int width, int height,
                   typename MatchAcc<T>::type* row_sum, typename MatchAcc<T>::type* row_sq,
                   typename MatchAcc<T>::type* patch_sum, typename MatchAcc<T>::type* patch_sq) {
    using Acc = typename MatchAcc<T>::type;
    T leaving = view[-1];
    Acc ps = 0, pq = 0;
    for (int i = 0; i < rows; ++i) {
        T* slot = view + static_cast<ptrdiff_t>(i) * width + width - 1;
        const T entering = *row_at(src_col, srcStep, i);
        const T next_leaving = i + 1 < rows ? *slot : T(0);
        *slot = entering;
        if (kSum || kSq) {
            // The new row sums stay in registers for the patch sums.
            Acc rs = 0, rq = 0;
            if (sizeof(T) == 1) {
                const int o = leaving, e = entering;
                if (kSum) row_sum[i] = rs = row_sum[i] + (e - o);
                if (kSq) row_sq[i] = rq = row_sq[i] + static_cast<Acc>((o + e) * (e - o));
            } else {
                const double o = leaving, e = entering;
                if (kSum) row_sum[i] = rs = row_sum[i] + (e - o);
                if (kSq) row_sq[i] = rq = row_sq[i] + (o + e) * (e - o);
            }
            const int y = i - height + 1;
            if (y == 0) {
                for (int j = 0; j < height; ++j) {
                    if (kSum) ps += row_sum[j];
                    if (kSq) pq += row_sq[j];
                }
            } else if (y > 0) {
                if (kSum) ps = ps + rs - row_sum[y - 1];
                if (kSq) pq = pq + rq - row_sq[y - 1];
            }
            if (y >= 0) {
                if (kSum) patch_sum[y] = ps;
                if (kSq) patch_sq[y] = pq;
            }
        }
        leaving = next_leaving;
    }
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

// Writes n held columns of scores (row y at held_scores + y * held) into
// the destination.
void write_held(const float* held_scores, int held, int n, int rows, float* dst, int dstStep) {
    for (int y = 0; y < rows; ++y) {
        const float* from = held_scores + static_cast<ptrdiff_t>(y) * held;
        float* to = row_at(dst, dstStep, y);
        if (n == 16) std::memcpy(to, from, 16 * sizeof(float));
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
    // scores of several columns of a band, which then go out together: two
    // columns for whole columns, up to 16 (a cache line per row) for bands.
    const int held_max = 2 * rows / (rows < band ? rows : band);
    const int held = held_max < 16 ? held_max : 16;
    const a6::ColumnScores<T> column = bk.column_scores[M];
    for (int y0 = 0; y0 < rows; y0 += band) {
        const int count = rows - y0 < band ? rows - y0 : band;
        const int src_rows = count + th - 1;
        const T* src = row_at(pSrc, srcStep, y0);
        float* dst = row_at(pDst, dstStep, y0);
        for (int i = 0; i < src_rows; ++i)
            copy_bytes(strip + static_cast<ptrdiff_t>(i) * tw, row_at(src, srcStep, i), tw * sizeof(T));

        // Row and patch sums of the first column.
        for (int i = 0; i < src_rows; ++i) {
            const T* r = strip + static_cast<ptrdiff_t>(i) * tw;
            if (coeff) row_sum[i] = bk.sum(r, tw);
            if (normed) row_sq[i] = bk.corr(r, r, tw);
        }
        if (coeff || normed) patch_sums(row_sum, row_sq, th, count, patch_sum, patch_sq);

        for (int x = 0; x < cols; ++x) {
            T* view = strip + x;
            if (x > 0)
                advance_strip<T, coeff, normed>(view, src + x + tw - 1, srcStep, src_rows, tw, th, row_sum, row_sq,
                                                patch_sum, patch_sq);
            const int slot = x % held;
            column(view, tw, th, count, packed, patch_sum, patch_sq, c, scores + slot, held);
            if (slot == held - 1 || x == cols - 1) write_held(scores, held, slot + 1, count, dst + x - slot, dstStep);
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
