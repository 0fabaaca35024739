"""Running accumulation into a float32 image, in place."""

from ._binding import bound, lib
from ._image import F32, S8, U8, image, mask_image, same_size, size, step

_SUFFIX = {U8: "8u32f", S8: "8s32f", F32: "32f"}


def _table(op):
    names = {(t, masked): "orui%s_%s_C1I%sR" % (op, s, "M" if masked else "")
             for t, s in _SUFFIX.items() for masked in (False, True)}
    # The float sum has a masked form only: an unmasked call passes a mask of ones.
    return {key: bound(name) for key, name in names.items() if name in lib.functions}


_ADD, _SQUARE, _PRODUCT, _WEIGHTED = (_table(op) for op in ("Add", "AddSquare", "AddProduct", "AddWeighted"))


def _run(functions, sources, acc, mask, **extra):
    first = sources[0]
    image(first, "src", tuple(_SUFFIX))
    for i, s in enumerate(sources[1:], 2):
        image(s, "src%d" % i, (first.dtype,))
        same_size(first, s, "src", "src%d" % i)
    image(acc, "acc", (F32,), writable=True)
    same_size(first, acc, "src", "acc")
    kw = {"pSrcDst": acc, "srcDstStep": step(acc), "roiSize": size(acc)}
    if len(sources) == 1:
        kw.update(pSrc=first, srcStep=step(first))
    else:
        kw.update(pSrc1=first, src1Step=step(first), pSrc2=sources[1], src2Step=step(sources[1]))
    if mask is not None or (first.dtype, False) not in functions:
        mask = mask_image(mask, acc.shape)
        kw.update(pMask=mask, maskStep=step(mask))
    functions[first.dtype, mask is not None](**kw, **extra)
    return acc


def add(src, acc, mask=None):
    """acc += src (where the uint8 mask is nonzero). Returns acc."""
    return _run(_ADD, [src], acc, mask)


def add_square(src, acc, mask=None):
    """acc += src * src. Returns acc."""
    return _run(_SQUARE, [src], acc, mask)


def add_product(src1, src2, acc, mask=None):
    """acc += src1 * src2. Returns acc."""
    return _run(_PRODUCT, [src1, src2], acc, mask)


def add_weighted(src, acc, alpha, mask=None):
    """acc += (src - acc) * alpha, a running average. Returns acc."""
    return _run(_WEIGHTED, [src], acc, mask, alpha=float(alpha))
