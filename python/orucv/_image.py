"""Checks that turn numpy arrays into the library's images (first pixel,
row step in bytes, region size) without copying, and allocate results."""

import ctypes
import numbers

import numpy as np

from ._binding import lib

U8 = np.dtype(np.uint8)
S8 = np.dtype(np.int8)
S16 = np.dtype(np.int16)
F32 = np.dtype(np.float32)

# The library's name for a pixel type, and its data-type code.
SUFFIX = {U8: "8u", S8: "8s", S16: "16s", F32: "32f"}
DATA_TYPE = {U8: lib.oruDataType8u, S8: lib.oruDataType8s, F32: lib.oruDataType32f}

_INT_MAX = 2**31 - 1


def _names(dtypes):
    return " or ".join(str(d) for d in dtypes)


def image(a, what, dtypes, channels=(1,), writable=False):
    """Checks that `a` is an image of one of `dtypes` with one of `channels`:
    a 2-D array (rows, columns) for one channel or a 3-D array (rows, columns,
    channels), pixels adjacent within a row, rows at any positive step.
    Returns the channel count."""
    if not isinstance(a, np.ndarray):
        raise TypeError("%s: expected a numpy array, got %s" % (what, type(a).__name__))
    dtype = a.dtype
    if dtype not in dtypes:
        raise TypeError("%s: expected dtype %s, got %s" % (what, _names(dtypes), dtype))
    shape, strides, item = a.shape, a.strides, dtype.itemsize
    if len(shape) == 2:
        ch = 1
    elif len(shape) == 3:
        ch = shape[2]
    else:
        raise ValueError("%s: expected an image of shape (rows, columns) or (rows, columns, channels), got shape %s"
                         % (what, shape))
    if ch not in channels:
        raise ValueError("%s: expected %s channel(s), got %d (shape %s)"
                         % (what, " or ".join(map(str, channels)), ch, shape))
    if (shape[1] > 1 and strides[1] != item * ch) or (ch > 1 and strides[2] != item):
        raise ValueError("%s: the pixels of a row must be adjacent in memory (strides %s for shape %s); "
                         "rows may have any step; np.ascontiguousarray makes such a copy" % (what, strides, shape))
    if shape[0] > 1 and not 0 < strides[0] <= _INT_MAX:
        raise ValueError("%s: rows must follow each other downwards in memory, at most 2**31 - 1 bytes apart "
                         "(row stride %d)" % (what, strides[0]))
    if shape[0] > _INT_MAX or shape[1] > _INT_MAX:
        raise ValueError("%s: the size exceeds the library's int range" % what)
    if writable and not a.flags.writeable:
        raise ValueError("%s: the array is written in place but is read-only" % what)
    return ch


def step(a):
    """The row step in bytes. A single row may carry any stride: it gets its
    own length."""
    s = a.strides[0]
    if a.shape[0] <= 1:
        row = a.shape[1] * (a.shape[2] if a.ndim == 3 else 1) * a.itemsize
        s = max(s, row, 1)
    return s


def size(a):
    return lib.OruSize(a.shape[1], a.shape[0])


def same_size(a, b, what_a, what_b):
    if a.shape[:2] != b.shape[:2]:
        raise ValueError("%s and %s must have the same rows and columns, got %s and %s"
                         % (what_a, what_b, a.shape[:2], b.shape[:2]))


def output(out, shape, dtype, what="out"):
    """A new array of shape and dtype, or the caller's `out` checked to be one."""
    if out is None:
        return np.empty(shape, dtype)
    if type(out) is not np.ndarray:
        raise TypeError("%s: expected a numpy array, got %s" % (what, type(out).__name__))
    if out.dtype != dtype:
        raise TypeError("%s: expected dtype %s, got %s" % (what, dtype, out.dtype))
    if out.shape != tuple(shape):
        raise ValueError("%s: expected shape %s, got %s" % (what, tuple(shape), out.shape))
    image(out, what, (dtype,), (shape[2] if len(shape) == 3 else 1,), writable=True)
    return out


def shape_like(a, rows, cols, ch):
    """Result shape: 2-D for a 2-D image, else with the channel axis."""
    return (rows, cols) if a.ndim == 2 else (rows, cols, ch)


def point(p, what):
    try:
        x, y = p
        if not all(isinstance(v, numbers.Integral) for v in (x, y)):
            raise TypeError
    except (TypeError, ValueError):
        raise TypeError("%s: expected a point (x, y) of two integers, got %r" % (what, p)) from None
    return lib.OruPoint(int(x), int(y))


def pair(p, what):
    try:
        w, h = p
        if not all(isinstance(v, numbers.Integral) for v in (w, h)):
            raise TypeError
    except (TypeError, ValueError):
        raise TypeError("%s: expected (width, height) as two integers, got %r" % (what, p)) from None
    return int(w), int(h)


def choice(value, options, what):
    if value not in options:
        raise ValueError("%s: expected one of %s, got %r" % (what, ", ".join(map(repr, options)), value))
    return options[value] if isinstance(options, dict) else value


def scratch(query, **kw):
    """A scratch buffer of the size the library's query reports."""
    size_ = ctypes.c_int(0)
    key = "pBufferSize" if "pBufferSize" in query.names else "pBufSize"
    kw[key] = ctypes.byref(size_)
    query(**kw)
    return np.empty(max(size_.value, 1), np.uint8)


def mask_image(mask, shape, what="mask"):
    """A mask of the image's rows and columns (nonzero selects), or all ones."""
    if mask is None:
        return np.ones(shape[:2], np.uint8)
    if isinstance(mask, np.ndarray) and mask.dtype == np.bool_:
        mask = mask.view(np.uint8)
    image(mask, what, (U8,))
    if mask.shape[:2] != tuple(shape[:2]):
        raise ValueError("%s: expected shape %s, got %s" % (what, tuple(shape[:2]), mask.shape))
    return mask


def channel_of(ch, channel, what="channel"):
    """The library's 1-based channel of interest for a 0-based channel of a
    three-channel image; None for one-channel images."""
    if ch == 1:
        if channel not in (None, 0):
            raise ValueError("%s: a one-channel image has only channel 0, got %r" % (what, channel))
        return None
    if not isinstance(channel, numbers.Integral) or not 0 <= channel < ch:
        raise ValueError("%s: a %d-channel image needs channel=0..%d, got %r" % (what, ch, ch - 1, channel))
    return int(channel) + 1
