"""Erosion and dilation by a rectangle, a cross, an ellipse or any mask;
uint8 or float32 images of 1, 3 or 4 channels."""

import ctypes

import numpy as np

from ._binding import bound, lib
from ._image import DATA_TYPE, F32, SUFFIX, U8, image, output, pair, point, size, step

_SHAPES = {"rect": (lib.oruMorphRect, "Rect_"), "cross": (lib.oruMorphCross, "Cross_"),
           "ellipse": (lib.oruMorphEllipse, "")}
_STRIP = {(op, shape, t, ch): bound("orui%sStrip_%s%s_C%dR" % (op, shape, SUFFIX[t], ch))
          for op in ("Erode", "Dilate") for shape in ("Rect_", "Cross_", "") for t in (U8, F32) for ch in (1, 3, 4)}
_INIT = bound("oruiMorphologyInitAlloc")
_FREE = bound("oruiMorphologyFree")


class MorphState:
    """A morphology state of the library, released when closed (or
    collected); a context manager."""

    def __init__(self, width, dtype, channels, mask_size, anchor, shape, mask=None):
        self.ptr = ctypes.POINTER(lib.OruMorphState)()
        _INIT(roiWidth=width, dataType=DATA_TYPE[dtype], numChannels=channels, maskSize=lib.OruSize(*mask_size),
              anchor=anchor, maskShape=shape, pMask=mask, ppState=ctypes.byref(self.ptr))

    def close(self):
        if self.ptr:
            _FREE(ppState=ctypes.byref(self.ptr))

    __del__ = close

    def __enter__(self):
        return self

    def __exit__(self, *exc):
        self.close()


def _element(shape, size_):
    if isinstance(shape, np.ndarray):
        if shape.ndim != 2 or shape.size == 0:
            raise ValueError("shape: a mask is a non-empty 2-D array, got shape %s" % (shape.shape,))
        mask = np.ascontiguousarray(shape != 0, dtype=np.uint8)  # the element, rows back to back
        return lib.oruMorphMask, "", (mask.shape[1], mask.shape[0]), mask
    if shape not in _SHAPES:
        raise ValueError("shape: expected 'rect', 'cross', 'ellipse' or a 2-D mask array, got %r" % (shape,))
    code, name = _SHAPES[shape]
    return code, name, pair(size_, "size"), None


def _morph(op, img, shape, size_, anchor, out):
    ch = image(img, "img", (U8, F32), (1, 3, 4))
    code, name, (mw, mh), mask = _element(shape, size_)
    anchor = point(anchor if anchor is not None else (mw // 2, mh // 2), "anchor")
    out = output(out, img.shape, img.dtype)
    roi = size(img)
    with MorphState(max(img.shape[1], 1), img.dtype, ch, (mw, mh), anchor, code, mask) as state:
        _STRIP[op, name, img.dtype, ch](pSrc=img, srcStep=step(img), pDst=out, dstStep=step(out),
                                        pRoiSize=ctypes.byref(roi), pState=state.ptr, stripFlag=lib.oruMorphWhole)
    return out


def erode(img, shape="rect", size=(3, 3), anchor=None, out=None):
    """Minimum over the element: shape 'rect', 'cross' or 'ellipse' of
    size (width, height), or a 2-D mask array (nonzero: member); the anchor
    (x, y) defaults to the element's centre."""
    return _morph("Erode", img, shape, size, anchor, out)


def dilate(img, shape="rect", size=(3, 3), anchor=None, out=None):
    """Maximum over the element; arguments as for erode."""
    return _morph("Dilate", img, shape, size, anchor, out)
