"""kpf record of inputs that break off: told wherever the container itself tells, and only there."""
import os
import shutil
import struct
import subprocess
import unittest

from videos import FFPROBE, MediaInput, ramp, y4m

FFMPEG = shutil.which("ffmpeg")
FRAMES = 50
PNG = ("-c:v", "png", "-pix_fmt", "gray")
# By the name of the file: how it is encoded, and what is said of one that lacks its last frame.
CONTAINERS = {
    "v.avi": (PNG, "ends after 1.96 of 2.00 s"),
    "front.mov": ((*PNG, "-movflags", "+faststart"), "what its index names is missing"),
    "pieces.mp4": (("-c:v", "mpeg4", "-g", "10", "-movflags", "frag_keyframe+empty_moov"),
                   "what its index names is missing"),
    "v.mkv": (PNG, "the end of what it began last is missing"),
    "live.mkv": ((*PNG, "-live", "1"), "the end of what it began last is missing"),
    "v.ogv": (("-c:v", "libtheora"), "the mark of its end is missing"),
    "v.apng": (("-c:v", "apng", "-pix_fmt", "gray"), "the mark of its end is missing"),
    "v.nut": (PNG, "cannot be read any further"),
    "v.wmv": (("-c:v", "wmv2"), r"what its header counts is missing|ends after 1.\d\d of 2.00 s"),
    "v.gif": ((), "the mark of its end is missing"),
}


@unittest.skipUnless(FFMPEG and FFPROBE, "needs ffmpeg and ffprobe to make a video")
class CutInputs(MediaInput):
    def setUp(self):
        super().setUp()
        # Noise enough that frames take more bytes than a container's odds and ends.
        self.write("long.y4m", y4m([ramp(n * n, 64 * 48, step=n * 37 + 3) for n in range(FRAMES)],
                                   64, 48))

    def encode(self, name, *codec, to=None):
        subprocess.run([FFMPEG, "-v", "error", "-i", "long.y4m", *codec, to or name],
                       cwd=self.folder, check=True, stdin=subprocess.DEVNULL, timeout=60)
        return self.read(name) if to is None else b""

    def encode_into_pipe(self, name, container, *codec):
        """As a program that cannot go back to its beginning leaves it."""
        with open(self.path(name), "wb") as file:
            subprocess.run([FFMPEG, "-v", "error", "-i", "long.y4m", *codec, "-f", container, "-"],
                           cwd=self.folder, check=True, stdin=subprocess.DEVNULL, stdout=file,
                           timeout=60)

    def packets(self, name):
        out = subprocess.run([FFPROBE, "-v", "error", "-select_streams", "v", "-show_entries",
                              "packet=pos,size", "-of", "csv=p=0", name], cwd=self.folder,
                             capture_output=True, check=True, text=True, timeout=60).stdout
        return [tuple(int(part) for part in line.split(",")[:2]) for line in out.split()]

    def check_whole(self, name, frames=FRAMES):
        code, _, err = self.kpf("record", name, "out.kpf", "--force", *self.start)
        self.assertEqual((code, self.announced()), (0, frames), (name, err))

    def check_cut(self, name, whole, size, said="kpf: ", piped=True):
        """Recorded from the file, and where it can be piped from there, code and line say so."""
        self.write("cut-" + name, whole[:size])
        code, _, err = self.kpf("record", "cut-" + name, "out.kpf", "--force", *self.start)
        self.assertEqual(code, 1, (name, size, err))
        self.assertRegex(err, said, name)
        self.assertLessEqual(self.announced(), FRAMES)
        if piped and name != "v.gif":  # FFmpeg looks through these before it reads them
            code, _, err = self.record_piped(whole[:size], "--force")
            self.assertEqual(code, 1, (name, size, err))

    def test_every_container_that_tells(self):
        for name, (codec, said) in CONTAINERS.items():
            with self.subTest(name):
                whole = self.encode(name, *codec)
                self.check_whole(name)
                packets = self.packets(name)
                self.assertEqual(len(packets), FRAMES)
                size, position = packets[30]
                self.check_cut(name, whole, packets[-1][1], said)  # where the last frame begins
                self.check_cut(name, whole, position + size // 2, piped=False)

    def test_without_sound_three_frames_are_no_matter_of_rounding(self):
        whole = self.encode("v.flv", "-c:v", "flv")
        self.check_whole("v.flv")
        self.check_cut("v.flv", whole, self.packets("v.flv")[-3][1], "ends after 1.84 of 2.00 s",
                       piped=False)

    def test_what_is_passed_over_between_frames_is_told(self):
        # A byte of the payload that a sum counts, and the length of what comes.
        for name, codec, frame, offset, said in (
                ("v.ogv", "libtheora", 0, 40, "CRC mismatch!"),  # looked at before any is read
                ("v.ogv", "libtheora", 20, 40, "CRC mismatch!"),
                ("v.flv", "flv", 20, 2, r"Packet mismatch [\d ]+")):
            whole = bytearray(self.encode(name, "-y", "-c:v", codec))
            whole[self.packets(name)[frame][1] + offset] ^= 1
            self.write(name, bytes(whole))
            code, _, err = self.kpf("record", name, "out.kpf", "--force", *self.start)
            self.assertEqual(code, 1, (name, err))
            self.assertRegex(err, f"damaged between its frames: {said}\\n$")

    def test_a_size_that_nobody_knew_is_none(self):
        whole = bytearray(self.encode("v.wmv", "-c:v", "wmv2"))
        properties = whole.index(b"\xa1\xdc\xab\x8c\x47\xa9\xcf\x11")
        whole[properties + 40:properties + 48] = struct.pack("<Q", 10 * len(whole))
        self.write("v.wmv", bytes(whole))
        self.assertEqual(self.kpf("record", "v.wmv", "out.kpf", *self.start)[0], 1)
        whole[properties + 88] |= 1  # broadcast
        self.write("v.wmv", bytes(whole))
        self.check_whole("v.wmv")

    def test_what_is_odd_in_a_header_costs_no_frame(self):
        whole = bytearray(self.encode("v.mkv", *PNG))
        whole[whole.index(b"\xec\x01\0\0") + 6] |= 0x40  # the length of what is left free
        self.write("v.mkv", bytes(whole))
        self.check_whole("v.mkv")

    def test_damage_at_no_time_that_anybody_tells(self):
        try:
            whole = bytearray(self.encode("v.hevc", "-c:v", "libx265", "-x265-params",
                                          "log-level=none"))
        except subprocess.CalledProcessError:
            self.skipTest("this FFmpeg does not encode HEVC")
        self.check_whole("v.hevc")
        position = self.packets("v.hevc")[20][1]
        whole[position + 6:position + 9] = b"\xff\0\xff"  # within the header of a slice
        self.write("v.hevc", bytes(whole))
        code, _, err = self.kpf("record", "v.hevc", "out.kpf", "--force", *self.start)
        self.assertEqual(code, 1, err)
        self.assertIn("nobody can tell which frame", err)

    def test_what_is_torn_of_the_last_frame(self):
        whole = self.encode("v.dv", "-c:v", "dvvideo", "-s", "720x576", "-pix_fmt", "yuv420p",
                            "-frames:v", "5")
        self.check_whole("v.dv", 5)
        self.check_cut("v.dv", whole, len(whole) - 72000, "ends within a frame")

    def test_what_was_written_into_a_pipe_is_whole(self):
        for name, container, codec in (("p.avi", "avi", PNG), ("p.mkv", "matroska", PNG),
                                       ("p.ogv", "ogg", ("-c:v", "libtheora")),
                                       ("p.nut", "nut", PNG), ("p.wmv", "asf", ("-c:v", "wmv2")),
                                       ("p.apng", "apng", ("-c:v", "apng")), ("p.gif", "gif", ()),
                                       ("p.flv", "flv", ("-c:v", "flv"))):
            with self.subTest(name):
                self.encode_into_pipe(name, container, *codec)
                self.check_whole(name)
                if name != "p.gif":
                    self.assertEqual(self.record_piped(self.read(name), "--force")[0], 0)

    def test_bytes_behind_the_end_do_no_harm(self):
        whole = self.encode("v.gif")
        self.write("more.gif", whole + b"and more")
        self.check_whole("more.gif")
        self.write("comment.gif", whole[:-1] + b"!\xfe\x05hello\0;")
        self.check_whole("comment.gif")

    def test_sound_beside_the_video_may_be_shorter_or_longer(self):
        for seconds in ("1.3", "2.7"):
            sound = ("-f", "lavfi", "-i", "sine=duration=" + seconds)
            for name, codec in (("s.mov", (*PNG, "-c:a", "pcm_s16le", "-movflags", "+faststart")),
                                ("s.ogv", ("-c:v", "libtheora", "-c:a", "libvorbis")),
                                ("s.wmv", ("-c:v", "wmv2", "-c:a", "wmav2")),
                                ("s.avi", (*PNG, "-c:a", "pcm_s16le"))):
                with self.subTest((name, seconds)):
                    self.encode(name, *sound, *codec, "-y")
                    self.check_whole(name)

    def test_a_part_of_a_video_is_a_whole_one(self):
        self.encode("v.mp4", "-c:v", "mpeg4", "-bf", "2", "-g", "10")
        for name in ("part.mp4", "part.mkv", "part.avi"):
            with self.subTest(name):
                subprocess.run([FFMPEG, "-v", "error", "-ss", "0.5", "-i", "v.mp4", "-t", "1",
                                "-c", "copy", name], cwd=self.folder, check=True, timeout=60)
                code, _, err = self.kpf("record", name, "out.kpf", "--force", *self.start)
                self.assertEqual(code, 0, err)

    def test_times_of_decoding_alone_tell_the_length_too(self):
        self.encode("v.mxf", "-c:v", "mpeg2video")
        self.check_whole("v.mxf")
        code, _, err = self.record_piped(self.read("v.mxf"), "--force")
        self.assertEqual(code, 0, err)

    @staticmethod
    def tiff(order, kinds):
        """Pictures of 2 x 2 pixels in one file. @param kinds of each: 1 a smaller copy, 4 a mask."""
        data = {"<": b"II", ">": b"MM"}[order] + struct.pack(order + "HI", 42, 12) + bytes(4)
        for number, kind in enumerate(kinds):
            tags = [(254, kind), (256, 2), (257, 2), (258, 8), (259, 1), (262, 1), (273, 8),
                    (278, 2), (279, 4)]
            following = len(data) + 2 + 12 * len(tags) + 4
            data += struct.pack(order + "H", len(tags))
            data += b"".join(struct.pack(order + "HHII", tag, 4, 1, value) for tag, value in tags)
            data += struct.pack(order + "I", following if number + 1 < len(kinds) else 0)
        return data

    def test_a_tiff_of_several_pictures_is_not_taken_for_one(self):
        for order in "<>":
            self.write("stack.tif", self.tiff(order, (0, 0, 1, 0)))
            code, _, err = self.kpf("record", "stack.tif", "out.kpf", "--force", *self.start)
            self.assertEqual(code, 1, err)
            self.assertIn("1 frame recorded, 0 placeholders: stack.tif holds 3 pictures in one "
                          "file: only the first is taken", err)
            self.write("small.tif", self.tiff(order, (0, 1, 4)))
            self.check_whole("small.tif", 1)
        for number in range(3):
            self.write("f_%d.tif" % number, self.tiff("<", [0] * (number + 1)))
        code, _, err = self.kpf("record", "f_%d.tif", "out.kpf", "--force", *self.start)
        self.assertEqual((code, self.announced()), (1, 3), err)
        self.assertIn("f_%d.tif holds 3 pictures in one file: only the first is taken", err)

    def test_a_tiff_that_leads_in_a_circle_comes_to_an_end(self):
        circle = bytearray(self.tiff("<", (0, 0)))
        circle[-4:] = struct.pack("<I", 12)
        self.write("circle.tif", bytes(circle))
        self.assertEqual(self.kpf("record", "circle.tif", "out.kpf", *self.start)[0], 1)

    def test_mp4_in_a_pipe_is_told_as_such(self):
        whole = self.encode("v.mp4", "-c:v", "mpeg4")
        for size, said in ((len(whole), "cannot decode -: its frames tell no size\n"),
                           (len(whole) - 1, "cannot open -: ")):
            code, _, err = self.record_piped(whole[:size])
            self.assertEqual(code, 2)
            self.assertIn(said, err)
            self.assertIn("MP4 and MOV cannot be piped, give the file itself", err)
            self.assertFalse(os.path.exists(self.path("out.kpf")))


if __name__ == "__main__":
    unittest.main()
