"""kpf view: what the server gives, and to whom."""
import json
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

    def test_other_methods_are_refused(self):
        for method in ("DELETE", "PUT", "PATCH", "OPTIONS"):
            self.assertEqual(self.ask("api/recordings", method)[0], 403, method)

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
                      "pictures=amplified&frequency=1e9", "pictures=amplified&frequency=13"):
            with self.subTest(query=query):
                status, _, body = self.ask("api/frames?" + query)
                self.assertIn(status, (400, 404), body)
                self.assertIn("error", json.loads(body))
        self.assertEqual(self.ask("a" * 300)[0], 403)  # longer than any of ours
        for path in ("a" * 5000, "%00", "%ff%fe"):
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
        # Beside what is amplified it has 8 bits as well.
        frame, = self.frames(pictures="original,amplified", frequency=12)
        self.assertEqual((frame.bytes, frame.pictures[0]), (1, exported[1::2]))

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

    def test_files_that_become_shorter_or_vanish_are_survived(self):
        """What was there when the page was opened may be taken away by any other program."""
        self.write("clip.kpf", header(width=96, height=64, frames=40, text2=b"long"))
        data = [record(n, bytes([n]) * 6144) for n in range(40)]
        self.write("clip/clip_0001.div", b"".join(data))
        self.view("clip.kpf")
        self.assertEqual(self.frames(**{"from": 39})[0].state, 0)
        self.cut("clip/clip_0001.div", 20 * 6160 + 7)
        for values in ({}, {"tone": "0,4095,1"}, {"pictures": "amplified", "frequency": 5}):
            states = [frame.state for frame in self.frames(**{"from": 18, "count": 4}, **values)]
            self.assertEqual(states, [0, 0, 3, 3])
        self.assertEqual(self.json("lost"), {"lost": [[20, 39]], "searched": 40})
        vibration = self.json("vibration", box="0,0,8,8")
        self.assertEqual((vibration["frames"], vibration["lost"]), (40, 20))
        self.cut("clip/clip_0001.div", 0)
        self.assertEqual(self.frames()[0].state, 3)
        os.remove(self.path("clip/clip_0001.div"))
        self.assertEqual(self.frames()[0].state, 3)
        self.write("clip/clip_0001.div", b"".join(data))
        self.assertEqual(self.frames(**{"from": 39})[0].pictures, [bytes([39]) * 6144])

    def test_another_recording_of_the_name_is_not_shown_for_it(self):
        self.view("clip.kpf")
        self.assertEqual(self.frames()[0].state, 0)
        self.patch("clip.kpf", 1698, b"\xff" * 32)
        for _ in range(1000):  # what was found out is believed for a moment
            status, _, body = self.ask("api/frames")
            if status != 200:
                break
        self.assertEqual(status, 410)
        self.assertIn(b"another recording has taken its place: start kpf view again", body)

    def test_amplified_frames_of_a_recording_that_grows(self):
        """The window goes on: it is not filled anew for each frame that comes."""
        data = [record(n, bytes((n * 37 + i * 11) % 256 for i in range(8))) for n in range(60)]
        self.write("clip.kpf", header(frames=60))
        self.write("clip/clip_0001.div", b"".join(data[:30]))
        self.view("clip.kpf")
        values = {"pictures": "amplified", "frequency": 5, "gain": 8}
        self.frames(**{"from": 29}, **values)
        self.write("clip/clip_0001.div", b"".join(data))
        while self.json("recordings")["recordings"][0]["places"] < 60:
            pass  # what was found out is believed for a moment
        made = self.kpf_bytes("amplify", "clip.kpf", "-", "--frequency", "5", "--gain", "8").stdout
        for n in (30, 31, 59):
            self.assertEqual(self.frames(**{"from": n}, **values)[0].pictures, [made[8 * n:8 * n + 8]])

    def test_gains_beyond_those_of_the_command_are_refused(self):
        self.write("clip.kpf", header(frames=60))
        self.write("clip/clip_0001.div", run(range(60)))
        self.view("clip.kpf")
        for gain in ("-1", "256", "1e9"):
            status, _, body = self.ask("api/frames?pictures=amplified&frequency=5&gain=" + gain)
            self.assertEqual(status, 400, body)

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


class Desktop(ViewTest):
    def test_the_browser_is_led_by_a_file(self):
        """The secret address is in no list of processes."""
        self.write("xdg-open", b"#!/bin/sh\ncp \"$1\" led.tmp; stat -c %a \"$1\" > mode; mv led.tmp led.html\n")
        os.chmod(self.path("xdg-open"), 0o700)
        self.view("clip.kpf", desktop={"DISPLAY": ":9", "TMPDIR": self.folder,
                                       "PATH": self.folder + ":" + os.environ["PATH"]})
        while not os.path.exists(self.path("led.html")):
            self.assertIsNone(self.process.poll())
        with open(self.path("led.html"), encoding="utf-8") as led, open(self.path("mode"), encoding="utf-8") as mode:
            self.assertIn('url=%s"' % self.address, led.read())
            self.assertEqual(mode.read(), "600\n")
        self.process.terminate()
        self.process.wait(60)
        self.assertEqual([name for name in os.listdir(self.folder) if name.startswith("kpf-view-")], [])


class Arguments(ViewTest):
    def test_bad_ones(self):
        self.write("empty.kpf", header(width=0))
        for what, arguments in (("FILE is required", ()), ("missing.kpf", ("missing.kpf",)),
                                ("frames without pixels", ("empty.kpf",)), ("--port", ("clip.kpf", "--port", "0")),
                                ("--scale", ("clip.kpf", "--scale", "-1")),
                                ("--scale: nan", ("clip.kpf", "--scale", "nan"))):
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
