// Proves that the harness's checks fail: each fault below, made by a fake
// function, must stop the run (in a child process); the well-behaved
// function must pass.
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstring>

#include "support/harness.h"

using namespace orufuzz;

namespace {

// A 16 x 4 destination filled from a 16 x 4 source, or a fault.
void run(const char* fault) {
    static const uint8_t kInput[64] = {1, 2, 3};
    Harness h(kInput, sizeof kInput);
    Image& src = h.image("src", Role::In, 16, 4, 20, 1);
    Image& dst = h.image("dst", Role::Out, 16, 4, 24, 1);
    fill<Oru8u>(src, h.in);
    auto is = [&](const char* f) { return std::strcmp(fault, f) == 0; };
    h.on_every_level([&] {
        h.call("copy", [&] {
            for (int y = 0; y < 4; ++y) std::memcpy(dst.row(y), src.row(y), 16);
            if (is("outside")) dst.row(1)[16] = 0;                 // into the padding
            if (is("source")) src.row(0)[0] ^= 1;                   // into a source
            if (is("level")) dst.row(0)[0] ^= static_cast<uint8_t>(orucv::simd_level());
            if (is("failed")) return OruStatus{oruStsSize};         // after writing
            return is("status") ? OruStatus{12345} : OruStatus{oruStsOk};
        });
        h.call("refuse", [&] { return OruStatus{oruStsNullPointer}; });
    });
}

}  // namespace

int main(int argc, char** argv) {
    const char* fault = argc > 1 ? argv[1] : "none";
    std::fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
        run(fault);
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    // AddressSanitizer builds may stop a write into the guards themselves
    // (they are poisoned), with its own exit status.
    const bool aborted = (WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT) ||
                         (WIFEXITED(status) && WEXITSTATUS(status) != 0);
    const bool want_abort = std::strcmp(fault, "none") != 0;
    std::printf("%s: %s\n", fault, aborted ? "aborted" : "passed");
    return aborted == want_abort ? 0 : 1;
}
