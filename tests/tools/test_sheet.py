"""kpf sheet: the page that the demo makes."""
import os
import unittest

from videos import VideoTest, y4m

WIDTH, HEIGHT = 64, 48
HALF_WIDTH, HALF_HEIGHT, GAP, CAPTION = 32, 24, 8, 28


class Sheet(VideoTest):
    """Nine frames, each of one grey level, in a video and in a recording."""

    def setUp(self):
        super().setUp()
        self.write("nine.y4m", y4m([[20 * n + 20] * (WIDTH * HEIGHT) for n in range(9)],
                                   WIDTH, HEIGHT))
        self.record("nine.y4m", "nine.kpf", "--quiet")

    def page(self, source, recording, half_width=HALF_WIDTH, half_heights=2 * HALF_HEIGHT):
        done = self.kpf_bytes("sheet", source, recording, "-")
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        width = 3 * half_width + 2 * GAP
        self.assertEqual(len(done.stdout), width * (half_heights + 2 * CAPTION))
        return [done.stdout[i:i + width] for i in range(0, len(done.stdout), width)]

    def test_three_frames_of_source_and_recording(self):
        rows = self.page("nine.y4m", "nine.kpf")
        gap = bytes(GAP)
        # Of nine frames the middle ones of three thirds: 1, 4 and 7.
        expected = gap.join(bytes([20 * n + 20]) * HALF_WIDTH for n in (1, 4, 7))
        for row in (CAPTION, CAPTION + HALF_HEIGHT - 1, 2 * CAPTION + HALF_HEIGHT, -1):
            self.assertEqual(rows[row], expected)

    def test_sizes_may_differ(self):
        self.write("large.y4m", y4m([[20 * n + 20] * (128 * 96) for n in range(9)], 128, 96))
        self.record("large.y4m", "large.kpf", "--quiet")
        small, large = (GAP * b"\0").join(bytes([n]) * 32 for n in (40, 100, 160)), \
            (GAP * b"\0").join(bytes([n]) * 64 for n in (40, 100, 160))
        small += bytes(len(large) - len(small))
        for source, recording, first, second, row in (
                ("nine.y4m", "large.kpf", small, large, CAPTION + 24),
                ("large.y4m", "nine.kpf", large, small, CAPTION + 48)):
            rows = self.page(source, recording, 64, 24 + 48)
            self.assertEqual((rows[CAPTION], rows[row - 1]), (first, first))
            self.assertEqual((rows[row + CAPTION], rows[-1]), (second, second))

    def test_fewer_frames_than_columns_are_shown_again(self):
        for count, shown in ((1, (20, 20, 20)), (2, (20, 40, 40))):
            self.write("few.y4m", y4m([[20 * n + 20] * (WIDTH * HEIGHT) for n in range(count)],
                                      WIDTH, HEIGHT))
            self.record("few.y4m", "few.kpf", "--quiet", "--force")
            rows = self.page("few.y4m", "few.kpf")
            expected = bytes(GAP).join(bytes([n]) * HALF_WIDTH for n in shown)
            self.assertEqual((rows[CAPTION], rows[-1]), (expected, expected))

    def test_source_shorter_than_the_recording_leaves_black(self):
        self.write("short.y4m", y4m([[200] * (WIDTH * HEIGHT)] * 2, WIDTH, HEIGHT))
        rows = self.page("short.y4m", "nine.kpf")
        self.assertEqual(rows[CAPTION], bytes([200]) * HALF_WIDTH + bytes(2 * (HALF_WIDTH + GAP)))

    def test_what_is_wrong_with_either_is_no_success(self):
        with open(self.path("torn.y4m"), "wb") as torn:
            torn.write(self.read("nine.y4m")[:-5000])
        code, _, err = self.kpf("sheet", "torn.y4m", "nine.kpf", "a.png")
        self.assertEqual((code, err), (1, "kpf: torn.y4m: torn.y4m ends within a frame\n"))
        os.remove(self.path("nine/nine_0001.div"))
        self.write("nine/nine_0001.div", bytes(2 * (16 + WIDTH * HEIGHT)))
        code, _, err = self.kpf("sheet", "nine.y4m", "nine.kpf", "b.png")
        self.assertEqual((code, err), (1, "kpf: nine.kpf: the recording ends after 2 of 9 announced "
                                          "frames\n"))

    def test_captions_stand_above_the_pictures(self):
        rows = self.page("nine.y4m", "nine.kpf")
        for top in (0, CAPTION + HALF_HEIGHT):
            caption = rows[top:top + CAPTION]
            self.assertFalse(any(any(row) for row in caption[:7] + caption[-7:]))
            self.assertTrue(all(any(row) for row in caption[7:-7]))
        # "SOURCE" begins with a curve, "RECORDING" with a stem.
        self.assertEqual(rows[9][7:19], bytes(2 * [0xFF] + 8 * [0] + 2 * [0]))

    def test_the_page_is_an_image_by_its_name(self):
        self.assertEqual(self.kpf("sheet", "nine.y4m", "nine.kpf", "page.png"), (0, "", ""))
        self.assertEqual(self.read("page.png")[:8], b"\x89PNG\r\n\x1a\n")

    def test_bad_arguments(self):
        for what, arguments in (
                ("missing.y4m", ("missing.y4m", "nine.kpf", "-")),
                ("missing.kpf", ("nine.y4m", "missing.kpf", "-")),
                ("no extension that is known", ("nine.y4m", "nine.kpf", "page.xyz")),
                ("OUT", ("nine.y4m", "nine.kpf"))):
            code, out, err = self.kpf("sheet", *arguments)
            self.assertEqual((code, out), (2, ""), arguments)
            self.assertIn(what, err)


if __name__ == "__main__":
    unittest.main()
