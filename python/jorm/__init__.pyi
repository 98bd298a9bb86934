"""Types of the module; what functions do stands in their docstrings."""

from typing import Any, Literal, NamedTuple, Sequence, Union, overload

import numpy as np
from numpy.typing import DTypeLike, NDArray

__version__: str

_Array = NDArray[Any]
_Number = Union[int, float, np.number[Any]]
_Numbers = Union[_Number, Sequence[_Number], _Array]
_Pair = tuple[_Number, _Number]
_Mask = Union[NDArray[np.uint8], NDArray[np.bool_], None]
_Region = Union[tuple[int, int, int, int], tuple[slice, slice], None]
_Size = Union[int, tuple[int, int], tuple[int, int, int]]
_Sigma = Union[_Number, _Pair, tuple[_Number, _Number, _Number]]
_Margin = Union[int, tuple[Union[int, tuple[int, int]], Union[int, tuple[int, int]]]]
_Operator = Literal["==", "!=", "<", "<=", ">", ">="]
_Border = Literal["reflect101", "reflect", "replicate", "wrap", "constant"]
_Records = np.recarray[Any, np.dtype[np.void]]

class Error(Exception):
    status: int

class InvalidError(Error, ValueError): ...
class UnsupportedError(Error, TypeError): ...
class OutOfMemoryError(Error, MemoryError): ...

class MinMax(NamedTuple):
    min: Any
    max: Any
    argmin: Any
    argmax: Any

class Moments(NamedTuple):
    xx: float
    xy: float
    yy: float

class Ellipse(NamedTuple):
    centre: tuple[float, float]
    axes: tuple[float, float]
    angle: float

def add(
    a: Union[_Array, _Numbers],
    b: Union[_Array, _Numbers],
    out: Union[_Array, None] = None,
    *,
    saturate: bool = True,
    shift: int = 0,
    region: _Region = None,
) -> _Array: ...
def subtract(
    a: Union[_Array, _Numbers],
    b: Union[_Array, _Numbers],
    out: Union[_Array, None] = None,
    *,
    saturate: bool = True,
    shift: int = 0,
    region: _Region = None,
) -> _Array: ...
def multiply(
    a: Union[_Array, _Numbers],
    b: Union[_Array, _Numbers],
    out: Union[_Array, None] = None,
    *,
    saturate: bool = True,
    shift: int = 0,
    region: _Region = None,
) -> _Array: ...
def divide(
    a: Union[_Array, _Numbers],
    b: Union[_Array, _Numbers],
    out: Union[_Array, None] = None,
    *,
    round: bool = True,
    shift: int = 0,
    region: _Region = None,
) -> _Array: ...
def muladd(
    a: _Array,
    b: Union[_Array, _Numbers],
    c: Union[_Array, _Numbers],
    out: Union[_Array, None] = None,
    *,
    shift: int = 0,
    region: _Region = None,
) -> _Array: ...
def convert(
    a: _Array,
    dtype: DTypeLike = None,
    out: Union[_Array, None] = None,
    *,
    gain: Union[_Numbers, None] = None,
    offset: Union[_Numbers, None] = None,
    to_range: Union[_Pair, None] = None,
    from_range: Union[_Pair, None] = None,
    region: _Region = None,
) -> _Array: ...
def compare(
    a: Union[_Array, _Numbers],
    b: Union[_Array, _Numbers],
    op: _Operator,
    out: Union[_Array, None] = None,
    *,
    if_true: Union[_Numbers, None] = None,
    if_false: Union[_Numbers, None] = None,
    dtype: DTypeLike = None,
    region: _Region = None,
) -> _Array: ...
def threshold(
    a: _Array,
    level: Union[_Numbers, Literal["otsu", "usto", "blur", "adaptive"]],
    out: Union[_Array, None] = None,
    *,
    upper: Union[_Numbers, None] = None,
    offset: Union[_Numbers, None] = None,
    bins: int = 0,
    range: Union[_Pair, None] = None,
    dtype: DTypeLike = None,
    region: _Region = None,
) -> _Array: ...
def otsu(
    a: _Array, *, bins: int = 0, range: Union[_Pair, None] = None, region: _Region = None
) -> Union[float, NDArray[np.float64]]: ...
def copy_border(
    a: _Array,
    margin: _Margin,
    out: Union[_Array, None] = None,
    *,
    mode: _Border = "reflect101",
    value: _Numbers = 0,
    region: _Region = None,
) -> _Array: ...
def fill(
    out: _Array,
    value: _Numbers,
    *,
    mask: _Mask = None,
    otherwise: Union[_Numbers, None] = None,
    region: _Region = None,
) -> _Array: ...
def resize(
    a: _Array,
    shape: Union[tuple[int, int], None] = None,
    out: Union[_Array, None] = None,
    *,
    scale: Union[_Number, _Pair, None] = None,
    offset: Union[_Number, _Pair, None] = None,
    region: _Region = None,
) -> _Array: ...
def sum(a: _Array, mask: _Mask = None, *, region: _Region = None) -> Union[float, NDArray[np.float64]]: ...
def mean(a: _Array, mask: _Mask = None, *, region: _Region = None) -> Union[float, NDArray[np.float64]]: ...
def minmax(a: _Array, mask: _Mask = None, *, region: _Region = None) -> MinMax: ...
def histogram(
    a: _Array,
    bins: int = 256,
    range: Union[_Pair, None] = None,
    out: Union[NDArray[np.uint32], None] = None,
    *,
    mask: _Mask = None,
    region: _Region = None,
) -> NDArray[np.uint32]: ...
def box(
    a: _Array,
    size: _Size,
    out: Union[_Array, None] = None,
    *,
    anchor: Union[_Size, None] = None,
    region: _Region = None,
) -> _Array: ...
def minimum(
    a: _Array,
    size: _Size,
    out: Union[_Array, None] = None,
    *,
    anchor: Union[_Size, None] = None,
    region: _Region = None,
) -> _Array: ...
def maximum(
    a: _Array,
    size: _Size,
    out: Union[_Array, None] = None,
    *,
    anchor: Union[_Size, None] = None,
    region: _Region = None,
) -> _Array: ...
def erode(
    a: _Array,
    size: Union[_Size, _Array],
    out: Union[_Array, None] = None,
    *,
    anchor: Union[_Size, None] = None,
    region: _Region = None,
) -> _Array: ...
def dilate(
    a: _Array,
    size: Union[_Size, _Array],
    out: Union[_Array, None] = None,
    *,
    anchor: Union[_Size, None] = None,
    region: _Region = None,
) -> _Array: ...
def opening(
    a: _Array,
    size: Union[_Size, _Array],
    out: Union[_Array, None] = None,
    *,
    anchor: Union[_Size, None] = None,
    region: _Region = None,
) -> _Array: ...
def closing(
    a: _Array,
    size: Union[_Size, _Array],
    out: Union[_Array, None] = None,
    *,
    anchor: Union[_Size, None] = None,
    region: _Region = None,
) -> _Array: ...
def tophat(
    a: _Array,
    size: Union[_Size, _Array],
    out: Union[_Array, None] = None,
    *,
    anchor: Union[_Size, None] = None,
    region: _Region = None,
) -> _Array: ...
def bothat(
    a: _Array,
    size: Union[_Size, _Array],
    out: Union[_Array, None] = None,
    *,
    anchor: Union[_Size, None] = None,
    region: _Region = None,
) -> _Array: ...
def gaussian(
    a: _Array,
    size: Union[_Size, None] = None,
    out: Union[_Array, None] = None,
    *,
    sigma: Union[_Sigma, None] = None,
    anchor: Union[_Size, None] = None,
    region: _Region = None,
) -> _Array: ...
def sepfilter(
    a: _Array,
    down: Union[Sequence[_Number], _Array],
    along: Union[Sequence[_Number], _Array],
    out: Union[_Array, None] = None,
    *,
    planes: Union[Sequence[_Number], _Array, None] = None,
    anchor: Union[_Size, None] = None,
    region: _Region = None,
) -> _Array: ...
def firefly(
    a: _Array,
    size: Union[_Size, None] = None,
    out: Union[_Array, None] = None,
    *,
    sigma: Union[_Sigma, None] = None,
    bright: Union[_Numbers, None] = None,
    dark: Union[_Numbers, None] = None,
    both: bool = False,
    anchor: Union[_Size, None] = None,
    region: _Region = None,
) -> _Array: ...
def convex_hull(points: _Array) -> _Array: ...
def min_area_rect(points: _Array) -> NDArray[np.float64]: ...
def moments(points: _Array, *, central: bool = False, polygon: bool = False) -> Moments: ...
def ellipse(points: _Array, k: float = 2.0) -> Ellipse: ...
@overload
def component_tree(
    a: NDArray[np.uint8],
    *,
    bright: bool = False,
    every: bool = False,
    pixels: Literal[False] = False,
    shift: int = 0,
    seed: Union[tuple[int, int], None] = None,
    mask: _Mask = None,
    region: _Region = None,
) -> _Records: ...
@overload
def component_tree(
    a: NDArray[np.uint8],
    *,
    bright: bool = False,
    every: bool = False,
    pixels: Literal[True],
    shift: int = 0,
    seed: Union[tuple[int, int], None] = None,
    mask: _Mask = None,
    region: _Region = None,
) -> tuple[_Records, NDArray[np.int32]]: ...
def watershed(
    a: NDArray[np.uint8],
    out: Union[NDArray[np.int32], None] = None,
    *,
    bright: bool = False,
    every: bool = False,
    shift: int = 0,
    seed: Union[tuple[int, int], None] = None,
    mask: _Mask = None,
    region: _Region = None,
) -> tuple[NDArray[np.int32], _Records]: ...
@overload
def mser(
    a: NDArray[np.uint8],
    *,
    delta: int = 5,
    min_area: int = 0,
    min_area_fraction: float = 0.0,
    max_area_fraction: float = 0.25,
    max_variation: float = 0.25,
    min_diversity: float = 0.0,
    dark: bool = True,
    bright: bool = True,
    every: bool = False,
    pixels: Literal[False] = False,
    shift: int = 0,
    seed: Union[tuple[int, int], None] = None,
    mask: _Mask = None,
    region: _Region = None,
) -> _Records: ...
@overload
def mser(
    a: NDArray[np.uint8],
    *,
    delta: int = 5,
    min_area: int = 0,
    min_area_fraction: float = 0.0,
    max_area_fraction: float = 0.25,
    max_variation: float = 0.25,
    min_diversity: float = 0.0,
    dark: bool = True,
    bright: bool = True,
    every: bool = False,
    pixels: Literal[True],
    shift: int = 0,
    seed: Union[tuple[int, int], None] = None,
    mask: _Mask = None,
    region: _Region = None,
) -> tuple[_Records, NDArray[np.int32]]: ...
