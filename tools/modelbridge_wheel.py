"""Builds the Python wheel of ModelBridge: the package as the CMake build lays it out in
BUILD/python/modelbridge, with the shared library inside it under its SONAME, and the metadata
of pyproject.toml. Standard library only.

As a program:   python3 tools/modelbridge_wheel.py BUILD_DIR OUT_DIR   (prints the wheel's path)
As the build backend of pyproject.toml, so that `pip wheel .` and `pip install .` work offline:
the hooks configure and build a Release tree with CMake (in build-wheel/, or the folder that
MODELBRIDGE_BUILD_DIR names), then do the same.
"""

from __future__ import annotations

import base64
import csv
import glob
import hashlib
import io
import os
import re
import shutil
import subprocess
import sys
import sysconfig
import tarfile
import zipfile
from typing import Dict, List, Optional, Tuple

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
# A fixed time for every member, so that the same build gives the same wheel.
FIXED_TIME = (1980, 1, 1, 0, 0, 0)


def project() -> Dict[str, object]:
    """The [project] table of pyproject.toml."""
    with open(os.path.join(ROOT, "pyproject.toml"), "rb") as file:
        data = file.read()
    try:
        import tomllib
        return tomllib.loads(data.decode())["project"]
    except ModuleNotFoundError:  # Python before 3.11: the few plain keys this file uses
        table: Dict[str, object] = {}
        section = ""
        for line in data.decode().splitlines():
            if line.startswith("["):
                section = line.strip("[] ")
            elif section == "project" and "=" in line and not line.startswith(" "):
                key, value = (part.strip() for part in line.split("=", 1))
                if value.startswith('"'):
                    table[key] = value.strip('"')
        return table


def version() -> str:
    """The project's version, as CMakeLists.txt gives it."""
    with open(os.path.join(ROOT, "CMakeLists.txt")) as file:
        found = re.search(r"project\(ModelBridge VERSION ([0-9.]+)", file.read())
    if not found:
        raise RuntimeError("CMakeLists.txt names no version")
    return found.group(1)


def platform_tag() -> str:
    """The tag of this platform: the package holds a native library, but no Python extension,
    so any Python 3 of this platform runs it."""
    return re.sub(r"[-.]", "_", sysconfig.get_platform())


def metadata(meta: Dict[str, object], release: str) -> str:
    lines = ["Metadata-Version: 2.1", f"Name: {meta['name']}", f"Version: {release}",
             f"Summary: {meta.get('description', '')}", f"Requires-Python: {meta.get('requires-python', '>=3.9')}"]
    license_ = meta.get("license")
    if isinstance(license_, dict) and "text" in license_:
        lines.append(f"License: {license_['text']}")
    for author in meta.get("authors", []) or []:
        if isinstance(author, dict) and "name" in author:
            lines.append(f"Author: {author['name']}")
    for classifier in meta.get("classifiers", []) or []:
        lines.append(f"Classifier: {classifier}")
    for name, url in (meta.get("urls") or {}).items():
        lines.append(f"Project-URL: {name}, {url}")
    lines.append("Description-Content-Type: text/markdown")
    readme = os.path.join(ROOT, "python", "README.md")
    with open(readme) as file:
        return "\n".join(lines) + "\n\n" + file.read()


def record_line(name: str, data: bytes) -> List[str]:
    digest = base64.urlsafe_b64encode(hashlib.sha256(data).digest()).rstrip(b"=").decode()
    return [name, f"sha256={digest}", str(len(data))]


def library_of(build: str) -> str:
    """The shared library the build made, under its SONAME."""
    found = sorted(glob.glob(os.path.join(build, "libModelBridge.so.*")), key=len)
    if not found:
        raise RuntimeError(f"no libModelBridge.so.* in {build}: build the target ModelBridge first")
    return found[0]


def make_wheel(build: str, out: str) -> str:
    """Writes the wheel into OUT from the build tree BUILD and gives its file name."""
    meta = project()
    release = version()
    name = str(meta["name"])
    tag = f"py3-none-{platform_tag()}"
    wheel_name = f"{name}-{release}-{tag}.whl"
    dist_info = f"{name}-{release}.dist-info"
    package = os.path.join(build, "python", "modelbridge")
    members: List[Tuple[str, bytes, int]] = []  # name in the wheel, bytes, mode
    for file in sorted(os.listdir(package)):
        if file.endswith(".py") or file == "py.typed":
            with open(os.path.join(package, file), "rb") as handle:
                members.append((f"modelbridge/{file}", handle.read(), 0o644))
    library = library_of(build)
    stripped = os.path.join(out, ".library")
    os.makedirs(out, exist_ok=True)
    shutil.copyfile(library, stripped)
    if shutil.which("strip"):
        subprocess.run(["strip", "--strip-unneeded", stripped], check=True)
    with open(stripped, "rb") as handle:
        members.append((f"modelbridge/{os.path.basename(library)}", handle.read(), 0o755))
    os.remove(stripped)
    members.append((f"{dist_info}/METADATA", metadata(meta, release).encode(), 0o644))
    members.append((f"{dist_info}/WHEEL", (f"Wheel-Version: 1.0\nGenerator: modelbridge_wheel\n"
                                           f"Root-Is-Purelib: false\nTag: {tag}\n").encode(), 0o644))
    members.append((f"{dist_info}/top_level.txt", b"modelbridge\n", 0o644))
    record = io.StringIO()
    writer = csv.writer(record, lineterminator="\n")
    for member, data, _ in members:
        writer.writerow(record_line(member, data))
    writer.writerow([f"{dist_info}/RECORD", "", ""])
    members.append((f"{dist_info}/RECORD", record.getvalue().encode(), 0o644))
    path = os.path.join(out, wheel_name)
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as wheel:
        for member, data, mode in members:
            info = zipfile.ZipInfo(member, FIXED_TIME)
            info.external_attr = (0o100000 | mode) << 16
            info.compress_type = zipfile.ZIP_DEFLATED
            wheel.writestr(info, data)
    return wheel_name


def cmake_build(build: str) -> None:
    """A Release build of the library and the package's files, without tests."""
    subprocess.run(["cmake", "-S", ROOT, "-B", build, "-DCMAKE_BUILD_TYPE=Release", "-DMODELBRIDGE_TESTS=OFF"],
                   check=True, stdout=sys.stderr)
    subprocess.run(["cmake", "--build", build, "-j", str(os.cpu_count() or 2), "--target", "ModelBridge"],
                   check=True, stdout=sys.stderr)


# The hooks of a build backend.

def build_wheel(wheel_directory: str, config_settings: Optional[dict] = None,
                metadata_directory: Optional[str] = None) -> str:
    build = os.environ.get("MODELBRIDGE_BUILD_DIR") or os.path.join(ROOT, "build-wheel")
    cmake_build(build)
    return make_wheel(build, wheel_directory)


def build_sdist(sdist_directory: str, config_settings: Optional[dict] = None) -> str:
    """The source tree as git knows it, or as it stands without build folders."""
    release = version()
    base = f"modelbridge-{release}"
    try:
        listed = subprocess.run(["git", "-C", ROOT, "ls-files", "-z"], check=True, capture_output=True).stdout
        files = [name for name in listed.decode().split("\0") if name]
    except (OSError, subprocess.CalledProcessError):
        files = []
        for folder, subfolders, names in os.walk(ROOT):
            subfolders[:] = [s for s in subfolders if not s.startswith(("build", ".", "out"))]
            files += [os.path.relpath(os.path.join(folder, n), ROOT) for n in names]
    name = f"{base}.tar.gz"
    with tarfile.open(os.path.join(sdist_directory, name), "w:gz") as archive:
        for file in sorted(files):
            archive.add(os.path.join(ROOT, file), f"{base}/{file}", recursive=False)
    return name


def get_requires_for_build_wheel(config_settings: Optional[dict] = None) -> List[str]:
    return []


def get_requires_for_build_sdist(config_settings: Optional[dict] = None) -> List[str]:
    return []


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit("usage: modelbridge_wheel.py BUILD_DIR OUT_DIR")
    print(os.path.join(sys.argv[2], make_wheel(sys.argv[1], sys.argv[2])))
