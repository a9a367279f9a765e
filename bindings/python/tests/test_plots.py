"""Pictures show what models hold."""
import re
import subprocess
import sys

import numpy as np
import pytest
from hypothesis import given
from models import model_of, voxels

import brix

pyplot = pytest.importorskip("matplotlib.pyplot")


@pytest.fixture(autouse=True)
def _closed_figures():
    yield
    pyplot.close("all")


@pytest.mark.parametrize("axis, plane", [("z", np.s_[1]), ("y", np.s_[:, 2]), ("x", np.s_[:, :, 3])])
def test_a_slice_is_drawn_where_it_lies_in_the_world(axis, plane):
    array = np.random.default_rng(1).random((2, 4, 6)) < 0.5
    model = brix.Model.from_numpy(array, frame=brix.Frame(0.5, origin=(10, 20, 30)), lower=(1, 2, 3))
    ax = model.plot(axis, {"x": 4, "y": 4, "z": 4}[axis])
    image, = ax.images
    assert np.array_equal(np.isfinite(image.get_array().filled(np.nan)), array[plane])
    edges = {"x": (10.5, 13.5), "y": (21, 23), "z": (31.5, 32.5)}
    sides = [name for name in "xyz" if name != axis]
    assert tuple(image.get_extent()) == edges[sides[0]] + edges[sides[1]] and ax.get_xlabel() == sides[0]


def test_distances_and_walkable_space_are_drawn():
    walls = np.zeros((4, 12, 15), dtype=bool)
    walls[0], walls[:, 6, 3:] = True, True
    walk = brix.PathModel(brix.Model.from_numpy(walls), diameter_voxels=1, height_voxels=2, adjust_box=False)
    field = brix.DistanceField(walk, (12.5, 1.5, 1.5))
    figure, (left, right) = pyplot.subplots(1, 2)
    assert field.plot(ax=left) is left and walk.plot(upper=1, ax=right) is right
    drawn = left.images[0].get_array().filled(np.nan)
    assert np.array_equal(drawn, field.to_numpy(brix.Box(field.box.frame, (0, 0, 1), (14, 11, 1)))[0], equal_nan=True)
    assert np.isnan(field.plot(lower=1.5).images[0].get_array().filled(np.nan)).all()
    heights = right.images[1].get_array().filled(np.nan)
    assert np.array_equal(np.isfinite(heights), ~walls[1]) and np.nanmin(heights) == np.nanmax(heights) == 1
    assert len(left.collections) > 0 and len(figure.axes) == 4


@given(voxels())
def test_notebooks_show_the_plan(array):
    html = model_of(array)._repr_html_()
    z, y, x = np.nonzero(array)
    width, height = (int(size) for size in re.search('viewBox="0 0 ([0-9]+) ([0-9]+)"', html).groups())
    assert (width, height) == ((np.ptp(x) + 1, np.ptp(y) + 1) if len(x) else (1, 1))
    drawn = sum(int(run) for run in re.findall("h([0-9]+)v1", html))
    assert drawn == array.any(axis=0).sum() and f"{array.sum()} filled voxels" in html


def test_large_models_are_shown_small():
    model = brix.Model.from_numpy(np.ones((1, 1, 1))).expand_along_x(0, 300000).expand_along_z(0, 3000)
    assert len(model._repr_html_()) < 2000


def test_nothing_else_needs_matplotlib():
    code = """import sys; sys.modules["matplotlib"] = None
import brix
model = brix.Model.from_numpy([[[1]]])
model._repr_html_()
try: model.plot()
except ImportError as reason: print(reason)"""
    result = subprocess.run([sys.executable, "-c", code], stdout=subprocess.PIPE, encoding="utf-8", check=True)
    assert result.stdout == "Plots are drawn by Matplotlib, which is not installed: pip install matplotlib\n"
