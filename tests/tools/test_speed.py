"""kpf speed: a disk is tried, and nothing stays behind."""
import json
import os
import re
import signal
import subprocess

from recordings import KPF, RecordingTest

SMALL = ("--size", "64x48", "--seconds", "1")
BYTES = {"bytes": 1, "kB": 1e3, "MB": 1e6, "GB": 1e9, "TB": 1e12}


def in_bytes(said):
    number, unit = said.split()
    return float(number) * BYTES[unit]


class Speed(RecordingTest):
    def setUp(self):
        super().setUp()
        os.mkdir(self.path("disk"))

    def test_tells_what_holds_and_leaves_nothing(self):
        # No rate is sure to hold on a machine that does other things: both ends are ends.
        code, out, err = self.kpf("speed", "disk", *SMALL, "--json")
        self.assertEqual(err, "")
        told = json.loads(out)
        self.assertEqual((told["folder"], told["size"], told["bits"], told["recordBytes"]),
                         ("disk", "64x48", 12, 64 * 48 * 3 // 2 + 16))
        self.assertGreater(told["reaches"]["framesPerSecond"], 10)
        self.assertEqual(told["reaches"]["bytesPerSecond"],
                         told["reaches"]["framesPerSecond"] * told["recordBytes"])
        self.assertEqual(code, 0 if told["holds"] else 1)
        if told["holds"]:
            minutes = told["freeBytes"] / told["holds"]["bytesPerSecond"] / 60
            self.assertAlmostEqual(told["minutes"] / minutes, 1, 6)
        self.assertEqual(os.listdir(self.path("disk")), [])

    def test_tells_it_to_people(self):
        code, out, err = self.kpf("speed", "disk", *SMALL, "--bits", "8")
        self.assertIn("disk: frames of 64x48 pixels, 8 bits, 3.1 kB each\n", out)
        self.assertRegex(out, r"reaches  \d+ frames/s \(.*/s\), as fast as it goes\n")
        if code == 0:
            self.assertRegex(out, r"holds    \d+ frames/s \(.*/s\): none of \d+ frames late in ")
            self.assertRegex(out, r" free: [0-9.]+ minutes at the rate it holds\n$")
            # To the tenth that each of them is told with.
            free, minutes = re.search(r"([0-9.]+ \w+) free: ([0-9.]+) minutes", out).groups()
            held = re.search(r"holds .*\((.*)/s\):", out)[1]
            self.assertAlmostEqual(float(minutes) / (in_bytes(free) / in_bytes(held) / 60), 1, delta=0.1)
        self.assertNotEqual("No rate held" in out, "at the rate it holds" in out)
        self.assertEqual(err, "")

    def test_cleans_up_when_interrupted(self):
        with subprocess.Popen([KPF, "speed", "disk", "--seconds", "600", "--size", "64x48"],
                              cwd=self.folder, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE) as process:
            while not os.listdir(self.path("disk")):
                self.assertIsNone(process.poll())
            process.send_signal(signal.SIGINT)
            out, err = process.communicate(timeout=60)
        self.assertEqual((process.returncode, out), (1, b""))
        self.assertEqual(err, b"kpf: interrupted; what was written is removed\n")
        self.assertEqual(os.listdir(self.path("disk")), [])

    def test_what_cannot_be_tried(self):
        for arguments, said in ((("nowhere",), "nowhere is no folder"),
                                (("clip.kpf",), "clip.kpf is no folder"),
                                (("disk", "--size", "64"), '"64" is no size'),
                                (("disk", "--size", "0x64"), '"0x64" is no size'),
                                (("disk", "--size", "64x65536"), '"64x65536" is no size'),
                                (("disk", "--size", "64x48x2"), '"64x48x2" is no size'),
                                (("disk", "--size", "65535x65535"), "a frame of 65535x65535 pixels fits"),
                                (("disk", "--seconds", "nan"), "nan is no number from 1 to 3600"),
                                (("disk", "--bits", "10"), "--bits")):
            with self.subTest(arguments):
                code, out, err = self.kpf("speed", *arguments)
                self.assertEqual((code, out), (2, ""))
                self.assertIn(said, err)
        self.assertEqual(os.listdir(self.path("disk")), [])
