"""kpf record of what export and other programs write: images, bare frames, pipes."""
import os
import struct
import unittest

from videos import MediaInput, png, y4m

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

    def test_a_pipe_without_frames_is_no_matter_of_its_container(self):
        for source, *options in ((b"", "--raw", "6x4:gray8", "--rate", "25"),
                                 (y4m([], 6, 4),)):
            code, _, err = self.record_piped(source, *options)
            self.assertEqual((code, err), (2, "kpf: - holds no frames\n"
                                              "Give a video that can be decoded.\n"))

    def test_what_cannot_be_piped_is_told(self):
        head = struct.pack(">I", 32) + b"ftypisom" + bytes(20)
        code, _, err = self.record_piped(head + struct.pack(">I", 1000) + b"mdat" + bytes(992))
        self.assertEqual(code, 2)
        self.assertIn("MP4 and MOV cannot be piped", err)


if __name__ == "__main__":
    unittest.main()
