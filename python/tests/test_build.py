# SPDX-License-Identifier: MIT
"""The build backend: wheels that pip takes, and refusals that say what to do."""

import base64
import hashlib
import importlib.util
import os
import pathlib
import sys
import sysconfig
import zipfile

import pytest
import tavelor

PACKAGE = pathlib.Path(tavelor.__file__).parent


@pytest.fixture
def backend(monkeypatch):
    spec = importlib.util.spec_from_file_location("build_backend", pathlib.Path(__file__).parents[1] / "build_backend.py")
    module = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(module)
    return module


@pytest.fixture
def built(backend, monkeypatch):
    monkeypatch.setattr(backend, "_build", lambda settings: PACKAGE)
    return backend


def test_a_wheel_tells_each_of_its_files(built, tmp_path):
    name = built.build_wheel(tmp_path)
    assert name.startswith(f"tavelor-{tavelor.__version__}-cp3") and name.endswith(".whl")
    with zipfile.ZipFile(tmp_path / name) as wheel:
        names = set(wheel.namelist())
        info = f"tavelor-{tavelor.__version__}.dist-info"
        for line in wheel.read(f"{info}/RECORD").decode().splitlines():
            path, digest, size = line.split(",")
            names.discard(path)
            if digest:
                content = wheel.read(path)
                found = base64.urlsafe_b64encode(hashlib.sha256(content).digest()).rstrip(b"=").decode()
                assert (f"sha256={found}", str(len(content))) == (digest, size), path
        assert not names
        assert {"tavelor/__init__.py", "tavelor/__init__.pyi", "tavelor/py.typed", "tavelor/libtavelor_c.so.0",
                "tavelor/_native" + sysconfig.get_config_var("EXT_SUFFIX")} <= set(wheel.namelist())
        metadata = wheel.read(f"{info}/METADATA").decode()
        assert f"Version: {tavelor.__version__}\n" in metadata and 'extra == "columns"' in metadata


def test_the_same_sources_give_the_same_wheel(built, tmp_path):
    first, second = tmp_path / "a", tmp_path / "b"
    for folder in (first, second):
        folder.mkdir()
        name = built.build_wheel(folder)
    assert (first / name).read_bytes() == (second / name).read_bytes()


def test_an_editable_one_points_to_the_build_tree(built, tmp_path):
    name = built.build_editable(tmp_path)
    with zipfile.ZipFile(tmp_path / name) as wheel:
        assert wheel.read("tavelor.pth").decode().strip() == str(PACKAGE.parent)


def test_metadata_is_there_before_the_build(backend, tmp_path):
    folder = backend.prepare_metadata_for_build_wheel(tmp_path)
    assert (tmp_path / folder / "METADATA").is_file()
    assert backend.get_requires_for_build_wheel() == []


def test_what_is_missing_is_told(backend, monkeypatch, tmp_path):
    monkeypatch.setattr(backend, "TREE", tmp_path)
    with pytest.raises(SystemExit, match="install from a checkout"):
        backend.build_wheel(tmp_path)
    with pytest.raises(SystemExit, match="no source distribution"):
        backend.build_sdist(tmp_path)
    monkeypatch.undo()
    monkeypatch.setattr(sysconfig, "get_path", lambda name: str(tmp_path))
    with pytest.raises(SystemExit, match="python3-dev"):
        backend._headers()
    with pytest.raises(SystemExit, match="is missing"):
        backend._run(os.fspath(tmp_path / "cmake"))
    with pytest.raises(SystemExit, match="has failed"):
        backend._run(sys.executable, "-c", "raise SystemExit(3)")
