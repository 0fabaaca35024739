// Reference models of the general filters, from their formulas: kernels in
// closed form, integer results as exact sums wrapped to 16 bits, float
// results in the documented order of sums.
#pragma once

#include <cmath>
#include <cstdint>
#include <type_traits>
#include <utility>
#include <vector>

namespace orutest {

// Cell k of the kernel of n cells and derivative order d: the coefficient
// of z^k in (1 + z)^(n-1-d) (z - 1)^d, negated when `negate`.
inline std::vector<int> kernel_model(int n, int d, bool negate = false) {
    auto binomial = [](int a, int b) {
        if (b < 0 || b > a) return 0;
        long long v = 1;
        for (int i = 1; i <= b; ++i) v = v * (a - b + i) / i;
        return static_cast<int>(v);
    };
    std::vector<int> c(n);
    for (int k = 0; k < n; ++k)
        for (int j = 0; j <= d; ++j)
            c[k] += binomial(d, j) * ((d - j) % 2 ? -1 : 1) * binomial(n - 1 - d, k - j);
    if (negate)
        for (int& v : c) v = -v;
    return c;
}

// A plain image with replicated borders.
template <class T>
struct Plain {
    int w = 0, h = 0;
    std::vector<T> px;
    Plain(int width, int height) : w(width), h(height), px(static_cast<size_t>(width) * height) {}
    T& at(int x, int y) { return px[static_cast<size_t>(y) * w + x]; }
    T get(int x, int y) const {
        x = x < 0 ? 0 : x >= w ? w - 1 : x;
        y = y < 0 ? 0 : y >= h ? h - 1 : y;
        return px[static_cast<size_t>(y) * w + x];
    }
};

// The region of a test image (anything with width(), height() and at()).
template <class Image>
auto plain_of(const Image& img) {
    Plain<typename std::decay<decltype(img.at(0, 0))>::type> p(img.width(), img.height());
    for (int y = 0; y < img.height(); ++y)
        for (int x = 0; x < img.width(); ++x) p.at(x, y) = img.at(x, y);
    return p;
}

inline float model_nan(float v) { return v == v ? v : std::nanf(""); }

// The float sum of cell k times value(clamp(pos - r + k)): the cells that
// meet the same replicated sample add into one weight at the first of them,
// zero weights drop out, the products are added in increasing k from the
// first. `any` tells whether a product was left.
template <class Value>
float merged_sum(const std::vector<int>& c, int pos, int limit, Value value, bool* any = nullptr) {
    const int r = static_cast<int>(c.size()) / 2;
    std::vector<std::pair<int, int>> weights;  // (sample, weight)
    for (int k = 0; k < static_cast<int>(c.size()); ++k) {
        int i = pos - r + k;
        i = i < 0 ? 0 : i >= limit ? limit - 1 : i;
        if (!weights.empty() && weights.back().first == i) weights.back().second += c[k];
        else weights.push_back({i, c[k]});
    }
    bool first = true;
    float acc = 0.0f;
    for (const auto& w : weights) {
        if (!w.second) continue;
        const float p = static_cast<float>(w.second) * value(w.first);
        acc = first ? p : acc + p;
        first = false;
    }
    if (any) *any = !first;
    return acc;
}

// x kernel across, y kernel down, replicated borders.
template <class S>
Plain<int16_t> separable_16s(const Plain<S>& s, const std::vector<int>& kx, const std::vector<int>& ky) {
    const int r = static_cast<int>(kx.size()) / 2;
    Plain<int16_t> out(s.w, s.h);
    for (int y = 0; y < s.h; ++y)
        for (int x = 0; x < s.w; ++x) {
            long long sum = 0;
            for (int j = 0; j < static_cast<int>(ky.size()); ++j)
                for (int i = 0; i < static_cast<int>(kx.size()); ++i)
                    sum += static_cast<long long>(ky[j]) * kx[i] * s.get(x - r + i, y - r + j);
            out.at(x, y) = static_cast<int16_t>(static_cast<uint16_t>(sum & 0xFFFF));
        }
    return out;
}

// Float: across each row, then down; `empty` marks rows whose down sum had
// no product left.
inline Plain<float> separable_32f_raw(const Plain<float>& s, const std::vector<int>& kx, const std::vector<int>& ky,
                                      std::vector<bool>* empty = nullptr) {
    Plain<float> across(s.w, s.h), out(s.w, s.h);
    for (int y = 0; y < s.h; ++y)
        for (int x = 0; x < s.w; ++x) across.at(x, y) = merged_sum(kx, x, s.w, [&](int i) { return s.get(i, y); });
    if (empty) empty->assign(s.h, false);
    for (int y = 0; y < s.h; ++y)
        for (int x = 0; x < s.w; ++x) {
            bool any;
            out.at(x, y) = merged_sum(ky, y, s.h, [&](int j) { return across.get(x, j); }, &any);
            if (empty) (*empty)[y] = !any;
        }
    return out;
}

inline Plain<float> separable_32f(const Plain<float>& s, const std::vector<int>& kx, const std::vector<int>& ky) {
    Plain<float> out = separable_32f_raw(s, kx, ky);
    for (float& v : out.px) v = model_nan(v);
    return out;
}

template <class S>
Plain<int16_t> laplace_16s(const Plain<S>& s, int n) {
    const Plain<int16_t> a = separable_16s(s, kernel_model(n, 2), kernel_model(n, 0));
    const Plain<int16_t> b = separable_16s(s, kernel_model(n, 0), kernel_model(n, 2));
    Plain<int16_t> out(s.w, s.h);
    for (size_t i = 0; i < out.px.size(); ++i) out.px[i] = static_cast<int16_t>(a.px[i] + b.px[i]);
    return out;
}

// The two parts added; a part with no product left (order 2 down over a
// single row) is left out.
inline Plain<float> laplace_32f(const Plain<float>& s, int n) {
    std::vector<bool> b_empty;
    const Plain<float> a = separable_32f_raw(s, kernel_model(n, 2), kernel_model(n, 0));
    const Plain<float> b = separable_32f_raw(s, kernel_model(n, 0), kernel_model(n, 2), &b_empty);
    Plain<float> out(s.w, s.h);
    for (int y = 0; y < s.h; ++y)
        for (int x = 0; x < s.w; ++x) out.at(x, y) = model_nan(b_empty[y] ? a.get(x, y) : a.get(x, y) + b.get(x, y));
    return out;
}

// The box sum: row sums left to right, then running column sums.
template <class S, class D>
Plain<D> box(const Plain<S>& s, int n) {
    const int r = n / 2;
    Plain<D> across(s.w, s.h), out(s.w, s.h);
    for (int y = 0; y < s.h; ++y)
        for (int x = 0; x < s.w; ++x) {
            if constexpr (sizeof(D) == 4) {
                across.at(x, y) = merged_sum(std::vector<int>(n, 1), x, s.w, [&](int i) { return s.get(i, y); });
            } else {
                int acc = 0;
                for (int j = -r; j <= r; ++j) acc += s.get(x + j, y);
                across.at(x, y) = static_cast<D>(acc);
            }
        }
    for (int x = 0; x < s.w; ++x) {
        D col = static_cast<D>(static_cast<D>(r + 1) * across.get(x, 0));
        for (int j = 1; j <= r; ++j) col = static_cast<D>(col + across.get(x, j));
        out.at(x, 0) = col;
        for (int y = 1; y < s.h; ++y) {
            col = static_cast<D>(col + across.get(x, y + r));
            col = static_cast<D>(col - across.get(x, y - r - 1));
            out.at(x, y) = col;
        }
    }
    if constexpr (sizeof(D) == 4)
        for (D& v : out.px) v = model_nan(v);
    return out;
}

}  // namespace orutest
