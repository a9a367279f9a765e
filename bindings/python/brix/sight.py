"""What can be seen: along a direction, from a point, in a cone, by a camera."""
from __future__ import annotations

import math
from typing import TYPE_CHECKING, Any, Iterable, Optional

from ._arrays import point_of
from ._native import lib, make
from ._objects import EngineObject

if TYPE_CHECKING:
    from .model import Model


class Sight(EngineObject):
    """The empty voxels that are seen, as a model. A voxel's value, from 0 (dark) to 1 (in full sight), mixes those of the voxels that
    lie before it.

    level       of the voxels that are looked at, and finest level of the result; the model's finest one when it is left out
    threshold   the least value that counts as seen
    max_radius  world distance beyond which nothing is marked
    adjust_box  False: the result has the model's box; True: it is bounded by what is seen, also beyond the model's box
    """

    __slots__ = ()

    if TYPE_CHECKING:
        def _level(self, level: Optional[int]) -> int: ...

    def visibility_from_direction(self, direction: Iterable[float], *, level: Optional[int] = None, threshold: float = 0.5) -> Model:
        """What is seen along a direction, a world vector of any length: (0, 0, -1) looks down.

        >>> brix.Model.from_numpy([[[0, 0, 0]], [[0, 1, 0]], [[0, 0, 0]]]).visibility_from_direction((0, 0, -1)).to_numpy()[:, 0]
        array([[ True, False,  True],
               [ True, False,  True],
               [ True,  True,  True]])
        """
        return _model(make("model", lib.brix_visibility_from_direction, self._pointer, point_of(direction, "direction"),
                            self._level(level), threshold))

    def visibility_from_point(self, point: Iterable[float], *, level: Optional[int] = None, max_radius: float = math.inf,
                              threshold: float = 0.5, adjust_box: bool = False) -> Model:
        """What is seen from a world point.

        >>> row = brix.Model.from_numpy([[[0, 0, 1, 0]]])
        >>> row.visibility_from_point((0.5, 0.5, 0.5)).filled()
        array([[0, 0, 0],
               [1, 0, 0]])
        """
        return _model(make("model", lib.brix_visibility_from_point, self._pointer, point_of(point), self._level(level), max_radius,
                            threshold, adjust_box))

    def visibility_within_cone(self, point: Iterable[float], direction: Iterable[float], angle_degrees: float, *,
                               level: Optional[int] = None, max_radius: float = math.inf, threshold: float = 0.5,
                               adjust_box: bool = False) -> Model:
        """What is seen from a world point within a cone around a direction, of that full opening angle (at most 360).

        >>> space = brix.Model(brix.Box(brix.Frame(1), (0, 0, 0), (8, 8, 0)))
        >>> len(space.visibility_within_cone((4.5, 4.5, 0.5), (1, 0, 0), 90))
        25
        """
        return _model(make("model", lib.brix_visibility_within_cone, self._pointer, point_of(point), point_of(direction, "direction"),
                            angle_degrees, self._level(level), max_radius, threshold, adjust_box))

    def visibility_within_pyramid(self, point: Iterable[float], direction: Iterable[float], horizontal_degrees: float,
                                  vertical_degrees: float, *, level: Optional[int] = None, max_radius: float = math.inf,
                                  threshold: float = 0.5, adjust_box: bool = False) -> Model:
        """What an upright camera at a world point sees, with those angles from side to side of its view (less than 180).

        >>> space = brix.Model(brix.Box(brix.Frame(1), (0, 0, 0), (8, 8, 0)))
        >>> len(space.visibility_within_pyramid((4.5, 4.5, 0.5), (1, 0, 0), 90, 60))
        25
        """
        return _model(make("model", lib.brix_visibility_within_pyramid, self._pointer, point_of(point),
                            point_of(direction, "direction"), horizontal_degrees, vertical_degrees, self._level(level), max_radius,
                            threshold, adjust_box))


def _model(handle: Any) -> Model:
    from .model import Model
    return Model._of(handle)
