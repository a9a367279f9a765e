"""Voxels of buildings and cities, as arrays: an exact voxel geometry engine for NumPy.

    house = brix.read_stl("house.stl")                          # triangles
    model = brix.voxelize(house, voxel=0.1)                     # voxels that they touch
    solid = model.fill_enclosed() - model                       # what they enclose
    solid.to_numpy()                                            # as an array of bool, in the order z, y, x

World coordinates and distances are floats in the host's units; voxels are indices x, y, z at a level of detail, 0 (coarsest) to 5
(finest). What counts voxels says so by its name. Objects never change, and may be used by several threads; while the engine works, other
threads run.

Arguments that break a rule are a ValueError with the engine's sentence, files an OSError, memory a MemoryError; Ctrl-C ends a running
operation.
"""
from ._build import VERSION as __version__
from .booleans import density_map
from .fills import Leak
from .frame import Box, Frame
from .memory import memory_limit, set_memory_limit
from .model import Model
from .stl import StlFile, read_stl, write_stl
from .travel import DistanceField, Path, PathModel
from .triangles import corners, index, normals, voxelize

__all__ = ["Box", "DistanceField", "Frame", "Leak", "Model", "Path", "PathModel", "StlFile", "__version__", "corners", "density_map",
           "index", "memory_limit", "normals", "read_stl", "set_memory_limit", "voxelize", "write_stl"]
