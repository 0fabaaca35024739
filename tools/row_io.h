// Images read and written one row at a time, so that a strip filter's
// memory is a few rows whatever the image height.
//
// RowReader opens a PNG, PGM/PPM, PFM or .npy file, learns size and depth
// from the header and hands out rows top to bottom. Only the row width is
// held against the limits (--max-pixels), not the height: a reader holds
// one row (an interlaced PNG, which has to be decoded whole, is held whole
// and checked like a whole image). RowWriter writes rows top to bottom to
// PNG, PGM/PPM (8 or 16 bit), .npy or PFM; an unfinished file is removed.
//
// A strip filter over a file, as `orucv blur` would run it:
//
//   RowReader in(args.positional[0], args.input(), RowReader::Bytes, RowReader::Gray);
//   RowWriter out(args.positional[1], in.width(), in.height(), 1, Sample::U8, &in);
//   Progress progress("blur", in.height());
//   std::vector<uint8_t> strip(static_cast<size_t>(in.width()) * rows_per_strip);
//   for (int y = 0; y < in.height(); y += rows_per_strip) {
//       const int n = std::min(rows_per_strip, in.height() - y);
//       for (int i = 0; i < n; ++i) in.read_row(strip.data() + static_cast<size_t>(i) * in.width());
//       // ... the strip call (first, middle or last strip) writes `got` rows into dst ...
//       for (int i = 0; i < got; ++i) out.write_row(dst.data() + static_cast<size_t>(i) * in.width());
//       progress.update(y + n);
//   }
//   out.finish();
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include "image.h"

namespace orucv_tool {

class RowDecoder;

class RowReader {
public:
    // Bytes: rows as 8-bit samples; a 16-bit file needs --to8 (else the
    // constructor throws naming the depth and --to8) and a float file is
    // refused. Exact: rows in the file's own values (read_row(uint16_t*)
    // for 8/16-bit files, read_row(float*) for any).
    enum Mode { Bytes, Exact };
    // Gray: RGB rows become gray (weights 77, 150, 29 /256); AsIs keeps them.
    enum Channels { AsIs, Gray };

    // whole_bytes_per_sample > 0: the caller holds the whole image, at that
    // many bytes per sample, and the limits apply to the image (the whole
    // image readers of image.h pass it).
    RowReader(const std::string& path, const ReadOptions& options, Mode mode, Channels channels = AsIs,
              int whole_bytes_per_sample = 0);
    ~RowReader();
    RowReader(const RowReader&) = delete;
    RowReader& operator=(const RowReader&) = delete;

    const ImageInfo& info() const { return info_; }
    int width() const { return info_.width; }
    int height() const { return info_.height; }
    // Channels of the rows handed out (1 with Gray).
    int channels() const { return channels_; }
    // Samples per row: width() * channels().
    size_t row_samples() const { return static_cast<size_t>(info_.width) * channels_; }
    int rows_read() const { return rows_read_; }
    const std::string& path() const { return path_; }

    // The next row; throws ToolError past the last row, on truncated or
    // malformed data, or when the row type does not suit the file.
    void read_row(uint8_t* row);
    void read_row(uint16_t* row);
    void read_row(float* row);

    // The file's identity, so a writer can refuse to overwrite its input.
    bool same_file(const std::string& other_path) const;

private:
    void next_native();

    std::string path_;
    ReadOptions options_;
    Mode mode_;
    int channels_ = 1;
    bool gray_ = false;
    ImageInfo info_;
    int rows_read_ = 0;
    std::unique_ptr<RowDecoder> decoder_;
    std::vector<unsigned char> native_;  // one row in the file's sample type
    unsigned long long device_ = 0, inode_ = 0;
};

class RowWriter {
public:
    // The format comes from the extension (output_format). PNG and
    // PGM/PPM take U8 or U16 rows; .npy stores the rows' own type; PFM
    // stores float. `input`, when given, is refused as the output file.
    RowWriter(const std::string& path, int width, int height, int channels, Sample sample,
              const RowReader* input = nullptr);
    ~RowWriter();  // removes the file unless finish() completed
    RowWriter(const RowWriter&) = delete;
    RowWriter& operator=(const RowWriter&) = delete;

    // width * channels samples of the constructor's type.
    void write_row(const uint8_t* row);
    void write_row(const uint16_t* row);
    void write_row(const int16_t* row);
    void write_row(const float* row);
    // After the last row: completes the file; throws on a write error.
    void finish();
    int rows_written() const { return rows_; }

    class Encoder;

private:
    void write(const void* row, Sample sample);

    std::string path_;
    int width_, height_, channels_;
    Sample sample_;
    int rows_ = 0;
    bool finished_ = false;
    std::unique_ptr<Encoder> encoder_;
};

}  // namespace orucv_tool
