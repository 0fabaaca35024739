// The shared check orders: which status wins when several arguments are bad.
#include <gtest/gtest.h>

#include "core/checks.h"
#include "core/rows.h"

using namespace orucv;

namespace {
const char byte = 0;
const void* const p = &byte;
}  // namespace

TEST(CheckOrders, PointersComeFirstEverywhere) {
    EXPECT_EQ(check_order_a({p, nullptr}, {0, 0}, {-1, -1}), oruStsNullPointer);
    EXPECT_EQ(check_order_b({nullptr}, {{0, 4}}, {-1, -1}), oruStsNullPointer);
    EXPECT_EQ(check_order_c({p, nullptr}, {0}, {-1, -1}, 6, 9), oruStsNullPointer);
    EXPECT_EQ(check_order_d({nullptr}, {{0, 4}}, {-1, -1}, 9), oruStsNullPointer);
}

TEST(CheckOrders, StepsAndSizesInTheirFamilyOrder) {
    // A zero step with a zero width: order A tests steps first, order C sizes.
    EXPECT_EQ(check_order_a({p}, {0}, {0, 3}), oruStsStep);
    EXPECT_EQ(check_order_c({p}, {0}, {0, 3}, 0), oruStsSize);
    EXPECT_EQ(check_order_a({p}, {6}, {1, 1}, 4), oruStsNotEvenStep);
    EXPECT_EQ(check_order_a({p}, {6}, {1, 1}), oruStsOk);
    // Order C tests only the float source step for divisibility.
    EXPECT_EQ(check_order_c({p, p}, {6, 3}, {1, 1}, 6), oruStsNotEvenStep);
    EXPECT_EQ(check_order_c({p, p}, {8, 3}, {1, 1}, 8), oruStsOk);
}

TEST(CheckOrders, OrderBReportsEveryStepFaultAsSize) {
    EXPECT_EQ(check_order_b({p}, {{4 * 5 + 2, 4}}, {5, 1}), oruStsSize);
    EXPECT_EQ(check_order_b({p}, {{4 * 5, 4}}, {5, 1}), oruStsOk);
    EXPECT_EQ(check_order_b({p}, {{4, 1}}, {5, 1}), oruStsSize);
    EXPECT_EQ(check_order_b({p}, {{0, 4}}, {0, 7}), oruStsOk);  // zero width: any step
    EXPECT_EQ(check_order_b({p}, {{20, 4}}, {-1, 1}), oruStsSize);
    // A width whose byte count overflows an int never passes.
    EXPECT_EQ(check_order_b({p}, {{0x7FFFFFFF, 4}}, {0x40000000, 1}), oruStsSize);
}

TEST(CheckOrders, OrderDStepsAndChannelOfInterest) {
    EXPECT_EQ(check_order_d({p}, {{12, 12}}, {0, 0}, 2), oruStsOk);
    EXPECT_EQ(check_order_d({p}, {{12 * 3 + 2, 12}}, {3, 1}), oruStsStep);
    EXPECT_EQ(check_order_d({p, p}, {{40, 4}, {9, 1}}, {10, 1}), oruStsStep);  // mask step below width
    EXPECT_EQ(check_order_d({p}, {{8, 1}}, {-1, 1}, 0), oruStsSize);
    EXPECT_EQ(check_order_d({p}, {{8, 3}}, {2, 1}, 4), oruStsCoi);
    EXPECT_EQ(check_order_c({p}, {8}, {2, 1}, 0, 0 - 1), oruStsCoi);
    EXPECT_EQ(check_order_c({p}, {8}, {2, 1}, 0, 3), oruStsOk);
}

TEST(RowRecasting, ContiguousRowsBecomeOne) {
    int a = 40, b = 10;
    OruSize roi{10, 3};
    recast_contiguous_rows(roi, {{a, 4}, {b, 1}});
    EXPECT_EQ(roi.width, 30);
    EXPECT_EQ(roi.height, 1);
    EXPECT_EQ(a, 0);
    EXPECT_EQ(b, 0);

    int padded = 44, tight = 10;
    roi = {10, 3};
    recast_contiguous_rows(roi, {{padded, 4}, {tight, 1}});
    EXPECT_EQ(roi.height, 3);
    EXPECT_EQ(padded, 44);

    roi = {10, 1};  // one row: steps no longer matter
    recast_contiguous_rows(roi, {{padded, 4}});
    EXPECT_EQ(padded, 0);

    int huge = 0x10000;
    roi = {0x10000, 0x10000};  // more pixels than an int holds: rows stay
    recast_contiguous_rows(roi, {{huge, 1}});
    EXPECT_EQ(roi.height, 0x10000);
}
