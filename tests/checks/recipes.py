#!/usr/bin/env python3
"""Compiles and runs the C of a page of recipes: blocks that begin at the file's level stay there, each other one becomes
a function of its own with an environment `xe`.

Usage: recipes.py PAGE INCLUDE LIBRARY CC SCRATCH
"""
import pathlib
import re
import subprocess
import sys


def main():
    page, include, library, compiler, scratch = sys.argv[1:]
    text = pathlib.Path(page).read_text()
    program, calls = ["#undef NDEBUG"], []
    for block in re.finditer(r"^```c\n(.*?)^```$", text, re.MULTILINE | re.DOTALL):
        where = f'#line {text.count(chr(10), 0, block.start()) + 2} "{page}"\n'
        if block[1].startswith(("#", "static ")):
            program.append(where + block[1])
        else:
            calls.append(f"recipe_{len(calls)}")
            program.append(f"static void {calls[-1]}(jorm_xe *xe) {{\n{where}{block[1]}}}")
    body = "".join(f"    {call}(xe);\n" for call in calls)
    program.append("int main(void) {\n    _G_jorm_use_simd = 1;\n    jorm_xe *xe = JormXEopen(NULL, NULL, 0);\n" + body +
                   "    JormXEclose(xe);\n    return 0;\n}\n")
    folder = pathlib.Path(scratch)
    folder.mkdir(parents=True, exist_ok=True)
    (folder / "recipes.c").write_text("\n".join(program))
    subprocess.run([compiler, "-std=gnu99", "-Wall", "-Wextra", "-Wno-unused-parameter", "-Werror", "-pthread", "-I",
                    include, folder / "recipes.c", library, "-Wl,-rpath," + str(pathlib.Path(library).parent), "-lm",
                    "-o", folder / "recipes"], check=True)
    subprocess.run([folder / "recipes"], check=True)
    assert calls, "no recipes found"
    print(f"{len(calls)} recipes")


main()
