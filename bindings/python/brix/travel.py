"""Where an agent can stand, how far it walks, and the way."""
from __future__ import annotations

import math
from typing import Any, Iterable, Optional, Tuple, cast

import numpy as np
from numpy.typing import ArrayLike

from . import plots
from ._arrays import Floats, Voxel, array_of_list, point_of, pointer, rows
from ._native import call, lib, make, number, three
from ._objects import EngineObject
from .frame import Box
from .model import Model


class PathModel(EngineObject):
    """The voxels in which an agent can stand: its lowest ones, just above matter.

    environment      filled where there is solid matter
    diameter_voxels  the agent's diameter in voxels of the level, at least 1
    height_voxels    its height in voxels, at least 1; 1 is for plans of one layer
    level            to work at; the environment's finest one when it is left out
    adjust_box       True: it can stand on the highest matter, too; False: only inside the environment's box

    >>> floor = brix.Model.from_numpy(np.ones((1, 5, 5)))
    >>> len(brix.PathModel(floor, diameter_voxels=1, height_voxels=2).walkable)
    25
    """

    __slots__ = ()

    def __init__(self, environment: Model, *, diameter_voxels: int, height_voxels: int, level: Optional[int] = None,
                 adjust_box: bool = True) -> None:
        self._handle = make("path_model", lib.brix_path_model_create, environment._pointer, environment._level(level),
                            diameter_voxels, height_voxels, adjust_box)

    @property
    def environment(self) -> Model:
        """What it was made of."""
        return Model._of(make("model", lib.brix_path_model_environment, self._pointer))

    @property
    def walkable(self) -> Model:
        """Filled where the agent may stand; its finest level is the path model's."""
        return Model._of(make("model", lib.brix_path_model_traversable_voxels, self._pointer))

    @property
    def level(self) -> int:
        """The level that it works at."""
        return cast(int, number("int64_t", lib.brix_path_model_voxel_lod, self._pointer))

    @property
    def diameter_voxels(self) -> int:
        """The agent's diameter in voxels."""
        return cast(int, number("int64_t", lib.brix_path_model_agent_diameter_offset, self._pointer))

    @property
    def height_voxels(self) -> int:
        """The agent's height in voxels."""
        return cast(int, number("int64_t", lib.brix_path_model_agent_height_offset, self._pointer))

    def sample_points(self, spacing: float, *, min_diameter_voxels: int = 1) -> Floats:
        """World points spread over the walkable voxels, as an array (n, 3): one on every connected floor of every cell of a horizontal
        grid of that spacing (world units), where a body of that diameter has room.

        >>> floor = brix.Model.from_numpy(np.ones((1, 8, 8)))
        >>> brix.PathModel(floor, diameter_voxels=1, height_voxels=2).sample_points(4.0).shape
        (4, 3)
        """
        return array_of_list(make("list", lib.brix_path_model_generate_sample_points, self._pointer, spacing, min_diameter_voxels), 3)

    def plot(self, *, lower: float = -math.inf, upper: float = math.inf, ax: Any = None) -> Any:
        """Draws in plan, by Matplotlib, where the agent can stand: the lowest place of each column by its height, and its environment in
        grey.

        lower, upper   world heights of places that are drawn: those of a storey
        ax             Matplotlib's axes to draw into; without any, those of a new figure. They are given back

        >>> floor = brix.Model.from_numpy(np.ones((1, 4, 5)))
        >>> walk = brix.PathModel(floor, diameter_voxels=1, height_voxels=2)
        >>> walk.plot(upper=2).figure.savefig("walkable.png")
        """
        return plots.draw_walkable(self, lower, upper, ax)

    def __repr__(self) -> str:
        return f"PathModel({len(self.walkable)} walkable voxels at level {self.level}, agent {self.diameter_voxels} x {self.height_voxels})"


class DistanceField(EngineObject):
    """Walking distances over the walkable voxels from the nearest of some points.

    sources        world points as an array (3,) or (n, 3), each in a walkable voxel or above one by at most the agent's height
    max_distance   world distance beyond which nothing is reached

    >>> floor = brix.Model.from_numpy(np.ones((1, 1, 5)), voxel=0.5)
    >>> walk = brix.PathModel(floor, diameter_voxels=1, height_voxels=2)
    >>> field = brix.DistanceField(walk, (0.25, 0.25, 0.75))
    >>> field.to_numpy()
    array([[[0. , 0.5, 1. , 1.5, 2. ]]])
    """

    __slots__ = ("_box",)
    _box: Box

    def __init__(self, path_model: PathModel, sources: ArrayLike, *, max_distance: float = math.inf) -> None:
        points = rows(sources, "sources", np.float64).reshape(-1, 3)
        self._handle = make("distance_field", lib.brix_distance_field_create, path_model._pointer, pointer(points), len(points),
                            max_distance)
        self._box = path_model.walkable.box()

    @property
    def box(self) -> Box:
        """The box of the walkable voxels."""
        return self._box

    def to_numpy(self, box: Optional[Box] = None) -> Floats:
        """World distances of the voxels of a box (that of the walkable ones when it is left out), as an array of float64 (nz, ny, nx);
        NaN where nothing is reached.

        >>> floor = brix.Model.from_numpy(np.ones((1, 4, 5)))
        >>> walk = brix.PathModel(floor, diameter_voxels=1, height_voxels=2)
        >>> field = brix.DistanceField(walk, (0.5, 0.5, 1.5))
        >>> field.to_numpy()[0, 0]
        array([0., 1., 2., 3., 4.])
        """
        place = box or self._box
        result = np.empty(place.shape)
        call(lib.brix_distance_field_copy_distances, self._pointer, place._pointer, pointer(result), result.size)
        return _with_nan(result)

    def at(self, points: ArrayLike) -> Floats:
        """World distances of world points (..., 3) as an array (...); NaN where they cannot be reached.

        >>> floor = brix.Model.from_numpy(np.ones((1, 1, 5)))
        >>> walk = brix.PathModel(floor, diameter_voxels=1, height_voxels=2)
        >>> brix.DistanceField(walk, (0.5, 0.5, 1.5)).at([[4.5, 0.5, 1.5], [9, 9, 9]])
        array([ 4., nan])
        """
        coordinates = rows(points, "points", np.float64)
        result = np.empty(coordinates.shape[:-1])
        call(lib.brix_distance_field_distances_at, self._pointer, pointer(coordinates), result.size, pointer(result))
        return _with_nan(result)

    def distances(self) -> Tuple[Floats, Floats]:
        """Centres of all voxels that are reached, world points (n, 3), and their distances (n,).

        >>> floor = brix.Model.from_numpy(np.ones((1, 4, 5)))
        >>> walk = brix.PathModel(floor, diameter_voxels=1, height_voxels=2)
        >>> field = brix.DistanceField(walk, (0.5, 0.5, 1.5))
        >>> points, distances = field.distances()
        >>> points[1], distances[1]
        (array([1.5, 0.5, 1.5]), 1.0)
        """
        both = array_of_list(make("list", lib.brix_distance_field_distances, self._pointer), 4)
        return both[:, :3], both[:, 3]

    @property
    def farthest_distance(self) -> float:
        """The largest world distance."""
        return cast(float, number("double", lib.brix_distance_field_farthest_distance, self._pointer))

    @property
    def farthest_voxel(self) -> Voxel:
        """Indices x, y, z of the voxel that has it."""
        return cast(Voxel, three("int64_t", lib.brix_distance_field_farthest_voxel, self._pointer))

    def reachable(self, within: Optional[float] = None) -> Model:
        """The voxels that are reached, at all or within a world distance.

        >>> floor = brix.Model.from_numpy(np.ones((1, 4, 5)))
        >>> walk = brix.PathModel(floor, diameter_voxels=1, height_voxels=2)
        >>> field = brix.DistanceField(walk, (0.5, 0.5, 1.5))
        >>> len(field.reachable()), len(field.reachable(within=1.0))
        (20, 3)
        """
        if within is None:
            return Model._of(make("model", lib.brix_distance_field_reachable_voxels, self._pointer))
        return Model._of(make("model", lib.brix_distance_field_reachable_within, self._pointer, within))

    def plot(self, *, lower: float = -math.inf, upper: float = math.inf, ax: Any = None) -> Any:
        """Draws distances in plan, by Matplotlib, with contours: those of the lowest place of each column that is reached.

        lower, upper   world heights of places that are drawn: those of a storey
        ax             Matplotlib's axes to draw into; without any, those of a new figure. They are given back

        >>> floor = brix.Model.from_numpy(np.ones((1, 4, 5)))
        >>> walk = brix.PathModel(floor, diameter_voxels=1, height_voxels=2)
        >>> field = brix.DistanceField(walk, (0.5, 0.5, 1.5))
        >>> field.plot().figure.savefig("distances.png")
        """
        return plots.draw_distances(self, lower, upper, ax)

    def __repr__(self) -> str:
        return f"DistanceField(up to {self.farthest_distance:g} from its sources, {self._box})"


class Path(EngineObject):
    """The shortest way from the nearest source of a distance field to a world point.

    >>> floor = brix.Model.from_numpy(np.ones((1, 1, 5)))
    >>> walk = brix.PathModel(floor, diameter_voxels=1, height_voxels=2)
    >>> way = brix.Path(brix.DistanceField(walk, (0.5, 0.5, 1.5)), (4.5, 0.5, 1.5))
    >>> way.length, len(way.voxels)
    (4.0, 5)
    """

    __slots__ = ()

    def __init__(self, field: DistanceField, point: Iterable[float]) -> None:
        self._handle = make("path", lib.brix_path_create, field._pointer, point_of(point))

    @property
    def length(self) -> float:
        """Its length in world units."""
        return cast(float, number("double", lib.brix_path_length, self._pointer))

    @property
    def voxels(self) -> Model:
        """The voxels that it crosses."""
        return Model._of(make("model", lib.brix_path_voxels, self._pointer))

    @property
    def points(self) -> Floats:
        """Its polyline of world points, as an array (n, 3)."""
        return array_of_list(make("list", lib.brix_path_points, self._pointer), 3)

    def __repr__(self) -> str:
        return f"Path({self.length:g} long)"


def _with_nan(distances: Floats) -> Floats:
    distances[distances < 0] = np.nan
    return distances
