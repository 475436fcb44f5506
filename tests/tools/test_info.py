"""kpf info: exact output and exit codes."""
import json
import os
import unittest

from recordings import NOT_THERE, RecordingTest, header, run

COMPLETE = """\
file        ./clip.kpf
frame       4 x 2 pixels, 8 bits, 8 bytes packed
rate        25 frames/s
text5       ""
text2       ""
values      value3 3, value5 0, value7 7
frames      5 announced, 5 written, 0 placeholders
first time  1700000000.000000 (2023-11-14 22:13:20.000000 UTC)
last time   1700000000.160000 (2023-11-14 22:13:20.160000 UTC)
duration    0.200 s
data rate   600 bytes/s
data        120 bytes in 1 file
            ./clip/clip_0001.div: 5 records, 120 bytes
complete    yes
"""


class Info(RecordingTest):
    def lines(self, *arguments):
        code, out, err = self.kpf("info", *arguments, "./clip.kpf")
        self.assertEqual((code, err), (0, ""))
        return out.splitlines()

    def line(self, name):
        return [text for text in self.lines() if text.startswith(name.ljust(12))][0][12:]

    def json(self):
        code, out, err = self.kpf("info", "--json", "./clip.kpf")
        self.assertEqual((code, err), (0, ""))
        return json.loads(out)

    def test_complete_recording(self):
        self.assertEqual(self.kpf("info", "./clip.kpf"), (0, COMPLETE, ""))

    def test_frames_of_12_bits(self):
        self.write("clip.kpf", header(bits=12))
        self.write("clip/clip_0001.div", run(range(5), pixels=b"\x55" * 12))
        self.assertEqual(self.line("frame"), "4 x 2 pixels, 12 bits, 12 bytes packed")

    def test_texts_are_escaped(self):
        self.write("clip.kpf", header(text2=b'a"b\\c', text5=b"\x1b[31mred\n"))
        self.assertEqual(self.line("text2"), r'"a\"b\\c"')
        self.assertEqual(self.line("text5"), r'"\x1b[31mred\x0a"')

    def test_texts_cannot_turn_the_order_of_reading(self):
        self.write("clip.kpf", header(text2="\u202egnp.exe".encode(),
                                      text5="\x9b2J \u6f22".encode()))
        self.assertEqual(self.line("text2"), r'"\xe2\x80\xaegnp.exe"')
        self.assertEqual(self.line("text5"), r'"\xc2\x9b2J %s"' % "\u6f22")

    def test_placeholders_have_no_time(self):
        self.patch("clip/clip_0001.div", 0, bytes(24))
        self.patch("clip/clip_0001.div", 96, bytes(24))
        self.assertEqual(self.line("frames"), "5 announced, 5 written, 2 placeholders")
        self.assertIn("1700000000.040000", self.line("first time"))
        self.assertIn("1700000000.120000", self.line("last time"))

    def test_json_tells_what_is_missing(self):
        self.cut("clip/clip_0001.div", 50)
        self.assertFalse(self.json()["complete"])
        self.assertEqual([(each["problem"], each["file"]) for each in self.json()["problems"]], [
            ("short-file", "./clip/clip_0001.div"), ("incomplete", "./clip.kpf")])
        self.assertIn("2 of 5 announced frames", self.json()["problems"][1]["text"])

    def test_times_before_1970_have_no_date(self):
        self.write("clip/clip_0001.div", run(range(5), start=-7))
        self.assertEqual(self.line("first time"), "-7.000000")

    def test_without_a_rate_there_is_no_duration(self):
        self.write("clip.kpf", header(rate=0.0))
        self.assertFalse([text for text in self.lines() if text.startswith("du")])
        self.assertIsNone(self.json()["duration"])

    def test_recording_cut_short_says_why(self):
        self.cut("clip/clip_0001.div", 50)
        self.assertEqual(self.lines()[-3:], [
            "complete    no",
            "            ./clip/clip_0001.div: the file ends after 2 of 5 records and 2 of the 24 "
            "bytes of the next",
            "            ./clip.kpf: 2 of 5 announced frames are there, and no status file: the "
            "recorder was stopped, ran out of space, or is still at work",
        ])

    @unittest.skipUnless(os.path.exists("/sys/devices/system/cpu/online"), "needs Linux")
    def test_records_that_cannot_be_read_are_told(self):
        # The system says that this file has 4096 bytes, and gives fewer.
        os.remove(self.path("clip/clip_0001.div"))
        os.symlink("/sys/devices/system/cpu/online", self.path("clip/clip_0001.div"))
        code, out, err = self.kpf("info", "./clip.kpf")
        self.assertEqual((code, err), (1, ""))
        self.assertIn("complete    no\n", out)
        self.assertIn("            ./clip/clip_0001.div: the file has become shorter\n", out)

    def test_recording_without_data_files(self):
        os.remove(self.path("clip/clip_0001.div"))
        self.assertEqual(self.line("frames"), "5 announced, 0 written, 0 placeholders")
        self.assertEqual(self.line("data"), "0 bytes in 0 files")
        self.assertIsNone(self.json()["firstTime"])

    def test_json(self):
        self.assertEqual(self.json(), {
            "file": "./clip.kpf",
            "header": {
                "version": "v3.0", "width": 4, "height": 2, "bits": 8, "frameSize": 8,
                "frameRate": 25.0, "text2": "", "text5": "", "value3": 3.0, "value5": 0,
                "value7": 7.0, "identifier": "000102030405060708090a0b0c0d0e0f",
                "framesPerFile": 89478485},
            "announced": 5, "written": 5, "placeholders": 0,
            "firstTime": {"seconds": 1700000000, "microseconds": 0},
            "lastTime": {"seconds": 1700000000, "microseconds": 160000},
            "duration": 0.2, "bytesPerSecond": 600.0,
            "files": [{"number": 1, "path": "./clip/clip_0001.div", "size": 120, "records": 5,
                       "trailingBytes": 0}],
            "complete": True, "problems": []})

    def test_json_survives_texts_that_are_not_utf8(self):
        self.write("clip.kpf", header(text5=b"caf\xe9"))
        self.assertEqual(self.json()["header"]["text5"], "caf\ufffd")

    def test_missing_file(self):
        code, out, err = self.kpf("info", "none.kpf")
        self.assertEqual((code, out), (2, ""))
        self.assertEqual(err, "kpf: none.kpf, byte 0: " + NOT_THERE + "\n"
                              "Give the header file (.kpf) of a recording that you may read.\n")

    def test_another_kind_of_file(self):
        self.write("clip.kpf", b"RIFF" + bytes(2994))
        code, out, err = self.kpf("info", "./clip.kpf")
        self.assertEqual((code, out), (2, ""))
        self.assertIn("./clip.kpf, byte 0: not the header of a recording\n", err)

    def test_json_tells_a_failure_too(self):
        for command in ("info", "verify"):
            code, out, err = self.kpf(command, "--json", "none.kpf")
            self.assertEqual(code, 2)
            self.assertEqual(json.loads(out), {"error": {
                "name": "unreadable-input", "text": "none.kpf, byte 0: " + NOT_THERE,
                "advice": "Give the header file (.kpf) of a recording that you may read.",
                "exitCode": 2}})
            self.assertIn("kpf: none.kpf, byte 0: " + NOT_THERE + "\n", err)

    def test_json_tells_wrong_usage_too(self):
        for command in ("info", "verify"):
            code, out, err = self.kpf(command, "--json")
            self.assertEqual(code, 2)
            self.assertEqual(json.loads(out)["error"]["name"], "wrong-usage")
            self.assertIn("FILE", json.loads(out)["error"]["text"])
            self.assertIn("--help", err)


if __name__ == "__main__":
    unittest.main()
