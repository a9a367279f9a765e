"""Fills of empty space by what it is connected to, and the way out where a shell is not tight."""
from __future__ import annotations

from typing import TYPE_CHECKING, Any, Iterable, NamedTuple, Optional

from ._arrays import Floats, Point, array_of_list, point_of
from ._native import ffi, lib, make
from ._objects import EngineObject

if TYPE_CHECKING:
    from .model import Model


class Leak(NamedTuple):
    """A shortest way out through empty voxels.

    points              world points of the polyline, an array (n, 3): the centres of its voxels at both ends and where it turns
    gap                 the world point where it is narrowest; None where it is nowhere narrower than 32 voxels
    gap_width_voxels    how wide it is there: `sealed_fill` with this gap closes it, if no other way out is wider; 0 without a gap
    """

    points: Floats
    gap: Optional[Point]
    gap_width_voxels: int


class Fills(EngineObject):
    """Space is connected through the faces of empty voxels of the finest level, inside the model's box."""

    __slots__ = ()

    def fill_from_point(self, point: Iterable[float]) -> Model:
        """With the empty region filled that holds a world point; the model itself where that is filled or outside.

        >>> brix.Model.from_numpy([[[0, 1, 0, 0]]]).fill_from_point((2.5, 0.5, 0.5)).to_numpy()
        array([[[False,  True,  True,  True]]])
        """
        return _model(make("model", lib.brix_fill_from_point, self._pointer, point_of(point)))

    def fill_exposed(self) -> Model:
        """With all empty regions filled that reach a face of the box.

        >>> shell = np.pad(np.zeros((1, 1, 1)), 1, constant_values=1)
        >>> len(brix.Model.from_numpy(shell).enlarge(lower_x=1).fill_exposed())
        35
        """
        return _model(make("model", lib.brix_fill_exposed_regions, self._pointer))

    def fill_enclosed(self) -> Model:
        """With all empty regions filled that do not reach a face of the box: its cavities. A solid of a closed surface.

        >>> shell = np.pad(np.zeros((1, 1, 1)), 1, constant_values=1)
        >>> len(brix.Model.from_numpy(shell)), len(brix.Model.from_numpy(shell).fill_enclosed())
        (26, 27)
        """
        return _model(make("model", lib.brix_fill_enclosed_regions, self._pointer))

    def sealed_fill(self, gap_voxels: int) -> Model:
        """With all filled that a cube of `gap_voxels` + 1 voxels cannot reach from outside: cavities, also of shells with gaps up to so
        many voxels.

        >>> shell = np.pad(np.zeros((3, 3, 3)), 1, constant_values=1)
        >>> shell[2, 2, 0] = 0
        >>> len(brix.Model.from_numpy(shell).fill_enclosed()), len(brix.Model.from_numpy(shell).sealed_fill(1))
        (97, 125)
        """
        return _model(make("model", lib.brix_sealed_fill, self._pointer, gap_voxels))

    def find_leak(self, point: Iterable[float]) -> Optional[Leak]:
        """The shortest way from a world point through empty voxels to a face of the box; None when the point is enclosed.

        >>> shell = np.pad(np.zeros((3, 3, 3)), 1, constant_values=1)
        >>> shell[2, 2, 0] = 0
        >>> leak = brix.Model.from_numpy(shell).find_leak((2.5, 2.5, 2.5))
        >>> leak.gap, leak.gap_width_voxels
        ((0.5, 2.5, 2.5), 1)
        """
        gap = ffi.new("double[4]")
        points = array_of_list(make("list", lib.brix_find_leak, self._pointer, point_of(point), gap), 3)
        if len(points) == 0:
            return None
        width = int(gap[3])
        return Leak(points, (gap[0], gap[1], gap[2]) if width else None, width)


def _model(handle: Any) -> Model:
    from .model import Model
    return Model._of(handle)
