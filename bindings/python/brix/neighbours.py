"""The filled voxel that is nearest to a point."""
from __future__ import annotations

from typing import Any, Iterable, Optional, cast

from ._arrays import Voxel, point_of
from ._native import lib, make, number, three
from ._objects import EngineObject


class Neighbours(EngineObject):
    """Searches at the finest level from the voxel that holds a world point. They give indices x, y, z, or None."""

    __slots__ = ()

    def nearest_filled_along_x(self, point: Iterable[float], lower_voxels: int, upper_voxels: int) -> Optional[Voxel]:
        """In the row along x: the point's voxel, so many voxels below it and so many above it.

        >>> brix.Model.from_numpy([[[1, 0, 0, 1]]]).nearest_filled_along_x((1.5, 0.5, 0.5), 5, 5)
        (0, 0, 0)
        """
        return _found(lib.brix_nearest_filled_along_x, self, point, lower_voxels, upper_voxels)

    def nearest_filled_along_y(self, point: Iterable[float], lower_voxels: int, upper_voxels: int) -> Optional[Voxel]:
        """In the row along y.

        >>> brix.Model.from_numpy([[[1], [0], [0]]]).nearest_filled_along_y((0.5, 2.5, 0.5), 1, 0) is None
        True
        """
        return _found(lib.brix_nearest_filled_along_y, self, point, lower_voxels, upper_voxels)

    def nearest_filled_along_z(self, point: Iterable[float], lower_voxels: int, upper_voxels: int) -> Optional[Voxel]:
        """In the column along z: the floor below a point, for example.

        >>> brix.Model.from_numpy([[[1]], [[0]], [[0]]]).nearest_filled_along_z((0.5, 0.5, 2.5), 5, 0)
        (0, 0, 0)
        """
        return _found(lib.brix_nearest_filled_along_z, self, point, lower_voxels, upper_voxels)

    def nearest_filled_horizontally(self, point: Iterable[float], diameter_voxels: int) -> Optional[Voxel]:
        """In the layer of the point, inside the octagon of that diameter around it.

        >>> brix.Model.from_numpy([[[0, 0], [0, 1]]]).nearest_filled_horizontally((0.5, 0.5, 0.5), 5)
        (1, 1, 0)
        """
        return _found(lib.brix_nearest_filled_horizontally, self, point, diameter_voxels)


def _found(function: Any, model: Neighbours, point: Iterable[float], *voxels: int) -> Optional[Voxel]:
    iterator = make("iterator", function, model._pointer, point_of(point), *voxels)
    if not number("int32_t", lib.brix_iterator_is_valid, iterator):
        return None
    return cast(Voxel, three("int64_t", lib.brix_iterator_voxel_indices, iterator))
