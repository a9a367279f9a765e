"""Models with other boxes, another place, another finest level."""
from __future__ import annotations

from typing import TYPE_CHECKING, Any

from ._native import lib, make
from ._objects import EngineObject
from .frame import Box, Frame

if TYPE_CHECKING:
    from .model import Model


class Bounds(EngineObject):
    """What changes where a model is, or how finely it is known, and not what is filled."""

    __slots__ = ()

    def crop(self, *, lower_x: int = 0, upper_x: int = 0, lower_y: int = 0, upper_y: int = 0, lower_z: int = 0,
             upper_z: int = 0) -> Model:
        """The model without the given numbers of voxels (of the finest level) at each side of its box.

        >>> brix.Model.from_numpy([[[1, 0, 1, 1]]]).crop(lower_x=1).to_numpy()
        array([[[False,  True,  True]]])
        """
        return _model(make("model", lib.brix_crop, self._pointer, lower_x, upper_x, lower_y, upper_y, lower_z, upper_z))

    def enlarge(self, *, lower_x: int = 0, upper_x: int = 0, lower_y: int = 0, upper_y: int = 0, lower_z: int = 0,
                upper_z: int = 0) -> Model:
        """The model with the given numbers of empty voxels (of the finest level) more at each side of its box.

        >>> brix.Model.from_numpy([[[1]]]).enlarge(upper_x=2).to_numpy()
        array([[[ True, False, False]]])
        """
        return _model(make("model", lib.brix_enlarge, self._pointer, lower_x, upper_x, lower_y, upper_y, lower_z, upper_z))

    def auto_crop(self) -> Model:
        """The model in the box of its filled voxels; an empty one in the box of its middle voxel.

        >>> brix.Model.from_numpy([[[0, 1, 1, 0]]]).auto_crop().box()
        Box(lower=(1, 0, 0), upper=(2, 0, 0), level=4)
        """
        return _model(make("model", lib.brix_auto_crop, self._pointer))

    def resize(self, box: Box) -> Model:
        """The model in another box of the same frame, given at any level. Voxels outside are dropped.

        >>> model = brix.Model.from_numpy([[[1, 1, 1]]])
        >>> len(model.resize(brix.Box(model.frame, (1, 0, 0), (9, 9, 9))))
        2
        """
        return _model(make("model", lib.brix_resize, self._pointer, box._pointer))

    def relocate(self, frame: Frame) -> Model:
        """The model with the same indices in another frame, so that it moves in the world.

        >>> model = brix.Model.from_numpy([[[1]]], voxel=0.1)
        >>> model.relocate(brix.Frame(0.1, origin=(5, 0, 0))).is_filled_at([5.05, 0.05, 0.05])
        array(True)
        """
        return _model(make("model", lib.brix_relocate, self._pointer, frame._pointer))

    def refine(self, finest_level: int) -> Model:
        """The model with another finest level. Finer levels are made of the finest one stack by stack (16 x 16 x 64 voxels): layers
        of equal voxels are doubled along x and y, but for the lowest, which keeps its pattern.

        >>> brix.Model.from_numpy([[[1, 0, 0, 1, 1]]], level=4).refine(3).to_numpy()
        array([[[ True,  True,  True]]])
        """
        return _model(make("model", lib.brix_refine, self._pointer, finest_level))


def _model(handle: Any) -> Model:
    from .model import Model
    return Model._of(handle)
