"""Where an agent can stand, and how far it walks, beside searches on the grid."""
import heapq

import numpy as np
import pytest
from hypothesis import given, strategies as st

import brix

UNIT = 1e-3  # more than what distances are rounded to
STEPS = [(y, x, np.hypot(y, x)) for y in (-1, 0, 1) for x in (-1, 0, 1) if (y, x) != (0, 0)]


def plan_of(walls):
    """A floor with walls of three voxels on it."""
    return brix.Model.from_numpy(np.concatenate([np.ones((1, *walls.shape), dtype=bool), np.repeat(walls[None], 3, axis=0)]))


def grid_distances(free, source):
    """Lengths of shortest ways of steps to the eight squares around, diagonals where one of the two squares between is free."""
    lengths = np.full(free.shape, np.inf)
    lengths[source] = 0
    queue = [(0.0, source)]
    while queue:
        length, (y, x) = heapq.heappop(queue)
        for dy, dx, step in STEPS if length == lengths[y, x] else ():
            place = y + dy, x + dx
            if not all(0 <= index < size for index, size in zip(place, free.shape)) or not free[place]:
                continue
            if (free[y, place[1]] or free[place[0], x]) and length + step < lengths[place]:
                lengths[place] = length + step
                heapq.heappush(queue, (length + step, place))
    return lengths


@given(st.integers(0, 2**32 - 1), st.integers(2, 12), st.integers(2, 12), st.sampled_from((0, 0.1, 0.3)))
def test_distances_lie_between_straight_lines_and_steps_on_the_grid(seed, depth, width, density):
    walls = np.random.default_rng(seed).random((depth, width)) < density
    walls[0, 0] = False
    walk = brix.PathModel(plan_of(walls), diameter_voxels=1, height_voxels=2, adjust_box=False)
    assert np.array_equal(walk.walkable.slice("z", 1), ~walls)
    field = brix.DistanceField(walk, (0.5, 0.5, 1.5))
    level = brix.Box(walk.walkable.frame, (0, 0, 1), (walls.shape[1] - 1, walls.shape[0] - 1, 1))
    distances, steps = field.to_numpy(level)[0], grid_distances(~walls, (0, 0))
    assert np.array_equal(np.isnan(distances), np.isinf(steps))
    reached = np.isfinite(steps)
    y, x = np.indices(walls.shape)
    assert (distances[reached] <= steps[reached] + UNIT).all() and (distances[reached] >= np.hypot(y, x)[reached] - UNIT).all()
    if not walls.any():
        assert np.allclose(distances, np.hypot(y, x), atol=UNIT)
    points, listed = field.distances()
    assert np.array_equal(field.at(points), listed) and len(listed) == reached.sum() == len(field.reachable())
    assert field.farthest_distance == np.nanmax(distances) == field.at(walk.walkable.frame.centres(field.farthest_voxel))
    assert len(field.reachable(within=3.0)) == (distances[reached] <= 3 + UNIT).sum()
    way = brix.Path(field, walk.walkable.frame.centres(field.farthest_voxel))
    pieces = np.linalg.norm(np.diff(way.points, axis=0), axis=1)
    assert abs(pieces.sum() - way.length) <= UNIT and way.length == field.farthest_distance
    near = brix.DistanceField(walk, [(0.5, 0.5, 1.5)], max_distance=2.0)
    assert np.array_equal(near.to_numpy(level)[0], np.where(distances <= 2, distances, np.nan), equal_nan=True)


def test_a_path_model_tells_what_it_was_made_of():
    model = plan_of(np.zeros((12, 8), dtype=bool))
    walk = brix.PathModel(model, diameter_voxels=2, height_voxels=3)
    assert (walk.diameter_voxels, walk.height_voxels, walk.level) == (2, 3, 4) and walk.environment == model
    assert walk.sample_points(4.0, min_diameter_voxels=2).shape == (6, 3)
    with pytest.raises(ValueError, match="source"):
        brix.DistanceField(walk, (99, 99, 99))
    with pytest.raises(ValueError, match="The sources must be real numbers|The sources must have the shape"):
        brix.DistanceField(walk, (1, 2))
