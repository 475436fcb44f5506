"""Usage: measure_view.py KPF PROBING_BENCH [FOLDER]

What kpf view reaches in a browser without a screen, on a sparse recording of 4 GB: 1280 x 1024 pixels,
12 bits; and what a map of the whole picture takes, by PROBING_BENCH. FOLDER (or TMPDIR) takes the
recording, of which next to nothing is on disk.
"""
import concurrent.futures
import contextlib
import http.client
import itertools
import json
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
SHORT = FRAMES // 16  # frames of the recording that memory is compared with
RECORD = 16 + WIDTH * HEIGHT * 3 // 2
PER_FILE = 2147483647 // RECORD
BATCH, LANES = 4, 3  # frames in a request, requests under way: as player.js asks

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
SHOW = """const s = document.getElementById('show'), r = document.getElementById('rate');
s.value = arguments[0];
s.dispatchEvent(new Event('change'));
r.value = 0;
r.dispatchEvent(new Event('change'));"""


def row(what, value, must="", reached=True):
    print("%-64s %-24s %s%s" % (what, value, must, "" if reached else "  MISSED"), flush=True)


def make_recording(folder, name, frames):
    """The head of every record and a band of pixels; the rest are holes, which read as 0."""
    from recordings import header
    (folder / (name + ".kpf")).write_bytes(header(WIDTH, HEIGHT, 12, float(RATE), frames))
    (folder / name).mkdir()
    band = random.Random(1).randbytes(WIDTH * 3 // 2 * 64)
    for first in range(0, frames, PER_FILE):
        last = min(first + PER_FILE, frames)
        with open(folder / name / ("%s_%04d.div" % (name, first // PER_FILE + 1)), "wb") as file:
            for place in range(first, last):
                file.seek((place - first) * RECORD)
                micro = place * 1000000 // RATE
                file.write(struct.pack("<IqI", place, 1700000000 + micro // 1000000, micro % 1000000) + band)
            file.truncate((last - first) * RECORD)


@contextlib.contextmanager
def served(kpf, folder, name):
    """The server's address and process."""
    with subprocess.Popen([kpf, "view", "--no-browser", name + ".kpf"], cwd=folder, text=True,
                          stdout=subprocess.PIPE, stderr=subprocess.DEVNULL) as server:
        try:
            yield server.stdout.readline().strip(), server
        finally:
            server.terminate()


def memory(server):
    """Megabytes that are the server's own."""
    status = pathlib.Path("/proc/%d/status" % server.pid).read_text(encoding="ascii")
    values = dict(line.split(":", 1) for line in status.splitlines())
    return int(values["RssAnon"].split()[0]) / 1000


def ask(address, places, until):
    """Frames with all their bits over one connection, as long as there is time. @return bytes."""
    host, path = address.split("/", 3)[2:]
    connection = http.client.HTTPConnection(host, timeout=60)
    buffer, received = bytearray(1 << 20), 0
    while time.perf_counter() < until:
        connection.request("GET", "/%sapi/frames?from=%d&count=%d" % (path, next(places), BATCH))
        response = connection.getresponse()
        while got := response.readinto(buffer):
            received += got
    connection.close()
    return received


def serve(address, frames, lanes=LANES, seconds=3):
    """Frames a second over so many connections at once, each asking for what comes next."""
    places = itertools.cycle(range(0, frames - BATCH, BATCH))  # its next one is one step: threads may share it
    began = time.perf_counter()
    with concurrent.futures.ThreadPoolExecutor(lanes) as threads:
        received = sum(threads.map(lambda _: ask(address, places, began + seconds), range(lanes)))
    return received // (64 + WIDTH * HEIGHT * 2) / (time.perf_counter() - began)


def copy(seconds=1):
    """The same bytes copied from memory to memory, so many times a second."""
    source, target = bytearray(WIDTH * HEIGHT * 2), memoryview(bytearray(WIDTH * HEIGHT * 2))
    began, times = time.perf_counter(), 0
    while time.perf_counter() - began < seconds:
        target[:] = source
        times += 1
    return times / (time.perf_counter() - began)


def rate_of(shown):
    """Frames a second behind the first second, and whether each frame was shown once, in order."""
    steady = [(place, at) for place, at in shown if at > shown[0][1] + 1000]
    steps = {b[0] - a[0] for a, b in zip(shown, shown[1:])}
    return (len(steady) - 1) / (steady[-1][1] - steady[0][1]) * 1000, steps == {1}


def measure_maps(bench):
    """Medians of turns that mix the jobs, so that a slow moment hits all of them."""
    told = subprocess.run([bench, "--benchmark_repetitions=7", "--benchmark_enable_random_interleaving=true",
                           "--benchmark_min_time=0.03", "--benchmark_format=json"],
                          stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=True)
    times = {one["run_name"].split("/")[0]: one["real_time"] / 1000
             for one in json.loads(told.stdout)["benchmarks"] if one.get("aggregate_name") == "median"}
    for bits in (12, 8):
        read = times["probe-read-%d" % bits]
        for job, what in (("dominant", "dominant frequencies"), ("frequency", "one frequency")):
            ratio = times["probe-%s-%d" % (job, bits)] / read
            bound = bits == 12  # reading 8 bits is copying them, which nothing can keep pace with
            row("map of %s, %d bits, against reading once" % (what, bits),
                "%.1f times (%.1f ms a frame)" % (ratio, read * ratio), "at most 4" if bound else "",
                ratio <= 4 or not bound)


def measure_server(kpf, folder):
    """@return megabytes that a server has behind the same work on the long and the short recording."""
    held = []
    for name, frames in (("clip", FRAMES), ("short", SHORT)):
        with served(kpf, folder, name) as (address, server):
            rate = serve(address, frames)
            held.append(memory(server))
            if name == "clip":
                row("server alone, 12-bit frames unpacked and sent, as the page asks", "%.0f frames/s" % rate,
                    "at least 300", rate >= 300)
                row("the same over one connection", "%.0f frames/s" % serve(address, frames, lanes=1))
                row("memcpy of the same bytes", "%.0f frames/s" % copy())
    row("memory of the server, %d and %d frames" % (FRAMES, SHORT), "%.0f MB, %.0f MB" % tuple(held), "flat",
        held[0] < 1.5 * held[1] + 20)


def measure_page(browser, address, server):
    places = [random.Random(2).randrange(FRAMES) for _ in range(80)]
    browser.get(address)
    browser.set_script_timeout(120)
    while not browser.execute_script("return document.body.dataset.ready"):
        time.sleep(0.05)
    row("canvas", browser.execute_script("const c = document.querySelector('canvas.picture');"
                                         "return c.width + ' x ' + c.height + ', ' + c.parentNode.dataset.painter"))
    times = sorted(browser.execute_async_script(SEEK, places))
    row("any frame, from request to pixels: median, p95", "%.0f ms, %.0f ms" % (
        statistics.median(times), times[int(len(times) * 0.95)]), "p95 at most 100 ms",
        times[int(len(times) * 0.95)] <= 100)
    rates = {"original": [], "amplified": []}
    ordered = True
    for _ in range(3):  # in turns, so that a slow moment hits both
        for show, found in rates.items():
            browser.execute_script(SHOW, show)
            browser.execute_async_script(SEEK, [100])
            rate, in_order = rate_of(browser.execute_async_script(PLAY, 5))
            found.append(rate)
            ordered = ordered and in_order
    plain, amplified = (statistics.median(found) for found in rates.values())
    row("playing", "%.1f frames/s" % plain, "at least 30", plain >= 30)
    row("each frame once, in order", "yes" if ordered else "no", "yes", ordered)
    row("playing amplified, against without", "%.1f frames/s, %.2f" % (amplified, amplified / plain), "at least 0.9",
        amplified >= 0.9 * plain)
    row("memory of the server behind all of it", "%.0f MB" % memory(server))


def main(kpf, bench, folder=None):
    os.environ["KPF"] = kpf
    from browser import ARGUMENTS, CHROMIUM, DRIVER, Options, Service, webdriver

    print("load of the machine at the beginning: %.2f" % os.getloadavg()[0])
    with tempfile.TemporaryDirectory(dir=folder) as scratch:
        make_recording(pathlib.Path(scratch), "clip", FRAMES)
        make_recording(pathlib.Path(scratch), "short", SHORT)
        measure_server(kpf, scratch)
        options = Options()
        for argument in (*ARGUMENTS, "--window-size=1280,720"):
            options.add_argument(argument)
        options.binary_location = CHROMIUM
        with served(kpf, scratch, "clip") as (address, server):
            browser = webdriver.Chrome(options=options, service=Service(DRIVER))
            try:
                measure_page(browser, address, server)
            finally:
                browser.quit()
    measure_maps(bench)


if __name__ == "__main__":
    if not 3 <= len(sys.argv) <= 4:
        sys.exit(__doc__)
    main(*sys.argv[1:])
