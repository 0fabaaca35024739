"""Fixed 3x3 Sobel and Scharr derivatives: uint8 and int8 images give int16,
float32 images float32 (only the first derivatives have float forms)."""

from ._binding import bound
from ._image import F32, S8, S16, U8, image, output, size, step


def _table(fmt, kinds, floats):
    t = {}
    for kind in kinds:
        t[kind] = {U8: bound(fmt % (kind, "8u16s")), S8: bound(fmt % (kind, "8s16s"))}
        if kind in floats:
            t[kind][F32] = bound(fmt % (kind, "32f"))
    return t


_SOBEL = _table("oruiSobel3x3_%s_%s_C1R", ("Dx", "Dy", "D2x", "D2y", "DxDy"), ("Dx", "Dy"))
_SCHARR = _table("oruiScharr_%s_%s_C1R", ("Dx", "Dy"), ("Dx", "Dy"))


def _derivative(functions, img, out, origin=0, shift=0):
    image(img, "img", functions)
    out = output(out, img.shape, F32 if img.dtype == F32 else S16)
    functions[img.dtype](pSrc=img, srcStep=step(img), pDst=out, dstStep=step(out), roiSize=size(img),
                         origin=origin, shift=shift)
    return out


def sobel3x3_dx(img, out=None):
    """x derivative (right minus left) with the 3x3 Sobel kernel."""
    return _derivative(_SOBEL["Dx"], img, out)


def sobel3x3_dy(img, origin=0, out=None):
    """y derivative (lower minus upper; origin=1 for bottom-up rows)."""
    return _derivative(_SOBEL["Dy"], img, out, origin)


def sobel3x3_d2x(img, out=None):
    """Second x derivative (uint8 or int8 images)."""
    return _derivative(_SOBEL["D2x"], img, out)


def sobel3x3_d2y(img, out=None):
    """Second y derivative (uint8 or int8 images)."""
    return _derivative(_SOBEL["D2y"], img, out)


def sobel3x3_dxdy(img, origin=0, out=None):
    """Mixed derivative (uint8 or int8 images)."""
    return _derivative(_SOBEL["DxDy"], img, out, origin)


def scharr_dx(img, shift=0, out=None):
    """x derivative with the 3x3 Scharr kernel, divided by 2**shift."""
    return _derivative(_SCHARR["Dx"], img, out, shift=shift)


def scharr_dy(img, origin=0, shift=0, out=None):
    """y derivative with the 3x3 Scharr kernel, divided by 2**shift."""
    return _derivative(_SCHARR["Dy"], img, out, origin, shift)
