"""Makes the wheel of one platform around a native library: BRIX_LIBRARY=libbrix_c.1.so python3 setup.py bdist_wheel

One wheel serves every Python 3.9 and later, as the library is called through cffi without anything being compiled against Python. Its
declarations are those of brix_c.h, preprocessed by $CC; the platform's tag is what the library itself needs.
"""
import os
import re
import shlex
import shutil
import subprocess
import tempfile
from pathlib import Path

import cffi
from setuptools import Distribution, setup
from setuptools.command.build_py import build_py
from wheel.bdist_wheel import bdist_wheel

from platform_tag import platform_tag

ROOT = Path(__file__).resolve().parents[2]
HEADER = ROOT / "bindings" / "c" / "brix_c.h"
LIBRARY = Path(os.environ["BRIX_LIBRARY"]).resolve()


def match(pattern, path):
    return re.search(pattern, path.read_text(encoding="utf-8"), re.MULTILINE)[1]


VERSION = match(r"^project\(brix VERSION ([0-9.]+)", ROOT / "CMakeLists.txt")


def declarations():
    """What brix_c.h declares, without the system's headers, of whose types cffi knows all that are used."""
    with tempfile.TemporaryDirectory() as empty:
        for name in ("stddef.h", "stdint.h"):
            Path(empty, name).touch()
        compiler = shlex.split(os.environ.get("CC", "cc"))
        text = subprocess.run([*compiler, "-E", "-P", "-undef", "-nostdinc", "-I", empty, "-x", "c", HEADER], check=True,
                              stdout=subprocess.PIPE, encoding="utf-8").stdout
    return text + f"#define BRIX_ABI_VERSION {match('^#define BRIX_ABI_VERSION ([0-9]+)', HEADER)}\n"


class BuildWithLibrary(build_py):
    """Puts the library and what is made of the header and the version beside the sources."""

    def run(self):
        super().run()
        package = Path(self.build_lib, "brix")
        for old in [*package.glob("*.so"), *package.glob("*.dll"), *package.glob("*.dylib")]:
            old.unlink()
        shutil.copy(LIBRARY, package)
        (package / "_build.py").write_text(f'VERSION = "{VERSION}"\nLIBRARY = "{LIBRARY.name}"\n', encoding="utf-8")
        builder = cffi.FFI()
        builder.set_source("brix._declarations", None)
        builder.cdef(declarations())
        builder.compile(tmpdir=self.build_lib)


class OfOnePlatform(Distribution):
    def has_ext_modules(self):
        return True


class PlatformWheel(bdist_wheel):
    def get_tag(self):
        return "py3", "none", platform_tag(LIBRARY)


setup(distclass=OfOnePlatform, version=VERSION, package_data={"brix": ["py.typed"]},
      cmdclass={"build_py": BuildWithLibrary, "bdist_wheel": PlatformWheel})
