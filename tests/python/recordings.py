"""Recordings made by hand, byte by byte, so that what reads them is held to the format itself."""
import os
import pathlib
import struct

HEADER_SIZE = 2998
IDENTIFIER = bytes(range(16))


def header(width, height, bits, announced, frames_per_file=None, identifier=IDENTIFIER):
    frame_size = width * height * 3 // 2 if bits == 12 else width * height
    if frames_per_file is None:
        frames_per_file = 2147483647 // (16 + frame_size)
    image = bytearray(HEADER_SIZE)
    image[0:5] = image[491:496] = b"v3.0\0"
    image[5:13] = b"Bridge 7"
    struct.pack_into("<dd", image, 156, 7.0, 1.0)
    struct.pack_into("<HHI", image, 176, width, height, int(bits == 12))
    struct.pack_into("<d", image, 184, 25.0)
    struct.pack_into("<d", image, 200, 3.0)
    for at in (208, 278, 308, 384, 444):
        image[at:at + 9] = b"Converted"
    image[324:334] = b"north pier"
    struct.pack_into("<II", image, 464, frames_per_file, announced)
    image[473] = 1
    struct.pack_into("<d", image, 483, 60.0)
    image[1698:1714] = image[1714:1730] = identifier
    struct.pack_into("<I", image, 1766, 1)
    struct.pack_into("<d", image, 1770, 25.0)
    struct.pack_into("<I", image, 1806, 1)
    return bytes(image)


def record(number, pixels, seconds=1000, microseconds=0):
    return struct.pack("<IqI", number, seconds, microseconds) + bytes(pixels)


def lost(frame_size):
    return bytes(16 + frame_size)


def make(folder, records, width=4, height=2, bits=8, announced=None, name="clip.kpf", **more):
    """Lays down a recording of these records, in one data file, and gives its path."""
    path = pathlib.Path(folder) / name
    path.write_bytes(header(width, height, bits, len(records) if announced is None else announced,
                            **more))
    data = path.with_suffix("")
    data.mkdir(exist_ok=True)
    (data / f"{data.name}_0001.div").write_bytes(b"".join(records))
    return path


def stepped(count, size=8):
    """Records of frames in which every pixel is the frame's number, 40 ms apart."""
    return [record(n, [n] * size, 1000 + n // 25, n % 25 * 40000) for n in range(count)]


def sparse(path, width, height, count):
    """An 8-bit recording of black frames that takes hardly any room on disk."""
    size = width * height
    path.write_bytes(header(width, height, 8, count))
    path.with_suffix("").mkdir()
    data = path.with_suffix("") / f"{path.stem}_0001.div"
    with open(data, "wb") as file:
        for n in range(count):
            file.seek(n * (16 + size))
            file.write(record(n, b"", 1000, n))
        file.truncate(count * (16 + size))
    os.stat(data)
    return path
