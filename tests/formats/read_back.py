"""What brix convert writes, read by NumPy and by Python's own JSON: the same voxels by every way.

    read_back.py BRIX
"""
import json
import pathlib
import subprocess
import sys
import tempfile

import numpy

brix = pathlib.Path(sys.argv[1]).resolve()


def run(*words):
    return json.loads(subprocess.run([brix, *words, "--json"], check=True, capture_output=True, text=True).stdout)


def volume(path):
    header, data = path.read_bytes().split(b"\n\n", 1)
    fields = dict(line.split(": ", 1) for line in header.decode().splitlines()[1:])
    assert fields["type"] == "uint8" and fields["encoding"] == "raw", fields
    x, y, z = map(int, fields["sizes"].split())
    return numpy.frombuffer(data, numpy.uint8).reshape(z, y, x)


def boxes(path, shape):
    content = json.loads(path.read_text())
    lists = numpy.array(content["cuboids"])
    lower = lists[:, :3].min(axis=0)
    filled = numpy.zeros(shape, numpy.uint8)
    for x0, y0, z0, x1, y1, z1 in lists.tolist():
        part = filled[z0 - lower[2]:z1 - lower[2] + 1, y0 - lower[1]:y1 - lower[1] + 1, x0 - lower[0]:x1 - lower[0] + 1]
        assert not part.any(), "boxes overlap"
        part[:] = 1
    return filled


def cropped(voxels):
    places = numpy.argwhere(voxels)
    lower, upper = places.min(axis=0), places.max(axis=0) + 1
    return voxels[lower[0]:upper[0], lower[1]:upper[1], lower[2]:upper[2]]


with tempfile.TemporaryDirectory() as folder:
    house = pathlib.Path(folder) / "house.stl"
    files = {ending: house.with_suffix(ending) for ending in (".brix", ".npy", ".nrrd", ".json")}
    run("scene", "building", "-o", str(house))
    report = run("convert", str(house), *map(str, files.values()), "--voxel", "0.2", "--lod", "3")
    filled = {step["level"]: step["filled"] for step in report["steps"] if "filled" in step}

    array = numpy.load(files[".npy"])
    assert array.dtype == numpy.uint8 and int(array.sum()) == filled[3], (array.sum(), filled)
    assert numpy.array_equal(volume(files[".nrrd"]), array)
    around = cropped(array)
    assert numpy.array_equal(boxes(files[".json"], around.shape), around)

    for level, count in filled.items(): # of the saved model, whose levels are all there
        again = house.with_name(f"level{level}.npy")
        run("convert", str(files[".brix"]), str(again), "--level", str(level))
        assert int(numpy.load(again).sum()) == count, level
    print(f"{filled[3]} voxels, the same by every way")
