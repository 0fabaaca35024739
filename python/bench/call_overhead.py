"""The binding's cost per call beside a direct C call, on a 64x64 and a
1920x1080 image (the 3x3 Sobel x derivative, uint8 to int16).

    cpu-lock /usr/bin/python3 python/bench/call_overhead.py

Builds direct_call.c with cc into a small shared object linked to the
library orucv loads (the build tree's, or $ORUCV_LIBRARY), whose C loop
times direct calls on the same buffers the Python calls use. Rounds of the
four ways alternate, and each way's best round counts; printed per size,
microseconds per call of: the direct C call; the typed raw function
orucv.lib.<name> with ready arrays; orucv.sobel3x3_dx(img, out=dst); and
orucv.sobel3x3_dx(img), which also allocates its result. The overheads are
relative to the C time."""

import ctypes
import subprocess
import sys
import tempfile
import time
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent))

import numpy as np  # noqa: E402

import orucv  # noqa: E402
from orucv import _binding  # noqa: E402

ROUNDS = 15


def direct_loop(tmp):
    lib = Path(orucv.lib._path).resolve()
    so = Path(tmp) / "direct_call.so"
    subprocess.run(["cc", "-O2", "-std=c99", "-shared", "-fPIC", "-I", str(Path(_binding.header_path()).parent),
                    str(HERE / "direct_call.c"), str(lib), "-Wl,-rpath," + str(lib.parent), "-o", str(so)], check=True)
    fn = ctypes.CDLL(str(so)).orucv_bench_direct
    fn.restype = ctypes.c_double
    fn.argtypes = [ctypes.c_void_p, ctypes.c_int, ctypes.c_void_p, ctypes.c_int, ctypes.c_int, ctypes.c_int,
                   ctypes.c_int]
    return fn


def per_call_us(fn, calls):
    t0 = time.perf_counter()
    for _ in range(calls):
        fn()
    return (time.perf_counter() - t0) / calls * 1e6


def main():
    lib = orucv.lib
    with tempfile.TemporaryDirectory() as tmp:
        direct = direct_loop(tmp)
        print("%-10s %9s %9s %9s %9s   %s" % ("size", "C us", "raw us", "out= us", "alloc us",
                                             "overhead: raw, out=, alloc"))
        for w, h, calls in ((64, 64, 20000), (1920, 1080, 200)):
            img = (np.arange(w * h) * 7 % 251).astype(np.uint8).reshape(h, w)
            dst = np.empty((h, w), np.int16)
            roi = lib.OruSize(w, h)
            ways = [lambda: direct(img.ctypes.data, w, dst.ctypes.data, 2 * w, w, h, calls) / 1000,
                    lambda: per_call_us(lambda: lib.oruiSobel3x3_Dx_8u16s_C1R(img, w, dst, 2 * w, roi), calls),
                    lambda: per_call_us(lambda: orucv.sobel3x3_dx(img, out=dst), calls),
                    lambda: per_call_us(lambda: orucv.sobel3x3_dx(img), calls)]
            best = [min(r) for r in zip(*([way() for way in ways] for _ in range(ROUNDS)))]
            c = best[0]
            assert c > 0, "the direct call failed"
            print("%-10s %9.2f %9.2f %9.2f %9.2f   %s" % ("%dx%d" % (w, h), *best,
                                                        ", ".join("%+.1f%%" % ((t - c) / c * 100) for t in best[1:])))


if __name__ == "__main__":
    main()
