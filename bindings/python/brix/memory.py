"""The most memory that one operation may take."""
from __future__ import annotations

from typing import cast

from ._native import call, lib, number


def set_memory_limit(limit_bytes: float) -> None:
    """Bytes that one operation may take beside what it is given, for all threads; math.inf, as at first, for no limit. Operations then
    estimate before the work, and what would take more is a MemoryError that names the estimate.

    >>> brix.set_memory_limit(1e9)
    >>> brix.memory_limit()
    1000000000.0
    >>> brix.set_memory_limit(math.inf)
    """
    call(lib.brix_set_memory_limit, limit_bytes)


def memory_limit() -> float:
    """The limit that `set_memory_limit` set, in bytes.

    >>> brix.memory_limit()
    inf
    """
    return cast(float, number("double", lib.brix_get_memory_limit))
