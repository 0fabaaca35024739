"""Template matching: a score for every placement of the template."""

from ._binding import bound
from ._image import DATA_TYPE, F32, S8, U8, choice, image, output, scratch, size, step

METHODS = {"sqdiff": "SqDiff", "sqdiff_normed": "SqDiffNormed", "corr": "Corr", "corr_normed": "CorrNormed",
           "coeff": "Coeff", "coeff_normed": "CoeffNormed"}
_SUFFIX = {U8: "8u32f", S8: "8s32f", F32: "32f"}
_MATCH = {(m, t): bound("oruiMatchTemplate_%s_%s_C1R" % (m, s)) for m in METHODS.values() for t, s in _SUFFIX.items()}
_SIZE = {m: bound("oruiMatchTemplateGetBufSize_%s" % m) for m in METHODS.values()}


def match_template(img, tpl, method="coeff_normed", out=None):
    """float32 scores of shape (rows - tpl rows + 1, columns - tpl columns + 1)
    of a uint8, int8 or float32 template over an image of its dtype."""
    m = choice(method, METHODS, "method")
    image(img, "img", tuple(_SUFFIX))
    image(tpl, "tpl", (img.dtype,))
    rows, cols = img.shape[0] - tpl.shape[0] + 1, img.shape[1] - tpl.shape[1] + 1
    if rows < 1 or cols < 1 or tpl.size == 0:
        raise ValueError("tpl: a template of shape %s does not fit an image of shape %s" % (tpl.shape, img.shape))
    buffer = scratch(_SIZE[m], srcRoiSize=size(img), tplRoiSize=size(tpl), dataType=DATA_TYPE[img.dtype])
    out = output(out, (rows, cols), F32)
    _MATCH[m, img.dtype](pSrc=img, srcStep=step(img), srcRoiSize=size(img), pTpl=tpl, tplStep=step(tpl),
                         tplRoiSize=size(tpl), pDst=out, dstStep=step(out), pBuffer=buffer)
    return out
