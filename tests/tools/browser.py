"""The page of kpf view in a real browser without a screen."""
import base64
import os
import pathlib
import shutil
import unittest

from viewer import ViewTest

CHROMIUM, DRIVER = shutil.which("chromium"), shutil.which("chromedriver")
try:
    from selenium import webdriver
    from selenium.webdriver.chrome.options import Options
    from selenium.webdriver.chrome.service import Service
    from selenium.webdriver.common.action_chains import ActionChains
    from selenium.webdriver.common.by import By
    from selenium.webdriver.common.keys import Keys
    from selenium.webdriver.support.ui import Select, WebDriverWait
except ImportError:  # the names are there all the same, for tests that are skipped
    webdriver = Options = Service = ActionChains = By = Keys = Select = WebDriverWait = None

SCREENSHOTS = pathlib.Path(os.environ.get("SCREENSHOTS", "."))
ARGUMENTS = ("--headless=new", "--no-sandbox", "--disable-dev-shm-usage", "--enable-unsafe-swiftshader",
             "--hide-scrollbars", "--disable-background-networking", "--no-first-run")
SHOWN = """window.shown = [];
document.addEventListener('kpf-shown', (event) => window.shown.push(event.detail.place));"""
# The red bytes of a part of the first picture's canvas, whichever way it was drawn.
PIXELS = """const [canvas, x, y, w, h] = [document.querySelectorAll('canvas.picture')[arguments[4]], ...arguments];
const bytes = new Uint8Array(w * h);
const context = canvas.getContext('2d');
if (context) {
  const data = context.getImageData(x, y, w, h).data;
  for (let i = 0; i < bytes.length; ++i) bytes[i] = data[4 * i];
} else {
  const gl = canvas.getContext('webgl2'), data = new Uint8Array(4 * w * h);
  gl.readPixels(x, canvas.height - y - h, w, h, gl.RGBA, gl.UNSIGNED_BYTE, data);
  for (let r = 0; r < h; ++r) for (let c = 0; c < w; ++c) bytes[r * w + c] = data[4 * ((h - 1 - r) * w + c)];
}
let text = '';
for (let i = 0; i < bytes.length; i += 8192) text += String.fromCharCode(...bytes.subarray(i, i + 8192));
return btoa(text);"""


@unittest.skipUnless(webdriver and CHROMIUM and DRIVER, "needs chromium, chromium-driver and python3-selenium")
class BrowserTest(ViewTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        options = Options()
        for argument in ARGUMENTS:
            options.add_argument(argument)
        options.binary_location = CHROMIUM
        options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
        cls.browser = webdriver.Chrome(options=options, service=Service(DRIVER))
        cls.addClassCleanup(cls.browser.quit)
        cls.size(1280, 720)

    @classmethod
    def size(cls, width, height):
        """Of what the page has; the window has a frame around it."""
        cls.browser.set_window_size(width, height)
        frame = cls.js("return [outerWidth - innerWidth, outerHeight - innerHeight]")
        cls.browser.set_window_size(width + frame[0], height + frame[1])

    @classmethod
    def js(cls, script, *arguments):
        return cls.browser.execute_script(script, *arguments)

    def until(self, script, *arguments):
        """Waits for the page, however slow the machine is just now."""
        return WebDriverWait(self.browser, 60, 0.02).until(lambda _: self.js(script, *arguments), script)

    def open(self, *arguments, settings=""):
        self.view(*arguments)
        self.browser.get("about:blank")
        self.browser.get_log("browser")
        self.browser.get(self.address + settings)
        self.until("return document.body.dataset.ready")
        self.js(SHOWN)
        self.addCleanup(self.assert_quiet)

    def assert_quiet(self):
        # How long a software renderer takes is no fault of the page, nor that tests look at a canvas.
        loud = [line for line in self.browser.get_log("browser")
                if "GPU stall" not in line["message"] and "willReadFrequently" not in line["message"]]
        self.assertEqual(loud, [])

    def element(self, name):
        return self.browser.find_element(By.ID, name)

    def text(self, name):
        return self.element(name).text

    def press(self, *keys):
        """Keys that go to the page and not to a field."""
        self.js("document.activeElement.blur()")
        for key in keys:
            ActionChains(self.browser).send_keys(key).perform()

    def at_frame(self, place):
        self.until("return document.querySelector('canvas.picture').dataset.place === arguments[0]", str(place))

    def on_canvas(self, x, y, pane=0):
        """Where the middle of the sample (x, y) is on the page."""
        return self.js("""const canvas = document.querySelectorAll('canvas.picture')[arguments[2]];
            const [scale, left, top] = canvas.dataset.view.split(' ').map(Number);
            const box = canvas.getBoundingClientRect();
            return [Math.round(box.left + (arguments[0] + 0.5 - left) * scale),
              Math.round(box.top + (arguments[1] + 0.5 - top) * scale)];""", x, y, pane)

    def move_to(self, x, y):
        actions = ActionChains(self.browser)
        actions.w3c_actions.pointer_action.move_to_location(*self.on_canvas(x, y))
        return actions

    def pixels(self, width, height, pane=0):
        """What stands on the canvas where the picture is, a pixel a sample."""
        scale, left, top = map(float, self.js(
            "return document.querySelectorAll('canvas.picture')[arguments[0]].dataset.view", pane).split())
        self.assertEqual(scale, 1)
        return base64.b64decode(self.js(PIXELS, round(-left), round(-top), width, height, pane))

    def screenshot(self, name):
        SCREENSHOTS.mkdir(parents=True, exist_ok=True)
        self.browser.save_screenshot(str(SCREENSHOTS / (name + ".png")))
