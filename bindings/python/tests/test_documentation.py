"""The examples of the documentation run, and every public function and class has documentation."""
import doctest
import importlib
import inspect
import math
import os
import pkgutil
import re
import subprocess
from pathlib import Path

import numpy as np
import pytest

import brix

MODULES = [importlib.import_module(f"brix.{module.name}") for module in pkgutil.iter_modules(brix.__path__)]


@pytest.mark.parametrize("module", MODULES, ids=lambda module: module.__name__)
def test_examples_run(module, tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    result = doctest.testmod(module, extraglobs={"brix": brix, "np": np, "math": math})
    assert result.failed == 0


def public():
    """Public functions and classes, and the public members of these, by name."""
    for name in brix.__all__:
        thing = getattr(brix, name)
        if callable(thing):
            yield name, thing
        for member, value in inspect.getmembers(thing) if inspect.isclass(thing) and issubclass(thing, brix._objects.EngineObject) else ():
            if not member.startswith("_"):
                yield f"{name}.{member}", value


@pytest.mark.parametrize("name, thing", list(public()), ids=lambda value: value if isinstance(value, str) else "")
def test_everything_public_is_documented_and_shown(name, thing):
    text = inspect.getdoc(thing) or ""
    assert text[:1].isupper() or text[:1] in ("`", "\""), name
    assert ">>> " in text or isinstance(thing, property) or name.startswith("Leak"), name  # properties are shown by their classes


ROOT = Path(__file__).resolve().parents[3]


@pytest.mark.skipif("BRIX_PROGRAM" not in os.environ, reason="the documents begin with a house of the program's")
@pytest.mark.parametrize("document", ["README.md", "docs/python.md"])
def test_the_documents_samples_run(document, tmp_path, monkeypatch, capsys):
    pytest.importorskip("matplotlib")
    monkeypatch.chdir(tmp_path)
    subprocess.run([os.environ["BRIX_PROGRAM"], "scene", "building", "-o", "house.stl"], check=True, stdout=subprocess.DEVNULL)
    samples = re.findall(r"^```python\n(.*?)^```$", (ROOT / document).read_text(encoding="utf-8"), re.MULTILINE | re.DOTALL)
    assert samples
    for sample in samples:
        exec(compile(sample, document, "exec"), {})
    printed = capsys.readouterr().out
    for line in re.findall(r"^# prints: (.*)$", "\n".join(samples), re.MULTILINE):
        assert line in printed
    assert all(path.stat().st_size > 10_000 for path in tmp_path.glob("*.png"))
