"""Installs the pure-Python package with a copy of the library's header (the
source of its declarations) and the location of the installed library.

    ORUCV_LIBRARY=/path/liborucva6.so pip install --no-build-isolation ./python

Without ORUCV_LIBRARY the library is looked up with pkg-config (set
PKG_CONFIG_PATH for an install under another prefix); at run time
$ORUCV_LIBRARY and the system's loader paths are tried as well."""

import os
import shutil
import subprocess
from pathlib import Path

from setuptools import setup
from setuptools.command.build_py import build_py

HERE = Path(__file__).resolve().parent


def installed_library():
    env = os.environ.get("ORUCV_LIBRARY")
    if env:
        return os.path.abspath(env)
    try:
        libdir = subprocess.run(["pkg-config", "--variable=libdir", "orucv"], capture_output=True, text=True,
                                check=True).stdout.strip()
    except (OSError, subprocess.CalledProcessError):
        return None
    candidate = os.path.join(libdir, "liborucva6.so")
    return os.path.normpath(candidate) if os.path.exists(candidate) else None


class BuildWithHeader(build_py):
    def run(self):
        super().run()
        header = Path(os.environ.get("ORUCV_HEADER", HERE.parent / "include" / "orucv.h"))
        if not header.is_file():
            raise SystemExit("orucv: cannot find the library's header %s; set ORUCV_HEADER" % header)
        target = Path(self.build_lib) / "orucv"
        shutil.copyfile(header, target / "orucv.h")
        (target / "_install.py").write_text("# Written at install time.\nLIBRARY = %r\n" % installed_library())


setup(cmdclass={"build_py": BuildWithHeader}, package_data={"orucv": ["orucv.h"]})
