// The orucv program's parts: commands (`orucv NAME ...`) and demo steps
// register themselves from their own files, one file per family.
#pragma once

#include <chrono>
#include <map>
#include <string>
#include <vector>

#include "image.h"

namespace orucv_tool {

// Positional arguments and `--name value` / `--flag` options.
struct Args {
    std::vector<std::string> positional;
    std::map<std::string, std::string> options;

    bool has(const std::string& name) const { return options.count(name) != 0; }
    std::string get(const std::string& name, const std::string& fallback = "") const;
    // Parsed numbers; a malformed value throws ToolError naming the option.
    int get_int(const std::string& name, int fallback) const;
    double get_double(const std::string& name, double fallback) const;
    // "X,Y" pairs such as seeds.
    std::pair<int, int> get_pair(const std::string& name) const;
};

struct Command {
    const char* name;
    const char* usage;  // arguments after the name
    int (*run)(const Args& args);
    const char* flags = "";  // space-separated options that take no value, e.g. "--dx --dy"
};

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
std::vector<DemoStep> demo_steps();

// Best of `repeats` runs of fn, in milliseconds.
template <class Fn>
double time_ms(Fn&& fn, int repeats = 5) {
    double best = 1e30;
    for (int i = 0; i < repeats; ++i) {
        const auto t0 = std::chrono::steady_clock::now();
        fn();
        const auto t1 = std::chrono::steady_clock::now();
        best = std::min(best, std::chrono::duration<double, std::milli>(t1 - t0).count());
    }
    return best;
}

// Canny edges (255, else 0) of a gray image from its 3x3 Sobel derivatives;
// *ms is the detector's own time. Shared by the demo steps that need edges.
Image canny_edges(const Image& gray, float low, float high, double* ms, size_t* edge_count);

// Throws ToolError with the function's name when a call fails.
void check_status(int status, const char* function);

}  // namespace orucv_tool

#define ORUCV_CAT2(a, b) a##b
#define ORUCV_CAT(a, b) ORUCV_CAT2(a, b)
#define ORUCV_COMMAND(...) \
    static const bool ORUCV_CAT(orucv_command_, __LINE__) = ::orucv_tool::register_command({__VA_ARGS__})
#define ORUCV_DEMO_STEP(...) \
    static const bool ORUCV_CAT(orucv_demo_step_, __LINE__) = ::orucv_tool::register_demo_step({__VA_ARGS__})
