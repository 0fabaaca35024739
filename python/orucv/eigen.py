"""Corner measures from the gradient covariance over a window."""

from ._binding import bound
from ._image import F32, S8, U8, choice, image, output, scratch, size, step

_SUFFIX = {U8: "8u32f", S8: "8s32f", F32: "32f"}
_VALS_VECS = {t: bound("oruiEigenValsVecs_%s_C1R" % s) for t, s in _SUFFIX.items()}
_MIN = {t: bound("oruiMinEigenVal_%s_C1R" % s) for t, s in _SUFFIX.items()}
_VALS_VECS_SIZE = bound("oruiEigenValsVecsGetSize")
_MIN_SIZE = bound("oruiMinEigenValGetSize")


def _check(img, aperture, window):
    image(img, "img", tuple(_SUFFIX))
    choice(aperture, (3, 5, 7), "aperture")
    choice(window, (3, 5, 7), "window")


def eigen_vals_vecs(img, aperture=3, window=3, out=None):
    """float32 (rows, columns, 6): l1, l2, x1, y1, x2, y2 per pixel."""
    _check(img, aperture, window)
    buffer = scratch(_VALS_VECS_SIZE, roiWidth=img.shape[1], apertureSize=aperture, avgWindow=window)
    out = output(out, img.shape + (6,), F32)
    _VALS_VECS[img.dtype](pSrc=img, srcStep=step(img), pEigenVV=out, eigStep=step(out), roiSize=size(img),
                          apertureSize=aperture, avgWindow=window, pBuffer=buffer)
    return out


def min_eigen_val(img, aperture=3, window=3, out=None):
    """float32 smaller eigenvalue per pixel (a corner measure)."""
    _check(img, aperture, window)
    buffer = scratch(_MIN_SIZE, roiWidth=img.shape[1], apertureSize=aperture, avgWindow=window)
    out = output(out, img.shape, F32)
    _MIN[img.dtype](pSrc=img, srcStep=step(img), pMinEigen=out, minEigStep=step(out), roiSize=size(img),
                    apertureSize=aperture, avgWindow=window, pBuffer=buffer)
    return out
