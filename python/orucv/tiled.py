"""Neighbourhood functions over images larger than memory, in tiles, with
Dask (Debian's python3-dask).

Each tile is handed to the function with `radius` extra rows and columns of
its neighbours on every side (and replicated edge pixels at the image's
borders, as the library itself replicates them), and the margins are cut
from the result. For a function whose output pixel depends only on the
input pixels within `radius` of it, the tiled result equals the whole-image
result exactly. The same graph runs on a laptop's threads or on a
dask.distributed cluster.

    import dask.array as da, orucv, orucv.tiled
    big = da.from_zarr("scan.zarr")                  # or any dask array
    edges = orucv.tiled.apply(orucv.sobel3x3_dx, big, radius=1, dtype="int16")
    edges.to_zarr("dx.zarr")
"""

import functools

import numpy as np


def apply(fn, image, radius, dtype=None, chunks=None, **kwargs):
    """A dask array: fn(tile, **kwargs) over the tiles of `image` (a numpy
    or dask array, 2-D or (rows, columns, channels)), each grown by
    `radius` pixels (an int, or (rows, columns)) of overlap. `chunks` rechunks
    first (e.g. (1024, 1024)); channels stay in one chunk. `dtype` is the
    result's (default: the image's)."""
    import dask.array as da

    if chunks is not None and np.ndim(image) == 3 and len(chunks) == 2:
        chunks = tuple(chunks) + (-1,)
    arr = image if isinstance(image, da.Array) else da.from_array(image, chunks=chunks or "auto")
    if arr.ndim not in (2, 3):
        raise ValueError("image: expected 2 or 3 dimensions, got shape %s" % (arr.shape,))
    if chunks is not None and isinstance(image, da.Array):
        arr = arr.rechunk(chunks)
    if arr.ndim == 3:
        arr = arr.rechunk({2: -1})
    ry, rx = (radius, radius) if np.isscalar(radius) else radius
    depth = {0: ry, 1: rx} if arr.ndim == 2 else {0: ry, 1: rx, 2: 0}
    # Every tile must reach past the overlap, or dask would need a tile's
    # neighbours' neighbours: merge chunks that are thinner than the radius.
    for axis, r in ((0, ry), (1, rx)):
        if min(arr.chunks[axis]) < max(r, 1):
            arr = arr.rechunk({axis: max(r, max(arr.chunks[axis]))})
    return arr.map_overlap(functools.partial(fn, **kwargs), depth=depth, boundary="nearest", trim=True,
                           dtype=np.dtype(dtype) if dtype is not None else arr.dtype,
                           meta=np.empty((0,) * arr.ndim, dtype if dtype is not None else arr.dtype))


def radius_of(size):
    """The overlap a centred odd kernel size (3, 5, 7 or (width, height))
    needs: size // 2 rows and columns."""
    w, h = (size, size) if np.isscalar(size) else size
    return (h // 2, w // 2)
