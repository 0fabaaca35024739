// The fuzz harness every family's target shares. The input bytes choose the
// function, its sizes, steps, pointer alignment, scalar arguments and
// pixels; images end against an inaccessible page (tests/support/image.h)
// with guard bytes before, between and after their rows; every call runs on
// the scalar twin and on every SIMD level from the same starting bytes, and
// the harness aborts with a message when
//   - a call wrote outside the rows it may write (guards, sources, padding),
//   - a call that failed wrote anything at all,
//   - a call returned a status the library does not define,
//   - a level's statuses or bytes differ from the scalar twin's.
// AddressSanitizer catches reads outside the rows (the guards are poisoned).
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <type_traits>
#include <vector>

#include "core/cpu.h"
#include "orucv.h"
#include "support/image.h"

namespace orufuzz {

// ---- Reading the input -------------------------------------------------------

class Input {
public:
    // Past its end the input goes on with bytes derived from its contents
    // and the position, so short inputs still make ordinary calls.
    Input(const uint8_t* data, size_t size) : data_(data), size_(size) {
        for (size_t i = 0; i < size; ++i) tail_seed_ = (tail_seed_ ^ data[i]) * 0x100000001B3ull;
    }

    uint8_t byte() {
        if (pos_ < size_) return data_[pos_++];
        uint64_t z = tail_seed_ + 0x9E3779B97F4A7C15ull * ++pos_;  // splitmix64
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return static_cast<uint8_t>(z ^ (z >> 31));
    }
    uint16_t u16() { return static_cast<uint16_t>(byte() | byte() << 8); }
    uint32_t u32() { return static_cast<uint32_t>(u16()) | static_cast<uint32_t>(u16()) << 16; }
    // lo..hi, both included.
    int range(int lo, int hi) {
        if (hi < lo) return lo;
        const uint32_t span = static_cast<uint32_t>(hi) - static_cast<uint32_t>(lo) + 1u;
        const uint32_t r = span <= 256 ? byte() : span <= 65536 ? u16() : u32();
        return static_cast<int>(static_cast<uint32_t>(lo) + (span ? r % span : r));
    }
    // True with probability 1/n.
    bool one_in(int n) { return byte() % n == 0; }
    template <class T, size_t N>
    T pick(const T (&choices)[N]) {
        return choices[byte() % N];
    }

    // A side of an image: mostly small, odd ones favoured, up to `max`.
    int side(int max = 300);
    // An int argument near the expected ones: a value of lo..hi most of the
    // time, else an edge (0, -1, INT_MIN, INT_MAX, lo - 1, hi + 1, any).
    int arg(int lo, int hi);
    // A float: ordinary values, signed zeros, infinities, NaNs (quiet and
    // signalling, both signs), denormals and extremes.
    float real(float lo = -1000.0f, float hi = 1000.0f);
    // A row step for rows of row_bytes: exact, padded, odd, too small, zero
    // or negative.
    int step(int row_bytes, int elem);

    uint64_t seed() { return static_cast<uint64_t>(u32()) << 32 | u32(); }
    size_t remaining() const { return pos_ < size_ ? size_ - pos_ : 0; }
    size_t position() const { return pos_; }
    void rewind(size_t pos) { pos_ = pos; }

private:
    const uint8_t* data_;
    size_t size_;
    size_t pos_ = 0;
    uint64_t tail_seed_ = 0xCBF29CE484222325ull;
};

// ---- Images ----------------------------------------------------------------

enum class Role {
    In,       // read only: no byte may change
    Out,      // the first `writable_rows` rows may change
    Scratch,  // as Out, but its bytes are not compared between levels
    Handle,   // a variable the library sets to a state it allocates: any
              // byte may change and the value is not compared between levels
};

class Image {
public:
    Image(const char* name, Role role, int row_bytes, int rows, int step, int elem, int gap);
    ~Image();
    Image(const Image&) = delete;
    Image& operator=(const Image&) = delete;

    template <class T = uint8_t>
    T* data() const {
        return reinterpret_cast<T*>(first_);
    }
    template <class T = uint8_t>
    T* row(int y) const {
        return reinterpret_cast<T*>(first_ + static_cast<ptrdiff_t>(layout_step_) * y);
    }
    int step() const { return step_; }
    int rows() const { return rows_; }
    int row_bytes() const { return row_bytes_; }
    const char* name() const { return name_; }
    Role role() const { return role_; }

    // Rows the next call may write (Out and Scratch: all rows by default).
    void set_writable_rows(int rows) { writable_rows_ = rows; }
    int writable_rows() const { return writable_rows_; }
    void set_role(Role role) { role_ = role; }
    // A failing call may still set this image's bytes to zero (size queries
    // that clear their result before they fail).
    void allow_zero_on_failure() { zero_on_failure_ = true; }
    bool zero_on_failure() const { return zero_on_failure_; }

    // Every byte of the mapping's used part, guards included.
    void snapshot(std::vector<uint8_t>& out) const;
    void restore(const std::vector<uint8_t>& bytes);
    // Offset in the snapshot of the first pixel.
    size_t first_offset() const { return static_cast<size_t>(first_ - mem_->begin()); }
    bool writable(size_t snapshot_offset) const;

private:
    void poison();

    const char* name_;
    Role role_;
    int row_bytes_, rows_, step_, layout_step_;
    int writable_rows_;
    bool zero_on_failure_ = false;
    std::unique_ptr<orutest::PageEndBuffer> mem_;
    uint8_t* first_;
    size_t used_;
};

// ---- Pixels ------------------------------------------------------------------

// Fills the image's rows with values of T chosen by the input: its own bytes,
// noise, a few distinct values, a constant, or (floats) special values.
template <class T>
void fill(Image& image, Input& in);
// A value of T of the same kinds, for scalar arguments.
template <class T>
T value_of(Input& in);

// Sequences of strip calls (strip filters, morphology): at most kMaxStrips
// strips, each with its own source and destination image names.
constexpr int kMaxStrips = 8;
constexpr const char* kStripSources[kMaxStrips] = {"src0", "src1", "src2", "src3", "src4", "src5", "src6", "src7"};
constexpr const char* kStripDestinations[kMaxStrips] = {"dst0", "dst1", "dst2", "dst3",
                                                        "dst4", "dst5", "dst6", "dst7"};

// The data-type code of the size queries and constructors for T.
template <class T>
constexpr int data_type_of() {
    return std::is_same<T, Oru32f>::value  ? oruDataType32f
           : std::is_same<T, Oru8s>::value ? oruDataType8s
                                           : oruDataType8u;
}
// A data-type code: mostly a valid one, now and then anything.
inline int data_type_arg(Input& in) {
    static const int kCodes[] = {oruDataType8u, oruDataType8s, oruDataType32f, 0, 3, 10, -1};
    return in.one_in(4) ? in.arg(-2, 12) : in.pick(kCodes);
}

// ---- The harness -------------------------------------------------------------

class Harness {
public:
    Harness(const uint8_t* data, size_t size) : in(data, size) {}

    Input in;

    // An image of `rows` rows of `row_bytes` bytes with the given step (the
    // mapping is laid out for it; steps below 1 lay rows out tightly so an
    // accepted one shows as a fault), ending a few input-chosen bytes
    // (multiples of elem) before the inaccessible page.
    Image& image(const char* name, Role role, int row_bytes, int rows, int step, int elem);
    // An image with a step chosen by the input, filled with values of T.
    template <class T>
    Image& image_of(const char* name, Role role, int width, int channels, int rows) {
        const int row_bytes = width * channels * static_cast<int>(sizeof(T));
        Image& im = image(name, role, row_bytes, rows, in.step(row_bytes, sizeof(T)), sizeof(T));
        fill<T>(im, in);
        return im;
    }
    // A region size: sides from Input::side, now and then negative; at
    // most `area` pixels.
    OruSize roi(int max = 300, int area = 1 << 16) {
        int w = in.side(max), ht = in.side(max);
        if (w > 0 && ht > area / w) ht = area / w;
        if (in.one_in(32)) w = -1 - in.range(0, 3);
        if (in.one_in(32)) ht = -1 - in.range(0, 3);
        return OruSize{w, ht};
    }
    // The pointer, or now and then NULL.
    template <class T>
    T* maybe_null(T* p) {
        return in.one_in(40) ? nullptr : p;
    }
    // Room for `count` values of T the library fills in (a result, a size,
    // a state handle): one row, aligned for T, against the page.
    template <class T>
    Image& cells(const char* name, int count = 1, Role role = Role::Out) {
        const int bytes = static_cast<int>(sizeof(T)) * count;
        return image(name, role, bytes, 1, bytes, alignof(T));
    }

    // Runs `sequence` (a few calls made through call()) once per SIMD level,
    // each time from the same bytes in every image and the same position in
    // the input (a sequence may read its arguments as it goes, and branch on
    // statuses), and compares the statuses and the bytes after every call
    // with the scalar run. Images are made before, never inside.
    template <class Sequence>
    void on_every_level(Sequence sequence) {
        begin_levels();
        for (size_t l = 0; l < levels_.size(); ++l) {
            begin_level(l);
            sequence();
            end_level();
        }
    }
    // One call of the function `name`; returns its status.
    template <class Call>
    OruStatus call(const char* name, Call fn) {
        before_call();
        const OruStatus status = fn();
        after_call(name, status);
        return status;
    }
    [[noreturn]] static void fail(const char* fmt, ...) __attribute__((format(printf, 1, 2)));

private:
    void begin_levels();
    void begin_level(size_t level);
    void end_level();
    void before_call();
    void after_call(const char* name, OruStatus status);

    std::vector<std::unique_ptr<Image>> images_;
    std::vector<orucv::SimdLevel> levels_;
    std::vector<std::vector<uint8_t>> start_;   // each image at the start of on_every_level
    std::vector<std::vector<uint8_t>> before_;  // each image before the current call
    std::vector<uint8_t> after_;
    // The scalar run: per call, its status and each image's bytes after it.
    struct Record {
        const char* name;
        OruStatus status;
        std::vector<std::vector<uint8_t>> bytes;
    };
    std::vector<Record> reference_;
    size_t level_ = 0, call_ = 0;
    size_t fixed_images_ = 0;
    size_t input_at_start_ = 0;
    orucv::SimdLevel previous_level_ = orucv::SimdLevel::Scalar;
};

// ---- Targets -----------------------------------------------------------------

// A family's fuzzed functions: its list expanded into entries.
struct Entry {
    const char* name;
    void (*run)(Harness& h, const char* name);
};

// Runs the entry the input's first byte chooses (recorded for the replay
// driver's check that the corpus reaches every function).
void run_entry(const Entry* entries, size_t count, const uint8_t* data, size_t size);

// The family's target: defines the fuzzer entry point over its entries.
#define ORUFUZZ_TARGET(entries)                                                          \
    extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {            \
        ::orufuzz::run_entry(entries, sizeof(entries) / sizeof(entries[0]), data, size); \
        return 0;                                                                        \
    }

// The replay driver's view of what the corpus reached.
size_t entry_count();
const char* entry_name(size_t i);
bool entry_reached(size_t i);

}  // namespace orufuzz
