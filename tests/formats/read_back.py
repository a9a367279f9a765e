"""What brix convert writes, read by NumPy, Pillow, Python's own gzip and JSON, and by the descriptions of NRRD and VOX: the same
voxels by every way.

    read_back.py BRIX
"""
import gzip
import json
import pathlib
import struct
import subprocess
import sys
import tempfile

import numpy

try:
    from PIL import Image
except ImportError:
    Image = None

brix = pathlib.Path(sys.argv[1]).resolve()


def run(*words):
    return json.loads(subprocess.run([brix, *words, "--json"], check=True, capture_output=True, text=True).stdout)


def volume(path):
    header, data = path.read_bytes().split(b"\n\n", 1)
    fields = dict(line.split(": ", 1) for line in header.decode().splitlines()[1:])
    assert fields["type"] == "uint8" and fields["encoding"] in ("raw", "gzip"), fields
    data = gzip.decompress(data) if fields["encoding"] == "gzip" else data
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


def pictures(folder):
    names = sorted(path.name for path in folder.iterdir())
    assert names == [f"layer-{layer:04}.png" for layer in range(len(names))], names
    layers = [Image.open(folder / name) for name in names]
    assert {picture.mode for picture in layers} == {"L"}
    stack = numpy.array([numpy.asarray(picture)[::-1] for picture in layers]) # the uppermost row has the greatest y
    assert set(numpy.unique(stack)) <= {0, 255}
    return stack // 255


def chunks(data, place, end):
    while place < end:
        name, size, children = data[place:place + 4], *struct.unpack_from("<ii", data, place + 4)
        yield name, data[place + 12:place + 12 + size], place + 12 + size
        place += 12 + size + children
    assert place == end


class Words:
    def __init__(self, data):
        self.data, self.place = data, 0

    def number(self):
        self.place += 4
        return struct.unpack_from("<i", self.data, self.place - 4)[0]

    def text(self):
        size = self.number()
        self.place += size
        return self.data[self.place - size:self.place].decode()

    def dictionary(self):
        return {self.text(): self.text() for _ in range(self.number())}


def scene(path, shape):
    """The models of a .vox file where its nodes place them."""
    data = path.read_bytes()
    assert data[:4] == b"VOX " and data[8:12] == b"MAIN" and struct.unpack_from("<i", data, 12)[0] == 0
    sizes, voxels, nodes = [], [], {}
    for name, content, _ in chunks(data, 20, 20 + struct.unpack_from("<i", data, 16)[0]):
        words = Words(content)
        if name == b"SIZE":
            sizes.append(numpy.frombuffer(content, "<i4"))
        elif name == b"XYZI":
            assert words.number() == (len(content) - 4) // 4
            voxels.append(numpy.frombuffer(content, numpy.uint8, offset=4).reshape(-1, 4))
        else:
            number, attributes = words.number(), words.dictionary()
            if name == b"nTRN":
                child, reserved, layer, frames = (words.number() for _ in range(4))
                assert (reserved, frames) == (-1, 1)
                nodes[number] = ("move", child, [int(n) for n in words.dictionary().get("_t", "0 0 0").split()])
            elif name == b"nGRP":
                nodes[number] = ("group", [words.number() for _ in range(words.number())])
            elif name == b"nSHP":
                assert words.number() == 1
                nodes[number] = ("shape", words.number())
            assert words.place == len(content) or name == b"nSHP"
    assert len(sizes) == len(voxels) and all(max(size) <= 256 for size in sizes), sizes
    filled = numpy.zeros(shape, numpy.uint8)
    centre = numpy.array([(shape[2] + 1) // 2, (shape[1] + 1) // 2, 0])

    def place(number, at):
        kind, *rest = nodes[number]
        if kind == "move":
            place(rest[0], at + numpy.array(rest[1]))
        elif kind == "group":
            for child in rest[0]:
                place(child, at)
        else:
            model = rest[0]
            x, y, z = (voxels[model][:, :3] + at - sizes[model] // 2 + centre).T
            assert (voxels[model][:, :3] < sizes[model]).all() and not filled[z, y, x].any()
            filled[z, y, x] = 1
            placed.append(model)

    placed = []
    place(0, numpy.zeros(3, int))
    assert sorted(placed) == list(range(len(sizes)))
    return filled, len(sizes)


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

    packed, zipped, vox = (house.with_name(name) for name in ("packed.npy", "zipped.nrrd", "house.vox"))
    run("convert", str(files[".brix"]), str(packed), str(zipped), "--level", "3", "--pack-bits", "--gzip")
    assert numpy.array_equal(numpy.unpackbits(numpy.load(packed), axis=2, count=array.shape[2]), array)
    assert numpy.array_equal(volume(zipped), array) and zipped.stat().st_size < files[".nrrd"].stat().st_size / 10

    # Fine enough that .vox needs parts along x and y.
    run("convert", str(house), str(vox), str(files[".npy"]), "--voxel", "0.05", "--origin", "0.01", "0.02", "0.03")
    fine = numpy.load(files[".npy"])
    placed, models = scene(vox, fine.shape)
    assert models == 4 and numpy.array_equal(cropped(placed), cropped(fine)), models
    assert numpy.array_equal(placed[0], fine[0]), "it stands on its lowest layer"
    if Image:
        run("convert", str(house), f"{folder}/layers/", "--voxel", "0.05", "--origin", "0.01", "0.02", "0.03")
        assert numpy.array_equal(pictures(house.with_name("layers")), fine)

    for level, count in filled.items(): # of the saved model, whose levels are all there
        again = house.with_name(f"level{level}.npy")
        run("convert", str(files[".brix"]), str(again), "--level", str(level))
        assert int(numpy.load(again).sum()) == count, level
    print(f"{filled[3]} voxels, the same by every way")
