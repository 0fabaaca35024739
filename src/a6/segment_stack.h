// The segment stack of the flood fills, fixed-range and gradient: the
// buffer sizes, the segment record and its LIFO stack in the caller's
// buffer, and the pending marks that take over when the stack is full.
//
// The stack lives in the caller's buffer (6 bytes per pixel, one 24-byte
// record per four pixels) or, when that holds fewer than kLocalSegments
// records, in a small array of the fill's own. A run that finds the stack
// full is not lost: it is marked pending in one bit per pixel (the fixed
// fill's bitmap at the end of the buffer, a spare bit of the gradient fill's
// byte mask), and when the stack runs dry the marks are collected into new
// records. So no input makes a fill need more memory than it was given.
//
// Everything here has internal linkage: the kernel files, each compiled for
// its own instruction set, keep their own copies.
#pragma once

#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "core/bytes.h"

namespace orucv {
namespace a6 {
namespace {

// Size of the fixed fill's work buffer, (width * (24 * height)) >> 2 in
// unsigned 32-bit arithmetic, exactly as the size query reports it.
inline uint32_t stack_bytes(int width, int height) {
    return (static_cast<uint32_t>(width) * (24u * static_cast<uint32_t>(height))) >> 2;
}

// The gradient fill's buffer: its mask with a one-pixel frame, then the stack.
inline uint32_t grad_bytes(int width, int height) {
    return (static_cast<uint32_t>(width) + 2u) * (static_cast<uint32_t>(height) + 2u) + stack_bytes(width, height);
}

inline uint64_t mask_bytes(int width, int height) {
    return (static_cast<uint64_t>(width) + 2) * (static_cast<uint64_t>(height) + 2);
}

// One bit per pixel, rows rounded to whole bytes: never more than the
// buffer's 6 bytes per pixel.
inline int bitmap_pitch(int width) { return (width + 7) >> 3; }
inline uint64_t bitmap_bytes(int width, int height) {
    return static_cast<uint64_t>(bitmap_pitch(width)) * static_cast<uint64_t>(height);
}

// A maximal run of region pixels [left, right] on row y, found from the
// parent run [prev_left, prev_right] on row y + dir.
struct Segment {
    int32_t y, left, right, prev_left, prev_right, dir;
};
static_assert(sizeof(Segment) == 24, "a segment record is six 32-bit integers");

constexpr int kLocalSegments = 32;

class SegmentStack {
public:
    // room: the part of the caller's buffer left for records.
    SegmentStack(uint8_t* room, size_t room_bytes) {
        const size_t pad = (0u - reinterpret_cast<uintptr_t>(room)) & (alignof(Segment) - 1);
        const size_t capacity = room_bytes > pad ? (room_bytes - pad) / sizeof(Segment) : 0;
        if (capacity >= static_cast<size_t>(kLocalSegments)) {
            base_ = reinterpret_cast<Segment*>(room + pad);
            capacity_ = capacity;
        } else {
            base_ = local_;
            capacity_ = kLocalSegments;
        }
    }
    SegmentStack(const SegmentStack&) = delete;
    SegmentStack& operator=(const SegmentStack&) = delete;

    bool push(int y, int left, int right, int prev_left, int prev_right, int dir) {
        if (top_ == capacity_) return false;
        base_[top_++] = Segment{y, left, right, prev_left, prev_right, dir};
        return true;
    }
    bool pop(Segment& s) {
        if (top_ == 0) return false;
        s = base_[--top_];
        return true;
    }
    bool full() const { return top_ == capacity_; }

private:
    Segment* base_;
    size_t capacity_;
    size_t top_ = 0;
    Segment local_[kLocalSegments];
};

// Rows that may hold pending marks: [lo, hi], empty when lo > hi.
struct PendingRows {
    int lo = INT_MAX, hi = -1;
    bool any() const { return lo <= hi; }
    void add(int y) {
        if (y < lo) lo = y;
        if (y > hi) hi = y;
    }
};

// Pending runs of the fixed fill: one bit per pixel at the end of the
// caller's buffer, cleared on first use. The image itself is the visited
// set, so a collected run scans both neighbouring rows in full.
class PendingBits {
public:
    PendingBits(uint8_t* bits, int width, int height)
        : bits_(bits), pitch_(bitmap_pitch(width)), width_(width), height_(height) {}

    void mark(int y, int l, int r) {
        if (!cleared_) {
            fill_bytes(bits_, 0, static_cast<size_t>(bitmap_bytes(width_, height_)));
            cleared_ = true;
        }
        uint8_t* row = bits_ + static_cast<size_t>(pitch_) * y;
        for (int x = l; x <= r; ++x) row[x >> 3] |= static_cast<uint8_t>(1u << (x & 7));
        rows_.add(y);
    }
    bool any() const { return rows_.any(); }

    // Moves pending runs onto the (empty) stack until it is full; the row
    // where it stopped stays pending.
    void collect(SegmentStack& stack) {
        for (int y = rows_.lo; y <= rows_.hi; ++y) {
            uint8_t* row = bits_ + static_cast<size_t>(pitch_) * y;
            int x = 0;
            while (x < width_) {
                const int b = x >> 3;
                const unsigned byte = row[b] >> (x & 7);
                if (!byte) {
                    if (b >= (width_ - 1) >> 3) break;
                    x = (b + 1) << 3;
                    continue;
                }
                x += __builtin_ctz(byte);
                if (stack.full()) {
                    rows_.lo = y;
                    return;
                }
                const int l = x;
                while (x < width_ && (row[x >> 3] >> (x & 7) & 1u)) {
                    row[x >> 3] &= static_cast<uint8_t>(~(1u << (x & 7)));
                    ++x;
                }
                // Parent range just right of the run: both rows are scanned
                // over the whole run; a one-row image scans none.
                const int dir = y == height_ - 1 ? -1 : 1;
                stack.push(y, l, x - 1, x, x - 1, dir);
            }
        }
        rows_ = PendingRows();
    }

private:
    uint8_t* bits_;
    int pitch_, width_, height_;
    bool cleared_ = false;
    PendingRows rows_;
};

// Byte mask of the gradient fill, image column x of row y at
// mask[(y + 1) * pitch + x + 1]: 0 free, 1 visited (frame or region), and
// bit 2 added for a region run whose neighbours are still to be examined.
constexpr uint8_t kVisited = 1;
constexpr uint8_t kPending = 2;

class PendingMask {
public:
    PendingMask(uint8_t* mask, size_t pitch, int width) : mask_(mask), pitch_(pitch), width_(width) {}

    uint8_t* row(int y) const { return mask_ + pitch_ * static_cast<size_t>(y + 1) + 1; }

    void mark(int y, int l, int r) {
        fill_bytes(row(y) + l, kVisited | kPending, static_cast<size_t>(r - l + 1));
        rows_.add(y);
    }
    bool any() const { return rows_.any(); }

    void collect(SegmentStack& stack) {
        for (int y = rows_.lo; y <= rows_.hi; ++y) {
            uint8_t* m = row(y);
            int x = 0;
            while (x < width_) {
                if (x <= width_ - 8) {
                    uint64_t word;
                    std::memcpy(&word, m + x, 8);
                    if (!(word & 0x0202020202020202ull)) {
                        x += 8;
                        continue;
                    }
                }
                if (!(m[x] & kPending)) {
                    ++x;
                    continue;
                }
                if (stack.full()) {
                    rows_.lo = y;
                    return;
                }
                const int l = x;
                while (x < width_ && (m[x] & kPending)) m[x++] = kVisited;
                // The frame makes both neighbouring rows safe to scan.
                stack.push(y, l, x - 1, x, x - 1, 1);
            }
        }
        rows_ = PendingRows();
    }

private:
    uint8_t* mask_;
    size_t pitch_;
    int width_;
    PendingRows rows_;
};

// Bounding box of the filled pixels.
struct RegionBox {
    int min_x = INT_MAX, min_y = INT_MAX, max_x = INT_MIN, max_y = INT_MIN;

    void add(const Segment& s) {
        if (s.left < min_x) min_x = s.left;
        if (s.right > max_x) max_x = s.right;
        if (s.y < min_y) min_y = s.y;
        if (s.y > max_y) max_y = s.y;
    }
};

}  // namespace
}  // namespace a6
}  // namespace orucv
