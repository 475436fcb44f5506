"""What napari finds: a manifest, a command that exists, and layers that are lazy."""
import importlib
from pathlib import Path

import numpy as np
import pytest

import kpf

yaml = pytest.importorskip("yaml")
pytest.importorskip("dask.array")


@pytest.fixture
def manifest():
    return yaml.safe_load(Path(kpf.__file__).with_name("napari.yaml").read_text(encoding="utf-8"))


def test_the_manifest_names_a_command_that_exists(manifest):
    command, = manifest["contributions"]["commands"]
    reader, = manifest["contributions"]["readers"]
    assert reader["command"] == command["id"] == f"{manifest['name']}.read"
    module, function = command["python_name"].split(":")
    assert callable(getattr(importlib.import_module(module), function))
    assert reader["filename_patterns"] == ["*.kpf"]


def test_only_recordings_are_taken():
    from kpf.napari_reader import get_reader
    assert get_reader("clip.tif") is None
    assert get_reader(["a.kpf", "b.tif"]) is None
    assert get_reader([]) is None


def test_a_layer_for_each_recording(gappy, packed):
    from kpf.napari_reader import get_reader
    paths = [str(gappy), str(packed)]
    (frames, options, kind), (wide, wide_options, _) = get_reader(paths)(paths)
    assert kind == "image" and frames.shape == (5, 2, 4) and frames.numblocks[0] == 5
    assert frames[3].compute(scheduler="sync")[0, 0] == 11  # the last picture
    assert options["metadata"]["kpf"]["lost"].tolist() == [True, False, True, True, False]
    assert (options["contrast_limits"], wide_options["contrast_limits"]) == ((0, 255), (0, 4095))
    assert np.asarray(wide[0])[0, 0] == 0xABC
    assert len(get_reader(str(packed))(str(packed))) == 1
