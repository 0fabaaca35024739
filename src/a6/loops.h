// Column loops that vector rows share. Internal linkage: each
// instruction-set file instantiates its own.
#pragma once

// For row kernels assembled from many small pieces: everything they call is
// inlined into them, where the compiler's size limits would leave calls in
// the inner loops.
#define ORUCV_FLATTEN __attribute__((flatten))

namespace orucv {
namespace a6 {
namespace {

// Runs block(i) over [0, n) two blocks of kStep at a time, then one, and
// returns where the vector part stopped (the rest is the scalar twin's).
template <int kStep, class Block>
inline int vector_blocks(int n, Block block) {
    int i = 0;
    for (; i + 2 * kStep <= n; i += 2 * kStep) {
        block(i);
        block(i + kStep);
    }
    if (i + kStep <= n) {
        block(i);
        i += kStep;
    }
    return i;
}

}  // namespace
}  // namespace a6
}  // namespace orucv
