"""Inputs that are damaged at random places: no success that is none.

Each of them ends with an error, or gives the frames that the ffmpeg program decodes: as many, and
equal to the last bit. KPF_DAMAGED_INPUTS says how many of the 300 are taken, spread over all.
"""
import os
import random
import shutil
import struct
import subprocess
import tempfile
import unittest

from recordings import KPF
from videos import ramp, y4m

FFMPEG = shutil.which("ffmpeg")
ALL = 300
TAKEN = int(os.environ.get("KPF_DAMAGED_INPUTS", "30"))
WIDTH, HEIGHT, FRAMES = 64, 48, 20
SIZE = WIDTH * HEIGHT

# Name, bytes of a decoded frame, and whether its luma is of limited range; ffmpeg's options.
GREY, LUMA, FULL_LUMA = (SIZE, False), (SIZE * 3 // 2, True), (SIZE * 3 // 2, False)
VIDEOS = [
    ("ffv1.mkv", GREY, "-c:v ffv1 -level 3 -slicecrc 1 -g 1"),
    ("ffv1.avi", GREY, "-c:v ffv1 -level 3 -slicecrc 1 -g 5"),
    ("png.avi", GREY, "-c:v png -pix_fmt gray"),
    ("ffvhuff.mkv", GREY, "-c:v ffvhuff -pix_fmt gray -context 1"),
    ("plain.y4m", GREY, "-c:v rawvideo -pix_fmt gray"),
    ("raw.nut", GREY, "-c:v rawvideo -pix_fmt gray"),
    ("mjpeg.avi", FULL_LUMA, "-c:v mjpeg -pix_fmt yuvj420p -q:v 3"),
    ("mjpeg.mkv", FULL_LUMA, "-c:v mjpeg -pix_fmt yuvj420p -q:v 3"),
    ("mpeg2.ts", LUMA, "-c:v mpeg2video -pix_fmt yuv420p -bf 2 -g 6"),
    ("mpeg2.mkv", LUMA, "-c:v mpeg2video -pix_fmt yuv420p -bf 2 -g 6"),
    ("mpeg4.mp4", LUMA, "-c:v mpeg4 -pix_fmt yuv420p -g 6"),
    ("mpeg4.avi", LUMA, "-c:v mpeg4 -pix_fmt yuv420p -bf 2"),
    ("x264.mp4", LUMA, "-c:v libx264 -pix_fmt yuv420p -threads 1"),
    ("x264.mkv", LUMA, "-c:v libx264 -pix_fmt yuv420p -threads 1 -g 5"),
    ("x265.mkv", LUMA, "-c:v libx265 -pix_fmt yuv420p -x265-params log-level=none"),
    ("vp9.webm", LUMA, "-c:v libvpx-vp9 -pix_fmt yuv420p -threads 1"),
    ("wmv2.asf", LUMA, "-c:v wmv2 -pix_fmt yuv420p"),
]


def damage(data, chance):
    """A few bytes flipped, a sector of zeros, or the end cut off."""
    kind = chance.randrange(10)
    if kind == 0:
        return data[:chance.randrange(1, len(data))]
    data = bytearray(data)
    if kind == 1:
        at = chance.randrange(len(data))
        data[at:at + 512] = bytes(len(data[at:at + 512]))
    else:
        for _ in range(chance.choice((1, 1, 2, 8, 60))):
            data[chance.randrange(len(data))] ^= chance.randrange(1, 256)
    return bytes(data)


def grey_of(luma, limited):
    """Luma as recorded, see docs/tool.md."""
    if not limited:
        return luma
    return luma.translate(bytes(min(max((2 * (v - 16) * 255 + 219) // 438, 0), 255)
                                for v in range(256)))


@unittest.skipUnless(FFMPEG, "needs ffmpeg to make videos, and to compare with")
class DamagedInputs(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.folder = folder.name
        with open(os.path.join(cls.folder, "made.y4m"), "wb") as file:
            file.write(y4m([ramp(n, SIZE, step=n + 3) for n in range(FRAMES)], WIDTH, HEIGHT))
        cls.videos = []
        for name, form, options in VIDEOS:
            made = subprocess.run([FFMPEG, "-v", "quiet", "-i", "made.y4m", *options.split(), name],
                                  cwd=cls.folder, stdin=subprocess.DEVNULL, check=False)
            if made.returncode == 0:  # not every FFmpeg has every encoder
                with open(os.path.join(cls.folder, name), "rb") as file:
                    cls.videos.append((name, form, file.read()))
        assert len(cls.videos) > len(VIDEOS) // 2

    def decoded(self, name, form):
        """What the ffmpeg program makes of it, as grey."""
        size, limited = form
        raw = subprocess.run([FFMPEG, "-v", "quiet", "-i", name, "-map", "0:v:0", "-vsync",
                              "passthrough", "-f", "rawvideo", "-"], cwd=self.folder,
                             stdin=subprocess.DEVNULL, capture_output=True, timeout=60,
                             check=False).stdout
        return [grey_of(raw[at:at + SIZE], limited) for at in range(0, len(raw), size)]

    def recorded(self):
        """The frames, as many as the header says."""
        with open(os.path.join(self.folder, "out.kpf"), "rb") as file:
            header = file.read()
        width, height = struct.unpack_from("<HH", header, 176)
        with open(os.path.join(self.folder, "out/out_0001.div"), "rb") as file:
            data = file.read()
        size = 16 + width * height
        self.assertEqual(len(data), struct.unpack_from("<I", header, 468)[0] * size)
        return [data[at + 16:at + size] for at in range(0, len(data), size)]

    def check(self, number):
        chance = random.Random(number)
        name, form, data = self.videos[(number + number // 10) % len(self.videos)]
        name = "damaged." + name
        with open(os.path.join(self.folder, name), "wb") as file:
            file.write(damage(data, chance))
        for leftover in ("out.kpf", "out.kpf.incomplete.txt", "out/out_0001.div"):
            if os.path.exists(os.path.join(self.folder, leftover)):
                os.remove(os.path.join(self.folder, leftover))
        done = subprocess.run([KPF, "record", name, "out.kpf"], cwd=self.folder,
                              capture_output=True, timeout=60, check=False)
        self.assertIn(done.returncode, (0, 1, 2), done.stderr)
        if done.returncode == 2:  # what it is cannot be told: nothing was begun
            self.assertFalse(os.path.exists(os.path.join(self.folder, "out.kpf")))
            self.assertNotEqual(done.stderr, b"")
            return done.returncode
        frames = self.recorded()
        if done.returncode == 0:
            expected = self.decoded(name, form)
            self.assertEqual(len(frames), len(expected))
            self.assertEqual(frames, expected)
        return done.returncode

    def test_whole_ones_are_what_ffmpeg_decodes(self):
        for name, form, _ in self.videos:
            with self.subTest(name):
                subprocess.run([KPF, "record", name, "out.kpf", "--force", "--quiet"],
                               cwd=self.folder, check=True)
                self.assertEqual(len(self.recorded()), FRAMES)
                self.assertTrue(self.recorded() == self.decoded(name, form))

    def test_damage_is_told_or_makes_no_difference(self):
        codes = []
        for number in range(0, ALL, max(1, ALL // TAKEN)):
            with self.subTest(number=number):
                codes.append(self.check(number))
        # A test that damages nothing, or everything beyond recognition, would hold nothing.
        self.assertGreater(codes.count(1), len(codes) // 4)
        self.assertGreater(codes.count(0), 0)


if __name__ == "__main__":
    unittest.main()
