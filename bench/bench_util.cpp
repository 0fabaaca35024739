#include "bench_util.h"

#include <cstring>
#include <map>
#include <memory>
#include <set>

#include "core/cpu.h"
#include "scene.h"

namespace orubench {
namespace {

const char* level_name(orucv::SimdLevel level) {
    switch (level) {
    case orucv::SimdLevel::Avx2: return "avx2";
    case orucv::SimdLevel::Sse2: return "sse2";
    default: return "scalar";
    }
}

std::string frame_name(const FrameSize& f) { return std::to_string(f.width) + "x" + std::to_string(f.height); }

void run(benchmark::State& state, const RestoringMaker& make, FrameSize f, orucv::SimdLevel level,
         double bytes_per_pixel) {
    const orucv::SimdLevel previous = orucv::force_simd_level(level);
    const Restoring timed = make(f.width, f.height);
    for (auto _ : state) {
        timed.call();
        benchmark::ClobberMemory();
        if (timed.restore) {
            state.PauseTiming();
            timed.restore();
            state.ResumeTiming();
        }
    }
    orucv::force_simd_level(previous);
    const double pixels = static_cast<double>(f.width) * f.height;
    state.counters["pix/s"] = benchmark::Counter(pixels * state.iterations(), benchmark::Counter::kIsRate);
    if (bytes_per_pixel > 0) state.SetBytesProcessed(static_cast<int64_t>(pixels * bytes_per_pixel) * state.iterations());
}

// memcpy of half the traffic: it reads and writes, so it moves the same bytes.
void run_memcpy(benchmark::State& state, FrameSize f, double bytes_per_pixel) {
    const size_t n = static_cast<size_t>(static_cast<double>(f.width) * f.height * bytes_per_pixel / 2);
    std::vector<uint8_t> src = random_bytes(n, 1), dst(n);
    for (auto _ : state) {
        std::memcpy(dst.data(), src.data(), n);
        benchmark::DoNotOptimize(dst.data());
        benchmark::ClobberMemory();
    }
    state.counters["pix/s"] =
        benchmark::Counter(static_cast<double>(f.width) * f.height * state.iterations(), benchmark::Counter::kIsRate);
    state.SetBytesProcessed(static_cast<int64_t>(n * 2) * state.iterations());
}

bool register_levels(const std::string& name, double bytes_per_pixel, RestoringMaker make,
                     const std::vector<FrameSize>& sizes) {
    static std::set<std::string> memcpy_registered;
    for (const FrameSize& f : sizes) {
        const std::string base = name + "/" + frame_name(f);
        if (bytes_per_pixel > 0) {
            const std::string mc = "memcpy/" + frame_name(f) + "/" + std::to_string(bytes_per_pixel).substr(0, 4) + "B_per_px";
            if (memcpy_registered.insert(mc).second)
                benchmark::RegisterBenchmark(mc.c_str(), [=](benchmark::State& s) { run_memcpy(s, f, bytes_per_pixel); })
                    ->Unit(benchmark::kMillisecond);
        }
        for (int l = static_cast<int>(orucv::detected_simd_level()); l >= 0; --l) {
            const auto level = static_cast<orucv::SimdLevel>(l);
            benchmark::RegisterBenchmark((base + "/" + level_name(level)).c_str(), [=](benchmark::State& s) {
                run(s, make, f, level, bytes_per_pixel);
            })->Unit(benchmark::kMillisecond);
        }
    }
    return true;
}

}  // namespace

bool add(const std::string& name, double bytes_per_pixel, Maker make, const std::vector<FrameSize>& sizes) {
    return register_levels(
        name, bytes_per_pixel, [make](int w, int h) { return Restoring{make(w, h), nullptr}; }, sizes);
}

bool add_restoring(const std::string& name, RestoringMaker make, const std::vector<FrameSize>& sizes) {
    return register_levels(name, 0, make, sizes);
}

const orucv_tool::Image& scene(int width, int height, int frame) {
    static std::map<std::tuple<int, int, int>, orucv_tool::Image> cache;
    auto key = std::make_tuple(width, height, frame);
    auto it = cache.find(key);
    if (it == cache.end()) it = cache.emplace(key, orucv_tool::render_scene(width, height, frame)).first;
    return it->second;
}

std::vector<uint8_t> random_bytes(size_t n, uint32_t seed) {
    std::vector<uint8_t> v(n);
    uint32_t x = seed * 2654435761u + 1;
    for (auto& b : v) {
        x ^= x << 13, x ^= x >> 17, x ^= x << 5;
        b = static_cast<uint8_t>(x >> 24);
    }
    return v;
}

}  // namespace orubench
