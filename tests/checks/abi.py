#!/usr/bin/env python3
"""Compares the binary interface that the headers declare with the committed listing: C signatures of all functions and
variables, sizes and offsets of all records, aliases, as clang sees them on x86-64.

usage: abi.py INCLUDE EXPORTS LISTING CLANG [--write]
"""
import json
import pathlib
import re
import subprocess
import sys


def clang(include, compiler, *options):
    command = [compiler, "--target=x86_64-linux-gnu", "-std=c99", f"-I{include}", "-fsyntax-only", *options,
               str(include / "jorm.h")]
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout


def declarations(include, compiler, exports):
    """Lines for functions, variables and aliases of the library's own headers."""
    lines = set()
    for node in json.loads(clang(include, compiler, "-x", "c", "-Xclang", "-ast-dump=json"))["inner"]:
        name, kind = node.get("name", ""), node["kind"]
        if kind in ("FunctionDecl", "VarDecl") and node.get("storageClass") != "static":
            if name in exports:
                lines.add(f"{name}: {node['type']['qualType']}")
        elif kind == "TypedefDecl" and "jorm" in name.lower():
            lines.add(f"typedef {name}: {node['type']['qualType']}")
    return sorted(lines)


def records(include, compiler):
    """Layouts of the records, one line per field: offset and declaration; a last line has the size."""
    text = clang(include, compiler, "-x", "c", "-Xclang", "-fdump-record-layouts-complete")
    blocks = re.split(r"\*\*\* Dumping AST Record Layout\n", text)[1:]
    tidy = (re.sub(r" at [^)]*", "", block.strip("\n").split("\n\n")[0]) for block in blocks)
    return sorted(block for block in set(tidy) if "jorm" in block.split("\n")[0].lower())


def main():
    include, exported, listing = map(pathlib.Path, sys.argv[1:4])
    compiler, exports = sys.argv[4], set(exported.read_text().split())
    text = "\n".join(records(include, compiler) + declarations(include, compiler, exports)) + "\n"
    if "--write" in sys.argv:
        listing.write_text(text)
    elif text != listing.read_text():
        found = set(text.split("\n"))
        wanted = set(listing.read_text().split("\n"))
        for line in sorted(wanted - found):
            print(f"- {line}")
        for line in sorted(found - wanted):
            print(f"+ {line}")
        sys.exit("The binary interface is no longer as listed; where that is meant: scripts/update-abi")


main()
