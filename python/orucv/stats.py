"""Statistics of one channel: means, deviations, extrema and norms, of the
whole image or of the pixels a uint8 mask selects. Three-channel images
take channel=0, 1 or 2."""

import ctypes
import numbers

from ._binding import bound, lib
from ._image import F32, S8, SUFFIX, U8, channel_of, choice, image, mask_image, same_size, size, step

_TYPES = (U8, S8, F32)
_FORMS = ("C1R", "C3CR", "C1MR", "C3CMR")


def _table(base, forms=_FORMS):
    return {(t, f): bound("%s_%s_%s" % (base, SUFFIX[t], f)) for t in _TYPES for f in forms}


_MEAN = _table("oruiMean", ("C1MR", "C3CMR"))
_MEAN_SD = _table("oruiMean_StdDev")
_MIN_MAX = _table("oruiMinMaxIndx")
_NORM = {(prefix, kind): _table("orui%s_%s" % (prefix, kind), ("C1MR", "C3CMR"))
         for prefix in ("Norm", "NormDiff", "NormRel") for kind in ("Inf", "L1", "L2")}
_SUM_SQ = bound("a6_orcvSumSq_8s_C1R")
KINDS = {"inf": "Inf", "l1": "L1", "l2": "L2"}


def _prepare(img, mask, channel, always_masked=False):
    ch = image(img, "img", _TYPES, (1, 3))
    coi = channel_of(ch, channel)
    kw = {"pSrc": img, "srcStep": step(img), "roiSize": size(img), "coi": coi}
    masked = mask is not None or always_masked
    if masked:
        mask = mask_image(mask, img.shape)
        kw.update(pMask=mask, maskStep=step(mask))
    form = ("C1" if ch == 1 else "C3C") + ("MR" if masked else "R")
    return kw, (img.dtype, form)


def mean(img, mask=None, channel=None):
    """Mean of the (masked) pixels; 0.0 when the mask selects none."""
    kw, key = _prepare(img, mask, channel, always_masked=True)
    value = ctypes.c_double()
    _MEAN[key](pMean=ctypes.byref(value), **kw)
    return value.value


def mean_std_dev(img, mask=None, channel=None):
    """(mean, population standard deviation) of the (masked) pixels."""
    kw, key = _prepare(img, mask, channel)
    m, sd = ctypes.c_double(), ctypes.c_double()
    _MEAN_SD[key](pMean=ctypes.byref(m), pStdDev=ctypes.byref(sd), **kw)
    return m.value, sd.value


def min_max_indx(img, mask=None, channel=None):
    """(min value, max value, (x, y) of the first minimum, (x, y) of the
    first maximum) of the (masked) pixels, in raster order."""
    kw, key = _prepare(img, mask, channel)
    lo, hi = ctypes.c_float(), ctypes.c_float()
    at_lo, at_hi = lib.OruPoint(), lib.OruPoint()
    _MIN_MAX[key](pMinVal=ctypes.byref(lo), pMaxVal=ctypes.byref(hi), pMinIndex=ctypes.byref(at_lo),
                  pMaxIndex=ctypes.byref(at_hi), **kw)
    return lo.value, hi.value, (at_lo.x, at_lo.y), (at_hi.x, at_hi.y)


def norm(a, b=None, kind="l2", mask=None, channel=None, relative=False):
    """Norm ('inf', 'l1' or 'l2') of a, of a - b, or with relative=True of
    a - b relative to b, over the (masked) pixels."""
    k = choice(kind, KINDS, "kind")
    kw, key = _prepare(a, mask, channel, always_masked=True)
    if b is None:
        if relative:
            raise ValueError("relative: a relative norm needs b")
        prefix = "Norm"
    else:
        image(b, "b", (a.dtype,), (a.shape[2] if a.ndim == 3 else 1,))
        same_size(a, b, "a", "b")
        prefix = "NormRel" if relative else "NormDiff"
        kw.update(pSrc1=kw.pop("pSrc"), src1Step=kw.pop("srcStep"), pSrc2=b, src2Step=step(b))
    value = ctypes.c_double()
    _NORM[prefix, k][key](pNorm=ctypes.byref(value), **kw)
    return value.value


def sum_sq(img):
    """(sum, sum of squares) of an int8 image: the sum wraps as a 32-bit
    integer, the sum of squares is exact."""
    image(img, "img", (S8,))
    if img.shape[0] < 1 or img.shape[1] < 1:
        raise ValueError("img: expected at least one row and one column, got shape %s" % (img.shape,))
    s, q = ctypes.c_int(), ctypes.c_longlong()
    _SUM_SQ(pSrc=img, srcStep=step(img), width=img.shape[1], height=img.shape[0], pSum=ctypes.byref(s),
            pSumSq=ctypes.byref(q))
    return s.value, q.value


del numbers
