#include "a6/filter.h"

#include <utility>

#include "core/bytes.h"
#include "core/cpu.h"
#include "core/rows.h"

extern "C" void* _orcvAlloc(unsigned int length);
extern "C" void _orcvFree_(void** ppBlock);

namespace orucv {
namespace a6 {

namespace {

template <int R, int D>
constexpr void fill_order(FilterKernels& k) {
    constexpr int M = kernel_cells(2 * R + 1, D, false).count;
    k.across_8u[R][D] = scalar::across<M, uint8_t, int16_t>;
    k.across_8s[R][D] = scalar::across<M, int8_t, int16_t>;
    k.across_32f[R][D] = scalar::across<M, float, float>;
    for (int neg = 0; neg < 2; ++neg) {
        k.down_16s[R][D][neg] = [](const int16_t* const* rows, int16_t* dst, const int16_t* c, int x0, int x1) {
            scalar::down<M>(rows, dst, c, x0, x1);
        };
        k.down_32f[R][D][neg] = [](const float* const* rows, float* dst, const float* c, int x0, int x1) {
            scalar::down<M>(rows, dst, c, x0, x1);
        };
    }
}

template <int R, int... D>
constexpr void fill_radius(FilterKernels& k, std::integer_sequence<int, D...>) {
    (fill_order<R, D>(k), ...);
    constexpr int a = laplace_taps_second(R), b = laplace_taps_smooth(R);
    k.laplace_across_8u[R] = scalar::laplace_across<a, b, uint8_t, int16_t>;
    k.laplace_across_8s[R] = scalar::laplace_across<a, b, int8_t, int16_t>;
    k.laplace_across_32f[R] = scalar::laplace_across<a, b, float, float>;
    // Down: order 0 over the order-2 rows, plus order 2 over the order-0 rows.
    k.laplace_16s[R] = [](const int16_t* const* pa, const int16_t* ca, const int16_t* const* pb, const int16_t* cb,
                          int16_t* dst, int x0, int x1) { scalar::laplace<b, a>(pa, ca, pb, cb, dst, x0, x1); };
    k.laplace_32f[R] = [](const float* const* pa, const float* ca, const float* const* pb, const float* cb, float* dst,
                          int x0, int x1) { scalar::laplace<b, a>(pa, ca, pb, cb, dst, x0, x1); };
    k.box_8u[R] = scalar::box<R, uint8_t, int16_t>;
    k.box_8s[R] = scalar::box<R, int8_t, int16_t>;
    k.box_32f[R] = scalar::box<R, float, float>;
}

template <int M>
constexpr void fill_any(FilterKernels& k) {
    k.down_any_16s[M] = [](const int16_t* const* rows, int16_t* dst, const int16_t* c, int x0, int x1) {
        scalar::down<M>(rows, dst, c, x0, x1);
    };
    k.down_any_32f[M] = [](const float* const* rows, float* dst, const float* c, int x0, int x1) {
        scalar::down<M>(rows, dst, c, x0, x1);
    };
}

constexpr FilterKernels scalar_table() {
    FilterKernels k{};
    fill_radius<1>(k, std::make_integer_sequence<int, 3>());
    fill_radius<2>(k, std::make_integer_sequence<int, 5>());
    fill_radius<3>(k, std::make_integer_sequence<int, 7>());
    fill_any<1>(k);
    fill_any<2>(k);
    fill_any<3>(k);
    fill_any<4>(k);
    fill_any<5>(k);
    fill_any<6>(k);
    fill_any<7>(k);
    k.laplace_any_16s = scalar::laplace_any<int16_t, int16_t>;
    k.laplace_any_32f = scalar::laplace_any<float, float>;
    k.column_16s = [](int16_t* col, const int16_t* in, const int16_t* out, int16_t* dst, int n) {
        scalar::column(col, in, out, dst, n);
    };
    k.column_32f = [](float* col, const float* in, const float* out, float* dst, int n) {
        scalar::column(col, in, out, dst, n);
    };
    k.column_init_16s = [](int16_t* col, const int16_t* in, int factor, int n) {
        scalar::column_init(col, in, factor, n);
    };
    k.column_init_32f = [](float* col, const float* in, int factor, int n) { scalar::column_init(col, in, factor, n); };
    return k;
}

}  // namespace

const FilterKernels filter_kernels_scalar = scalar_table();

const FilterKernels& filter_kernels() { return ORUCV_CHOOSE(filter_kernels); }

// ---- Kernels and specifications

void make_kernel(int n, int d, int origin, int16_t* c16, float* cf) {
    int16_t c[kMaxKernel + 1] = {1};
    float f[kMaxKernel + 1] = {1.0f};
    for (int i = 0; i < n - 1 - d; ++i)  // binomial smoothing
        for (int k = n; k >= 1; --k) {
            c[k] = static_cast<int16_t>(c[k] + c[k - 1]);
            f[k] = f[k] + f[k - 1];
        }
    for (int i = 0; i < d; ++i) {  // differences
        for (int k = n; k >= 1; --k) {
            c[k] = static_cast<int16_t>(c[k - 1] - c[k]);
            f[k] = f[k - 1] - f[k];
        }
        c[0] = static_cast<int16_t>(-c[0]);
        f[0] = -f[0];
    }
    const bool negate = (d % 2 == 1) && origin == 1;
    for (int k = 0; k <= kMaxKernel; ++k) {
        c16[k] = k < n ? static_cast<int16_t>(negate ? -c[k] : c[k]) : 0;
        cf[k] = k < n ? (negate ? -f[k] : f[k]) : 0.0f;
    }
}

namespace {

void make_taps(int n, const int16_t* c16, const float* cf, Taps& taps) {
    taps = Taps{};
    for (int k = 0; k < n; ++k)
        if (c16[k] != 0) {
            taps.index[taps.count] = k;
            taps.c16[taps.count] = c16[k];
            taps.cf[taps.count] = cf[k];
            ++taps.count;
        }
}

constexpr long long round_up(long long v, long long to) { return (v + to - 1) / to * to; }

// One block for the header and `rows` row buffers of 4 bytes per pixel.
OruStatus allocate(FilterKind kind, int width, int data_type, int size, int rows, FilterSpec** out) {
    const long long header = round_up(static_cast<long long>(sizeof(FilterSpec)), 32);
    const long long row_bytes = round_up(4LL * width, 32);
    const long long total = header + row_bytes * rows;
    if (total > 0xFFFFFFFFLL - 64 || row_bytes > 0x7FFFFFFFLL) return oruStsMemAlloc;
    void* block = _orcvAlloc(static_cast<unsigned int>(total));
    if (!block) return oruStsMemAlloc;
    fill_bytes(block, 0, static_cast<size_t>(header));
    FilterSpec* fspec = static_cast<FilterSpec*>(block);
    fspec->magic = kFilterSpecMagic;
    fspec->kind = kind;
    fspec->data_type = data_type;
    fspec->size = size;
    fspec->width = width;
    fspec->row_bytes = static_cast<int32_t>(row_bytes);
    fspec->row_count = rows;
    fspec->rows_offset = static_cast<int32_t>(header);
    *out = fspec;
    return oruStsOk;
}

}  // namespace

OruStatus create_sobel(int width, int data_type, int size, int origin, int xorder, int yorder, FilterSpec** out) {
    FilterSpec* fspec = nullptr;
    if (OruStatus s = allocate(kSobel, width, data_type, size, size, &fspec)) return s;
    fspec->origin = origin;
    fspec->xorder = xorder;
    fspec->yorder = yorder;
    make_kernel(size, xorder, 0, fspec->kx16, fspec->kxf);
    make_kernel(size, yorder, origin, fspec->ky16, fspec->kyf);
    make_taps(size, fspec->kx16, fspec->kxf, fspec->tx);
    make_taps(size, fspec->ky16, fspec->kyf, fspec->ty);
    *out = fspec;
    return oruStsOk;
}

OruStatus create_blur(int width, int data_type, int size, FilterSpec** out) {
    // size + 1 rows of horizontal sums and the row of column sums.
    return allocate(kBlur, width, data_type, size, size + 2, out);
}

OruStatus create_laplace(int width, int data_type, int size, FilterSpec** out) {
    FilterSpec* fspec = nullptr;
    if (OruStatus s = allocate(kLaplace, width, data_type, size, 2 * size, &fspec)) return s;
    fspec->xorder = 2;
    make_kernel(size, 2, 0, fspec->kx16, fspec->kxf);
    make_kernel(size, 0, 0, fspec->ky16, fspec->kyf);
    make_taps(size, fspec->kx16, fspec->kxf, fspec->tx);
    make_taps(size, fspec->ky16, fspec->kyf, fspec->ty);
    *out = fspec;
    return oruStsOk;
}

void release(FilterSpec** fspec) {
    void* block = *fspec;
    _orcvFree_(&block);
    *fspec = static_cast<FilterSpec*>(block);
}

bool spec_fits(const FilterSpec* fspec, FilterKind kind, bool float_data, int width) {
    return fspec->magic == kFilterSpecMagic && fspec->kind == kind && is_float_type(fspec->data_type) == float_data &&
           fspec->width == width;
}

bool spec_accepts_flag(const FilterSpec* fspec, int flag) { return fspec->started || flag == 0 || flag == 1; }

// ---- The strip engine

namespace {

AcrossRow<uint8_t, int16_t> across_of(const FilterKernels& k, const uint8_t*, int r, int d) { return k.across_8u[r][d]; }
AcrossRow<int8_t, int16_t> across_of(const FilterKernels& k, const int8_t*, int r, int d) { return k.across_8s[r][d]; }
AcrossRow<float, float> across_of(const FilterKernels& k, const float*, int r, int d) { return k.across_32f[r][d]; }
LaplaceAcrossRow<uint8_t, int16_t> laplace_across_of(const FilterKernels& k, const uint8_t*, int r) {
    return k.laplace_across_8u[r];
}
LaplaceAcrossRow<int8_t, int16_t> laplace_across_of(const FilterKernels& k, const int8_t*, int r) {
    return k.laplace_across_8s[r];
}
LaplaceAcrossRow<float, float> laplace_across_of(const FilterKernels& k, const float*, int r) {
    return k.laplace_across_32f[r];
}
const BoxRow<uint8_t, int16_t>* box_of(const FilterKernels& k, const uint8_t*) { return k.box_8u; }
const BoxRow<int8_t, int16_t>* box_of(const FilterKernels& k, const int8_t*) { return k.box_8s; }
const BoxRow<float, float>* box_of(const FilterKernels& k, const float*) { return k.box_32f; }
DownRow<int16_t> down_of(const FilterKernels& k, const int16_t*, int r, int d, int neg) { return k.down_16s[r][d][neg]; }
DownRow<float> down_of(const FilterKernels& k, const float*, int r, int d, int neg) { return k.down_32f[r][d][neg]; }
DownRow<int16_t> down_any_of(const FilterKernels& k, const int16_t*, int m) { return k.down_any_16s[m]; }
DownRow<float> down_any_of(const FilterKernels& k, const float*, int m) { return k.down_any_32f[m]; }
LaplaceAnyRow<int16_t> laplace_any_of(const FilterKernels& k, const int16_t*) { return k.laplace_any_16s; }
LaplaceAnyRow<float> laplace_any_of(const FilterKernels& k, const float*) { return k.laplace_any_32f; }
LaplaceRow<int16_t> laplace_of(const FilterKernels& k, const int16_t*, int r) { return k.laplace_16s[r]; }
LaplaceRow<float> laplace_of(const FilterKernels& k, const float*, int r) { return k.laplace_32f[r]; }
ColumnRow<int16_t> column_of(const FilterKernels& k, const int16_t*) { return k.column_16s; }
ColumnRow<float> column_of(const FilterKernels& k, const float*) { return k.column_32f; }
ColumnInit<int16_t> column_init_of(const FilterKernels& k, const int16_t*) { return k.column_init_16s; }
ColumnInit<float> column_init_of(const FilterKernels& k, const float*) { return k.column_init_32f; }

const int16_t* coeffs(const Taps& t, const int16_t*) { return t.c16; }
const float* coeffs(const Taps& t, const float*) { return t.cf; }

template <class S, class D>
class Strip {
public:
    Strip(FilterSpec* fspec, const S* src, int srcStep, D* dst, int dstStep)
        : spec_(*fspec), k_(filter_kernels()), src_(src), src_step_(srcStep), dst_(dst), dst_step_(dstStep),
          n_(fspec->size), r_(fspec->size / 2), width_(fspec->width), first_emitted_(fspec->emitted) {}

    int run(int height, int flag) {
        if (flag == 0 || flag == 1 || flag == 3) {
            spec_.received = 0;
            spec_.emitted = 0;
            first_emitted_ = 0;
            spec_.started = 1;
        }
        const bool last = flag == 0 || flag == 2 || flag == 3;
        if (spec_.kind == kBlur) blur(height, last);
        else separable(height, last);
        const int written = spec_.emitted - first_emitted_;
        if (last) spec_.started = 0;
        return written;
    }

private:
    D* ring(int i) const {
        return reinterpret_cast<D*>(reinterpret_cast<char*>(&spec_) + spec_.rows_offset +
                                    static_cast<ptrdiff_t>(spec_.row_bytes) * i);
    }
    const S* src_row(int i) const { return row_at(src_, src_step_, i); }
    D* next_dst_row() const { return row_at(dst_, dst_step_, spec_.emitted - first_emitted_); }
    // The ring slot of image row y of the pass, replicated beyond its ends.
    int slot(int y, int period) const {
        const int last = spec_.received - 1;
        return (y < 0 ? 0 : y > last ? last : y) % period;
    }

    // Sobel and Laplace: each source row across (Laplace: with both
    // kernels), then the destination row whose window it completes.
    void separable(int height, bool last) {
        const Taps& tx = spec_.tx;
        const Taps& ty = spec_.ty;
        const auto across = across_of(k_, src_, r_, spec_.xorder);
        const auto laplace_across = laplace_across_of(k_, src_, r_);
        for (int i = 0; i < height; ++i) {
            const int s = spec_.received % n_;
            const S* in = src_row(i);
            ++spec_.received;
            Emission e;
            const bool emits = spec_.emitted + r_ < spec_.received;
            if (emits) prepare(e);
            // A piece of the destination row is formed after the next piece
            // of the source row was read, so reading and writing overlap,
            // and a destination on the source loses no pixel still to read.
            for (int x0 = 0; x0 < width_; x0 += kPiece) {
                const int x1 = width_ - x0 > kPiece ? x0 + kPiece : width_;
                if (spec_.kind == kSobel) across(in, ring(s), width_, r_, tx, x0, x1);
                else laplace_across(in, ring(s), ring(n_ + s), width_, r_, tx, ty, x0, x1);
                if (emits && x0 > 0) emit(e, x0 - kPiece, x0);
            }
            if (emits) {
                emit(e, (width_ - 1) / kPiece * kPiece, width_);
                ++spec_.emitted;
            }
        }
        if (last)
            while (spec_.emitted < spec_.received) {
                Emission e;
                prepare(e);
                emit(e, 0, width_);
                ++spec_.emitted;
            }
    }

    static constexpr int kPiece = 512;  // pixels: above n/2, a multiple of every vector width

    // The ring rows of destination row y's taps and their weights; the taps
    // that meet the same replicated row add into one weight, and weights of
    // 0 drop out. Rows of the second kernel set (Laplace) start at `base`.
    int merged_taps(const Taps& taps, int y, int base, const D** rows, D* weights) const {
        int m = 0, previous = -1;
        for (int t = 0; t < taps.count; ++t) {
            const int last = spec_.received - 1;
            int row = y - r_ + taps.index[t];
            row = row < 0 ? 0 : row > last ? last : row;
            const D w = coeffs(taps, weights)[t];
            if (row == previous) {
                weights[m - 1] = static_cast<D>(weights[m - 1] + w);
                continue;
            }
            rows[m] = ring(base + row % n_);
            weights[m++] = w;
            previous = row;
        }
        int kept = 0;
        for (int i = 0; i < m; ++i)
            if (weights[i] != 0) rows[kept] = rows[i], weights[kept++] = weights[i];
        return kept;
    }

    // One destination row: its rows and weights.
    struct Emission {
        D* out;
        const D* a[kMaxKernel];
        const D* b[kMaxKernel];
        D ca[kMaxKernel], cb[kMaxKernel];
        int ma, mb;
    };

    void prepare(Emission& e) const {
        e.out = next_dst_row();
        e.ma = merged_taps(spec_.ty, spec_.emitted, 0, e.a, e.ca);
        e.mb = spec_.kind == kLaplace ? merged_taps(spec_.tx, spec_.emitted, n_, e.b, e.cb) : 0;
    }

    // Pixels [x0, x1) of the destination row.
    void emit(const Emission& e, int x0, int x1) const {
        if (spec_.kind == kSobel) {
            const int neg = spec_.origin == 1 && spec_.yorder % 2 == 1;
            if (e.ma == spec_.ty.count) down_of(k_, dst_, r_, spec_.yorder, neg)(e.a, e.out, e.ca, x0, x1);
            else if (e.ma == 0) fill_bytes(e.out + x0, 0, sizeof(D) * static_cast<size_t>(x1 - x0));
            else down_any_of(k_, dst_, e.ma)(e.a, e.out, e.ca, x0, x1);
        } else {
            // Laplace: order 2 across then order 0 down, plus order 0 across
            // then order 2 down. Rows whose taps merged (at most n/2 at the
            // top and the bottom) take the general form.
            if (e.ma == laplace_taps_smooth(r_) && e.mb == laplace_taps_second(r_))
                laplace_of(k_, dst_, r_)(e.a, e.ca, e.b, e.cb, e.out, x0, x1);
            else
                laplace_any_of(k_, dst_)(e.a, e.ca, e.ma, e.b, e.cb, e.mb, e.out, x0, x1);
        }
    }

    // Blur: rows of horizontal sums in slots 0..n, the column sums in slot
    // n + 1. Step e adds row e (the last row beyond the image's end) and
    // drops row e - n (row 0 above the image's start); from e = r on, each
    // step completes destination row e - r.
    void blur(int height, bool last) {
        const auto box = box_of(k_, src_)[r_];
        for (int i = 0; i < height; ++i) {
            box(src_row(i), ring(spec_.received % (n_ + 1)), width_);
            ++spec_.received;
            blur_step(spec_.received - 1);
        }
        if (last)
            for (int e = spec_.received; e < spec_.received + r_; ++e) blur_step(e);
    }

    void blur_step(int e) {
        D* col = ring(n_ + 1);
        const D* in = ring(slot(e, n_ + 1));
        if (e == 0) {
            column_init_of(k_, dst_)(col, in, r_ + 1, width_);
            return;
        }
        const D* out = e > r_ ? ring(slot(e - n_, n_ + 1)) : nullptr;
        D* dst = e >= r_ ? next_dst_row() : nullptr;
        column_of(k_, dst_)(col, in, out, dst, width_);
        if (dst) ++spec_.emitted;
    }

    FilterSpec& spec_;
    const FilterKernels& k_;
    const S* src_;
    int src_step_;
    D* dst_;
    int dst_step_;
    int n_, r_, width_;
    int first_emitted_;
};

}  // namespace

int run_strip(FilterSpec* fspec, const uint8_t* src, int srcStep, int16_t* dst, int dstStep, int height, int flag) {
    return Strip<uint8_t, int16_t>(fspec, src, srcStep, dst, dstStep).run(height, flag);
}
int run_strip(FilterSpec* fspec, const int8_t* src, int srcStep, int16_t* dst, int dstStep, int height, int flag) {
    return Strip<int8_t, int16_t>(fspec, src, srcStep, dst, dstStep).run(height, flag);
}
int run_strip(FilterSpec* fspec, const float* src, int srcStep, float* dst, int dstStep, int height, int flag) {
    return Strip<float, float>(fspec, src, srcStep, dst, dstStep).run(height, flag);
}

}  // namespace a6
}  // namespace orucv
