"""Chamfer distance transforms to the nearest zero pixel."""

import numpy as np

from ._binding import bound
from ._image import F32, U8, choice, image, output, size, step

_TRANSFORM = {3: bound("oruiDistanceTransform_3x3_8u32f_C1R"), 5: bound("oruiDistanceTransform_5x5_8u32f_C1R")}
_MASK = bound("oruiGetDistanceTransformMask")
_CODES = {3: {"chessboard": 30, "cityblock": 31, "euclidean": 32}, 5: {"euclidean": 52}}


def distance_transform_mask(mask_size=3, metric="euclidean"):
    """The weights (a, b, c) of a standard mask: c is used by 5x5 masks only."""
    codes = choice(mask_size, _CODES, "mask_size")
    metrics = np.zeros(3, F32)
    _MASK(maskType=choice(metric, codes, "metric"), pMetrics=metrics)
    return metrics


def distance_transform(img, mask_size=3, metric="euclidean", weights=None, out=None):
    """float32 distance of every pixel of a uint8 image to the nearest zero
    pixel, with a 3x3 or 5x5 chamfer mask: a standard metric, or your own
    weights (a, b) or (a, b, c)."""
    image(img, "img", (U8,))
    if weights is None:
        metrics = distance_transform_mask(mask_size, metric)
    else:
        choice(mask_size, _CODES, "mask_size")
        w = np.asarray(weights, F32).ravel()
        if w.size != (2 if mask_size == 3 else 3):
            raise ValueError("weights: a %dx%d mask takes %d weights, got %d"
                             % (mask_size, mask_size, 2 if mask_size == 3 else 3, w.size))
        metrics = np.zeros(3, F32)
        metrics[:w.size] = w
    out = output(out, img.shape, F32)
    _TRANSFORM[mask_size](pSrc=img, srcStep=step(img), pDst=out, dstStep=step(out), roiSize=size(img),
                          pMetrics=metrics)
    return out

