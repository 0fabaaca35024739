"""Seeded flood fills, in place."""

import ctypes
import numbers
from collections import namedtuple

from ._binding import bound, lib
from ._image import F32, U8, choice, image, point, scratch, size, step

Region = namedtuple("Region", "area value rect")
Region.__doc__ = "A filled region: its pixel count, the new value and its bounding rectangle (x, y, width, height)."

_FILL = {(grad, con, t): bound("oruiFloodFill_%s%dCon_%s_C1IR" % ("Grad" if grad else "", con, s))
         for grad in (False, True) for con in (4, 8) for t, s in ((U8, "8u"), (F32, "32f"))}
_SIZE = {False: bound("oruiFloodFillGetSize"), True: bound("oruiFloodFillGetSize_Grad")}


def flood_fill(img, seed, new_val, connectivity=8, lo=None, hi=None):
    """Fills, in place, the region of a uint8 or float32 image connected to
    `seed` (x, y): pixels equal to the seed's value, or with lo/hi given,
    pixels within [c - lo, c + hi] of a neighbour c already filled (a
    gradient fill). Returns a Region."""
    image(img, "img", (U8, F32), writable=True)
    con = choice(connectivity, (4, 8), "connectivity")
    grad = lo is not None or hi is not None
    convert = int if img.dtype == U8 else float
    for what, v in (("new_val", new_val), ("lo", lo), ("hi", hi)):
        if v is not None and (not isinstance(v, numbers.Real) or img.dtype == U8 and v != int(v)):
            raise TypeError("%s: expected a%s number, got %r" % (what, "n integer" if img.dtype == U8 else "", v))
    buffer = scratch(_SIZE[grad], roiSize=size(img))
    region = lib.OruConnectedComp()
    _FILL[grad, con, img.dtype](pImage=img, imageStep=step(img), roiSize=size(img), seed=point(seed, "seed"),
                                newVal=convert(new_val), minDelta=convert(lo or 0), maxDelta=convert(hi or 0),
                                pRegion=ctypes.byref(region), pBuffer=buffer)
    r = region.rect
    return Region(region.area, region.value, (r.x, r.y, r.width, r.height))
