"""Image processing on numpy arrays, in place: the library libJorm.

Arrays have 2 axes (rows, columns), 3 (channels last, 1 to 4) or 4 (planes in front), and any strides. Functions write
to `out`, or to a new array. The interpreter's lock is released while they run; threads may call them at the same time.
"""

from ._jorm import *
from ._jorm import __version__
