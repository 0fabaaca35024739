"""The Canny edge detector over x and y derivatives."""

import numpy as np

from ._binding import bound
from ._image import S16, U8, image, output, same_size, scratch, size, step

_CANNY = bound("oruiCanny_16s8u_C1R")
_SIZE = bound("oruiCannyGetSize")


def canny(dx, dy, low, high, out=None):
    """Edges (255, else 0) from int16 derivative images such as those of
    sobel3x3_dx and sobel3x3_dy, with hysteresis thresholds low <= high.
    Derivatives with different row steps cost a copy of dy."""
    image(dx, "dx", (S16,))
    image(dy, "dy", (S16,))
    same_size(dx, dy, "dx", "dy")
    out = output(out, dx.shape, U8)
    buffer = scratch(_SIZE, roiSize=size(dx))
    if step(dx) != step(dy) and dx.shape[0] > 1:
        # One of the library's passes reads the x derivative's rows with the
        # step given for the y derivative and the other way round, so both
        # must share one step: dy is laid out like dx.
        rows = np.empty((dx.shape[0], step(dx) // dx.itemsize), S16)[:, :dx.shape[1]]
        rows[...] = dy
        dy = rows
    _CANNY(pSrcDx=dx, srcDxStep=step(dy), pSrcDy=dy, srcDyStep=step(dx), pDstEdges=out, dstEdgeStep=step(out),
           roiSize=size(dx), lowThresh=float(low), highThresh=float(high), pBuffer=buffer)
    return out
