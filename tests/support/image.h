// Test images whose region of interest ends against an inaccessible page:
// a read or write past the last row faults at once. Guard bytes fill the
// margin before the region, the padding after each row and any gap before
// the page; AddressSanitizer builds also poison them, so a read there fails
// too, and guards_intact() finds any write outside the region. A snapshot of
// all bytes proves that a failed call wrote nothing.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <type_traits>
#include <vector>

#include "support/random.h"

// AddressSanitizer builds: gcc says so with __SANITIZE_ADDRESS__, clang
// through __has_feature.
#if defined(__SANITIZE_ADDRESS__)
#define ORUTEST_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ORUTEST_ASAN 1
#endif
#endif

#if defined(ORUTEST_ASAN)
#include <sanitizer/asan_interface.h>
#define ORUTEST_POISON(p, n) ASAN_POISON_MEMORY_REGION(p, n)
#define ORUTEST_UNPOISON(p, n) ASAN_UNPOISON_MEMORY_REGION(p, n)
#else
#define ORUTEST_POISON(p, n) ((void)(p), (void)(n))
#define ORUTEST_UNPOISON(p, n) ((void)(p), (void)(n))
#endif

namespace orutest {

constexpr uint8_t kGuardByte = 0xA5;

// Bytes that end against an inaccessible page, with a margin before them.
class PageEndBuffer {
public:
    // `gap` guard bytes lie between the last usable byte and the page.
    PageEndBuffer(size_t bytes, size_t margin, size_t gap) {
        page_ = static_cast<size_t>(sysconf(_SC_PAGESIZE));
        const size_t used = margin + bytes + gap;
        mapped_ = (used + page_ - 1) / page_ * page_ + page_;
        void* m = mmap(nullptr, mapped_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (m == MAP_FAILED) std::abort();
        base_ = static_cast<uint8_t*>(m);
        if (mprotect(base_ + mapped_ - page_, page_, PROT_NONE) != 0) std::abort();
        end_ = base_ + mapped_ - page_;
        begin_ = end_ - used;
        std::memset(begin_, kGuardByte, used);
    }
    ~PageEndBuffer() {
        ORUTEST_UNPOISON(base_, mapped_ - page_);
        munmap(base_, mapped_);
    }
    PageEndBuffer(const PageEndBuffer&) = delete;
    PageEndBuffer& operator=(const PageEndBuffer&) = delete;

    uint8_t* begin() const { return begin_; }
    uint8_t* end() const { return end_; }  // the first inaccessible byte

private:
    size_t page_, mapped_;
    uint8_t* base_;
    uint8_t* begin_;
    uint8_t* end_;
};

template <class T>
class GuardedImage {
public:
    // pad_bytes are added to every row step; the region ends gap_bytes
    // before the inaccessible page (which also moves the first pixel off
    // its alignment).
    GuardedImage(int width, int height, int channels = 1, int pad_bytes = 0, int gap_bytes = 0)
        : width_(width), height_(height), channels_(channels), pad_(pad_bytes), gap_(gap_bytes),
          step_(width * channels * static_cast<int>(sizeof(T)) + pad_bytes),
          buffer_(extent(), kMargin, static_cast<size_t>(gap_bytes)) {
        begin_ = buffer_.begin() + kMargin;
        poison_outside_region();
    }
    // A copy has the same geometry and region; its guards are fresh.
    GuardedImage(const GuardedImage& other)
        : GuardedImage(other.width_, other.height_, other.channels_, other.pad_, other.gap_) {
        for (int y = 0; y < height_; ++y) std::memcpy(row(y), other.row(y), row_bytes());
    }
    GuardedImage& operator=(const GuardedImage&) = delete;
    ~GuardedImage() { ORUTEST_UNPOISON(buffer_.begin(), buffer_.end() - buffer_.begin()); }

    T* data() { return reinterpret_cast<T*>(begin_); }
    const T* data() const { return reinterpret_cast<const T*>(begin_); }
    int step() const { return step_; }
    int width() const { return width_; }
    int height() const { return height_; }
    int channels() const { return channels_; }

    T* row(int y) { return reinterpret_cast<T*>(begin_ + static_cast<ptrdiff_t>(step_) * y); }
    const T* row(int y) const { return reinterpret_cast<const T*>(begin_ + static_cast<ptrdiff_t>(step_) * y); }
    T& at(int x, int y, int c = 0) { return row(y)[x * channels_ + c]; }
    const T& at(int x, int y, int c = 0) const { return row(y)[x * channels_ + c]; }

    void fill(T value) {
        for (int y = 0; y < height_; ++y)
            for (int i = 0; i < width_ * channels_; ++i) row(y)[i] = value;
    }

    // Integers over their whole range (or lo..hi); floats uniform in lo..hi.
    void fill_random(uint64_t seed, double lo = 0, double hi = 0) {
        Rng rng(seed);
        for (int y = 0; y < height_; ++y)
            for (int i = 0; i < width_ * channels_; ++i) row(y)[i] = random_value(rng, lo, hi);
    }

    // True when every byte outside the region still holds the guard byte.
    bool guards_intact() const {
        const std::vector<uint8_t> all = snapshot();
        for (size_t i = 0; i < all.size(); ++i)
            if (!in_region(buffer_.begin() + i - begin_) && all[i] != kGuardByte) return false;
        return true;
    }

    // For calls that address the image with another step than its own (the
    // caller then vouches for the padding too): the padding after each row
    // may be read without a fault. Writes there still show in guards_intact().
    void expose_padding() {
        padding_exposed_ = true;
        ORUTEST_UNPOISON(begin_, extent());
    }

    // Every byte of the buffer, region and guards: compare snapshots of the
    // same image (before and after a call), never of two images.
    std::vector<uint8_t> snapshot() const {
        const size_t n = static_cast<size_t>(buffer_.end() - buffer_.begin());
        ORUTEST_UNPOISON(buffer_.begin(), n);
        std::vector<uint8_t> out(buffer_.begin(), buffer_.end());
        const_cast<GuardedImage*>(this)->poison_outside_region();
        return out;
    }
    // The region's bytes only, row after row.
    std::vector<uint8_t> region_bytes() const {
        std::vector<uint8_t> out;
        for (int y = 0; y < height_; ++y) {
            const uint8_t* r = reinterpret_cast<const uint8_t*>(row(y));
            out.insert(out.end(), r, r + row_bytes());
        }
        return out;
    }

private:
    static constexpr size_t kMargin = 128;

    size_t row_bytes() const { return static_cast<size_t>(width_) * channels_ * sizeof(T); }
    // Bytes from the first pixel to the end of the last row.
    size_t extent() const {
        if (height_ <= 0) return 0;
        return static_cast<size_t>(step_) * (height_ - 1) + row_bytes();
    }
    bool in_region(ptrdiff_t off) const {
        if (off < 0 || height_ <= 0 || step_ <= 0) return false;
        const ptrdiff_t y = off / step_;
        return y < height_ && static_cast<size_t>(off - y * step_) < row_bytes();
    }
    // The margin, the padding after every row and the gap before the page.
    void poison_outside_region() {
#if defined(ORUTEST_ASAN)
        uint8_t* from = buffer_.begin();
        if (padding_exposed_) {
            ORUTEST_POISON(from, begin_ - from);
            from = begin_ + extent();
        }
        for (int y = 0; y < height_ && !padding_exposed_; ++y) {
            uint8_t* r = reinterpret_cast<uint8_t*>(row(y));
            if (r > from) ORUTEST_POISON(from, r - from);
            if (r + row_bytes() > from) from = r + row_bytes();
        }
        ORUTEST_POISON(from, buffer_.end() - from);
#endif
    }

    static T random_value(Rng& rng, double lo, double hi) {
        if constexpr (std::is_floating_point<T>::value) {
            return static_cast<T>(rng.uniform(static_cast<float>(lo), static_cast<float>(hi)));
        } else {
            if (lo == hi) return static_cast<T>(rng.next());
            return static_cast<T>(rng.uniform(static_cast<int>(lo), static_cast<int>(hi)));
        }
    }

    int width_, height_, channels_, pad_, gap_, step_;
    bool padding_exposed_ = false;
    PageEndBuffer buffer_;
    uint8_t* begin_;
};

// Region layouts worth covering: tight rows (recast into one), padded rows,
// and the region's end (so its first pixel) moved off the page boundary.
struct Layout {
    int pad_bytes;
    int misalign_bytes;
};
inline std::vector<Layout> layouts_for(int element_bytes) {
    return {{0, 0}, {0, element_bytes}, {4 * element_bytes, 0}, {12 * element_bytes, 3 * element_bytes}};
}

}  // namespace orutest
