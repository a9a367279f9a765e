"""Growth and shrinkage: dilation and erosion, by voxels of the finest level."""
from __future__ import annotations

from typing import TYPE_CHECKING, Any, Optional

from ._native import ffi, lib, make
from ._objects import EngineObject

if TYPE_CHECKING:
    from .model import Model


class Growth(EngineObject):
    """What all take:

    guide       a model of the same frame. Growth never fills or crosses what it holds; shrinkage takes that for filled neighbours
    adjust_box  True: nothing is clipped, and the box becomes that of the filled voxels; False: it stays
    """

    __slots__ = ()

    def expand_along_x(self, lower_voxels: int, upper_voxels: int, *, guide: Optional[Model] = None, adjust_box: bool = True) -> Model:
        """Grows by so many voxels towards smaller x, and towards larger x.

        >>> brix.Model.from_numpy([[[1, 0, 0]]]).expand_along_x(0, 1).filled()
        array([[0, 0, 0],
               [1, 0, 0]])
        """
        return _grown(lib.brix_expand_along_x, self, lower_voxels, upper_voxels, guide, adjust_box)

    def expand_along_y(self, lower_voxels: int, upper_voxels: int, *, guide: Optional[Model] = None, adjust_box: bool = True) -> Model:
        """Grows by so many voxels towards smaller y, and towards larger y.

        >>> len(brix.Model.from_numpy([[[1]]]).expand_along_y(2, 3))
        6
        """
        return _grown(lib.brix_expand_along_y, self, lower_voxels, upper_voxels, guide, adjust_box)

    def expand_along_z(self, lower_voxels: int, upper_voxels: int, *, guide: Optional[Model] = None, adjust_box: bool = True) -> Model:
        """Grows by so many voxels downwards, and upwards.

        >>> len(brix.Model.from_numpy([[[1]]]).expand_along_z(2, 3))
        6
        """
        return _grown(lib.brix_expand_along_z, self, lower_voxels, upper_voxels, guide, adjust_box)

    def reduce_along_x(self, lower_voxels: int, upper_voxels: int, *, guide: Optional[Model] = None, adjust_box: bool = True) -> Model:
        """Takes so many voxels off lower faces along x, and off upper ones. Outside the box nothing is filled.

        >>> brix.Model.from_numpy([[[1, 1, 1]]]).reduce_along_x(1, 0).filled()
        array([[1, 0, 0],
               [2, 0, 0]])
        """
        return _grown(lib.brix_reduce_along_x, self, lower_voxels, upper_voxels, guide, adjust_box)

    def reduce_along_y(self, lower_voxels: int, upper_voxels: int, *, guide: Optional[Model] = None, adjust_box: bool = True) -> Model:
        """Takes so many voxels off lower faces along y, and off upper ones. Outside the box nothing is filled.

        >>> len(brix.Model.from_numpy(np.ones((1, 5, 1))).reduce_along_y(1, 1))
        3
        """
        return _grown(lib.brix_reduce_along_y, self, lower_voxels, upper_voxels, guide, adjust_box)

    def reduce_along_z(self, lower_voxels: int, upper_voxels: int, *, guide: Optional[Model] = None, adjust_box: bool = True) -> Model:
        """Takes so many voxels off lower faces, and off upper ones. Outside the box nothing is filled.

        >>> len(brix.Model.from_numpy(np.ones((5, 1, 1))).reduce_along_z(1, 1))
        3
        """
        return _grown(lib.brix_reduce_along_z, self, lower_voxels, upper_voxels, guide, adjust_box)

    def expand_by_one_voxel(self, horizontal_neighbours: int, vertical_neighbours: int, *, guide: Optional[Model] = None,
                            adjust_box: bool = True) -> Model:
        """Fills empty voxels that have at least so many filled neighbours among the four beside them, and at least so many among the
        two below and above. 0 asks for none; numbers beyond 4 and 2 are never reached.

        >>> voxel = brix.Model.from_numpy([[[1]]])
        >>> len(voxel.expand_by_one_voxel(1, 0)), len(voxel.expand_by_one_voxel(0, 1)), len(voxel.expand_by_one_voxel(1, 1))
        (5, 3, 1)
        """
        return _grown(lib.brix_expand_by_one_voxel, self, horizontal_neighbours, vertical_neighbours, guide, adjust_box)

    def reduce_by_one_voxel(self, horizontal_neighbours: int, vertical_neighbours: int, *, guide: Optional[Model] = None,
                            adjust_box: bool = True) -> Model:
        """Empties filled voxels that have at least so many empty neighbours among the four beside them, and at least so many among
        the two below and above.

        >>> len(brix.Model.from_numpy(np.ones((3, 3, 3))).reduce_by_one_voxel(1, 0))
        3
        """
        return _grown(lib.brix_reduce_by_one_voxel, self, horizontal_neighbours, vertical_neighbours, guide, adjust_box)

    def expand_horizontally(self, diameter_voxels: int, *, guide: Optional[Model] = None, adjust_box: bool = True) -> Model:
        """Grows in each layer as if by a disc of that diameter in voxels, whose outline is an octagon. A diameter of 1 changes nothing.

        >>> len(brix.Model.from_numpy([[[1]]]).expand_horizontally(3))
        5
        """
        return _grown_by(lib.brix_expand_horizontally, self, diameter_voxels, guide, adjust_box)

    def reduce_horizontally(self, diameter_voxels: int, *, guide: Optional[Model] = None, adjust_box: bool = True) -> Model:
        """Shrinks in each layer as if by a disc of that diameter in voxels.

        >>> len(brix.Model.from_numpy(np.ones((1, 5, 5))).reduce_horizontally(3))
        9
        """
        return _grown_by(lib.brix_reduce_horizontally, self, diameter_voxels, guide, adjust_box)


def _grown(function: Any, model: Growth, first: int, second: int, guide: Optional[Model], adjust_box: bool) -> Model:
    return _model(make("model", function, model._pointer, first, second, _optional(guide), adjust_box))


def _grown_by(function: Any, model: Growth, diameter: int, guide: Optional[Model], adjust_box: bool) -> Model:
    return _model(make("model", function, model._pointer, diameter, _optional(guide), adjust_box))


def _optional(guide: Optional[Model]) -> Any:
    return ffi.NULL if guide is None else guide._pointer


def _model(handle: Any) -> Model:
    from .model import Model
    return Model._of(handle)
