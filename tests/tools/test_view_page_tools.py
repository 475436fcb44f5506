"""The page of kpf view: brightness, zoom, marks, pieces and several recordings, by mouse and keys."""
import os
import unittest

from browser import ActionChains, BrowserTest, By, Keys, Select
from recordings import header, record
from videos import y4m

WIDTH, HEIGHT = 96, 64


def picture(n):
    return bytes((n * 5 + x * 2 + y * 3) % 256 for y in range(HEIGHT) for x in range(WIDTH))


def shown(sample, low=0, high=255, gamma=1.0):
    """What a sample is on the screen."""
    return round(255 * min(max((sample - low) / (high - low), 0), 1) ** (1 / gamma))


class Tools(BrowserTest):
    def setUp(self):
        super().setUp()
        self.write("clip.kpf", header(width=WIDTH, height=HEIGHT, frames=40))
        self.write("clip/clip_0001.div", b"".join(record(n, picture(n)) for n in range(40)))

    def value(self, name):
        return float(self.element(name).get_attribute("value"))

    def fill(self, **fields):
        for name, value in fields.items():
            self.element(name).send_keys(Keys.CONTROL + "a" + Keys.NULL, value, Keys.ENTER)

    def assert_shown(self, place, **tone):
        wanted = [shown(sample, **tone) for sample in picture(place)]
        got = self.pixels(WIDTH, HEIGHT)
        # A painter may round a half up or down.
        self.assertLessEqual(max(abs(a - b) for a, b in zip(got, wanted, strict=True)), 1 if tone else 0)

    def test_gamma_by_its_slider(self):
        self.open("clip.kpf", settings="#place=3")
        self.press("1")
        self.element("gamma").send_keys(Keys.ARROW_RIGHT * 20)
        self.assertEqual((self.value("gamma"), self.text("gamma-value")), (2, "2.00"))
        self.assert_shown(3, gamma=2.0)
        self.press("r")
        self.assert_shown(3)

    def test_black_and_white_by_dragging_in_the_histogram(self):
        self.open("clip.kpf", settings="#place=3")
        self.press("1")
        histogram = self.element("histogram")
        width = histogram.size["width"]
        for begin, end in ((-0.45, -0.25), (0.45, 0.3)):  # from the middle
            ActionChains(self.browser).move_to_element_with_offset(
                histogram, round(begin * width), 0).click_and_hold().move_by_offset(
                    round((end - begin) * width), 0).release().perform()
        low, high = self.value("low"), self.value("high")
        self.assertAlmostEqual(low, 0.25 * 255, delta=3)
        self.assertAlmostEqual(high, 0.8 * 255, delta=3)
        self.assert_shown(3, low=low, high=high)

    def test_black_and_white_by_their_fields(self):
        self.open("clip.kpf", settings="#place=3")
        self.press("1")
        self.fill(low="40", high="90")
        self.assert_shown(3, low=40, high=90)

    def test_all_12_bits_are_shown(self):
        """Eight levels of 4095, which 8 bits would not tell apart, from black to white."""
        samples = [[16 * (2000 + i % 8) for i in range(WIDTH * HEIGHT)]]
        self.write("deep.y4m", y4m(samples, WIDTH, HEIGHT, bits=16))
        self.assertEqual(self.kpf("record", "deep.y4m", "deep.kpf", "--bits", "12", "--quiet")[0], 0)
        for paint in ("gl", "2d"):
            self.open("deep.kpf", settings="#paint=" + paint)
            self.press("1")
            self.fill(high="2007", low="2000")
            wanted = [round(255 * i / 7) for i in range(8)]
            got = list(self.pixels(8, 1))
            self.assertLessEqual(max(abs(a - b) for a, b in zip(got, wanted)), 1, (paint, got))

    def test_single_pixels_have_their_values_in_them(self):
        self.open("clip.kpf", settings="#place=3")
        self.js("""window.written = [];
            const write = CanvasRenderingContext2D.prototype.fillText;
            CanvasRenderingContext2D.prototype.fillText = function (text, x, y) {
              if (this.canvas.className === 'over') window.written.push([Number(text), x, y]);
              write.call(this, text, x, y);
            };""")
        self.press(*"++++")
        self.js("window.written = []")
        self.press("+")
        scale, left, top = map(float, self.js(
            "return document.querySelector('canvas.picture').dataset.view").split())
        self.assertGreaterEqual(scale, 34)
        written = self.js("return window.written")
        self.assertGreater(len(written), 20)
        for value, x, y in written:
            column, row = int(x / scale + left), int(y / scale + top)
            self.assertEqual(value, picture(3)[row * WIDTH + column], (column, row))
        self.screenshot("view_values")
        self.press("f")
        self.assertNotEqual(self.js("return document.querySelector('canvas.picture').dataset.view").split()[0], str(scale))

    def test_wheel_zooms_where_the_cursor_is_and_dragging_pans(self):
        self.open("clip.kpf", settings="#place=3")
        self.move_to(20, 30).perform()
        at = self.text("cursor-place")
        self.move_to(20, 30).scroll_by_amount(0, -200).perform()
        ActionChains(self.browser).move_by_offset(1, 0).perform()
        self.assertEqual((at, self.text("cursor-place")), ("20, 30", "20, 30"))
        before = self.on_canvas(20, 30)
        self.move_to(20, 30).click_and_hold().move_by_offset(40, -25).release().perform()
        after = self.on_canvas(20, 30)
        self.assertEqual((after[0] - before[0], after[1] - before[1]), (40, -25))

    def test_marks_show_what_wraps_and_what_clips(self):
        """Black but for the last frame: of it, gain 8 wraps what is above 31 and clips 31."""
        levels = [0, 10, 31, 40] * (WIDTH // 4)
        rows = [bytes(WIDTH * HEIGHT)] * 14 + [bytes(levels * HEIGHT)]
        self.write("clip.kpf", header(width=WIDTH, height=HEIGHT, frames=15))
        self.write("clip/clip_0001.div", b"".join(record(n, pixels) for n, pixels in enumerate(rows)))
        for paint in ("gl", "2d"):
            self.open("clip.kpf", settings="#place=14&show=amplified&frequency=5&gain=8&marks=1&paint=" + paint)
            self.press("1")
            self.assertIn("1536 pixels wrap, 1536 clip.", self.text("amplify-note"))
            magenta, amber = 240, 255  # their red; amplified 10 is 90
            self.assertEqual(list(self.pixels(8, 2)), [0, 90, amber, magenta] * 4, paint)
            self.press("m")
            self.until("return !document.getElementById('marks').checked")
            self.until("return window.shown.length > 0")
            # (13 x 0 + 40) / 15 is 2; 8 x 38 is 304, of which a byte is 48.
            self.until("return document.querySelector('canvas.picture').dataset.place === '14'")
            self.assertEqual(list(self.pixels(4, 1)), [0, 90, 255, 88])

    def test_gain_is_turned_while_it_plays(self):
        self.open("clip.kpf", settings="#place=16&show=amplified&frequency=5&gain=2")
        Select(self.element("rate")).select_by_value("10")
        self.press(" ")
        self.until("return window.shown.length > 3")
        self.press("]", "]", "]", "]")
        self.until("return window.shown.length > 9")
        self.press(" ")
        self.until("return document.getElementById('play').getAttribute('aria-pressed') === 'false'")
        self.assertIn("amplified 6× at", self.text("way"))
        places = self.js("return window.shown")
        self.assertEqual(places[:10], list(range(17, 27)))  # each once, and in order
        self.press(Keys.END)
        self.at_frame(39)
        self.press("1")
        made = self.kpf_bytes("amplify", "clip.kpf", "-", "--frequency", "5", "--gain", "6").stdout
        self.assertEqual(self.pixels(WIDTH, HEIGHT), made[39 * WIDTH * HEIGHT:])

    def test_piece_between_the_marks_is_exported(self):
        self.open("clip.kpf", settings="#place=10")
        self.press("i", ".", "o")
        for kind, name, command in (("video, lossless (MKV)", "piece.mkv", ["export"]),
                                    ("recording (KPF)", "piece.kpf", ["cut"]),
                                    ("amplified video, lossless (MKV)", "big.mkv",
                                     ["amplify", "--frequency", "5", "--gain", "8"])):
            Select(self.element("export-kind")).select_by_visible_text(kind)
            field = self.element("export-name")
            field.clear()
            field.send_keys(name)
            self.element("export-go").click()
            self.until("return document.getElementById('export-note').textContent === arguments[0]", "Saved as " + name)
            wanted = "wanted" + name[-4:]
            code, _, err = self.kpf(command[0], "clip.kpf", wanted, "--from", "10", "--to", "20", *command[1:])
            self.assertEqual(code, 0, err)
            self.assertEqual(self.frames_of(name), self.frames_of(wanted))
            os.remove(self.path(wanted))

    def frames_of(self, name):
        """Their samples; of a recording its very records."""
        if name.endswith(".kpf"):
            with open(self.path(name[:-4] + "/" + name[:-4] + "_0001.div"), "rb") as file:
                return file.read()
        code, _, err = self.kpf("record", name, "back.kpf", "--force", "--quiet", "--start", "1700000000")
        self.assertEqual(code, 0, err)
        with open(self.path("back/back_0001.div"), "rb") as file:
            return file.read()

    def test_file_that_becomes_shorter_is_told_and_survived(self):
        self.open("clip.kpf", settings="#place=30")
        os.truncate(self.path("clip/clip_0001.div"), 20 * (16 + WIDTH * HEIGHT) + 7)
        self.press(Keys.ARROW_RIGHT)
        self.at_frame(31)
        plate = self.browser.find_element(By.CLASS_NAME, "lost")
        self.assertEqual(plate.text, "frame 31 is lost\nit cannot be read any more")
        self.press(Keys.HOME, "1")
        self.at_frame(0)
        self.assert_shown(0)

    def test_several_recordings_are_amplified_side_by_side(self):
        os.mkdir(self.path("other"))
        self.write("other.kpf", header(width=WIDTH, height=HEIGHT, frames=40))
        self.write("other/other_0001.div", b"".join(record(n, picture(3 * n)) for n in range(40)))
        self.open("clip.kpf", "other.kpf", settings="#place=0&show=amplified&frequency=5&gain=3")
        self.press(" ")
        self.until("return window.shown.includes(39)")
        self.assertEqual(self.js("return window.shown")[:39], list(range(1, 40)))
        self.press(Keys.ARROW_LEFT, "1")
        self.at_frame(38)
        for pane, name in enumerate(("clip.kpf", "other.kpf")):
            made = self.kpf_bytes("amplify", name, "-", "--frequency", "5", "--gain", "3").stdout
            size = WIDTH * HEIGHT
            self.assertEqual(self.pixels(WIDTH, HEIGHT, pane=pane), made[38 * size:39 * size], name)


if __name__ == "__main__":
    unittest.main()
