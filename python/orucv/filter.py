"""The general separable filters of size 3, 5 or 7: Sobel derivatives of any
order, the box sum and the Laplacian. uint8 and int8 images give int16
(wrapping sums), float32 images float32."""

import ctypes
import numbers

from ._binding import bound, lib
from ._image import DATA_TYPE, F32, S8, S16, U8, choice, image, output, size, step

_TYPES = (U8, S8, F32)
_SUFFIX = {U8: "8u16s", S8: "8s16s", F32: "32f"}
_FILTER = {(kind, t): bound("orui%s_%s_C1R" % (kind, s)) for kind in ("Sobel", "Blur", "Laplace")
           for t, s in _SUFFIX.items()}
_INIT = {kind: bound("orui%sInitAlloc" % kind) for kind in ("Sobel", "Blur", "Laplace")}
_FREE = bound("oruiConvolFree")


class FilterSpec:
    """A filter specification of the library, released when closed (or
    collected); a context manager."""

    def __init__(self, kind, width, dtype, kernel_size, origin=0, xorder=0, yorder=0):
        self.kind = kind
        self.ptr = ctypes.POINTER(lib.OruFilterSpec)()
        _INIT[kind](roiWidth=width, dataType=DATA_TYPE[dtype], kernelSize=kernel_size, origin=origin,
                    xorder=xorder, yorder=yorder, ppSpec=ctypes.byref(self.ptr))

    def close(self):
        if self.ptr:
            _FREE(ppSpec=ctypes.byref(self.ptr))

    __del__ = close

    def __enter__(self):
        return self

    def __exit__(self, *exc):
        self.close()


def _filter(kind, img, kernel_size, out, **orders):
    image(img, "img", _TYPES)
    choice(kernel_size, (3, 5, 7), "size")
    for what, v in orders.items():
        if not isinstance(v, numbers.Integral):
            raise TypeError("%s: expected an integer, got %r" % (what, v))
    out = output(out, img.shape, F32 if img.dtype == F32 else S16)
    roi = size(img)
    with FilterSpec(kind, max(img.shape[1], 1), img.dtype, kernel_size, **orders) as fspec:
        _FILTER[kind, img.dtype](pSrc=img, srcStep=step(img), pDst=out, dstStep=step(out), pRoiSize=ctypes.byref(roi),
                                 pSpec=fspec.ptr, stripFlag=0)
    return out


def sobel(img, xorder=1, yorder=0, size=3, origin=0, out=None):
    """Sobel derivative of order (xorder, yorder) with a size x size kernel."""
    return _filter("Sobel", img, size, out, xorder=xorder, yorder=yorder, origin=origin)


def blur(img, size=3, out=None):
    """Unnormalised box sum of the size x size pixels around each pixel."""
    return _filter("Blur", img, size, out)


def laplace(img, size=3, out=None):
    """Laplacian (second x plus second y derivative) of kernel size `size`."""
    return _filter("Laplace", img, size, out)
