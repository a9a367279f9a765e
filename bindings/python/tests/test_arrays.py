"""Voxels as arrays of all kinds and back, look-ups, runs and saved models."""
import copy
import pickle

import numpy as np
import pytest
from hypothesis import given, strategies as st
from models import FRAME, corners, model_of, voxels

import brix


@given(voxels(), corners(), st.integers(0, 5))
def test_voxels_come_back_as_they_were_given(array, lower, level):
    model = model_of(array, lower, level=level)
    assert np.array_equal(model.to_numpy(), array) and np.array_equal(np.asarray(model), array)
    assert model.box().lower == lower and model.box().shape == array.shape
    assert len(model) == array.sum() and model.is_empty() == (not array.any()) and model.is_full() == array.all()
    expected = np.argwhere(array)[:, ::-1] + lower
    assert np.array_equal(model.filled(), expected)
    assert np.array_equal(model.is_filled(model.filled()), np.ones(len(expected), dtype=bool))
    for saved in (pickle.loads(pickle.dumps(model)), copy.deepcopy(model), brix.Model.from_bytes(model.to_bytes())):
        assert saved == model and hash(saved) == hash(model) and np.array_equal(saved.to_numpy(), array)


@given(voxels(), st.permutations((0, 1, 2)), st.tuples(*[st.sampled_from((1, -1, 2))] * 3),
       st.sampled_from((np.bool_, np.uint8, np.int32, np.float64, np.float32)))
def test_arrays_of_any_strides_and_type_are_read(array, order, steps, dtype):
    view = array.astype(dtype).transpose(order)[tuple(slice(None, None, step) for step in steps)]
    assert np.array_equal(brix.Model.from_numpy(view).to_numpy(), view != 0)


@given(voxels(), voxels(), corners(), corners())
def test_a_box_anywhere_is_read_and_written(array, part, lower, shift):
    model = model_of(array, lower)
    place = tuple(first + move for first, move in zip(lower, shift))
    box = brix.Box(FRAME, place, tuple(first + size - 1 for first, size in zip(place, reversed(part.shape))))
    margin = 60
    space = np.pad(array, margin)
    window = tuple(slice(margin + move, margin + move + size) for move, size in zip(reversed(shift), part.shape))
    assert np.array_equal(model.to_numpy(box=box), space[window])
    into = np.ones((part.shape[0] + 2, part.shape[1] + 3, part.shape[2] + 1), dtype=bool)
    view = into[1:-1, 2:-1, :-1]
    assert model.to_numpy(box=box, out=view) is view and np.array_equal(view, space[window])
    assert into.sum() - view.sum() == into.size - view.size
    space[window] = part
    wide = model.enlarge(**{f"{side}_{axis}": 40 for side in ("lower", "upper") for axis in "xyz"})
    written = wide.with_voxels(part, lower=place)
    assert np.array_equal(written.to_numpy(box=model.box()), space[margin:-margin, margin:-margin, margin:-margin])
    assert len(written) == space.sum() and len(wide) == array.sum()


@given(voxels(), corners(), st.integers(0, 2**32 - 1))
def test_look_ups_of_points_and_voxels_agree(array, lower, seed):
    model = model_of(array, lower)
    indices = np.random.default_rng(seed).integers(-25, 25, (7, 5, 3))
    offsets = (indices - lower)[..., ::-1]
    inside = ((offsets >= 0) & (offsets < array.shape)).all(axis=-1)
    expected = np.zeros(inside.shape, dtype=bool)
    expected[inside] = array[tuple(offsets[inside].T)]
    centres = FRAME.centres(indices)
    assert np.array_equal(model.is_filled(indices), expected)
    assert np.array_equal(model.is_filled(np.asfortranarray(indices.astype(np.int16))), expected)
    assert np.array_equal(model.is_filled_at(centres), expected)
    assert np.array_equal(FRAME.voxels_at(centres), indices)
    assert [tuple(voxel) in model for voxel in indices[0]] == list(expected[0])


@given(voxels(), st.integers(0, 3))
def test_coarser_levels_hold_what_their_voxels_hold(array, level):
    model = model_of(array, frame=brix.Frame(1.0, vertical_level=4))
    x, y = np.arange(array.shape[2]) >> (4 - level), np.arange(array.shape[1]) >> (4 - level)
    expected = np.zeros((array.shape[0], y[-1] + 1, x[-1] + 1), dtype=bool)
    z, row, column = np.nonzero(array)
    expected[z, y[row], x[column]] = True
    assert np.array_equal(model.to_numpy(level), expected) and model.count(level) == expected.sum()


@given(voxels())
def test_slices_are_planes_of_the_array(array):
    model = model_of(array)
    z, y, x = (size // 2 for size in array.shape)
    assert np.array_equal(model.slice("z", z), array[z])
    assert np.array_equal(model.slice("y", y), array[:, y])
    assert np.array_equal(model.slice("x", x), array[:, :, x])


def test_contiguous_bytes_are_read_where_they_lie(monkeypatch):
    array = np.zeros((64, 64, 64), dtype=bool)
    seen = []
    real = brix.model.pointer
    monkeypatch.setattr(brix.model, "pointer", lambda memory: seen.append(memory) or real(memory))
    brix.Model.from_numpy(array)
    assert np.shares_memory(seen[0], array)


def test_files_hold_models_and_old_ones_survive_a_failed_write(tmp_path):
    model = model_of(np.ones((2, 3, 4)))
    path = tmp_path / "größe.brix"
    model.save(path)
    assert brix.Model.load(path) == model and path.read_bytes() == model.to_bytes()
    with pytest.raises(FileNotFoundError):
        model.save(tmp_path / "none" / "model.brix")
    path.write_bytes(path.read_bytes()[:-9])
    with pytest.raises(OSError, match="saved voxel model") as caught:
        brix.Model.load(path)
    assert caught.value.filename == str(path) and [file.name for file in tmp_path.iterdir()] == [path.name]
