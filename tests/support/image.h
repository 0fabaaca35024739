// Test images whose region of interest sits inside guard bytes: a margin
// above and below, padding after each row, and an optional misalignment of
// the first pixel. Anything written outside the region shows up in
// guards_intact(); a snapshot of all bytes proves a failed call wrote nothing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <vector>

#include "support/random.h"

namespace orutest {

constexpr uint8_t kGuardByte = 0xA5;

template <class T>
class GuardedImage {
public:
    // pad_bytes are added to every row step; misalign_bytes shift the region
    // off a 64-byte boundary.
    GuardedImage(int width, int height, int channels = 1, int pad_bytes = 0, int misalign_bytes = 0)
        : width_(width), height_(height), channels_(channels), pad_(pad_bytes), misalign_(misalign_bytes),
          step_(width * channels * static_cast<int>(sizeof(T)) + pad_bytes) {
        const size_t body = static_cast<size_t>(step_) * (height > 0 ? height : 0);
        storage_.assign(kMargin * 2 + body + 64 + misalign_bytes, kGuardByte);
        const uintptr_t base = reinterpret_cast<uintptr_t>(storage_.data()) + kMargin;
        begin_ = reinterpret_cast<uint8_t*>(((base + 63) & ~uintptr_t(63)) + misalign_bytes);
    }
    // A copy has the same geometry and region; its guards are fresh.
    GuardedImage(const GuardedImage& other)
        : GuardedImage(other.width_, other.height_, other.channels_, other.pad_, other.misalign_) {
        const size_t row_bytes = static_cast<size_t>(width_) * channels_ * sizeof(T);
        for (int y = 0; y < height_; ++y) std::memcpy(row(y), other.row(y), row_bytes);
    }
    GuardedImage& operator=(const GuardedImage&) = delete;

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
        const size_t row_bytes = static_cast<size_t>(width_) * channels_ * sizeof(T);
        for (size_t i = 0; i < storage_.size(); ++i) {
            const ptrdiff_t off = reinterpret_cast<const uint8_t*>(storage_.data()) + i - begin_;
            if (in_region(off, row_bytes)) continue;
            if (storage_[i] != kGuardByte) return false;
        }
        return true;
    }

    // Every byte of the buffer, region and guards: compare snapshots of the
    // same image (before and after a call), never of two images.
    std::vector<uint8_t> snapshot() const { return storage_; }
    // The region's bytes only, row after row.
    std::vector<uint8_t> region_bytes() const {
        std::vector<uint8_t> out;
        const size_t row_bytes = static_cast<size_t>(width_) * channels_ * sizeof(T);
        for (int y = 0; y < height_; ++y) {
            const uint8_t* r = reinterpret_cast<const uint8_t*>(row(y));
            out.insert(out.end(), r, r + row_bytes);
        }
        return out;
    }

private:
    static constexpr size_t kMargin = 128;

    bool in_region(ptrdiff_t off, size_t row_bytes) const {
        if (off < 0 || height_ <= 0) return false;
        const ptrdiff_t y = off / step_;
        return y < height_ && static_cast<size_t>(off - y * step_) < row_bytes;
    }

    static T random_value(Rng& rng, double lo, double hi) {
        if constexpr (std::is_floating_point<T>::value) {
            return static_cast<T>(rng.uniform(static_cast<float>(lo), static_cast<float>(hi)));
        } else {
            if (lo == hi) return static_cast<T>(rng.next());
            return static_cast<T>(rng.uniform(static_cast<int>(lo), static_cast<int>(hi)));
        }
    }

    int width_, height_, channels_, pad_, misalign_, step_;
    std::vector<uint8_t> storage_;
    uint8_t* begin_;
};

// Region layouts worth covering: tight rows (recast into one), padded rows,
// and a misaligned first pixel.
struct Layout {
    int pad_bytes;
    int misalign_bytes;
};
inline std::vector<Layout> layouts_for(int element_bytes) {
    return {{0, 0}, {0, element_bytes}, {4 * element_bytes, 0}, {12 * element_bytes, 3 * element_bytes}};
}

}  // namespace orutest
