"""kpf record that waits for an event: what is kept from before it, and how it ends."""
import json
import os
import signal
import subprocess
import unittest

from recordings import KPF, Terminal
from videos import VideoTest, y4m

SIZE = 64


def scene(level):
    return [level] * (SIZE * SIZE)


class Events(VideoTest):
    """A dark scene in which something lights up now and then."""

    def setUp(self):
        super().setUp()
        self.dark, self.bright = 30, 230

    def video(self, *levels):
        self.write("scene.y4m", y4m([scene(level) for level in levels], SIZE, SIZE))

    def levels(self, name="out/out_0001.div"):
        """Level of each record, -1 for a placeholder; their numbers are those of their places."""
        data = self.read(name)
        size = 16 + SIZE * SIZE
        self.assertEqual(len(data) % size, 0)
        records = [data[at:at + size] for at in range(0, len(data), size)]
        for place, record in enumerate(records):
            if any(record[:16]):
                self.assertEqual(int.from_bytes(record[:4], "little"), place)
        return [record[16] if any(record[:16]) else -1 for record in records]

    def run_json(self, *arguments, code=0):
        got, out, err = self.kpf("record", "scene.y4m", "out.kpf", "--json", *arguments)
        self.assertEqual(got, code, err)
        return json.loads(out)

    def test_motion_begins_a_recording_with_what_was_before(self):
        self.video(*[self.dark] * 40, self.bright, 31, 32, 33, 34)
        result = self.run_json("--before", "3", "--trigger", "motion:100", "--after", "3")
        self.assertEqual(self.levels(), [30, 30, 30, 230, 31, 32])
        self.assertEqual(result["recordings"], [{"file": "./out.kpf", "frames": 6,
                                                 "placeholders": 0, "whole": True}])
        self.assertEqual(self.kpf("info", "out.kpf")[0], 0)
        self.assertFalse(os.path.exists(self.path("out.kpf.incomplete.txt")))

    def test_what_the_disk_has_no_room_for_is_not_waited_for(self):
        self.video(self.dark)
        code, out, err = self.kpf("record", "scene.y4m", "out.kpf", "--before", "3", "--after",
                                  "999999999")
        self.assertEqual((code, out), (2, ""))
        self.assertIn("kpf: the recording takes 4.1 TB, the disk has room for ", err)

    def test_every_event_gets_the_next_free_number(self):
        event = [self.dark] * 40 + [self.bright]
        self.video(*event, *event, *event)
        self.write("out_0002.kpf", b"somebody's")
        result = self.run_json("--before", "1", "--trigger", "motion:100", "--after", "1",
                               "--again")
        self.assertEqual([clip["file"] for clip in result["recordings"]],
                         ["./out_0001.kpf", "./out_0003.kpf", "./out_0004.kpf"])
        for number in (1, 3, 4):
            self.assertEqual(self.levels("out_%04d/out_%04d_0001.div" % (number, number)),
                             [30, 230])
        self.assertEqual(self.read("out_0002.kpf"), b"somebody's")
        self.assertFalse(os.path.exists(self.path("out.kpf")))

    def test_without_an_event_nothing_is_written(self):
        self.video(*[self.dark] * 40)
        code, out, err = self.kpf("record", "scene.y4m", "out.kpf", "--trigger", "motion:100")
        self.assertEqual(code, 1)
        self.assertIn("nothing is recorded: nothing began it", err)
        self.assertIn("40 received, 0 lost, 0 incomplete, 0 late", out)
        self.assertFalse(os.path.exists(self.path("out.kpf")))
        self.assertFalse(os.path.exists(self.path("out")))

    def test_without_an_event_an_older_recording_stays(self):
        self.video(*[self.dark] * 40)
        before = self.read("clip/clip_0001.div")
        code, _, _ = self.kpf("record", "scene.y4m", "clip.kpf", "--force", "--before", "3")
        self.assertEqual(code, 1)
        self.assertEqual(self.read("clip/clip_0001.div"), before)

    def test_quiet_tells_of_failure_only(self):
        self.video(*[self.dark] * 40, self.bright)
        wish = ("record", "scene.y4m", "out.kpf", "--quiet", "--trigger", "motion:100")
        self.assertEqual(self.kpf(*wish), (0, "", ""))
        self.video(*[self.dark] * 40)
        code, out, err = self.kpf(*wish, "--force")
        self.assertEqual(code, 1)
        self.assertIn("40 received", out)
        self.assertEqual(err, "kpf: nothing is recorded: nothing began it\n")

    def test_the_last_frames_are_not_waited_for(self):
        self.video(*[self.dark] * 40, self.bright)
        self.run_json("--before", "30", "--trigger", "motion:100")
        self.assertEqual(self.levels(), [30] * 30 + [230])

    def test_twelve_bits(self):
        self.video(*[self.dark] * 40, self.bright, 31)
        self.run_json("--before", "2", "--trigger", "motion:100", "--bits", "12")
        data = self.read("out/out_0001.div")
        size = 16 + SIZE * SIZE * 3 // 2
        self.assertEqual([data[at + 16:at + 19] for at in range(0, len(data), size)],
                         [bytes([level, 0, level]) for level in (30, 30, 230, 31)])

    def test_damaged_frames_are_placeholders_and_no_success(self):
        frames = [self.dark] * 40 + [self.bright, 31]
        self.write("scene.raw", bytes(b for level in frames for b in scene(level)) + b"torn")
        code, out, err = self.kpf("record", "scene.raw", "out.kpf", "--before", "1", "--json",
                                  "--trigger", "motion:100", "--raw", "64x64:gray8")
        self.assertEqual(code, 1)
        self.assertEqual(self.levels(), [30, 230, 31, -1])
        self.assertEqual(json.loads(out)["trouble"], "1 frame is damaged")
        self.assertIn("kpf: 1 frame is damaged\n", err)

    def test_remarks_stand_in_the_document_too(self):
        self.write("scene.y4m", y4m([scene(30)] * 3, SIZE, SIZE)
                   .replace(b" F25:1 ", b" F30000:1001 "))
        remark = "29.97 frames/s are recorded as 30: the format holds whole rates"
        code, out, err = self.kpf("record", "scene.y4m", "out.kpf", "--before", "1", "--json")
        self.assertEqual((code, json.loads(out)["remarks"]), (1, [remark]))
        self.assertIn("kpf: %s\n" % remark, err)

    def begin(self, *arguments):
        """A recording of a terminal's pipe that holds five frames and waits for a signal."""
        terminal = Terminal(self, "record", "-", "out.kpf", "--before", "3", *arguments)
        terminal.feed(b"YUV4MPEG2 W%d H%d F25:1 Ip A1:1 Cmono\n" % (SIZE, SIZE))
        return terminal

    @staticmethod
    def feed_until(terminal, done):
        for _ in range(100000):
            if done():
                return
            terminal.feed(b"FRAME\n" + bytes([30]) * (SIZE * SIZE))
        raise AssertionError("nothing happened")

    def test_a_signal_begins_it_and_an_interrupt_ends_it(self):
        terminal = self.begin()
        self.feed_until(terminal, lambda: b"armed, 3 of 3 records held" in terminal.shown)
        terminal.process.send_signal(signal.SIGUSR1)
        self.feed_until(terminal, lambda: os.path.exists(self.path("out/out_0001.div")))
        terminal.process.send_signal(signal.SIGINT)
        code, out, _ = terminal.end()
        self.assertEqual(code, 0)
        levels = self.levels()
        self.assertGreaterEqual(len(levels), 3)
        self.assertEqual(set(levels), {30})
        self.assertIn(b"out.kpf: %d frames recorded, 0 placeholders" % len(levels), out)
        self.assertEqual(self.kpf("info", "out.kpf")[0], 0)

    def test_an_interrupt_before_the_event_writes_nothing(self):
        for name in (signal.SIGINT, signal.SIGTERM):
            terminal = self.begin()
            self.feed_until(terminal, lambda shown=terminal: b"armed" in shown.shown)
            terminal.process.send_signal(name)
            code, _, shown = terminal.end()
            self.assertEqual(code, 1)
            self.assertIn(b"nothing is recorded", shown)
            self.assertFalse(os.path.exists(self.path("out.kpf")))

    def test_enter_begins_it(self):
        self.video(*[self.dark] * 40)
        done = subprocess.run([KPF, "record", "scene.y4m", "out.kpf", "--before", "3"],
                              cwd=self.folder, input=b"\n", capture_output=True, timeout=60,
                              check=False)
        self.assertEqual(done.returncode, 0)
        self.assertRegex(done.stderr, rb"^kpf: nothing is written until Enter or SIGUSR1 "
                         rb"to process \d+\n$")
        self.assertEqual(self.levels(), [30] * 40)

    def test_what_does_not_go_together_is_refused(self):
        self.video(self.dark)
        for arguments, what in (
                (("--after", "3"), "--before or --trigger"),
                (("--again",), "--before or --trigger"),
                (("--before", "3", "--frames", "3"), "--after"),
                (("--before", "3", "--duration", "3"), "--after"),
                (("--trigger", "sound:3"), "motion:LEVEL"),
                (("--before", "3", "--after", "soon"), "2.5s"),
                (("--before", "3", "--start", "2026-11-21T05:00:00Z"), "--clock"),
                (("--before", "9999999", "--bits", "12"), "memory"),
                (("--before", "3", "--checksums"), "kpf checksum"),
                (("--before", "3", "--fill-gaps"), "keeps its place"),
                (("--exposure", "3"), "genicam:"),
                (("--exposure", "nan"), "nan is no number"),
                (("--set", "A=1"), "genicam:"),
                (("--region", "2x2"), "genicam:"),
                (("--no-loss",), "--no-loss"),
                (("--clock", "rate"), "--clock")):
            code, out, err = self.kpf("record", "scene.y4m", "out.kpf", *arguments)
            self.assertEqual((code, out), (2, ""), arguments)
            self.assertIn(what, err, arguments)
        self.assertFalse(os.path.exists(self.path("out.kpf")))


if __name__ == "__main__":
    unittest.main()
