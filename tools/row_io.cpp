// Decoders and encoders of the image files, one row at a time.
#include "row_io.h"

#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <climits>
#include <cmath>
#include <csetjmp>
#include <cstring>
#include <type_traits>
#include <vector>

#ifdef ORUCV_WITH_PNG
#include <png.h>
#endif

namespace orucv_tool {

int sample_bytes(Sample s) {
    switch (s) {
    case Sample::U8: return 1;
    case Sample::U16:
    case Sample::I16: return 2;
    case Sample::F32: return 4;
    }
    return 1;
}

std::string ImageInfo::depth_name() const {
    switch (sample) {
    case Sample::U8: return maxval == 255 ? "8-bit" : "8-bit (maxval " + std::to_string(maxval) + ")";
    case Sample::U16: return maxval == 65535 ? "16-bit" : "16-bit (maxval " + std::to_string(maxval) + ")";
    default: return "float";
    }
}

namespace {

[[noreturn]] void fail(const std::string& path, const std::string& what) { throw ToolError("'" + path + "': " + what); }

using File = std::unique_ptr<FILE, int (*)(FILE*)>;

File open_file(const std::string& path, const char* mode) {
    File f(std::fopen(path.c_str(), mode), std::fclose);
    if (!f) throw ToolError("cannot open '" + path + "': " + std::strerror(errno));
    return f;
}

bool little_endian() {
    const uint16_t probe = 1;
    unsigned char first;
    std::memcpy(&first, &probe, 1);
    return first == 1;
}

// Bytes left in a regular file from the current position; -1 when unknown.
long long bytes_left(FILE* f) {
    struct stat st;
    const long pos = std::ftell(f);
    if (pos < 0 || fstat(fileno(f), &st) != 0 || !S_ISREG(st.st_mode)) return -1;
    return static_cast<long long>(st.st_size) - pos;
}

void check_data_size(FILE* f, const std::string& path, uint64_t needed) {
    const long long left = bytes_left(f);
    if (left >= 0 && static_cast<uint64_t>(left) < needed)
        fail(path, "truncated: the header promises " + std::to_string(needed) + " bytes of pixels, the file holds " +
                       std::to_string(left));
}

std::string mib(uint64_t bytes) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f MiB", bytes / 1048576.0);
    return text;
}

// The one limit: `rows` rows of the image held at once, `channels` samples
// of `sample_size` bytes per pixel.
void check_limits(const std::string& path, const ImageInfo& info, uint64_t rows, int channels, int sample_size,
                  const ReadOptions& options) {
    const uint64_t w = static_cast<uint64_t>(info.width);
    const uint64_t pixels = w * rows;
    const std::string size = std::to_string(info.width) + "x" + std::to_string(info.height);
    if (pixels > options.max_pixels)
        fail(path, "is " + size + (rows == 1 ? ": a row of " : " (") + std::to_string(pixels) +
                       (rows == 1 ? " pixels is more" : " pixels): more") + " than the limit of " +
                       std::to_string(options.max_pixels) + " pixels (--max-pixels raises it)");
    const uint64_t bytes = pixels * static_cast<uint64_t>(channels) * static_cast<uint64_t>(sample_size);
    if (bytes > options.max_bytes() || bytes > SIZE_MAX / 2)
        fail(path, "is " + size + ": " + (rows == 1 ? "a row" : "the image") + " needs " + mib(bytes) +
                       ", more than the budget of " + mib(options.max_bytes()) +
                       " (4 bytes per pixel of --max-pixels, which raises it)");
}

}  // namespace

// ---- decoders -------------------------------------------------------------

class RowDecoder {
public:
    virtual ~RowDecoder() = default;
    ImageInfo info;
    // After the limits are checked: may allocate.
    virtual void start() {}
    // The next row, info.sample samples in native byte order.
    virtual void read(void* row) = 0;
};

namespace {

class PnmDecoder : public RowDecoder {
public:
    PnmDecoder(File file, const std::string& path, char kind) : file_(std::move(file)), path_(path) {
        FILE* f = file_.get();
        std::fgetc(f), std::fgetc(f);
        plain_ = kind == '2' || kind == '3';
        info.channels = (kind == '3' || kind == '6') ? 3 : 1;
        info.format = info.channels == 3 ? "PPM" : "PGM";
        info.width = number(true);
        info.height = number(true);
        info.maxval = number(false);
        if (info.width < 1 || info.height < 1) fail(path_, "the header gives no pixels");
        if (info.maxval < 1 || info.maxval > 65535) fail(path_, "maxval must lie in 1..65535");
        info.sample = info.maxval > 255 ? Sample::U16 : Sample::U8;
        bytes_ = info.sample == Sample::U16 ? 2 : 1;
    }

    void start() override {
        if (!plain_)
            check_data_size(file_.get(), path_,
                            static_cast<uint64_t>(info.width) * info.height * info.channels * bytes_);
    }

    void read(void* row) override {
        const size_t n = static_cast<size_t>(info.width) * info.channels;
        if (plain_) {
            for (size_t i = 0; i < n; ++i) store(row, i, sample_number());
            return;
        }
        raw_.resize(n * bytes_);
        if (std::fread(raw_.data(), 1, raw_.size(), file_.get()) != raw_.size())
            fail(path_, "truncated image data");
        for (size_t i = 0; i < n; ++i) {
            const unsigned v = bytes_ == 2 ? (raw_[2 * i] << 8 | raw_[2 * i + 1]) : raw_[i];
            if (static_cast<int>(v) > info.maxval)
                fail(path_, "sample " + std::to_string(v) + " exceeds maxval " + std::to_string(info.maxval));
            store(row, i, v);
        }
    }

private:
    void store(void* row, size_t i, unsigned v) {
        if (bytes_ == 2)
            static_cast<uint16_t*>(row)[i] = static_cast<uint16_t>(v);
        else
            static_cast<uint8_t*>(row)[i] = static_cast<uint8_t>(v);
    }

    // A header field: skips white space and comments. The character after
    // the number is consumed (the single white space before binary data).
    int number(bool allow_comment_after) {
        FILE* f = file_.get();
        int c = std::fgetc(f);
        while (c != EOF && (std::isspace(c) || c == '#')) {
            if (c == '#')
                while (c != EOF && c != '\n') c = std::fgetc(f);
            c = std::fgetc(f);
        }
        if (c == EOF || !std::isdigit(c)) fail(path_, "malformed PGM/PPM header");
        long long v = 0;
        while (c != EOF && std::isdigit(c)) {
            v = v * 10 + (c - '0');
            if (v > 0x7FFFFFFF) fail(path_, "PGM/PPM header value too large");
            c = std::fgetc(f);
        }
        if (c == '#' && allow_comment_after) {
            while (c != EOF && c != '\n') c = std::fgetc(f);
        } else if (c == EOF || !std::isspace(c)) {
            fail(path_, "malformed PGM/PPM header");
        }
        return static_cast<int>(v);
    }

    unsigned sample_number() {
        FILE* f = file_.get();
        int c = std::fgetc(f);
        while (c != EOF && (std::isspace(c) || c == '#')) {
            if (c == '#')
                while (c != EOF && c != '\n') c = std::fgetc(f);
            c = std::fgetc(f);
        }
        if (c == EOF) fail(path_, "truncated image data");
        if (!std::isdigit(c)) fail(path_, "malformed sample in plain PGM/PPM data");
        long v = 0;
        while (c != EOF && std::isdigit(c)) {
            v = v * 10 + (c - '0');
            if (v > info.maxval)
                fail(path_, "a sample exceeds maxval " + std::to_string(info.maxval));
            c = std::fgetc(f);
        }
        if (c != EOF && !std::isspace(c)) fail(path_, "malformed sample in plain PGM/PPM data");
        return static_cast<unsigned>(v);
    }

    File file_;
    std::string path_;
    bool plain_ = false;
    int bytes_ = 1;
    std::vector<unsigned char> raw_;
};

// PFM: "Pf" gray or "PF" RGB, a negative scale for little-endian data, rows
// stored bottom to top (read here by seeking).
class PfmDecoder : public RowDecoder {
public:
    PfmDecoder(File file, const std::string& path) : file_(std::move(file)), path_(path) {
        FILE* f = file_.get();
        char kind = 0;
        double scale = 0;
        if (std::fscanf(f, "P%c %d %d %lf", &kind, &info.width, &info.height, &scale) != 4 ||
            (kind != 'f' && kind != 'F') || !std::isspace(std::fgetc(f)) || scale == 0 || !std::isfinite(scale))
            fail(path_, "malformed PFM header");
        if (info.width < 1 || info.height < 1) fail(path_, "the header gives no pixels");
        info.format = "PFM";
        info.channels = kind == 'F' ? 3 : 1;
        info.sample = Sample::F32;
        info.maxval = 0;
        swap_ = (scale < 0) != little_endian();
        data_ = std::ftell(f);
        row_bytes_ = static_cast<uint64_t>(info.width) * info.channels * 4;
    }

    void start() override { check_data_size(file_.get(), path_, row_bytes_ * info.height); }

    void read(void* row) override {
        const uint64_t offset = data_ + row_bytes_ * static_cast<uint64_t>(info.height - 1 - y_++);
        if (offset > static_cast<uint64_t>(LONG_MAX) || std::fseek(file_.get(), static_cast<long>(offset), SEEK_SET) != 0 ||
            std::fread(row, 1, row_bytes_, file_.get()) != row_bytes_)
            fail(path_, "truncated image data");
        if (swap_) {
            unsigned char* b = static_cast<unsigned char*>(row);
            for (uint64_t i = 0; i < row_bytes_; i += 4) std::swap(b[i], b[i + 3]), std::swap(b[i + 1], b[i + 2]);
        }
    }

private:
    File file_;
    std::string path_;
    bool swap_ = false;
    uint64_t data_ = 0, row_bytes_ = 0;
    int y_ = 0;
};

// NumPy .npy (C order): uint8, little-endian uint16, int16 (read as float)
// and float32, shaped (height, width) or (height, width, channels).
class NpyDecoder : public RowDecoder {
public:
    NpyDecoder(File file, const std::string& path, bool drop_alpha) : file_(std::move(file)), path_(path) {
        FILE* f = file_.get();
        unsigned char pre[10];
        if (std::fread(pre, 1, 8, f) != 8 || pre[6] < 1 || pre[6] > 3) fail(path_, "malformed .npy header");
        uint32_t len = 0;
        if (pre[6] == 1) {
            if (std::fread(pre + 8, 1, 2, f) != 2) fail(path_, "malformed .npy header");
            len = pre[8] | pre[9] << 8;
        } else {
            unsigned char l[4];
            if (std::fread(l, 1, 4, f) != 4) fail(path_, "malformed .npy header");
            len = l[0] | l[1] << 8 | l[2] << 16 | static_cast<uint32_t>(l[3]) << 24;
        }
        if (len > 65536) fail(path_, "malformed .npy header");
        std::string header(len, '\0');
        if (std::fread(&header[0], 1, len, f) != len) fail(path_, "malformed .npy header");
        const std::string descr = field(header, "descr");
        if (descr == "'|u1'" || descr == "'<u1'" || descr == "'u1'")
            file_sample_ = Sample::U8;
        else if (descr == "'<u2'")
            file_sample_ = Sample::U16;
        else if (descr == "'<i2'")
            file_sample_ = Sample::I16;
        else if (descr == "'<f4'")
            file_sample_ = Sample::F32;
        else
            fail(path_, "unsupported .npy type " + descr + " (uint8, little-endian uint16, int16 or float32)");
        if (field(header, "fortran_order") != "False") fail(path_, "a Fortran-order .npy is not supported");
        const std::string shape = field(header, "shape");
        long long dims[3] = {0, 0, 1};
        int n = 0;
        for (size_t i = 0; i < shape.size() && n <= 3;) {
            if (std::isdigit(static_cast<unsigned char>(shape[i]))) {
                long long v = 0;
                while (i < shape.size() && std::isdigit(static_cast<unsigned char>(shape[i]))) {
                    v = v * 10 + (shape[i++] - '0');
                    if (v > 0x7FFFFFFF) fail(path_, ".npy shape too large");
                }
                if (n < 3) dims[n] = v;
                ++n;
            } else {
                ++i;
            }
        }
        if (n < 2 || n > 3) fail(path_, "a .npy image needs the shape (height, width) or (height, width, channels)");
        info.format = "NPY";
        info.height = static_cast<int>(dims[0]);
        info.width = static_cast<int>(dims[1]);
        file_channels_ = static_cast<int>(dims[2]);
        if (info.width < 1 || info.height < 1) fail(path_, "the shape gives no pixels");
        if (file_channels_ < 1 || file_channels_ > 4) fail(path_, "a .npy image has 1 to 4 channels");
        info.channels = file_channels_;
        if (file_channels_ == 2 || file_channels_ == 4) {
            if (!drop_alpha)
                fail(path_, "has an alpha channel (" + std::to_string(file_channels_) +
                                " channels); --drop-alpha ignores it");
            info.channels = file_channels_ - 1;
            info.alpha_dropped = true;
        }
        info.sample = file_sample_ == Sample::I16 ? Sample::F32 : file_sample_;
        info.maxval = file_sample_ == Sample::U8 ? 255 : file_sample_ == Sample::U16 ? 65535 : 0;
        row_bytes_ = static_cast<uint64_t>(info.width) * file_channels_ * sample_bytes(file_sample_);
    }

    void start() override { check_data_size(file_.get(), path_, row_bytes_ * info.height); }

    void read(void* row) override {
        raw_.resize(row_bytes_);
        if (std::fread(raw_.data(), 1, raw_.size(), file_.get()) != raw_.size()) fail(path_, "truncated image data");
        const size_t pixels = static_cast<size_t>(info.width);
        size_t k = 0;
        for (size_t x = 0; x < pixels; ++x)
            for (int c = 0; c < file_channels_; ++c) {
                const size_t i = x * file_channels_ + c;
                if (c == info.channels) continue;  // the alpha channel
                const unsigned char* b = raw_.data() + i * sample_bytes(file_sample_);
                switch (file_sample_) {
                case Sample::U8: static_cast<uint8_t*>(row)[k] = b[0]; break;
                case Sample::U16: static_cast<uint16_t*>(row)[k] = static_cast<uint16_t>(b[0] | b[1] << 8); break;
                case Sample::I16:
                    static_cast<float*>(row)[k] = static_cast<int16_t>(static_cast<uint16_t>(b[0] | b[1] << 8));
                    break;
                case Sample::F32: {
                    const uint32_t bits = b[0] | b[1] << 8 | b[2] << 16 | static_cast<uint32_t>(b[3]) << 24;
                    std::memcpy(static_cast<float*>(row) + k, &bits, 4);
                    break;
                }
                }
                ++k;
            }
    }

private:
    // The value text of 'key' in the header dictionary: up to the next
    // top-level comma or closing brace.
    std::string field(const std::string& header, const std::string& key) {
        const size_t at = header.find("'" + key + "'");
        if (at == std::string::npos) fail(path_, "the .npy header has no '" + key + "'");
        size_t i = header.find(':', at);
        if (i == std::string::npos) fail(path_, "malformed .npy header");
        ++i;
        while (i < header.size() && header[i] == ' ') ++i;
        size_t end = i;
        int depth = 0;
        while (end < header.size() && (depth > 0 || (header[end] != ',' && header[end] != '}'))) {
            if (header[end] == '(') ++depth;
            if (header[end] == ')') --depth;
            ++end;
        }
        std::string v = header.substr(i, end - i);
        while (!v.empty() && v.back() == ' ') v.pop_back();
        return v;
    }

    File file_;
    std::string path_;
    Sample file_sample_ = Sample::U8;
    int file_channels_ = 1;
    uint64_t row_bytes_ = 0;
    std::vector<unsigned char> raw_;
};

#ifdef ORUCV_WITH_PNG
// libpng reports errors by longjmp: every call into it goes through
// `guarded`, whose frame holds nothing that needs destroying.
struct PngError {
    char message[256] = "";
};

void png_on_error(png_structp png, png_const_charp message) {
    PngError* e = static_cast<PngError*>(png_get_error_ptr(png));
    std::snprintf(e->message, sizeof e->message, "%s", message);
    png_longjmp(png, 1);
}
void png_on_warning(png_structp, png_const_charp) {}

// The libpng structures of a reader or writer, released however its owner's
// construction ends.
struct PngHandles {
    bool reading;
    png_structp png = nullptr;
    png_infop info = nullptr;
    explicit PngHandles(bool read) : reading(read) {}
    PngHandles(const PngHandles&) = delete;
    PngHandles& operator=(const PngHandles&) = delete;
    ~PngHandles() {
        if (!png) return;
        if (reading)
            png_destroy_read_struct(&png, info ? &info : nullptr, nullptr);
        else
            png_destroy_write_struct(&png, info ? &info : nullptr);
    }
};

template <class Fn>
bool guarded(png_structp png, Fn&& fn) {
    if (setjmp(png_jmpbuf(png))) return false;
    fn();
    return true;
}

class PngDecoder : public RowDecoder {
public:
    PngDecoder(File file, const std::string& path, bool drop_alpha) : file_(std::move(file)), path_(path) {
        handles_.png = png_ = png_create_read_struct(PNG_LIBPNG_VER_STRING, &error_, png_on_error, png_on_warning);
        if (!png_) fail(path_, "cannot start the PNG reader");
        handles_.info = info_ = png_create_info_struct(png_);
        if (!info_) fail(path_, "cannot start the PNG reader");
        png_uint_32 w = 0, h = 0;
        int bit_depth = 0, color_type = 0, interlace = 0;
        bool transparency = false;
        call([&] {
            png_init_io(png_, file_.get());
            // The program's own limit is checked once the size is known.
            png_set_user_limits(png_, 0x7FFFFFFF, 0x7FFFFFFF);
            png_read_info(png_, info_);
            png_get_IHDR(png_, info_, &w, &h, &bit_depth, &color_type, &interlace, nullptr, nullptr);
            transparency = png_get_valid(png_, info_, PNG_INFO_tRNS) != 0;
        });
        info.format = "PNG";
        info.width = static_cast<int>(w);
        info.height = static_cast<int>(h);
        info.interlaced = interlace != PNG_INTERLACE_NONE;
        const bool alpha = (color_type & PNG_COLOR_MASK_ALPHA) != 0 || transparency;
        if (alpha && !drop_alpha) {
            const char* kind = color_type == PNG_COLOR_TYPE_GRAY_ALPHA ? "gray and alpha"
                               : color_type == PNG_COLOR_TYPE_RGB_ALPHA ? "RGBA"
                                                                        : "a transparent colour";
            fail(path_, std::string("has an alpha channel (") + kind + "); --drop-alpha ignores it");
        }
        info.alpha_dropped = alpha;
        info.channels = (color_type & PNG_COLOR_MASK_COLOR) ? 3 : 1;
        info.sample = bit_depth == 16 ? Sample::U16 : Sample::U8;
        info.maxval = bit_depth == 16 ? 65535 : 255;
        call([&] {
            if (color_type == PNG_COLOR_TYPE_PALETTE) png_set_palette_to_rgb(png_);
            if (color_type == PNG_COLOR_TYPE_GRAY && bit_depth < 8) png_set_expand_gray_1_2_4_to_8(png_);
            if (alpha) png_set_strip_alpha(png_);
            if (bit_depth == 16 && little_endian()) png_set_swap(png_);
            passes_ = info.interlaced ? png_set_interlace_handling(png_) : 1;
        });
    }

    void start() override {
        call([&] { png_read_update_info(png_, info_); });
        const int channels = png_get_channels(png_, info_);
        if (channels != info.channels) fail(path_, "unexpected PNG layout");
        row_bytes_ = static_cast<size_t>(info.width) * info.channels * sample_bytes(info.sample);
        if (png_get_rowbytes(png_, info_) != row_bytes_) fail(path_, "unexpected PNG layout");
    }

    void read(void* row) override {
        if (passes_ == 1) {
            call([&] { png_read_row(png_, static_cast<png_bytep>(row), nullptr); });
            return;
        }
        if (whole_.empty()) {  // interlaced: every pass touches every row
            whole_.resize(row_bytes_ * info.height);
            for (int pass = 0; pass < passes_; ++pass)
                for (int y = 0; y < info.height; ++y)
                    call([&] { png_read_row(png_, whole_.data() + row_bytes_ * y, nullptr); });
        }
        std::memcpy(row, whole_.data() + row_bytes_ * y_++, row_bytes_);
    }

private:
    template <class Fn>
    void call(Fn&& fn) {
        if (!guarded(png_, fn)) fail(path_, std::string("bad PNG data: ") + error_.message);
    }

    File file_;
    std::string path_;
    PngError error_;
    PngHandles handles_{true};  // after file_: released before the file closes
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
    int passes_ = 1;
    size_t row_bytes_ = 0;
    std::vector<unsigned char> whole_;
    int y_ = 0;
};
#endif

std::unique_ptr<RowDecoder> open_decoder(const std::string& path, const ReadOptions& options, File file) {
    unsigned char magic[8] = {};
    const size_t got = std::fread(magic, 1, sizeof magic, file.get());
    if (std::fseek(file.get(), 0, SEEK_SET) != 0) fail(path, "cannot be read again from its start (name a file, not a pipe)");
    if (got >= 2 && magic[0] == 'P' && magic[1] && std::strchr("2356", magic[1]))
        return std::make_unique<PnmDecoder>(std::move(file), path, static_cast<char>(magic[1]));
    if (got >= 2 && magic[0] == 'P' && (magic[1] == 'f' || magic[1] == 'F'))
        return std::make_unique<PfmDecoder>(std::move(file), path);
    if (got >= 6 && std::memcmp(magic, "\x93NUMPY", 6) == 0)
        return std::make_unique<NpyDecoder>(std::move(file), path, options.drop_alpha);
    if (got == 8 && std::memcmp(magic, "\x89PNG\r\n\x1a\n", 8) == 0) {
#ifdef ORUCV_WITH_PNG
        return std::make_unique<PngDecoder>(std::move(file), path, options.drop_alpha);
#else
        fail(path, "this build has no PNG support; use PGM or PPM");
#endif
    }
    if (got >= 2 && magic[0] == 'P' && std::strchr("147", magic[1]))
        fail(path, "PBM and PAM files are not supported (PNG, PGM, PPM, PFM or .npy)");
    fail(path, "not a PNG, PGM, PPM, PFM or .npy image");
}

unsigned significant_bits(int maxval) {
    unsigned bits = 0;
    while ((maxval >> bits) != 0) ++bits;
    return bits;
}

}  // namespace

// ---- RowReader -----------------------------------------------------------

RowReader::RowReader(const std::string& path, const ReadOptions& options, Mode mode, Channels channels,
                     int whole_bytes_per_sample)
    : path_(path), options_(options), mode_(mode) {
    File file = open_file(path, "rb");
    struct stat st;
    if (fstat(fileno(file.get()), &st) == 0) {
        if (S_ISDIR(st.st_mode)) fail(path, "is a directory");
        device_ = st.st_dev, inode_ = st.st_ino;
    }
    decoder_ = open_decoder(path, options, std::move(file));
    info_ = decoder_->info;
    gray_ = channels == Gray && info_.channels == 3;
    channels_ = gray_ ? 1 : info_.channels;
    // A whole image is held as the caller says, an interlaced PNG whole in
    // the file's type, other files a row at a time.
    if (whole_bytes_per_sample > 0)
        check_limits(path, info_, static_cast<uint64_t>(info_.height), channels_, whole_bytes_per_sample, options);
    if (info_.interlaced || whole_bytes_per_sample == 0)
        check_limits(path, info_, info_.interlaced ? static_cast<uint64_t>(info_.height) : 1, info_.channels,
                     sample_bytes(info_.sample), options);
    if (mode == Bytes) {
        if (info_.sample == Sample::F32)
            fail(path, "holds float values (" + info_.format + "); this command works on 8-bit pixels");
        if (info_.sample == Sample::U16 && options.to8 == To8::Refuse)
            fail(path, "is a " + info_.depth_name() +
                           " image; this command works on 8-bit pixels: --to8 shift keeps the top 8 bits, "
                           "--to8 scale rescales to 0..255");
    }
    decoder_->start();
    native_.resize(static_cast<size_t>(info_.width) * info_.channels * sample_bytes(info_.sample));
}

RowReader::~RowReader() = default;

bool RowReader::same_file(const std::string& other_path) const {
    struct stat st;
    return (device_ || inode_) && stat(other_path.c_str(), &st) == 0 &&
           static_cast<unsigned long long>(st.st_dev) == device_ && static_cast<unsigned long long>(st.st_ino) == inode_;
}

void RowReader::next_native() {
    if (rows_read_ >= info_.height) throw ToolError("'" + path_ + "': read past the last row");
    decoder_->read(native_.data());
    ++rows_read_;
}

namespace {

// Gray from interleaved RGB, or a copy; T the sample type, W its sum type.
template <class In, class Out>
void finish_row(const In* in, Out* out, size_t width, bool gray, int channels) {
    if (!gray) {
        for (size_t i = 0; i < width * channels; ++i) out[i] = static_cast<Out>(in[i]);
        return;
    }
    for (size_t x = 0; x < width; ++x) {
        const In* p = in + 3 * x;
        if constexpr (std::is_floating_point_v<In>)
            out[x] = static_cast<Out>((77.0f * p[0] + 150.0f * p[1] + 29.0f * p[2]) / 256.0f);
        else
            out[x] = static_cast<Out>((77u * p[0] + 150u * p[1] + 29u * p[2] + 128u) >> 8);
    }
}

}  // namespace

void RowReader::read_row(uint8_t* row) {
    if (info_.sample == Sample::F32 || (info_.sample == Sample::U16 && mode_ != Bytes))
        throw ToolError("'" + path_ + "': " + info_.depth_name() + " rows cannot be read as 8-bit");
    next_native();
    const size_t w = static_cast<size_t>(info_.width);
    if (info_.sample == Sample::U8) {
        finish_row(native_.data(), row, w, gray_, info_.channels);
        return;
    }
    // 16-bit samples to 8 bits, as --to8 says.
    uint16_t* s = reinterpret_cast<uint16_t*>(native_.data());
    const size_t n = w * info_.channels;
    const unsigned shift = significant_bits(info_.maxval) - 8;
    const unsigned maxval = static_cast<unsigned>(info_.maxval);
    for (size_t i = 0; i < n; ++i)
        s[i] = static_cast<uint16_t>(options_.to8 == To8::Shift ? s[i] >> shift : (s[i] * 255u + maxval / 2) / maxval);
    finish_row(s, row, w, gray_, info_.channels);
}

void RowReader::read_row(uint16_t* row) {
    if (info_.sample == Sample::F32) throw ToolError("'" + path_ + "': float rows cannot be read as 16-bit");
    if (mode_ == Bytes) {
        std::vector<uint8_t> bytes(row_samples());
        read_row(bytes.data());
        std::copy(bytes.begin(), bytes.end(), row);
        return;
    }
    next_native();
    const size_t w = static_cast<size_t>(info_.width);
    if (info_.sample == Sample::U8)
        finish_row(native_.data(), row, w, gray_, info_.channels);
    else
        finish_row(reinterpret_cast<const uint16_t*>(native_.data()), row, w, gray_, info_.channels);
}

void RowReader::read_row(float* row) {
    const size_t w = static_cast<size_t>(info_.width);
    if (mode_ == Bytes) {
        std::vector<uint8_t> bytes(row_samples());
        read_row(bytes.data());
        std::copy(bytes.begin(), bytes.end(), row);
        return;
    }
    next_native();
    switch (info_.sample) {
    case Sample::U8: finish_row(native_.data(), row, w, gray_, info_.channels); break;
    case Sample::U16:
        finish_row(reinterpret_cast<const uint16_t*>(native_.data()), row, w, gray_, info_.channels);
        break;
    default: finish_row(reinterpret_cast<const float*>(native_.data()), row, w, gray_, info_.channels); break;
    }
}

// ---- encoders ------------------------------------------------------------

class RowWriter::Encoder {
public:
    virtual ~Encoder() = default;
    // One row of `sample` samples (the writer checked the type suits).
    virtual void row(const void* data, Sample sample) = 0;
    virtual void finish() = 0;
};

namespace {

void put(std::vector<unsigned char>& out, uint32_t v, int bytes, bool big_endian) {
    for (int i = 0; i < bytes; ++i) out.push_back(static_cast<unsigned char>(v >> 8 * (big_endian ? bytes - 1 - i : i)));
}

float sample_as_float(const void* data, Sample sample, size_t i) {
    switch (sample) {
    case Sample::U8: return static_cast<const uint8_t*>(data)[i];
    case Sample::U16: return static_cast<const uint16_t*>(data)[i];
    case Sample::I16: return static_cast<const int16_t*>(data)[i];
    default: return static_cast<const float*>(data)[i];
    }
}

uint32_t float_bits(float v) {
    uint32_t bits;
    std::memcpy(&bits, &v, 4);
    return bits;
}

class StdioEncoder : public RowWriter::Encoder {
public:
    StdioEncoder(const std::string& path) : file_(open_file(path, "wb")), path_(path) {}
    void finish() override {
        FILE* f = file_.release();
        if (std::ferror(f) | std::fclose(f)) throw ToolError("cannot write '" + path_ + "'");
    }

protected:
    void write(const std::vector<unsigned char>& bytes) {
        if (std::fwrite(bytes.data(), 1, bytes.size(), file_.get()) != bytes.size())
            throw ToolError("cannot write '" + path_ + "': " + std::strerror(errno));
    }
    File file_;
    std::string path_;
    std::vector<unsigned char> buffer_;
};

class PnmEncoder : public StdioEncoder {
public:
    PnmEncoder(const std::string& path, int width, int height, int channels, bool wide)
        : StdioEncoder(path), samples_(static_cast<size_t>(width) * channels) {
        const std::string header = std::string(channels == 3 ? "P6" : "P5") + "\n" + std::to_string(width) + " " +
                                   std::to_string(height) + "\n" + (wide ? "65535" : "255") + "\n";
        write(std::vector<unsigned char>(header.begin(), header.end()));
    }
    void row(const void* data, Sample sample) override {
        buffer_.clear();
        for (size_t i = 0; i < samples_; ++i)
            put(buffer_, sample == Sample::U16 ? static_cast<const uint16_t*>(data)[i] : static_cast<const uint8_t*>(data)[i],
                sample == Sample::U16 ? 2 : 1, true);
        write(buffer_);
    }

private:
    size_t samples_;
};

class NpyEncoder : public StdioEncoder {
public:
    NpyEncoder(const std::string& path, int width, int height, int channels, Sample sample)
        : StdioEncoder(path), samples_(static_cast<size_t>(width) * channels) {
        const char* descr = sample == Sample::U8 ? "|u1" : sample == Sample::U16 ? "<u2" : sample == Sample::I16 ? "<i2" : "<f4";
        std::string dict = std::string("{'descr': '") + descr + "', 'fortran_order': False, 'shape': (" +
                           std::to_string(height) + ", " + std::to_string(width) +
                           (channels > 1 ? ", " + std::to_string(channels) : std::string()) + "), }";
        // Magic, version 1.0, header length; the header ends in a newline and
        // pads the data to a multiple of 64 bytes.
        const size_t total = (10 + dict.size() + 1 + 63) / 64 * 64;
        dict.append(total - 10 - dict.size() - 1, ' ');
        dict += '\n';
        std::vector<unsigned char> head = {0x93, 'N', 'U', 'M', 'P', 'Y', 1, 0};
        put(head, static_cast<uint32_t>(dict.size()), 2, false);
        head.insert(head.end(), dict.begin(), dict.end());
        write(head);
    }
    void row(const void* data, Sample sample) override {
        buffer_.clear();
        for (size_t i = 0; i < samples_; ++i) {
            switch (sample) {
            case Sample::U8: buffer_.push_back(static_cast<const uint8_t*>(data)[i]); break;
            case Sample::U16: put(buffer_, static_cast<const uint16_t*>(data)[i], 2, false); break;
            case Sample::I16: put(buffer_, static_cast<uint16_t>(static_cast<const int16_t*>(data)[i]), 2, false); break;
            case Sample::F32: put(buffer_, float_bits(static_cast<const float*>(data)[i]), 4, false); break;
            }
        }
        write(buffer_);
    }

private:
    size_t samples_;
};

// Rows arrive top to bottom and are stored bottom to top, at their place.
class PfmEncoder : public StdioEncoder {
public:
    PfmEncoder(const std::string& path, int width, int height, int channels)
        : StdioEncoder(path), samples_(static_cast<size_t>(width) * channels), height_(height) {
        const std::string header =
            std::string(channels == 3 ? "PF" : "Pf") + "\n" + std::to_string(width) + " " + std::to_string(height) + "\n-1.0\n";
        write(std::vector<unsigned char>(header.begin(), header.end()));
        data_ = header.size();
    }
    void row(const void* data, Sample sample) override {
        buffer_.clear();
        for (size_t i = 0; i < samples_; ++i) put(buffer_, float_bits(sample_as_float(data, sample, i)), 4, false);
        const uint64_t offset = data_ + samples_ * 4 * static_cast<uint64_t>(height_ - 1 - y_++);
        if (offset > static_cast<uint64_t>(LONG_MAX) || std::fseek(file_.get(), static_cast<long>(offset), SEEK_SET) != 0)
            throw ToolError("cannot write '" + path_ + "': PFM needs a seekable file");
        write(buffer_);
    }

private:
    size_t samples_;
    int height_;
    uint64_t data_ = 0;
    int y_ = 0;
};

#ifdef ORUCV_WITH_PNG
class PngEncoder : public RowWriter::Encoder {
public:
    PngEncoder(const std::string& path, int width, int height, int channels, bool wide)
        : file_(open_file(path, "wb")), path_(path) {
        handles_.png = png_ = png_create_write_struct(PNG_LIBPNG_VER_STRING, &error_, png_on_error, png_on_warning);
        if (!png_) throw ToolError("cannot write '" + path + "': cannot start the PNG writer");
        handles_.info = info_ = png_create_info_struct(png_);
        if (!info_) throw ToolError("cannot write '" + path + "': cannot start the PNG writer");
        call([&] {
            png_init_io(png_, file_.get());
            png_set_IHDR(png_, info_, static_cast<png_uint_32>(width), static_cast<png_uint_32>(height), wide ? 16 : 8,
                         channels == 3 ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_GRAY, PNG_INTERLACE_NONE,
                         PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
            png_write_info(png_, info_);
            if (wide && little_endian()) png_set_swap(png_);
        });
    }
    void row(const void* data, Sample) override {
        call([&] { png_write_row(png_, static_cast<png_const_bytep>(data)); });
    }
    void finish() override {
        call([&] { png_write_end(png_, nullptr); });
        FILE* f = file_.release();
        if (std::ferror(f) | std::fclose(f)) throw ToolError("cannot write '" + path_ + "'");
    }

private:
    template <class Fn>
    void call(Fn&& fn) {
        if (!guarded(png_, fn)) throw ToolError("cannot write '" + path_ + "': " + error_.message);
    }
    File file_;
    std::string path_;
    PngError error_;
    PngHandles handles_{false};
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
};
#endif

}  // namespace

// ---- RowWriter -----------------------------------------------------------

RowWriter::RowWriter(const std::string& path, int width, int height, int channels, Sample sample,
                     const RowReader* input)
    : path_(path), width_(width), height_(height), channels_(channels), sample_(sample) {
    const OutputFormat format = output_format(path);
    if (width < 1 || height < 1) throw ToolError("cannot write '" + path + "': the image is empty");
    const bool integer = sample == Sample::U8 || sample == Sample::U16;
    switch (format) {
    case OutputFormat::Pgm:
        if (channels != 1) fail(path, "a PGM holds one channel and this result has " + std::to_string(channels) +
                                          " (name a .ppm, .pnm or .png)");
        break;
    case OutputFormat::Ppm:
        if (channels != 3) fail(path, "a PPM holds three channels and this result has " + std::to_string(channels) +
                                          " (name a .pgm, .pnm or .png)");
        break;
    case OutputFormat::Png:
    case OutputFormat::Pnm:
    case OutputFormat::Pfm:
        if (channels != 1 && channels != 3) fail(path, "only gray and RGB results can be written here");
        break;
    case OutputFormat::Npy: break;
    }
    if (!integer && format != OutputFormat::Npy && format != OutputFormat::Pfm)
        fail(path, "signed or float values need a .npy or .pfm output");
    if (input && input->same_file(path)) fail(path, "is also the input; write the result to another file");
    const bool wide = sample == Sample::U16;
    try {
        switch (format) {
        case OutputFormat::Png:
#ifdef ORUCV_WITH_PNG
            encoder_ = std::make_unique<PngEncoder>(path, width, height, channels, wide);
#endif
            break;
        case OutputFormat::Pgm:
        case OutputFormat::Ppm:
        case OutputFormat::Pnm: encoder_ = std::make_unique<PnmEncoder>(path, width, height, channels, wide); break;
        case OutputFormat::Npy: encoder_ = std::make_unique<NpyEncoder>(path, width, height, channels, sample); break;
        case OutputFormat::Pfm: encoder_ = std::make_unique<PfmEncoder>(path, width, height, channels); break;
        }
    } catch (...) {
        std::remove(path.c_str());  // a header written before the failure
        throw;
    }
}

RowWriter::~RowWriter() {
    if (finished_) return;
    encoder_.reset();
    std::remove(path_.c_str());
}

void RowWriter::write(const void* row, Sample sample) {
    if (sample != sample_) throw ToolError("'" + path_ + "': rows of the wrong sample type");
    if (rows_ >= height_) throw ToolError("'" + path_ + "': more rows than the image has");
    encoder_->row(row, sample);
    ++rows_;
}

void RowWriter::write_row(const uint8_t* row) { write(row, Sample::U8); }
void RowWriter::write_row(const uint16_t* row) { write(row, Sample::U16); }
void RowWriter::write_row(const int16_t* row) { write(row, Sample::I16); }
void RowWriter::write_row(const float* row) { write(row, Sample::F32); }

void RowWriter::finish() {
    if (rows_ != height_)
        throw ToolError("'" + path_ + "': " + std::to_string(rows_) + " of " + std::to_string(height_) +
                        " rows were written");
    encoder_->finish();
    finished_ = true;
}

}  // namespace orucv_tool
