"""Usage: measure_view.py KPF [FOLDER]

What kpf view reaches in a browser without a screen, on a sparse recording of 4 GB: 1280 x 1024 pixels,
12 bits. FOLDER (or TMPDIR) takes the recording, of which next to nothing is on disk.
"""
import http.client
import os
import pathlib
import random
import statistics
import struct
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tests" / "tools"))
WIDTH, HEIGHT, RATE, FRAMES = 1280, 1024, 100, 2184
RECORD = 16 + WIDTH * HEIGHT * 3 // 2
PER_FILE = 2147483647 // RECORD

SEEK = """const [places, done] = arguments, times = [];
const field = document.getElementById('frame');
const next = () => {
  if (places.length === 0) return done(times);
  const place = places.pop(), began = performance.now();
  document.addEventListener('kpf-shown', () => requestAnimationFrame(() => {
    times.push(performance.now() - began);
    next();
  }), { once: true });
  field.value = place;
  field.dispatchEvent(new Event('change'));
};
next();"""
PLAY = """const [seconds, done] = arguments, shown = [];
const note = ({ detail }) => { if (detail.playing) shown.push([detail.place, performance.now()]); };
document.addEventListener('kpf-shown', note);
document.getElementById('play').click();
setTimeout(() => {
  document.getElementById('play').click();
  document.removeEventListener('kpf-shown', note);
  done(shown);
}, 1000 * seconds);"""


def make_recording(folder, header):
    """The head of every record and a band of pixels; the rest are holes, which read as 0."""
    (folder / "clip.kpf").write_bytes(header)
    (folder / "clip").mkdir()
    band = random.Random(1).randbytes(WIDTH * 3 // 2 * 64)
    for number in range((FRAMES + PER_FILE - 1) // PER_FILE):
        first, last = number * PER_FILE, min((number + 1) * PER_FILE, FRAMES)
        with open(folder / "clip" / ("clip_%04d.div" % (number + 1)), "wb") as file:
            for place in range(first, last):
                file.seek((place - first) * RECORD)
                micro = place * 1000000 // RATE
                file.write(struct.pack("<IqI", place, 1700000000 + micro // 1000000, micro % 1000000) + band)
            file.truncate((last - first) * RECORD)


def memory(pid):
    """Megabytes that are the server's own, and with the pages of the files that it has mapped."""
    status = pathlib.Path("/proc/%d/status" % pid).read_text(encoding="ascii")
    values = dict(line.split(":", 1) for line in status.splitlines())
    return [int(values[name].split()[0]) / 1000 for name in ("RssAnon", "VmRSS")]


def rate_of(shown):
    """Frames a second behind the first second, and whether each frame was shown once, in order."""
    steady = [(place, at) for place, at in shown if at > shown[0][1] + 1000]
    steps = {b[0] - a[0] for a, b in zip(shown, shown[1:])}
    return (len(steady) - 1) / (steady[-1][1] - steady[0][1]) * 1000, steps == {1}


def serve(address, seconds=3):
    """Frames with all their bits a second, over one connection."""
    host, path = address.split("/", 3)[2:]
    connection = http.client.HTTPConnection(host, timeout=60)
    buffer, frames, place = bytearray(1 << 20), 0, 0
    began = time.perf_counter()
    while time.perf_counter() - began < seconds:
        connection.request("GET", "/%sapi/frames?from=%d&count=8" % (path, place))
        response = connection.getresponse()
        received = 0
        while got := response.readinto(buffer):
            received += got
        frames += received // (64 + WIDTH * HEIGHT * 2)
        place = (place + 8) % (FRAMES - 8)
    return frames / (time.perf_counter() - began)


def copy(seconds=1):
    """The same bytes copied from memory to memory, so many times a second."""
    source, target = bytearray(WIDTH * HEIGHT * 2), memoryview(bytearray(WIDTH * HEIGHT * 2))
    began, times = time.perf_counter(), 0
    while time.perf_counter() - began < seconds:
        target[:] = source
        times += 1
    return times / (time.perf_counter() - began)


def row(what, value, must=""):
    print("%-62s %-22s %s" % (what, value, must), flush=True)


def measure_page(browser, address, pid):
    places = [random.Random(2).randrange(FRAMES) for _ in range(80)]
    browser.get(address)
    browser.set_script_timeout(120)
    while not browser.execute_script("return document.body.dataset.ready"):
        time.sleep(0.05)
    size = browser.execute_script("const c = document.querySelector('canvas.picture');"
                                  "return c.width + ' x ' + c.height + ', ' + c.parentNode.dataset.painter")
    row("canvas", size)
    times = sorted(browser.execute_async_script(SEEK, places))
    row("any frame, from request to pixels: median, p95", "%.0f ms, %.0f ms" % (
        statistics.median(times), times[int(len(times) * 0.95)]), "p95 at most 100 ms")
    rates = {}
    for show in ("original", "amplified"):
        browser.execute_script("const s = document.getElementById('show'); s.value = arguments[0];"
                               "s.dispatchEvent(new Event('change'));"
                               "const r = document.getElementById('rate'); r.value = 0;"
                               "r.dispatchEvent(new Event('change'));", show)
        browser.execute_async_script(SEEK, [100])
        rates[show], ordered = rate_of(browser.execute_async_script(PLAY, 8))
        row("playing, %s%s" % (show, "" if ordered else " (NOT EVERY FRAME ONCE, IN ORDER)"),
            "%.1f frames/s" % rates[show], "at least 30" if show == "original" else "")
        row("memory of the server: its own, with mapped files", "%.0f MB, %.0f MB" % tuple(memory(pid)))
    row("amplified against without", "%.2f" % (rates["amplified"] / rates["original"]), "at least 0.9")


def main(kpf, folder=None):
    os.environ["KPF"] = kpf
    from browser import ARGUMENTS, CHROMIUM, DRIVER, Options, Service, webdriver
    from recordings import header

    with tempfile.TemporaryDirectory(dir=folder) as scratch:
        make_recording(pathlib.Path(scratch), header(WIDTH, HEIGHT, 12, float(RATE), FRAMES))
        with subprocess.Popen([kpf, "view", "--no-browser", "clip.kpf"], cwd=scratch, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL) as server:
            address = server.stdout.readline().strip()
            rate = serve(address)
            row("server alone, 12-bit frames unpacked and sent", "%.0f frames/s" % rate, "at least 300")
            row("memcpy of the same bytes", "%.0f frames/s" % copy())
            row("memory of the server: its own, with mapped files", "%.0f MB, %.0f MB" % tuple(memory(server.pid)))
            options = Options()
            for argument in (*ARGUMENTS, "--window-size=1280,720"):
                options.add_argument(argument)
            options.binary_location = CHROMIUM
            browser = webdriver.Chrome(options=options, service=Service(DRIVER))
            try:
                measure_page(browser, address, server.pid)
            finally:
                browser.quit()
                server.terminate()


if __name__ == "__main__":
    if not 2 <= len(sys.argv) <= 3:
        sys.exit(__doc__)
    main(*sys.argv[1:])
