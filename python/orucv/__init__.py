"""orucv: the liborucva6 image primitives on numpy arrays.

Every function of the library's header is in `orucv.lib` under its C name,
typed from the header; the image functions also have friendly forms here
(`orucv.sobel3x3_dx(img)`, `orucv.erode(img, shape="ellipse", size=(5, 5))`,
...) that take and return numpy arrays, allocate results and scratch, and
raise an OrucvError subclass named after the status (StepError, SizeError,
...) when the library refuses a call. An image is a 2-D array (rows,
columns) or a 3-D array (rows, columns, channels) whose pixels are adjacent
within a row; rows may have any step, so slices are regions of interest
used without a copy. The library runs without the GIL.
"""

from ._binding import ERROR_CLASSES, OrucvError, OrucvWarning, lib
from .absdiff import abs_diff, update_motion_history
from .accum import add, add_product, add_square, add_weighted
from .canny import canny
from .distransform import distance_transform, distance_transform_mask
from .eigen import eigen_vals_vecs, min_eigen_val
from .fastarctan import fast_arctan
from .filter import FilterSpec, blur, laplace, sobel
from .floodfill import Region, flood_fill
from .frame import Version, extract_channel, merge, split, version
from .matchtemplate import match_template
from .morph import MorphState, dilate, erode
from .pyramid import pyr_down, pyr_up
from .samplers import sample_line
from .sobel3x3 import scharr_dx, scharr_dy, sobel3x3_d2x, sobel3x3_d2y, sobel3x3_dx, sobel3x3_dxdy, sobel3x3_dy
from .stats import mean, mean_std_dev, min_max_indx, norm, sum_sq

globals().update(ERROR_CLASSES)

__version__ = "2.0.1"
__all__ = sorted(n for n in globals() if not n.startswith("_") and n not in ("ERROR_CLASSES",)) + sorted(ERROR_CLASSES)
