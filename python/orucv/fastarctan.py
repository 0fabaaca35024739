"""Direction of vectors in degrees by a fast approximation."""

import numpy as np

from ._binding import bound
from ._image import F32

_ARCTAN = bound("oruibFastArctan_32f")


def _vector(a, what):
    if not isinstance(a, np.ndarray):
        raise TypeError("%s: expected a numpy array, got %s" % (what, type(a).__name__))
    if a.dtype != F32:
        raise TypeError("%s: expected dtype float32, got %s" % (what, a.dtype))
    if not a.flags.c_contiguous:
        raise ValueError("%s: the values must be contiguous (C order); np.ascontiguousarray makes such a copy" % what)


def fast_arctan(y, x, out=None):
    """Angle of (x, y) in degrees, 0..360 (within about 0.14), per element of
    two contiguous float32 arrays of one shape; out may be x or y."""
    _vector(y, "y")
    _vector(x, "x")
    if x.shape != y.shape:
        raise ValueError("x and y must have one shape, got %s and %s" % (x.shape, y.shape))
    if out is None:
        out = np.empty(y.shape, F32)
    _vector(out, "out")
    if out.shape != y.shape:
        raise ValueError("out: expected shape %s, got %s" % (y.shape, out.shape))
    if not out.flags.writeable:
        raise ValueError("out: the array is read-only")
    if y.size > 2**31 - 1:
        raise ValueError("x, y: at most 2**31 - 1 values per call, got %d" % y.size)
    _ARCTAN(pSrcY=y, pSrcX=x, pDst=out, len=y.size)
    return out
