"""kpf view: what the server gives, and to whom."""
import json
import math
import os
import signal
import unittest

from recordings import header, record, run
from viewer import ViewTest

PIXELS = bytes(range(0, 80, 10))


class Safety(ViewTest):
    def setUp(self):
        super().setUp()
        self.view("clip.kpf")

    def assert_refused(self, answer):
        status, _, body = answer
        self.assertEqual((status, body), (403, b'{"error":"refused"}'))

    def test_secrets_differ_and_are_needed(self):
        first, secret = self.address, self.root.strip("/")
        self.assert_refused(self.ask(root="/"))
        self.assert_refused(self.ask(root="/api/recordings"))
        self.assert_refused(self.ask(root="/" + secret[:-1] + "/"))
        self.assert_refused(self.ask(root="/" + secret + "0/"))
        self.assert_refused(self.ask(root="/" + secret[::-1] + "/"))
        self.assert_refused(self.ask(root="//" + secret + "/"))
        self.view("clip.kpf")
        self.assertNotEqual(self.address.split("/")[3], first.split("/")[3])

    def test_host_is_matched_exactly(self):
        right = "%s:%d" % (self.host, self.port)
        self.assertEqual(self.ask(headers={"Host": right})[0], 200)
        for host in ("evil.example", "localhost:%d" % self.port, self.host, right + "0", "evil." + right,
                     right + ".evil.example", "", [right, "evil.example"], [right, right]):
            with self.subTest(host=host):
                self.assert_refused(self.ask(headers={"Host": host}))

    def test_origin_is_matched_exactly(self):
        self.assertEqual(self.ask(headers={"Origin": self.origin})[0], 200)
        for origin in ("http://evil.example", "null", "https" + self.origin[4:], self.origin + "/",
                       "http://localhost:%d" % self.port, "file://", [self.origin, "http://evil.example"]):
            with self.subTest(origin=origin):
                self.assert_refused(self.ask(headers={"Origin": origin}))

    def test_other_sites_may_lead_to_the_page_and_to_nothing_else(self):
        elsewhere = {"Sec-Fetch-Site": "cross-site", "Sec-Fetch-Mode": "navigate"}
        self.assertEqual(self.ask(headers=elsewhere)[0], 200)
        self.assert_refused(self.ask("api/recordings", headers=elsewhere))
        self.assert_refused(self.ask(headers={"Sec-Fetch-Site": "cross-site", "Sec-Fetch-Mode": "no-cors"}))
        self.assert_refused(self.ask("main.js", headers={"Sec-Fetch-Site": "same-site"}))

    def test_writing_needs_post_from_our_page(self):
        job = json.dumps({"kind": "still", "recording": 0, "name": "x.png", "place": 0, "show": "original",
                          "tone": [0, 255, 1]}).encode()
        self.assert_refused(self.ask("api/jobs", "POST", job))
        self.assert_refused(self.ask("api/jobs", "POST", job, {"Origin": "http://evil.example"}))
        self.assert_refused(self.ask("api/jobs", "POST", job, {"Origin": self.origin}, root="/"))
        form = {"Origin": "http://evil.example", "Content-Type": "application/x-www-form-urlencoded"}
        self.assert_refused(self.ask("api/jobs", "POST", b"kind=still&name=x.png", form))
        for method in ("PUT", "DELETE", "PATCH", "OPTIONS"):
            self.assert_refused(self.ask("api/jobs", method, job, {"Origin": self.origin}))
        self.assertEqual(self.ask("api/jobs?kind=still&name=x.png")[0], 400)
        self.assertEqual(os.listdir(self.folder).count("x.png"), 0)

    def test_every_answer_forbids_what_is_not_needed(self):
        for path in ("", "main.js", "chart.js", "style.css", "icon.svg", "api/recordings", "nothing", "api/frames"):
            with self.subTest(path=path):
                _, headers, body = self.ask(path)
                self.assertIn("default-src 'none'", headers["Content-Security-Policy"])
                self.assertNotIn("unsafe", headers["Content-Security-Policy"])
                self.assertEqual(headers["X-Content-Type-Options"], "nosniff")
                self.assertEqual(headers["Referrer-Policy"], "no-referrer")
                self.assertEqual(headers["Cache-Control"], "no-store")
                self.assertIsNone(headers["Access-Control-Allow-Origin"])
                self.assertIsNotNone(headers["Content-Type"])
                self.assertNotIn(self.root.strip("/").encode(), body)
        self.assertIn("default-src 'none'", self.ask(root="/")[1]["Content-Security-Policy"])

    def test_nothing_but_the_named_recordings_is_read(self):
        self.write("other.kpf", header())
        for path in ("../clip.kpf", "clip.kpf", "/etc/passwd", "..%2f..%2fetc/passwd", "%2e%2e/clip.kpf",
                     "page/../../clip.kpf", "other.kpf", "api/", "api/recordings/../frames"):
            with self.subTest(path=path):
                self.assertIn(self.ask(path)[0], (403, 404))
        for index in ("1", "-1", "4294967295", "1e300"):
            status, _, body = self.ask("api/frames?recording=" + index)
            self.assertIn((status, b"no such recording" in body), ((400, True), (200, False)), index)
        self.assertEqual(self.ask("api/frames?recording=1")[0], 400)

    def test_nonsense_is_told_and_survived(self):
        for query in ("from=x", "from=1e999", "cut=1", "cut=nan,0,0,0,0,0", "tone=1", "tone=,,", "from=99", "from=-",
                      "pictures=amplified&frequency=0", "pictures=amplified&frequency=1e-9", "from=4294967295&step=4294967295",
                      "pictures=amplified&frequency=1e9"):
            with self.subTest(query=query):
                status, _, body = self.ask("api/frames?" + query)
                self.assertIn(status, (400, 404), body)
                self.assertIn("error", json.loads(body))
        for path in ("a" * 300, "a" * 5000, "%00", "%ff%fe"):
            self.assertIn(self.ask(path)[0], (403, 404), path[:9])
        for body in (b"", b"{", b"[]", b"{}", b'{"kind": 5, "recording": 0}', b'{"recording": -1}', b"[" * 60000):
            self.assertEqual(self.ask("api/jobs", "POST", body, {"Origin": self.origin})[0], 400, body[:9])
        self.assertEqual(self.ask("api/jobs", "POST", b"x" * 100000, {"Origin": self.origin})[0], 413)
        self.assertEqual(self.ask()[0], 200)

    def test_other_addresses_of_this_machine_are_not_served(self):
        self.host = "127.0.0.2"
        with self.assertRaises(ConnectionRefusedError):
            self.ask(headers={"Host": "127.0.0.1:%d" % self.port})

    def test_interrupt_ends_it(self):
        self.process.send_signal(signal.SIGINT)
        self.assertEqual(self.process.wait(timeout=60), 0)


class Frames(ViewTest):
    def test_what_the_recording_is(self):
        self.write("clip.kpf", header(text2=b"<b>&\x01"))
        self.view("clip.kpf", "--scale", "0.5", "--live")
        told = self.json("recordings")
        self.assertEqual((told["live"], told["scale"]), (True, 0.5))
        self.assertEqual(told["recordings"], [
            {"name": "clip.kpf", "width": 4, "height": 2, "bits": 8, "rate": 25.0, "places": 5, "announced": 5,
             "text2": "<b>&\\x01", "text5": "", "first": {"place": 0, "seconds": 1700000000, "microseconds": 0}}])

    def test_true_samples_of_8_bits(self):
        self.write("clip/clip_0001.div", run(range(5), pixels=PIXELS))
        self.view("clip.kpf")
        frame, = self.frames(**{"from": 3})
        self.assertEqual((frame.place, frame.sequence, frame.seconds, frame.microseconds, frame.state),
                         (3, 3, 1700000000, 120000, 0))
        self.assertEqual((frame.width, frame.height, frame.bytes, frame.pictures), (4, 2, 1, [PIXELS]))

    def test_true_samples_of_12_bits(self):
        packed = bytes([0x12, 0x34, 0x56, 0xAB, 0xCD, 0xEF] * 2)
        self.write("clip.kpf", header(bits=12))
        self.write("clip/clip_0001.div", run(range(5), pixels=packed))
        self.view("clip.kpf")
        frame, = self.frames()
        exported = self.kpf_bytes("export", "clip.kpf", "-", "--to", "0").stdout
        self.assertEqual((frame.bytes, frame.pictures), (2, [exported]))

    def test_what_the_screen_shows(self):
        self.write("clip/clip_0001.div", run(range(5), pixels=PIXELS))
        self.view("clip.kpf")
        frame, = self.frames(tone="0,4080,1")
        self.assertEqual(frame.pictures, [PIXELS])  # 255 levels on 255 levels
        frame, = self.frames(tone="0,4080,1", cut="0,0,4,2,2,1")
        self.assertEqual((frame.width, frame.height, frame.pictures), (2, 1, [bytes([25, 45])]))  # means of four
        frame, = self.frames(tone="320,800,1", cut="1,0,3,1,3,1")
        self.assertEqual(frame.pictures, [bytes([0, 0, 85])])  # 30 lies a third of the way from 20 to 50

    def test_several_frames_in_one_answer(self):
        self.view("clip.kpf")
        self.assertEqual([frame.place for frame in self.frames(**{"from": 1, "count": 9, "step": 2})], [1, 3])

    def test_lost_frames_have_no_picture(self):
        self.split()
        self.write("clip/clip_0001.div", record(0) + bytes(24))
        os.remove(self.path("clip/clip_0002.div"))
        self.view("clip.kpf")
        frames = self.frames(count=9)
        self.assertEqual([frame.state for frame in frames], [0, 1, 2, 2, 0])
        self.assertEqual([len(frame.pictures) for frame in frames], [1, 0, 0, 0, 1])
        self.assertEqual(self.json("lost"), {"lost": [[1, 3]], "searched": 5})
        self.assertEqual(self.json("lost", **{"from": 2}), {"lost": [[2, 3]], "searched": 5})

    def test_a_recording_that_grows_is_followed(self):
        self.cut("clip/clip_0001.div", 24 * 2 + 7)
        self.view("clip.kpf")
        self.assertEqual(self.json("recordings")["recordings"][0]["places"], 2)
        self.write("clip/clip_0001.div", run(range(4)))
        for _ in range(1000):  # what was found out is believed for a moment
            places = self.json("recordings")["recordings"][0]["places"]
            if places == 4:
                break
        self.assertEqual(places, 4)
        self.assertEqual(self.frames(**{"from": 3})[0].place, 3)

    def test_amplified_frames_are_those_of_the_command(self):
        self.write("clip.kpf", header(frames=60))
        self.write("clip/clip_0001.div", b"".join(
            record(n, bytes((n * 37 + i * 11) % 256 for i in range(8))) for n in range(60)))
        self.view("clip.kpf")
        for how in (("5", "8"), ("2.5", "1.5"), ("12", "250")):
            made = self.kpf_bytes("amplify", "clip.kpf", "-", "--frequency=" + how[0], "--gain=" + how[1]).stdout
            wanted = {"pictures": "amplified,reference,original", "frequency": how[0], "gain": how[1]}
            shown = [frame for n in range(0, 60, 20) for frame in self.frames(**{"from": n, "count": 20}, **wanted)]
            self.assertEqual(b"".join(frame.pictures[0] for frame in shown), made, how)
            for n in (40, 3, 41, 41, 59, 20):  # in any order
                frame, = self.frames(**{"from": n}, **wanted)
                self.assertEqual(frame.pictures[0], made[8 * n:8 * n + 8], (how, n))
                self.assertEqual(frame.full, n >= 13 if how[0] == "5" else frame.full)

    def test_lost_frames_are_not_amplified(self):
        self.write("clip.kpf", header(frames=60))
        self.write("clip/clip_0001.div", b"".join(
            bytes(24) if n in (20, 30, 31) else record(n, bytes((n * 37 + i * 11) % 256 for i in range(8)))
            for n in range(60)))
        self.view("clip.kpf")
        made = self.kpf_bytes("amplify", "clip.kpf", "-", "--frequency", "5", "--gain", "8").stdout
        self.assertEqual(len(made), 60 * 8)
        values = {"pictures": "amplified", "frequency": 5, "gain": 8}
        for n in (35, 21, 32, 59, 19, 44, 45):
            frame, = self.frames(**{"from": n}, **values)
            self.assertEqual(frame.pictures[0], made[8 * n:8 * n + 8], n)
        self.assertEqual(self.frames(**{"from": 30}, **values)[0].pictures, [])

    def test_marks_tell_what_wraps_and_what_clips(self):
        rows = [bytes(8)] * 14 + [bytes([0, 10, 31, 32, 40, 255, 200, 30])]
        self.write("clip.kpf", header(frames=15))
        self.write("clip/clip_0001.div", b"".join(record(n, pixels) for n, pixels in enumerate(rows)))
        self.view("clip.kpf")
        frame, = self.frames(**{"from": 14, "pictures": "marks,amplified,reference", "frequency": 5, "gain": 8})
        # The reference of fifteenths is 0 below 15, so differences are the values: 8 x 31 is 248, and
        # 279 clips; 8 x 32 is 256 and wraps.
        self.assertEqual(list(frame.pictures[2]), [0, 0, 2, 2, 2, 17, 13, 2])
        self.assertEqual(list(frame.pictures[0]), [0, 0, 1, 1, 2, 2, 2, 0])
        self.assertEqual((frame.wraps, frame.clips), (3, 2))


    def test_the_clean_way_keeps_what_is_still(self):
        self.write("clip.kpf", header(frames=20))
        rows = [bytes([0, 7, 100, 120, 255, 254, 90, 90])] * 19 + [bytes([0, 7, 100, 120, 255, 254, 100, 80])]
        self.write("clip/clip_0001.div", b"".join(record(n, pixels) for n, pixels in enumerate(rows)))
        self.view("clip.kpf")
        values = {"pictures": "amplified,reference,marks", "frequency": 5, "gain": 8, "way": "clean"}
        still, moved = self.frames(**{"from": 18, "count": 2}, **values)
        self.assertEqual(still.pictures[:2], [rows[18], rows[18]])
        self.assertEqual((moved.pictures[0][:6], moved.wraps), (rows[19][:6], 0))
        up, down = moved.pictures[0][6:8]
        self.assertTrue(up > 160 and down < 20, (up, down))  # by nine and eleven levels, eight times


class Vibration(ViewTest):
    FRAMES, RATE = 200, 100

    def setUp(self):
        """Stripes of 8 pixels that swing by a tenth of a pixel, 12 times a second; one frame is lost."""
        super().setUp()
        self.write("clip.kpf", header(width=32, height=24, rate=100.0, frames=self.FRAMES))
        data = b""
        for n in range(self.FRAMES):
            shift = 0.1 * math.sin(2 * math.pi * 12 * n / self.RATE)
            row = bytes(round(128 + 100 * math.sin(2 * math.pi * (x - shift) / 8)) for x in range(32))
            data += bytes(16 + 32 * 24) if n == 90 else record(n, row * 24, rate=100)
        self.write("clip/clip_0001.div", data)
        self.view("clip.kpf")

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
        for box in ("", "1,2", "0,0,0,0", "30,0,3,3", "0,0,4294967295,4294967295", "-1,0,2,2"):
            status, _, body = self.ask("api/vibration?box=" + box)
            self.assertIn((status, box), ((400, box), (200, "-1,0,2,2")), body)

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

    def test_still_has_the_frame_and_a_caption(self):
        self.write("clip.kpf", header(width=320, height=2, frames=3))
        self.write("clip/clip_0001.div", run(range(3), pixels=bytes(range(256)) * 2 + bytes(128)))
        self.view("clip.kpf")
        self.assertEqual(self.post("jobs", name="still.png", **self.still), (200, {"id": 0, "file": "still.png"}))
        code, _, err = self.kpf("record", "still.png", "back.kpf", "--quiet")
        self.assertEqual(code, 0, err)
        with open(self.path("back/back_0001.div"), "rb") as file:
            data = file.read()[16:]
        self.assertEqual(data[:640], bytes(range(256)) * 2 + bytes(128))
        lines = (len(data) - 640) // 320 // 28
        self.assertGreaterEqual(lines, 3)  # name, number and time do not fit into one
        self.assertIn(255, data[640:])

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


class Arguments(ViewTest):
    def test_bad_ones(self):
        self.write("empty.kpf", header(width=0))
        for what, arguments in (("FILE is required", ()), ("missing.kpf", ("missing.kpf",)),
                                ("frames without pixels", ("empty.kpf",)), ("--port", ("clip.kpf", "--port", "0")),
                                ("--scale", ("clip.kpf", "--scale", "-1"))):
            code, out, err = self.kpf("view", "--no-browser", *arguments)
            self.assertEqual((code, out), (2, ""), arguments)
            self.assertIn(what, err)

    def test_port_that_is_taken(self):
        self.view("clip.kpf")
        code, _, err = self.kpf("view", "clip.kpf", "--no-browser", "--port", str(self.port))
        self.assertEqual(code, 2)
        self.assertIn("port %d of 127.0.0.1 is taken" % self.port, err)


if __name__ == "__main__":
    unittest.main()
