#include "support/harness.h"

#include <cfloat>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

#include "support/random.h"

namespace orufuzz {

// ---- Input -------------------------------------------------------------------

int Input::side(int max) {
    const uint8_t b = byte();
    int v;
    if (b < 160 || max < 25) v = b % 25;
    else if (b < 224 || max < 101) v = range(25, max < 100 ? max : 100);
    else v = range(101, max);
    if (v < max && (byte() & 1)) v |= 1;
    return v < max ? v : max;
}

int Input::arg(int lo, int hi) {
    switch (byte() % 16) {
    case 14: {
        if (byte() & 1) return lo == INT_MIN ? lo : lo - 1;
        return hi == INT_MAX ? hi : hi + 1;
    }
    case 15: {
        static const int edges[] = {0, -1, 1, INT_MIN, INT_MAX, INT_MIN + 1, INT_MAX - 1};
        return byte() & 1 ? pick(edges) : static_cast<int>(u32());
    }
    default: return range(lo, hi);
    }
}

float Input::real(float lo, float hi) {
    auto from_bits = [](uint32_t b) {
        float f;
        std::memcpy(&f, &b, 4);
        return f;
    };
    switch (byte() % 24) {
    case 8: return 0.0f;
    case 9: return -0.0f;
    case 10: return from_bits(0x7F800000u);
    case 11: return from_bits(0xFF800000u);
    case 12: return from_bits(0x7FC00000u);
    case 13: return from_bits(0xFFC00000u | (u16() & 0x3FFFFF));
    case 14: return from_bits(0x7F800001u | (u32() & 0x3FFFFF));  // signalling
    case 15: return from_bits(u32() & 0x807FFFFFu);               // denormal
    case 16: return FLT_MAX;
    case 17: return -FLT_MAX;
    case 18: return FLT_MIN;
    case 19: return 1.0f;
    case 20: return -1.0f;
    case 21: return static_cast<float>(range(-300, 300));
    case 22: return from_bits(u32());
    case 23: return 0.5f;
    default: return lo + (hi - lo) * static_cast<float>(u32() >> 8) * (1.0f / 16777216.0f);
    }
}

int Input::step(int row_bytes, int elem) {
    switch (byte() % 32) {
    case 22:
    case 23:
    case 24:
    case 25: return row_bytes + elem * range(1, 40);
    case 26: return row_bytes + range(1, 7);
    case 27: return row_bytes - range(1, row_bytes > 1 ? row_bytes : 1);
    case 28: return row_bytes - elem;
    case 29: return 0;
    case 30: return -row_bytes;
    case 31: {
        static const int odd[] = {-1, INT_MIN, 1};
        return pick(odd);
    }
    default: return row_bytes;
    }
}

// ---- Images ------------------------------------------------------------------

namespace {
constexpr size_t kMargin = 64;
}

Image::Image(const char* name, Role role, int row_bytes, int rows, int step, int elem, int gap)
    : name_(name),
      role_(role),
      row_bytes_(row_bytes < 0 ? 0 : row_bytes),
      rows_(rows < 0 ? 0 : rows),
      step_(step),
      layout_step_(step >= 1 ? step : row_bytes_),
      writable_rows_(role == Role::In ? 0 : rows_) {
    const size_t extent =
        rows_ > 0 && row_bytes_ > 0 ? static_cast<size_t>(layout_step_) * (rows_ - 1) + row_bytes_ : 0;
    mem_.reset(new orutest::PageEndBuffer(extent + gap + elem, kMargin, 0));
    const uintptr_t end = reinterpret_cast<uintptr_t>(mem_->end());
    first_ = reinterpret_cast<uint8_t*>((end - gap - extent) / elem * elem);
    used_ = static_cast<size_t>(mem_->end() - mem_->begin());
    poison();
}

Image::~Image() { ORUTEST_UNPOISON(mem_->begin(), used_); }

void Image::poison() {
#if defined(ORUTEST_ASAN)
    if (role_ == Role::Handle) return;
    uint8_t* from = mem_->begin();
    for (int y = 0; y < rows_ && row_bytes_ > 0; ++y) {
        uint8_t* r = row(y);
        if (r > from) ORUTEST_POISON(from, r - from);
        if (r + row_bytes_ > from) from = r + row_bytes_;
    }
    ORUTEST_POISON(from, mem_->end() - from);
#endif
}

void Image::snapshot(std::vector<uint8_t>& out) const {
    ORUTEST_UNPOISON(mem_->begin(), used_);
    out.assign(mem_->begin(), mem_->end());
    const_cast<Image*>(this)->poison();
}

void Image::restore(const std::vector<uint8_t>& bytes) {
    ORUTEST_UNPOISON(mem_->begin(), used_);
    std::memcpy(mem_->begin(), bytes.data(), used_);
    poison();
}

bool Image::writable(size_t snapshot_offset) const {
    if (role_ == Role::Handle) return true;
    if (role_ == Role::In || writable_rows_ <= 0 || row_bytes_ <= 0) return false;
    const ptrdiff_t r = static_cast<ptrdiff_t>(snapshot_offset) - static_cast<ptrdiff_t>(first_offset());
    if (r < 0) return false;
    const int rows = writable_rows_ < rows_ ? writable_rows_ : rows_;
    if (layout_step_ < row_bytes_) return r < static_cast<ptrdiff_t>(layout_step_) * (rows - 1) + row_bytes_;
    const ptrdiff_t y = r / layout_step_;
    return y < rows && r - y * layout_step_ < row_bytes_;
}

// ---- Pixels ------------------------------------------------------------------

namespace {

template <class T>
T special(orutest::Rng& rng) {
    if constexpr (std::is_floating_point<T>::value) {
        static const uint32_t bits[] = {0x00000000u, 0x80000000u, 0x7F800000u, 0xFF800000u, 0x7FC00000u,
                                        0xFFC00000u, 0x7F800001u, 0x7FBFFFFFu, 0x00000001u, 0x807FFFFFu,
                                        0x7F7FFFFFu, 0xFF7FFFFFu, 0x3F800000u, 0xBF800000u, 0x00800000u};
        float f;
        std::memcpy(&f, &bits[rng.next() % (sizeof(bits) / 4)], 4);
        return f;
    } else if constexpr (std::is_signed<T>::value) {
        const T lo = std::numeric_limits<T>::min(), hi = std::numeric_limits<T>::max();
        const T choices[] = {lo, hi, 0, -1, 1, static_cast<T>(lo + 1), static_cast<T>(hi - 1)};
        return choices[rng.next() % 7];
    } else {
        const T choices[] = {0, 255, 1, 254, 127, 128};
        return choices[rng.next() % 6];
    }
}

template <class T>
T noise(orutest::Rng& rng, bool raw) {
    if constexpr (std::is_floating_point<T>::value) {
        if (raw) {
            const uint32_t b = rng.next();
            float f;
            std::memcpy(&f, &b, 4);
            return f;
        }
        return rng.uniform(-1000.0f, 1000.0f);
    } else {
        return static_cast<T>(rng.next());
    }
}

}  // namespace

template <class T>
T value_of(Input& in) {
    if constexpr (std::is_floating_point<T>::value) {
        return in.real();
    } else {
        orutest::Rng rng(in.u32());
        return in.one_in(3) ? special<T>(rng) : static_cast<T>(in.u16());
    }
}

template <class T>
void fill(Image& image, Input& in) {
    const int n = image.row_bytes() / static_cast<int>(sizeof(T));
    const int mode = in.byte() % 8;
    orutest::Rng rng(in.seed());
    T a = value_of<T>(in), b = value_of<T>(in);
    // Rows at odd steps may sit off the element's alignment: bytewise stores.
    for (int y = 0; y < image.rows(); ++y) {
        uint8_t* r = image.row(y);
        if (mode == 6) {
            // The input's own bytes, as long as they last.
            for (int i = 0; i < n * static_cast<int>(sizeof(T)); ++i) r[i] = in.byte();
            continue;
        }
        for (int i = 0; i < n; ++i) {
            T v;
            switch (mode) {
            case 0: v = noise<T>(rng, false); break;
            case 1: v = noise<T>(rng, true); break;
            case 2: v = static_cast<T>(rng.next() % 4); break;
            case 3: v = rng.next() & 1 ? a : b; break;
            case 4: v = a; break;
            case 5: v = special<T>(rng); break;
            default: v = static_cast<T>((i + y) * 3 + static_cast<int>(rng.next() % 5)); break;
            }
            std::memcpy(r + i * sizeof(T), &v, sizeof(T));
        }
    }
}

template void fill<Oru8u>(Image&, Input&);
template void fill<Oru8s>(Image&, Input&);
template void fill<Oru16s>(Image&, Input&);
template void fill<Oru32f>(Image&, Input&);
template Oru8u value_of<Oru8u>(Input&);
template Oru8s value_of<Oru8s>(Input&);
template Oru16s value_of<Oru16s>(Input&);
template Oru32f value_of<Oru32f>(Input&);

// ---- Harness -----------------------------------------------------------------

namespace {

const char* level_name(orucv::SimdLevel level) {
    switch (level) {
    case orucv::SimdLevel::Avx2: return "avx2";
    case orucv::SimdLevel::Sse2: return "sse2";
    default: return "scalar";
    }
}

bool known_status(OruStatus s) {
    static const OruStatus known[] = {oruStsNoOperation, oruStsOk,          oruStsError,       oruStsBadLine,
                                      oruStsBadArg,      oruStsSize,        oruStsNullPointer, oruStsMemAlloc,
                                      oruStsOutOfRange,  oruStsDataType,    oruStsStep,        oruStsContextMismatch,
                                      oruStsCoi,         oruStsNumChannels, oruStsNotEvenStep};
    for (OruStatus k : known)
        if (k == s) return true;
    return false;
}

// ORUFUZZ_TRACE=1 prints every call with its level and status.
bool trace() {
    static const bool on = std::getenv("ORUFUZZ_TRACE") != nullptr;
    return on;
}

}  // namespace

void Harness::fail(const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    std::fputs("orufuzz: ", stderr);
    std::vfprintf(stderr, fmt, args);
    std::fputc('\n', stderr);
    va_end(args);
    std::fflush(stderr);
    std::abort();
}

Image& Harness::image(const char* name, Role role, int row_bytes, int rows, int step, int elem) {
    if (!levels_.empty()) fail("image %s made inside a sequence", name);
    // Most images end right at the page; the others a few elements before.
    const int gap = in.one_in(2) ? 0 : elem * in.range(1, 8);
    images_.emplace_back(new Image(name, role, row_bytes, rows, step, elem, gap));
    return *images_.back();
}

void Harness::begin_levels() {
    levels_.clear();
    levels_.push_back(orucv::SimdLevel::Scalar);
    const int best = static_cast<int>(orucv::detected_simd_level());
    for (int l = 1; l <= best; ++l) levels_.push_back(static_cast<orucv::SimdLevel>(l));
    fixed_images_ = images_.size();
    start_.resize(images_.size());
    before_.resize(images_.size());
    for (size_t i = 0; i < images_.size(); ++i) images_[i]->snapshot(start_[i]);
    input_at_start_ = in.position();
    reference_.clear();
    previous_level_ = orucv::simd_level();
}

void Harness::begin_level(size_t level) {
    level_ = level;
    call_ = 0;
    for (size_t i = 0; i < images_.size(); ++i) images_[i]->restore(start_[i]);
    in.rewind(input_at_start_);
    orucv::force_simd_level(levels_[level]);
}

void Harness::end_level() {
    if (level_ > 0 && call_ != reference_.size())
        fail("%s made %zu calls, the scalar twin %zu", level_name(levels_[level_]), call_, reference_.size());
    if (level_ + 1 == levels_.size()) {
        orucv::force_simd_level(previous_level_);
        levels_.clear();
    }
}

void Harness::before_call() {
    if (images_.size() != fixed_images_) fail("image made inside a sequence");
    for (size_t i = 0; i < images_.size(); ++i) images_[i]->snapshot(before_[i]);
}

void Harness::after_call(const char* name, OruStatus status) {
    const char* level = level_name(levels_[level_]);
    if (trace()) std::fprintf(stderr, "  %s %s -> %d\n", level, name, status);
    if (!known_status(status)) fail("%s returned the unknown status %d on %s", name, status, level);
    Record* ref = nullptr;
    if (level_ == 0) {
        reference_.push_back(Record{name, status, {}});
        ref = &reference_.back();
    } else {
        if (call_ >= reference_.size()) fail("%s: call %zu on %s has no scalar twin", name, call_, level);
        ref = &reference_[call_];
        if (ref->status != status)
            fail("%s (call %zu) returned %d on %s, %d on the scalar twin", name, call_, status, level, ref->status);
    }
    for (size_t i = 0; i < images_.size(); ++i) {
        const Image& im = *images_[i];
        im.snapshot(after_);
        const std::vector<uint8_t>& was = before_[i];
        if (after_ != was) {
            for (size_t k = 0; k < after_.size(); ++k) {
                if (after_[k] == was[k]) continue;
                const long at = static_cast<long>(k) - static_cast<long>(im.first_offset());
                if (status < 0 && im.role() != Role::Handle && !(im.zero_on_failure() && after_[k] == 0))
                    fail("%s (call %zu) failed with %d on %s but changed %s at byte %ld", name, call_, status, level,
                         im.name(), at);
                if (!im.writable(k))
                    fail(
                        "%s (call %zu) wrote outside its rows on %s: %s at byte %ld (step %d, %d rows of %d bytes, "
                        "%d writable)",
                        name, call_, level, im.name(), at, im.step(), im.rows(), im.row_bytes(), im.writable_rows());
            }
        }
        if (im.role() == Role::Scratch || im.role() == Role::Handle) {
            if (level_ == 0) ref->bytes.emplace_back();
            continue;
        }
        if (level_ == 0) {
            ref->bytes.push_back(after_);
        } else if (ref->bytes[i] != after_) {
            size_t k = 0;
            while (ref->bytes[i][k] == after_[k]) ++k;
            fail("%s (call %zu) on %s differs from the scalar twin: %s at byte %ld (%02x, scalar %02x)", name, call_,
                 level, im.name(), static_cast<long>(k) - static_cast<long>(im.first_offset()), after_[k],
                 ref->bytes[i][k]);
        }
    }
    ++call_;
}

// ---- Targets -----------------------------------------------------------------

namespace {
const Entry* g_entries = nullptr;
size_t g_count = 0;
std::vector<bool> g_reached;
}  // namespace

void run_entry(const Entry* entries, size_t count, const uint8_t* data, size_t size) {
    g_entries = entries;
    g_count = count;
    g_reached.resize(count);
    Harness h(data, size);
    const size_t i = h.in.byte() % count;
    g_reached[i] = true;
    entries[i].run(h, entries[i].name);
}

size_t entry_count() { return g_count; }
const char* entry_name(size_t i) { return g_entries[i].name; }
bool entry_reached(size_t i) { return i < g_reached.size() && g_reached[i]; }

}  // namespace orufuzz
