"""STL files."""
from __future__ import annotations

from typing import Any, List, Optional, Tuple, Union, cast

import numpy as np
from numpy.typing import ArrayLike, NDArray

from ._arrays import Floats, Point, array_of_list, bytes_of, pointer, triangles_of
from ._files import encoded, write_whole
from ._native import PathLike, call, ffi, lib, make
from ._objects import EngineObject


class StlFile(EngineObject):
    """An STL file as it was found: its triangles, what was left out of it or guessed, what they are as a surface. It goes where
    triangles go.

    >>> brix.write_stl("plate.stl", [[[0, 0, 0], [1, 0, 0], [0, 1, 0]]])
    >>> plate = brix.read_stl("plate.stl")
    >>> plate.triangles.shape, plate.is_closed, plate.findings
    ((1, 3, 3), False, [])
    >>> len(brix.voxelize(plate, voxel=2))
    4
    """

    __slots__ = ("_triangles",)
    _triangles: Optional[Floats]

    @property
    def triangles(self) -> Floats:
        """Its triangles as an array (n, 3, 3): corner by corner, x, y, z."""
        if getattr(self, "_triangles", None) is None:
            self._triangles = array_of_list(make("list", lib.brix_stl_triangles, self._pointer), 3, 3)
        return cast(Floats, self._triangles)

    def __array__(self, dtype: Any = None, copy: Optional[bool] = None) -> NDArray[Any]:
        return np.asarray(self.triangles, dtype=dtype)

    def __len__(self) -> int:
        return self._number(lib.BRIX_STL_READ)

    def _number(self, which: int, index: int = 0) -> int:
        result = ffi.new("int64_t*")
        call(lib.brix_stl_number_of, self._pointer, which, index, result)
        return int(result[0])

    def _text(self, which: int, index: int = 0) -> str:
        return bytes_of(make("bytes", lib.brix_stl_text_of, self._pointer, which, index)).decode("utf-8", "replace")

    def _bounds(self) -> Tuple[Point, Point, float]:
        numbers = ffi.new("double[7]")
        call(lib.brix_stl_bounds, self._pointer, numbers, numbers + 3, numbers + 6)
        return cast(Tuple[Point, Point, float], (tuple(numbers[0:3]), tuple(numbers[3:6]), numbers[6]))

    @property
    def is_sound(self) -> bool:
        """Whether nothing is wrong with it: no finding, no triangle without area, a closed surface."""
        return bool(self._number(lib.BRIX_STL_IS_SOUND))

    @property
    def is_closed(self) -> bool:
        """Whether its triangles are a closed surface."""
        return bool(self._number(lib.BRIX_STL_IS_CLOSED))

    @property
    def is_binary(self) -> bool:
        """Whether the file is of the binary variant."""
        return bool(self._number(lib.BRIX_STL_IS_BINARY))

    @property
    def open_edges(self) -> int:
        """Edges that belong to one triangle alone."""
        return self._number(lib.BRIX_STL_OPEN_EDGES)

    @property
    def findings(self) -> List[str]:
        """A sentence for each place where something was left out or guessed, up to a hundred."""
        return [self._text(lib.BRIX_STL_FINDING_SENTENCE, index) for index in range(self._number(lib.BRIX_STL_FINDINGS_LISTED))]

    @property
    def bounds(self) -> Tuple[Point, Point]:
        """The lower and the upper corner of its bounding box."""
        lower, upper, _ = self._bounds()
        return lower, upper

    @property
    def volume(self) -> float:
        """The volume that a closed surface encloses, above 0 where triangles face outwards."""
        return self._bounds()[2]

    @property
    def unit(self) -> str:
        """"m" or "mm", guessed from the size, or nothing."""
        return self._text(lib.BRIX_STL_UNIT)

    def __repr__(self) -> str:
        return f"StlFile({len(self)} triangles, {'closed' if self.is_closed else 'open'}, {len(self.findings)} findings)"


def read_stl(file: Union[PathLike, bytes], *, swap_yz: bool = False, drop_degenerate: bool = False) -> StlFile:
    """Reads an STL file, binary or text, leniently: `findings` tells what was left out or guessed. An OSError tells that it cannot be
    read at all.

    file                its path, or what it holds

    swap_yz             the file has its Y axis up: its (X, Y, Z) become (X, -Z, Y)
    drop_degenerate     triangles without area are left out

    >>> brix.read_stl(b"solid facet normal 0 0 1 outer loop vertex 0 0 0 vertex 1 0 0 vertex 0 1 0 endloop endfacet endsolid")
    StlFile(1 triangles, open, 0 findings)
    """
    how = swap_yz, drop_degenerate, True, 100
    if isinstance(file, bytes):
        return StlFile._of(make("stl", lib.brix_read_stl_bytes, ffi.from_buffer("uint8_t[]", file), len(file), *how))
    name = encoded(file)
    return StlFile._of(make("stl", lib.brix_read_stl, name, len(name), *how, path=file))


def write_stl(path: PathLike, triangles: ArrayLike, *, binary: bool = True, swap_yz: bool = False) -> None:
    """Writes triangles, an array (n, 3, 3) in world units, as an STL file. A file of that name stays until the new one is complete.

    swap_yz    the file gets its Y axis up: (x, y, z) become its (x, z, -y)

    >>> brix.write_stl("plate.stl", [[[0, 0, 0], [1, 0, 0], [0, 1, 0]]], binary=False)
    >>> len(brix.read_stl("plate.stl"))
    1
    """
    array = triangles_of(triangles)
    write_whole(path, bytes_of(make("bytes", lib.brix_save_stl_bytes, pointer(array), len(array), binary, swap_yz)))
