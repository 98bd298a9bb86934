#!/usr/bin/env python3
"""Every exported name is documented in the reference, without warnings. Links of the documents lead somewhere.

Usage: docs.py ROOT SCRATCH; ends with 77 where Doxygen is missing.
"""
import pathlib
import re
import shutil
import subprocess
import sys


def main():
    root, scratch = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    for page in [*root.glob("*.md"), *root.glob("docs/**/*.md")]:
        prose = re.sub(r"^```.*?^```$", "", page.read_text(), flags=re.MULTILINE | re.DOTALL)
        for target in re.findall(r"\]\((?!\w+:)([^)#]+)", prose):
            assert (page.parent / target).exists(), f"{page} links to {target}"
    if not shutil.which("doxygen"):
        sys.exit(77)
    scratch.mkdir(parents=True, exist_ok=True)
    tags = scratch / "jorm.tag"
    settings = (root / "docs/Doxyfile").read_text()
    settings += f"\nOUTPUT_DIRECTORY = {scratch}\nGENERATE_TAGFILE = {tags}\nGENERATE_HTML = NO\n"
    subprocess.run(["doxygen", "-"], input=settings, text=True, cwd=root, check=True)
    documented = set(re.findall(r"<name>([^<]+)</name>", tags.read_text()))
    missing = [name for name in (root / "cmake/exports.txt").read_text().split() if name not in documented]
    assert not missing, f"not documented: {missing}"
    print(f"{len(documented)} names are documented")


main()
