"""What Python believes of the C front, against its headers."""
import ctypes
import re
from pathlib import Path

import pytest

import kpf
from kpf import _signatures, errors
from kpf._library import lib

CAPI = Path(__file__).resolve().parents[2] / "capi"
TYPES = (CAPI / "kpf_types.h").read_text(encoding="utf-8")
HEADER = re.sub(r"/\*.*?\*/", "", (CAPI / "kpf.h").read_text(encoding="utf-8"), flags=re.S)
STRUCTURES = {
    "kpf_writer_options": _signatures.WriterOptions, "kpf_stamp": _signatures.Stamp,
    "kpf_writer_counts": _signatures.WriterCounts, "kpf_reader_options": _signatures.ReaderOptions,
    "kpf_recording_info": _signatures.RecordingInfo, "kpf_frame": _signatures.Frame,
    "kpf_amplifier_options": _signatures.AmplifierOptions,
}
C_TYPES = {"uint32_t": ctypes.c_uint32, "int32_t": ctypes.c_int32, "int64_t": ctypes.c_int64,
           "uint64_t": ctypes.c_uint64, "double": ctypes.c_double, "const char*": ctypes.c_char_p,
           "const void*": ctypes.c_void_p, "char": ctypes.c_char, "unsigned char": ctypes.c_ubyte,
           "size_t": ctypes.c_size_t}


def members(structure):
    """(name, ctypes type) of each member as the header declares it."""
    body = re.search(r"typedef struct %s \{(.*?)\n\}" % structure, TYPES, re.S)[1]
    body = re.sub(r"/\*.*?\*/", "", body, flags=re.S)
    for kind, name, length in re.findall(r"([\w ]+?[*]?)\s+(\w+)(?:\[(\d+)\])?;", body):
        yield name, C_TYPES[kind.strip()] * int(length) if length else C_TYPES[kind.strip()]


def test_every_structure_is_known():
    assert set(STRUCTURES) == set(re.findall(r"typedef struct (\w+) \{", TYPES))


@pytest.mark.parametrize("name", STRUCTURES)
def test_members_are_those_of_the_header(name):
    assert list(members(name)) == STRUCTURES[name]._fields_


@pytest.mark.parametrize("kind", STRUCTURES.values())
def test_a_structure_begins_with_its_size(kind):
    assert kind().struct_size == ctypes.sizeof(kind)


def test_calls_take_as_many_arguments_as_the_header_says():
    declared = dict(re.findall(r"KPF_API kpf_result (\w+)\((.*?)\);", HEADER, re.S))
    for name, takes in _signatures.CALLS.items():
        assert len(takes) == len(declared[name].split(",")), name


def test_integers_are_as_wide_as_the_header_says():
    declared = dict(re.findall(r"KPF_API kpf_result (\w+)\((.*?)\);", HEADER, re.S))
    for name, takes in _signatures.CALLS.items():
        for text, kind in zip(declared[name].split(","), takes):
            plain = text.split()[0]
            if "*" not in text:
                assert C_TYPES[plain] is kind, (name, text)


def test_every_result_has_its_exception():
    results = {int(number): name for name, number in re.findall(r"(KPF_ERROR_\w+) = (\d+)", TYPES)}
    # A wrong structure or a mistake of the library is nothing to tell apart: errors.Error.
    assert set(results) - set(errors.BY_RESULT) == {2, 15}
    for number in errors.BY_RESULT:
        assert lib.kpf_result_name(number).decode() == results[number]


def test_the_package_has_the_version_of_the_library():
    text = (CAPI.parent / "python/pyproject.toml").read_text(encoding="utf-8")
    assert re.search(r'^version = "(.*)"', text, re.M)[1] == kpf.library_version


def test_all_that_is_offered_exists():
    for name in kpf.__all__:
        assert getattr(kpf, name) is not None
