"""Library calls release the GIL: other Python threads run during them, and
calls from several threads give the results of serial calls."""

import ctypes
import threading
import time
from concurrent.futures import ThreadPoolExecutor

import numpy as np

import orucv

IMG = np.random.default_rng(7).integers(0, 256, (768, 768), dtype=np.uint8)
TPL = IMG[100:180, 200:280].copy()


def longest_pause(call):
    """The longest time this thread could not run while `call` ran in another
    thread, and the time the call took."""
    span = []

    def worker():
        begin = time.perf_counter()
        span.append(call())
        span[:0] = [begin, time.perf_counter()]

    t = threading.Thread(target=worker)
    last = time.perf_counter()
    pause = 0.0
    t.start()
    while t.is_alive():
        now = time.perf_counter()
        pause, last = max(pause, now - last), now
    t.join()
    return pause, span[1] - span[0], span[2]


def test_other_threads_run_during_a_call():
    pause, took, _ = longest_pause(lambda: orucv.match_template(IMG, TPL, "corr"))
    assert took > 0.02 and pause < 0.5 * took, (pause, took)


def test_the_measure_sees_a_held_gil():
    # The same call through a loader that keeps the GIL must stall this thread.
    held = ctypes.PyDLL(orucv.lib._path)
    fn = held.oruiMatchTemplate_Corr_8u32f_C1R
    fn.argtypes = orucv.lib.oruiMatchTemplate_Corr_8u32f_C1R.argtypes
    out = np.empty((689, 689), np.float32)
    buf = np.empty(1 << 26, np.uint8)
    size = ctypes.c_int()
    orucv.lib.oruiMatchTemplateGetBufSize_Corr(orucv.lib.OruSize(768, 768), orucv.lib.OruSize(80, 80), 1,
                                                ctypes.byref(size))
    assert size.value <= buf.size
    S = orucv.lib.OruSize
    pause, took, status = longest_pause(lambda: fn(IMG, 768, S(768, 768), TPL, 80, S(80, 80), out, 689 * 4, buf))
    assert status == 0 and pause > 0.8 * took, (pause, took)


def test_parallel_calls_match_serial_ones():
    tiles = [IMG[i * 192:(i + 1) * 192] for i in range(4)]

    def work(t):
        return orucv.blur(orucv.erode(t, "ellipse", (7, 7)), 5)

    with ThreadPoolExecutor(4) as pool:
        parallel = list(pool.map(work, tiles))
    for tile, result in zip(tiles, parallel):
        np.testing.assert_array_equal(result, work(tile))
