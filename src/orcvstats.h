// What the wrappers of the image statistics share: the argument lists of the
// shapes of stats_list.h, the check order of a line, and the storing of
// results. orcvmean.cpp, orcvminmaxindx.cpp and orcvnorm.cpp each expand the
// list through ORUCV_STATS_WRAPPER, defining the kinds they wrap and leaving
// the others empty.
#pragma once

#include <cstdint>
#include <cstring>

#include "a6/stats.h"
#include "core/checks.h"
#include "orucv.h"
#include "stats_list.h"

namespace orucv {
namespace stats {

enum class Order { C, CoiFirst, D, N, Kernel };

// Results that are NaN are stored as this one quiet NaN.
constexpr uint64_t kQuietNan64 = 0x7FF8000000000000ull;

// v rounded once to double.
inline void store(Oru64f* out, long double v) {
    double d = static_cast<double>(v);
    if (d != d) std::memcpy(&d, &kQuietNan64, sizeof d);
    *out = d;
}

// The 32-bit accumulators of the contract, wrapping as they do.
inline int32_t wrap32(int64_t v) { return static_cast<int32_t>(static_cast<uint32_t>(v)); }

// The coi for the check helpers (0: none) and the 0-based channel inward.
template <class Fn>
int coi_checked(int coi) {
    return Fn::channels == 3 ? coi_to_check(coi) : 0;
}
template <class Fn>
int channel(int coi) {
    return Fn::channels == 3 ? coi - 1 : 0;
}

// The block locators of the 8-bit extrema for unsigned bytes: the linear
// index of the first pixel equal to value (and selected) in the block that
// starts at linear index `block`; src is at the channel of interest.
int64_t min_max_locate_8u(const Oru8u* src, int srcStep, int width, int height, int nch, int64_t block, int value);
int64_t min_max_locate_masked_8u(const Oru8u* src, int srcStep, const Oru8u* mask, int maskStep, int width,
                                 int height, int nch, int64_t block, int value);

}  // namespace stats
}  // namespace orucv

// Argument pieces by masking and layout.
#define ORUCV_STATS_MASK_PARAMS_Masked , const Oru8u *pMask, int maskStep
#define ORUCV_STATS_MASK_PARAMS_Unmasked
#define ORUCV_STATS_MASK_ARGS_Masked pMask, maskStep
#define ORUCV_STATS_MASK_ARGS_Unmasked nullptr, 0
#define ORUCV_STATS_COI_PARAM_C3C int coi,
#define ORUCV_STATS_COI_PARAM_C1
#define ORUCV_STATS_COI_ARG_C3C coi
#define ORUCV_STATS_COI_ARG_C1 0

#define ORUCV_STATS_WRAPPER(name, kind, norm, T, layout, mask, order) \
    ORUCV_STATS_##kind(name, norm, T, layout, mask, order)
