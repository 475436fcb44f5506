"""kpf record and kpf cameras with a camera on the loopback, in a process of its own."""
import json
import os
import signal
import struct
import subprocess
import unittest

from recordings import KPF, RecordingTest, Terminal

CAMERA = os.environ["FAKE_CAMERA"]
EXAMPLE = os.environ.get("EXAMPLE")
SIZE = 256 * 256 * 3 // 2
NAME = "genicam:127.0.0.1"
FAST = ("--region", "256x256", "--rate", "100", "--bits", "12")


def pattern(number, size):
    """The bytes of the frame of an id, as the camera makes them."""
    return bytes((number, number >> 8)[i % 16] & 0xFF if i % 16 < 2
                 else (number * 31 + i * 7 + (i >> 8)) & 0xFF for i in range(size))


class Cameras(RecordingTest):
    def camera(self, lost_packets=0):
        process = subprocess.Popen([CAMERA, str(lost_packets)], stdin=subprocess.PIPE,
                                   stdout=subprocess.PIPE)
        self.addCleanup(process.stdout.close)
        self.addCleanup(process.communicate)
        self.assertEqual(process.stdout.readline(), b"ready\n")
        return process

    def records(self, name="out/out_0001.div", size=SIZE):
        data = self.read(name)
        self.assertEqual(len(data) % (16 + size), 0)
        return [data[at:at + 16 + size] for at in range(0, len(data), 16 + size)]

    def read(self, name):
        with open(self.path(name), "rb") as file:
            return file.read()

    def check(self, records):
        """Every record is a frame of the camera's at the place of its id, or a placeholder."""
        first, before, placeholders = None, (0, 0), 0
        for place, record in enumerate(records):
            if not any(record[:16]):
                self.assertEqual(record, bytes(len(record)))
                placeholders += 1
                continue
            number, seconds, micro = struct.unpack("<IqI", record[:16])
            self.assertEqual(number, place)
            self.assertGreater((seconds, micro), before)
            before = seconds, micro
            frame = int.from_bytes(record[16:18], "little")
            if first is None:
                first = frame - place
            self.assertEqual(frame, (first + place - 1) % 65535 + 1)
            if place % 50 == 0:  # the whole frame of some; all are compared in the unit tests
                self.assertEqual(record[16:], pattern(frame, len(record) - 16))
        return placeholders

    def check_complete(self, name="out.kpf"):
        self.assertFalse(os.path.exists(self.path(name + ".incomplete.txt")))
        announced = struct.unpack_from("<I", self.read(name), 468)[0]
        self.assertEqual(announced, len(self.records()))

    def test_losses_are_told_and_keep_their_places(self):
        self.camera(2)
        code, out, err = self.kpf("record", NAME, "out.kpf", *FAST, "--frames", "200", "--json")
        self.assertEqual(code, 0, err)
        told = json.loads(out)
        records = self.records()
        placeholders = self.check(records)
        self.assertEqual(len(records), 200)
        self.assertGreater(placeholders, 0)
        self.assertEqual(told["recordings"], [{"file": "./out.kpf", "frames": 200,
                                               "placeholders": placeholders, "whole": True}])
        self.assertEqual(told["lost"] + told["incomplete"], placeholders)
        self.assertEqual(told["received"], 200 - placeholders)
        self.assertEqual(told["late"], 0)
        self.assertEqual(told["buffers"], 50)
        self.assertLessEqual(told["mostWaiting"], 50)
        self.check_complete()
        code, out, err = self.kpf("record", NAME, "more.kpf", *FAST, "--frames", "100",
                                  "--no-loss")
        self.assertEqual(code, 1, err)
        self.assertRegex(out, r"\d+ received, \d+ lost, \d+ incomplete, 0 late")

    def begun(self, *arguments):
        """A recording of the camera that has written something, and goes on."""
        process = subprocess.Popen([KPF, "record", NAME, "out.kpf", *FAST, *arguments],
                                   cwd=self.folder, stdin=subprocess.DEVNULL,
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.addCleanup(process.communicate)
        self.addCleanup(process.kill)
        data = self.path("out/out_0001.div")
        while not (os.path.exists(data) and os.path.getsize(data) > 10 * (16 + SIZE)):
            self.assertIsNone(process.poll())
        return process

    def test_an_interrupt_ends_a_complete_recording(self):
        self.camera()
        for name in (signal.SIGINT, signal.SIGTERM):
            process = self.begun("--force")
            process.send_signal(name)
            out, err = process.communicate(timeout=60)
            self.assertEqual(process.returncode, 0, err)
            records = self.records()
            self.check(records)
            self.assertIn(b"out.kpf: %d frames recorded" % len(records), out)
            self.check_complete()
            os.remove(self.path("out/out_0001.div"))

    def test_a_killed_recording_keeps_what_was_written(self):
        self.camera()
        process = self.begun()
        process.kill()
        process.communicate(timeout=60)
        data = self.read("out/out_0001.div")
        whole = len(data) // (16 + SIZE) * (16 + SIZE)
        self.assertGreaterEqual(whole, 10 * (16 + SIZE))
        self.write("out/out_0001.div", data[:whole])
        self.check(self.records())
        self.assertEqual(struct.unpack_from("<I", self.read("out.kpf"), 468)[0], 0xFFFFFFFF)
        self.assertEqual(self.kpf("verify", "--strict", "out.kpf")[0], 1)

    def test_a_camera_that_is_gone_ends_a_complete_recording(self):
        camera = self.camera()
        process = self.begun()
        camera.kill()
        out, err = process.communicate(timeout=60)
        self.assertEqual(process.returncode, 1)
        self.assertIn(b"the camera is gone", err)
        records = self.records()
        self.check(records)
        self.assertIn(b"out.kpf: %d frames recorded" % len(records), out)
        self.check_complete()

    def test_what_was_before_the_event_is_recorded_too(self):
        self.camera()
        terminal = Terminal(self, "record", NAME, "out.kpf", *FAST, "--before", "30", "--after",
                            "20")
        while b"armed, 30 of 30 records held" not in terminal.shown:
            self.assertIsNone(terminal.process.poll())
        self.assertFalse(os.path.exists(self.path("out.kpf")))
        terminal.feed(b"\n")
        code, out, shown = terminal.end()
        self.assertEqual(code, 0, shown)
        records = self.records()
        self.assertEqual(len(records), 50)
        self.check(records)
        self.assertIn(b"of 100 frames/s", shown)
        self.assertIn(b"of 50 buffers waiting", shown)
        self.assertIn(b"disk for", shown)
        self.assertIn(b"out.kpf: 50 frames recorded", out)

    def test_cameras_are_listed(self):
        self.camera()
        code, out, err = self.kpf("cameras")
        self.assertEqual((code, err), (0, ""))
        self.assertIn("\n  Aravis Fake, GigEVision at 127.0.0.1\n", out)
        self.assertIn("Mono12Packed", out)
        cameras = json.loads(self.kpf("cameras", "--json")[1])["cameras"]
        self.assertEqual([camera["serial"] for camera in cameras], ["TEST"])
        for name in (cameras[0]["id"], ""):
            code, _, err = self.kpf("record", "genicam:" + name, "out.kpf", "--frames", "3",
                                    "--region", "64x64", "--bits", "8", "--force")
            self.assertEqual(code, 0, err)
            self.assertEqual(os.path.getsize(self.path("out/out_0001.div")), 3 * (16 + 64 * 64))

    def test_a_camera_serves_one_program(self):
        self.camera()
        self.begun()
        code, _, err = self.kpf("record", NAME, "other.kpf", *FAST, "--frames", "3")
        self.assertEqual(code, 2)
        self.assertIn("Close the other program", err)
        self.assertFalse(os.path.exists(self.path("other.kpf")))

    @unittest.skipUnless(EXAMPLE, "built without the examples")
    def test_the_example_records_too(self):
        self.camera(1)
        done = subprocess.run([EXAMPLE, "127.0.0.1", "./out.kpf", "60"], cwd=self.folder,
                              capture_output=True, timeout=60, check=False)
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        records = self.records(size=512 * 512 * 3 // 2)
        self.assertEqual(len(records), 60)
        placeholders = self.check(records)
        self.assertGreater(placeholders, 0)
        self.assertIn(b"out.kpf: 60 frames, %d of them whole, complete" % (60 - placeholders),
                      done.stdout)

    def test_without_a_camera(self):
        code, _, err = self.kpf("record", "genicam:127.0.0.9", "out.kpf")
        self.assertEqual(code, 2)
        self.assertIn("no camera 127.0.0.9", err)
        self.assertIn("kpf cameras", err)
        self.assertFalse(os.path.exists(self.path("out.kpf")))


if __name__ == "__main__":
    unittest.main()
