"""Pixels along a digital line."""

from ._binding import bound
from ._image import F32, SUFFIX, U8, image, point, size, step
import numpy as np

_SAMPLE = {(t, ch): bound("oruiSampleLine_%s_C%dR" % (SUFFIX[t], ch)) for t in (U8, F32) for ch in (1, 3)}


def sample_line(img, pt1, pt2):
    """The pixels of the line from pt1 to pt2 (both (x, y), inside the
    image), in order: shape (n,) or (n, 3)."""
    ch = image(img, "img", (U8, F32), (1, 3))
    p1, p2 = point(pt1, "pt1"), point(pt2, "pt2")
    n = max(abs(p2.x - p1.x), abs(p2.y - p1.y)) + 1
    out = np.empty((n,) if img.ndim == 2 else (n, ch), img.dtype)
    _SAMPLE[img.dtype, ch](pSrc=img, srcStep=step(img), roiSize=size(img), pDst=out, pt1=p1, pt2=p2)
    return out
