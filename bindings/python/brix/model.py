"""The model: its arrays, what it says of itself, saving and loading. What operations make of it stands in the files of its bases."""
from __future__ import annotations

from typing import Any, Iterable, List, Optional, Tuple, Union, cast

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import plots
from ._arrays import Bools, Indices, bytes_of, numbers, pointer, rows, voxel_of
from ._files import write_whole
from ._native import PathLike, call, ffi, lib, make, number
from .booleans import Booleans
from .bounds import Bounds
from .fills import Fills
from .frame import DEFAULT_LEVEL, Box, Frame
from .growth import Growth
from .neighbours import Neighbours
from .sight import Sight
from .surfaces import Surfaces


class Model(Booleans, Bounds, Growth, Fills, Neighbours, Sight, Surfaces):
    """Filled voxels at all levels of detail from 0 to a finest one. A voxel of a coarser level is filled when one of those that it
    holds is. Models never change: every operation gives a new one.

    `Model(box)` is an empty one; most come from `brix.voxelize`, `Model.from_numpy` or `Model.load`. Arrays of voxels are in the order
    z, y, x; single voxels and rows of coordinates are x, y, z.

    >>> model = brix.Model.from_numpy([[[1, 0], [1, 1]]], voxel=0.5)
    >>> len(model), (0, 1, 0) in model, (1, 0, 0) in model
    (3, True, False)
    >>> model
    Model(3 filled voxels of 2 x 2 x 1 at level 4, 0.5 wide)
    """

    __slots__ = ()

    def __init__(self, box: Box, finest_level: Optional[int] = None) -> None:
        level = box.level if finest_level is None else finest_level
        self._handle = make("model", lib.brix_model_create, box._pointer, level)

    # ---- Arrays

    @classmethod
    def from_numpy(cls, voxels: ArrayLike, *, frame: Optional[Frame] = None, voxel: float = 1.0, lower: Iterable[int] = (0, 0, 0),
                   level: int = DEFAULT_LEVEL, finest_level: Optional[int] = None) -> Model:
        """A model of an array (nz, ny, nx), filled where it is not 0. A contiguous array of bool or bytes is read as it lies.

        frame           its frame; without one, a frame whose voxels are `voxel` wide at `level`
        lower           indices x, y, z of voxels[0, 0, 0]
        level           the level of the array's voxels
        finest_level    the model's finest level, `level` when it is left out

        >>> array = np.zeros((2, 3, 4), dtype=bool)
        >>> array[1, 2, 3] = True
        >>> brix.Model.from_numpy(array, voxel=0.1, lower=(10, 0, 0)).filled()
        array([[13,  2,  1]])
        """
        array = _bytes_of_voxels(voxels)
        corner = voxel_of(lower, "lower corner")
        upper = tuple(first + size - 1 for first, size in zip(corner, reversed(array.shape)))
        box = Box(frame or Frame(voxel, level=level), corner, upper, level)
        finest = level if finest_level is None else finest_level
        return cls._of(make("model", lib.brix_model_from_voxels, box._pointer, pointer(array), array.size, finest))

    def to_numpy(self, level: Optional[int] = None, box: Optional[Box] = None, out: Optional[Bools] = None) -> Bools:
        """Whether voxels are filled, as an array of bool (nz, ny, nx), contiguous, so that its strides are nx * ny, nx and 1 byte.

        level   of the voxels; the finest one when it is left out. A box has a level of its own
        box     of the array, anywhere; outside of the model nothing is filled. Without one, the model's box at the level
        out     array of the box's shape to write into: bool, contiguous along x, with any strides along y and z that are not negative

        >>> model = brix.Model.from_numpy([[[1, 0], [1, 1]]])
        >>> model.to_numpy()
        array([[[ True, False],
                [ True,  True]]])
        """
        place = box or self.box(level)
        if out is None:
            shape = place.shape
            call(lib.brix_require_memory_for_lists, float(np.prod(shape, dtype=np.float64)))
            out = np.empty(shape, dtype=np.bool_)
        elif out.dtype != np.bool_ or out.shape != place.shape:
            raise ValueError(f"The array to write into must be of bool with the shape {place.shape}, not {out.dtype} with {out.shape}.")
        elif not out.flags.writeable or out.strides[2] != 1 or min(out.strides) < 0:
            raise ValueError("The array to write into must be writable and contiguous along x, with strides that are not negative.")
        last = sum((size - 1) * stride for size, stride in zip(out.shape, out.strides))
        memory = ffi.cast("uint8_t*", out.ctypes.data)
        call(lib.brix_copy_voxels_strided, self._pointer, place._pointer, memory, last + 1, out.strides[1], out.strides[0])
        return out

    def __array__(self, dtype: Any = None, copy: Optional[bool] = None) -> NDArray[Any]:
        return np.asarray(self.to_numpy(), dtype=dtype)

    def with_voxels(self, voxels: ArrayLike, *, lower: Iterable[int], level: Optional[int] = None) -> Model:
        """The model with a box of its voxels filled where an array (nz, ny, nx) is not 0, and emptied elsewhere.

        lower   indices x, y, z of voxels[0, 0, 0]; the box has to lie inside the model's
        level   of the array's voxels; the finest one when it is left out

        >>> model = brix.Model.from_numpy(np.ones((2, 2, 2)))
        >>> len(model.with_voxels([[[0, 0]]], lower=(0, 1, 1)))
        6
        """
        array = _bytes_of_voxels(voxels)
        corner = voxel_of(lower, "lower corner")
        upper = tuple(first + size - 1 for first, size in zip(corner, reversed(array.shape)))
        box = Box(self.frame, corner, upper, self._level(level))
        return self._of(make("model", lib.brix_write_voxels, self._pointer, box._pointer, pointer(array), array.size))

    def runs(self, level: Optional[int] = None) -> Indices:
        """Runs of filled voxels along x, as an array (n, 4): first and last index along x, then y and z, in the order z, y, x.

        >>> brix.Model.from_numpy([[[1, 1, 0, 1]]]).runs()
        array([[0, 1, 0, 0],
               [3, 3, 0, 0]])
        """
        parts: List[bytes] = []
        failures: List[BaseException] = []  # a signal's, for one, whose handler runs in what is called back

        def keep(context: Any, first: Any, count: int) -> int:
            parts.append(bytes(ffi.buffer(first, 32 * count)))
            return 0

        visit = ffi.callback("brix_run_visitor", keep, error=1, onerror=lambda kind, value, traceback: failures.append(value))
        call(lib.brix_for_each_filled_run, self._pointer, self._level(level), visit, ffi.NULL)
        for failure in failures:
            raise failure
        return np.frombuffer(bytearray(b"".join(parts)), dtype=np.int64).reshape(-1, 4)

    def filled(self, level: Optional[int] = None) -> Indices:
        """Indices x, y, z of all filled voxels, as an array (n, 3), in the order z, y, x.

        >>> brix.Model.from_numpy([[[1, 0], [1, 1]]]).filled()
        array([[0, 0, 0],
               [0, 1, 0],
               [1, 1, 0]])
        """
        runs = self.runs(level)
        counts = runs[:, 1] - runs[:, 0] + 1
        result = np.repeat(runs[:, [0, 2, 3]], counts, axis=0)
        result[:, 0] += np.arange(len(result)) - np.repeat(np.cumsum(counts) - counts, counts)
        return result

    def is_filled(self, voxels: ArrayLike, level: Optional[int] = None) -> Bools:
        """Whether voxels are filled: indices x, y, z as an array (..., 3), answers as an array (...). Outside nothing is.

        >>> brix.Model.from_numpy([[[1, 0, 1]]]).is_filled([[0, 0, 0], [1, 0, 0], [99, 0, 0]])
        array([ True, False, False])
        """
        indices = rows(voxels, "voxels", np.int64)
        result = np.empty(indices.shape[:-1], dtype=np.bool_)
        call(lib.brix_are_filled, self._pointer, pointer(indices), result.size, self._level(level), pointer(result))
        return result

    def is_filled_at(self, points: ArrayLike, level: Optional[int] = None) -> Bools:
        """Whether the voxels that hold points are filled: world coordinates as an array (..., 3), answers as an array (...).

        >>> brix.Model.from_numpy([[[1, 0, 1]]], voxel=0.1).is_filled_at([0.25, 0.05, 0.05])
        array(True)
        """
        coordinates = rows(points, "points", np.float64)
        result = np.empty(coordinates.shape[:-1], dtype=np.bool_)
        call(lib.brix_are_filled_at, self._pointer, pointer(coordinates), result.size, self._level(level), pointer(result))
        return result

    def slice(self, axis: str, index: int, level: Optional[int] = None) -> Bools:
        """The voxels of one plane as an array of bool: across "z" (ny, nx), across "y" (nz, nx), across "x" (nz, ny).

        >>> brix.Model.from_numpy([[[1, 0], [1, 1]]]).slice("x", 0)
        array([[ True,  True]])
        """
        if axis not in ("x", "y", "z"):
            raise ValueError(f"The axis must be 'x', 'y' or 'z', not {axis!r}.")
        handle = make("rows", lib.brix_rows_at_slice, self._pointer, "xyz".index(axis), index, self._level(level), 0, 0)
        size = ffi.new("int64_t[2]")
        call(lib.brix_rows_size, handle, size, size + 1)
        result = np.empty(tuple(size), dtype=np.bool_)
        call(lib.brix_rows_copy, handle, 0, size[0], pointer(result))
        return result

    # ---- What it says of itself

    @property
    def frame(self) -> Frame:
        """Its frame."""
        return Frame._of(make("axes", lib.brix_model_axes, self._pointer))

    @property
    def finest_level(self) -> int:
        """Its finest level of detail."""
        return cast(int, number("int64_t", lib.brix_model_finest_lod, self._pointer))

    def _level(self, level: Optional[int]) -> int:
        return self.finest_level if level is None else level

    def box(self, level: Optional[int] = None) -> Box:
        """Its box at a level, the finest one when that is left out.

        >>> brix.Model.from_numpy(np.ones((1, 2, 3)), lower=(5, 0, 0)).box()
        Box(lower=(5, 0, 0), upper=(7, 1, 0), level=4)
        """
        return Box._of(make("extents", lib.brix_model_extents, self._pointer, self._level(level)))

    def count(self, level: Optional[int] = None) -> int:
        """The number of filled voxels at a level, the finest one when that is left out. `len(model)` is that of the finest.

        >>> model = brix.Model.from_numpy([[[1, 1, 1]]])
        >>> model.count(), model.count(3)
        (3, 2)
        """
        return cast(int, number("int64_t", lib.brix_count_filled, self._pointer, self._level(level)))

    def is_empty(self, level: Optional[int] = None) -> bool:
        """Whether no voxel is filled.

        >>> brix.Model.from_numpy([[[0, 0]]]).is_empty()
        True
        """
        return bool(number("int32_t", lib.brix_is_empty, self._pointer, self._level(level)))

    def is_full(self, level: Optional[int] = None) -> bool:
        """Whether every voxel of its box is filled.

        >>> brix.Model.from_numpy([[[1, 0]]]).is_full()
        False
        """
        return bool(number("int32_t", lib.brix_is_full, self._pointer, self._level(level)))

    def __len__(self) -> int:
        return self.count()

    def __bool__(self) -> bool:
        return not self.is_empty()

    def __contains__(self, voxel: Iterable[int]) -> bool:
        return bool(self.is_filled(voxel_of(voxel)))

    def content_hash(self) -> bytes:
        """A hash of 16 bytes, equal for models with equal frame, box, levels and voxels, on every platform.

        >>> brix.Model.from_numpy([[[1, 0]]]).content_hash().hex()
        'aeef1bea476664c7bfe2eae00c2464ec'
        """
        result = ffi.new("uint8_t[16]")
        call(lib.brix_content_hash, self._pointer, result)
        return bytes(result)

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, Model):
            return NotImplemented
        return self.content_hash() == other.content_hash()

    def __hash__(self) -> int:
        return hash(self.content_hash())

    def __repr__(self) -> str:
        if self._handle is None:
            return "Model(closed)"
        z, y, x = self.box().shape
        level = self.finest_level
        width = self.frame.voxel_width(level)
        return f"Model({len(self)} filled voxels of {x} x {y} x {z} at level {level}, {width:g} wide)"

    def _repr_html_(self) -> str:
        return repr(self) if self._handle is None else f"{plots.thumbnail(self)}<br>{self!r}"

    def plot(self, axis: str = "z", index: Optional[int] = None, *, colour: str = "#1d4468", ax: Any = None) -> Any:
        """Draws a plane of voxels by Matplotlib: across "x", "y" or "z", with that index, or through the middle of what is filled.

        ax    Matplotlib's axes to draw into; without any, those of a new figure. They are given back

        >>> brix.Model.from_numpy([[[1, 0], [1, 1]]], voxel=0.5).plot("z", 0).get_title()
        'z = 0 to 0.5'
        """
        return plots.draw_slice(self, axis, index, colour, ax)

    # ---- Saving, pickling

    def to_bytes(self) -> bytes:
        """The model as bytes, the same for equal models on every platform: what `save` writes.

        >>> brix.Model.from_numpy([[[1, 0]]]).to_bytes()[:4]
        b'BRIX'
        """
        return bytes_of(make("bytes", lib.brix_save_model, self._pointer))

    @classmethod
    def from_bytes(cls, data: Union[bytes, bytearray, memoryview]) -> Model:
        """The model that `to_bytes` gave. Anything else is a ValueError.

        >>> model = brix.Model.from_numpy([[[1, 0, 1]]])
        >>> brix.Model.from_bytes(model.to_bytes()) == model
        True
        """
        memory = ffi.from_buffer("uint8_t[]", data)
        return cls._of(make("model", lib.brix_load_model, memory, len(memory)))

    def save(self, path: PathLike) -> None:
        """Writes the model to a file. A file of that name stays as it is until the new one is complete.

        >>> model = brix.Model.from_numpy([[[1, 0]]])
        >>> model.save("model.brix")
        >>> brix.Model.load("model.brix") == model
        True
        """
        write_whole(path, self.to_bytes())

    @classmethod
    def load(cls, path: PathLike) -> Model:
        """Reads a model from a file that `save`, or the program brix, has written. An OSError tells what is wrong with it.

        >>> brix.Model.from_numpy([[[1, 0]]]).save("model.brix")
        >>> len(brix.Model.load("model.brix"))
        1
        """
        with open(path, "rb") as stream:
            data = stream.read()
        return cls._of(make("model", lib.brix_load_model, ffi.from_buffer("uint8_t[]", data), len(data), path=path))

    def __reduce__(self) -> Tuple[Any, ...]:
        return Model.from_bytes, (self.to_bytes(),)


def _bytes_of_voxels(voxels: ArrayLike) -> NDArray[np.uint8]:
    array = numbers(voxels, "voxels", "biuf")
    if array.ndim != 3 or array.size == 0:
        raise ValueError(f"The voxels must have the shape (nz, ny, nx), with none of them 0, not {array.shape}.")
    if array.dtype.itemsize != 1:
        array = array != 0
    return np.ascontiguousarray(array).view(np.uint8)

