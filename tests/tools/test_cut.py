"""kpf cut: records as they are, and a header that is true."""
import os
import unittest

from recordings import ON_WINDOWS, RecordingTest, header, record, run


class Cut(RecordingTest):
    def cut_out(self, *arguments, code=0, err=""):
        """What is said of it; what was cut stays in part.kpf."""
        done, out, said = self.kpf("cut", "clip.kpf", "part.kpf", *arguments)
        self.assertEqual((done, said), (code, err), out)
        return out

    def read(self, name):
        with open(self.path(name), "rb") as file:
            return file.read()

    def files(self):
        return sorted(os.path.relpath(os.path.join(folder, name), self.folder)
                      for folder, _, names in os.walk(self.folder) for name in names)

    def test_records_are_copied_byte_by_byte(self):
        self.write("clip/clip_0001.div", run(range(5), pixels=b"\x01\x02\x03\x04\x05\x06\x07\x08"))
        self.assertEqual(self.cut_out("--from", "1", "--to", "3"), "part.kpf: 3 frames\n")
        self.assertEqual(self.read("part/part_0001.div"),
                         run(range(1, 4), pixels=b"\x01\x02\x03\x04\x05\x06\x07\x08"))
        self.assertEqual(self.read("part.kpf"), header(frames=3))

    def test_without_a_range_all_are(self):
        self.cut_out()
        self.assertEqual(self.read("part.kpf"), self.read("clip.kpf"))
        self.assertEqual(self.read("part/part_0001.div"), self.read("clip/clip_0001.div"))
        self.assertEqual(self.kpf("verify", "--strict", "part.kpf")[0], 0)

    def test_numbers_from_zero_and_times_as_they_were(self):
        self.patch("clip/clip_0001.div", 3 * 24, bytes(24))
        self.cut_out("--from", "2", "--renumber")
        self.assertEqual(self.read("part/part_0001.div"),
                         bytes(4) + record(2)[4:] + bytes(24) + b"\x02\0\0\0" + record(4)[4:])

    def test_data_files_hold_as_many_as_before(self):
        self.split(frames=6)
        self.cut_out("--from", "1")
        self.assertEqual(self.files()[-4:-1], ["part.kpf", "part/part_0001.div",
                                               "part/part_0002.div"])
        self.assertEqual(self.read("part/part_0001.div"), run((1, 2)))
        self.assertEqual(self.read("part/part_0003.div"), run((5,)))

    def test_killed_recording_gets_a_true_header(self):
        self.cut("clip/clip_0001.div", 3 * 24 + 7)
        self.assertEqual(
            self.cut_out(code=1,
                         err="kpf: clip.kpf: the recording ends after 3 of 5 announced frames\n"),
            "part.kpf: 3 frames\n")
        self.assertEqual(self.read("part.kpf"), header(frames=3))
        self.assertEqual(self.read("part/part_0001.div"), run(range(3)))
        self.assertEqual(self.kpf("verify", "--strict", "part.kpf")[0], 0)

    def test_recorder_that_had_announced_no_end_has_lost_none(self):
        self.write("clip.kpf", header(frames=0xFFFFFFFF))
        self.cut("clip/clip_0001.div", 3 * 24 + 7)
        said = "kpf: clip.kpf: the recording ends after 3 frames, and was never closed\n"
        self.assertEqual(self.cut_out("--quiet", err=said), "")
        self.assertEqual(self.read("part.kpf"), header(frames=3))
        self.cut_out("--force", "--to", "9", code=1,
                     err="kpf: --to 9 is beyond the end: the last frame is 2\n" + said)

    def test_frames_that_were_asked_for_and_are_not_there(self):
        self.cut("clip/clip_0001.div", 3 * 24)
        said = ("kpf: --to 4 is beyond the end: the last frame is 2\n"
                "kpf: clip.kpf: the recording ends after 3 of 5 announced frames\n")
        self.cut_out("--to", "4", code=1, err=said)
        self.assertEqual(self.read("part.kpf"), header(frames=3))

    def test_holes_become_placeholders_and_no_success(self):
        self.split(frames=6)
        os.remove(self.path("clip/clip_0002.div"))
        self.cut_out("--from", "1", code=1,
                     err="kpf: clip.kpf: 2 frames are missing, the first is 2\n")
        self.assertEqual(self.read("part/part_0001.div"), record(1) + bytes(24))
        self.assertEqual(self.read("part/part_0002.div"), bytes(24) + record(4))

    def test_nothing_is_overwritten(self):
        before = self.read("clip.kpf"), self.read("clip/clip_0001.div")
        for name, said in (("clip.kpf", "is what is read"), ("clip", "has no extension"),
                           ("./clip.kpf", "is what is read"), ("other.kpf", "is there already")):
            self.write("other.kpf", header())
            for arguments in ((), ("--force",))[:1 if name == "other.kpf" else 2]:
                code, out, err = self.kpf("cut", "clip.kpf", name, *arguments)
                self.assertEqual((code, out), (2, ""), name)
                self.assertIn(said, err)
        self.assertEqual((self.read("clip.kpf"), self.read("clip/clip_0001.div")), before)

    def test_older_recording_is_replaced_when_wished(self):
        self.write("part.kpf", header(frames=9))
        os.mkdir(self.path("part"))
        self.write("part/part_0002.div", b"old")
        self.write("part/notes.txt", b"kept")
        self.cut_out("--to", "0", "--force")
        self.assertEqual(self.files(), ["clip.kpf", "clip/clip_0001.div", "part.kpf",
                                        "part/notes.txt", "part/part_0001.div"])

    def test_wrong_ranges_begin_nothing(self):
        for arguments in (("--from", "5"), ("--from", "3", "--to", "2"), ("--from", "-1")):
            code, _, err = self.kpf("cut", "clip.kpf", "part.kpf", *arguments)
            self.assertEqual(code, 2, arguments)
            self.assertNotEqual(err, "")
        self.assertEqual(self.files(), ["clip.kpf", "clip/clip_0001.div"])

    def test_recording_without_records(self):
        self.write("clip/clip_0001.div", b"")
        code, _, err = self.kpf("cut", "clip.kpf", "part.kpf")
        self.assertEqual(code, 2)
        self.assertIn("it has none at all", err)

    @unittest.skipIf(ON_WINDOWS, "the system has other words; see test_windows.py")
    def test_what_cannot_be_written_leaves_nothing(self):
        self.write("clip.kpf", header(width=64, height=64, frames=50))
        self.write("clip/clip_0001.div", run(range(50), pixels=bytes(range(256)) * 16))
        code, out, err = self.kpf("cut", "clip.kpf", "part.kpf", file_size=100000)
        self.assertEqual((code, out), (1, ""))
        self.assertRegex(err, "^kpf: cannot write ./part/part_0001.div: File too large\n")
        self.assertEqual(self.files(), ["clip.kpf", "clip/clip_0001.div"])
        self.assertFalse(os.path.exists(self.path("part")))


if __name__ == "__main__":
    unittest.main()
