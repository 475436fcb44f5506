"""kpf export: what was recorded comes back, bit for bit where the target is lossless."""
import os
import struct
import unittest

from videos import VideoTest


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
            for target in (name + ".mkv", name + "_%06d.png", name + "_%06d.tif"):
                self.export(name + ".kpf", target)
                self.record(target, "again.kpf", "--bits", bits, "--rate", "25", "--force",
                            "--quiet")
                self.assertEqual(self.read("again/again_0001.div"),
                                 self.read("%s/%s_0001.div" % (name, name)), target)

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

    def test_recording_cut_short_gives_what_is_there(self):
        self.cut("eight/eight_0001.div", 40 * 3 + 7)
        self.assertEqual(self.raw("eight.kpf", "-"), b"".join(map(bytes, self.eight[:3])))

    def test_bad_arguments(self):
        for what, arguments in (
                ("missing.kpf", ("missing.kpf", "-")),
                ("no such frames", ("eight.kpf", "-", "--from", "5")),
                ("no such frames", ("eight.kpf", "-", "--from", "3", "--to", "2")),
                ("do not go into one image", ("eight.kpf", "one.png")),
                ("no extension that is known", ("eight.kpf", "out.xyz")),
                ("--from", ("eight.kpf", "-", "--from", "x"))):
            code, out, err = self.kpf("export", *arguments)
            self.assertEqual((code, out), (2, ""), arguments)
            self.assertIn(what, err)

    def test_output_that_cannot_be_written(self):
        code, _, err = self.kpf("export", "eight.kpf", "missing/out.mkv")
        self.assertEqual(code, 1)
        self.assertIn("cannot write missing/out.mkv", err)


if __name__ == "__main__":
    unittest.main()
