// orucv: runs the library's primitives on a built-in scene (`orucv demo`) or
// on image files (`orucv <command> ...`).
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sstream>

#include "cli.h"
#include "orucv.h"
#include "scene.h"

namespace orucv_tool {
namespace {

std::vector<Command>& command_list() {
    static std::vector<Command> list;
    return list;
}
std::vector<DemoStep>& step_list() {
    static std::vector<DemoStep> list;
    return list;
}

bool flag_listed(const char* flags, const std::string& name) {
    std::istringstream in(flags ? flags : "");
    std::string f;
    while (in >> f)
        if (f == name) return true;
    return false;
}

Args parse_args(const Command& command, int argc, char** argv) {
    Args args;
    for (int i = 0; i < argc; ++i) {
        const std::string a = argv[i];
        if (a.size() > 2 && a.compare(0, 2, "--") == 0) {
            if (flag_listed(command.flags, a)) {
                args.options[a] = "";
            } else if (i + 1 < argc) {
                args.options[a] = argv[++i];
            } else {
                throw ToolError("option " + a + " needs a value");
            }
        } else {
            args.positional.push_back(a);
        }
    }
    return args;
}

void make_dir(const std::string& dir) {
    if (mkdir(dir.c_str(), 0755) != 0 && errno != EEXIST)
        throw ToolError("cannot create directory '" + dir + "': " + std::strerror(errno));
}

int run_demo(const Args& args) {
    if (args.positional.size() > 1) throw ToolError("usage: orucv demo [DIR]");
    const std::string dir = args.positional.empty() ? "orucv-demo" : args.positional[0];
    make_dir(dir);
    const OruLibVersion* v = orucvGetLibVersion();
    std::printf("%s %s: demo on a %dx%d synthetic scene, results in %s/\n", v->Name, v->Version, kSceneWidth,
                kSceneHeight, dir.c_str());
    DemoContext demo(dir);
    demo.save("scene.png", demo.frame(0), "(input)", 0.0, "frame 0 of the built-in scene");
    for (const DemoStep& step : demo_steps()) step.run(demo);
    return 0;
}

ORUCV_COMMAND("demo", "[DIR]   render the built-in scene and write one result per primitive (default orucv-demo/)",
              run_demo);

void usage(FILE* out) {
    std::fprintf(out, "usage: orucv <command> [arguments]\n\ncommands:\n");
    for (const Command& c : commands()) std::fprintf(out, "  orucv %s %s\n", c.name, c.usage);
    std::fprintf(out, "\nimages: PNG%s, PGM and PPM (8-bit)\n", png_supported() ? "" : " (not in this build)");
}

}  // namespace

std::string Args::get(const std::string& name, const std::string& fallback) const {
    auto it = options.find(name);
    return it == options.end() ? fallback : it->second;
}

int Args::get_int(const std::string& name, int fallback) const {
    if (!has(name)) return fallback;
    const std::string v = get(name);
    char* end = nullptr;
    errno = 0;
    const long n = std::strtol(v.c_str(), &end, 10);
    if (v.empty() || *end || errno || n < -(1l << 30) || n > (1l << 30))
        throw ToolError(name + " needs a whole number, not '" + v + "'");
    return static_cast<int>(n);
}

double Args::get_double(const std::string& name, double fallback) const {
    if (!has(name)) return fallback;
    const std::string v = get(name);
    char* end = nullptr;
    const double d = std::strtod(v.c_str(), &end);
    if (v.empty() || *end) throw ToolError(name + " needs a number, not '" + v + "'");
    return d;
}

std::pair<int, int> Args::get_pair(const std::string& name) const {
    const std::string v = get(name);
    int a = 0, b = 0;
    char tail = 0;
    if (std::sscanf(v.c_str(), "%d,%d%c", &a, &b, &tail) != 2) throw ToolError(name + " needs X,Y, not '" + v + "'");
    return {a, b};
}

DemoContext::DemoContext(std::string dir) : dir_(std::move(dir)) {}

const Image& DemoContext::frame(int index) {
    auto it = frames_.find(index);
    if (it == frames_.end()) it = frames_.emplace(index, render_scene(kSceneWidth, kSceneHeight, index)).first;
    return it->second;
}

void DemoContext::save(const std::string& name, const Image& image, const std::string& primitive, double ms,
                       const std::string& detail) {
    std::string file = name;
    if (!png_supported()) file = file.substr(0, file.rfind('.')) + (image.channels == 3 ? ".ppm" : ".pgm");
    write_image(dir_ + "/" + file, image);
    std::printf("  %-24s %4dx%-4d %-40s %8.3f ms  %s\n", file.c_str(), image.width, image.height, primitive.c_str(),
                ms, detail.c_str());
}

bool register_command(const Command& command) {
    command_list().push_back(command);
    return true;
}
bool register_demo_step(const DemoStep& step) {
    step_list().push_back(step);
    return true;
}
const std::vector<Command>& commands() {
    auto& list = command_list();
    // demo first, then by name.
    auto key = [](const Command& c) { return std::make_pair(std::strcmp(c.name, "demo") != 0, std::string(c.name)); };
    std::sort(list.begin(), list.end(), [&](const Command& a, const Command& b) { return key(a) < key(b); });
    return list;
}
std::vector<DemoStep> demo_steps() {
    std::vector<DemoStep> steps = step_list();
    std::stable_sort(steps.begin(), steps.end(), [](const DemoStep& a, const DemoStep& b) { return a.order < b.order; });
    return steps;
}

void check_status(int status, const char* function) {
    if (status < 0) throw ToolError(std::string(function) + " failed with status " + std::to_string(status));
}

}  // namespace orucv_tool

int main(int argc, char** argv) {
    using namespace orucv_tool;
    if (argc < 2) {
        usage(stderr);
        return 2;
    }
    const std::string name = argv[1];
    if (name == "-h" || name == "--help" || name == "help") {
        usage(stdout);
        return 0;
    }
    for (const Command& c : commands()) {
        if (name != c.name) continue;
        try {
            return c.run(parse_args(c, argc > 2 ? argc - 2 : 0, argv + 2));
        } catch (const ToolError& e) {
            std::fprintf(stderr, "orucv %s: %s\n", c.name, e.what());
            return 2;
        } catch (const std::exception& e) {
            std::fprintf(stderr, "orucv %s: %s\n", c.name, e.what());
            return 2;
        }
    }
    std::fprintf(stderr, "orucv: unknown command '%s'\n\n", name.c_str());
    usage(stderr);
    return 2;
}
