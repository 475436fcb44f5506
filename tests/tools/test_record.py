"""kpf record: bytes on disk, exact output and exit codes."""
import json
import os
import shutil
import struct
import subprocess
import time
import unittest

from recordings import KPF, Terminal
from videos import VideoTest, y4m


def pack12(samples):
    """Two left-justified 16-bit samples in three bytes."""
    out = bytearray()
    for a, b in zip(samples[::2], samples[1::2]):
        out += bytes([a >> 8, (b & 0xF0) | (a >> 4 & 0x0F), b >> 8])
    return bytes(out)


def stamp(number, rate=25):
    """The frame header, its time computed in doubles as the library does."""
    time = 1700000000.0 + 1.0 / rate * number
    return struct.pack("<IqI", number, int(time), int((time - int(time)) * 1000000))


class Record(VideoTest):
    def refused(self, what, *arguments):
        code, out, err = self.kpf("record", *arguments)
        self.assertEqual((code, out), (2, ""))
        self.assertIn(what, err)
        return err

    def test_eight_bits(self):
        out = self.record("eight.y4m", "out.kpf")
        self.assertEqual(out, "./out.kpf: 5 frames recorded, 0 placeholders\n")
        data = self.read("out/out_0001.div")
        self.assertEqual(data[16:40], bytes(self.eight[0]))
        self.assertEqual([data[40 * n + 16:40 * n + 40] for n in range(5)],
                         [bytes(frame) for frame in self.eight])
        self.assertEqual(data[40:56], stamp(1))
        self.assertEqual(self.kpf("verify", "out.kpf")[0], 0)

    def test_twelve_bits_of_sixteen(self):
        self.record("sixteen.y4m", "out.kpf", "--bits", "12")
        data = self.read("out/out_0001.div")
        self.assertEqual([data[52 * n + 16:52 * n + 52] for n in range(5)],
                         [pack12(frame) for frame in self.sixteen])

    def test_eight_bits_of_sixteen_are_the_upper_ones(self):
        self.record("sixteen.y4m", "out.kpf")
        self.assertEqual(self.read("out/out_0001.div")[16:40],
                         bytes(sample >> 8 for sample in self.sixteen[0]))

    def test_twelve_bits_of_eight(self):
        self.record("eight.y4m", "out.kpf", "--bits", "12")
        self.assertEqual(self.read("out/out_0001.div")[16:52],
                         pack12([sample << 8 for sample in self.eight[0]]))

    def test_rows_of_every_width(self):
        for width in range(1, 10):
            frame = [(3 * i + width) % 256 for i in range(width * 3)]
            self.write("w.y4m", y4m([frame], width, 3))
            self.record("w.y4m", "w.kpf", "--force")
            self.assertEqual(self.read("w/w_0001.div")[16:], bytes(frame))

    def test_texts_and_rate_and_start(self):
        code, _, err = self.kpf("record", "eight.y4m", "out.kpf", "--text", "one", "--note", "two",
                                "--rate", "50", "--start", "2023-11-14T22:13:20.5Z")
        self.assertEqual((code, err), (0, ""))
        header = self.read("out.kpf")
        self.assertEqual(header[5:9], b"one\0")
        self.assertEqual(header[324:328], b"two\0")
        self.assertEqual(header[184:192], struct.pack("<d", 50.0))
        self.assertEqual(self.read("out/out_0001.div")[:16],
                         struct.pack("<IqI", 0, 1700000000, 500000))

    def test_fewer_frames(self):
        out = self.record("eight.y4m", "out.kpf", "--frames", "2")
        self.assertEqual(out, "./out.kpf: 2 frames recorded, 0 placeholders\n")
        self.assertEqual(len(self.read("out/out_0001.div")), 80)

    def test_more_frames_than_there_are(self):
        out = self.record("eight.y4m", "out.kpf", "--frames", "9")
        self.assertEqual(out, "./out.kpf: 5 frames recorded, 0 placeholders\n")
        self.check_complete(5)

    def test_duration(self):
        for duration, frames in (("0.08", 2), ("0.1", 3), ("0.001", 1), ("60", 5)):
            self.record("eight.y4m", "out.kpf", "--duration", duration, "--force")
            self.check_complete(frames)
        self.record("eight.y4m", "out.kpf", "--duration", "0.12", "--frames", "2", "--force")
        self.check_complete(2)
        self.refused("--duration", "eight.y4m", "out.kpf", "--duration", "0", "--force")

    def test_standard_input(self):
        done = subprocess.run([KPF, "record", "-", "out.kpf", "--frames", "5", *self.start],
                              cwd=self.folder, input=self.read("eight.y4m"), capture_output=True,
                              timeout=60, check=False)
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        self.assertEqual(len(self.read("out/out_0001.div")), 200)

    def test_standard_input_ends_by_itself(self):
        done = subprocess.run([KPF, "record", "-", "out.kpf"], cwd=self.folder,
                              input=self.read("eight.y4m"), capture_output=True, timeout=60,
                              check=False)
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        self.check_complete(5)

    def test_another_recording_is_not_overwritten(self):
        before = self.read("clip/clip_0001.div")
        err = self.refused("is there already", "eight.y4m", "clip.kpf")
        self.assertIn("--force", err)
        self.assertEqual(self.read("clip/clip_0001.div"), before)

    def test_force_removes_what_belonged_to_the_older_one(self):
        self.split()
        self.write("clip.kpf.incomplete.txt", b"old")
        self.write("clip/notes.txt", b"kept")
        self.record("eight.y4m", "clip.kpf", "--force")
        self.assertEqual(sorted(os.listdir(self.path("clip"))), ["clip_0001.div", "notes.txt"])
        self.assertFalse(os.path.exists(self.path("clip.kpf.incomplete.txt")))

    def test_force_leaves_what_no_recorder_names_so(self):
        names = ["clip_0000.div", "clip_00002.div", "clip_2.div", "clips_0002.div"]
        for name in names:
            self.write("clip/" + name, b"kept")
        self.record("eight.y4m", "clip.kpf", "--force")
        self.assertEqual(sorted(os.listdir(self.path("clip"))), sorted(["clip_0001.div", *names]))

    def test_failed_input_leaves_an_older_recording_alone(self):
        self.refused("cannot open", "missing.avi", "clip.kpf", "--force")
        self.assertEqual(self.kpf("verify", "clip.kpf")[0], 0)

    def test_bad_arguments(self):
        self.refused("cannot open missing.avi", "missing.avi", "out.kpf")
        self.write("noise.avi", b"this is no video")
        self.assertIn("\nGive a video file", self.refused("cannot open noise.avi", "noise.avi",
                                                          "out.kpf"))
        self.refused("has no extension", "eight.y4m", "out")
        self.refused("has no extension", "eight.y4m", ".kpf")
        self.refused("is not a time", "eight.y4m", "out.kpf", "--start", "yesterday")
        self.refused("is not a time", "eight.y4m", "out.kpf", "--start", "2026-02-30T00:00:00")
        self.refused("--bits", "eight.y4m", "out.kpf", "--bits", "10")
        self.refused("OUT", "eight.y4m")
        self.refused("Make the folder first", "eight.y4m", "missing/out.kpf")
        self.assertFalse(os.path.exists(self.path("out.kpf")))

    def test_recording_that_does_not_fit_the_disk_is_not_begun(self):
        if shutil.disk_usage(self.folder).free > 4294967295 * 52:
            self.skipTest("the disk is too large to be too small")
        self.refused("the disk has room for", "eight.y4m", "out.kpf", "--frames", "4294967295",
                     "--bits", "12")
        self.assertFalse(os.path.exists(self.path("out.kpf")))

    def make_gap(self):
        """gap.mkv, of whose five frames the third is not there."""
        subprocess.run(["ffmpeg", "-v", "error", "-i", "eight.y4m", "-vf", "select=not(eq(n\\,2))",
                        "-vsync", "passthrough", "-c:v", "ffv1", "gap.mkv"], cwd=self.folder,
                       check=True, stdin=subprocess.DEVNULL)

    @unittest.skipUnless(shutil.which("ffmpeg"), "needs ffmpeg to drop a frame")
    def test_gaps_are_filled_where_time_stamps_skip(self):
        self.make_gap()
        out = self.record("gap.mkv", "gap.kpf", "--fill-gaps", "--rate", "25")
        self.assertEqual(out, "./gap.kpf: 5 frames recorded, 1 placeholder\n")
        data = self.read("gap/gap_0001.div")
        self.assertEqual(data[80:120], bytes(40))
        self.assertEqual(data[120:136], stamp(3))
        self.assertEqual(data[136:160], bytes(self.eight[3]))

    @unittest.skipUnless(shutil.which("ffmpeg"), "needs ffmpeg to drop a frame")
    def test_gaps_that_are_not_filled_are_told(self):
        self.make_gap()
        self.assertEqual(self.kpf("record", "gap.mkv", "closed.kpf", *self.start),
                         (0, "./closed.kpf: 4 frames recorded, 0 placeholders\n",
                          "kpf: the frames of gap.mkv are not evenly spaced, 0.20 s of them became "
                          "0.16 s: --fill-gaps keeps their places\n"))
        code, _, err = self.kpf("record", "gap.mkv", "slow.kpf", "--fill-gaps", "--rate", "10")
        self.assertEqual((code, err), (0, "kpf: frames of gap.mkv come faster than they are "
                                          "recorded, and were moved: a higher --rate keeps their "
                                          "places\n"))

    @unittest.skipUnless(shutil.which("ffmpeg"), "needs ffmpeg to drop a frame")
    def test_recording_may_end_inside_a_gap(self):
        self.make_gap()
        for frames, placeholders in ((2, "0 placeholders"), (3, "1 placeholder"),
                                     (4, "1 placeholder")):
            out = self.record("gap.mkv", "gap.kpf", "--fill-gaps", "--rate", "25", "--frames",
                              str(frames), "--force")
            self.assertEqual(out, "./gap.kpf: %d frames recorded, %s\n" % (frames, placeholders))
            self.assertEqual(len(self.read("gap/gap_0001.div")), 40 * frames)
            self.assertEqual(self.kpf("verify", "gap.kpf")[0], 0)

    def test_progress_on_a_terminal(self):
        frame = b"FRAME\n" + bytes(64 * 64)
        terminal = Terminal(self, "record", "-", "out.kpf", "--frames", "100000")
        terminal.feed(b"YUV4MPEG2 W64 H64 F25:1 Ip A1:1 Cmono\n" + 100 * frame)
        while b"left" not in terminal.shown:
            self.assertIsNone(terminal.process.poll(), terminal.shown)
            terminal.feed(frame)
        code, out, shown = terminal.end()
        self.assertEqual(code, 0)
        self.assertRegex(out, rb"^./out.kpf: \d+ frames recorded, 0 placeholders\n$")
        self.assertRegex(shown, rb"^\r\x1b\[K\d+ of 100000 frames, \d+ frames/s, \d+:\d\d left")
        # Wiped in the end, with one line more.
        self.assertRegex(shown, rb"left\r\x1b\[K99.9 % of the calls took up to \d+\.\d\d ms, the "
                                rb"slowest \d+\.\d\d ms; \d+ frames? came late\r\n$")

    def test_quiet_says_nothing(self):
        self.assertEqual(self.kpf("record", "eight.y4m", "out.kpf", "--quiet"), (0, "", ""))
        code, out, shown = Terminal(self, "record", "eight.y4m", "again.kpf", "--quiet").end()
        self.assertEqual((code, out, shown), (0, b"", b""))

    def test_rates_are_rounded_to_whole_ones_with_a_word(self):
        code, out, err = self.kpf("record", "eight.y4m", "out.kpf", "--rate", "29.97", *self.start)
        self.assertEqual((code, out), (0, "./out.kpf: 5 frames recorded, 0 placeholders\n"))
        self.assertEqual(err, "kpf: 29.97 frames/s are recorded as 30: the format holds whole "
                              "rates\n")
        self.assertEqual(self.read("out.kpf")[184:192], struct.pack("<d", 30.0))

    def test_numbers_out_of_range_are_named_with_the_range(self):
        for rate in ("0.1", "nan", "inf", "-25", "2147483648", "ten"):
            self.refused("%s is no number from 1 to 2147483647" % rate, "eight.y4m", "out.kpf",
                         "--rate", rate)
        for duration in ("0", "nan", "inf", "-1"):
            self.refused("%s is no number from 1e-09 to 1000000000" % duration, "eight.y4m",
                         "out.kpf", "--duration", duration)
        for frames in ("0", "-1", "4294967296", "nan"):
            self.refused("--frames", "eight.y4m", "out.kpf", "--frames", frames)
        self.assertFalse(os.path.exists(self.path("out.kpf")))

    def test_slow_inputs_want_a_rate(self):
        self.write("slow.y4m", self.read("eight.y4m").replace(b"F25:1", b"F1:5"))
        err = self.refused("0.2 frames/s cannot be recorded", "slow.y4m", "out.kpf")
        self.assertIn("--rate", err)
        self.record("slow.y4m", "out.kpf", "--rate", "1")

    def test_texts_are_cut_where_their_fields_end(self):
        for option, offset, size in (("--text", 5, 151), ("--note", 324, 60)):
            self.record("eight.y4m", "out.kpf", "--force", option, "x" * size)
            text = "x" * (size - 1) + "\u00fc" + "y"
            code, _, err = self.kpf("record", "eight.y4m", "out.kpf", "--force", option, text)
            self.assertEqual((code, err),
                             (0, "kpf: %s is cut to %d of its %d bytes: its field has %d\n"
                              % (option, size - 1, size + 2, size)))
            # Not in the midst of a letter.
            self.assertEqual(self.read("out.kpf")[offset:offset + size - 1], b"x" * (size - 1))
            self.assertNotIn(self.read("out.kpf")[offset + size - 1:offset + size + 2],
                             "\u00fcy".encode())

    def test_json(self):
        code, out, err = self.kpf("record", "eight.y4m", "out.kpf", "--rate", "29.97", "--json")
        self.assertEqual(code, 0)
        told = json.loads(out)
        self.assertEqual((told["outcome"], told["frames"], told["placeholders"], told["onDisk"],
                          told["late"], told["trouble"]), ("done", 5, 0, 5, None, None))
        self.assertEqual(told["remarks"], ["29.97 frames/s are recorded as 30: the format holds "
                                           "whole rates"])
        self.assertEqual(err, "kpf: %s\n" % told["remarks"][0])
        self.assertGreater(told["calls"]["longest"], 0)
        self.assertLessEqual(told["calls"]["p999"], told["calls"]["longest"])
        code, out, _ = self.kpf("record", "eight.y4m", "out.kpf", "--json")
        self.assertEqual((code, json.loads(out)["error"]["name"]), (2, "refused"))

    def test_sources_that_set_the_pace_may_be_late(self):
        done = subprocess.run([KPF, "record", "-", "out.kpf", "--json"], cwd=self.folder,
                              input=self.read("eight.y4m"), capture_output=True, timeout=60,
                              check=False)
        self.assertEqual(json.loads(done.stdout)["late"], 0)
        with open(self.path("eight.y4m"), "rb") as video:
            done = subprocess.run([KPF, "record", "-", "again.kpf", "--json"], cwd=self.folder,
                                  stdin=video, capture_output=True, timeout=60, check=False)
        self.assertIsNone(json.loads(done.stdout)["late"])

    def test_input_without_frames(self):
        self.write("none.y4m", y4m([], 6, 4))
        self.refused("none.y4m", "none.y4m", "out.kpf")
        self.assertFalse(os.path.exists(self.path("out.kpf")))


if __name__ == "__main__":
    unittest.main()
