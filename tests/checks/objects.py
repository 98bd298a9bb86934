#!/usr/bin/env python3
"""No object of an instruction-set level shares code with another one, or leaves the processor in another state.

A weak or unique symbol could be merged by the linker into the copy of a wider level, which an older processor cannot
run; a start-up array would run wide code before anything is asked. After MMX the caller's x87 registers are not empty.

Usage: objects.py OBJECT...     (an argument may be a list separated by ';')
"""
import subprocess
import sys


def faults(obj):
    def shown(*command):
        return subprocess.run([*command, obj], check=True, capture_output=True, text=True).stdout

    symbols = (line.split(maxsplit=2)[1:] for line in shown("nm", "-C", "--defined-only").splitlines())
    yield from (f"shared symbol ({kind}) {name}" for kind, name in symbols if kind in "WVu")
    sections = shown("objdump", "-h")
    if ".init_array" in sections or ".ctors" in sections:
        yield "runs code at load time"
    if "%mm" in shown("objdump", "-d", "--no-show-raw-insn"):
        yield "uses MMX registers"


objects = [o for arg in sys.argv[1:] for o in arg.split(";") if o]
found = [f"{obj}: {fault}" for obj in objects for fault in faults(obj)]
print(*found, f"{len(objects)} objects, {len(found)} faults", sep="\n")
sys.exit(1 if found or not objects else 0)
