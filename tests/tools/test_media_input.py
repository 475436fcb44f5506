"""kpf record of what others made: damage, pixel formats, patterns, pipes, and what stays shut."""
import os
import shutil
import struct
import subprocess
import threading
import unittest
import zlib

from recordings import KPF
from test_record import pack12
from videos import FFPROBE, VideoTest, ramp, y4m

FFMPEG = shutil.which("ffmpeg")


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


class MediaInput(VideoTest):
    def frames(self, name="out", size=24):
        data = self.read("%s/%s_0001.div" % (name, name))
        return [data[n + 16:n + 16 + size] for n in range(0, len(data), 16 + size)]

    def record_piped(self, data, *arguments):
        done = subprocess.run([KPF, "record", "-", "out.kpf", *arguments, *self.start],
                              cwd=self.folder, input=data, capture_output=True, timeout=60,
                              check=False)
        return done.returncode, done.stdout.decode(), done.stderr.decode()


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
        sound = ("-f", "lavfi", "-i", "sine=duration=2.1", "-c:v", "copy", "-c:a", "pcm_s16le")
        for name in ("s.mkv", "s.avi"):
            subprocess.run([FFMPEG, "-v", "error", "-i", "v.mkv", *sound, name], cwd=self.folder,
                           check=True, timeout=60)
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


class WayBack(MediaInput):
    """What export writes, record reads."""

    def test_patterns_begin_at_any_number(self):
        for n in range(5):
            self.write("f_%04d.png" % (1234 + n), png(bytes(self.eight[n]), 6, 4, 0))
        self.write("f_99999.png", png(bytes(24), 6, 4, 0))
        self.write("f_12x4.png", b"something else")
        os.remove(self.path("f_99999.png"))
        code, out, err = self.kpf("record", "f_%04d.png", "out.kpf", *self.start)
        self.assertEqual((code, out), (0, "./out.kpf: 5 frames recorded, 0 placeholders\n"))
        self.assertEqual(err, "kpf: f_%04d.png tells no frame rate: 25 is taken, --rate chooses\n")
        self.assertEqual(self.frames(), [bytes(frame) for frame in self.eight])

    def test_single_bits_are_black_and_white(self):
        self.write("bits.pbm", b"P4\n8 2\n" + bytes([0b10100000, 0b00001111]))
        self.record("bits.pbm", "out.kpf")
        self.assertEqual(self.frames(size=16), [
            bytes([0, 255, 0] + 5 * [255] + 4 * [255] + 4 * [0])])
        self.record("bits.pbm", "out.kpf", "--bits", "12", "--force")
        data = self.read("out/out_0001.div")
        self.assertEqual(data[16:22], bytes([0, 0xF0, 0xFF, 0, 0xF0, 0xFF]))

    def test_images_may_lie_in_a_folder_of_any_name(self):
        for folder in ("50%", "a%02db", "[%*]"):
            os.mkdir(self.path(folder))
            for n in range(3):
                self.write("%s/f_%d.png" % (folder, n), png(bytes(24), 6, 4, 0))
            out = self.record(folder + "/f_%d.png", "out.kpf", "--rate", "25", "--force")
            self.assertEqual(out, "./out.kpf: 3 frames recorded, 0 placeholders\n")

    def test_the_rate_of_images_is_theirs(self):
        for n in range(3):
            self.write("f_%d.png" % (n + 7), png(bytes(24), 6, 4, 0))
        out = self.record("f_%d.png", "out.kpf", "--rate", "100", "--fill-gaps")
        self.assertEqual(out, "./out.kpf: 3 frames recorded, 0 placeholders\n")

    def test_images_behind_a_gap_are_told(self):
        for n in (7, 8, 11):
            self.write("f_%02d.png" % n, png(bytes(24), 6, 4, 0))
        code, _, err = self.kpf("record", "f_%02d.png", "out.kpf", "--rate", "25", *self.start)
        self.assertEqual(code, 1)
        self.assertIn("2 frames recorded, 0 placeholders: f_%02d.png has a gap", err)

    def test_bare_frames(self):
        for pixels, bits, name in (("gray8", "8", "eight"), ("gray16le", "12", "sixteen")):
            self.record(name + ".y4m", "first.kpf", "--bits", bits, "--force")
            bare = self.kpf_bytes("export", "first.kpf", "-").stdout
            code, out, _ = self.record_piped(bare, "--raw", "6x4:" + pixels, "--bits", bits,
                                             "--rate", "25", "--force")
            self.assertEqual((code, out), (0, "./out.kpf: 5 frames recorded, 0 placeholders\n"))
            self.assertEqual(self.read("out/out_0001.div"), self.read("first/first_0001.div"))

    def test_y4m_goes_out_and_in(self):
        for bits, name, rate in (("8", "eight", "25"), ("12", "sixteen", "100")):
            self.record(name + ".y4m", "first.kpf", "--bits", bits, "--force", "--rate", rate)
            video = self.kpf_bytes("export", "first.kpf", "-", "--y4m").stdout
            self.assertTrue(video.startswith(b"YUV4MPEG2 W6 H4 F%s:1 Ip A1:1 Cmono" % rate.encode()))
            code, out, err = self.record_piped(video, "--bits", bits, "--force")
            self.assertEqual((code, out, err),
                             (0, "./out.kpf: 5 frames recorded, 0 placeholders\n", ""))
            self.assertEqual(self.read("out/out_0001.div"), self.read("first/first_0001.div"))
            self.assertEqual(self.read("out.kpf")[:473], self.read("first.kpf")[:473])

    def test_y4m_of_what_is_amplified(self):
        video = self.kpf_bytes("amplify", "eight.y4m", "-", "--y4m", "--frequency", "12", "--rate",
                               "29.97", "--quiet").stdout
        self.assertEqual(video[:video.index(b"\n") + 7],
                         b"YUV4MPEG2 W6 H4 F2997:100 Ip A1:1 Cmono\nFRAME\n")
        self.assertEqual(len(video), video.index(b"\n") + 1 + 5 * (6 + 24))
        code, _, err = self.kpf("amplify", "eight.y4m", "out.mkv", "--y4m", "--frequency", "12")
        self.assertEqual(code, 2)
        self.assertIn("--y4m is for frames on -", err)

    def test_bare_frames_must_be_named_well(self):
        for raw in ("6x4", "0x4:gray8", "6x4:rgb24", "6 x 4:gray8", "6x4:gray8:"):
            code, _, err = self.kpf("record", "eight.y4m", "out.kpf", "--raw", raw)
            self.assertEqual(code, 2, raw)
            self.assertIn("Write --raw like 640x480:gray8", err)

    def test_a_torn_frame_of_y4m_is_told(self):
        whole = self.read("eight.y4m")
        for missing in (1, 23, 24, 29):  # of the 30 bytes of the last frame
            code, _, err = self.record_piped(whole[:-missing], "--force")
            self.assertEqual(code, 1, missing)
            self.assertIn("4 frames recorded, 0 placeholders: - ends within a frame\n", err)
            self.assertEqual(self.announced(), 4)
        self.assertEqual(self.record_piped(whole[:-30], "--force")[0], 0)

    def test_frames_beyond_the_header_are_refused(self):
        code, out, err = self.record_piped(bytes(65536), "--raw", "65536x1:gray8", "--rate", "25")
        self.assertEqual((code, out), (2, ""))
        self.assertIn("frames of more than 65535 rows or columns do not fit", err)
        self.assertFalse(os.path.exists(self.path("out.kpf")))

    def test_a_torn_bare_frame_is_damaged(self):
        code, _, err = self.record_piped(bytes(24 * 2 + 5), "--raw", "6x4:gray8", "--rate", "25")
        self.assertEqual(code, 1)
        self.assertIn("3 frames recorded, 1 placeholder: 1 frame is damaged\n", err)

    def test_what_cannot_be_piped_is_told(self):
        head = struct.pack(">I", 32) + b"ftypisom" + bytes(20)
        code, _, err = self.record_piped(head + struct.pack(">I", 1000) + b"mdat" + bytes(992))
        self.assertEqual(code, 2)
        self.assertIn("MP4 and MOV cannot be piped", err)


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
