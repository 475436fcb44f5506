"""kpf view: what the server works out, and the files that it makes."""
import math
import os
import unittest

from recordings import header, record, run
from viewer import ViewTest


class Vibration(ViewTest):
    FRAMES, RATE = 200, 100

    def setUp(self):
        """Stripes of 8 pixels that swing by a tenth of a pixel, 12 times a second; one frame is lost."""
        super().setUp()
        self.write_stripes()
        self.view("clip.kpf")

    def write_stripes(self, rate=100.0):
        self.write("clip.kpf", header(width=32, height=24, rate=rate, frames=self.FRAMES))
        data = b""
        for n in range(self.FRAMES):
            shift = 0.1 * math.sin(2 * math.pi * 12 * n / self.RATE)
            row = bytes(round(128 + 100 * math.sin(2 * math.pi * (x - shift) / 8)) for x in range(32))
            data += bytes(16 + 32 * 24) if n == 90 else record(n, row * 24, rate=100)
        self.write("clip/clip_0001.div", data)

    def test_twelve_bits_keep_their_fractions(self):
        """Light that swings by six sixteenths of what 8 bits can tell."""
        self.write("clip.kpf", header(width=32, height=24, rate=100.0, bits=12, frames=self.FRAMES))
        levels = [round(2056 + 6 * math.sin(2 * math.pi * 12 * n / self.RATE)) for n in range(self.FRAMES)]
        self.write("clip/clip_0001.div", b"".join(
            record(n, bytes([level >> 4, (level & 15) * 17, level >> 4]) * (16 * 24), rate=100)
            for n, level in enumerate(levels)))
        self.view("clip.kpf")
        peak = self.json("vibration", box="4,4,20,16")["signals"]["mean"]["peaks"][0]
        self.assertAlmostEqual(peak["frequency"], 12, delta=0.5)
        self.assertAlmostEqual(peak["amplitude"], 6 / 16, delta=0.02)

    def test_without_a_rate_nothing_is_told(self):
        self.write_stripes(rate=0.0)
        self.view("clip.kpf")
        status, _, body = self.ask("api/vibration?box=4,4,20,16")
        self.assertEqual(status, 400)
        self.assertIn(b"they tell no rate", body)

    def test_frequency_and_way_of_what_swings(self):
        for box in ("4,4,20,16", "16,12,1,1"):
            found = self.json("vibration", recording=0, box=box)
            self.assertEqual((found["rate"], found["frames"], found["lost"]), (100, 200, 1))
            peak = found["signals"]["x"]["peaks"][0]
            self.assertAlmostEqual(peak["frequency"], 12, delta=0.5)  # one cycle in two seconds
            self.assertAlmostEqual(peak["amplitude"], 0.1, delta=0.01)
            self.assertGreater(found["signals"]["x"]["quality"]["shown"], 0.9)
            self.assertEqual(found["signals"]["y"]["peaks"], [])
            self.assertEqual(len(found["signals"]["x"]["values"]), 200)
        self.assertEqual(self.json("vibration", box="16,12,1,1")["box"], [9, 5, 15, 15])

    def test_map_of_energy_and_of_the_dominant_frequency(self):
        """Everything swings; what is told of it is 12 Hz."""
        for kind in ("energy", "dominant"):
            found = self.json("map", kind=kind, frequency=12)
            self.assertEqual((found["width"], found["height"], found["cell"]), (32, 24, 1))
            self.assertEqual(len(found["values"]), 32 * 24)
        # A tenth of a pixel on a slope of 78.5 levels a pixel.
        self.assertAlmostEqual(self.json("map", kind="energy", frequency=12)["most"], 7.85, delta=0.6)
        self.assertLess(self.json("map", kind="energy", frequency=30)["most"], 1)

    def test_maps_outside_what_the_frames_tell(self):
        for frequency in ("0", "0.5", "51", "-3"):
            self.assertEqual(self.ask("api/map?kind=energy&frequency=" + frequency)[0], 400, frequency)

    def test_only_the_piece_is_looked_at(self):
        found = self.json("vibration", box="0,0,8,8", **{"from": 50, "to": 149})
        self.assertEqual((found["first"], found["frames"]), (50, 100))

    def test_regions_outside_are_refused(self):
        for box in ("", "1,2", "0,0,0,0", "30,0,3,3", "0,0,4294967295,4294967295"):
            status, _, body = self.ask("api/vibration?box=" + box)
            self.assertEqual(status, 400, (box, body))
        self.assertEqual(self.json("vibration", box="-1,0,2,2")["box"], [0, 0, 2, 2])

    def test_too_few_frames(self):
        self.write("few.kpf", header())
        os.mkdir(self.path("few"))
        self.write("few/few_0001.div", run(range(5)))
        self.view("few.kpf")
        self.assertEqual(self.ask("api/vibration?box=0,0,2,2")[0], 400)


class Jobs(ViewTest):
    def setUp(self):
        super().setUp()
        self.view("clip.kpf")
        self.still = {"kind": "still", "recording": 0, "place": 2, "show": "original", "tone": [0, 255, 1]}

    def end_of(self, **job):
        status, reply = self.post("jobs", **job)
        self.assertEqual(status, 200, reply)
        while True:
            told = self.json("jobs", id=reply["id"])
            if told["state"] == "done":
                return told

    def test_export_is_that_of_the_command(self):
        job = {"kind": "export", "recording": 0, "name": "piece.mkv", "from": 1, "to": 3}
        self.assertEqual(self.end_of(**job), {"state": "done", "code": 0, "text": ""})
        self.assertEqual(self.kpf("export", "clip.kpf", "wanted.mkv", "--from", "1", "--to", "3")[0], 0)
        self.assertEqual(self.pictures("piece.mkv"), self.pictures("wanted.mkv"))

    def pictures(self, name):
        code, _, err = self.kpf("record", name, "back.kpf", "--force", "--quiet", "--start", "1700000000")
        self.assertEqual(code, 0, err)
        with open(self.path("back/back_0001.div"), "rb") as file:
            return file.read()

    def test_amplify_is_that_of_the_command(self):
        job = {"kind": "amplify", "recording": 0, "name": "big.mkv", "frequency": 12, "gain": 8}
        self.assertEqual(self.end_of(**job)["code"], 0)
        self.assertEqual(self.kpf("amplify", "clip.kpf", "wanted.mkv", "--frequency", "12", "--gain", "8")[0], 0)
        self.assertEqual(self.pictures("big.mkv"), self.pictures("wanted.mkv"))

    def test_what_the_command_says_is_told(self):
        told = self.end_of(kind="export", recording=0, name="piece.xyz")
        self.assertEqual(told["code"], 2)
        self.assertIn("no extension that is known", told["text"])

    def still_of(self, name, **how):
        """The pixels of a still."""
        self.assertEqual(self.post("jobs", **{**self.still, "name": name, **how}), (200, {"id": 0, "file": name}))
        return self.pictures(name)[16:]

    def view_wide(self):
        self.write("clip.kpf", header(width=320, height=2, frames=3))
        self.write("clip/clip_0001.div", run(range(3), pixels=bytes(range(256)) * 2 + bytes(128)))
        self.view("clip.kpf")

    def test_still_has_the_frame_and_a_caption(self):
        self.view_wide()
        data = self.still_of("still.png")
        self.assertEqual(data[:640], bytes(range(256)) * 2 + bytes(128))
        lines = (len(data) - 640) // 320 // 28
        self.assertEqual(lines, 3)  # name and number, date, time of day
        self.assertIn(255, data[640:])

    def test_stills_of_what_is_amplified(self):
        frames = [bytes((n * 37 + i * 11) % 256 for i in range(64 * 2)) for n in range(20)]
        self.write("clip.kpf", header(width=64, height=2, frames=20))
        self.write("clip/clip_0001.div", b"".join(record(n, frame) for n, frame in enumerate(frames)))
        self.view("clip.kpf")
        shown, = self.frames(pictures="reference,amplified", frequency=12, gain=8, **{"from": 15})
        for show, picture in zip(("reference", "amplified"), shown.pictures):
            data = self.still_of(show + ".png", place=15, show=show, frequency=12, gain=8)
            self.assertEqual(data[:64 * 2], picture, show)
            self.assertNotEqual(picture, frames[15])

    def test_captions_are_broken_where_they_must_be(self):
        """CLIP.KPF FRAME 2, the date, and the time with UTC, which has nineteen letters."""
        captions = []
        for name, width, lines in (("clip", 242, 3), ("clip", 241, 4), ("xlip", 242, 3)):
            self.write(name + ".kpf", header(width=width, height=2, frames=3))
            os.makedirs(self.path(name), exist_ok=True)
            self.write(name + "/%s_0001.div" % name, run(range(3), pixels=bytes(2 * width)))
            self.view(name + ".kpf")
            data = self.still_of("%s%d.png" % (name, width))
            self.assertEqual(len(data), width * (2 + lines * 28), (name, width))
            captions.append(data)
        self.assertNotEqual(captions[0], captions[2])  # the first letter is there

    def test_names_may_have_two_hundred_letters(self):
        self.still_of("x" * 196 + ".png")
        status, _ = self.post("jobs", **{**self.still, "name": "x" * 197 + ".png"})
        self.assertEqual(status, 400)

    def test_still_says_which_way_it_was_amplified(self):
        self.view_wide()
        how = {"show": "amplified", "frequency": 5, "gain": 8}
        library, clean = (self.still_of(name, clean=name == "clean.png", **how)[640:]
                          for name in ("library.png", "clean.png"))
        self.assertNotEqual(library, clean)

    def test_names_lead_nowhere_else(self):
        for name in ("", ".", "..", ".hidden.png", "../x.png", "/tmp/x.png", "a/b.png", "a\nb.png", "a\0.png",
                     "x" * 300 + ".png", "clip.kpf"):
            for kind in ("still", "export"):
                status, reply = self.post("jobs", **{**self.still, "kind": kind, "name": name})
                self.assertEqual(status, 400, (kind, name))
                self.assertIn("error", reply)
        self.assertEqual(sorted(os.listdir(self.folder)), ["clip", "clip.kpf"])

    def test_nothing_is_overwritten(self):
        self.write("still.png", b"mine")
        self.assertEqual(self.post("jobs", name="still.png", **self.still)[0], 400)
        self.assertEqual(self.post("jobs", name="still.png", **{**self.still, "kind": "export"})[0], 400)
        with open(self.path("still.png"), "rb") as file:
            self.assertEqual(file.read(), b"mine")

    def test_only_known_commands_run(self):
        for kind in ("record", "view", "--help", "", "sheet", "info"):
            self.assertEqual(self.post("jobs", **{**self.still, "kind": kind, "name": "x.png"})[0], 400, kind)

    def test_lost_frames_make_no_still(self):
        self.write("clip/clip_0001.div", record(0) + bytes(24) + run(range(2, 5)))
        self.view("clip.kpf")
        status, reply = self.post("jobs", **{**self.still, "name": "x.png", "place": 1})
        self.assertEqual((status, reply["error"]), (400, "frame 1 is lost. Choose another one."))


if __name__ == "__main__":
    unittest.main()
