"""What objects of the engine share: a handle that frees them, `with`, and pickling through what makes them again."""
from __future__ import annotations

from types import TracebackType
from typing import Any, Optional, Type, TypeVar

Self = TypeVar("Self", bound="EngineObject")


class EngineObject:
    """An object of the engine. It never changes, and several threads may use it. Its memory is given back when nothing refers to it,
    or at the end of a `with` block, or by `close()`; a call that runs in another thread keeps it until it ends."""

    __slots__ = ("_handle", "__weakref__")
    _handle: Any

    @classmethod
    def _of(cls: Type[Self], handle: Any) -> Self:
        made = cls.__new__(cls)
        made._handle = handle
        return made

    @property
    def _pointer(self) -> Any:
        if self._handle is None:
            raise ValueError(f"This {type(self).__name__} was closed.")
        return self._handle

    def close(self) -> None:
        """Gives the memory back now. What is asked of it afterwards is a ValueError.

        >>> frame = brix.Frame(0.1)
        >>> frame.close()
        >>> frame.origin
        Traceback (most recent call last):
        ValueError: This Frame was closed.
        """
        self._handle = None

    def __enter__(self: Self) -> Self:
        return self

    def __exit__(self, kind: Optional[Type[BaseException]], value: Optional[BaseException], traceback: Optional[TracebackType]) -> None:
        self.close()
