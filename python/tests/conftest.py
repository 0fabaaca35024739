try:
    import orucv  # noqa: F401  (an installed package, or PYTHONPATH)
except ImportError:
    import sys
    from pathlib import Path
    sys.path.insert(0, str(Path(__file__).resolve().parent.parent))


import numpy as np
import pytest


def padded(a, pad=5):
    """The same pixels as a view with rows `pad` elements longer, starting at
    an odd offset inside a larger array (a region of interest)."""
    big = np.zeros((a.shape[0] + 2, a.shape[1] + pad) + a.shape[2:], a.dtype)
    view = big[1:1 + a.shape[0], 1:1 + a.shape[1]]
    view[...] = a
    assert not view.flags.c_contiguous or a.shape[0] <= 1
    return view


def random_image(rng, dtype, shape):
    dtype = np.dtype(dtype)
    if dtype == np.float32:
        return rng.normal(0, 40, shape).astype(np.float32)
    info = np.iinfo(dtype)
    return rng.integers(info.min, info.max + 1, shape, dtype=dtype)


@pytest.fixture
def rng():
    return np.random.default_rng(20240611)
