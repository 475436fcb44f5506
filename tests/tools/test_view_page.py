"""The page of kpf view, used as a person does, with mouse and keys."""
import http.server
import os
import struct
import threading
import unittest

from browser import ActionChains, BrowserTest, By, Keys, Select
from recordings import header, record
from videos import y4m


def picture(n, width=96, height=64):
    return bytes((n * 5 + x * 2 + y * 3) % 256 for y in range(height) for x in range(width))


class Page(BrowserTest):
    def setUp(self):
        """Forty frames of 96 x 64, of which frame 25 was lost."""
        super().setUp()
        self.write("clip.kpf", header(width=96, height=64, frames=40, text2=b"a <b>note</b>"))
        self.write("clip/clip_0001.div", b"".join(
            bytes(16 + 96 * 64) if n == 25 else record(n, picture(n)) for n in range(40)))

    def test_opens(self):
        self.open("clip.kpf")
        self.assertEqual(self.browser.title, "clip.kpf – kpf view")
        self.assertEqual(self.text("about"), "96 × 64 · 8 bits · 25 frames/s · 40 frames · a <b>note</b>")
        self.assertEqual(self.text("time"), "2023-11-14 22:13:20.000000 UTC")
        self.press("1")
        self.assertEqual(self.pixels(96, 64), picture(0))
        self.screenshot("view_opened")

    def test_both_painters_show_the_same(self):
        for paint in ("gl", "2d"):
            self.open("clip.kpf", settings="#place=7&paint=" + paint)
            self.assertEqual(self.js("return document.querySelector('.pane').dataset.painter"), paint)
            self.press("1")
            self.assertEqual(self.pixels(96, 64), picture(7), paint)

    def test_scrubs(self):
        self.open("clip.kpf")
        bar = self.element("timeline")
        ActionChains(self.browser).move_to_element(bar).click_and_hold().move_by_offset(
            -100, 0).move_by_offset(50, 0).release().perform()
        width = bar.size["width"]
        self.at_frame(int((width / 2 - 50) / width * 40))
        self.press("1")
        self.assertEqual(self.pixels(96, 64), picture(int(self.element("frame").get_attribute("value"))))

    def test_keys(self):
        self.open("clip.kpf")
        for key, place in ((Keys.END, 39), (Keys.ARROW_LEFT, 38), (Keys.HOME, 0), (Keys.ARROW_RIGHT, 1), (".", 11),
                           (",", 1), (Keys.PAGE_DOWN, 39), (Keys.PAGE_UP, 0), ("n", 25), (Keys.ARROW_RIGHT, 26),
                           ("p", 25)):
            self.press(key)
            self.at_frame(place)
        self.press("?")
        self.assertTrue(self.element("help").is_displayed())
        self.assertIn("play, pause", self.text("key-list"))
        self.press(Keys.ESCAPE)
        self.assertFalse(self.element("help").is_displayed())
        self.press("i", ".", "o")
        self.assertEqual((self.text("in-value"), self.text("out-value")), ("25", "35"))
        self.press("u", "e")
        self.assertEqual(Select(self.element("show")).first_selected_option.text, "amplified")
        self.assertIn("the library’s way", self.text("way"))

    def test_plays_every_frame_once_and_in_order(self):
        self.open("clip.kpf")
        Select(self.element("rate")).select_by_value("0")
        self.press(" ")
        self.until("return window.shown.includes(39)")
        self.until("return document.getElementById('play').getAttribute('aria-pressed') === 'false'")
        shown = self.js("return window.shown")
        self.assertEqual(shown[:39], list(range(1, 40)))
        self.assertIn("every frame", self.text("shown"))

    def test_tells_how_many_frames_it_skips(self):
        self.write("clip.kpf", header(width=96, height=64, frames=40, rate=1000.0))
        self.open("clip.kpf")
        Select(self.element("rate")).select_by_value("1000")
        self.element("every").click()
        self.press(" ")
        self.until("return document.getElementById('play').getAttribute('aria-pressed') === 'false'")
        self.assertRegex(self.text("shown"), r"^\d+ skipped|· \d+ skipped")
        shown = self.js("return window.shown")
        self.assertEqual(shown[:-1], sorted(set(shown[:-1])))

    def test_lost_frames_are_marked_and_not_black(self):
        self.open("clip.kpf", settings="#place=25")
        plate = self.browser.find_element(By.CLASS_NAME, "lost")
        self.assertTrue(plate.is_displayed())
        self.assertEqual(plate.text, "frame 25 is lost\nrecorded as lost: a placeholder")
        self.assertEqual(self.text("time"), "lost")
        self.until("return document.getElementById('timeline').getAttribute('aria-valuetext').includes('1 lost')")
        red = """const c = document.getElementById('track'), x = Math.floor((25.5 / 40) * c.width) - 6;
            return [...c.getContext('2d').getImageData(x, 3, 1, 1).data]"""
        self.assertEqual(self.js(red), [255, 93, 93, 255])
        self.screenshot("view_lost")
        self.press(Keys.ARROW_RIGHT)
        self.at_frame(26)
        self.assertFalse(plate.is_displayed())

    def test_value_under_the_cursor_is_the_exported_sample(self):
        samples = [[(n * 977 + i * 163) % 65536 for i in range(48 * 32)] for n in range(3)]
        self.write("deep.y4m", y4m(samples, 48, 32, bits=16))
        self.assertEqual(self.kpf("record", "deep.y4m", "deep.kpf", "--bits", "12", "--quiet")[0], 0)
        exported = struct.unpack("<1536H", self.kpf_bytes("export", "deep.kpf", "-", "--from", "2").stdout)
        self.open("deep.kpf", settings="#place=2")
        for x, y in ((0, 0), (47, 31), (20, 11)):
            self.move_to(x, y).perform()
            value = exported[y * 48 + x]
            self.assertEqual(self.text("cursor-place"), "%d, %d" % (x, y))
            self.assertEqual(self.text("cursor-value"), "%d (%d of 16 bits)" % (value >> 4, value))
        self.press("a")
        self.assertNotEqual(self.element("low").get_attribute("value"), "0")

    def test_mean_and_deviation_of_a_region(self):
        self.open("clip.kpf", settings="#place=3")
        actions = self.move_to(10, 10).key_down(Keys.SHIFT).click_and_hold()
        actions.w3c_actions.pointer_action.move_to_location(*self.on_canvas(13, 11))
        actions.release().key_up(Keys.SHIFT).perform()
        values = [picture(3)[y * 96 + x] for y in (10, 11) for x in range(10, 14)]
        mean = sum(values) / 8
        deviation = (sum((value - mean) ** 2 for value in values) / 8) ** 0.5
        self.assertEqual(self.text("region-size"), "4 × 2 at 10, 10")
        self.assertEqual(self.text("region-mean"), "%.3f" % mean)
        self.assertEqual(self.text("region-deviation"), "%.3f" % deviation)

    def test_keyboard_alone_chooses_a_region(self):
        self.open("clip.kpf")
        shift = ActionChains(self.browser).key_down(Keys.SHIFT)
        self.press("b")
        shift.send_keys(Keys.ARROW_RIGHT).key_up(Keys.SHIFT).perform()
        self.assertEqual(self.text("cursor-place"), "49, 32")
        self.press("b")
        ActionChains(self.browser).key_down(Keys.SHIFT).send_keys(Keys.ARROW_DOWN * 3).key_up(Keys.SHIFT).perform()
        self.press("b")
        self.assertEqual(self.text("region-size"), "1 × 4 at 49, 32")

    def test_amplified_canvas_is_what_the_command_makes(self):
        for clean in ("", "--clean"):
            if clean and clean not in self.kpf("amplify", "--help")[1]:
                continue
            made = self.kpf_bytes("amplify", "clip.kpf", "-", "--frequency", "5", "--gain", "6", *clean.split())
            self.open("clip.kpf", settings="#place=20&show=amplified&frequency=5&gain=6&clean=%d" % bool(clean))
            self.press("1")
            size = 96 * 64
            for place in (20, 24):
                self.js("document.getElementById('frame').value = arguments[0];"
                        "document.getElementById('frame').dispatchEvent(new Event('change'))", place)
                self.at_frame(place)
                self.assertEqual(self.pixels(96, 64), made.stdout[place * size:][:size], (clean, place))
            self.assertIn("clean" if clean else "library", self.text("way"))

    def test_amplified_while_playing_and_side_by_side(self):
        self.open("clip.kpf", settings="#place=0&show=side&frequency=5&gain=6&marks=1")
        captions = [one.text for one in self.browser.find_elements(By.CLASS_NAME, "caption")]
        self.assertEqual([caption.split()[0].strip(":") for caption in captions], ["original", "reference", "amplified"])
        self.press(" ")
        self.until("return window.shown.includes(39)")
        self.assertEqual(self.js("return window.shown")[:39], list(range(1, 40)))
        self.press(Keys.ARROW_LEFT)
        self.at_frame(38)
        self.press("1")
        self.assertEqual(self.pixels(96, 64, pane=0), picture(38))

    def test_still_is_saved_where_the_tool_was_started(self):
        self.open("clip.kpf", settings="#place=4")
        self.press("s")
        self.until("return document.getElementById('export-note').textContent.startsWith('Saved')")
        self.assertTrue(os.path.exists(self.path("clip_000004.png")))
        self.press("s")
        self.until("return document.getElementById('export-note').textContent.includes('exists already')")
        self.browser.get_log("browser")  # which has the server's refusal

    def test_several_recordings_by_place_and_by_time(self):
        """The second one begins two frames later and has twice the rate."""
        os.mkdir(self.path("other"))
        self.write("other.kpf", header(width=96, height=64, frames=40, rate=50.0))
        self.write("other/other_0001.div", b"".join(
            struct.pack("<IqI", n, 1700000000, 80000 + n * 20000) + picture(n + 100) for n in range(40)))
        self.open("clip.kpf", "other.kpf", settings="#place=7")
        places = "return [...document.querySelectorAll('canvas.picture')].map((canvas) => canvas.dataset.place)"
        self.assertEqual(self.js(places), ["7", "7"])
        Select(self.element("together")).select_by_value("time")
        self.until(places + ".join() === '7,10'")
        self.press(Keys.HOME)
        self.until(places + ".join() === '0,'")
        plates = self.browser.find_elements(By.CLASS_NAME, "lost")
        self.assertFalse(plates[0].is_displayed())
        self.assertEqual(plates[1].text, "no frame here\nbefore its first one, or behind its last")
        self.screenshot("view_several")

    def test_recording_that_grows_is_followed(self):
        whole = self.path("clip/clip_0001.div")
        with open(whole, "rb") as file:
            data = file.read()
        os.truncate(whole, 10 * (16 + 96 * 64))
        self.open("clip.kpf", "--live")
        self.at_frame(9)
        self.assertIn("40 announced", self.text("about"))
        with open(whole, "r+b") as file:
            file.write(data[:31 * (16 + 96 * 64)])
        self.at_frame(30)

    def test_names_are_no_markup(self):
        name = "<img src=x onerror=document.body.dataset.broken=1>.kpf"
        os.rename(self.path("clip.kpf"), self.path(name))
        os.rename(self.path("clip"), self.path(name[:-4]))
        os.rename(self.path(name[:-4] + "/clip_0001.div"), self.path(name[:-4] + "/" + name[:-4] + "_0001.div"))
        self.open(name)
        self.assertEqual(self.text("title"), name)
        self.assertIsNone(self.js("return document.body.dataset.broken ?? null"))
        self.assertEqual(self.js("return document.images.length"), 0)

    def test_everything_has_a_name_for_those_who_do_not_see_it(self):
        self.open("clip.kpf", settings="#show=side")
        nameless = """return [...document.querySelectorAll('button, input, select, canvas[role], [role=slider]')]
            .filter((one) => !one.labels?.length && !one.getAttribute('aria-label') && !one.textContent.trim())
            .map((one) => one.outerHTML)"""
        self.assertEqual(self.js(nameless), [])
        names = [self.element(name).accessible_name for name in ("mark-in", "mark-clear", "export-kind", "export-name")]
        self.assertEqual(names, ["mark in", "clear marks", "export as", "name of the file"])


class HostilePage(BrowserTest):
    ATTACK = """<!doctype html><iframe src="%(root)s"></iframe><form method=post action="%(root)sapi/jobs" target=f>
        <input name=kind value=still></form><iframe name=f></iframe><script>
        const job = JSON.stringify({kind: 'still', recording: 0, place: 0, name: 'taken.png', show: 'original',
          tone: [0, 255, 1]});
        const tries = [fetch('%(root)sapi/recordings'), fetch('%(root)sapi/recordings', {mode: 'no-cors'}),
          fetch('%(root)sapi/jobs', {method: 'POST', body: job}),
          fetch('%(root)sapi/jobs', {method: 'POST', body: job, mode: 'no-cors'}), import('%(root)smain.js')];
        document.forms[0].submit();
        Promise.allSettled(tries).then((ends) => {
          window.ends = ends.map(({status, value}) => status === 'fulfilled' && value.type !== 'opaque'); });
        </script>"""

    def test_page_from_elsewhere_gets_nothing_even_with_the_secret(self):
        self.view("clip.kpf")
        page = (self.ATTACK % {"root": self.address}).encode()

        class Elsewhere(http.server.BaseHTTPRequestHandler):
            def do_GET(self):
                self.send_response(200)
                self.send_header("Content-Type", "text/html")
                self.end_headers()
                self.wfile.write(page)

            def log_message(self, *_):
                pass

        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Elsewhere)
        self.addCleanup(server.server_close)
        self.addCleanup(server.shutdown)
        threading.Thread(target=server.serve_forever, daemon=True).start()
        self.browser.get("http://127.0.0.1:%d/" % server.server_port)
        self.assertEqual(self.until("return window.ends"), [False] * 5)
        self.assertEqual(sorted(os.listdir(self.folder)), ["clip", "clip.kpf"])
        self.assertEqual(self.js("return frames[0].document ? 'read' : ''") if self.framed() else "", "")

    def framed(self):
        """Whether the page was shown in the frame, where one could be led to click on it."""
        try:
            return bool(self.js("return frames[0].document.getElementById('panes')"))
        except Exception:  # another origin, or the browser's own page that says no
            return False


if __name__ == "__main__":
    unittest.main()
