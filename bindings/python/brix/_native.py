"""The native library: how it is found and called, what its failures become, and how signals end its work.

Nothing is declared here: `_declarations` is made of brix_c.h, and `_build` of the version and the library's name, when the wheel is
built (setup.py).
"""
from __future__ import annotations

import errno
import os
import threading
from pathlib import Path
from typing import Any, List, Optional, Union

from . import _build, _declarations

PathLike = Union[str, "os.PathLike[str]"]

ffi: Any = _declarations.ffi


def _load() -> Any:
    path = Path(__file__).parent / _build.LIBRARY
    try:
        library = ffi.dlopen(str(path))
    except OSError as reason:
        raise ImportError(f"The native library of brix {_build.VERSION} cannot be loaded: {reason}") from reason
    found = ffi.string(library.brix_version_string()).decode(), library.brix_abi_version()
    needed = _build.VERSION, library.BRIX_ABI_VERSION
    if found != needed:
        raise ImportError(f"brix {needed[0]} needs its native library of version {needed[0]} with ABI version {needed[1]}, but "
                          f"{path} is version {found[0]} with ABI version {found[1]}. Install the package again.")
    return library


lib: Any = _load()


def call(function: Any, *arguments: Any, path: Optional[PathLike] = None) -> None:
    """Calls a function of the library with an error object behind its arguments; other threads run meanwhile.

    Raises what its failure is in Python, and what a signal's handler raises meanwhile, such as KeyboardInterrupt. `path` is the
    file that a failure is about.
    """
    error = ffi.new("brix_error*")
    try:
        if threading.current_thread() is threading.main_thread():
            _call_watched(function, arguments, error)
        else:
            function(*arguments, error)
    except OverflowError as reason:
        raise ValueError(f"A number is too large: {reason}.") from None
    if error.status != lib.BRIX_OK:
        raise _exception_of(error, path)


def make(kind: str, function: Any, *arguments: Any, path: Optional[PathLike] = None) -> Any:
    """An object that the function gives out, as a handle that frees it: the last handle, used by a running call or not."""
    place = ffi.new(f"brix_{kind}**")
    call(function, *arguments, place, path=path)
    return ffi.gc(place[0], getattr(lib, f"brix_{kind}_free"))


def number(kind: str, function: Any, *arguments: Any) -> Any:
    """A number that the function writes: kind "double", "int32_t" or "int64_t"."""
    place = ffi.new(f"{kind}*")
    call(function, *arguments, place)
    return place[0]


def three(kind: str, function: Any, *arguments: Any) -> Any:
    """Three numbers that the function writes, as a tuple."""
    place = ffi.new(f"{kind}[3]")
    call(function, *arguments, place)
    return tuple(place)


# ---- Signals. Python runs their handlers on its main thread, between two of its own instructions, of which a call has none. So calls
# of that thread are watched: the library asks a function here every few hundredths of a second, and handlers run when it begins.

_raised: List[BaseException] = []


def _remember(kind: Any, value: BaseException, traceback: Any) -> None:
    _raised.append(value)


@ffi.callback("brix_watch_callback", error=1, onerror=_remember)  # type: ignore[misc]
def _let_handlers_run(context: Any, share: float) -> int:
    return 0


def _call_watched(function: Any, arguments: Any, error: Any) -> None:
    watch = ffi.new("brix_watch**")
    if lib.brix_watch_begin(_let_handlers_run, ffi.NULL, 0.03, watch, error) != lib.BRIX_OK:
        return
    try:
        function(*arguments, error)
    finally:
        lib.brix_watch_end(watch[0], ffi.NULL)
    if _raised:
        lib.brix_error_clear(error)
        raise _raised.pop()


# ---- Failures

def _exception_of(error: Any, path: Optional[PathLike]) -> Exception:
    status = error.status
    sentence = ffi.unpack(error.message, error.length).decode("utf-8", "replace")
    lib.brix_error_clear(error)
    if status == lib.BRIX_OUT_OF_MEMORY:
        return MemoryError(sentence)
    if status == lib.BRIX_FILE_FAILURE and path is not None:
        # From the number OSError chooses its subclass.
        return OSError(errno.EIO if os.path.exists(path) else errno.ENOENT, sentence, os.fspath(path))
    if status in (lib.BRIX_INVALID_ARGUMENT, lib.BRIX_OUT_OF_RANGE, lib.BRIX_FILE_FAILURE):
        return ValueError(sentence)
    return RuntimeError(sentence)

