// The orucv program's parts and conventions.
//
// Commands (`orucv NAME ...`) and demo steps register themselves from their
// own files, one `tools/cmd_<family>.cpp` per family. A command declares its
// positional arguments, its options and the common option groups it takes;
// the parser rejects anything else with the command's usage line, and
// `orucv help NAME` / `orucv NAME --help` print the help built from the
// declaration. A new command, by example:
//
//   int run_blur(const Args& args) {
//       const int size = args.get_int("--size", 3, 1, 255);            // checked range
//       const Image in = to_gray(read_image(args.positional[0], args.input()));
//       Image out(in.width, in.height);
//       int status = 0;
//       const Timing t = time_runs([&] { status = oruiBlur...(..., out.pixels.data(), ...); });
//       check_status(status, "oruiBlur...");                           // words, not numbers
//       write_image(args.positional[1], out);                          // format by extension
//       std::printf("%s: %dx%d, %s\n", args.positional[1].c_str(), in.width, in.height, t.text().c_str());
//       return 0;
//   }
//   ORUCV_COMMAND("blur", "IN OUT", "box blur of an image", run_blur, kReads8 | kRepeat,
//                 {{"--size", "N", "side of the square window (default 3)"}});
//
// Conventions:
// - Positional names in the synopsis: UPPER words are required, [X] is
//   optional, X... repeats; a name starting with OUT is an output file, and
//   its extension is checked before the command runs (as is the value of an
//   option whose value name starts with OUT).
// - Options are `--name VALUE`, `--name=VALUE` or `--flag` (value name
//   nullptr). A value name of words joined by '|' ("shift|scale") is the
//   list of allowed values; one in brackets ("[A]") is an optional number
//   (`--dx`, `--dx 2`, `--dx=2`; get() is "" without it). `--` ends the
//   options. Unknown options, stray
//   arguments, repeated options and missing required options are errors.
// - Common groups: kReads (--max-pixels, --drop-alpha) for commands that read
//   images, kReads8 also --to8 for commands that need 8-bit pixels; kRepeat
//   (--repeat N: the primitive runs N times, minimum and median printed).
//   A primitive runs once by default.
// - Errors throw ToolError (message without the program name); main prints
//   "orucv NAME: message" and exits 2. Library failures go through
//   check_status, which names the status in words. Exit 0 on success, 1 for
//   a command's "no" answer (such as images that differ), 2 for errors.
// - Images: read_image (8-bit; 16-bit needs --to8), read_float_image
//   (exact values), RowReader/RowWriter (row_io.h) for streaming; writers
//   pick the format by extension (image.h).
// - Work that may take more than a second reports through Progress.
// - Tests: a case in tests/cli/cli_test.sh runs the program on generated
//   files; `cli_probe run MAX_MIB MAX_SECONDS STATUS -- orucv ...` checks a
//   run's status, time and peak resident memory, `cli_probe gray W H FILE`
//   writes a tall test image row by row (tests/cli/cli_probe.cpp).
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "image.h"
#include "status.h"

namespace orucv_tool {

struct Command;

// The parsed command line of one command.
struct Args {
    std::vector<std::string> positional;
    std::map<std::string, std::string> options;  // given options; flags map to ""
    const Command* command = nullptr;

    bool has(const std::string& name) const { return options.count(name) != 0; }
    std::string get(const std::string& name, const std::string& fallback = "") const;
    // Numbers; a malformed value or one outside [lo, hi] throws ToolError
    // naming the option and the range.
    int get_int(const std::string& name, int fallback, int lo = -(1 << 30), int hi = 1 << 30) const;
    double get_double(const std::string& name, double fallback, double lo = -1e300, double hi = 1e300) const;
    // "X,Y" pairs such as seeds; "WxH" sizes.
    std::pair<int, int> get_pair(const std::string& name) const;
    std::pair<int, int> get_size(const std::string& name) const;
    // The common input options (kReads, kReads8).
    ReadOptions input() const;
};

struct Option {
    const char* name;   // "--size"
    const char* value;  // "N" or "shift|scale" (allowed values); nullptr for a flag
    const char* help;   // one line
    bool required = false;
};

enum CommonOptions : unsigned {
    kReads = 1u,            // --max-pixels N, --drop-alpha
    kReads8 = 2u | kReads,  // also --to8 shift|scale
    kRepeat = 4u,           // --repeat N
};

struct Command {
    const char* name;
    const char* synopsis;  // positional arguments: "IN OUT", "OUT IN...", "[DIR]"
    const char* summary;   // one line
    int (*run)(const Args& args);
    unsigned common = 0;
    std::vector<Option> options = {};
    const char* details = nullptr;  // further help text, paragraphs of plain lines
};

// Parses argv (after the command name) for `command`; throws UsageError.
// `help` is set when -h or --help is given (nothing else is checked then).
struct UsageError : ToolError {
    using ToolError::ToolError;
};
Args parse_args(const Command& command, int argc, const char* const* argv, bool* help);
// "usage: orucv NAME SYNOPSIS [--opt V] ..." wrapped to fit a terminal.
std::string usage_line(const Command& command);
// The full help of a command.
std::string help_text(const Command& command);

// What a demo step works with and reports to.
class DemoContext {
public:
    explicit DemoContext(std::string dir);
    const std::string& dir() const { return dir_; }
    // Scene frames in gray, rendered once.
    const Image& frame(int index);
    // Writes dir/name and prints one summary line with the primitive's time.
    void save(const std::string& name, const Image& image, const std::string& primitive, double ms,
              const std::string& detail = "");

private:
    std::string dir_;
    std::map<int, Image> frames_;
};

struct DemoStep {
    int order;  // steps run in increasing order
    const char* name;
    void (*run)(DemoContext& demo);
};

bool register_command(const Command& command);
bool register_demo_step(const DemoStep& step);
const std::vector<Command>& commands();
const Command* find_command(const std::string& name);
std::vector<DemoStep> demo_steps();

// Times of the runs of a primitive.
struct Timing {
    std::vector<double> ms;
    double min_ms() const;
    double median_ms() const;
    // "1.234 ms", or "min 1.234 ms, median 1.300 ms of 5 runs".
    std::string text() const;
};

// Runs of a primitive: --repeat N of the running command (default 1).
int repeat_count();
void set_repeat_count(int runs);

template <class Fn>
Timing time_runs(Fn&& fn, int runs = 0) {
    Timing t;
    if (runs < 1) runs = repeat_count();
    for (int i = 0; i < runs; ++i) {
        const auto t0 = std::chrono::steady_clock::now();
        fn();
        const auto t1 = std::chrono::steady_clock::now();
        t.ms.push_back(std::chrono::duration<double, std::milli>(t1 - t0).count());
    }
    return t;
}

// The fastest of the runs, in milliseconds (runs < 1: repeat_count()).
template <class Fn>
double time_ms(Fn&& fn, int runs = 0) {
    return time_runs(fn, runs).min_ms();
}

// Progress of long work on stderr: a bar with a percentage, drawn only when
// stderr is a terminal and only once the work has taken about a second,
// redrawn at most ten times a second, erased when done.
class Progress {
public:
    Progress(std::string what, uint64_t total);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    void update(uint64_t done);
    void finish();

private:
    std::string what_;
    uint64_t total_;
    bool terminal_;
    bool drawn_ = false;
    std::chrono::steady_clock::time_point start_, last_;
    std::chrono::milliseconds delay_;
};

// Canny edges (255, else 0) of a gray image from its 3x3 Sobel derivatives;
// *ms is the detector's own (fastest) time, *timing all its runs. Shared by
// the demo steps that need edges.
Image canny_edges(const Image& gray, float low, float high, double* ms, size_t* edge_count, Timing* timing = nullptr);

// Throws ToolError "FUNCTION failed: NAME: MEANING (status N)" for a
// negative status; warnings and success return.
void check_status(int status, const char* function);

}  // namespace orucv_tool

#define ORUCV_CAT2(a, b) a##b
#define ORUCV_CAT(a, b) ORUCV_CAT2(a, b)
#define ORUCV_COMMAND(...) \
    static const bool ORUCV_CAT(orucv_command_, __LINE__) = ::orucv_tool::register_command({__VA_ARGS__})
#define ORUCV_DEMO_STEP(...) \
    static const bool ORUCV_CAT(orucv_demo_step_, __LINE__) = ::orucv_tool::register_demo_step({__VA_ARGS__})
