// Helper of the CLI tests:
//   cli_probe run MAX_MIB MAX_SECONDS STATUS -- PROGRAM ARGS...
//       runs the program and fails unless it exits with STATUS within
//       MAX_SECONDS with a peak resident memory below MAX_MIB (0: any);
//       prints what it measured.
//   cli_probe png W H DEPTH COLOR_TYPE FILE   a PNG header claiming W x H
//   cli_probe pnm P5|P6 W H MAXVAL FILE       a PGM/PPM header and 64 bytes
//   cli_probe gray W H FILE                   a valid 8-bit PGM with a
//       pattern, written row by row (for streaming tests of tall images)
#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "craft.h"

namespace {

int usage() {
    std::fprintf(stderr,
                 "usage: cli_probe run MAX_MIB MAX_SECONDS STATUS -- PROGRAM ARGS...\n"
                 "       cli_probe png W H DEPTH COLOR_TYPE FILE\n"
                 "       cli_probe pnm P5|P6 W H MAXVAL FILE\n"
                 "       cli_probe gray W H FILE\n");
    return 2;
}

bool save(const char* path, const craft::Bytes& bytes) {
    FILE* f = std::fopen(path, "wb");
    if (!f) return false;
    const bool ok = std::fwrite(bytes.data(), 1, bytes.size(), f) == bytes.size();
    return std::fclose(f) == 0 && ok;
}

int run(int argc, char** argv) {
    if (argc < 7 || std::strcmp(argv[5], "--") != 0) return usage();
    const double max_mib = std::atof(argv[2]), max_seconds = std::atof(argv[3]);
    const int expected = std::atoi(argv[4]);
    const auto start = std::chrono::steady_clock::now();
    const pid_t pid = fork();
    if (pid < 0) return 2;
    if (pid == 0) {
        execv(argv[6], argv + 6);
        std::perror("exec");
        _exit(127);
    }
    int status = 0;
    struct rusage usage {};
    if (wait4(pid, &status, 0, &usage) != pid) return 2;
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    const double mib = usage.ru_maxrss / 1024.0;
    const int code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    std::printf("cli_probe: status %d, %.2f s, peak resident memory %.1f MiB\n", code, seconds, mib);
    bool ok = true;
    if (code != expected) std::printf("cli_probe: expected status %d\n", expected), ok = false;
    if (max_seconds > 0 && seconds > max_seconds) std::printf("cli_probe: more than %g s\n", max_seconds), ok = false;
    if (max_mib > 0 && mib > max_mib) std::printf("cli_probe: more than %g MiB\n", max_mib), ok = false;
    return ok ? 0 : 1;
}

int gray(int argc, char** argv) {
    if (argc != 5) return usage();
    const long w = std::atol(argv[2]), h = std::atol(argv[3]);
    FILE* f = std::fopen(argv[4], "wb");
    if (!f || w < 1 || h < 1) return 2;
    std::fprintf(f, "P5\n%ld %ld\n255\n", w, h);
    std::vector<unsigned char> row(static_cast<size_t>(w));
    for (long y = 0; y < h; ++y) {
        for (long x = 0; x < w; ++x) row[x] = static_cast<unsigned char>((x * 7 + y * 3 + ((x / 16 + y / 16) & 1) * 90) & 255);
        if (std::fwrite(row.data(), 1, row.size(), f) != row.size()) return 2;
    }
    return std::fclose(f) == 0 ? 0 : 2;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) return usage();
    const std::string what = argv[1];
    if (what == "run") return run(argc, argv);
    if (what == "gray") return gray(argc, argv);
    if (what == "png" && argc == 7)
        return save(argv[6], craft::png_claiming(std::strtoul(argv[2], nullptr, 10), std::strtoul(argv[3], nullptr, 10),
                                                 std::atoi(argv[4]), std::atoi(argv[5])))
                   ? 0
                   : 2;
    if (what == "pnm" && argc == 7 && argv[2][0] == 'P')
        return save(argv[6], craft::pnm_claiming(argv[2][1], std::strtoull(argv[3], nullptr, 10),
                                                 std::strtoull(argv[4], nullptr, 10), std::atoi(argv[5]), 64))
                   ? 0
                   : 2;
    return usage();
}
