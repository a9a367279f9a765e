"""What calls of the engine share: errors, memory, signals, threads, lifetimes, versions."""
import contextlib
import gc
import os
import pickle
import re
import shutil
import signal
import subprocess
import sys
import threading
import time
from pathlib import Path

import numpy as np
import pytest
from models import model_of

import brix


def noise(side):
    """Slow to work with for its size."""
    return brix.Model.from_numpy(np.random.default_rng(1).random((side, side, side)) < 0.3)


def test_memory_is_limited_and_told():
    model = noise(64)
    brix.set_memory_limit(1000)
    try:
        with pytest.raises(MemoryError, match=r"About .* of memory would be needed for the expanded voxel model; the limit is 1 KB."):
            model.expand_horizontally(9)
        with pytest.raises(MemoryError):
            model.to_numpy()
    finally:
        brix.set_memory_limit(float("inf"))
    with pytest.raises(MemoryError):
        brix.Model(brix.Box(brix.Frame(1), (0, 0, 0), (99999, 99999, 99999))).to_numpy()


@contextlib.contextmanager
def soon(action, seconds):
    """Does something in a while, and gives the time when it did."""
    at = []
    timer = threading.Timer(seconds, lambda: (at.append(time.perf_counter()), action()))
    timer.start()
    try:
        yield at
    finally:
        timer.cancel()
        timer.join()


@pytest.mark.parametrize("work", [
    lambda model: model.expand_horizontally(1999),
    lambda model: model.fill_enclosed() | model.split()[0],
    lambda model: [model.tessellate() for _ in range(99)],
    lambda model: model.runs(),
], ids=["growth", "regions", "triangles", "runs"])
def test_ctrl_c_ends_a_running_operation_within_a_tenth_of_a_second(work):
    model = noise(220)
    with soon(lambda: signal.raise_signal(signal.SIGINT) if os.name == "nt" else os.kill(os.getpid(), signal.SIGINT), 0.15) as at:
        with pytest.raises(KeyboardInterrupt):
            for _ in range(99):
                work(model)
        late = time.perf_counter() - at[0]
    assert late < 0.1
    assert len(model) == len(model.filled())


def test_what_a_signals_handler_raises_ends_the_operation_and_what_it_does_not_raise_does_not():
    class Alarm(Exception):
        pass

    seen = []

    def handle(number, frame):
        seen.append(len(model_of(np.ones((2, 2, 2)))))  # the engine can be used in it
        if len(seen) == 2:
            raise Alarm

    previous = signal.signal(signal.SIGALRM, handle)
    signal.setitimer(signal.ITIMER_REAL, 0.1, 0.2)
    try:
        with pytest.raises(Alarm):
            for _ in range(99):
                noise(220).expand_horizontally(1999)
    finally:
        signal.setitimer(signal.ITIMER_REAL, 0)
        signal.signal(signal.SIGALRM, previous)
    assert seen == [8, 8]


def test_other_threads_run_while_the_engine_works():
    ticks, done = [], threading.Event()

    def tick():
        while not done.wait(0.005):
            ticks.append(time.perf_counter())

    thread = threading.Thread(target=tick)
    thread.start()
    for side in (60, 100, 160, 240):  # until one call takes long
        model = noise(side)
        began = time.perf_counter()
        model.tessellate()
        ended = time.perf_counter()
        if ended - began > 0.2:
            break
    done.set()
    thread.join()
    assert sum(began < at < ended for at in ticks) > 2


def test_several_threads_use_one_model():
    model = noise(60)
    expected, results = model.expand_horizontally(9), []
    threads = [threading.Thread(target=lambda: results.append(model.expand_horizontally(9) == expected)) for _ in range(8)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert results == [True] * 8


def resident():
    """Bytes of memory that the process holds."""
    return int(Path("/proc/self/statm").read_text().split()[1]) * os.sysconf("SC_PAGE_SIZE")


@pytest.mark.skipif(not Path("/proc/self/statm").exists(), reason="reads Linux's figures")
def test_memory_is_given_back_by_collection_and_by_with():
    array = np.random.default_rng(1).random((128, 128, 128)) < 0.5
    brix.Model.from_numpy(array)
    before = resident()
    for _ in range(40):
        brix.Model.from_numpy(array)
        with brix.Model.from_numpy(array) as model:
            kept = model
        with pytest.raises(ValueError, match="This Model was closed."):
            len(kept)
    gc.collect()
    assert resident() - before < 20 * array.size / 8
    assert repr(kept) == "Model(closed)"


def test_a_model_that_is_closed_during_a_call_lives_until_its_end():
    model = noise(130)
    expected = len(model.tessellate())
    with soon(model.close, 0.02) as at:
        assert len(model.tessellate()) == expected and len(at) == 1
    with pytest.raises(ValueError):
        len(model)


def test_objects_keep_what_they_are_made_of():
    box = brix.Box(brix.Frame(0.5, rotation=30), (0, 1, 2), (3, 4, 5))
    model = brix.Model(box)
    for thing in (box, box.frame, model):
        again = pickle.loads(pickle.dumps(thing))
        assert again == thing and hash(again) == hash(thing) and again != "another" and type(again) is type(thing)
    assert model.frame == box.frame and model.box() == box and not model and (box == box.at_level(3)) is False
    assert eval(repr(box.frame), {"Frame": brix.Frame}) == box.frame


@pytest.mark.parametrize("change, sentence", [
    ("VERSION = '9.9.9'", "brix 9.9.9 needs its native library of version 9.9.9 with ABI version 1, but .* is version 0.1.0 with ABI version 1"),
    ("LIBRARY = 'none.so'", "The native library of brix .* cannot be loaded: .*none.so"),
])
def test_another_library_is_refused_on_import(tmp_path, change, sentence):
    package = Path(brix.__file__).parent
    shutil.copytree(package, tmp_path / "brix")
    with open(tmp_path / "brix" / "_build.py", "a", encoding="utf-8") as file:
        file.write(change + "\n")
    result = subprocess.run([sys.executable, "-c", "import brix"], cwd=tmp_path, env={**os.environ, "PYTHONPATH": str(tmp_path)},
                            stderr=subprocess.PIPE, encoding="utf-8")
    assert result.returncode == 1
    assert re.search("ImportError: " + sentence, result.stderr)
