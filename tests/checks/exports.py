#!/usr/bin/env python3
"""Holds against each other: the shared library's symbols, the headers, the sources and the list of exports.

  exports.py LIBRARY ROOT CC [NAMES]     checks; NAMES is a table of wanted names: name, folder, kind
  exports.py LIBRARY --write FILE        writes the list of exports
"""
import pathlib
import re
import subprocess
import sys

NAME_SPACE = re.compile(r"(_{0,2}Jorm|_{0,2}jorm|C_jorm_|_{0,2}Ul|_G_jorm_)[A-Za-z0-9_$]*")
IDENTIFIER = re.compile(r"[A-Za-z_$][A-Za-z0-9_$]*")
VISIBLE = re.compile(r'__attribute__\s*\(\(visibility\("default"\)\)\)([^;{]*)[;{]')
ACCESS = re.compile(r"__attribute__\s*\(\(access\([^()]*\)\)\)")
COMMENT = re.compile(r"/\*.*?\*/|//[^\n]*", re.S)
SOURCES = {".h", ".hpp", ".c", ".cpp", ".inc", ".def"}


def exported(library):
    """Name -> 'function' or 'data'."""
    out = subprocess.run(["nm", "-D", "--defined-only", library], check=True, capture_output=True, text=True).stdout
    kinds = (line.split()[-2:] for line in out.splitlines())
    return {name: "function" if kind in "TtiW" else "data" for kind, name in kinds}


def declared(root, cc):
    """Names that the umbrella header declares as visible once macros are expanded; it takes in every other header."""
    text = subprocess.run([cc, "-E", "-P", "-x", "c", f"-I{root / 'include'}", str(root / "include/jorm.h")],
                          check=True, text=True, stdout=subprocess.PIPE).stdout
    names = set()
    for declaration in VISIBLE.findall(ACCESS.sub("", text)):
        while "(" in declaration:
            declaration = re.sub(r"\([^()]*\)", "", declaration)
        names.update(IDENTIFIER.findall(declarator)[-1] for declarator in declaration.split(","))
    return names


def written(folder):
    """Identifiers that stand in the sources under a folder, comments aside."""
    names = set()
    for path in folder.rglob("*"):
        if path.suffix in SOURCES:
            names.update(IDENTIFIER.findall(COMMENT.sub(" ", path.read_text())))
    return names


def wanted(table, have):
    """(name, kind) of the table's folders of which something is exported already."""
    rows = [line.split("\t") for line in pathlib.Path(table).read_text().splitlines()
            if line and not line.startswith("#")]
    built = {folder for name, folder, _ in rows if name in have}
    return [(name, kind) for name, folder, kind in rows if folder in built]


def main():
    library, root = sys.argv[1:3]
    have = exported(library)
    if root == "--write":
        pathlib.Path(sys.argv[3]).write_text("".join(name + "\n" for name in sorted(have)))
        return 0
    root, cc, table = pathlib.Path(root), sys.argv[3], sys.argv[4] if len(sys.argv) > 4 else ""
    header_names, names = declared(root, cc), set(have)
    listed = set((root / "cmake/exports.txt").read_text().split())
    faults = [
        ("exported outside the name space", [n for n in names if not NAME_SPACE.fullmatch(n)]),
        ("declared but not exported", header_names - names),
        ("exported but not declared", names - header_names),
        ("not written out in include/", names - written(root / "include")),
        ("not written out in src/", names - written(root / "src")),
        ("exported but not in cmake/exports.txt (scripts/update-exports)", names - listed),
        ("in cmake/exports.txt but not exported", listed - names),
    ]
    if table:
        rows = wanted(table, have)
        faults += [("wanted but not exported", [n for n, _ in rows if n not in names]),
                   ("of the wrong kind", [n for n, kind in rows if have.get(n, kind) != kind])]
    found = [f"{what}: {name}" for what, which in faults for name in sorted(which)]
    print(*found, f"{len(names)} exports, {len(found)} faults", sep="\n")
    return 1 if found or not names else 0


sys.exit(main())
