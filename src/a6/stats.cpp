#include "a6/stats.h"

#include <climits>
#include <cstddef>

#include "core/cpu.h"

namespace orucv {
namespace a6 {

namespace {

// What the engine needs to know of a function to walk its rows.
struct StatsShape {
    int sample_bytes;
    int channels;
    bool two_images;
    bool masked;
    bool joinable;
};

#define ORUCV_STATS_SHAPE(name, ...)                                                                         \
    StatsShape{sizeof(StatsFnOf<kStats_##name>::T), StatsFnOf<kStats_##name>::channels,                      \
               StatsFnOf<kStats_##name>::two_images, StatsFnOf<kStats_##name>::masked,                       \
               StatsFnOf<kStats_##name>::joinable},
constexpr StatsShape kShapes[kStatsFunctionCount] = {ORUCV_STATS_FUNCTIONS(ORUCV_STATS_SHAPE)};
#undef ORUCV_STATS_SHAPE

constexpr StatsKernels scalar_table() {
    StatsKernels k{};
#define ORUCV_STATS_SCALAR(name, ...) k.row[kStats_##name] = scalar::stats_row<kStats_##name>;
    ORUCV_STATS_FUNCTIONS(ORUCV_STATS_SCALAR)
#undef ORUCV_STATS_SCALAR
    return k;
}

const char* offset(const void* p, ptrdiff_t bytes) { return p ? static_cast<const char*>(p) + bytes : nullptr; }

// (hi, lo) += (bh, bl), renormalised so that hi is the rounded sum.
void dd_add_pair(double& hi, double& lo, double bh, double bl) {
    const double s = hi + bh;
    const double bv = s - hi;
    const double e = ((hi - (s - bv)) + (bh - bv)) + (lo + bl);
    hi = s + e;
    lo = e - (hi - s);
}

bool finite(double v) { return v - v == 0.0; }

}  // namespace

const StatsKernels stats_kernels_scalar = scalar_table();

const StatsKernels& stats_kernels() { return ORUCV_CHOOSE(stats_kernels); }

void start_extrema(StatsAcc& acc, bool float_keys) {
    acc.lo = float_keys ? order_key(bits_float(0x7F800000u)) : 256;
    acc.hi = float_keys ? order_key(bits_float(0xFF800000u)) : -256;
    acc.lo_index = acc.hi_index = -1;
}

void stats_reduce(StatsFunction f, const void* a, int aStep, const void* b, int bStep, const uint8_t* mask,
                  int maskStep, OruSize roi, int coi, StatsAcc& acc) {
    const StatsShape& s = kShapes[f];
    const StatsRow row = stats_kernels().row[f];
    const char* pa = offset(a, static_cast<ptrdiff_t>(coi) * s.sample_bytes);
    const char* pb = offset(b, static_cast<ptrdiff_t>(coi) * s.sample_bytes);
    const long long row_bytes = static_cast<long long>(roi.width) * s.sample_bytes * s.channels;
    const long long pixels = static_cast<long long>(roi.width) * roi.height;
    if (roi.width <= 0 || roi.height <= 0) return;
    const bool tight = aStep == row_bytes && (!s.two_images || bStep == row_bytes) &&
                       (!s.masked || maskStep == roi.width);
    if (s.joinable && pixels <= INT_MAX && (roi.height == 1 || tight)) {
        row(pa, pb, mask, static_cast<int>(pixels), 0, &acc);
        return;
    }
    for (int y = 0; y < roi.height; ++y)
        row(offset(pa, static_cast<ptrdiff_t>(aStep) * y), offset(pb, static_cast<ptrdiff_t>(bStep) * y),
            reinterpret_cast<const uint8_t*>(offset(mask, static_cast<ptrdiff_t>(maskStep) * y)), roi.width,
            static_cast<int64_t>(y) * roi.width, &acc);
}

float fold_lanes4(const float* lanes) { return (lanes[0] + lanes[2]) + (lanes[1] + lanes[3]); }

long double dd_lane_total(const StatsAcc& acc, int part) {
    double hi[8], lo[8];
    bool all_finite = true;
    for (int j = 0; j < 8; ++j) {
        hi[j] = acc.dd[part][j];
        lo[j] = acc.dd[part + 1][j];
        all_finite = all_finite && finite(hi[j]);
    }
    if (!all_finite) {
        for (int half = 4; half > 0; half /= 2)
            for (int j = 0; j < half; ++j) hi[j] = hi[j] + hi[j + half];
        return hi[0];
    }
    for (int half = 4; half > 0; half /= 2)
        for (int j = 0; j < half; ++j) dd_add_pair(hi[j], lo[j], hi[j + half], lo[j + half]);
    return static_cast<long double>(hi[0]) + static_cast<long double>(lo[0]);
}

}  // namespace a6
}  // namespace orucv
