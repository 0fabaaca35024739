// Allocator, version record, constant tables and channel-copy kernels.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>

#include "frame_list.h"
#include "orucv.h"
#include "support/image.h"
#include "support/simd.h"

using namespace orutest;

TEST(Alloc, BlocksAreAlignedAndRecordTheirMallocAddress) {
    for (unsigned length : {0u, 1u, 31u, 32u, 33u, 4096u, 100000u}) {
        for (auto alloc : {oruiAlloc, _orcvAlloc}) {
            void* p = alloc(length);
            ASSERT_NE(p, nullptr) << length;
            const uintptr_t addr = reinterpret_cast<uintptr_t>(p);
            EXPECT_EQ(addr % 32, 0u);
            const uintptr_t raw = reinterpret_cast<uintptr_t>(static_cast<void**>(p)[-1]);
            EXPECT_GE(addr - raw, 5u);
            EXPECT_LE(addr - raw, 36u);
            std::memset(p, 0x5A, length);  // the whole length is usable
            _orcvFree_(&p);
            EXPECT_EQ(p, nullptr);
            _orcvFree_(&p);  // a second release of the same variable does nothing
        }
    }
}

TEST(Alloc, FreeIgnoresWhatCannotBeABlock) {
    _orcvFree_(nullptr);
    void* none = nullptr;
    _orcvFree_(&none);
    EXPECT_EQ(none, nullptr);
    void* block = oruiAlloc(64);
    void* off16 = static_cast<char*>(block) + 16;  // 16- but not 32-aligned
    _orcvFree_(&off16);
    EXPECT_EQ(off16, static_cast<char*>(block) + 16);
    _orcvFree_(&block);
}

TEST(Version, ConstantRecord) {
    const OruLibVersion* v = orucvGetLibVersion();
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(v, orucvGetLibVersion());
    EXPECT_EQ(v->major, 2);
    EXPECT_EQ(v->minor, 0);
    EXPECT_EQ(v->majorBuild, 1);
    EXPECT_EQ(v->build, 24);
    EXPECT_EQ(std::memcmp(v->targetCpu, "a6\0\0", 4), 0);
    EXPECT_STREQ(v->Name, "orucva6");
    EXPECT_STREQ(v->Version, "v2.0 gold SP1");
    EXPECT_STREQ(v->BuildDate, "Aug 23 2002");
}

TEST(Tables, EightBitToFloat) {
    EXPECT_EQ(sizeof(a6__orcv8to32f), 1536u);
    for (int i = 0; i < 384; ++i) EXPECT_EQ(a6__orcv8to32f[i], static_cast<float>(i - 128));
    EXPECT_EQ(a6__orcv8to32f[0], -128.0f);
    EXPECT_EQ(a6__orcv8to32f[128], 0.0f);
    EXPECT_EQ(a6__orcv8to32f[383], 255.0f);
}

TEST(Tables, ChannelAndMaskPatterns) {
    EXPECT_EQ(sizeof(_orcvCoiMask_A6), 72u);
    for (int c = 0; c < 3; ++c)
        for (int j = 0; j < 24; ++j) EXPECT_EQ(_orcvCoiMask_A6[c][j], j % 3 == c ? 0xFF : 0x00) << c << "," << j;

    EXPECT_EQ(sizeof(_orcvMaskShuffTable_A6), 2048u);
    const int byte_of_bit[8] = {0, 3, 6, 1, 4, 7, 2, 5};
    for (int k = 0; k < 256; ++k) {
        uint8_t expected[8] = {};
        for (int b = 0; b < 8; ++b)
            if (k >> b & 1) expected[byte_of_bit[b]] = 0xFF;
        EXPECT_EQ(std::memcmp(_orcvMaskShuffTable_A6[k], expected, 8), 0) << "row " << k;
    }
    const uint8_t row2[8] = {0, 0, 0, 0xFF, 0, 0, 0, 0};
    EXPECT_EQ(std::memcmp(_orcvMaskShuffTable_A6[2], row2, 8), 0);

    for (uint8_t b : _orcvAdd128_A6) EXPECT_EQ(b, 0x80);
}

namespace {

// Images of one case: C planes, or one image of C interleaved channels.
template <class T, int C>
struct CopyCase {
    int width, height;
    Layout layout;

    std::vector<GuardedImage<T>> planes(uint64_t seed) const {
        std::vector<GuardedImage<T>> p;
        for (int c = 0; c < C; ++c) {
            p.emplace_back(width, height, 1, layout.pad_bytes, layout.misalign_bytes);
            p.back().fill_random(seed + c, -1000, 1000);
        }
        return p;
    }
    GuardedImage<T> packed(uint64_t seed) const {
        GuardedImage<T> img(width, height, C, layout.pad_bytes, layout.misalign_bytes);
        img.fill_random(seed, -1000, 1000);
        return img;
    }
};

template <class T>
using Planes = std::vector<GuardedImage<T>>;

// Widths around the vector sizes, every layout.
template <class T, int C, class Check>
void for_each_case(Check check) {
    for (int width : {1, 2, 7, 8, 15, 16, 17, 31, 33, 47, 64, 70})
        for (const Layout& layout : layouts_for(sizeof(T))) check(CopyCase<T, C>{width, 3, layout});
}

// The argument lists: planes as three or four arguments.
template <class T, int C, auto F>
OruStatus split(const GuardedImage<T>& s, Planes<T>& p, OruSize r) {
    if constexpr (C == 3) return F(s.data(), s.step(), p[0].data(), p[1].data(), p[2].data(), p[0].step(), r);
    else return F(s.data(), s.step(), p[0].data(), p[1].data(), p[2].data(), p[3].data(), p[0].step(), r);
}
template <class T, int C, auto F>
OruStatus merge(const Planes<T>& p, GuardedImage<T>& d, OruSize r) {
    if constexpr (C == 3) return F(p[0].data(), p[1].data(), p[2].data(), p[0].step(), d.data(), d.step(), r);
    else return F(p[0].data(), p[1].data(), p[2].data(), p[3].data(), p[0].step(), d.data(), d.step(), r);
}

template <class T, int C, auto F>
void check_Channel() {
    for_each_case<T, C>([](const CopyCase<T, C>& cc) {
        const OruSize roi{cc.width, cc.height};
        const GuardedImage<T> src = cc.packed(cc.width);
        for (int coi = 0; coi < C; ++coi) {
            expect_same_on_every_path([&] {
                GuardedImage<T> dst(cc.width, 3, 1, cc.layout.pad_bytes, cc.layout.misalign_bytes);
                EXPECT_EQ(F(src.data(), src.step(), dst.data(), dst.step(), roi, coi), oruStsOk);
                for (int y = 0; y < 3; ++y)
                    for (int x = 0; x < cc.width; ++x) EXPECT_EQ(dst.at(x, y), src.at(x, y, coi));
                EXPECT_TRUE(dst.guards_intact());
                return dst.region_bytes();
            });
        }
    });
}

template <class T, int C, auto F>
void check_Split() {
    for_each_case<T, C>([](const CopyCase<T, C>& cc) {
        const OruSize roi{cc.width, cc.height};
        const GuardedImage<T> src = cc.packed(cc.width);
        expect_same_on_every_path([&] {
            auto planes = cc.planes(0);
            EXPECT_EQ((split<T, C, F>(src, planes, roi)), oruStsOk);
            for (int c = 0; c < C; ++c) {
                EXPECT_TRUE(planes[c].guards_intact());
                for (int y = 0; y < 3; ++y)
                    for (int x = 0; x < cc.width; ++x) EXPECT_EQ(planes[c].at(x, y), src.at(x, y, c));
            }
            return planes[C - 1].region_bytes();
        });
    });
}

template <class T, int C, auto F>
void check_Merge() {
    for_each_case<T, C>([](const CopyCase<T, C>& cc) {
        const OruSize roi{cc.width, cc.height};
        const auto planes = cc.planes(99);
        expect_same_on_every_path([&] {
            GuardedImage<T> dst = cc.packed(7);
            EXPECT_EQ((merge<T, C, F>(planes, dst, roi)), oruStsOk);
            EXPECT_TRUE(dst.guards_intact());
            for (int y = 0; y < 3; ++y)
                for (int x = 0; x < cc.width; ++x)
                    for (int c = 0; c < C; ++c) EXPECT_EQ(dst.at(x, y, c), planes[c].at(x, y));
            return dst.region_bytes();
        });
    });
}

struct Copy {
    const char* name;
    std::string layout;  // the descriptor the list's shape and channels give
    void (*check)();
};
const std::string kLayout_Channel = "_C#CC1R", kLayout_Split = "_C#P#R", kLayout_Merge = "_P#C#R";
std::string layout(std::string pattern, int channels, bool is_float) {
    for (char& c : pattern)
        if (c == '#') c = static_cast<char>('0' + channels);
    return (is_float ? "_32f" : "_8u") + pattern;
}
#define COPY_FUNCTION(name, shape, T, C) \
    Copy{#name, layout(kLayout_##shape, C, sizeof(T) == 4), check_##shape<T, C, name>},
const Copy kCopies[] = {ORUCV_COPY_FUNCTIONS(COPY_FUNCTION)};

}  // namespace

// Every copy against direct indexing, on every path, with guards around the
// destinations.
TEST(CopyKernels, EveryCopyOnEveryPath) {
    for (const Copy& copy : kCopies) {
        SCOPED_TRACE(copy.name);
        // The list makes both the copies and this table: its columns must
        // say what the name says.
        const std::string name = copy.name;
        EXPECT_EQ(name.substr(name.find('_', 3)), copy.layout);
        copy.check();
    }
}
