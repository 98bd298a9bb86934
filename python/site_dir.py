"""Prints the folder of an interpreter's packages, relative to an installation prefix."""

import sys
import sysconfig

prefix = sys.argv[1].rstrip("/")
if sys.prefix == "/usr" and prefix == "/usr" and "deb_system" in sysconfig.get_scheme_names():
    print("lib/python3/dist-packages")
else:
    folder = sysconfig.get_path("platlib")
    for root in (sys.prefix + "/local/", sys.prefix + "/"):
        if folder.startswith(root):
            print(folder[len(root):])
            break
