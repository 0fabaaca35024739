// orucv: runs the library's primitives on a built-in scene (`orucv demo`) or
// on image files (`orucv <command> ...`).
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "cli.h"
#include "orucv.h"
#include "scene.h"

#ifndef ORUCV_PACKAGE_VERSION
#define ORUCV_PACKAGE_VERSION "unknown"
#endif

namespace orucv_tool {
namespace {

void make_dir(const std::string& dir) {
    if (mkdir(dir.c_str(), 0755) != 0 && errno != EEXIST)
        throw ToolError("cannot create directory '" + dir + "': " + std::strerror(errno));
    struct stat st;
    if (stat(dir.c_str(), &st) != 0 || !S_ISDIR(st.st_mode)) throw ToolError("'" + dir + "' is not a directory");
}

int run_demo(const Args& args) {
    const std::string dir = args.positional.empty() ? "orucv-demo" : args.positional[0];
    make_dir(dir);
    const OruLibVersion* v = orucvGetLibVersion();
    std::printf("%s %s: demo on a %dx%d synthetic scene, results in %s/\n", v->Name, v->Version, kSceneWidth,
                kSceneHeight, dir.c_str());
    if (!png_supported())
        std::printf("this build has no PNG support (libpng was not found): the images are PGM/PPM files\n");
    DemoContext demo(dir);
    demo.save("scene.png", demo.frame(0), "(input)", 0.0, "frame 0 of the built-in scene");
    for (const DemoStep& step : demo_steps()) step.run(demo);
    return 0;
}

ORUCV_COMMAND("demo", "[DIR]", "every primitive on a built-in scene, one result image each in DIR", run_demo, kRepeat,
              {},
              "DIR is orucv-demo when not given; it is created if needed. Each line names the file, the\n"
              "primitive and its time (the fastest of --repeat runs).");

void print_version() {
    const OruLibVersion* v = orucvGetLibVersion();
    std::printf("orucv %s\n", ORUCV_PACKAGE_VERSION);
    std::printf("library %s %s (version record %d.%d.%d.%d, target %.4s, dated %s)\n", v->Name, v->Version, v->major,
                v->minor, v->majorBuild, v->build, v->targetCpu, v->BuildDate);
}

void usage(FILE* out) {
    std::fprintf(out,
                 "usage: orucv COMMAND ARGUMENTS [OPTIONS]\n"
                 "       orucv help COMMAND    (or orucv COMMAND --help)\n"
                 "       orucv --version\n\ncommands:\n");
    for (const Command& c : commands()) std::fprintf(out, "  %-10s %s\n", c.name, c.summary);
    std::fprintf(out,
                 "\nimages: PNG (8 and 16 bit%s), PGM and PPM (maxval up to 65535), PFM and NumPy .npy;\n"
                 "outputs are written in the format their extension names.\n"
                 "exit status: 0 done, 1 a command's \"no\" (such as images that differ), 2 error.\n",
                 png_supported() ? "" : "; not in this build");
}

int run_command(const Command& c, int argc, const char* const* argv) {
    try {
        bool help = false;
        const Args args = parse_args(c, argc, argv, &help);
        if (help) {
            std::fputs(help_text(c).c_str(), stdout);
            return 0;
        }
        if (c.common & kRepeat) set_repeat_count(args.get_int("--repeat", 1, 1, 1000000));
        return c.run(args);
    } catch (const UsageError& e) {
        std::fprintf(stderr, "orucv %s: %s\n%s\n", c.name, e.what(), usage_line(c).c_str());
    } catch (const std::bad_alloc&) {
        std::fprintf(stderr, "orucv %s: out of memory\n", c.name);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "orucv %s: %s\n", c.name, e.what());
    }
    return 2;
}

}  // namespace

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

}  // namespace orucv_tool

int main(int argc, char** argv) {
    using namespace orucv_tool;
    if (argc < 2) {
        usage(stderr);
        return 2;
    }
    const std::string name = argv[1];
    if (name == "-h" || name == "--help" || (name == "help" && argc == 2)) {
        usage(stdout);
        return 0;
    }
    if (name == "--version") {
        if (argc > 2) {
            std::fprintf(stderr, "orucv: --version takes no arguments\n");
            return 2;
        }
        print_version();
        return 0;
    }
    if (name == "help") {
        const Command* c = find_command(argv[2]);
        if (!c || argc > 3) {
            std::fprintf(stderr, "orucv help: %s\n", argc > 3 ? "give one command" : ("unknown command '" + std::string(argv[2]) + "'").c_str());
            return 2;
        }
        std::fputs(help_text(*c).c_str(), stdout);
        return 0;
    }
    if (const Command* c = find_command(name)) return run_command(*c, argc - 2, argv + 2);
    std::fprintf(stderr, "orucv: unknown command '%s' (orucv help lists the commands)\n", name.c_str());
    return 2;
}
