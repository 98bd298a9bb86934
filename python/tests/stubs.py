"""The stubs name what the module has, with the same parameters and defaults; a type checker accepts them."""

import ast
import inspect
import pathlib
import subprocess
import sys

import pytest

import jorm

STUBS = pathlib.Path(jorm.__file__).with_name("__init__.pyi")
TREE = ast.parse(STUBS.read_text())

USE = """
import numpy as np
import jorm

a = np.zeros((4, 6), np.uint8)
jorm.add(a, 3, out=a, shift=-1, region=(0, 0, 2, 2))
jorm.compare(a, a, "<", if_true=(1, 2, 3))
jorm.gaussian(a, (3, 5), sigma=1.5, region=np.s_[0:2, 1:3])
regions, pixels = jorm.mser(a, pixels=True)
jorm.mser(a).area.sum()
labels, tree = jorm.watershed(a)
x: float = jorm.ellipse(np.zeros((3, 2), np.int32)).centre[0]
try:
    jorm.erode(a, np.ones((3, 3)))
except jorm.Error as e:
    print(e.status + 1)
"""
MISUSE = """
import numpy as np
import jorm

jorm.compare(np.zeros((4, 6)), 3, "=<")
jorm.add(np.zeros((4, 6)), 3, saturated=True)
"""


def test_names():
    names = {n.name for n in TREE.body if isinstance(n, (ast.FunctionDef, ast.ClassDef))}
    public = {n for n in dir(jorm) if not n.startswith("_") and not inspect.ismodule(getattr(jorm, n))}
    assert names == public


@pytest.mark.parametrize("stub", [n for n in TREE.body if isinstance(n, ast.FunctionDef)], ids=lambda n: n.name)
def test_parameters(stub):
    theirs = inspect.signature(getattr(jorm, stub.name)).parameters
    a = stub.args
    assert [x.arg for x in a.args + a.kwonlyargs] == list(theirs)
    assert [x.arg for x in a.kwonlyargs] == [n for n, p in theirs.items() if p.kind is p.KEYWORD_ONLY]
    for name, default in list(zip([x.arg for x in a.args][::-1], a.defaults[::-1])) + [
        (x.arg, d) for x, d in zip(a.kwonlyargs, a.kw_defaults) if d
    ]:
        assert theirs[name].default == ast.literal_eval(default)


def test_checker(tmp_path):
    pytest.importorskip("mypy")
    results = {}
    for name, text in (("use", USE), ("misuse", MISUSE)):
        source = tmp_path / f"{name}.py"
        source.write_text(text)
        results[name] = subprocess.run(
            [sys.executable, "-m", "mypy", "--strict", "--cache-dir", tmp_path, source],
            env={"MYPYPATH": str(STUBS.parents[1])}, cwd=tmp_path, capture_output=True, text=True,
        )
    assert results["use"].returncode == 0, results["use"].stdout
    assert results["misuse"].stdout.count("error:") == 2, results["misuse"].stdout
