"""The library's frame: its version and the channel copies between
interleaved and planar layouts."""

from collections import namedtuple

import numpy as np

from ._binding import bound, lib
from ._image import F32, U8, image, output, size, step

Version = namedtuple("Version", "major minor major_build build target_cpu name version build_date")


def version():
    """The library's version record."""
    v = bound("orucvGetLibVersion").fn().contents
    return Version(v.major, v.minor, v.majorBuild, v.build, v.targetCpu.decode(), v.Name.decode(),
                   v.Version.decode(), v.BuildDate.decode())


_EXTRACT = {(t, ch): bound("a6_orcvCopy_%s_C%dCC1R" % (s, ch)) for t, s in ((U8, "8u"), (F32, "32f")) for ch in (3, 4)}
_SPLIT = {(t, ch): bound("a6_orcvCopy_%s_C%dP%dR" % (s, ch, ch)) for t, s in ((U8, "8u"), (F32, "32f")) for ch in (3, 4)}
_MERGE = {(t, ch): bound("a6_orcvCopy_%s_P%dC%dR" % (s, ch, ch)) for t, s in ((U8, "8u"), (F32, "32f")) for ch in (3, 4)}


def extract_channel(img, channel, out=None):
    """Channel `channel` (0-based) of a 3- or 4-channel uint8 or float32 image."""
    ch = image(img, "img", (U8, F32), (3, 4))
    if not isinstance(channel, (int, np.integer)) or not 0 <= channel < ch:
        raise ValueError("channel: expected 0..%d, got %r" % (ch - 1, channel))
    out = output(out, img.shape[:2], img.dtype)
    if img.size:
        _EXTRACT[img.dtype, ch](pSrc=img, srcStep=step(img), pDst=out, dstStep=step(out), roiSize=size(img),
                                coi=int(channel))
    return out


def split(img):
    """The planes of a 3- or 4-channel uint8 or float32 image, as a tuple of
    2-D arrays (views of one block)."""
    ch = image(img, "img", (U8, F32), (3, 4))
    planes = np.empty((ch,) + img.shape[:2], img.dtype)
    if img.size:
        dst = {"pDst%d" % i: planes[i] for i in range(ch)}
        _SPLIT[img.dtype, ch](pSrc=img, srcStep=step(img), dstStep=step(planes[0]), roiSize=size(img), **dst)
    return tuple(planes)


def merge(planes, out=None):
    """Interleaves 3 or 4 planes (2-D arrays of one shape, dtype and row step)."""
    planes = list(planes)
    if len(planes) not in (3, 4):
        raise ValueError("planes: expected 3 or 4 planes, got %d" % len(planes))
    for i, p in enumerate(planes):
        image(p, "planes[%d]" % i, (planes[0].dtype,) if i else (U8, F32))
        if p.shape != planes[0].shape:
            raise ValueError("planes: expected one shape, got %s and %s" % (planes[0].shape, p.shape))
        if step(p) != step(planes[0]):
            raise ValueError("planes: the library takes one row step for every plane, got %d and %d"
                             % (step(planes[0]), step(p)))
    first = planes[0]
    out = output(out, first.shape + (len(planes),), first.dtype)
    if first.size:
        src = {"pSrc%d" % i: p for i, p in enumerate(planes)}
        _MERGE[first.dtype, len(planes)](srcStep=step(first), pDst=out, dstStep=step(out), roiSize=size(first), **src)
    return out


del lib
