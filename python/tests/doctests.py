"""The example in every docstring of the module."""

import doctest
import inspect
import pathlib
import re

import numpy as np
import pytest

import jorm

FUNCTIONS = [n for n in dir(jorm) if inspect.isbuiltin(getattr(jorm, n))]


def run(text, name, **known):
    test = doctest.DocTestParser().get_doctest(text, {"np": np, "jorm": jorm, **known}, name, None, None)
    complaints = []
    doctest.DocTestRunner().run(test, out=complaints.append)
    assert not complaints, "".join(complaints)


@pytest.mark.parametrize("name", FUNCTIONS)
def test_example(name):
    function = getattr(jorm, name)
    text = inspect.getdoc(function)
    assert ">>>" in text
    for parameter in inspect.signature(function).parameters:  # every one is told of
        assert re.search(rf"^(\w+, )*{parameter}(, \w+)* : ", text, re.M), parameter
    run(text, name)


def test_tiles():
    da = pytest.importorskip("dask.array")
    tiles = pytest.importorskip("jorm.tiles")
    for name in ("add", "mser"):
        run(inspect.getdoc(getattr(tiles, name)), name, da=da, tiles=tiles)


def test_readme():
    readme = pathlib.Path(__file__).resolve().parents[2] / "README.md"
    (lines,) = re.findall(r"^```python\n(.*?)^```", readme.read_text(), re.M | re.S)
    names = {}
    exec(lines, names)
    assert (names["smooth"] == jorm.add(jorm.gaussian(names["a"], sigma=2), 20)).all()
