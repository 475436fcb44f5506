"""The page of kpf view: from picture to vibration, and what a newcomer does in two minutes."""
import os
import subprocess
import unittest

from browser import ActionChains, BrowserTest, By, Keys, Select

WIDTH, HEIGHT, RATE, FRAMES = 320, 240, 100, 200
BIN = RATE / FRAMES  # hertz
DISC, BESIDE = (160, 120), (30, 30)  # a place on the disc that swings, and one that stands still

# How bright the map is over a sample, from 0 to 255; what is clear is 0.
MAP = """const canvas = document.querySelector('canvas.over'), view = document.querySelector('canvas.picture').dataset.view;
const [scale, left, top] = view.split(' ').map(Number);
const [x, y] = [0, 1].map((i) => Math.round((arguments[i] + 0.5 - [left, top][i]) * scale));
const [red, green, blue, alpha] = canvas.getContext('2d').getImageData(x, y, 1, 1).data;
return Math.round(Math.max(red, green, blue) * alpha / 255);"""

# Whether all of an element shows in the column of tools, without scrolling.
IN_SIGHT = """const [tools, box] = [document.querySelector('aside'), document.getElementById(arguments[0])]
    .map((element) => element.getBoundingClientRect());
return box.height > 0 && box.top >= tools.top && box.bottom <= tools.bottom;"""


class Vibration(BrowserTest):
    def setUp(self):
        """Half of the demo's scene: a disc that swings by a tenth of a pixel, five times a second."""
        super().setUp()
        subprocess.run([os.environ["MAKE_SCENE"], "scene.y4m"], cwd=self.folder, check=True, timeout=60)
        self.assertEqual(self.kpf("record", "scene.y4m", "scene.kpf", "--quiet", "--frames", str(FRAMES))[0], 0)

    def frequency(self):
        return float(self.element("frequency-value").get_attribute("value"))

    def first_peak(self):
        self.until("return document.querySelector('#peaks button') !== null")
        return self.browser.find_element(By.CSS_SELECTOR, "#peaks button")

    def map_at(self, place):
        return self.js(MAP, *place)

    def picture_of(self, name):
        """The samples of an image, by the tool's own reading."""
        code, _, err = self.kpf("record", name, "back.kpf", "--force", "--quiet")
        self.assertEqual(code, 0, err)
        with open(self.path("back/back_0001.div"), "rb") as file:
            return file.read()[16:]

    def test_a_click_on_the_disc_finds_its_frequency(self):
        self.open("scene.kpf", settings="#place=105")
        self.move_to(*DISC).click().perform()
        peak = self.first_peak()
        self.assertEqual(Select(self.element("signal")).first_selected_option.text, "displacement x")
        self.assertEqual(self.text("region-size"), "15 × 15 at 153, 113")
        frequency = float(peak.text.split()[0])
        self.assertAlmostEqual(frequency, 5, delta=BIN)
        for name in ("waveform", "spectrum", "peaks"):
            self.assertTrue(self.js(IN_SIGHT, name), name)
        peak.click()
        self.until("return document.querySelector('canvas.picture').dataset.place === '105'")
        self.assertAlmostEqual(self.frequency(), frequency, delta=0.01)
        self.assertEqual(Select(self.element("show")).first_selected_option.text, "amplified")
        self.js("document.getElementById('vibration').scrollIntoView()")
        self.screenshot("view_vibration")
        self.size(2560, 1440)
        self.press("e", "e")
        self.screenshot("view_large")
        self.size(1280, 720)

    def test_a_click_in_the_spectrum_sets_the_frequency(self):
        self.open("scene.kpf", settings="#place=105&frequency=20")
        self.move_to(*DISC).click().perform()
        self.first_peak()
        spectrum = self.element("spectrum")
        self.js("arguments[0].scrollIntoView()", spectrum)
        x, y = self.js("""const chart = Chart.getChart('spectrum'), box = chart.canvas.getBoundingClientRect();
            return [box.left + chart.scales.x.getPixelForValue(5.2), box.top + box.height / 2].map(Math.round)""")
        actions = ActionChains(self.browser)
        actions.w3c_actions.pointer_action.move_to_location(x, y)
        actions.click().perform()
        self.assertAlmostEqual(self.frequency(), 5, delta=BIN / 2)  # the peak beside, not the place
        self.assertIn("Hz", self.text("way"))

    def test_maps_show_where_it_swings(self):
        self.open("scene.kpf", settings="#place=105&frequency=5")
        kind = Select(self.element("map-kind"))
        for text, brightest, delta in (("energy at frequency", 3.4, 0.4), ("dominant frequency", 5, BIN)):
            kind.select_by_visible_text(text)
            self.until("return document.getElementById('map-range').textContent !== ''")
            self.assertAlmostEqual(float(self.text("map-range").split()[1]), brightest, delta=delta)
            # The stripes have no slope in their middles: of the samples of a period some swing most.
            self.assertGreater(max(self.map_at((DISC[0] + i, DISC[1])) for i in range(8)), 120, text)
            self.assertLess(max(self.map_at((BESIDE[0] + i, BESIDE[1])) for i in range(8)), 30, text)
            self.screenshot("view_map_" + text.split()[0])
        kind.select_by_visible_text("no map")
        self.until("return document.getElementById('map-range').textContent === ''")
        self.assertEqual(self.map_at(DISC), 0)

    def test_scale_gives_millimetres(self):
        self.open("scene.kpf", "--scale", "0.5", settings="#place=105")
        self.move_to(*DISC).click().perform()
        peak = self.first_peak().text
        self.assertIn("mm", peak)
        self.assertAlmostEqual(float(peak.split()[3]), 0.05, delta=0.005)

    def test_keyboard_alone_does_the_whole_job(self):
        """From the first frame to a still of the amplified disc, without a mouse."""
        self.open("scene.kpf")
        self.press(Keys.PAGE_DOWN)
        self.at_frame(100)
        ActionChains(self.browser).key_down(Keys.SHIFT).send_keys(Keys.ARROW_RIGHT).key_up(Keys.SHIFT).perform()
        self.press(Keys.ENTER)
        self.first_peak()
        self.element("analyse").send_keys("")  # there by Tab alone
        for _ in range(80):
            ActionChains(self.browser).send_keys(Keys.TAB).perform()
            if self.js("return document.activeElement.matches('#peaks button')"):
                break
        self.assertTrue(self.js("return document.activeElement.matches('#peaks button')"))
        ActionChains(self.browser).send_keys(Keys.ENTER).perform()
        self.assertAlmostEqual(self.frequency(), 5, delta=BIN)
        self.press("]", "s")
        self.until("return document.getElementById('export-note').textContent.startsWith('Saved')")
        made = self.kpf_bytes("amplify", "scene.kpf", "-", "--frequency", str(self.frequency()), "--gain", "9",
                              "--from", "100", "--to", "100").stdout
        self.assertEqual(self.picture_of("scene_000100.png")[:WIDTH * HEIGHT], made)

    def test_a_newcomer_in_two_minutes(self):
        """What docs/view.md says under that title, word by word."""
        self.open("scene.kpf")
        # Space plays. Drag the bar below to scrub; the arrow keys step.
        self.press(" ")
        self.until("return window.shown.length > 5")
        self.press(" ")
        bar = self.element("timeline")
        ActionChains(self.browser).move_to_element(bar).click_and_hold().move_by_offset(20, 0).release().perform()
        self.press(Keys.ARROW_RIGHT)
        place = int(self.element("frame").get_attribute("value"))
        self.at_frame(place)
        # Nothing seems to move? Choose the dominant frequency: what swings lights up.
        Select(self.element("map-kind")).select_by_visible_text("dominant frequency")
        self.until("return document.getElementById('map-range').textContent !== ''")
        lit = [(x, y) for y in range(4, HEIGHT, 16) for x in range(4, WIDTH, 16) if self.map_at((x, y)) > 120]
        self.assertGreater(len(lit), 20)
        # Click on something that moves.
        self.move_to(*lit[len(lit) // 2]).click().perform()
        peak = self.first_peak()
        self.assertAlmostEqual(float(peak.text.split()[0]), 5, delta=BIN)
        # Click on a peak: the amplifier is set to that frequency. [ and ] turn the gain.
        peak.click()
        self.press("]", "]")
        self.assertRegex(self.text("way"), r"amplified 10× at (5|4\.99|5\.0)\d* Hz")
        # s saves a still of what is on the screen, with a caption, where kpf view was started.
        self.press("s")
        self.until("return document.getElementById('export-note').textContent.startsWith('Saved as scene_')")
        self.assertTrue(self.js(IN_SIGHT, "export-note"))
        still = self.picture_of("scene_%06d.png" % place)
        made = self.kpf_bytes("amplify", "scene.kpf", "-", "--frequency", str(self.frequency()), "--gain", "10",
                              "--from", str(place), "--to", str(place)).stdout
        self.assertEqual(still[:WIDTH * HEIGHT], made)
        self.assertIn(255, still[WIDTH * HEIGHT:])  # the caption
        self.screenshot("view_newcomer")


if __name__ == "__main__":
    unittest.main()
