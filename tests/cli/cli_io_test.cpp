// The orucv program's pieces: exact image reading, the size limit on
// hostile headers, the writers, the row reader and writer, the option
// parser and the status words.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <functional>
#include <iterator>
#include <limits>

#include "cli.h"
#include "craft.h"
#include "orucv.h"
#include "row_io.h"

#ifdef ORUCV_WITH_PNG
#include <png.h>
#endif

using namespace orucv_tool;

namespace {

std::string temp_path(const std::string& name) {
    static const std::string dir = [] {
        char pattern[] = "/tmp/orucv-cli-XXXXXX";
        const char* d = mkdtemp(pattern);
        return std::string(d ? d : "/tmp");
    }();
    return dir + "/" + name;
}

void save(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}
void save(const std::string& path, const craft::Bytes& bytes) {
    save(path, std::string(bytes.begin(), bytes.end()));
}
std::string load(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}
bool exists(const std::string& path) { return access(path.c_str(), F_OK) == 0; }

// The message of the ToolError that fn throws ("" when it throws none).
std::string error_of(const std::function<void()>& fn) {
    try {
        fn();
    } catch (const ToolError& e) {
        return e.what();
    }
    return "";
}

#ifdef ORUCV_WITH_PNG
struct PngSpec {
    int width, height, bit_depth, color_type;
    std::vector<uint16_t> samples;  // interleaved, as the file holds them
    bool interlaced = false;
    bool gamma = false;  // a gAMA chunk of 1/2.2, which readers must not apply
    std::vector<png_color> palette = {};
    std::vector<png_byte> trns = {};  // palette alpha
    bool gray_key = false;       // a transparent gray value
};

void write_png(const std::string& path, const PngSpec& s) {
    FILE* f = std::fopen(path.c_str(), "wb");
    ASSERT_NE(f, nullptr);
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    ASSERT_EQ(setjmp(png_jmpbuf(png)), 0);
    png_init_io(png, f);
    png_set_IHDR(png, info, s.width, s.height, s.bit_depth, s.color_type,
                 s.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    if (s.gamma) png_set_gAMA(png, info, 1 / 2.2);
    if (!s.palette.empty()) png_set_PLTE(png, info, s.palette.data(), static_cast<int>(s.palette.size()));
    if (!s.trns.empty()) png_set_tRNS(png, info, s.trns.data(), static_cast<int>(s.trns.size()), nullptr);
    if (s.gray_key) {
        png_color_16 key{};
        key.gray = 7;
        png_set_tRNS(png, info, nullptr, 0, &key);
    }
    png_write_info(png, info);
    const int channels = png_get_channels(png, info);
    const int per_row = s.width * channels;
    // Pack the samples as the file stores them (big-endian 16-bit, packed
    // sub-byte depths).
    std::vector<std::vector<png_byte>> rows(s.height);
    for (int y = 0; y < s.height; ++y) {
        std::vector<png_byte>& r = rows[y];
        r.assign((per_row * s.bit_depth + 7) / 8, 0);
        for (int i = 0; i < per_row; ++i) {
            const uint16_t v = s.samples[static_cast<size_t>(y) * per_row + i];
            if (s.bit_depth == 16)
                r[2 * i] = v >> 8, r[2 * i + 1] = v & 255;
            else if (s.bit_depth == 8)
                r[i] = static_cast<png_byte>(v);
            else
                r[i * s.bit_depth / 8] |= static_cast<png_byte>(v << (8 - s.bit_depth - (i * s.bit_depth) % 8));
        }
    }
    std::vector<png_bytep> pointers;
    for (auto& r : rows) pointers.push_back(r.data());
    png_write_image(png, pointers.data());
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    std::fclose(f);
}

std::vector<uint16_t> ramp16(size_t n, uint32_t seed) {
    std::vector<uint16_t> v(n);
    for (size_t i = 0; i < n; ++i) v[i] = static_cast<uint16_t>((i * 2654435761u + seed) >> 7);
    v[0] = 65535, v[1] = 0, v[2] = 212 << 8 | 212;
    return v;
}
#endif

}  // namespace

// ---- reading exactly --------------------------------------------------------

#ifdef ORUCV_WITH_PNG
TEST(ReadExact, SixteenBitPngKeepsEveryValueWithoutGamma) {
    for (int color : {PNG_COLOR_TYPE_GRAY, PNG_COLOR_TYPE_RGB}) {
        const int channels = color == PNG_COLOR_TYPE_RGB ? 3 : 1;
        PngSpec s{13, 5, 16, color, ramp16(13 * 5 * channels, color)};
        s.gamma = true;
        const std::string path = temp_path("sixteen.png");
        write_png(path, s);
        const FloatImage img = read_float_image(path);
        ASSERT_EQ(img.width, 13);
        ASSERT_EQ(img.channels, channels);
        EXPECT_EQ(img.depth, 16);
        for (size_t i = 0; i < s.samples.size(); ++i) ASSERT_EQ(img.pixels[i], s.samples[i]) << i;

        // 8-bit use: refused without --to8, naming the depth and the option;
        // shift keeps the high byte, scale rounds v * 255 / 65535.
        const std::string message = error_of([&] { read_image(path); });
        EXPECT_NE(message.find("16-bit"), std::string::npos) << message;
        EXPECT_NE(message.find("--to8"), std::string::npos) << message;
        ReadOptions shift, scale;
        shift.to8 = To8::Shift, scale.to8 = To8::Scale;
        const Image shifted = read_image(path, shift), scaled = read_image(path, scale);
        for (size_t i = 0; i < s.samples.size(); ++i) {
            ASSERT_EQ(shifted.pixels[i], s.samples[i] >> 8);
            ASSERT_EQ(scaled.pixels[i], (s.samples[i] * 255u + 32767) / 65535);
        }
    }
}

TEST(ReadExact, AlphaIsRefusedOrDroppedNeverComposited) {
    struct Case {
        const char* name;
        PngSpec png;
        std::vector<uint16_t> expected;  // the colour channels
    };
    std::vector<Case> cases = {
        {"gray+alpha", {2, 1, 8, PNG_COLOR_TYPE_GRAY_ALPHA, {200, 0, 90, 255}}, {200, 90}},
        {"RGBA", {2, 1, 8, PNG_COLOR_TYPE_RGB_ALPHA, {10, 20, 30, 0, 40, 50, 60, 128}}, {10, 20, 30, 40, 50, 60}},
        {"RGBA 16-bit", {1, 1, 16, PNG_COLOR_TYPE_RGB_ALPHA, {1000, 2000, 3000, 0}}, {1000, 2000, 3000}},
        {"palette with transparency", {2, 1, 8, PNG_COLOR_TYPE_PALETTE, {1, 0}}, {70, 80, 90, 10, 20, 30}},
        {"gray key", {2, 1, 8, PNG_COLOR_TYPE_GRAY, {7, 9}}, {7, 9}},
    };
    cases[3].png.palette = {{10, 20, 30}, {70, 80, 90}};
    cases[3].png.trns = {255, 0};
    cases[4].png.gray_key = true;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const std::string path = temp_path("alpha.png");
        write_png(path, c.png);
        const std::string message = error_of([&] { read_float_image(path); });
        EXPECT_NE(message.find("alpha"), std::string::npos) << message;
        EXPECT_NE(message.find("--drop-alpha"), std::string::npos) << message;
        ReadOptions drop;
        drop.drop_alpha = true;
        const FloatImage img = read_float_image(path, drop);
        ASSERT_EQ(img.pixels.size(), c.expected.size());
        for (size_t i = 0; i < c.expected.size(); ++i) EXPECT_EQ(img.pixels[i], c.expected[i]) << i;
        EXPECT_TRUE(probe_image(path, drop).alpha_dropped);
    }
}

TEST(ReadExact, PaletteOneBitAndInterlacedPngStillWork) {
    PngSpec bits{11, 3, 1, PNG_COLOR_TYPE_GRAY, {}};
    for (int i = 0; i < 33; ++i) bits.samples.push_back((i * 5 / 3) & 1);
    write_png(temp_path("bits.png"), bits);
    const Image b = read_image(temp_path("bits.png"));
    for (int i = 0; i < 33; ++i) ASSERT_EQ(b.pixels[i], bits.samples[i] * 255) << i;

    PngSpec palette{3, 1, 8, PNG_COLOR_TYPE_PALETTE, {2, 0, 1}};
    palette.palette = {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}};
    write_png(temp_path("palette.png"), palette);
    const Image p = read_image(temp_path("palette.png"));
    EXPECT_EQ(p.channels, 3);
    EXPECT_EQ(p.pixels, (std::vector<uint8_t>{7, 8, 9, 1, 2, 3, 4, 5, 6}));

    // Every Adam7 pass has pixels, including rows of one pass only.
    PngSpec plain{19, 17, 16, PNG_COLOR_TYPE_RGB, ramp16(19 * 17 * 3, 5)};
    PngSpec laced = plain;
    laced.interlaced = true;
    write_png(temp_path("plain.png"), plain);
    write_png(temp_path("laced.png"), laced);
    EXPECT_TRUE(probe_image(temp_path("laced.png"), ReadOptions()).interlaced);
    EXPECT_EQ(read_float_image(temp_path("laced.png")).pixels, read_float_image(temp_path("plain.png")).pixels);
}
#endif

TEST(ReadExact, PgmAndPpmUpToMaxval65535) {
    // Binary 16-bit samples are big-endian; plain samples are numbers.
    save(temp_path("a.pgm"), std::string("P5\n# comment\n3 1\n65535\n") + std::string("\x00\x01\xff\xfe\x12\x34", 6));
    const FloatImage a = read_float_image(temp_path("a.pgm"));
    EXPECT_EQ(a.depth, 16);
    EXPECT_EQ(a.pixels, (std::vector<float>{1, 65534, 0x1234}));

    save(temp_path("b.pgm"), "P2 4 1 1023\n0 1023 512 3\n");
    EXPECT_EQ(read_float_image(temp_path("b.pgm")).pixels, (std::vector<float>{0, 1023, 512, 3}));
    ReadOptions shift, scale;
    shift.to8 = To8::Shift, scale.to8 = To8::Scale;
    EXPECT_EQ(read_image(temp_path("b.pgm"), shift).pixels, (std::vector<uint8_t>{0, 255, 128, 0}));
    EXPECT_EQ(read_image(temp_path("b.pgm"), scale).pixels, (std::vector<uint8_t>{0, 255, 128, 1}));
    EXPECT_NE(error_of([&] { read_image(temp_path("b.pgm")); }).find("16-bit (maxval 1023)"), std::string::npos);

    // 8-bit files keep their values, whatever the maxval.
    save(temp_path("c.ppm"), "P3 1 2 100\n1 2 3\n100 0 99\n");
    const Image c = read_image(temp_path("c.ppm"));
    EXPECT_EQ(c.channels, 3);
    EXPECT_EQ(c.pixels, (std::vector<uint8_t>{1, 2, 3, 100, 0, 99}));

    // Malformed data is an error, never a guess.
    save(temp_path("d.pgm"), "P2 2 1 100\n7 101\n");
    EXPECT_NE(error_of([&] { read_image(temp_path("d.pgm")); }).find("exceeds maxval"), std::string::npos);
    save(temp_path("e.pgm"), std::string("P5 2 1 65535\n\xff\xff\x00", 15));
    EXPECT_NE(error_of([&] { read_image(temp_path("e.pgm"), shift); }).find("truncated"), std::string::npos);
    save(temp_path("f.pgm"), "P5 2 1 70000\n..");
    EXPECT_NE(error_of([&] { read_image(temp_path("f.pgm")); }).find("maxval"), std::string::npos);
}

// ---- limits -----------------------------------------------------------------

namespace {

struct Outcome {
    std::string message;
    double seconds;
    double peak_mib;
};

// Reads `path` whole in a child process; its message, time and peak memory.
Outcome read_in_child(const std::string& path, const ReadOptions& options, bool as_float) {
    int pipe_fd[2];
    EXPECT_EQ(pipe(pipe_fd), 0);
    const auto start = std::chrono::steady_clock::now();
    const pid_t pid = fork();
    if (pid == 0) {
        close(pipe_fd[0]);
        std::string message = "read without error";
        try {
            if (as_float)
                read_float_image(path, options);
            else
                read_image(path, options);
        } catch (const std::exception& e) {
            message = e.what();
        }
        if (write(pipe_fd[1], message.data(), message.size()) < 0) _exit(2);
        _exit(0);
    }
    close(pipe_fd[1]);
    std::string message;
    char buf[512];
    for (ssize_t n; (n = read(pipe_fd[0], buf, sizeof buf)) > 0;) message.append(buf, n);
    close(pipe_fd[0]);
    int status = 0;
    struct rusage usage {};
    wait4(pid, &status, 0, &usage);
    return {message, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(),
            usage.ru_maxrss / 1024.0};
}

}  // namespace

TEST(Limits, CraftedHeadersFailQuicklyInBoundedMemory) {
    struct Case {
        const char* name;
        craft::Bytes bytes;
        const char* message;
        uint64_t max_pixels = kDefaultMaxPixels;
        bool as_float = false;
        bool reserves = false;  // reserves the image: address space only, but the sanitizer marks it
    };
    const uint64_t big = 1ull << 34;
    std::vector<Case> cases = {
        {"PGM 65535x65535", craft::pnm_claiming('5', 65535, 65535, 255, 64), "more than the limit"},
        {"PPM 46340x46340", craft::pnm_claiming('6', 46340, 46340, 255, 64), "more than the limit"},
        {"PGM 16-bit 16384x16384 as float", craft::pnm_claiming('5', 16384, 16384, 65535, 64), "truncated", big, true},
        {"PPM within the limit, over the budget as float", craft::pnm_claiming('6', 16384, 16384, 255, 64), "budget",
         kDefaultMaxPixels, true},
        {"PGM within the limit, truncated", craft::pnm_claiming('5', 16384, 16384, 255, 64), "truncated"},
        {"PGM width beyond int", craft::pnm_claiming('5', 1ull << 33, 1, 255, 64), "too large"},
    };
#ifdef ORUCV_WITH_PNG
    cases.push_back({"PNG 65535x65535", craft::png_claiming(65535, 65535), "more than the limit"});
    cases.push_back({"PNG RGB 46340x46340", craft::png_claiming(46340, 46340, 8, 2), "more than the limit"});
    cases.push_back({"PNG 16-bit RGB 30000x30000", craft::png_claiming(30000, 30000, 16, 2), "more than the limit"});
    // Within a raised limit the image passes the check, and the rows that
    // are never decoded are never touched.
    cases.push_back({"PNG 65535x65535, limit raised", craft::png_claiming(65535, 65535), "bad PNG data", big, false,
                     true});
    cases.push_back({"PNG width 2^31", craft::png_claiming(0x80000000u, 1), "bad PNG data"});
#endif
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const std::string path = temp_path("hostile");
        save(path, c.bytes);
        ReadOptions options;
        options.max_pixels = c.max_pixels;
        const Outcome o = read_in_child(path, options, c.as_float);
        EXPECT_NE(o.message.find(c.message), std::string::npos) << o.message;
        EXPECT_NE(o.message.find("'" + path + "'"), std::string::npos) << o.message;
        EXPECT_LT(o.seconds, 2.0);
#ifdef __SANITIZE_ADDRESS__
        if (c.reserves) continue;
#endif
        EXPECT_LT(o.peak_mib, 64.0);
    }
}

TEST(Limits, StreamingHoldsRowsNotTheImage) {
    const std::string path = temp_path("tall.pgm");
    std::string pgm = "P5 10 3000 255\n";
    for (int i = 0; i < 30000; ++i) pgm += static_cast<char>(i % 251);
    save(path, pgm);
    ReadOptions small;
    small.max_pixels = 1000;
    EXPECT_NE(error_of([&] { read_image(path, small); }).find("more than the limit of 1000 pixels"), std::string::npos);
    RowReader rows(path, small, RowReader::Bytes);
    std::vector<uint8_t> row(10);
    for (int y = 0; y < 3000; ++y) rows.read_row(row.data());
    EXPECT_EQ(row[9], (29999) % 251);
    EXPECT_NE(error_of([&] { rows.read_row(row.data()); }).find("past the last row"), std::string::npos);
    small.max_pixels = 9;
    EXPECT_NE(error_of([&] { RowReader(path, small, RowReader::Bytes); }).find("a row of 10 pixels"), std::string::npos);
}

// ---- writing ----------------------------------------------------------------

TEST(Write, FormatsComeFromTheExtension) {
    for (const char* bad : {"out.jpg", "out", "dir.png/out", "out.png.bak"})
        EXPECT_NE(error_of([&] { output_format(bad); }).find("cannot write"), std::string::npos) << bad;
    EXPECT_EQ(output_format("A.NPY"), OutputFormat::Npy);
    EXPECT_EQ(output_format("x.pfm"), OutputFormat::Pfm);
    const Image rgb(2, 2, 3, 9);
    EXPECT_NE(error_of([&] { write_image(temp_path("rgb.pgm"), rgb); }).find("PGM holds one channel"),
              std::string::npos);
    EXPECT_FALSE(exists(temp_path("rgb.pgm")));
    write_image(temp_path("rgb.pnm"), rgb);
    EXPECT_EQ(load(temp_path("rgb.pnm")).substr(0, 11), "P6\n2 2\n255\n");
}

TEST(Write, SixteenBitAndSignedResultsKeepTheirValues) {
    FloatImage wide(3, 2);
    wide.depth = 16;
    wide.pixels = {0, 1, 65535, 70000, -3, 1234.5f};
    write_image(temp_path("w.pgm"), wide);
    EXPECT_EQ(load(temp_path("w.pgm")), std::string("P5\n3 2\n65535\n\x00\x00\x00\x01\xff\xff\xff\xff\x00\x00\x04\xd2", 25));

    Signed16Image d(4, 1);
    d.pixels = {-32768, -1, 0, 32767};
    write_image(temp_path("offset.pgm"), d, Signed16Png::Offset);
    EXPECT_EQ(read_float_image(temp_path("offset.pgm")).pixels, (std::vector<float>{0, 32767, 32768, 65535}));
    write_image(temp_path("abs.pgm"), d, Signed16Png::Abs);
    EXPECT_EQ(read_float_image(temp_path("abs.pgm")).pixels, (std::vector<float>{32768, 1, 0, 32767}));
    write_image(temp_path("d.npy"), d, Signed16Png::Picture);
    EXPECT_EQ(read_float_image(temp_path("d.npy")).pixels, (std::vector<float>{-32768, -1, 0, 32767}));
#ifdef ORUCV_WITH_PNG
    write_image(temp_path("offset.png"), d, Signed16Png::Offset);
    EXPECT_EQ(load(temp_path("offset.png"))[24], 16);  // IHDR bit depth
    EXPECT_EQ(read_float_image(temp_path("offset.png")).pixels, (std::vector<float>{0, 32767, 32768, 65535}));
    FloatImage rgb16(2, 1, 0.0f, 3);
    rgb16.depth = 16;
    rgb16.pixels = {1, 258, 65535, 40000, 7, 0};
    write_image(temp_path("rgb16.png"), rgb16);
    EXPECT_EQ(read_float_image(temp_path("rgb16.png")).pixels, rgb16.pixels);
#endif
}

TEST(Write, PfmAndNpyHoldEveryFloatBit) {
    FloatImage f(3, 2);
    f.pixels = {1.5f, -0.0f, std::numeric_limits<float>::infinity(), std::nanf(""), 1e-45f, -7.25f};
    write_image(temp_path("f.pfm"), f);
    const std::string pfm = load(temp_path("f.pfm"));
    ASSERT_EQ(pfm.substr(0, 12), "Pf\n3 2\n-1.0\n");
    // Rows are stored bottom to top.
    EXPECT_EQ(std::memcmp(pfm.data() + 12, &f.pixels[3], 12), 0);
    EXPECT_EQ(std::memcmp(pfm.data() + 24, &f.pixels[0], 12), 0);
    write_image(temp_path("f.npy"), f);
    const std::string npy = load(temp_path("f.npy"));
    EXPECT_EQ(npy.substr(0, 8), std::string("\x93NUMPY\x01\x00", 8));
    const size_t header = static_cast<unsigned char>(npy[8]) | static_cast<unsigned char>(npy[9]) << 8;
    EXPECT_EQ((10 + header) % 64, 0u);
    EXPECT_NE(npy.find("'descr': '<f4', 'fortran_order': False, 'shape': (2, 3), }"), std::string::npos);
    EXPECT_EQ(npy.size(), 10 + header + 24);
    for (const char* name : {"f.pfm", "f.npy"}) {
        const FloatImage back = read_float_image(temp_path(name));
        EXPECT_EQ(back.depth, 0);
        ASSERT_EQ(back.pixels.size(), f.pixels.size());
        EXPECT_EQ(std::memcmp(back.pixels.data(), f.pixels.data(), 24), 0) << name;
    }
    // A float file has no 8-bit form to read.
    EXPECT_NE(error_of([&] { read_image(temp_path("f.npy")); }).find("float"), std::string::npos);
}

TEST(Write, RowWriterLeavesNothingBehindAndNeverOverwritesItsInput) {
    const std::string in_path = temp_path("in.pgm"), out_path = temp_path("partial.pgm");
    write_image(in_path, Image(4, 3, 1, 77));
    {
        RowWriter out(out_path, 4, 3, 1, Sample::U8);
        const uint8_t row[4] = {1, 2, 3, 4};
        out.write_row(row);
        EXPECT_NE(error_of([&] { out.finish(); }).find("1 of 3 rows"), std::string::npos);
    }
    EXPECT_FALSE(exists(out_path));
    RowReader in(in_path, ReadOptions(), RowReader::Bytes);
    EXPECT_NE(error_of([&] { RowWriter(in_path, 4, 3, 1, Sample::U8, &in); }).find("also the input"),
              std::string::npos);
    EXPECT_EQ(read_image(in_path).pixels, std::vector<uint8_t>(12, 77));
    EXPECT_NE(error_of([&] { RowWriter(temp_path("f.pgm"), 4, 3, 1, Sample::F32); }).find(".npy or .pfm"),
              std::string::npos);
}

// ---- options ----------------------------------------------------------------

namespace {

int run_nothing(const Args&) { return 0; }

const Command kTest{"test", "IN OUT [MORE...]", "a command for the tests", run_nothing, kReads8 | kRepeat,
                    {{"--size", "N", "a number"},
                     {"--flag", nullptr, "a flag"},
                     {"--mode", "fast|exact", "a choice"},
                     {"--seed", "X,Y", "required", true},
                     {"--outline", "OUT", "an output"}}};

Args parse(std::vector<const char*> argv, bool* help = nullptr) {
    bool h = false;
    Args a = parse_args(kTest, static_cast<int>(argv.size()), argv.data(), &h);
    if (help) *help = h;
    return a;
}

std::string usage_error(std::vector<const char*> argv) {
    try {
        parse(argv);
    } catch (const UsageError& e) {
        return e.what();
    } catch (const ToolError& e) {
        return std::string("not a usage error: ") + e.what();
    }
    return "";
}

}  // namespace

TEST(Options, OnlyDeclaredOptionsAndArguments) {
    const Args a = parse({"in.png", "--size=5", "out.pgm", "--seed", "3,4", "--flag", "--mode", "exact", "--to8",
                          "shift", "x", "--", "--odd", "-3"});
    EXPECT_EQ(a.positional, (std::vector<std::string>{"in.png", "out.pgm", "x", "--odd", "-3"}));
    EXPECT_EQ(a.get_int("--size", 0, 1, 9), 5);
    EXPECT_TRUE(a.has("--flag"));
    EXPECT_EQ(a.get_pair("--seed"), std::make_pair(3, 4));
    EXPECT_EQ(a.input().to8, To8::Shift);
    EXPECT_EQ(parse({"a", "b.pgm", "--seed", "-1,-2", "-5"}).positional.back(), "-5");

    EXPECT_EQ(usage_error({"a", "b.pgm", "--seed", "1,1", "--bogus", "3"}), "unknown option --bogus");
    EXPECT_EQ(usage_error({"a", "b.pgm", "--seed", "1,1", "-x"}), "unknown option -x");
    EXPECT_EQ(usage_error({"a", "b.pgm", "--seed", "1,1", "--flag=1"}), "option --flag takes no value");
    EXPECT_EQ(usage_error({"a", "b.pgm", "--seed"}), "option --seed needs a value (X,Y)");
    EXPECT_EQ(usage_error({"a", "b.pgm", "--seed", "1,1", "--size", "1", "--size", "2"}),
              "option --size is given twice");
    EXPECT_EQ(usage_error({"a", "b.pgm", "--seed", "1,1", "--mode", "slow"}),
              "option --mode takes fast or exact, not 'slow'");
    EXPECT_EQ(usage_error({"a", "b.pgm", "--seed", "1,1", "--repeat"}), "option --repeat needs a value (N)");
    EXPECT_EQ(usage_error({"a", "--seed", "1,1"}), "missing OUT");
    EXPECT_EQ(usage_error({"a", "b.pgm"}), "option --seed is required");
    EXPECT_EQ(usage_error({"a", "b.jpg", "--seed", "1,1"}),
              "not a usage error: cannot write 'b.jpg': '.jpg' is not a format orucv writes (.png, .pgm, .ppm, "
              ".pnm, .pfm or .npy)");
    EXPECT_NE(usage_error({"a", "b.pgm", "--seed", "1,1", "--outline", "o"}).find("cannot write 'o'"),
              std::string::npos);

    // Help wins over everything else, but not after "--".
    bool help = false;
    parse({"--bogus", "-h"}, &help);
    EXPECT_TRUE(help);
    parse({"a", "b.pgm", "--seed", "1,1", "--", "--help"}, &help);
    EXPECT_FALSE(help);

    const std::string usage = usage_line(kTest);
    for (const char* part : {"IN OUT [MORE...]", "[--size N]", "--seed X,Y", "[--flag]", "[--to8 shift|scale]",
                             "[--repeat N]", "[--drop-alpha]", "[--max-pixels N]"})
        EXPECT_NE(usage.find(part), std::string::npos) << part << " in " << usage;
    const std::string help_page = help_text(kTest);
    EXPECT_NE(help_page.find("required"), std::string::npos);
    EXPECT_NE(help_page.find("-h, --help"), std::string::npos);
}

TEST(Options, ValuesAreCheckedWithTheirRange) {
    const Args a = parse({"a", "b.pgm", "--seed", "x", "--size", "12", "--max-pixels", "0"});
    EXPECT_EQ(error_of([&] { a.get_int("--size", 0, 1, 9); }), "--size needs a whole number from 1 to 9, not '12'");
    EXPECT_EQ(error_of([&] { a.get_double("--size", 0, 0, 5); }), "--size needs a number from 0 to 5, not '12'");
    EXPECT_EQ(error_of([&] { a.get_double("--size", 0, 20); }), "--size needs a number of at least 20, not '12'");
    EXPECT_EQ(error_of([&] { a.get_pair("--seed"); }), "--seed needs X,Y, not 'x'");
    EXPECT_NE(error_of([&] { a.input(); }).find("--max-pixels"), std::string::npos);
    EXPECT_EQ(parse({"a", "b.pgm", "--seed", "1,1", "--max-pixels", "4294967296"}).input().max_pixels, 1ull << 32);
}

TEST(Status, LibraryStatusesAreWords) {
    EXPECT_EQ(describe_status(oruStsStep),
              "step: the row step is smaller than the row or otherwise not acceptable (status -14)");
    for (int s : {oruStsNoOperation, oruStsError, oruStsBadLine, oruStsBadArg, oruStsSize, oruStsNullPointer,
                  oruStsMemAlloc, oruStsOutOfRange, oruStsDataType, oruStsContextMismatch, oruStsCoi,
                  oruStsNumChannels, oruStsNotEvenStep})
        EXPECT_NE(status_name(s), nullptr) << s;
    EXPECT_EQ(describe_status(-77), "unknown status (status -77)");
    EXPECT_EQ(error_of([] { check_status(oruStsNotEvenStep, "oruiX"); }),
              "oruiX failed: step not even: a row step is not a whole multiple of the element size (status -108)");
    EXPECT_EQ(error_of([] { check_status(oruStsNoOperation, "oruiX"); }), "");
}

TEST(Timing, MinimumAndMedianOfTheRuns) {
    Timing t;
    t.ms = {5, 1, 3, 9};
    EXPECT_EQ(t.min_ms(), 1);
    EXPECT_EQ(t.median_ms(), 4);
    EXPECT_EQ(t.text(), "min 1.000 ms, median 4.000 ms of 4 runs");
    int calls = 0;
    EXPECT_EQ(time_runs([&] { ++calls; }, 3).ms.size(), 3u);
    EXPECT_EQ(calls, 3);
}
