"""From triangles to models."""
from __future__ import annotations

from typing import Any, Optional, Tuple

import numpy as np
from numpy.typing import ArrayLike, NDArray

from ._arrays import Faces, Floats, arrays_of_mesh, numbers, pointer, rows, triangles_of
from ._native import call, lib, make
from .frame import DEFAULT_LEVEL, Box, Frame
from .model import Model


def voxelize(vertices: ArrayLike, faces: Optional[ArrayLike] = None, *, voxel: Optional[float] = None, frame: Optional[Frame] = None,
             level: int = DEFAULT_LEVEL, box: Optional[Box] = None) -> Model:
    """The voxels that triangles touch, as a model: exactly, of a surface that need not be closed.

    vertices    world points as an array (n, 3) of float64 or float32, of which faces are made; or, without faces, triangles as an
                array (n, 3, 3)
    faces       three indices of vertices for each triangle, as an array (m, 3) of whole numbers
    voxel       width of a voxel at `level`, in world units; or
    frame       the model's frame
    level       the finest level of the model
    box         the model's box, at any level of its frame; without one, the smallest of level 0 that holds all triangles

    Contiguous arrays of float64, or of float32 with faces of int32, are read as they lie; others are converted once.

    >>> tetrahedron = [[0, 0, 0], [1, 0, 0], [0, 1, 0], [0, 0, 1]], [[0, 2, 1], [0, 1, 3], [0, 3, 2], [1, 2, 3]]
    >>> brix.voxelize(*tetrahedron, voxel=0.1)
    Model(409 filled voxels of 32 x 32 x 11 at level 4, 0.1 wide)
    """
    if (voxel is None) == (frame is None and box is None):
        raise ValueError("A voxel's width, a frame or a box must be given, and not a width beside one of the others.")
    if box is not None:
        return _voxelize_in_box(triangles_of(vertices if faces is None else corners(vertices, faces)), box, level)
    chosen = frame or Frame(voxel or 0.0, level=level)
    if faces is None:
        triangles = triangles_of(vertices)
        return Model._of(make("model", lib.brix_voxelize, chosen._pointer, pointer(triangles), len(triangles), level))
    points, indices = _mesh_of(vertices, faces)
    function = lib.brix_voxelize_float_mesh if points.dtype == np.float32 else lib.brix_voxelize_mesh
    return Model._of(make("model", function, chosen._pointer, pointer(points), len(points), pointer(indices), len(indices), level))


def _voxelize_in_box(triangles: Floats, box: Box, level: int) -> Model:
    return Model._of(make("model", lib.brix_model_from_triangles, pointer(triangles), len(triangles), box._pointer, level))


def _mesh_of(vertices: ArrayLike, faces: ArrayLike) -> Tuple[NDArray[Any], Faces]:
    array = numbers(vertices, "vertices")
    points = rows(array, "vertices", np.float32 if array.dtype == np.float32 else np.float64).reshape(-1, 3)
    return points, rows(faces, "faces", np.int32).reshape(-1, 3)


def corners(vertices: ArrayLike, faces: ArrayLike) -> Floats:
    """The triangles of an indexed mesh as an array (m, 3, 3).

    >>> brix.corners([[0, 0, 0], [1, 0, 0], [0, 1, 0]], [[0, 1, 2]]).shape
    (1, 3, 3)
    """
    points, indices = _mesh_of(vertices, faces)
    if indices.size and not 0 <= int(indices.min()) <= int(indices.max()) < len(points):
        raise ValueError(f"The indices of faces must lie between 0 and {len(points) - 1}.")
    return points[indices].astype(np.float64)


def index(triangles: ArrayLike) -> Tuple[Floats, Faces]:
    """Triangles (n, 3, 3) as vertices (v, 3) and faces (n, 3): corners that are equal become one vertex.

    >>> vertices, faces = brix.index(np.zeros((2, 3, 3)))
    >>> vertices.shape, faces.shape
    ((1, 3), (2, 3))
    """
    array = triangles_of(triangles)
    return arrays_of_mesh(make("mesh", lib.brix_mesh_from_triangles, pointer(array), len(array)))


def normals(triangles: ArrayLike) -> Floats:
    """Unit normals of triangles (n, 3, 3) as an array (n, 3); zero for a triangle without area.

    >>> brix.normals([[[0, 0, 0], [2, 0, 0], [0, 2, 0]]])
    array([[0., 0., 1.]])
    """
    array = triangles_of(triangles)
    result = np.empty((len(array), 3))
    call(lib.brix_triangle_normals, pointer(array), len(array), pointer(result))
    return result
