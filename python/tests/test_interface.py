"""The package reaches every function of the header, typed from it."""

import re
from pathlib import Path

import numpy as np
import pytest

import orucv
from orucv import _binding

HEADER = Path(_binding.header_path()).read_text()


def declared_names():
    # An independent reading of the header: every ORUCV_API declaration.
    text = re.sub(r"/\*.*?\*/", "", HEADER, flags=re.S)
    text = "\n".join(line for line in text.splitlines() if not line.lstrip().startswith("#"))
    return set(re.findall(r"ORUCV_API[^;(]*?\b(\w+)\s*(?:\(|\[)", text))


def test_every_declared_name_is_in_lib_with_its_parameters():
    names = declared_names()
    assert len(names) > 250
    for name in names:
        obj = getattr(orucv.lib, name)  # AttributeError names the unreachable one
        if name in orucv.lib.functions:
            assert len(obj.argtypes) == len(orucv.lib.functions[name].params), name


def test_every_image_function_has_a_friendly_form():
    status_functions = {f.name for f in orucv.lib.functions.values() if f.restype.base == "OruStatus"}
    assert status_functions - _binding.COVERED == set()


def test_raw_functions_are_typed():
    a = np.arange(12, dtype=np.uint8).reshape(3, 4)
    dst = np.zeros_like(a)
    lib = orucv.lib
    assert lib.oruiAbsDiffC_8u_C1R(a, 4, dst, 4, lib.OruSize(4, 3), 5) == lib.oruStsOk
    assert (dst == np.abs(a.astype(int) - 5)).all()
    with pytest.raises(Exception, match="expected a uint8 array, got float32"):
        lib.oruiAbsDiffC_8u_C1R(a.astype(np.float32), 16, dst, 4, lib.OruSize(4, 3), 5)
    dst.flags.writeable = False
    with pytest.raises(Exception, match="read-only"):
        lib.oruiAbsDiffC_8u_C1R(a, 4, dst, 4, lib.OruSize(4, 3), 5)
    assert lib.oruiAbsDiffC_8u_C1R(None, 4, a, 4, lib.OruSize(4, 3), 5) == lib.oruStsNullPointer


def test_tables_and_version():
    assert orucv.lib.a6__orcv8to32f[200 + 128] == 200.0
    assert not orucv.lib.a6__orcv8to32f.flags.writeable
    assert orucv.lib._orcvCoiMask_A6.shape == (3, 24)
    v = orucv.version()
    assert (v.major, v.minor) == (2, 0) and v.name


def test_statuses_become_named_exceptions():
    assert issubclass(orucv.StepError, orucv.OrucvError) and orucv.StepError(
        "f", orucv.lib.oruStsStep).status == orucv.lib.oruStsStep
    with pytest.raises(orucv.BadArgError, match=r"oruiCanny_16s8u_C1R: oruStsBadArg \(-5\)"):
        d = np.zeros((4, 4), np.int16)
        orucv.canny(d, d, 10, 5)
