#!/usr/bin/env python3
"""Compiles and runs the C and C++ of the recipes and the guide: all blocks of a language in one program. Blocks that
begin with a directive or a function stay at the file's level, each other one becomes a function of its own, in C with
an environment `xe`. A block of text after one of these is what it prints.

Usage: recipes.py INCLUDE LIBRARY CC CXX SCRATCH PAGE...
"""
import pathlib
import re
import subprocess
import sys

BLOCK = re.compile(r"^```(c|cpp)\n(.*?)^```$(?:\n*^```text\n(.*?)^```$)?", re.MULTILINE | re.DOTALL)
FILE_LEVEL = re.compile(r"#|(static|struct|template)\b.*\{$", re.MULTILINE)
LANGUAGES = {
    "c": ["#undef NDEBUG", "jorm_xe *xe", "xe",
          "    _G_jorm_use_simd = 1;\n    jorm_xe *xe = JormXEopen(NULL, NULL, 0);\n", "    JormXEclose(xe);\n"],
    "cpp": ["#undef NDEBUG", "", "", "", ""],
}


def program(language, pages):
    """The program, and its functions with what each should print (none: nothing is said about that)."""
    head, parameter, argument, start, end = LANGUAGES[language]
    top, functions, calls, expected = [head], [], "", []
    for page in pages:
        text = page.read_text()
        for block in BLOCK.finditer(text):
            if block[1] != language:
                continue
            where = f'#line {text.count(chr(10), 0, block.start()) + 2} "{page}"\n'
            if FILE_LEVEL.match(block[2]):
                top.append(where + block[2])
                continue
            name = f"recipe_{len(expected)}"
            functions.append(f"static void {name}({parameter}) {{\n{where}{block[2]}}}")
            calls += f'    {name}({argument});\n    printf("\\f\\n");\n'
            expected.append((f"{page}: {block[2]}", block[3]))
    functions.append(f"int main(void) {{\n{start}{calls}{end}    return 0;\n}}\n")
    return "\n".join(top + functions), expected


def main():
    include, library, cc, cxx, scratch = sys.argv[1:6]
    pages = [pathlib.Path(p) for p in sys.argv[6:]]
    folder = pathlib.Path(scratch)
    folder.mkdir(parents=True, exist_ok=True)
    for language, compiler, standard in (("c", cc, "gnu99"), ("cpp", cxx, "gnu++20")):
        source, expected = program(language, pages)
        assert expected, f"no {language} found"
        (folder / f"recipes.{language}").write_text(source)
        subprocess.run([compiler, "-std=" + standard, "-Wall", "-Wextra", "-Wno-unused-parameter", "-Werror",
                        "-pthread", "-I", include, folder / f"recipes.{language}", library,
                        "-Wl,-rpath," + str(pathlib.Path(library).parent), "-lm", "-o", folder / f"recipes_{language}"],
                       check=True)
        done = subprocess.run([folder / f"recipes_{language}"], check=True, stdout=subprocess.PIPE, text=True)
        for (block, text), printed in zip(expected, done.stdout.split("\f\n")):
            assert text is None or printed == text, f"{block}prints\n{printed}instead of\n{text}"
        print(f"{len(expected)} pieces of {language}")


main()
