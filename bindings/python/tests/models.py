"""Random models, and arrays that say what they should hold."""
import numpy as np
from hypothesis import strategies as st
from hypothesis.extra import numpy as arrays

import brix

FRAME = brix.Frame(0.25, origin=(1, -2, 0.5), rotation=30, vertical_level=3)


@st.composite
def voxels(draw, most=9):
    """An array of bool: noise, or boxes that make larger regions."""
    shape = draw(arrays.array_shapes(min_dims=3, max_dims=3, max_side=most))
    if draw(st.booleans()):
        return draw(arrays.arrays(np.bool_, shape))
    array = np.zeros(shape, dtype=bool)
    for _ in range(draw(st.integers(0, 4))):
        low = [draw(st.integers(0, size - 1)) for size in shape]
        high = [draw(st.integers(first, size)) for first, size in zip(low, shape)]
        array[tuple(slice(first, last) for first, last in zip(low, high))] ^= True
    return array


def corners():
    """Lower corners on both sides of the borders of plates and chunks."""
    return st.tuples(*[st.integers(-20, 20)] * 3)


def model_of(array, lower=(0, 0, 0), frame=FRAME, level=4):
    return brix.Model.from_numpy(array, frame=frame, lower=lower, level=level)


def in_box_of(array, model, lower=(0, 0, 0)):
    """The array of another model in the box of one with this array and this lower corner."""
    upper = tuple(first + size - 1 for first, size in zip(lower, reversed(array.shape)))
    return model.to_numpy(box=brix.Box(model.frame, lower, upper, model.finest_level))
