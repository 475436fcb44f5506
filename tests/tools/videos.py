"""Videos and pictures made by hand."""
import json
import os
import shutil
import struct
import subprocess
import zlib

from recordings import KPF, RecordingTest

FFPROBE = shutil.which("ffprobe")


def y4m(frames, width, height, rate=25, bits=8):
    """The file of frames given as lists of samples."""
    colour = "mono" if bits == 8 else "mono16"
    head = "YUV4MPEG2 W%d H%d F%d:1 Ip A1:1 C%s\n" % (width, height, rate, colour)
    code = "<%d%s" % (width * height, "B" if bits == 8 else "H")
    return head.encode() + b"".join(b"FRAME\n" + struct.pack(code, *frame) for frame in frames)


def ramp(number, count, step=1, limit=256):
    return [(number * 7 + i * step) % limit for i in range(count)]


def png(rows, width, height, colour_type, palette=b""):
    """A picture of 8 bits a sample; its rows are bytes."""
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(
            ">I", zlib.crc32(kind + data))
    size = len(rows) // height
    lines = b"".join(b"\0" + rows[y * size:(y + 1) * size] for y in range(height))
    return (b"\x89PNG\r\n\x1a\n"
            + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, colour_type, 0, 0, 0))
            + (chunk(b"PLTE", palette) if palette else b"")
            + chunk(b"IDAT", zlib.compress(lines)) + chunk(b"IEND", b""))


class VideoTest(RecordingTest):
    """Starts from five frames of 6 x 4 pixels in eight.y4m and in sixteen.y4m."""

    start = ("--start", "1700000000")

    def setUp(self):
        super().setUp()
        self.eight = [ramp(n, 24) for n in range(5)]
        self.sixteen = [ramp(n, 24, step=16 * 171, limit=65536) for n in range(5)]
        self.write("eight.y4m", y4m(self.eight, 6, 4))
        self.write("sixteen.y4m", y4m(self.sixteen, 6, 4, bits=16))

    def read(self, name):
        with open(self.path(name), "rb") as file:
            return file.read()

    def record(self, *arguments):
        code, out, err = self.kpf("record", *arguments, *self.start)
        self.assertEqual((code, err), (0, ""), out)
        return out

    def announced(self, name="out.kpf"):
        return struct.unpack_from("<I", self.read(name), 468)[0]

    def check_complete(self, frames):
        self.assertEqual(self.announced(), frames)
        self.assertFalse(os.path.exists(self.path("out.kpf.incomplete.txt")))
        code, _, err = self.kpf("verify", "out.kpf")
        self.assertEqual((code, err), (0, ""))

    def frame_times(self, name):
        """When each frame of a video is shown, in seconds, as another program reads it."""
        out = subprocess.run([FFPROBE, "-v", "error", "-select_streams", "v", "-show_entries",
                              "frame=best_effort_timestamp_time", "-of", "json", name],
                             cwd=self.folder, capture_output=True, check=True, timeout=60).stdout
        return [float(frame["best_effort_timestamp_time"]) for frame in json.loads(out)["frames"]]


class MediaInput(VideoTest):
    def frames(self, name="out", size=24):
        data = self.read("%s/%s_0001.div" % (name, name))
        return [data[n + 16:n + 16 + size] for n in range(0, len(data), 16 + size)]

    def record_piped(self, data, *arguments):
        done = subprocess.run([KPF, "record", "-", "out.kpf", *arguments, *self.start],
                              cwd=self.folder, input=data, capture_output=True, timeout=60,
                              check=False)
        return done.returncode, done.stdout.decode(), done.stderr.decode()
