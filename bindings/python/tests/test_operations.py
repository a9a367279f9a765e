"""Operations beside NumPy and scipy.ndimage on the same arrays."""
import numpy as np
import pytest
from hypothesis import given, strategies as st
from models import in_box_of, model_of, voxels
from scipy import ndimage

import brix

FACES = ndimage.generate_binary_structure(3, 1)
BESIDE = FACES & (np.arange(3) == 1)[:, None, None]
STACKED = FACES & (np.arange(3) == 1)[None, :, None] & (np.arange(3) == 1)[None, None, :]
SHELL = np.pad(np.zeros((5, 6, 7), dtype=bool), 1, constant_values=True)


def line(axis, lower, upper):
    """The structure of scipy.ndimage that grows by so many voxels along an axis."""
    most = max(lower, upper)
    shape = [1, 1, 1]
    shape["zyx".index(axis)] = 2 * most + 1
    offsets = np.arange(-most, most + 1)
    return ((offsets >= -lower) & (offsets <= upper)).reshape(shape)


@given(voxels(), voxels())
def test_boolean_operations_are_those_of_arrays(first, second):
    shape = np.maximum(first.shape, second.shape)
    a, b = (np.pad(array, [(0, most - size) for most, size in zip(shape, array.shape)]) for array in (first, second))
    one, two = model_of(first), model_of(second)
    assert np.array_equal((one | two).to_numpy(), a | b)
    assert np.array_equal((one & two).to_numpy(), a & b)
    assert np.array_equal(in_box_of(a, one - two), a & ~b)
    assert np.array_equal((~one).to_numpy(), ~first)
    assert one.union(two, two, one) == one | two and (one == two) == (first.shape == second.shape and (first == second).all())
    densities = brix.density_map([one, two], [1, 2], [1, 2, 3])
    assert [len(model) for model in densities] == [(a + 2.0 * b >= least).sum() for least in (1, 2, 3)]


@given(voxels(), st.sampled_from("xyz"), st.integers(0, 20), st.integers(0, 20))
def test_growth_along_axes_is_dilation_by_a_line(array, axis, lower, upper):
    wide = np.pad(array, 20)
    grown = getattr(model_of(array), f"expand_along_{axis}")(lower, upper)
    expected = ndimage.binary_dilation(wide, line(axis, lower, upper))
    assert np.array_equal(in_box_of(wide, grown, (-20, -20, -20)), expected)
    shrunk = getattr(model_of(array), f"reduce_along_{axis}")(lower % 3, upper % 3, adjust_box=False)
    assert np.array_equal(shrunk.to_numpy(), ndimage.binary_erosion(array, line(axis, lower % 3, upper % 3)))


@given(voxels())
def test_growth_by_one_voxel_is_dilation_by_faces(array):
    model, wide = model_of(array), np.pad(array, 1)
    beside, stacked = model.expand_by_one_voxel(1, 0), model.expand_by_one_voxel(0, 1)
    for grown, structure in ((beside, BESIDE), (stacked, STACKED), (beside | stacked, FACES)):
        assert np.array_equal(in_box_of(wide, grown, (-1, -1, -1)), ndimage.binary_dilation(wide, structure))
    shrunk = model.reduce_by_one_voxel(1, 0, adjust_box=False) & model.reduce_by_one_voxel(0, 1, adjust_box=False)
    assert np.array_equal(in_box_of(array, shrunk), ndimage.binary_erosion(array, FACES))


@given(voxels(), voxels(), st.integers(1, 6))
def test_guides_are_masks_of_a_dilation_that_goes_on(array, barrier, times):
    shape = np.maximum(array.shape, barrier.shape)
    a, b = (np.pad(part, [(8, 8 + most - size) for most, size in zip(shape, part.shape)]) for part in (array, barrier))
    grown = model_of(array).expand_along_x(0, times, guide=model_of(barrier))
    front = a & ~b
    for _ in range(times):
        front |= np.roll(front, 1, axis=2) & ~b
    assert np.array_equal(in_box_of(a, grown, (-8, -8, -8)), a | front)


@given(voxels())
def test_regions_and_fills_are_those_of_labels(array):
    model = model_of(array)
    labels, count = ndimage.label(array)
    regions = model.split()
    assert sorted(map(len, regions)) == sorted(np.bincount(labels.ravel())[1:]) and len(regions) == count
    ours, ours_count = model.label()
    assert ours_count == count and np.array_equal(ours > 0, array)
    assert len(set(zip(ours[array], labels[array]))) == count
    for number, region in enumerate(regions, start=1):
        assert np.array_equal(region.to_numpy(box=model.box()), ours == number)
    filled = ndimage.binary_fill_holes(array)
    assert np.array_equal(model.fill_enclosed().to_numpy(), filled)
    assert np.array_equal(model.fill_exposed().to_numpy(), array | ~filled)
    assert model.sealed_fill(0) == model.fill_enclosed()
    empty, _ = ndimage.label(~array)
    corner = brix.Frame.centres(model.frame, (0, 0, 0))
    here = empty == empty[0, 0, 0] if empty[0, 0, 0] else np.zeros_like(array)
    assert np.array_equal(model.fill_from_point(corner).to_numpy(), array | here)


def test_a_leak_is_found_told_and_sealed():
    shell = SHELL.copy()
    inside = (3.5, 3.5, 3.5)
    assert brix.Model.from_numpy(shell).find_leak(inside) is None
    shell[3:5, 3:5, 0] = False
    leak = brix.Model.from_numpy(shell).find_leak(inside)
    assert leak.gap_width_voxels == 2 and np.allclose(leak.gap, (0.5, 4, 4), atol=1) and np.array_equal(leak.points[0], inside)
    model = brix.Model.from_numpy(shell)
    assert len(model.fill_enclosed()) == shell.sum() and len(model.sealed_fill(1)) < shell.size == len(model.sealed_fill(2))


@given(voxels())
def test_boxes_and_triangles_cover_the_voxels(array):
    model = model_of(array, frame=brix.Frame(0.5))
    boxes = model.cuboidize()
    covered = np.zeros(array.shape, dtype=int)
    for x, y, z, width, depth, height in (boxes * 2).round().astype(int):
        covered[z:z + height, y:y + depth, x:x + width] += 1
    assert np.array_equal(covered, array)
    triangles = model.tessellate()
    assert len(triangles) == model.count_triangles()
    assert np.isclose(volume_of(triangles), array.sum() / 8)
    a, b, c, d = np.moveaxis(model.solidize(), 1, 0)
    assert np.isclose(volume_of(np.concatenate([np.stack([a, b, c], 1), np.stack([a, c, d], 1)])), array.sum() / 8)


@given(voxels(), st.sampled_from(((False, 0), (True, 0), (True, 3))))
def test_surfaces_are_closed(array, smoothness):
    vertices, faces = model_of(array, frame=brix.Frame(0.5)).surface(smooth=smoothness[0], smoothing_steps=smoothness[1])
    edges = np.concatenate([faces[:, [0, 1]], faces[:, [1, 2]], faces[:, [2, 0]]])
    forth, back = (np.unique(part, axis=0, return_counts=True) for part in (edges, edges[:, ::-1]))
    assert np.array_equal(forth[0], back[0]) and (forth[1] == 1).all()
    sides = [np.diff(np.pad(array, 1).astype(int), axis=axis).astype(bool).sum() for axis in range(3)]
    assert len(faces) == 2 * sum(sides)
    if not smoothness[0]:
        assert np.isclose(volume_of(vertices[faces]), array.sum() / 8)


def volume_of(triangles):
    """Signed volume of closed surfaces."""
    return np.einsum("ij,ij->i", triangles[:, 0], np.cross(triangles[:, 1], triangles[:, 2])).sum() / 6


@given(voxels(), st.integers(0, 8))
def test_sight_along_an_axis_ends_at_the_first_filled_voxel(array, row):
    seen = model_of(array, frame=brix.Frame(1.0)).visibility_from_direction((1, 0, 0))
    assert np.array_equal(seen.to_numpy(), ~np.maximum.accumulate(array, axis=2))


def test_sight_from_a_point_keeps_to_radius_cone_and_camera():
    space = brix.Model(brix.Box(brix.Frame(1.0), (0, 0, 0), (20, 20, 20)))
    eye = np.array((10.5, 10.5, 10.5))
    offsets = space.frame.centres((~space).filled()) - eye
    distance = np.linalg.norm(offsets, axis=1)
    cosine = np.divide(offsets[:, 0], distance, out=np.ones(len(offsets)), where=distance > 0)
    assert len(space.visibility_from_point(eye)) == 21 ** 3
    assert len(space.visibility_from_point(eye, max_radius=6)) == (distance <= 6).sum()
    cone = space.visibility_within_cone(eye, (1, 0, 0), 61)
    assert len(cone) == (cosine >= np.cos(np.radians(30.5))).sum()
    x, y, z = offsets.T
    view = (np.abs(y) <= x * np.tan(np.radians(31))) & (np.abs(z) <= x * np.tan(np.radians(17)))
    assert len(space.visibility_within_pyramid(eye, (1, 0, 0), 62, 34)) == view.sum()


def test_nearest_voxels_are_found():
    array = np.zeros((9, 9, 9), dtype=bool)
    array[4, 4, 7] = array[4, 1, 4] = array[8, 4, 4] = True
    model, middle = brix.Model.from_numpy(array), (4.5, 4.5, 4.5)
    assert model.nearest_filled_along_x(middle, 3, 3) == (7, 4, 4) and model.nearest_filled_along_x(middle, 3, 2) is None
    assert model.nearest_filled_along_y(middle, 3, 0) == (4, 1, 4) and model.nearest_filled_along_z(middle, 0, 4) == (4, 4, 8)
    assert model.nearest_filled_horizontally(middle, 9) in ((7, 4, 4), (4, 1, 4))
    assert model.nearest_filled_horizontally(middle, 3) is None


def test_boxes_frames_and_levels_change():
    model = model_of(np.ones((4, 4, 4)))
    assert model.crop(lower_x=1, upper_y=2, lower_z=1).box().shape == (3, 2, 3)
    assert model.enlarge(upper_x=1, lower_y=2, upper_z=3).auto_crop() == model
    assert model.resize(brix.Box(model.frame, (3, 3, 3), (9, 9, 9))).count() == 1
    moved = model.relocate(brix.Frame(0.25, origin=(9, 9, 9)))
    assert np.array_equal(moved.to_numpy(), model.to_numpy()) and moved.frame.origin == (9, 9, 9) and moved != model
    assert model.refine(3).to_numpy().shape == (4, 2, 2) and model.refine(5).box().shape == (4, 8, 8)


@pytest.mark.parametrize("call, sentence", [
    (lambda model: model.expand_along_x(-1, 0), "The number of voxels to be added to the lower X side cannot be negative. The value encountered was -1."),
    (lambda model: model.to_numpy(level=9), "level of detail"),
    (lambda model: model | model_of(np.ones((1, 1, 1)), frame=brix.Frame(1)), "axes"),
    (lambda model: model.fill_from_point((1, 2)), "The point must have three coordinates, not 2."),
    (lambda model: model.is_filled([1, 2]), r"The voxels must have the shape \(..., 3\), not \(2,\)."),
    (lambda model: brix.Frame(float("nan")), "must be greater than 0. The value encountered was nan."),
    (lambda model: model.expand_along_x(2**40, 0), "A number is too large: "),
    (lambda model: brix.Frame(1, level=6), "must lie between 0 and 5. The value encountered was 6."),
    (lambda model: brix.Model.from_numpy([[1]]), "shape"),
    (lambda model: brix.Model.from_bytes(b"brix"), "saved voxel model"),
    (lambda model: model.to_numpy(out=np.empty((1, 2, 3))), "bool"),
    (lambda model: model.slice("w", 0), "axis"),
])
def test_wrong_arguments_are_value_errors_with_a_sentence(call, sentence):
    with pytest.raises(ValueError, match=sentence):
        call(model_of(np.ones((2, 2, 2))))
