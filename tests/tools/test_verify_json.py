"""What kpf verify tells a program."""
import json
import unittest

from recordings import RecordingTest
from test_verify import DIV, NO_STATUS


class VerifyJson(RecordingTest):
    def json(self):
        code, out, err = self.kpf("verify", "--json", "./clip.kpf")
        self.assertEqual(err, "")
        return code, json.loads(out)

    def test_json_of_a_sound_recording(self):
        self.assertEqual(self.json(), (0, {
            "file": "./clip.kpf", "ok": True, "announced": 5, "written": 5, "placeholders": 0,
            "problemCount": 0, "noteCount": 0, "firstDamage": None, "problems": [],
            "notes": []}))

    def test_json_of_a_damaged_recording(self):
        self.patch(DIV, 0, b"\x09")
        self.cut(DIV, 73)
        problem = {"problem": "short-file", "file": "./clip/clip_0001.div", "record": 3,
                   "offset": 72, "text": "the file ends after 3 of 5 records and 1 of the 24 bytes "
                                         "of the next"}
        notes = [{"note": "incomplete", "file": "./clip.kpf", "record": None, "offset": 468,
                  "text": "3 of 5 announced frames are there" + NO_STATUS},
                 {"note": "sequence", "file": "./clip/clip_0001.div", "record": 0, "offset": 0,
                  "text": "the record says number 9"}]
        self.assertEqual(self.json(), (1, {
            "file": "./clip.kpf", "ok": False, "announced": 5, "written": 3, "placeholders": 0,
            "problemCount": 1, "noteCount": 2, "firstDamage": problem, "problems": [problem],
            "notes": notes}))

    def test_json_of_notes_depends_on_strictness(self):
        self.patch(DIV, 0, b"\x09")
        code, verdict = self.json()
        self.assertEqual((code, verdict["ok"], verdict["noteCount"]), (0, True, 1))
        code, out, _ = self.kpf("verify", "--json", "--strict", "clip.kpf")
        self.assertEqual((code, json.loads(out)["ok"]), (1, False))


if __name__ == "__main__":
    unittest.main()
