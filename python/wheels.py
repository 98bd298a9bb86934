"""Builds the wheel of the module: the package as CMake installs it, with the library linked in (PEP 517)."""

import base64
import hashlib
import os
import pathlib
import re
import subprocess
import sys
import sysconfig
import tarfile
import tempfile
import zipfile

ROOT = pathlib.Path(__file__).resolve().parents[1]
VERSION = re.search(r"project\(Jorm VERSION ([\d.]+)", (ROOT / "CMakeLists.txt").read_text()).group(1)
STEM = f"jorm-{VERSION}"
METADATA = f"""Metadata-Version: 2.1
Name: jorm
Version: {VERSION}
Summary: Image processing on numpy arrays, in place
Requires-Python: >=3.9
Requires-Dist: numpy
Description-Content-Type: text/markdown

{(ROOT / "README.md").read_text()}"""


TAG = f"cp{sys.version_info.major}{sys.version_info.minor}"
TAG += f"-{TAG}-" + re.sub(r"[-.]", "_", sysconfig.get_platform())
INFO = {
    "METADATA": METADATA,
    "WHEEL": f"Wheel-Version: 1.0\nGenerator: jorm\nRoot-Is-Purelib: false\nTag: {TAG}\n",
}


def prepare_metadata_for_build_wheel(metadata_directory, config_settings=None):
    folder = pathlib.Path(metadata_directory, f"{STEM}.dist-info")
    folder.mkdir()
    for name, text in INFO.items():
        (folder / name).write_text(text)
    return folder.name


def build_wheel(wheel_directory, config_settings=None, metadata_directory=None):
    build = ROOT / "build" / f"wheel-{TAG}"  # kept, for the next time
    with tempfile.TemporaryDirectory() as tree:
        tree = pathlib.Path(tree)
        options = ["TESTS=OFF", "TOOLS=OFF", "EXAMPLES=OFF", "PYTHON=ON", "PYTHON_BUNDLED=ON", "PYTHON_DIR=.",
                   f"PYTHON_EXECUTABLE={sys.executable}"]
        for command in (
            ["-S", ROOT, "-B", build, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Release", *(f"-DJORM_{o}" for o in options)],
            ["--build", build, "--target", "jorm_python", "jorm_python_modules", "-j", str(os.cpu_count())],
            ["--install", build, "--component", "python", "--prefix", tree, "--strip"],
        ):
            subprocess.run(["cmake", *command], check=True)

        name = f"{STEM}-{TAG}.whl"
        record = []
        with zipfile.ZipFile(pathlib.Path(wheel_directory, name), "w", zipfile.ZIP_DEFLATED) as wheel:

            def add(path, data):
                wheel.writestr(path, data)
                digest = base64.urlsafe_b64encode(hashlib.sha256(data).digest()).rstrip(b"=").decode()
                record.append(f"{path},sha256={digest},{len(data)}")

            for file in sorted(p for p in tree.rglob("*") if p.is_file()):
                add(file.relative_to(tree).as_posix(), file.read_bytes())
            info = f"{STEM}.dist-info"
            for file, text in INFO.items():
                add(f"{info}/{file}", text.encode())
            wheel.writestr(f"{info}/RECORD", "\n".join([*record, f"{info}/RECORD,,", ""]))
    return name


def build_sdist(sdist_directory, config_settings=None):
    name = f"{STEM}.tar.gz"
    files = subprocess.run(["git", "ls-files"], cwd=ROOT, check=True, capture_output=True, text=True).stdout.split("\n")
    with tempfile.NamedTemporaryFile("w") as info, tarfile.open(pathlib.Path(sdist_directory, name), "w:gz") as archive:
        info.write(METADATA)
        info.flush()
        archive.add(info.name, f"{STEM}/PKG-INFO")
        for file in filter(None, files):
            archive.add(ROOT / file, f"{STEM}/{file}", recursive=False)
    return name
