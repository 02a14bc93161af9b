# SPDX-License-Identifier: MIT
"""Builds the wheel with cmake, and wants nothing but Python: pip install ./python works without a network.

It builds the library and the extension module out of the tree that this folder is in, in build/python of it.
`--config-settings build=FOLDER` takes a build tree that is there instead, and builds only what is missing in it.
"""

import base64
import contextlib
import fcntl
import hashlib
import os
import pathlib
import shutil
import subprocess
import sys
import sysconfig
import tomllib
import zipfile

HERE = pathlib.Path(__file__).resolve().parent
TREE = HERE.parent
PROJECT = tomllib.loads((HERE / "pyproject.toml").read_text(encoding="utf-8"))["project"]
NAME = PROJECT["name"]
VERSION = PROJECT["version"]
INFO = f"{NAME}-{VERSION}.dist-info"
EXTENSION = "_native" + sysconfig.get_config_var("EXT_SUFFIX")
LIBRARY = "libtavelor_c.so.0"
# The day that zip files count from: the same sources give the same wheel.
MOMENT = (1980, 1, 1, 0, 0, 0)


def get_requires_for_build_wheel(config_settings=None):
    return []


def get_requires_for_build_editable(config_settings=None):
    return []


def get_requires_for_build_sdist(config_settings=None):
    return []


def _tag():
    python = f"cp{sys.version_info.major}{sys.version_info.minor}"
    return f"{python}-{python}-{sysconfig.get_platform().replace('-', '_').replace('.', '_')}"


def _run(*command):
    command = [str(part) for part in command]
    try:
        subprocess.run(command, check=True)
    except FileNotFoundError:
        raise SystemExit(f"{command[0]} is missing: ./scripts/test installs what the tree needs, or see docs/python.md")
    except subprocess.CalledProcessError as error:
        raise SystemExit(f"{' '.join(command)} has failed ({error.returncode}); what it said stands above")


@contextlib.contextmanager
def _alone(folder):
    """Two pips at once build one after the other."""
    with open(folder / "python.lock", "w", encoding="ascii") as lock:
        fcntl.flock(lock, fcntl.LOCK_EX)
        yield


def _build(config_settings):
    """Builds the package folder, and gives where it is."""
    if not (TREE / "tavelor" / "c" / "tavelor.h").is_file():
        raise SystemExit(f"{TREE} is not the library's tree: install from a checkout, pip install ./python")
    given = (config_settings or {}).get("build")
    folder = pathlib.Path(given or TREE / "build" / "python").resolve()
    folder.mkdir(parents=True, exist_ok=True)
    with _alone(folder):
        if not (folder / "CMakeCache.txt").is_file():
            options = ["-DTAVELOR_TESTS=OFF", "-DTAVELOR_EXAMPLES=OFF", "-DTAVELOR_CHECKS=OFF", "-DTAVELOR_PYTHON=ON"]
            if shutil.which("ninja"):
                options += ["-G", "Ninja"]
            options += ["-DCMAKE_BUILD_TYPE=Release", "-DTAVELOR_UNITY=ON", "-DTAVELOR_UNITY_LIBRARY=ON"]
            _run("cmake", "-S", TREE, "-B", folder, f"-DPython3_EXECUTABLE={sys.executable}", *_headers(), *options)
        elif not given:  # for the Python that it is installed for, whichever was the last one
            _run("cmake", folder, f"-DPython3_EXECUTABLE={sys.executable}", *_headers())
        _run("cmake", "--build", folder, "--parallel", os.cpu_count() or 2, "--target", "tavelor_python_package")
    package = folder / "python" / NAME
    for name in (EXTENSION, LIBRARY):
        if not (package / name).is_file():
            raise SystemExit(f"{package} holds no {name}: the tree was built for another Python than {sys.executable}")
    return package


def _headers():
    """A virtual environment has no headers of its own: those of the Python below it."""
    headers = pathlib.Path(sysconfig.get_path("include"))
    if not (headers / "Python.h").is_file():
        raise SystemExit(f"{headers}/Python.h is missing: install python3-dev")
    return [f"-DPython3_INCLUDE_DIR={headers}"]


def _metadata():
    lines = [
        "Metadata-Version: 2.1",
        f"Name: {NAME}",
        f"Version: {VERSION}",
        f"Summary: {PROJECT['description']}",
        f"License: {PROJECT['license']['text']}",
        f"Requires-Python: {PROJECT['requires-python']}",
    ]
    for extra, wanted in PROJECT["optional-dependencies"].items():
        lines.append(f"Provides-Extra: {extra}")
        lines += [f'Requires-Dist: {one} ; extra == "{extra}"' for one in wanted]
    return "\n".join(lines) + "\n"


def _wheel_text():
    return f"Wheel-Version: 1.0\nGenerator: {NAME}\nRoot-Is-Purelib: false\nTag: {_tag()}\n"


class _Wheel:
    """A wheel, and the record of what is in it."""

    def __init__(self, path):
        self._file = zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED)
        self._record = []

    def add(self, name, content, mode=0o644):
        digest = base64.urlsafe_b64encode(hashlib.sha256(content).digest()).rstrip(b"=").decode()
        self._record.append(f"{name},sha256={digest},{len(content)}")
        entry = zipfile.ZipInfo(name, MOMENT)
        entry.external_attr = (0o100000 | mode) << 16
        entry.compress_type = zipfile.ZIP_DEFLATED
        self._file.writestr(entry, content)

    def close(self):
        record = f"{INFO}/RECORD"
        self.add(record, ("\n".join([*self._record, f"{record},,"]) + "\n").encode())
        self._file.close()


def _write_wheel(folder, files):
    name = f"{NAME}-{VERSION}-{_tag()}.whl"
    wheel = _Wheel(pathlib.Path(folder) / name)
    for path, content, mode in files:
        wheel.add(path, content, mode)
    wheel.add(f"{INFO}/METADATA", _metadata().encode())
    wheel.add(f"{INFO}/WHEEL", _wheel_text().encode())
    wheel.close()
    return name


def prepare_metadata_for_build_wheel(metadata_directory, config_settings=None):
    folder = pathlib.Path(metadata_directory) / INFO
    folder.mkdir(parents=True, exist_ok=True)
    (folder / "METADATA").write_text(_metadata(), encoding="utf-8")
    (folder / "WHEEL").write_text(_wheel_text(), encoding="utf-8")
    return INFO


prepare_metadata_for_build_editable = prepare_metadata_for_build_wheel


def build_wheel(wheel_directory, config_settings=None, metadata_directory=None):
    package = _build(config_settings)
    files = []
    for path in sorted(package.iterdir()):
        is_ours = path.suffix in (".py", ".pyi", ".typed") or path.name in (EXTENSION, LIBRARY)
        if is_ours:
            mode = 0o755 if ".so" in path.name else 0o644
            files.append((f"{NAME}/{path.name}", path.read_bytes(), mode))
    return _write_wheel(wheel_directory, files)


def build_editable(wheel_directory, config_settings=None, metadata_directory=None):
    """A line that points to the build tree: build again, and it is the new one."""
    package = _build(config_settings)
    line = f"{package.parent}\n".encode()
    return _write_wheel(wheel_directory, [(f"{NAME}.pth", line, 0o644)])


def build_sdist(sdist_directory, config_settings=None):
    raise SystemExit("There is no source distribution: the package is built out of the library's tree")
