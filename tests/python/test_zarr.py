"""Recordings read in place by an engine that knows Zarr, and nothing of this package."""
import importlib
import json
import subprocess
import sys

import numpy as np
import pytest
import recordings

import kpf

zarr = pytest.importorskip("zarr")
fsspec = pytest.importorskip("fsspec")
numcodecs = pytest.importorskip("numcodecs")


def opened(reference):
    files = fsspec.filesystem("reference", fo=reference, remote_protocol="file")
    return zarr.open(files.get_mapper(""), mode="r")


def test_eight_bits_in_place(ten):
    group = opened(kpf.open(ten).to_zarr_reference())
    assert group["frames"].chunks == (1, 2, 4)
    assert (group["frames"][:] == np.asarray(kpf.open(ten))).all()
    assert (group["times"][:] == kpf.open(ten).times).all()
    assert group["numbers"][:].tolist() == list(range(10))
    assert group.attrs["frame_rate"] == 25.0


def test_eight_bits_need_none_of_our_code(ten, tmp_path):
    kpf.open(ten).to_zarr_reference(tmp_path / "clip.json")
    program = ("import sys, fsspec, zarr\n"
               "files = fsspec.filesystem('reference', fo=sys.argv[1], remote_protocol='file')\n"
               "print(zarr.open(files.get_mapper(''), mode='r')['frames'][7].sum())\n"
               "assert 'kpf' not in sys.modules\n")
    done = subprocess.run([sys.executable, "-B", "-W", "ignore", "-c", program,
                           str(tmp_path / "clip.json")], check=True, capture_output=True, text=True)
    assert done.stdout == "56\n"


@pytest.mark.parametrize("samples", ["value", "left"])
def test_twelve_bits_by_the_codec(tmp_path, samples):
    rng = np.random.default_rng(4)
    images = rng.integers(0, 4096, (5, 6, 8), np.uint16)
    with kpf.Writer(tmp_path / "clip.kpf", (6, 8), bits=12, start=1) as writer:
        for image in images:
            writer.add(image)
    importlib.import_module("kpf.codec")  # as an installed package has it done by its entry point
    group = opened(kpf.open(tmp_path / "clip.kpf", samples=samples).to_zarr_reference())
    assert (group["frames"][:] == images * (1 if samples == "value" else 16)).all()
    assert group["frames"].dtype == np.uint16


def test_lost_frames_are_told(gappy, tmp_path):
    group = opened(kpf.open(gappy).to_zarr_reference())
    assert group["frames"][:, 0, 0].tolist() == [0, 11, 0, 0, 44]
    assert group["lost"][:].tolist() == [True, False, True, True, False]
    gone = [recordings.lost(6), recordings.record(1, bytes.fromhex("ab3c1200f1ff"))]
    path = recordings.make(tmp_path, gone, width=2, height=2, bits=12, name="wide.kpf")
    importlib.import_module("kpf.codec")
    assert opened(kpf.open(path).to_zarr_reference())["frames"][:, 0, 0].tolist() == [65535, 0xABC]


def test_a_data_file_that_is_missing_has_no_chunks(tmp_path):
    path = recordings.make(tmp_path, recordings.stepped(3), announced=9, frames_per_file=3)
    (path.with_suffix("") / "clip_0003.div").write_bytes(recordings.record(6, [66] * 8))
    refs = kpf.open(path).to_zarr_reference()["refs"]
    assert {int(key[7:-4]) for key in refs if key.endswith(".0.0")} == {0, 1, 2, 6}
    assert refs["frames/6.0.0"] == [str(tmp_path / "clip/clip_0003.div"), 16, 8]


def test_references_are_exact(ten):
    refs = kpf.open(ten).to_zarr_reference()["refs"]
    data = str(ten.with_suffix("") / "clip_0001.div")
    assert refs["frames/3.0.0"] == [data, 3 * 24 + 16, 8]
    elsewhere = kpf.open(ten).to_zarr_reference(base="s3://bucket/videos/")["refs"]
    assert elsewhere["frames/0.0.0"][0] == "s3://bucket/videos/clip/clip_0001.div"


def test_the_file_is_json_and_not_overwritten(ten, tmp_path):
    reference = kpf.open(ten).to_zarr_reference(tmp_path / "clip.json")
    assert json.loads((tmp_path / "clip.json").read_text()) == reference
    with pytest.raises(FileExistsError, match="remove it"):
        kpf.open(ten).to_zarr_reference(tmp_path / "clip.json")


def test_an_empty_recording(tmp_path):
    rec = kpf.open(recordings.make(tmp_path, [], announced=5))
    assert opened(rec.to_zarr_reference())["frames"].shape == (0, 2, 4)


@pytest.mark.parametrize("width, height", [(4, 2), (5, 3), (1, 1)])
@pytest.mark.parametrize("samples", ["value", "left"])
def test_the_codec_there_and_back(tmp_path, width, height, samples):
    from kpf.codec import Kpf12
    shift = 0 if samples == "value" else 4
    image = np.random.default_rng(1).integers(1, 4096, (height, width), np.uint16) << shift
    codec = numcodecs.get_codec({"id": "kpf12", "width": width, "height": height,
                                 "samples": samples})
    assert isinstance(codec, Kpf12)
    with kpf.Writer(tmp_path / "clip.kpf", (height, width), bits=12, samples=samples) as writer:
        writer.add(image)
    stored = (tmp_path / "clip/clip_0001.div").read_bytes()[16:]
    assert codec.encode(image) == stored
    kept = image.copy()
    kept[:, width // 2 * 2:] = 0  # the last column of an odd width is not stored
    assert (codec.decode(stored) == kept).all()
    out = np.empty_like(image)
    codec.decode(stored, out)
    assert (out == kept).all()


def test_the_codec_refuses(tmp_path):
    from kpf.codec import Kpf12
    with pytest.raises(kpf.ArgumentError, match="size"):
        Kpf12(4, 2).decode(b"short")
    with pytest.raises(kpf.ArgumentError, match="4095"):
        Kpf12(2, 1).encode(np.array([[4096, 0]], np.uint16))
    with pytest.raises(kpf.ArgumentError, match="value, left"):
        Kpf12(2, 1, "right")
