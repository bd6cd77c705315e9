# SPDX-License-Identifier: GPL-2.0-or-later
"""Lets CMake build library and module and install them, with the Python files, into the wheel."""

import os
import pathlib
import re
import subprocess
import sys

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

PROJECT = pathlib.Path(__file__).resolve().parent.parent
BUILD = PROJECT / "build" / "wheel"


class BuildWithCMake(build_ext):
    def run(self):
        options = {
            "CMAKE_BUILD_TYPE": "Release",
            "Python_EXECUTABLE": sys.executable,
            "TESMOR_BUILD_APPS": "OFF",
            "TESMOR_BUILD_TESTS": "OFF",
            "TESMOR_BUILD_PYTHON": "ON",
            "TESMOR_PYTHON_BUNDLE": "ON",
            "TESMOR_PYTHON_DIR": ".",
        }
        folder = BUILD / "cmake"
        jobs = os.environ.get("CMAKE_BUILD_PARALLEL_LEVEL", str(os.cpu_count()))
        settings = [f"-D{name}={value}" for name, value in options.items()]
        subprocess.run(["cmake", "-S", PROJECT, "-B", folder, *settings], check=True)
        subprocess.run(["cmake", "--build", folder, "--target", "tesmor_python", "--parallel", jobs], check=True)
        prefix = pathlib.Path(self.build_lib).resolve()
        subprocess.run(["cmake", "--install", folder, "--component", "python", "--prefix", prefix, "--strip"], check=True)


BUILD.mkdir(parents=True, exist_ok=True)
setup(
    version=re.search(r'define TESMOR_VERSION "(.*)"', (PROJECT / "include" / "tesmor.h").read_text())[1],
    ext_modules=[Extension("tesmor._native", [])],
    cmdclass={"build_ext": BuildWithCMake},
    options={"build": {"build_base": str(BUILD / "setuptools")}, "egg_info": {"egg_base": str(BUILD)}},
)
