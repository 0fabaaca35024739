"""Absolute differences and the motion history."""

import numbers

import numpy as np

from ._binding import bound
from ._image import F32, U8, image, output, same_size, size, step

_IMAGES = {U8: bound("oruiAbsDiff_8u_C1R"), F32: bound("oruiAbsDiff_32f_C1R")}
_CONSTANT = {U8: bound("oruiAbsDiffC_8u_C1R"), F32: bound("oruiAbsDiffC_32f_C1R")}
_MOTION = bound("oruiUpdateMotionHistory_8u32f_C1IR")


def abs_diff(a, b, out=None):
    """|a - b| of two uint8 or float32 images of one shape, or of an image
    and a number (uint8 images: the number is clamped to 0..255)."""
    image(a, "a", (U8, F32))
    out = output(out, a.shape, a.dtype)
    if isinstance(b, numbers.Real) and not isinstance(b, np.ndarray):
        value = int(b) if a.dtype == U8 else float(b)
        _CONSTANT[a.dtype](pSrc=a, srcStep=step(a), pDst=out, dstStep=step(out), roiSize=size(a), value=value)
        return out
    image(b, "b", (a.dtype,))
    same_size(a, b, "a", "b")
    _IMAGES[a.dtype](pSrc1=a, src1Step=step(a), pSrc2=b, src2Step=step(b), pDst=out, dstStep=step(out),
                     roiSize=size(a))
    return out


def update_motion_history(silhouette, mhi, timestamp, duration):
    """In place: where the uint8 silhouette is nonzero the float32 history
    takes `timestamp`, elsewhere values older than timestamp - duration
    become 0. Returns mhi."""
    image(silhouette, "silhouette", (U8,))
    image(mhi, "mhi", (F32,), writable=True)
    same_size(silhouette, mhi, "silhouette", "mhi")
    _MOTION(pSilhouette=silhouette, silhStep=step(silhouette), pMHI=mhi, mhiStep=step(mhi), roiSize=size(mhi),
            timestamp=float(timestamp), mhiDuration=float(duration))
    return mhi
