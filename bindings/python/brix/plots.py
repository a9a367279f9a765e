"""Pictures of slices, walkable space and distances by Matplotlib, where it is installed."""
from __future__ import annotations

from typing import TYPE_CHECKING, Any, Optional, Tuple

import numpy as np

from ._arrays import Floats, Indices

if TYPE_CHECKING:
    from .frame import Box
    from .model import Model
    from .travel import DistanceField, PathModel

_AXES = "xyz"


def draw_slice(model: Model, axis: str, index: Optional[int], colour: str, ax: Any) -> Any:
    """One plane of a model, its filled voxels in a colour."""
    chosen = _middle_of_filled(model, axis) if index is None else index
    plane = model.slice(axis, chosen)
    ax, extent = _axes_of(ax, model.box(), axis)
    ax.imshow(np.where(plane, 1.0, np.nan), origin="lower", extent=extent, cmap=_one(colour), interpolation="nearest")
    ax.set_title(f"{axis} = {_edges(model.box(), axis, chosen)[0]:.4g} to {_edges(model.box(), axis, chosen)[1]:.4g}")
    return ax


def draw_walkable(walk: PathModel, lower: float, upper: float, ax: Any) -> Any:
    """The lowest walkable voxel of each column, between two heights, by its own height; what else there is in grey."""
    walkable = walk.walkable
    box = walkable.box()
    ax, extent = _axes_of(ax, box, "z")
    ax.imshow(_plan_of(box, walk.environment.filled(walk.level), 1.0), origin="lower", extent=extent, cmap=_one("#d8d8d8"))
    voxels = _lowest_between(walkable, lower, upper)
    return _draw_plan(ax, box, extent, voxels, _edges(box, "z", voxels[:, 2])[0], "height of the floor")


def draw_distances(field: DistanceField, lower: float, upper: float, ax: Any) -> Any:
    """Walking distances of the lowest voxel of each column that is reached between two heights."""
    voxels = _lowest_between(field.reachable(), lower, upper)
    ax, extent = _axes_of(ax, field.box, "z")
    distances = field.at(field.box.frame.centres(voxels, field.box.level))
    return _draw_plan(ax, field.box, extent, voxels, distances, "walking distance", contours=True)


def _lowest_between(model: Model, lower: float, upper: float) -> Indices:
    """Filled voxels whose lower face lies between two world heights, downwards, so that the lowest of a column are drawn last."""
    voxels = model.filled()[::-1]
    heights = _edges(model.box(), "z", voxels[:, 2])[0]
    between: Indices = voxels[(heights >= lower) & (heights <= upper)]
    return between


def _axes_of(ax: Any, box: Box, axis: str) -> Tuple[Any, Tuple[float, ...]]:
    """Axes to draw the planes of a box into, those of a new figure when none are given, and the edges of the picture."""
    try:
        from matplotlib import pyplot
    except ImportError as reason:
        raise ImportError("Plots are drawn by Matplotlib, which is not installed: pip install matplotlib") from reason
    ax = ax if ax is not None else pyplot.subplots(layout="constrained")[1]
    sides = [name for name in _AXES if name != axis]
    extent = [edge for name in sides for edge in (_edges(box, name, box.lower[_AXES.index(name)])[0],
                                                  _edges(box, name, box.upper[_AXES.index(name)])[1])]
    note = " of the frame" if box.frame.rotation else ""
    ax.set(xlabel=sides[0] + note, ylabel=sides[1] + note, aspect="equal")
    return ax, tuple(extent)


def _edges(box: Box, axis: str, index: Any) -> Tuple[Any, Any]:
    """Lower and upper edge of voxels with an index, or several, along an axis of the frame, in world units; from the frame's origin
    where the frame is turned."""
    frame = box.frame
    size = frame.voxel_height if axis == "z" else frame.voxel_width(box.level)
    start = frame.origin[_AXES.index(axis)] if axis == "z" or not frame.rotation else 0.0
    return start + index * size, start + (index + 1) * size


def _draw_plan(ax: Any, box: Box, extent: Tuple[float, ...], voxels: Indices, values: Floats, label: str, contours: bool = False) -> Any:
    plan = _plan_of(box, voxels, values)
    image = ax.imshow(plan, origin="lower", extent=extent, cmap="viridis", interpolation="nearest")
    if contours and len(values) and min(plan.shape) > 1 and values.max() > values.min():
        ax.contour(plan, origin="lower", extent=extent, colors="white", linewidths=0.6)
    ax.figure.colorbar(image, ax=ax, label=label)
    return ax


def _plan_of(box: Box, voxels: Indices, values: Any) -> Floats:
    """Values of voxels seen from above, NaN where there is none; of several in a column the last one's."""
    plan = np.full(box.shape[1:], np.nan)
    x, y = (voxels[:, :2] - box.lower[:2]).T
    inside = (x >= 0) & (y >= 0) & (x < plan.shape[1]) & (y < plan.shape[0])
    plan[y[inside], x[inside]] = values if np.isscalar(values) else values[inside]
    return plan


def _one(colour: str) -> Any:
    from matplotlib.colors import ListedColormap
    return ListedColormap([colour])


def _middle_of_filled(model: Model, axis: str) -> int:
    box = model.auto_crop().box() if axis in _AXES and model else model.box()
    number = _AXES.find(axis)
    return (box.lower[number] + box.upper[number]) // 2


# ---- A small picture for notebooks, without Matplotlib

def thumbnail(model: Model, most: int = 120) -> str:
    """The plan of a model as SVG: the darker, the more of a column is filled."""
    plan = _filled_of_columns(model, most)[::-1]
    shades = np.ceil(4 * plan / max(plan.max(initial=0), 1)).astype(int)
    height, width = shades.shape
    scale = max(1, most // max(shades.shape))
    paths = "".join(f'<path fill="{colour}" d="{_outlines(shades == shade)}"/>'
                    for shade, colour in enumerate(("#b9cfe4", "#7fa6cb", "#44749f", "#1d4468"), start=1))
    return f'<svg width="{width * scale}" height="{height * scale}" viewBox="0 0 {width} {height}" shape-rendering="crispEdges">{paths}</svg>'


def _outlines(mask: Any) -> str:
    changes = np.diff(np.pad(mask, ((0, 0), (1, 1))).astype(np.int8), axis=1)
    rows, begins = np.nonzero(changes == 1)
    ends = np.nonzero(changes == -1)[1]
    return "".join(f"M{begin} {row}h{end - begin}v1H{begin}z" for row, begin, end in zip(rows, begins, ends))


def _filled_of_columns(model: Model, most: int) -> Any:
    """How many voxels of each column are filled, at the finest level that is at most so wide; at level 0, of several columns."""
    cropped = model.auto_crop()
    level = max((level for level in range(model.finest_level + 1) if max(cropped.box(level).shape[1:]) <= most), default=0)
    box, runs = cropped.box(level), cropped.runs(level)
    depth, width = box.shape[1:]
    begin, end, y = runs[:, 0] - box.lower[0], runs[:, 1] + 1 - box.lower[0], runs[:, 2] - box.lower[1]
    changes = np.zeros((depth, width + 1), dtype=np.int64)
    np.add.at(changes, (y, begin), 1)
    np.add.at(changes, (y, end), -1)
    step = -(-max(depth, width) // most)
    counts = np.add.reduceat(changes.cumsum(axis=1)[:, :-1], np.arange(0, depth, step), axis=0)
    return np.add.reduceat(counts, np.arange(0, width, step), axis=1)
