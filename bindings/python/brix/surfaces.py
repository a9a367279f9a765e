"""Voxels as triangles, boxes and rectangles, in world units."""
from __future__ import annotations

from typing import TYPE_CHECKING, Optional, Tuple, cast

from ._arrays import Faces, Floats, array_of_list, arrays_of_mesh
from ._native import lib, make, number
from ._objects import EngineObject


class Surfaces(EngineObject):
    """The level is that of the voxels; the finest one when it is left out."""

    __slots__ = ()

    if TYPE_CHECKING:
        def _level(self, level: Optional[int]) -> int: ...

    def surface(self, level: Optional[int] = None, *, smooth: bool = False, smoothing_steps: int = 0) -> Tuple[Floats, Faces]:
        """The closed surface of the filled voxels: vertices, world points (v, 3), and faces, indices (n, 3), counter-clockwise seen from
        outside. Every edge belongs to exactly two triangles.

        smooth             False: the faces of the voxels; True: surface nets, whose vertices stay within half a voxel of those
        smoothing_steps    of a smooth surface

        >>> vertices, faces = brix.Model.from_numpy([[[1, 1]]]).surface()
        >>> vertices.shape, faces.shape
        ((12, 3), (20, 3))
        """
        mesh = make("mesh", lib.brix_surface_mesh, self._pointer, self._level(level), smooth, smoothing_steps)
        return arrays_of_mesh(mesh)

    def tessellate(self, level: Optional[int] = None) -> Floats:
        """Triangles of boxes that cover the filled voxels, as an array (n, 3, 3).

        >>> brix.Model.from_numpy([[[1, 1]]]).tessellate().shape
        (12, 3, 3)
        """
        return array_of_list(make("list", lib.brix_tessellate_voxel_model, self._pointer, self._level(level)), 3, 3)

    def count_triangles(self, level: Optional[int] = None) -> int:
        """How many triangles `tessellate` will give, counted without making them.

        >>> brix.Model.from_numpy([[[1, 1]]]).count_triangles()
        12
        """
        return cast(int, number("int64_t", lib.brix_count_tessellation_triangles, self._pointer, self._level(level)))

    def cuboidize(self, level: Optional[int] = None) -> Floats:
        """Disjoint boxes that cover the filled voxels, as an array (n, 6): lower corner, size along the frame's X, Y and Z.

        >>> brix.Model.from_numpy([[[1, 1]]], voxel=0.5).cuboidize()
        array([[0. , 0. , 0. , 1. , 0.5, 0.5]])
        """
        return array_of_list(make("list", lib.brix_cuboidize_voxel_model, self._pointer, self._level(level)), 6)

    def solidize(self, level: Optional[int] = None) -> Floats:
        """Rectangles of the surface of the filled voxels, as an array (n, 4, 3): corners counter-clockwise, seen from outside.

        >>> brix.Model.from_numpy([[[1, 1]]]).solidize().shape
        (6, 4, 3)
        """
        return array_of_list(make("list", lib.brix_solidize_voxel_model, self._pointer, self._level(level)), 4, 3)
