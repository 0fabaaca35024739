// Hostile and plain image files for the CLI tests, made in memory: headers
// that claim huge sizes over a few bytes of data, and valid images whose
// every value is known.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace craft {

using Bytes = std::vector<unsigned char>;

inline uint32_t crc32(const unsigned char* p, size_t n, uint32_t crc = 0) {
    crc = ~crc;
    for (size_t i = 0; i < n; ++i) {
        crc ^= p[i];
        for (int k = 0; k < 8; ++k) crc = (crc >> 1) ^ (0xEDB88320u & (0u - (crc & 1u)));
    }
    return ~crc;
}

inline void put32(Bytes& b, uint32_t v) {
    for (int i = 3; i >= 0; --i) b.push_back(static_cast<unsigned char>(v >> 8 * i));
}

inline void chunk(Bytes& png, const char* type, const Bytes& data) {
    put32(png, static_cast<uint32_t>(data.size()));
    Bytes body(type, type + 4);
    body.insert(body.end(), data.begin(), data.end());
    png.insert(png.end(), body.begin(), body.end());
    put32(png, crc32(body.data(), body.size()));
}

// A PNG whose header claims width x height, with one tiny (truncated)
// compressed stream: about 70 bytes.
inline Bytes png_claiming(uint32_t width, uint32_t height, int bit_depth = 8, int color_type = 0) {
    Bytes png = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    Bytes ihdr;
    put32(ihdr, width);
    put32(ihdr, height);
    ihdr.push_back(static_cast<unsigned char>(bit_depth));
    ihdr.push_back(static_cast<unsigned char>(color_type));
    ihdr.push_back(0), ihdr.push_back(0), ihdr.push_back(0);
    chunk(png, "IHDR", ihdr);
    chunk(png, "IDAT", Bytes{0x78, 0x9C, 0x63, 0x00, 0x00});
    chunk(png, "IEND", Bytes{});
    return png;
}

// A binary PGM/PPM header ("P5"/"P6") claiming width x height, then `data`
// bytes of pixels.
inline Bytes pnm_claiming(char kind, uint64_t width, uint64_t height, int maxval, size_t data) {
    const std::string header = std::string("P") + kind + "\n" + std::to_string(width) + " " + std::to_string(height) +
                               "\n" + std::to_string(maxval) + "\n";
    Bytes b(header.begin(), header.end());
    b.resize(b.size() + data, 0x55);
    return b;
}

}  // namespace craft
