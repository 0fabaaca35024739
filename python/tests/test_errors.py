"""Arrays the library cannot take are refused with a clear TypeError or
ValueError before any call; arguments it refuses raise the status's class
with the function's name; nothing is copied behind the caller's back."""

import numpy as np
import pytest

import orucv

U8 = np.zeros((6, 8), np.uint8)
F32 = np.zeros((6, 8), np.float32)
S16 = np.zeros((6, 8), np.int16)
RO = np.zeros((6, 8), np.uint8)
RO.flags.writeable = False

REFUSED = [
    (lambda: orucv.abs_diff(U8, F32), TypeError, "b: expected dtype uint8, got float32"),
    (lambda: orucv.abs_diff([[1]], U8), TypeError, "a: expected a numpy array, got list"),
    (lambda: orucv.sobel3x3_dx(S16), TypeError, "img: expected dtype uint8 or int8 or float32, got int16"),
    (lambda: orucv.sobel3x3_dx(U8.astype(">f4")), TypeError, "got >f4"),
    (lambda: orucv.pyr_down(np.zeros((4, 4, 4), np.uint8)), ValueError, r"expected 1 or 3 channel\(s\), got 4"),
    (lambda: orucv.erode(np.zeros(8, np.uint8)), ValueError, "shape \\(rows, columns\\)"),
    (lambda: orucv.blur(U8[:, ::2]), ValueError, "pixels of a row must be adjacent"),
    (lambda: orucv.split(np.zeros((4, 4, 6), np.uint8)[..., ::2]), ValueError, "pixels of a row must be adjacent"),
    (lambda: orucv.blur(U8[::-1]), ValueError, "rows must follow each other downwards in memory"),
    (lambda: orucv.abs_diff(U8, U8[:5]), ValueError, "same rows and columns"),
    (lambda: orucv.flood_fill(RO, (0, 0), 1), ValueError, "img: the array is written in place but is read-only"),
    (lambda: orucv.abs_diff(U8, U8, out=RO), ValueError, "out: the array is written in place but is read-only"),
    (lambda: orucv.abs_diff(U8, U8, out=U8[:3]), ValueError, r"out: expected shape \(6, 8\)"),
    (lambda: orucv.flood_fill(U8.copy(), (0, 0), 1.5), TypeError, "new_val: expected an integer"),
    (lambda: orucv.flood_fill(U8.copy(), 3, 1), TypeError, "seed: expected a point"),
    (lambda: orucv.erode(U8, shape="disc"), ValueError, "shape: expected 'rect', 'cross', 'ellipse'"),
    (lambda: orucv.match_template(U8, U8, "sad"), ValueError, "method: expected one of"),
    (lambda: orucv.match_template(U8[:2], U8), ValueError, "does not fit"),
    (lambda: orucv.norm(U8, kind="l3"), ValueError, "kind: expected one of"),
    (lambda: orucv.mean(np.zeros((4, 4, 3), np.uint8)), ValueError, "needs channel=0..2"),
    (lambda: orucv.mean(U8, mask=U8[:2]), ValueError, r"mask: expected shape \(6, 8\)"),
    (lambda: orucv.fast_arctan(F32[:, ::2], F32[:, ::2]), ValueError, "must be contiguous"),
    (lambda: orucv.merge([U8, U8, padded_u8()]), ValueError, "one row step for every plane"),
    (lambda: orucv.distance_transform(U8, 5, "chessboard"), ValueError, "metric: expected one of 'euclidean'"),
    (lambda: orucv.blur(U8, size=4), ValueError, "size: expected one of 3, 5, 7"),
]


def padded_u8():
    return np.zeros((6, 9), np.uint8)[:, :8]


@pytest.mark.parametrize("call, error, message", REFUSED)
def test_refused_before_the_call(call, error, message):
    with pytest.raises(error, match=message):
        call()


STATUSES = [
    (lambda: orucv.sobel3x3_dx(U8[:1]), orucv.SizeError, "oruiSobel3x3_Dx_8u16s_C1R"),
    (lambda: orucv.pyr_down(U8[:, :7]), orucv.SizeError, "oruiPyrDownGetBufSize_Gauss5x5"),
    (lambda: orucv.canny(S16, S16, -1, 5), orucv.BadArgError, "oruiCanny_16s8u_C1R"),
    (lambda: orucv.flood_fill(U8.copy(), (8, 0), 1), orucv.OutOfRangeError, "oruiFloodFill_8Con_8u_C1IR"),
    (lambda: orucv.flood_fill(U8.copy(), (0, 0), 300), orucv.BadArgError, "oruiFloodFill_8Con_8u_C1IR"),
    (lambda: orucv.erode(U8, size=(3, 3), anchor=(3, 0)), orucv.OutOfRangeError, "oruiMorphologyInitAlloc"),
    (lambda: orucv.sobel(U8, xorder=3), orucv.SizeError, "oruiSobelInitAlloc"),
    (lambda: orucv.sample_line(U8, (0, 0), (8, 0)), orucv.BadLineError, "oruiSampleLine_8u_C1R"),
    (lambda: orucv.abs_diff(U8[:0], U8[:0]), orucv.SizeError, "oruiAbsDiff_8u_C1R"),
    (lambda: orucv.laplace(np.ndarray((6, 8), np.float32, bytearray(6 * 34), 2, (34, 4))),
     orucv.NotEvenStepError, "oruiLaplace_32f_C1R"),
]


@pytest.mark.parametrize("call, error, function", STATUSES)
def test_library_statuses_are_named(call, error, function):
    with pytest.raises(error) as info:
        call()
    assert info.value.function == function and function in str(info.value)
    assert info.value.status < 0 and info.value.status_name.startswith("oruSts")


def test_no_hidden_copies():
    base = np.arange(100, dtype=np.uint8).reshape(10, 10)
    out = np.zeros((12, 12), np.uint8)[1:11, 1:11]
    assert orucv.abs_diff(base[2:8, 1:9], 3, out=out[2:8, 1:9]).base is out.base
    assert (out[2:8, 1:9] == np.abs(base[2:8, 1:9].astype(int) - 3)).all() and out[0].sum() == 0
    row = base[3]
    assert (orucv.abs_diff(row[None, :], row[None, :]) == 0).all()  # one row with a zero stride
    orucv.flood_fill(base[2:5, 2:5], (1, 1), 0)
    assert base[3, 3] == 0 and base[3, 1] == 31 and base[3, 5] == 35
