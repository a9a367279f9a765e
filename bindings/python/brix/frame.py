"""Frames and boxes: where voxels are."""
from __future__ import annotations

import math
from typing import Any, Iterable, Optional, Tuple, cast

import numpy as np
from numpy.typing import ArrayLike

from ._arrays import Floats, Indices, Point, Voxel, point_of, pointer, rows, triangles_of, voxel_of
from ._native import call, lib, make, number, three
from ._objects import EngineObject

DEFAULT_LEVEL = 4


class Frame(EngineObject):
    """What all models of a scene share: where voxels stand in the world, and how large they are at each level of detail, 0 (coarsest)
    to 5 (finest). Voxels of a level are half as wide as those of the level before; all are equally high.

    voxel           width of a voxel at `level`, in world units
    level           the level of that width
    vertical_level  the level whose width is the height of all voxels; `level` when it is left out, so that voxels of it are cubes
    origin          world point that is a corner between voxels
    rotation        degrees by which the grid turns about the world's Z, counter-clockwise

    >>> frame = brix.Frame(0.1)
    >>> frame.voxel_width(4), frame.voxel_width(0), frame.voxel_height
    (0.1, 1.6, 0.1)
    """

    __slots__ = ()

    def __init__(self, voxel: float, *, level: int = DEFAULT_LEVEL, vertical_level: Optional[int] = None,
                 origin: Iterable[float] = (0, 0, 0), rotation: float = 0) -> None:
        if not 0 <= level <= 5:
            raise ValueError(f"The level of a frame's voxel must lie between 0 and 5. The value encountered was {level}.")
        if not 0 < voxel < math.inf:
            raise ValueError(f"The width of a voxel must be greater than 0. The value encountered was {voxel}.")
        vertical = level if vertical_level is None else vertical_level
        self._handle = make("axes", lib.brix_axes_create, voxel * 2 ** level, point_of(origin, "origin"), rotation, vertical)

    def voxel_width(self, level: int) -> float:
        """Width of a voxel at a level, in world units.

        >>> brix.Frame(0.1).voxel_width(3)
        0.2
        """
        return cast(float, number("double", lib.brix_axes_voxel_width, self._pointer, level))

    @property
    def voxel_height(self) -> float:
        """Height of every voxel, in world units."""
        return cast(float, number("double", lib.brix_axes_voxel_height, self._pointer))

    @property
    def vertical_level(self) -> int:
        """The level whose width is the height of all voxels."""
        return cast(int, number("int64_t", lib.brix_axes_vertical_lod, self._pointer))

    @property
    def origin(self) -> Point:
        """The world point that is a corner between voxels."""
        return cast(Point, three("double", lib.brix_axes_voxel_origin, self._pointer))

    @property
    def rotation(self) -> float:
        """Degrees by which the grid turns about the world's Z, counter-clockwise."""
        return cast(float, number("double", lib.brix_axes_voxel_rotation, self._pointer))

    def voxels_at(self, points: ArrayLike, level: int = DEFAULT_LEVEL) -> Indices:
        """Indices x, y, z of the voxels of a level that hold world points (..., 3), as an array (..., 3).

        >>> brix.Frame(0.1).voxels_at([[0.05, 0.25, -0.01], [1, 2, 3]])
        array([[ 0,  2, -1],
               [10, 20, 30]])
        """
        coordinates = rows(points, "points", np.float64)
        result = np.empty(coordinates.shape, dtype=np.int64)
        call(lib.brix_axes_containing_voxels, self._pointer, pointer(coordinates), result.size // 3, level, pointer(result))
        return result

    def centres(self, voxels: ArrayLike, level: int = DEFAULT_LEVEL) -> Floats:
        """World points of the centres of voxels of a level, whose indices are an array (..., 3), as an array (..., 3).

        >>> brix.Frame(0.5).centres([[0, 0, 0], [1, 2, 3]])
        array([[0.25, 0.25, 0.25],
               [0.75, 1.25, 1.75]])
        """
        indices = rows(voxels, "voxels", np.int64)
        result = np.empty(indices.shape)
        call(lib.brix_axes_voxel_centers, self._pointer, pointer(indices), result.size // 3, level, pointer(result))
        return result

    def corner(self, voxel: Iterable[int], level: int = DEFAULT_LEVEL) -> Point:
        """The world point of a voxel's lower corner.

        >>> brix.Frame(0.5).corner((1, 2, 3))
        (0.5, 1.0, 1.5)
        """
        return cast(Point, three("double", lib.brix_axes_voxel_corner, self._pointer, voxel_of(voxel), level))

    def _values(self) -> Tuple[float, int, Point, float]:
        return self.voxel_width(0), self.vertical_level, self.origin, self.rotation

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, Frame):
            return NotImplemented
        return self._values() == other._values()

    def __hash__(self) -> int:
        return hash(self._values())

    def __repr__(self) -> str:
        width, vertical, origin, rotation = self._values()
        return f"Frame({width / 2 ** DEFAULT_LEVEL!r}, vertical_level={vertical}, origin={origin}, rotation={rotation})"

    def __reduce__(self) -> Tuple[Any, ...]:
        return _frame_of, self._values()


def _frame_of(width: float, vertical_level: int, origin: Point, rotation: float) -> Frame:
    return Frame(width, level=0, vertical_level=vertical_level, origin=origin, rotation=rotation)


class Box(EngineObject):
    """A box of voxels at a level of detail. Both corners belong to it.

    lower, upper    indices x, y, z of its first and its last voxel
    level           their level of detail

    >>> box = brix.Box(brix.Frame(0.1), (0, 0, 0), (9, 4, 1))
    >>> box.shape   # of its arrays: z, y, x
    (2, 5, 10)
    >>> (9, 4, 1) in box, (9, 4, 2) in box, len(box)
    (True, False, 100)
    """

    __slots__ = ()

    def __init__(self, frame: Frame, lower: Iterable[int], upper: Iterable[int], level: int = DEFAULT_LEVEL) -> None:
        corners = voxel_of(lower, "lower corner"), voxel_of(upper, "upper corner")
        self._handle = make("extents", lib.brix_extents_create, frame._pointer, *corners, level)

    @classmethod
    def around(cls, frame: Frame, triangles: ArrayLike) -> Box:
        """The box of voxels of level 0 that triangles, an array (n, 3, 3) in world units, can touch.

        >>> brix.Box.around(brix.Frame(0.1), [[[0, 0, 0.1], [2, 0, 0.1], [0, 1, 0.1]]]).upper
        (1, 0, 1)
        """
        array = triangles_of(triangles)
        return cls._of(make("extents", lib.brix_detect_triangle_extents, frame._pointer, pointer(array), len(array)))

    @property
    def frame(self) -> Frame:
        """The frame that it lies in."""
        return Frame._of(make("axes", lib.brix_extents_axes, self._pointer))

    @property
    def lower(self) -> Voxel:
        """Indices x, y, z of its first voxel."""
        return cast(Voxel, three("int64_t", lib.brix_extents_lower_indices, self._pointer))

    @property
    def upper(self) -> Voxel:
        """Indices x, y, z of its last voxel."""
        return cast(Voxel, three("int64_t", lib.brix_extents_upper_indices, self._pointer))

    @property
    def level(self) -> int:
        """The level of its voxels."""
        return cast(int, number("int64_t", lib.brix_extents_voxel_lod, self._pointer))

    @property
    def shape(self) -> Tuple[int, int, int]:
        """The shape of an array of its voxels: numbers of voxels along z, y and x."""
        x, y, z = (upper - lower + 1 for lower, upper in zip(self.lower, self.upper))
        return z, y, x

    def at_level(self, level: int) -> Box:
        """The box at another level: of the voxels there that hold its voxels, or that they hold.

        >>> brix.Box(brix.Frame(0.1), (3, 3, 3), (4, 4, 4)).at_level(3).lower
        (1, 1, 3)
        """
        return Box._of(make("extents", lib.brix_extents_rescaled_copy, self._pointer, level))

    def closest(self, voxel: Iterable[int]) -> Voxel:
        """The voxel of the box that is nearest to a voxel: itself when it lies inside.

        >>> brix.Box(brix.Frame(0.1), (0, 0, 0), (9, 9, 9)).closest((4, -7, 20))
        (4, 0, 9)
        """
        return cast(Voxel, three("int64_t", lib.brix_extents_closest_voxel, self._pointer, voxel_of(voxel)))

    def most_bytes(self, finest_level: Optional[int] = None) -> float:
        """Bytes that no model on this box exceeds, whatever is filled in it.

        >>> brix.Box(brix.Frame(0.1), (0, 0, 0), (999, 999, 99)).most_bytes() < 100e6
        True
        """
        level = self.level if finest_level is None else finest_level
        return cast(float, number("double", lib.brix_most_bytes_of_model, self._pointer, level))

    def __len__(self) -> int:
        z, y, x = self.shape
        return z * y * x

    def __contains__(self, voxel: Iterable[int]) -> bool:
        return bool(number("int32_t", lib.brix_extents_contains_voxel, self._pointer, voxel_of(voxel)))

    def _values(self) -> Tuple[Frame, Voxel, Voxel, int]:
        return self.frame, self.lower, self.upper, self.level

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, Box):
            return NotImplemented
        return self._values() == other._values()

    def __hash__(self) -> int:
        return hash(self._values())

    def __repr__(self) -> str:
        return f"Box(lower={self.lower}, upper={self.upper}, level={self.level})"

    def __reduce__(self) -> Tuple[Any, ...]:
        return Box, self._values()
