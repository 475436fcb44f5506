"""kpf probe: frequency, displacement and maps of scenes whose motion is known."""
import json
import math
import os
import random
import re
import signal
import struct
import subprocess
import unittest
import xml.etree.ElementTree

from recordings import KPF, RecordingTest, header, record

WIDTH, HEIGHT, FRAMES, RATE = 64, 48, 200, 100
RADIUS = 14
INSIDE = ("--box", "24,16,16,16")  # of the disc


def distance(x, y):
    return math.hypot(x - WIDTH / 2, y - HEIGHT / 2)


def texture(x, y):
    return 120 + 40 * math.sin(2 * math.pi * x / 8) + 40 * math.sin(2 * math.pi * y / 9)


def made_scene():
    """A disc that swings by 0.1 pixel along x, 5 times a second, under noise; all else is still."""
    noise = random.Random(1)
    still = [texture(x, y) for y in range(HEIGHT) for x in range(WIDTH)]
    disc = [(y * WIDTH + x, x, y) for y in range(HEIGHT) for x in range(WIDTH)
            if distance(x, y) < RADIUS]
    frames = []
    for n in range(FRAMES):
        shift = 0.1 * math.sin(2 * math.pi * 5 * n / RATE)
        levels = still[:]
        for i, x, y in disc:
            levels[i] = texture(x - shift, y)
        frames.append(bytes(round(level + noise.gauss(0, 0.8)) for level in levels))
    return frames


SCENE = made_scene()


class Probe(RecordingTest):
    def setUp(self):
        super().setUp()
        self.write_scene(SCENE)

    def write_scene(self, frames, lost=()):
        self.write("clip.kpf", header(WIDTH, HEIGHT, rate=float(RATE), frames=len(frames)))
        records = [bytes(16 + WIDTH * HEIGHT) if n in lost else record(n, pixels, rate=RATE)
                   for n, pixels in enumerate(frames)]
        self.write("clip/clip_0001.div", b"".join(records))

    def probe(self, *arguments):
        """What it prints, once it has done its work."""
        code, out, err = self.kpf("probe", "clip.kpf", *arguments)
        self.assertEqual((code, err), (0, ""), out)
        return out

    def found(self, *arguments):
        return json.loads(self.probe("--json", *arguments))

    def read(self, name):
        with open(self.path(name), "rb") as file:
            return file.read()

    def raw_map(self, *arguments):
        """The values by place, and what the report says of them."""
        report = self.found("--map", "map.raw", *arguments)["map"]
        values = struct.unpack("<%df" % (WIDTH * HEIGHT), self.read("map.raw"))
        return {(i % WIDTH, i // WIDTH): value for i, value in enumerate(values)}, report

    def test_frequency_and_displacement(self):
        box = self.found(*INSIDE)["box"]
        self.assertEqual((box["resolution"], box["nyquist"], box["lost"]), (0.5, 50, []))
        moved = box["displacementX"]
        self.assertEqual(moved["shown"], 1)
        self.assertAlmostEqual(moved["peaks"][0]["frequency"], 5, delta=0.25)
        self.assertAlmostEqual(moved["peaks"][0]["amplitude"], 0.1, delta=0.01)
        self.assertAlmostEqual(box["suggestedFrequency"], 5, delta=0.25)
        for peak in box["displacementY"]["peaks"]:
            self.assertLess(peak["amplitude"], 0.01)

    def test_a_point_stands_for_the_pixels_around_it(self):
        box = self.found("--at", "32,24")["box"]
        self.assertEqual([box[name] for name in ("x", "y", "width", "height")], [25, 17, 15, 15])
        self.assertAlmostEqual(box["displacementX"]["peaks"][0]["amplitude"], 0.1, delta=0.01)

    def test_outside_the_disc_nothing_moves(self):
        for peak in self.found("--box", "1,1,12,12")["box"]["displacementX"]["peaks"]:
            self.assertLess(peak["amplitude"], 0.01)

    def test_scale_gives_millimetres(self):
        report = self.found(*INSIDE, "--scale", "0.5")
        self.assertEqual(report["millimetresPerPixel"], 0.5)
        peak = report["box"]["displacementX"]["peaks"][0]
        self.assertAlmostEqual(peak["millimetres"], peak["amplitude"] / 2)
        found = re.search(r"Hz, (0\.\d+) pixels = (0\.\d+) mm to either side",
                          self.probe(*INSIDE, "--scale", "0.5"))
        self.assertAlmostEqual(float(found[2]), float(found[1]) / 2, delta=0.0001)

    def test_a_box_is_where_it_was_asked_for(self):
        box = self.found("--box", "20,14,18,10")["box"]
        self.assertEqual([box[each] for each in ("x", "y", "width", "height")], [20, 14, 18, 10])

    def test_one_lost_frame_of_a_map_is_told(self):
        self.write_scene(SCENE, lost=[100])
        self.assertIn(" 1 lost frame bridged\n", self.probe("--map", "m.raw", "--frequency", "5"))
        self.write_scene(SCENE)
        self.assertNotIn("lost", self.probe("--map", "n.raw", "--frequency", "5"))

    def test_report_for_people(self):
        out = self.probe(*INSIDE)
        for line in ("frames      200 at 100 frames/s, 2 s", "box         16 x 16 pixels at 24,16",
                     "lost        none", "limits      resolution 0.5 Hz; above 50 Hz",
                     "x           100 % of a movement shown",
                     "y           100 % of a movement shown"):
            self.assertIn(line, out)
        self.assertRegex(out, r"\nsuggested   --frequency (4\.9|5|5\.0)\d*\n")

    def test_rate_of_the_camera_counts(self):
        box = self.found(*INSIDE, "--rate", "1000")["box"]
        self.assertEqual((box["resolution"], box["nyquist"]), (5, 500))
        self.assertAlmostEqual(box["suggestedFrequency"], 50, delta=2.5)

    def test_a_lost_frame_changes_no_peak(self):
        whole = self.found(*INSIDE)["box"]
        self.write_scene(SCENE, lost=[100])
        broken = self.found(*INSIDE)["box"]
        self.assertEqual(broken["lost"], [100])
        one, other = (box["displacementX"]["peaks"][0] for box in (whole, broken))
        self.assertAlmostEqual(one["frequency"], other["frequency"], delta=0.02)
        self.assertAlmostEqual(one["amplitude"], other["amplitude"], delta=0.002)
        self.assertEqual(len(whole["brightness"]["peaks"]), len(broken["brightness"]["peaks"]))
        self.assertIn("lost        1 frame, bridged", self.probe(*INSIDE))

    def test_waveform_is_a_table(self):
        self.write_scene(SCENE, lost=[13])
        self.probe(*INSIDE, "--waveform", "w.csv", "--scale", "2", "--from", "10", "--to", "59")
        lines = self.read("w.csv").decode().splitlines()
        self.assertEqual(lines[0], "frame,seconds,lost,brightness,x,y,x_mm,y_mm")
        rows = [[float(cell) for cell in line.split(",")] for line in lines[1:]]
        self.assertEqual([row[0] for row in rows], list(range(10, 60)))
        self.assertEqual([row[2] for row in rows], [0, 0, 0, 1] + 46 * [0])
        self.assertAlmostEqual(rows[5][1], 0.05)
        self.assertAlmostEqual(rows[3][3], (rows[2][3] + rows[4][3]) / 2, places=4)
        self.assertAlmostEqual(rows[7][6], 2 * rows[7][4], places=6)
        inside = [SCENE[10][y * WIDTH + x] for y in range(16, 32) for x in range(24, 40)]
        self.assertAlmostEqual(rows[0][3], sum(inside) / 256, places=4)

    def test_what_an_axis_does_not_show_is_no_zero(self):
        self.probe("--box", "5,5,1,1", "--waveform", "w.csv")
        lines = self.read("w.csv").decode().splitlines()
        self.assertTrue(all(line.endswith(",,") for line in lines[1:]))

    def test_spectrum_is_a_table(self):
        self.probe(*INSIDE, "--spectrum", "s.csv")
        lines = self.read("s.csv").decode().splitlines()
        self.assertEqual(lines[0], "hertz,brightness,x,y")
        rows = [[float(cell) for cell in line.split(",")] for line in lines[1:]]
        self.assertEqual(rows[0], [0, 0, 0, 0])
        self.assertAlmostEqual(rows[-1][0], 50)
        highest = max(rows, key=lambda row: row[2])
        self.assertAlmostEqual(highest[0], 5, delta=0.25)

    def test_plots(self):
        self.probe(*INSIDE, "--plot", "p.svg")
        root = xml.etree.ElementTree.fromstring(self.read("p.svg").decode())
        texts = [element.text for element in root.iter("{http://www.w3.org/2000/svg}text")]
        self.assertTrue(any(text.startswith("x, pixels") for text in texts), texts)
        self.assertTrue(any(text.startswith("5") and text.endswith(" Hz") for text in texts), texts)
        lines = list(root.iter("{http://www.w3.org/2000/svg}polyline"))
        self.assertEqual(len(lines), 12)  # an axis and a curve in each of six
        self.probe(*INSIDE, "--plot", "p.png")
        self.assertEqual(self.png_size("p.png"), (1120, 660))

    def png_size(self, name):
        data = self.read(name)
        self.assertEqual(data[:8], b"\x89PNG\r\n\x1a\n")
        return struct.unpack(">II", data[16:24])

    def test_map_at_a_frequency_is_hot_only_inside_the_disc(self):
        values, report = self.raw_map("--frequency", "5")
        self.assertEqual((report["shows"], report["frequencies"], report["resolution"]),
                         ("amplitude", [5], 0.5))
        inside = [value for place, value in values.items() if distance(*place) < RADIUS]
        outside = [value for place, value in values.items() if distance(*place) >= RADIUS]
        self.assertGreater(max(inside), 2.5)
        self.assertLess(max(outside), 0.7)
        self.assertAlmostEqual(report["highest"], max(inside), places=5)

    def test_map_of_the_dominant_frequency_finds_it(self):
        self.write_scene(SCENE, lost=[100])
        values, report = self.raw_map()
        self.assertEqual((report["shows"], len(report["frequencies"]), report["lost"]),
                         ("frequency", 1, 1))
        self.assertAlmostEqual(report["frequencies"][0], 5, delta=0.25)
        lit = {place for place, value in values.items() if value > 0}
        self.assertTrue(all(distance(*place) < RADIUS + 4 for place in lit))
        inside = [place for place in values if distance(*place) < RADIUS - 2]
        self.assertGreater(len(lit.intersection(inside)), 0.95 * len(inside))

    def test_maps_as_images(self):
        self.probe("--map", "m.png")
        self.assertEqual(self.png_size("m.png"), (WIDTH, HEIGHT))
        self.probe("--map", "m.tif", "--frequency", "5")
        self.assertEqual(self.read("m.tif")[:4], b"II*\0")
        # As it is recorded again, left-justified in 12 bits: 256 steps a level, 16 of them kept.
        self.assertEqual(self.kpf("record", "m.tif", "m.kpf", "--bits", "12", "--rate", "1",
                                  "--quiet")[0], 0)
        packed = self.read("m/m_0001.div")[16:]
        first = struct.unpack("<%df" % (WIDTH * HEIGHT),
                              (self.probe("--map", "m.raw", "--frequency", "5"),
                               self.read("m.raw"))[1])
        self.assertEqual(len(packed), WIDTH * HEIGHT * 3 // 2)
        middle = HEIGHT // 2 * WIDTH + WIDTH // 2  # an even place: the first of a pair
        at = middle // 2 * 3
        high = (packed[at] << 4 | packed[at + 1] & 15, packed[at] << 4 | packed[at + 1] >> 4)
        self.assertIn(int(first[middle] * 256) >> 4, high)

    def test_a_still_scene_has_nothing_to_show(self):
        self.write_scene([bytes(SCENE[0])] * 50)
        report = self.found(*INSIDE, "--map", "m.raw")
        self.assertIsNone(report["box"]["suggestedFrequency"])
        self.assertEqual(report["map"]["frequencies"], [])
        self.assertEqual(set(self.read("m.raw")), {0})
        out = self.probe("--map", "m.png")
        self.assertIn("nothing swings", out)

    def test_all_frames_lost(self):
        self.write_scene([bytes(WIDTH * HEIGHT)] * 20, lost=range(20))
        report = self.found(*INSIDE, "--map", "m.raw")
        self.assertEqual(report["box"]["lost"], list(range(20)))
        self.assertIsNone(report["box"]["suggestedFrequency"])

    def test_hostile_options(self):
        before = sorted(os.listdir(self.folder))
        huge = str(2**32 + 3)
        for what, arguments in (
                ("nothing is asked for", ()),
                ("not in the picture", ("--at", "64,0")),
                ("not in the picture", ("--at", "0,48")),
                ("not in the picture", ("--box", "0,0,0,5")),
                ("not in the picture", ("--box", "60,0,5,1")),
                ("not in the picture", ("--box", "4294967295,1,2,2")),
                ("--at", ("--at", huge + ",1")),
                ("--at", ("--at", "1")),
                ("", ("--at", "-1,2")),
                ("--at", ("--at", "x,y")),
                ("--box", ("--box", "1,2,3")),
                ("excludes", ("--at", "1,1", "--box", "1,1,1,1")),
                ("--scale", ("--at", "9,9", "--scale", "0")),
                ("--scale", ("--at", "9,9", "--scale", "nan")),
                ("--rate", ("--at", "9,9", "--rate", "inf")),
                ("no map is written as", ("--map", "m.bmp")),
                ("no plot is written as", ("--at", "9,9", "--plot", "p.jpg")),
                ("are of a point or a box", ("--waveform", "w.csv", "--map", "m.png")),
                ("is that of a map", ("--at", "9,9", "--frequency", "5")),
                ("tells 1 to 50 Hz", ("--map", "m.png", "--frequency", "51")),
                ("tells 1 to 50 Hz", ("--map", "m.png", "--frequency", "0.5")),
                ("7 frames have no spectrum", ("--at", "9,9", "--to", "6")),
                ("no such frames", ("--at", "9,9", "--from", "200")),
                ("no folder nowhere", ("--map", "nowhere/m.png")),
                ("no folder nowhere", ("--at", "9,9", "--waveform", "nowhere/w.csv"))):
            code, out, err = self.kpf("probe", "clip.kpf", *arguments)
            self.assertEqual((code, out), (2, ""), arguments)
            self.assertIn(what, err, arguments)
        self.assertEqual(sorted(os.listdir(self.folder)), before)

    def test_no_recording(self):
        code, out, err = self.kpf("probe", "missing.kpf", "--at", "1,1", "--json")
        self.assertEqual(code, 2)
        self.assertIn("missing.kpf", err)
        self.assertEqual(json.loads(out)["error"]["exitCode"], 2)

    def test_nothing_is_overwritten_unasked(self):
        for option, name in (("--waveform", "w.csv"), ("--spectrum", "s.csv"), ("--plot", "p.svg"),
                             ("--plot", "p.png"), ("--map", "m.raw"), ("--map", "m.png")):
            self.write(name, b"precious")
            arguments = (*INSIDE, option, name)
            self.assertEqual(self.kpf("probe", "clip.kpf", *arguments)[0], 2, name)
            self.assertEqual(self.read(name), b"precious")
            self.probe(*arguments, "--force")
            self.assertNotEqual(self.read(name), b"precious")

    def test_two_files_of_one_name_are_refused(self):
        os.symlink(".", self.path("here"))
        for other in ("a.csv", "./a.csv", "here/a.csv", self.path("a.csv")):
            code, out, err = self.kpf("probe", "clip.kpf", *INSIDE, "--waveform", "a.csv",
                                      "--spectrum", other, "--force")
            self.assertEqual((code, out), (2, ""), other)
            self.assertIn("is to be two files at once", err)
        self.assertFalse(os.path.exists(self.path("a.csv")))

    def test_names_that_lead_in_a_circle_are_refused(self):
        os.symlink("round", self.path("round"))
        for name, said in (("round", "round is there already"), ("round/a.csv", "there is no folder round")):
            code, out, err = self.kpf("probe", "clip.kpf", *INSIDE, "--waveform", name)
            self.assertEqual((code, out), (2, ""), name)
            self.assertIn("kpf: %s\n" % said, err)

    def test_extensions_count_in_any_case(self):
        self.probe(*INSIDE, "--plot", "p.SVG", "--map", "m.Png")
        self.assertTrue(self.read("p.SVG").startswith(b"<svg"))
        self.assertTrue(self.read("m.Png").startswith(b"\x89PNG"))
        self.probe("--map", "m.RAW")
        self.assertEqual(len(self.read("m.RAW")), 4 * WIDTH * HEIGHT)

    def test_frames_that_are_gone_are_no_success(self):
        self.cut("clip/clip_0001.div", 150 * (16 + WIDTH * HEIGHT))
        for wanted in (INSIDE, ("--map", "m.raw"), ("--map", "n.raw", "--frequency", "5")):
            code, out, err = self.kpf("probe", "clip.kpf", *wanted)
            self.assertEqual(code, 1)
            self.assertIn("150 at 100 frames/s", out)
            self.assertEqual(err, "kpf: clip.kpf: the recording ends after 150 of 200 announced "
                                  "frames\n")

    def test_the_recording_itself_never(self):
        before = self.read("clip/clip_0001.div")
        for option, name in (("--waveform", "clip/clip_0001.div"), ("--spectrum", "clip.kpf")):
            code, _, _ = self.kpf("probe", "clip.kpf", *INSIDE, option, name, "--force")
            self.assertEqual(code, 2)
        self.assertEqual(self.read("clip/clip_0001.div"), before)

    def test_an_end_beyond_the_recording_is_told(self):
        code, _, err = self.kpf("probe", "clip.kpf", *INSIDE, "--to", "500")
        self.assertEqual((code, err), (
            0, "kpf: --to 500 is beyond the end: the last frame is 199\n"))
        for number in ("-1", "18446744073709551616", "1e3", ""):
            code, _, err = self.kpf("probe", "clip.kpf", *INSIDE, "--to", number)
            self.assertEqual(code, 2)
            self.assertIn("--to: %s is no frame's number" % number, err)

    def test_an_interrupted_probe_writes_nothing(self):
        # So many frames, in a file without blocks, that it is at work for a while.
        self.write("clip.kpf", header(640, 480, rate=float(RATE), frames=4000))
        self.cut("clip/clip_0001.div", 0)
        self.cut("clip/clip_0001.div", 4000 * (16 + 640 * 480))
        self.patch("clip/clip_0001.div", 0, record(0, bytes(640 * 480)))
        with subprocess.Popen([KPF, "probe", "clip.kpf", *INSIDE, "--waveform", "w.csv"],
                              cwd=self.folder, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                              text=True) as process:
            while not self.catches(process.pid):
                self.assertIsNone(process.poll())
            process.send_signal(signal.SIGINT)
            out, err = process.communicate(timeout=60)
        self.assertEqual((process.returncode, out), (1, ""))
        self.assertEqual(err, "kpf: interrupted, nothing was written\nStart it again.\n")
        self.assertEqual(sorted(os.listdir(self.folder)), ["clip", "clip.kpf"])

    @staticmethod
    def catches(pid):
        """Whether SIGINT is caught, by the program itself."""
        with open("/proc/%d/status" % pid, encoding="ascii") as file:
            status = dict(line.split(":", 1) for line in file.read().splitlines())
        return (status["Name"].strip() == "kpf" and
                int(status["SigCgt"], 16) >> (signal.SIGINT - 1) & 1)


if __name__ == "__main__":
    unittest.main()
