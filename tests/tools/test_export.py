"""kpf export: what was recorded comes back, bit for bit where the target is lossless."""
import os
import signal
import struct
import subprocess
import unittest

from recordings import KPF, RecordingTest, Terminal, header, record, run
from videos import FFPROBE, VideoTest, y4m


class Export(VideoTest):
    def setUp(self):
        super().setUp()
        self.record("eight.y4m", "eight.kpf", "--quiet")
        self.record("sixteen.y4m", "sixteen.kpf", "--bits", "12", "--quiet")
        self.kept = [[sample & 0xFFF0 for sample in frame] for frame in self.sixteen]

    def export(self, *arguments):
        self.assertEqual(self.kpf("export", *arguments), (0, "", ""))

    def raw(self, *arguments):
        done = self.kpf_bytes("export", *arguments)
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        return done.stdout

    def test_raw_frames_in_a_pipe(self):
        self.assertEqual(self.raw("eight.kpf", "-"), b"".join(map(bytes, self.eight)))
        self.assertEqual(self.raw("sixteen.kpf", "-"),
                         b"".join(struct.pack("<24H", *frame) for frame in self.kept))

    def test_range_of_frames(self):
        self.assertEqual(self.raw("eight.kpf", "-", "--from", "1", "--to", "2"),
                         bytes(self.eight[1]) + bytes(self.eight[2]))
        self.assertEqual(self.raw("eight.kpf", "-", "--from", "4"), bytes(self.eight[4]))
        self.assertEqual(self.raw("eight.kpf", "-", "--to", "0"), bytes(self.eight[0]))

    def test_lossless_targets_give_back_the_recording(self):
        for name, bits in (("eight", "8"), ("sixteen", "12")):
            for target in (name + ".mkv", name + "_out.y4m", name + "_%06d.png", name + "_%06d.tif",
                           name + "_%06d.pgm"):
                self.export(name + ".kpf", target)
                self.record(target, "again.kpf", "--bits", bits, "--rate", "25", "--force",
                            "--quiet")
                self.assertEqual(self.read("again/again_0001.div"),
                                 self.read("%s/%s_0001.div" % (name, name)), target)

    def test_raw_frames_in_a_file_are_those_of_the_pipe(self):
        self.export("sixteen.kpf", "out.raw", "--from", "1")
        self.assertEqual(self.read("out.raw"), self.raw("sixteen.kpf", "-", "--from", "1"))

    def test_y4m_in_a_pipe_is_recorded_again(self):
        for name, bits in (("eight", "8"), ("sixteen", "12")):
            video = self.raw(name + ".kpf", "-", "--y4m")
            self.export(name + ".kpf", name + "_out.y4m")
            self.assertEqual(video, self.read(name + "_out.y4m"))
            done = subprocess.run([KPF, "record", "-", "again.kpf", "--bits", bits, "--force",
                                   "--quiet", *self.start], cwd=self.folder, input=video,
                                  capture_output=True, timeout=60, check=False)
            self.assertEqual((done.returncode, done.stderr), (0, b""))
            self.assertEqual(self.read("again/again_0001.div"),
                             self.read("%s/%s_0001.div" % (name, name)))

    def test_images_are_numbered_by_their_frames(self):
        self.export("eight.kpf", "f_%06d.png", "--from", "3", "--to", "4")
        self.assertTrue(os.path.exists(self.path("f_000003.png")))
        self.assertTrue(os.path.exists(self.path("f_000004.png")))
        self.assertFalse(os.path.exists(self.path("f_000005.png")))

    def test_single_image_needs_no_number(self):
        self.export("eight.kpf", "one.tif", "--from", "2", "--to", "2")
        self.assertTrue(os.path.exists(self.path("one.tif")))

    def test_video_for_viewing(self):
        self.export("eight.kpf", "view.mp4")
        self.assertEqual(self.read("view.mp4")[4:8], b"ftyp")

    @unittest.skipUnless(FFPROBE, "needs ffprobe to read the times")
    def test_frames_are_shown_when_they_were_taken(self):
        for rate in (25, 50, 1000):
            self.write("fast.y4m", y4m(self.eight, 6, 4, rate=rate))
            self.record("fast.y4m", "fast.kpf", "--quiet", "--force")
            for target in ("fast.mkv", "fast.mp4", "fast.mov"):
                self.export("fast.kpf", target, "--force")
                times = self.frame_times(target)
                self.assertEqual(len(times), 5, target)
                for number, time in enumerate(times):
                    # Matroska counts whole milliseconds.
                    self.assertAlmostEqual(time - times[0], number / rate, delta=0.00051,
                                           msg="%s at %d" % (target, rate))

    @unittest.skipUnless(FFPROBE, "needs ffprobe to read the length")
    def test_the_last_frame_is_shown_as_long_as_the_others(self):
        for target in ("eight.mkv", "eight.mp4", "eight.mov", "eight.avi"):
            self.export("eight.kpf", target)
            out = subprocess.run([FFPROBE, "-v", "error", "-show_entries", "format=duration",
                                  "-of", "csv=p=0", target], cwd=self.folder, capture_output=True,
                                 check=True, timeout=60).stdout
            self.assertAlmostEqual(float(out), 5 / 25, delta=0.001, msg=target)

    @unittest.skipUnless(FFPROBE, "needs ffprobe to read the times")
    def test_recordings_without_a_rate_are_shown_at_25(self):
        self.patch("eight.kpf", 184, struct.pack("<d", 0.0))
        said = "kpf: eight.kpf tells no frame rate; 25 is taken\n"
        for name in ("norate.mkv", "norate.y4m"):
            self.assertEqual(self.kpf("export", "eight.kpf", name), (0, "", said))
        for name in ("norate.raw", "norate_%03d.png"):
            self.assertEqual(self.kpf("export", "eight.kpf", name), (0, "", ""))
        self.assertAlmostEqual(self.frame_times("norate.mkv")[4], 4 / 25, delta=0.001)

    @unittest.skipUnless(FFPROBE, "needs ffprobe to read the times")
    def test_impossible_rates_are_said(self):
        for rate, text in ((1e300, "1e+300"), (2e6, "2e+06")):
            self.patch("eight.kpf", 184, struct.pack("<d", rate))
            self.assertEqual(self.kpf("export", "eight.kpf", "out.mkv", "--force"),
                             (0, "", "kpf: eight.kpf tells an impossible frame rate: %s; 25 is "
                                     "taken\n" % text))
            self.assertAlmostEqual(self.frame_times("out.mkv")[4], 4 / 25, delta=0.001)
            self.assertEqual(self.raw("eight.kpf", "-", "--to", "0"), bytes(self.eight[0]))
            code, _, err = self.kpf("amplify", "eight.kpf", "-", "--frequency", "12")
            self.assertEqual(code, 2)
            self.assertIn("impossible frame rate: " + text, err)

    def test_rates_that_are_none_are_none(self):
        for rate in (5e-324, -25.0):
            self.patch("eight.kpf", 184, struct.pack("<d", rate))
            code, _, err = self.kpf("export", "eight.kpf", "out.mkv", "--force")
            self.assertEqual((code, err), (0, "kpf: eight.kpf tells no frame rate; 25 is taken\n"))
            code, _, err = self.kpf("amplify", "eight.kpf", "-", "--frequency", "12")
            self.assertEqual(code, 2)
            self.assertIn("tells no frame rate", err)

    def test_column_that_12_bits_have_no_room_for_is_told(self):
        self.write("odd.y4m", y4m([list(range(35))] * 2, 7, 5))
        line = ("kpf: the last of 7 columns is not recorded: at 12 bits two pixels share three "
                "bytes\n")
        said = self.kpf("record", "odd.y4m", "odd.kpf", "--bits", "12", *self.start)
        self.assertEqual(said, (0, "./odd.kpf: 2 frames recorded, 0 placeholders\n", line))
        code, _, err = self.kpf("record", "odd.y4m", "odd.kpf", "--bits", "12", "--force", "--before",
                                "0")
        self.assertEqual(code, 1)  # nothing began it
        self.assertIn(line, err)
        line = "kpf: the last of 7 columns is black: 12 bits have no room for it\n"
        self.assertEqual(self.kpf("export", "odd.kpf", "odd.mkv"), (0, "", line))
        self.record("odd.y4m", "odd.kpf", "--force")
        self.assertEqual(self.kpf("export", "odd.kpf", "odd.y4m", "--force"), (0, "", ""))

    def test_odd_sizes_can_be_viewed_too(self):
        self.write("odd.y4m", y4m([list(range(35))] * 2, 7, 5))
        self.record("odd.y4m", "odd.kpf", "--quiet")
        for name in ("odd.mp4", "odd.mov", "odd.avi"):
            self.assertEqual(self.kpf("export", "odd.kpf", name),
                             (0, "", "kpf: frames of 7 x 5 pixels are padded to 8 x 6, which "
                                     "players show\n"))
            again = name.replace(".", "_")
            self.record(name, again + ".kpf", "--quiet")
            header = self.read(again + ".kpf")
            self.assertEqual(struct.unpack("<HH", header[176:180]), (8, 6))
            rows = self.read("%s/%s_0001.div" % (again, again))[16:16 + 48]
            for y in range(6):  # lossy: nearly the last column and row again
                self.assertAlmostEqual(rows[8 * y + 7], rows[8 * y + 6], delta=6)
                self.assertAlmostEqual(rows[8 * 5 + y], rows[8 * 4 + y], delta=6)

    def test_extensions_are_known_in_capitals_too(self):
        for name, begin in (("a.MKV", b"\x1aE\xdf\xa3"), ("a.Y4m", b"YUV4"), ("a.Png", b"\x89PNG"), ("a.TIFF", b"II*\0")):
            self.export("eight.kpf", name, "--to", "0")
            self.assertEqual(self.read(name)[:4], begin)

    def test_range_beyond_the_end_is_said(self):
        done = self.kpf("export", "eight.kpf", "out.mkv", "--from", "3", "--to", "7")
        self.assertEqual(done, (0, "", "kpf: --to 7 is beyond the end: the last frame is 4\n"))

    def long_recording(self, frames=4000):
        """So many small frames that nobody exports them within a tenth of a second."""
        self.write("long.y4m", y4m([[n % 256] * 4096 for n in range(10)], 64, 64))
        self.record("long.y4m", "long.kpf", "--quiet")
        data = self.read("long/long_0001.div")
        with open(self.path("long/long_0001.div"), "r+b") as file:
            for _ in range(frames // 10):
                file.write(data)
        self.patch("long.kpf", 468, struct.pack("<I", frames))

    def test_progress_on_a_terminal(self):
        self.long_recording(12000)
        code, out, shown = Terminal(self, "export", "long.kpf", "long.mkv").end()
        self.assertEqual((code, out), (0, b""))
        self.assertRegex(shown, rb"\r\x1b\[K\d+ of 12000 frames, \d+ frames/s, \d+:\d\d left")
        self.assertTrue(shown.endswith(b"\r\x1b[K"))

    def test_quiet_keeps_remarks_to_itself(self):
        self.write("clip.kpf", header(width=5, height=3))
        self.write("clip/clip_0001.div", run(range(5), pixels=bytes(range(15))))
        export = ("export", "clip.kpf", "out.mp4", "--to", "9", "--force")
        self.assertEqual(self.kpf(*export, "--quiet"), (0, "", ""))
        code, _, err = self.kpf(*export)
        self.assertEqual((code, err.count("kpf: ")), (0, 2), err)
        self.assertIn("--to 9 is beyond the end", err)
        self.assertIn("are padded to 6 x 4", err)

    def test_quiet_says_nothing_on_a_terminal(self):
        self.long_recording(12000)
        self.assertEqual(Terminal(self, "export", "long.kpf", "long.mkv", "--quiet").end(),
                         (0, b"", b""))

    def test_interrupted_export_leaves_what_can_be_played(self):
        self.long_recording()
        with subprocess.Popen([KPF, "export", "long.kpf", "-"], cwd=self.folder,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE) as process:
            first = process.stdout.read(4096)  # at work; the pipe is full long before the end
            process.send_signal(signal.SIGINT)
            rest, err = process.communicate(timeout=60)
        self.assertEqual(process.returncode, 1)
        self.assertRegex(err, rb"^kpf: \d+ of 4000 frames exported: interrupted\n$")
        frames = int(err.split()[1])
        self.assertEqual(len(first + rest), frames * 4096)
        self.assertLess(frames, 4000)

    def test_pipe_that_nobody_reads(self):
        self.long_recording()
        with subprocess.Popen([KPF, "export", "long.kpf", "-"], cwd=self.folder,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                              restore_signals=False) as process:
            process.stdout.close()
            err = process.stderr.read()
            self.assertEqual(process.wait(timeout=60), 1)
        self.assertIn(b"cannot write to standard output", err)

    def test_recording_cut_short_gives_what_is_there(self):
        self.cut("eight/eight_0001.div", 40 * 3 + 7)
        done = self.kpf_bytes("export", "eight.kpf", "-")
        self.assertEqual((done.returncode, done.stderr),
                         (1, b"kpf: eight.kpf: the recording ends after 3 of 5 announced frames\n"))
        self.assertEqual(done.stdout, b"".join(map(bytes, self.eight[:3])))

    def holes(self):
        """Eight frames of one grey level each, 2, 5 and 6 lost; the recording is complete."""
        levels = [10, 20, None, 40, 50, None, None, 80]
        self.write("holes.kpf", header(frames=8))
        os.mkdir(self.path("holes"))
        self.write("holes/holes_0001.div", b"".join(
            bytes(24) if level is None else record(n, bytes([level]) * 8)
            for n, level in enumerate(levels)))

    def told(self, shown, listed=None, frames=8, count=3, which="2, 5-6"):
        were = "was" if count == 1 else "were"
        return "kpf: holes.kpf: %d of %d frames %s lost (%s), %s%s\n" % (
            count, frames, were, which, shown, "; %s lists them" % listed if listed else "")

    def test_lost_frames_are_shown_as_the_user_wants(self):
        self.holes()
        for how, shown, expected in (
                ((), "black is shown instead", [10, 20, 0, 40, 50, 0, 0, 80]),
                (("--lost", "black"), "black is shown instead", [10, 20, 0, 40, 50, 0, 0, 80]),
                (("--lost", "repeat"), "the frame before is shown instead",
                 [10, 20, 20, 40, 50, 50, 50, 80]),
                (("--lost", "skip"), "nothing is shown instead", [10, 20, 40, 50, 80])):
            done = self.kpf_bytes("export", "holes.kpf", "-", *how)
            self.assertEqual((done.returncode, done.stderr.decode()), (0, self.told(shown)), how)
            self.assertEqual(done.stdout, b"".join(bytes([level]) * 8 for level in expected), how)

    def test_videos_repeat_what_was_lost_and_a_list_tells_it(self):
        self.holes()
        done = self.kpf("export", "holes.kpf", "out.mkv")
        self.assertEqual(done, (0, "", self.told("the frame before is shown instead",
                                                 "out.mkv.lost.txt")))
        self.assertEqual(self.read("out.mkv.lost.txt"), b"2\n5-6\n")
        self.record("out.mkv", "again.kpf", "--quiet")
        data = self.read("again/again_0001.div")
        self.assertEqual([data[24 * n + 16] for n in range(8)], [10, 20, 20, 40, 50, 50, 50, 80])

    def test_range_that_begins_with_a_lost_frame_repeats_the_one_before_it(self):
        self.holes()
        done = self.kpf_bytes("export", "holes.kpf", "-", "--from", "6", "--lost", "repeat")
        self.assertEqual(done.stdout, bytes([50]) * 8 + bytes([80]) * 8)
        self.assertEqual(done.stderr.decode(), self.told("the frame before is shown instead", None,
                                                         2, 1, "6"))

    def test_images_keep_their_numbers_where_frames_are_left_out(self):
        self.holes()
        code, _, err = self.kpf("export", "holes.kpf", "i_%02d.png", "--lost", "skip")
        self.assertEqual((code, err), (0, self.told("nothing is shown instead",
                                                    "i_%02d.png.lost.txt")))
        self.assertEqual(sorted(name for name in os.listdir(self.folder) if name[:2] == "i_"),
                         ["i_%02d.png.lost.txt"] + ["i_%02d.png" % n for n in (0, 1, 3, 4, 7)])

    def test_list_of_an_older_export_is_in_the_way_or_goes(self):
        self.holes()
        self.write("eight.mkv.lost.txt", b"1\n")
        code, _, err = self.kpf("export", "eight.kpf", "eight.mkv")
        self.assertEqual(code, 2)
        self.assertIn("eight.mkv.lost.txt is there already", err)
        self.assertFalse(os.path.exists(self.path("eight.mkv")))
        self.export("eight.kpf", "eight.mkv", "--force")
        self.assertFalse(os.path.exists(self.path("eight.mkv.lost.txt")))

    def test_nothing_but_lost_frames_is_no_video(self):
        self.holes()
        code, _, err = self.kpf("export", "holes.kpf", "out.mkv", "--from", "5", "--to", "6",
                                "--lost", "skip")
        self.assertEqual(code, 2)
        self.assertIn("holds no such frames: all of them were lost", err)
        self.assertFalse([name for name in os.listdir(self.folder) if name.startswith("out")])

    def test_bad_arguments(self):
        for what, arguments in (
                ("missing.kpf", ("missing.kpf", "-")),
                ("no such frames", ("eight.kpf", "-", "--from", "5")),
                ("no such frames", ("eight.kpf", "-", "--from", "3", "--to", "2")),
                ("do not go into one image", ("eight.kpf", "one.png")),
                ("do not go into one image", ("eight.kpf", "one.pgm")),
                ("--y4m is for frames on -", ("eight.kpf", "out.y4m", "--y4m")),
                ("no extension that is known", ("eight.kpf", "out.xyz")),
                ("--lost", ("eight.kpf", "-", "--lost", "grey")),
                ("--from", ("eight.kpf", "-", "--from", "x"))):
            code, out, err = self.kpf("export", *arguments)
            self.assertEqual((code, out), (2, ""), arguments)
            self.assertIn(what, err)

    def test_output_that_cannot_be_written(self):
        code, _, err = self.kpf("export", "eight.kpf", "missing/out.mkv")
        self.assertEqual(code, 1)
        self.assertIn("cannot write missing/out.mkv", err)


class Piped(RecordingTest):
    def test_reader_that_goes_away_is_told(self):
        self.write("clip.kpf", header(width=64, height=64, frames=50))
        self.write("clip/clip_0001.div", run(range(50), pixels=bytes(range(256)) * 16))
        with subprocess.Popen([KPF, "export", "clip.kpf", "-"], cwd=self.folder,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE) as process:
            process.stdout.read(100)
            process.stdout.close()
            err = process.stderr.read()
            self.assertEqual(process.wait(60), 1)
        self.assertIn(b"cannot write to standard output: Broken pipe", err)


if __name__ == "__main__":
    unittest.main()
