// Morphology: the state's construction and the strip engine.
//
// The engine sees an image as a stream of rows: stream row s is source row
// s - anchorY, clamped to the image, so that the first anchorY and the last
// maskHeight - 1 - anchorY stream rows repeat the first and last source
// rows. Destination row y folds stream rows y .. y + maskHeight - 1. The
// ring keeps the last maskHeight stream rows, stream row s in ring row
// s % maskHeight, each in the form its shape needs:
//   rectangle  the source row reduced across the element's width;
//   cross      the source row widened by its replicated edge pixels;
//   mask       the same.
// A destination row is written as soon as its last stream row arrives, so
// strips of any height give the rows of one call, in order.
#include "a6/morph.h"

#include <climits>
#include <cstddef>
#include <type_traits>

#include "core/bytes.h"
#include "core/cpu.h"
#include "core/rows.h"

namespace orucv {
namespace a6 {

namespace {

template <class Op>
constexpr MorphRows<typename Op::E, typename Op::Out> scalar_rows() {
    MorphRows<typename Op::E, typename Op::Out> r{};
    r.reduce = scalar::reduce<Op>;
    r.reduce_out = scalar::reduce_out<Op>;
    r.reduce_out_stream = scalar::reduce_out<Op>;
    r.load = scalar::load<Op>;
    return r;
}

constexpr MorphKernels scalar_table() {
    MorphKernels k{};
    k.min_8u = scalar_rows<scalar::MinU8>();
    k.max_8u = scalar_rows<scalar::MaxU8>();
    k.min_32f = scalar_rows<scalar::MinF32>();
    k.max_32f = scalar_rows<scalar::MaxF32>();
    k.min_32f_plain = scalar_rows<scalar::MinF32Plain>();
    k.max_32f_plain = scalar_rows<scalar::MaxF32Plain>();
    k.min_key = scalar_rows<scalar::MinKey>();
    k.max_key = scalar_rows<scalar::MaxKey>();
    k.has_nan = scalar::has_nan;
    k.stream_fence = scalar::stream_fence;
    return k;
}

}  // namespace

const MorphKernels morph_kernels_scalar = scalar_table();

const MorphKernels& morph_kernels() { return ORUCV_CHOOSE(morph_kernels); }

namespace {

constexpr uint64_t kHeaderBytes = sizeof(OruMorphState);
// Rows one kernel call folds; longer folds go on in their destination.
constexpr int kMaxTerms = 64;
// Calls writing at least this many bytes store their destination rows past
// the caches, which could not hold them with the source anyway.
constexpr int64_t kStreamBytes = int64_t{16} << 20;
// Rectangles from this height fold their rows as running minima (maxima).
constexpr int kRunningFromHeight = 9;

constexpr uint64_t round_up(uint64_t v, uint64_t to) { return (v + to - 1) / to * to; }

// Relative costs of the ways to fold, in loads of a vector: a store costs
// more than a load, and each pass over a row costs a store.
constexpr double kStore = 1.5;
constexpr double kPass = 2 + kStore;  // a doubling pass: two loads, a store

// How a row is reduced across `width` members: a first pass folds
// windows of `first` members straight from the source, `doublings` passes
// double them in place, and the windows of `span` members, overlapping at
// the end, are folded into the result. Chosen for the least cost with at
// most kMaxTerms windows; first 1 with no doublings folds every member
// straight from the source.
struct AcrossPlan {
    int first = 1, doublings = 0, span = 1;
};
AcrossPlan plan_across(int width) {
    AcrossPlan best;
    double best_cost = width + kStore;
    for (int first = 1; first <= 8 && first <= width; ++first)
        for (int d = 0; d < 31 && (static_cast<long long>(first) << d) <= width; ++d) {
            const long long span = static_cast<long long>(first) << d;
            if (span == 1) continue;
            const long long windows = (width + span - 1) / span;
            if (windows > kMaxTerms) continue;
            const double cost = first + kStore + kPass * d + static_cast<double>(windows) + kStore;
            if (cost < best_cost) best_cost = cost, best = AcrossPlan{first, d, static_cast<int>(span)};
        }
    return best;
}

// Members of a mask row as runs: run(start, length) for each.
template <class Run>
void for_runs(const uint8_t* m, int width, Run run) {
    for (int x = 0; x < width;) {
        if (!m[x]) {
            ++x;
            continue;
        }
        int end = x;
        while (end < width && m[end]) ++end;
        run(x, end - x);
        x = end;
    }
}

// How each group of equal mask rows is folded, by its first row: -1 adds a
// term per member and row; d >= 0 folds the group's rows into the spare
// row first, runs d doubling passes there and adds a term per window (the
// windows no wider than any run of the row).
void plan_groups(const uint8_t* m, int width, int height, const int32_t* first, const int32_t* next,
                 int32_t* plan) {
    for (int row = 0; row < height; ++row) {
        plan[row] = -1;
        if (first[row] != row) continue;
        int rows = 0, members = 0, narrowest = INT_MAX;
        for (int i = row; i >= 0; i = next[i]) ++rows;
        const uint8_t* r = m + static_cast<size_t>(row) * width;
        for_runs(r, width, [&](int, int length) {
            members += length;
            if (length < narrowest) narrowest = length;
        });
        double best = static_cast<double>(rows) * members;
        for (int d = 0; d < 31 && (1 << d) <= narrowest; ++d) {
            long long windows = 0;
            for_runs(r, width, [&](int, int length) { windows += (length + (1LL << d) - 1) >> d; });
            const double cost = rows + kStore + kPass * d + static_cast<double>(windows);
            if (cost < best) best = cost, plan[row] = d;
        }
    }
}

// The first row of each group of equal mask rows, and the next row of the
// same group, for the rows of a width x height mask (-1: none; rows without
// members belong to no group).
void link_rows(const uint8_t* m, int width, int height, int32_t* first, int32_t* next) {
    for (int i = 0; i < height; ++i) {
        const uint8_t* row = m + static_cast<size_t>(i) * width;
        uint32_t hash = 2166136261u;
        bool any = false;
        for (int x = 0; x < width; ++x) {
            hash = (hash ^ row[x]) * 16777619u;
            any = any || row[x];
        }
        first[i] = -1;
        next[i] = static_cast<int32_t>(hash);
        if (!any) continue;
        first[i] = i;
        for (int j = 0; j < i; ++j) {
            if (first[j] != j || next[j] != next[i]) continue;
            const uint8_t* other = m + static_cast<size_t>(j) * width;
            int x = 0;
            while (x < width && other[x] == row[x]) ++x;
            if (x == width) {
                first[i] = j;
                break;
            }
        }
    }
    for (int i = 0; i < height; ++i) {
        next[i] = -1;
        if (first[i] < 0) continue;
        for (int j = i + 1; j < height; ++j)
            if (first[j] == first[i]) {
                next[i] = j;
                break;
            }
    }
}

}  // namespace

MorphLayout morph_layout(int roi_width, int data_type, int channels, OruSize mask, int stored_shape) {
    const uint64_t pixel = (data_type == oruDataType32f ? 4u : 1u) * static_cast<uint64_t>(channels);
    const uint64_t spare_rows = data_type == oruDataType32f ? 2 : 1;
    MorphLayout l{};
    l.row_bytes = round_up((static_cast<uint64_t>(roi_width) + static_cast<uint64_t>(mask.width) - 1) * pixel,
                           pixel == 1 ? 8 : 32);
    l.ring_offset = kHeaderBytes;
    l.mask_offset = l.ring_offset + (static_cast<uint64_t>(mask.height) + spare_rows) * l.row_bytes;
    l.total = l.mask_offset;
    if (stored_shape == 100)
        l.total += round_up(static_cast<uint64_t>(mask.width) * static_cast<uint64_t>(mask.height), 4) +
                   12 * static_cast<uint64_t>(mask.height);
    return l;
}

void build_ellipse(uint8_t* members, int width, int height) {
    const int r = height / 2, c = width / 2;
    const long double r2 = static_cast<long double>(r) * r;
    for (int i = 0; i < r; ++i) {
        const long double dy = r - i;
        const long double v = static_cast<long double>(width / 2) * __builtin_sqrtl((r2 - dy * dy) * (1.0L / r2));
        // Adding 1.5 * 2^52 rounds a double to the nearest integer, ties to even.
        double rounded = static_cast<double>(v) + 6755399441055744.0;
        rounded -= 6755399441055744.0;
        const int dx = static_cast<int>(rounded);
        const int lo = c - dx < 0 ? 0 : c - dx;
        const int hi = dx >= width - c ? width - 1 : c + dx;  // the column past the row is no member
        for (int x = lo; x <= hi; ++x) {
            members[static_cast<size_t>(i) * width + x] = 1;
            members[static_cast<size_t>(height - 1 - i) * width + x] = 1;
        }
    }
}

OruStatus morph_init(int roi_width, int data_type, int channels, OruSize mask, OruPoint anchor, int shape,
                     const Oru8u* mask_bytes, OruMorphState** state) {
    *state = nullptr;
    const int stored = shape == 2 ? 100 : shape;
    const MorphLayout l = morph_layout(roi_width, data_type, channels, mask, stored);
    if (l.total > UINT_MAX) return oruStsMemAlloc;
    void* block = _orcvAlloc(static_cast<unsigned>(l.total));
    if (!block) return oruStsMemAlloc;
    fill_bytes(block, 0, static_cast<size_t>(l.total));
    OruMorphState* s = static_cast<OruMorphState*>(block);
    s->maskWidth = mask.width;
    s->maskHeight = mask.height;
    s->anchorX = anchor.x;
    s->anchorY = anchor.y;
    s->shape = stored;
    s->roiWidth = roi_width;
    s->dataType = data_type;
    s->numChannels = channels;
    s->rowBytes = static_cast<int32_t>(l.row_bytes);
    s->ringOffset = static_cast<uint32_t>(l.ring_offset);
    s->maskOffset = static_cast<uint32_t>(l.mask_offset);
    if (stored == 100) {
        uint8_t* m = static_cast<uint8_t*>(block) + l.mask_offset;
        const size_t n = static_cast<size_t>(mask.width) * static_cast<size_t>(mask.height);
        if (shape == 2) build_ellipse(m, mask.width, mask.height);
        else
            for (size_t i = 0; i < n; ++i) m[i] = mask_bytes[i] != 0;
        int32_t members = 0;
        for (size_t i = 0; i < n; ++i) members += m[i];
        s->members = members;
        int32_t* first = reinterpret_cast<int32_t*>(m + round_up(n, 4));
        link_rows(m, mask.width, mask.height, first, first + mask.height);
        plan_groups(m, mask.width, mask.height, first, first + mask.height, first + 2 * mask.height);
    }
    *state = s;
    return oruStsOk;
}

namespace {

// One strip through a state, Op the element operation (scalar::MinU8, ...).
template <class Op>
class Strip {
    using E = typename Op::E;
    using Out = typename Op::Out;
    static_assert(sizeof(E) == sizeof(Out), "ring and image elements have one size");

public:
    // k: the kernels; plain: those for rows without NaNs, used until a
    // NaN comes in, which has_nan (null: never) finds.
    Strip(OruMorphState* s, const MorphRows<E, Out>& k, const MorphRows<E, Out>& plain,
          bool (*has_nan)(const float*, int), void (*fence)(), int width)
        : s_(s), k_(&k), k_nan_(&k), k_plain_(&plain), has_nan_(has_nan), fence_(fence), w_(width), c_(s->numChannels), mw_(s->maskWidth), b_(s->maskHeight), ax_(s->anchorX),
          ay_(s->anchorY), n_(width * s->numChannels), wide_((width + s->maskWidth - 1) * s->numChannels),
          running_(s->shape == 0 && s->maskHeight >= kRunningFromHeight),
          ring_(reinterpret_cast<E*>(reinterpret_cast<uint8_t*>(s) + s->ringOffset)),
          row_elems_(static_cast<size_t>(s->rowBytes) / sizeof(E)), across_(plan_across(mw_)) {}

    int run(const Out* src, int src_step, Out* dst, int dst_step, int height, int flag) {
        if (flag == 0 || flag == 1) {
            s_->streamRows = 0;
            s_->width = w_;
            s_->nanSeen = 0;
        }
        if (has_nan_ && !s_->nanSeen) k_ = k_plain_;
        dst_ = dst;
        dst_step_ = dst_step;
        written_ = 0;
        stream_ = static_cast<int64_t>(n_) * static_cast<int64_t>(sizeof(Out)) * height >= kStreamBytes;
        for (int y = 0; y < height; ++y) take(row_at(src, src_step, y));
        if (flag == 0 || flag == 2) {
            const int64_t end = s_->streamRows + (b_ - 1 - ay_);
            for (int64_t pos = s_->streamRows; pos < end; ++pos) {
                copy(ring(pos), ring(pos - 1));
                arrived(pos);
            }
            s_->streamRows = 0;
        }
        if (stream_) fence_();
        return written_;
    }

private:
    E* ring(int64_t pos) const { return ring_ + static_cast<size_t>(pos % b_) * row_elems_; }
    // The ring row `i` rows after the one in slot `base` (i < b_): one
    // division per destination row rather than one per row folded.
    E* ring_after(int base, int i) const {
        const int slot = base + i >= b_ ? base + i - b_ : base + i;
        return ring_ + static_cast<size_t>(slot) * row_elems_;
    }
    E* spare() const { return ring_ + static_cast<size_t>(b_) * row_elems_; }
    Out* out_row() const { return row_at(dst_, dst_step_, written_); }
    // Folds rows into a destination row.
    void store_row(const E* const* rows, int count, Out* row) const {
        (stream_ ? k_->reduce_out_stream : k_->reduce_out)(rows, count, row, n_);
    }
    // Elements a ring row holds.
    int content() const { return s_->shape == 0 ? n_ : wide_; }

    void copy(E* to, const E* from) const {
        const E* t[1] = {from};
        k_->reduce(t, 1, to, content());
    }

    // Source row in; the first one also fills the stream rows above it.
    void take(const Out* row) {
        if (k_ != k_nan_ && has_nan_(reinterpret_cast<const float*>(row), n_)) {
            s_->nanSeen = 1;
            k_ = k_nan_;
        }
        const bool first = s_->streamRows == 0;
        const int64_t pos = first ? ay_ : s_->streamRows;
        E* r = ring(pos);
        if (s_->shape == 0) across(reinterpret_cast<const E*>(row), r);
        else widen(row, r);
        if (first)
            for (int t = 0; t < ay_; ++t) copy(ring(t), r);
        arrived(pos);
        s_->streamRows = pos + 1;
    }

    void widen(const Out* row, E* r) const {
        k_->load(row, r + static_cast<size_t>(ax_) * c_, n_);
        for (int x = 0; x < ax_; ++x)
            for (int ch = 0; ch < c_; ++ch) r[x * c_ + ch] = r[ax_ * c_ + ch];
        const int last = ax_ + w_ - 1;
        for (int x = last + 1; x < w_ + mw_ - 1; ++x)
            for (int ch = 0; ch < c_; ++ch) r[static_cast<size_t>(x) * c_ + ch] = r[static_cast<size_t>(last) * c_ + ch];
    }

    // dst[x] = fold of src over the columns x - anchorX .. x - anchorX +
    // maskWidth - 1 clamped to the row, for the row's pixels. The inner
    // columns are folded by the kernels straight from src (by doubling
    // windows in dst for wide elements, which needs width + anchorX pixels
    // of dst); at each edge the columns repeat the edge pixel, so the folds
    // there are prefixes (suffixes) of the row, run pixel by pixel.
    void across(const E* src, E* dst) const {
        const int c = c_, w = w_, width = mw_;
        const int inner = w - width + 1;
        if (inner > 0) {
            E* out = dst + static_cast<size_t>(ax_) * c;
            const int span = across_.span;
            const E* t[kMaxTerms];
            int used = 0;
            const E* from = src;
            if (span > 1) {
                for (int j = 0; j < across_.first; ++j) t[used++] = src + static_cast<size_t>(j) * c;
                int len = n_ - (across_.first - 1) * c;
                k_->reduce(t, used, out, len);
                used = 0;
                for (int pass = 0; pass < across_.doublings; ++pass) {
                    const int shift = (across_.first << pass) * c;
                    const E* pair[2] = {out, out + shift};
                    k_->reduce(pair, 2, out, len - shift);
                    len -= shift;
                }
                from = out;
            }
            for (int o = 0; o + span < width; o += span) t[used++] = from + static_cast<size_t>(o) * c;
            t[used++] = from + static_cast<size_t>(width - span) * c;
            k_->reduce(t, used, out, inner * c);
        }
        const int left_end = ax_ < w ? ax_ : w;
        const int right_begin = inner + ax_ > left_end ? inner + ax_ : left_end;
        // Left: pixel 0's window ends at column width - 1 - anchorX, and each
        // next pixel's one column further (while the row lasts). Right: the
        // last pixel's window starts at column w - 1 - anchorX, each earlier
        // pixel's one column before (down to column 0).
        for (int ch = 0; ch < c; ++ch) {
            auto at = [&](int x) { return scalar::ld<E>(src + static_cast<size_t>(x) * c + ch); };
            if (left_end > 0) {
                int hi = width - 1 - ax_ < w - 1 ? width - 1 - ax_ : w - 1;
                E acc = at(0);
                for (int x = 1; x <= hi; ++x) acc = Op::op(acc, at(x));
                dst[ch] = acc;
                for (int x = 1; x < left_end; ++x) {
                    if (hi < w - 1) acc = Op::op(acc, at(++hi));
                    dst[static_cast<size_t>(x) * c + ch] = acc;
                }
            }
            if (right_begin < w) {
                int lo = w - 1 - ax_ > 0 ? w - 1 - ax_ : 0;
                E acc = at(w - 1);
                for (int x = w - 2; x >= lo; --x) acc = Op::op(at(x), acc);
                dst[static_cast<size_t>(w - 1) * c + ch] = acc;
                for (int x = w - 2; x >= right_begin; --x) {
                    if (lo > 0) acc = Op::op(at(--lo), acc);
                    dst[static_cast<size_t>(x) * c + ch] = acc;
                }
            }
        }
    }

    // Stream row `pos` is in the ring: write the destination rows it completes.
    void arrived(int64_t pos) {
        if (running_) return arrived_running(pos);
        if (pos < b_ - 1) return;
        const int64_t y = pos - (b_ - 1);
        const int base = static_cast<int>(y % b_);
        if (s_->shape == 0) emit([&](int i) -> const E* { return ring_after(base, i); });
        else if (s_->shape == 1) emit_cross(base);
        else emit_mask(base);
    }

    // Folds rows row(0) .. row(b_ - 1) into the next destination row.
    template <class Row>
    void emit(Row row) {
        Out* out = out_row();
        const E* t[kMaxTerms];
        int used = 0;
        for (int i = 0; i < b_; ++i) {
            if (used == kMaxTerms) {
                k_->reduce(t, used, reinterpret_cast<E*>(out), n_);
                t[0] = reinterpret_cast<E*>(out);
                used = 1;
            }
            t[used++] = row(i);
        }
        store_row(t, used, out);
        ++written_;
    }

    // The cross over widened rows: the anchor column of every row but the
    // anchor row, which takes part whole, in the order of the rows.
    void emit_cross(int base) {
        Out* out = out_row();
        E* acc = reinterpret_cast<E*>(out);
        const E* t[kMaxTerms];
        int used = 0;
        auto add = [&](const E* p) {
            if (used == kMaxTerms) {
                k_->reduce(t, used, acc, n_);
                t[0] = acc;
                used = 1;
            }
            t[used++] = p;
        };
        for (int i = 0; i < b_; ++i) {
            const E* row = ring_after(base, i);
            if (i != ay_) add(row + static_cast<size_t>(ax_) * c_);
            else
                for (int j = 0; j < mw_; ++j) add(row + static_cast<size_t>(j) * c_);
        }
        store_row(t, used, out);
        ++written_;
    }

    // Tall rectangles: running folds over blocks of b_ stream rows. When a
    // block is complete its rows are turned, in place, into suffix folds
    // (row t folds rows t .. b_ - 1 of the block); the rows of the next
    // block then come in one by one, the spare row keeping their prefix
    // fold, and destination row y = (block start) + t is the fold of the
    // suffix t and the next block's prefix up to t - 1. Each row arrives in
    // the ring row whose suffix has just been used, so b_ + 1 rows do.
    void arrived_running(int64_t pos) {
        const int u = static_cast<int>(pos % b_);
        E* prefix = spare();
        if (pos >= b_ && u < b_ - 1) {
            const E* p = ring(pos);
            if (u > 0) {
                const E* pair[2] = {u == 1 ? ring(pos - 1) : prefix, ring(pos)};
                k_->reduce(pair, 2, prefix, n_);
                p = prefix;
            }
            const E* out[2] = {ring(pos + 1), p};
            store_row(out, 2, out_row());
            ++written_;
        }
        if (u == b_ - 1) {
            for (int t = b_ - 2; t >= 1; --t) {
                const E* pair[2] = {ring(t), ring(t + 1)};
                k_->reduce(pair, 2, ring(t), n_);
            }
            const E* out[2] = {ring(0), ring(1)};
            store_row(out, b_ == 1 ? 1 : 2, out_row());
            ++written_;
        }
    }

    const uint8_t* mask_row(int i) const {
        return reinterpret_cast<const uint8_t*>(s_) + s_->maskOffset + static_cast<size_t>(i) * mw_;
    }
    // The first row of each group, the next row of a group, and each first
    // row's plan (link_rows, plan_groups), one table of b_ after another.
    const int32_t* links() const {
        const size_t n = static_cast<size_t>(mw_) * static_cast<size_t>(b_);
        return reinterpret_cast<const int32_t*>(reinterpret_cast<const uint8_t*>(s_) + s_->maskOffset +
                                                round_up(n, 4));
    }
    template <class Run>
    void runs(int row, Run run) const {
        for_runs(mask_row(row), mw_, run);
    }

    // Mask rows of a group in order: group(first row) calls f(i) for each.
    template <class F>
    void group_rows(int row, F f) const {
        for (int i = row; i >= 0; i = links()[b_ + i]) f(i);
    }

    // The mask: each group of equal rows either adds a term per member and
    // row, or folds its rows into the spare row first and adds a term per
    // window there. All direct terms and the first folded group go into one
    // fold of the destination row; each further folded group folds into it
    // again (the destination row holds the partial result meanwhile).
    void emit_mask(int base) {
        Out* out = out_row();
        ++written_;
        if (s_->members == 0) {
            using Bits = typename std::conditional<sizeof(Out) == 1, uint8_t, uint32_t>::type;
            for (int k = 0; k < n_; ++k) scalar::st<Bits>(out + k, static_cast<Bits>(Op::kEmpty));
            return;
        }
        E* acc = reinterpret_cast<E*>(out);
        const E* t[kMaxTerms];
        int used = 0;
        auto spill = [&] {
            k_->reduce(t, used, acc, n_);
            t[0] = acc;
            used = 1;
        };
        auto add = [&](const E* p) {
            if (used == kMaxTerms) spill();
            t[used++] = p;
        };
        const int32_t* first = links();
        int first_folded = -1;
        for (int pass = 0; pass < 2; ++pass)
            for (int row = 0; row < b_; ++row) {
                if (first[row] != row) continue;
                const int plan = first[2 * b_ + row];
                if (plan < 0) {
                    if (pass == 0)
                        group_rows(row, [&](int i) {
                            const E* r = ring_after(base, i);
                            runs(row, [&](int start, int length) {
                                for (int j = start; j < start + length; ++j) add(r + static_cast<size_t>(j) * c_);
                            });
                        });
                    continue;
                }
                if (pass == 0 && first_folded >= 0) continue;
                if (pass == 1 && row == first_folded) continue;
                if (pass == 0) first_folded = row;
                else spill();  // the spare row is about to change
                fold_group(base, row, plan, add);
            }
        store_row(t, used, out);
    }

    template <class Add>
    void fold_group(int base, int row, int doublings, Add add) {
        E* v = spare();
        const E* t[kMaxTerms];
        int used = 0;
        group_rows(row, [&](int i) {
            if (used == kMaxTerms) {
                k_->reduce(t, used, v, wide_);
                t[0] = v;
                used = 1;
            }
            t[used++] = ring_after(base, i);
        });
        k_->reduce(t, used, v, wide_);
        int len = wide_;
        for (int pass = 0; pass < doublings; ++pass) {
            const int shift = (1 << pass) * c_;
            const E* pair[2] = {v, v + shift};
            k_->reduce(pair, 2, v, len - shift);
            len -= shift;
        }
        const int span = 1 << doublings;
        runs(row, [&](int start, int length) {
            for (int o = 0; o + span < length; o += span) add(v + static_cast<size_t>(start + o) * c_);
            add(v + static_cast<size_t>(start + length - span) * c_);
        });
    }

    OruMorphState* s_;
    const MorphRows<E, Out>* k_;
    const MorphRows<E, Out>* const k_nan_;
    const MorphRows<E, Out>* const k_plain_;
    bool (*const has_nan_)(const float*, int);
    void (*const fence_)();
    const int w_, c_, mw_, b_, ax_, ay_, n_, wide_;
    const bool running_;
    E* ring_;
    const size_t row_elems_;
    const AcrossPlan across_;
    Out* dst_ = nullptr;
    int dst_step_ = 0;
    int written_ = 0;
    bool stream_ = false;
};

template <class Op>
int run_strip(OruMorphState* s, const MorphRows<typename Op::E, typename Op::Out>& k, const typename Op::Out* src,
              int src_step, typename Op::Out* dst, int dst_step, int width, int height, int flag,
              const MorphRows<typename Op::E, typename Op::Out>* plain = nullptr,
              bool (*has_nan)(const float*, int) = nullptr) {
    return Strip<Op>(s, k, plain ? *plain : k, has_nan, morph_kernels().stream_fence, width)
        .run(src, src_step, dst, dst_step, height, flag);
}

}  // namespace

int morph_strip(OruMorphState* s, bool dilate, const Oru8u* src, int src_step, Oru8u* dst, int dst_step, int width,
                int height, int flag) {
    const MorphKernels& k = morph_kernels();
    if (dilate) return run_strip<scalar::MaxU8>(s, k.max_8u, src, src_step, dst, dst_step, width, height, flag);
    return run_strip<scalar::MinU8>(s, k.min_8u, src, src_step, dst, dst_step, width, height, flag);
}

int morph_strip(OruMorphState* s, bool dilate, const Oru32f* src, int src_step, Oru32f* dst, int dst_step,
                int width, int height, int flag) {
    const MorphKernels& k = morph_kernels();
    if (s->shape == 100) {
        if (dilate) return run_strip<scalar::MaxKey>(s, k.max_key, src, src_step, dst, dst_step, width, height, flag);
        return run_strip<scalar::MinKey>(s, k.min_key, src, src_step, dst, dst_step, width, height, flag);
    }
    if (dilate)
        return run_strip<scalar::MaxF32>(s, k.max_32f, src, src_step, dst, dst_step, width, height, flag,
                                         &k.max_32f_plain, k.has_nan);
    return run_strip<scalar::MinF32>(s, k.min_32f, src, src_step, dst, dst_step, width, height, flag,
                                     &k.min_32f_plain, k.has_nan);
}

}  // namespace a6
}  // namespace orucv
