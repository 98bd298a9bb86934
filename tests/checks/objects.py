#!/usr/bin/env python3
"""No object of an instruction-set level shares code with another one, or leaves the processor in another state.

A weak or unique symbol could be merged by the linker into the copy of a wider level, which an older processor cannot
run; a start-up array would run wide code before anything is asked. After MMX the caller's x87 registers are not empty.

Usage: objects.py OBJECT...     (an argument may be a list separated by ';')
"""
import subprocess
import sys


def main():
    objects = [o for arg in sys.argv[1:] for o in arg.split(";") if o]
    if not objects:
        sys.exit("no objects given")
    bad = 0
    for obj in objects:
        symbols = subprocess.run(["nm", "-C", "--defined-only", obj], check=True, capture_output=True, text=True).stdout
        for line in symbols.splitlines():
            kind, name = line.split(maxsplit=2)[1:]
            if kind in "WVu":
                bad += 1
                print(f"{obj}: shared symbol ({kind}) {name}")
        sections = subprocess.run(["objdump", "-h", obj], check=True, capture_output=True, text=True).stdout
        if ".init_array" in sections or ".ctors" in sections:
            bad += 1
            print(f"{obj}: runs code at load time")
        code = subprocess.run(["objdump", "-d", "--no-show-raw-insn", obj], capture_output=True, text=True)
        if "%mm" in code.stdout:
            bad += 1
            print(f"{obj}: uses MMX registers")
    print(f"{len(objects)} objects, {bad} faults")
    return 1 if bad else 0


sys.exit(main())
