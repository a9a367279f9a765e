"""What the Python package costs beside the engine alone, and operations beside those of NumPy and SciPy on the same arrays:

  compare.py BUILD_FOLDER [--rounds N] [--side VOXELS]     prints tables; needs an installed brix, NumPy and SciPy

Both sides of a line take turns, and medians are printed, in milliseconds of processor time (of the clock for threads). "arrays" is what the same takes from an array of bool to an
array of bool. Results are compared; a difference ends the run. Meshes of others stand in ../shared/data beside the checkout, as for the
other benchmarks; without them the generated scenes are measured alone.
"""
import argparse
import os
import statistics
import subprocess
import sys
import tempfile
import threading
import time
from pathlib import Path

import numpy as np
from scipy import ndimage

import brix

ROOT = Path(__file__).resolve().parents[3]
BOX = np.ones((3, 3, 3), dtype=bool)


def milliseconds(work, clock=time.process_time):
    began = clock()
    result = work()
    return 1000 * (clock() - began), result


def medians(rounds, *works, slow=5000, clock=time.process_time):
    """Medians of works that take turns, and their results of the last round; one round where one of them is slow."""
    times = [[] for _ in works]
    for _ in range(rounds):
        results = []
        for work, found in zip(works, times):
            taken, result = milliseconds(work, clock)
            found.append(taken)
            results.append(result)
        if max(max(found) for found in times) > slow:
            break
    return [statistics.median(found) for found in times], results


def in_order(number):
    return f"{number:.3g}" if number < 1000 else f"{number:.0f}"


# ---- Voxelization beside the engine alone

def voxelization(build, path, voxel, rounds):
    """Rounds of the engine's program and of Python by turns, process by process."""
    triangles = brix.read_stl(path).triangles
    vertices, faces = brix.index(triangles)
    works = {"triangles": lambda: brix.voxelize(triangles, voxel=voxel), "mesh": lambda: brix.voxelize(vertices, faces, voxel=voxel)}
    alone, here, counts = {}, {}, {}
    for _ in range(rounds):
        output = subprocess.run([build / "brix_python_engine_alone", path, repr(voxel), "4"], check=True, stdout=subprocess.PIPE,
                                encoding="utf-8").stdout
        for line in output.splitlines()[2:]:  # the first round of each is left out
            name, taken, count = line.split()
            alone.setdefault(name, []).append(float(taken))
            counts[name] = int(count)
        for round_ in range(4):
            for name, work in works.items():
                taken, model = milliseconds(work)
                assert len(model) == counts[name]
                if round_ > 0:
                    here.setdefault(name, []).append(taken)
    print(f"\nVoxelization of {len(triangles)} triangles, {counts['mesh']} voxels\n\n{'':34}engine   Python    ratio")
    for name, label in (("triangles", "triangles (n, 3, 3) of float64"), ("mesh", "float64 vertices, int32 faces")):
        first, second = statistics.median(alone[name]), statistics.median(here[name])
        print(f"{label:32}{first:8.1f} {second:8.1f} {second / first:8.3f}")
    for label, work in (("float32 vertices, int64 faces", lambda: brix.voxelize(vertices.astype(np.float32), faces.astype(np.int64), voxel=voxel)),):
        print(f"{label:32}         {statistics.median(milliseconds(work)[0] for _ in range(3 * rounds)):8.1f}")


# ---- Operations beside SciPy

def grown(model, voxels):
    sides = dict(adjust_box=False)
    return model.expand_along_x(voxels, voxels, **sides).expand_along_y(voxels, voxels, **sides).expand_along_z(voxels, voxels, **sides)


def other_of(array):
    return np.roll(array, (5, 7, 11), axis=(0, 1, 2))


def operations(array):
    """Name, the work of SciPy or NumPy, that of brix on a model, and whether their results are the same."""
    second, model_second = other_of(array), brix.Model.from_numpy(other_of(array))
    same = lambda expected, model: np.array_equal(expected, model.to_numpy())  # noqa: E731
    yield "union (NumPy)", lambda: array | second, lambda model: model | model_second, same
    yield "growth by 1", lambda: ndimage.binary_dilation(array, BOX), lambda model: grown(model, 1), same
    yield ("growth by 16 (maximum_filter)", lambda: ndimage.maximum_filter(array.view(np.uint8), 33, mode="constant").view(bool),
           lambda model: grown(model, 16), same)
    yield "fill (by label)", lambda: filled_by_label(array), lambda model: model.fill_enclosed(), same
    yield "fill (binary_fill_holes)", lambda: ndimage.binary_fill_holes(array), lambda model: model.fill_enclosed(), same
    yield "labels (brix: an array)", lambda: ndimage.label(array), lambda model: model.label(), lambda expected, found: expected[1] == found[1]
    yield "labels (brix: models)", lambda: ndimage.label(array), lambda model: model.split(), lambda expected, found: expected[1] == len(found)


def filled_by_label(array):
    """What binary_fill_holes gives, in much less time: all but the empty regions that reach a face of the array."""
    labels, count = ndimage.label(~array)
    outside = np.zeros(count + 1, dtype=bool)
    for face in (labels[0], labels[-1], labels[:, 0], labels[:, -1], labels[:, :, 0], labels[:, :, -1]):
        outside[np.unique(face)] = True
    outside[0] = False
    return ~outside[labels]


def to_array(result):
    return result.to_numpy() if isinstance(result, brix.Model) else result


def scene(name, model, rounds):
    array = model.auto_crop().to_numpy()
    model = brix.Model.from_numpy(array)
    (there, back), _ = medians(rounds, lambda: brix.Model.from_numpy(array), model.to_numpy)
    print(f"\n{name}: {' x '.join(map(str, array.shape[::-1]))} voxels, {len(model)} filled; from an array {there:.1f}, to one {back:.1f}\n")
    print(f"{'':32}   SciPy     brix    ratio   arrays    ratio")
    for label, work, on_model, same in operations(array):
        (theirs, ours), results = medians(rounds, work, lambda: on_model(model))
        assert same(*results), (name, label)
        del results
        line = f"{label:32}{in_order(theirs):>8} {in_order(ours):>8} {in_order(theirs / ours):>8}"
        if label != "labels (brix: models)":
            (whole,), _ = medians(rounds, lambda: to_array(on_model(brix.Model.from_numpy(array))))
            line += f" {in_order(whole):>8} {in_order(theirs / whole):>8}"
        print(line, flush=True)


# ---- Threads

def threads(models, rounds):
    """One after the other, each on a thread of its own, and, as nothing could be faster, each in a process of its own."""
    def work(model):
        for _ in range(8):
            grown(model, 16).fill_enclosed()

    def together():
        started = [threading.Thread(target=work, args=(model,)) for model in models]
        for thread in started:
            thread.start()
        for thread in started:
            thread.join()

    def apart():
        started = [os.fork() for _ in models[1:]]
        work(models[0] if all(started) else models[-1])
        if not all(started):
            os._exit(0)
        for process in started:
            os.waitpid(process, 0)

    (alone, both, best), _ = medians(rounds, lambda: [work(model) for model in models], together, apart, clock=time.perf_counter)
    print(f"\nGrowth by 16 and a fill of two models, eight times: one after the other {alone:.0f}, on two threads {both:.0f}, in two "
          f"processes {best:.0f}")


def icosphere(subdivisions):
    golden = (1 + 5 ** 0.5) / 2
    points = np.array([(-1, golden, 0), (1, golden, 0), (0, 1, golden)])
    points = np.concatenate([np.roll(sign * points[:2], shift, axis=1) for shift in range(3) for sign in (1, -1)])
    from scipy.spatial import ConvexHull
    triangles = points[ConvexHull(points).simplices]
    for _ in range(subdivisions):
        a, b, c = np.moveaxis(triangles, 1, 0)
        middles = (a + b) / 2, (b + c) / 2, (c + a) / 2
        triangles = np.concatenate([np.stack(part, axis=1) for part in ((a, middles[0], middles[2]), (middles[0], b, middles[1]),
                                                                        (middles[2], middles[1], c), middles)])
    return triangles / np.linalg.norm(triangles, axis=2, keepdims=True)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build", type=Path)
    parser.add_argument("--rounds", type=int, default=5)
    parser.add_argument("--side", type=int, default=512)
    options = parser.parse_args()
    build, rounds = options.build.resolve(), options.rounds
    program = build / "tools/brix/brix"
    subprocess.run(["cmake", "--build", build, "--target", "brix_python_engine_alone", "brix"], check=True, stdout=subprocess.DEVNULL)
    print(f"{os.cpu_count()} processors, load when it began {os.getloadavg()[0]:.1f}; Python {sys.version.split()[0]}, NumPy {np.__version__}, "
          f"SciPy {__import__('scipy').__version__}, brix {brix.__version__}")
    with tempfile.TemporaryDirectory() as folder:
        city = Path(folder, "city.stl")
        subprocess.run([program, "scene", "city", "--triangles", "1000000", "-o", city], check=True, stdout=subprocess.DEVNULL)
        others = {"bunny": "stanford-bunny.stl", "rocker-arm, solid": "rocker-arm.stl"}
        scenes = {name: ROOT.parent / "shared" / "data" / file for name, file in others.items()}
        scenes = {"city": city, **{name: path for name, path in scenes.items() if path.exists()}}
        models = {}
        for name, path in scenes.items():
            file = brix.read_stl(path)
            lower, upper = np.array(file.bounds)
            voxel = float((upper - lower).max() / options.side)
            if name == "city":
                voxelization(build, path, voxel, rounds)
            models[name] = brix.voxelize(file, voxel=voxel)
        for name in [name for name in models if name.endswith("solid")]:
            models[name] = models[name].fill_enclosed()
    sphere = icosphere(5)
    print(f"\nAn icosphere of {len(sphere)} triangles at 128 voxels: "
          f"{statistics.median(milliseconds(lambda: brix.voxelize(sphere, voxel=2 / 128).fill_enclosed())[0] for _ in range(5)):.1f}, filled")
    largest = max(models.values(), key=lambda model: len(model.box()))
    threads([largest, largest.enlarge()], rounds)
    for name, model in models.items():
        scene(name, model, rounds)


main()
