"""Each family through the package against the C function called directly
(or a numpy model), on contiguous arrays and on padded views."""

import ctypes

import numpy as np
import pytest

import orucv
from conftest import padded, random_image

lib = orucv.lib
S = lib.OruSize
TYPES = {np.uint8: "8u", np.int8: "8s", np.float32: "32f"}


def raw(name, *args):
    assert getattr(lib, name)(*args) == 0, name


def buffer_of(query, *args):
    n = ctypes.c_int()
    raw(query, *args, ctypes.byref(n))
    return np.zeros(n.value, np.uint8)


def same(a, b):
    np.testing.assert_array_equal(a, b)
    assert a.dtype == b.dtype and a.shape == b.shape


def test_abs_diff_and_motion_history(rng):
    for t in (np.uint8, np.float32):
        a, b = random_image(rng, t, (9, 37)), random_image(rng, t, (9, 37))
        model = np.abs(a.astype(np.float64) - b).astype(t)
        same(orucv.abs_diff(padded(a), padded(b)), model)
        same(orucv.abs_diff(padded(a), 300 if t == np.uint8 else 2.5),
             np.abs(a.astype(np.float64) - (255 if t == np.uint8 else 2.5)).astype(t))
    sil = (rng.random((7, 13)) < 0.3).astype(np.uint8)
    mhi = rng.uniform(0, 10, (7, 13)).astype(np.float32)
    model = np.where(sil != 0, np.float32(10), np.where(mhi < np.float32(10) - np.float32(4), 0, mhi))
    view = padded(mhi)
    assert orucv.update_motion_history(padded(sil), view, 10, 4) is view
    same(view, model.astype(np.float32))


def test_sobel3x3_model_and_every_variant(rng):
    img = random_image(rng, np.uint8, (11, 29))
    p = np.pad(img, 1, mode="edge").astype(np.int32)
    d = p[:, 2:] - p[:, :-2]
    same(orucv.sobel3x3_dx(padded(img)), (d[:-2] + 2 * d[1:-1] + d[2:]).astype(np.int16))
    friendly = {"Sobel3x3_Dx": orucv.sobel3x3_dx, "Sobel3x3_Dy": lambda i: orucv.sobel3x3_dy(i, origin=1),
                "Sobel3x3_D2x": orucv.sobel3x3_d2x, "Sobel3x3_D2y": orucv.sobel3x3_d2y,
                "Sobel3x3_DxDy": lambda i: orucv.sobel3x3_dxdy(i, origin=1),
                "Scharr_Dx": lambda i: orucv.scharr_dx(i, shift=2),
                "Scharr_Dy": lambda i: orucv.scharr_dy(i, origin=1, shift=2)}
    for stem, fn in friendly.items():
        for t, s in TYPES.items():
            name = "orui%s_%s_C1R" % (stem, s if t == np.float32 else s + "16s")
            if name not in lib.functions:
                with pytest.raises(TypeError, match="expected dtype uint8 or int8"):
                    fn(random_image(rng, t, (5, 5)))
                continue
            src = random_image(rng, t, (6, 21))
            dst = np.zeros(src.shape, np.float32 if t == np.float32 else np.int16)
            args = [src, src.strides[0], dst, dst.strides[0]]
            params = [p.name for p in lib.functions[name].params]
            args += [1] * ("origin" in params) + [S(21, 6)] + [2] * ("shift" in params)
            raw(name, *args)
            same(fn(padded(src)), dst)


def test_canny_with_derivatives_of_different_steps(rng):
    img = random_image(rng, np.uint8, (40, 53))
    dx, dy = orucv.sobel3x3_dx(img), orucv.sobel3x3_dy(img)
    edges = np.zeros(img.shape, np.uint8)
    raw("oruiCanny_16s8u_C1R", dx, dx.strides[0], dy, dy.strides[0], edges, 53, S(53, 40), 60.0, 150.0,
        buffer_of("oruiCannyGetSize", S(53, 40)))
    assert 0 < edges.sum() < edges.size * 255
    same(orucv.canny(padded(dx, 3), padded(dy, 11), 60, 150), edges)
    same(orucv.canny(padded(dx, 11), dy, 60, 150), edges)


@pytest.mark.parametrize("grow", [False, True])
def test_pyramids(rng, grow):
    for t, s in TYPES.items():
        for ch in (1, 3):
            shape = (10, 14) if ch == 1 else (10, 14, 3)
            src = random_image(rng, t, shape)
            f = 2 if grow else 0.5
            dst = np.zeros((int(10 * f), int(14 * f)) + shape[2:], t)
            kind = "Up" if grow else "Down"
            buf = buffer_of("orui%sGetBufSize_Gauss5x5" % ("PyrUp" if grow else "PyrDown"), 14,
                            {np.uint8: 1, np.int8: 2, np.float32: 9}[t], ch)
            raw("oruiPyr%s_Gauss5x5_%s_C%dR" % (kind, s, ch), src, src.strides[0], dst, dst.strides[0], S(14, 10),
                buf)
            same((orucv.pyr_up if grow else orucv.pyr_down)(padded(src)), dst)


def test_match_template_every_method(rng):
    for t, s in TYPES.items():
        img, tpl = random_image(rng, t, (20, 25)), random_image(rng, t, (4, 6))
        for method, m in orucv.matchtemplate.METHODS.items():
            dst = np.zeros((17, 20), np.float32)
            buf = buffer_of("oruiMatchTemplateGetBufSize_" + m, S(25, 20), S(6, 4),
                            {np.uint8: 1, np.int8: 2, np.float32: 9}[t])
            raw("oruiMatchTemplate_%s_%s_C1R" % (m, s if t == np.float32 else s + "32f"), img, img.strides[0],
                S(25, 20), tpl, tpl.strides[0], S(6, 4), dst, 80, buf)
            same(orucv.match_template(padded(img), padded(tpl), method), dst)


def test_general_filters(rng):
    img = random_image(rng, np.uint8, (13, 31))
    p = np.pad(img, 2, mode="edge").astype(np.int32)
    box = sum(p[i:i + 13, j:j + 31] for i in range(5) for j in range(5))
    same(orucv.blur(padded(img), size=5), box.astype(np.int16))
    f = random_image(rng, np.float32, (13, 31))
    fspec = ctypes.POINTER(lib.OruFilterSpec)()
    raw("oruiSobelInitAlloc", 31, 9, 5, 1, 1, 2, ctypes.byref(fspec))
    dst = np.zeros_like(f)
    raw("oruiSobel_32f_C1R", f, 124, dst, 124, ctypes.byref(S(31, 13)), fspec, 0)
    raw("oruiConvolFree", ctypes.byref(fspec))
    same(orucv.sobel(padded(f), 1, 2, size=5, origin=1), dst)
    same(orucv.laplace(padded(img.view(np.int8)), 7), orucv.laplace(img.view(np.int8), 7))


def test_morphology(rng):
    img = random_image(rng, np.uint8, (12, 17))
    p = np.pad(img, 1, mode="edge")
    same(orucv.erode(padded(img)), np.min([p[i:i + 12, j:j + 17] for i in range(3) for j in range(3)], axis=0))
    for t, s in ((np.uint8, "8u"), (np.float32, "32f")):
        src = random_image(rng, t, (12, 17, 3))
        state = ctypes.POINTER(lib.OruMorphState)()
        raw("oruiMorphologyInitAlloc", 17, 1 if t == np.uint8 else 9, 3, S(5, 3), lib.OruPoint(1, 2),
            lib.oruMorphEllipse, None, ctypes.byref(state))
        dst = np.zeros_like(src)
        raw("oruiDilateStrip_%s_C3R" % s, src, src.strides[0], dst, dst.strides[0], ctypes.byref(S(17, 12)), state, 0)
        raw("oruiMorphologyFree", ctypes.byref(state))
        same(orucv.dilate(padded(src), "ellipse", (5, 3), anchor=(1, 2)), dst)
    mask = np.array([[0, 1, 0], [1, 1, 1]], bool)
    same(orucv.erode(img, mask, anchor=(1, 0)),
         np.min([p[1:13, 1:18], p[2:14, :17], p[2:14, 1:18], p[2:14, 2:19], p[1:13, 1:18]], axis=0))


def test_corners_distances_and_fills(rng):
    img = random_image(rng, np.float32, (15, 19))
    dst = np.zeros((15, 19, 6), np.float32)
    raw("oruiEigenValsVecs_32f_C1R", img, 76, dst, 19 * 24, S(19, 15), 5, 3,
        buffer_of("oruiEigenValsVecsGetSize", 19, 5, 3))
    same(orucv.eigen_vals_vecs(padded(img), 5, 3), dst)
    same(orucv.min_eigen_val(padded(img), 3, 7), orucv.min_eigen_val(img, 3, 7))

    binary = (rng.random((16, 21)) < 0.9).astype(np.uint8)
    metrics = np.zeros(3, np.float32)
    raw("oruiGetDistanceTransformMask", 52, metrics)
    dist = np.zeros(binary.shape, np.float32)
    raw("oruiDistanceTransform_5x5_8u32f_C1R", binary, 21, dist, 84, S(21, 16), metrics)
    same(orucv.distance_transform(padded(binary), 5), dist)

    levels = (rng.random((16, 21)) < 0.5).astype(np.uint8) * 10
    expect = levels.copy()
    region = lib.OruConnectedComp()
    raw("oruiFloodFill_Grad4Con_8u_C1IR", expect, 21, S(21, 16), lib.OruPoint(3, 4), 99, 3, 12,
        ctypes.byref(region), buffer_of("oruiFloodFillGetSize_Grad", S(21, 16)))
    view = padded(levels)
    got = orucv.flood_fill(view, (3, 4), 99, connectivity=4, lo=3, hi=12)
    same(view, expect)  # filled in place, through the view
    r = region.rect
    assert got == (region.area, region.value, (r.x, r.y, r.width, r.height))


def test_accumulators(rng):
    src, src2 = random_image(rng, np.int8, (6, 11)), random_image(rng, np.int8, (6, 11))
    acc = rng.normal(0, 1, (6, 11)).astype(np.float32)
    mask = (rng.random((6, 11)) < 0.5).astype(np.uint8)
    model = acc + np.where(mask != 0, src.astype(np.float32) * src2, 0).astype(np.float32)
    view = padded(acc)
    orucv.add_product(padded(src), padded(src2), view, mask=padded(mask))
    same(view, model)
    f = random_image(rng, np.float32, (6, 11))
    same(orucv.add(f, acc.copy()), acc + f)
    expect = acc.copy()
    raw("oruiAddWeighted_8s32f_C1IR", src, 11, expect, 44, S(11, 6), np.float32(0.25))
    same(orucv.add_weighted(src, acc.copy(), 0.25), expect)


def test_statistics(rng):
    img = random_image(rng, np.uint8, (14, 23, 3))
    mask = (rng.random((14, 23)) < 0.6).astype(np.uint8)
    c1 = img[..., 1]
    assert orucv.mean(padded(img), mask=mask, channel=1) == pytest.approx(c1[mask != 0].mean(), rel=1e-15)
    m, sd = orucv.mean_std_dev(padded(img), channel=1)
    assert (m, sd) == pytest.approx((c1.mean(), c1.std()), rel=1e-12)
    lo, hi, at_lo, at_hi = orucv.min_max_indx(img, channel=1)
    ylo, xlo = np.unravel_index(np.argmin(c1), c1.shape)
    assert (lo, hi, at_lo) == (c1.min(), c1.max(), (xlo, ylo)) and c1[at_hi[1], at_hi[0]] == hi
    b = random_image(rng, np.uint8, img.shape)
    assert orucv.norm(img, b, "l1", channel=2) == np.abs(img[..., 2].astype(int) - b[..., 2]).sum()
    f = random_image(rng, np.float32, (9, 10))
    for kind in ("inf", "l1", "l2"):
        out = ctypes.c_double()
        raw("oruiNormRel_%s_32f_C1MR" % orucv.stats.KINDS[kind], f, 40, f[::-1].copy(), 40, mask[:9, :10], 23,
            S(10, 9), ctypes.byref(out))
        assert orucv.norm(padded(f), f[::-1].copy(), kind, mask=mask[:9, :10], relative=True) == out.value
    s8 = random_image(rng, np.int8, (5, 7))
    assert orucv.sum_sq(padded(s8)) == (int(s8.astype(int).sum()), int((s8.astype(int) ** 2).sum()))


def test_lines_angles_and_channels(rng):
    img = random_image(rng, np.float32, (8, 12, 3))
    same(orucv.sample_line(padded(img), (2, 5), (11, 5)), img[5, 2:12])
    out = np.zeros((10, 3), np.float32)
    raw("oruiSampleLine_32f_C3R", img, img.strides[0], S(12, 8), out, lib.OruPoint(11, 7), lib.OruPoint(2, 0))
    same(orucv.sample_line(img, (11, 7), (2, 0)), out)
    y, x = rng.normal(size=(4, 5)).astype(np.float32), rng.normal(size=(4, 5)).astype(np.float32)
    angles = orucv.fast_arctan(y, x)
    assert np.abs(angles - np.degrees(np.arctan2(y, x)) % 360).max() < 0.15
    assert orucv.fast_arctan(np.float32([1]), np.float32([1]), out=y[0, :1])[0] == np.float32(45.140506)
    for t in (np.uint8, np.float32):
        four = random_image(rng, t, (5, 9, 4))
        planes = orucv.split(padded(four))
        for c in range(4):
            same(planes[c], four[..., c])
        same(orucv.extract_channel(padded(four), 2), four[..., 2])
        same(orucv.merge([padded(p) for p in planes[:3]]), four[..., :3])
