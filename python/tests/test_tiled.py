"""Tiled processing with Dask gives the whole-image result exactly."""

import numpy as np
import pytest

import orucv

tiled = pytest.importorskip("orucv.tiled")
pytest.importorskip("dask.array")

IMG = np.random.default_rng(3).integers(0, 256, (301, 413), dtype=np.uint8)


@pytest.mark.parametrize("fn, radius, dtype, kwargs", [
    (orucv.blur, 3, np.int16, {"size": 7}),
    (orucv.erode, tiled.radius_of((5, 7)), np.uint8, {"shape": "ellipse", "size": (5, 7)}),
    (orucv.sobel3x3_dx, 1, np.int16, {}),
    (orucv.sobel, 2, np.int16, {"xorder": 1, "yorder": 2, "size": 5}),
])
def test_tiles_equal_the_whole_image(fn, radius, dtype, kwargs):
    whole = fn(IMG, **kwargs)
    for chunks in ((64, 100), (7, 413), (301, 5)):
        np.testing.assert_array_equal(tiled.apply(fn, IMG, radius, dtype, chunks, **kwargs).compute(), whole)


def test_channels_stay_together():
    rgb = np.dstack([IMG, IMG[::-1], IMG[:, ::-1]])
    got = tiled.apply(orucv.dilate, rgb, 1, chunks=(50, 60), shape="cross", size=(3, 3)).compute()
    np.testing.assert_array_equal(got, orucv.dilate(rgb, "cross", (3, 3)))
