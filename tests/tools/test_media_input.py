"""kpf record of what others made: damage, pixel formats, remarks, and what stays shut."""
import os
import shutil
import struct
import subprocess
import threading
import unittest

from test_record import pack12
from videos import FFPROBE, MediaInput, png, ramp, y4m

FFMPEG = shutil.which("ffmpeg")


@unittest.skipUnless(FFMPEG and FFPROBE, "needs ffmpeg and ffprobe to make a video")
class Damage(MediaInput):
    """Frames that are not what was encoded are not recorded as if they were."""

    def encode(self, name, *codec, frames=50):
        video = y4m([ramp(n, 64 * 48, step=n + 3) for n in range(frames)], 64, 48)
        self.write("long.y4m", video)
        subprocess.run([FFMPEG, "-v", "error", "-i", "long.y4m", *codec, name], cwd=self.folder,
                       check=True, stdin=subprocess.DEVNULL)
        self.record("long.y4m", "whole.kpf")

    def packets(self, name):
        out = subprocess.run([FFPROBE, "-v", "error", "-select_streams", "v", "-show_entries",
                              "packet=pos,size", "-of", "csv=p=0", name], cwd=self.folder,
                             capture_output=True, check=True, text=True, timeout=60).stdout
        # Size and position, in this order.
        return [tuple(int(part) for part in line.split(",")[:2]) for line in out.split()]

    def spoil(self, name, numbers):
        packets = self.packets(name)
        data = bytearray(self.read(name))
        for number in numbers:
            size, position = packets[number]
            for i in range(position + size // 2, position + size // 2 + 8):
                data[i] ^= 0x5A
        self.write(name, bytes(data))

    def check_spoilt(self, name, numbers):
        code, out, err = self.kpf("record", name, "out.kpf", *self.start)
        self.assertEqual((code, out), (1, ""))
        many = "s" if len(numbers) > 1 else ""
        self.assertEqual(err, "kpf: ./out.kpf: 50 frames recorded, %d placeholder%s: %d frame%s %s "
                              "damaged\n" % (len(numbers), many, len(numbers), many,
                                             "are" if many else "is"))
        size = 64 * 48
        for n, (ours, whole) in enumerate(zip(self.frames(size=size),
                                              self.frames("whole", size))):
            self.assertEqual(ours, bytes(size) if n in numbers else whole, n)
        self.assertEqual(self.announced(), 50)
        self.assertFalse(os.path.exists(self.path("out.kpf.incomplete.txt")))

    def test_a_sum_that_does_not_hold(self):
        self.encode("v.mkv", "-c:v", "ffv1", "-level", "3", "-slicecrc", "1", "-g", "1")
        self.spoil("v.mkv", (3, 20, 49))
        self.check_spoilt("v.mkv", (3, 20, 49))

    def test_frames_that_cannot_be_decoded(self):
        self.encode("v.avi", "-c:v", "png", "-pix_fmt", "gray")
        self.spoil("v.avi", (0, 7, 8))
        self.check_spoilt("v.avi", (0, 7, 8))

    def test_amplifying_damage_is_no_success(self):
        self.encode("v.mkv", "-c:v", "ffv1", "-level", "3", "-slicecrc", "1", "-g", "1")
        amplify = ("amplify", "v.mkv", "out.mkv", "--frequency", "12", "--quiet", "--force")
        self.assertEqual(self.kpf(*amplify), (0, "", ""))
        self.spoil("v.mkv", (3, 20))
        self.cut("v.mkv", self.packets("v.mkv")[30][1])
        code, _, err = self.kpf(*amplify)
        self.assertEqual(code, 1)
        self.assertIn("2 of 30 frames were lost (3, 20)", err)
        self.assertTrue(err.endswith("kpf: v.mkv: 2 frames are damaged, v.mkv ends after 1.20 of "
                                     "2.00 s\n"), err)

    def test_frames_out_of_order_keep_their_number(self):
        self.encode("v.mkv", "-c:v", "mpeg2video", "-bf", "2")
        self.spoil("v.mkv", (10,))
        code, _, err = self.kpf("record", "v.mkv", "out.kpf", *self.start)
        self.assertEqual(code, 1)
        self.assertRegex(err, r"50 frames recorded, (\d+) placeholders?: \1 frames? (is|are) damaged\n$")
        self.assertEqual(self.announced(), 50)

    def test_frames_that_an_avi_has_lost_are_missed(self):
        self.encode("v.avi", "-c:v", "ffv1", "-g", "1")
        self.cut("v.avi", self.packets("v.avi")[30][1] - 8)  # where a frame begins
        code, _, err = self.kpf("record", "v.avi", "out.kpf", *self.start)
        self.assertEqual(code, 1)
        self.assertIn("30 frames recorded, 0 placeholders: v.avi ends after 1.20 of 2.00 s", err)

    def test_times_need_not_begin_at_0(self):
        self.encode("v.mkv", "-c:v", "ffv1", "-g", "1")
        for name, codec in (("late.mkv", "copy"), ("late.mp4", "mpeg4"), ("late.ts", "mpeg2video")):
            subprocess.run([FFMPEG, "-v", "error", "-i", "v.mkv", "-c:v", codec,
                            "-output_ts_offset", "5", name], cwd=self.folder, check=True)
            self.record(name, "out.kpf", "--force")
            self.assertEqual(self.announced(), 50)
        self.cut("late.mkv", self.packets("late.mkv")[30][1])
        code, _, err = self.kpf("record", "late.mkv", "out.kpf", "--force", *self.start)
        self.assertEqual(code, 1)
        self.assertIn("30 frames recorded, 0 placeholders: late.mkv ends after 6.20 of 7.00 s", err)

    def test_sound_hides_no_early_end(self):
        self.encode("v.mkv", "-c:v", "ffv1", "-g", "1")
        sound = ("-f", "lavfi", "-i", "sine=duration=2.1", "-c:v", "copy", "-c:a")
        # The last begins before 0, with what AAC needs to come into its stride.
        for name, codec in (("s.mkv", ("pcm_s16le",)), ("s.avi", ("pcm_s16le",)),
                            ("early.mkv", ("aac", "-avoid_negative_ts", "disabled"))):
            subprocess.run([FFMPEG, "-v", "error", "-i", "v.mkv", *sound, *codec, name],
                           cwd=self.folder, check=True, timeout=60)
            self.assertEqual(self.kpf("record", name, "whole.kpf", "--force", *self.start)[0], 0,
                             name)
            self.cut(name, os.path.getsize(self.path(name)) * 6 // 10)
            code, out, err = self.kpf("record", name, "out.kpf", "--force", *self.start)
            self.assertEqual((code, out), (1, ""), name)
            self.assertRegex(err, r"\d+ frames recorded, ")

    def test_a_file_that_ends_before_its_end(self):
        self.encode("v.mkv", "-c:v", "ffv1", "-g", "1")
        self.cut("v.mkv", self.packets("v.mkv")[30][1])
        code, out, err = self.kpf("record", "v.mkv", "out.kpf", *self.start)
        self.assertEqual((code, out), (1, ""))
        self.assertRegex(err, r"30 frames recorded, 0 placeholders: v.mkv ends after 1.20 of 2.00 s\n")
        self.assertEqual(self.announced(), 30)
        self.assertEqual(self.kpf("verify", "out.kpf")[0], 0)

    def test_a_transport_stream_that_ends_within_a_packet(self):
        self.encode("v.ts", "-c:v", "mpeg2video")
        whole = self.read("v.ts")
        # Whoever tunes in late begins anywhere.
        for data in (whole, whole[100:]):
            self.write("v.ts", data)
            self.assertEqual(self.kpf("record", "v.ts", "out.kpf", "--force", *self.start)[0], 0)
        frames = set()
        for size in range(len(whole) // 2 // 188 * 188 + 20, len(whole), len(whole) // 12):
            if size % 188 == 0:
                continue
            code, _, err = self.record_piped(whole[:size], "--force")
            self.assertEqual(code, 1, size)
            self.assertRegex(err, "damaged|- ends within a packet")
            frames.add(self.announced())
        self.assertGreater(len(frames), 3)


class PixelFormats(MediaInput):
    """Each frame by its own format and range."""

    luma = [8, 16, 128, 250, 235, 0, 255, 17]

    def record_luma(self, colour, values, code, *arguments):
        chroma = struct.pack("<4" + code, *[128 << (2 if code == "H" else 0)] * 4)
        head = "YUV4MPEG2 W4 H2 F25:1 Ip A1:1 %s\nFRAME\n" % colour
        self.write("luma.y4m", head.encode() + struct.pack("<8" + code, *values) + chroma)
        self.record("luma.y4m", "out.kpf", "--force", *arguments)
        return self.frames(size=12 if arguments else 8)[0]

    @staticmethod
    def stretched(luma, depth):
        scale = 1 << (depth - 8)
        grey = ((luma - 16 * scale) * ((1 << depth) - 1) / (219 * scale)) + 0.5
        return min(max(int(grey), 0), (1 << depth) - 1)

    def test_luma_of_full_range_is_the_grey(self):
        self.assertEqual(self.record_luma("C420jpeg XCOLORRANGE=FULL", self.luma, "B"),
                         bytes(self.luma))
        deep = [value * 4 + 3 for value in self.luma]
        self.assertEqual(self.record_luma("C420p10 XCOLORRANGE=FULL", deep, "H", "--bits", "12"),
                         pack12([value << 6 for value in deep]))

    def test_luma_of_limited_range_is_stretched(self):
        self.assertEqual(self.record_luma("C420jpeg", self.luma, "B"),
                         bytes(self.stretched(value, 8) for value in self.luma))
        deep = [value * 4 + 3 for value in self.luma]
        self.assertEqual(self.record_luma("C420p10", deep, "H", "--bits", "12"),
                         pack12([self.stretched(value, 10) << 6 for value in deep]))

    def write_pictures(self):
        """Four pictures of one grey, each in a pixel format of its own."""
        grey = bytes(ramp(3, 24, step=11))
        self.write("f_1.png", png(grey, 6, 4, 0))
        self.write("f_2.png", png(bytes(v for g in grey for v in (g, g, g)), 6, 4, 2))
        self.write("f_3.png", png(bytes(v for g in grey for v in (g, g, g, 255)), 6, 4, 6))
        palette = bytes(255 - i // 3 for i in range(768))
        self.write("f_4.png", png(bytes(255 - g for g in grey), 6, 4, 3, palette))
        return grey

    def test_the_format_may_change_from_frame_to_frame(self):
        grey = self.write_pictures()
        self.record("f_%d.png", "out.kpf", "--rate", "25")
        self.assertEqual(self.frames(), [grey] * 4)

    def test_colours_are_weighed(self):
        self.write("c.png", png(bytes([255, 0, 0, 0, 255, 0, 0, 0, 255]), 3, 1, 2))
        self.record("c.png", "out.kpf")
        self.assertEqual(self.frames(size=3), [bytes([76, 150, 29])])

    def test_another_size_ends_the_recording(self):
        grey = self.write_pictures()
        self.write("f_3.png", png(bytes(30), 6, 5, 0))
        code, out, err = self.kpf("record", "f_%d.png", "out.kpf", "--rate", "25", *self.start)
        self.assertEqual((code, out), (1, ""))
        self.assertIn("2 frames recorded, 0 placeholders: f_%d.png changes its size from 6 x 4 to 6 x 5", err)
        self.assertEqual(self.frames(), [grey] * 2)
        self.assertEqual(self.kpf("verify", "out.kpf")[0], 0)


@unittest.skipUnless(FFMPEG, "needs ffmpeg to make a video")
class Shown(MediaInput):
    """What a player does and record does not is told."""

    def check_remark(self, name, remark):
        code, out, err = self.kpf("record", name, "out.kpf", "--force", *self.start)
        self.assertEqual((code, out), (0, "./out.kpf: 5 frames recorded, 0 placeholders\n"))
        self.assertEqual(err, "kpf: %s\n" % remark)
        self.assertEqual(self.frames(), [bytes(frame) for frame in self.eight])

    def make(self, name, *arguments):
        subprocess.run([FFMPEG, "-v", "error", "-i", "eight.y4m", *arguments, name],
                       cwd=self.folder, check=True, stdin=subprocess.DEVNULL)

    def test_turned(self):
        self.make("v.mov", "-c:v", "png", "-pix_fmt", "gray")
        plain = self.read("v.mov")
        matrix = plain.index(b"tkhd") + 44  # of the track: a b 0 c d 0 x y 1
        for (a, b, c, d), turn in (((0, 1, -1, 0), "turned by 90 degrees"),
                                   ((-1, 0, 0, -1), "turned by 180 degrees"),
                                   ((0, -1, 1, 0), "turned by 270 degrees"),
                                   ((-1, 0, 0, 1), "mirrored")):
            turned = struct.pack(">9i", a << 16, b << 16, 0, c << 16, d << 16, 0, 0, 0, 1 << 30)
            self.write("v.mov", plain[:matrix] + turned + plain[matrix + 36:])
            self.check_remark("v.mov", "players show v.mov %s: frames are taken as they are stored"
                              % turn)

    def test_pixels_that_are_not_square(self):
        self.make("wide.mkv", "-c:v", "ffv1", "-aspect", "4:1")
        self.check_remark("wide.mkv", "the pixels of wide.mkv are not square: frames are taken as "
                                      "they are stored")

    def test_several_videos(self):
        self.make("two.mkv", "-map", "0", "-map", "0", "-c:v", "ffv1")
        self.check_remark("two.mkv", "two.mkv holds 2 videos: number 1 is taken")
        # The one that is marked as the one to show, of several alike.
        self.make("other.mkv", "-map", "0", "-map", "0", "-c:v", "ffv1", "-disposition:v:0", "0",
                  "-disposition:v:1", "default")
        self.check_remark("other.mkv", "other.mkv holds 2 videos: number 2 is taken")


class Shut(MediaInput):
    """What the user did not name is not opened."""

    def test_play_lists_lead_nowhere(self):
        self.write("list.m3u8", b"#EXTM3U\n#EXT-X-TARGETDURATION:1\n#EXTINF:1,\neight.y4m\n"
                                b"#EXT-X-ENDLIST\n")
        self.write("list.ffconcat", b"ffconcat version 1.0\nfile eight.y4m\n")
        for name in ("list.m3u8", "list.ffconcat"):
            code, _, err = self.kpf("record", name, "out.kpf")
            self.assertEqual(code, 2, name)
            self.assertIn(name, err)
        self.assertFalse(os.path.exists(self.path("out.kpf")))

    def test_names_are_paths(self):
        for name in ("http://127.0.0.1:9/v.mkv", "concat:eight.y4m|eight.y4m", "data:,x"):
            code, _, err = self.kpf("record", name, "out.kpf")
            self.assertEqual(code, 2, name)
            self.assertIn("No such file", err)

    def test_names_with_a_colon_are_names(self):
        self.write("http:v.y4m", self.read("eight.y4m"))
        self.record("http:v.y4m", "out.kpf")

    def test_a_named_pipe_is_opened_once(self):
        os.mkfifo(self.path("pipe"))

        def feed():
            with open(self.path("pipe"), "wb") as pipe:
                pipe.write(self.read("eight.y4m"))
        feeder = threading.Thread(target=feed)
        feeder.start()
        self.addCleanup(feeder.join)
        self.assertEqual(self.record("pipe", "out.kpf"),
                         "./out.kpf: 5 frames recorded, 0 placeholders\n")


if __name__ == "__main__":
    unittest.main()
