"""kpf amplify: the amplifier's arithmetic on whole videos."""
import os
import subprocess
import unittest

from videos import VideoTest, y4m


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
        done = self.kpf_bytes("amplify", *arguments)
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

    def test_comparison_is_three_pictures_wide(self):
        out = self.raw("eight.y4m", "-", "--frequency", "12", "--compare", "--to", "0")
        width, height = 3 * 6 + 2 * 8, 4 + 28
        self.assertEqual(len(out), width * height)
        row = out[28 * width:29 * width]
        self.assertEqual(row[0:6], bytes(self.eight[0][:6]))
        self.assertEqual(row[14:20], bytes(self.eight[0][:6]))
        self.assertEqual(row[28:34], bytes(self.eight[0][:6]))

    def test_video_has_as_many_frames_as_the_input(self):
        self.assertEqual(self.kpf("amplify", "eight.y4m", "out.mkv", "--frequency", "12"),
                         (0, "", ""))
        self.record("out.mkv", "out.kpf", "--quiet")
        self.assertEqual(len(self.read("out/out_0001.div")), 5 * 40)

    def test_bad_arguments(self):
        for what, arguments in (
                ("cannot open", ("missing.avi", "-")),
                ("do not show a motion", ("eight.y4m", "-", "--frequency", "13")),
                ("--frequency", ("eight.y4m", "-", "--frequency", "0")),
                ("too many frames", ("eight.y4m", "-", "--frequency", "1e-9")),
                ("no such frames", ("eight.y4m", "-", "--from", "99"))):
            code, out, err = self.kpf("amplify", *arguments)
            self.assertEqual((code, out), (2, ""), arguments)
            self.assertIn(what, err)

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
