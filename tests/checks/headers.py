#!/usr/bin/env python3
"""Every public header compiles alone, as C99 and as C++17 (*.hpp: C++20), without a warning.

Usage: headers.py INCLUDE_DIR COMPILER...
A compiler is a C or a C++ one; one that is not installed is skipped.
"""
import pathlib
import shutil
import subprocess
import sys

MODES = {".h": [("c", "c99"), ("c++", "c++17")], ".hpp": [("c++", "c++20")]}
WARNINGS = ["-Wall", "-Wextra", "-pedantic", "-Werror"]


include, compilers = pathlib.Path(sys.argv[1]), [c for c in sys.argv[2:] if shutil.which(c)]
cases = [(compiler, header.relative_to(include).as_posix(), *mode)
         for compiler in compilers for header in sorted(include.rglob("*.h*")) for mode in MODES[header.suffix]]
failed = 0
for compiler, name, language, standard in cases:
    run = subprocess.run([compiler, "-x", language, "-std=" + standard, *WARNINGS, "-I", str(include), "-fsyntax-only",
                          "-"], input=f'#include "{name}"\n', capture_output=True, text=True)
    if run.returncode:
        failed += 1
        print(f"{name} as {standard} with {compiler}:\n{run.stderr}")
print(f"{len(cases)} compilations, {failed} failed")
sys.exit(1 if failed or not cases else 0)
