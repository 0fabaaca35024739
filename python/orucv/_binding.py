"""Loads liborucva6 and declares every function, structure, constant and
table of its header to ctypes, straight from the header's text."""

import ctypes
import ctypes.util
import os
import warnings
from pathlib import Path

import numpy as np

from . import _header

_HERE = Path(__file__).resolve().parent
_SOURCE_ROOT = _HERE.parent.parent          # python/orucv -> the checkout


def _installed(name):
    try:
        from . import _install
    except ImportError:
        return None
    path = getattr(_install, name, None)
    return path if path and os.path.exists(path) else None


def header_path() -> str:
    """The header the binding reads: $ORUCV_HEADER, the copy installed with
    the package, or the checkout's include/orucv.h."""
    env = os.environ.get("ORUCV_HEADER")
    if env:
        return env
    for candidate in (_HERE / "orucv.h", _SOURCE_ROOT / "include" / "orucv.h"):
        if candidate.is_file():
            return str(candidate)
    raise ImportError("orucv: cannot find orucv.h; set ORUCV_HEADER to the library's header")


def library_path() -> str:
    """$ORUCV_LIBRARY, else the checkout's build tree, else the library found
    when the package was installed, else the system's loader paths."""
    env = os.environ.get("ORUCV_LIBRARY")
    if env:
        if not os.path.exists(env):
            raise ImportError("orucv: ORUCV_LIBRARY names %s, which does not exist" % env)
        return env
    if (_SOURCE_ROOT / "include" / "orucv.h").is_file():
        for build in ("build", "build-portable"):
            candidate = _SOURCE_ROOT / build / "src" / "liborucva6.so"
            if candidate.exists():
                return str(candidate)
    return _installed("LIBRARY") or ctypes.util.find_library("orucva6") or "liborucva6.so"


# ---- C types -----------------------------------------------------------------

_BASE = {
    "void": None, "char": ctypes.c_char, "unsigned char": ctypes.c_ubyte, "signed char": ctypes.c_byte,
    "short": ctypes.c_short, "int": ctypes.c_int, "unsigned int": ctypes.c_uint,
    "long long": ctypes.c_longlong, "float": ctypes.c_float, "double": ctypes.c_double,
}
_DTYPES = {
    "unsigned char": np.uint8, "signed char": np.int8, "short": np.int16, "int": np.int32,
    "long long": np.int64, "float": np.float32, "double": np.float64,
}


def _array_address_expression():
    """A Python expression, over a name X, for the address of ndarray X's
    first element. The data pointer is the first field after the object
    header of numpy's array struct (a stable ABI): read there it costs a
    fraction of `X.ctypes.data` or `X.__array_interface__`, which build
    Python objects on every call. The fast reading is checked here against
    the interface on several arrays and is used only if it agrees."""
    fast = "_read(id(X) + %d).value" % object.__basicsize__
    slow = 'X.__array_interface__["data"][0]'
    probes = [np.zeros((3, 5), np.uint8), np.zeros((4, 6, 3), np.float32)[1:, 2:], np.arange(7.0)[::2],
              np.zeros((5, 4), np.int16).T]
    scope = {"_read": ctypes.c_void_p.from_address}
    try:
        ok = all(eval(fast.replace("X", "p"), scope, {"p": p}) == p.__array_interface__["data"][0] for p in probes)
    except Exception:  # noqa: BLE001 (any failure means: not this layout)
        ok = False
    return fast if ok else slow


ADDRESS = _array_address_expression()
_address = eval("lambda X: " + ADDRESS, {"_read": ctypes.c_void_p.from_address})


class ArrayPointer:
    """A pointer parameter to pixels or values: takes a numpy array of the
    pointed-to dtype (its first element), an address, None, or a ctypes
    pointer or byref(). Arrays of another dtype, and read-only arrays where
    the function writes, are refused."""

    dtype = None
    ctype = None
    const = True

    @classmethod
    def from_param(cls, obj):
        if isinstance(obj, np.ndarray):
            if obj.dtype != cls.dtype:
                raise TypeError("expected a %s array, got %s" % (cls.dtype, obj.dtype))
            if not cls.const and not obj.flags.writeable:
                raise ValueError("the function writes to this array, which is read-only")
            return ctypes.c_void_p(_address(obj))
        if obj is None:
            return None
        if isinstance(obj, int):
            return ctypes.c_void_p(obj)
        return ctypes.POINTER(cls.ctype).from_param(obj)


class _Types:
    """The header's types as ctypes types."""

    def __init__(self, header):
        self.header = header
        self.named = {}
        self._pointers = {}
        for name, fields in header.structs.items():
            if fields is None:
                self.named[name] = type(name, (ctypes.Structure,), {"_fields_": []})
            else:
                cfields = []
                for ctype, fname, dims in fields:
                    t = self.of(ctype)
                    for d in reversed(dims):
                        t = t * d
                    cfields.append((fname, t))
                self.named[name] = type(name, (ctypes.Structure,), {"_fields_": cfields,
                                                                     "__repr__": _struct_repr})

    def scalar_base(self, base):
        while base in self.header.scalars:
            base = self.header.scalars[base]
        return base

    def of(self, ctype, param=False):
        base = self.scalar_base(ctype.base)
        if ctype.pointers == 0:
            if base in self.named:
                return self.named[base]
            if base not in _BASE:
                raise TypeError("orucv: the header uses the unknown type %s" % (ctype,))
            return _BASE[base]  # None for void
        if ctype.pointers == 1:
            if base == "void":
                return ctypes.c_void_p
            if base == "char" and ctype.const:
                return ctypes.c_char_p
            if param and base in _DTYPES:
                key = (base, ctype.const)
                if key not in self._pointers:
                    self._pointers[key] = type("%s%s*" % ("const " if ctype.const else "", ctype.base),
                                               (ArrayPointer,), {"dtype": np.dtype(_DTYPES[base]),
                                                                 "ctype": _BASE[base], "const": ctype.const})
                return self._pointers[key]
        inner = self.of(_header.CType(ctype.base, ctype.pointers - 1, ctype.const))
        return ctypes.POINTER(inner if inner is not None else ctypes.c_void_p)


def _struct_repr(self):
    return "%s(%s)" % (type(self).__name__, ", ".join("%s=%r" % (f, getattr(self, f)) for f, _ in self._fields_))


# ---- statuses ----------------------------------------------------------------

class OrucvError(Exception):
    """A negative status from a library function: .status, .status_name and
    .function tell which."""

    status = None
    status_name = None

    def __init__(self, function, status, detail=""):
        self.function = function
        self.status = status
        name = STATUS_NAMES.get(status, "status %d" % status)
        self.status_name = name
        super().__init__("%s: %s (%d)%s" % (function, name, status, ": " + detail if detail else ""))


class OrucvWarning(UserWarning):
    """A positive status (a warning) from a library function."""


STATUS_NAMES = {}
ERRORS = {}


def _error_classes(constants):
    classes = {}
    for name, value in constants.items():
        if not name.startswith("oruSts") or value >= 0:
            continue
        STATUS_NAMES[value] = name
        stem = name[len("oruSts"):]
        cls_name = "GeneralError" if stem == "Error" else stem + "Error"
        cls = type(cls_name, (OrucvError,), {"__doc__": "The status %s (%d)." % (name, value),
                                             "__module__": "orucv"})
        ERRORS[value] = cls
        classes[cls_name] = cls
    for name, value in constants.items():
        if name.startswith("oruSts") and value > 0:
            STATUS_NAMES[value] = name
    return classes


def raise_for(function, status):
    """Raises the exception of a negative status, warns on a positive one."""
    if status < 0:
        raise ERRORS.get(status, OrucvError)(function, status)
    if status > 0:
        warnings.warn("%s: %s (%d)" % (function, STATUS_NAMES.get(status, "warning"), status),
                      OrucvWarning, stacklevel=4)


# ---- the library ---------------------------------------------------------------

class Library:
    """Every function of the header under its C name, typed, plus the header's
    structures (OruSize, ...), constants (oruStsStep, ...) and tables (as
    read-only numpy arrays). `functions` maps names to their declarations."""

    def __init__(self, header, cdll, path):
        self._path = path
        self._cdll = cdll
        self.types = _Types(header)
        self.functions = dict(header.functions)
        for name, ctype in self.types.named.items():
            setattr(self, name, ctype)
        for name, value in header.constants.items():
            setattr(self, name, value)
        missing = []
        for f in header.functions.values():
            try:
                fn = getattr(cdll, f.name)
            except AttributeError:
                missing.append(f.name)
                continue
            fn.restype = self.types.of(f.restype)
            fn.argtypes = [self.types.of(p.ctype, param=True) for p in f.params]
            setattr(self, f.name, fn)
        for t in header.tables.values():
            try:
                setattr(self, t.name, self._table(t))
            except ValueError:
                missing.append(t.name)
        if missing:
            raise ImportError("orucv: %s lacks %d name(s) of the header: %s"
                              % (path, len(missing), ", ".join(missing[:8])))

    def _table(self, t):
        ctype = self.types.of(_header.CType(t.ctype.base, 0, True))
        for d in reversed(t.dims):
            ctype = ctype * d
        array = np.ctypeslib.as_array(ctype.in_dll(self._cdll, t.name))
        array.flags.writeable = False
        return array

    def __repr__(self):
        return "<orucv.lib: %d functions from %s>" % (len(self.functions), self._path)


def make_call(lib, name):
    """The function `name` called by its parameter names (keywords it does not
    take are ignored); a negative status raises. The friendly functions check
    their arrays themselves, so this path hands array addresses to a second
    declaration of the function with untyped pointers (the typed one checks
    dtypes in Python on every call). The call is generated from the header's
    parameter list; it carries .name, .names (the parameters) and .fn."""
    typed = getattr(lib, name)
    names = tuple(p.name for p in lib.functions[name].params)
    fn = lib._cdll._FuncPtr((name, lib._cdll))
    fn.restype = typed.restype
    arrays = [isinstance(t, type) and issubclass(t, ArrayPointer) for t in typed.argtypes]
    fn.argtypes = [ctypes.c_void_p if a else t for a, t in zip(arrays, typed.argtypes)]
    args = ", ".join("(%s if %s.__class__ is _ndarray else %s)" % (ADDRESS.replace("X", n), n, n) if a else n
                     for n, a in zip(names, arrays))
    source = ("def %s(*, %s, **_ignored):\n"
              "    status = _fn(%s)\n"
              "    if status:\n"
              "        _raise_for(%r, status)\n"
              "    return status\n" % (name, ", ".join(names) or "_=None", args, name))
    scope = {"_fn": fn, "_ndarray": np.ndarray, "_raise_for": raise_for, "_read": ctypes.c_void_p.from_address}
    exec(compile(source, "<orucv %s>" % name, "exec"), scope)
    call = scope[name]
    call.name, call.names, call.fn = name, names, fn
    return call


_header_text = Path(header_path()).read_text()
HEADER = _header.parse(_header_text)
ERROR_CLASSES = _error_classes(HEADER.constants)
_path = library_path()
try:
    _cdll = ctypes.CDLL(_path)
except OSError as e:
    raise ImportError("orucv: cannot load %s (%s); build the library, install it, or set ORUCV_LIBRARY"
                      % (_path, e)) from e
lib = Library(HEADER, _cdll, _path)

# Functions the friendly layer calls, for the test that nothing is out of reach.
COVERED = set()


def bound(name):
    COVERED.add(name)
    return make_call(lib, name)
