"""Arrays on their way to the engine and back: one conversion where it is needed, none where it is not."""
from __future__ import annotations

from typing import Any, Iterable, Tuple

import numpy as np
from numpy.typing import ArrayLike, NDArray

from ._native import call, ffi, lib

Floats = NDArray[np.float64]
Indices = NDArray[np.int64]
Bools = NDArray[np.bool_]
Faces = NDArray[np.int32]
Point = Tuple[float, float, float]
Voxel = Tuple[int, int, int]

_C_TYPES = {np.dtype(np.float64): "double[]", np.dtype(np.float32): "float[]", np.dtype(np.int64): "int64_t[]",
            np.dtype(np.int32): "int32_t[]", np.dtype(np.uint32): "uint32_t[]", np.dtype(np.uint8): "uint8_t[]", np.dtype(np.bool_): "uint8_t[]"}


def pointer(array: NDArray[Any]) -> Any:
    """The memory of a contiguous array, which it keeps alive."""
    return ffi.from_buffer(_C_TYPES[array.dtype], array)


def numbers(values: ArrayLike, what: str, kinds: str = "fiu") -> NDArray[Any]:
    """Values as an array of real numbers; a TypeError says `what` they should be."""
    array = np.asarray(values)
    if array.size == 0 and array.dtype.kind == "f":
        return array.astype(np.float64 if "f" in kinds else np.int64)
    if array.dtype.kind not in kinds:
        raise TypeError(f"The {what} must be {'real' if 'f' in kinds else 'whole'} numbers, not {array.dtype}.")
    return array


def rows(values: ArrayLike, what: str, dtype: Any) -> NDArray[Any]:
    """Values of a shape (..., 3), contiguous, of a type of number that nothing is lost in."""
    array = numbers(values, what, "fiu" if np.dtype(dtype).kind == "f" else "iu")
    if array.ndim == 0 or array.shape[-1] != 3:
        raise ValueError(f"The {what} must have the shape (..., 3), not {array.shape}.")
    if np.dtype(dtype).kind == "i":
        require_range(array, what, np.iinfo(dtype))
    return np.ascontiguousarray(array, dtype=dtype)


def require_range(array: NDArray[Any], what: str, bounds: Any) -> None:
    """Whole numbers that a type cannot hold are refused instead of cut."""
    if array.size and not np.can_cast(array.dtype, bounds.dtype) and not bounds.min <= int(array.min()) <= int(array.max()) <= bounds.max:
        raise ValueError(f"The {what} must lie between {bounds.min} and {bounds.max}.")


def triangles_of(values: ArrayLike) -> Floats:
    """Triangles as an array (n, 3, 3) of float64: corner by corner, x, y, z."""
    array = numbers(values, "triangles")
    if array.size == 0:
        return np.empty((0, 3, 3))
    if array.ndim == 0 or array.shape[1:] not in ((3, 3), (9,)):
        raise ValueError(f"The triangles must have the shape (n, 3, 3), not {array.shape}.")
    return np.ascontiguousarray(array, dtype=np.float64).reshape(-1, 3, 3)


def point_of(values: Iterable[float], what: str = "point") -> Tuple[float, ...]:
    """Three world coordinates."""
    numbers = tuple(float(value) for value in values)
    if len(numbers) != 3:
        raise ValueError(f"The {what} must have three coordinates, not {len(numbers)}.")
    return numbers


def voxel_of(values: Iterable[int], what: str = "voxel") -> Tuple[int, ...]:
    """Three indices of a voxel: x, y, z."""
    indices = tuple(int(value) if value == int(value) else _refuse(what, value) for value in values)
    if len(indices) != 3:
        raise ValueError(f"The {what} must have three indices, not {len(indices)}.")
    return indices


def _refuse(what: str, value: object) -> int:
    raise ValueError(f"The indices of the {what} must be whole numbers, not {value}.")


def array_of_list(handle: Any, *shape: int) -> Floats:
    """A list of the library as an array; `shape` is that of an item."""
    size = ffi.new("int64_t[2]")
    call(lib.brix_list_size, handle, size, size + 1)
    result = np.empty((size[0], size[1]))
    if result.size:
        call(lib.brix_list_copy, handle, 0, size[0], pointer(result))
    return result.reshape((-1, *shape)) if result.size else np.empty((0, *shape))


def arrays_of_mesh(handle: Any) -> Tuple[Floats, Faces]:
    """A mesh of the library as vertices (v, 3) and faces (n, 3)."""
    size = ffi.new("int64_t[2]")
    call(lib.brix_mesh_size, handle, size, size + 1)
    vertices, faces = np.empty((size[0], 3)), np.empty((size[1], 3), dtype=np.int32)
    call(lib.brix_mesh_copy_vertices, handle, 0, len(vertices), pointer(vertices))
    call(lib.brix_mesh_copy_indices, handle, 0, len(faces), pointer(faces))
    return vertices, faces


def bytes_of(handle: Any) -> bytes:
    """Bytes of the library."""
    size = ffi.new("int64_t*")
    call(lib.brix_bytes_size, handle, size)
    result = bytearray(size[0])
    if result:
        call(lib.brix_bytes_copy, handle, 0, size[0], ffi.from_buffer("uint8_t[]", result))
    return bytes(result)
