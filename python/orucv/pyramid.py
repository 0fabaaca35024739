"""One level of a Gaussian pyramid (5x5 kernel), 1 or 3 channels."""

from ._binding import bound
from ._image import DATA_TYPE, F32, S8, SUFFIX, U8, image, output, scratch, shape_like, size, step

_TYPES = (U8, S8, F32)
_DOWN = {(t, ch): bound("oruiPyrDown_Gauss5x5_%s_C%dR" % (SUFFIX[t], ch)) for t in _TYPES for ch in (1, 3)}
_UP = {(t, ch): bound("oruiPyrUp_Gauss5x5_%s_C%dR" % (SUFFIX[t], ch)) for t in _TYPES for ch in (1, 3)}
_DOWN_SIZE = bound("oruiPyrDownGetBufSize_Gauss5x5")
_UP_SIZE = bound("oruiPyrUpGetBufSize_Gauss5x5")


def _level(functions, query, img, out, grow):
    ch = image(img, "img", _TYPES, (1, 3))
    rows, cols = (img.shape[0] * 2, img.shape[1] * 2) if grow else (img.shape[0] // 2, img.shape[1] // 2)
    buffer = scratch(query, roiWidth=img.shape[1], dataType=DATA_TYPE[img.dtype], channels=ch)
    out = output(out, shape_like(img, rows, cols, ch), img.dtype)
    functions[img.dtype, ch](pSrc=img, srcStep=step(img), pDst=out, dstStep=step(out), roiSize=size(img),
                             pBuffer=buffer)
    return out


def pyr_down(img, out=None):
    """Half the width and height (both must be even) of a uint8, int8 or
    float32 image."""
    return _level(_DOWN, _DOWN_SIZE, img, out, grow=False)


def pyr_up(img, out=None):
    """Twice the width and height of a uint8, int8 or float32 image."""
    return _level(_UP, _UP_SIZE, img, out, grow=True)
