"""kpf amplify: the amplifier's arithmetic on whole videos."""
import os
import re
import signal
import subprocess
import time
import unittest

from recordings import KPF, Terminal, header, record, run
from videos import FFPROBE, VideoTest, y4m


def amplified(frames, window, gain):
    """The rule, sample by sample."""
    out = []
    for n, frame in enumerate(frames):
        if n + 1 < window - 1:
            out.append(bytes(frame))
            continue
        held = frames[max(0, n - (window - 2)):n + 1]
        reference = [sum(samples) // window for samples in zip(*held)]
        out.append(bytes(min(255, c + int(max(c - r, 0) * gain) % 256)
                         for c, r in zip(frame, reference)))
    return out


class Amplify(VideoTest):
    def raw(self, *arguments):
        # Made-up frames wrap at any gain, which would be said.
        done = self.kpf_bytes("amplify", *arguments, "--quiet")
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        return done.stdout

    def test_every_frame_by_the_rule(self):
        # 25 frames/s at 12 Hz: 2 frames a cycle, a window of 6.
        frames = [[(n * 37 + i * 11) % 256 for i in range(24)] for n in range(12)]
        self.write("video.y4m", y4m(frames, 6, 4))
        self.assertEqual(self.raw("video.y4m", "-", "--frequency", "12", "--gain", "2.5"),
                         b"".join(amplified(frames, 6, 2.5)))

    def test_recordings_give_the_same_as_videos(self):
        self.record("eight.y4m", "eight.kpf", "--quiet")
        self.assertEqual(self.raw("eight.kpf", "-", "--frequency", "12"),
                         self.raw("eight.y4m", "-", "--frequency", "12"))

    def test_a_recording_is_one_in_any_case(self):
        self.record("eight.y4m", "EIGHT.KPF", "--quiet")
        self.assertEqual(self.raw("EIGHT.KPF", "-", "--frequency", "12"),
                         self.raw("eight.y4m", "-", "--frequency", "12"))

    def test_twelve_bit_recordings_go_by_their_high_bytes(self):
        self.record("sixteen.y4m", "sixteen.kpf", "--bits", "12", "--quiet")
        high = [[sample >> 8 for sample in frame] for frame in self.sixteen]
        self.assertEqual(self.raw("sixteen.kpf", "-", "--frequency", "12", "--gain", "3"),
                         b"".join(amplified(high, 6, 3)))

    def test_range_is_amplified_from_the_frames_before_it(self):
        frames = [[(n * 37 + i * 11) % 256 for i in range(24)] for n in range(12)]
        self.write("video.y4m", y4m(frames, 6, 4))
        expected = amplified(frames, 6, 4)
        for source in ("video.y4m", "video.kpf"):
            if source.endswith(".kpf"):
                self.record("video.y4m", source, "--quiet")
            self.assertEqual(self.raw(source, "-", "--frequency", "12", "--from", "8", "--to", "9"),
                             expected[8] + expected[9])

    def compared(self, frames, width, height, *arguments):
        """The last picture of a comparison, row by row."""
        self.write("video.y4m", y4m(frames, width, height))
        out = self.raw("video.y4m", "-", "--frequency", "12", "--compare", *arguments)
        columns, rows = 3 * width + 2 * 8, height + 28
        self.assertEqual(len(out), len(frames) * columns * rows)
        picture = out[-columns * rows:]
        return [picture[i:i + columns] for i in range(0, len(picture), columns)]

    def test_comparison_shows_original_reference_and_amplified(self):
        frames = [[(n * n * 5 + i * 11) % 256 for i in range(24)] for n in range(9)]
        rows = self.compared(frames, 6, 4, "--gain", "3")[28:]
        reference = bytes(sum(samples) // 6 for samples in zip(*frames[4:9]))
        pictures = (bytes(frames[8]), reference, amplified(frames, 6, 3)[8])
        self.assertEqual(len(set(pictures)), 3)  # or the test would not see them swapped
        for y, row in enumerate(rows):
            self.assertEqual(row, bytes(8).join(p[6 * y:6 * y + 6] for p in pictures), y)

    def test_comparison_of_a_window_that_fills_is_three_times_the_same(self):
        self.compared(self.eight, 6, 4)
        first = self.raw("video.y4m", "-", "--frequency", "12", "--compare")[34 * 28:34 * 32]
        for y in range(4):
            self.assertEqual(first[34 * y:34 * y + 34],
                             bytes(8).join(3 * [bytes(self.eight[0][6 * y:6 * y + 6])]), y)

    def test_comparison_has_captions(self):
        width = 400
        rows = self.compared([[128] * width] * 5, width, 1, "--gain", "2.5")
        caption = rows[:28]
        self.assertEqual(set(b"".join(caption)), {0, 255})
        for text, left in (("ORIGINAL", 0), ("REFERENCE", width + 8),
                           ("AMPLIFIED 2.5X AT 12 HZ", 2 * (width + 8))):
            drawn = [x for x in range(left, left + width) if any(row[x] for row in caption)]
            # Letters begin seven pixels from the left, and stand twelve pixels apart.
            self.assertEqual(min(drawn), left + 7, text)
            self.assertIn(max(drawn) - left - 7 - 12 * (len(text) - 1), range(2, 12), text)
            blanks = [i for i in range(len(text))
                      if not any(left + 7 + 12 * i <= x < left + 19 + 12 * i for x in drawn)]
            self.assertEqual(blanks, [m.start() for m in re.finditer(" ", text)], text)

    def test_video_has_as_many_frames_as_the_input(self):
        self.assertEqual(self.kpf("amplify", "eight.y4m", "out.mkv", "--frequency", "12",
                                  "--quiet"), (0, "", ""))
        self.record("out.mkv", "out.kpf", "--quiet")
        self.assertEqual(len(self.read("out/out_0001.div")), 5 * 40)

    @unittest.skipUnless(FFPROBE, "needs ffprobe to read the times")
    def test_video_keeps_the_rate(self):
        self.assertEqual(self.kpf("amplify", "eight.y4m", "out.mkv", "--rate", "100",
                                  "--frequency", "50", "--quiet"), (0, "", ""))
        times = self.frame_times("out.mkv")
        self.assertEqual([round(time * 100) for time in times], [0, 1, 2, 3, 4])

    def test_interrupted_amplification_says_so(self):
        self.write("long.y4m", y4m([[n % 256] * 4096 for n in range(400)], 64, 64))
        with subprocess.Popen([KPF, "amplify", "long.y4m", "-", "--frequency", "12"],
                              cwd=self.folder, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE) as process:
            first = process.stdout.read(4096)  # at work; the pipe is full long before the end
            process.send_signal(signal.SIGTERM)
            rest, err = process.communicate(timeout=60)
        self.assertEqual(process.returncode, 1)
        self.assertRegex(err, rb"^kpf: interrupted after \d+ frames\n$")
        frames = int(err.split()[3])
        self.assertEqual(len(first + rest), frames * 4096)
        self.assertLess(frames, 400)

    def test_amplifying_a_recording_is_interrupted_too(self):
        self.write("clip.kpf", header(width=64, height=64, frames=400))
        self.write("clip/clip_0001.div", run(range(400), pixels=bytes(4096)))
        with subprocess.Popen([KPF, "amplify", "clip.kpf", "-", "--frequency", "12"],
                              cwd=self.folder, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE) as process:
            first = process.stdout.read(4096)
            process.send_signal(signal.SIGINT)
            rest, err = process.communicate(timeout=60)
        self.assertEqual(process.returncode, 1)
        frames = len(first + rest) // 4096
        self.assertEqual(err, b"kpf: interrupted after %d frames\n" % frames)
        self.assertLess(frames, 400)

    def test_progress_on_a_terminal(self):
        frame = b"FRAME\n" + bytes(64 * 64)
        terminal = Terminal(self, "amplify", "-", "out.mkv", "--frequency", "12")
        terminal.feed(b"YUV4MPEG2 W64 H64 F25:1 Ip A1:1 Cmono\n" + 100 * frame)
        while b"frames/s" not in terminal.shown:  # a pipe tells no total
            self.assertIsNone(terminal.process.poll(), terminal.shown)
            terminal.feed(frame)
        code, out, shown = terminal.end()
        self.assertEqual((code, out), (0, b""))
        self.assertRegex(shown, rb"^\r\x1b\[K\d+ frames, \d+ frames/s\r\x1b\[K")

    def test_quiet_says_nothing_on_a_terminal(self):
        frame = b"FRAME\n" + bytes(64 * 64)
        terminal = Terminal(self, "amplify", "-", "out.mkv", "--frequency", "12", "--quiet")
        terminal.feed(b"YUV4MPEG2 W64 H64 F25:1 Ip A1:1 Cmono\n" + 100 * frame)
        while not any(name.startswith("out.mkv") for name in os.listdir(self.folder)):
            terminal.feed(frame)
        begin = time.monotonic()
        while time.monotonic() - begin < 0.3:  # three times as long as progress waits
            terminal.feed(frame)
        self.assertEqual(terminal.end(), (0, b"", b""))

    def test_bad_arguments(self):
        for what, arguments in (
                ("cannot open", ("missing.avi", "-")),
                ("do not show a motion", ("eight.y4m", "-", "--frequency", "13")),
                ("--frequency", ("eight.y4m", "-", "--frequency", "0")),
                ("--frequency: nan is no number from 0.0001 to 500000",
                 ("eight.y4m", "-", "--frequency", "nan")),
                ("--frequency: inf is", ("eight.y4m", "-", "--frequency", "inf")),
                ("--gain: nan is no number from 0 to 255", ("eight.y4m", "-", "--gain", "nan")),
                ("--gain: -2 is no number from 0 to 255", ("eight.y4m", "-", "--gain=-2")),
                ("--gain: 1e9 is", ("eight.y4m", "-", "--gain", "1e9")),
                ("--rate: 0 is no number from 0.001 to 1000000", ("eight.y4m", "-", "--rate", "0")),
                ("do not show a motion", ("eight.y4m", "-", "--rate", "0.1")),
                ("too many frames", ("eight.y4m", "-", "--frequency", "0.0001", "--rate", "1e6")),
                ("no such frames", ("eight.y4m", "-", "--from", "99"))):
            code, out, err = self.kpf("amplify", *arguments)
            self.assertEqual((code, out), (2, ""), arguments)
            self.assertIn(what, err)

    def test_window_longer_than_the_clip_is_no_copy(self):
        self.record("eight.y4m", "eight.kpf", "--quiet")
        for source, code in (("eight.kpf", 2), ("eight.y4m", 1)):
            for to in ((), ("--to", "3")):
                frequency = "12" if to else "8"
                needed, there = (5, 4) if to else (8, 5)
                done = self.kpf("amplify", source, "out.mkv", "--frequency", frequency, *to)
                self.assertEqual(done[:2], (code, ""), done)
                self.assertIn("kpf: the window needs %d frames, and there are %d\n"
                              % (needed, there), done[2])
                self.assertNotIn("out.mkv", os.listdir(self.folder))
        self.assertIn("Choose a --frequency of 12.5, or a longer clip.",
                      self.kpf("amplify", "eight.kpf", "-", "--frequency", "8")[2])
        self.assertIn("Give a clip of at least 5 frames.",
                      self.kpf("amplify", "eight.kpf", "-", "--to", "3")[2])

    def test_frequency_that_is_advised_fits(self):
        for frames in (5, 6, 8, 11, 30):
            self.write("video.y4m", y4m([[n] * 24 for n in range(frames)], 6, 4))
            _, _, err = self.kpf("amplify", "video.y4m", "-", "--frequency", "0.1")
            advised = re.search(r"--frequency (?:from|of) ([\d.]*\d)", err).group(1)
            self.assertEqual(len(self.raw("video.y4m", "-", "--frequency", advised)), 24 * frames)

    def test_range_beyond_the_end_is_said(self):
        self.record("eight.y4m", "eight.kpf", "--quiet")
        for source in ("eight.kpf", "eight.y4m"):
            done = self.kpf("amplify", source, "out.mkv", "--frequency", "12", "--gain", "0", "--to",
                            "7", "--force")
            self.assertEqual(done, (0, "", "kpf: --to 7 is beyond the end: the last frame is 4\n"))

    def test_wrapping_is_said(self):
        # At the last frame one half of the picture is 85 above the reference.
        frames = [[10] * 24] * 4 + [[10] * 12 + [110] * 12]
        self.write("video.y4m", y4m(frames, 6, 4))
        common = ("amplify", "video.y4m", "out.mkv", "--frequency", "12", "--force")
        self.assertEqual(self.kpf(*common, "--gain", "4"),
                         (0, "", "kpf: 50.0 % of the pixels wrap at a gain of 4, and are dark where "
                                 "they should be bright; with --gain 3 none would\n"))
        self.assertEqual(self.kpf(*common, "--gain", "3"), (0, "", ""))
        self.assertEqual(self.kpf(*common, "--gain", "4", "--quiet"), (0, "", ""))

    def holes(self, frames, lost):
        """holes.kpf with placeholders where frames were lost, and whole.y4m without those."""
        self.write("holes.kpf", header(width=6, frames=len(frames), height=4))
        os.mkdir(self.path("holes"))
        self.write("holes/holes_0001.div", b"".join(
            bytes(40) if n in lost else record(n, bytes(frame)) for n, frame in enumerate(frames)))
        self.write("whole.y4m", y4m([frame for n, frame in enumerate(frames) if n not in lost], 6, 4))

    def test_amplifier_never_sees_lost_frames(self):
        frames = [[(n * 37 + i * 11) % 256 for i in range(24)] for n in range(14)]
        lost = (3, 8, 9)
        self.holes(frames, lost)
        whole = self.raw("whole.y4m", "-", "--frequency", "12")
        done = self.kpf_bytes("amplify", "holes.kpf", "-", "--frequency", "12", "--quiet", "--lost",
                              "repeat")
        self.assertEqual((done.returncode, done.stderr),
                         (0, b"kpf: holes.kpf: 3 of 14 frames were lost (3, 8-9), the frame before "
                             b"is shown instead\n"))
        shown = [done.stdout[24 * n:24 * n + 24] for n in range(14)]
        self.assertEqual(b"".join(p for n, p in enumerate(shown) if n not in lost), whole)
        for n in lost:
            self.assertEqual(shown[n], shown[n - 1], n)

    def test_range_behind_lost_frames_is_amplified_as_in_the_whole(self):
        frames = [[(n * 37 + i * 11) % 256 for i in range(24)] for n in range(14)]
        self.holes(frames, (3, 8, 9))
        common = ("holes.kpf", "-", "--frequency", "12", "--quiet", "--lost", "skip")
        whole = self.kpf_bytes("amplify", *common).stdout
        part = self.kpf_bytes("amplify", *common, "--from", "6", "--to", "11")
        self.assertIn(b"2 of 6 frames were lost (8-9)", part.stderr)
        part = self.kpf_bytes("amplify", *common, "--from", "10", "--to", "11")
        self.assertEqual(part.stdout, whole[24 * 7:24 * 9])
        self.assertEqual((part.returncode, part.stderr), (0, b""))

    def test_damaged_frames_of_a_video_are_lost_ones(self):
        frames = [[(n * 37 + i * 11) % 256 for i in range(24)] for n in range(9)]
        self.write("all.y4m", y4m(frames, 6, 4))
        self.record("all.y4m", "all.kpf", "--quiet")
        self.assertEqual(self.kpf("export", "all.kpf", "i_%02d.png")[0], 0)
        self.patch("i_06.png", 45, b"\xff\xff\xff\xff")  # in the compressed rows
        self.holes(frames, (6,))
        done = self.kpf_bytes("amplify", "i_%02d.png", "-", "--frequency", "12", "--quiet")
        self.assertEqual(done.returncode, 1)
        self.assertEqual(done.stderr, b"kpf: i_%02d.png: 1 of 9 frames was lost (6), black is shown "
                                      b"instead\nkpf: i_%02d.png: 1 frame is damaged\n")
        whole = self.raw("whole.y4m", "-", "--frequency", "12")
        self.assertEqual(done.stdout[:24 * 6] + done.stdout[24 * 7:], whole)

    def test_lost_frames_fill_no_window(self):
        self.holes([[n] * 24 for n in range(6)], (1, 3))
        code, _, err = self.kpf("amplify", "holes.kpf", "out.mkv", "--frequency", "12")
        self.assertEqual(code, 1)
        self.assertIn("the window needs 5 frames, and there are 4", err)
        self.assertNotIn("out.mkv", os.listdir(self.folder))

    def test_made_scene_shows_its_motion_only_when_amplified(self):
        subprocess.run([os.environ["MAKE_SCENE"], "scene.y4m"], cwd=self.folder, check=True)
        common = ("--frequency", "5", "--gain", "16", "--from", "200", "--to", "220")
        plain = ("--frequency", "5", "--gain", "0", "--from", "200", "--to", "220")
        self.assertLess(self.contrast(self.raw("scene.y4m", "-", *plain)), 8)
        self.assertGreater(self.contrast(self.raw("scene.y4m", "-", *common)), 60)

    @staticmethod
    def contrast(video):
        """How much more a row changes with time in the disc than outside it, in grey levels."""
        size = 320 * 240

        def row(frame, y):
            # The mean of 16 rows: the noise goes, the stripes stay.
            lines = [video[frame * size + (y + i) * 320:][120:200] for i in range(16)]
            return [sum(column) / 16 for column in zip(*lines)]

        def change(y):
            return max(abs(a - b) for a, b in zip(row(5, y), row(15, y)))

        return change(112) - change(4)


if __name__ == "__main__":
    unittest.main()
