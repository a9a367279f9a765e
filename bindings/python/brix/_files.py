"""Paths for the library, and files that are written as a whole or not at all."""
from __future__ import annotations

import os
import tempfile

from ._native import PathLike


def encoded(path: PathLike) -> bytes:
    """A path in the encoding of the system's narrow file names, as the library takes it."""
    return os.fspath(path).encode("mbcs") if os.name == "nt" else os.fsencode(path)


def write_whole(path: PathLike, data: bytes) -> None:
    """Writes a file beside the one that it replaces when it is complete."""
    folder, name = os.path.split(os.path.realpath(path))
    file, temporary = tempfile.mkstemp(prefix=f".{name}.", dir=folder)
    try:
        with os.fdopen(file, "wb") as stream:
            stream.write(data)
        os.chmod(temporary, _mode_of(path))
        os.replace(temporary, os.path.join(folder, name))
    except BaseException:
        os.unlink(temporary)
        raise


def _mode_of(path: PathLike) -> int:
    try:
        return os.stat(path).st_mode & 0o777
    except FileNotFoundError:
        mask = os.umask(0)
        os.umask(mask)
        return 0o666 & ~mask
