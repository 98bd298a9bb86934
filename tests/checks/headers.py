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


def main():
    include, compilers = pathlib.Path(sys.argv[1]), [c for c in sys.argv[2:] if shutil.which(c)]
    failed = checked = 0
    for compiler in compilers:
        for header in sorted(include.rglob("*.h*")):
            for language, standard in MODES[header.suffix]:
                name = header.relative_to(include).as_posix()
                run = subprocess.run([compiler, "-x", language, "-std=" + standard, *WARNINGS, "-I", str(include),
                                      "-fsyntax-only", "-"],
                                     input=f'#include "{name}"\n', capture_output=True, text=True)
                checked += 1
                if run.returncode:
                    failed += 1
                    print(f"{name} as {standard} with {compiler}:\n{run.stderr}")
    print(f"{checked} compilations, {failed} failed")
    return 1 if failed or not checked else 0


sys.exit(main())
