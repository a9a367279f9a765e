"""Boolean operations, and the regions that a model falls apart into."""
from __future__ import annotations

from typing import TYPE_CHECKING, Any, Iterable, List, Optional, Sequence, Tuple

import numpy as np
from numpy.typing import NDArray

from ._arrays import pointer
from ._native import call, ffi, lib, make, number
from ._objects import EngineObject
from .frame import Box

if TYPE_CHECKING:
    from .model import Model


class Booleans(EngineObject):
    """`|`, `&`, `-` and `~`, and the same with a level and a box to choose."""

    __slots__ = ()

    if TYPE_CHECKING:
        @property
        def finest_level(self) -> int: ...
        def box(self, level: Optional[int] = None) -> Box: ...

    def union(self, *others: Model, level: Optional[int] = None, crop: bool = False) -> Model:
        """What this or one of the other models holds.

        level   the finest level of the result; the highest of the models' when it is left out
        crop    False: the box is the smallest that holds all models'; True: that holds what is filled in the result

        >>> one, two = (brix.Model.from_numpy([[row]]) for row in ([1, 1, 0], [0, 1, 1]))
        >>> (one | two).to_numpy()[0, 0]
        array([ True,  True,  True])
        """
        return _combined(lib.brix_union, [self, *others], level, crop)

    def intersect(self, *others: Model, level: Optional[int] = None, crop: bool = False) -> Model:
        """What this and all other models hold. Level and crop as for `union`.

        >>> one, two = (brix.Model.from_numpy([[row]]) for row in ([1, 1, 0], [0, 1, 1]))
        >>> (one & two).filled()
        array([[1, 0, 0]])
        """
        return _combined(lib.brix_intersect, [self, *others], level, crop)

    def subtract(self, other: Model, *, level: Optional[int] = None, crop: bool = False) -> Model:
        """What this model holds and the other does not, compared at a level: the highest of the two when it is left out. Crop as for
        `union`.

        >>> one, two = (brix.Model.from_numpy([[row]]) for row in ([1, 1, 0], [0, 1, 1]))
        >>> (one - two).filled()
        array([[0, 0, 0]])
        """
        chosen = _finest([self, other]) if level is None else level
        return _model(make("model", lib.brix_subtract, self._pointer, other._pointer, chosen, crop))

    def invert(self) -> Model:
        """What the box holds and this model does not.

        >>> (~brix.Model.from_numpy([[[1, 0, 1]]])).filled()
        array([[1, 0, 0]])
        """
        return _model(make("model", lib.brix_invert, self._pointer))

    def split(self) -> List[Model]:
        """A model for each region of filled voxels that are connected through their faces, in the box of its own.

        >>> [len(region) for region in brix.Model.from_numpy([[[1, 1, 0, 1]]]).split()]
        [2, 1]
        """
        return _models(make("models", lib.brix_auto_split, self._pointer))

    def label(self, box: Optional[Box] = None) -> Tuple[NDArray[np.uint32], int]:
        """The number of its region for each voxel of a box, an array of uint32 (nz, ny, nx) with 0 where nothing is filled, and how many
        regions the model has: numbers as `split` has them, from 1 on. Regions are connected through the faces of their voxels.

        box    at the finest level; the model's when it is left out

        >>> labels, count = brix.Model.from_numpy([[[1, 1, 0, 1]]]).label()
        >>> labels[0, 0], count
        (array([1, 1, 0, 2], dtype=uint32), 2)
        """
        place = box or self.box()
        call(lib.brix_require_memory_for_lists, 4 * float(np.prod(place.shape, dtype=np.float64)))
        labels = np.empty(place.shape, dtype=np.uint32)
        count = number("int64_t", lib.brix_label_regions, self._pointer, place._pointer, pointer(labels), labels.size)
        return labels, int(count)

    def __or__(self, other: Model) -> Model:
        return self.union(other) if isinstance(other, Booleans) else NotImplemented

    def __and__(self, other: Model) -> Model:
        return self.intersect(other) if isinstance(other, Booleans) else NotImplemented

    def __sub__(self, other: Model) -> Model:
        return self.subtract(other) if isinstance(other, Booleans) else NotImplemented

    def __invert__(self) -> Model:
        return self.invert()


def density_map(models: Sequence[Model], weights: Iterable[float], thresholds: Iterable[float], *,
                level: Optional[int] = None) -> List[Model]:
    """A model for each threshold: filled where the weights of the models that are filled there add up to it.

    level   the finest level of the results; the highest of the models' when it is left out

    >>> one, two = (brix.Model.from_numpy([[row]]) for row in ([1, 1, 0], [0, 1, 1]))
    >>> [len(model) for model in brix.density_map([one, two], [1, 2], [1, 2, 3])]
    [3, 2, 1]
    """
    sums, least = [float(weight) for weight in weights], [float(threshold) for threshold in thresholds]
    chosen = _finest(models) if level is None else level
    return _models(make("models", lib.brix_density_map, [model._pointer for model in models], len(models), sums, len(sums),
                        least, len(least), chosen))


def _finest(models: Sequence[Any]) -> int:
    return max((model.finest_level for model in models), default=0)


def _combined(function: Any, models: List[Any], level: Optional[int], crop: bool) -> Model:
    chosen = _finest(models) if level is None else level
    return _model(make("model", function, [model._pointer for model in models], len(models), chosen, crop))


def _model(handle: Any) -> Model:
    from .model import Model
    return Model._of(handle)


def _models(handle: Any) -> List[Model]:
    size = ffi.new("int64_t*")
    call(lib.brix_models_size, handle, size)
    return [_model(make("model", lib.brix_models_get, handle, index)) for index in range(size[0])]
