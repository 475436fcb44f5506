"""The package in an environment of its own: from the tree, and as a wheel with the library inside."""
import os
import shutil
import subprocess
import sys
from pathlib import Path

import pytest

SOURCE = Path(__file__).resolve().parents[2] / "python"
LIBRARY = os.environ["KPF_LIBRARY"]
PROGRAM = """
import importlib.metadata, kpf, numpy
with kpf.Writer("clip.kpf", (2, 2), bits=12) as writer:
    writer.add(numpy.full((2, 2), 7, numpy.uint16))
groups = [point.group for point in importlib.metadata.distribution("kpf").entry_points]
print(kpf.open("clip.kpf")[0].sum(), sorted(groups), kpf.__file__)
"""


def run(*command, **more):
    return subprocess.run([str(part) for part in command], check=True, text=True,
                          capture_output=True, **more).stdout


@pytest.fixture(scope="module")
def environment(tmp_path_factory):
    """A new environment that sees the system's packages, and none of the variables of the tests."""
    pytest.importorskip("venv")
    pytest.importorskip("wheel")
    folder = tmp_path_factory.mktemp("environment")
    run(sys.executable, "-m", "venv", "--system-site-packages", "--without-pip", folder)
    return folder


def installed(environment, wheel, tmp_path, **variables):
    """What the program says where the wheel was unpacked, as pip does with a pure one."""
    place = next(environment.glob("lib/python3*/site-packages"))
    for old in place.glob("kpf*"):
        shutil.rmtree(old)
    shutil.unpack_archive(wheel, place, "zip")
    clean = {name: value for name, value in os.environ.items()
             if name not in ("PYTHONPATH", "KPF_LIBRARY")}
    said = run(environment / "bin/python3", "-B", "-c", PROGRAM, cwd=tmp_path,
               env={**clean, **variables})
    assert said.startswith("28 ['napari.manifest', 'numcodecs.codecs']")
    assert str(place) in said


def made(script, folder, *options):
    run("cmake", "-D", f"PYTHON={sys.executable}", "-D", f"SOURCE={SOURCE}", "-D",
        f"FOLDER={folder}", *options, "-P", script)
    wheel, = folder.glob("*.whl")
    return wheel


def test_a_wheel_has_the_library_inside(environment, tmp_path):
    pytest.importorskip("pip")
    wheel = made(SOURCE.parent / "cmake/kpf_wheel.cmake", tmp_path, "-D", f"LIBRARY={LIBRARY}", "-D",
                 "NAME=libkpf.so.1")
    assert "-py3-none-linux_" in wheel.name
    installed(environment, wheel, tmp_path)


def test_the_tree_is_installed_without_network(environment, tmp_path):
    pytest.importorskip("pip")
    copy = tmp_path / "source"
    shutil.copytree(SOURCE, copy, ignore=shutil.ignore_patterns("__pycache__"))
    run(sys.executable, "-m", "pip", "wheel", "--quiet", "--no-build-isolation", "--no-deps",
        "--no-index", "--disable-pip-version-check", "--wheel-dir", tmp_path, copy)
    wheel, = tmp_path.glob("*.whl")
    assert wheel.name.endswith("-py3-none-any.whl")
    installed(environment, wheel, tmp_path, KPF_LIBRARY=LIBRARY)
