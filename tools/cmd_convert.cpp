// Image files from one format to another, row by row: the values stay as
// they are unless an option converts them.
#include <cstdio>
#include <vector>

#include "cli.h"
#include "row_io.h"

namespace orucv_tool {
namespace {

int run_convert(const Args& args) {
    const ReadOptions input = args.input();
    const bool to8 = input.to8 != To8::Refuse;
    RowReader in(args.positional[0], input, to8 ? RowReader::Bytes : RowReader::Exact,
                 args.has("--gray") ? RowReader::Gray : RowReader::AsIs);
    const std::string& out_name = args.positional[1];
    const Sample file = in.info().sample;
    const Sample rows = to8 && file == Sample::U16 ? Sample::U8 : file;
    if (rows == Sample::F32 && !keeps_values(output_format(out_name)))
        throw ToolError("'" + in.path() + "' holds float values: write them to a .pfm or .npy file");
    RowWriter out(out_name, in.width(), in.height(), in.channels(), rows, &in);
    Progress progress("convert", static_cast<uint64_t>(in.height()));
    std::vector<uint8_t> row8(rows == Sample::U8 ? in.row_samples() : 0);
    std::vector<uint16_t> row16(rows == Sample::U16 ? in.row_samples() : 0);
    std::vector<float> row32(rows == Sample::F32 ? in.row_samples() : 0);
    for (int y = 0; y < in.height(); ++y) {
        if (rows == Sample::U8) in.read_row(row8.data()), out.write_row(row8.data());
        if (rows == Sample::U16) in.read_row(row16.data()), out.write_row(row16.data());
        if (rows == Sample::F32) in.read_row(row32.data()), out.write_row(row32.data());
        progress.update(static_cast<uint64_t>(y) + 1);
    }
    out.finish();
    progress.finish();
    const ImageInfo& info = in.info();
    std::printf("%s: %dx%d, %d channel%s, %s from %s%s\n", out_name.c_str(), in.width(), in.height(), in.channels(),
                in.channels() == 1 ? "" : "s", info.depth_name().c_str(), info.format.c_str(),
                rows != file ? " converted to 8-bit" : "");
    return 0;
}
ORUCV_COMMAND("convert", "IN OUT", "copy an image into another format, row by row, values unchanged", run_convert,
              kReads8, {{"--gray", nullptr, "RGB to gray (weights 77, 150, 29 / 256)"}},
              "The output's extension names the format; 8- and 16-bit samples stay as they are (a PNG/PGM of a\n"
              "16-bit image is 16-bit), float values need a .pfm or .npy output. --to8 converts 16-bit samples\n"
              "to 8 bits, --drop-alpha drops an alpha channel. Memory holds a few rows whatever the height\n"
              "(--max-pixels limits the row width here).");

}  // namespace
}  // namespace orucv_tool
